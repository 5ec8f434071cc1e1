// SPDX-License-Identifier: MIT
// NV21 and NV12 to 32-bit RGB with a constant alpha: the walk of the 24-bit kernels, but each its own set and tail.
#include "yuv2rgb/binary32.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

int32_t zivColorNV21toBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_BGRA8888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for_row_pairs<4>(srcImg, dstImg, [=](auto store_order, RowPair rows, ptrdiff_t chroma_row) ZIV_INLINE_BODY {
        const PairedChroma<PairOrder::vu> chroma{row_at_wrapped(srcImg->plane[1], chroma_row, srcImg->pitch[1])};
        convert_binary32_blocks(store_order, rows, chroma, blocked, alpha);
        if (blocked < width) convert_binary32_tail(rows, chroma, blocked, width, alpha);
    });
    return zivStatus_OK;
}

int32_t zivColorNV21toRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_RGBA8888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for_row_pairs<4>(srcImg, dstImg, [=](auto store_order, RowPair rows, ptrdiff_t chroma_row) ZIV_INLINE_BODY {
        const PairedChroma<PairOrder::vu> chroma{row_at_wrapped(srcImg->plane[1], chroma_row, srcImg->pitch[1])};
        convert_blocks<SetR5, Rgb::rgba>(store_order, rows, chroma, blocked, alpha);
        convert_tail<SetR5, Rgb::rgba>(rows, chroma, blocked, width, alpha);
    });
    return zivStatus_OK;
}

namespace {

// The tail stops one pair early and takes the luma of its second column from the other row.
template <Rgb order, class StorePixel>
ZIV_INLINE int32_t nv12_to_rgb32(const Image* srcImg, const Image* dstImg, uint32_t destination, uint8_t alpha,
                                 StorePixel store_tail_pixel) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV12, destination, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for_row_pairs<4>(srcImg, dstImg, [=](auto store_order, RowPair rows, ptrdiff_t chroma_row) ZIV_INLINE_BODY {
        const PairedChroma<PairOrder::uv> chroma{row_at_wrapped(srcImg->plane[1], chroma_row, srcImg->pitch[1])};
        convert_blocks<SetT5, order>(store_order, rows, chroma, blocked, alpha);
        for (ptrdiff_t j = blocked; j < width - 2; j += 2) {
            const Luma2x2 crossed{{rows.luma0[j], rows.luma1[j + 1], rows.luma1[j], rows.luma0[j + 1]}};
            store_pixels_2x2<4>(rows, j, crossed, colour_terms<SetT5>(chroma.u(j), chroma.v(j)), store_tail_pixel);
        }
    });
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorNV12toRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return nv12_to_rgb32<Rgb::rgba>(srcImg, dstImg, zivPixFmt_RGBA8888, alpha,
                                    [alpha](uint8_t* p, Colour colour)
                                        ZIV_INLINE_BODY { store_clamped<Rgb::rgba>(p, colour, alpha); });
}

// The tail also stores red first and blue last, each with its lower test taken from the other.
int32_t zivColorNV12toBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return nv12_to_rgb32<Rgb::bgra>(srcImg, dstImg, zivPixFmt_BGRA8888, alpha,
                                    [alpha](uint8_t* p, Colour colour) ZIV_INLINE_BODY {
                                        p[0] = clamp_crossed(colour.r, colour.b);
                                        p[1] = static_cast<uint8_t>(clamp_byte(colour.g));
                                        p[2] = clamp_crossed(colour.b, colour.r);
                                        p[3] = alpha;
                                    });
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
