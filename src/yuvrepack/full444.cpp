// From planar 4:4:4, and between packed Y U V and NV21. Downward the chroma of the even columns, and of the even rows, stays;
// upward it is repeated.
#include "yuvrepack/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// ---- Planar 4:4:4 ----

// Pairs of rows, pairs of columns; an odd last row or column stays unwritten. The source's chroma pointers move by the columns
// walked and one pitch a pass. rows(i, u, v, columns) converts the pair of rows that starts at row i.
template <class Rows>
ZIV_INLINE int32_t convert_row_pairs_444(const Image* srcImg, const Image* dstImg, uint32_t destination, Rows rows) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_I444, destination, destination_2x2_source_height_2))
        return status;
    const ptrdiff_t columns = dstImg->width & ~1, height = dstImg->height;
    const uint8_t* u = srcImg->plane[1];
    const uint8_t* v = srcImg->plane[2];
    for (ptrdiff_t i = 0; i < height - 1; i += 2) {
        rows(i, u, v, columns);
        u += columns + srcImg->pitch[1];
        v += columns + srcImg->pitch[2];
    }
    return zivStatus_OK;
}

ZIV_INLINE void copy_luma_rows(const Image* srcImg, const Image* dstImg, ptrdiff_t i, ptrdiff_t columns) {
    copy_row(plane_row(srcImg, 0, i), plane_row(dstImg, 0, i), columns);
    copy_row(plane_row(srcImg, 0, i + 1), plane_row(dstImg, 0, i + 1), columns);
}

// Destination chroma runs on without a pitch here and in the semi-planar ones.
int32_t zivColorI444toI420u8(const Image* srcImg, const Image* dstImg) {
    return convert_row_pairs_444(srcImg, dstImg, zivPixFmt_I420,
                                 [=](ptrdiff_t i, const uint8_t* u, const uint8_t* v, ptrdiff_t columns) {
                                     const ptrdiff_t pairs = columns >> 1, run = (i >> 1) * pairs;
                                     copy_luma_rows(srcImg, dstImg, i, columns);
                                     even_row(u, dstImg->plane[1] + run, pairs);
                                     even_row(v, dstImg->plane[2] + run, pairs);
                                 });
}

int32_t zivColorI444toNV21u8(const Image* srcImg, const Image* dstImg) {
    return convert_row_pairs_444(srcImg, dstImg, zivPixFmt_NV21,
                                 [=](ptrdiff_t i, const uint8_t* u, const uint8_t* v, ptrdiff_t columns) {
                                     copy_luma_rows(srcImg, dstImg, i, columns);
                                     interleave_even_row(v, u, dstImg->plane[1] + (i >> 1) * columns, columns >> 1);
                                 });
}

int32_t zivColorI444toNV12u8(const Image* srcImg, const Image* dstImg) {
    return convert_row_pairs_444(srcImg, dstImg, zivPixFmt_NV12,
                                 [=](ptrdiff_t i, const uint8_t* u, const uint8_t* v, ptrdiff_t columns) {
                                     copy_luma_rows(srcImg, dstImg, i, columns);
                                     interleave_even_row(u, v, dstImg->plane[1] + (i >> 1) * columns, columns >> 1);
                                 });
}

// Both rows of a pair take the chroma of the upper one.
int32_t zivColorI444toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return convert_row_pairs_444(
        srcImg, dstImg, zivPixFmt_YUYV, [=](ptrdiff_t i, const uint8_t* u, const uint8_t* v, ptrdiff_t columns) {
            const uint8_t* luma0 = plane_row(srcImg, 0, i);
            const uint8_t* luma1 = luma0 + srcImg->pitch[0];
            uint8_t* dst0 = plane_row(dstImg, 0, i);
            uint8_t* dst1 = dst0 + dstImg->pitch[0];
            ptrdiff_t j = for_vectors_short_of_end(columns, [&](auto step, auto end, ptrdiff_t k) ZIV_INLINE_BODY {
                constexpr int N = step.value;
                const U8<N> pairs = even_pairs<N>(end.template load<N>(u + k), end.template load<N>(v + k));
                store2<N>(dst0 + 2 * k, load<N>(luma0 + k), pairs);
                store2<N>(dst1 + 2 * k, load<N>(luma1 + k), pairs);
            });
            for (; j < columns; j += 2) {
                const uint8_t upper[4] = {luma0[j], u[j], luma0[j + 1], v[j]}, lower[4] = {luma1[j], u[j], luma1[j + 1], v[j]};
                __builtin_memcpy(dst0 + 2 * j, upper, 4);
                __builtin_memcpy(dst1 + 2 * j, lower, 4);
            }
        });
}

