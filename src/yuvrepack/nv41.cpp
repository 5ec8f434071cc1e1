// SPDX-License-Identifier: MIT
// NV21 from and to NV41, whose chroma is quartered in both directions. Sizes are the source's. Where it upsamples the second
// generation may have the same memory as source and destination; where it subsamples the tail's U reads the start of a row
// again after it was written.
#include "core/kernel.h"
#include "parallel/memory.h"
#include "yuvrepack/square_means.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

namespace {

// One block, luma pitch of the destination by height, unless the images share their luma.
ZIV_INLINE void copy_luma(const Image* srcImg, const Image* dstImg) {
    if (srcImg->plane[0] != dstImg->plane[0])
        MemMgrCpy(dstImg->plane[0], srcImg->plane[0], int64_t{dstImg->pitch[0]} * srcImg->height);
}

// Whether a step wider than a block of 32 columns gives the same bytes. Within one plane and with equal pitches no pass writes
// what it or a later one reads, as long as the rows are whole groups of four.
ZIV_INLINE bool wide_steps_allowed(const Image* srcImg, const Image* dstImg) {
    return srcImg->plane[1] != dstImg->plane[1] || (srcImg->pitch[1] == dstImg->pitch[1] && srcImg->height % 4 == 0);
}

// ---- Down: the mean of each 2 by 2 chroma samples. ----

// The tail's V goes on where the blocks stop, its U begins at the start of the row again. Returns the bytes of the row up to
// where V stops.
ZIV_INLINE ptrdiff_t quarter_row(const uint8_t* upper, const uint8_t* lower, uint8_t* dst, ptrdiff_t width, bool wide) {
    const ptrdiff_t wide_width = wide ? width : 0;
    ptrdiff_t j = 0;
    for (; j + 2 * widest <= wide_width; j += 2 * widest) store_square_means<widest>(dst + (j >> 1), upper + j, lower + j);
    for (; j + 32 <= width; j += 32) store_square_means<16>(dst + (j >> 1), upper + j, lower + j);
    for (ptrdiff_t u = 1; j < width; j += 4, u += 4) {
        const int v_sum = upper[j] + upper[j + 2] + lower[j] + lower[j + 2];
        const int u_sum = upper[u] + upper[u + 2] + lower[u] + lower[u + 2];
        dst[j >> 1] = static_cast<uint8_t>((v_sum + 2) >> 2);
        dst[(u >> 1) + 1] = static_cast<uint8_t>((u_sum + 2) >> 2);
    }
    return j >> 1;
}

enum class Unused { kept, cleared };

template <Unused unused>
int32_t nv21_to_nv41(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_NV41, destination_2x2_source_height_2))
        return status;
    copy_luma(srcImg, dstImg);
    const ptrdiff_t width = srcImg->width, height = srcImg->height;
    if (unused == Unused::kept && width <= 0) return zivStatus_OK;
    const bool wide = wide_steps_allowed(srcImg, dstImg);
    uint8_t* dst = dstImg->plane[1];
    for (ptrdiff_t i = 0; i < height; i += 4, dst += dstImg->pitch[1]) {
        ptrdiff_t stop = 0;
        if (width > 0) {  // without columns the source's plane may be null
            const uint8_t* upper = row_at(srcImg->plane[1], i >> 1, srcImg->pitch[1]);
            stop = quarter_row(upper, upper + srcImg->pitch[1], dst, width, wide);
        }
        if constexpr (unused == Unused::cleared) MemMgrSet(dst + stop, 0, dstImg->pitch[1] - width / 2);
    }
    if constexpr (unused == Unused::cleared) MemMgrSet(dst, 0, int64_t{dstImg->pitch[1]} * height / 4);
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorNV21toNV41(const Image* srcImg, const Image* dstImg) { return nv21_to_nv41<Unused::kept>(srcImg, dstImg); }

