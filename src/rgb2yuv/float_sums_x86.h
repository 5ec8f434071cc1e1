// SPDX-License-Identifier: MIT
// Sums of 4-byte pixels in binary32 and in integers on x86-64.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

inline constexpr bool has_approximate_rows = false;

// The lowest bytes of four vectors, whose lanes are 0 to 255.
template <int N>
ZIV_INLINE U8<N> narrow_lanes(S32<N> a, S32<N> b, S32<N> c, S32<N> d) {
    return order_packed(pack((S16<N>)pack(a, b), (S16<N>)pack(c, d)));
}
// The lower halves of two vectors' lanes, which are below 2^16, with pixels taken from even_pixels.
template <int N>
ZIV_INLINE U8<N> narrow_even_lanes(S32<N> a, S32<N> b) {
    return order_packed((U8<N>)pack(a, b));
}

#if ZIV_HAS_AVX512_VBMI
// A colour c is held as 2^23 + c, or as 2^23 + 256 c for byte 1: bits set in place. The fused multiply-subtract takes the 2^23
// off again exactly, and so gives the product rounded once, as a multiplication does.
template <>
struct FloatPixels<64> {
    __m512 c0, c1, c2;
};
template <>
ZIV_INLINE FloatPixels<64> to_float<64>(U8<64> quads) {
    __m512i q = (__m512i)quads;
    const __m512i magic = _mm512_set1_epi32(0x4B000000);
    asm("" : "+v"(q));  // keeps the compiler from loading it three times, often across cache lines
    const __m512i byte0 = _mm512_set1_epi32(0xFF), byte1 = _mm512_set1_epi32(0xFF00);
    constexpr int and_or = 0xEA;
    return {(__m512)_mm512_ternarylogic_epi32(q, byte0, magic, and_or),
            (__m512)_mm512_ternarylogic_epi32(q, byte1, magic, and_or),
            (__m512)_mm512_ternarylogic_epi32(_mm512_srli_epi32(q, 16), byte0, magic, and_or)};
}
ZIV_INLINE __m512 product(__m512 held, float w) {
    return _mm512_fmsub_ps(held, _mm512_set1_ps(w), _mm512_set1_ps(w * 0x1p23f));
}
// sum + colour * w; a product by a half is exact and may be fused.
ZIV_INLINE __m512 add_product(__m512 sum, __m512 held, float w) {
    if (w == 0.5f) return _mm512_fmadd_ps(_mm512_sub_ps(held, _mm512_set1_ps(0x1p23f)), _mm512_set1_ps(w), sum);
    return _mm512_add_ps(sum, product(held, w));
}
template <int red>
ZIV_INLINE S32<64> weigh_truncated(const FloatPixels<64>& v, FloatWeights w) {
    const __m512 green_red = add_product(product(v.c1, w.g * 0x1p-8f), red == 0 ? v.c0 : v.c2, w.r);
    return (S32<64>)_mm512_cvttps_epi32(add_product(green_red, red == 0 ? v.c2 : v.c0, w.b));
}
#endif

// ---- By integers ----

// Four-byte pixels behind `skip` other bytes with green in byte 3 too, where approximate_sums wants it. The pixels' own byte 3
// is not looked at.
template <int skip = 0, class V>
ZIV_INLINE V repeat_green(V pixels) {
    return shuffle(pixels, bytes128([](int n) { return n / 4 * 4 + skip + (n % 4 == 3 ? 1 : n % 4); }));
}
template <int N, int red>
ZIV_INLINE S32<N> approximate_sums(U8<N> quads, ApproximateWeights w) {
    const S16<N> halves =
        red == 2 ? add_products(quads, byte_weights<N>(w.blue_weight, w.green_beside_blue, w.red_weight, w.green_beside_red))
                 : add_products(quads, byte_weights<N>(w.red_weight, w.green_beside_red, w.blue_weight, w.green_beside_blue));
    return add_products(halves, red == 2 ? word_weights<N>(w.low, w.high) : word_weights<N>(w.high, w.low));
}
ZIV_INLINE U16<16> least_words(U16<16> a, U16<16> b) { return (U16<16>)_mm_min_epu16((__m128i)a, (__m128i)b); }
ZIV_INLINE uint32_t negative_lanes(S32<16> v) { return static_cast<uint32_t>(_mm_movemask_ps((__m128)v)); }
#if ZIV_HAS_AVX2
ZIV_INLINE U16<32> least_words(U16<32> a, U16<32> b) { return (U16<32>)_mm256_min_epu16((__m256i)a, (__m256i)b); }
ZIV_INLINE uint32_t negative_lanes(S32<32> v) { return static_cast<uint32_t>(_mm256_movemask_ps((__m256)v)); }
#endif