// No pitch is read: rows of whole pairs follow each other on both sides, so the image is one run.
int32_t zivColorI444toLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_I444, zivPixFmt_LPI422H, destination_2x2_source_height_2))
        return status;
    const ptrdiff_t run = ptrdiff_t{dstImg->width & ~1} * dstImg->height;
    copy_row(srcImg->plane[0], dstImg->plane[0], run);
    interleave_even_row(srcImg->plane[1], srcImg->plane[2], dstImg->plane[1], run >> 1);
    return zivStatus_OK;
}

// ---- Packed Y U V ----

// Two rows a pass, column by column over both; odd sizes are rounded up to whole pairs. Blocks of 8 columns read their pixels
// whole; the tail reads luma of a pair and the chroma of its first column, so it ends with the luma of the second.
int32_t zivColorYUVtoNV21u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_YUV, zivPixFmt_NV21, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, height = dstImg->height;
    for (ptrdiff_t i = 0; i < height; i += 2) {
        const uint8_t* src0 = plane_row(srcImg, 0, i);
        const uint8_t* src1 = src0 + srcImg->pitch[0];
        uint8_t* luma0 = plane_row(dstImg, 0, i);
        uint8_t* luma1 = luma0 + dstImg->pitch[0];
        uint8_t* chroma = plane_row(dstImg, 1, i >> 1);
        ptrdiff_t j = for_vectors(width, [&](auto step, ptrdiff_t k) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            const Channels<N, 3> upper = load3<N>(src0 + 3 * k);
            store(luma0 + k, upper.c[0]);
            store(luma1 + k, load3<N>(src1 + 3 * k).c[0]);
            store(chroma + k, even_pairs<N>(upper.c[2], upper.c[1]));
        });
        for (; j < width; j += 2) {
            const uint8_t *upper = src0 + 3 * j, *lower = src1 + 3 * j;
            const uint8_t y00 = upper[0], u = upper[1], v = upper[2], y01 = upper[3], y10 = lower[0], y11 = lower[3];
            luma0[j] = y00;
            luma0[j + 1] = y01;
            luma1[j] = y10;
            luma1[j + 1] = y11;
            chroma[j] = v;
            chroma[j + 1] = u;
        }
    }
    return zivStatus_OK;
}

// Two rows a pass, column by column over both; odd sizes are rounded up to whole pairs.
int32_t zivColorNV21toYUVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_YUV, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, height = dstImg->height;
    for (ptrdiff_t i = 0; i < height; i += 2) {
        const uint8_t* luma0 = plane_row(srcImg, 0, i);
        const uint8_t* luma1 = luma0 + srcImg->pitch[0];
        const uint8_t* chroma = plane_row(srcImg, 1, i >> 1);
        uint8_t* dst0 = plane_row(dstImg, 0, i);
        uint8_t* dst1 = dst0 + dstImg->pitch[0];
        ptrdiff_t j = for_vectors(width, [&](auto step, ptrdiff_t k) ZIV_INLINE_BODY {
            constexpr int N = step.value;
            const PackedChroma<N> pairs = packed_chroma<N>(load<N>(chroma + k));
            store_packed<N>(dst0 + 3 * k, load<N>(luma0 + k), pairs);
            store_packed<N>(dst1 + 3 * k, load<N>(luma1 + k), pairs);
        });
        for (; j < width; j += 2) {
            const uint8_t v = chroma[j], u = chroma[j + 1];
            const uint8_t upper[6] = {luma0[j], u, v, luma0[j + 1], u, v}, lower[6] = {luma1[j], u, v, luma1[j + 1], u, v};
            __builtin_memcpy(dst0 + 3 * j, upper, 6);
            __builtin_memcpy(dst1 + 3 * j, lower, 6);
        }
    }
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
