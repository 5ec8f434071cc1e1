// SPDX-License-Identifier: MIT
// The lane vocabulary on 16-byte vectors of x86-64 with SSE4.2.
#pragma once

#include <immintrin.h>

#include "lanes/portable.h"

namespace zivcolor::ZIVCOLOR_TARGET {

ZIV_INLINE __m128i load128(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
ZIV_INLINE void store128(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
ZIV_INLINE __m128i load64(const uint8_t* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }
ZIV_INLINE void store64(uint8_t* p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); }

template <>
ZIV_INLINE U16<16> load_widened<16>(const uint8_t* p) {
    return (U16<16>)_mm_cvtepu8_epi16(load64(p));
}
template <>
ZIV_INLINE void store_low_bytes<16>(uint8_t* p, U16<16> v) {
    const __m128i low = _mm_and_si128((__m128i)v, _mm_set1_epi16(0xFF));
    store64(p, _mm_packus_epi16(low, low));
}

template <>
ZIV_INLINE U8<16> add_saturating(U8<16> a, U8<16> b) {
    return (U8<16>)_mm_adds_epu8((__m128i)a, (__m128i)b);
}
template <>
ZIV_INLINE U8<16> subtract_saturating(U8<16> a, U8<16> b) {
    return (U8<16>)_mm_subs_epu8((__m128i)a, (__m128i)b);
}
template <>
ZIV_INLINE U8<16> average_up(U8<16> a, U8<16> b) {
    return (U8<16>)_mm_avg_epu8((__m128i)a, (__m128i)b);
}

template <>
ZIV_INLINE U8<16> double_bytes<16>(U16<16> v) {
    return (U8<16>)_mm_shuffle_epi8((__m128i)v, _mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14));
}
template <>
ZIV_INLINE U8<16> even_lanes<16>(U8<16> a, U8<16> b) {
    const __m128i low = _mm_set1_epi16(0xFF);
    return (U8<16>)_mm_packus_epi16(_mm_and_si128((__m128i)a, low), _mm_and_si128((__m128i)b, low));
}
template <>
ZIV_INLINE U8<16> odd_lanes<16>(U8<16> a, U8<16> b) {
    return (U8<16>)_mm_packus_epi16(_mm_srli_epi16((__m128i)a, 8), _mm_srli_epi16((__m128i)b, 8));
}
template <>
ZIV_INLINE U8<16> interleave_low<16>(U8<16> a, U8<16> b) {
    return (U8<16>)_mm_unpacklo_epi8((__m128i)a, (__m128i)b);
}
template <>
ZIV_INLINE U8<16> interleave_high<16>(U8<16> a, U8<16> b) {
    return (U8<16>)_mm_unpackhi_epi8((__m128i)a, (__m128i)b);
}

template <>
ZIV_INLINE U8<16> narrow_saturating<16>(S16<16> lo, S16<16> hi) {
    return (U8<16>)_mm_packus_epi16((__m128i)lo, (__m128i)hi);
}
template <>
ZIV_INLINE Wide<16> widen<16>(U8<16> v) {
    const __m128i zero = _mm_setzero_si128();
    return {(U16<16>)_mm_unpacklo_epi8((__m128i)v, zero), (U16<16>)_mm_unpackhi_epi8((__m128i)v, zero)};
}

// Hidden from the compiler, which would make chains of shifts and additions of products, and build the constants anew in every
// step where it runs out of registers.
template <>
ZIV_INLINE S16<16> constant<16>(int value) {
    S16<16> lanes = S16<16>{} + static_cast<int16_t>(value);
    asm("" : "+x"(lanes));
    return lanes;
}
template <>
ZIV_INLINE S16<16> multiply_round_high<16>(S16<16> a, S16<16> b) {
    return (S16<16>)_mm_mulhrs_epi16((__m128i)a, (__m128i)b);
}
template <>
ZIV_INLINE S16<16> multiply_q15<16>(S16<16> a, int weight) {
    return (S16<16>)_mm_mulhi_epi16((__m128i)a, (__m128i)constant<16>(2 * weight));
}
template <>
ZIV_INLINE S16<16> multiply_high<16>(S16<16> a, S16<16> b) {
    return (S16<16>)_mm_mulhi_epi16((__m128i)a, (__m128i)b);
}
template <>
ZIV_INLINE S16<16> weigh_pair_q15<16>(S16<16> a, S16<16> b, int weight_a, int weight_b) {
    const __m128i weights = _mm_set1_epi32((weight_a & 0xFFFF) | static_cast<int>(static_cast<uint32_t>(weight_b) << 16));
    const __m128i half = _mm_set1_epi32(0x4000);
    const __m128i lo = _mm_madd_epi16(_mm_unpacklo_epi16((__m128i)a, (__m128i)b), weights);
    const __m128i hi = _mm_madd_epi16(_mm_unpackhi_epi16((__m128i)a, (__m128i)b), weights);
    return (S16<16>)_mm_packs_epi32(_mm_srai_epi32(_mm_add_epi32(lo, half), 15), _mm_srai_epi32(_mm_add_epi32(hi, half), 15));
}

template <>
ZIV_INLINE S16<16> weigh_pair_bytes<16>(U8<16> pairs, int weight_a, int weight_b) {
    const S16<16> weights = constant<16>((weight_a & 0xFF) | weight_b * 256);
    return (S16<16>)_mm_maddubs_epi16((__m128i)pairs, (__m128i)weights);
}
template <>
ZIV_INLINE S16<16> weigh_signed_bytes<16>(U8<16> pairs, int weight_a, int weight_b) {
    return (S16<16>)_mm_maddubs_epi16((__m128i)constant<16>(weight_a + 256 * weight_b), (__m128i)pairs);
}

template <>
inline constexpr int zero_lane_bits<16> = 2;
template <>
ZIV_INLINE uint64_t zero_lanes<16>(U16<16> v) {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16((__m128i)v, _mm_setzero_si128())));
}

