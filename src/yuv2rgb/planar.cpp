// SPDX-License-Identifier: MIT
// I420 and YV12 to RGB. I420 goes two rows a pass, like the semi-planar kernels; YV12 converts every row and every column.
#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// ---- I420: blocks of 16 columns, then column pairs. An odd last row or column stays unwritten. ----

namespace {

ZIV_INLINE PlanarChroma i420_chroma_at(const Image* srcImg, ptrdiff_t row) {
    return {row_at_wrapped(srcImg->plane[1], row, srcImg->pitch[1]), row_at_wrapped(srcImg->plane[2], row, srcImg->pitch[2])};
}

template <Rgb order>
ZIV_INLINE int32_t i420_to_rgb(const Image* srcImg, const Image* dstImg, uint32_t destination, uint8_t alpha) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_I420, destination, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    constexpr int bytes = pixel_bytes<order>;
    for_row_pairs<bytes>(srcImg, dstImg, [=](auto store_order, RowPair rows, ptrdiff_t chroma_row) ZIV_INLINE_BODY {
        const PlanarChroma chroma = i420_chroma_at(srcImg, chroma_row);
        convert_blocks<SetT5, order>(store_order, rows, chroma, blocked, alpha);
        convert_tail<SetT5, order>(rows, chroma, blocked, width, alpha);
    });
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorI420toRGB888u8(const Image* srcImg, const Image* dstImg) {
    return i420_to_rgb<Rgb::rgb>(srcImg, dstImg, zivPixFmt_RGB888, 0);
}

int32_t zivColorI420toBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return i420_to_rgb<Rgb::bgra>(srcImg, dstImg, zivPixFmt_BGRA8888, alpha);
}

int32_t zivColorI420toRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return i420_to_rgb<Rgb::rgba>(srcImg, dstImg, zivPixFmt_RGBA8888, alpha);
}

// The tail's luma runs ahead: two columns at its first pass and two more with each, up to W - (blocked columns) bytes past the
// row, where it takes whatever stands there.
int32_t zivColorI420toBGR888u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_I420, zivPixFmt_BGR888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for_row_pairs<3>(srcImg, dstImg, [=](auto store_order, RowPair rows, ptrdiff_t chroma_row) ZIV_INLINE_BODY {
        const PlanarChroma chroma = i420_chroma_at(srcImg, chroma_row);
        convert_blocks<SetQ15, Rgb::bgr>(store_order, rows, chroma, blocked, 0);
        for (ptrdiff_t j = blocked, ahead = blocked + 2; j <= width - 2; j += 2, ahead += 4)
            store_pixels_2x2<3>(rows, j, load_luma_2x2(rows, ahead), colour_terms<SetQ15>(chroma.u(j), chroma.v(j)),
                                [](uint8_t* p, Colour colour) ZIV_INLINE_BODY { store_clamped<Rgb::bgr>(p, colour, 0); });
    });
    return zivStatus_OK;
}

// ---- YV12: blocks of 16 columns, then single columns ----

namespace {

ZIV_INLINE PlanarChroma yv12_chroma_at(const Image* srcImg, ptrdiff_t row) {
    return {row_at(srcImg->plane[2], row, srcImg->pitch[2]), row_at(srcImg->plane[1], row, srcImg->pitch[1])};
}

}  // namespace

// Two rows a pass where there are two, and where the destination's do not overlap: of those that do the lower one stays. The
// tail never reads V: red is luma, and green lacks the share of V.
int32_t zivColorYV12toBGR888u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_YV12, zivPixFmt_BGR888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, height = dstImg->height;
    const ptrdiff_t blocked = blocked_columns<16>(width);
    const bool apart = dstImg->pitch[0] >= 3 * width || dstImg->pitch[0] <= -3 * width;
    for (ptrdiff_t i = 0, rows_done; i < height; i += rows_done) {
        const PlanarChroma chroma = yv12_chroma_at(srcImg, i >> 1);
        const auto convert_tail_of_row = [&](const uint8_t* luma, uint8_t* dst) ZIV_INLINE_BODY {
            for (ptrdiff_t j = blocked; j < width; j++)
                store_clamped<Rgb::bgr>(dst + 3 * j, luma[j] + colour_terms<SetT5>(chroma.u(j), 0), 0);
        };
        const RowPair rows{row_at(srcImg->plane[0], i, srcImg->pitch[0]), row_at(srcImg->plane[0], i + 1, srcImg->pitch[0]),
                           row_at(dstImg->plane[0], i, dstImg->pitch[0]), row_at(dstImg->plane[0], i + 1, dstImg->pitch[0])};
        rows_done = apart && i + 1 < height ? 2 : 1;
        if (rows_done == 2) {
            convert_blocks<SetT5, Rgb::bgr>(StepOrder{}, rows, chroma, blocked, 0);
            convert_tail_of_row(rows.luma0, rows.dst0);
            convert_tail_of_row(rows.luma1, rows.dst1);
        } else {
            convert_row_blocks<SetT5, Rgb::bgr>(rows.luma0, chroma, rows.dst0, blocked, 0);
            convert_tail_of_row(rows.luma0, rows.dst0);
        }
    }
    return zivStatus_OK;
}

// Every source row goes to the destination's row 1, so that only the last one is left to see: it alone is converted.
int32_t zivColorYV12toRGB888u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_YV12, zivPixFmt_RGB888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, last = ptrdiff_t{dstImg->height} - 1;
    const ptrdiff_t blocked = blocked_columns<16>(width);
    const uint8_t* luma = row_at(srcImg->plane[0], last, srcImg->pitch[0]);
    const PlanarChroma chroma = yv12_chroma_at(srcImg, last >> 1);
    uint8_t* dst = row_at(dstImg->plane[0], 1, dstImg->pitch[0]);
    convert_row_blocks<SetT5, Rgb::rgb>(luma, chroma, dst, blocked, 0);
    for (ptrdiff_t j = blocked; j < width; j++)
        store_clamped<Rgb::rgb>(dst + 3 * j, luma[j] + colour_terms<SetT5>(chroma.u(j), chroma.v(j)), 0);
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
