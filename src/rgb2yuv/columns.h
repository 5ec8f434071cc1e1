// SPDX-License-Identifier: MIT
// Operations over C columns of RGB: weighted sums of the bytes of a pixel, the colour differences of the even
// columns, and the stores of what they give. C is the bytes of a vector; Advanced SIMD also has C = 32. Luma and chroma between
// them are in whatever form the target likes.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// The weights of a pixel's first three bytes. A fourth byte never counts.
struct Weights {
    int c0, c1, c2;
};
// The weights of what a pixel's bytes 0 and 2 differ from luma by.
struct OuterWeights {
    int c0, c2;
};
// A weight and the right shift after it, of a difference that is at most `most` in size.
struct ShiftedWeight {
    int weight, shift, most;
};

// The first byte of a pixel that a weighted sum can take from another one: see luma_q6.
inline constexpr int own_bytes = -1;

// Luma and chroma of every one of N columns of R, G, B, by the short set. V is stored before U.
template <int N>
ZIV_INLINE void convert_to_yuv444(const uint8_t* rgb, uint8_t* dst_y, uint8_t* dst_u, uint8_t* dst_v) {
    const Channels<N, 3> in = load3<N>(rgb);
    const Wide<N> r = widen<N>(in.c[0]), g = widen<N>(in.c[1]), b = widen<N>(in.c[2]);
    const Wide<N> y = {(r.lo * 19 + g.lo * 38 + b.lo * 7) >> 6, (r.hi * 19 + g.hi * 38 + b.hi * 7) >> 6};
    store(dst_y, narrow<N>(y));
    store(dst_v, narrow<N>({((r.lo - y.lo) * 91 + 16384) >> 7, ((r.hi - y.hi) * 91 + 16384) >> 7}));
    store(dst_u, narrow<N>({((b.lo - y.lo) * 9 + 2048) >> 4, ((b.hi - y.hi) * 9 + 2048) >> 4}));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv

#if ZIV_HAS_SSE4_2
#include "rgb2yuv/columns_x86.h"
#else
#include "rgb2yuv/columns_portable.h"
#endif
#if ZIV_HAS_ADVANCED_SIMD
#include "rgb2yuv/columns_neon.h"
#endif
#if ZIV_HAS_DOT_PRODUCT
#include "rgb2yuv/columns_neon_dot.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// (c0 * w.c0 + c1 * w.c1 + c2 * w.c2 + 2^14) >> 15, whole.
template <Weights w, int C>
ZIV_INLINE auto luma_q15(const Pixels<C, 3>& pixels) {
    return rounded(fractional_luma<w>(pixels));
}

inline constexpr int widest_columns = ZIV_HAS_ADVANCED_SIMD ? 32 : widest;

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

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
