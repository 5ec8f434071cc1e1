// YUYV to RGB, row by row: blocks of 16 columns, then groups of 4 bytes, two pixels each. With an odd width the last group
// reads 2 bytes and writes one pixel past the row; the next row overwrites what lands on it.
#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET {

template <class Set, Rgb order, class StorePixel>
ZIV_INLINE int32_t yuyv_to_rgb(const Image* srcImg, const Image* dstImg, uint32_t destination, uint8_t alpha,
                               StorePixel store_tail_pixel) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_YUYV, destination, both_2x1)) return status;
    constexpr int bytes = pixel_bytes<order>;
    const ptrdiff_t width = dstImg->width, height = dstImg->height;
    const ptrdiff_t blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i < height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* dst = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        for_steps(blocked, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            const Packed422<N> packed = load_packed422<N>(src + 2 * j);
            const Chroma<N> chroma = centred_pairs<PairOrder::uv, N>(packed.pairs);
            expect_writes<bytes * N>(dst + bytes * j);
            store_pixels<N>(dst + bytes * j, packed.luma, terms_of<Set, order, N>(chroma, alpha));
        });
        for (ptrdiff_t j = blocked; j < width; j += 2) {
            const uint8_t* group = src + 2 * j;
            const int luma0 = group[0], luma1 = group[2];
            const Colour d = colour_terms<Set>(group[1] - 128, group[3] - 128);
            store_tail_pixel(dst + bytes * j, luma0 + d);
            store_tail_pixel(dst + bytes * (j + 1), luma1 + d);
        }
    }
    return zivStatus_OK;
}

ZIV_INLINE int at_most_255(int value) { return value > 255 ? 255 : value; }

// The tail stores red first and blue last, without a lower limit; each loses its upper limit where the other is negative.
int32_t zivColorYUYVtoBGR888u8(const Image* srcImg, const Image* dstImg) {
    return yuyv_to_rgb<SetQ15, Rgb::bgr>(srcImg, dstImg, zivPixFmt_BGR888, 0, [](uint8_t* p, Colour colour) ZIV_INLINE_BODY {
        p[0] = static_cast<uint8_t>(colour.b < 0 ? colour.r : at_most_255(colour.r));
        p[1] = static_cast<uint8_t>(at_most_255(colour.g));
        p[2] = static_cast<uint8_t>(colour.r < 0 ? colour.b : at_most_255(colour.b));
    });
}

// The tail has no lower limit: negative values wrap.
int32_t zivColorYUYVtoRGB888u8(const Image* srcImg, const Image* dstImg) {
    return yuyv_to_rgb<SetT5, Rgb::rgb>(srcImg, dstImg, zivPixFmt_RGB888, 0, [](uint8_t* p, Colour colour) ZIV_INLINE_BODY {
        p[0] = static_cast<uint8_t>(at_most_255(colour.r));
        p[1] = static_cast<uint8_t>(at_most_255(colour.g));
        p[2] = static_cast<uint8_t>(at_most_255(colour.b));
    });
}

int32_t zivColorYUYVtoRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return yuyv_to_rgb<SetT5, Rgb::rgba>(srcImg, dstImg, zivPixFmt_RGBA8888, alpha,
                                         [alpha](uint8_t* p, Colour colour)
                                             ZIV_INLINE_BODY { store_clamped<Rgb::rgba>(p, colour, alpha); });
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
