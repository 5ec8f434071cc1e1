// The operations over 32 columns of 4-byte RGB by dot products: pixels stay as they lie in memory, four in a vector, and one
// instruction weighs the bytes of each.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

template <>
struct Pixels<32, 4> {
    uint8x16_t quads[8];
};

// By a load of its own for each vector, which the compiler would pair: in-order cores take longer for pairs.
ZIV_INLINE uint8x16_t load_quad(const uint8_t* p) {
    uint8x16_t quad;
    asm("ldr %q0, %1" : "=w"(quad) : "m"(*reinterpret_cast<const uint8_t(*)[16]>(p)));
    return quad;
}
template <>
ZIV_INLINE Pixels<32, 4> load_pixels<32, 4>(const uint8_t* p) {
    return {{load_quad(p), load_quad(p + 16), load_quad(p + 32), load_quad(p + 48), load_quad(p + 64), load_quad(p + 80),
             load_quad(p + 96), load_quad(p + 112)}};
}

// What a dot product adds to. The vector units, which are the busy ones, need not make the zeros: an integer register gives
// one, the memory another. The pixels keep the compiler from making one zero and copying it.
alignas(16) inline constexpr uint8_t zero_bytes[16] = {};
ZIV_INLINE uint32x4_t moved_zero(uint8x16_t pixels) {
    uint32x4_t zero;
    asm("fmov %d0, xzr" : "=w"(zero) : "w"(pixels));
    return zero;
}
ZIV_INLINE uint32x4_t loaded_zero(uint8x16_t pixels) {
    uint32x4_t zero;
    asm("ldr %q0, %1" : "=w"(zero) : "m"(zero_bytes), "w"(pixels));
    return zero;
}

ZIV_INLINE uint8x16_t quad_weights(int w0, int w1, int w2) {
    return vreinterpretq_u8_u32(vdupq_n_u32(static_cast<uint32_t>(w0 | w1 << 8 | w2 << 16)));
}

// With the weights taken four times the luma is byte 1 of a sum below 2^16.
template <Weights w>
ZIV_INLINE uint32x4_t add_luma_q8(uint32x4_t sum, uint8x16_t quad) {
    return vdotq_u32(sum, quad, quad_weights(4 * w.c0, 4 * w.c1, 4 * w.c2));
}
template <Weights w, int shared>
ZIV_INLINE uint8x16_t luma_q6_of_16(uint8x16_t q0, uint8x16_t q1, uint8x16_t q2, uint8x16_t q3) {
    constexpr Weights of_first_8 = shared == 0 ? Weights{w.c0, 0, 0} : shared == 2 ? Weights{0, 0, w.c2} : Weights{0, 0, 0};
    constexpr Weights own{w.c0 - of_first_8.c0, w.c1, w.c2 - of_first_8.c2};
    const uint32x4_t sum0 = add_luma_q8<w>(moved_zero(q0), q0), sum1 = add_luma_q8<w>(loaded_zero(q1), q1);
    uint32x4_t sum2 = add_luma_q8<own>(moved_zero(q2), q2), sum3 = add_luma_q8<own>(loaded_zero(q3), q3);
    if constexpr (shared != own_bytes) sum2 = add_luma_q8<of_first_8>(sum2, q0), sum3 = add_luma_q8<of_first_8>(sum3, q1);
    const uint16x8_t lo = vuzp1q_u16(vreinterpretq_u16_u32(sum0), vreinterpretq_u16_u32(sum1));
    const uint16x8_t hi = vuzp1q_u16(vreinterpretq_u16_u32(sum2), vreinterpretq_u16_u32(sum3));
    return vuzp2q_u8(vreinterpretq_u8_u16(lo), vreinterpretq_u8_u16(hi));
}
template <Weights w, int shared>
ZIV_INLINE Luma<32> luma_q6(const Pixels<32, 4>& pixels) {
    const uint8x16_t* const q = pixels.quads;
    return {{luma_q6_of_16<w, shared>(q[0], q[1], q[2], q[3]), luma_q6_of_16<w, shared>(q[4], q[5], q[6], q[7])}};
}

// Bytes 0 and 2 of the even columns.
ZIV_INLINE uint8x16_t even_columns(const Pixels<32, 4>& pixels, int channel) {
    uint8x16_t outer[2];
    for (int k = 0; k < 2; k++) {
        const uint8x16_t* const q = pixels.quads + 4 * k;
        const uint32x4_t lo = vuzp1q_u32(vreinterpretq_u32_u8(q[0]), vreinterpretq_u32_u8(q[1]));
        const uint32x4_t hi = vuzp1q_u32(vreinterpretq_u32_u8(q[2]), vreinterpretq_u32_u8(q[3]));
        outer[k] = vuzp1q_u8(vreinterpretq_u8_u32(lo), vreinterpretq_u8_u32(hi));
    }
    return channel == 0 ? vuzp1q_u8(outer[0], outer[1]) : vuzp2q_u8(outer[0], outer[1]);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
