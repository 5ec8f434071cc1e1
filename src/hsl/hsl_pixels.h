// SPDX-License-Identifier: MIT
// Pixels to hue, saturation and lightness, in a scalar and a block form that agree to the bit. Lightness is the rounded mean of
// the largest and the smallest channel. Hue has three thirds, based at 0 (red), 85 (green) and 170 (blue), 42 steps to either
// side; what would be below 0 is 0. Grey has the hue 170 and the saturation 0.
#pragma once

#include "hsl/quotients.h"

namespace zivcolor::ZIVCOLOR_TARGET::hsl {

// 65536 / i, truncated, and 65535 where that does not fit. The entry 0 is never read for a result.
struct ByteDivTab {
    uint16_t entries[256];
    constexpr ByteDivTab() : entries{65535, 65535} {
        for (int i = 2; i < 256; i++) entries[i] = static_cast<uint16_t>(65536 / i);
    }
    constexpr int32_t operator[](int i) const { return entries[i]; }
};
inline constexpr ByteDivTab g_ByteDivTab;

// One pixel, channels 0 to 255. Blue dominates only where it is above both others, red only above green; else green does.
ZIV_INLINE void BGRtoHSL(uint32_t B, uint32_t G, uint32_t R, uint8_t* HSL) {
    const int b = static_cast<int>(B), g = static_cast<int>(G), r = static_cast<int>(R);
    int max, min, delta, base;
    if (b > g && b > r) {
        max = b, min = g < r ? g : r, delta = g - r, base = 170;
    } else if (r > g) {
        max = r, min = b < g ? b : g, delta = b - g, base = 0;
    } else {
        max = g, min = b < r ? b : r, delta = r - b, base = 85;
    }
    const int sum = max + min, lightness = (sum + 1) >> 1;
    int hue = 170, saturation = 0;
    if (max != min) {
        const int d = max - min, divisor = lightness & 0x80 ? 510 - sum : sum;
        saturation = clamp_byte((g_ByteDivTab[divisor] * (255 * d + (divisor >> 1))) >> 16);
        hue = clamp_byte(base - ((g_ByteDivTab[d] * (42 * delta + (d >> 1))) >> 16));
    }
    HSL[0] = static_cast<uint8_t>(hue);
    HSL[1] = static_cast<uint8_t>(saturation);
    HSL[2] = static_cast<uint8_t>(lightness);
}

// floor(reciprocal * scaled / 65536) for a signed factor: as an unsigned number, a negative one makes the product too large by
// the whole reciprocal.
template <int N>
ZIV_INLINE U16<N> scaled_down(U16<N> reciprocal, U16<N> scaled) {
    return multiply_high_unsigned<N>(reciprocal, scaled) - (reciprocal & (U16<N>)((S16<N>)scaled >> 15));
}

// N pixels by value: the channels blue, green, red. Writes 3 N bytes.
template <int N>
ZIV_INLINE void BGRtoHSL_lanes(const Channels<N, 3>& mBGR888, uint8_t* hsl) {
    const U8<N> b = mBGR888.c[0], g = mBGR888.c[1], r = mBGR888.c[2];
    const U8<N> max = lane_max(lane_max(b, g), r), min = lane_min(lane_min(b, g), r);
    const U8<N> green = (U8<N>)(g == max), red = (U8<N>)(r == max) & ~green, grey = (U8<N>)(max == min);
    const U8<N> minuend = select(green, r, select(red, b, g)), subtrahend = select(green, b, select(red, g, r));
    // Grey has the base of blue. Its hue stays there, and its saturation at 0.
    const U8<N> base = 170 - (green & ~grey & uint8_t{85}) - (red & uint8_t{170});
    const U8<N> lightness = average_up(max, min), d = max - min;
    // The sum, or 510 less the sum from a lightness of 128 on: either way it fits a byte, so that the wrapped sum will do.
    const U8<N> light = (U8<N>)((S8<N>)lightness < 0), divisor = ((max + min) ^ light) + light;

    const Wide<N> d16 = widen<N>(d), base16 = widen<N>(base);
    const TwoReciprocals<N> per = two_reciprocals<N>(d, divisor);
    const Wide<N> delta = widen_difference<N>(minuend, subtrahend, 42), d_and_half = widen_joined<N>(divisor >> 1, d);
    const U8<N> hue = narrow<N>({base16.lo - scaled_down<N>(per.first.lo, delta.lo + (d16.lo >> 1)),
                                 base16.hi - scaled_down<N>(per.first.hi, delta.hi + (d16.hi >> 1))});
    // 255 d + (divisor >> 1), at most 65152.
    const U8<N> saturation = narrow<N>({multiply_high_unsigned<N>(per.second.lo, d_and_half.lo - d16.lo),
                                        multiply_high_unsigned<N>(per.second.hi, d_and_half.hi - d16.hi)});
    store3<N>(hsl, hue, saturation, lightness);
}

// N interleaved pixels. Reads and writes 3 N bytes, all of them read before the first is written.
template <int N>
ZIV_INLINE void BGRtoHSL_block(const uint8_t* bgr, uint8_t* hsl) {
    if constexpr (N == 8) {
        uint8_t pixels[48] = {};
        __builtin_memcpy(pixels, bgr, 24);
        BGRtoHSL_block<16>(pixels, pixels);
        __builtin_memcpy(hsl, pixels, 24);
    } else {
        BGRtoHSL_lanes<N>(load3<N>(bgr), hsl);
    }
}

// The columns of a row that go in steps of 8 and more; up to seven are left to the scalar form. The blocks run while their
// first column is below width - 8, an unsigned bound: widths from 3 to 7 wrap it, and the blocks run away. Where the last block
// of a width is whole it may as well be one of them, as the forms agree.
ZIV_INLINE ptrdiff_t hsl_blocked_columns(uint32_t width) { return static_cast<ptrdiff_t>((width - 8) / 8) * 8 + 8; }

// The blocked columns of a row in steps: body(Step<N>{}, column), N down to 8.
template <class Body>
ZIV_INLINE void for_hsl_steps(ptrdiff_t blocked, Body body) {
    for_steps(blocked / 16 * 16, body);
    if (blocked & 8) body(Step<8>{}, blocked - 8);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::hsl
