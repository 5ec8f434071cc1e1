// SPDX-License-Identifier: MIT
// Between 4:2:0 and packed Y0 U Y1 V. Upsampling, a chroma row serves two rows; subsampling, the chroma of the even rows
// stays and that of the odd rows is dropped.
#include "yuvrepack/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// ---- 4:2:0 to packed ----

// Two rows from one row of pairs U V, column by column over both: what an odd width writes past the upper row may be the start
// of the lower one. Both rows are rounded up to whole pairs, and an odd height to whole pairs of rows.
int32_t zivColorNV12toYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV12, zivPixFmt_YUYV, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, even = width & ~ptrdiff_t{1}, height = dstImg->height;
    const bool overlap = starts_inside(dstImg->pitch[0], 2 * even);
    for (ptrdiff_t i = 0; i < height; i += 2) {
        const uint8_t* luma0 = plane_row(srcImg, 0, i);
        const uint8_t* luma1 = luma0 + srcImg->pitch[0];
        const uint8_t* chroma = row_at(srcImg->plane[1], i >> 1, srcImg->pitch[0]);
        uint8_t* dst0 = plane_row(dstImg, 0, i);
        uint8_t* dst1 = dst0 + dstImg->pitch[0];
        if (overlap) [[unlikely]] {
            by_blocks<16>(width, [=](auto step, ptrdiff_t k) {
                interleave_row(luma0 + k, chroma + k, dst0 + 2 * k, step.value);
                interleave_row(luma1 + k, chroma + k, dst1 + 2 * k, step.value);
            });
            continue;
        }
        ptrdiff_t j = move_row<2>(
            even, lead_of<4, 2>(dst0),
            [=](auto step, auto, ptrdiff_t k) ZIV_INLINE_BODY {
                constexpr int N = step.value;
                return Channels<N, 3>{{load<N>(luma0 + k), load<N>(luma1 + k), load<N>(chroma + k)}};
            },
            ToPairs<0, 2>{dst0}, ToPairs<1, 2>{dst1});
        for (; j < width; j += 2) {
            const uint8_t u = chroma[j], v = chroma[j + 1];
            const uint8_t upper[4] = {luma0[j], u, luma0[j + 1], v}, lower[4] = {luma1[j], u, luma1[j + 1], v};
            __builtin_memcpy(dst0 + 2 * j, upper, 4);
            __builtin_memcpy(dst1 + 2 * j, lower, 4);
        }
    }
    return zivStatus_OK;
}

// Row by row, so that an odd height is exact; an odd width is rounded up to whole pairs.
int32_t zivColorNV21toYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_YUYV, both_2x2)) return status;
    const ptrdiff_t columns = whole_pairs_up(dstImg->width), height = dstImg->height;
    for (ptrdiff_t i = 0; i < height; i++) {
        const uint8_t* luma = plane_row(srcImg, 0, i);
        const uint8_t* chroma = row_at(srcImg->plane[1], i >> 1, srcImg->pitch[0]);
        uint8_t* dst = plane_row(dstImg, 0, i);
        ptrdiff_t j = move_row<2>(
            columns, lead_of<4, 2>(dst),
            [=](auto step, auto, ptrdiff_t k) ZIV_INLINE_BODY {
                constexpr int N = step.value;
                return Channels<N, 2>{{load<N>(luma + k), swap_pairs<N>(load<N>(chroma + k))}};
            },
            ToPairs<0, 1>{dst});
        for (; j < columns; j += 2) {
            const uint8_t pixels[4] = {luma[j], chroma[j + 1], luma[j + 1], chroma[j]};
            __builtin_memcpy(dst + 2 * j, pixels, 4);
        }
    }
    return zivStatus_OK;
}

