// SPDX-License-Identifier: MIT
// The operations over 32 columns of 4-byte RGB by dot products: pixels stay as they lie in memory, four in a vector, and one
// instruction weighs the bytes of each.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

template <>
struct Pixels<32, 4> {
    uint8x16_t quads[8];
};

// By a load of its own for each vector, at a constant offset: compilers would pair the loads, which in-order cores take longer
// for, or keep an address for each.
template <>
ZIV_INLINE Pixels<32, 4> load_pixels<32, 4>(const uint8_t* p) {
    uint8x16_t q0, q1, q2, q3, q4, q5, q6, q7;
    asm("ldr %q0, [%8]\n\t"
        "ldr %q1, [%8, #16]\n\t"
        "ldr %q2, [%8, #32]\n\t"
        "ldr %q3, [%8, #48]\n\t"
        "ldr %q4, [%8, #64]\n\t"
        "ldr %q5, [%8, #80]\n\t"
        "ldr %q6, [%8, #96]\n\t"
        "ldr %q7, [%8, #112]"
        : "=&w"(q0), "=&w"(q1), "=&w"(q2), "=&w"(q3), "=&w"(q4), "=&w"(q5), "=&w"(q6), "=&w"(q7)
        : "r"(p), "m"(*reinterpret_cast<const uint8_t(*)[128]>(p)));
    return {{q0, q1, q2, q3, q4, q5, q6, q7}};
}

ZIV_INLINE uint8x16_t quad_weights(int w0, int w1, int w2) {
    return vreinterpretq_u8_u32(vdupq_n_u32(static_cast<uint32_t>(w0 | w1 << 8 | w2 << 16)));
}

// Of the sums of eight pixels, which fit 16 bits.
ZIV_INLINE uint16x8_t low_halves(uint8x16_t a, uint8x16_t b) {
    return vuzp1q_u16(vreinterpretq_u16_u8(a), vreinterpretq_u16_u8(b));
}

// With the weights taken four times the luma is byte 1 of a sum below 2^16: these are the sums of 16 columns each. The order is
// that of in-order cores, where a dot product is ready four cycles after it began. What one adds to at first is zero: the
// vector units, which are the busy ones, need not make it. An integer register gives one, the memory another.
alignas(16) inline constexpr uint8_t zero_bytes[16] = {};
#define ZIV_ZEROS          \
    "fmov %d0, xzr\n\t"    \
    "ldr %q1, %[zero]\n\t" \
    "fmov %d2, xzr\n\t"    \
    "ldr %q3, %[zero]\n\t" \
    "fmov %d4, xzr\n\t"    \
    "ldr %q5, %[zero]\n\t" \
    "fmov %d6, xzr\n\t"    \
    "ldr %q7, %[zero]\n\t"
#define ZIV_DOT(sum, quad, weights) "udot %" #sum ".4s, %[" #quad "].16b, %[" #weights "].16b\n\t"
template <Weights w, int shared>
ZIV_INLINE Luma<32> luma_q6(const Pixels<32, 4>& pixels) {
    constexpr Weights of_first_8 = shared == 0 ? Weights{w.c0, 0, 0} : shared == 2 ? Weights{0, 0, w.c2} : Weights{0, 0, 0};
    const uint8x16_t all = quad_weights(4 * w.c0, 4 * w.c1, 4 * w.c2);
    const uint8x16_t* const q = pixels.quads;
    uint8x16_t s0, s1, s2, s3, s4, s5, s6, s7;
    if constexpr (shared == own_bytes) {
        asm(ZIV_ZEROS ZIV_DOT(0, q0, all) ZIV_DOT(1, q1, all) ZIV_DOT(2, q2, all) ZIV_DOT(3, q3, all) ZIV_DOT(4, q4, all)
                ZIV_DOT(5, q5, all) ZIV_DOT(6, q6, all) ZIV_DOT(7, q7, all)
            : "=&w"(s0), "=&w"(s1), "=&w"(s2), "=&w"(s3), "=&w"(s4), "=&w"(s5), "=&w"(s6), "=&w"(s7)
            : [q0] "w"(q[0]), [q1] "w"(q[1]), [q2] "w"(q[2]), [q3] "w"(q[3]), [q4] "w"(q[4]), [q5] "w"(q[5]), [q6] "w"(q[6]),
              [q7] "w"(q[7]), [all] "w"(all), [zero] "m"(zero_bytes));
    } else {
        const uint8x16_t own = quad_weights(4 * (w.c0 - of_first_8.c0), 4 * w.c1, 4 * (w.c2 - of_first_8.c2));
        const uint8x16_t first = quad_weights(4 * of_first_8.c0, 0, 4 * of_first_8.c2);
        asm(ZIV_ZEROS ZIV_DOT(0, q0, all) ZIV_DOT(1, q1, all) ZIV_DOT(4, q4, all) ZIV_DOT(5, q5, all) ZIV_DOT(2, q2, own)
                ZIV_DOT(3, q3, own) ZIV_DOT(6, q6, own) ZIV_DOT(7, q7, own) ZIV_DOT(2, q0, first) ZIV_DOT(3, q1, first)
                    ZIV_DOT(6, q4, first) ZIV_DOT(7, q5, first)
            : "=&w"(s0), "=&w"(s1), "=&w"(s2), "=&w"(s3), "=&w"(s4), "=&w"(s5), "=&w"(s6), "=&w"(s7)
            : [q0] "w"(q[0]), [q1] "w"(q[1]), [q2] "w"(q[2]), [q3] "w"(q[3]), [q4] "w"(q[4]), [q5] "w"(q[5]), [q6] "w"(q[6]),
              [q7] "w"(q[7]), [all] "w"(all), [own] "w"(own), [first] "w"(first), [zero] "m"(zero_bytes));
    }
    const auto upper_bytes = [](uint16x8_t lo, uint16x8_t hi)
                                 ZIV_INLINE_BODY { return vuzp2q_u8(vreinterpretq_u8_u16(lo), vreinterpretq_u8_u16(hi)); };
    return {{upper_bytes(low_halves(s0, s1), low_halves(s2, s3)), upper_bytes(low_halves(s4, s5), low_halves(s6, s7))}};
}
#undef ZIV_ZEROS
#undef ZIV_DOT

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
