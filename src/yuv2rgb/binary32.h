// The set in binary32 arithmetic: R = trunc(Y + 1.402 v), G = trunc(Y + (-0.714 v + -0.344 u)), B = trunc(Y + 1.772 u), every
// product and every sum rounded to single precision by itself, then clamped.
//
// All three are luma plus the floor of the pair's exact term, but for green in 17 pairs. 1.402 v and 1.772 u are whole at zero
// only, and otherwise too far from a whole number for rounding to matter. The exact term of green is a whole number n in 132
// pairs; in 17 of them the binary32 sum of the two products falls short of n by a power of two, 2^-24 times a threshold of 8 to
// 128. There the sum with luma rounds up to Y + n above the threshold, and is Y + n - 1 after truncation up to it.
#pragma once

#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// The binary32 values nearest to the decimals.
inline constexpr float red_of_v = 1.402f, green_of_v = -0.714f, green_of_u = -0.344f, blue_of_u = 1.772f;

template <int N>
struct Binary32Terms {
    S16<N> r, g, b;
    U16<N> sound;  // zero in the lanes of the 17 pairs and of some more
};
template <int N>
ZIV_INLINE Binary32Terms<N> binary32_terms(S16<N> u, S16<N> v) {
    const S16<N> r = v + multiply_high<N>(v, constant<N>(26345));       // 0.402 in 1/65536
    const S16<N> b = u + u + multiply_high<N>(u, constant<N>(-14942));  // -0.228
    // -0.714 v - 0.344 u is -v + (143 v - 172 u) / 500. A quarter of the numerator, floored, plus 81 times 125, is positive;
    // the rounding multiply by 2^21 / 125 adds less than 1/125 after the shift, enough for what the factor lacks.
    const S16<N> quarter =
        v * constant<N>(36) - u * constant<N>(43) + (S16<N>)((U16<N>)(constant<N>(4 * 81 * 125 - 65536) - v) >> 2);
    const S16<N> quotient = multiply_round_high<N>(quarter, constant<N>(16777)) >> 6;
    // A whole term: `quarter` is a multiple of 125, so that its product with the inverse of 125 modulo 2^16 is below 256, and
    // nothing was lost in v / 4. The 17 pairs have u above 0 and v up to 12.
    const S16<N> outside = (u - constant<N>(1)) | (constant<N>(12) - v);
    const S16<N> sound = ((S16<N>)((U16<N>)quarter * (U16<N>)constant<N>(0x78D5)) & constant<N>(-256)) | (v & constant<N>(3)) |
                         (outside & constant<N>(-32768));
    return {r, quotient - (v + constant<N>(81)), b, (U16<N>)sound};
}

// The threshold of each pair in the bytes of both of its pixels, 0 where green does not fall short. d is the floor of the exact
// green term.
template <int N>
ZIV_INLINE U8<N> green_thresholds(S16<N> u, S16<N> v, S16<N> d) {
    U16<N> thresholds{};
    for (int odd = 0; odd < 2; odd++) {
        const auto to_float = [odd](S16<N> x) ZIV_INLINE_BODY {  // the even or the odd 16-bit lanes
            return __builtin_convertvector((odd ? (S32<N>)x : (S32<N>)((U32<N>)x << 16)) >> 16, F32<N>);
        };
        const F32<N> g = to_float(v) * green_of_v + to_float(u) * green_of_u;
        const F32<N> lack = (to_float(d) - g) * 16777216.0f;
        const U32<N> lanes = (U32<N>)__builtin_convertvector(lack > 0.0f ? lack : F32<N>{}, S32<N>);
        thresholds |= (U16<N>)(odd ? lanes << 16 : lanes);
    }
    return double_arranged<N, 4>(thresholds);
}

// Writes N pixels B, G, R, alpha with the thresholds applied.
template <int N>
ZIV_INLINE void store_with_thresholds(uint8_t* p, U8<N> luma, const Binary32Terms<N>& d, U8<N> thresholds, uint8_t alpha) {
    const auto plus = [luma](S16<N> term) ZIV_INLINE_BODY {
        const S16<N> up = term > 0 ? term : S16<N>{};
        return subtract_saturating(add_saturating(luma, double_arranged<N, 4>((U16<N>)up)),
                                   double_arranged<N, 4>((U16<N>)(up - term)));
    };
    const U8<N> g = plus(d.g);
    store4<N>(p, plus(d.b), subtract_saturating(g, (U8<N>)(g <= thresholds) & 1), plus(d.r), U8<N>{} + alpha);
}