// Whole pairs of rows and columns only.
int32_t zivColorI420toYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_I420, zivPixFmt_YUYV, both_2x2)) return status;
    const ptrdiff_t pairs = dstImg->width >> 1, row_pairs = dstImg->height >> 1;
    const bool overlap = starts_inside(dstImg->pitch[0], 4 * pairs);
    // Small vectors take long to fill a line: of long rows, which come from beyond the near caches, one at a time.
    const bool one_by_one = widest == 16 && !ZIV_HAS_ADVANCED_SIMD && pairs >= 256;
    for (ptrdiff_t i = 0; i < row_pairs; i++) {
        const uint8_t* luma0 = plane_row(srcImg, 0, 2 * i);
        const uint8_t* luma1 = luma0 + srcImg->pitch[0];
        const uint8_t *u = plane_row(srcImg, 1, i), *v = plane_row(srcImg, 2, i);
        uint8_t* dst0 = plane_row(dstImg, 0, 2 * i);
        uint8_t* dst1 = dst0 + dstImg->pitch[0];
        if (overlap) [[unlikely]] {
            by_blocks<16>(2 * pairs, [=](auto step, ptrdiff_t j) {
                yuyv_row(luma0 + j, u + (j >> 1), v + (j >> 1), dst0 + 2 * j, step.value / 2);
                yuyv_row(luma1 + j, u + (j >> 1), v + (j >> 1), dst1 + 2 * j, step.value / 2);
            });
        } else if (one_by_one) {
            yuyv_row(luma0, u, v, dst0, pairs);
            yuyv_row(luma1, u, v, dst1, pairs);
        } else {
            yuyv_rows(luma0, luma1, u, v, dst0, dst1, pairs);
        }
    }
    return zivStatus_OK;
}

// ---- Packed to semi-planar 4:2:0 ----

namespace {

// Luma and pairs V U of one row.
ZIV_INLINE void unpack_run_vu(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t columns) {
    ptrdiff_t j = move_row<2>(
        columns, lead_of<2, 2>(luma),
        [=](auto step, auto, ptrdiff_t k) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            Channels<N, 2> v = load2<N>(src + 2 * k);
            return Channels<N, 2>{{v.c[0], swap_pairs<N>(v.c[1])}};
        },
        ToPlane<0>{luma}, ToPlane<1>{chroma});
    for (; j < columns; j += 2) {
        const uint8_t pixels[4] = {src[2 * j], src[2 * j + 1], src[2 * j + 2], src[2 * j + 3]};
        luma[j] = pixels[0];
        luma[j + 1] = pixels[2];
        chroma[j] = pixels[3];
        chroma[j + 1] = pixels[1];
    }
}

// Row by row; the rows of the chroma plane come from the even ones.
template <PairOrder order>
[[gnu::noinline]] void unpack_rows(const uint8_t* src, ptrdiff_t src_pitch, uint8_t* luma, ptrdiff_t luma_pitch,
                                   uint8_t* chroma, ptrdiff_t chroma_pitch, ptrdiff_t columns, ptrdiff_t height) {
    for (ptrdiff_t i = 0; i < height; i += 2) {
        const uint8_t* src0 = src;
        uint8_t *luma0 = luma, *chroma0 = chroma;
        asm("" : "+r"(src0), "+r"(luma0), "+r"(chroma0));  // or else compilers keep the addresses of each row and vector
        if constexpr (order == PairOrder::vu) unpack_run_vu(src0, luma0, chroma0, columns);
        else split_run(src0, luma0, chroma0, columns);
        if (i + 1 < height) even_run(src0 + src_pitch, luma0 + luma_pitch, columns);
        src += 2 * src_pitch;
        luma += 2 * luma_pitch;
        chroma += chroma_pitch;
    }
}

template <PairOrder order>
ZIV_INLINE int32_t unpack(const Image* srcImg, const Image* dstImg) {
    unpack_rows<order>(srcImg->plane[0], srcImg->pitch[0], dstImg->plane[0], dstImg->pitch[0], dstImg->plane[1],
                       dstImg->pitch[1], whole_pairs_up(dstImg->width), dstImg->height);
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorYUYVtoNV21u8_v2(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_sizes(srcImg, dstImg, destination_2x2)) return status;
    return unpack<PairOrder::vu>(srcImg, dstImg);
}

int32_t zivColorYUYVtoNV12u8_v2(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_YUYV, zivPixFmt_NV12, both_2x2)) return status;
    return unpack<PairOrder::uv>(srcImg, dstImg);
}

namespace {

// Tight buffers; the pointers run on from row to row by the columns walked.
template <PairOrder order>
ZIV_INLINE void unpack_tight(const uint8_t* src, uint8_t* dst, ptrdiff_t area, ptrdiff_t columns, ptrdiff_t height) {
    unpack_rows<order>(src, 2 * columns, dst, columns, dst + area, columns, columns, height);
}

}  // namespace

// Walks whole pairs: with an odd width each row starts a column further.
int32_t zivColorYUYVtoNV21u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight) {
    if (!pSrc || !pDst) return zivStatus_NullPointer;
    if (lWidth < 2 || lHeight < 2) return zivStatus_BadArgument;
    unpack_tight<PairOrder::vu>(pSrc, pDst, ptrdiff_t{lWidth} * lHeight, whole_pairs_up(lWidth), lHeight);
    return zivStatus_OK;
}

