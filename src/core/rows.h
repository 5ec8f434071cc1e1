// Passes along a row of bytes.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// Covers samples 0 to count - 1 by vectors, the widest first, and returns the first sample left over: fewer than 16 are.
template <class Body>
ZIV_INLINE ptrdiff_t for_vectors(ptrdiff_t count, Body body) {
    ptrdiff_t j = 0;
    for (; j + widest <= count; j += widest) body(Step<widest>{}, j);
    if constexpr (widest > 32)
        if (j + 32 <= count) body(Step<32>{}, j), j += 32;
    if constexpr (widest > 16)
        if (j + 16 <= count) body(Step<16>{}, j), j += 16;
    return j;
}

// Reads and writes exactly count bytes, in ascending order.
[[gnu::noinline]] inline void copy_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    constexpr int vectors = 4, bytes = vectors * widest;
    ptrdiff_t j = 0;
    for (; j + bytes <= count; j += bytes) {
        U8<widest> v[vectors];
        for (int k = 0; k < vectors; k++) v[k] = load<widest>(src + j + k * widest);
        for (int k = 0; k < vectors; k++) store(dst + j + k * widest, v[k]);
    }
    j += for_vectors(count - j,
                     [&](auto step, ptrdiff_t k) ZIV_INLINE_BODY { store(dst + j + k, load<step.value>(src + j + k)); });
    for (; j < count; j++) dst[j] = src[j];
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
