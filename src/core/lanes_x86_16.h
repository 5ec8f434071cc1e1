// The lane vocabulary on 16-byte vectors of x86-64 with SSE4.2.
#pragma once

#include <immintrin.h>

#include "core/lanes_portable.h"

namespace zivcolor::ZIVCOLOR_TARGET {

ZIV_INLINE __m128i load128(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
ZIV_INLINE void store128(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
ZIV_INLINE __m128i load64(const uint8_t* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }
ZIV_INLINE void store64(uint8_t* p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); }

// The lines eight lines on: rows that miss the first cache, and stores that straddle lines, otherwise wait for one another.
template <int bytes>
requires(bytes > 0) ZIV_INLINE void expect_writes(uint8_t* p) {
    const uintptr_t ahead = reinterpret_cast<uintptr_t>(p) + 512;
    for (uintptr_t line = 0; line < bytes; line += 64) __builtin_prefetch(reinterpret_cast<const void*>(ahead + line), 1);
}

template <int bytes>
requires(bytes > 0) ZIV_INLINE void expect_writes_ahead(uint8_t* p, ptrdiff_t ahead) {
    const uintptr_t first = reinterpret_cast<uintptr_t>(p) + static_cast<uintptr_t>(ahead);
    for (uintptr_t line = 0; line < bytes; line += 64) __builtin_prefetch(reinterpret_cast<const void*>(first + line), 1);
}

template <int bytes>
requires(bytes >= 48) ZIV_INLINE void expect_reads(const uint8_t* p) {
    const uintptr_t ahead = reinterpret_cast<uintptr_t>(p) + 1024;
    for (uintptr_t line = 0; line < bytes; line += 64) __builtin_prefetch(reinterpret_cast<const void*>(ahead + line));
}

template <>
ZIV_INLINE U16<16> load_widened<16>(const uint8_t* p) {
    return (U16<16>)_mm_cvtepu8_epi16(load64(p));
}
template <>
ZIV_INLINE void store_low_bytes<16>(uint8_t* p, U16<16> v) {
    const __m128i low = _mm_and_si128((__m128i)v, _mm_set1_epi16(0xFF));
    store64(p, _mm_packus_epi16(low, low));
}

ZIV_INLINE U8<16> add_saturating(U8<16> a, U8<16> b) { return (U8<16>)_mm_adds_epu8((__m128i)a, (__m128i)b); }
ZIV_INLINE U8<16> subtract_saturating(U8<16> a, U8<16> b) { return (U8<16>)_mm_subs_epu8((__m128i)a, (__m128i)b); }
ZIV_INLINE U8<16> average_up(U8<16> a, U8<16> b) { return (U8<16>)_mm_avg_epu8((__m128i)a, (__m128i)b); }

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

// ---- Luma plus a term of its chroma pair ----
//
// The terms are laid out once as the stored pixels are, so that a row costs only the spreading of its luma, an add and a
// subtract.

// Byte n of register k takes the term of pair ((16 k + n) / 3) / 2. Channels 0 and 1 stand in the lower and the upper half of
// one vector of bytes, channel 2 in half `half` of another.
template <int k>
ZIV_INLINE __m128i pair_mask_01() {
    return bytes128([](int n) {
        const int channel = (16 * k + n) % 3, pair = (16 * k + n) / 6;
        return channel < 2 ? 8 * channel + pair : 0x80;
    });
}
template <int k, int half>
ZIV_INLINE __m128i pair_mask_2() {
    return bytes128([](int n) {
        const int channel = (16 * k + n) % 3, pair = (16 * k + n) / 6;
        return channel == 2 ? 8 * half + pair : 0x80;
    });
}
template <int k>
ZIV_INLINE __m128i luma_mask3() {
    return bytes128([](int n) { return (16 * k + n) / 3; });
}

// Narrowing with saturation splits a term into max(d, 0) and, of -d, max(-d, 0).
template <>
struct PixelTerms3<16> {
    __m128i up[3], down[3];
};
template <int k, int half>
ZIV_INLINE __m128i place_terms3(__m128i t01, __m128i t2) {
    return _mm_or_si128(_mm_shuffle_epi8(t01, pair_mask_01<k>()), _mm_shuffle_epi8(t2, pair_mask_2<k, half>()));
}
template <>
ZIV_INLINE PixelTerms3<16> pixel_terms<16>(S16<16> d0, S16<16> d1, S16<16> d2) {
    const __m128i up01 = _mm_packus_epi16((__m128i)d0, (__m128i)d1), down01 = _mm_packus_epi16((__m128i)-d0, (__m128i)-d1);
    const __m128i t2 = _mm_packus_epi16((__m128i)d2, (__m128i)-d2);
    return {{place_terms3<0, 0>(up01, t2), place_terms3<1, 0>(up01, t2), place_terms3<2, 0>(up01, t2)},
            {place_terms3<0, 1>(down01, t2), place_terms3<1, 1>(down01, t2), place_terms3<2, 1>(down01, t2)}};
}
template <>
ZIV_INLINE void store_pixels<16>(uint8_t* p, U8<16> luma, const PixelTerms3<16>& t) {
    const __m128i y = (__m128i)luma;
    store128(p, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask3<0>()), t.up[0]), t.down[0]));
    store128(p + 16, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask3<1>()), t.up[1]), t.down[1]));
    store128(p + 32, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask3<2>()), t.up[2]), t.down[2]));
}

