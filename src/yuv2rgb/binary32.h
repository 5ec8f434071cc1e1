// The set in binary32 arithmetic: R = trunc(Y + 1.402 v), G = trunc(Y + (-0.714 v + -0.344 u)), B = trunc(Y + 1.772 u), every
// product and every sum rounded to single precision by itself, then clamped.
//
// All three are luma plus the floor of the pair's exact term, but for green in 17 pairs. 1.402 v and 1.772 u are whole at zero
// only, and otherwise too far from a whole number for rounding to matter. The exact term of green is a whole number n in 132
// pairs; in 17 of them the binary32 sum of the two products falls short of n by a power of two, 2^-24 times a threshold of 8 to
// 128. There the sum with luma rounds up to Y + n above the threshold, and is Y + n - 1 after truncation up to it.
#pragma once

#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// The binary32 values nearest to the decimals.
inline constexpr float red_of_v = 1.402f, green_of_v = -0.714f, green_of_u = -0.344f, blue_of_u = 1.772f;

// Writes green anew in the four pixels of the pair at column k: seldom done.
ZIV_INLINE void mend_green_of_pair(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t k) {
    const float term = static_cast<float>(chroma.v(k)) * green_of_v + static_cast<float>(chroma.u(k)) * green_of_u;
    const auto mend = [term](uint8_t* pixel, uint8_t luma) ZIV_INLINE_BODY {
        pixel[1] = static_cast<uint8_t>(clamp_byte(static_cast<int>(static_cast<float>(luma) + term)));
    };
    mend(rows.dst0 + 4 * k, rows.luma0[k]), mend(rows.dst0 + 4 * k + 4, rows.luma0[k + 1]);
    mend(rows.dst1 + 4 * k, rows.luma1[k]), mend(rows.dst1 + 4 * k + 4, rows.luma1[k + 1]);
}

// ---- By words: the 17 pairs, and 34 more, known from their quotients ----

template <int N>
struct Binary32Terms {
    S16<N> r, g, b;
    U16<N> sound;  // zero in the lanes of the 17 pairs and of 34 more
};
// The pairs are V U as they were loaded.
template <int N>
ZIV_INLINE Binary32Terms<N> binary32_terms(const Chroma<N>& c) {
    // 4 v and 4 u by 1.402 and 1.772 in 1/32768, halved. No term but 0 comes closer to a whole number than they are off.
    const S16<N> r = multiply_q15<N>(c.v256 >> 6, 11485), b = multiply_q15<N>(c.u256 >> 6, 14516);
    // -0.714 v - 0.344 u is -v + (143 v - 172 u) / 500. A quarter of the numerator, floored, plus 74 times 125 is all but
    // positive; the rounding multiply by 2^21 / 125 adds less than 1/125 after the shift, enough for what the factor lacks.
    constexpr int whole = 74, weight_v = 36, weight_u = -43, centre = 128 * (weight_v + weight_u);
    const S16<N> rest = (S16<N>)((U16<N>)(constant<N>(4 * (125 * whole - centre) - 65536) - c.v) >> 2);
    const S16<N> quarter = weigh_pair_bytes<N>(c.pairs, weight_v, weight_u) + rest;
    const S16<N> quotient = multiply_round_high<N>(quarter, constant<N>(16777)) >> 6;
    // A whole term: `quarter` is a multiple of 125, so that its product with the inverse of 125 modulo 2^16 is the quotient,
    // and nothing was lost in v / 4. The 17 pairs have quotients of -74 to -11, and so products below 64.
    const S16<N> product = (S16<N>)((U16<N>)quarter * (U16<N>)constant<N>(0x78D5));
    return {r, quotient - (c.v + constant<N>(whole)), b, (U16<N>)((product & constant<N>(-64)) | (c.v & constant<N>(3)))};
}

// The lanes of each of some steps that are not sound.
struct UnsoundLanes {
    static constexpr int most = 64;
    uint64_t of_step[most];
};

