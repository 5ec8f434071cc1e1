// SPDX-License-Identifier: MIT
// Transposition of a plane of samples of 1 or 2 bytes. Sizes are told by the runs that are moved: a run of `columns` bytes in
// each source row, a run of `rows` bytes in each destination row.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET::geometry {

struct Transposition {
    const uint8_t* src;
    ptrdiff_t src_pitch;
    uint8_t* dst;
    ptrdiff_t dst_pitch;
};

// Vectors by numbers that the compiler knows: a wrong one ends the process, a right one costs nothing.
template <int N, int count>
struct Vectors {
    U8<N> v[count];
    ZIV_INLINE U8<N>& operator[](int i) {
        if (i < 0 || i >= count) __builtin_trap();
        return v[i];
    }
};

// One round of a perfect shuffle over `count` vectors: log2(count) rounds exchange the number of a vector and the number of a
// lane within each part.
template <int N, int sample, int count>
ZIV_INLINE void shuffle_round(Vectors<N, count>& v) {
    Vectors<N, count> w;
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
    Vectors<N, count> v;
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

}  // namespace zivcolor::ZIVCOLOR_TARGET::geometry

#if ZIV_HAS_ADVANCED_SIMD
#include "geometry/tiles_neon.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET::geometry {

// 8 bytes of each source row to 8 / sample destination rows of 8 bytes, in ascending order of source columns.
template <int sample>
ZIV_INLINE void transpose_block(const Transposition& t) {
    constexpr int count = 4 / sample;  // vectors, each of two rows
    Vectors<16, count> v;
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

ZIV_INLINE ptrdiff_t at_most(ptrdiff_t value, ptrdiff_t limit) { return value < limit ? value : limit; }
ZIV_INLINE ptrdiff_t at_least(ptrdiff_t value, ptrdiff_t limit) { return value > limit ? value : limit; }

// A square of `side` bytes of source rows by `side` bytes of destination rows, or what there is of it: at least 16 bytes by N.
inline constexpr ptrdiff_t side = 128;
struct Square {
    Transposition at;
    ptrdiff_t columns, rows;
};
struct SquareBuffer {
    alignas(64) uint8_t bytes[side * side];
};

ZIV_INLINE void copy_run(uint8_t* dst, const uint8_t* src, ptrdiff_t bytes) {
    if (bytes != side) __builtin_memcpy(dst, src, static_cast<size_t>(bytes));
    else
        for (ptrdiff_t k = 0; k < side; k += widest) store(dst + k, load<widest>(src + k));
}

// The square with its source brought together: every line of it is touched once, and in pairs, however few places in a cache
// its rows share. Prefetches the lines at its right.
template <int sample>
[[gnu::noinline]] inline Square gathered_square(const Square& square, SquareBuffer& buffer) {
    const uint8_t* src = square.at.src;
    uint8_t* line = buffer.bytes;
    for (ptrdiff_t r = 0; r < square.rows / sample; r++, src += square.at.src_pitch, line += side) {
        copy_run(line, src, square.columns);
        __builtin_prefetch(src + side, 0, 2);
        __builtin_prefetch(src + side + 64, 0, 2);
    }
    return {{buffer.bytes, side, square.at.dst, square.at.dst_pitch}, square.columns, square.rows};
}

// 16 bytes of each source row. The last tile overlaps another.
template <int N, int sample>
ZIV_INLINE void transpose_strip(const Transposition& strip, ptrdiff_t rows) {
    Transposition tile = strip;
    ptrdiff_t y = 0;
    for (; y + N <= rows; y += N) {
        transpose_tile<N, sample>(tile);
        tile.src += N / sample * tile.src_pitch;
        tile.dst += N;
    }
    if (y < rows) transpose_tile<N, sample>(part_at<sample>(strip, 0, rows - N));
}

// The same by way of a copy on the stack, for destination rows that share one place in the first level of the cache: no line of
// them would stay there to be filled in several steps.
template <int N, int sample>
[[gnu::noinline]] inline void transpose_strip_by_lines(const Transposition& strip, ptrdiff_t rows) {
    constexpr int runs = 16 / sample;
    alignas(64) uint8_t turned[runs * side];
    transpose_strip<N, sample>({strip.src, strip.src_pitch, turned, side}, rows);
    for (int r = 0; r < runs; r++) copy_run(strip.dst + r * strip.dst_pitch, turned + r * side, rows);
}

// How a destination is written.
struct Writing {
    bool prefetched;
    bool whole_lines;  // squares start at lines of the cache
    bool by_lines;     // by way of a copy
};

// Hints that `side` bytes will soon be written in each of some rows. Kept apart, as its addresses take registers from the
// tiles.
[[gnu::noinline]] static void prefetch_runs(uint8_t* dst, ptrdiff_t dst_pitch, int rows, bool whole_lines) {
    for (int r = 0; r < rows; r++, dst += dst_pitch) {
        asm volatile("");  // or else the compiler drops the call
        __builtin_prefetch(dst, 1);
        __builtin_prefetch(dst + 64, 1);
        if (!whole_lines) __builtin_prefetch(dst + 128, 1);
    }
}

// Strip by strip, of which the last overlaps another. The next one is prefetched.
template <int N, int sample>
ZIV_INLINE void transpose_square(const Square& square, Writing writing) {
    for (ptrdiff_t x = 0; x < square.columns; x += 16) {
        if (writing.prefetched)
            prefetch_runs(part_at<sample>(square.at, x + 16, 0).dst, square.at.dst_pitch, 16 / sample, writing.whole_lines);
        const Transposition strip = part_at<sample>(square.at, at_most(x, square.columns - 16), 0);
        if (writing.by_lines) transpose_strip_by_lines<N, sample>(strip, square.rows);
        else transpose_strip<N, sample>(strip, square.rows);
    }
}

// The bytes before the first place where all rows start a line of the cache; 0 as well where there is none.
template <int sample>
ZIV_INLINE ptrdiff_t lead_to_line(const uint8_t* p, ptrdiff_t pitch) {
    const auto lead = static_cast<ptrdiff_t>((0 - reinterpret_cast<uintptr_t>(p)) % 64);
    return pitch % 64 == 0 && lead % sample == 0 ? lead : 0;
}

// Square by square, along the source rows, from a line of all source rows and of all destination rows on where there is one
// and rows are longer than a square.
// Squares are gathered where the source won't stay in the second level of the cache, or shares few places in it.
template <int sample, int N>
[[gnu::noinline]] inline void transpose_by_squares(Transposition t, ptrdiff_t columns, ptrdiff_t rows) {
    SquareBuffer buffer;
    const bool gathered = columns * rows >= 1 << 19 || t.src_pitch % 2048 == 0;
    const ptrdiff_t column_lead = columns > side ? lead_to_line<sample>(t.src, t.src_pitch) : 0;
    const ptrdiff_t row_lead = rows > side ? lead_to_line<sample>(t.dst, t.dst_pitch) : 0;
    const Writing writing{widest > 16 || gathered,
                          t.dst_pitch % 64 == 0 && reinterpret_cast<uintptr_t>(t.dst + row_lead) % 64 == 0,
                          N < 64 && gathered && t.dst_pitch % 4096 == 0};
    for (ptrdiff_t y = 0, y_end; y < rows; y = y_end) {
        y_end = at_most(y < row_lead ? row_lead : y + (writing.prefetched ? side : 512), rows);
        for (ptrdiff_t x = 0, x_end; x < columns; x = x_end) {
            x_end = at_most(x < column_lead ? column_lead : x + side, columns);
            const ptrdiff_t width = at_least(x_end - x, 16), height = at_least(y_end - y, N);
            const Square square{part_at<sample>(t, at_most(x, columns - width), at_most(y, rows - height)), width, height};
            transpose_square<N, sample>(gathered ? gathered_square<sample>(square, buffer) : square, writing);
        }
    }
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
        if (rows >= 64) return transpose_by_squares<sample, 64>(t, columns, rows);
    if constexpr (widest > 16)
        if (rows >= 32) return transpose_by_squares<sample, 32>(t, columns, rows);
    transpose_by_squares<sample, 16>(t, columns, rows);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::geometry
