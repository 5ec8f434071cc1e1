// The vocabulary's terms over 4-byte pixels in binary32: weighted sums cut to integers, every product and every sum rounded by
// itself. N pixels stand in four vectors.
#pragma once

#include "core/lanes_rgb.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// Green and red are added first, then blue.
struct FloatWeights {
    float r, g, b;
};

// ---- Lanes of 32 bits ----

#if defined(ZIVCOLOR_TARGET_sse4) || defined(ZIVCOLOR_TARGET_avx2) || defined(ZIVCOLOR_TARGET_avx512)
// The lowest bytes of four vectors, whose lanes are 0 to 255.
template <int N>
ZIV_INLINE U8<N> narrow_lanes(S32<N> a, S32<N> b, S32<N> c, S32<N> d) {
    return order_packed(pack((S16<N>)pack(a, b), (S16<N>)pack(c, d)));
}
// The lower halves of two vectors' lanes, which are below 2^16, with pixels taken from even_quads.
template <int N>
ZIV_INLINE U8<N> narrow_even_lanes(S32<N> a, S32<N> b) {
    return order_packed((U8<N>)pack(a, b));
}
#elif defined(ZIVCOLOR_TARGET_neon)
template <int N>
ZIV_INLINE U8<16> narrow_lanes(S32<16> a, S32<16> b, S32<16> c, S32<16> d) {
    const uint16x8_t ab = vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b), cd = vuzp1q_u16((uint16x8_t)c, (uint16x8_t)d);
    return (U8<16>)vuzp1q_u8(vreinterpretq_u8_u16(ab), vreinterpretq_u8_u16(cd));
}
template <int N>
ZIV_INLINE U8<16> narrow_even_lanes(S32<16> a, S32<16> b) {
    return (U8<16>)vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b);
}
ZIV_INLINE U8<16> even_quads(U8<16> a, U8<16> b) { return (U8<16>)vuzp1q_u32((uint32x4_t)a, (uint32x4_t)b); }
#else
template <int N>
ZIV_INLINE U8<N> narrow_lanes(S32<N> a, S32<N> b, S32<N> c, S32<N> d) {
    const S32<N> v[4] = {a, b, c, d};
    U8<N> r;
    for (int i = 0; i < N; i++) r[i] = static_cast<uint8_t>(v[i / (N / 4)][i % (N / 4)]);
    return r;
}
template <int N>
ZIV_INLINE U8<N> narrow_even_lanes(S32<N> a, S32<N> b) {
    U16<N> r;
    for (int i = 0; i < N / 4; i++) r[i] = static_cast<uint16_t>(a[i]), r[i + N / 4] = static_cast<uint16_t>(b[i]);
    return (U8<N>)r;
}
ZIV_INLINE U8<16> even_quads(U8<16> a, U8<16> b) {
    const U32<16> a4 = (U32<16>)a, b4 = (U32<16>)b, r = {a4[0], a4[2], b4[0], b4[2]};
    return (U8<16>)r;
}
#endif

// ---- Weighted sums ----

// The byte k of every pixel as a float of 2^(8 k) times its value: its weight is scaled down by as much, which is exact.
template <int N>
struct FloatPixels {
    F32<N> c0, c1, c2;
};
template <int N>
ZIV_INLINE FloatPixels<N> to_float(U8<N> quads) {
    const S32<N> v = (S32<N>)quads;
    return {__builtin_convertvector(v & 0xFF, F32<N>), __builtin_convertvector(v & 0xFF00, F32<N>),
            __builtin_convertvector(v & 0xFF0000, F32<N>)};
}
template <int red, int N>
ZIV_INLINE S32<N> weigh_cut(const FloatPixels<N>& v, FloatWeights w) {
    const float w0 = red == 0 ? w.r : w.b, w1 = w.g * 0x1p-8f, w2 = (red == 0 ? w.b : w.r) * 0x1p-16f;
    const F32<N> sum = red == 0 ? v.c2 * w2 + (v.c1 * w1 + v.c0 * w0) : v.c0 * w0 + (v.c1 * w1 + v.c2 * w2);
    return __builtin_convertvector(sum, S32<N>);
}

#if defined(ZIVCOLOR_TARGET_avx512)
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
ZIV_INLINE S32<64> weigh_cut(const FloatPixels<64>& v, FloatWeights w) {
    const __m512 green_red = add_product(product(v.c1, w.g * 0x1p-8f), red == 0 ? v.c0 : v.c2, w.r);
    return (S32<64>)_mm512_cvttps_epi32(add_product(green_red, red == 0 ? v.c2 : v.c0, w.b));
}
#endif

template <int N>
struct FourQuads {
    U8<N> q[4];
};
template <int N>
ZIV_INLINE FourQuads<N> load_four_quads(const uint8_t* p) {
    return {{load<N>(p), load<N>(p + N), load<N>(p + 2 * N), load<N>(p + 3 * N)}};
}

// The weighted sum of every pixel, cut to an integer of 0 to 255. Red is byte `red` of 0 and 2.
template <int N, int red>
ZIV_INLINE U8<N> luma_f32(const FourQuads<N>& v, FloatWeights w) {
    S32<N> sum[4];
    for (int k = 0; k < 4; k++) sum[k] = weigh_cut<red>(to_float<N>(v.q[k]), w);
    return narrow_lanes<N>(sum[0], sum[1], sum[2], sum[3]);
}

// Two weighted sums of the even columns' pixels, within 127.5 of 0, each cut towards 0 and centred at 128: first, second, first
// and so on.
template <int N, int red>
ZIV_INLINE U8<N> chroma_pairs_f32(const FourQuads<N>& v, FloatWeights first, FloatWeights second) {
    S32<N> pairs[2];
    for (int k = 0; k < 2; k++) {
        const FloatPixels<N> even = to_float<N>(even_quads(v.q[2 * k], v.q[2 * k + 1]));
        pairs[k] = weigh_cut<red>(even, first) + (weigh_cut<red>(even, second) << 8) + (128 | 128 << 8);
    }
    return narrow_even_lanes<N>(pairs[0], pairs[1]);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
