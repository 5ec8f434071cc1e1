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
// that byte from pixels 0 to 7.
template <Weights w, int shared, int C, int c>
ZIV_INLINE Luma<C> luma_q6(const Pixels<C, c>& pixels) {
    constexpr int weights[3] = {w.c0, w.c1, w.c2};
    U16<C> lo{}, hi{};
    for (int k = 0; k < 3; k++)
        for (int i = 0; i < C / 2; i++) {
            lo[i] = static_cast<uint16_t>(lo[i] + weights[k] * pixels.channels.c[k][i]);
            hi[i] = static_cast<uint16_t>(hi[i] + weights[k] * pixels.channels.c[k][k == shared ? i : i + C / 2]);
        }
    return {narrow_saturating<C>((S16<C>)(lo >> 6), (S16<C>)(hi >> 6))};
}

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2) >> 8, below 2^15 - 2^6.
template <Weights w, int C>
ZIV_INLINE LumaQ7<C> luma_q7(const Pixels<C, 3>& pixels) {
    const U8<C>* in = pixels.channels.c;
    const auto sum_q7 = [&](int i) ZIV_INLINE_BODY {
        return static_cast<uint16_t>((in[0][i] * w.c0 + in[1][i] * w.c1 + in[2][i] * w.c2) >> 8);
    };
    LumaQ7<C> r;
    for (int i = 0; i < C / 2; i++) r.lo[i] = sum_q7(i), r.hi[i] = sum_q7(i + C / 2);
    return r;
}

// (luma + 2^6) >> 7
template <int C>
ZIV_INLINE Luma<C> rounded(const LumaQ7<C>& luma) {
    return {narrow_saturating<C>((S16<C>)((luma.lo + 64) >> 7), (S16<C>)((luma.hi + 64) >> 7))};
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
// shifting by 6 is the same, as no bit below 2^16 can carry into the rounding bit; that shift is the rounding high multiply by
// 2^9.
template <OuterWeights w, int C>
ZIV_INLINE ChromaPairs<C> fractional_differences_q15(const Pixels<C, 3>& pixels, const LumaQ7<C>& luma) {
    S16<C> y;
    for (int i = 0; i < C / 2; i++) y[i] = static_cast<int16_t>(i < C / 4 ? luma.lo[2 * i] : luma.hi[2 * i - C / 2]);
    const S16<C> d0 = multiply_high<C>((even_columns(pixels, 0) << 7) - y, S16<C>{} + int16_t{w.c0});
    const S16<C> d2 = multiply_high<C>((even_columns(pixels, 2) << 7) - y, S16<C>{} + int16_t{w.c2});
    return {multiply_round_high<C>(d0, S16<C>{} + int16_t{512}), multiply_round_high<C>(d2, S16<C>{} + int16_t{512})};
}

// clamp(c0[0] + 128, 0, 255) clamp(c2[0] + 128, 0, 255) clamp(c0[1] + 128, 0, 255) ..., or those from byte 2 first.
template <bool c2_first, int C>
ZIV_INLINE U8<C> pairs_in_order(const ChromaPairs<C>& chroma) {
    const U8<C> both = narrow_saturating<C>(chroma.c0 + 128, chroma.c2 + 128);
    U8<C> r;
    for (int i = 0; i < C / 2; i++) r[2 * i + c2_first] = both[i], r[2 * i + !c2_first] = both[i + C / 2];
    return r;
}
template <bool c2_first, int C>
ZIV_INLINE void store_pairs(uint8_t* p, const ChromaPairs<C>& chroma) {
    store(p, pairs_in_order<c2_first>(chroma));
}

// C / 2 bytes to each plane.
template <int C>
ZIV_INLINE void store_planes(uint8_t* p0, uint8_t* p2, const ChromaPairs<C>& chroma) {
    uint8_t both[C];
    store(both, narrow_saturating<C>(chroma.c0 + 128, chroma.c2 + 128));
    __builtin_memcpy(p0, both, C / 2);
    __builtin_memcpy(p2, both + C / 2, C / 2);
}

// Luma and chroma of a packed row in turn, luma first or chroma first.
template <bool luma_first, bool c2_first, int C>
ZIV_INLINE void store_packed(uint8_t* p, const Luma<C>& luma, const ChromaPairs<C>& chroma) {
    const U8<C> pairs = pairs_in_order<c2_first>(chroma);
    if constexpr (luma_first) store2<C>(p, luma.bytes, pairs);
    else store2<C>(p, pairs, luma.bytes);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
