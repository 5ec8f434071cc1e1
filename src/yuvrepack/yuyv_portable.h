// Y0 U Y1 V from luma and two planes of chroma, in plain lane arithmetic.
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

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
