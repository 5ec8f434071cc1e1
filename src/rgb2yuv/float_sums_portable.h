// SPDX-License-Identifier: MIT
// Sums of 4-byte pixels in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

#if !ZIV_HAS_ADVANCED_SIMD
inline constexpr bool has_approximate_rows = false;

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

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
