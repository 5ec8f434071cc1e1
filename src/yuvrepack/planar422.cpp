// SPDX-License-Identifier: MIT
// Planar 4:2:2, chroma halved across (I422H) or down (I422V), to I420, NV21, NV12, YUYV and LPI422H. Samples are moved, dropped
// or repeated, never averaged.
#include "yuvrepack/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

namespace {

ZIV_INLINE int32_t check_planar422(const Image* srcImg, const Image* dstImg, uint32_t source, uint32_t destination) {
    return check(srcImg, dstImg, source, destination, destination_2x2_source_height_2);
}

ZIV_INLINE void copy_luma(const Image* srcImg, const Image* dstImg, ptrdiff_t columns, ptrdiff_t rows) {
    copy_plane(srcImg->plane[0], srcImg->pitch[0], dstImg->plane[0], dstImg->pitch[0], columns, rows);
}

ZIV_INLINE void copy_luma_by_row_pairs(const Image* srcImg, const Image* dstImg, ptrdiff_t columns, ptrdiff_t rows) {
    copy_row_pairs<16>(srcImg->plane[0], srcImg->pitch[0], dstImg->plane[0], dstImg->pitch[0], columns, rows);
}

ZIV_INLINE bool planar_chroma_is_tight(const Image* srcImg, ptrdiff_t pairs) {
    return srcImg->pitch[1] == pairs && srcImg->pitch[2] == pairs;
}

}  // namespace

// ---- I422H: every plane at its pitch. An odd last column stays unwritten. ----

int32_t zivColorI422HtoI420u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422H, zivPixFmt_I420)) return status;
    const ptrdiff_t pairs = dstImg->width >> 1, height = dstImg->height;
    copy_luma(srcImg, dstImg, 2 * pairs, height);
    for (int k = 1; k <= 2; k++)
        copy_plane(srcImg->plane[k], ptrdiff_t{2} * srcImg->pitch[k], dstImg->plane[k], dstImg->pitch[k], pairs,
                   (height + 1) >> 1);
    return zivStatus_OK;
}

namespace {

// dst_chroma_pitch is the distance between the chroma of two even rows.
template <PairOrder order>
ZIV_INLINE void i422h_to_semiplanar420(const Image* srcImg, const Image* dstImg, ptrdiff_t dst_chroma_pitch) {
    constexpr int first = order == PairOrder::uv ? 1 : 2, second = 3 - first;
    const ptrdiff_t pairs = dstImg->width >> 1, height = dstImg->height;
    copy_luma(srcImg, dstImg, 2 * pairs, height);
    for (ptrdiff_t i = 0; i < height; i += 2)
        interleave_row(plane_row(srcImg, first, i), plane_row(srcImg, second, i),
                       dstImg->plane[1] + (i >> 1) * dst_chroma_pitch, pairs);
}

}  // namespace

// Steps the destination's chroma by its luma pitch.
int32_t zivColorI422HtoNV21u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422H, zivPixFmt_NV21)) return status;
    i422h_to_semiplanar420<PairOrder::vu>(srcImg, dstImg, dstImg->pitch[0]);
    return zivStatus_OK;
}

// Steps the destination's chroma by its pitch once for every source row, also for the rows whose chroma is dropped.
int32_t zivColorI422HtoNV12u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422H, zivPixFmt_NV12)) return status;
    i422h_to_semiplanar420<PairOrder::uv>(srcImg, dstImg, ptrdiff_t{2} * dstImg->pitch[1]);
    return zivStatus_OK;
}

int32_t zivColorI422HtoYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422H, zivPixFmt_YUYV)) return status;
    ptrdiff_t pairs = dstImg->width >> 1, height = dstImg->height;
    // A tight image is one long row.
    if (planar_chroma_is_tight(srcImg, pairs) && srcImg->pitch[0] == 2 * pairs && dstImg->pitch[0] == 4 * pairs)
        pairs *= height, height = 1;
    for (ptrdiff_t i = 0; i < height; i++)
        yuyv_row(plane_row(srcImg, 0, i), plane_row(srcImg, 1, i), plane_row(srcImg, 2, i), plane_row(dstImg, 0, i), pairs);
    return zivStatus_OK;
}

int32_t zivColorI422HtoLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422H, zivPixFmt_LPI422H)) return status;
    ptrdiff_t pairs = dstImg->width >> 1, height = dstImg->height;
    copy_luma(srcImg, dstImg, 2 * pairs, height);
    if (planar_chroma_is_tight(srcImg, pairs) && dstImg->pitch[1] == 2 * pairs) pairs *= height, height = 1;
    for (ptrdiff_t i = 0; i < height; i++)
        interleave_row(plane_row(srcImg, 1, i), plane_row(srcImg, 2, i), plane_row(dstImg, 1, i), pairs);
    return zivStatus_OK;
}

// ---- I422V: two rows share one row of each chroma plane; these rows follow one another without gaps. The chroma of odd
// columns
//      is dropped, and an odd last row stays unwritten. ----

