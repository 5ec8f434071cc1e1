// The terms over columns of RGB on x86-64: a pixel in four bytes, summed by the multiply-adds of byte and of word pairs.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET {

// C pixels of c bytes stay in memory until a term loads them in its own arrangement.
template <int C, int c>
struct Pixels {
    const uint8_t* p;
};
template <int C, int c>
ZIV_INLINE Pixels<C, c> load_pixels(const uint8_t* p) {
    return {p};
}

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

// Four pixels to every 16 bytes, in their order: the vectors hold N / 4 pixels each.
template <int N>
struct Quads {
    U8<N> q[4];
};

// How the 12 bytes of four pixels are spread over 16: the byte that goes to place n, or none. As 4-byte pixels; as the words
// of bytes 0 and 2; as the words of byte 1, with a word of 0 above.
inline constexpr int no_byte = -1;
struct AsPixels {
    static constexpr int from(int n) { return n % 4 == 3 ? no_byte : n / 4 * 3 + n % 4; }
};
struct AsOuterWords {
    static constexpr int from(int n) { return n % 2 ? no_byte : n / 4 * 3 + n % 4; }
};
struct AsMiddleWords {
    static constexpr int from(int n) { return n % 4 ? no_byte : n / 4 * 3 + 1; }
};
// The 12 bytes stand behind `skip` others.
template <class Spread, int skip = 0>
ZIV_INLINE __m128i spread_group_mask() {
    return bytes128([](int n) { return Spread::from(n) == no_byte ? 0x80 : skip + Spread::from(n); });
}
template <class Spread>
ZIV_INLINE Quads<16> load_spread(Pixels<16, 3> pixels) {
    const __m128i first = spread_group_mask<Spread>(), last = spread_group_mask<Spread, 4>();
    const uint8_t* p = pixels.p;
    return {{(U8<16>)_mm_shuffle_epi8(load128(p), first), (U8<16>)_mm_shuffle_epi8(load128(p + 12), first),
             (U8<16>)_mm_shuffle_epi8(load128(p + 24), first), (U8<16>)_mm_shuffle_epi8(load128(p + 32), last)}};
}
template <int N>
ZIV_INLINE Quads<N> load_quads(Pixels<N, 3> pixels) {
    return load_spread<AsPixels>(pixels);
}
template <int N>
ZIV_INLINE Quads<N> load_quads(Pixels<N, 4> pixels) {
    const uint8_t* p = pixels.p;
    return {{load<N>(p), load<N>(p + N), load<N>(p + 2 * N), load<N>(p + 3 * N)}};
}

// A copy of v whose byte `channel` of every pixel is that of `from`.
template <int channel, int N>
ZIV_INLINE U8<N> take_channel(U8<N> v, U8<N> from) {
    const U8<N> mask = (U8<N>)(U32<N>{} + (0xFFu << 8 * channel));
    return (v & ~mask) | (from & mask);
}
// Gives pixels 8 to 15 of every 16 the byte `channel` of pixels 0 to 7.
template <int channel>
ZIV_INLINE void share_channel(Quads<16>& v) {
    v.q[2] = take_channel<channel, 16>(v.q[2], v.q[0]);
    v.q[3] = take_channel<channel, 16>(v.q[3], v.q[1]);
}

// Lane i of the words: byte 0 of pixel 2 i below its byte 2.
template <int c, int k>
ZIV_INLINE __m128i outer_mask() {
    return bytes128([](int n) {
        const int at = n / 2 * 2 * c + n % 2 * 2 - 16 * k;
        return at >= 0 && at < 16 ? at : 0x80;
    });
}
template <int c>
ZIV_INLINE U16<16> outer_words(Pixels<16, c> pixels) {
    const uint8_t* p = pixels.p;
    __m128i v =
        _mm_or_si128(_mm_shuffle_epi8(load128(p), outer_mask<c, 0>()), _mm_shuffle_epi8(load128(p + 16), outer_mask<c, 1>()));
    v = _mm_or_si128(v, _mm_shuffle_epi8(load128(p + 32), outer_mask<c, 2>()));
    if constexpr (c == 4) v = _mm_or_si128(v, _mm_shuffle_epi8(load128(p + 48), outer_mask<c, 3>()));
    return (U16<16>)v;
}

