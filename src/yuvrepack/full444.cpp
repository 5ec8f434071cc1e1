// SPDX-License-Identifier: MIT
// From planar 4:4:4, and between packed Y U V and NV21. Subsampling keeps the chroma of the even columns and of the even rows;
// upsampling repeats it.
#include "yuvrepack/packed444.h"
#include "yuvrepack/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// ---- Planar 4:4:4 ----

namespace {

ZIV_INLINE int32_t check_planar444(const Image* srcImg, const Image* dstImg, uint32_t destination) {
    return check(srcImg, dstImg, zivPixFmt_I444, destination, destination_2x2_source_height_2);
}

// Pairs of rows, pairs of columns; an odd last row or column stays unwritten. rows(i, u, v, columns) converts the pair that
// starts at row i. The source's chroma pointers move by the columns walked and one pitch a pass.
template <class Rows>
ZIV_INLINE void for_row_pairs_444(const Image* srcImg, const Image* dstImg, Rows rows) {
    const ptrdiff_t columns = dstImg->width & ~1, height = dstImg->height;
    const uint8_t* u = srcImg->plane[1];
    const uint8_t* v = srcImg->plane[2];
    for (ptrdiff_t i = 0; i < height - 1; i += 2) {
        rows(i, u, v, columns);
        u += columns + srcImg->pitch[1];
        v += columns + srcImg->pitch[2];
    }
}

// To 4:2:0: the destination's chroma runs on from row to row without a pitch.
template <class ChromaRows>
ZIV_INLINE int32_t convert_444_to_420(const Image* srcImg, const Image* dstImg, uint32_t destination, ChromaRows chroma_rows) {
    if (const int32_t status = check_planar444(srcImg, dstImg, destination)) return status;
    const ptrdiff_t columns = dstImg->width & ~1, rows = dstImg->height >> 1;
    copy_row_pairs<2>(srcImg->plane[0], srcImg->pitch[0], dstImg->plane[0], dstImg->pitch[0], columns, 2 * rows);
    chroma_rows(columns >> 1, rows);
    return zivStatus_OK;
}

// The chroma of even rows, `step` apart.
[[gnu::noinline]] void subsample_planar(const uint8_t* u, ptrdiff_t u_step, const uint8_t* v, ptrdiff_t v_step, uint8_t* dst_u,
                                        uint8_t* dst_v, ptrdiff_t pairs, ptrdiff_t rows) {
    for (; rows > 0; rows--, u += u_step, v += v_step, dst_u += pairs, dst_v += pairs) {
        hide_pointers(u, v, dst_u, dst_v);
        even_runs(u, v, dst_u, dst_v, pairs);
    }
}
[[gnu::noinline]] void subsample_pairs(const uint8_t* first, ptrdiff_t first_step, const uint8_t* second, ptrdiff_t second_step,
                                       uint8_t* dst, ptrdiff_t pairs, ptrdiff_t rows) {
    for (; rows > 0; rows--, first += first_step, second += second_step, dst += 2 * pairs) {
        hide_pointers(first, second, dst);
        interleave_even_run(first, second, dst, pairs);
    }
}

// The source's chroma pointers move by the columns walked and one pitch a pair of rows. first is the plane of the samples that
// stand first in the destination's pairs.
ZIV_INLINE int32_t convert_444_to_semiplanar(const Image* srcImg, const Image* dstImg, uint32_t destination, int first) {
    return convert_444_to_420(srcImg, dstImg, destination, [=](ptrdiff_t pairs, ptrdiff_t rows) {
        const int second = 3 - first;
        subsample_pairs(srcImg->plane[first], 2 * pairs + srcImg->pitch[first], srcImg->plane[second],
                        2 * pairs + srcImg->pitch[second], dstImg->plane[1], pairs, rows);
    });
}

}  // namespace

int32_t zivColorI444toI420u8(const Image* srcImg, const Image* dstImg) {
    return convert_444_to_420(srcImg, dstImg, zivPixFmt_I420, [=](ptrdiff_t pairs, ptrdiff_t rows) {
        subsample_planar(srcImg->plane[1], 2 * pairs + srcImg->pitch[1], srcImg->plane[2], 2 * pairs + srcImg->pitch[2],
                         dstImg->plane[1], dstImg->plane[2], pairs, rows);
    });
}

int32_t zivColorI444toNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert_444_to_semiplanar(srcImg, dstImg, zivPixFmt_NV21, 2);
}

int32_t zivColorI444toNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert_444_to_semiplanar(srcImg, dstImg, zivPixFmt_NV12, 1);
}

// Both rows of a pair take the chroma of the upper one.
int32_t zivColorI444toYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar444(srcImg, dstImg, zivPixFmt_YUYV)) return status;
    for_row_pairs_444(srcImg, dstImg, [=](ptrdiff_t i, const uint8_t* u, const uint8_t* v, ptrdiff_t columns) {
        yuyv_even_row_pair<2>(plane_row(srcImg, 0, i), srcImg->pitch[0], u, v, plane_row(dstImg, 0, i), dstImg->pitch[0],
                              columns);
    });
    return zivStatus_OK;
}

// No pitch is read: rows of whole pairs follow each other on both sides, so the image is one run.
int32_t zivColorI444toLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar444(srcImg, dstImg, zivPixFmt_LPI422H)) return status;
    const ptrdiff_t run = ptrdiff_t{dstImg->width & ~1} * dstImg->height;
    copy_row(srcImg->plane[0], dstImg->plane[0], run);
    interleave_even_row(srcImg->plane[1], srcImg->plane[2], dstImg->plane[1], run >> 1);
    return zivStatus_OK;
}

// ---- Packed Y U V: two rows a pass, block by block over both; odd sizes are rounded up to whole pairs. ----

