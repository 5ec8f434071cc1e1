// SPDX-License-Identifier: MIT
// 32-bit RGB to NV21 by the float set: 0.299 R + 0.587 G + 0.114 B, -0.1678 R - 0.3313 G + 0.5 B + 128 and
// 0.5 R - 0.4187 G - 0.0813 B + 128, in binary32 in the blocks and in binary64 in the tail. Alpha is not looked at.
#include "rgb2yuv/float_set.h"
#if ZIV_HAS_SSE4_2
#include "rgb2yuv/near_rows.h"
#define ZIV_ROW_BODY __attribute__((noinline))  // rows go two at once, and seldom one by one
#else
#define ZIV_ROW_BODY ZIV_INLINE_BODY
#endif

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

namespace {

// N columns of a block.
template <int N, PixelLayout in, bool has_chroma, bool has_luma = true>
ZIV_INLINE void convert_columns(const uint8_t* src, uint8_t* luma, uint8_t* chroma) {
    const PixelVectors<N> pixels = load_pixel_vectors<N>(src);
    if (has_luma) store(luma, luma_f32<N, in.red>(pixels, weights_y));
    if (has_chroma) store(chroma, chroma_pairs_f32<N, in.red>(pixels, weights_v, weights_u));
}

template <PixelLayout in, bool has_chroma, int N>
ZIV_INLINE void convert_steps(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t columns) {
    ptrdiff_t j = 0;
    for (; j + N <= columns; j += N) convert_columns<N, in, has_chroma>(src + 4 * j, luma + j, chroma + j);
    if (j == columns) return;
    j = columns - N;
    convert_columns<N, in, has_chroma>(src + 4 * j, luma + j, chroma + j);
}

// The blocked columns of a row: blocks of 8 columns, 2 or more of them. What the widest steps leave over is done by a last step
// that repeats columns before it.
template <PixelLayout in, bool has_chroma, int N = widest>
ZIV_INLINE void convert_blocks(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t columns) {
    if constexpr (N > 16)
        if (columns < N) return convert_blocks<in, has_chroma, N / 2>(src, luma, chroma, columns);
    if constexpr (has_approximate_rows)
        store_approximated_row<in.red, has_chroma>(
            luma, chroma, src, columns, [=](ptrdiff_t j, bool y, bool uv) ZIV_INLINE_BODY {
                if (!uv) convert_columns<N, in, false>(src + 4 * j, luma + j, chroma + j);
                else if (!y) convert_columns<N, in, true, false>(src + 4 * j, luma + j, chroma + j);
                else convert_columns<N, in, true>(src + 4 * j, luma + j, chroma + j);
            });
    else convert_steps<in, has_chroma, N>(src, luma, chroma, columns);
}

// A single block.
template <PixelLayout in, bool has_chroma>
ZIV_INLINE void convert_block_of_8(const uint8_t* src, uint8_t* luma, uint8_t* chroma) {
    uint8_t pixels[64] = {}, y[16], pairs[16];
    __builtin_memcpy(pixels, src, 32);
    convert_columns<16, in, has_chroma>(pixels, y, pairs);
    __builtin_memcpy(luma, y, 8);
    if (has_chroma) __builtin_memcpy(chroma, pairs, 8);
}

// ---- The tail, four pixels at a time ----

typedef double FourDoubles __attribute__((vector_size(32)));

// The bytes of a pixel stand one place up, the alpha of the pixel before it below them.
template <PixelLayout in>
struct FourColours {
    S32<16> r, g, b;
    ZIV_INLINE explicit FourColours(U8<16> pixels)
        : r((S32<16>)((U32<16>)pixels >> (8 * in.red + 8)) & 0xFF),
          g((S32<16>)((U32<16>)pixels >> 16) & 0xFF),
          b((S32<16>)((U32<16>)pixels >> (8 * in.blue + 8)) & 0xFF) {}
};
// Luma is the binary64 sum rounded to binary32, then truncated: it lies on a whole number where the exact sum does, and so is
// the exact sum truncated, to which no approximate sum adds enough to tell.
template <PixelLayout in>
ZIV_INLINE S32<16> tail_luma(U8<16> pixels) {
    return approximate_sums<16, in.red>(repeat_green((U8<16>)((U32<16>)pixels >> 8)), approximate_y) >> approximate_y.scale;
}
// V below U, in 16 bits: binary64 sums that are truncated as they are.
template <PixelLayout in>
ZIV_INLINE S32<16> tail_chroma(U8<16> pixels) {
    const FourColours<in> c(pixels);
    const FourDoubles r = __builtin_convertvector(c.r, FourDoubles), g = __builtin_convertvector(c.g, FourDoubles),
                      b = __builtin_convertvector(c.b, FourDoubles);
    const FourDoubles u = b * 0.5 + (g * -0.3313 - r * 0.1678), v = (r * 0.5 - g * 0.4187) - b * 0.0813;
    return (__builtin_convertvector(v, S32<16>) + 128) | (__builtin_convertvector(u, S32<16>) + 128) << 8;
}

// The last 8 bytes of `from` but for those that the blocks have made.
ZIV_INLINE void copy_last(uint8_t* p, const uint8_t* from, ptrdiff_t bytes) {
    if (bytes == 8) __builtin_memcpy(p, from, 8);
    else
        for (ptrdiff_t k = 0; k < bytes; k++) p[k] = from[8 - bytes + k];
}

// The last 1 to 8 columns of a row, `src` being the first of 8 columns that end with the row. Of the pixels' bytes the alpha of
// the last one is not read, that of the one before the first is.
template <PixelLayout in, bool has_chroma>
ZIV_INLINE void convert_tail(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t count) {
    const U8<16> first = load<16>(src - 1), last = load<16>(src + 15);
    uint8_t y[16], pairs[16];
    const S32<16> y_first = tail_luma<in>(first), y_last = tail_luma<in>(last);
    store(y, narrow_lanes<16>(y_first, y_last, y_first, y_last));
    if constexpr (has_chroma) {
        // An odd count begins at an odd one of the 8 columns.
        const U32<16> a = (U32<16>)first, b = (U32<16>)last;
        const U32<16> even = count % 2 ? __builtin_shufflevector(a, b, 1, 3, 5, 7) : __builtin_shufflevector(a, b, 0, 2, 4, 6);
        const S32<16> sums = tail_chroma<in>((U8<16>)even);
        store(pairs, narrow_even_lanes<16>(sums, sums));
    }
    copy_last(luma, y, count);
    if constexpr (has_chroma) copy_last(chroma, pairs, (count + 1) / 2 * 2);
}

// Blocks of 8 columns from column j while j < width - 8: a row never ends on a block, 1 to 8 columns are left to the tail.
template <PixelLayout in, bool has_chroma>
ZIV_INLINE void convert_row(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t width) {
    if (width <= 8) {
        // No block: the tail works on a copy, which has a byte before it.
        uint8_t copy[36] = {};
        uint8_t* const first = copy + 4 + 4 * (8 - width);
        for (ptrdiff_t k = 0; k < 4 * width - 1; k++) first[k] = src[k];
        return convert_tail<in, has_chroma>(copy + 4, luma, chroma, width);
    }
    const ptrdiff_t blocked = (width - 1) / 8 * 8;
    if (blocked == 8) convert_block_of_8<in, has_chroma>(src, luma, chroma);
    else convert_blocks<in, has_chroma>(src, luma, chroma, blocked);
    convert_tail<in, has_chroma>(src + 4 * (width - 8), luma + blocked, chroma + blocked, width - blocked);
}

template <PixelLayout in>
int32_t rgb_to_nv21_by_float(const Image* srcImg, const Image* dstImg, uint32_t source) {
    if (const int32_t status = check(srcImg, dstImg, source, zivPixFmt_NV21, both_2x2)) return status;
    const Image src = *srcImg, dst = *dstImg;
    const auto convert_plain = [&](ptrdiff_t i) ZIV_ROW_BODY {
        const uint8_t* pixels = row_at(src.plane[0], i, src.pitch[0]);
        uint8_t* luma = row_at(dst.plane[0], i, dst.pitch[0]);
        uint8_t* chroma = row_at(dst.plane[1], i >> 1, dst.pitch[1]);
        if (i % 2 == 0) convert_row<in, true>(pixels, luma, chroma, dst.width);
        else convert_row<in, false>(pixels, luma, chroma, dst.width);
    };
#if ZIV_HAS_SSE4_2
    // Two rows at once, where the lower one does not overlap the upper.
    if (dst.width >= 16 && (dst.pitch[0] >= dst.width || dst.pitch[0] <= -dst.width)) {
        const NearImage image{src, dst, dst.width / 2 * 2, (dst.width - 1) / 8 * 8};
        if constexpr (widest > 32)
            if (dst.width >= 64) return convert_near_image<in, 64>(image, convert_plain), zivStatus_OK;
        if constexpr (widest > 16)
            if (dst.width >= 32) return convert_near_image<in, 32>(image, convert_plain), zivStatus_OK;
        convert_near_image<in, 16>(image, convert_plain);
        return zivStatus_OK;
    }
#endif
    for (ptrdiff_t i = 0; i < dst.height; i++) convert_plain(i);
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorBGRA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_nv21_by_float<bgra8888>(srcImg, dstImg, zivPixFmt_BGRA8888);
}

int32_t zivColorRGBA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_nv21_by_float<rgba8888>(srcImg, dstImg, zivPixFmt_RGBA8888);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
