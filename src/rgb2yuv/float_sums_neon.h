// SPDX-License-Identifier: MIT
// The binary32 sums of RGB by integers on Advanced SIMD: weights at scale 2^16, taken apart into two bytes, so that a sum is
// made of products of bytes in 16-bit lanes: 256 * high + low.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

inline constexpr bool has_approximate_rows = true;

template <int N>
ZIV_INLINE U8<16> narrow_lanes(S32<16> a, S32<16> b, S32<16> c, S32<16> d) {
    const uint16x8_t ab = vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b), cd = vuzp1q_u16((uint16x8_t)c, (uint16x8_t)d);
    return (U8<16>)vuzp1q_u8(vreinterpretq_u8_u16(ab), vreinterpretq_u8_u16(cd));
}
template <int N>
ZIV_INLINE U8<16> narrow_even_lanes(S32<16> a, S32<16> b) {
    return (U8<16>)vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b);
}
ZIV_INLINE U8<16> even_pixels(U8<16> a, U8<16> b) { return (U8<16>)vuzp1q_u32((uint32x4_t)a, (uint32x4_t)b); }

// Hidden from the compiler, which would keep a register for each half.
template <int value>
ZIV_INLINE uint8x16_t byte_constant() {
    uint8x16_t v = vdupq_n_u8(value);
    asm("" : "+w"(v));
    return v;
}
template <int value>
ZIV_INLINE uint8x8_t half_constant() {
    return vget_low_u8(byte_constant<value>());
}

// Luma of 8 fractional bits, which are all 0 where 0.299 R + 0.587 G + 0.114 B may be a whole number or lie just below one: the
// sum by these weights is at most 94 / 2^16 away from it, and rounding adds 128 / 2^16.
struct ApproximateLuma {
    uint8x16_t whole, fraction;
};
inline constexpr int wr = 19595, wg = 38470, wb = 7471;
static_assert((wr & 255) + (wg & 255) + (wb & 255) <= 257);
// From the sums by the lower bytes of the weights and by the upper ones, of eight pixels each.
ZIV_INLINE ApproximateLuma approximate_luma(uint16x8_t low0, uint16x8_t low1, uint16x8_t high0, uint16x8_t high1) {
    const uint8x16_t sum0 = vreinterpretq_u8_u16(vrsraq_n_u16(high0, low0, 8));
    const uint8x16_t sum1 = vreinterpretq_u8_u16(vrsraq_n_u16(high1, low1, 8));
    return {vuzp2q_u8(sum0, sum1), vuzp1q_u8(sum0, sum1)};
}
ZIV_INLINE ApproximateLuma approximate_luma(uint8x16_t r, uint8x16_t g, uint8x16_t b) {
    const uint8x16_t hr = byte_constant<(wr >> 8)>(), hg = byte_constant<(wg >> 8)>(), hb = byte_constant<(wb >> 8)>();
    const uint8x16_t lr = byte_constant<(wr & 255)>(), lg = byte_constant<(wg & 255)>(), lb = byte_constant<(wb & 255)>();
    const auto half = [](uint8x16_t v) ZIV_INLINE_BODY { return vget_low_u8(v); };
    const uint16x8_t low0 = vmlal_u8(vmlal_u8(vmull_u8(half(g), half(lg)), half(r), half(lr)), half(b), half(lb));
    const uint16x8_t low1 = vmlal_high_u8(vmlal_high_u8(vmull_high_u8(g, lg), r, lr), b, lb);
    const uint16x8_t high0 = vmlal_u8(vmlal_u8(vmull_u8(half(g), half(hg)), half(r), half(hr)), half(b), half(hb));
    const uint16x8_t high1 = vmlal_high_u8(vmlal_high_u8(vmull_high_u8(g, hg), r, hr), b, hb);
    return approximate_luma(low0, low1, high0, high1);
}
// The same of 16 pixels that no chroma is taken from.
template <int red>
ZIV_INLINE ApproximateLuma approximate_luma(const uint8_t* src);
#if !ZIV_HAS_DOT_PRODUCT
template <int red>
ZIV_INLINE ApproximateLuma approximate_luma(const uint8_t* src) {
    const uint8x16x4_t pixels = vld4q_u8(src);
    return approximate_luma(pixels.val[red], pixels.val[1], pixels.val[2 - red]);
}
#endif

