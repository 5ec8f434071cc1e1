// SPDX-License-Identifier: MIT
// YUYV to RGB, row by row: blocks of 16 columns, then groups of 4 bytes, two pixels each. With an odd width the last group
// reads 2 bytes and writes one pixel past the row; the next row overwrites what lands on it.
#include "lanes/move_row.h"
#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

namespace {

template <class Set, Rgb order, int N>
ZIV_INLINE void convert_packed(const uint8_t* src, uint8_t* dst, uint8_t alpha) {
    prefetch_writes<pixel_bytes<order> * N>(dst);
    if constexpr (pixel_bytes<order> == 4 && packed_by_words) {
        const PackedWords<N> words[2] = {load_packed_words<N>(src), load_packed_words<N>(src + N)};
        const PackedSums<N> sums[2] = {Set::template packed_sums<N>(words[0]), Set::template packed_sums<N>(words[1])};
        store_packed_sums<N, red_first<order> ? 2 : 0>(dst, sums, U8<N>{} + alpha);
    } else {
        const Packed422<N> packed = load_packed422<N, pixel_bytes<order>>(src);
        store_pixels<N>(dst, packed.luma, terms_of<Set, order, N>(centred_pairs<PairOrder::uv, N>(packed.pairs), alpha));
    }
}

// The blocked columns of a row. In long rows stores are aligned: the pairs before the first aligned pixel, and those left over
// at the end, go one by one.
template <class Set, Rgb order>
ZIV_INLINE void convert_packed_blocks(const uint8_t* src, uint8_t* dst, ptrdiff_t columns, uint8_t alpha) {
    constexpr int bytes = pixel_bytes<order>, long_row = 1024;
    const auto convert_pairs = [=](ptrdiff_t j, ptrdiff_t end) ZIV_INLINE_BODY {
        for (; j < end; j += 2) {
            const uint8_t* group = src + 2 * j;
            const int luma0 = group[0], luma1 = group[2];
            const Colour d = colour_terms<Set>(group[1] - 128, group[3] - 128);
            store_clamped<order>(dst + bytes * j, luma0 + d, alpha);
            store_clamped<order>(dst + bytes * (j + 1), luma1 + d, alpha);
        }
    };
    const ptrdiff_t lead = columns < long_row ? 0 : lead_of<2 * bytes, 2>(dst).samples, stepped = (columns - lead) / 16 * 16;
    convert_pairs(0, lead);
    for_steps(stepped, [=](auto step, ptrdiff_t k) ZIV_INLINE_BODY {
        convert_packed<Set, order, step.value>(src + 2 * (lead + k), dst + bytes * (lead + k), alpha);
    });
    convert_pairs(lead + stepped, columns);
}

template <class Set, Rgb order, class StorePixel>
ZIV_INLINE int32_t yuyv_to_rgb(const Image* srcImg, const Image* dstImg, uint32_t destination, uint8_t alpha,
                               StorePixel store_tail_pixel) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_YUYV, destination, both_2x1)) return status;
    constexpr int bytes = pixel_bytes<order>;
    ptrdiff_t width = dstImg->width, height = dstImg->height;
    // Rows that are all blocks and follow each other without a gap are one.
    if (width % 16 == 0 && srcImg->pitch[0] == 2 * width && dstImg->pitch[0] == bytes * width) width *= height, height = 1;
    const ptrdiff_t blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i < height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* dst = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        convert_packed_blocks<Set, order>(src, dst, blocked, alpha);
        if constexpr (bytes == 4)  // whose tail does as the blocks do: the last one ends with it, over columns before it
            if (blocked != 0 && blocked < width) {
                const ptrdiff_t last = (width + 1) / 2 * 2 - 16;
                convert_packed<Set, order, 16>(src + 2 * last, dst + bytes * last, alpha);
                continue;
            }
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

}  // namespace

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

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
