// SPDX-License-Identifier: MIT
// 32-bit RGB to packed and line-packed 4:2:2 (YUYV, LPI422H). Every row has its own chroma. Alpha is not looked at, luma is
// that of the short set.
#include "rgb2yuv/rows422.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

int32_t zivColorRGBA8888toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, rgba8888, yuyv>(srcImg, dstImg, zivPixFmt_RGBA8888, zivPixFmt_YUYV);
}

namespace {

// One row to luma and pairs U, V. An odd width writes a whole pair for its last column.
template <class Set, PixelLayout in>
ZIV_INLINE void convert_line_packed_row(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t width) {
    const ptrdiff_t blocked = blocked_columns<16>(width);
    for_column_steps(blocked, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        const auto pixels = load_columns<in, step.value>(src + in.bytes * j);
        const auto weighed = Set::template weigh<in>(pixels);
        const auto chroma_pairs = Set::template chroma<in>(pixels, weighed);
        store_luma(luma + j, Set::luma(weighed));
        store_pairs<c2_first<in, PairOrder::uv>>(chroma + j, chroma_pairs);
    });
    for (ptrdiff_t j = blocked; j < width; j++) {
        const Pixel p = load_pixel<in>(src + in.bytes * j);
        luma[j] = static_cast<uint8_t>(Set::y(p));
        if (j % 2) continue;
        chroma[j] = static_cast<uint8_t>(Set::u(p));
        chroma[j + 1] = static_cast<uint8_t>(Set::v(p));
    }
}

}  // namespace

// Both sizes are those of the source. No pitch is read: each pointer runs on from where the row before left it.
int32_t zivColorBGRA8888toLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_BGRA8888, zivPixFmt_LPI422H, both_2x2)) return status;
    const ptrdiff_t width = srcImg->width, chroma_bytes = width + width % 2;
    const uint8_t* src = srcImg->plane[0];
    uint8_t *luma = dstImg->plane[0], *chroma = dstImg->plane[1];
    for (ptrdiff_t i = 0; i < srcImg->height; i++, src += 4 * width, luma += width, chroma += chroma_bytes)
        convert_line_packed_row<EighthsSet, bgra8888>(src, luma, chroma, width);
    return zivStatus_OK;
}

// Both sizes are those of the source.
int32_t zivColorRGBA8888toLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_RGBA8888, zivPixFmt_LPI422H, both_2x2)) return status;
    for (ptrdiff_t i = 0; i < srcImg->height; i++)
        convert_line_packed_row<ThirtySecondsSet, rgba8888>(row_at(srcImg->plane[0], i, srcImg->pitch[0]),
                                                            row_at(dstImg->plane[0], i, dstImg->pitch[0]),
                                                            row_at(dstImg->plane[1], i, dstImg->pitch[1]), srcImg->width);
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
