// SPDX-License-Identifier: MIT
// Tiles of 16 bytes of 16 rows on Advanced SIMD, in an order and by addresses that every core takes well: in-order ones wait
// for what a late address is added to, and compilers pair the stores of two vectors that are yet to be zipped, which small
// cores take long for.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::geometry {

// Two rows of the upper half of the source, and two of the lower.
#define ZIV_LOAD(a, a_lower, b, b_lower)               \
    "ldr q" #a ", [%[upper]]\n\t"                      \
    "ldr q" #a_lower ", [%[lower]]\n\t"                \
    "ldr q" #b ", [%[upper], %[src_pitch]]\n\t"        \
    "ldr q" #b_lower ", [%[lower], %[src_pitch]]\n\t"  \
    "add %[upper], %[upper], %[src_pitch], lsl #1\n\t" \
    "add %[lower], %[lower], %[src_pitch], lsl #1\n\t"
#define ZIV_ZIP(lanes, low, high, a, b)                                  \
    "zip1 v" #low "." lanes ", v" #a "." lanes ", v" #b "." lanes "\n\t" \
    "zip2 v" #high "." lanes ", v" #a "." lanes ", v" #b "." lanes "\n\t"
#define ZIV_STORE(a, b, c, d)          \
    "st1 {v" #a ".16b}, [%[dst0]]\n\t" \
    "st1 {v" #b ".16b}, [%[dst1]]\n\t" \
    "st1 {v" #c ".16b}, [%[dst2]]\n\t" \
    "st1 {v" #d ".16b}, [%[dst3]]\n\t"
#define ZIV_FOUR_FURTHER                             \
    "add %[dst0], %[dst0], %[dst_pitch], lsl #2\n\t" \
    "add %[dst1], %[dst1], %[dst_pitch], lsl #2\n\t" \
    "add %[dst2], %[dst2], %[dst_pitch], lsl #2\n\t" \
    "add %[dst3], %[dst3], %[dst_pitch], lsl #2\n\t"

#define ZIV_ADDRESSES \
    [upper] "+r"(upper), [lower] "+r"(lower), [dst0] "+r"(dst0), [dst1] "+r"(dst1), [dst2] "+r"(dst2), [dst3] "+r"(dst3)
#define ZIV_PITCHES [src_pitch] "r"(t.src_pitch), [dst_pitch] "r"(t.dst_pitch)