namespace {

// Columns j to j + count - 1, of the last one luma alone.
template <int count>
ZIV_INLINE void unpack_columns(const uint8_t* src0, const uint8_t* src1, uint8_t* luma0, uint8_t* luma1, uint8_t* chroma,
                               ptrdiff_t j) {
    uint8_t upper[count], lower[count], pairs[count];
    for (int k = 0; k < count; k++) {
        upper[k] = src0[3 * (j + k)];
        lower[k] = src1[3 * (j + k)];
        pairs[k] = src0[3 * (j + (k & ~1)) + (k & 1 ? 1 : 2)];
    }
    __builtin_memcpy(luma0 + j, upper, count);
    __builtin_memcpy(luma1 + j, lower, count);
    __builtin_memcpy(chroma + j, pairs, count);
}

}  // namespace

// Blocks of 8 columns read their pixels whole; the tail ends with the luma of its second column.
int32_t zivColorYUVtoNV21u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_YUV, zivPixFmt_NV21, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, height = dstImg->height, blocked = width & ~ptrdiff_t{7};
    const bool overlap = starts_inside(dstImg->pitch[0], blocked);
    for (ptrdiff_t i = 0; i < height; i += 2) {
        const uint8_t* src0 = plane_row(srcImg, 0, i);
        const uint8_t* src1 = src0 + srcImg->pitch[0];
        uint8_t* luma0 = plane_row(dstImg, 0, i);
        uint8_t* luma1 = luma0 + dstImg->pitch[0];
        uint8_t* chroma = plane_row(dstImg, 1, i >> 1);
        if (overlap) [[unlikely]] {
            by_blocks<8>(width,
                         [=](auto step, ptrdiff_t k) { unpack_columns<step.value>(src0, src1, luma0, luma1, chroma, k); });
            continue;
        }
        ptrdiff_t j = move_row<1>(
            blocked, no_lead,
            [=](auto step, auto, ptrdiff_t k) ZIV_INLINE_BODY {
                constexpr int N = step.value;
                Channels<N, 3> upper = load3<N>(src0 + 3 * k);
                return Channels<N, 3>{{upper.c[0], load3<N>(src1 + 3 * k).c[0], even_pairs<N>(upper.c[2], upper.c[1])}};
            },
            ToPlane<0>{luma0}, ToPlane<1>{luma1}, ToPlane<2>{chroma});
        for (; j < width; j += 2) unpack_columns<2>(src0, src1, luma0, luma1, chroma, j);
    }
    return zivStatus_OK;
}

namespace {

template <int count>
ZIV_INLINE void pack_columns(const uint8_t* luma0, const uint8_t* luma1, const uint8_t* chroma, uint8_t* dst0, uint8_t* dst1,
                             ptrdiff_t j) {
    uint8_t upper[3 * count], lower[3 * count];
    for (int k = 0; k < count; k++) {
        upper[3 * k] = luma0[j + k];
        lower[3 * k] = luma1[j + k];
        upper[3 * k + 1] = lower[3 * k + 1] = chroma[j + (k | 1)];
        upper[3 * k + 2] = lower[3 * k + 2] = chroma[j + (k & ~1)];
    }
    __builtin_memcpy(dst0 + 3 * j, upper, 3 * count);
    __builtin_memcpy(dst1 + 3 * j, lower, 3 * count);
}

// Two rows a pass. Where destination rows start inside one another, block by block.
[[gnu::noinline]] void pack_rows(const uint8_t* luma, ptrdiff_t luma_pitch, const uint8_t* chroma, ptrdiff_t chroma_pitch,
                                 uint8_t* dst, ptrdiff_t dst_pitch, ptrdiff_t width, ptrdiff_t height) {
    const ptrdiff_t even = width & ~ptrdiff_t{1};
    const bool overlap = starts_inside(dst_pitch, 3 * even);
    const bool prefetched = widest == 16 || width * height > 8192;  // less stays in the first level of the cache
    for (; height > 0; height -= 2, luma += 2 * luma_pitch, chroma += chroma_pitch, dst += 2 * dst_pitch) {
        const uint8_t *luma0 = luma, *luma1 = luma + hidden_index(luma_pitch), *pairs = chroma;
        uint8_t *dst0 = dst, *dst1 = dst + hidden_index(dst_pitch);
        // Pointers of the row's own, which its stores step on.
        if constexpr (ZIV_HAS_ADVANCED_SIMD) hide_pointers(dst0, dst1);
        if (overlap) [[unlikely]] {
            by_blocks<16>(width, [=](auto step, ptrdiff_t k) { pack_columns<step.value>(luma0, luma1, pairs, dst0, dst1, k); });
            continue;
        }
        const auto pack = [=](auto step, ptrdiff_t k) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            auto packed = packed_chroma<N>(pairs + k);
            if (prefetched) {
                prefetch_writes<3 * N>(dst0 + 3 * k);
                prefetch_writes<3 * N>(dst1 + 3 * k);
            }
            store_packed444<N>(dst0 + 3 * k, luma0 + k, packed);
            store_packed444<N>(dst1 + 3 * k, luma1 + k, packed);
        };
        ptrdiff_t j = for_steps(even, pack);
        if (j < even && even >= 16) pack(Step<16>{}, even - 16), j = even;
        for (; j < width; j += 2) pack_columns<2>(luma0, luma1, pairs, dst0, dst1, j);
    }
}

}  // namespace

int32_t zivColorNV21toYUVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_YUV, both_2x2)) return status;
    pack_rows(srcImg->plane[0], srcImg->pitch[0], srcImg->plane[1], srcImg->pitch[1], dstImg->plane[0], dstImg->pitch[0],
              dstImg->width, dstImg->height);
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
