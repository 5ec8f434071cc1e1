// SPDX-License-Identifier: MIT
// The lane vocabulary on 32-byte vectors of x86-64 with AVX2. Most byte shuffles stay within a vector's two 16-byte halves: the
// forms below work on the halves side by side, each as its 16-byte sibling does, and load or store the halves where they
// belong.
#pragma once

#include "lanes/x86_16.h"

namespace zivcolor::ZIVCOLOR_TARGET {

ZIV_INLINE __m256i load256(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
ZIV_INLINE void store256(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
ZIV_INLINE __m256i load_halves(const uint8_t* low, const uint8_t* high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(load128(low)), load128(high), 1);
}
ZIV_INLINE void store_halves(uint8_t* low, uint8_t* high, __m256i v) {
    store128(low, _mm256_castsi256_si128(v));
    store128(high, _mm256_extracti128_si256(v, 1));
}
template <class Index>
ZIV_INLINE __m256i bytes256(Index index) {
    return _mm256_load_si256(reinterpret_cast<const __m256i*>(byte_table<32>(index)));
}
// A shuffle rather than the instruction by its name, which GCC keeps apart from the constant that it repeats.
ZIV_INLINE __m256i both_halves(__m128i v) { return (__m256i)__builtin_shufflevector(v, v, 0, 1, 0, 1); }

template <>
ZIV_INLINE U16<32> load_widened<32>(const uint8_t* p) {
    return (U16<32>)_mm256_cvtepu8_epi16(load128(p));
}
template <>
ZIV_INLINE void store_low_bytes<32>(uint8_t* p, U16<32> v) {
    const __m256i low = _mm256_and_si256((__m256i)v, _mm256_set1_epi16(0xFF));
    const __m256i packed = _mm256_packus_epi16(low, low);
    store128(p, _mm256_castsi256_si128(_mm256_permute4x64_epi64(packed, 0x08)));
}

template <>
ZIV_INLINE U8<32> add_saturating(U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_adds_epu8((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE U8<32> subtract_saturating(U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_subs_epu8((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE U8<32> average_up(U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_avg_epu8((__m256i)a, (__m256i)b);
}

template <>
ZIV_INLINE U8<32> double_bytes<32>(U16<32> v) {
    return (U8<32>)_mm256_shuffle_epi8((__m256i)v,
                                       both_halves(_mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14)));
}
template <>
ZIV_INLINE U8<32> even_lanes<32>(U8<32> a, U8<32> b) {
    const __m256i low = _mm256_set1_epi16(0xFF);
    const __m256i packed = _mm256_packus_epi16(_mm256_and_si256((__m256i)a, low), _mm256_and_si256((__m256i)b, low));
    return (U8<32>)_mm256_permute4x64_epi64(packed, 0xD8);
}
template <>
ZIV_INLINE U8<32> odd_lanes<32>(U8<32> a, U8<32> b) {
    const __m256i packed = _mm256_packus_epi16(_mm256_srli_epi16((__m256i)a, 8), _mm256_srli_epi16((__m256i)b, 8));
    return (U8<32>)_mm256_permute4x64_epi64(packed, 0xD8);
}
template <>
ZIV_INLINE U8<32> interleave_low<32>(U8<32> a, U8<32> b) {
    const __m256i lo = _mm256_unpacklo_epi8((__m256i)a, (__m256i)b), hi = _mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
    return (U8<32>)_mm256_permute2x128_si256(lo, hi, 0x20);
}
template <>
ZIV_INLINE U8<32> interleave_high<32>(U8<32> a, U8<32> b) {
    const __m256i lo = _mm256_unpacklo_epi8((__m256i)a, (__m256i)b), hi = _mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
    return (U8<32>)_mm256_permute2x128_si256(lo, hi, 0x31);
}

template <>
ZIV_INLINE U8<32> narrow_saturating<32>(S16<32> lo, S16<32> hi) {
    return (U8<32>)_mm256_permute4x64_epi64(_mm256_packus_epi16((__m256i)lo, (__m256i)hi), 0xD8);
}
template <>
ZIV_INLINE Wide<32> widen<32>(U8<32> v) {
    const __m256i zero = _mm256_setzero_si256();
    return {(U16<32>)_mm256_unpacklo_epi8((__m256i)v, zero), (U16<32>)_mm256_unpackhi_epi8((__m256i)v, zero)};
}
template <>
ZIV_INLINE U8<32> narrow<32>(Wide<32> v) {
    return (U8<32>)_mm256_packus_epi16((__m256i)v.lo, (__m256i)v.hi);
}

template <>
ZIV_INLINE S16<32> constant<32>(int value) {
    S16<32> lanes = S16<32>{} + static_cast<int16_t>(value);
    asm("" : "+x"(lanes));
    return lanes;
}
template <>
ZIV_INLINE S16<32> multiply_round_high<32>(S16<32> a, S16<32> b) {
    return (S16<32>)_mm256_mulhrs_epi16((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE S16<32> multiply_q15<32>(S16<32> a, int weight) {
    return (S16<32>)_mm256_mulhi_epi16((__m256i)a, (__m256i)constant<32>(2 * weight));
}
template <>
ZIV_INLINE S16<32> multiply_high<32>(S16<32> a, S16<32> b) {
    return (S16<32>)_mm256_mulhi_epi16((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE S16<32> weigh_pair_q15<32>(S16<32> a, S16<32> b, int weight_a, int weight_b) {
    const __m256i weights = _mm256_set1_epi32((weight_a & 0xFFFF) | static_cast<int>(static_cast<uint32_t>(weight_b) << 16));
    const __m256i half = _mm256_set1_epi32(0x4000);
    const __m256i lo = _mm256_madd_epi16(_mm256_unpacklo_epi16((__m256i)a, (__m256i)b), weights);
    const __m256i hi = _mm256_madd_epi16(_mm256_unpackhi_epi16((__m256i)a, (__m256i)b), weights);
    return (S16<32>)_mm256_packs_epi32(_mm256_srai_epi32(_mm256_add_epi32(lo, half), 15),
                                       _mm256_srai_epi32(_mm256_add_epi32(hi, half), 15));
}

template <>
ZIV_INLINE S16<32> weigh_pair_bytes<32>(U8<32> pairs, int weight_a, int weight_b) {
    const S16<32> weights = constant<32>((weight_a & 0xFF) | weight_b * 256);
    return (S16<32>)_mm256_maddubs_epi16((__m256i)pairs, (__m256i)weights);
}
template <>
ZIV_INLINE S16<32> weigh_signed_bytes<32>(U8<32> pairs, int weight_a, int weight_b) {
    return (S16<32>)_mm256_maddubs_epi16((__m256i)constant<32>(weight_a + 256 * weight_b), (__m256i)pairs);
}

template <>
inline constexpr int zero_lane_bits<32> = 2;
template <>
ZIV_INLINE uint64_t zero_lanes<32>(U16<32> v) {
    return static_cast<unsigned>(_mm256_movemask_epi8(_mm256_cmpeq_epi16((__m256i)v, _mm256_setzero_si256())));
}

// ---- Interleaving loads and stores of c channels ----

template <int channel>
ZIV_INLINE U8<32> gather3(__m256i p0, __m256i p1, __m256i p2) {
    return (U8<32>)_mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(p0, both_halves(gather_mask<3, 0, channel>())),
                                                   _mm256_shuffle_epi8(p1, both_halves(gather_mask<3, 1, channel>()))),
                                   _mm256_shuffle_epi8(p2, both_halves(gather_mask<3, 2, channel>())));
}
template <>
ZIV_INLINE Channels<32, 2> load2<32>(const uint8_t* p) {
    const __m256i a = load_halves(p, p + 32), b = load_halves(p + 16, p + 48), low = _mm256_set1_epi16(0xFF);
    return {{(U8<32>)_mm256_packus_epi16(_mm256_and_si256(a, low), _mm256_and_si256(b, low)),
             (U8<32>)_mm256_packus_epi16(_mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8))}};
}
template <>
ZIV_INLINE Channels<32, 3> load3<32>(const uint8_t* p) {
    const __m256i p0 = load_halves(p, p + 48), p1 = load_halves(p + 16, p + 64), p2 = load_halves(p + 32, p + 80);
    return {{gather3<0>(p0, p1, p2), gather3<1>(p0, p1, p2), gather3<2>(p0, p1, p2)}};
}
template <>
ZIV_INLINE Channels<32, 4> load4<32>(const uint8_t* p) {
    const __m256i by_channel = both_halves(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    const __m256i a = _mm256_shuffle_epi8(load_halves(p, p + 64), by_channel);
    const __m256i b = _mm256_shuffle_epi8(load_halves(p + 16, p + 80), by_channel);
    const __m256i c = _mm256_shuffle_epi8(load_halves(p + 32, p + 96), by_channel);
    const __m256i d = _mm256_shuffle_epi8(load_halves(p + 48, p + 112), by_channel);
    const __m256i ab01 = _mm256_unpacklo_epi32(a, b), ab23 = _mm256_unpackhi_epi32(a, b);
    const __m256i cd01 = _mm256_unpacklo_epi32(c, d), cd23 = _mm256_unpackhi_epi32(c, d);
    return {{(U8<32>)_mm256_unpacklo_epi64(ab01, cd01), (U8<32>)_mm256_unpackhi_epi64(ab01, cd01),
             (U8<32>)_mm256_unpacklo_epi64(ab23, cd23), (U8<32>)_mm256_unpackhi_epi64(ab23, cd23)}};
}

template <>
ZIV_INLINE void store2<32>(uint8_t* p, U8<32> a, U8<32> b) {
    const __m256i a_split = _mm256_permute4x64_epi64((__m256i)a, 0xD8), b_split = _mm256_permute4x64_epi64((__m256i)b, 0xD8);
    store256(p, _mm256_unpacklo_epi8(a_split, b_split));
    store256(p + 32, _mm256_unpackhi_epi8(a_split, b_split));
}
template <int k>
ZIV_INLINE __m256i spread3(U8<32> a, U8<32> b, U8<32> c) {
    return _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8((__m256i)a, both_halves(spread_mask<3, k, 0>())),
                                           _mm256_shuffle_epi8((__m256i)b, both_halves(spread_mask<3, k, 1>()))),
                           _mm256_shuffle_epi8((__m256i)c, both_halves(spread_mask<3, k, 2>())));
}
template <>
ZIV_INLINE void store3<32>(uint8_t* p, U8<32> a, U8<32> b, U8<32> c) {
    store_halves(p, p + 48, spread3<0>(a, b, c));
    store_halves(p + 16, p + 64, spread3<1>(a, b, c));
    store_halves(p + 32, p + 80, spread3<2>(a, b, c));
}
template <>
ZIV_INLINE void store4<32>(uint8_t* p, U8<32> a, U8<32> b, U8<32> c, U8<32> d) {
    const __m256i ab_lo = _mm256_unpacklo_epi8((__m256i)a, (__m256i)b), ab_hi = _mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
    const __m256i cd_lo = _mm256_unpacklo_epi8((__m256i)c, (__m256i)d), cd_hi = _mm256_unpackhi_epi8((__m256i)c, (__m256i)d);
    store_halves(p, p + 64, _mm256_unpacklo_epi16(ab_lo, cd_lo));
    store_halves(p + 16, p + 80, _mm256_unpackhi_epi16(ab_lo, cd_lo));
    store_halves(p + 32, p + 96, _mm256_unpacklo_epi16(ab_hi, cd_hi));
    store_halves(p + 48, p + 112, _mm256_unpackhi_epi16(ab_hi, cd_hi));
}

// ---- Repacking of chroma ----

template <>
ZIV_INLINE U8<32> load_but_last<32>(const uint8_t* p) {
    return (U8<32>)_mm256_inserti128_si256(_mm256_castsi128_si256(load128(p)), (__m128i)load_but_last<16>(p + 16), 1);
}
template <>
ZIV_INLINE U8<32> swap_pairs<32>(U8<32> v) {
    return (U8<32>)_mm256_shuffle_epi8((__m256i)v, both_halves(bytes128([](int n) { return n ^ 1; })));
}

// ---- Selection and unsigned products ----

template <>
ZIV_INLINE U8<32> select(U8<32> mask, U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_blendv_epi8((__m256i)b, (__m256i)a, (__m256i)mask);
}

template <>
ZIV_INLINE U16<32> multiply_high_unsigned<32>(U16<32> a, U16<32> b) {
    return (U16<32>)_mm256_mulhi_epu16((__m256i)a, (__m256i)b);
}

// ---- Turning and mirroring ----

template <>
ZIV_INLINE U8<32> load_parts<32>(const uint8_t* p, ptrdiff_t distance) {
    return (U8<32>)load_halves(p, p + distance);
}
template <>
ZIV_INLINE U8<32> zip_parts_low<32>(U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_unpacklo_epi8((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE U8<32> zip_parts_high<32>(U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE U8<32> zip_pair_parts_low<32>(U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_unpacklo_epi16((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE U8<32> zip_pair_parts_high<32>(U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_unpackhi_epi16((__m256i)a, (__m256i)b);
}
template <>
ZIV_INLINE U8<32> reverse_bytes<32>(U8<32> v) {
    const __m256i within = both_halves(_mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
    return (U8<32>)_mm256_permute4x64_epi64(_mm256_shuffle_epi8((__m256i)v, within), 0x4E);
}
template <>
ZIV_INLINE U8<32> reverse_pairs<32>(U8<32> v) {
    const __m256i within = both_halves(_mm_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
    return (U8<32>)_mm256_permute4x64_epi64(_mm256_shuffle_epi8((__m256i)v, within), 0x4E);
}

// ---- Pairs of chroma samples ----

template <>
ZIV_INLINE void store2_pairs<32>(uint8_t* p, U8<32> a, U8<32> b) {
    store_halves(p, p + 32, (__m256i)zip_pair_parts_low<32>(a, b));
    store_halves(p + 16, p + 48, (__m256i)zip_pair_parts_high<32>(a, b));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