// ---- Interleaving loads and stores of c channels ----
//
// Register k of a pixel block holds, at byte n, channel (16 k + n) mod c of pixel (16 k + n) / c. The masks below pick a
// channel's bytes for it out of a channel vector, or the other way round; 0x80 gives zero.

template <class Index>
ZIV_INLINE __m128i bytes128(Index index) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(byte_table<16>(index)));
}
template <int c, int k, int channel>
ZIV_INLINE __m128i spread_mask() {
    return bytes128([](int n) { return (16 * k + n) % c == channel ? (16 * k + n) / c : 0x80; });
}
template <int c, int k, int channel>
ZIV_INLINE __m128i gather_mask() {
    return bytes128([](int i) {
        const int at = c * i + channel - 16 * k;
        return at >= 0 && at < 16 ? at : 0x80;
    });
}

template <int channel>
ZIV_INLINE U8<16> gather3(__m128i p0, __m128i p1, __m128i p2) {
    return (U8<16>)_mm_or_si128(
        _mm_or_si128(_mm_shuffle_epi8(p0, gather_mask<3, 0, channel>()), _mm_shuffle_epi8(p1, gather_mask<3, 1, channel>())),
        _mm_shuffle_epi8(p2, gather_mask<3, 2, channel>()));
}
template <>
ZIV_INLINE Channels<16, 2> load2<16>(const uint8_t* p) {
    const U8<16> a = load<16>(p), b = load<16>(p + 16);
    return {{even_lanes<16>(a, b), odd_lanes<16>(a, b)}};
}
template <>
ZIV_INLINE Channels<16, 3> load3<16>(const uint8_t* p) {
    const __m128i p0 = load128(p), p1 = load128(p + 16), p2 = load128(p + 32);
    return {{gather3<0>(p0, p1, p2), gather3<1>(p0, p1, p2), gather3<2>(p0, p1, p2)}};
}
template <>
ZIV_INLINE Channels<16, 4> load4<16>(const uint8_t* p) {
    const __m128i by_channel = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const __m128i a = _mm_shuffle_epi8(load128(p), by_channel), b = _mm_shuffle_epi8(load128(p + 16), by_channel);
    const __m128i c = _mm_shuffle_epi8(load128(p + 32), by_channel), d = _mm_shuffle_epi8(load128(p + 48), by_channel);
    const __m128i ab01 = _mm_unpacklo_epi32(a, b), ab23 = _mm_unpackhi_epi32(a, b);
    const __m128i cd01 = _mm_unpacklo_epi32(c, d), cd23 = _mm_unpackhi_epi32(c, d);
    return {{(U8<16>)_mm_unpacklo_epi64(ab01, cd01), (U8<16>)_mm_unpackhi_epi64(ab01, cd01),
             (U8<16>)_mm_unpacklo_epi64(ab23, cd23), (U8<16>)_mm_unpackhi_epi64(ab23, cd23)}};
}

