// The terms over columns of RGB in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET {

// C pixels of c bytes, in whatever form the target's terms take them.
template <int C, int c>
struct Pixels {
    Channels<C, c> channels;
};
template <int C, int c>
ZIV_INLINE Pixels<C, c> load_pixels(const uint8_t* p) {
    if constexpr (c == 3) return {load3<C>(p)};
    else return {load4<C>(p)};
}

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

// S = c0 * w.c0 + c1 * w.c1 + c2 * w.c2, below 2^23 - 2^14: (S + 2^14) >> 15, and S >> 8 of the even columns.
template <Weights w, int C, int c>
ZIV_INLINE LumaQ15<C> luma_q15(const Pixels<C, c>& pixels) {
    LumaQ15<C> r;
    for (int i = 0; i < C; i++) {
        const Channels<C, c>& in = pixels.channels;
        const int sum = in.c[0][i] * w.c0 + in.c[1][i] * w.c1 + in.c[2][i] * w.c2;
        r.rounded.bytes[i] = static_cast<uint8_t>((sum + 0x4000) >> 15);
        if (i % 2 == 0) r.even_q7.lanes[i / 2] = static_cast<int16_t>(sum >> 8);
    }
    return r;
}

template <int C, int c>
ZIV_INLINE OuterBytes<C> even_outer_bytes(const Pixels<C, c>& pixels) {
    return {{(S16<C>)even_bytes<C>(pixels.channels.c[0])}, {(S16<C>)even_bytes<C>(pixels.channels.c[2])}};
}

// clamp(a[0] + 128, 0, 255) clamp(b[0] + 128, 0, 255) clamp(a[1] + 128, 0, 255) ...
template <int N>
ZIV_INLINE U8<N> interleave_chroma(S16<N> a, S16<N> b) {
    const U8<N> both = narrow_saturating<N>(a + 128, b + 128);
    U8<N> r;
    for (int i = 0; i < N / 2; i++) r[2 * i] = both[i], r[2 * i + 1] = both[i + N / 2];
    return r;
}

// C / 2 bytes to each plane.
template <int C>
ZIV_INLINE void store_planes(uint8_t* pa, uint8_t* pb, Chroma<C> a, Chroma<C> b) {
    uint8_t both[C];
    store(both, narrow_saturating<C>(a.lanes + 128, b.lanes + 128));
    __builtin_memcpy(pa, both, C / 2);
    __builtin_memcpy(pb, both + C / 2, C / 2);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
