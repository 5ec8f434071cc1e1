// Operations over 4-byte pixels in binary32: weighted sums truncated to integers, every product and every sum rounded by
// itself. N pixels stand in four vectors.
#pragma once

#include "rgb2yuv/columns.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// Green and red are added first, then blue.
struct FloatWeights {
    float r, g, b;
};

// A weighted sum in integers that is never below the exact one and less than 2^-whole_bits above it, over 2^scale:
// low * (blue * blue_weight + green * green_beside_blue) + high * (red * red_weight + green * green_beside_red), where both
// factors of a product fit 16 bits. Unless the whole_bits below the point are all 0, which they are of every sum that binary32
// rounds to the other side of a whole number, both are truncated to the same integer: the proof over all colours says so.
struct ApproximateWeights {
    int low, high, blue_weight, green_beside_blue, red_weight, green_beside_red, scale, whole_bits;
    constexpr int whole_mask() const { return ((1 << whole_bits) - 1) << (scale - whole_bits); }
};

// ---- Lanes of 32 bits ----

#if ZIV_HAS_SSE4_2
// The lowest bytes of four vectors, whose lanes are 0 to 255.
template <int N>
ZIV_INLINE U8<N> narrow_lanes(S32<N> a, S32<N> b, S32<N> c, S32<N> d) {
    return order_packed(pack((S16<N>)pack(a, b), (S16<N>)pack(c, d)));
}
// Whether any bit is set.
template <int N>
ZIV_INLINE bool any_lane(S32<N> v);
template <>
ZIV_INLINE bool any_lane<16>(S32<16> v) {
    return !_mm_testz_si128((__m128i)v, (__m128i)v);
}
#if ZIV_HAS_AVX2
template <>
ZIV_INLINE bool any_lane<32>(S32<32> v) {
    return !_mm256_testz_si256((__m256i)v, (__m256i)v);
}
#endif
// The lower halves of two vectors' lanes, which are below 2^16, with pixels taken from even_pixels.
template <int N>
ZIV_INLINE U8<N> narrow_even_lanes(S32<N> a, S32<N> b) {
    return order_packed((U8<N>)pack(a, b));
}
#elif ZIV_HAS_ADVANCED_SIMD
template <int N>
ZIV_INLINE U8<16> narrow_lanes(S32<16> a, S32<16> b, S32<16> c, S32<16> d) {
    const uint16x8_t ab = vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b), cd = vuzp1q_u16((uint16x8_t)c, (uint16x8_t)d);
    return (U8<16>)vuzp1q_u8(vreinterpretq_u8_u16(ab), vreinterpretq_u8_u16(cd));
}
template <int N>
ZIV_INLINE U8<16> narrow_even_lanes(S32<16> a, S32<16> b) {
    return (U8<16>)vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b);
}
ZIV_INLINE U8<16> even_pixels(U8<16> a, U8<16> b) { return (U8<16>)vuzp1q_u32((uint32x4_t)a, (uint32x4_t)b); }
#else
template <int N>
ZIV_INLINE U8<16> narrow_lanes(S32<16> a, S32<16> b, S32<16> c, S32<16> d) {
    return even_lanes<16>(even_lanes<16>((U8<16>)a, (U8<16>)b), even_lanes<16>((U8<16>)c, (U8<16>)d));
}
template <int N>
ZIV_INLINE U8<16> narrow_even_lanes(S32<16> a, S32<16> b) {
    return (U8<16>)__builtin_shufflevector((U16<16>)a, (U16<16>)b, 0, 2, 4, 6, 8, 10, 12, 14);
}
ZIV_INLINE U8<16> even_pixels(U8<16> a, U8<16> b) {
    return (U8<16>)__builtin_shufflevector((U32<16>)a, (U32<16>)b, 0, 2, 4, 6);
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
ZIV_INLINE S32<N> weigh_truncated(const FloatPixels<N>& v, FloatWeights w) {
    const float w0 = red == 0 ? w.r : w.b, w1 = w.g * 0x1p-8f, w2 = (red == 0 ? w.b : w.r) * 0x1p-16f;
    const F32<N> sum = red == 0 ? v.c2 * w2 + (v.c1 * w1 + v.c0 * w0) : v.c0 * w0 + (v.c1 * w1 + v.c2 * w2);
    return __builtin_convertvector(sum, S32<N>);
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

template <int N>
struct PixelVectors {
    U8<N> q[4];
};
template <int N>
ZIV_INLINE PixelVectors<N> load_pixel_vectors(const uint8_t* p) {
    return {{load<N>(p), load<N>(p + N), load<N>(p + 2 * N), load<N>(p + 3 * N)}};
}

// The weighted sum of every pixel, truncated to an integer of 0 to 255. Red is byte `red` of 0 and 2.
template <int N, int red>
ZIV_INLINE U8<N> luma_f32(const PixelVectors<N>& v, FloatWeights w) {
    S32<N> sum[4];
    for (int k = 0; k < 4; k++) sum[k] = weigh_truncated<red>(to_float<N>(v.q[k]), w);
    return narrow_lanes<N>(sum[0], sum[1], sum[2], sum[3]);
}

// Two weighted sums of the even columns' pixels, within 127.5 of 0, each truncated towards 0 and centred at 128: first,
// second, first and so on.
template <int N, int red>
ZIV_INLINE U8<N> chroma_pairs_f32(const PixelVectors<N>& v, FloatWeights first, FloatWeights second) {
    S32<N> pairs[2];
    for (int k = 0; k < 2; k++) {
        const FloatPixels<N> even = to_float<N>(even_pixels(v.q[2 * k], v.q[2 * k + 1]));
        pairs[k] = weigh_truncated<red>(even, first) + (weigh_truncated<red>(even, second) << 8) + (128 | 128 << 8);
    }
    return narrow_even_lanes<N>(pairs[0], pairs[1]);
}

// ---- The same by integers, where they tell ----

// Two forms: has_approximate_sums, where store_approximated does a step, and has_approximate_rows, where store_approximated_row
// does the blocked columns of a row.

// What store_approximated leaves to binary32.
enum class Undecided { nothing, chroma, all };

#if ZIV_HAS_SSE4_2
inline constexpr bool has_approximate_sums = true, has_approximate_rows = false;

// Four-byte pixels with green in byte 3 too, where approximate_sums wants it.
template <class V>
ZIV_INLINE V repeat_green(V pixels) {
    return shuffle(pixels, bytes128([](int n) { return n % 4 == 3 ? n - 2 : n; }));
}
template <int N, int red>
ZIV_INLINE S32<N> approximate_sums(U8<N> quads, ApproximateWeights w) {
    const S16<N> halves =
        red == 2 ? add_products(quads, byte_weights<N>(w.blue_weight, w.green_beside_blue, w.red_weight, w.green_beside_red))
                 : add_products(quads, byte_weights<N>(w.red_weight, w.green_beside_red, w.blue_weight, w.green_beside_blue));
    return add_products(halves, red == 2 ? word_weights<N>(w.low, w.high) : word_weights<N>(w.high, w.low));
}

// Whether all sums that were added to this are far from whole numbers.
template <int N>
struct FarFromWhole {
    S32<N> near{};
    ZIV_INLINE void add(S32<N> sums, ApproximateWeights w) { near |= (S32<N>)((sums & w.whole_mask()) == 0); }
    ZIV_INLINE bool all() const { return !any_lane<N>(near); }
};
// Pairs of sums floored to integers.
template <int N>
ZIV_INLINE S16<N> truncate_pairs(S32<N> a, S32<N> b, ApproximateWeights wa, ApproximateWeights wb) {
    const S16<N> low = (S16<N>)(S32<N>{} + 0xFFFF);
    return ((S16<N>)(a >> wa.scale) & low) | ((S16<N>)(b >> (wb.scale - 16)) & ~low);
}
// Floored bytes as if truncated towards 0, as none of them was whole, and centred at 128.
template <int N>
ZIV_INLINE U8<N> truncate_towards_0(U8<N> bytes) {
    return (bytes + (bytes >> 7)) ^ 128;
}
template <int N>
ZIV_INLINE U8<N> truncate_luma(S32<N> a, S32<N> b, S32<N> c, S32<N> d, ApproximateWeights w) {
    return narrow_lanes<N>(a >> w.scale, b >> w.scale, c >> w.scale, d >> w.scale);
}

#if ZIV_HAS_AVX512_VBMI
template <>
struct FarFromWhole<64> {
    __mmask16 lanes = 0xFFFF;
    ZIV_INLINE void add(S32<64> sums, ApproximateWeights w) {
        lanes = _mm512_mask_test_epi32_mask(lanes, (__m512i)sums, _mm512_set1_epi32(w.whole_mask()));
    }
    ZIV_INLINE bool all() const { return lanes == 0xFFFF; }
};
// The upper words of a's lanes below those of b's.
ZIV_INLINE S16<64> join_upper_words(S32<64> a, S32<64> b) {
    const __m512i index = _mm512_broadcast_i32x4(bytes128([](int n) { return n / 4 * 4 + 2 + n % 2; }));
    return (S16<64>)_mm512_mask_shuffle_epi8((__m512i)b, 0x3333333333333333, (__m512i)a, index);
}
template <>
ZIV_INLINE S16<64> truncate_pairs<64>(S32<64> a, S32<64> b, ApproximateWeights wa, ApproximateWeights wb) {
    return join_upper_words(a, b) >> word_weights<64>(wa.scale - 16, wb.scale - 16);
}
template <>
ZIV_INLINE U8<64> truncate_towards_0<64>(U8<64> bytes) {
    const __m512i v = (__m512i)bytes;
    return (U8<64>)_mm512_mask_sub_epi8(v, _mm512_movepi8_mask(v), v, _mm512_set1_epi8(-1)) ^ 128;
}
template <>
ZIV_INLINE U8<64> truncate_luma<64>(S32<64> a, S32<64> b, S32<64> c, S32<64> d, ApproximateWeights w) {
    const S16<64> ab = join_upper_words(a, b) >> (w.scale - 16), cd = join_upper_words(c, d) >> (w.scale - 16);
    const __m512i in_order = bytes512([](int n) { return n % 16 / 4 * 16 + n / 32 * 8 + n % 4 * 2 + n / 16 % 2; });
    return (U8<64>)_mm512_permutexvar_epi8(in_order, (__m512i)pack(ab, cd));
}
#endif

// Stores the luma of N pixels and, on request, first and second of the even columns, as luma_f32 and chroma_pairs_f32 give
// them, and returns what it left because a sum is too near to a whole number.
template <int N, int red, bool has_chroma>
ZIV_INLINE Undecided store_approximated(uint8_t* luma, uint8_t* chroma, const PixelVectors<N>& v, ApproximateWeights w,
                                        ApproximateWeights first, ApproximateWeights second) {
    const U8<N> q0 = repeat_green(v.q[0]), q1 = repeat_green(v.q[1]), q2 = repeat_green(v.q[2]), q3 = repeat_green(v.q[3]);
    const S32<N> y0 = approximate_sums<N, red>(q0, w), y1 = approximate_sums<N, red>(q1, w);
    const S32<N> y2 = approximate_sums<N, red>(q2, w), y3 = approximate_sums<N, red>(q3, w);
    FarFromWhole<N> luma_far;
    luma_far.add(y0, w), luma_far.add(y1, w), luma_far.add(y2, w), luma_far.add(y3, w);
    FarFromWhole<N> far = luma_far;
    U8<N> pairs;
    if constexpr (has_chroma) {
        const U8<N> lo = even_pixels(q0, q1), hi = even_pixels(q2, q3);
        const S32<N> first_lo = approximate_sums<N, red>(lo, first), second_lo = approximate_sums<N, red>(lo, second);
        const S32<N> first_hi = approximate_sums<N, red>(hi, first), second_hi = approximate_sums<N, red>(hi, second);
        far.add(first_lo, first), far.add(second_lo, second), far.add(first_hi, first), far.add(second_hi, second);
        const U8<N> floored = pack_signed(truncate_pairs<N>(first_lo, second_lo, first, second),
                                          truncate_pairs<N>(first_hi, second_hi, first, second));
        pairs = pairs_in_order<false>(ChromaPairs<N, 4>{truncate_towards_0<N>(floored)});
    }
    if (__builtin_expect(!far.all(), 0)) {
        if (!has_chroma || !luma_far.all()) return Undecided::all;
        store(luma, truncate_luma<N>(y0, y1, y2, y3, w));
        return Undecided::chroma;
    }
    store(luma, truncate_luma<N>(y0, y1, y2, y3, w));
    if constexpr (has_chroma) store(chroma, pairs);
    return Undecided::nothing;
}
#else
template <class V>
ZIV_INLINE V repeat_green(V pixels) {
    return pixels;
}
template <int N, int red>
ZIV_INLINE S32<N> approximate_sums(U8<N> quads, ApproximateWeights w) {
    const S32<N> v = (S32<N>)quads;
    return ((v >> (8 * red)) & 0xFF) * (w.high * w.red_weight) +
           ((v >> 8) & 0xFF) * (w.low * w.green_beside_blue + w.high * w.green_beside_red) +
           ((v >> (16 - 8 * red)) & 0xFF) * (w.low * w.blue_weight);
}
template <int N, int red, bool has_chroma>
ZIV_INLINE Undecided store_approximated(uint8_t*, uint8_t*, const PixelVectors<N>&, ApproximateWeights, ApproximateWeights,
                                        ApproximateWeights) {
    return Undecided::all;
}
inline constexpr bool has_approximate_sums = false;
#if !ZIV_HAS_ADVANCED_SIMD
inline constexpr bool has_approximate_rows = false;
#endif
#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv

#if ZIV_HAS_ADVANCED_SIMD
#include "rgb2yuv/float_sums_neon.h"
#endif
