// SPDX-License-Identifier: MIT
// 32-bit RGB to NV12 and I420 by the short set. Alpha is not looked at.
#include "rgb2yuv/rows420.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// In a block of 16 columns the luma of columns 8 to 15 takes its blue from columns 0 to 7. Chroma takes its own blue, and that
// luma; the tail's luma takes its own blue.
int32_t zivColorBGRA8888toNV12u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_semiplanar420<ShortSetBlueOfFirst8, bgra8888, PairOrder::uv>(srcImg, dstImg, zivPixFmt_BGRA8888,
                                                                               zivPixFmt_NV12);
}

int32_t zivColorRGBA8888toNV12u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_semiplanar420<ShortSetBlueOfFirst8, rgba8888, PairOrder::uv>(srcImg, dstImg, zivPixFmt_RGBA8888,
                                                                               zivPixFmt_NV12);
}

int32_t zivColorBGRA8888toI420u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_planar420<ShortSet, bgra8888>(srcImg, dstImg, zivPixFmt_BGRA8888, dstImg);
}

// The width is that of the source.
int32_t zivColorRGBA8888toI420u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_planar420<ShortSet, rgba8888>(srcImg, dstImg, zivPixFmt_RGBA8888, srcImg);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
