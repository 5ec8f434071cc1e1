// SPDX-License-Identifier: MIT
// NV21 left to right and top to bottom. For tight images: the rows of a pair lie a width apart on both sides. Columns go in
// pairs, so that an odd width takes one more, and rows too, so that an odd height takes one more.
#include "geometry/row_pairs.h"

namespace zivcolor::ZIVCOLOR_TARGET::geometry {

namespace {

template <bool mirrored>
ZIV_INLINE void mirror(const Image* srcImg, const PlaneRuns& dst) {
    const ptrdiff_t width = srcImg->width, height = srcImg->height;
    const PlaneRuns src{{srcImg->plane[0], ptrdiff_t{2} * srcImg->pitch[0]}, width, {srcImg->plane[1], srcImg->pitch[1]}};
    // The blocks stop 1 to 8 columns before the end.
    move_row_pairs<mirrored>(src, dst, (height + 1) >> 1, (width - 1) & ~ptrdiff_t{7}, (width + 1) & ~ptrdiff_t{1});
}

ZIV_INLINE int32_t check_mirror(const Image* srcImg) {
    if (!srcImg) return zivStatus_NullPointer;
    return srcImg->format == zivPixFmt_NV21 ? zivStatus_OK : zivStatus_BadArgument;
}

// The destination is not looked at then.
ZIV_INLINE bool is_empty(const Image* srcImg) { return srcImg->width <= 0 || srcImg->height <= 0; }

}  // namespace

// The destination's chroma rows step by the source's chroma pitch. Column 0 ends at the end of the destination's pitch.
int32_t zivflip_horizontal_nv21(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_mirror(srcImg)) return status;
    if (is_empty(srcImg)) return zivStatus_OK;
    const ptrdiff_t width = srcImg->width, bytes = (width + 1) & ~ptrdiff_t{1};
    const ptrdiff_t dst_pitch = dstImg->pitch[0], chroma_pitch = srcImg->pitch[1];
    const PlaneRuns dst{
        {dstImg->plane[0] + dst_pitch - bytes, 2 * dst_pitch}, width, {dstImg->plane[1] + chroma_pitch - bytes, chroma_pitch}};
    mirror<true>(srcImg, dst);
    return zivStatus_OK;
}

// The destination is stepped by the source's pitches, from its last row to its first.
int32_t zivflip_vertical_nv21(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_mirror(srcImg)) return status;
    if (is_empty(srcImg)) return zivStatus_OK;
    const ptrdiff_t height = srcImg->height, pitch = srcImg->pitch[0], chroma_pitch = srcImg->pitch[1];
    const PlaneRuns dst{{dstImg->plane[0] + (height - 1) * pitch, -2 * pitch},
                        -ptrdiff_t{srcImg->width},
                        {dstImg->plane[1] + ((height >> 1) - 1) * chroma_pitch, -chroma_pitch}};
    mirror<false>(srcImg, dst);
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::geometry
