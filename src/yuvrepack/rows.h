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

ZIV_INLINE ptrdiff_t whole_pairs_up(ptrdiff_t width) { return (width + 1) & ~ptrdiff_t{1}; }

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
template <int vectors = 1, class Body>
ZIV_INLINE ptrdiff_t for_vectors_short_of_end(ptrdiff_t count, Body body) {
    ptrdiff_t j = 0;
    if constexpr (vectors > 1)
        for (; j + vectors * widest < count; j += vectors * widest) body(Vectors<widest, vectors>{}, WholeLoad{}, j);
    for (; j + widest < count; j += widest) body(Vectors<widest, 1>{}, WholeLoad{}, j);
    if (j + widest <= count) body(Vectors<widest, 1>{}, ShortLoad{}, j), j += widest;
    if constexpr (widest > 32)
        if (j + 32 <= count) body(Vectors<32, 1>{}, ShortLoad{}, j), j += 32;
    if constexpr (widest > 16)
        if (j + 16 <= count) body(Vectors<16, 1>{}, ShortLoad{}, j), j += 16;
    return j;
}

// first[0] second[0] first[1] second[1] ...
[[gnu::noinline]] inline void interleave_row(const uint8_t* first, const uint8_t* second, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors<2>(pairs, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        U8<N> a[step.vectors], b[step.vectors];
        for (int i = 0; i < step.vectors; i++) a[i] = load<N>(first + j + i * N);
        for (int i = 0; i < step.vectors; i++) b[i] = load<N>(second + j + i * N);
        for (int i = 0; i < step.vectors; i++) store2<N>(dst + 2 * (j + i * N), a[i], b[i]);
    });
    for (; k < pairs; k++) {
        const uint8_t a = first[k], b = second[k];
        dst[2 * k] = a;
        dst[2 * k + 1] = b;
    }
}

// The inverse.
[[gnu::noinline]] inline void split_row(const uint8_t* src, uint8_t* first, uint8_t* second, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors<4>(pairs, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        Channels<N, 2> v[step.vectors];
        for (int i = 0; i < step.vectors; i++) v[i] = load2<N>(src + 2 * (j + i * N));
        for (int i = 0; i < step.vectors; i++) store(first + j + i * N, v[i].c[0]);
        for (int i = 0; i < step.vectors; i++) store(second + j + i * N, v[i].c[1]);
    });
    for (; k < pairs; k++) {
        const uint8_t a = src[2 * k], b = src[2 * k + 1];
        first[k] = a;
        second[k] = b;
    }
}

// src[1] src[0] src[3] src[2] ...
[[gnu::noinline]] inline void swap_row(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors<4>(2 * pairs, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        U8<N> v[step.vectors];
        for (int i = 0; i < step.vectors; i++) v[i] = load<N>(src + j + i * N);
        for (int i = 0; i < step.vectors; i++) store(dst + j + i * N, swap_pairs<N>(v[i]));
    });
    for (; k < 2 * pairs; k += 2) {
        const uint8_t a = src[k], b = src[k + 1];
        dst[k] = b;
        dst[k + 1] = a;
    }
}

// src[0] src[2] src[4] ...; the byte behind the last one taken is not touched.
[[gnu::noinline]] inline void even_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t k = for_vectors_short_of_end<2>(count, [&](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        U8<N> v[step.vectors];
        for (int i = 0; i < step.vectors; i++) {
            const uint8_t* p = src + 2 * (j + i * N);
            v[i] = even_lanes<N>(load<N>(p), end.template load<N>(p + N));
        }
        for (int i = 0; i < step.vectors; i++) store(dst + j + i * N, v[i]);
    });
    for (; k < count; k++) dst[k] = src[2 * k];
}

// first[0] second[0] first[2] second[2] ...; the byte behind the last one taken is not touched in either.
[[gnu::noinline]] inline void interleave_even_row(const uint8_t* first, const uint8_t* second, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = for_vectors_short_of_end<2>(2 * pairs, [&](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        U8<N> a[step.vectors], b[step.vectors];
        for (int i = 0; i < step.vectors; i++) a[i] = end.template load<N>(first + j + i * N);
        for (int i = 0; i < step.vectors; i++) b[i] = end.template load<N>(second + j + i * N);
        for (int i = 0; i < step.vectors; i++) store(dst + j + i * N, even_pairs<N>(a[i], b[i]));
    });
    for (; k < 2 * pairs; k += 2) {
        const uint8_t a = first[k], b = second[k];
        dst[k] = a;
        dst[k + 1] = b;
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