// Chroma saturates as a signed byte around 0; turning the top bit over then adds 128.
template <int N>
ZIV_INLINE U8<N> interleave_chroma(S16<N> a, S16<N> b);
template <>
ZIV_INLINE U8<16> interleave_chroma<16>(S16<16> a, S16<16> b) {
    const __m128i in_turn = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    return (U8<16>)_mm_shuffle_epi8((__m128i)(pack_signed(a, b) ^ 128), in_turn);
}
ZIV_INLINE void store_planes(uint8_t* pa, uint8_t* pb, Chroma<16> a, Chroma<16> b) {
    const __m128i both = (__m128i)(pack_signed(a.lanes, b.lanes) ^ 128);
    store64(pa, both);
    const int64_t upper = _mm_extract_epi64(both, 1);
    __builtin_memcpy(pb, &upper, sizeof upper);
}

// 4-byte lanes 0 and 2 of every 16 bytes of a, of b in turn: packed as words and ordered they are those of both in their order.
ZIV_INLINE U8<16> even_quads(U8<16> a, U8<16> b) { return (U8<16>)_mm_shuffle_ps((__m128)a, (__m128)b, 0x88); }

#if defined(ZIVCOLOR_TARGET_avx2) || defined(ZIVCOLOR_TARGET_avx512)
ZIV_INLINE S16<32> add_products(U8<32> a, S8<32> b) { return (S16<32>)_mm256_maddubs_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE S32<32> add_products(S16<32> a, S16<32> b) { return (S32<32>)_mm256_madd_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE U16<32> pack(S32<32> a, S32<32> b) { return (U16<32>)_mm256_packus_epi32((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> pack_signed(S16<32> a, S16<32> b) { return (U8<32>)_mm256_packs_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> pack(S16<32> a, S16<32> b) { return (U8<32>)_mm256_packus_epi16((__m256i)a, (__m256i)b); }
ZIV_INLINE U8<32> order_packed(U8<32> v) {
    return (U8<32>)_mm256_permutevar8x32_epi32((__m256i)v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

template <class Spread>
ZIV_INLINE Quads<32> load_spread(Pixels<32, 3> pixels) {
    const __m256i first = both_halves(spread_group_mask<Spread>());
    const __m128i last_group = spread_group_mask<Spread, 4>();
    const __m256i last = _mm256_inserti128_si256(first, last_group, 1);
    const uint8_t* p = pixels.p;
    return {{(U8<32>)_mm256_shuffle_epi8(load_halves(p, p + 12), first),
             (U8<32>)_mm256_shuffle_epi8(load_halves(p + 24, p + 36), first),
             (U8<32>)_mm256_shuffle_epi8(load_halves(p + 48, p + 60), first),
             (U8<32>)_mm256_shuffle_epi8(load_halves(p + 72, p + 80), last)}};
}
template <int channel>
ZIV_INLINE void share_channel(Quads<32>& v) {
    v.q[1] = take_channel<channel, 32>(v.q[1], v.q[0]);
    v.q[3] = take_channel<channel, 32>(v.q[3], v.q[2]);
}
template <int c>
ZIV_INLINE U16<32> outer_words(Pixels<32, c> pixels) {
    const uint8_t *lo = pixels.p, *hi = lo + 16 * c;
    __m256i v = _mm256_or_si256(_mm256_shuffle_epi8(load_halves(lo, hi), both_halves(outer_mask<c, 0>())),
                                _mm256_shuffle_epi8(load_halves(lo + 16, hi + 16), both_halves(outer_mask<c, 1>())));
    v = _mm256_or_si256(v, _mm256_shuffle_epi8(load_halves(lo + 32, hi + 32), both_halves(outer_mask<c, 2>())));
    if constexpr (c == 4)
        v = _mm256_or_si256(v, _mm256_shuffle_epi8(load_halves(lo + 48, hi + 48), both_halves(outer_mask<c, 3>())));
    return (U16<32>)v;
}
template <>
ZIV_INLINE U8<32> interleave_chroma<32>(S16<32> a, S16<32> b) {
    const __m128i in_turn = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    return (U8<32>)_mm256_shuffle_epi8((__m256i)(pack_signed(a, b) ^ 128), both_halves(in_turn));
}
ZIV_INLINE void store_planes(uint8_t* pa, uint8_t* pb, Chroma<32> a, Chroma<32> b) {
    store_halves(pa, pb, _mm256_permute4x64_epi64((__m256i)(pack_signed(a.lanes, b.lanes) ^ 128), 0xD8));
}
ZIV_INLINE U8<32> even_quads(U8<32> a, U8<32> b) { return (U8<32>)_mm256_shuffle_ps((__m256)a, (__m256)b, 0x88); }
#endif

#if defined(ZIVCOLOR_TARGET_avx512)
ZIV_INLINE S16<64> add_products(U8<64> a, S8<64> b) { return (S16<64>)_mm512_maddubs_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE S32<64> add_products(S16<64> a, S16<64> b) { return (S32<64>)_mm512_madd_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE U16<64> pack(S32<64> a, S32<64> b) { return (U16<64>)_mm512_packus_epi32((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> pack_signed(S16<64> a, S16<64> b) { return (U8<64>)_mm512_packs_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> pack(S16<64> a, S16<64> b) { return (U8<64>)_mm512_packus_epi16((__m512i)a, (__m512i)b); }
ZIV_INLINE U8<64> order_packed(U8<64> v) {
    return (U8<64>)_mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
                                            (__m512i)v);
}

template <class Spread, int skip = 0>
ZIV_INLINE U8<64> spread_groups(__m512i v) {
    constexpr __mmask64 mask = mask512([](int n) { return Spread::from(n % 16) != no_byte; });
    const __m512i index =
        bytes512([](int n) { return Spread::from(n % 16) == no_byte ? 0 : skip + n / 16 * 12 + Spread::from(n % 16); });
    return (U8<64>)_mm512_maskz_permutexvar_epi8(mask, index, v);
}
template <class Spread>
ZIV_INLINE Quads<64> load_spread(Pixels<64, 3> pixels) {
    const uint8_t* p = pixels.p;
    __m512i v[4] = {load512(p), load512(p + 48), load512(p + 96), load512(p + 128)};
    // Two spreads of the same pixels are to share these loads, which cross cache lines.
    for (__m512i& pixels16 : v) asm("" : "+v"(pixels16));
    return {{spread_groups<Spread>(v[0]), spread_groups<Spread>(v[1]), spread_groups<Spread>(v[2]),
             spread_groups<Spread, 16>(v[3])}};
}
template <int channel>
ZIV_INLINE void share_channel(Quads<64>& v) {
    const __m512i from_lower = bytes512([](int n) { return n & 31; });
    constexpr __mmask64 upper = mask512([](int n) { return n >= 32 && n % 4 == channel; });
    for (U8<64>& q : v.q) q = (U8<64>)_mm512_mask_permutexvar_epi8((__m512i)q, upper, from_lower, (__m512i)q);
}
template <int c, int k>
ZIV_INLINE __m512i take_outer_words(__m512i v, const uint8_t* p) {
    const __m512i index = bytes512([](int n) { return (n / 2 * 2 * c + n % 2 * 2) & 63; });
    constexpr __mmask64 mask = mask512([](int n) { return (n / 2 * 2 * c + n % 2 * 2) / 64 == k; });
    return _mm512_mask_permutexvar_epi8(v, mask, index, load512(p + 64 * k));
}
template <int c>
ZIV_INLINE U16<64> outer_words(Pixels<64, c> pixels) {
    const uint8_t* p = pixels.p;
    const __m512i index = bytes512([](int n) { return (n / 2 * 2 * c + n % 2 * 2) & 63; });
    __m512i v = _mm512_permutexvar_epi8(index, load512(p));
    v = take_outer_words<c, 2>(take_outer_words<c, 1>(v, p), p);
    if constexpr (c == 4) v = take_outer_words<c, 3>(v, p);
    return (U16<64>)v;
}
template <>
ZIV_INLINE U8<64> interleave_chroma<64>(S16<64> a, S16<64> b) {
    const __m128i in_turn = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    return (U8<64>)_mm512_shuffle_epi8((__m512i)(pack_signed(a, b) ^ 128), _mm512_broadcast_i32x4(in_turn));
}
ZIV_INLINE void store_planes(uint8_t* pa, uint8_t* pb, Chroma<64> a, Chroma<64> b) {
    const __m512i in_order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
    const __m512i both = _mm512_permutexvar_epi64(in_order, (__m512i)(pack_signed(a.lanes, b.lanes) ^ 128));
    store256(pa, _mm512_castsi512_si256(both));
    store256(pb, _mm512_extracti64x4_epi64(both, 1));
}
ZIV_INLINE U8<64> even_quads(U8<64> a, U8<64> b) { return (U8<64>)_mm512_shuffle_ps((__m512)a, (__m512)b, 0x88); }
#endif

// ---- Terms ----

// The bytes 1 of the 32-bit lanes of four vectors, whose lanes are below 2^16.
template <int N>
ZIV_INLINE U8<N> second_bytes(S32<N> a, S32<N> b, S32<N> c, S32<N> d) {
    return order_packed(pack((S16<N>)(pack(a, b) >> 8), (S16<N>)(pack(c, d) >> 8)));
}
#if defined(ZIVCOLOR_TARGET_avx512)
template <>
ZIV_INLINE U8<64> second_bytes<64>(S32<64> a, S32<64> b, S32<64> c, S32<64> d) {
    const __m512i index = bytes512([](int n) { return n / 16 % 2 * 8 + n % 16 / 4 * 16 + n % 4 * 2 + 1; });
    const __m512i ab = _mm512_permutexvar_epi8(index, (__m512i)pack(a, b));
    return (U8<64>)_mm512_mask_permutexvar_epi8(ab, 0xFFFFFFFF00000000, index, (__m512i)pack(c, d));
}
#endif

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 6; the weights sum to 64. Where `shared` names a byte, pixels 8 to 15 of every 16 take
// that byte from pixels 0 to 7.
template <Weights w, int shared, int C, int c>
ZIV_INLINE Luma<C> luma_q6(Pixels<C, c> pixels) {
    Quads<C> v = load_quads(pixels);
    if constexpr (shared != own_bytes) share_channel<shared>(v);
    const S8<C> weights = (S8<C>)(S32<C>{} + (w.c0 | w.c1 << 8 | w.c2 << 16));
    const S16<C> four = S16<C>{} + 4;
    S32<C> sum[4];
    for (int k = 0; k < 4; k++) sum[k] = add_products(add_products(v.q[k], weights), four);
    return {second_bytes<C>(sum[0], sum[1], sum[2], sum[3])};
}

// Bits 8 to 23 of the 32-bit lanes, in the order that packing leaves them in.
template <int N>
ZIV_INLINE U16<N> middle_words(S32<N> a, S32<N> b) {
    return pack(a >> 8, b >> 8);
}
#if defined(ZIVCOLOR_TARGET_avx512)
template <>
ZIV_INLINE U16<64> middle_words<64>(S32<64> a, S32<64> b) {
    const __m512i index = bytes512([](int n) { return n / 16 * 16 + n % 8 / 2 * 4 + n % 2 + 1; });
    return (U16<64>)_mm512_mask_permutexvar_epi8(_mm512_permutexvar_epi8(index, (__m512i)a), 0xFF00FF00FF00FF00, index,
                                                 (__m512i)b);
}
#endif

// Words 0, 2, 4, ... of luma in the order that packing leaves them in.
template <int N>
ZIV_INLINE S16<N> even_packed_words(U16<N> a, U16<N> b) {
    return (S16<N>)order_packed((U8<N>)pack((S32<N>)a & 0xFFFF, (S32<N>)b & 0xFFFF));
}

// S = c0 * w.c0 + c1 * w.c1 + c2 * w.c2, below 2^23 - 2^14: (S + 2^14) >> 15, and S >> 8 of the even columns.
template <Weights w, int C>
ZIV_INLINE LumaQ15<C> luma_q15(Pixels<C, 3> pixels) {
    const Quads<C> outer = load_spread<AsOuterWords>(pixels), middle = load_spread<AsMiddleWords>(pixels);
    const S16<C> outer_weights = (S16<C>)(S32<C>{} + (w.c0 | w.c2 << 16)), middle_weight = S16<C>{} + int16_t{w.c1};
    S32<C> sum[4];
    for (int k = 0; k < 4; k++)
        sum[k] = add_products((S16<C>)outer.q[k], outer_weights) + add_products((S16<C>)middle.q[k], middle_weight);
    const U16<C> q7_lo = middle_words<C>(sum[0], sum[1]), q7_hi = middle_words<C>(sum[2], sum[3]);
    // A rounding shift by 7 is the rounding high multiply by 2^8.
    const S16<C> scale = S16<C>{} + 256;
    const S16<C> lo = multiply_round_high<C>((S16<C>)q7_lo, scale), hi = multiply_round_high<C>((S16<C>)q7_hi, scale);
    return {{order_packed(pack(lo, hi))}, {even_packed_words<C>(q7_lo, q7_hi)}};
}

template <int C, int c>
ZIV_INLINE OuterBytes<C> even_outer_bytes(Pixels<C, c> pixels) {
    const U16<C> words = outer_words(pixels);
    return {{(S16<C>)(words & 0xFF)}, {(S16<C>)(words >> 8)}};
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
