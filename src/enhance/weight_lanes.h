// SPDX-License-Identifier: MIT
// The lanes of the merge weights.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET::enhance {

// The lower words of four of every `distance` entries.
template <int distance>
ZIV_INLINE U32<16> load_lower_words(const int64_t* p) {
#if ZIV_HAS_ADVANCED_SIMD
    // Each by itself: loads into lanes of one vector wait for each other.
    uint32x2_t words[4];
    asm("ldr %s0, [%4]\n\t"
        "ldr %s1, [%4, %5]\n\t"
        "ldr %s2, [%4, %6]\n\t"
        "ldr %s3, [%4, %7]"
        : "=&w"(words[0]), "=&w"(words[1]), "=&w"(words[2]), "=&w"(words[3])
        : "r"(p), "i"(8 * distance), "i"(16 * distance), "i"(24 * distance),
          "m"(*reinterpret_cast<const int64_t(*)[3 * distance + 1]>(p)));
    return (U32<16>)vcombine_u32(vzip1_u32(words[0], words[1]), vzip1_u32(words[2], words[3]));
#else
    const auto word = [=](int k) ZIV_INLINE_BODY { return static_cast<uint32_t>(p[k * distance]); };
    return U32<16>{word(0), word(1), word(2), word(3)};
#endif
}

// Stores eight floats, none of them a NaN, clamped to 0 to 255 and truncated.
#if ZIV_HAS_ADVANCED_SIMD
// The conversion and the narrowings saturate.
ZIV_INLINE void store_as_bytes(uint8_t* p, F32<16> first, F32<16> last) {
    const uint16x4_t words = vqmovn_u32(vcvtq_u32_f32((float32x4_t)first));
    vst1_u8(p, vqmovn_u16(vqmovn_high_u32(words, vcvtq_u32_f32((float32x4_t)last))));
}
#else
// Clamped as floats: beyond 32 bits the conversions of CPUs differ.
ZIV_INLINE void store_as_bytes(uint8_t* p, F32<16> first, F32<16> last) {
    const auto words = [](F32<16> v) ZIV_INLINE_BODY {
        const F32<16> least{}, most = least + 255.0f;
        v = v < least ? least : v;
        v = v > most ? most : v;
        return (U16<16>)__builtin_convertvector(v, S32<16>);
    };
    store_low_bytes<16>(p, __builtin_shufflevector(words(first), words(last), 0, 2, 4, 6, 8, 10, 12, 14));
}
#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::enhance
