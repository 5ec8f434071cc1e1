// SPDX-License-Identifier: MIT
// Luma plus a term of its chroma pair in plain lane arithmetic: the definition of each operation.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// Terms come in lanes of 16 bits, a pair a lane, in an order of the pairs that is the target's own for pixels of c channels:
// these bring chroma into that order, from N / 2 pairs of bytes, from N / 2 bytes of either of two planes, and from those of
// one into the lanes' upper bytes, zeros below.
template <int N, int c>
ZIV_INLINE U8<N> arrange_pairs(U8<N> pairs) {
    return pairs;
}
template <int N, int c>
ZIV_INLINE U8<N> load_arranged_pairs(const uint8_t* a, const uint8_t* b) {
    return (U8<N>)(load_widened<N>(a) | load_widened<N>(b) << 8);
}
template <int N, int c>
ZIV_INLINE U16<N> load_arranged_upper(const uint8_t* p) {
    return load_widened<N>(p) << 8;
}
// The pair that a lane then holds.
template <int N, int c>
constexpr int pair_in_lane(int lane) {
    return lane;
}

// N pixels of packed 4:2:2, luma in the even bytes: luma as the target likes to keep it, and the arranged pairs.
template <int N>
struct PackedLuma {
    U8<N> luma;
};
template <int N>
struct Packed422 {
    PackedLuma<N> luma;
    U8<N> pairs;
};
template <int N, int c>
ZIV_INLINE Packed422<N> load_packed422(const uint8_t* p) {
    const Channels<N, 2> v = load2<N>(p);
    return {{v.c[0]}, arrange_pairs<N, c>(v.c[1])};
}

// The terms of three channels, made once for the pixels of one or two rows.
template <int N>
struct PixelTerms3 {
    S16<N> d[3];
};
template <int N>
ZIV_INLINE PixelTerms3<N> pixel_terms(S16<N> d0, S16<N> d1, S16<N> d2) {
    return {{d0, d1, d2}};
}
// The pixels of every other column from their luma; byte 3 is zero.
template <int N>
ZIV_INLINE PixelLanes<N> apply_terms(U16<N> luma, const PixelTerms3<N>& terms) {
    const auto channel = [&](int k) ZIV_INLINE_BODY { return (U16<N>)clamp_lanes<N>((S16<N>)luma + terms.d[k]); };
    return {channel(0) | channel(1) << 8, channel(2)};
}

// Writes N pixels of three interleaved channels.
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, U8<N> luma, const PixelTerms3<N>& terms) {
    store_columns3<N>(p, apply_terms<N>(even_bytes<N>(luma), terms), apply_terms<N>(odd_bytes<N>(luma), terms));
}

// The same with a constant fourth channel.
template <int N>
struct PixelTerms4 {
    PixelTerms3<N> colour;
    U8<N> alpha;
};
template <int N>
ZIV_INLINE PixelTerms4<N> pixel_terms(S16<N> d0, S16<N> d1, S16<N> d2, uint8_t alpha) {
    return {pixel_terms<N>(d0, d1, d2), U8<N>{} + alpha};
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, U8<N> luma, const PixelTerms4<N>& terms) {
    PixelLanes<N> even = apply_terms<N>(even_bytes<N>(luma), terms.colour);
    PixelLanes<N> odd = apply_terms<N>(odd_bytes<N>(luma), terms.colour);
    const U16<N> alpha = (U16<N>)terms.alpha & 0xFF00;
    even.last |= alpha, odd.last |= alpha;
    store_columns4<N>(p, even, odd);
}

// The same from packed luma, and from luma in memory, all of which is read first.
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, PackedLuma<N> luma, const PixelTerms3<N>& terms) {
    store_pixels<N>(p, luma.luma, terms);
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, PackedLuma<N> luma, const PixelTerms4<N>& terms) {
    store_pixels<N>(p, luma.luma, terms);
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, const uint8_t* luma, const PixelTerms3<N>& terms) {
    store_pixels<N>(p, load<N>(luma), terms);
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, const uint8_t* luma, const PixelTerms4<N>& terms) {
    store_pixels<N>(p, load<N>(luma), terms);
}

// N pixels of each of two rows that share their terms; luma of both may be read before either is written.
template <int N>
ZIV_INLINE void store_pixel_rows(uint8_t* p0, uint8_t* p1, const uint8_t* luma0, const uint8_t* luma1,
                                 const PixelTerms3<N>& terms) {
    store_pixels<N>(p0, luma0, terms);
    store_pixels<N>(p1, luma1, terms);
}
template <int N>
ZIV_INLINE void store_pixel_rows(uint8_t* p0, uint8_t* p1, const uint8_t* luma0, const uint8_t* luma1,
                                 const PixelTerms4<N>& terms) {
    store_pixels<N>(p0, luma0, terms);
    store_pixels<N>(p1, luma1, terms);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