// A half of `plus` less two products, in 16 bits: the upper byte is the whole part floored, `fraction` holds 16 fractional
// bits.
struct ApproximateDifference {
    uint8x16_t sum;
    uint16x8_t fraction;
};
template <int weight_a, int weight_b, int offset>
ZIV_INLINE ApproximateDifference approximate_difference(uint8x8_t plus, uint8x8_t a, uint8x8_t b) {
    constexpr int high_a = -(-weight_a >> 8), high_b = -(-weight_b >> 8);
    constexpr int low_a = 256 * high_a - weight_a, low_b = 256 * high_b - weight_b;
    static_assert(low_a + low_b <= 256);
    uint16x8_t low =
        offset == 0 ? vmull_u8(a, half_constant<low_a>()) : vmlal_u8(vdupq_n_u16(offset), a, half_constant<low_a>());
    low = vmlal_u8(low, b, half_constant<low_b>());
    uint16x8_t high = vmlsl_u8(vshll_n_u8(plus, 7), a, half_constant<high_a>());
    high = vsraq_n_u16(vmlsl_u8(high, b, half_constant<high_b>()), low, 8);
    return {vreinterpretq_u8_u16(high), vsliq_n_u16(low, high, 8)};
}

ZIV_INLINE bool any_byte_0(uint8x16_t v) {
    const uint64_t least = vgetq_lane_u64(vreinterpretq_u64_u8(vpminq_u8(v, v)), 0);
    constexpr uint64_t ones = 0x0101010101010101;
    return (least - ones) & ~least & ones << 7;
}

// Stores the luma of 16 pixels and, on request, V and U of the even columns as binary32 gives them, but where a byte of what it
// returns is 0: a sum there is too near to a whole number to be told.
struct Told {
    uint8x16_t luma, chroma;
};
template <int red, bool has_chroma>
ZIV_INLINE Told store_approximated(uint8_t* luma, uint8_t* chroma, const uint8_t* src) {
    if constexpr (!has_chroma) {
        const ApproximateLuma y = approximate_luma<red>(src);
        vst1q_u8(luma, y.whole);
        return {y.fraction, y.fraction};
    }
    const uint8x16x4_t pixels = vld4q_u8(src);
    const uint8x16_t r = pixels.val[red], g = pixels.val[1], b = pixels.val[2 - red];
    const ApproximateLuma y = approximate_luma(r, g, b);
    vst1q_u8(luma, y.whole);
    const auto even = [](uint8x16_t v) ZIV_INLINE_BODY { return vmovn_u16(vreinterpretq_u16_u8(v)); };
    const uint8x8_t even_r = even(r), even_g = even(g), even_b = even(b);
    // -0.1678 R - 0.3313 G + 0.5 B and 0.5 R - 0.4187 G - 0.0813 B. Sums that binary32 may round to the other side of a whole
    // number have a fraction of -10 to 12 and of 0.
    constexpr int most = 22;
    const ApproximateDifference u = approximate_difference<10997, 21712, 10>(even_b, even_r, even_g);
    const ApproximateDifference v = approximate_difference<27440, 5328, 0>(even_r, even_g, even_b);
    // Floored to truncated towards 0, as none is whole.
    const uint8x16_t pairs = vtrn2q_u8(v.sum, u.sum);
    vst1q_u8(chroma, veorq_u8(vsraq_n_u8(pairs, pairs, 7), vdupq_n_u8(128)));
    return {y.fraction, vreinterpretq_u8_u16(vcgtq_u16(vminq_u16(u.fraction, v.fraction), vdupq_n_u16(most)))};
}

// Converts the columns of a row, 16 or more of them, and calls redo(column, has luma, has chroma) for the 16 columns from each
// that are left to binary32.
template <int red, bool has_chroma, class Redo>
ZIV_INLINE void store_approximated_row(uint8_t* luma, uint8_t* chroma, const uint8_t* src, ptrdiff_t columns, Redo redo) {
    constexpr int group = 2;
    const auto step = [=](ptrdiff_t j)
                          ZIV_INLINE_BODY { return store_approximated<red, has_chroma>(luma + j, chroma + j, src + 4 * j); };
    const auto check = [=](const Told& told, ptrdiff_t j) ZIV_INLINE_BODY {
        const bool luma_left = any_byte_0(told.luma), chroma_left = has_chroma && any_byte_0(told.chroma);
        if (luma_left || chroma_left) redo(j, luma_left, chroma_left);
    };
    ptrdiff_t j = 0;
    for (; j + 16 * group <= columns; j += 16 * group) {
        Told told[group];
        for (int k = 0; k < group; k++) told[k] = step(j + 16 * k);
        uint8x16_t all = vminq_u8(told[0].luma, told[0].chroma);
        for (int k = 1; k < group; k++) all = vminq_u8(all, vminq_u8(told[k].luma, told[k].chroma));
        if (__builtin_expect(any_byte_0(all), 0))
            for (int k = 0; k < group; k++) check(told[k], j + 16 * k);
    }
    for (; j < columns; j += 16) {
        const ptrdiff_t at = j + 16 <= columns ? j : columns - 16;
        check(step(at), at);
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
