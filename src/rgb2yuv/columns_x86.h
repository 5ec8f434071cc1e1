// SPDX-License-Identifier: MIT
// The operations over columns of RGB on x86-64: pixels of four bytes, summed by the multiply-adds of byte and of word pairs.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// C pixels from memory of c bytes each, C / 4 to a vector in their order. Every pixel has four bytes: those of memory, or the
// three of memory and its byte 1 once more. Where in_order holds, packing the four vectors to one leaves the pixels in order;
// else each vector's 16-byte parts come to the four vectors' parts in turn.
template <int C, int c>
struct Pixels {
    U8<C> q0, q1, q2, q3;
};
template <int C, int c>
inline constexpr bool in_order = C == 16 || (C == 32 && c == 3);

// ---- Instructions ----

// a[2i] * b[2i] + a[2i + 1] * b[2i + 1], saturated to 16 bits; the same of words to 32 bits.
ZIV_INLINE S16<16> add_products(U8<16> a, S8<16> b) { return (S16<16>)_mm_maddubs_epi16((__m128i)a, (__m128i)b); }
ZIV_INLINE S32<16> add_products(S16<16> a, S16<16> b) { return (S32<16>)_mm_madd_epi16((__m128i)a, (__m128i)b); }
// Words and bytes from wider lanes with unsigned saturation, in 16-byte groups: four lanes of each operand in turn, then eight.
ZIV_INLINE U16<16> pack(S32<16> a, S32<16> b) { return (U16<16>)_mm_packus_epi32((__m128i)a, (__m128i)b); }
ZIV_INLINE U8<16> pack_signed(S16<16> a, S16<16> b) { return (U8<16>)_mm_packs_epi16((__m128i)a, (__m128i)b); }
ZIV_INLINE U8<16> pack(S16<16> a, S16<16> b) { return (U8<16>)_mm_packus_epi16((__m128i)a, (__m128i)b); }
// 4-byte lanes in the order of memory from what two packings of four vectors left.
ZIV_INLINE U8<16> order_packed(U8<16> v) { return v; }
// 4-byte lanes 0 and 2 of every 16 bytes of a, of b in turn.
ZIV_INLINE U8<16> even_pixels(U8<16> a, U8<16> b) { return (U8<16>)_mm_shuffle_ps((__m128)a, (__m128)b, 0x88); }
// Bytes from within the same 16; 0x80 gives 0.
ZIV_INLINE U8<16> shuffle(U8<16> v, __m128i index) { return (U8<16>)_mm_shuffle_epi8((__m128i)v, index); }

// Four pixels of 3 bytes, behind `skip` other bytes, as four bytes each.
template <int skip>
ZIV_INLINE __m128i spread_mask() {
    return bytes128([](int n) { return skip + n / 4 * 3 + (n % 4 == 3 ? 1 : n % 4); });
}
// Even groups of two bytes, low ones first, as pairs of eight bytes of either.
ZIV_INLINE __m128i split_pairs_mask() { return _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15); }
ZIV_INLINE __m128i swap_pairs_mask() { return _mm_setr_epi8(1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14); }

template <int C, int c>
Pixels<C, c> load_pixels(const uint8_t* p);
template <>
ZIV_INLINE Pixels<16, 3> load_pixels<16, 3>(const uint8_t* p) {
    const __m128i first = spread_mask<0>(), last = spread_mask<4>();
    return {shuffle(load<16>(p), first), shuffle(load<16>(p + 12), first), shuffle(load<16>(p + 24), first),
            shuffle(load<16>(p + 32), last)};
}
template <>
ZIV_INLINE Pixels<16, 4> load_pixels<16, 4>(const uint8_t* p) {
    return {load<16>(p), load<16>(p + 16), load<16>(p + 32), load<16>(p + 48)};
}

