// SPDX-License-Identifier: MIT
// Passes along a row that move samples and change none. Each reads and writes exactly the bytes of the samples that it is
// given, any number of them, in ascending order.
#pragma once

#include "lanes/copy_row.h"
#include "lanes/move_row.h"
#include "yuvrepack/yuyv.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// Which sample of an interleaved chroma pair stands first.
enum class PairOrder { uv, vu };

ZIV_INLINE uint8_t* plane_row(const Image* img, int plane, ptrdiff_t row) {
    return row_at(img->plane[plane], row, img->pitch[plane]);
}

ZIV_INLINE ptrdiff_t whole_pairs_up(ptrdiff_t width) { return (width + 1) & ~ptrdiff_t{1}; }

// ---- Two rows at once ----

// Where a kernel takes its rows in pairs, each pair is written block by block, the upper row's part and then the lower row's,
// and by pairs of columns behind the last whole block. That shows only where the lower row starts inside the upper one, which
// is `bytes` long: there later blocks of the upper row cover what earlier ones of the lower row wrote. Everywhere else the
// bytes are those of the whole upper row and then the whole lower one.
ZIV_INLINE bool starts_inside(ptrdiff_t pitch, ptrdiff_t bytes) { return pitch > 0 && pitch < bytes; }

// That order: rows(Step<count>{}, j) writes columns j to j + count - 1 of both rows, all of the upper one first.
template <int block, class Rows>
[[gnu::noinline, gnu::cold]] void by_blocks(ptrdiff_t columns, Rows rows) {
    ptrdiff_t j = 0;
    for (; j + block <= columns; j += block) rows(Step<block>{}, j);
    for (; j < columns; j += 2) rows(Step<2>{}, j);
}

// A plane whose rows are copied in pairs.
template <int block>
[[gnu::noinline]] void copy_row_pairs(const uint8_t* src, int32_t src_pitch, uint8_t* dst, int32_t dst_pitch, ptrdiff_t columns,
                                      ptrdiff_t rows) {
    if (!starts_inside(dst_pitch, columns)) return copy_plane(src, src_pitch, dst, dst_pitch, columns, rows);
    for (ptrdiff_t i = 0; i < rows; i += 2) {
        const uint8_t* src0 = src + i * src_pitch;
        uint8_t* dst0 = dst + i * dst_pitch;
        by_blocks<block>(columns, [=](auto step, ptrdiff_t j) {
            copy_row(src0 + j, dst0 + j, step.value);
            copy_row(src0 + src_pitch + j, dst0 + dst_pitch + j, step.value);
        });
    }
}

// ---- Rows. Each is a function of its own, but for those named run, which belong into a loop over short rows: it sets up
//      their constants once. ----

// first[0] second[0] first[1] second[1] ...
[[gnu::noinline]] inline void interleave_row(const uint8_t* first, const uint8_t* second, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = move_row<2>(
        pairs, lead_of<2>(dst),
        [=](auto step, auto, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            part_loads();
            return Channels<N, 2>{{load<N>(first + j), load<N>(second + j)}};
        },
        ToPairs<0, 1>{dst});
    for (; k < pairs; k++) {
        const uint8_t a = first[k], b = second[k];
        dst[2 * k] = a;
        dst[2 * k + 1] = b;
    }
}

// The inverse.
ZIV_INLINE void split_run(const uint8_t* src, uint8_t* first, uint8_t* second, ptrdiff_t pairs) {
    ptrdiff_t k = move_row<4>(
        pairs, lead_of<1>(first), [=](auto step, auto, ptrdiff_t j) ZIV_INLINE_BODY { return load2<step.value>(src + 2 * j); },
        ToPlane<0>{first}, ToPlane<1>{second});
    for (; k < pairs; k++) {
        const uint8_t a = src[2 * k], b = src[2 * k + 1];
        first[k] = a;
        second[k] = b;
    }
}
[[gnu::noinline]] inline void split_row(const uint8_t* src, uint8_t* first, uint8_t* second, ptrdiff_t pairs) {
    split_run(src, first, second, pairs);
}

// src[1] src[0] src[3] src[2] ...
[[gnu::noinline]] inline void swap_row(const uint8_t* src, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = move_row<4>(
        2 * pairs, lead_of<2, 2>(dst),
        [=](auto step, auto, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            part_loads();
            return Channels<N, 1>{{swap_pairs<N>(load<N>(src + j))}};
        },
        ToPlane<0>{dst});
    for (; k < 2 * pairs; k += 2) {
        const uint8_t a = src[k], b = src[k + 1];
        dst[k] = b;
        dst[k + 1] = a;
    }
}

// src[0] src[2] src[4] ...; the byte behind the last one taken is not touched.
ZIV_INLINE void even_run(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
    ptrdiff_t k = move_row<2, ShortLoad>(
        count, lead_of<1>(dst),
        [=](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            return Channels<N, 1>{{even_lanes<N>(load<N>(src + 2 * j), end.template load<N>(src + 2 * j + N))}};
        },
        ToPlane<0>{dst});
    for (; k < count; k++) dst[k] = src[2 * k];
}
[[gnu::noinline]] inline void even_row(const uint8_t* src, uint8_t* dst, ptrdiff_t count) { even_run(src, dst, count); }

// The same of two rows.
ZIV_INLINE void even_runs(const uint8_t* src0, const uint8_t* src1, uint8_t* dst0, uint8_t* dst1, ptrdiff_t count) {
    ptrdiff_t k = move_row<1, ShortLoad>(
        count, lead_of<1>(dst0),
        [=](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            return Channels<N, 2>{{even_lanes<N>(load<N>(src0 + 2 * j), end.template load<N>(src0 + 2 * j + N)),
                                   even_lanes<N>(load<N>(src1 + 2 * j), end.template load<N>(src1 + 2 * j + N))}};
        },
        ToPlane<0>{dst0}, ToPlane<1>{dst1});
    for (; k < count; k++) {
        dst0[k] = src0[2 * k];
        dst1[k] = src1[2 * k];
    }
}