// Four channels: register q holds pixels 4 q to 4 q + 3, pairs 2 q and 2 q + 1. Alpha is a term too: up by 255, down by the
// rest. Four pairs are narrowed into one vector: channels 0 and 1 of each, then channels 2 and 3.
template <>
struct PixelTerms4<16> {
    __m128i up[4], down[4];
};
template <int first>
ZIV_INLINE __m128i pair_mask4() {
    return bytes128([](int n) { return n % 4 / 2 * 8 + (first + n / 8) * 2 + n % 2; });
}
template <>
ZIV_INLINE PixelTerms4<16> pixel_terms<16>(S16<16> d0, S16<16> d1, S16<16> d2, uint8_t alpha) {
    const __m128i zero = _mm_setzero_si128(), full = (__m128i)constant<16>(255), down3 = _mm_set1_epi32((510 - alpha) << 16);
    const __m128i lo01 = _mm_unpacklo_epi16((__m128i)d0, (__m128i)d1), hi01 = _mm_unpackhi_epi16((__m128i)d0, (__m128i)d1);
    const __m128i lo23 = _mm_unpacklo_epi16((__m128i)d2, full), hi23 = _mm_unpackhi_epi16((__m128i)d2, full);
    const __m128i up_lo = _mm_packus_epi16(lo01, lo23), up_hi = _mm_packus_epi16(hi01, hi23);
    const __m128i down_lo = _mm_packus_epi16(_mm_sub_epi16(zero, lo01), _mm_sub_epi16(down3, lo23));
    const __m128i down_hi = _mm_packus_epi16(_mm_sub_epi16(zero, hi01), _mm_sub_epi16(down3, hi23));
    return {{_mm_shuffle_epi8(up_lo, pair_mask4<0>()), _mm_shuffle_epi8(up_lo, pair_mask4<2>()),
             _mm_shuffle_epi8(up_hi, pair_mask4<0>()), _mm_shuffle_epi8(up_hi, pair_mask4<2>())},
            {_mm_shuffle_epi8(down_lo, pair_mask4<0>()), _mm_shuffle_epi8(down_lo, pair_mask4<2>()),
             _mm_shuffle_epi8(down_hi, pair_mask4<0>()), _mm_shuffle_epi8(down_hi, pair_mask4<2>())}};
}
template <int q>
ZIV_INLINE __m128i luma_mask4() {
    return bytes128([](int n) { return (16 * q + n) / 4; });
}
template <>
ZIV_INLINE void store_pixels<16>(uint8_t* p, U8<16> luma, const PixelTerms4<16>& t) {
    const __m128i y = (__m128i)luma;
    store128(p, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask4<0>()), t.up[0]), t.down[0]));
    store128(p + 16, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask4<1>()), t.up[1]), t.down[1]));
    store128(p + 32, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask4<2>()), t.up[2]), t.down[2]));
    store128(p + 48, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask4<3>()), t.up[3]), t.down[3]));
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
ZIV_INLINE void store_packed<16>(uint8_t* p, U8<16> luma, const PackedChroma<16>& chroma) {
    const __m128i y = (__m128i)luma;
    store128(p, _mm_or_si128(_mm_shuffle_epi8(y, spread_mask<3, 0, 0>()), chroma.part[0]));
    store128(p + 16, _mm_or_si128(_mm_shuffle_epi8(y, spread_mask<3, 1, 0>()), chroma.part[1]));
    store128(p + 32, _mm_or_si128(_mm_shuffle_epi8(y, spread_mask<3, 2, 0>()), chroma.part[2]));
}

// ---- Selection and quotients ----

ZIV_INLINE U8<16> select(U8<16> mask, U8<16> a, U8<16> b) {
    return (U8<16>)_mm_blendv_epi8((__m128i)b, (__m128i)a, (__m128i)mask);
}

template <>
ZIV_INLINE U16<16> multiply_high_unsigned<16>(U16<16> a, U16<16> b) {
    return (U16<16>)_mm_mulhi_epu16((__m128i)a, (__m128i)b);
}

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

// ---- Whole pixels moved from one byte layout to another ----

