// 32-bit RGB to NV21 by the float set: 0.299 R + 0.587 G + 0.114 B, -0.1678 R - 0.3313 G + 0.5 B + 128 and
// 0.5 R - 0.4187 G - 0.0813 B + 128, in binary32 in the blocks and in binary64 in the tail. Alpha is not looked at.
#include "core/lanes_rgb_f32.h"
#include "rgb2yuv/luma_chroma.h"

namespace zivcolor::ZIVCOLOR_TARGET {

inline constexpr FloatWeights weights_y{0.299f, 0.587f, 0.114f};
inline constexpr FloatWeights weights_u{-0.1678f, -0.3313f, 0.5f}, weights_v{0.5f, -0.4187f, -0.0813f};

// N columns of a block.
template <int N, PixelLayout in, bool has_chroma>
ZIV_INLINE void convert_columns(const uint8_t* src, uint8_t* luma, uint8_t* chroma) {
    const FourQuads<N> pixels = load_four_quads<N>(src);
    store(luma, luma_f32<N, in.red>(pixels, weights_y));
    if (has_chroma) store(chroma, chroma_pairs_f32<N, in.red>(pixels, weights_v, weights_u));
}

// The blocked columns of a row: blocks of 8 columns, 2 or more of them. What the widest steps leave over is done by a last step
// that repeats columns before it.
template <PixelLayout in, bool has_chroma, int N = widest>
ZIV_INLINE void convert_blocks(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t columns) {
    if constexpr (N > 16)
        if (columns < N) return convert_blocks<in, has_chroma, N / 2>(src, luma, chroma, columns);
    ptrdiff_t j = 0;
    for (; j + N <= columns; j += N) convert_columns<N, in, has_chroma>(src + 4 * j, luma + j, chroma + j);
    if (j == columns) return;
    j = columns - N;
    convert_columns<N, in, has_chroma>(src + 4 * j, luma + j, chroma + j);
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

// ---- The tail, four pixels at a time. Luma alone is rounded to binary32 before it is cut. ----

typedef uint32_t FourPixels __attribute__((vector_size(16)));
typedef int32_t FourIntegers __attribute__((vector_size(16)));
typedef float FourFloats __attribute__((vector_size(16)));
typedef double FourDoubles __attribute__((vector_size(32)));

// The bytes of a pixel stand one place up, the alpha of the pixel before it below them.
struct FourColours {
    FourDoubles r, g, b;
};
template <PixelLayout in>
ZIV_INLINE FourColours to_double(FourPixels pixels) {
    FourColours c;
    c.r = __builtin_convertvector((FourIntegers)((pixels >> (8 * in.red + 8)) & 0xFF), FourDoubles);
    c.g = __builtin_convertvector((FourIntegers)((pixels >> 16) & 0xFF), FourDoubles);
    c.b = __builtin_convertvector((FourIntegers)((pixels >> (8 * in.blue + 8)) & 0xFF), FourDoubles);
    return c;
}
ZIV_INLINE FourIntegers tail_luma(const FourColours& c) {
    const FourDoubles luma = c.b * 0.114 + (c.g * 0.587 + c.r * 0.299);
    return __builtin_convertvector(__builtin_convertvector(luma, FourFloats), FourIntegers);
}
// V below U, in 16 bits.
ZIV_INLINE FourIntegers tail_chroma(const FourColours& c) {
    const FourDoubles u = c.b * 0.5 + (c.g * -0.3313 - c.r * 0.1678);
    const FourDoubles v = (c.r * 0.5 - c.g * 0.4187) - c.b * 0.0813;
    return (__builtin_convertvector(v, FourIntegers) + 128) | (__builtin_convertvector(u, FourIntegers) + 128) << 8;
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
    FourPixels pixels[2];
    __builtin_memcpy(pixels, src - 1, 32);
    uint8_t y[8];
    for (int k = 0; k < 2; k++) {
        const FourIntegers sum = tail_luma(to_double<in>(pixels[k]));
        for (int i = 0; i < 4; i++) y[4 * k + i] = static_cast<uint8_t>(sum[i]);
    }
    if constexpr (has_chroma) {
        // An odd count begins at an odd one of the 8 columns.
        const FourPixels even = count % 2 ? __builtin_shufflevector(pixels[0], pixels[1], 1, 3, 5, 7)
                                          : __builtin_shufflevector(pixels[0], pixels[1], 0, 2, 4, 6);
        const FourIntegers sums = tail_chroma(to_double<in>(even));
        uint8_t pairs[8];
        for (int i = 0; i < 4; i++)
            pairs[2 * i] = static_cast<uint8_t>(sums[i]), pairs[2 * i + 1] = static_cast<uint8_t>(sums[i] >> 8);
        copy_last(luma, y, count);
        copy_last(chroma, pairs, (count + 1) / 2 * 2);
    } else {
        copy_last(luma, y, count);
    }
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
    for (ptrdiff_t i = 0; i < dst.height; i++) {
        const uint8_t* pixels = row_at(src.plane[0], i, src.pitch[0]);
        uint8_t* luma = row_at(dst.plane[0], i, dst.pitch[0]);
        uint8_t* chroma = row_at(dst.plane[1], i >> 1, dst.pitch[1]);
        if (i % 2 == 0) convert_row<in, true>(pixels, luma, chroma, dst.width);
        else convert_row<in, false>(pixels, luma, chroma, dst.width);
    }
    return zivStatus_OK;
}

int32_t zivColorBGRA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_nv21_by_float<bgra8888>(srcImg, dstImg, zivPixFmt_BGRA8888);
}

int32_t zivColorRGBA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_nv21_by_float<rgba8888>(srcImg, dstImg, zivPixFmt_RGBA8888);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
