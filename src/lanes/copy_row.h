// Copies of rows and planes.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// Reads and writes exactly count bytes, in ascending order; where the two runs are apart or the same, the first and the last of
// them perhaps twice.
[[gnu::noinline]] inline void copy_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    constexpr int stride = 4 * widest;
    ptrdiff_t j = 0;
    if constexpr (widest > 16) {
        // A store that crosses a cache line costs the most: a vector over the start, aligned ones from then on, and one over
        // the end. The lines ahead, in this row or most likely in the next one, are prefetched.
        constexpr int ahead = 1024;
        const uintptr_t distance = reinterpret_cast<uintptr_t>(dst) - reinterpret_cast<uintptr_t>(src);
        const uintptr_t overlap = static_cast<uintptr_t>(count);
        if (count >= stride && (distance == 0 || (distance >= overlap && 0 - distance >= overlap))) {
            store(dst, load<widest>(src));
            j = widest - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) & (widest - 1));
            for (; j + stride <= count; j += stride) {
                for (int k = 0; k < stride; k += 64) {
                    __builtin_prefetch(src + j + k + ahead);
                    __builtin_prefetch(dst + j + k + ahead, 1);
                }
                copy_four<widest>(dst + j, src + j);
            }
            for (; j + widest <= count; j += widest) store(dst + j, load<widest>(src + j));
            store(dst + count - widest, load<widest>(src + count - widest));
            return;
        }
    }
    for (; j + stride <= count; j += stride) copy_four<widest>(dst + j, src + j);
    j += for_steps(count - j,
                   [&](auto step, ptrdiff_t k) ZIV_INLINE_BODY { store(dst + j + k, load<step.value>(src + j + k)); });
    for (; j < count; j++) dst[j] = src[j];
}

// The same of a plane. Rows that follow each other without a gap on both sides are one run.
ZIV_INLINE void copy_plane(const uint8_t* src, int32_t src_pitch, uint8_t* dst, int32_t dst_pitch, ptrdiff_t columns,
                           ptrdiff_t rows) {
    if (src_pitch == columns && dst_pitch == columns) columns *= rows, rows = 1;
    for (ptrdiff_t i = 0; i < rows; i++) copy_row(src + i * src_pitch, dst + i * dst_pitch, columns);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
