// SPDX-License-Identifier: MIT
// The lane vocabulary on 64-byte vectors of x86-64 with AVX-512 F, BW, VL and VBMI: bytes move anywhere in one permutation.
#pragma once

#include "lanes/x86_32.h"

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

template <>
ZIV_INLINE U8<64> add_saturating(U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_adds_epu8((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> subtract_saturating(U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_subs_epu8((__m512i)a, (__m512i)b);
}
template <>
ZIV_INLINE U8<64> average_up(U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_avg_epu8((__m512i)a, (__m512i)b);
}

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

// A table of byte numbers and a mask, hidden from compilers that would merge permutations into costlier ones.
template <class Index>
ZIV_INLINE __m512i hidden_bytes512(Index index) {
    __m512i bytes = bytes512(index);
    asm("" : "+v"(bytes));
    return bytes;
}
ZIV_INLINE __mmask64 hidden_mask(__mmask64 mask) {
    asm("" : "+Yk"(mask));
    return mask;
}

ZIV_INLINE __m512i interleave_halves(__m512i v) {
    return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v);
}

template <>
ZIV_INLINE S16<64> weigh_signed_bytes<64>(U8<64> pairs, int weight_a, int weight_b) {
    return (S16<64>)_mm512_maddubs_epi16((__m512i)constant<64>(weight_a + 256 * weight_b), (__m512i)pairs);
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

// ---- Repacking of chroma ----

template <>
ZIV_INLINE U8<64> load_but_last<64>(const uint8_t* p) {
    return (U8<64>)_mm512_maskz_loadu_epi8(~__mmask64{0} >> 1, p);
}
template <>
ZIV_INLINE U8<64> swap_pairs<64>(U8<64> v) {
    return (U8<64>)_mm512_shuffle_epi8((__m512i)v, _mm512_broadcast_i32x4(bytes128([](int n) { return n ^ 1; })));
}

// ---- Selection and unsigned products ----

template <>
ZIV_INLINE U8<64> select(U8<64> mask, U8<64> a, U8<64> b) {
    return (U8<64>)_mm512_ternarylogic_epi32((__m512i)mask, (__m512i)a, (__m512i)b, 0xCA);
}

template <>
ZIV_INLINE U16<64> multiply_high_unsigned<64>(U16<64> a, U16<64> b) {
    return (U16<64>)_mm512_mulhi_epu16((__m512i)a, (__m512i)b);
}

// ---- Turning and mirroring ----

template <>
ZIV_INLINE U8<64> load_parts<64>(const uint8_t* p, ptrdiff_t distance) {
    // A masked broadcast is a load into its place, which an insertion is not.
    __m512i v = _mm512_broadcast_i32x4(load128(p));
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

// ---- Pairs of chroma samples ----

template <>
ZIV_INLINE void store2_pairs<64>(uint8_t* p, U8<64> a, U8<64> b) {
    const __m512i low = bytes512([](int n) { return n / 4 * 2 + n % 2 + n % 4 / 2 * 64; });
    const __m512i high = bytes512([](int n) { return 32 + n / 4 * 2 + n % 2 + n % 4 / 2 * 64; });
    store512(p, _mm512_permutex2var_epi8((__m512i)a, low, (__m512i)b));
    store512(p + 64, _mm512_permutex2var_epi8((__m512i)a, high, (__m512i)b));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