template <>
ZIV_INLINE void store2<16>(uint8_t* p, U8<16> a, U8<16> b) {
    store(p, interleave_low<16>(a, b));
    store(p + 16, interleave_high<16>(a, b));
}
template <int k>
ZIV_INLINE __m128i spread3(U8<16> a, U8<16> b, U8<16> c) {
    return _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8((__m128i)a, spread_mask<3, k, 0>()),
                                     _mm_shuffle_epi8((__m128i)b, spread_mask<3, k, 1>())),
                        _mm_shuffle_epi8((__m128i)c, spread_mask<3, k, 2>()));
}
template <>
ZIV_INLINE void store3<16>(uint8_t* p, U8<16> a, U8<16> b, U8<16> c) {
    store128(p, spread3<0>(a, b, c));
    store128(p + 16, spread3<1>(a, b, c));
    store128(p + 32, spread3<2>(a, b, c));
}
template <>
ZIV_INLINE void store4<16>(uint8_t* p, U8<16> a, U8<16> b, U8<16> c, U8<16> d) {
    const __m128i ab_lo = _mm_unpacklo_epi8((__m128i)a, (__m128i)b), ab_hi = _mm_unpackhi_epi8((__m128i)a, (__m128i)b);
    const __m128i cd_lo = _mm_unpacklo_epi8((__m128i)c, (__m128i)d), cd_hi = _mm_unpackhi_epi8((__m128i)c, (__m128i)d);
    store128(p, _mm_unpacklo_epi16(ab_lo, cd_lo));
    store128(p + 16, _mm_unpackhi_epi16(ab_lo, cd_lo));
    store128(p + 32, _mm_unpacklo_epi16(ab_hi, cd_hi));
    store128(p + 48, _mm_unpackhi_epi16(ab_hi, cd_hi));
}

// ---- Repacking of chroma ----

template <>
ZIV_INLINE U8<16> load_but_last<16>(const uint8_t* p) {
    return (U8<16>)_mm_unpacklo_epi64(load64(p), _mm_srli_epi64(load64(p + 7), 8));
}
template <>
ZIV_INLINE U8<16> swap_pairs<16>(U8<16> v) {
    return (U8<16>)_mm_shuffle_epi8((__m128i)v, bytes128([](int n) { return n ^ 1; }));
}

// ---- Selection and unsigned products ----

template <>
ZIV_INLINE U8<16> select(U8<16> mask, U8<16> a, U8<16> b) {
    return (U8<16>)_mm_blendv_epi8((__m128i)b, (__m128i)a, (__m128i)mask);
}

template <>
ZIV_INLINE U16<16> multiply_high_unsigned<16>(U16<16> a, U16<16> b) {
    return (U16<16>)_mm_mulhi_epu16((__m128i)a, (__m128i)b);
}

// ---- Turning and mirroring ----

template <>
ZIV_INLINE U8<16> reverse_bytes<16>(U8<16> v) {
    return __builtin_shufflevector(v, v, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
}
template <>
ZIV_INLINE U8<16> reverse_pairs<16>(U8<16> v) {
    return (U8<16>)__builtin_shufflevector((U16<16>)v, (U16<16>)v, 7, 6, 5, 4, 3, 2, 1, 0);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