// Mends their pixels, from column j on: kept apart so as not to take registers from the usual way.
template <int N>
[[gnu::noinline, gnu::cold]] static void mend_green(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t j,
                                                    const UnsoundLanes& unsound, int steps) {
    constexpr uint64_t lane_bits = (uint64_t{1} << zero_lane_bits<N>)-1;
    for (int step = 0; step < steps; step++, j += N)
        for (uint64_t lanes = unsound.of_step[step]; lanes != 0;) {
            const int lane = __builtin_ctzll(lanes) / zero_lane_bits<N>;
            lanes &= ~(lane_bits << lane * zero_lane_bits<N>);
            mend_green_of_pair(rows, chroma, j + 2 * pair_in_lane<N, 4>(lane));
        }
}

// Steps of N columns from column j on. Returns the column reached. What is seldom done waits until many steps or the row are
// over, so that it takes neither a branch nor registers in between.
template <int N>
ZIV_INLINE ptrdiff_t convert_binary32_steps(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t j, ptrdiff_t columns,
                                            uint8_t alpha) {
    const ptrdiff_t ahead = writes_ahead(rows);
    while (j + N <= columns) {
        const ptrdiff_t first = j;
        UnsoundLanes unsound;
        uint64_t any_unsound = 0;
        int steps = 0;
        for (; steps < UnsoundLanes::most && j + N <= columns; j += N) {
            const Binary32Terms<N> d = binary32_terms<N>(chroma.load_at<N, 4>(j));
            const PixelTerms4<N> terms = pixel_terms<N>(d.b, d.g, d.r, alpha);
            expect_writes_ahead<4 * N>(rows.dst0 + 4 * j, ahead);
            expect_writes_ahead<4 * N>(rows.dst1 + 4 * j, ahead);
            store_pixels<N>(rows.dst0 + 4 * j, rows.luma0 + j, terms);
            store_pixels<N>(rows.dst1 + 4 * j, rows.luma1 + j, terms);
            any_unsound |= unsound.of_step[steps++] = zero_lanes<N>(d.sound);
        }
        if (any_unsound != 0) [[unlikely]]
            mend_green<N>(rows, chroma, first, unsound, steps);
    }
    return j;
}

// ---- By bytes: the 17 pairs known from a table ----

// Each as the word V U, in the place that bits 10 to 14 of the word number. 0 stands in no place of its own.
inline constexpr uint16_t word_of_pair(int v, int u) { return static_cast<uint16_t>((v + 128) | (u + 128) << 8); }
struct UnsoundPairs {
    uint16_t word[32] = {};
    constexpr UnsoundPairs() {
        constexpr int pairs[17][2] = {{-92, 2},  {-72, 7},   {-124, 19}, {-12, 22},  {-84, 29}, {-24, 44},
                                      {-4, 49},  {-36, 66},  {-16, 71},  {-68, 83},  {-48, 88}, {-8, 98},
                                      {12, 103}, {-80, 105}, {-40, 115}, {-20, 120}, {-92, 127}};
        for (const auto& pair : pairs) {
            const uint16_t w = word_of_pair(pair[0], pair[1]);
            word[w >> 10 & 31] = w;
        }
    }
};
inline constexpr UnsoundPairs unsound_pairs;

template <int N>
ZIV_INLINE PixelTerms4<N> binary32_pixel_terms(U8<N> pairs, uint8_t alpha) {
    const U8<N> centred = pairs ^ 128;
    const OuterLanes<N> outer = multiply_q15<N>(outer_lanes_times_4<N>(centred), 11485, 14516);
    // Less green is (357 v + 172 u) / 500, rounded up: 89 v + 43 u and a quarter of v, itself rounded up, plus 124, over 125.
    // 121 times 125 makes that all but positive, for the same quotient as above. V is v + 128, and a quarter of it 32 too much.
    constexpr int whole = 121;
    const U16<N> quarter_of_v =
        (((U16<N>)pairs & (U16<N>)constant<N>(255)) + (U16<N>)constant<N>(3 + 4 * (124 + 125 * whole - 32) - 65536)) >> 2;
    const S16<N> numerator = weigh_signed_bytes<N>(centred, 89, 43) + (S16<N>)quarter_of_v;
    const S16<N> green = constant<N>(whole) - (multiply_round_high<N>(numerator, constant<N>(16777)) >> 6);
    return pixel_terms<N>(outer, green, alpha);
}

