// SPDX-License-Identifier: MIT
// A pass along a row that moves samples and changes none.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// Stands between loads that clang would make a pair of, which small cores take longer for.
ZIV_INLINE void part_loads() {
#if ZIV_HAS_ADVANCED_SIMD && defined(__clang__)
    asm volatile("" ::: "memory");
#endif
}

// How a vector is loaded whose last byte may be out of bounds: whole while samples follow, one byte less at the end.
struct WholeLoad {
    static constexpr int short_of_end = 0;
    template <int N>
    ZIV_INLINE static U8<N> load(const uint8_t* p) {
        return ZIVCOLOR_TARGET::load<N>(p);
    }
};
struct ShortLoad {
    static constexpr int short_of_end = 1;
    template <int N>
    ZIV_INLINE static U8<N> load(const uint8_t* p) {
        return load_but_last<N>(p);
    }
};

// Where a pass stores to: one of its channels, or two of them interleaved.
template <int channel>
struct ToPlane {
    uint8_t* dst;
    template <class Size, class Vectors>
    ZIV_INLINE void operator()(Size, const Vectors& v, ptrdiff_t j) const {
        prefetch_writes<Size::hinted>(dst + j);
        store(dst + j, v.c[channel]);
    }
};
template <int first, int second>
struct ToPairs {
    uint8_t* dst;
    template <class Size, class Vectors>
    ZIV_INLINE void operator()(Size, const Vectors& v, ptrdiff_t j) const {
        prefetch_writes<2 * Size::hinted>(dst + 2 * j);
        store2<Size::value>(dst + 2 * j, v.c[first], v.c[second]);
    }
};

// How many samples stand before the first whose place is aligned for the widest vectors, where a store that crosses a cache
// line is dear; 0 if that is the first or no such place comes. They are fewer than `most`.
template <int most_samples>
struct Lead {
    static constexpr int most = most_samples;
    ptrdiff_t samples;
};

// Where the loads cost more than such stores.
inline constexpr Lead<16> no_lead{0};

// `samples` of them take `bytes` bytes from dst on.
template <int bytes, int samples = 1>
ZIV_INLINE auto lead_of(const uint8_t* dst) {
    constexpr int lines = bytes % 3 == 0 ? 3 : 1;  // after so many vectors the remainders repeat
    constexpr int most = lines == 1 ? widest / bytes * samples : widest;
    Lead<(most < 16 ? 16 : most)> lead{0};
    if constexpr (widest > 16) {
        const auto ahead = static_cast<ptrdiff_t>((0 - reinterpret_cast<uintptr_t>(dst)) % widest);
        for (int line = lines - 1; line >= 0; line--)
            if ((ahead + line * widest) % bytes == 0) lead.samples = (ahead + line * widest) / bytes * samples;
    }
    return lead;
}

// Stores vectors i and later ones. Of those that stand side by side, one in every line has the hints for all.
template <int N, bool side_by_side, int i, class Vectors, int vectors, class Store>
ZIV_INLINE void store_vectors(const Vectors (&v)[vectors], ptrdiff_t j, ptrdiff_t distance, Store store) {
    constexpr int line = vectors * N < 64 ? vectors * N : 64;
    constexpr int hinted = !side_by_side || N >= 64 ? N : i * N % line == 0 ? line : 0;
    store(Step<N, hinted>{}, v[i], j + i * distance);
    if constexpr (i + 1 < vectors) store_vectors<N, side_by_side, i + 1>(v, j, distance, store);
}

// Vectors from samples j, j + distance and so on, all loaded before the first is stored.
template <int N, int vectors, bool side_by_side = true, class Load, class... Store>
ZIV_INLINE void move_vectors(ptrdiff_t j, ptrdiff_t distance, Load load, Store... store) {
    decltype(load(Step<N>{}, WholeLoad{}, j)) v[vectors];
    for (int i = 0; i < vectors; i++) v[i] = load(Step<N>{}, WholeLoad{}, j + i * distance);
    (store_vectors<N, side_by_side, 0>(v, j, distance, store), ...);
}

// Moves samples 0 to count - 1, if they are 16 or more, and returns how many were moved: all or none. load(step, end, j)
// returns step.value samples from j on; each store(step, v, j) puts them to one place. `vectors` of at most `wide` bytes go in
// one step while there are as many. The first vector and the last may overlap their neighbours, and are loaded before these are
// stored: so source and destination may be the same. With End = ShortLoad the last vector is loaded by that.
template <int vectors, class End = WholeLoad, int wide = widest, int most, class Load, class... Store>
ZIV_INLINE ptrdiff_t move_row(ptrdiff_t count, Lead<most> lead, Load load, Store... store) {
    if (count < wide) {
        if constexpr (wide > 16) return move_row<1, End, wide / 2>(count, no_lead, load, store...);
        return 0;
    }
    if (count <= 4 * wide) {
        // Short rows: what a vector across lines costs is less than what it takes to avoid it.
        const auto last = load(Step<wide>{}, End{}, count - wide);
        for (ptrdiff_t j = 0; j + wide < count; j += wide) move_vectors<wide, 1>(j, wide, load, store...);
        (store(Step<wide>{}, last, count - wide), ...);
        return count;
    }
    constexpr int narrow = most < wide ? most : wide;
    const auto last = load(Step<narrow>{}, End{}, count - narrow);
    const ptrdiff_t whole = count - End::short_of_end;
    ptrdiff_t j = 0;
    if (lead.samples != 0 && lead.samples + narrow <= whole) {
        move_vectors<narrow, 2, false>(0, lead.samples, load, store...);
        j = lead.samples + narrow;
    }
    if constexpr (vectors > 1)
        for (; j + vectors * wide <= whole; j += vectors * wide) move_vectors<wide, vectors>(j, wide, load, store...);
    for (; j + wide <= whole; j += wide) move_vectors<wide, 1>(j, wide, load, store...);
    if constexpr (narrow < wide)
        for (; j + narrow <= whole; j += narrow) move_vectors<narrow, 1>(j, narrow, load, store...);
    if (j < count) (store(Step<narrow>{}, last, count - narrow), ...);
    return count;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
