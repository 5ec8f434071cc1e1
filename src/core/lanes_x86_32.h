// The lane vocabulary on 32-byte vectors of x86-64 with AVX2. Most byte shuffles stay within a vector's two 16-byte halves: the
// forms below work on the halves side by side, each as its 16-byte sibling does, and load or store the halves where they
// belong.
#pragma once

#include "core/lanes_x86_16.h"

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
ZIV_INLINE __m256i both_halves(__m128i v) { return _mm256_broadcastsi128_si256(v); }

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

ZIV_INLINE U8<32> add_saturating(U8<32> a, U8<32> b) { return (U8<32>)_mm256_adds_epu8((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> subtract_saturating(U8<32> a, U8<32> b) { return (U8<32>)_mm256_subs_epu8((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> average_up(U8<32> a, U8<32> b) { return (U8<32>)_mm256_avg_epu8((__m256i)a, (__m256i)b); }

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

// ---- Luma plus a term of its chroma pair ----

// Three channels: 16 pixels and their 8 pairs in each half.
template <>
struct PixelTerms3<32> {
    __m256i up[3], down[3];
};
template <int k, int half>
ZIV_INLINE __m256i place_terms3(__m256i t01, __m256i t2) {
    return _mm256_or_si256(_mm256_shuffle_epi8(t01, both_halves(pair_mask_01<k>())),
                           _mm256_shuffle_epi8(t2, both_halves(pair_mask_2<k, half>())));
}
template <>
ZIV_INLINE PixelTerms3<32> pixel_terms<32>(S16<32> d0, S16<32> d1, S16<32> d2) {
    const __m256i up01 = _mm256_packus_epi16((__m256i)d0, (__m256i)d1);
    const __m256i down01 = _mm256_packus_epi16((__m256i)-d0, (__m256i)-d1);
    const __m256i t2 = _mm256_packus_epi16((__m256i)d2, (__m256i)-d2);
    return {{place_terms3<0, 0>(up01, t2), place_terms3<1, 0>(up01, t2), place_terms3<2, 0>(up01, t2)},
            {place_terms3<0, 1>(down01, t2), place_terms3<1, 1>(down01, t2), place_terms3<2, 1>(down01, t2)}};
}
// Luma in every byte of its pixel: register k of both halves.
template <int k>
ZIV_INLINE __m256i spread_luma3(U8<32> luma) {
    return _mm256_shuffle_epi8((__m256i)luma, both_halves(luma_mask3<k>()));
}
// From packed 4:2:2, luma in the even bytes, 8 pixels in each half of `first` and the 8 after them in `second`.
template <>
struct PackedLuma<32> {
    __m256i first, second;
};
template <>
ZIV_INLINE Packed422<32> load_packed422<32, 3>(const uint8_t* p) {
    const __m256i a = load_halves(p, p + 32), b = load_halves(p + 16, p + 48);
    return {{a, b}, (U8<32>)_mm256_packus_epi16(_mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8))};
}
template <int k>
ZIV_INLINE __m256i spread_luma3(const PackedLuma<32>& luma) {
    const __m128i from_first = bytes128([](int n) { return (16 * k + n) / 3 < 8 ? (16 * k + n) / 3 * 2 : 0x80; });
    const __m128i from_second = bytes128([](int n) { return (16 * k + n) / 3 < 8 ? 0x80 : (16 * k + n) / 3 * 2 - 16; });
    if constexpr (k == 0) return _mm256_shuffle_epi8(luma.first, both_halves(from_first));
    const __m256i r = _mm256_shuffle_epi8(luma.second, both_halves(from_second));
    return k == 2 ? r : _mm256_or_si256(r, _mm256_shuffle_epi8(luma.first, both_halves(from_first)));
}
template <int k, class Luma>
ZIV_INLINE void store_register_pair(uint8_t* p, const Luma& luma, const PixelTerms3<32>& t) {
    store_halves(p + 16 * k, p + 16 * (3 + k), _mm256_subs_epu8(_mm256_adds_epu8(spread_luma3<k>(luma), t.up[k]), t.down[k]));
}
template <class Luma>
ZIV_INLINE void store_pixels32(uint8_t* p, const Luma& luma, const PixelTerms3<32>& t) {
    store_register_pair<0>(p, luma, t);
    store_register_pair<1>(p, luma, t);
    store_register_pair<2>(p, luma, t);
}
template <>
ZIV_INLINE void store_pixels<32>(uint8_t* p, U8<32> luma, const PixelTerms3<32>& t) {
    store_pixels32(p, luma, t);
}
template <>
ZIV_INLINE void store_pixels<32>(uint8_t* p, PackedLuma<32> luma, const PixelTerms3<32>& t) {
    store_pixels32(p, luma, t);
}

// Four channels: vector k holds pixels 8 k to 8 k + 7, four in each half, and is stored whole, as halves cost as much. So the
// two pairs of four pixels stay together and go to the halves by turns, and luma stands in both halves.
ZIV_INLINE __m256i load_twice(const uint8_t* p) { return both_halves(load128(p)); }
template <>
ZIV_INLINE U8<32> arrange_pairs<32, 4>(U8<32> pairs) {
    return (U8<32>)_mm256_permutevar8x32_epi32((__m256i)pairs, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
}
template <>
ZIV_INLINE U16<32> load_arranged<32, 4>(const uint8_t* p) {
    const __m256i bytes = bytes256([](int n) { return n % 2 ? 0x80 : n % 16 / 4 * 4 + n / 16 * 2 + n % 4 / 2; });
    return (U16<32>)_mm256_shuffle_epi8(load_twice(p), bytes);
}
template <>
constexpr int pair_in_lane<32, 4>(int lane) {
    return lane % 8 / 2 * 4 + lane / 8 * 2 + lane % 2;
}

template <>
struct PixelTerms4<32> {
    __m256i up[4], down[4];
};
template <int first>
ZIV_INLINE __m256i place_terms4(__m256i terms) {
    return _mm256_shuffle_epi8(terms, both_halves(pair_mask4<first>()));
}
template <>
ZIV_INLINE PixelTerms4<32> pixel_terms<32>(S16<32> d0, S16<32> d1, S16<32> d2, uint8_t alpha) {
    const __m256i zero = _mm256_setzero_si256(), full = (__m256i)constant<32>(255),
                  down3 = _mm256_set1_epi32((510 - alpha) << 16);
    const __m256i lo01 = _mm256_unpacklo_epi16((__m256i)d0, (__m256i)d1),
                  hi01 = _mm256_unpackhi_epi16((__m256i)d0, (__m256i)d1);
    const __m256i lo23 = _mm256_unpacklo_epi16((__m256i)d2, full), hi23 = _mm256_unpackhi_epi16((__m256i)d2, full);
    const __m256i up_lo = _mm256_packus_epi16(lo01, lo23), up_hi = _mm256_packus_epi16(hi01, hi23);
    const __m256i down_lo = _mm256_packus_epi16(_mm256_sub_epi16(zero, lo01), _mm256_sub_epi16(down3, lo23));
    const __m256i down_hi = _mm256_packus_epi16(_mm256_sub_epi16(zero, hi01), _mm256_sub_epi16(down3, hi23));
    return {{place_terms4<0>(up_lo), place_terms4<2>(up_lo), place_terms4<0>(up_hi), place_terms4<2>(up_hi)},
            {place_terms4<0>(down_lo), place_terms4<2>(down_lo), place_terms4<0>(down_hi), place_terms4<2>(down_hi)}};
}
template <int k>
ZIV_INLINE void store_vector4(uint8_t* p, __m256i luma, const PixelTerms4<32>& t) {
    const __m256i spread = _mm256_shuffle_epi8(luma, bytes256([](int n) { return 8 * (k % 2) + n / 4; }));
    store256(p + 32 * k, _mm256_subs_epu8(_mm256_adds_epu8(spread, t.up[k]), t.down[k]));
}
ZIV_INLINE void store_pixels32(uint8_t* p, __m256i low, __m256i high, const PixelTerms4<32>& t) {
    store_vector4<0>(p, low, t);
    store_vector4<1>(p, low, t);
    store_vector4<2>(p, high, t);
    store_vector4<3>(p, high, t);
}
template <>
ZIV_INLINE void store_pixels<32>(uint8_t* p, U8<32> luma, const PixelTerms4<32>& t) {
    store_pixels32(p, _mm256_permute4x64_epi64((__m256i)luma, 0x44), _mm256_permute4x64_epi64((__m256i)luma, 0xEE), t);
}
template <>
ZIV_INLINE void store_pixels<32>(uint8_t* p, const uint8_t* luma, const PixelTerms4<32>& t) {
    store_pixels32(p, load_twice(luma), load_twice(luma + 16), t);
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

// Of the six halves of packed pixels the first three come from the low half of a vector of luma or pairs, the others from the
// high one.
ZIV_INLINE __m256i masks256(__m128i low, __m128i high) { return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1); }
template <>
struct PackedChroma<32> {
    __m256i part[3];
};
template <>
ZIV_INLINE PackedChroma<32> packed_chroma<32>(U8<32> pairs) {
    const __m256i p = (__m256i)pairs, low = _mm256_permute4x64_epi64(p, 0x44), high = _mm256_permute4x64_epi64(p, 0xEE);
    const __m128i mask0 = packed_chroma_mask<0>(), mask1 = packed_chroma_mask<1>(), mask2 = packed_chroma_mask<2>();
    return {{_mm256_shuffle_epi8(low, masks256(mask0, mask1)), _mm256_shuffle_epi8(p, masks256(mask2, mask0)),
             _mm256_shuffle_epi8(high, masks256(mask1, mask2))}};
}
template <>
ZIV_INLINE void store_packed<32>(uint8_t* p, U8<32> luma, const PackedChroma<32>& chroma) {
    const __m256i y = (__m256i)luma, low = _mm256_permute4x64_epi64(y, 0x44), high = _mm256_permute4x64_epi64(y, 0xEE);
    const __m128i mask0 = spread_mask<3, 0, 0>(), mask1 = spread_mask<3, 1, 0>(), mask2 = spread_mask<3, 2, 0>();
    store256(p, _mm256_or_si256(_mm256_shuffle_epi8(low, masks256(mask0, mask1)), chroma.part[0]));
    store256(p + 32, _mm256_or_si256(_mm256_shuffle_epi8(y, masks256(mask2, mask0)), chroma.part[1]));
    store256(p + 64, _mm256_or_si256(_mm256_shuffle_epi8(high, masks256(mask1, mask2)), chroma.part[2]));
}

// ---- Selection and quotients ----

ZIV_INLINE U8<32> select(U8<32> mask, U8<32> a, U8<32> b) {
    return (U8<32>)_mm256_blendv_epi8((__m256i)b, (__m256i)a, (__m256i)mask);
}

template <>
ZIV_INLINE U16<32> multiply_high_unsigned<32>(U16<32> a, U16<32> b) {
    return (U16<32>)_mm256_mulhi_epu16((__m256i)a, (__m256i)b);
}

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

// ---- Whole pixels moved from one byte layout to another: 16 pixels in each half ----

// The masks of two registers of 16 bytes beside each other.
template <class Low, class High>
ZIV_INLINE __m256i first_masks() {
    return bytes256([](int n) { return n < 16 ? first_byte<Low>(n) : first_byte<High>(n - 16); });
}
template <class Low, class High>
ZIV_INLINE __m256i second_masks() {
    return bytes256([](int n) { return n < 16 ? second_byte<Low>(n) : second_byte<High>(n - 16); });
}
template <class Low, class High>
ZIV_INLINE __m256i ones_masks() {
    return bytes256([](int n) { return (n < 16 ? Low::is_one(n) : High::is_one(n - 16)) ? 255 : 0; });
}

template <int in, int... from>
struct PixelMove<32, in, from...> {
    template <int low, int high>
    ZIV_INLINE static __m256i load_parts(const uint8_t* src) {
        return high == low + 16 ? load256(src + low) : load_halves(src + low, src + high);
    }
    template <int k>
    ZIV_INLINE static __m256i moved(const uint8_t* src) {
        using Low = MoveSource<32, 16, 2 * k, in, from...>;
        using High = MoveSource<32, 16, 2 * k + 1, in, from...>;
        __m256i r = _mm256_shuffle_epi8(load_parts<Low::first, High::first>(src), first_masks<Low, High>());
        if constexpr (Low::two || High::two)
            r = _mm256_or_si256(r, _mm256_shuffle_epi8(load_parts<Low::second, High::second>(src), second_masks<Low, High>()));
        if constexpr (((from == ones) || ...)) r = _mm256_or_si256(r, ones_masks<Low, High>());
        return r;
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from);
        const __m256i r0 = moved<0>(src), r1 = moved<1>(src), r2 = moved<2>(src), r3 = moved<out - 1>(src);
        expect_writes<32 * out>(dst);
        store256(dst, r0);
        store256(dst + 32, r1);
        store256(dst + 64, r2);
        if constexpr (out == 4) store256(dst + 96, r3);
    }
};

// From 4 bytes to 3: eight pixels come to 24 bytes, which a permutation of 32-bit lanes puts where their parts of the three
// stored vectors lie.
template <int first, int second, int third>
struct PixelMove<32, 4, first, second, third> {
    template <int k>
    ZIV_INLINE static __m256i placed(const uint8_t* src) {
        const __m256i kept = both_halves(bytes128([](int n) {
            constexpr int place[3] = {first, second, third};
            return n < 12 ? n / 3 * 4 + place[n % 3] : 0x80;
        }));
        constexpr auto from = [](int lane) {
            const int at = (lane + 8 * 3 - 6 * k) % 8;  // the lane among the 24 bytes
            return at < 3 ? at : at < 6 ? at + 1 : 3;
        };
        const __m256i lanes = _mm256_setr_epi32(from(0), from(1), from(2), from(3), from(4), from(5), from(6), from(7));
        return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(load256(src + 32 * k), kept), lanes);
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        const __m256i p0 = placed<0>(src), p1 = placed<1>(src), p2 = placed<2>(src), p3 = placed<3>(src);
        expect_writes<96>(dst);
        store256(dst, _mm256_blend_epi32(p0, p1, 0xC0));
        store256(dst + 32, _mm256_blend_epi32(p1, p2, 0xF0));
        store256(dst + 64, _mm256_blend_epi32(p2, p3, 0xFC));
    }
};

ZIV_INLINE __m256i words_565(__m256i lanes0, __m256i lanes1) {
    const __m256i kept = _mm256_set1_epi32(0x00F8FCF8), bytes = _mm256_set1_epi32(0x00404001);
    const __m256i words = _mm256_set1_epi32(0x00200001);
    lanes0 = _mm256_madd_epi16(_mm256_maddubs_epi16(_mm256_and_si256(lanes0, kept), bytes), words);
    lanes1 = _mm256_madd_epi16(_mm256_maddubs_epi16(_mm256_and_si256(lanes1, kept), bytes), words);
    return _mm256_packus_epi32(_mm256_srli_epi32(lanes0, 3), _mm256_srli_epi32(lanes1, 3));
}
template <int high, int low>
struct PixelPack565<32, high, low> {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        // Pixels 0 to 3 and 8 to 11 beside each other, 4 to 7 and 12 to 15, and so on: a whole vector of words in order.
        const __m256i mask = both_halves(mask_565<high, low, 0>());
        const __m256i p0 = _mm256_shuffle_epi8(load_halves(src, src + 24), mask);
        const __m256i p1 = _mm256_shuffle_epi8(load_halves(src + 12, src + 36), mask);
        const __m256i p2 = _mm256_shuffle_epi8(load_halves(src + 48, src + 72), mask);
        const __m128i late = _mm_shuffle_epi8(load128(src + 80), mask_565<high, low, 4>());
        const __m128i early = _mm_shuffle_epi8(load128(src + 60), mask_565<high, low, 0>());
        const __m256i p3 = _mm256_inserti128_si256(_mm256_castsi128_si256(early), late, 1);
        store256(dst, words_565(p0, p1));
        store256(dst + 32, words_565(p2, p3));
    }
};

// ---- Runs of bytes ----

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

// ---- Pairs of chroma samples made fewer or more ----

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
template <>
ZIV_INLINE void store2_pairs<32>(uint8_t* p, U8<32> a, U8<32> b) {
    store_halves(p, p + 32, (__m256i)zip_pair_parts_low<32>(a, b));
    store_halves(p + 16, p + 48, (__m256i)zip_pair_parts_high<32>(a, b));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
