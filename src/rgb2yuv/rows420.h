// SPDX-License-Identifier: MIT
// One row of RGB to 4:2:0. Luma comes from every row, chroma from the even columns of the even rows alone: nothing is averaged.
// Blocks of 16 columns, then single pixels.
#pragma once

#include "rgb2yuv/luma_chroma.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// Only the widest vectors outrun the writing of luma.
template <int columns>
ZIV_INLINE void prefetch_luma(uint8_t* luma) {
    if constexpr (widest == 64) prefetch_writes<columns>(luma);
}

// The blocked columns of a row without chroma, of a row with chroma in pairs, and of a row with chroma in two planes. Each
// reads and writes exactly these columns.
template <class Set, PixelLayout in>
ZIV_INLINE void convert_luma_blocks(const uint8_t* src, uint8_t* luma, ptrdiff_t columns) {
    for_column_steps(columns, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        const auto pixels = load_columns<in, step.value>(src + in.bytes * j);
        prefetch_luma<step.value>(luma + j);
        store_luma(luma + j, Set::template luma_alone<in>(pixels));
    });
}
template <class Set, PixelLayout in, PairOrder order>
ZIV_INLINE void convert_pair_blocks(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t columns) {
    for_column_steps(columns, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        const auto pixels = load_columns<in, step.value>(src + in.bytes * j);
        prefetch_luma<step.value>(luma + j);
        const auto weighed = Set::template weigh<in>(pixels);
        const auto chroma_pairs = Set::template chroma<in>(pixels, weighed);
        store_luma(luma + j, Set::luma(weighed));
        store_pairs<c2_first<in, order>>(chroma + j, chroma_pairs);
    });
}
template <class Set, PixelLayout in>
ZIV_INLINE void convert_plane_blocks(const uint8_t* src, uint8_t* luma, uint8_t* u, uint8_t* v, ptrdiff_t columns) {
    uint8_t *const plane0 = in.blue == 0 ? u : v, *const plane2 = in.blue == 0 ? v : u;
    for_column_pair_steps(columns, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        const auto pixels = load_columns<in, step.value>(src + in.bytes * j);
        prefetch_luma<step.value>(luma + j);
        const auto weighed = Set::template weigh<in>(pixels);
        const auto chroma_pairs = Set::template chroma<in>(pixels, weighed);
        store_luma(luma + j, Set::luma(weighed));
        store_planes(plane0 + j / 2, plane2 + j / 2, chroma_pairs);
    });
}

// Whole rows whose tail does as the blocks do. An odd width writes a whole pair for its last column.
template <class Set, PixelLayout in, PairOrder order>
ZIV_INLINE void convert_pair_row(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t width, bool has_chroma) {
    const ptrdiff_t blocked = blocked_columns<16>(width);
    if (has_chroma) convert_pair_blocks<Set, in, order>(src, luma, chroma, blocked);
    else convert_luma_blocks<Set, in>(src, luma, blocked);
    for (ptrdiff_t j = blocked; j < width; j++) {
        const Pixel p = load_pixel<in>(src + in.bytes * j);
        luma[j] = static_cast<uint8_t>(Set::y(p));
        if (!has_chroma || j % 2) continue;
        chroma[j + (order == PairOrder::vu)] = static_cast<uint8_t>(Set::u(p));
        chroma[j + (order == PairOrder::uv)] = static_cast<uint8_t>(Set::v(p));
    }
}
template <class Set, PixelLayout in>
ZIV_INLINE void convert_plane_row(const uint8_t* src, uint8_t* luma, uint8_t* u, uint8_t* v, ptrdiff_t width, bool has_chroma) {
    const ptrdiff_t blocked = blocked_columns<16>(width);
    if (has_chroma) convert_plane_blocks<Set, in>(src, luma, u, v, blocked);
    else convert_luma_blocks<Set, in>(src, luma, blocked);
    for (ptrdiff_t j = blocked; j < width; j++) {
        const Pixel p = load_pixel<in>(src + in.bytes * j);
        luma[j] = static_cast<uint8_t>(Set::y(p));
        if (!has_chroma || j % 2) continue;
        u[j / 2] = static_cast<uint8_t>(Set::u(p));
        v[j / 2] = static_cast<uint8_t>(Set::v(p));
    }
}

// Whole pictures of such rows. The descriptors are copied: a store to a plane might change them for all that the compiler
// knows.
template <class Set, PixelLayout in, PairOrder order>
int32_t rgb_to_semiplanar420(const Image* srcImg, const Image* dstImg, uint32_t source, uint32_t destination) {
    if (const int32_t status = check(srcImg, dstImg, source, destination, both_2x2)) return status;
    const Image src = *srcImg, dst = *dstImg;
    for (ptrdiff_t i = 0; i < dst.height; i++)
        convert_pair_row<Set, in, order>(row_at(src.plane[0], i, src.pitch[0]), row_at(dst.plane[0], i, dst.pitch[0]),
                                         row_at(dst.plane[1], i >> 1, dst.pitch[1]), dst.width, i % 2 == 0);
    return zivStatus_OK;
}
template <class Set, PixelLayout in>
int32_t rgb_to_planar420(const Image* srcImg, const Image* dstImg, uint32_t source, const Image* width_of) {
    if (const int32_t status = check(srcImg, dstImg, source, zivPixFmt_I420, both_2x2)) return status;
    const Image src = *srcImg, dst = *dstImg;
    const ptrdiff_t width = width_of->width;
    for (ptrdiff_t i = 0; i < dst.height; i++)
        convert_plane_row<Set, in>(row_at(src.plane[0], i, src.pitch[0]), row_at(dst.plane[0], i, dst.pitch[0]),
                                   row_at(dst.plane[1], i >> 1, dst.pitch[1]), row_at(dst.plane[2], i >> 1, dst.pitch[2]),
                                   width, i % 2 == 0);
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
