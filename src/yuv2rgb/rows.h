// SPDX-License-Identifier: MIT
// How the kernels of this family walk their rows: where luma and chroma stand, block steps over one row or over a pair of rows
// that share their chroma, and the pixels of a scalar tail.
#pragma once

#include "yuv2rgb/terms.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// ---- Chroma: the pairs of the N pixels from column j on, or of the one pair at column j, centred ----

template <PairOrder order, int N>
ZIV_INLINE Chroma<N, order> centred_pairs(U8<N> pairs) {
    const S16<N> both = (S16<N>)pairs ^ constant<N>(0x8080 - 65536);
    const S16<N> first256 = both << 8, second256 = both & constant<N>(-256);
    const S16<N> first = first256 >> 8, second = both >> 8;
    if constexpr (order == PairOrder::uv) return {first, second, first256, second256, (U8<N>)both};
    else return {second, first, second256, first256, (U8<N>)both};
}

// Interleaved pairs of bytes.
template <PairOrder order>
struct PairedChroma {
    const uint8_t* pairs;

    int u(ptrdiff_t j) const { return pairs[j + (order == PairOrder::vu)] - 128; }
    int v(ptrdiff_t j) const { return pairs[j + (order == PairOrder::uv)] - 128; }
    template <int N, int c>
    ZIV_INLINE Chroma<N, order> load_at(ptrdiff_t j) const {
        return centred_pairs<order, N>(arrange_pairs<N, c>(load<N>(pairs + j)));
    }
};

// A plane for u and a plane for v.
struct PlanarChroma {
    const uint8_t *u_row, *v_row;

    int u(ptrdiff_t j) const { return u_row[j >> 1] - 128; }
    int v(ptrdiff_t j) const { return v_row[j >> 1] - 128; }
    template <int N, int c>
    ZIV_INLINE Chroma<N, PairOrder::uv> load_at(ptrdiff_t j) const {
        const uint8_t *const u_at = u_row + (j >> 1), *const v_at = v_row + (j >> 1);
        if constexpr (pairs_at_once) {
            // Of these a set takes one or the other.
            Chroma<N, PairOrder::uv> chroma = centred_pairs<PairOrder::uv, N>(load_arranged_pairs<N, c>(u_at, v_at));
            chroma.u256 = (S16<N>)load_arranged_upper<N, c>(u_at) ^ constant<N>(-32768);
            chroma.v256 = (S16<N>)load_arranged_upper<N, c>(v_at) ^ constant<N>(-32768);
            return chroma;
        }
        const S16<N> u = (S16<N>)load_widened<N>(u_at) - constant<N>(128), v = (S16<N>)load_widened<N>(v_at) - constant<N>(128);
        return {u, v, u << 8, v << 8, U8<N>{}};
    }
};

// ---- Pixels ----

enum class Rgb { rgb, bgr, rgba, bgra };
template <Rgb order>
inline constexpr int pixel_bytes = order == Rgb::rgb || order == Rgb::bgr ? 3 : 4;
template <Rgb order>
inline constexpr bool red_first = order == Rgb::rgb || order == Rgb::rgba;

// The terms of a set in the order of the destination's channels.
template <class Set, Rgb order, int N, PairOrder pairs>
ZIV_INLINE auto terms_of(const Chroma<N, pairs>& chroma, [[maybe_unused]] uint8_t alpha) {
    const ChromaTerms<N> d = Set::terms(chroma);
    const S16<N> first = red_first<order> ? d.r : d.b, last = red_first<order> ? d.b : d.r;
    if constexpr (pixel_bytes<order> == 3) return pixel_terms<N>(first, d.g, last);
    else return pixel_terms<N>(first, d.g, last, alpha);
}

// One colour, or the terms of one pair, in plain integers.
struct Colour {
    int r, g, b;
};
template <class Set>
ZIV_INLINE Colour colour_terms(int u, int v) {
    return {Set::r(u, v), Set::g(u, v), Set::b(u, v)};
}
ZIV_INLINE Colour operator+(int luma, Colour d) { return {luma + d.r, luma + d.g, luma + d.b}; }

template <Rgb order>
ZIV_INLINE void store_clamped(uint8_t* p, Colour colour, uint8_t alpha) {
    p[red_first<order> ? 0 : 2] = static_cast<uint8_t>(clamp_byte(colour.r));
    p[1] = static_cast<uint8_t>(clamp_byte(colour.g));
    p[red_first<order> ? 2 : 0] = static_cast<uint8_t>(clamp_byte(colour.b));
    if constexpr (pixel_bytes<order> == 4) p[3] = alpha;
}

// What some tails do in place of a clamp: red and blue take their lower test from each other, and a value that passes both
// tests is truncated to 8 bits.
ZIV_INLINE uint8_t clamp_crossed(int value, int other) {
    return static_cast<uint8_t>(other < 0 ? 0 : value > 255 ? 255 : value);
}

// ---- One row ----

// The blocked columns. Reads and writes exactly these.
template <class Set, Rgb order, class RowChroma>
ZIV_INLINE void convert_row_blocks(const uint8_t* luma, RowChroma chroma, uint8_t* dst, ptrdiff_t columns, uint8_t alpha) {
    for_steps(columns, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        prefetch_writes<pixel_bytes<order> * N>(dst + pixel_bytes<order> * j);
        auto terms = terms_of<Set, order, N>(chroma.template load_at<N, pixel_bytes<order>>(j), alpha);
        store_pixels<N>(dst + pixel_bytes<order> * j, luma + j, terms);
    });
}

// ---- Two rows over one row of chroma ----

