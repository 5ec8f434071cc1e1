// Transposition of a plane of samples of 1 or 2 bytes. Sizes are told by the runs that are moved: a run of `columns` bytes in
// each source row, a run of `rows` bytes in each destination row.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET {

struct Transposition {
    const uint8_t* src;
    ptrdiff_t src_pitch;
    uint8_t* dst;
    ptrdiff_t dst_pitch;
};

// One round of a perfect shuffle over `count` vectors: log2(count) rounds exchange the number of a vector and the number of a
// lane within each part.
template <int N, int sample, int count>
ZIV_INLINE void shuffle_round(U8<N> (&v)[count]) {
    U8<N> w[count];
#pragma GCC unroll 8
    for (int i = 0; i < count / 2; i++) {
        const U8<N> a = v[i], b = v[i + count / 2];
        w[2 * i] = sample == 1 ? zip_parts_low<N>(a, b) : zip_pair_parts_low<N>(a, b);
        w[2 * i + 1] = sample == 1 ? zip_parts_high<N>(a, b) : zip_pair_parts_high<N>(a, b);
    }
#pragma GCC unroll 16
    for (int i = 0; i < count; i++) v[i] = w[i];
}

// 16 bytes of each source row to 16 / sample destination rows of N bytes.
template <int N, int sample>
ZIV_INLINE void transpose_tile(const Transposition& t) {
    constexpr int count = 16 / sample;
    U8<N> v[count];
    const uint8_t* src = t.src;
#pragma GCC unroll 8
    for (int i = 0; i < count; i += 2, src += 2 * t.src_pitch) {
        v[i] = load_parts<N>(src, count * t.src_pitch);
        v[i + 1] = load_parts<N>(src + t.src_pitch, count * t.src_pitch);
    }
    shuffle_round<N, sample, count>(v);
    shuffle_round<N, sample, count>(v);
    shuffle_round<N, sample, count>(v);
    if constexpr (sample == 1) shuffle_round<N, sample, count>(v);
    uint8_t* dst = t.dst;
#pragma GCC unroll 8
    for (int i = 0; i < count; i += 2, dst += 2 * t.dst_pitch) {
        store(dst, v[i]);
        store(dst + t.dst_pitch, v[i + 1]);
    }
}

// 8 bytes of each source row to 8 / sample destination rows of 8 bytes, in ascending order of source columns.
template <int sample>
ZIV_INLINE void transpose_block(const Transposition& t) {
    constexpr int count = 4 / sample;  // vectors, each of two rows
    U8<16> v[count];
    for (int i = 0; i < count; i++) {
        uint64_t row[2];
        __builtin_memcpy(row, t.src + 2 * i * t.src_pitch, 8);
        __builtin_memcpy(row + 1, t.src + (2 * i + 1) * t.src_pitch, 8);
        __builtin_memcpy(&v[i], row, 16);
    }
    shuffle_round<16, sample, count>(v);
    shuffle_round<16, sample, count>(v);
    if constexpr (sample == 1) shuffle_round<16, sample, count>(v);
    for (int i = 0; i < count; i++) {
        uint64_t run[2];
        __builtin_memcpy(run, &v[i], 16);
        __builtin_memcpy(t.dst + 2 * i * t.dst_pitch, run, 8);
        __builtin_memcpy(t.dst + (2 * i + 1) * t.dst_pitch, run + 1, 8);
    }
}

// The part of the plane at byte x of source row y / sample, which is byte y of destination row x / sample.
template <int sample>
ZIV_INLINE Transposition part_at(const Transposition& t, ptrdiff_t x, ptrdiff_t y) {
    return {t.src + y / sample * t.src_pitch + x, t.src_pitch, t.dst + x / sample * t.dst_pitch + y, t.dst_pitch};
}

// Asks for what the tiles to come will need: the next vector of each destination row, and, a few rows at a time while 128 bytes
// of every source row are worked off, the next 128 bytes of them. Destination rows that all share their places in the first
// level of the cache come no nearer than the second, as they would drive each other out.
template <int N, int sample>
ZIV_INLINE void prefetch_around_tile(const Transposition& tile, ptrdiff_t x) {
    constexpr ptrdiff_t group = 128, rows = 16 * N / sample / group;
    const uint8_t* src = tile.src - x % group + group + x % group / 16 * rows * tile.src_pitch;
    for (ptrdiff_t r = 0; r < rows; r++)
        for (ptrdiff_t line = 0; line < group; line += 64) __builtin_prefetch(src + r * tile.src_pitch + line, 0, 2);
    const bool same_places = tile.dst_pitch % 4096 == 0;
    for (ptrdiff_t r = 0; r < 16 / sample; r++)
        if (same_places) __builtin_prefetch(tile.dst + r * tile.dst_pitch + N, 1, 2);
        else __builtin_prefetch(tile.dst + r * tile.dst_pitch + N, 1);
}

// Bands of source rows, each worked off in strips of 16 bytes down the band: a strip fills long runs of few destination rows,
// and the band's lines stay in the second-level cache until their strips are done. Rows that are a power of two apart share
// few places in it, and fewer in the first level: where all destination rows can be, they are written in whole lines, as no
// line would stay there to be filled in two steps. The last tiles in either direction, and the first ones before whole lines,
// lie over others.
template <int sample, int N>
[[gnu::noinline]] inline void transpose_by_tiles(Transposition t, ptrdiff_t columns, ptrdiff_t rows) {
    const auto transpose_strips = [&](ptrdiff_t y0, ptrdiff_t y_end) ZIV_INLINE_BODY {
        for (ptrdiff_t x0 = 0; x0 < columns; x0 += 16) {
            const ptrdiff_t x = x0 + 16 <= columns ? x0 : columns - 16;
            Transposition tile = part_at<sample>(t, x, y0);
            ptrdiff_t y = y0;
            for (; y + N <= y_end; y += N) {
                if constexpr (widest > 16) prefetch_around_tile<N, sample>(tile, x);
                transpose_tile<N, sample>(tile);
                tile.src += N / sample * t.src_pitch;
                tile.dst += N;
            }
            if (y < y_end) transpose_tile<N, sample>(part_at<sample>(t, x, y_end - N));
        }
    };
    const ptrdiff_t band = t.src_pitch % 1024 == 0 ? 256 : 512;
    const auto before_line = static_cast<ptrdiff_t>((0 - reinterpret_cast<uintptr_t>(t.dst)) % N);
    const bool in_lines = t.dst_pitch % 256 == 0 && before_line % sample == 0 && before_line + N <= rows;
    ptrdiff_t y0 = in_lines ? before_line : 0;
    if (y0 != 0) transpose_strips(0, N);
    for (; y0 < rows; y0 += band) transpose_strips(y0, y0 + band < rows ? y0 + band : rows);
}

// columns and rows are multiples of 8, and no two destination rows share a byte.
template <int sample>
ZIV_INLINE void transpose_plane(const Transposition& t, ptrdiff_t columns, ptrdiff_t rows) {
    if (columns < 16 || rows < 16) {
        for (ptrdiff_t y = 0; y < rows; y += 8)
            for (ptrdiff_t x = 0; x < columns; x += 8) transpose_block<sample>(part_at<sample>(t, x, y));
        return;
    }
    if constexpr (widest > 32)
        if (rows >= 64) return transpose_by_tiles<sample, 64>(t, columns, rows);
    if constexpr (widest > 16)
        if (rows >= 32) return transpose_by_tiles<sample, 32>(t, columns, rows);
    transpose_by_tiles<sample, 16>(t, columns, rows);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