// Where the bytes of register k of the written pixels are read: within one vector at `first`, or else the later ones within
// a second at `second`. R is the bytes of a register.
template <int pixels, int R, int k, int in, int... from>
struct MoveSource {
    static constexpr int byte(int n) {  // the source byte of written byte n, or `ones`
        constexpr int out = sizeof...(from), place[out] = {from...};
        return place[n % out] == ones ? ones : n / out * in + place[n % out];
    }
    static constexpr int least() {
        int r = in * pixels;
        for (int n = R * k; n < R * (k + 1); n++) r = byte(n) != ones && byte(n) < r ? byte(n) : r;
        return r;
    }
    static constexpr int most() {
        int r = 0;
        for (int n = R * k; n < R * (k + 1); n++) r = byte(n) > r ? byte(n) : r;
        return r;
    }
    static constexpr bool two = most() - least() >= R;
    // Two whole vectors side by side where they hold all of it: the registers beside this one load them as well.
    static constexpr bool side_by_side = two && most() / R - least() / R == 1;
    static constexpr int latest = in * pixels - R;
    static constexpr int first = side_by_side ? least() / R * R : least() < latest ? least() : latest;
    static constexpr int second = side_by_side ? first + R : two ? most() - R + 1 : first;
    static constexpr bool is_one(int n) { return byte(R * k + n) == ones; }
    static constexpr bool in_first(int n) { return !is_one(n) && byte(R * k + n) - first < R; }
    static constexpr bool in_second(int n) { return !is_one(n) && !in_first(n); }
    static constexpr int index_in_first(int n) { return byte(R * k + n) - first; }
    static constexpr int index_in_second(int n) { return byte(R * k + n) - second; }
};
template <class Source>
constexpr int first_byte(int n) {
    return Source::in_first(n) ? Source::index_in_first(n) : 0x80;
}
template <class Source>
constexpr int second_byte(int n) {
    return Source::in_second(n) ? Source::index_in_second(n) : 0x80;
}
template <class Source>
ZIV_INLINE __m128i first_mask() {
    return bytes128([](int n) { return first_byte<Source>(n); });
}
template <class Source>
ZIV_INLINE __m128i second_mask() {
    return bytes128([](int n) { return second_byte<Source>(n); });
}
template <class Source>
ZIV_INLINE __m128i ones_mask() {
    return bytes128([](int n) { return Source::is_one(n) ? 255 : 0; });
}

template <int in, int... from>
struct PixelMove<16, in, from...> {
    template <int k>
    ZIV_INLINE static __m128i moved(const uint8_t* src) {
        using Source = MoveSource<16, 16, k, in, from...>;
        __m128i r = _mm_shuffle_epi8(load128(src + Source::first), first_mask<Source>());
        if constexpr (Source::two) r = _mm_or_si128(r, _mm_shuffle_epi8(load128(src + Source::second), second_mask<Source>()));
        if constexpr (((from == ones) || ...)) r = _mm_or_si128(r, ones_mask<Source>());
        return r;
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from);
        const __m128i r0 = moved<0>(src), r1 = moved<1>(src), r2 = moved<2>(src), r3 = moved<out - 1>(src);
        store128(dst, r0);
        store128(dst + 16, r1);
        store128(dst + 32, r2);
        if constexpr (out == 4) store128(dst + 48, r3);
    }
};

// Four pixels of 3 bytes from byte `first` on in 32-bit lanes: the channels of the word's low end, middle and high end, and
// zero.
template <int high, int low, int first>
ZIV_INLINE __m128i mask_565() {
    return bytes128([](int n) { return n % 4 == 3 ? 0x80 : first + n / 4 * 3 + (n % 4 == 0 ? low : n % 4 == 1 ? 1 : high); });
}
// Those lanes, cut to 5, 6 and 5 bits, to words: 8 times a word is low + 64 middle + 2048 high.
ZIV_INLINE __m128i words_565(__m128i lanes0, __m128i lanes1) {
    const __m128i kept = _mm_set1_epi32(0x00F8FCF8), bytes = _mm_set1_epi32(0x00404001), words = _mm_set1_epi32(0x00200001);
    lanes0 = _mm_madd_epi16(_mm_maddubs_epi16(_mm_and_si128(lanes0, kept), bytes), words);
    lanes1 = _mm_madd_epi16(_mm_maddubs_epi16(_mm_and_si128(lanes1, kept), bytes), words);
    return _mm_packus_epi32(_mm_srli_epi32(lanes0, 3), _mm_srli_epi32(lanes1, 3));
}
template <int high, int low>
struct PixelPack565<16, high, low> {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        const __m128i p0 = _mm_shuffle_epi8(load128(src), mask_565<high, low, 0>());
        const __m128i p1 = _mm_shuffle_epi8(load128(src + 12), mask_565<high, low, 0>());
        const __m128i p2 = _mm_shuffle_epi8(load128(src + 24), mask_565<high, low, 0>());
        const __m128i p3 = _mm_shuffle_epi8(load128(src + 32), mask_565<high, low, 4>());
        store128(dst, words_565(p0, p1));
        store128(dst + 16, words_565(p2, p3));
    }
};

// ---- Turning and mirroring ----

template <>
ZIV_INLINE U8<16> reverse_bytes<16>(U8<16> v) {
    return __builtin_shufflevector(v, v, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
}
template <>
ZIV_INLINE U8<16> reverse_pairs<16>(U8<16> v) {
    return (U8<16>)__builtin_shufflevector((U16<16>)v, (U16<16>)v, 7, 6, 5, 4, 3, 2, 1, 0);
}

// ---- Pairs of chroma samples made fewer or more ----

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

}  // namespace zivcolor::ZIVCOLOR_TARGET
