// SPDX-License-Identifier: MIT
// The set in binary32 arithmetic: R = trunc(Y + 1.402 v), G = trunc(Y + (-0.714 v + -0.344 u)), B = trunc(Y + 1.772 u), every
// product and every sum rounded to single precision by itself, then clamped.
//
// All three are luma plus the floor of the pair's exact term, but for green in 17 pairs. 1.402 v and 1.772 u are whole at zero
// only, and otherwise too far from a whole number for rounding to matter. The exact term of green is a whole number n in 132
// pairs; in 17 of them the binary32 sum of the two products falls short of n by a power of two, 2^-24 times a threshold of 8 to
// 128. There the sum with luma rounds up to Y + n above the threshold, and is Y + n - 1 after truncation up to it.
#pragma once

#include "yuv2rgb/byte_pairs.h"
#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// The binary32 values nearest to the decimals.
inline constexpr float red_of_v = 1.402f, green_of_v = -0.714f, green_of_u = -0.344f, blue_of_u = 1.772f;

// Either way of taking the terms has:
//   load                  the pairs of N columns
//   all_sound, terms      their terms; the last argument, all_sound at first, changes if one of the 17 pairs is among them
//   is_sound              whether it has not
//   unsound, bits, pair   the lanes of such pairs, so many bits for each, and the pair of a lane

// ---- By words: the 17 pairs, and 34 more, are known from their quotients ----

template <int N>
struct Binary32ByWords {
    static constexpr int bits = zero_lane_bits<N>;
    static constexpr int pair(int lane) { return pair_in_lane<N, 4>(lane); }

    ZIV_INLINE static U8<N> load(const uint8_t* pairs) { return arrange_pairs<N, 4>(ZIVCOLOR_TARGET::load<N>(pairs)); }
    ZIV_INLINE static U16<N> all_sound() { return U16<N>{} + uint16_t{UINT16_MAX}; }
    ZIV_INLINE static bool is_sound(U16<N> least) { return zero_lanes<N>(least) == 0; }
    ZIV_INLINE static PixelTerms4<N> terms(U8<N> pairs, uint8_t alpha, U16<N>& least) {
        // 4 v and 4 u by 1.402 and 1.772 in 1/32768, halved. No term but 0 comes closer to a whole number than they are off.
        const OuterLanes<N> outer = multiply_outer_q15<N>(outer_lanes_times_4<N>(pairs ^ 128), 11485, 14516);
        Green green = green_of(pairs);
        least = lane_min(least, green.sound);
        return pixel_terms<N>(outer.part[1], green.term, outer.part[0], alpha);
    }
    ZIV_INLINE static uint64_t unsound(const uint8_t* pairs) { return zero_lanes<N>(green_of(load(pairs)).sound); }

private:
    struct Green {
        S16<N> term;
        U16<N> sound;  // zero in the lanes of the 17 pairs and of 34 more
    };
    ZIV_INLINE static Green green_of(U8<N> pairs) {
        // -0.714 v - 0.344 u is -v + (143 v - 172 u) / 500. A quarter of the numerator, floored, plus 74 times 125 is all but
        // positive; the rounding multiply by 2^21 / 125 adds less than 1/125 after the shift, enough for what the factor lacks.
        // Here v is 128 more.
        constexpr int whole = 74, weight_v = 36, weight_u = -43, centre = 128 * (weight_v + weight_u) - 32;
        const S16<N> v = (S16<N>)pairs & constant<N>(255);
        const S16<N> rest = (S16<N>)((U16<N>)(constant<N>(4 * (125 * whole - centre) - 65536) - v) >> 2);
        const S16<N> quarter = weigh_pair_bytes<N>(pairs, weight_v, weight_u) + rest;
        const S16<N> quotient = multiply_round_q15<N>(quarter, 16777) >> 6;
        // A whole term: `quarter` is a multiple of 125, so that its product with the inverse of 125 modulo 2^16 is the
        // quotient, and nothing was lost in v / 4. The 17 pairs have quotients of -74 to -11, and so products below 64.
        const S16<N> product = multiply<N>(quarter, 0x78D5);
        return {quotient - v + constant<N>(128 - whole), (U16<N>)((product & constant<N>(-64)) | (v & constant<N>(3)))};
    }
};

// ---- By bytes: the 17 pairs are known from a table ----

