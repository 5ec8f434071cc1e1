// SPDX-License-Identifier: MIT
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
// Luma of scale 2^8 and a half: its upper bytes are the rounded luma.
struct FractionalLumaOf16 {
    uint16x8_t lo, hi;
};
template <>
struct FractionalLuma<16> {
    FractionalLumaOf16 part[1];
};
template <>
struct FractionalLuma<32> {
    FractionalLumaOf16 part[2];
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

// Sums start from constants in memory: what makes them anew elsewhere are the vector units, which are the busy ones. Compilers
// would copy a register; `after` ties the loads to a step of the loop.
struct TwoSums {
    uint16x8_t lo, hi;
};
ZIV_INLINE TwoSums start_sums(const uint16_t (&lanes)[8], uint8x16_t after) {
    TwoSums sums;
    asm("ldr %q0, %2\n\t"
        "ldr %q1, %2"
        : "=&w"(sums.lo), "=w"(sums.hi)
        : "Q"(lanes), "w"(after));
    return sums;
}
alignas(16) inline constexpr uint16_t half_q15[8] = {16384, 16384, 16384, 16384, 16384, 16384, 16384, 16384};
alignas(16) inline constexpr uint16_t centre_q8[8] = {32768, 32768, 32768, 32768, 32768, 32768, 32768, 32768};

// (S + 2^14) >> 7 is the sum by the upper bits of the weights plus the sum by their lower 7 bits and 2^14, >> 7; either fits 16
// bits.
template <Weights w>
ZIV_INLINE FractionalLumaOf16 fractional_luma_of_16(const U8<16>* channels) {
    constexpr int most_lower = 255 * ((w.c0 & 127) + (w.c1 & 127) + (w.c2 & 127)) + 16384;
    static_assert(most_lower < 65536 && 255 * ((w.c0 >> 7) + (w.c1 >> 7) + (w.c2 >> 7)) + (most_lower >> 7) < 65536);
    const uint8x16_t c0 = (uint8x16_t)channels[0], c1 = (uint8x16_t)channels[1], c2 = (uint8x16_t)channels[2];
    const uint8x16_t u0 = vdupq_n_u8(w.c0 >> 7), u1 = vdupq_n_u8(w.c1 >> 7), u2 = vdupq_n_u8(w.c2 >> 7);
    const uint8x16_t l0 = vdupq_n_u8(w.c0 & 127), l1 = vdupq_n_u8(w.c1 & 127), l2 = vdupq_n_u8(w.c2 & 127);
    const auto low = [](uint8x16_t v) ZIV_INLINE_BODY { return vget_low_u8(v); };
    TwoSums sums = start_sums(half_q15, c0);
    sums.lo = vmlal_u8(vmlal_u8(vmlal_u8(sums.lo, low(c1), low(l1)), low(c0), low(l0)), low(c2), low(l2));
    sums.hi = vmlal_high_u8(vmlal_high_u8(vmlal_high_u8(sums.hi, c1, l1), c0, l0), c2, l2);
    const uint16x8_t lo = vmlal_u8(vmlal_u8(vmull_u8(low(c1), low(u1)), low(c0), low(u0)), low(c2), low(u2));
    const uint16x8_t hi = vmlal_high_u8(vmlal_high_u8(vmull_high_u8(c1, u1), c0, u0), c2, u2);
    return {vsraq_n_u16(lo, sums.lo, 7), vsraq_n_u16(hi, sums.hi, 7)};
}
template <Weights w>
ZIV_INLINE FractionalLuma<16> fractional_luma(const Pixels<16, 3>& pixels) {
    return {{fractional_luma_of_16<w>(pixels.channels.c)}};
}
template <Weights w>
ZIV_INLINE FractionalLuma<32> fractional_luma(const Pixels<32, 3>& pixels) {
    return {{fractional_luma_of_16<w>(pixels.part[0].c), fractional_luma_of_16<w>(pixels.part[1].c)}};
}
ZIV_INLINE uint8x16_t upper_bytes(uint16x8_t lo, uint16x8_t hi) {
    return vuzp2q_u8(vreinterpretq_u8_u16(lo), vreinterpretq_u8_u16(hi));
}
ZIV_INLINE Luma<16> rounded(const FractionalLuma<16>& luma) { return {(U8<16>)upper_bytes(luma.part[0].lo, luma.part[0].hi)}; }
ZIV_INLINE Luma<32> rounded(const FractionalLuma<32>& luma) {
    return {{upper_bytes(luma.part[0].lo, luma.part[0].hi), upper_bytes(luma.part[1].lo, luma.part[1].hi)}};
}

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
    return vrshrn_high_n_u16(vrshrn_n_u16(add_lower(upper_lo, lower_lo), 7), add_lower(upper_hi, lower_hi), 7);
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
ZIV_INLINE S16<16> even_columns(const FractionalLuma<16>& luma) {
    const uint16x8_t even = vuzp1q_u16(luma.part[0].lo, luma.part[0].hi);
    return (S16<16>)vsubq_u16(vshrq_n_u16(even, 1), vdupq_n_u16(64));
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
template <ShiftedWeight s>
inline constexpr bool is_nine_sixteenths = s.weight << (8 - s.shift) == 9 << 4;

// Byte 0 by products with its centre in them, byte 2 without leaving bytes: nine sixteenths of a difference 2 h + p, p being 0
// or 1, are h + (((h >> 2) + p) >> 1). In the order of in-order cores, which take one chain between the instructions of the
// other.
template <ShiftedWeight s0>
ZIV_INLINE ChromaPairs<32> product_and_nine_sixteenths(uint8x16_t c0, uint8x16_t c2, uint8x16_t luma) {
    const uint8x16_t weight = weights_of_difference<s0>();
    auto [lo, hi] = start_sums(centre_q8, c0);
    lo = vmlal_u8(lo, vget_low_u8(c0), vget_low_u8(weight));
    hi = vmlal_high_u8(hi, c0, weight);
    uint8x16_t sum, eighth, parity;
    asm("uhsub %2.16b, %5.16b, %6.16b\n\t"
        "eor %4.16b, %5.16b, %6.16b\n\t"
        "umlsl %0.8h, %6.8b, %7.8b\n\t"
        "umlsl2 %1.8h, %6.16b, %7.16b\n\t"
        "sshr %3.16b, %2.16b, #2\n\t"
        "and %4.16b, %4.16b, %8.16b\n\t"
        "eor %2.16b, %2.16b, %9.16b\n\t"
        "shadd %3.16b, %3.16b, %4.16b\n\t"
        "uzp2 %0.16b, %0.16b, %1.16b\n\t"
        "usqadd %2.16b, %3.16b"
        : "+&w"(lo), "+&w"(hi), "=&w"(sum), "=&w"(eighth), "=&w"(parity)
        : "w"(c2), "w"(luma), "w"(weight), "w"(vdupq_n_u8(1)), "w"(vdupq_n_u8(128)));
    return {vreinterpretq_u8_u16(lo), sum};
}

// Of two colours at once: left to itself a compiler takes one after the other, and in-order cores wait for each product.
template <ShiftedWeight s0, ShiftedWeight s2>
ZIV_INLINE ChromaPairs<32> scaled_differences(uint8x16_t c0, uint8x16_t c2, uint8x16_t luma) {
    if constexpr (is_nine_sixteenths<s2> && upper_byte_tells<s0>) return product_and_nine_sixteenths<s0>(c0, c2, luma);
    if constexpr (is_nine_sixteenths<s0> && upper_byte_tells<s2>) {
        const ChromaPairs<32> swapped = product_and_nine_sixteenths<s2>(c2, c0, luma);
        return {swapped.c2, swapped.c0};
    }
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

// The difference of 7 fractional bits is half of that of 8: (256 a + 129 - (256 luma + 128)) >> 1, where the odd one makes up
// for the bit of luma that is dropped. The doubling high multiply takes half of the weight.
template <int weight>
ZIV_INLINE uint8x16_t fractional_difference_q15(const Pixels<32, 3>& pixels, int channel, uint16x8_t luma_lo,
                                                uint16x8_t luma_hi) {
    static_assert(weight % 2 == 0);
    const auto difference = [=](const Channels<16, 3>& part, uint16x8_t luma) ZIV_INLINE_BODY {
        const uint8x16_t scaled = vtrn1q_u8(vdupq_n_u8(129), (uint8x16_t)part.c[channel]);
        return vreinterpretq_s16_u16(vhsubq_u16(vreinterpretq_u16_u8(scaled), luma));
    };
    const int16x8_t lo = difference(pixels.part[0], luma_lo), hi = difference(pixels.part[1], luma_hi);
    const int8x8_t chroma_lo = vqrshrn_n_s16(vqdmulhq_n_s16(lo, weight / 2), 6);
    return centred(vqrshrn_high_n_s16(chroma_lo, vqdmulhq_n_s16(hi, weight / 2), 6));
}
template <OuterWeights w>
ZIV_INLINE ChromaPairs<32> fractional_differences_q15(const Pixels<32, 3>& pixels, const FractionalLuma<32>& luma) {
    const uint16x8_t lo = vuzp1q_u16(luma.part[0].lo, luma.part[0].hi), hi = vuzp1q_u16(luma.part[1].lo, luma.part[1].hi);
    return {fractional_difference_q15<w.c0>(pixels, 0, lo, hi), fractional_difference_q15<w.c2>(pixels, 2, lo, hi)};
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
