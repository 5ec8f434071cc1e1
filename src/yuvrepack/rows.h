// Passes along a row that move samples and change none. Each reads and writes exactly the bytes of the samples that it is
// given, any number of them, in ascending order.
#pragma once

#include "core/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// Which sample of an interleaved chroma pair stands first.
enum class PairOrder { uv, vu };

ZIV_INLINE uint8_t* plane_row(const Image* img, int plane, ptrdiff_t row) {
    return row_at(img->plane[plane], row, img->pitch[plane]);
}

// for_vectors for passes that take every other byte and may not touch the byte behind the last one taken. The body loads what
// may end there by the loader it is given: whole vectors while samples follow, one byte less at the end.
struct WholeLoad {
    template <int N>
    ZIV_INLINE static U8<N> load(const uint8_t* p) {
        return ZIVCOLOR_TARGET::load<N>(p);
    }
};
struct ShortLoad {
    template <int N>
    ZIV_INLINE static U8<N> load(const uint8_t* p) {
        return load_but_last<N>(p);
    }
};
template <class Body>
ZIV_INLINE ptrdiff_t for_vectors_short_of_end(ptrdiff_t count, Body body) {
    ptrdiff_t j = 0;
    for (; j + widest < count; j += widest) body(Step<widest>{}, WholeLoad{}, j);
    if (j + widest <= count) body(Step<widest>{}, ShortLoad{}, j), j += widest;
    if constexpr (widest > 32)
        if (j + 32 <= count) body(Step<32>{}, ShortLoad{}, j), j += 32;
    if constexpr (widest > 16)
        if (j + 16 <= count) body(Step<16>{}, ShortLoad{}, j), j += 16;
    return j;
}

// first[0] second[0] first[1] second[1] ...
[[gnu::noinline]] inline void interleave_row(const uint8_t* first, const uint8_t* second, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors(pairs, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        store2<N>(dst + 2 * j, load<N>(first + j), load<N>(second + j));
    });
    for (; k < pairs; k++) {
        const uint8_t a = first[k], b = second[k];
        dst[2 * k] = a;
        dst[2 * k + 1] = b;
    }
}

// The inverse.
[[gnu::noinline]] inline void split_row(const uint8_t* src, uint8_t* first, uint8_t* second, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors(pairs, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        const Channels<N, 2> v = load2<N>(src + 2 * j);
        store(first + j, v.c[0]);
        store(second + j, v.c[1]);
    });
    for (; k < pairs; k++) {
        const uint8_t a = src[2 * k], b = src[2 * k + 1];
        first[k] = a;
        second[k] = b;
    }
}

// src[1] src[0] src[3] src[2] ...
[[gnu::noinline]] inline void swap_row(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors(2 * pairs, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        store(dst + j, swap_pairs<step.value>(load<step.value>(src + j)));
    });
    for (; k < 2 * pairs; k += 2) {
        const uint8_t a = src[k], b = src[k + 1];
        dst[k] = b;
        dst[k + 1] = a;
    }
}

// src[0] src[2] src[4] ...; the byte behind the last one taken is not touched.
[[gnu::noinline]] inline void even_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t k = for_vectors_short_of_end(count, [&](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        store(dst + j, even_lanes<N>(load<N>(src + 2 * j), end.template load<N>(src + 2 * j + N)));
    });
    for (; k < count; k++) dst[k] = src[2 * k];
}

// first[0] second[0] first[2] second[2] ...; the byte behind the last one taken is not touched in either.
[[gnu::noinline]] inline void interleave_even_row(const uint8_t* first, const uint8_t* second, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors_short_of_end(2 * pairs, [&](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        store(dst + j, even_pairs<N>(end.template load<N>(first + j), end.template load<N>(second + j)));
    });
    for (; k < 2 * pairs; k += 2) {
        const uint8_t a = first[k], b = second[k];
        dst[k] = a;
        dst[k + 1] = b;
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
