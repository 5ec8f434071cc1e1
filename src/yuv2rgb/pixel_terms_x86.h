// SPDX-License-Identifier: MIT
// Luma plus a term of its chroma pair on x86-64, for vectors of 16, 32 and 64 bytes.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// The terms are laid out once as the stored pixels are, so that a row costs only the spreading of its luma, an add and a
// subtract.

// The terms of eight pairs as two vectors of bytes: in either, channels 0 and 1 of four pairs side by side, then channel 2 of
// all eight. Byte n of register k takes the term of pair ((16 k + n) / 3) / 2, if that is in vector `half`.
template <int k, int half>
ZIV_INLINE __m128i pair_mask3() {
    return bytes128([](int n) {
        const int channel = (16 * k + n) % 3, pair = (16 * k + n) / 6;
        return pair / 4 != half ? 0x80 : channel < 2 ? pair % 4 * 2 + channel : 8 + pair;
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
template <>
ZIV_INLINE PixelTerms3<16> pixel_terms<16>(S16<16> d0, S16<16> d1, S16<16> d2) {
    const auto place = [](S16<16> lo, S16<16> hi, S16<16> last, __m128i(&to)[3]) ZIV_INLINE_BODY {
        const __m128i first = _mm_packus_epi16((__m128i)lo, (__m128i)last),
                      second = _mm_packus_epi16((__m128i)hi, (__m128i)last);
        to[0] = _mm_shuffle_epi8(first, pair_mask3<0, 0>());
        to[1] = _mm_or_si128(_mm_shuffle_epi8(first, pair_mask3<1, 0>()), _mm_shuffle_epi8(second, pair_mask3<1, 1>()));
        to[2] = _mm_shuffle_epi8(second, pair_mask3<2, 1>());
    };
    const S16<16> lo = (S16<16>)_mm_unpacklo_epi16((__m128i)d0, (__m128i)d1);
    const S16<16> hi = (S16<16>)_mm_unpackhi_epi16((__m128i)d0, (__m128i)d1);
    PixelTerms3<16> terms;
    place(lo, hi, d2, terms.up);
    place(-lo, -hi, -d2, terms.down);
    return terms;
}
template <>
ZIV_INLINE void store_pixels<16>(uint8_t* p, U8<16> luma, const PixelTerms3<16>& t) {
    const __m128i y = (__m128i)luma;
    store128(p, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask3<0>()), t.up[0]), t.down[0]));
    store128(p + 16, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask3<1>()), t.up[1]), t.down[1]));
    store128(p + 32, _mm_subs_epu8(_mm_adds_epu8(_mm_shuffle_epi8(y, luma_mask3<2>()), t.up[2]), t.down[2]));
}

