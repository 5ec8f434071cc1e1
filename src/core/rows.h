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

// Reads and writes exactly count bytes, in ascending order; where the two runs are apart or the same, the first and the last of
// them perhaps twice.
[[gnu::noinline]] inline void copy_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    constexpr int stride = 4 * widest;
    ptrdiff_t j = 0;
    if constexpr (widest > 16) {
        // A store that crosses a cache line costs the most: a vector over the start, aligned ones from then on, and one over
        // the end. The lines ahead, in this row or most likely in the next one, are asked for.
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
    j += for_vectors(count - j,
                     [&](auto step, ptrdiff_t k) ZIV_INLINE_BODY { store(dst + j + k, load<step.value>(src + j + k)); });
    for (; j < count; j++) dst[j] = src[j];
}

// The same of a plane. Rows that follow each other without a gap on both sides are one run.
ZIV_INLINE void copy_plane(const uint8_t* src, int32_t src_pitch, uint8_t* dst, int32_t dst_pitch, ptrdiff_t columns,
                           ptrdiff_t rows) {
    if (src_pitch == columns && dst_pitch == columns) columns *= rows, rows = 1;
    for (ptrdiff_t i = 0; i < rows; i++) copy_row(src + i * src_pitch, dst + i * dst_pitch, columns);
}

// ---- Passes that move samples and change none ----

// How a vector is loaded whose last byte may be out of bounds: whole while samples follow, one byte less at the end.
struct WholeLoad {
    static constexpr bool is_short = false;
    template <int N>
    ZIV_INLINE static U8<N> load(const uint8_t* p) {
        return ZIVCOLOR_TARGET::load<N>(p);
    }
};
struct ShortLoad {
    static constexpr bool is_short = true;
    template <int N>
    ZIV_INLINE static U8<N> load(const uint8_t* p) {
        return load_but_last<N>(p);
    }
};

template <int N, int vectors, class Load, class... Store>
ZIV_INLINE void move_vectors(ptrdiff_t j, Load load, Store... store) {
    decltype(load(Step<N>{}, WholeLoad{}, j)) v[vectors];
    for (int i = 0; i < vectors; i++) v[i] = load(Step<N>{}, WholeLoad{}, j + i * N);
    const auto store_all = [&](auto store_one) ZIV_INLINE_BODY {
        for (int i = 0; i < vectors; i++) store_one(Step<N>{}, v[i], j + i * N);
    };
    (store_all(store), ...);
}

template <int N, class End, class Load, class... Store>
ZIV_INLINE void move_last(ptrdiff_t j, Load load, Store... store) {
    const auto v = load(Step<N>{}, End{}, j);
    (store(Step<N>{}, v, j), ...);
}

// The first `lead` samples by 16, and one vector after them that may overlap the last of these.
template <int N, class Load, class... Store>
ZIV_INLINE void move_lead(ptrdiff_t lead, Load load, Store... store) {
    const auto v = load(Step<N>{}, WholeLoad{}, lead);
    for (ptrdiff_t j = 0; j < lead; j += 16) move_vectors<16, 1>(j, load, store...);
    (store(Step<N>{}, v, lead), ...);
}

// One vector, if N is not 16, and what is left after it by 16; the last of these may overlap what stands before it.
template <int N, class End, class Load, class... Store>
ZIV_INLINE void move_rest(ptrdiff_t j, ptrdiff_t count, Load load, Store... store) {
    const auto v = load(Step<16>{}, End{}, count - 16);
    if constexpr (N > 16) move_vectors<N, 1>(j, load, store...), j += N;
    for (; j < count - 16; j += 16) move_vectors<16, 1>(j, load, store...);
    (store(Step<16>{}, v, count - 16), ...);
}

// Moves samples 0 to count - 1, if they are 16 or more, and returns how many were moved: all or none. load(step, end, j)
// returns step.value samples from j on; each store(step, v, j) puts them to one place. Nothing is loaded from where an earlier
// sample was stored, so that both may be the same. `vectors` of at most `wide` bytes go in one step while there are as many;
// what starts after the first `lead` samples is aligned, if that is not 0. With End = ShortLoad the last vector of all is
// loaded by that.
template <int vectors, class End = WholeLoad, int wide = widest, class Load, class... Store>
ZIV_INLINE ptrdiff_t move_row(ptrdiff_t count, ptrdiff_t lead, Load load, Store... store) {
    if (count < 16) return 0;
    if (count < wide) {
        move_rest<16, End>(0, count, load, store...);
        return count;
    }
    ptrdiff_t j = 0;
    if (lead != 0 && count >= lead + 2 * wide) {
        move_lead<wide>(lead, load, store...);
        j = lead + wide;
    }
    const ptrdiff_t rest = (count - j) % wide;
    const ptrdiff_t end = count - rest - (rest != 0 || End::is_short ? wide : 0);
    if constexpr (vectors > 1)
        for (; j + vectors * wide <= end; j += vectors * wide) move_vectors<wide, vectors>(j, load, store...);
    for (; j + wide <= end; j += wide) move_vectors<wide, 1>(j, load, store...);
    if (rest != 0) move_rest<wide, End>(j, count, load, store...);
    else if constexpr (End::is_short) move_last<wide, End>(j, load, store...);
    return count;
}

// The samples before the first whose place is aligned for the widest vectors, where a store that crosses a cache line is dear:
// `samples` of them take `bytes` bytes. 0 if no such place comes.
template <int bytes, int samples = 1>
ZIV_INLINE ptrdiff_t lead_of(const uint8_t* dst) {
    if constexpr (widest == 16) return 0;
    const auto ahead = static_cast<ptrdiff_t>((0 - reinterpret_cast<uintptr_t>(dst)) % widest);
    constexpr int lines = bytes % 3 == 0 ? 3 : 1;  // after so many vectors the remainders repeat
    for (int line = 0; line < lines; line++)
        if ((ahead + line * widest) % bytes == 0) return (ahead + line * widest) / bytes * samples;
    return 0;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
