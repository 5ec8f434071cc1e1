// The terms over 32 columns of RGB on Advanced SIMD: two de-interleaved loads, so that the 16 even columns fill one vector of
// bytes.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET {

template <int c>
struct Pixels<32, c> {
    Channels<16, c> part[2];
};
template <>
struct Luma<32> {
    uint8x16_t part[2];
};
template <>
struct Samples<32> {
    uint8x16_t bytes;
};
template <>
struct LumaQ15<32> {
    Luma<32> rounded;
    struct Q7 {
        uint16x8_t lo, hi;
    } even_q7;
};
template <>
struct Chroma<32> {
    uint8x16_t bytes;
};

template <>
ZIV_INLINE Pixels<32, 3> load_pixels<32, 3>(const uint8_t* p) {
    return {{load3<16>(p), load3<16>(p + 48)}};
}
template <>
ZIV_INLINE Pixels<32, 4> load_pixels<32, 4>(const uint8_t* p) {
    return {{load4<16>(p), load4<16>(p + 64)}};
}

// With the weights taken four times the luma is the upper byte of a sum that fills 16 bits.
template <Weights w, int shared>
ZIV_INLINE uint8x16_t luma_q6_of_16(const U8<16>* channels) {
    const uint8x16_t c0 = (uint8x16_t)channels[0], c1 = (uint8x16_t)channels[1], c2 = (uint8x16_t)channels[2];
    const uint8x8_t w0 = vdup_n_u8(4 * w.c0), w1 = vdup_n_u8(4 * w.c1), w2 = vdup_n_u8(4 * w.c2);
    const uint16x8_t lo = vmlal_u8(vmlal_u8(vmull_u8(vget_low_u8(c1), w1), vget_low_u8(c0), w0), vget_low_u8(c2), w2);
    uint16x8_t hi = vmull_high_u8(c1, vcombine_u8(w1, w1));
    hi = shared == 0 ? vmlal_u8(hi, vget_low_u8(c0), w0) : vmlal_high_u8(hi, c0, vcombine_u8(w0, w0));
    hi = shared == 2 ? vmlal_u8(hi, vget_low_u8(c2), w2) : vmlal_high_u8(hi, c2, vcombine_u8(w2, w2));
    return vuzp2q_u8(vreinterpretq_u8_u16(lo), vreinterpretq_u8_u16(hi));
}
template <Weights w, int shared, int c>
ZIV_INLINE Luma<16> luma_q6(const Pixels<16, c>& pixels) {
    return {(U8<16>)luma_q6_of_16<w, shared>(pixels.channels.c)};
}
template <Weights w, int shared, int c>
ZIV_INLINE Luma<32> luma_q6(const Pixels<32, c>& pixels) {
    return {{luma_q6_of_16<w, shared>(pixels.part[0].c), luma_q6_of_16<w, shared>(pixels.part[1].c)}};
}