// Gives pixels 8 to 15 of every 16 the byte `channel` of pixels 0 to 7. Their fourth byte may change.
template <int channel>
ZIV_INLINE U8<16> take_channel(U8<16> v, U8<16> from) {
    if constexpr (channel == 2) return (U8<16>)_mm_blend_epi16((__m128i)v, (__m128i)from, 0xAA);
    const U8<16> mask = (U8<16>)(U32<16>{} + (0xFFu << 8 * channel));
    return select(mask, from, v);
}
template <int channel>
ZIV_INLINE void share_channel(Pixels<16, 4>& v) {
    v.q2 = take_channel<channel>(v.q2, v.q0);
    v.q3 = take_channel<channel>(v.q3, v.q1);
}

// In every 4-byte lane the byte `at` of `low_words` becomes the bytes 1 and 3, between the bytes 0 and 2 of v.
template <int at>
ZIV_INLINE __m128i beside_mask() {
    return bytes128([](int n) { return n % 2 ? n / 4 * 4 + at : 0x80; });
}
template <int at>
ZIV_INLINE U8<16> put_beside(U8<16> v, U16<16> low_words) {
    return (U8<16>)((U16<16>)v & 0xFF) | shuffle((U8<16>)low_words, beside_mask<at>());
}
// The lower words of 4-byte lanes in both words.
ZIV_INLINE __m128i double_mask() {
    return bytes128([](int n) { return n / 4 * 4 + n % 2; });
}
ZIV_INLINE S16<16> double_low_words(U16<16> v) { return (S16<16>)shuffle((U8<16>)v, double_mask()); }