template <int N>
[[gnu::noinline, gnu::cold]] static void mend_listed(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t columns) {
    constexpr uint32_t all = UINT32_MAX >> (32 - N / 2);
    for (ptrdiff_t j = 0; j + N <= columns; j += N)
        for (uint32_t lanes = all & ~unlisted_lanes<N>(all, (U16<N>)load<N>(chroma.pairs + j), unsound_pairs.word); lanes != 0;
             lanes &= lanes - 1)
            mend_green_of_pair(rows, chroma, j + 2 * __builtin_ctz(lanes));
}

// Returns the column reached.
template <int N>
ZIV_INLINE ptrdiff_t convert_binary32_by_bytes(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t columns,
                                               uint8_t alpha) {
    const ptrdiff_t ahead = writes_ahead(rows);
    constexpr uint32_t all = UINT32_MAX >> (32 - N / 2);
    uint32_t sound = all;
    ptrdiff_t j = 0;
    for (; j + N <= columns; j += N) {
        const U8<N> pairs = load<N>(chroma.pairs + j);
        j = kept_index(j);
        const PixelTerms4<N> terms = binary32_pixel_terms<N>(pairs, alpha);
        sound = unlisted_lanes<N>(sound, (U16<N>)pairs, unsound_pairs.word);
        expect_writes_ahead<4 * N>(rows.dst0 + 4 * j, ahead);
        expect_writes_ahead<4 * N>(rows.dst1 + 4 * j, ahead);
        store_pixels<N>(rows.dst0 + 4 * j, rows.luma0 + j, terms);
        store_pixels<N>(rows.dst1 + 4 * j, rows.luma1 + j, terms);
    }
    if (sound != all) [[unlikely]]
        mend_listed<N>(rows, chroma, columns);
    return j;
}

// ---- Two rows ----

// What the widest steps leave of the blocked columns, from column j on: kept apart so that their constants stay in registers
// from row to row.
[[gnu::noinline, gnu::cold]] static void convert_binary32_rest(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t j,
                                                               ptrdiff_t columns, uint8_t alpha) {
    if constexpr (widest > 32) j = convert_binary32_steps<32>(rows, chroma, j, columns, alpha);
    if constexpr (widest > 16) convert_binary32_steps<16>(rows, chroma, j, columns, alpha);
}

// The blocked columns. Reads and writes exactly these.
ZIV_INLINE void convert_binary32_blocks(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t columns, uint8_t alpha) {
    ptrdiff_t j;
    if constexpr (terms_by_bytes) j = convert_binary32_by_bytes<widest>(rows, chroma, columns, alpha);
    else j = convert_binary32_steps<widest>(rows, chroma, 0, columns, alpha);
    if (j < columns) [[unlikely]]
        convert_binary32_rest(rows, chroma, j, columns, alpha);
}

// The tail sums green in another order: trunc((Y + -0.714 v) + -0.344 u).
[[gnu::noinline]] static void convert_binary32_tail(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t first,
                                                    ptrdiff_t width, uint8_t alpha) {
    for (ptrdiff_t j = first; j <= width - 2; j += 2) {
        const float u = static_cast<float>(chroma.u(j)), v = static_cast<float>(chroma.v(j));
        const float red = v * red_of_v, green_v = v * green_of_v, green_u = u * green_of_u, blue = u * blue_of_u;
        const Quad quad = load_quad(rows, j);
        uint8_t* const pixel[4] = {rows.dst0 + 4 * j, rows.dst0 + 4 * (j + 1), rows.dst1 + 4 * j, rows.dst1 + 4 * (j + 1)};
        for (int p = 0; p < 4; p++) {
            const float y = static_cast<float>(quad.luma[p]);
            const float r = y + red, g = (y + green_v) + green_u, b = y + blue;
            store_clamped<Rgb::bgra>(pixel[p], {static_cast<int>(r), static_cast<int>(g), static_cast<int>(b)}, alpha);
        }
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
