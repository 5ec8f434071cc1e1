// SPDX-License-Identifier: MIT
// The integers near the binary32 luma by dot products. With chroma, which wants the channels apart, they gain nothing.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

template <int red>
ZIV_INLINE ApproximateLuma approximate_luma(const uint8_t* src) {
    constexpr int w0 = red == 0 ? wr : wb, w2 = red == 0 ? wb : wr;
    const uint8x16_t lower = quad_weights(w0 & 255, wg & 255, w2 & 255);
    const uint8x16_t upper = quad_weights(w0 >> 8, wg >> 8, w2 >> 8);
    uint8x16_t low0, low1, low2, low3, high0, high1, high2, high3;
    uint8x16_t q0, q1, q2, q3;
    asm("ldr %q[q0], [%[src]]\n\t"
        "ldr %q[q1], [%[src], #16]\n\t"
        "ldr %q[q2], [%[src], #32]\n\t"
        "ldr %q[q3], [%[src], #48]\n\t"
        "fmov %d0, xzr\n\t"
        "ldr %q1, %[zero]\n\t"
        "fmov %d2, xzr\n\t"
        "ldr %q3, %[zero]\n\t"
        "fmov %d4, xzr\n\t"
        "ldr %q5, %[zero]\n\t"
        "fmov %d6, xzr\n\t"
        "ldr %q7, %[zero]\n\t"
        "udot %0.4s, %[q0].16b, %[lower].16b\n\t"
        "udot %1.4s, %[q1].16b, %[lower].16b\n\t"
        "udot %2.4s, %[q2].16b, %[lower].16b\n\t"
        "udot %3.4s, %[q3].16b, %[lower].16b\n\t"
        "udot %4.4s, %[q0].16b, %[upper].16b\n\t"
        "udot %5.4s, %[q1].16b, %[upper].16b\n\t"
        "udot %6.4s, %[q2].16b, %[upper].16b\n\t"
        "udot %7.4s, %[q3].16b, %[upper].16b"
        : "=&w"(low0), "=&w"(low1), "=&w"(low2), "=&w"(low3), "=&w"(high0), "=&w"(high1), "=&w"(high2),
          "=&w"(high3), [q0] "=&w"(q0), [q1] "=&w"(q1), [q2] "=&w"(q2), [q3] "=&w"(q3)
        : [src] "r"(src), [lower] "w"(lower), [upper] "w"(upper), [zero] "m"(zero_bytes),
          "m"(*reinterpret_cast<const uint8_t(*)[64]>(src)));
    return approximate_luma(low_halves(low0, low1), low_halves(low2, low3), low_halves(high0, high1), low_halves(high2, high3));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
