// SPDX-License-Identifier: MIT
// Packed 4:2:2 to four-byte pixels on x86-64, narrowed and unpacked within the 16-byte parts of vectors.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// ---- Instructions ----

// A mask hidden from compilers that would shuffle in two steps of their own.
template <class Index>
ZIV_INLINE __m128i hidden_bytes128(Index index) {
    __m128i bytes = bytes128(index);
    asm("" : "+x"(bytes));
    return bytes;
}

// Each part's bytes picked by one mask.
ZIV_INLINE U8<16> shuffle_parts(U8<16> v, __m128i mask) { return (U8<16>)_mm_shuffle_epi8((__m128i)v, mask); }
// The pairs in the order that store_unpacked takes what unpacking makes of them, the lower halves of the parts before the
// upper.
ZIV_INLINE S16<16> order_pairs(S16<16> v) { return v; }
ZIV_INLINE void store_unpacked(uint8_t* p, U8<16> low, U8<16> high) { store(p, low), store(p + 16, high); }

#if ZIV_HAS_AVX2
ZIV_INLINE U8<32> shuffle_parts(U8<32> v, __m128i mask) { return (U8<32>)_mm256_shuffle_epi8((__m256i)v, both_halves(mask)); }
// Halves are stored by themselves: that costs less than a permutation.
ZIV_INLINE S16<32> order_pairs(S16<32> v) { return v; }
ZIV_INLINE void store_unpacked(uint8_t* p, U8<32> low, U8<32> high) {
    store_halves(p, p + 32, (__m256i)low);
    store_halves(p + 16, p + 48, (__m256i)high);
}
#endif

#if ZIV_HAS_AVX512_VBMI
ZIV_INLINE U8<64> shuffle_parts(U8<64> v, __m128i mask) {
    return (U8<64>)_mm512_shuffle_epi8((__m512i)v, _mm512_broadcast_i32x4(mask));
}
// The lower half of v in the lower halves of the parts, the upper half in the upper ones.
ZIV_INLINE S16<64> order_pairs(S16<64> v) { return (S16<64>)interleave_halves((__m512i)v); }
ZIV_INLINE void store_unpacked(uint8_t* p, U8<64> low, U8<64> high) { store(p, low), store(p + 64, high); }
#endif

template <>
ZIV_INLINE S16<16> swap_lanes<16>(S16<16> v) {
    return (S16<16>)shuffle_parts((U8<16>)v, hidden_bytes128([](int n) { return n ^ 2; }));
}
#if ZIV_HAS_AVX2
template <>
ZIV_INLINE S16<32> swap_lanes<32>(S16<32> v) {
    return (S16<32>)shuffle_parts((U8<32>)v, hidden_bytes128([](int n) { return n ^ 2; }));
}
#endif
#if ZIV_HAS_AVX512_VBMI
template <>
ZIV_INLINE S16<64> swap_lanes<64>(S16<64> v) {
    return (S16<64>)_mm512_rol_epi32((__m512i)v, 16);
}
#endif

// ---- Terms ----

template <int N>
ZIV_INLINE PackedWords<N> load_packed_words(const uint8_t* p) {
    return split_packed_words<N>(order_pairs((S16<N>)load<N>(p)));
}

// In a part: the channels of u and v interleaved for eight pixels in their order, then green and alpha, then both.
template <int N, int u_byte>
ZIV_INLINE void store_packed_sums(uint8_t* p, const PackedSums<N> (&sums)[2], U8<N> alpha) {
    // Narrowed, the straight lanes' bytes come before the crossed ones': byte 2 i + 0 of pixel i is of u or of v.
    const __m128i by_pixel = bytes128([](int n) {
        const int pixel = n / 2, of_v = n % 2 != u_byte / 2, pair = pixel / 2;
        return (pixel % 2 == of_v ? 0 : 8) + 2 * pair + of_v;
    });
    const U8<N> green = narrow<N>(Wide<N>{(U16<N>)sums[0].green, (U16<N>)sums[1].green});
    const U8<N> green_alpha[2] = {zip_parts_low<N>(green, alpha), zip_parts_high<N>(green, alpha)};
    for (int k = 0; k < 2; k++) {
        const U8<N> outer = shuffle_parts(narrow<N>(Wide<N>{(U16<N>)sums[k].straight, (U16<N>)sums[k].crossed}), by_pixel);
        store_unpacked(p + 2 * N * k, zip_parts_low<N>(outer, green_alpha[k]), zip_parts_high<N>(outer, green_alpha[k]));
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
