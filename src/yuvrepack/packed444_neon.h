// SPDX-License-Identifier: MIT
// Packed Y U V pixels on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

template <>
struct PackedChroma<16> {
    U8<16> u, v;
};
template <>
ZIV_INLINE PackedChroma<16> packed_chroma<16>(U8<16> pairs) {
    const uint8x16_t p = (uint8x16_t)pairs;
    return {(U8<16>)vtrn2q_u8(p, p), (U8<16>)vtrn1q_u8(p, p)};
}
template <>
ZIV_INLINE void store_packed444<16>(uint8_t* p, U8<16> luma, const PackedChroma<16>& chroma) {
    store3<16>(p, luma, chroma.u, chroma.v);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