// Each as the word V U, in the place that bits 10 to 14 of the word number. The other places hold 0, whose own is taken.
struct UnsoundPairs {
    uint16_t word[32] = {};
    constexpr UnsoundPairs() {
        constexpr int pairs[17][2] = {{-92, 2},  {-72, 7},   {-124, 19}, {-12, 22},  {-84, 29}, {-24, 44},
                                      {-4, 49},  {-36, 66},  {-16, 71},  {-68, 83},  {-48, 88}, {-8, 98},
                                      {12, 103}, {-80, 105}, {-40, 115}, {-20, 120}, {-92, 127}};
        for (const auto& pair : pairs) {
            const int w = (pair[0] + 128) | (pair[1] + 128) << 8;
            word[w >> 10 & 31] = static_cast<uint16_t>(w);
        }
    }
};
inline constexpr UnsoundPairs unsound_pairs;

template <int N>
struct Binary32ByBytes {
    static constexpr int bits = 1;
    static constexpr int pair(int lane) { return lane; }

    ZIV_INLINE static U8<N> load(const uint8_t* pairs) { return ZIVCOLOR_TARGET::load<N>(pairs); }
    ZIV_INLINE static uint32_t all_sound() { return UINT32_MAX >> (32 - N / 2); }
    ZIV_INLINE static bool is_sound(uint32_t sound) { return sound == all_sound(); }
    ZIV_INLINE static PixelTerms4<N> terms(U8<N> pairs, uint8_t alpha, uint32_t& sound) {
        const U8<N> centred = pairs ^ 128;
        const OuterLanes<N> outer = multiply_outer_q15<N>(outer_lanes_times_4<N>(centred), 11485, 14516);
        // Less green is (357 v + 172 u) / 500, rounded up: 89 v + 43 u and a quarter of v, itself rounded up, plus 124, over
        // 125. 121 times 125 more is all but positive, for the same quotient as above. V is v + 128, and its quarter 32 too
        // much.
        constexpr int whole = 121;
        const U16<N> v = (U16<N>)pairs & (U16<N>)constant<N>(255);
        const U16<N> rest = (v + (U16<N>)constant<N>(3 + 4 * (124 + 125 * whole - 32) - 65536)) >> 2;
        const S16<N> numerator = weigh_signed_bytes<N>(centred, 89, 43) + (S16<N>)rest;
        const S16<N> green = constant<N>(whole) - (multiply_round_q15<N>(numerator, 16777) >> 6);
        const PixelTerms4<N> terms = pixel_terms<N>(outer, green, alpha);
        sound = unlisted_lanes<N>(sound, (U16<N>)pairs, unsound_pairs.word);
        return terms;
    }
    ZIV_INLINE static uint64_t unsound(const uint8_t* pairs) {
        return all_sound() & ~unlisted_lanes<N>(all_sound(), (U16<N>)load(pairs), unsound_pairs.word);
    }
};

// ---- Two rows ----

// Writes green anew in the four pixels of each unsound pair: seldom done, and kept apart so as not to take registers from the
// usual way.
template <class Way, int N>
[[gnu::noinline, gnu::cold]] static void mend_green(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t j,
                                                    ptrdiff_t columns) {
    const auto mend = [](uint8_t* pixel, uint8_t luma, float term) ZIV_INLINE_BODY {
        pixel[1] = static_cast<uint8_t>(clamp_byte(static_cast<int>(static_cast<float>(luma) + term)));
    };
    constexpr uint64_t lane_bits = (uint64_t{1} << Way::bits) - 1;
    for (; j + N <= columns; j += N)
        for (uint64_t lanes = Way::unsound(chroma.pairs + j); lanes != 0;) {
            const int lane = __builtin_ctzll(lanes) / Way::bits;
            lanes &= ~(lane_bits << lane * Way::bits);
            const ptrdiff_t k = j + 2 * Way::pair(lane);
            const float term = static_cast<float>(chroma.v(k)) * green_of_v + static_cast<float>(chroma.u(k)) * green_of_u;
            mend(rows.dst0 + 4 * k, rows.luma0[k], term), mend(rows.dst0 + 4 * k + 4, rows.luma0[k + 1], term);
            mend(rows.dst1 + 4 * k, rows.luma1[k], term), mend(rows.dst1 + 4 * k + 4, rows.luma1[k + 1], term);
        }
}

