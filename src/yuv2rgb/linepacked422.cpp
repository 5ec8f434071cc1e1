// SPDX-License-Identifier: MIT
// LPI422H to 32-bit RGB: blocks of 16 columns, then column pairs, every byte the same by either path.
#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

namespace {

// One row; an odd last column stays unwritten. Where there is a block, the last one ends with the row, and covers columns
// before it again.
template <Rgb order>
ZIV_INLINE void convert_linepacked_row(const uint8_t* luma, PairedChroma<PairOrder::uv> chroma, uint8_t* dst, ptrdiff_t width,
                                       uint8_t alpha) {
    const ptrdiff_t columns = width / 2 * 2, blocked = blocked_columns<16>(width), last = columns - 16;
    if (blocked != 0) {
        convert_row_blocks<SetT5, order>(luma, chroma, dst, blocked, alpha);
        if (blocked < columns)
            convert_row_blocks<SetT5, order>(luma + last, PairedChroma<PairOrder::uv>{chroma.pairs + last}, dst + 4 * last, 16,
                                             alpha);
        return;
    }
    for (ptrdiff_t j = 0; j < columns; j += 2) {
        const int luma0 = luma[j], luma1 = luma[j + 1];
        const Colour d = colour_terms<SetT5>(chroma.u(j), chroma.v(j));
        store_clamped<order>(dst + 4 * j, luma0 + d, alpha);
        store_clamped<order>(dst + 4 * (j + 1), luma1 + d, alpha);
    }
}

}  // namespace

// Reads no pitch: every row starts where the one before it ended, on all planes, so that the image is one long row. With an odd
// width a row ends one column early.
int32_t zivColorLPI422HtoBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_LPI422H, zivPixFmt_BGRA8888, both_2x2)) return status;
    const ptrdiff_t columns = dstImg->width / 2 * 2, height = dstImg->height;
    convert_linepacked_row<Rgb::bgra>(srcImg->plane[0], {srcImg->plane[1]}, dstImg->plane[0], columns * height, alpha);
    return zivStatus_OK;
}

// Walks the source's size.
int32_t zivColorLPI422HtoRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_LPI422H, zivPixFmt_RGBA8888, both_2x2)) return status;
    const ptrdiff_t width = srcImg->width, height = srcImg->height;
    for (ptrdiff_t i = 0; i < height; i++)
        convert_linepacked_row<Rgb::rgba>(row_at(srcImg->plane[0], i, srcImg->pitch[0]),
                                          {row_at(srcImg->plane[1], i, srcImg->pitch[1])},
                                          row_at(dstImg->plane[0], i, dstImg->pitch[0]), width, alpha);
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
