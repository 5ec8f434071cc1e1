// The terms over columns of RGB in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET {

// C pixels of c bytes.
template <int C, int c>
struct Pixels {
    Channels<C, c> channels;
};
template <int C, int c>
ZIV_INLINE Pixels<C, c> load_pixels(const uint8_t* p) {
    if constexpr (c == 3) return {load3<C>(p)};
    else return {load4<C>(p)};
}

// ---- Luma of C columns: whole, or with 7 fractional bits ----

template <int C>
struct Luma {
    U8<C> bytes;
};
template <int C>
struct LumaQ7 {
    U16<C> lo, hi;
};

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 6; the weights sum to 64. Where `shared` names a byte, pixels 8 to 15 of every 16 take
// that byte from pixels 0 to 7. With the weights taken four times the result is the upper byte of a sum that fills 16 bits.
template <Weights w, int shared, int C, int c>
ZIV_INLINE Luma<C> luma_q6(const Pixels<C, c>& pixels) {
    static_assert(C == 16);
    const S16<C> weights[3] = {constant<C>(4 * w.c0), constant<C>(4 * w.c1), constant<C>(4 * w.c2)};
    U16<C> lo{}, hi{};
    for (int k = 0; k < 3; k++) {
        const U8<C> channel = pixels.channels.c[k];
        const U16<C> first = (U16<C>)interleave_low<C>(channel, U8<C>{});
        lo += first * (U16<C>)weights[k];
        hi += (k == shared ? first : (U16<C>)interleave_high<C>(channel, U8<C>{})) * (U16<C>)weights[k];
    }
    return {odd_lanes<C>((U8<C>)lo, (U8<C>)hi)};
}

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 8, below 2^15 - 2^6: the sum by the upper bytes of the weights, plus the sum by their
// lower bytes >> 8. Either fits 16 bits.
template <Weights w, int C>
ZIV_INLINE U16<C> weigh_q7(U16<C> c0, U16<C> c1, U16<C> c2) {
    static_assert((w.c0 >> 8) + (w.c1 >> 8) + (w.c2 >> 8) < 256 && (w.c0 & 255) + (w.c1 & 255) + (w.c2 & 255) <= 257);
    const auto sum = [=](int w0, int w1, int w2) ZIV_INLINE_BODY {
        return c0 * (U16<C>)constant<C>(w0) + c1 * (U16<C>)constant<C>(w1) + c2 * (U16<C>)constant<C>(w2);
    };
    return sum(w.c0 >> 8, w.c1 >> 8, w.c2 >> 8) + (sum(w.c0 & 255, w.c1 & 255, w.c2 & 255) >> 8);
}
template <Weights w, int C>
ZIV_INLINE LumaQ7<C> luma_q7(const Pixels<C, 3>& pixels) {
    static_assert(C == 16);
    const U8<C>*in = pixels.channels.c, zero{};
    const auto low = [=](U8<C> v) ZIV_INLINE_BODY { return (U16<C>)interleave_low<C>(v, zero); };
    const auto high = [=](U8<C> v) ZIV_INLINE_BODY { return (U16<C>)interleave_high<C>(v, zero); };
    return {weigh_q7<w, C>(low(in[0]), low(in[1]), low(in[2])), weigh_q7<w, C>(high(in[0]), high(in[1]), high(in[2]))};
}

// (luma + 2^6) >> 7
template <int C>
ZIV_INLINE Luma<C> rounded(const LumaQ7<C>& luma) {
    return {odd_lanes<C>((U8<C>)((luma.lo + 64) << 1), (U8<C>)((luma.hi + 64) << 1))};
}

template <int C>
ZIV_INLINE void store_luma(uint8_t* p, Luma<C> luma) {
    store(p, luma.bytes);
}

// ---- Chroma of the even columns: a value from byte 0 and a value from byte 2, centred at 128 and saturated to bytes ----

template <int C>
struct ChromaPairs {
    S16<C> c0, c2;
};

