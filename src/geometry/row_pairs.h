// SPDX-License-Identifier: MIT
// The walk of the half turn and the mirrors: two luma rows and the chroma row that belongs to them, a pass at a time.
#pragma once

#include "core/streamed_rows.h"
#include "lanes/copy_row.h"

namespace zivcolor::ZIVCOLOR_TARGET::geometry {

// A plane's side of the walk: where the first pass has its run, and how far the next one's is.
struct Runs {
    uint8_t* first;
    ptrdiff_t step;
    ZIV_INLINE uint8_t* at(ptrdiff_t pass) const { return first + pass * step; }
};

// The runs of a luma plane's upper and lower rows, and of its chroma plane. The lower row is as far from the upper one in every
// pass.
struct PlaneRuns {
    Runs luma;
    ptrdiff_t to_lower;
    Runs chroma;
};

ZIV_INLINE Extent luma_extent(const PlaneRuns& runs, ptrdiff_t passes, ptrdiff_t bytes) {
    const Extent upper = extent_of_runs(runs.luma.first, runs.luma.step, passes, bytes);
    const Extent lower = extent_of_runs(runs.luma.first + runs.to_lower, runs.luma.step, passes, bytes);
    return {upper.first < lower.first ? upper.first : lower.first, upper.past > lower.past ? upper.past : lower.past};
}

// Whether the order of steps within a pass cannot be seen: nothing that is written is read, and luma and chroma are written to
// different places.
ZIV_INLINE bool order_is_free(const PlaneRuns& src, const PlaneRuns& dst, ptrdiff_t passes, ptrdiff_t bytes) {
    const Extent src_luma = luma_extent(src, passes, bytes), dst_luma = luma_extent(dst, passes, bytes);
    const Extent src_chroma = extent_of_runs(src.chroma.first, src.chroma.step, passes, bytes);
    const Extent dst_chroma = extent_of_runs(dst.chroma.first, dst.chroma.step, passes, bytes);
    return apart(dst_luma, dst_chroma) && apart(dst_luma, src_luma) && apart(dst_luma, src_chroma) &&
           apart(dst_chroma, src_luma) && apart(dst_chroma, src_chroma);
}

enum class Samples { bytes, pairs };

template <Samples samples, int N>
ZIV_INLINE U8<N> reversed(U8<N> v) {
    if constexpr (samples == Samples::bytes) return reverse_bytes<N>(v);
    else return reverse_pairs<N>(v);
}

// Byte x of the source goes to byte bytes - 1 - x of the destination; pairs keep their own order. bytes is even. A vector may
// go over bytes that are already written, with the same values.
template <Samples samples>
ZIV_INLINE void reverse_row(const uint8_t* src, uint8_t* dst, ptrdiff_t bytes) {
    constexpr int stride = 4 * widest;
    // The vector at byte j of the destination.
    const auto step = [&](auto size, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = size.value;
        store(dst + j, reversed<samples, N>(load<N>(src + bytes - j - N)));
    };
    if (bytes >= widest && bytes <= stride) {
        // From both ends, without a loop.
        if (bytes > 2 * widest) step(Step<widest>{}, widest), step(Step<widest>{}, bytes - 2 * widest);
        step(Step<widest>{}, 0);
        return step(Step<widest>{}, bytes - widest);
    }
    ptrdiff_t j = 0;
    if constexpr (widest > 16)
        if (bytes >= stride) {
            // Aligned stores from the second on, but for pairs that start at an odd address.
            step(Step<widest>{}, 0);
            j = (widest - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) & (widest - 1))) & ~ptrdiff_t{1};
        }
    for (; j + stride <= bytes; j += stride) {
        const uint8_t* from = src + bytes - j - stride;
        if constexpr (!ZIV_HAS_ADVANCED_SIMD)
            for (int k = 0; k < stride; k += 64) __builtin_prefetch(dst + j + k + 1024, 1);
        FourVectors<widest> in = load_four<widest>(from);
        FourVectors<widest> out;
        for (int k = 0; k < 4; k++) out.v[k] = reversed<samples, widest>(in.v[3 - k]);
        store_four<widest>(dst + j, out);
    }
    if (j == bytes) return;
    const ptrdiff_t start = j;
    j += for_steps(bytes - start, [&](auto size, ptrdiff_t k) ZIV_INLINE_BODY { step(size, start + k); });
    if (j == bytes) return;
    if (bytes >= 16) return step(Step<16>{}, bytes - 16);
    for (j = 0; j < bytes; j += 2) {
        dst[bytes - 2 - j] = src[j + (samples == Samples::bytes)];
        dst[bytes - 1 - j] = src[j + (samples == Samples::pairs)];
    }
}

