// Luma plus a term of its chroma pair on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// A term as two signed bytes that sum to it, d >> 1 and (d + 1) >> 1: two additions that saturate like one, as both go the same
// way.
template <>
struct PixelTerms3<16> {
    int8x16_t floor_half[3], ceil_half[3];
};
template <>
ZIV_INLINE PixelTerms3<16> pixel_terms<16>(S16<16> d0, S16<16> d1, S16<16> d2) {
    const S16<16> d[3] = {d0, d1, d2};
    PixelTerms3<16> r;
    for (int k = 0; k < 3; k++) {
        const int8x16_t lower = (int8x16_t)vshrq_n_s16((int16x8_t)d[k], 1), upper = (int8x16_t)vrshrq_n_s16((int16x8_t)d[k], 1);
        r.floor_half[k] = vtrn1q_s8(lower, lower);
        r.ceil_half[k] = vtrn1q_s8(upper, upper);
    }
    return r;
}
ZIV_INLINE U8<16> apply_term(U8<16> luma, const PixelTerms3<16>& terms, int k) {
    return (U8<16>)vsqaddq_u8(vsqaddq_u8((uint8x16_t)luma, terms.floor_half[k]), terms.ceil_half[k]);
}
template <>
ZIV_INLINE void store_pixels<16>(uint8_t* p, U8<16> luma, const PixelTerms3<16>& terms) {
    store3<16>(p, apply_term(luma, terms, 0), apply_term(luma, terms, 1), apply_term(luma, terms, 2));
}
template <>
ZIV_INLINE void store_pixels<16>(uint8_t* p, U8<16> luma, const PixelTerms4<16>& terms) {
    const PixelTerms3<16>& colour = terms.colour;
    store4<16>(p, apply_term(luma, colour, 0), apply_term(luma, colour, 1), apply_term(luma, colour, 2), terms.alpha);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
