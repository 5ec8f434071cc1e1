// The operations over 32 columns of RGB on Advanced SIMD: two de-interleaved loads, so that the 16 even columns fill one vector
// of bytes. Over 16 columns, one.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

template <int c>
struct Pixels<16, c> {
    Channels<16, c> channels;
};
template <int c>
struct Pixels<32, c> {
    Channels<16, c> part[2];
};
template <>
struct Luma<32> {
    uint8x16_t part[2];
};
struct LumaQ7Of16 {
    uint16x8_t lo, hi;
};
template <>
struct LumaQ7<16> {
    U16<16> lo, hi;
};
template <>
struct LumaQ7<32> {
    LumaQ7Of16 part[2];
};
template <>
struct ChromaPairs<32> {
    uint8x16_t c0, c2;
};

template <>
ZIV_INLINE Pixels<16, 3> load_pixels<16, 3>(const uint8_t* p) {
    return {load3<16>(p)};
}
template <>
ZIV_INLINE Pixels<16, 4> load_pixels<16, 4>(const uint8_t* p) {
    return {load4<16>(p)};
}
template <>
ZIV_INLINE Pixels<32, 3> load_pixels<32, 3>(const uint8_t* p) {
    return {{load3<16>(p), load3<16>(p + 48)}};
}
#if !ZIV_HAS_DOT_PRODUCT
template <>
ZIV_INLINE Pixels<32, 4> load_pixels<32, 4>(const uint8_t* p) {
    return {{load4<16>(p), load4<16>(p + 64)}};
}
#endif

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

// S >> 8 is the sum by the upper bytes of the weights plus the sum by their lower bytes >> 8, and either fits 16 bits.
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
template <Weights w>
ZIV_INLINE LumaQ7<16> luma_q7(const Pixels<16, 3>& pixels) {
    const LumaQ7Of16 q7 = luma_q7_of_16<w>(pixels.channels.c);
    return {(U16<16>)q7.lo, (U16<16>)q7.hi};
}
template <Weights w>
ZIV_INLINE LumaQ7<32> luma_q7(const Pixels<32, 3>& pixels) {
    return {{luma_q7_of_16<w>(pixels.part[0].c), luma_q7_of_16<w>(pixels.part[1].c)}};
}
ZIV_INLINE uint8x16_t round_q7(LumaQ7Of16 luma) { return vrshrn_high_n_u16(vrshrn_n_u16(luma.lo, 7), luma.hi, 7); }
ZIV_INLINE Luma<16> rounded(const LumaQ7<16>& luma) { return {(U8<16>)round_q7({(uint16x8_t)luma.lo, (uint16x8_t)luma.hi})}; }
ZIV_INLINE Luma<32> rounded(const LumaQ7<32>& luma) { return {{round_q7(luma.part[0]), round_q7(luma.part[1])}}; }

// The whole luma by fewer products, as they are what cores have the fewest units for: the first weight is 2^12 - 2^8 less the
// rest.
template <Weights w>
ZIV_INLINE uint8x16_t luma_q15_of_16(const U8<16>* channels) {
    constexpr int less = (1 << 12) - (1 << 8) - w.c0;
    static_assert(0 <= less && less < 128 && 15 + (w.c1 >> 8) + (w.c2 >> 8) <= 128 && (w.c1 & 255) + (w.c2 & 255) < 128);
    const auto low = [](uint8x16_t v) ZIV_INLINE_BODY { return vget_low_u8(v); };
    const uint8x16_t c0 = (uint8x16_t)channels[0], c1 = (uint8x16_t)channels[1], c2 = (uint8x16_t)channels[2];
    const uint8x16_t u1 = vdupq_n_u8(w.c1 >> 8), u2 = vdupq_n_u8(w.c2 >> 8);
    const uint8x16_t l0 = vdupq_n_u8(less), l1 = vdupq_n_u8(w.c1 & 255), l2 = vdupq_n_u8(w.c2 & 255);
    uint16x8_t upper_lo = vshll_n_u8(low(c0), 4), upper_hi = vshll_high_n_u8(c0, 4);
    asm("" : "+w"(upper_lo), "+w"(upper_hi));  // or else clang makes a product of it again
    upper_lo = vmlal_u8(vmlal_u8(vsubw_u8(upper_lo, low(c0)), low(c1), low(u1)), low(c2), low(u2));
    upper_hi = vmlal_high_u8(vmlal_high_u8(vsubw_high_u8(upper_hi, c0), c1, u1), c2, u2);
    const uint16x8_t lower_lo = vmlsl_u8(vmlal_u8(vmull_u8(low(c2), low(l2)), low(c1), low(l1)), low(c0), low(l0));
    const uint16x8_t lower_hi = vmlsl_high_u8(vmlal_high_u8(vmull_high_u8(c2, l2), c1, l1), c0, l0);
    const auto add_lower = [](uint16x8_t upper, uint16x8_t lower) ZIV_INLINE_BODY {
        return vreinterpretq_u16_s16(vsraq_n_s16(vreinterpretq_s16_u16(upper), vreinterpretq_s16_u16(lower), 8));
    };
    return round_q7({add_lower(upper_lo, lower_lo), add_lower(upper_hi, lower_hi)});
}
template <Weights w>
ZIV_INLINE Luma<16> luma_q15(const Pixels<16, 3>& pixels) {
    return {(U8<16>)luma_q15_of_16<w>(pixels.channels.c)};
}
template <Weights w>
ZIV_INLINE Luma<32> luma_q15(const Pixels<32, 3>& pixels) {
    return {{luma_q15_of_16<w>(pixels.part[0].c), luma_q15_of_16<w>(pixels.part[1].c)}};
}