#if ZIV_HAS_AVX2
ZIV_INLINE S16<32> add_products(U8<32> a, S8<32> b) { return (S16<32>)_mm256_maddubs_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE S32<32> add_products(S16<32> a, S16<32> b) { return (S32<32>)_mm256_madd_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE U16<32> pack(S32<32> a, S32<32> b) { return (U16<32>)_mm256_packus_epi32((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> pack_signed(S16<32> a, S16<32> b) { return (U8<32>)_mm256_packs_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> pack(S16<32> a, S16<32> b) { return (U8<32>)_mm256_packus_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> order_packed(U8<32> v) {
    return (U8<32>)_mm256_permutevar8x32_epi32((__m256i)v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}
ZIV_INLINE U8<32> even_pixels(U8<32> a, U8<32> b) { return (U8<32>)_mm256_shuffle_ps((__m256)a, (__m256)b, 0x88); }
ZIV_INLINE U8<32> shuffle(U8<32> v, __m128i index) { return (U8<32>)_mm256_shuffle_epi8((__m256i)v, both_halves(index)); }

// The halves hold 16 pixels each.
template <>
ZIV_INLINE Pixels<32, 3> load_pixels<32, 3>(const uint8_t* p) {
    const __m128i first = spread_mask<0>(), last = spread_mask<4>();
    return {shuffle((U8<32>)load_halves(p, p + 48), first), shuffle((U8<32>)load_halves(p + 12, p + 60), first),
            shuffle((U8<32>)load_halves(p + 24, p + 72), first), shuffle((U8<32>)load_halves(p + 32, p + 80), last)};
}
template <>
ZIV_INLINE Pixels<32, 4> load_pixels<32, 4>(const uint8_t* p) {
    return {load<32>(p), load<32>(p + 32), load<32>(p + 64), load<32>(p + 96)};
}
template <int channel>
ZIV_INLINE U8<32> take_channel(U8<32> v, U8<32> from) {
    if constexpr (channel == 2) return (U8<32>)_mm256_blend_epi16((__m256i)v, (__m256i)from, 0xAA);
    const U8<32> mask = (U8<32>)(U32<32>{} + (0xFFu << 8 * channel));
    return (v & ~mask) | (from & mask);
}
template <int channel>
ZIV_INLINE void share_channel(Pixels<32, 4>& v) {
    v.q1 = take_channel<channel>(v.q1, v.q0);
    v.q3 = take_channel<channel>(v.q3, v.q2);
}
template <int at>
ZIV_INLINE U8<32> put_beside(U8<32> v, U16<32> low_words) {
    return (U8<32>)((U16<32>)v & 0xFF) | shuffle((U8<32>)low_words, beside_mask<at>());
}
ZIV_INLINE S16<32> double_low_words(U16<32> v) { return (S16<32>)shuffle((U8<32>)v, double_mask()); }
#endif

#if ZIV_HAS_AVX512_VBMI
ZIV_INLINE S16<64> add_products(U8<64> a, S8<64> b) { return (S16<64>)_mm512_maddubs_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE S32<64> add_products(S16<64> a, S16<64> b) { return (S32<64>)_mm512_madd_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE U16<64> pack(S32<64> a, S32<64> b) { return (U16<64>)_mm512_packus_epi32((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> pack_signed(S16<64> a, S16<64> b) { return (U8<64>)_mm512_packs_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> pack(S16<64> a, S16<64> b) { return (U8<64>)_mm512_packus_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> order_packed(U8<64> v) {
    return (U8<64>)_mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
                                            (__m512i)v);
}
ZIV_INLINE U8<64> even_pixels(U8<64> a, U8<64> b) { return (U8<64>)_mm512_shuffle_ps((__m512)a, (__m512)b, 0x88); }
ZIV_INLINE U8<64> shuffle(U8<64> v, __m128i index) {
    return (U8<64>)_mm512_shuffle_epi8((__m512i)v, _mm512_broadcast_i32x4(index));
}

template <int skip>
ZIV_INLINE U8<64> spread_pixels(const uint8_t* p) {
    const __m512i index = bytes512([](int n) { return skip + n / 4 * 3 + (n % 4 == 3 ? 1 : n % 4); });
    return (U8<64>)_mm512_permutexvar_epi8(index, load512(p));
}
template <>
ZIV_INLINE Pixels<64, 3> load_pixels<64, 3>(const uint8_t* p) {
    return {spread_pixels<0>(p), spread_pixels<0>(p + 48), spread_pixels<0>(p + 96), spread_pixels<16>(p + 128)};
}
template <>
ZIV_INLINE Pixels<64, 4> load_pixels<64, 4>(const uint8_t* p) {
    // Luma and chroma are to share these loads, which often cross cache lines.
    const auto load_once = [=](int at) ZIV_INLINE_BODY {
        U8<64> v = load<64>(p + at);
        asm("" : "+v"(v));
        return v;
    };
    return {load_once(0), load_once(64), load_once(128), load_once(192)};
}
template <int channel>
ZIV_INLINE void share_channel(Pixels<64, 4>& v) {
    const __m512i from_lower = bytes512([](int n) { return n & 31; });
    const __mmask64 upper = hidden_mask(mask512([](int n) { return n >= 32 && n % 4 == channel; }));
    const auto shared = [=](U8<64> q) ZIV_INLINE_BODY {
        return (U8<64>)_mm512_mask_permutexvar_epi8((__m512i)q, upper, from_lower, (__m512i)q);
    };
    v = {shared(v.q0), shared(v.q1), shared(v.q2), shared(v.q3)};
}
template <int at>
ZIV_INLINE U8<64> put_beside(U8<64> v, U16<64> low_words) {
    const __m512i index = _mm512_broadcast_i32x4(bytes128([](int n) { return n / 4 * 4 + at; }));
    return (U8<64>)_mm512_mask_shuffle_epi8((__m512i)v, 0xAAAAAAAAAAAAAAAA, (__m512i)low_words, index);
}
ZIV_INLINE S16<64> double_low_words(U16<64> v) { return (S16<64>)shuffle((U8<64>)v, double_mask()); }
#endif

// ---- Luma ----

// Luma in the byte `at` of words, the first two vectors' pixels packed in `lo`, the others' in `hi`.
template <int C, int c, int at>
struct LumaWords {
    U16<C> lo, hi;
};
// The same with 7 fractional bits.
template <int C, int c>
struct FractionalLuma {
    U16<C> lo, hi;
};

// Weights in every 4-byte lane: four bytes, or two words.
template <int N>
ZIV_INLINE S8<N> byte_weights(int w0, int w1, int w2, int w3) {
    return (S8<N>)(S32<N>{} + ((w0 & 0xFF) | (w1 & 0xFF) << 8 | (w2 & 0xFF) << 16 | w3 * 0x1000000));
}
template <int N>
ZIV_INLINE S16<N> word_weights(int w0, int w1) {
    return (S16<N>)(S32<N>{} + ((w0 & 0xFFFF) | w1 * 0x10000));
}

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 6; the weights sum to 64. Where `shared` names a byte, pixels 8 to 15 of every 16 take
// that byte from pixels 0 to 7.
template <Weights w, int shared, int C, int c>
ZIV_INLINE LumaWords<C, c, 1> luma_q6(Pixels<C, c> pixels) {
    if constexpr (shared != own_bytes) share_channel<shared>(pixels);
    const S8<C> weights = byte_weights<C>(w.c0, w.c1, w.c2, 0);
    const S16<C> four = S16<C>{} + 4;
    const auto sum = [=](U8<C> q) ZIV_INLINE_BODY { return add_products(add_products(q, weights), four); };
    return {pack(sum(pixels.q0), sum(pixels.q1)), pack(sum(pixels.q2), sum(pixels.q3))};
}

// Three weights as products of two factors each, the middle one as a sum of two products:
// c0 * w.c0 + c1 * w.c1 + c2 * w.c2 = low * (c0 * b0 + c1 * b1) + high * (c2 * b2 + c1 * b3),
// with factors that fit bytes and sums in brackets that fit words.
struct FactoredWeights {
    int low, high, b0, b1, b2, b3;
};
constexpr bool bracket_fits(int b, int b_of_c1) {
    return b > 0 && b < 128 && b_of_c1 >= -128 && b_of_c1 < 128 && 255 * (b + b_of_c1) < 32768;
}
constexpr FactoredWeights factored(Weights w) {
    for (int b0 = 1; b0 < 128; b0++)
        for (int b2 = 1; b2 < 128; b2++)
            if (w.c0 % b0 == 0 && w.c2 % b2 == 0)
                for (int b3 = -128; b3 < 128; b3++) {
                    const int low = w.c0 / b0, high = w.c2 / b2, rest = w.c1 - high * b3;
                    if (low < 32768 && high < 32768 && rest % low == 0 && bracket_fits(b0, rest / low) && bracket_fits(b2, b3))
                        return {low, high, b0, rest / low, b2, b3};
                }
    return {};
}

// Bits 8 to 23 of the 32-bit lanes, in the order that packing leaves them in.
template <int N>
ZIV_INLINE U16<N> middle_words(S32<N> a, S32<N> b) {
    return pack(a >> 8, b >> 8);
}
#if ZIV_HAS_AVX512_VBMI
template <>
ZIV_INLINE U16<64> middle_words<64>(S32<64> a, S32<64> b) {
    const __m512i index = bytes512([](int n) { return n / 16 * 16 + n % 8 / 2 * 4 + n % 2 + 1; });
    return (U16<64>)_mm512_mask_permutexvar_epi8(_mm512_permutexvar_epi8(index, (__m512i)a), 0xFF00FF00FF00FF00, index,
                                                 (__m512i)b);
}
#endif

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 8, below 2^15 - 2^6.
template <Weights w, int C>
ZIV_INLINE FractionalLuma<C, 3> fractional_luma(const Pixels<C, 3>& pixels) {
    constexpr FactoredWeights f = factored(w);
    static_assert(f.low != 0);
    const S8<C> bytes = byte_weights<C>(f.b0, f.b1, f.b2, f.b3);
    const S16<C> words = word_weights<C>(f.low, f.high);
    const auto sum = [=](U8<C> q) ZIV_INLINE_BODY { return add_products(add_products(q, bytes), words); };
    return {middle_words<C>(sum(pixels.q0), sum(pixels.q1)), middle_words<C>(sum(pixels.q2), sum(pixels.q3))};
}

// (luma + 2^6) >> 7, which is the rounding high multiply by 2^8.
template <int C, int c>
ZIV_INLINE LumaWords<C, c, 0> rounded(const FractionalLuma<C, c>& luma) {
    const S16<C> scale = S16<C>{} + 256;
    return {(U16<C>)multiply_round_high<C>((S16<C>)luma.lo, scale), (U16<C>)multiply_round_high<C>((S16<C>)luma.hi, scale)};
}

template <int C, int c, int at>
ZIV_INLINE U8<C> luma_bytes(const LumaWords<C, c, at>& luma) {
    const U8<C> packed =
        at == 1 ? pack((S16<C>)(luma.lo >> 8), (S16<C>)(luma.hi >> 8)) : pack((S16<C>)luma.lo, (S16<C>)luma.hi);
    return in_order<C, c> ? packed : order_packed(packed);
}
#if ZIV_HAS_AVX512_VBMI
template <int c, int at>
ZIV_INLINE U8<64> luma_bytes(const LumaWords<64, c, at>& luma) {
    const __m512i index = bytes512([](int n) { return n / 16 % 2 * 8 + n % 16 / 4 * 16 + n % 4 * 2 + at; });
    const __m512i lo = _mm512_permutexvar_epi8(index, (__m512i)luma.lo);
    return (U8<64>)_mm512_mask_permutexvar_epi8(lo, 0xFFFFFFFF00000000, index, (__m512i)luma.hi);
}
#endif
template <int C, int c, int at>
ZIV_INLINE void store_luma(uint8_t* p, const LumaWords<C, c, at>& luma) {
    store(p, luma_bytes(luma));
}

// ---- Chroma of the even columns: a value from byte 0 and a value from byte 2, centred at 128 and saturated to bytes ----

// The two beside each other, packed from what the even columns give. The order of the columns is that of packing.
template <int C, int c>
struct ChromaPairs {
    U8<C> packed;
};
// Chroma saturates as a signed byte around 0; turning the top bit over then adds 128.
template <int c, int C>
ZIV_INLINE ChromaPairs<C, c> centred(S16<C> lo, S16<C> hi) {
    return {pack_signed(lo, hi) ^ 128};
}

// ((byte - luma) * weight) >> shift, by products of scale 2^7. The product fits 16 bits.
template <ShiftedWeight s0, ShiftedWeight s2, int C, int c>
ZIV_INLINE ChromaPairs<C, c> scaled_differences(const Pixels<C, c>& pixels, const LumaWords<C, c, 1>& luma) {
    constexpr int w0 = s0.weight << (7 - s0.shift), w2 = s2.weight << (7 - s2.shift);
    static_assert(w0 < 128 && w0 * s0.most < 32768 && w2 < 128 && w2 * s2.most < 32768);
    const S8<C> weights = byte_weights<C>(w0, -w0, w2, -w2);
    const U8<C> lo = put_beside<1>(even_pixels(pixels.q0, pixels.q1), luma.lo);
    const U8<C> hi = put_beside<1>(even_pixels(pixels.q2, pixels.q3), luma.hi);
    return centred<c, C>(add_products(lo, weights) >> 7, add_products(hi, weights) >> 7);
}

// ((byte - luma) * weight + 2^14) >> 15
template <OuterWeights w, int C>
ZIV_INLINE ChromaPairs<C, 3> rounded_differences_q15(const Pixels<C, 3>& pixels, const LumaWords<C, 3, 0>& luma) {
    const S8<C> difference = byte_weights<C>(1, -1, 1, -1);
    const S16<C> weights = word_weights<C>(w.c0, w.c2);
    const U8<C> lo = put_beside<0>(even_pixels(pixels.q0, pixels.q1), luma.lo);
    const U8<C> hi = put_beside<0>(even_pixels(pixels.q2, pixels.q3), luma.hi);
    return centred<3, C>(multiply_round_high<C>(add_products(lo, difference), weights),
                         multiply_round_high<C>(add_products(hi, difference), weights));
}

// ((((byte << 7) - luma) * weight >> 7) + 2^14) >> 15, where the difference fits 16 bits. The difference is taken the other way
// round, for there are weights of -128 but none of 128, and so is the sign of the weight. Shifting right by 16, rounding and
// shifting by 6 is the same, as no bit below 2^16 can carry into the rounding bit; that shift is the rounding high multiply by
// 2^9.
template <OuterWeights w, int C>
ZIV_INLINE S16<C> fractional_difference(U8<C> even, U16<C> luma) {
    const S16<C> difference = double_low_words(luma) + add_products(even, byte_weights<C>(-128, 0, -128, 0));
    const S16<C> product = multiply_high<C>(difference, word_weights<C>(-w.c0, -w.c2));
    return multiply_round_high<C>(product, S16<C>{} + 512);
}
template <OuterWeights w, int C>
ZIV_INLINE ChromaPairs<C, 3> fractional_differences_q15(const Pixels<C, 3>& pixels, const FractionalLuma<C, 3>& luma) {
    return centred<3, C>(fractional_difference<w, C>(even_pixels(pixels.q0, pixels.q1), luma.lo),
                         fractional_difference<w, C>(even_pixels(pixels.q2, pixels.q3), luma.hi));
}

// The value from byte 0, then that from byte 2, or the other way round.
template <bool c2_first, int C, int c>
ZIV_INLINE U8<C> pairs_in_order(const ChromaPairs<C, c>& chroma) {
    const U8<C> pairs = c2_first ? shuffle(chroma.packed, swap_pairs_mask()) : chroma.packed;
    return in_order<C, c> ? pairs : order_packed(pairs);
}
#if ZIV_HAS_AVX512_VBMI
// Where packing leaves a byte of the even column number `even`.
constexpr int place_of_even(int even) { return even % 8 / 2 * 16 + even / 16 * 8 + even / 8 % 2 * 4 + even % 2 * 2; }
template <bool c2_first, int c>
ZIV_INLINE U8<64> pairs_in_order(const ChromaPairs<64, c>& chroma) {
    const __m512i index = bytes512([](int n) { return place_of_even(n / 2) + (n + c2_first) % 2; });
    return (U8<64>)_mm512_permutexvar_epi8(index, (__m512i)chroma.packed);
}
#endif
template <bool c2_first, int C, int c>
ZIV_INLINE void store_pairs(uint8_t* p, const ChromaPairs<C, c>& chroma) {
    store(p, pairs_in_order<c2_first>(chroma));
}

// C / 2 bytes to each plane.
template <int c>
ZIV_INLINE void store_planes(uint8_t* p0, uint8_t* p2, const ChromaPairs<16, c>& chroma) {
    const __m128i split = (__m128i)shuffle(chroma.packed, split_pairs_mask());
    store64(p0, split);
    const int64_t upper = _mm_extract_epi64(split, 1);
    __builtin_memcpy(p2, &upper, sizeof upper);
}
#if ZIV_HAS_AVX2
template <int c>
ZIV_INLINE void store_planes(uint8_t* p0, uint8_t* p2, const ChromaPairs<32, c>& chroma) {
    // Of every four 2-byte lanes the bytes 0 and the bytes 2, for a permutation of 4-byte lanes to end the work.
    const __m128i by_columns = _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
    const U8<32> pairs = in_order<32, c> ? chroma.packed : order_packed(chroma.packed);
    store_halves(p0, p2, _mm256_permute4x64_epi64((__m256i)shuffle(pairs, by_columns), 0xD8));
}
#endif
#if ZIV_HAS_AVX512_VBMI
template <int c>
ZIV_INLINE void store_planes(uint8_t* p0, uint8_t* p2, const ChromaPairs<64, c>& chroma) {
    const __m512i index = bytes512([](int n) { return place_of_even(n % 32) + n / 32; });
    const __m512i planes = _mm512_permutexvar_epi8(index, (__m512i)chroma.packed);
    store256(p0, _mm512_castsi512_si256(planes));
    store256(p2, _mm512_extracti64x4_epi64(planes, 1));
}
#endif

// Luma and chroma of a packed row, interleaved, luma first or chroma first.
template <bool luma_first, bool c2_first, int C, int c, int at>
ZIV_INLINE void store_packed422(uint8_t* p, const LumaWords<C, c, at>& luma, const ChromaPairs<C, c>& chroma) {
    const U8<C> bytes = luma_bytes(luma), pairs = pairs_in_order<c2_first>(chroma);
    if constexpr (luma_first) store2<C>(p, bytes, pairs);
    else store2<C>(p, pairs, bytes);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
