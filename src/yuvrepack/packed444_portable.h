// SPDX-License-Identifier: MIT
// Packed Y U V pixels in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// N / 2 pairs V U laid out as the chroma of N packed Y U V pixels, made once for one or two rows.
template <int N>
struct PackedChroma {
    U16<N> u256, v;
};
template <int N>
ZIV_INLINE PackedChroma<N> packed_chroma(U8<N> pairs) {
    return {(U16<N>)pairs & 0xFF00, even_bytes<N>(pairs)};
}
template <int N>
ZIV_INLINE void store_packed444(uint8_t* p, U8<N> luma, const PackedChroma<N>& chroma) {
    store_columns3<N>(p, {even_bytes<N>(luma) | chroma.u256, chroma.v}, {odd_bytes<N>(luma) | chroma.u256, chroma.v});
}

// The same from memory.
template <int N>
ZIV_INLINE PackedChroma<N> packed_chroma(const uint8_t* pairs) {
    return packed_chroma<N>(load<N>(pairs));
}
template <int N>
ZIV_INLINE void store_packed444(uint8_t* p, const uint8_t* luma, const PackedChroma<N>& chroma) {
    store_packed444<N>(p, load<N>(luma), chroma);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
