// The vocabulary's terms over C columns of RGB: weighted sums of the bytes of a pixel, the colour differences of the even
// columns, and the stores of what they give. C is the bytes of a vector; Advanced SIMD also has C = 32.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// The weights of a pixel's first three bytes. A fourth byte never counts.
struct Weights {
    int c0, c1, c2;
};

// The first byte of a pixel that a weighted sum can take from another one: see luma_q6.
inline constexpr int own_bytes = -1;

// C columns of luma.
template <int C>
struct Luma {
    U8<C> bytes;
};

// One value for each even column: a byte of its pixel, or its luma, or its luma with 7 fractional bits.
template <int C>
struct Samples {
    S16<C> lanes;
};

// The bytes 0 and 2 of the even columns' pixels.
template <int C>
struct OuterBytes {
    Samples<C> c0, c2;
};

// Luma rounded from a scale of 2^15, and the even columns' before rounding, cut to a scale of 2^7.
template <int C>
struct LumaQ15 {
    Luma<C> rounded;
    Samples<C> even_q7;
};

// One chroma value for each even column, around 0: centred at 128 and saturated to a byte when it is stored.
template <int C>
struct Chroma {
    S16<C> lanes;
};

}  // namespace zivcolor::ZIVCOLOR_TARGET

#if defined(ZIVCOLOR_TARGET_sse4) || defined(ZIVCOLOR_TARGET_avx2) || defined(ZIVCOLOR_TARGET_avx512)
#include "core/lanes_rgb_x86.h"
#else
#include "core/lanes_rgb_portable.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET {

template <int C>
ZIV_INLINE Samples<C> even_columns(Luma<C> luma) {
    return {(S16<C>)even_bytes<C>(luma.bytes)};
}

// ((a - luma) * weight) >> shift; the difference is at most `most` in size, and the product fits 16 bits.
template <int weight, int shift, int most, int C>
ZIV_INLINE Chroma<C> scaled_difference(Samples<C> a, Samples<C> luma) {
    return {((a.lanes - luma.lanes) * int16_t{weight}) >> shift};
}

// ((a - luma) * weight + 2^14) >> 15
template <int weight, int C>
ZIV_INLINE Chroma<C> rounded_difference_q15(Samples<C> a, Samples<C> luma) {
    return {multiply_round_high<C>(a.lanes - luma.lanes, S16<C>{} + int16_t{weight})};
}

// ((((a << 7) - luma_q7) * weight >> 7) + 2^14) >> 15, where the difference fits 16 bits. Shifting right by 16, rounding and
// shifting by 6 is the same, as no bit below 2^16 can carry into the rounding bit; that shift is the rounding high multiply by
// 2^9.
template <int weight, int C>
ZIV_INLINE Chroma<C> fractional_difference_q15(Samples<C> a, Samples<C> luma_q7) {
    const S16<C> product = multiply_high<C>((a.lanes << 7) - luma_q7.lanes, S16<C>{} + int16_t{weight});
    return {multiply_round_high<C>(product, S16<C>{} + int16_t{512})};
}

template <int C>
ZIV_INLINE void store_luma(uint8_t* p, Luma<C> luma) {
    store(p, luma.bytes);
}

// first[0] second[0] first[1] second[1] ...
template <int C>
ZIV_INLINE void store_pairs(uint8_t* p, Chroma<C> first, Chroma<C> second) {
    store(p, interleave_chroma<C>(first.lanes, second.lanes));
}

// Luma and chroma of a packed row in turn, luma first or chroma first.
template <bool luma_first, int C>
ZIV_INLINE void store_packed(uint8_t* p, Luma<C> luma, Chroma<C> first, Chroma<C> second) {
    const U8<C> pairs = interleave_chroma<C>(first.lanes, second.lanes);
    if constexpr (luma_first) store2<C>(p, luma.bytes, pairs);
    else store2<C>(p, pairs, luma.bytes);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET

#if defined(ZIVCOLOR_TARGET_neon)
#include "core/lanes_rgb_neon.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET {

#if defined(ZIVCOLOR_TARGET_neon)
inline constexpr int widest_columns = 32;
#else
inline constexpr int widest_columns = widest;
#endif

// for_steps over columns of RGB. Two of the widest steps stand in the loop where vectors are short, to halve its own cost. The
// loop counts units of one column or of two: the latter where a body's offsets are in columns halved.
template <int unit, class Body>
ZIV_INLINE void for_column_units(ptrdiff_t columns, Body body) {
    constexpr int most = widest_columns / unit;
    const ptrdiff_t units = columns / unit;
    ptrdiff_t k = 0;
    if constexpr (widest < widest_columns)
        for (; k + 2 * most <= units; k += 2 * most)
            body(Step<widest_columns>{}, unit * k), body(Step<widest_columns>{}, unit * (k + most));
    for (; k + most <= units; k += most) body(Step<widest_columns>{}, unit * k);
    if constexpr (widest_columns > 32)
        if (k + 32 / unit <= units) body(Step<32>{}, unit * k), k += 32 / unit;
    if constexpr (widest_columns > 16)
        if (k + 16 / unit <= units) body(Step<16>{}, unit * k);
}
template <class Body>
ZIV_INLINE void for_column_steps(ptrdiff_t columns, Body body) {
    for_column_units<1>(columns, body);
}
template <class Body>
ZIV_INLINE void for_column_pair_steps(ptrdiff_t columns, Body body) {
    for_column_units<2>(columns, body);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
