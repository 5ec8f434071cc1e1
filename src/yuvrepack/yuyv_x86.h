// SPDX-License-Identifier: MIT
// Y0 U Y1 V from luma and two planes of chroma and back on x86-64, for vectors of 32 and 64 bytes.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// Luma and pairs with the quarters 0, 2, 1, 3, as unpacking takes them.
ZIV_INLINE U8<32> load_split(const uint8_t* p) { return (U8<32>)_mm256_permute4x64_epi64(load256(p), 0xD8); }
ZIV_INLINE constexpr int split_pair(int n) { return n % 16 / 8 * 8 + n / 16 * 4 + n % 8 / 2; }
ZIV_INLINE U8<32> load_pairs_split(const uint8_t* u, const uint8_t* v) {
    const __m256i even = bytes256([](int n) { return n % 2 ? 0x80 : split_pair(n); });
    const __m256i odd = bytes256([](int n) { return n % 2 ? split_pair(n) : 0x80; });
    return (U8<32>)_mm256_or_si256(_mm256_shuffle_epi8(both_halves(load128(u)), even),
                                   _mm256_shuffle_epi8(both_halves(load128(v)), odd));
}
template <>
ZIV_INLINE Channels<32, 4> load_for_yuyv<32>(const uint8_t* luma, const uint8_t* u, const uint8_t* v) {
    return {{load_split(luma), load_split(luma + 32), load_pairs_split(u, v), load_pairs_split(u + 16, v + 16)}};
}
template <>
ZIV_INLINE void store_yuyv<32>(uint8_t* p, const Channels<32, 4>& parts) {
    for (int k = 0; k < 2; k++) {
        store256(p + 64 * k, _mm256_unpacklo_epi8((__m256i)parts.c[k], (__m256i)parts.c[2 + k]));
        store256(p + 64 * k + 32, _mm256_unpackhi_epi8((__m256i)parts.c[k], (__m256i)parts.c[2 + k]));
    }
}

// The halves of a packed vector hold bytes of the same halves of both, and are put in order at the end.
template <>
ZIV_INLINE Channels<32, 4> load_yuyv<32>(const uint8_t* p) {
    const __m256i low = _mm256_set1_epi16(0xFF), order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    __m256i luma[2], chroma[2];
    for (int k = 0; k < 2; k++) {
        const __m256i a = load256(p + 64 * k), b = load256(p + 64 * k + 32);
        luma[k] = _mm256_packus_epi16(_mm256_and_si256(a, low), _mm256_and_si256(b, low));
        chroma[k] = _mm256_packus_epi16(_mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8));
        luma[k] = _mm256_permute4x64_epi64(luma[k], 0xD8);
    }
    const __m256i u = _mm256_packus_epi16(_mm256_and_si256(chroma[0], low), _mm256_and_si256(chroma[1], low));
    const __m256i v = _mm256_packus_epi16(_mm256_srli_epi16(chroma[0], 8), _mm256_srli_epi16(chroma[1], 8));
    return {{(U8<32>)luma[0], (U8<32>)luma[1], (U8<32>)_mm256_permutevar8x32_epi32(u, order),
             (U8<32>)_mm256_permutevar8x32_epi32(v, order)}};
}

#if ZIV_HAS_AVX512_VBMI

// Byte n of register q of Y0 U Y1 V: luma from one register, chroma from one that holds 32 samples of U below 32 of V.
template <int q>
ZIV_INLINE void store_yuyv_part(uint8_t* p, __m512i luma, __m512i chroma) {
    const __m512i index = bytes512([](int n) { return n % 2 ? 16 * q + n / 4 + n % 4 / 2 * 32 : 32 * q + n / 2; });
    constexpr __mmask64 from_chroma = mask512([](int n) { return n % 2 == 1; });
    store512(p, _mm512_mask_permutexvar_epi8(_mm512_permutexvar_epi8(index, luma), hidden_mask(from_chroma), index, chroma));
}
template <>
ZIV_INLINE Channels<64, 4> load_for_yuyv<64>(const uint8_t* luma, const uint8_t* u, const uint8_t* v) {
    const __m512i low = _mm512_inserti64x4(_mm512_castsi256_si512(load256(u)), load256(v), 1);
    const __m512i high = _mm512_inserti64x4(_mm512_castsi256_si512(load256(u + 32)), load256(v + 32), 1);
    return {{load<64>(luma), load<64>(luma + 64), (U8<64>)low, (U8<64>)high}};
}
template <>
ZIV_INLINE void store_yuyv<64>(uint8_t* p, const Channels<64, 4>& parts) {
    for (int half = 0; half < 2; half++) {
        store_yuyv_part<0>(p + 128 * half, (__m512i)parts.c[half], (__m512i)parts.c[2 + half]);
        store_yuyv_part<1>(p + 128 * half + 64, (__m512i)parts.c[half], (__m512i)parts.c[2 + half]);
    }
}

#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
