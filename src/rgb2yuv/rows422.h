// SPDX-License-Identifier: MIT
// Rows of RGB to packed 4:2:2. Every row has its own chroma, from its even columns. Blocks of 16 columns, then pairs of pixels;
// an odd width reads the pixel past the row and writes its luma, two bytes past the row.
#pragma once

#include "rgb2yuv/luma_chroma.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// Where the four bytes of a pair of pixels stand.
struct PackedLayout {
    int y0, u, v;
    static constexpr int second_luma = 2;
};
inline constexpr PackedLayout yuyv{0, 1, 3}, yvyu{0, 3, 1}, uyvy{1, 0, 2}, vyuy{1, 2, 0};

template <class Set, PixelLayout in, PackedLayout out>
int32_t rgb_to_packed422(const Image* srcImg, const Image* dstImg, uint32_t source, uint32_t destination) {
    if (const int32_t status = check(srcImg, dstImg, source, destination, both_2x1)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i < dstImg->height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* dst = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        for_column_steps(blocked, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
            constexpr PairOrder order = out.u < out.v ? PairOrder::uv : PairOrder::vu;
            const auto pixels = load_columns<in, step.value>(src + in.bytes * j);
            const auto weighed = Set::template weigh<in>(pixels);
            const auto chroma_pairs = Set::template chroma<in>(pixels, weighed);
            store_packed422<out.y0 == 0, c2_first<in, order>>(dst + 2 * j, Set::luma(weighed), chroma_pairs);
        });
        for (ptrdiff_t j = blocked; j < width; j += 2) {
            const Pixel first = load_pixel<in>(src + in.bytes * j), second = load_pixel<in>(src + in.bytes * (j + 1));
            uint8_t* pair = dst + 2 * j;
            pair[out.y0] = static_cast<uint8_t>(Set::y(first));
            pair[out.u] = static_cast<uint8_t>(Set::u(first));
            pair[out.y0 + out.second_luma] = static_cast<uint8_t>(Set::y(second));
            pair[out.v] = static_cast<uint8_t>(Set::v(first));
        }
    }
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
