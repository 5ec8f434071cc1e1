// Y0 U Y1 V from luma and two planes of chroma, on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

template <>
ZIV_INLINE Channels<16, 4> load_for_yuyv<16>(const uint8_t* luma, const uint8_t* u, const uint8_t* v) {
    const Channels<16, 2> y = load2<16>(luma);
    return {{y.c[0], load<16>(u), y.c[1], load<16>(v)}};
}
template <>
ZIV_INLINE void store_yuyv<16>(uint8_t* p, const Channels<16, 4>& parts) {
    vst4q_u8(p,
             (uint8x16x4_t{{(uint8x16_t)parts.c[0], (uint8x16_t)parts.c[1], (uint8x16_t)parts.c[2], (uint8x16_t)parts.c[3]}}));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
