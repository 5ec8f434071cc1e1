// The set in binary32 arithmetic: R = trunc(Y + 1.402 v), G = trunc(Y + (-0.714 v + -0.344 u)), B = trunc(Y + 1.772 u), every
// product and every sum rounded to single precision by itself, then clamped.
//
// All three are luma plus the floor of the pair's exact term, but for green in 17 pairs. 1.402 v and 1.772 u are whole at zero
// only, and otherwise too far from a whole number for rounding to matter. The exact term of green is a whole number n in 132
// pairs; in 17 of them the binary32 sum of the two products falls short of n by a power of two, 2^-24 times a threshold of 8 to
// 128. There the sum with luma rounds up to Y + n above the threshold, and is Y + n - 1 after truncation up to it.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// The binary32 values nearest to the decimals.
inline constexpr float red_of_v = 1.402f, green_of_v = -0.714f, green_of_u = -0.344f, blue_of_u = 1.772f;

template <int N>
struct Binary32Terms {
    S16<N> r, g, b;
    U16<N> sound;  // zero in the lanes of the 17 pairs and of some more
};
template <int N>
ZIV_INLINE Binary32Terms<N> binary32_terms(S16<N> u, S16<N> v) {
    const S16<N> r = v + multiply_high<N>(v, S16<N>{} + int16_t{26345});      // 0.402 in 1/65536
    const S16<N> b = u + u + multiply_high<N>(u, S16<N>{} - int16_t{14942});  // -0.228
    // -0.714 v - 0.344 u is -v + (143 v - 172 u) / 500. A quarter of the numerator, floored, plus 81 times 125, is positive;
    // the rounding multiply by 2^21 / 125 adds less than 1/125 after the shift, enough for what the factor lacks.
    const S16<N> quarter = v * 36 - u * 43 + (S16<N>)((uint16_t{4 * 81 * 125} - (U16<N>)v) >> 2);
    const S16<N> quotient = multiply_round_high<N>(quarter, S16<N>{} + int16_t{16777}) >> 6;
    // A whole term: no remainder in either division. The 17 pairs have u above 0 and v up to 12.
    const S16<N> outside = (u - 1) | (12 - v);
    const S16<N> sound = (quarter - quotient * 125) | (v & 3) | (outside & static_cast<int16_t>(-32768));
    return {r, quotient - (v + 81), b, (U16<N>)sound};
}

// The threshold of each pair in the bytes of both of its pixels, 0 where green does not fall short. d is the floor of the exact
// green term.
template <int N>
ZIV_INLINE U8<N> green_thresholds(S16<N> u, S16<N> v, S16<N> d) {
    U16<N> thresholds{};
    for (int odd = 0; odd < 2; odd++) {
        const auto to_float = [odd](S16<N> x) ZIV_INLINE_BODY {  // the even or the odd 16-bit lanes
            return __builtin_convertvector((odd ? (S32<N>)x : (S32<N>)((U32<N>)x << 16)) >> 16, F32<N>);
        };
        const F32<N> g = to_float(v) * green_of_v + to_float(u) * green_of_u;
        const F32<N> lack = (to_float(d) - g) * 16777216.0f;
        const U32<N> lanes = (U32<N>)__builtin_convertvector(lack > 0.0f ? lack : F32<N>{}, S32<N>);
        thresholds |= (U16<N>)(odd ? lanes << 16 : lanes);
    }
    return double_arranged<N>(thresholds);
}

// Writes N pixels B, G, R, alpha with the thresholds applied.
template <int N>
ZIV_INLINE void store_with_thresholds(uint8_t* p, U8<N> luma, const Binary32Terms<N>& d, U8<N> thresholds, uint8_t alpha) {
    const auto plus = [luma](S16<N> term) ZIV_INLINE_BODY {
        const S16<N> up = term > 0 ? term : S16<N>{};
        return subtract_saturating(add_saturating(luma, double_arranged<N>((U16<N>)up)),
                                   double_arranged<N>((U16<N>)(up - term)));
    };
    const U8<N> g = plus(d.g);
    store4<N>(p, plus(d.b), subtract_saturating(g, (U8<N>)(g <= thresholds) & 1), plus(d.r), U8<N>{} + alpha);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
