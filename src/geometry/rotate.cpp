// SPDX-License-Identifier: MIT
// Quarter and half turns of a semi-planar 4:2:0 image. A chroma pair is moved whole, so that its order does not matter.
#include "geometry/row_pairs.h"
#include "geometry/transpose.h"

namespace zivcolor::ZIVCOLOR_TARGET::geometry {

namespace {

// Turned clockwise, source column x becomes row x of the destination from its last byte backwards: the source is read from its
// last row to its first. Turned counter-clockwise, it becomes row W - 1 - x: the destination is written from its last row to
// its first.
ZIV_INLINE void quarter_turn(const Image* srcImg, const Image* dstImg, bool clockwise) {
    if (srcImg->width < 8 || srcImg->height < 8) return;
    const ptrdiff_t width = srcImg->width, src_pitch = srcImg->pitch[0], dst_pitch = dstImg->pitch[0];
    const ptrdiff_t columns = width & ~ptrdiff_t{7}, rows = srcImg->height & ~7;
    Transposition luma, chroma;
    if (clockwise) {
        luma = {srcImg->plane[0] + (rows - 1) * src_pitch, -src_pitch, dstImg->plane[0] + dst_pitch - rows, dst_pitch};
        chroma = {srcImg->plane[1] + ((rows >> 1) - 1) * src_pitch, -src_pitch, dstImg->plane[1] + dst_pitch - rows, dst_pitch};
    } else {
        const ptrdiff_t chroma_end = (dst_pitch * dstImg->height) >> 1;
        luma = {srcImg->plane[0], src_pitch, dstImg->plane[0] + (width - 1) * dst_pitch, -dst_pitch};
        chroma = {srcImg->plane[1], src_pitch, dstImg->plane[1] + chroma_end - dst_pitch, -dst_pitch};
    }
    // Whole planes at once, in an order of our own, where no byte is written twice.
    const ptrdiff_t distance = dst_pitch < 0 ? -dst_pitch : dst_pitch;
    const bool even_pitches = ((src_pitch | dst_pitch) & 1) == 0;
    if (even_pitches && distance >= rows &&
        apart(extent_of_runs(luma.dst, luma.dst_pitch, columns, rows),
              extent_of_runs(chroma.dst, chroma.dst_pitch, columns >> 1, rows))) {
        transpose_plane<1>(luma, columns, rows);
        transpose_plane<2>(chroma, columns, rows);
        return;
    }
    // Otherwise block by block. Within a block chroma rows are stepped by the pitches less their lowest bit.
    for (ptrdiff_t by = 0; by < rows; by += 8)
        for (ptrdiff_t bx = 0; bx < columns; bx += 8) {
            const ptrdiff_t src_step = 2 * (src_pitch >> 1), dst_step = 2 * (dst_pitch >> 1);
            const uint8_t* src_chroma = srcImg->plane[1] + (by >> 1) * src_pitch + bx;
            if (clockwise) {
                transpose_block<1>({srcImg->plane[0] + (by + 7) * src_pitch + bx, -src_pitch,
                                    dstImg->plane[0] + bx * dst_pitch + dst_pitch - 8 - by, dst_pitch});
                transpose_block<2>({src_chroma + 3 * src_step, -src_step,
                                    dstImg->plane[1] + (bx >> 1) * dst_pitch + dst_pitch - 8 - by, dst_step});
            } else {
                transpose_block<1>({luma.src + by * src_pitch + bx, src_pitch, luma.dst - bx * dst_pitch + by, -dst_pitch});
                transpose_block<2>({src_chroma, src_step, chroma.dst - (bx >> 1) * dst_pitch + by, -dst_step});
            }
        }
}

// The rows of a pair lie a width apart on both sides, and the end of the destination's chroma plane is reckoned with the
// source's chroma pitch.
ZIV_INLINE void half_turn(const Image* srcImg, const Image* dstImg) {
    if (srcImg->height <= 0 || srcImg->width < 8) return;
    const ptrdiff_t width = srcImg->width, height = srcImg->height, columns = width & ~ptrdiff_t{7};
    const ptrdiff_t chroma_pitch = srcImg->pitch[1], dst_pitch = dstImg->pitch[0];
    const PlaneRuns src{{srcImg->plane[0], ptrdiff_t{2} * srcImg->pitch[0]}, width, {srcImg->plane[1], chroma_pitch}};
    const PlaneRuns dst{{dstImg->plane[0] + height * dst_pitch - columns, -2 * dst_pitch},
                        -width,
                        {dstImg->plane[1] + ((chroma_pitch * height) >> 1) - columns, -dst_pitch}};
    move_row_pairs<true>(src, dst, (height + 1) >> 1, columns, columns);
}

}  // namespace

void zivRotate(const Image* srcImg, const Image* dstImg, int32_t lmode) {
    if (!srcImg) return;
    if (lmode == 1 || lmode == 3) quarter_turn(srcImg, dstImg, lmode == 1);
    else half_turn(srcImg, dstImg);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::geometry