struct RowPair {
    const uint8_t *luma0, *luma1;
    uint8_t *dst0, *dst1;
};
ZIV_INLINE RowPair row_pair_at(const Image* srcImg, const Image* dstImg, ptrdiff_t row) {
    const uint8_t* luma = row_at_wrapped(srcImg->plane[0], row, srcImg->pitch[0]);
    uint8_t* dst = row_at_wrapped(dstImg->plane[0], row, dstImg->pitch[0]);
    return {luma, luma + srcImg->pitch[0], dst, dst + dstImg->pitch[0]};
}

// In which order the blocked columns of a pair are stored: as the target likes, or 8 of the upper row, 8 of the lower and so
// on.
struct StepOrder {};
struct HalfBlockOrder {};

// Calls convert(order, rows, row of chroma) for all pairs of rows. The order shows where destination rows overlap,
// as their pitch is less than a row.
template <class Convert>
[[gnu::noinline, gnu::cold]] static void for_overlapping_row_pairs(const Image* srcImg, const Image* dstImg, Convert convert) {
    for (ptrdiff_t i = 0; i <= ptrdiff_t{dstImg->height} - 2; i += 2)
        convert(HalfBlockOrder{}, row_pair_at(srcImg, dstImg, i), i >> 1);
}
template <int bytes, class Convert>
ZIV_INLINE void for_row_pairs(const Image* srcImg, const Image* dstImg, Convert convert) {
    const ptrdiff_t height = dstImg->height, pitch = dstImg->pitch[0], row_bytes = bytes * ptrdiff_t{dstImg->width};
    if (pitch < row_bytes && -pitch < row_bytes) return for_overlapping_row_pairs(srcImg, dstImg, convert);
    for (ptrdiff_t i = 0; i <= height - 2; i += 2) convert(StepOrder{}, row_pair_at(srcImg, dstImg, i), i >> 1);
}

// How far ahead of a step its writes are worth a hint: at the same column of the next two rows where these are near.
ZIV_INLINE ptrdiff_t writes_ahead(RowPair rows) {
    const ptrdiff_t next = 2 * (rows.dst1 - rows.dst0);
    return next > 0 && next <= 16384 ? next : 512;
}

// The blocked columns of both. Reads and writes exactly these.
template <class Set, Rgb order, class RowChroma>
ZIV_INLINE void convert_blocks(StepOrder, RowPair rows, RowChroma chroma, ptrdiff_t columns, uint8_t alpha) {
    const ptrdiff_t ahead = writes_ahead(rows);
    for_steps(columns, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        auto terms = terms_of<Set, order, N>(chroma.template load_at<N, pixel_bytes<order>>(j), alpha);
        uint8_t *const dst0 = rows.dst0 + pixel_bytes<order> * j, *const dst1 = rows.dst1 + pixel_bytes<order> * j;
        prefetch_writes_ahead<pixel_bytes<order> * N>(dst0, ahead);
        prefetch_writes_ahead<pixel_bytes<order> * N>(dst1, ahead);
        store_pixel_rows<N>(dst0, dst1, rows.luma0 + j, rows.luma1 + j, terms);
    });
}

// store_pixel(dst, luma, j) converts one pixel, of column j.
template <int bytes, class StorePixel>
ZIV_INLINE void store_half_blocks(RowPair rows, ptrdiff_t columns, StorePixel store_pixel) {
    for (ptrdiff_t half = 0; half < columns; half += 8) {
        for (ptrdiff_t j = half; j < half + 8; j++) store_pixel(rows.dst0 + bytes * j, rows.luma0[j], j);
        for (ptrdiff_t j = half; j < half + 8; j++) store_pixel(rows.dst1 + bytes * j, rows.luma1[j], j);
    }
}
template <class Set, Rgb order, class RowChroma>
ZIV_INLINE void convert_blocks(HalfBlockOrder, RowPair rows, RowChroma chroma, ptrdiff_t columns, uint8_t alpha) {
    store_half_blocks<pixel_bytes<order>>(rows, columns, [=](uint8_t* p, int luma, ptrdiff_t j) ZIV_INLINE_BODY {
        store_clamped<order>(p, luma + colour_terms<Set>(chroma.u(j & ~1), chroma.v(j & ~1)), alpha);
    });
}

// The four pixels of one chroma pair: columns j and j + 1 of the upper row, then of the lower.
struct Luma2x2 {
    int luma[4];
};
ZIV_INLINE Luma2x2 load_luma_2x2(RowPair rows, ptrdiff_t j) {
    return {{rows.luma0[j], rows.luma0[j + 1], rows.luma1[j], rows.luma1[j + 1]}};
}
template <int bytes, class StorePixel>
ZIV_INLINE void store_pixels_2x2(RowPair rows, ptrdiff_t j, Luma2x2 quad, Colour d, StorePixel store_pixel) {
    store_pixel(rows.dst0 + bytes * j, quad.luma[0] + d);
    store_pixel(rows.dst0 + bytes * (j + 1), quad.luma[1] + d);
    store_pixel(rows.dst1 + bytes * j, quad.luma[2] + d);
    store_pixel(rows.dst1 + bytes * (j + 1), quad.luma[3] + d);
}

// The regular tail: column pairs from `first` on, every channel clamped. An odd last column stays as it was.
template <class Set, Rgb order, class RowChroma>
ZIV_INLINE void convert_tail(RowPair rows, RowChroma chroma, ptrdiff_t first, ptrdiff_t width, uint8_t alpha) {
    for (ptrdiff_t j = first; j <= width - 2; j += 2)
        store_pixels_2x2<pixel_bytes<order>>(rows, j, load_luma_2x2(rows, j), colour_terms<Set>(chroma.u(j), chroma.v(j)),
                                             [&](uint8_t* p, Colour colour)
                                                 ZIV_INLINE_BODY { store_clamped<order>(p, colour, alpha); });
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