// Clears the rest of every row, and the half of a chroma plane of NV21's size that NV41 leaves over.
int32_t zivColorNV21toNV41_2(const Image* srcImg, const Image* dstImg) { return nv21_to_nv41<Unused::cleared>(srcImg, dstImg); }

// ---- Up: each chroma sample becomes four, interpolated to the right and to the row above. ----

namespace {

// (a + b + c + d + 2) >> 2: the mean of the rounded means is one too much where it was rounded up again after one of them was.
template <int N>
ZIV_INLINE U8<N> mean_of_four(U8<N> a, U8<N> b, U8<N> c, U8<N> d) {
    const U8<N> ab = average_up(a, b), cd = average_up(c, d);
    return average_up(ab, cd) - (((a ^ b) | (c ^ d)) & (ab ^ cd) & 1);
}

// N / 2 samples of both channels of a row and of the row above it, and their right neighbours, to both output rows.
template <int N>
ZIV_INLINE void store_spread(uint8_t* upper, uint8_t* lower, U8<N> row, U8<N> row_right, U8<N> above, U8<N> above_right) {
    store2_pairs<N>(lower, row, average_up(row, row_right));
    store2_pairs<N>(upper, average_up(row, above), mean_of_four<N>(row, row_right, above, above_right));
}
template <int N>
ZIV_INLINE void spread_block(uint8_t* upper, uint8_t* lower, const uint8_t* row, const uint8_t* above) {
    prefetch_writes<2 * N>(upper);
    prefetch_writes<2 * N>(lower);
    store_spread<N>(upper, lower, load<N>(row), load<N>(row + 2), load<N>(above), load<N>(above + 2));
}

// The right neighbours of the last block of a row: its last pair has itself for one.
ZIV_INLINE U8<16> right_neighbours_at_edge(U8<16> v) {
    return (U8<16>)__builtin_shufflevector((U16<16>)v, (U16<16>)v, 1, 2, 3, 4, 5, 6, 7, 7);
}

// A sample, its right neighbour, and the two above them.
ZIV_INLINE void spread_sample(uint8_t* upper, uint8_t* lower, const int (&s)[4]) {
    lower[0] = static_cast<uint8_t>(s[0]);
    lower[2] = static_cast<uint8_t>((s[0] + s[1] + 1) >> 1);
    upper[0] = static_cast<uint8_t>((s[0] + s[2] + 1) >> 1);
    upper[2] = static_cast<uint8_t>((s[0] + s[1] + s[2] + s[3] + 2) >> 2);
}

// The tail's V goes on where the blocks stop, its U begins at the start of the row again.
ZIV_INLINE void spread_row(uint8_t* upper, uint8_t* lower, const uint8_t* row, const uint8_t* above, ptrdiff_t width,
                           bool wide) {
    const ptrdiff_t wide_width = wide ? width : 0;
    ptrdiff_t j = 0;
    for (; j + 2 * widest < wide_width; j += 2 * widest)
        spread_block<widest>(upper + j, lower + j, row + (j >> 1), above + (j >> 1));
    for (; j + 32 < width; j += 32) spread_block<16>(upper + j, lower + j, row + (j >> 1), above + (j >> 1));
    if (j + 32 == width) {
        const U8<16> t = load<16>(row + (j >> 1)), b = load<16>(above + (j >> 1));
        store_spread<16>(upper + j, lower + j, t, right_neighbours_at_edge(t), b, right_neighbours_at_edge(b));
        return;
    }
    for (ptrdiff_t u = 0; j < width; j += 4, u += 4) {
        const uint8_t *v_row = row + (j >> 1), *v_above = above + (j >> 1);
        const uint8_t *u_row = row + (u >> 1) + 1, *u_above = above + (u >> 1) + 1;
        const int right = j == width - 4 ? 0 : 2;
        const int v_samples[4] = {v_row[0], v_row[right], v_above[0], v_above[right]};
        const int u_samples[4] = {u_row[0], u_row[right], u_above[0], u_above[right]};
        spread_sample(upper + j, lower + j, v_samples);
        spread_sample(upper + u + 1, lower + u + 1, u_samples);
    }
}

}  // namespace