// Steps of N columns from column j on. Returns the column reached.
template <class Way, int N>
ZIV_INLINE ptrdiff_t convert_binary32_steps(RowPair rows, PairedChroma<PairOrder::vu> chroma, const ptrdiff_t first,
                                            ptrdiff_t columns, uint8_t alpha) {
    const ptrdiff_t ahead = writes_ahead(rows);
    auto sound = Way::all_sound();
    ptrdiff_t j = first;
    for (; j + N <= columns; j += N) {
        const auto pairs = Way::load(chroma.pairs + j);
        j = hidden_index(j);
        PixelTerms4<N> terms = Way::terms(pairs, alpha, sound);
        prefetch_writes_ahead<4 * N>(rows.dst0 + 4 * j, ahead);
        prefetch_writes_ahead<4 * N>(rows.dst1 + 4 * j, ahead);
        store_pixel_rows<N>(rows.dst0 + 4 * j, rows.dst1 + 4 * j, rows.luma0 + j, rows.luma1 + j, terms);
    }
    if (!Way::is_sound(sound)) [[unlikely]]
        mend_green<Way, N>(rows, chroma, first, columns);
    return j;
}

// What the widest steps leave of the blocked columns, from column j on: kept apart so that their constants stay in registers
// from row to row.
[[gnu::noinline, gnu::cold]] static void convert_binary32_rest(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t j,
                                                               ptrdiff_t columns, uint8_t alpha) {
    if constexpr (widest > 32) j = convert_binary32_steps<Binary32ByWords<32>, 32>(rows, chroma, j, columns, alpha);
    if constexpr (widest > 16) convert_binary32_steps<Binary32ByWords<16>, 16>(rows, chroma, j, columns, alpha);
}

template <bool by_bytes>
struct WidestWay : Binary32ByWords<widest> {};
template <>
struct WidestWay<true> : Binary32ByBytes<widest> {};

// The blocked columns. Reads and writes exactly these.
ZIV_INLINE void convert_binary32_blocks(StepOrder, RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t columns,
                                        uint8_t alpha) {
    const ptrdiff_t j = convert_binary32_steps<WidestWay<terms_by_bytes>, widest>(rows, chroma, 0, columns, alpha);
    if (j < columns) [[unlikely]]
        convert_binary32_rest(rows, chroma, j, columns, alpha);
}

ZIV_INLINE void convert_binary32_blocks(HalfBlockOrder, RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t columns,
                                        uint8_t alpha) {
    store_half_blocks<4>(rows, columns, [=](uint8_t* p, int luma, ptrdiff_t j) ZIV_INLINE_BODY {
        const float y = static_cast<float>(luma), u = static_cast<float>(chroma.u(j & ~1)),
                    v = static_cast<float>(chroma.v(j & ~1));
        const float r = y + v * red_of_v, g = y + (v * green_of_v + u * green_of_u), b = y + u * blue_of_u;
        store_clamped<Rgb::bgra>(p, {static_cast<int>(r), static_cast<int>(g), static_cast<int>(b)}, alpha);
    });
}

// The tail sums green in another order: trunc((Y + -0.714 v) + -0.344 u).
[[gnu::noinline]] static void convert_binary32_tail(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t first,
                                                    ptrdiff_t width, uint8_t alpha) {
    for (ptrdiff_t j = first; j <= width - 2; j += 2) {
        const float u = static_cast<float>(chroma.u(j)), v = static_cast<float>(chroma.v(j));
        const float red = v * red_of_v, green_v = v * green_of_v, green_u = u * green_of_u, blue = u * blue_of_u;
        const Luma2x2 quad = load_luma_2x2(rows, j);
        uint8_t* const pixel[4] = {rows.dst0 + 4 * j, rows.dst0 + 4 * (j + 1), rows.dst1 + 4 * j, rows.dst1 + 4 * (j + 1)};
        for (int p = 0; p < 4; p++) {
            const float y = static_cast<float>(quad.luma[p]);
            const float r = y + red, g = (y + green_v) + green_u, b = y + blue;
            store_clamped<Rgb::bgra>(pixel[p], {static_cast<int>(r), static_cast<int>(g), static_cast<int>(b)}, alpha);
        }
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
