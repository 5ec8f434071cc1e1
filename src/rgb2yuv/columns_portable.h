// SPDX-License-Identifier: MIT
// The operations over columns of RGB in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// The first three bytes of C pixels of c bytes, one channel each, a pixel a lane.
template <int C, int c>
struct Pixels {
    U16<C> even[3], odd[3];
};
template <int C, int c>
ZIV_INLINE Pixels<C, c> load_pixels(const uint8_t* p) {
    static_assert(C == 16);
    const auto low = [](U8<C> v) ZIV_INLINE_BODY { return (U16<C>)interleave_low<C>(v, U8<C>{}); };
    const auto high = [](U8<C> v) ZIV_INLINE_BODY { return (U16<C>)interleave_high<C>(v, U8<C>{}); };
    if constexpr (c == 3) {
        const Channels<C, 3> v = load_zipped3<C, 3>(p);
        return {{low(v.c[0]), high(v.c[0]), low(v.c[1])}, {high(v.c[1]), low(v.c[2]), high(v.c[2])}};
    } else {
        const Channels<C, 4> v = load_zipped4<C, 3>(p);
        return {{low(v.c[0]), high(v.c[0]), low(v.c[1])}, {low(v.c[2]), high(v.c[2]), low(v.c[3])}};
    }
}

// ---- Luma of C columns: whole, or with 7 fractional bits ----

template <int C>
struct Luma {
    U8<C> bytes;
};
template <int C>
struct FractionalLuma {
    U16<C> even, odd;
};
// The upper bytes of the lanes, interleaved.
template <int C>
ZIV_INLINE Luma<C> luma_of_upper_bytes(U16<C> even, U16<C> odd) {
    return {(U8<C>)(even >> 8 | (odd & 0xFF00))};
}

// c0 * w0 + c1 * w1 + c2 * w2 below 2^16.
template <int C>
ZIV_INLINE U16<C> weigh_channels(const U16<C> (&channels)[3], int w0, int w1, int w2) {
    return channels[0] * (U16<C>)constant<C>(w0) + channels[1] * (U16<C>)constant<C>(w1) +
           channels[2] * (U16<C>)constant<C>(w2);
}

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 6; the weights sum to 64. Where `shared` names a byte, pixels 8 to 15 of every 16 take
// that byte from pixels 0 to 7. With the weights taken four times the result is the upper byte of a sum that fills 16 bits.
template <Weights w, int shared, int C, int c>
ZIV_INLINE Luma<C> luma_q6(Pixels<C, c> pixels) {
    if constexpr (shared != own_bytes) {
        const U64<C> even = (U64<C>)pixels.even[shared], odd = (U64<C>)pixels.odd[shared];
        pixels.even[shared] = (U16<C>)__builtin_shufflevector(even, even, 0, 0);
        pixels.odd[shared] = (U16<C>)__builtin_shufflevector(odd, odd, 0, 0);
    }
    return luma_of_upper_bytes<C>(weigh_channels<C>(pixels.even, 4 * w.c0, 4 * w.c1, 4 * w.c2),
                                  weigh_channels<C>(pixels.odd, 4 * w.c0, 4 * w.c1, 4 * w.c2));
}

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 8, below 2^15 - 2^6: the sum by the upper bytes of the weights, plus the sum by their
// lower bytes >> 8. Either fits 16 bits.
template <Weights w, int C>
ZIV_INLINE FractionalLuma<C> fractional_luma(const Pixels<C, 3>& pixels) {
    static_assert((w.c0 >> 8) + (w.c1 >> 8) + (w.c2 >> 8) < 256 && (w.c0 & 255) + (w.c1 & 255) + (w.c2 & 255) <= 257);
    const auto weigh = [](const U16<C>(&channels)[3]) ZIV_INLINE_BODY {
        return weigh_channels<C>(channels, w.c0 >> 8, w.c1 >> 8, w.c2 >> 8) +
               (weigh_channels<C>(channels, w.c0 & 255, w.c1 & 255, w.c2 & 255) >> 8);
    };
    return {weigh(pixels.even), weigh(pixels.odd)};
}

// (luma + 2^6) >> 7
template <int C>
ZIV_INLINE Luma<C> rounded(const FractionalLuma<C>& luma) {
    return luma_of_upper_bytes<C>((luma.even + 64) << 1, (luma.odd + 64) << 1);
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
    return (S16<C>)pixels.even[channel];
}
template <int C>
ZIV_INLINE S16<C> even_columns(const Luma<C>& luma) {
    return (S16<C>)even_bytes<C>(luma.bytes);
}
template <int C>
ZIV_INLINE S16<C> even_columns(const FractionalLuma<C>& luma) {
    return (S16<C>)luma.even;
}

// ((byte - luma) * weight) >> shift. The product fits 16 bits.
template <ShiftedWeight s0, ShiftedWeight s2, int C, int c>
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
ZIV_INLINE ChromaPairs<C> fractional_differences_q15(const Pixels<C, 3>& pixels, const FractionalLuma<C>& luma) {
    const S16<C> y = even_columns(luma);
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

// Luma and chroma of a packed row, interleaved, luma first or chroma first.
template <bool luma_first, bool c2_first, int C>
ZIV_INLINE void store_packed422(uint8_t* p, const Luma<C>& luma, const ChromaPairs<C>& chroma) {
    const U8<C> pairs = pairs_in_order<c2_first>(chroma);
    if constexpr (luma_first) store2<C>(p, luma.bytes, pairs);
    else store2<C>(p, pairs, luma.bytes);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