// A sum of scale 2^15 cut to 2^7: S >> 8 is the sum by the upper bytes of the weights plus the sum by their lower bytes >> 8,
// and either fits 16 bits.
struct LumaQ7Of16 {
    uint16x8_t lo, hi;
};
template <Weights w>
ZIV_INLINE LumaQ7Of16 luma_q7_of_16(const U8<16>* channels) {
    static_assert((w.c0 >> 8) + (w.c1 >> 8) + (w.c2 >> 8) < 256 && (w.c0 & 255) + (w.c1 & 255) + (w.c2 & 255) <= 257);
    const uint8x16_t c0 = (uint8x16_t)channels[0], c1 = (uint8x16_t)channels[1], c2 = (uint8x16_t)channels[2];
    const uint8x16_t u0 = vdupq_n_u8(w.c0 >> 8), u1 = vdupq_n_u8(w.c1 >> 8), u2 = vdupq_n_u8(w.c2 >> 8);
    const uint8x16_t l0 = vdupq_n_u8(w.c0 & 255), l1 = vdupq_n_u8(w.c1 & 255), l2 = vdupq_n_u8(w.c2 & 255);
    const auto low = [](uint8x16_t v) ZIV_INLINE_BODY { return vget_low_u8(v); };
    uint16x8_t lo = vmlal_u8(vmlal_u8(vmull_u8(low(c1), low(l1)), low(c0), low(l0)), low(c2), low(l2));
    uint16x8_t hi = vmlal_high_u8(vmlal_high_u8(vmull_high_u8(c1, l1), c0, l0), c2, l2);
    lo = vmlal_u8(vmlal_u8(vmlal_u8(vshrq_n_u16(lo, 8), low(c1), low(u1)), low(c0), low(u0)), low(c2), low(u2));
    hi = vmlal_high_u8(vmlal_high_u8(vmlal_high_u8(vshrq_n_u16(hi, 8), c1, u1), c0, u0), c2, u2);
    return {lo, hi};
}
ZIV_INLINE uint8x16_t round_q7(LumaQ7Of16 luma) { return vrshrn_high_n_u16(vrshrn_n_u16(luma.lo, 7), luma.hi, 7); }

template <Weights w, int c>
ZIV_INLINE LumaQ15<16> luma_q15(const Pixels<16, c>& pixels) {
    const LumaQ7Of16 q7 = luma_q7_of_16<w>(pixels.channels.c);
    return {{(U8<16>)round_q7(q7)}, {(S16<16>)vuzp1q_u16(q7.lo, q7.hi)}};
}
template <Weights w, int c>
ZIV_INLINE LumaQ15<32> luma_q15(const Pixels<32, c>& pixels) {
    const LumaQ7Of16 a = luma_q7_of_16<w>(pixels.part[0].c), b = luma_q7_of_16<w>(pixels.part[1].c);
    return {{{round_q7(a), round_q7(b)}}, {vuzp1q_u16(a.lo, a.hi), vuzp1q_u16(b.lo, b.hi)}};
}

template <int c>
ZIV_INLINE OuterBytes<32> even_outer_bytes(const Pixels<32, c>& pixels) {
    return {{vuzp1q_u8((uint8x16_t)pixels.part[0].c[0], (uint8x16_t)pixels.part[1].c[0])},
            {vuzp1q_u8((uint8x16_t)pixels.part[0].c[2], (uint8x16_t)pixels.part[1].c[2])}};
}
ZIV_INLINE Samples<32> even_columns(Luma<32> luma) { return {vuzp1q_u8(luma.part[0], luma.part[1])}; }

// Chroma saturates as a signed byte around 0; turning the top bit over then adds 128.
ZIV_INLINE Chroma<32> centre_at_128(int8x16_t v) { return {veorq_u8(vreinterpretq_u8_s8(v), vdupq_n_u8(128))}; }

template <int weight, int shift, int most>
ZIV_INLINE Chroma<32> scaled_difference(Samples<32> a, Samples<32> luma) {
    // Where a product of scale 2^8 fits, its upper byte is the result.
    constexpr bool upper_byte = (weight << (8 - shift)) * most < 32768;
    const uint8x16_t w = vdupq_n_u8(upper_byte ? weight << (8 - shift) : weight);
    const uint16x8_t lo = vmlsl_u8(vmull_u8(vget_low_u8(a.bytes), vget_low_u8(w)), vget_low_u8(luma.bytes), vget_low_u8(w));
    const uint16x8_t hi = vmlsl_high_u8(vmull_high_u8(a.bytes, w), luma.bytes, w);
    if constexpr (upper_byte) return centre_at_128(vuzp2q_s8(vreinterpretq_s8_u16(lo), vreinterpretq_s8_u16(hi)));
    else
        return centre_at_128(
            vqshrn_high_n_s16(vqshrn_n_s16(vreinterpretq_s16_u16(lo), shift), vreinterpretq_s16_u16(hi), shift));
}