ZIV_INLINE void store_luma(uint8_t* p, const Luma<32>& luma) {
    vst1q_u8(p, luma.part[0]);
    vst1q_u8(p + 16, luma.part[1]);
}

// ---- Chroma of the even columns ----

template <int c>
ZIV_INLINE S16<16> even_columns(const Pixels<16, c>& pixels, int channel) {
    return (S16<16>)even_bytes<16>(pixels.channels.c[channel]);
}
ZIV_INLINE S16<16> even_columns(const LumaQ7<16>& luma) {
    return (S16<16>)vuzp1q_u16((uint16x8_t)luma.lo, (uint16x8_t)luma.hi);
}
template <int c>
ZIV_INLINE uint8x16_t even_columns(const Pixels<32, c>& pixels, int channel) {
    return vuzp1q_u8((uint8x16_t)pixels.part[0].c[channel], (uint8x16_t)pixels.part[1].c[channel]);
}
ZIV_INLINE uint8x16_t even_columns(const Luma<32>& luma) { return vuzp1q_u8(luma.part[0], luma.part[1]); }

// Chroma saturates as a signed byte around 0; turning the top bit over then adds 128.
ZIV_INLINE uint8x16_t centred(int8x16_t v) { return veorq_u8(vreinterpretq_u8_s8(v), vdupq_n_u8(128)); }

// Where a product of scale 2^8 fits, its upper byte is the result.
template <ShiftedWeight s>
inline constexpr bool upper_byte_tells = (s.weight << (8 - s.shift)) * s.most < 32768;
template <ShiftedWeight s>
ZIV_INLINE uint8x16_t weights_of_difference() {
    return vdupq_n_u8(upper_byte_tells<s> ? s.weight << (8 - s.shift) : s.weight);
}
template <ShiftedWeight s>
ZIV_INLINE uint8x16_t narrowed_difference(uint16x8_t lo, uint16x8_t hi) {
    if constexpr (upper_byte_tells<s>) return centred(vuzp2q_s8(vreinterpretq_s8_u16(lo), vreinterpretq_s8_u16(hi)));
    else
        return centred(vqshrn_high_n_s16(vqshrn_n_s16(vreinterpretq_s16_u16(lo), s.shift), vreinterpretq_s16_u16(hi), s.shift));
}
// Of two colours at once: left to itself a compiler takes one after the other, and in-order cores wait for each product.
template <ShiftedWeight s0, ShiftedWeight s2>
ZIV_INLINE ChromaPairs<32> scaled_differences(uint8x16_t c0, uint8x16_t c2, uint8x16_t luma) {
    const uint8x16_t w0 = weights_of_difference<s0>(), w2 = weights_of_difference<s2>();
    const auto low = [](uint8x16_t v) ZIV_INLINE_BODY { return vget_low_u8(v); };
    uint16x8_t lo0 = vmlsl_u8(vmull_u8(low(c0), low(w0)), low(luma), low(w0));
    uint16x8_t lo2 = vmlsl_u8(vmull_u8(low(c2), low(w2)), low(luma), low(w2));
    uint16x8_t hi0 = vmlsl_high_u8(vmull_high_u8(c0, w0), luma, w0);
    uint16x8_t hi2 = vmlsl_high_u8(vmull_high_u8(c2, w2), luma, w2);
    asm("" : "+w"(lo0), "+w"(hi0), "+w"(lo2), "+w"(hi2));
    return {narrowed_difference<s0>(lo0, hi0), narrowed_difference<s2>(lo2, hi2)};
}
template <ShiftedWeight s0, ShiftedWeight s2, int c>
ZIV_INLINE ChromaPairs<32> scaled_differences(const Pixels<32, c>& pixels, const Luma<32>& luma) {
    return scaled_differences<s0, s2>(even_columns(pixels, 0), even_columns(pixels, 2), even_columns(luma));
}

template <>
ZIV_INLINE void convert_to_yuv444<16>(const uint8_t* rgb, uint8_t* dst_y, uint8_t* dst_u, uint8_t* dst_v) {
    const Channels<16, 3> in = load3<16>(rgb);
    const uint8x16_t y = luma_q6_of_16<Weights{19, 38, 7}, own_bytes>(in.c);
    vst1q_u8(dst_y, y);
    constexpr ShiftedWeight weight_v{91, 7, 180}, weight_u{9, 4, 228};
    const ChromaPairs<32> chroma = scaled_differences<weight_v, weight_u>((uint8x16_t)in.c[0], (uint8x16_t)in.c[2], y);
    vst1q_u8(dst_v, chroma.c0);
    vst1q_u8(dst_u, chroma.c2);
}

