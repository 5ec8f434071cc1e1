// SPDX-License-Identifier: MIT
// Packed Y U V pixels on x86-64, for vectors of 16, 32 and 64 bytes.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

template <>
struct PackedChroma<16> {
    __m128i part[3];
};
// Register k of packed pixels: V U pairs in the bytes of the channels 2 and 1, and zero in those of luma.
template <int k>
ZIV_INLINE __m128i packed_chroma_mask() {
    return bytes128([](int n) {
        const int channel = (16 * k + n) % 3, pair = (16 * k + n) / 6;
        return channel == 0 ? 0x80 : 2 * pair + (channel == 1);
    });
}
template <>
ZIV_INLINE PackedChroma<16> packed_chroma<16>(U8<16> pairs) {
    const __m128i p = (__m128i)pairs;
    return {{_mm_shuffle_epi8(p, packed_chroma_mask<0>()), _mm_shuffle_epi8(p, packed_chroma_mask<1>()),
             _mm_shuffle_epi8(p, packed_chroma_mask<2>())}};
}
template <>
ZIV_INLINE void store_packed444<16>(uint8_t* p, U8<16> luma, const PackedChroma<16>& chroma) {
    const __m128i y = (__m128i)luma;
    store128(p, _mm_or_si128(_mm_shuffle_epi8(y, spread_mask<3, 0, 0>()), chroma.part[0]));
    keep_store_order();
    store128(p + 16, _mm_or_si128(_mm_shuffle_epi8(y, spread_mask<3, 1, 0>()), chroma.part[1]));
    keep_store_order();
    store128(p + 32, _mm_or_si128(_mm_shuffle_epi8(y, spread_mask<3, 2, 0>()), chroma.part[2]));
}

#if ZIV_HAS_AVX2

// Of the six halves of packed pixels the first three come from the low half of a vector of luma or pairs, the others from the
// high one. Vector k takes its halves' masks from one table, the 48 bytes of a 16-byte vector's masks twice over.
template <int k>
ZIV_INLINE __m256i packed_luma_mask256() {
    return bytes256([](int n) { return (32 * k + n) % 3 == 0 ? (32 * k + n) % 48 / 3 : 0x80; });
}
template <int k>
ZIV_INLINE __m256i packed_chroma_mask256() {
    return bytes256([](int n) {
        const int channel = (32 * k + n) % 3, pair = (32 * k + n) % 48 / 6;
        return channel == 0 ? 0x80 : 2 * pair + (channel == 1);
    });
}
template <>
struct PackedChroma<32> {
    __m256i part[3];
};
ZIV_INLINE PackedChroma<32> packed_chroma_of(__m256i low, __m256i whole, __m256i high) {
    return {{_mm256_shuffle_epi8(low, packed_chroma_mask256<0>()), _mm256_shuffle_epi8(whole, packed_chroma_mask256<1>()),
             _mm256_shuffle_epi8(high, packed_chroma_mask256<2>())}};
}
ZIV_INLINE void store_packed444_of(uint8_t* p, __m256i low, __m256i whole, __m256i high, const PackedChroma<32>& chroma) {
    const __m256i first = _mm256_shuffle_epi8(low, packed_luma_mask256<0>());
    const __m256i second = _mm256_shuffle_epi8(whole, packed_luma_mask256<1>());
    const __m256i third = _mm256_shuffle_epi8(high, packed_luma_mask256<2>());
    store256(p, _mm256_or_si256(first, chroma.part[0]));
    store256(p + 32, _mm256_or_si256(second, chroma.part[1]));
    store256(p + 64, _mm256_or_si256(third, chroma.part[2]));
}
ZIV_INLINE __m256i low_twice(__m256i v) { return _mm256_permute4x64_epi64(v, 0x44); }
ZIV_INLINE __m256i high_twice(__m256i v) { return _mm256_permute4x64_epi64(v, 0xEE); }
template <>
ZIV_INLINE PackedChroma<32> packed_chroma<32>(U8<32> pairs) {
    const __m256i v = (__m256i)pairs;
    return packed_chroma_of(low_twice(v), v, high_twice(v));
}
template <>
ZIV_INLINE void store_packed444<32>(uint8_t* p, U8<32> luma, const PackedChroma<32>& chroma) {
    const __m256i v = (__m256i)luma;
    store_packed444_of(p, low_twice(v), v, high_twice(v), chroma);
}
// From memory a half comes twice without a shuffle.
template <>
ZIV_INLINE PackedChroma<32> packed_chroma<32>(const uint8_t* pairs) {
    return packed_chroma_of(both_halves(load128(pairs)), load256(pairs), both_halves(load128(pairs + 16)));
}
template <>
ZIV_INLINE void store_packed444<32>(uint8_t* p, const uint8_t* luma, const PackedChroma<32>& chroma) {
    store_packed444_of(p, both_halves(load128(luma)), load256(luma), both_halves(load128(luma + 16)), chroma);
}

#endif

#if ZIV_HAS_AVX512_VBMI

template <>
struct PackedChroma<64> {
    __m512i part[3];
};
// Register k of packed pixels: V U pairs in the bytes of the channels 2 and 1.
template <int k>
ZIV_INLINE __m512i packed_chroma_part(__m512i pairs) {
    const __m512i index = bytes512([](int n) { return (64 * k + n) / 6 * 2 + ((64 * k + n) % 3 == 1); });
    return _mm512_permutexvar_epi8(index, pairs);
}
template <>
ZIV_INLINE PackedChroma<64> packed_chroma<64>(U8<64> pairs) {
    const __m512i p = (__m512i)pairs;
    return {{packed_chroma_part<0>(p), packed_chroma_part<1>(p), packed_chroma_part<2>(p)}};
}
template <int k>
ZIV_INLINE void store_packed444_part(uint8_t* p, __m512i luma, const PackedChroma<64>& chroma) {
    const __m512i pixel = bytes512([](int n) { return (64 * k + n) / 3; });
    constexpr __mmask64 channel0 = mask512([](int n) { return (64 * k + n) % 3 == 0; });
    store512(p + 64 * k, _mm512_mask_permutexvar_epi8(chroma.part[k], hidden_mask(channel0), pixel, luma));
}
template <>
ZIV_INLINE void store_packed444<64>(uint8_t* p, U8<64> luma, const PackedChroma<64>& chroma) {
    store_packed444_part<0>(p, (__m512i)luma, chroma);
    store_packed444_part<1>(p, (__m512i)luma, chroma);
    store_packed444_part<2>(p, (__m512i)luma, chroma);
}

#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
