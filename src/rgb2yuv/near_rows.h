// SPDX-License-Identifier: MIT
// 32-bit RGB to NV21 by approximate sums: integers give the bytes of the blocks and of the tail alike, but where a sum is so
// near to a whole number that either may round it to the other side. The last step of a row covers its tail as well.
#pragma once

#include "rgb2yuv/float_set.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// The pixels of N columns, green in place of alpha. Alpha of the last one is not read.
template <int N>
ZIV_INLINE PixelVectors<N> load_repeating_green(const uint8_t* p) {
    return {{repeat_green<0>(load<N>(p)), repeat_green<0>(load<N>(p + N)), repeat_green<0>(load<N>(p + 2 * N)),
             repeat_green<1>(load<N>(p + 3 * N - 1))}};
}
template <int N>
struct EvenColumns {
    U8<N> half[2];
};
template <int N>
ZIV_INLINE EvenColumns<N> even_columns(const PixelVectors<N>& v) {
    return {{even_pixels(v.q[0], v.q[1]), even_pixels(v.q[2], v.q[3])}};
}

// The columns that steps cover, an even number of them, and the first one of the tail.
struct NearImage {
    Image src, dst;
    ptrdiff_t columns, tail;
};
// N columns of a row of it.
struct NearColumns {
    const uint8_t* src;
    uint8_t *luma, *chroma;
};
ZIV_INLINE NearColumns columns_at(const NearImage& image, ptrdiff_t row, ptrdiff_t column) {
    return {row_at(image.src.plane[0], row, image.src.pitch[0]) + 4 * column,
            row_at(image.dst.plane[0], row, image.dst.pitch[0]) + column,
            row_at(image.dst.plane[1], row >> 1, image.dst.pitch[1]) + column};
}

// ---- One row ----

// Column j by the tail's rule.
template <PixelLayout in>
ZIV_INLINE void convert_tail_luma(NearColumns c, ptrdiff_t j) {
    c.luma[j] = static_cast<uint8_t>(tail_y(load_pixel<in>(c.src + 4 * j)));
}
template <PixelLayout in>
ZIV_INLINE void convert_tail_chroma(NearColumns c, ptrdiff_t j) {
    const Pixel p = load_pixel<in>(c.src + 4 * j);
    c.chroma[j] = static_cast<uint8_t>(tail_v(p));
    c.chroma[j + 1] = static_cast<uint8_t>(tail_u(p));
}

// N columns, but for near sums.
template <int N>
struct NearTests {
    NearTest<N> luma, chroma;
};
template <PixelLayout in, int N, bool has_chroma>
ZIV_INLINE NearTests<N> convert_near_columns(NearColumns c) {
    NearTests<N> tests;
    const PixelVectors<N> v = load_repeating_green<N>(c.src);
    store(c.luma, approximate_luma<in.red>(v, approximate_y, tests.luma));
    if constexpr (has_chroma) {
        const EvenColumns<N> even = even_columns(v);
        store(c.chroma,
              approximate_chroma_pairs<in.red>(even.half[0], even.half[1], approximate_v, approximate_u, tests.chroma));
    }
    return tests;
}
// What the tests tell of, in binary32, and of the columns from `tail` on, the last eight at most, as the tail has it: luma
// stays. Returns whether there was any.
template <PixelLayout in, int N, bool has_chroma>
ZIV_INLINE bool mend_columns(NearColumns c, ptrdiff_t tail, const NearTests<N>& tests) {
    const bool luma = any_near(tests.luma), chroma = has_chroma && any_near(tests.chroma);
    if (!luma && !chroma) return false;
    const PixelVectors<N> v = load_repeating_green<N>(c.src);
    if (luma) {
        uint8_t of_tail[8];
        __builtin_memcpy(of_tail, c.luma + N - 8, 8);
        store(c.luma, luma_f32<N, in.red>(v, weights_y));
        for (ptrdiff_t j = tail; j < N; j++) c.luma[j] = of_tail[j - (N - 8)];
    }
    if (chroma) {
        store(c.chroma, chroma_pairs_f32<N, in.red>(v, weights_v, weights_u));
        for (ptrdiff_t j = tail; j < N; j += 2) convert_tail_chroma<in>(c, j);
    }
    return true;
}

// ---- Two rows over one row of chroma ----

// Where a step would pass the last column, it repeats columns before it. Returns how many steps had near sums.
template <PixelLayout in, int N, bool has_lower>
ZIV_INLINE ptrdiff_t convert_near_pair(const NearImage& image, ptrdiff_t row) {
    const NearColumns first = columns_at(image, row, 0), second = columns_at(image, row + has_lower, 0);
    const ptrdiff_t columns = image.columns, last = columns - N, tail = image.tail;
    ptrdiff_t near_steps = 0;
    for (ptrdiff_t j = 0; j < columns; j += N) {
        const ptrdiff_t at = j < last ? j : last;
        const NearColumns upper{first.src + 4 * at, first.luma + at, first.chroma + at};
        const NearColumns lower{second.src + 4 * at, second.luma + at, second.chroma};
        const NearTests<N> of_upper = convert_near_columns<in, N, true>(upper);
        NearTest<N> all = of_upper.luma | of_upper.chroma;
        NearTests<N> of_lower;
        if constexpr (has_lower) {
            of_lower = convert_near_columns<in, N, false>(lower);
            all = all | of_lower.luma;
        }
        if (!any_near(all)) [[likely]]
            continue;
        near_steps += mend_columns<in, N, true>(upper, tail - at, of_upper);
        if constexpr (has_lower) near_steps += mend_columns<in, N, false>(lower, tail - at, of_lower);
    }
    return near_steps;
}

// Calls convert_plain(row) for rows that are likely to be full of near sums, as those of grey colours are: after four pairs of
// such rows.
template <PixelLayout in, int N, class ConvertPlain>
ZIV_INLINE void convert_near_image(const NearImage& image, ConvertPlain convert_plain) {
    constexpr ptrdiff_t plain_at_once = 64;
    const ptrdiff_t height = image.dst.height, width = image.dst.width, many = image.columns / N;
    int full_pairs = 0;
    for (ptrdiff_t i = 0, plain_up_to = 0; i < height; i += 2) {
        const bool has_lower = i + 1 < height;
        if (i < plain_up_to) {
            convert_plain(i);
            if (has_lower) convert_plain(i + 1);
            continue;
        }
        const ptrdiff_t near_steps =
            has_lower ? convert_near_pair<in, N, true>(image, i) : convert_near_pair<in, N, false>(image, i);
        full_pairs = near_steps > many ? full_pairs + 1 : 0;
        if (full_pairs == 4) plain_up_to = i + 2 + plain_at_once, full_pairs = 3;
        if (image.columns < width) {
            convert_tail_luma<in>(columns_at(image, i, image.columns), 0);
            convert_tail_chroma<in>(columns_at(image, i, image.columns), 0);
            if (has_lower) convert_tail_luma<in>(columns_at(image, i + 1, image.columns), 0);
        }
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