// The least fractions of the sums of each lane.
template <int N>
struct NearTest {
    U16<N> least = ~U16<N>{};
    ZIV_INLINE void add(U16<N> a, U16<N> b, U16<N> c, U16<N> d) { least = least_words(least_words(a, b), least_words(c, d)); }
};
template <int N>
ZIV_INLINE NearTest<N> operator|(const NearTest<N>& a, const NearTest<N>& b) {
    return {least_words(a.least, b.least)};
}
template <int N>
ZIV_INLINE bool any_near(const NearTest<N>& test) {
    return negative_lanes((S32<N>)(((S32<N>)test.least & near_fraction) == 0)) != 0;
}
template <int red, int N>
ZIV_INLINE U8<N> approximate_luma(const PixelVectors<N>& v, ApproximateWeights w, NearTest<N>& test) {
    S32<N> sum[4];
    for (int k = 0; k < 4; k++) sum[k] = approximate_sums<N, red>(v.q[k], w) >> (w.scale - 16);
    test.add((U16<N>)sum[0], (U16<N>)sum[1], (U16<N>)sum[2], (U16<N>)sum[3]);
    // Packed, whole parts stand in the odd bytes, and in the even ones something of the fractions.
    const __m128i low = bytes128([](int n) { return n < 8 ? 2 * n + 1 : 0x80; });
    const __m128i high = bytes128([](int n) { return n < 8 ? 0x80 : 2 * n - 15; });
    const U8<N> a = pack((S16<N>)sum[0], (S16<N>)sum[1]), b = pack((S16<N>)sum[2], (S16<N>)sum[3]);
    return order_packed(shuffle(a, low) | shuffle(b, high));
}
template <int red, int N>
ZIV_INLINE U8<N> approximate_chroma_pairs(U8<N> lo, U8<N> hi, ApproximateWeights first, ApproximateWeights second,
                                          NearTest<N>& test) {
    const auto sums = [](U8<N> even, ApproximateWeights w)
                          ZIV_INLINE_BODY { return approximate_sums<N, red>(even, w) >> (w.scale - 16); };
    const S32<N> a0 = sums(lo, first), b0 = sums(lo, second), a1 = sums(hi, first), b1 = sums(hi, second);
    test.add((U16<N>)a0, (U16<N>)b0, (U16<N>)a1, (U16<N>)b1);
    const __m128i even = bytes128([](int n) { return n % 2 ? 0x80 : n + 1; });
    const U16<N> upper = U16<N>{} + 0xFF00;
    const U8<N> floors =
        shuffle(pack_signed((S16<N>)a0, (S16<N>)a1), even) | ((U8<N>)upper & pack_signed((S16<N>)b0, (S16<N>)b1));
    // Towards 0, as none is whole, and centred at 128.
    const U8<N> truncated = floors - (U8<N>)((S8<N>)floors < 0);
    return pairs_in_order<false>(ChromaPairs<N, 4>{truncated ^ 128});
}

#if ZIV_HAS_AVX512_VBMI
template <>
struct NearTest<64> {
    __mmask16 far = 0xFFFF;
    ZIV_INLINE void add(S32<64> sums, ApproximateWeights w) {
        far = _mm512_mask_test_epi32_mask(far, (__m512i)sums, _mm512_set1_epi32(w.whole_mask()));
    }
};
ZIV_INLINE NearTest<64> operator|(const NearTest<64>& a, const NearTest<64>& b) {
    return {static_cast<__mmask16>(a.far & b.far)};
}
ZIV_INLINE bool any_near(const NearTest<64>& test) { return test.far != 0xFFFF; }
// The upper words of a's lanes below those of b's.
ZIV_INLINE S16<64> join_upper_words(S32<64> a, S32<64> b) {
    const __m512i index = _mm512_broadcast_i32x4(bytes128([](int n) { return n / 4 * 4 + 2 + n % 2; }));
    return (S16<64>)_mm512_mask_shuffle_epi8((__m512i)b, 0x3333333333333333, (__m512i)a, index);
}
template <int red>
ZIV_INLINE U8<64> approximate_luma(const PixelVectors<64>& v, ApproximateWeights w, NearTest<64>& test) {
    S32<64> sum[4];
    for (int k = 0; k < 4; k++) sum[k] = approximate_sums<64, red>(v.q[k], w), test.add(sum[k], w);
    const S16<64> ab = join_upper_words(sum[0], sum[1]) >> (w.scale - 16),
                  cd = join_upper_words(sum[2], sum[3]) >> (w.scale - 16);
    const __m512i in_order = bytes512([](int n) { return n % 16 / 4 * 16 + n / 32 * 8 + n % 4 * 2 + n / 16 % 2; });
    return (U8<64>)_mm512_permutexvar_epi8(in_order, (__m512i)pack(ab, cd));
}
template <int red>
ZIV_INLINE U8<64> approximate_chroma_pairs(U8<64> lo, U8<64> hi, ApproximateWeights first, ApproximateWeights second,
                                           NearTest<64>& test) {
    const auto pairs = [&](U8<64> even) ZIV_INLINE_BODY {
        const S32<64> a = approximate_sums<64, red>(even, first), b = approximate_sums<64, red>(even, second);
        test.add(a, first), test.add(b, second);
        return join_upper_words(a, b) >> word_weights<64>(first.scale - 16, second.scale - 16);
    };
    const __m512i floors = (__m512i)pack_signed(pairs(lo), pairs(hi));
    const U8<64> truncated = (U8<64>)_mm512_mask_sub_epi8(floors, _mm512_movepi8_mask(floors), floors, _mm512_set1_epi8(-1));
    return pairs_in_order<false>(ChromaPairs<64, 4>{truncated ^ 128});
}
#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