// Walks single columns: with an odd width the last pair of a chroma row has no V.
int32_t zivColorYUYVtoNV12u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight) {
    if (!pSrc || !pDst) return zivStatus_NullPointer;
    if (lWidth < 2 || lHeight < 2) return zivStatus_BadArgument;
    unpack_tight<PairOrder::uv>(pSrc, pDst, ptrdiff_t{lWidth} * lHeight, lWidth, lHeight);
    return zivStatus_OK;
}

// ---- Packed to planar 4:2:0 ----

namespace {

// Luma of two rows and both planes of chroma of the upper one. Where the rows of luma overlap, the upper one is written by a
// later step: in each step it goes last.
ZIV_INLINE void unpack_runs_planar(const uint8_t* src0, const uint8_t* src1, uint8_t* luma0, uint8_t* luma1, uint8_t* u,
                                   uint8_t* v, ptrdiff_t pairs) {
    ptrdiff_t j = move_row<1>(
        pairs, lead_of<2>(luma0),
        [=](auto step, auto, ptrdiff_t k) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            Channels<N, 4> upper = load_yuyv<N>(src0 + 4 * k);
            Channels<N, 2> lower = load_yuyv_luma<N>(src1 + 4 * k);
            return Channels<N, 6>{{lower.c[0], lower.c[1], upper.c[0], upper.c[1], upper.c[2], upper.c[3]}};
        },
        [=](auto step, const auto& w, ptrdiff_t k) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            prefetch_writes<2 * N>(luma1 + 2 * k);
            prefetch_writes<2 * N>(luma0 + 2 * k);
            store(luma1 + 2 * k, w.c[0]);
            store(luma1 + 2 * k + N, w.c[1]);
            store(luma0 + 2 * k, w.c[2]);
            store(luma0 + 2 * k + N, w.c[3]);
        },
        ToPlane<4>{u}, ToPlane<5>{v});
    for (; j < pairs; j++) {
        uint8_t upper[4], lower[4];
        __builtin_memcpy(upper, src0 + 4 * j, 4);
        __builtin_memcpy(lower, src1 + 4 * j, 4);
        luma1[2 * j] = lower[0];
        luma1[2 * j + 1] = lower[2];
        luma0[2 * j] = upper[0];
        luma0[2 * j + 1] = upper[2];
        u[j] = upper[1];
        v[j] = upper[3];
    }
}

// Whether the first run of bytes stands before the second, behind it, or over it.
enum class Place { before, over, behind };
ZIV_INLINE Place place_of(const uint8_t* a, ptrdiff_t a_bytes, const uint8_t* b, ptrdiff_t b_bytes) {
    const uintptr_t at_a = reinterpret_cast<uintptr_t>(a), at_b = reinterpret_cast<uintptr_t>(b);
    if (at_a + static_cast<uintptr_t>(a_bytes) <= at_b) return Place::before;
    return at_b + static_cast<uintptr_t>(b_bytes) <= at_a ? Place::behind : Place::over;
}

// Column pairs j to j + count - 1 of two rows: all loads first, then the stores in the order that tells where they overlap.
template <int count>
ZIV_INLINE void unpack_step(const uint8_t* src0, const uint8_t* src1, uint8_t* luma0, uint8_t* luma1, uint8_t* u, uint8_t* v,
                            ptrdiff_t j) {
    uint8_t upper[4 * count], lower[4 * count];
    __builtin_memcpy(upper, src0 + 4 * j, 4 * count);
    __builtin_memcpy(lower, src1 + 4 * j, 4 * count);
    for (int k = 0; k < 2 * count; k++) luma0[2 * j + k] = upper[2 * k];
    for (int k = 0; k < 2 * count; k++) luma1[2 * j + k] = lower[2 * k];
    for (int k = 0; k < count; k++) u[j + k] = upper[4 * k + 1];
    for (int k = 0; k < count; k++) v[j + k] = upper[4 * k + 3];
}

}  // namespace

// The rows of a plane that two passes step on, and the bytes that a pass writes there.
struct PassRuns {
    uint8_t* first;
    ptrdiff_t step, bytes;
    ZIV_INLINE uint8_t* at(ptrdiff_t pass) const { return first + pass * step; }
};
// Whether in no pass a byte is written in both planes: their distance changes evenly from pass to pass.
ZIV_INLINE bool always_apart(const PassRuns& a, const PassRuns& b, ptrdiff_t passes) {
    const Place first = place_of(a.first, a.bytes, b.first, b.bytes);
    return first != Place::over && place_of(a.at(passes - 1), a.bytes, b.at(passes - 1), b.bytes) == first;
}

