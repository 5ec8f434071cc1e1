// SPDX-License-Identifier: MIT
// Between the plane arrangements of 4:2:0. Luma is copied, chroma is split, merged or swapped.
#include "yuvrepack/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

namespace {

// Whether the rows of the chroma follow each other without a gap.
ZIV_INLINE bool chroma_is_tight(const Image* img, ptrdiff_t columns) {
    if (img->format == zivPixFmt_I420) return img->pitch[1] == columns >> 1 && img->pitch[2] == columns >> 1;
    return img->pitch[1] == columns;
}

// Pairs of rows, pairs of columns, luma by blocks: an odd last row or column stays unwritten. chroma_row(row, pairs) moves a
// row of chroma; tight images are one long row.
template <int block, class ChromaRow>
ZIV_INLINE void convert_row_pairs(const Image* srcImg, const Image* dstImg, ChromaRow chroma_row) {
    const ptrdiff_t columns = dstImg->width & ~1, rows = dstImg->height >> 1;
    copy_row_pairs<block>(srcImg->plane[0], srcImg->pitch[0], dstImg->plane[0], dstImg->pitch[0], columns, 2 * rows);
    if (chroma_is_tight(srcImg, columns) && chroma_is_tight(dstImg, columns)) {
        chroma_row(0, (columns >> 1) * rows);
    } else {
        for (ptrdiff_t i = 0; i < rows; i++) chroma_row(i, columns >> 1);
    }
}

}  // namespace

int32_t zivColorI420toNV21u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_I420, zivPixFmt_NV21, both_2x2)) return status;
    convert_row_pairs<16>(srcImg, dstImg, [=](ptrdiff_t row, ptrdiff_t pairs) {
        interleave_row(plane_row(srcImg, 2, row), plane_row(srcImg, 1, row), plane_row(dstImg, 1, row), pairs);
    });
    return zivStatus_OK;
}

int32_t zivColorNV21toI420u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_I420, destination_2x2_source_height_2))
        return status;
    convert_row_pairs<16>(srcImg, dstImg, [=](ptrdiff_t row, ptrdiff_t pairs) {
        split_row(plane_row(srcImg, 1, row), plane_row(dstImg, 2, row), plane_row(dstImg, 1, row), pairs);
    });
    return zivStatus_OK;
}

int32_t zivColorNV12toI420u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV12, zivPixFmt_I420, both_2x2)) return status;
    convert_row_pairs<16>(srcImg, dstImg, [=](ptrdiff_t row, ptrdiff_t pairs) {
        split_row(plane_row(srcImg, 1, row), plane_row(dstImg, 1, row), plane_row(dstImg, 2, row), pairs);
    });
    return zivStatus_OK;
}

int32_t zivColorNV12toNV21u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV12, zivPixFmt_NV21, both_2x2)) return status;
    convert_row_pairs<2>(srcImg, dstImg, [=](ptrdiff_t row, ptrdiff_t pairs) {
        swap_row(plane_row(srcImg, 1, row), plane_row(dstImg, 1, row), pairs);
    });
    return zivStatus_OK;
}

// Every row, so that an odd last one carries its chroma too; an odd width is rounded up to whole pairs. The destination's
// chroma rows step by the pitch of its luma. A tight image is one long row.
int32_t zivColorYV12toNV21u8_2(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_sizes(srcImg, dstImg, destination_2x2)) return status;
    ptrdiff_t columns = whole_pairs_up(dstImg->width), pairs = columns >> 1, height = dstImg->height;
    if (dstImg->pitch[0] == columns && srcImg->pitch[0] == columns && srcImg->pitch[1] == pairs && srcImg->pitch[2] == pairs)
        pairs *= (height + 1) >> 1, columns *= height, height = 1;
    for (ptrdiff_t i = 0; i < height; i++) {
        copy_row(plane_row(srcImg, 0, i), plane_row(dstImg, 0, i), columns);
        if (i & 1) continue;
        interleave_row(plane_row(srcImg, 1, i >> 1), plane_row(srcImg, 2, i >> 1),
                       row_at(dstImg->plane[1], i >> 1, dstImg->pitch[0]), pairs);
    }
    return zivStatus_OK;
}

// Tight buffers. With an odd width luma and the chroma output run on by the rounded width, a byte further each row than the
// image has; the source's chroma rows stay width / 2 apart. With an even width all of it is one long row.
int32_t zivColorYV12toNV21u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height) {
    if (!pSrc || !pDst) return zivStatus_NullPointer;
    if (width < 2 || height < 2) return zivStatus_BadArgument;
    const ptrdiff_t luma_columns = static_cast<ptrdiff_t>(width), luma_bytes = static_cast<ptrdiff_t>(width * height);
    ptrdiff_t columns = whole_pairs_up(luma_columns), pairs = columns >> 1, rows = static_cast<ptrdiff_t>(height);
    if (columns == luma_columns) pairs *= (rows + 1) >> 1, columns = luma_bytes, rows = 1;
    const uint8_t* luma = pSrc;
    const uint8_t* first = pSrc + luma_bytes;
    const uint8_t* second = first + (luma_bytes >> 2);
    uint8_t* dst = pDst;
    uint8_t* chroma = pDst + luma_bytes;
    for (ptrdiff_t i = 0; i < rows; i++, luma += columns, dst += columns) {
        copy_row(luma, dst, columns);
        if (i & 1) continue;
        interleave_row(first, second, chroma, pairs);
        first += width >> 1;
        second += width >> 1;
        chroma += columns;
    }
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
