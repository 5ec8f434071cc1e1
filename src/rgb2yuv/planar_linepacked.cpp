// RGB to planar 4:4:4 (YV24), planar 4:2:2 (I422H) and line-packed 4:2:2 (LPI422H). Every row has its own chroma. Luma is that
// of the short set in all of them.
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