template <>
ZIV_INLINE void transpose_tile<16, 1>(const Transposition& t) {
    const uint8_t *upper = t.src, *lower = t.src + 8 * t.src_pitch;
    uint8_t *dst0 = t.dst, *dst1 = dst0 + t.dst_pitch, *dst2 = dst1 + t.dst_pitch, *dst3 = dst2 + t.dst_pitch;
    // clang-format off
    asm volatile(
        ZIV_LOAD(0, 8, 1, 9)
        ZIV_LOAD(2, 10, 3, 11) ZIV_ZIP("16b", 16, 17, 0, 8) ZIV_ZIP("16b", 18, 19, 1, 9)
        ZIV_LOAD(4, 12, 5, 13) ZIV_ZIP("16b", 20, 21, 2, 10) ZIV_ZIP("16b", 22, 23, 3, 11)
        ZIV_LOAD(6, 14, 7, 15) ZIV_ZIP("16b", 24, 25, 4, 12) ZIV_ZIP("16b", 26, 27, 5, 13)
        ZIV_ZIP("16b", 28, 29, 6, 14) ZIV_ZIP("16b", 30, 31, 7, 15)
        ZIV_ZIP("16b", 0, 1, 16, 24) ZIV_ZIP("16b", 2, 3, 17, 25)
        ZIV_ZIP("16b", 4, 5, 18, 26) ZIV_ZIP("16b", 6, 7, 19, 27)
        ZIV_ZIP("16b", 8, 9, 20, 28) ZIV_ZIP("16b", 10, 11, 21, 29)
        ZIV_ZIP("16b", 12, 13, 22, 30) ZIV_ZIP("16b", 14, 15, 23, 31)
        ZIV_ZIP("16b", 16, 17, 0, 8) ZIV_ZIP("16b", 18, 19, 1, 9)
        ZIV_ZIP("16b", 20, 21, 2, 10) ZIV_ZIP("16b", 22, 23, 3, 11)
        ZIV_ZIP("16b", 24, 25, 4, 12) ZIV_ZIP("16b", 26, 27, 5, 13)
        ZIV_ZIP("16b", 28, 29, 6, 14) ZIV_ZIP("16b", 30, 31, 7, 15)
        ZIV_ZIP("16b", 0, 1, 16, 24) ZIV_ZIP("16b", 2, 3, 17, 25)
        ZIV_ZIP("16b", 4, 5, 18, 26) ZIV_ZIP("16b", 6, 7, 19, 27)
        ZIV_ZIP("16b", 8, 9, 20, 28) ZIV_ZIP("16b", 10, 11, 21, 29)
        ZIV_ZIP("16b", 12, 13, 22, 30) ZIV_ZIP("16b", 14, 15, 23, 31)
        ZIV_STORE(0, 1, 2, 3) ZIV_FOUR_FURTHER
        ZIV_STORE(4, 5, 6, 7) ZIV_FOUR_FURTHER
        ZIV_STORE(8, 9, 10, 11) ZIV_FOUR_FURTHER
        ZIV_STORE(12, 13, 14, 15)
        : ZIV_ADDRESSES : ZIV_PITCHES
        : "memory", "v0", "v1", "v2", "v3", "v4", "v5", "v6", "v7", "v8", "v9", "v10", "v11", "v12", "v13", "v14", "v15", "v16",
          "v17", "v18", "v19", "v20", "v21", "v22", "v23", "v24", "v25", "v26", "v27", "v28", "v29", "v30", "v31");
    // clang-format on
}
template <>
ZIV_INLINE void transpose_tile<16, 2>(const Transposition& t) {
    const uint8_t *upper = t.src, *lower = t.src + 4 * t.src_pitch;
    uint8_t *dst0 = t.dst, *dst1 = dst0 + t.dst_pitch, *dst2 = dst1 + t.dst_pitch, *dst3 = dst2 + t.dst_pitch;
    // clang-format off
    asm volatile(
        ZIV_LOAD(0, 4, 1, 5)
        ZIV_LOAD(2, 6, 3, 7) ZIV_ZIP("8h", 16, 17, 0, 4) ZIV_ZIP("8h", 18, 19, 1, 5)
        ZIV_ZIP("8h", 20, 21, 2, 6) ZIV_ZIP("8h", 22, 23, 3, 7)
        ZIV_ZIP("8h", 0, 1, 16, 20) ZIV_ZIP("8h", 2, 3, 17, 21)
        ZIV_ZIP("8h", 4, 5, 18, 22) ZIV_ZIP("8h", 6, 7, 19, 23)
        ZIV_ZIP("8h", 16, 17, 0, 4) ZIV_ZIP("8h", 18, 19, 1, 5)
        ZIV_ZIP("8h", 20, 21, 2, 6) ZIV_ZIP("8h", 22, 23, 3, 7)
        ZIV_STORE(16, 17, 18, 19) ZIV_FOUR_FURTHER
        ZIV_STORE(20, 21, 22, 23)
        : ZIV_ADDRESSES : ZIV_PITCHES
        : "memory", "v0", "v1", "v2", "v3", "v4", "v5", "v6", "v7", "v16", "v17", "v18", "v19", "v20", "v21", "v22", "v23");
    // clang-format on
}
#undef ZIV_LOAD
#undef ZIV_ZIP
#undef ZIV_STORE
#undef ZIV_FOUR_FURTHER
#undef ZIV_ADDRESSES
#undef ZIV_PITCHES

}  // namespace zivcolor::ZIVCOLOR_TARGET::geometry