template <int C, int c>
ZIV_INLINE S16<C> even_columns(const Pixels<C, c>& pixels, int channel) {
    return (S16<C>)even_bytes<C>(pixels.channels.c[channel]);
}
template <int C>
ZIV_INLINE S16<C> even_columns(const Luma<C>& luma) {
    return (S16<C>)even_bytes<C>(luma.bytes);
}

// ((byte - luma) * weight) >> shift. The product fits 16 bits.
template <Slope s0, Slope s2, int C, int c>
ZIV_INLINE ChromaPairs<C> scaled_differences(const Pixels<C, c>& pixels, const Luma<C>& luma) {
    const S16<C> y = even_columns(luma);
    return {((even_columns(pixels, 0) - y) * int16_t{s0.weight}) >> s0.shift,
            ((even_columns(pixels, 2) - y) * int16_t{s2.weight}) >> s2.shift};
}

// ((byte - luma) * weight + 2^14) >> 15
template <OuterWeights w, int C>
ZIV_INLINE ChromaPairs<C> rounded_differences_q15(const Pixels<C, 3>& pixels, const Luma<C>& luma) {
    const S16<C> y = even_columns(luma);
    return {multiply_round_high<C>(even_columns(pixels, 0) - y, S16<C>{} + int16_t{w.c0}),
            multiply_round_high<C>(even_columns(pixels, 2) - y, S16<C>{} + int16_t{w.c2})};
}

// ((((byte << 7) - luma) * weight >> 7) + 2^14) >> 15, where the difference fits 16 bits. Shifting right by 16, rounding and
// shifting by 6 is the same, as no bit below 2^16 can carry into the rounding bit.
template <OuterWeights w, int C>
ZIV_INLINE ChromaPairs<C> fractional_differences_q15(const Pixels<C, 3>& pixels, const LumaQ7<C>& luma) {
    static_assert(C == 16);
    const S16<C> y = (S16<C>)__builtin_shufflevector(luma.lo, luma.hi, 0, 2, 4, 6, 8, 10, 12, 14);
    const S16<C> d0 = multiply_high<C>((even_columns(pixels, 0) << 7) - y, S16<C>{} + int16_t{w.c0});
    const S16<C> d2 = multiply_high<C>((even_columns(pixels, 2) << 7) - y, S16<C>{} + int16_t{w.c2});
    return {(d0 + 32) >> 6, (d2 + 32) >> 6};
}

// clamp(c0[0] + 128, 0, 255) clamp(c2[0] + 128, 0, 255) clamp(c0[1] + 128, 0, 255) ..., or those from byte 2 first.
template <bool c2_first, int C>
ZIV_INLINE U8<C> pairs_in_order(const ChromaPairs<C>& chroma) {
    const U16<C> c0 = (U16<C>)clamp_lanes<C>(chroma.c0 + 128), c2 = (U16<C>)clamp_lanes<C>(chroma.c2 + 128);
    return c2_first ? merge_bytes<C>(c2, c0) : merge_bytes<C>(c0, c2);
}
template <bool c2_first, int C>
ZIV_INLINE void store_pairs(uint8_t* p, const ChromaPairs<C>& chroma) {
    store(p, pairs_in_order<c2_first>(chroma));
}

// C / 2 bytes to each plane.
template <int C>
ZIV_INLINE void store_planes(uint8_t* p0, uint8_t* p2, const ChromaPairs<C>& chroma) {
    static_assert(C == 16);
    const U64<C> halves = (U64<C>)narrow_saturating<C>(chroma.c0 + 128, chroma.c2 + 128);
    const uint64_t c0 = halves[0], c2 = halves[1];
    __builtin_memcpy(p0, &c0, sizeof c0);
    __builtin_memcpy(p2, &c2, sizeof c2);
}

// Luma and chroma of a packed row in turn, luma first or chroma first.
template <bool luma_first, bool c2_first, int C>
ZIV_INLINE void store_packed(uint8_t* p, const Luma<C>& luma, const ChromaPairs<C>& chroma) {
    const U8<C> pairs = pairs_in_order<c2_first>(chroma);
    if constexpr (luma_first) store2<C>(p, luma.bytes, pairs);
    else store2<C>(p, pairs, luma.bytes);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
