// SPDX-License-Identifier: MIT
// 24-bit RGB to NV21, NV12 and I420. BGR888 takes the fine set, RGB888 the short one.
#include "rgb2yuv/rows420.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

int32_t zivColorBGR888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_semiplanar420<FineFractionalSet, bgr888, PairOrder::vu>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_NV21);
}

int32_t zivColorBGR888toNV12u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_semiplanar420<FineFractionalSet, bgr888, PairOrder::uv>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_NV12);
}

int32_t zivColorBGR888toI420u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_planar420<FineRoundedSet, bgr888>(srcImg, dstImg, zivPixFmt_BGR888, dstImg);
}

int32_t zivColorRGB888toI420u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_planar420<ShortSet, rgb888>(srcImg, dstImg, zivPixFmt_RGB888, dstImg);
}

// The tail never moves its chroma position and writes V and then U to the one byte there: it keeps the U of the row's last even
// column. Chroma rows step by the pitch of luma.
int32_t zivColorRGB888toNV21u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_NV21, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i < dstImg->height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* luma = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        uint8_t* chroma = row_at(dstImg->plane[1], i >> 1, dstImg->pitch[0]);
        const bool has_chroma = i % 2 == 0;
        if (has_chroma) convert_pair_blocks<ShortSet, rgb888, PairOrder::vu>(src, luma, chroma, blocked);
        else convert_luma_blocks<ShortSet, rgb888>(src, luma, blocked);
        for (ptrdiff_t j = blocked; j < width; j++) {
            const Pixel p = load_pixel<rgb888>(src + 3 * j);
            luma[j] = static_cast<uint8_t>(ShortSet::y(p));
            if (has_chroma && j % 2 == 0) chroma[blocked] = static_cast<uint8_t>(ShortSet::u(p));
        }
    }
    return zivStatus_OK;
}

// The tail shifts V by 4 where the blocks shift by 7.
int32_t zivColorRGB888toNV12u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_NV12, both_2x2)) return status;
    using TailSet = TruncatedSet<9, 4, 91, 4>;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i < dstImg->height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* luma = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        uint8_t* chroma = row_at(dstImg->plane[1], i >> 1, dstImg->pitch[1]);
        const bool has_chroma = i % 2 == 0;
        if (has_chroma) convert_pair_blocks<ShortSet, rgb888, PairOrder::uv>(src, luma, chroma, blocked);
        else convert_luma_blocks<ShortSet, rgb888>(src, luma, blocked);
        for (ptrdiff_t j = blocked; j < width; j++) {
            const Pixel p = load_pixel<rgb888>(src + 3 * j);
            luma[j] = static_cast<uint8_t>(TailSet::y(p));
            if (!has_chroma || j % 2) continue;
            chroma[j] = static_cast<uint8_t>(TailSet::u(p));
            chroma[j + 1] = static_cast<uint8_t>(TailSet::v(p));
        }
    }
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
