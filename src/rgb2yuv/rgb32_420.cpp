// 32-bit RGB to NV21 by the float set, to NV12 and I420 by the short one. Alpha is not looked at.
#include "rgb2yuv/rows420.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// 0.299 R + 0.587 G + 0.114 B, -0.1678 R - 0.3313 G + 0.5 B + 128, 0.5 R - 0.4187 G - 0.0813 B + 128: binary32 in blocks, every
// product and every sum rounded by itself.
inline constexpr FloatWeights float_y{0.299f, 0.587f, 0.114f}, float_u{-0.1678f, -0.3313f, 0.5f},
    float_v{0.5f, -0.4187f, -0.0813f};

// binary64 in the tail; luma alone is rounded to binary32 before it is cut.
struct FloatTailSet {
    static int y(Pixel p) {
        return clamp_byte(static_cast<int>(static_cast<float>(p.b * 0.114 + (p.g * 0.587 + p.r * 0.299))));
    }
    static int u(Pixel p) { return clamp_byte(static_cast<int>(p.b * 0.5 + (p.g * -0.3313 - p.r * 0.1678)) + 128); }
    static int v(Pixel p) { return clamp_byte(static_cast<int>((p.r * 0.5 - p.g * 0.4187) - p.b * 0.0813) + 128); }
};

// One step of the float set's blocks.
template <int C, PixelLayout in, bool has_chroma>
ZIV_INLINE void convert_float_columns(const uint8_t* src, uint8_t* luma, uint8_t* chroma) {
    const Pixels<C, 4> pixels = load_pixels<C, 4>(src);
    const Luma<C> y = luma_f32<in.red>(pixels, float_y);
    if constexpr (has_chroma) {
        const U8<C> pairs = chroma_pairs_f32<in.red>(pixels, float_v, float_u);
        store_luma(luma, y);
        store(chroma, pairs);
    } else {
        store_luma(luma, y);
    }
}

// The blocked columns of a row: blocks of 8 columns, 2 or more of them. What is left of them at the end is done by a last step
// of 16 columns that repeats those before.
template <PixelLayout in, bool has_chroma>
ZIV_INLINE void convert_float_blocks(const uint8_t* src, uint8_t* luma, uint8_t* chroma, ptrdiff_t columns) {
    const ptrdiff_t whole = blocked_columns<16>(columns);
    for_steps(whole, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        convert_float_columns<step.value, in, has_chroma>(src + 4 * j, luma + j, chroma + j);
    });
    if (const ptrdiff_t j = columns - 16; whole < columns)
        convert_float_columns<16, in, has_chroma>(src + 4 * j, luma + j, chroma + j);
}

// A single block.
template <PixelLayout in, bool has_chroma>
ZIV_INLINE void convert_float_block_of_8(const uint8_t* src, uint8_t* luma, uint8_t* chroma) {
    uint8_t pixels[64] = {}, y[16], pairs[16];
    __builtin_memcpy(pixels, src, 32);
    convert_float_columns<16, in, has_chroma>(pixels, y, pairs);
    __builtin_memcpy(luma, y, 8);
    if (has_chroma) __builtin_memcpy(chroma, pairs, 8);
}

// A row never ends on a block: 1 to 8 columns are left to the tail.
template <PixelLayout in>
int32_t rgb_to_nv21_by_float(const Image* srcImg, const Image* dstImg, uint32_t source) {
    if (const int32_t status = check(srcImg, dstImg, source, zivPixFmt_NV21, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = (width - 1) / 8 * 8;
    for (ptrdiff_t i = 0; i < dstImg->height; i++) {
        const uint8_t* src = row_at(srcImg->plane[0], i, srcImg->pitch[0]);
        uint8_t* luma = row_at(dstImg->plane[0], i, dstImg->pitch[0]);
        uint8_t* chroma = row_at(dstImg->plane[1], i >> 1, dstImg->pitch[1]);
        const bool has_chroma = i % 2 == 0;
        if (blocked >= 16) {
            if (has_chroma) convert_float_blocks<in, true>(src, luma, chroma, blocked);
            else convert_float_blocks<in, false>(src, luma, chroma, blocked);
        } else if (blocked) {
            if (has_chroma) convert_float_block_of_8<in, true>(src, luma, chroma);
            else convert_float_block_of_8<in, false>(src, luma, chroma);
        }
        for (ptrdiff_t j = blocked; j < width; j++) {
            const Pixel p = load_pixel<in>(src + 4 * j);
            luma[j] = static_cast<uint8_t>(FloatTailSet::y(p));
            if (!has_chroma || j % 2) continue;
            chroma[j] = static_cast<uint8_t>(FloatTailSet::v(p));
            chroma[j + 1] = static_cast<uint8_t>(FloatTailSet::u(p));
        }
    }
    return zivStatus_OK;
}

int32_t zivColorBGRA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_nv21_by_float<bgra8888>(srcImg, dstImg, zivPixFmt_BGRA8888);
}

int32_t zivColorRGBA8888toNV21u8(const Image* srcImg, const Image* dstImg) {
    return rgb_to_nv21_by_float<rgba8888>(srcImg, dstImg, zivPixFmt_RGBA8888);
}

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

}  // namespace zivcolor::ZIVCOLOR_TARGET
