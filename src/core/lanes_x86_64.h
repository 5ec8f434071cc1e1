// The lane vocabulary on 64-byte vectors of x86-64 with AVX-512 F, BW, VL and VBMI: bytes move anywhere in one permutation.
#pragma once

#include "core/lanes_x86_32.h"

namespace zivcolor::ZIVCOLOR_TARGET {

ZIV_INLINE __m512i load512(const uint8_t* p) { return _mm512_loadu_si512(p); }
ZIV_INLINE void store512(uint8_t* p, __m512i v) { _mm512_storeu_si512(p, v); }

template <class Index>
ZIV_INLINE __m512i bytes512(Index index) {
    return _mm512_load_si512(byte_table<64>(index));
}
// A mask with bit n set where test(n) holds.
template <class Test>
ZIV_INLINE constexpr __mmask64 mask512(Test test) {
    uint64_t mask = 0;
    for (int n = 0; n < 64; n++) mask |= uint64_t{test(n)} << n;
    return mask;
}

template <>
ZIV_INLINE U16<64> load_widened<64>(const uint8_t* p) {
    return (U16<64>)_mm512_cvtepu8_epi16(load256(p));
}
template <>
ZIV_INLINE void store_low_bytes<64>(uint8_t* p, U16<64> v) {
    store256(p, _mm512_cvtepi16_epi8((__m512i)v));
}

ZIV_INLINE U8<64> add_saturating(U8<64> a, U8<64> b) { return (U8<64>)_mm512_adds_epu8((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> subtract_saturating(U8<64> a, U8<64> b) { return (U8<64>)_mm512_subs_epu8((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> average_up(U8<64> a, U8<64> b) { return (U8<64>)_mm512_avg_epu8((__m512i)a, (__m512i)b); }

template <>
ZIV_INLINE U8<64> double_bytes<64>(U16<64> v) {
    return (U8<64>)_mm512_shuffle_epi8(
        (__m512i)v, _mm512_broadcast_i32x4(_mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14)));
}
template <>
ZIV_INLINE U8<64> even_lanes<64>(U8<64> a, U8<64> b) {
    const __m512i index = bytes512([](int n) { return 2 * n; });
    return (U8<64>)_mm512_permutex2var_epi8((__m512i)a, index, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> odd_lanes<64>(U8<64> a, U8<64> b) {
    const __m512i index = bytes512([](int n) { return 2 * n + 1; });
    return (U8<64>)_mm512_permutex2var_epi8((__m512i)a, index, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> interleave_low<64>(U8<64> a, U8<64> b) {
    const __m512i index = bytes512([](int n) { return n / 2 + (n % 2 ? 64 : 0); });
    return (U8<64>)_mm512_permutex2var_epi8((__m512i)a, index, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> interleave_high<64>(U8<64> a, U8<64> b) {
    const __m512i index = bytes512([](int n) { return 32 + n / 2 + (n % 2 ? 64 : 0); });
    return (U8<64>)_mm512_permutex2var_epi8((__m512i)a, index, (__m512i)b);
}

template <>
ZIV_INLINE U8<64> narrow_saturating<64>(S16<64> lo, S16<64> hi) {
    const __m512i in_order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
    return (U8<64>)_mm512_permutexvar_epi64(in_order, _mm512_packus_epi16((__m512i)lo, (__m512i)hi));
}
template <>
ZIV_INLINE Wide<64> widen<64>(U8<64> v) {
    const __m512i zero = _mm512_setzero_si512();
    return {(U16<64>)_mm512_unpacklo_epi8((__m512i)v, zero), (U16<64>)_mm512_unpackhi_epi8((__m512i)v, zero)};
}
template <>
ZIV_INLINE U8<64> narrow<64>(Wide<64> v) {
    return (U8<64>)_mm512_packus_epi16((__m512i)v.lo, (__m512i)v.hi);
}

template <>
ZIV_INLINE S16<64> constant<64>(int value) {
    S16<64> lanes = S16<64>{} + static_cast<int16_t>(value);
    asm("" : "+v"(lanes));
    return lanes;
}
template <>
ZIV_INLINE S16<64> multiply_round_high<64>(S16<64> a, S16<64> b) {
    return (S16<64>)_mm512_mulhrs_epi16((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE S16<64> multiply_q15<64>(S16<64> a, int weight) {
    return (S16<64>)_mm512_mulhi_epi16((__m512i)a, (__m512i)constant<64>(2 * weight));
}
template <>
ZIV_INLINE S16<64> multiply_high<64>(S16<64> a, S16<64> b) {
    return (S16<64>)_mm512_mulhi_epi16((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE S16<64> weigh_pair_q15<64>(S16<64> a, S16<64> b, int weight_a, int weight_b) {
    const __m512i weights = _mm512_set1_epi32((weight_a & 0xFFFF) | static_cast<int>(static_cast<uint32_t>(weight_b) << 16));
    const __m512i half = _mm512_set1_epi32(0x4000);
    const __m512i lo = _mm512_madd_epi16(_mm512_unpacklo_epi16((__m512i)a, (__m512i)b), weights);
    const __m512i hi = _mm512_madd_epi16(_mm512_unpackhi_epi16((__m512i)a, (__m512i)b), weights);
    return (S16<64>)_mm512_packs_epi32(_mm512_srai_epi32(_mm512_add_epi32(lo, half), 15),
                                       _mm512_srai_epi32(_mm512_add_epi32(hi, half), 15));
}

// ---- Interleaving loads and stores of c channels ----

// Each half of the bytes is parted by itself, the second with its channels exchanged: then either channel is a blend or a shift
// of the two.
template <>
ZIV_INLINE Channels<64, 2> load2<64>(const uint8_t* p) {
    const __m512i a = _mm512_permutexvar_epi8(bytes512([](int n) { return n % 32 * 2 + n / 32; }), load512(p));
    const __m512i b = _mm512_permutexvar_epi8(bytes512([](int n) { return n % 32 * 2 + 1 - n / 32; }), load512(p + 64));
    return {{(U8<64>)_mm512_mask_mov_epi64(a, 0xF0, b), (U8<64>)_mm512_alignr_epi64(b, a, 4)}};
}

// Channel `channel` of 3: the bytes 3 n + channel of the 192 bytes in p0, p1, p2.
template <int channel>
ZIV_INLINE U8<64> gather3(__m512i p0, __m512i p1, __m512i p2) {
    const __m512i index = bytes512([](int n) { return (3 * n + channel) & 63; });
    constexpr __mmask64 from1 = mask512([](int n) { return (3 * n + channel) / 64 == 1; });
    constexpr __mmask64 from2 = mask512([](int n) { return (3 * n + channel) / 64 == 2; });
    __m512i r = _mm512_permutexvar_epi8(index, p0);
    r = _mm512_mask_permutexvar_epi8(r, from1, index, p1);
    return (U8<64>)_mm512_mask_permutexvar_epi8(r, from2, index, p2);
}
template <>
ZIV_INLINE Channels<64, 3> load3<64>(const uint8_t* p) {
    const __m512i p0 = load512(p), p1 = load512(p + 64), p2 = load512(p + 128);
    return {{gather3<0>(p0, p1, p2), gather3<1>(p0, p1, p2), gather3<2>(p0, p1, p2)}};
}
template <>
ZIV_INLINE Channels<64, 4> load4<64>(const uint8_t* p) {
    const __m512i by_channel = bytes512([](int n) { return n % 16 * 4 + n / 16; });
    const __m512i a = _mm512_permutexvar_epi8(by_channel, load512(p)), b = _mm512_permutexvar_epi8(by_channel, load512(p + 64));
    const __m512i c = _mm512_permutexvar_epi8(by_channel, load512(p + 128));
    const __m512i d = _mm512_permutexvar_epi8(by_channel, load512(p + 192));
    const __m512i ab02 = _mm512_shuffle_i64x2(a, b, 0x88), ab13 = _mm512_shuffle_i64x2(a, b, 0xDD);
    const __m512i cd02 = _mm512_shuffle_i64x2(c, d, 0x88), cd13 = _mm512_shuffle_i64x2(c, d, 0xDD);
    return {{(U8<64>)_mm512_shuffle_i64x2(ab02, cd02, 0x88), (U8<64>)_mm512_shuffle_i64x2(ab13, cd13, 0x88),
             (U8<64>)_mm512_shuffle_i64x2(ab02, cd02, 0xDD), (U8<64>)_mm512_shuffle_i64x2(ab13, cd13, 0xDD)}};
}

template <>
ZIV_INLINE void store2<64>(uint8_t* p, U8<64> a, U8<64> b) {
    const __m512i by_halves = _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7);
    const __m512i a_split = _mm512_permutexvar_epi64(by_halves, (__m512i)a);
    const __m512i b_split = _mm512_permutexvar_epi64(by_halves, (__m512i)b);
    store512(p, _mm512_unpacklo_epi8(a_split, b_split));
    store512(p + 64, _mm512_unpackhi_epi8(a_split, b_split));
}
// Register k of the interleaved channels: byte n is channel (64 k + n) mod 3 of pixel (64 k + n) / 3.
template <int k>
ZIV_INLINE __m512i spread3(U8<64> a, U8<64> b, U8<64> c) {
    const __m512i pixel = bytes512([](int n) { return (64 * k + n) / 3; });
    constexpr __mmask64 channel1 = mask512([](int n) { return (64 * k + n) % 3 == 1; });
    constexpr __mmask64 channel2 = mask512([](int n) { return (64 * k + n) % 3 == 2; });
    __m512i r = _mm512_permutexvar_epi8(pixel, (__m512i)a);
    r = _mm512_mask_permutexvar_epi8(r, channel1, pixel, (__m512i)b);
    return _mm512_mask_permutexvar_epi8(r, channel2, pixel, (__m512i)c);
}
template <>
ZIV_INLINE void store3<64>(uint8_t* p, U8<64> a, U8<64> b, U8<64> c) {
    store512(p, spread3<0>(a, b, c));
    store512(p + 64, spread3<1>(a, b, c));
    store512(p + 128, spread3<2>(a, b, c));
}
template <>
ZIV_INLINE void store4<64>(uint8_t* p, U8<64> a, U8<64> b, U8<64> c, U8<64> d) {
    const __m512i ab_lo = (__m512i)interleave_low<64>(a, b), ab_hi = (__m512i)interleave_high<64>(a, b);
    const __m512i cd_lo = (__m512i)interleave_low<64>(c, d), cd_hi = (__m512i)interleave_high<64>(c, d);
    const __m512i low = bytes512([](int n) { return n / 4 * 2 + n % 2 + (n % 4 / 2) * 64; });
    const __m512i high = bytes512([](int n) { return 32 + n / 4 * 2 + n % 2 + (n % 4 / 2) * 64; });
    store512(p, _mm512_permutex2var_epi8(ab_lo, low, cd_lo));
    store512(p + 64, _mm512_permutex2var_epi8(ab_lo, high, cd_lo));
    store512(p + 128, _mm512_permutex2var_epi8(ab_hi, low, cd_hi));
    store512(p + 192, _mm512_permutex2var_epi8(ab_hi, high, cd_hi));
}

// ---- Luma plus a term of its chroma pair ----
//
// The pairs 0 to 15 stand in the lower halves of the four 16-byte parts of a vector, the pairs 16 to 31 in the upper halves, so
// that unpacking and narrowing within the parts keeps either sixteen together.

// The 16-bit lane of a pair.
constexpr int lane_of_pair(int pair) { return pair % 16 / 4 * 8 + pair / 16 * 4 + pair % 4; }
template <>
constexpr int pair_in_lane<64, 3>(int lane) {
    return lane / 8 * 4 + lane % 8 / 4 * 16 + lane % 4;
}
template <>
constexpr int pair_in_lane<64, 4>(int lane) {
    return pair_in_lane<64, 3>(lane);
}

// A table of byte numbers and a mask, hidden from compilers that would merge permutations into costlier ones.
template <class Index>
ZIV_INLINE __m512i kept_bytes512(Index index) {
    __m512i bytes = bytes512(index);
    asm("" : "+v"(bytes));
    return bytes;
}
ZIV_INLINE __mmask64 kept_mask(__mmask64 mask) {
    asm("" : "+Yk"(mask));
    return mask;
}

ZIV_INLINE __m512i halves_by_turns(__m512i v) { return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v); }
template <>
ZIV_INLINE U8<64> arrange_pairs<64, 3>(U8<64> pairs) {
    return (U8<64>)halves_by_turns((__m512i)pairs);
}
template <>
ZIV_INLINE U8<64> arrange_pairs<64, 4>(U8<64> pairs) {
    return (U8<64>)halves_by_turns((__m512i)pairs);
}
template <>
ZIV_INLINE U16<64> load_arranged<64, 3>(const uint8_t* p) {
    const __m512i index = kept_bytes512([](int n) { return pair_in_lane<64, 3>(n / 2); });
    constexpr __mmask64 low_bytes = mask512([](int n) { return n % 2 == 0; });
    return (U16<64>)_mm512_maskz_permutexvar_epi8(low_bytes, index, _mm512_castsi256_si512(load256(p)));
}
template <>
ZIV_INLINE U16<64> load_arranged<64, 4>(const uint8_t* p) {
    return load_arranged<64, 3>(p);
}
// Narrowing within the 16-byte parts leaves the pairs arranged.
template <>
struct PackedLuma<64> {
    __m512i first, second;
};
template <>
ZIV_INLINE Packed422<64> load_packed422<64, 3>(const uint8_t* p) {
    const __m512i a = load512(p), b = load512(p + 64);
    return {{a, b}, (U8<64>)_mm512_packus_epi16(_mm512_srli_epi16(a, 8), _mm512_srli_epi16(b, 8))};
}

// The terms of 32 pairs as bytes, 16 pairs a vector: in every 16-byte part channels 0 and 1 of four pairs, side by side, then
// channel 2 of the part's eight pairs, of which the lower or the upper four belong. Narrowing with saturation splits a term
// into max(d, 0) and, of -d, max(-d, 0).
struct SplitTerms64 {
    __m512i up[2], down[2];
};
ZIV_INLINE SplitTerms64 split_terms(S16<64> d0, S16<64> d1, S16<64> d2) {
    const S16<64> lo = (S16<64>)_mm512_unpacklo_epi16((__m512i)d0, (__m512i)d1);
    const S16<64> hi = (S16<64>)_mm512_unpackhi_epi16((__m512i)d0, (__m512i)d1);
    return {{_mm512_packus_epi16((__m512i)lo, (__m512i)d2), _mm512_packus_epi16((__m512i)hi, (__m512i)d2)},
            {_mm512_packus_epi16((__m512i)-lo, (__m512i)-d2), _mm512_packus_epi16((__m512i)-hi, (__m512i)-d2)}};
}
// Where a term stands in the vector of its 16 pairs.
constexpr int byte_of_term(int pair, int channel) {
    return pair % 16 / 4 * 16 + (channel == 2 ? 8 + pair / 16 * 4 + pair % 4 : pair % 4 * 2 + channel);
}

template <>
struct PixelTerms3<64> {
    __m512i up[3], down[3];
};
// Register k of the stored pixels: the first from the first 16 pairs, the last from the others, the middle one from both.
template <int k>
ZIV_INLINE __m512i place_terms3(const __m512i (&terms)[2]) {
    const __m512i index = kept_bytes512([](int n) { return byte_of_term((64 * k + n) / 6, (64 * k + n) % 3); });
    const __m512i r = _mm512_permutexvar_epi8(index, terms[k / 2]);
    return k == 1 ? _mm512_mask_permutexvar_epi8(r, mask512([](int n) { return (64 * k + n) / 6 >= 16; }), index, terms[1]) : r;
}
template <>
ZIV_INLINE PixelTerms3<64> pixel_terms<64>(S16<64> d0, S16<64> d1, S16<64> d2) {
    const SplitTerms64 t = split_terms(d0, d1, d2);
    return {{place_terms3<0>(t.up), place_terms3<1>(t.up), place_terms3<2>(t.up)},
            {place_terms3<0>(t.down), place_terms3<1>(t.down), place_terms3<2>(t.down)}};
}

template <>
struct PixelTerms4<64> {
    __m512i up[4], down[4];
};
// Register q of the stored pixels, pairs 8 q to 8 q + 7, each twice. What stands in the fourth channel is as in `fourth`.
inline constexpr __mmask64 colours = mask512([](int n) { return n % 4 != 3; });
template <int q>
ZIV_INLINE __m512i place_terms4(const __m512i (&terms)[2], __m512i fourth) {
    const __m512i index = kept_bytes512([](int n) { return byte_of_term(8 * q + n / 8, n % 4 % 3); });
    return _mm512_mask_permutexvar_epi8(fourth, kept_mask(colours), index, terms[q / 2]);
}
template <>
ZIV_INLINE PixelTerms4<64> pixel_terms<64>(S16<64> d0, S16<64> d1, S16<64> d2, uint8_t alpha) {
    const SplitTerms64 t = split_terms(d0, d1, d2);
    const __m512i zero = _mm512_setzero_si512(), fourth = _mm512_set1_epi8(static_cast<char>(alpha));
    return {{place_terms4<0>(t.up, fourth), place_terms4<1>(t.up, fourth), place_terms4<2>(t.up, fourth),
             place_terms4<3>(t.up, fourth)},
            {place_terms4<0>(t.down, zero), place_terms4<1>(t.down, zero), place_terms4<2>(t.down, zero),
             place_terms4<3>(t.down, zero)}};
}

// Luma in every byte of its pixel's colours, 0 in the fourth channel: register k of c channels.
template <int c, int k>
ZIV_INLINE __m512i spread_luma(U8<64> luma) {
    const __m512i index = kept_bytes512([](int n) { return (64 * k + n) / c; });
    return c == 4 ? _mm512_maskz_permutexvar_epi8(kept_mask(colours), index, (__m512i)luma)
                  : _mm512_permutexvar_epi8(index, (__m512i)luma);
}
// The same from packed 4:2:2, luma in the even bytes, for three channels.
template <int c, int k>
ZIV_INLINE __m512i spread_luma(const PackedLuma<64>& luma) {
    static_assert(c == 3);
    const __m512i index = kept_bytes512([](int n) { return (64 * k + n) / c * 2 % 64; });
    const __m512i r = _mm512_permutexvar_epi8(index, k < 2 ? luma.first : luma.second);
    return k == 1 ? _mm512_mask_permutexvar_epi8(r, mask512([](int n) { return (64 * k + n) / c >= 32; }), index, luma.second)
                  : r;
}
template <int c, int k, class Luma, class Terms>
ZIV_INLINE void store_pixels_part(uint8_t* p, const Luma& luma, const Terms& t) {
    store512(p + 64 * k, _mm512_subs_epu8(_mm512_adds_epu8(spread_luma<c, k>(luma), t.up[k]), t.down[k]));
}
template <class Luma>
ZIV_INLINE void store_pixels64(uint8_t* p, const Luma& luma, const PixelTerms3<64>& t) {
    store_pixels_part<3, 0>(p, luma, t);
    store_pixels_part<3, 1>(p, luma, t);
    store_pixels_part<3, 2>(p, luma, t);
}
template <>
ZIV_INLINE void store_pixels<64>(uint8_t* p, U8<64> luma, const PixelTerms3<64>& t) {
    store_pixels64(p, luma, t);
}
template <>
ZIV_INLINE void store_pixels<64>(uint8_t* p, U8<64> luma, const PixelTerms4<64>& t) {
    store_pixels_part<4, 0>(p, luma, t);
    store_pixels_part<4, 1>(p, luma, t);
    store_pixels_part<4, 2>(p, luma, t);
    store_pixels_part<4, 3>(p, luma, t);
}
// From memory every 16-byte part takes the same sixteen bytes, so that one table serves for all four registers.
template <>
ZIV_INLINE void store_pixels<64>(uint8_t* p, const uint8_t* luma, const PixelTerms4<64>& t) {
    const __m512i index = kept_bytes512([](int n) { return n % 4 == 3 ? 0x80 : n / 4; });
    for (int q = 0; q < 4; q++) {
        const __m512i spread = _mm512_shuffle_epi8(_mm512_broadcast_i32x4(load128(luma + 16 * q)), index);
        store512(p + 64 * q, _mm512_subs_epu8(_mm512_adds_epu8(spread, t.up[q]), t.down[q]));
    }
}
template <>
ZIV_INLINE void store_pixels<64>(uint8_t* p, PackedLuma<64> luma, const PixelTerms3<64>& t) {
    store_pixels64(p, luma, t);
}

// ---- Repacking of chroma ----

template <>
ZIV_INLINE U8<64> load_but_last<64>(const uint8_t* p) {
    return (U8<64>)_mm512_maskz_loadu_epi8(~__mmask64{0} >> 1, p);
}
template <>
ZIV_INLINE U8<64> swap_pairs<64>(U8<64> v) {
    return (U8<64>)_mm512_shuffle_epi8((__m512i)v, _mm512_broadcast_i32x4(bytes128([](int n) { return n ^ 1; })));
}

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
ZIV_INLINE void store_packed_part(uint8_t* p, __m512i luma, const PackedChroma<64>& chroma) {
    const __m512i pixel = bytes512([](int n) { return (64 * k + n) / 3; });
    constexpr __mmask64 channel0 = mask512([](int n) { return (64 * k + n) % 3 == 0; });
    store512(p + 64 * k, _mm512_mask_permutexvar_epi8(chroma.part[k], kept_mask(channel0), pixel, luma));
}
template <>
ZIV_INLINE void store_packed<64>(uint8_t* p, U8<64> luma, const PackedChroma<64>& chroma) {
    store_packed_part<0>(p, (__m512i)luma, chroma);
    store_packed_part<1>(p, (__m512i)luma, chroma);
    store_packed_part<2>(p, (__m512i)luma, chroma);
}

// ---- Selection and quotients ----

ZIV_INLINE U8<64> select(U8<64> mask, U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_ternarylogic_epi32((__m512i)mask, (__m512i)a, (__m512i)b, 0xCA);
}

template <>
ZIV_INLINE U16<64> multiply_high_unsigned<64>(U16<64> a, U16<64> b) {
    return (U16<64>)_mm512_mulhi_epu16((__m512i)a, (__m512i)b);
}

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

// ---- Whole pixels moved from one byte layout to another ----

template <int in, int... from>
struct PixelMove<64, in, from...> {
    template <int k>
    ZIV_INLINE static __m512i moved(const uint8_t* src) {
        using Source = MoveSource<64, 64, k, in, from...>;
        const __m512i index = bytes512([](int n) { return Source::index_in_first(n) & 63; });
        const __m512i first = load512(src + Source::first);
        __m512i r;
        if constexpr (((from == ones) || ...)) {
            constexpr __mmask64 is_one = mask512([](int n) { return Source::is_one(n); });
            r = _mm512_mask_permutexvar_epi8(_mm512_set1_epi8(-1), ~is_one, index, first);
        } else {
            r = _mm512_permutexvar_epi8(index, first);
        }
        if constexpr (Source::two) {
            constexpr __mmask64 in_second = mask512([](int n) { return Source::in_second(n); });
            const __m512i index_in_second = bytes512([](int n) { return Source::index_in_second(n) & 63; });
            r = _mm512_mask_permutexvar_epi8(r, in_second, index_in_second, load512(src + Source::second));
        }
        return r;
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from);
        expect_writes<64 * out>(dst);
        const __m512i r0 = moved<0>(src), r1 = moved<1>(src), r2 = moved<2>(src), r3 = moved<out - 1>(src);
        store512(dst, r0);
        store512(dst + 64, r1);
        store512(dst + 128, r2);
        if constexpr (out == 4) store512(dst + 192, r3);
    }
};

template <int high, int low>
struct PixelPack565<64, high, low> {
    // Byte 3 n + place of the 96 bytes at src, in the even bytes of word n; the odd bytes take byte 3 n + odd_place.
    template <int place, int odd_place>
    ZIV_INLINE static __m512i pairs(__m512i first, __m512i last) {
        const __m512i index = bytes512([](int n) {
            const int at = n / 2 * 3 + (n % 2 ? odd_place : place);
            return at < 64 ? at : at - 32;
        });
        constexpr __mmask64 in_last = mask512([](int n) { return n / 2 * 3 + (n % 2 ? odd_place : place) >= 64; });
        return _mm512_mask_permutexvar_epi8(_mm512_permutexvar_epi8(index, first), in_last, index, last);
    }
    ZIV_INLINE static __m512i words(__m512i first, __m512i last) {
        const __m512i ends = pairs<low, high>(first, last), middle = pairs<1, 1>(first, last);
        // Bit by bit: the high end from `ends` as it stands, the low end from it shifted, the middle from between them.
        const __m512i both_ends = _mm512_ternarylogic_epi32(_mm512_set1_epi16(static_cast<int16_t>(0xF800 - 0x10000)), ends,
                                                            _mm512_srli_epi16(ends, 3), 0xCA);
        const __m512i shifted = _mm512_slli_epi16(_mm512_srli_epi16(middle, 10), 5);
        return _mm512_ternarylogic_epi32(_mm512_set1_epi16(0x07E0), shifted, both_ends, 0xCA);
    }
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        store512(dst, words(load512(src), load512(src + 32)));
        store512(dst + 64, words(load512(src + 96), load512(src + 128)));
    }
};

// ---- Runs of bytes ----

// Byte n of register q of Y0 U Y1 V: luma from one register, chroma from one that holds 32 samples of U below 32 of V.
template <int q>
ZIV_INLINE void store_yuyv_part(uint8_t* p, __m512i luma, __m512i chroma) {
    const __m512i index = bytes512([](int n) { return n % 2 ? 16 * q + n / 4 + n % 4 / 2 * 32 : 32 * q + n / 2; });
    constexpr __mmask64 from_chroma = mask512([](int n) { return n % 2 == 1; });
    store512(p, _mm512_mask_permutexvar_epi8(_mm512_permutexvar_epi8(index, luma), kept_mask(from_chroma), index, chroma));
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

// ---- Turning and mirroring ----

template <>
ZIV_INLINE U8<64> load_parts<64>(const uint8_t* p, ptrdiff_t distance) {
    // A masked broadcast is a load into its place, which an insertion is not.
    __m512i v = _mm512_castsi128_si512(load128(p));
    v = _mm512_mask_broadcast_i32x4(v, 0x00F0, load128(p + distance));
    v = _mm512_mask_broadcast_i32x4(v, 0x0F00, load128(p + 2 * distance));
    return (U8<64>)_mm512_mask_broadcast_i32x4(v, 0xF000, load128(p + 3 * distance));
}
template <>
ZIV_INLINE U8<64> zip_parts_low<64>(U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_unpacklo_epi8((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> zip_parts_high<64>(U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_unpackhi_epi8((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> zip_pair_parts_low<64>(U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_unpacklo_epi16((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> zip_pair_parts_high<64>(U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_unpackhi_epi16((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> reverse_bytes<64>(U8<64> v) {
    return (U8<64>)_mm512_permutexvar_epi8(bytes512([](int n) { return 63 - n; }), (__m512i)v);
}
template <>
ZIV_INLINE U8<64> reverse_pairs<64>(U8<64> v) {
    return (U8<64>)_mm512_permutexvar_epi8(bytes512([](int n) { return 62 - n / 2 * 2 + n % 2; }), (__m512i)v);
}

// ---- Pairs of chroma samples made fewer or more ----

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
template <>
ZIV_INLINE void store2_pairs<64>(uint8_t* p, U8<64> a, U8<64> b) {
    const __m512i low = bytes512([](int n) { return n / 4 * 2 + n % 2 + n % 4 / 2 * 64; });
    const __m512i high = bytes512([](int n) { return 32 + n / 4 * 2 + n % 2 + n % 4 / 2 * 64; });
    store512(p, _mm512_permutex2var_epi8((__m512i)a, low, (__m512i)b));
    store512(p + 64, _mm512_permutex2var_epi8((__m512i)a, high, (__m512i)b));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
