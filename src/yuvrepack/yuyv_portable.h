// SPDX-License-Identifier: MIT
// Y0 U Y1 V from luma and two planes of chroma and back, in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// Y0 U Y1 V: 2 N luma samples with N samples of each chroma plane, which wait in an order of the target's own.
template <int N>
ZIV_INLINE Channels<N, 4> load_for_yuyv(const uint8_t* luma, const uint8_t* u, const uint8_t* v) {
    const U8<N> u_bytes = load<N>(u), v_bytes = load<N>(v);
    return {{load<N>(luma), load<N>(luma + N), interleave_low<N>(u_bytes, v_bytes), interleave_high<N>(u_bytes, v_bytes)}};
}
template <int N>
ZIV_INLINE void store_yuyv(uint8_t* p, const Channels<N, 4>& parts) {
    store2<N>(p, parts.c[0], parts.c[2]);
    store2<N>(p + 2 * N, parts.c[1], parts.c[3]);
}

// The inverse: 2 N luma samples, N of U and N of V, or luma alone.
template <int N>
ZIV_INLINE Channels<N, 4> load_yuyv(const uint8_t* p) {
    Channels<N, 2> a = load2<N>(p), b = load2<N>(p + 2 * N);
    return {{a.c[0], b.c[0], even_lanes<N>(a.c[1], b.c[1]), odd_lanes<N>(a.c[1], b.c[1])}};
}
template <int N>
ZIV_INLINE Channels<N, 2> load_yuyv_luma(const uint8_t* p) {
    return {{even_lanes<N>(load<N>(p), load<N>(p + N)), even_lanes<N>(load<N>(p + 2 * N), load<N>(p + 3 * N))}};
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
