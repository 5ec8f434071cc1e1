// SPDX-License-Identifier: MIT
// Operations over 4-byte pixels in binary32: weighted sums truncated to integers, every product and every sum rounded by
// itself. N pixels stand in four vectors.
#pragma once

#include "rgb2yuv/columns.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// Green and red are added first, then blue.
struct FloatWeights {
    float r, g, b;
};

// A weighted sum in integers over 2^scale:
// low * (blue * blue_weight + green * green_beside_blue) + high * (red * red_weight + green * green_beside_red), where both
// factors of a product fit 16 bits. It is near to a whole number where the part below the point is less than 32 of 2^16. So are
// all sums that binary32 or the scale round to the other side of a whole number; all others are truncated to the same integer:
// the proof over all colours says so.
inline constexpr int near_fraction = 0xFFE0;
struct ApproximateWeights {
    int low, high, blue_weight, green_beside_blue, red_weight, green_beside_red, scale;
    constexpr int whole_mask() const { return near_fraction << (scale - 16); }
};

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

// N pixels.
template <int N>
struct PixelVectors {
    U8<N> q[4];
};
template <int N>
ZIV_INLINE PixelVectors<N> load_pixel_vectors(const uint8_t* p) {
    return {{load<N>(p), load<N>(p + N), load<N>(p + 2 * N), load<N>(p + 3 * N)}};
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv

// Narrowing from lanes of 32 bits, and the same sums by integers, where they tell: a target has sums of columns
// (has_approximate_rows: store_approximated_row does the blocked columns of a row) or of vectors (approximate_sums), or
// neither.
#if ZIV_HAS_SSE4_2
#include "rgb2yuv/float_sums_x86.h"
#else
#include "rgb2yuv/float_sums_portable.h"
#endif
#if ZIV_HAS_ADVANCED_SIMD
#include "rgb2yuv/float_sums_neon.h"
#endif
#if ZIV_HAS_DOT_PRODUCT
#include "rgb2yuv/float_sums_neon_dot.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

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

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