// The seldom taken way of one step, kept apart from the usual one so as not to take its registers.
template <int N>
[[gnu::noinline, gnu::cold]] static void convert_step_with_thresholds(RowPair rows, PairedChroma<PairOrder::vu> chroma,
                                                                      ptrdiff_t j, uint8_t alpha) {
    const Chroma<N> pairs = chroma.load_at<N, 4>(j);
    const Binary32Terms<N> d = binary32_terms<N>(pairs.u, pairs.v);
    const U8<N> thresholds = green_thresholds<N>(pairs.u, pairs.v, d.g);
    store_with_thresholds<N>(rows.dst0 + 4 * j, load<N>(rows.luma0 + j), d, thresholds, alpha);
    store_with_thresholds<N>(rows.dst1 + 4 * j, load<N>(rows.luma1 + j), d, thresholds, alpha);
}

// Steps of N columns from column j on, up to the first that has to mind its thresholds. Returns the column reached.
template <int N>
ZIV_INLINE ptrdiff_t convert_sound_steps(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t j, ptrdiff_t columns,
                                         uint8_t alpha) {
    for (; j + N <= columns; j += N) {
        const Chroma<N> pairs = chroma.load_at<N, 4>(j);
        const Binary32Terms<N> d = binary32_terms<N>(pairs.u, pairs.v);
        if (any_zero<N>(d.sound)) [[unlikely]]
            break;
        expect_writes<4 * N>(rows.dst0 + 4 * j);
        expect_writes<4 * N>(rows.dst1 + 4 * j);
        const PixelTerms4<N> terms = pixel_terms<N>(d.b, d.g, d.r, alpha);
        store_pixels<N>(rows.dst0 + 4 * j, rows.luma0 + j, terms);
        store_pixels<N>(rows.dst1 + 4 * j, rows.luma1 + j, terms);
    }
    return j;
}
template <int N>
ZIV_INLINE ptrdiff_t convert_binary32_steps(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t j, ptrdiff_t columns,
                                            uint8_t alpha) {
    for (;; j += N) {
        j = convert_sound_steps<N>(rows, chroma, j, columns, alpha);
        if (j + N > columns) return j;
        convert_step_with_thresholds<N>(rows, chroma, j, alpha);
    }
}

// The blocked columns of two rows. Reads and writes exactly these.
ZIV_INLINE void convert_binary32_blocks(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t columns, uint8_t alpha) {
    ptrdiff_t j = convert_binary32_steps<widest>(rows, chroma, 0, columns, alpha);
    if constexpr (widest > 32) j = convert_binary32_steps<32>(rows, chroma, j, columns, alpha);
    if constexpr (widest > 16) convert_binary32_steps<16>(rows, chroma, j, columns, alpha);
}

// The tail sums green in another order: trunc((Y + -0.714 v) + -0.344 u).
[[gnu::noinline]] static void convert_binary32_tail(RowPair rows, PairedChroma<PairOrder::vu> chroma, ptrdiff_t first,
                                                    ptrdiff_t width, uint8_t alpha) {
    for (ptrdiff_t j = first; j <= width - 2; j += 2) {
        const float u = static_cast<float>(chroma.u(j)), v = static_cast<float>(chroma.v(j));
        const float red = v * red_of_v, green_v = v * green_of_v, green_u = u * green_of_u, blue = u * blue_of_u;
        const Quad quad = load_quad(rows, j);
        uint8_t* const pixel[4] = {rows.dst0 + 4 * j, rows.dst0 + 4 * (j + 1), rows.dst1 + 4 * j, rows.dst1 + 4 * (j + 1)};
        for (int p = 0; p < 4; p++) {
            const float y = static_cast<float>(quad.luma[p]);
            const float r = y + red, g = (y + green_v) + green_u, b = y + blue;
            store_clamped<Rgb::bgra>(pixel[p], {static_cast<int>(r), static_cast<int>(g), static_cast<int>(b)}, alpha);
        }
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