// The same of rows, each a pitch further.
template <Samples samples>
[[gnu::noinline]] void reverse_rows(const uint8_t* src, ptrdiff_t src_pitch, uint8_t* dst, ptrdiff_t dst_pitch, ptrdiff_t bytes,
                                    ptrdiff_t rows) {
    for (ptrdiff_t i = 0; i < rows; i++) reverse_row<samples>(src + i * src_pitch, dst + i * dst_pitch, bytes);
}

// Copies rows, which are a share of all `passes` runs of luma and chroma.
ZIV_INLINE void copy_rows(const uint8_t* src, ptrdiff_t src_pitch, uint8_t* dst, ptrdiff_t dst_pitch, ptrdiff_t bytes,
                          ptrdiff_t rows, ptrdiff_t passes) {
    if constexpr (has_streaming_stores)
        if (beyond_caches(6 * bytes * passes) && (dst_pitch >= bytes || -dst_pitch >= bytes)) [[unlikely]] {
            for (ptrdiff_t i = 0; i < rows; i++) stream_bytes(dst + i * dst_pitch, src + i * src_pitch, bytes, true, true);
            return end_streaming();
        }
    copy_plane(src, src_pitch, dst, dst_pitch, bytes, rows);
}

// One step of 8 or of 2 columns when the order is seen: three loads, then the stores.
template <int N, bool mirrored>
ZIV_INLINE void step_in_order(const uint8_t* const (&src)[3], uint8_t* const (&dst)[3], ptrdiff_t j, ptrdiff_t bytes) {
    uint8_t run[3][N];
    for (int k = 0; k < 3; k++) __builtin_memcpy(run[k], src[k] + j, N);
    for (int k = 0; k < 3; k++) {
        uint8_t out[N];
        for (int n = 0; n < N; n++) out[n] = run[k][!mirrored ? n : k < 2 ? N - 1 - n : N - 2 - n + 2 * (n % 2)];
        __builtin_memcpy(dst[k] + (mirrored ? bytes - j - N : j), out, N);
    }
}

// Moves passes runs of bytes bytes. blocked: the columns that go in steps of 8 when the order is seen; the rest, up to bytes,
// goes in steps of 2. Where the order is free, luma goes as one plane where its rows are equally far from each other.
template <bool mirrored>
ZIV_INLINE void move_row_pairs(const PlaneRuns& src, const PlaneRuns& dst, ptrdiff_t passes, ptrdiff_t blocked,
                               ptrdiff_t bytes) {
    if (order_is_free(src, dst, passes, bytes)) {
        const bool one_plane = src.luma.step == 2 * src.to_lower && dst.luma.step == 2 * dst.to_lower;
        const ptrdiff_t rows = one_plane ? 2 * passes : 2;
        for (ptrdiff_t i = 0; i < 2 * passes; i += rows) {
            const uint8_t* from = src.luma.at(i >> 1);
            uint8_t* to = dst.luma.at(i >> 1);
            if constexpr (mirrored) reverse_rows<Samples::bytes>(from, src.to_lower, to, dst.to_lower, bytes, rows);
            else copy_rows(from, src.to_lower, to, dst.to_lower, bytes, rows, passes);
        }
        const Runs from = src.chroma, to = dst.chroma;
        if constexpr (mirrored) reverse_rows<Samples::pairs>(from.first, from.step, to.first, to.step, bytes, passes);
        else copy_rows(from.first, from.step, to.first, to.step, bytes, passes, passes);
        return;
    }
    for (ptrdiff_t pass = 0; pass < passes; pass++) {
        const uint8_t* const from[3] = {src.luma.at(pass), src.luma.at(pass) + src.to_lower, src.chroma.at(pass)};
        uint8_t* const to[3] = {dst.luma.at(pass), dst.luma.at(pass) + dst.to_lower, dst.chroma.at(pass)};
        ptrdiff_t j = 0;
        for (; j < blocked; j += 8) step_in_order<8, mirrored>(from, to, j, bytes);
        for (; j < bytes; j += 2) step_in_order<2, mirrored>(from, to, j, bytes);
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::geometry
