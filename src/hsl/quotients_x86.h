// SPDX-License-Identifier: MIT
// Reciprocals and what they multiply on x86-64, for vectors of 16, 32 and 64 bytes.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::hsl {

template <>
ZIV_INLINE Wide<16> widen_joined<16>(U8<16> low, U8<16> high) {
    return {(U16<16>)_mm_unpacklo_epi8((__m128i)low, (__m128i)high), (U16<16>)_mm_unpackhi_epi8((__m128i)low, (__m128i)high)};
}
template <>
ZIV_INLINE Wide<16> widen_difference<16>(U8<16> a, U8<16> b, uint8_t weight) {
    const __m128i weights = _mm_set1_epi16(static_cast<int16_t>(weight - (weight << 8)));
    const __m128i lo = _mm_unpacklo_epi8((__m128i)a, (__m128i)b), hi = _mm_unpackhi_epi8((__m128i)a, (__m128i)b);
    return {(U16<16>)_mm_maddubs_epi16(lo, weights), (U16<16>)_mm_maddubs_epi16(hi, weights)};
}

// The lanes are at least 1. 65536 saturates to 65535.
ZIV_INLINE __m128i reciprocals_of_lanes(__m128i lanes) {
    const __m128i zero = _mm_setzero_si128();
    const __m128 dividend = _mm_set1_ps(65536.0f);
    const __m128 lo = _mm_div_ps(dividend, _mm_cvtepi32_ps(_mm_unpacklo_epi16(lanes, zero)));
    const __m128 hi = _mm_div_ps(dividend, _mm_cvtepi32_ps(_mm_unpackhi_epi16(lanes, zero)));
    return _mm_packus_epi32(_mm_cvttps_epi32(lo), _mm_cvttps_epi32(hi));
}
template <>
ZIV_INLINE Wide<16> reciprocals<16>(U8<16> divisors) {
    const Wide<16> lanes = widen<16>((U8<16>)_mm_max_epu8((__m128i)divisors, _mm_set1_epi8(1)));
    return {(U16<16>)reciprocals_of_lanes((__m128i)lanes.lo), (U16<16>)reciprocals_of_lanes((__m128i)lanes.hi)};
}

#if ZIV_HAS_AVX2

template <>
ZIV_INLINE Wide<32> widen_joined<32>(U8<32> low, U8<32> high) {
    return {(U16<32>)_mm256_unpacklo_epi8((__m256i)low, (__m256i)high),
            (U16<32>)_mm256_unpackhi_epi8((__m256i)low, (__m256i)high)};
}
template <>
ZIV_INLINE Wide<32> widen_difference<32>(U8<32> a, U8<32> b, uint8_t weight) {
    const __m256i weights = _mm256_set1_epi16(static_cast<int16_t>(weight - (weight << 8)));
    const __m256i lo = _mm256_unpacklo_epi8((__m256i)a, (__m256i)b), hi = _mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
    return {(U16<32>)_mm256_maddubs_epi16(lo, weights), (U16<32>)_mm256_maddubs_epi16(hi, weights)};
}

// The lanes are at least 1. 65536 saturates to 65535.
ZIV_INLINE __m256i reciprocals_of_lanes(__m256i lanes) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256 dividend = _mm256_set1_ps(65536.0f);
    const __m256 lo = _mm256_div_ps(dividend, _mm256_cvtepi32_ps(_mm256_unpacklo_epi16(lanes, zero)));
    const __m256 hi = _mm256_div_ps(dividend, _mm256_cvtepi32_ps(_mm256_unpackhi_epi16(lanes, zero)));
    return _mm256_packus_epi32(_mm256_cvttps_epi32(lo), _mm256_cvttps_epi32(hi));
}
template <>
ZIV_INLINE Wide<32> reciprocals<32>(U8<32> divisors) {
    const Wide<32> lanes = widen<32>((U8<32>)_mm256_max_epu8((__m256i)divisors, _mm256_set1_epi8(1)));
    return {(U16<32>)reciprocals_of_lanes((__m256i)lanes.lo), (U16<32>)reciprocals_of_lanes((__m256i)lanes.hi)};
}

#endif

#if ZIV_HAS_AVX512_VBMI

template <>
ZIV_INLINE Wide<64> widen_joined<64>(U8<64> low, U8<64> high) {
    return {(U16<64>)_mm512_unpacklo_epi8((__m512i)low, (__m512i)high),
            (U16<64>)_mm512_unpackhi_epi8((__m512i)low, (__m512i)high)};
}
template <>
ZIV_INLINE Wide<64> widen_difference<64>(U8<64> a, U8<64> b, uint8_t weight) {
    const __m512i weights = _mm512_set1_epi16(static_cast<int16_t>(weight - (weight << 8)));
    const __m512i lo = _mm512_unpacklo_epi8((__m512i)a, (__m512i)b), hi = _mm512_unpackhi_epi8((__m512i)a, (__m512i)b);
    return {(U16<64>)_mm512_maddubs_epi16(lo, weights), (U16<64>)_mm512_maddubs_epi16(hi, weights)};
}

// Looked up in registers, a byte at a time: 65536 / i - 1, whose high byte is 1 throughout the upper half; 65534 for 1.
template <>
ZIV_INLINE Wide<64> reciprocals<64>(U8<64> divisors) {
    const auto low_byte = [](int i) { return (i < 2 ? 65534 : 65536 / i - 1) & 0xFF; };
    const auto high_byte = [](int i) { return (i < 2 ? 65534 : 65536 / i - 1) >> 8; };
    const uint8_t *const low = byte_table<256>(low_byte), *const high = byte_table<128>(high_byte);
    const __m512i i = (__m512i)divisors;
    const __mmask64 upper = _mm512_movepi8_mask(i);
    const __m512i low_lower = _mm512_permutex2var_epi8(_mm512_load_si512(low), i, _mm512_load_si512(low + 64));
    const __m512i low_upper = _mm512_permutex2var_epi8(_mm512_load_si512(low + 128), i, _mm512_load_si512(low + 192));
    const __m512i high_lower = _mm512_permutex2var_epi8(_mm512_load_si512(high), i, _mm512_load_si512(high + 64));
    const __m512i low_bytes = _mm512_mask_blend_epi8(upper, low_lower, low_upper);
    const __m512i high_bytes = _mm512_mask_blend_epi8(upper, high_lower, _mm512_set1_epi8(1));
    const Wide<64> less_one = widen_joined<64>((U8<64>)low_bytes, (U8<64>)high_bytes);
    return {less_one.lo + 1, less_one.hi + 1};
}

#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::hsl