// From the last row to the first, so that a shared plane is read before it is overwritten; the first row's output, which would
// fall on its input, goes through a work buffer. That pass is found by its distance from the end, so that with a height that
// is no multiple of 4 it never comes, and the last passes go on above the plane.
int32_t zivColorNV41toNV21_2(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV41, zivPixFmt_NV21, destination_2x2_source_height_2))
        return status;
    copy_luma(srcImg, dstImg);
    const ptrdiff_t width = srcImg->width, height = srcImg->height;
    const ptrdiff_t src_pitch = srcImg->pitch[1], dst_pitch = dstImg->pitch[1];
    const bool wide = wide_steps_allowed(srcImg, dstImg);

    // The buffer is for two source rows, which are copied back. The rows stand at the destination's pitch, so that there is
    // room for what they reach beyond that on either side too. A negative pitch makes its size negative and is refused.
    const ptrdiff_t row_bytes = width > 0 ? (width + 3) & ~ptrdiff_t{3} : 0, copied = 2 * src_pitch;
    const ptrdiff_t before = dst_pitch < 0 ? -dst_pitch : 0, lower_end = (dst_pitch > 0 ? dst_pitch : 0) + row_bytes;
    const ptrdiff_t room = before + (copied > lower_end ? copied : lower_end);
    uint8_t* const work = static_cast<uint8_t*>(MemMgrAlloc(nullptr, copied < 0 ? copied : room));
    if (!work) return zivStatus_OutOfMemory;

    uint8_t* lower = row_at(dstImg->plane[1], height / 2 - 1, dstImg->pitch[1]);
    for (ptrdiff_t i = 0, k = height / 4 - 1; i < height; i += 4, k--, lower -= 2 * dst_pitch) {
        uint8_t* const upper = lower - dst_pitch;
        const bool through_work = i == height - 4;
        if (width > 0) {  // without columns the source's plane may be null
            const uint8_t* row = row_at(srcImg->plane[1], k, srcImg->pitch[1]);
            if (through_work) spread_row(work + before, work + before + dst_pitch, row, row, width, wide);
            else spread_row(upper, lower, row, row - src_pitch, width, wide);
        }
        if (through_work) MemMgrCpy(upper, work + before, copied);
    }
    MemMgrFree(nullptr, work);
    return zivStatus_OK;
}

// The first generation interpolates to the left, goes from the first row to the last, and has no U side in its tail: it traps
// there, in the first pass, whose row is its own upper neighbour. Only a source without columns gets past it.
int32_t zivColorNV41toNV21(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV41, zivPixFmt_NV21, destination_2x2_source_height_2))
        return status;
    copy_luma(srcImg, dstImg);
    const ptrdiff_t width = srcImg->width;
    if (width <= 0) return zivStatus_OK;
    const uint8_t* row = srcImg->plane[1];
    uint8_t* upper = dstImg->plane[1];
    uint8_t* lower = upper + dstImg->pitch[1];
    const auto spread = [&](ptrdiff_t column, int channel) {
        const ptrdiff_t in = (column >> 1) + channel, out = column + channel;
        const uint8_t left = row[column ? in - 2 : in], here = row[in];
        upper[out] = lower[out] = static_cast<uint8_t>((left + here + 1) >> 1);
        upper[out + 2] = here;
        lower[out + 2] = left;
    };
    const ptrdiff_t blocked = width < 36 ? 0 : ((width - 36) / 32 + 1) * 32;
    for (ptrdiff_t j = 0; j < blocked; j += 4) spread(j, 0), spread(j, 1);
    spread(blocked, 0);
    asm volatile("" ::: "memory");  // what is written so far is there for whoever shares the memory
    __builtin_trap();
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