template <>
ZIV_INLINE U8<16> load_arranged_pairs<16, 3>(const uint8_t* a, const uint8_t* b) {
    return (U8<16>)_mm_unpacklo_epi8(load64(a), load64(b));
}
template <>
ZIV_INLINE U8<16> load_arranged_pairs<16, 4>(const uint8_t* a, const uint8_t* b) {
    return load_arranged_pairs<16, 3>(a, b);
}
template <>
ZIV_INLINE U16<16> load_arranged_upper<16, 3>(const uint8_t* p) {
    return (U16<16>)_mm_unpacklo_epi8(_mm_setzero_si128(), load64(p));
}
template <>
ZIV_INLINE U16<16> load_arranged_upper<16, 4>(const uint8_t* p) {
    return load_arranged_upper<16, 3>(p);
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

#if ZIV_HAS_AVX2

// Three channels: 16 pixels and their 8 pairs in each half.
template <>
struct PixelTerms3<32> {
    __m256i up[3], down[3];
};
template <>
ZIV_INLINE PixelTerms3<32> pixel_terms<32>(S16<32> d0, S16<32> d1, S16<32> d2) {
    const auto place = [](S16<32> lo, S16<32> hi, S16<32> last, __m256i(&to)[3]) ZIV_INLINE_BODY {
        const __m256i first = _mm256_packus_epi16((__m256i)lo, (__m256i)last);
        const __m256i second = _mm256_packus_epi16((__m256i)hi, (__m256i)last);
        to[0] = _mm256_shuffle_epi8(first, both_halves(pair_mask3<0, 0>()));
        to[1] = _mm256_or_si256(_mm256_shuffle_epi8(first, both_halves(pair_mask3<1, 0>())),
                                _mm256_shuffle_epi8(second, both_halves(pair_mask3<1, 1>())));
        to[2] = _mm256_shuffle_epi8(second, both_halves(pair_mask3<2, 1>()));
    };
    const S16<32> lo = (S16<32>)_mm256_unpacklo_epi16((__m256i)d0, (__m256i)d1);
    const S16<32> hi = (S16<32>)_mm256_unpackhi_epi16((__m256i)d0, (__m256i)d1);
    PixelTerms3<32> terms;
    place(lo, hi, d2, terms.up);
    place(-lo, -hi, -d2, terms.down);
    return terms;
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
// two pairs of four pixels stay together and go to the two halves alternately, and luma stands in both halves.
ZIV_INLINE __m256i load_twice(const uint8_t* p) {
#ifdef __clang__
    // Left to itself it loads, and then permutes.
    struct Bytes16 {
        uint8_t bytes[16];
    };
    __m256i v;
    asm("vbroadcasti128 %1, %0" : "=x"(v) : "m"(*reinterpret_cast<const Bytes16*>(p)));
    return v;
#else
    return _mm256_broadcastsi128_si256(load128(p));
#endif
}
template <>
ZIV_INLINE U8<32> arrange_pairs<32, 4>(U8<32> pairs) {
    return (U8<32>)_mm256_permutevar8x32_epi32((__m256i)pairs, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
}
template <>
constexpr int pair_in_lane<32, 4>(int lane) {
    return lane % 8 / 2 * 4 + lane / 8 * 2 + lane % 2;
}
// The bytes of one plane in the even places or in the odd ones, zeros in the others.
template <int c, int odd>
ZIV_INLINE __m256i load_plane(const uint8_t* p) {
    return _mm256_shuffle_epi8(load_twice(p), bytes256([](int n) { return n % 2 == odd ? pair_in_lane<32, c>(n / 2) : 0x80; }));
}
template <>
ZIV_INLINE U8<32> load_arranged_pairs<32, 3>(const uint8_t* a, const uint8_t* b) {
    return (U8<32>)_mm256_or_si256(load_plane<3, 0>(a), load_plane<3, 1>(b));
}
template <>
ZIV_INLINE U8<32> load_arranged_pairs<32, 4>(const uint8_t* a, const uint8_t* b) {
    return (U8<32>)_mm256_or_si256(load_plane<4, 0>(a), load_plane<4, 1>(b));
}
template <>
ZIV_INLINE U16<32> load_arranged_upper<32, 3>(const uint8_t* p) {
    return (U16<32>)load_plane<3, 1>(p);
}
template <>
ZIV_INLINE U16<32> load_arranged_upper<32, 4>(const uint8_t* p) {
    return (U16<32>)load_plane<4, 1>(p);
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

#endif

#if ZIV_HAS_AVX512_VBMI

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

template <>
ZIV_INLINE U8<64> arrange_pairs<64, 3>(U8<64> pairs) {
    return (U8<64>)interleave_halves((__m512i)pairs);
}
template <>
ZIV_INLINE U8<64> arrange_pairs<64, 4>(U8<64> pairs) {
    return (U8<64>)interleave_halves((__m512i)pairs);
}
template <>
ZIV_INLINE U8<64> load_arranged_pairs<64, 3>(const uint8_t* a, const uint8_t* b) {
    const __m512i index = hidden_bytes512([](int n) { return pair_in_lane<64, 3>(n / 2); });
    constexpr __mmask64 odd = mask512([](int n) { return n % 2 == 1; });
    // Broadcast, as clang gives undefined bytes the value of some register and waits for it.
    const __m512i even = _mm512_permutexvar_epi8(index, _mm512_broadcast_i64x4(load256(a)));
    return (U8<64>)_mm512_mask_permutexvar_epi8(even, hidden_mask(odd), index, _mm512_broadcast_i64x4(load256(b)));
}
template <>
ZIV_INLINE U8<64> load_arranged_pairs<64, 4>(const uint8_t* a, const uint8_t* b) {
    return load_arranged_pairs<64, 3>(a, b);
}
template <>
ZIV_INLINE U16<64> load_arranged_upper<64, 3>(const uint8_t* p) {
    const __m512i index = hidden_bytes512([](int n) { return pair_in_lane<64, 3>(n / 2); });
    constexpr __mmask64 odd = mask512([](int n) { return n % 2 == 1; });
    return (U16<64>)_mm512_maskz_permutexvar_epi8(odd, index, _mm512_broadcast_i64x4(load256(p)));
}
template <>
ZIV_INLINE U16<64> load_arranged_upper<64, 4>(const uint8_t* p) {
    return load_arranged_upper<64, 3>(p);
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
    const __m512i index = hidden_bytes512([](int n) { return byte_of_term((64 * k + n) / 6, (64 * k + n) % 3); });
    constexpr __mmask64 later_pairs = mask512([](int n) { return (64 * k + n) / 6 >= 16; });
    const __m512i r = _mm512_permutexvar_epi8(index, terms[k / 2]);
    return k == 1 ? _mm512_mask_permutexvar_epi8(r, hidden_mask(later_pairs), index, terms[1]) : r;
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
    const __m512i index = hidden_bytes512([](int n) { return byte_of_term(8 * q + n / 8, n % 4 % 3); });
    return _mm512_mask_permutexvar_epi8(fourth, hidden_mask(colours), index, terms[q / 2]);
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
    const __m512i index = hidden_bytes512([](int n) { return (64 * k + n) / c; });
    return c == 4 ? _mm512_maskz_permutexvar_epi8(hidden_mask(colours), index, (__m512i)luma)
                  : _mm512_permutexvar_epi8(index, (__m512i)luma);
}
// The same from packed 4:2:2, luma in the even bytes, for three channels.
template <int c, int k>
ZIV_INLINE __m512i spread_luma(const PackedLuma<64>& luma) {
    static_assert(c == 3);
    const __m512i index = hidden_bytes512([](int n) { return (64 * k + n) / c * 2 % 64; });
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
    const __m512i index = hidden_bytes512([](int n) { return n % 4 == 3 ? 0x80 : n / 4; });
    for (int q = 0; q < 4; q++) {
        const __m512i spread = _mm512_shuffle_epi8(_mm512_broadcast_i32x4(load128(luma + 16 * q)), index);
        store512(p + 64 * q, _mm512_subs_epu8(_mm512_adds_epu8(spread, t.up[q]), t.down[q]));
    }
}
template <>
ZIV_INLINE void store_pixels<64>(uint8_t* p, PackedLuma<64> luma, const PixelTerms3<64>& t) {
    store_pixels64(p, luma, t);
}

#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
