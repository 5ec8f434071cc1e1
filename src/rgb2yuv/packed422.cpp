// SPDX-License-Identifier: MIT
// 24-bit RGB to packed 4:2:2.
#include "rgb2yuv/rows422.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

int32_t zivColorRGB888toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, rgb888, yuyv>(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_YUYV);
}

// The one member of the fine set.
int32_t zivColorBGR888toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<FineRoundedSet, bgr888, yuyv>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_YUYV);
}

int32_t zivColorRGB888toYVYUu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, rgb888, yvyu>(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_YVYU);
}

int32_t zivColorBGR888toYVYUu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, bgr888, yvyu>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_YVYU);
}

int32_t zivColorRGB888toUYVYu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, rgb888, uyvy>(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_UYVY);
}

int32_t zivColorBGR888toUYVYu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, bgr888, uyvy>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_UYVY);
}

int32_t zivColorRGB888toVYUYu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, rgb888, vyuy>(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_VYUY);
}

int32_t zivColorBGR888toVYUYu8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_packed422<ShortSet, bgr888, vyuy>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_VYUY);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