// first[0] second[0] first[2] second[2] ...; the byte behind the last one taken is not touched in either.
ZIV_INLINE void interleave_even_run(const uint8_t* first, const uint8_t* second, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = move_row<2, ShortLoad>(
        2 * pairs, lead_of<2, 2>(dst),
        [=](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            part_loads();
            return Channels<N, 1>{{even_pairs<N>(end.template load<N>(first + j), end.template load<N>(second + j))}};
        },
        ToPlane<0>{dst});
    for (; k < 2 * pairs; k += 2) {
        const uint8_t a = first[k], b = second[k];
        dst[k] = a;
        dst[k + 1] = b;
    }
}
[[gnu::noinline]] inline void interleave_even_row(const uint8_t* first, const uint8_t* second, uint8_t* dst, ptrdiff_t pairs) {
    interleave_even_run(first, second, dst, pairs);
}

// Y0 U Y1 V from two luma samples and one of each chroma plane.
[[gnu::noinline]] inline void yuyv_row(const uint8_t* luma, const uint8_t* u, const uint8_t* v, uint8_t* dst, ptrdiff_t pairs) {
    ptrdiff_t k = move_row<1>(
        pairs, lead_of<4>(dst),
        [=](auto step, auto, ptrdiff_t j) ZIV_INLINE_BODY {
            prefetch_reads<2 * step.value>(luma + 2 * j);
            return load_for_yuyv<step.value>(luma + 2 * j, u + j, v + j);
        },
        [=](auto step, const auto& parts, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            prefetch_writes<4 * N>(dst + 4 * j);
            store_yuyv<N>(dst + 4 * j, parts);
        });
    for (; k < pairs; k++) {
        const uint8_t pixels[4] = {luma[2 * k], u[k], luma[2 * k + 1], v[k]};
        __builtin_memcpy(dst + 4 * k, pixels, 4);
    }
}

// The same of two rows that share their chroma.
[[gnu::noinline]] inline void yuyv_rows(const uint8_t* luma0, const uint8_t* luma1, const uint8_t* u, const uint8_t* v,
                                        uint8_t* dst0, uint8_t* dst1, ptrdiff_t pairs) {
    ptrdiff_t k = move_row<1>(
        pairs, lead_of<4>(dst0),
        [=](auto step, auto, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            struct {
                Channels<N, 4> upper, lower;
            } rows{load_for_yuyv<N>(luma0 + 2 * j, u + j, v + j), load_for_yuyv<N>(luma1 + 2 * j, u + j, v + j)};
            return rows;
        },
        [=](auto step, const auto& rows, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            prefetch_writes<4 * N>(dst0 + 4 * j);
            prefetch_writes<4 * N>(dst1 + 4 * j);
            store_yuyv<N>(dst0 + 4 * j, rows.upper);
            store_yuyv<N>(dst1 + 4 * j, rows.lower);
        });
    for (; k < pairs; k++) {
        const uint8_t upper[4] = {luma0[2 * k], u[k], luma0[2 * k + 1], v[k]};
        const uint8_t lower[4] = {luma1[2 * k], u[k], luma1[2 * k + 1], v[k]};
        __builtin_memcpy(dst0 + 4 * k, upper, 4);
        __builtin_memcpy(dst1 + 4 * k, lower, 4);
    }
}

// Y0 U Y1 V in two rows that share the chroma of the even columns; the byte behind the last sample taken is not touched in u
// and v.
[[gnu::noinline]] inline void yuyv_even_rows(const uint8_t* luma0, const uint8_t* luma1, const uint8_t* u, const uint8_t* v,
                                             uint8_t* dst0, uint8_t* dst1, ptrdiff_t pairs) {
    ptrdiff_t k = move_row<2, ShortLoad>(
        2 * pairs, lead_of<4, 2>(dst0),
        [=](auto step, auto end, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            part_loads();
            const U8<N> chroma = even_pairs<N>(end.template load<N>(u + j), end.template load<N>(v + j));
            return Channels<N, 3>{{load<N>(luma0 + j), load<N>(luma1 + j), chroma}};
        },
        ToPairs<0, 2>{dst0}, ToPairs<1, 2>{dst1});
    for (; k < 2 * pairs; k += 2) {
        const uint8_t upper[4] = {luma0[k], u[k], luma0[k + 1], v[k]}, lower[4] = {luma1[k], u[k], luma1[k + 1], v[k]};
        __builtin_memcpy(dst0 + 2 * k, upper, 4);
        __builtin_memcpy(dst1 + 2 * k, lower, 4);
    }
}

// The same by blocks where their order shows. A block of 16 columns or a single pair is one step of the pass above.
template <int block>
ZIV_INLINE void yuyv_even_row_pair(const uint8_t* luma, int32_t luma_pitch, const uint8_t* u, const uint8_t* v, uint8_t* dst,
                                   int32_t dst_pitch, ptrdiff_t columns) {
    static_assert(block == 16 || block == 2);
    const auto rows = [=](ptrdiff_t j, ptrdiff_t count) {
        yuyv_even_rows(luma + j, luma + luma_pitch + j, u + j, v + j, dst + 2 * j, dst + dst_pitch + 2 * j, count >> 1);
    };
    if (!starts_inside(dst_pitch, 2 * columns)) rows(0, columns);
    else by_blocks<block>(columns, [=](auto step, ptrdiff_t j) { rows(j, step.value); });
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
