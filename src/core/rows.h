// Passes along a row of bytes.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// A step of a pass: `vectors` vectors of `value` bytes. A body of several loads them all before it stores any, so that
// neighbouring accesses can pair.
template <int bytes, int count>
struct Vectors {
    static constexpr int value = bytes, vectors = count;
};

// Covers samples 0 to count - 1 by vectors, `vectors` of the widest at a time while there are as many, and returns the first
// sample left over: fewer than 16 are.
template <int vectors = 1, class Body>
ZIV_INLINE ptrdiff_t for_vectors(ptrdiff_t count, Body body) {
    ptrdiff_t j = 0;
    if constexpr (vectors > 1)
        for (; j + vectors * widest <= count; j += vectors * widest) body(Vectors<widest, vectors>{}, j);
    for (; j + widest <= count; j += widest) body(Vectors<widest, 1>{}, j);
    if constexpr (widest > 32)
        if (j + 32 <= count) body(Vectors<32, 1>{}, j), j += 32;
    if constexpr (widest > 16)
        if (j + 16 <= count) body(Vectors<16, 1>{}, j), j += 16;
    return j;
}

// Reads and writes exactly count bytes, in ascending order.
[[gnu::noinline]] inline void copy_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t k = for_vectors<8>(count, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        U8<N> v[step.vectors];
        for (int i = 0; i < step.vectors; i++) v[i] = load<N>(src + j + i * N);
        for (int i = 0; i < step.vectors; i++) store(dst + j + i * N, v[i]);
    });
    for (; k < count; k++) dst[k] = src[k];
}

// The same of a plane. Rows that follow each other without a gap on both sides are one run.
ZIV_INLINE void copy_plane(const uint8_t* src, int32_t src_pitch, uint8_t* dst, int32_t dst_pitch, ptrdiff_t columns,
                           ptrdiff_t rows) {
    if (src_pitch == columns && dst_pitch == columns) columns *= rows, rows = 1;
    for (ptrdiff_t i = 0; i < rows; i++) copy_row(src + i * src_pitch, dst + i * dst_pitch, columns);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