template <OuterWeights w>
ZIV_INLINE ChromaPairs<32> rounded_differences_q15(const Pixels<32, 3>& pixels, const Luma<32>& luma) {
    const uint8x16_t c0 = even_columns(pixels, 0), c2 = even_columns(pixels, 2), y = even_columns(luma);
    const auto low_difference = [](uint8x16_t a, uint8x16_t b)
                                    ZIV_INLINE_BODY { return vreinterpretq_s16_u16(vsubl_u8(vget_low_u8(a), vget_low_u8(b))); };
    const auto high_difference = [](uint8x16_t a, uint8x16_t b)
                                     ZIV_INLINE_BODY { return vreinterpretq_s16_u16(vsubl_high_u8(a, b)); };
    int16x8_t lo0 = vqrdmulhq_n_s16(low_difference(c0, y), w.c0), hi0 = vqrdmulhq_n_s16(high_difference(c0, y), w.c0);
    int16x8_t lo2 = vqrdmulhq_n_s16(low_difference(c2, y), w.c2), hi2 = vqrdmulhq_n_s16(high_difference(c2, y), w.c2);
    asm("" : "+w"(lo0), "+w"(hi0), "+w"(lo2), "+w"(hi2));  // both at once, as above
    return {centred(vqmovn_high_s16(vqmovn_s16(lo0), hi0)), centred(vqmovn_high_s16(vqmovn_s16(lo2), hi2))};
}

// The difference is taken the other way round, to need one multiply-subtract, and so is the sign of the weight. The doubling
// high multiply takes half of the weight.
template <int weight>
ZIV_INLINE uint8x16_t fractional_difference_q15(uint8x16_t a, uint16x8_t luma_lo, uint16x8_t luma_hi) {
    static_assert(weight % 2 == 0);
    const int16x8_t lo = vreinterpretq_s16_u16(vmlsl_u8(luma_lo, vget_low_u8(a), vdup_n_u8(128)));
    const int16x8_t hi = vreinterpretq_s16_u16(vmlsl_high_u8(luma_hi, a, vdupq_n_u8(128)));
    const int8x8_t chroma_lo = vqrshrn_n_s16(vqdmulhq_n_s16(lo, -weight / 2), 6);
    return centred(vqrshrn_high_n_s16(chroma_lo, vqdmulhq_n_s16(hi, -weight / 2), 6));
}
template <OuterWeights w>
ZIV_INLINE ChromaPairs<32> fractional_differences_q15(const Pixels<32, 3>& pixels, const LumaQ7<32>& luma) {
    const uint16x8_t lo = vuzp1q_u16(luma.part[0].lo, luma.part[0].hi), hi = vuzp1q_u16(luma.part[1].lo, luma.part[1].hi);
    return {fractional_difference_q15<w.c0>(even_columns(pixels, 0), lo, hi),
            fractional_difference_q15<w.c2>(even_columns(pixels, 2), lo, hi)};
}

template <bool c2_first>
ZIV_INLINE void store_pairs(uint8_t* p, const ChromaPairs<32>& chroma) {
    const uint8x16_t first = c2_first ? chroma.c2 : chroma.c0, second = c2_first ? chroma.c0 : chroma.c2;
    store_interleaved(p, first, second);
}
ZIV_INLINE void store_planes(uint8_t* p0, uint8_t* p2, const ChromaPairs<32>& chroma) {
    vst1q_u8(p0, chroma.c0);
    vst1q_u8(p2, chroma.c2);
}
template <bool luma_first, bool c2_first>
ZIV_INLINE void store_packed422(uint8_t* p, const Luma<32>& luma, const ChromaPairs<32>& chroma) {
    const uint8x16_t even = vuzp1q_u8(luma.part[0], luma.part[1]), odd = vuzp2q_u8(luma.part[0], luma.part[1]);
    const uint8x16_t first = c2_first ? chroma.c2 : chroma.c0, second = c2_first ? chroma.c0 : chroma.c2;
    if constexpr (luma_first) store_interleaved(p, even, first, odd, second);
    else store_interleaved(p, first, even, second, odd);
}

ZIV_INLINE uint8x8_t chroma_bytes(S16<16> v) { return veor_u8(vreinterpret_u8_s8(vqmovn_s16((int16x8_t)v)), vdup_n_u8(128)); }
template <bool c2_first>
ZIV_INLINE U8<16> pairs_in_order(const ChromaPairs<16>& chroma) {
    const uint8x8_t c0 = chroma_bytes(chroma.c0), c2 = chroma_bytes(chroma.c2);
    return (U8<16>)(c2_first ? vzip1q_u8(vcombine_u8(c2, c2), vcombine_u8(c0, c0))
                             : vzip1q_u8(vcombine_u8(c0, c0), vcombine_u8(c2, c2)));
}
ZIV_INLINE void store_planes(uint8_t* p0, uint8_t* p2, const ChromaPairs<16>& chroma) {
    vst1_u8(p0, chroma_bytes(chroma.c0));
    vst1_u8(p2, chroma_bytes(chroma.c2));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