namespace {

// With an odd width it covers one column past the row, in both rows: what the upper row writes there may be the lower row's
// first sample, so that the tail goes column by column over both.
ZIV_INLINE void i422v_to_i420_odd_width(const Image* srcImg, const Image* dstImg) {
    const ptrdiff_t columns = ptrdiff_t{dstImg->width} + 1, blocked = blocked_columns<16>(dstImg->width);
    const uint8_t *u = srcImg->plane[1], *v = srcImg->plane[2];
    uint8_t *dst_u = dstImg->plane[1], *dst_v = dstImg->plane[2];
    for (ptrdiff_t i = 0; i < dstImg->height - 1; i += 2) {
        const uint8_t* luma0 = plane_row(srcImg, 0, i);
        const uint8_t* luma1 = luma0 + srcImg->pitch[0];
        uint8_t* dst0 = plane_row(dstImg, 0, i);
        uint8_t* dst1 = dst0 + dstImg->pitch[0];
        copy_row_pairs<16>(luma0, srcImg->pitch[0], dst0, dstImg->pitch[0], blocked, 2);
        even_row(u, dst_u, blocked >> 1);
        even_row(v, dst_v, blocked >> 1);
        for (ptrdiff_t j = blocked; j < columns; j += 2) {
            const uint8_t upper[2] = {luma0[j], luma0[j + 1]}, lower[2] = {luma1[j], luma1[j + 1]};
            const uint8_t pair_u = u[j], pair_v = v[j];
            __builtin_memcpy(dst0 + j, upper, 2);
            __builtin_memcpy(dst1 + j, lower, 2);
            dst_u[j >> 1] = pair_u;
            dst_v[j >> 1] = pair_v;
        }
        u += columns, v += columns, dst_u += columns >> 1, dst_v += columns >> 1;
    }
}

}  // namespace

int32_t zivColorI422VtoI420u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422V, zivPixFmt_I420)) return status;
    if (dstImg->width & 1) {
        i422v_to_i420_odd_width(srcImg, dstImg);
        return zivStatus_OK;
    }
    const ptrdiff_t pairs = dstImg->width >> 1, row_pairs = dstImg->height >> 1;
    copy_luma_by_row_pairs(srcImg, dstImg, 2 * pairs, 2 * row_pairs);
    for (int k = 1; k <= 2; k++) even_row(srcImg->plane[k], dstImg->plane[k], pairs * row_pairs);
    return zivStatus_OK;
}

// The others stop one column short of an odd width, so that there the chroma runs ahead of the rows of the image.

int32_t zivColorI422VtoNV21u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422V, zivPixFmt_NV21)) return status;
    const ptrdiff_t pairs = dstImg->width >> 1, row_pairs = dstImg->height >> 1;
    copy_luma_by_row_pairs(srcImg, dstImg, 2 * pairs, 2 * row_pairs);
    interleave_even_row(srcImg->plane[2], srcImg->plane[1], dstImg->plane[1], pairs * row_pairs);
    return zivStatus_OK;
}

int32_t zivColorI422VtoNV12u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422V, zivPixFmt_NV12)) return status;
    const ptrdiff_t pairs = dstImg->width >> 1, row_pairs = dstImg->height >> 1;
    copy_luma_by_row_pairs(srcImg, dstImg, 2 * pairs, 2 * row_pairs);
    interleave_even_row(srcImg->plane[1], srcImg->plane[2], dstImg->plane[1], pairs * row_pairs);
    return zivStatus_OK;
}

int32_t zivColorI422VtoYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422V, zivPixFmt_YUYV)) return status;
    const ptrdiff_t pairs = dstImg->width >> 1, row_pairs = dstImg->height >> 1;
    for (ptrdiff_t i = 0; i < row_pairs; i++) {
        const ptrdiff_t chroma = 2 * pairs * i;
        yuyv_even_row_pair<16>(plane_row(srcImg, 0, 2 * i), srcImg->pitch[0], srcImg->plane[1] + chroma,
                               srcImg->plane[2] + chroma, plane_row(dstImg, 0, 2 * i), dstImg->pitch[0], 2 * pairs);
    }
    return zivStatus_OK;
}

int32_t zivColorI422VtoLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_planar422(srcImg, dstImg, zivPixFmt_I422V, zivPixFmt_LPI422H)) return status;
    const ptrdiff_t pairs = dstImg->width >> 1, row_pairs = dstImg->height >> 1;
    const bool overlap = starts_inside(dstImg->pitch[1], 2 * pairs);
    copy_luma_by_row_pairs(srcImg, dstImg, 2 * pairs, 2 * row_pairs);
    for (ptrdiff_t i = 0; i < row_pairs; i++) {
        const uint8_t *u = srcImg->plane[1] + 2 * pairs * i, *v = srcImg->plane[2] + 2 * pairs * i;
        uint8_t* upper = plane_row(dstImg, 1, 2 * i);
        uint8_t* lower = upper + dstImg->pitch[1];
        if (overlap) [[unlikely]] {
            by_blocks<16>(2 * pairs, [=](auto step, ptrdiff_t j) {
                interleave_even_row(u + j, v + j, upper + j, step.value / 2);
                interleave_even_row(u + j, v + j, lower + j, step.value / 2);
            });
        } else {
            interleave_even_row(u, v, upper, pairs);
            copy_row(upper, lower, 2 * pairs);
        }
    }
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
