// SPDX-License-Identifier: MIT
// Copies of rows and planes.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// From this many bytes on a copy is left to the C library, which knows the machine: vectors wider than the target's, and how to
// overwrite a line without reading it first. Below, its call costs more than it brings.
inline constexpr ptrdiff_t long_row = ZIV_HAS_ADVANCED_SIMD ? PTRDIFF_MAX : widest > 16 ? 1024 : 512;

// A row of N to 2 N bytes by the vectors at its ends.
template <int N>
ZIV_INLINE void copy_ends(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    const U8<N> first = load<N>(src), last = load<N>(src + count - N);
    store(dst, first);
    store(dst + count - N, last);
}

// Reads and writes exactly count bytes, in ascending order; where the two runs are apart or the same, in any order and the
// first and the last of them perhaps twice.
ZIV_INLINE void copy_one_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    constexpr int stride = 4 * widest;
    ptrdiff_t j = 0;
    const uintptr_t distance = reinterpret_cast<uintptr_t>(dst) - reinterpret_cast<uintptr_t>(src);
    const uintptr_t overlap = static_cast<uintptr_t>(count);
    const bool apart = distance >= overlap && 0 - distance >= overlap;
    if constexpr (long_row < PTRDIFF_MAX)
        if (count >= long_row && apart) {
            __builtin_memcpy(dst, src, overlap);
            return;
        }
    if (count >= widest && count <= stride && (distance == 0 || apart)) {
        // From both ends, without a loop.
        const uint8_t* const src_end = src + count;
        uint8_t* const dst_end = dst + count;
        const U8<widest> first = load<widest>(src), last = load<widest>(src_end - widest);
        if (count > 2 * widest) {
            const U8<widest> second = load<widest>(src + widest), third = load<widest>(src_end - 2 * widest);
            store(dst + widest, second);
            store(dst_end - 2 * widest, third);
        }
        store(dst, first);
        store(dst_end - widest, last);
        return;
    }
    if constexpr (widest > 32)
        if (count >= 32 && count < 64 && (distance == 0 || apart)) return copy_ends<32>(src, dst, count);
    if constexpr (widest > 16) {
        if (count >= 16 && count < 32 && (distance == 0 || apart)) return copy_ends<16>(src, dst, count);
        // A store that crosses a cache line costs the most: a vector over the start, aligned ones from then on, and one over
        // the end. The lines ahead that will be written, in this row or most likely in the next one, are prefetched; those read
        // need no hint, and behind the row there may be one that is left out.
        constexpr int ahead = 1024;
        if (count >= stride && (distance == 0 || apart)) {
            store(dst, load<widest>(src));
            j = widest - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) & (widest - 1));
            for (; j + stride <= count; j += stride) {
                for (int k = 0; k < stride; k += 64) __builtin_prefetch(dst + j + k + ahead, 1);
                copy_four<widest>(dst + j, src + j);
            }
            for (; j + widest <= count; j += widest) store(dst + j, load<widest>(src + j));
            store(dst + count - widest, load<widest>(src + count - widest));
            return;
        }
    }
    for (; j + 2 * stride <= count; j += 2 * stride) copy_eight<widest>(dst + j, src + j);
    if (j + stride <= count) copy_four<widest>(dst + j, src + j), j += stride;
    j += for_steps(count - j,
                   [&](auto step, ptrdiff_t k) ZIV_INLINE_BODY { store(dst + j + k, load<step.value>(src + j + k)); });
    for (; j < count; j++) dst[j] = src[j];
}
[[gnu::noinline]] inline void copy_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) { copy_one_row(src, dst, count); }

// Bytes from first up to past.
struct Extent {
    uintptr_t first, past;
};
ZIV_INLINE bool apart(Extent a, Extent b) { return a.past <= b.first || b.past <= a.first; }

// What `count` runs of `bytes` bytes cover, the first at p, each `step` bytes further.
ZIV_INLINE Extent extent_of_runs(const uint8_t* p, ptrdiff_t step, ptrdiff_t count, ptrdiff_t bytes) {
    const uintptr_t first = reinterpret_cast<uintptr_t>(p);
    const uintptr_t last = first + static_cast<uintptr_t>(step) * static_cast<uintptr_t>(count - 1);
    const uintptr_t length = static_cast<uintptr_t>(bytes);
    return step < 0 ? Extent{last, first + length} : Extent{first, last + length};
}

// Rows of vectors / 2 to `vectors` vectors of N bytes, half of them from each end.
template <int N, int vectors>
ZIV_INLINE void copy_short_rows(const uint8_t* src, ptrdiff_t src_pitch, uint8_t* dst, ptrdiff_t dst_pitch, ptrdiff_t columns,
                                ptrdiff_t rows) {
    constexpr int half = vectors / 2;
    for (; rows > 0; rows--, src += src_pitch, dst += dst_pitch) {
        U8<N> first[half], last[half];
        for (int k = 0; k < half; k++) first[k] = load<N>(src + k * N), last[k] = load<N>(src + columns - (half - k) * N);
        for (int k = 0; k < half; k++) store(dst + k * N, first[k]);
        for (int k = 0; k < half; k++) store(dst + columns - (half - k) * N, last[k]);
    }
}

// Rows of four vectors of N bytes or more. Stores are aligned where one that crosses a cache line is dear.
template <int N>
ZIV_INLINE void copy_middle_rows(const uint8_t* src, ptrdiff_t src_pitch, uint8_t* dst, ptrdiff_t dst_pitch, ptrdiff_t columns,
                                 ptrdiff_t rows) {
    for (; rows > 0; rows--, src += src_pitch, dst += dst_pitch) {
        ptrdiff_t j = 0;
        if constexpr (N > 16) {
            store(dst, load<N>(src));
            j = N - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) & (N - 1));
            for (; j + N <= columns; j += N) store(dst + j, load<N>(src + j));
            if (j < columns) store(dst + columns - N, load<N>(src + columns - N));
        } else {
            for (; j + 4 * N <= columns; j += 4 * N) copy_four<N>(dst + j, src + j);
            if (j < columns) copy_four<N>(dst + columns - 4 * N, src + columns - 4 * N);
        }
    }
}

// The same of a plane. Rows that follow each other without a gap on both sides are one run.
[[gnu::noinline]] inline void copy_plane(const uint8_t* src, ptrdiff_t src_pitch, uint8_t* dst, ptrdiff_t dst_pitch,
                                         ptrdiff_t columns, ptrdiff_t rows) {
    if (src_pitch == columns && dst_pitch == columns) return copy_row(src, dst, columns * rows);
    constexpr int N = widest > 16 ? 32 : 16;
    constexpr ptrdiff_t middle = N > 16 ? 8 * N : 512;
    if (columns >= 16 && columns < middle && rows > 0 &&
        apart(extent_of_runs(src, src_pitch, rows, columns), extent_of_runs(dst, dst_pitch, rows, columns))) {
        if (columns <= 32) return copy_short_rows<16, 2>(src, src_pitch, dst, dst_pitch, columns, rows);
        if (N > 16 && columns <= 2 * N) return copy_short_rows<N, 2>(src, src_pitch, dst, dst_pitch, columns, rows);
        if (columns <= 4 * N) return copy_short_rows<N, 4>(src, src_pitch, dst, dst_pitch, columns, rows);
        return copy_middle_rows<N>(src, src_pitch, dst, dst_pitch, columns, rows);
    }
    for (; rows > 0; rows--, src += src_pitch, dst += dst_pitch) {
        if constexpr (ZIV_HAS_ADVANCED_SIMD) copy_one_row(src, dst, columns);
        else copy_row(src, dst, columns);
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
