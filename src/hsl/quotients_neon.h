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

// The low bytes of 65536 / i for i from 1 to 256 (65535 for 1), and the high bytes for i up to 64: above, these are 3 up to 85,
// 2 up to 128, then 1.
ZIV_INLINE uint8x16x4_t reciprocal_low_bytes(int quarter) {
    const uint8_t* const bytes = byte_table<256>([](int n) { return n == 0 ? 0xFF : 65536 / (n + 1) & 0xFF; });
    return vld1q_u8_x4(bytes + 64 * quarter);
}
ZIV_INLINE uint8x16x4_t reciprocal_high_bytes() {
    return vld1q_u8_x4(byte_table<64>([](int n) { return n == 0 ? 0xFF : 65536 / (n + 1) >> 8; }));
}
template <>
ZIV_INLINE Wide<16> reciprocals<16>(U8<16> divisors) {
    const uint8x16_t i = (uint8x16_t)divisors, quarter = vdupq_n_u8(64);
    const uint8x16_t at0 = vsubq_u8(i, vdupq_n_u8(1)), at1 = vsubq_u8(at0, quarter), at2 = vsubq_u8(at1, quarter);
    uint8x16_t low = vqtbl4q_u8(reciprocal_low_bytes(0), at0);
    low = vqtbx4q_u8(low, reciprocal_low_bytes(1), at1);
    low = vqtbx4q_u8(low, reciprocal_low_bytes(2), at2);
    low = vqtbx4q_u8(low, reciprocal_low_bytes(3), vsubq_u8(at2, quarter));
    uint8x16_t high = vsubq_u8(vdupq_n_u8(1), vcgtq_u8(vdupq_n_u8(129), i));
    high = vsubq_u8(high, vcgtq_u8(vdupq_n_u8(86), i));
    high = vqtbx4q_u8(high, reciprocal_high_bytes(), at0);
    return widen_joined<16>((U8<16>)low, (U8<16>)high);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::hsl
