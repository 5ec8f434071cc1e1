// SPDX-License-Identifier: MIT
// Reciprocals and what they multiply, in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::hsl {

// low + 256 * high, and weight * (a - b) for weights up to 127, both lane by lane in the order of widen().
template <int N>
ZIV_INLINE Wide<N> widen_joined(U8<N> low, U8<N> high) {
    const Wide<N> l = widen<N>(low), h = widen<N>(high);
    return {l.lo | (h.lo << 8), l.hi | (h.hi << 8)};
}
template <int N>
ZIV_INLINE Wide<N> widen_difference(U8<N> a, U8<N> b, uint8_t weight) {
    const Wide<N> x = widen<N>(a), y = widen<N>(b);
    return {(x.lo - y.lo) * weight, (x.hi - y.hi) * weight};
}

// 65536 / i truncated, 65535 for 1; for 0 anything. No quotient that is not whole comes nearer than 1 / 255 to a whole number,
// which is more than binary32 rounds by, in whatever direction: its quotient truncates to the exact one. That of 1 wraps to 0
// in 16 bits.
template <int N>
ZIV_INLINE Wide<N> reciprocals(U8<N> divisors) {
    static_assert(N == 16);
    const Wide<N> v = widen<N>(lane_max(divisors, U8<N>{} + uint8_t{1}));
    const auto reciprocals_of_words = [](U32<N> words) ZIV_INLINE_BODY {
        return (U16<N>)__builtin_convertvector(65536.0f / __builtin_convertvector((S32<N>)words, F32<N>), S32<N>);
    };
    const auto reciprocals_of_lanes = [&](U16<N> lanes) ZIV_INLINE_BODY {
        const U16<N> lo = reciprocals_of_words((U32<N>)__builtin_shufflevector(lanes, U16<N>{}, 0, 8, 1, 9, 2, 10, 3, 11));
        const U16<N> hi = reciprocals_of_words((U32<N>)__builtin_shufflevector(lanes, U16<N>{}, 4, 12, 5, 13, 6, 14, 7, 15));
        return __builtin_shufflevector(lo, hi, 0, 2, 4, 6, 8, 10, 12, 14) + (U16<N>)(lanes == 1);
    };
    return {reciprocals_of_lanes(v.lo), reciprocals_of_lanes(v.hi)};
}

template <int N>
struct TwoReciprocals {
    Wide<N> first, second;
};
template <int N>
ZIV_INLINE TwoReciprocals<N> two_reciprocals(U8<N> first, U8<N> second) {
    return {reciprocals<N>(first), reciprocals<N>(second)};
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::hsl
