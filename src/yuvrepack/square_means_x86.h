// SPDX-License-Identifier: MIT
// Means of 2 by 2 samples on x86-64, for vectors of 16, 32 and 64 bytes.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// The sums of neighbouring samples of a channel, as 16-bit lanes: first, second, first, second ...
ZIV_INLINE __m128i neighbour_sums(const uint8_t* p) {
    const __m128i by_channel = _mm_setr_epi8(0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15);
    return _mm_maddubs_epi16(_mm_shuffle_epi8(load128(p), by_channel), _mm_set1_epi8(1));
}
template <>
ZIV_INLINE void store_square_means<16>(uint8_t* p, const uint8_t* upper, const uint8_t* lower) {
    const __m128i half = _mm_set1_epi16(2);
    const __m128i lo = _mm_add_epi16(_mm_add_epi16(neighbour_sums(upper), neighbour_sums(lower)), half);
    const __m128i hi = _mm_add_epi16(_mm_add_epi16(neighbour_sums(upper + 16), neighbour_sums(lower + 16)), half);
    store128(p, _mm_packus_epi16(_mm_srli_epi16(lo, 2), _mm_srli_epi16(hi, 2)));
}

#if ZIV_HAS_AVX2

ZIV_INLINE __m256i square_means(const uint8_t* upper, const uint8_t* lower) {
    const __m256i by_channel = both_halves(_mm_setr_epi8(0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15));
    const __m256i one = _mm256_set1_epi8(1);
    const __m256i sums = _mm256_add_epi16(_mm256_maddubs_epi16(_mm256_shuffle_epi8(load256(upper), by_channel), one),
                                          _mm256_maddubs_epi16(_mm256_shuffle_epi8(load256(lower), by_channel), one));
    return _mm256_srli_epi16(_mm256_add_epi16(sums, _mm256_set1_epi16(2)), 2);
}
template <>
ZIV_INLINE void store_square_means<32>(uint8_t* p, const uint8_t* upper, const uint8_t* lower) {
    const __m256i packed = _mm256_packus_epi16(square_means(upper, lower), square_means(upper + 32, lower + 32));
    store256(p, _mm256_permute4x64_epi64(packed, 0xD8));
}

#endif

#if ZIV_HAS_AVX512_VBMI

ZIV_INLINE __m512i square_means512(const uint8_t* upper, const uint8_t* lower) {
    const __m512i by_channel = _mm512_broadcast_i32x4(_mm_setr_epi8(0, 2, 1, 3, 4, 6, 5, 7, 8, 10, 9, 11, 12, 14, 13, 15));
    const __m512i one = _mm512_set1_epi8(1);
    const __m512i sums = _mm512_add_epi16(_mm512_maddubs_epi16(_mm512_shuffle_epi8(load512(upper), by_channel), one),
                                          _mm512_maddubs_epi16(_mm512_shuffle_epi8(load512(lower), by_channel), one));
    return _mm512_srli_epi16(_mm512_add_epi16(sums, _mm512_set1_epi16(2)), 2);
}
template <>
ZIV_INLINE void store_square_means<64>(uint8_t* p, const uint8_t* upper, const uint8_t* lower) {
    store256(p, _mm512_cvtepi16_epi8(square_means512(upper, lower)));
    store256(p + 32, _mm512_cvtepi16_epi8(square_means512(upper + 64, lower + 64)));
}

#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
