// SPDX-License-Identifier: MIT
// Reciprocals and what they multiply, on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::hsl {

template <>
ZIV_INLINE Wide<16> widen_joined<16>(U8<16> low, U8<16> high) {
    return {(U16<16>)vzip1q_u8((uint8x16_t)low, (uint8x16_t)high), (U16<16>)vzip2q_u8((uint8x16_t)low, (uint8x16_t)high)};
}
template <>
ZIV_INLINE Wide<16> widen_difference<16>(U8<16> a, U8<16> b, uint8_t weight) {
    const uint8x16_t a8 = (uint8x16_t)a, b8 = (uint8x16_t)b, w = vdupq_n_u8(weight);
    return {(U16<16>)vmlsl_u8(vmull_u8(vget_low_u8(a8), vget_low_u8(w)), vget_low_u8(b8), vget_low_u8(w)),
            (U16<16>)vmlsl_high_u8(vmull_high_u8(a8, w), b8, w)};
}

// The low bytes of 65536 / i for i from 1 to 256 (65535 for 1). The high bytes are 3 up to 85, 2 up to 128, then 1, and up to
// 64 more than that by what the fifth table says.
ZIV_INLINE uint8x16x4_t reciprocal_low_bytes(int quarter) {
    const uint8_t* const bytes = byte_table<256>([](int n) { return n == 0 ? 0xFF : 65536 / (n + 1) & 0xFF; });
    return vld1q_u8_x4(bytes + 64 * quarter);
}
ZIV_INLINE uint8x16x4_t reciprocal_high_bytes_above_3() {
    return vld1q_u8_x4(byte_table<64>([](int n) { return (n == 0 ? 0xFF : 65536 / (n + 1) >> 8) - 3; }));
}
// Both by one load of each table. A look-up gives 0 outside of its 64.
template <>
ZIV_INLINE TwoReciprocals<16> two_reciprocals<16>(U8<16> first, U8<16> second) {
    const uint8x16_t a = vsubq_u8((uint8x16_t)first, vdupq_n_u8(1)), b = vsubq_u8((uint8x16_t)second, vdupq_n_u8(1));
    const auto high_bytes = [](uint8x16_t at) ZIV_INLINE_BODY {
        return vsubq_u8(vsubq_u8(vdupq_n_u8(1), vcltq_u8(at, vdupq_n_u8(128))), vcltq_u8(at, vdupq_n_u8(85)));
    };
    uint8x16x4_t table = reciprocal_high_bytes_above_3();
    uint8x16_t high_a = vaddq_u8(high_bytes(a), vqtbl4q_u8(table, a));
    uint8x16_t high_b = vaddq_u8(high_bytes(b), vqtbl4q_u8(table, b));
    asm("" : "+w"(high_a), "+w"(high_b));  // or else clang takes one after the other, and every table twice
    table = reciprocal_low_bytes(0);
    uint8x16_t low_a = vqtbl4q_u8(table, a), low_b = vqtbl4q_u8(table, b);
    for (int quarter = 1; quarter < 4; quarter++) {
        table = reciprocal_low_bytes(quarter);
        const uint8x16_t start = vdupq_n_u8(static_cast<uint8_t>(64 * quarter));
        low_a = vorrq_u8(low_a, vqtbl4q_u8(table, vsubq_u8(a, start)));
        low_b = vorrq_u8(low_b, vqtbl4q_u8(table, vsubq_u8(b, start)));
        asm("" : "+w"(low_a), "+w"(low_b));
    }
    return {widen_joined<16>((U8<16>)low_a, (U8<16>)high_a), widen_joined<16>((U8<16>)low_b, (U8<16>)high_b)};
}
template <>
ZIV_INLINE Wide<16> reciprocals<16>(U8<16> divisors) {
    return two_reciprocals<16>(divisors, divisors).first;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::hsl