// Two rows of the source a pass, `to_lower` apart, as are their rows of luma.
struct PassSource {
    const uint8_t* first;
    ptrdiff_t step, to_lower;
};

// Passes `first` to `last` - 1, of so many pairs of columns.
[[gnu::noinline]] inline void unpack_passes(PassSource src, PassRuns luma, ptrdiff_t to_lower, PassRuns u, PassRuns v,
                                            ptrdiff_t pairs, ptrdiff_t first, ptrdiff_t last) {
    const uint8_t* src0 = src.first + first * src.step;
    uint8_t *luma0 = luma.at(first), *u0 = u.at(first), *v0 = v.at(first);
    for (ptrdiff_t passes = last - first; passes > 0; passes--) {
        asm("" : "+r"(src0), "+r"(luma0), "+r"(u0), "+r"(v0));  // or else compilers keep the addresses of each row and vector
        unpack_runs_planar(src0, src0 + src.to_lower, luma0, luma0 + to_lower, u0, v0, pairs);
        src0 += src.step;
        luma0 += luma.step;
        u0 += u.step;
        v0 += v.step;
    }
}

// Two rows a pass; the lower row of luma lands one width, not one pitch, below the upper. Blocks of 16 columns leave 1 to 16
// columns, and the tail takes a step of a whole pair for each of them: both rows run as many columns past their end.
int32_t zivColorYUYVtoI420u8_2(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_sizes(srcImg, dstImg, destination_2x2)) return status;
    const ptrdiff_t width = dstImg->width, height = dstImg->height, passes = (height + 1) >> 1;
    const ptrdiff_t blocked = (width - 1) / 16 * 16, pairs = blocked / 2 + (width - blocked), columns = 2 * pairs;
    const PassRuns luma{dstImg->plane[0], ptrdiff_t{2} * dstImg->pitch[0], width + columns};
    const PassRuns u{dstImg->plane[1], dstImg->pitch[1], pairs}, v{dstImg->plane[2], dstImg->pitch[2], pairs};
    if (always_apart(luma, u, passes) && always_apart(luma, v, passes) && always_apart(u, v, passes)) {
        const PassSource src{srcImg->plane[0], ptrdiff_t{2} * srcImg->pitch[0], srcImg->pitch[0]};
        // In a tight image what rows run past their end is the next row's start.
        const bool tight = src.to_lower == 2 * width && luma.step == 2 * width && 2 * u.step == width && 2 * v.step == width;
        const ptrdiff_t trimmed = tight ? passes - 1 : 0;
        unpack_passes(src, luma, width, u, v, width >> 1, 0, trimmed);
        unpack_passes(src, luma, width, u, v, pairs, trimmed, passes);
        return zivStatus_OK;
    }
    for (ptrdiff_t pass = 0; pass < passes; pass++) {
        const uint8_t* src0 = plane_row(srcImg, 0, 2 * pass);
        const uint8_t* src1 = src0 + srcImg->pitch[0];
        uint8_t* luma0 = luma.at(pass);
        const auto step = [=](auto count, ptrdiff_t j) {
            unpack_step<count.value>(src0, src1, luma0, luma0 + width, u.at(pass), v.at(pass), j);
        };
        for (ptrdiff_t j = 0; j < blocked / 2; j += 8) step(Step<8>{}, j);
        for (ptrdiff_t j = blocked / 2; j < pairs; j++) step(Step<1>{}, j);
    }
    return zivStatus_OK;
}

// Tight buffers, whole pairs of rows and columns only. A pass runs along the columns that it walks and on over one row of the
// width: with an odd width luma rows start a column earlier each pass, in the source and in the destination.
int32_t zivColorYUYVtoI420u8(const uint8_t* yuvSrc, uint8_t* yuvDst, int32_t width, int32_t height) {
    if (!yuvSrc || !yuvDst) return zivStatus_NullPointer;
    if (width < 2 || height < 2) return zivStatus_BadArgument;
    const ptrdiff_t row = width, pairs = width >> 1, columns = 2 * pairs, area = row * height;
    uint8_t* const u = yuvDst + area;
    unpack_passes({yuvSrc, 2 * (columns + row), 2 * row}, {yuvDst, columns + row, columns + row}, row, {u, pairs, pairs},
                  {u + (area >> 2), pairs, pairs}, pairs, 0, height >> 1);
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