template <int weight>
ZIV_INLINE Chroma<32> rounded_difference_q15(Samples<32> a, Samples<32> luma) {
    const int16x8_t lo = vreinterpretq_s16_u16(vsubl_u8(vget_low_u8(a.bytes), vget_low_u8(luma.bytes)));
    const int16x8_t hi = vreinterpretq_s16_u16(vsubl_high_u8(a.bytes, luma.bytes));
    return centre_at_128(vqmovn_high_s16(vqmovn_s16(vqrdmulhq_n_s16(lo, weight)), vqrdmulhq_n_s16(hi, weight)));
}

// The difference is taken the other way round, to need one multiply-subtract, and so is the sign of the weight. The doubling
// high multiply takes half of the weight.
template <int weight>
ZIV_INLINE Chroma<32> fractional_difference_q15(Samples<32> a, LumaQ15<32>::Q7 luma) {
    static_assert(weight % 2 == 0);
    const int16x8_t lo = vreinterpretq_s16_u16(vmlsl_u8(luma.lo, vget_low_u8(a.bytes), vdup_n_u8(128)));
    const int16x8_t hi = vreinterpretq_s16_u16(vmlsl_high_u8(luma.hi, a.bytes, vdupq_n_u8(128)));
    const int8x8_t chroma_lo = vqrshrn_n_s16(vqdmulhq_n_s16(lo, -weight / 2), 6);
    return centre_at_128(vqrshrn_high_n_s16(chroma_lo, vqdmulhq_n_s16(hi, -weight / 2), 6));
}

ZIV_INLINE void store_luma(uint8_t* p, Luma<32> luma) {
    vst1q_u8(p, luma.part[0]);
    vst1q_u8(p + 16, luma.part[1]);
}
ZIV_INLINE void store_pairs(uint8_t* p, Chroma<32> first, Chroma<32> second) {
    const uint8x16x2_t v = {{first.bytes, second.bytes}};
    vst2q_u8(p, v);
}
ZIV_INLINE void store_planes(uint8_t* pa, uint8_t* pb, Chroma<32> a, Chroma<32> b) {
    vst1q_u8(pa, a.bytes);
    vst1q_u8(pb, b.bytes);
}
template <bool luma_first>
ZIV_INLINE void store_packed(uint8_t* p, Luma<32> luma, Chroma<32> first, Chroma<32> second) {
    const uint8x16_t even = vuzp1q_u8(luma.part[0], luma.part[1]), odd = vuzp2q_u8(luma.part[0], luma.part[1]);
    const uint8x16x4_t v = luma_first ? uint8x16x4_t{{even, first.bytes, odd, second.bytes}}
                                      : uint8x16x4_t{{first.bytes, even, second.bytes, odd}};
    vst4q_u8(p, v);
}

ZIV_INLINE uint8x8_t chroma_bytes(S16<16> v) { return veor_u8(vreinterpret_u8_s8(vqmovn_s16((int16x8_t)v)), vdup_n_u8(128)); }
template <>
ZIV_INLINE U8<16> interleave_chroma<16>(S16<16> a, S16<16> b) {
    const uint8x8_t a8 = chroma_bytes(a), b8 = chroma_bytes(b);
    return (U8<16>)vzip1q_u8(vcombine_u8(a8, a8), vcombine_u8(b8, b8));
}
ZIV_INLINE void store_pairs(uint8_t* p, Chroma<16> first, Chroma<16> second) {
    const uint8x8x2_t v = {{chroma_bytes(first.lanes), chroma_bytes(second.lanes)}};
    vst2_u8(p, v);
}
ZIV_INLINE void store_planes(uint8_t* pa, uint8_t* pb, Chroma<16> a, Chroma<16> b) {
    vst1_u8(pa, chroma_bytes(a.lanes));
    vst1_u8(pb, chroma_bytes(b.lanes));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
