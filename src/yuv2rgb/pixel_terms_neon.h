// SPDX-License-Identifier: MIT
// Luma plus a term of its chroma pair on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// A term as what it adds to luma and what it takes away: one of them is 0.
struct PixelTerm {
    uint8x16_t up, down;
};
ZIV_INLINE PixelTerm pixel_term(S16<16> d) {
    const int16x8_t up = vmaxq_s16((int16x8_t)d, vdupq_n_s16(0)), down = vsubq_s16(up, (int16x8_t)d);
    return {vtrn1q_u8((uint8x16_t)up, (uint8x16_t)up), vtrn1q_u8((uint8x16_t)down, (uint8x16_t)down)};
}
template <>
struct PixelTerms3<16> {
    PixelTerm c0, c1, c2;
};
template <>
ZIV_INLINE PixelTerms3<16> pixel_terms<16>(S16<16> d0, S16<16> d1, S16<16> d2) {
    return {pixel_term(d0), pixel_term(d1), pixel_term(d2)};
}

struct PixelChannels {
    uint8x16_t c0, c1, c2;
};
ZIV_INLINE PixelChannels plus_up(uint8x16_t luma, const PixelTerms3<16>& terms) {
    return {vqaddq_u8(luma, terms.c0.up), vqaddq_u8(luma, terms.c1.up), vqaddq_u8(luma, terms.c2.up)};
}
ZIV_INLINE PixelChannels less_down(const PixelChannels& v, const PixelTerms3<16>& terms) {
    return {vqsubq_u8(v.c0, terms.c0.down), vqsubq_u8(v.c1, terms.c1.down), vqsubq_u8(v.c2, terms.c2.down)};
}
template <int group = 0>
ZIV_INLINE void store_channels(uint8_t* p, const PixelChannels& v, const PixelTerms3<16>&) {
    store_interleaved<group>(p, v.c0, v.c1, v.c2);
}
template <int group = 0>
ZIV_INLINE void store_channels(uint8_t* p, const PixelChannels& v, const PixelTerms4<16>& terms) {
    store_interleaved<group>(p, v.c0, v.c1, v.c2, (uint8x16_t)terms.alpha);
}
ZIV_INLINE const PixelTerms3<16>& colour_of(const PixelTerms3<16>& terms) { return terms; }
ZIV_INLINE const PixelTerms3<16>& colour_of(const PixelTerms4<16>& terms) { return terms.colour; }

template <>
ZIV_INLINE void store_pixels<16>(uint8_t* p, U8<16> luma, const PixelTerms3<16>& terms) {
    store_channels(p, less_down(plus_up((uint8x16_t)luma, terms), terms), terms);
}
template <>
ZIV_INLINE void store_pixels<16>(uint8_t* p, U8<16> luma, const PixelTerms4<16>& terms) {
    store_channels(p, less_down(plus_up((uint8x16_t)luma, terms.colour), terms.colour), terms);
}
// Both rows side by side: cores that start instructions in order wait less for results.
template <class Terms>
ZIV_INLINE void store_pixel_rows_side_by_side(uint8_t* p0, uint8_t* p1, const uint8_t* luma0, const uint8_t* luma1,
                                              const Terms& terms) {
    const PixelTerms3<16>& colour = colour_of(terms);
    const uint8x16_t y0 = vld1q_u8(luma0), y1 = vld1q_u8(luma1);
    PixelChannels above0 = plus_up(y0, colour), above1 = plus_up(y1, colour);
    PixelChannels v0 = less_down(above0, colour), v1 = less_down(above1, colour);
    store_channels<0>(p0, v0, terms);
    store_channels<1>(p1, v1, terms);
}
template <>
ZIV_INLINE void store_pixel_rows<16>(uint8_t* p0, uint8_t* p1, const uint8_t* luma0, const uint8_t* luma1,
                                     const PixelTerms3<16>& terms) {
    store_pixel_rows_side_by_side(p0, p1, luma0, luma1, terms);
}
template <>
ZIV_INLINE void store_pixel_rows<16>(uint8_t* p0, uint8_t* p1, const uint8_t* luma0, const uint8_t* luma1,
                                     const PixelTerms4<16>& terms) {
    store_pixel_rows_side_by_side(p0, p1, luma0, luma1, terms);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
