// SPDX-License-Identifier: MIT
// From chroma pairs to the terms that luma takes up: d of R, G and B with R = clamp(Y + d_r) and so on. Every integer set is
// luma plus a function of the pair alone, as the scaled luma is a whole multiple of the final shift. u and v are centred at 0.
#pragma once

#include "yuv2rgb/packed_words.h"
#include "yuv2rgb/pixel_terms.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// Whether the target weighs and adds the two bytes of a pair at once.
inline constexpr bool pairs_at_once = ZIV_HAS_SSE4_2;

enum class PairOrder { uv, vu };

// The chroma of N pixels in the order that pixel_terms takes: in lanes, as it is and times 256, and as pairs of signed bytes. A
// set uses what suits its scale.
template <int N, PairOrder order>
struct Chroma {
    S16<N> u, v, u256, v256;
    U8<N> pairs;

    // u * weight_u + v * weight_v, by weights as weigh_signed_bytes takes them.
    ZIV_INLINE S16<N> weigh(int weight_u, int weight_v) const {
        return order == PairOrder::uv ? weigh_signed_bytes<N>(pairs, weight_u, weight_v)
                                      : weigh_signed_bytes<N>(pairs, weight_v, weight_u);
    }
};

template <int N>
struct ChromaTerms {
    S16<N> r, g, b;
};

// Scale 2^15, rounded once: (45941 v + 2^14) >> 15, (-11277 u - 23401 v + 2^14) >> 15, (58065 u + 2^14) >> 15.
// 45941 and 58065 pass 16 bits: 32768 is split off as a whole v or u.
struct SetQ15 {
    static int r(int, int v) { return (45941 * v + 16384) >> 15; }
    static int g(int u, int v) { return (-11277 * u - 23401 * v + 16384) >> 15; }
    static int b(int u, int) { return (58065 * u + 16384) >> 15; }
    template <int N, PairOrder order>
    ZIV_INLINE static ChromaTerms<N> terms(const Chroma<N, order>& c) {
        if constexpr (pairs_at_once) {
            // 2 * 22971 and 2 * 29033 round to the same for all bytes. Green is (64 - h - l / 256) >> 7, where the weights of h
            // and l are the upper and the lower bytes of its own: l / 256 rounded up is less its negative, rounded down.
            const S16<N> high = c.weigh(44, 91), low = c.weigh(13, 105);
            const S16<N> sum = high - multiply_high<N>(low, constant<N>(-256));
            return {multiply_round_q15<N>(c.weigh(0, 2), 22971), multiply_round_q15<N>(sum, -256),
                    multiply_round_q15<N>(c.weigh(2, 0), 29033)};
        }
        const S16<N> r = c.v + multiply_round_q15<N>(c.v, 45941 - 32768);
        const S16<N> b = c.u + multiply_round_q15<N>(c.u, 58065 - 32768);
        return {r, weigh_pair_q15<N>(c.u, c.v, -11277, -23401), b};
    }
};

// Scale 32, each product floored on its own: (45 v) >> 5, -(((11 u) >> 5) + ((23 v) >> 5)), (57 u) >> 5.
// green_shift_u is 5, or 6 where the weight of u in green is halved.
template <int green_shift_u>
struct SetT5Shifted {
    static int r(int, int v) { return (45 * v) >> 5; }
    static int g(int u, int v) { return -(((11 * u) >> green_shift_u) + ((23 * v) >> 5)); }
    static int b(int u, int) { return (57 * u) >> 5; }
    template <int N, PairOrder order>
    ZIV_INLINE static ChromaTerms<N> terms(const Chroma<N, order>& c) {
        // (256 x * 4 w) >> 15 = (w x) >> 5
        const S16<N> green = multiply_q15<N>(c.u256, 11 * (128 >> green_shift_u)) + multiply_q15<N>(c.v256, 23 * 4);
        return {multiply_q15<N>(c.v256, 45 * 4), -green, multiply_q15<N>(c.u256, 57 * 4)};
    }
    // The channels of N / 2 pixels.
    template <int N>
    ZIV_INLINE static PackedSums<N> packed_sums(const PackedWords<N>& p) {
        const S16<N> outer = multiply_high<N>(p.chroma, constants<N>(57 * 8, 45 * 8));
        const S16<N> green = multiply_high<N>(p.chroma, constants<N>(11 * (256 >> green_shift_u), 23 * 8));
        return {p.luma + outer, p.swapped + outer, p.luma - green - swap_lanes<N>(green)};
    }
};
using SetT5 = SetT5Shifted<5>;
using SetT5HalfGreen = SetT5Shifted<6>;

// Scale 32, summed and rounded once: (45 v + 16) >> 5, (-11 u - 23 v + 16) >> 5, (57 u + 16) >> 5.
struct SetR5 {
    static int r(int, int v) { return (45 * v + 16) >> 5; }
    static int g(int u, int v) { return (-11 * u - 23 * v + 16) >> 5; }
    static int b(int u, int) { return (57 * u + 16) >> 5; }
    template <int N, PairOrder order>
    ZIV_INLINE static ChromaTerms<N> terms(const Chroma<N, order>& c) {
        const S16<N> r = multiply_round_q15<N>(c.v256, 45 * 4);
        const S16<N> b = multiply_round_q15<N>(c.u256, 57 * 4);
        // (16 - x) >> 5 is the rounding high multiply by -2^10.
        if constexpr (pairs_at_once) return {r, multiply_round_q15<N>(c.weigh(11, 23), -1024), b};
        return {r, (constant<N>(16) - multiply<N>(c.u, 11) - multiply<N>(c.v, 23)) >> 5, b};
    }
};

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
