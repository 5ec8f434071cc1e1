// SPDX-License-Identifier: MIT
// 24-bit RGB to planar 4:4:4 (YV24) and planar 4:2:2 (I422H) by the short set. Every row has its own chroma.
#include "rgb2yuv/luma_chroma.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// Blocks of 8 columns and the tail give the same bytes, so that vectors and single pixels may meet anywhere.
int32_t zivColorRGB888toYV24u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_YV24, both_1x1)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i < dstImg->height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* dst_y = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        uint8_t* dst_v = row_at(dstImg->plane[1], i, dstImg->pitch[1]);
        uint8_t* dst_u = row_at(dstImg->plane[2], i, dstImg->pitch[2]);
        for_steps(blocked, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
            convert_to_yuv444<step.value>(src + 3 * j, dst_y + j, dst_u + j, dst_v + j);
        });
        for (ptrdiff_t j = blocked; j < width; j++) {
            const Pixel p = load_pixel<rgb888>(src + 3 * j);
            dst_y[j] = static_cast<uint8_t>(ShortSet::y(p));
            dst_u[j] = static_cast<uint8_t>(ShortSet::u(p));
            dst_v[j] = static_cast<uint8_t>(ShortSet::v(p));
        }
    }
    return zivStatus_OK;
}

namespace {

// The tail takes pairs of pixels: an odd width reads the pixel past the row and writes its luma past the row.
template <PixelLayout in>
int32_t rgb_to_planar422(const Image* srcImg, const Image* dstImg, uint32_t source, const Image* width_of) {
    if (const int32_t status = check(srcImg, dstImg, source, zivPixFmt_I422H, both_2x1)) return status;
    const ptrdiff_t width = width_of->width, blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i < dstImg->height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* dst_y = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        uint8_t* dst_u = row_at(dstImg->plane[1], i, dstImg->pitch[1]);
        uint8_t* dst_v = row_at(dstImg->plane[2], i, dstImg->pitch[2]);
        for_column_pair_steps(blocked, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
            const auto pixels = load_columns<in, step.value>(src + in.bytes * j);
            const auto weighed = ShortSet::weigh<in>(pixels);
            const auto chroma_pairs = ShortSet::chroma<in>(pixels, weighed);
            store_luma(dst_y + j, ShortSet::luma(weighed));
            if constexpr (in.blue == 0) store_planes(dst_u + j / 2, dst_v + j / 2, chroma_pairs);
            else store_planes(dst_v + j / 2, dst_u + j / 2, chroma_pairs);
        });
        for (ptrdiff_t j = blocked; j < width; j += 2) {
            const Pixel first = load_pixel<in>(src + in.bytes * j), second = load_pixel<in>(src + in.bytes * (j + 1));
            dst_y[j] = static_cast<uint8_t>(ShortSet::y(first));
            dst_y[j + 1] = static_cast<uint8_t>(ShortSet::y(second));
            dst_u[j / 2] = static_cast<uint8_t>(ShortSet::u(first));
            dst_v[j / 2] = static_cast<uint8_t>(ShortSet::v(first));
        }
    }
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorRGB888toI422Hu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_planar422<rgb888>(srcImg, dstImg, zivPixFmt_RGB888, dstImg);
}

// The width is that of the source.
int32_t zivColorBGR888toI422Hu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_planar422<bgr888>(srcImg, dstImg, zivPixFmt_BGR888, srcImg);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
