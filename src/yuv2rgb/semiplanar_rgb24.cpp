// SPDX-License-Identifier: MIT
// NV21 and NV12 to 24-bit RGB. Two rows a pass, so that a chroma pair is turned into terms once for its four pixels; blocks of
// 16 columns, then a tail of column pairs. An odd last row or column stays unwritten.
#include "yuv2rgb/rows.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

namespace {

template <PairOrder order>
int32_t semiplanar_to_bgr(const Image* srcImg, const Image* dstImg, uint32_t source) {
    if (const int32_t status = check(srcImg, dstImg, source, zivPixFmt_BGR888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for_row_pairs<3>(srcImg, dstImg, [=](auto store_order, RowPair rows, ptrdiff_t chroma_row) ZIV_INLINE_BODY {
        const PairedChroma<order> chroma{row_at_wrapped(srcImg->plane[1], chroma_row, srcImg->pitch[1])};
        convert_blocks<SetQ15, Rgb::bgr>(store_order, rows, chroma, blocked, 0);
        convert_tail<SetQ15, Rgb::bgr>(rows, chroma, blocked, width, 0);
    });
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorNV12toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return semiplanar_to_bgr<PairOrder::uv>(srcImg, dstImg, zivPixFmt_NV12);
}

int32_t zivColorNV21toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return semiplanar_to_bgr<PairOrder::vu>(srcImg, dstImg, zivPixFmt_NV21);
}

// The tail stops one pair early, uses the full weight of u in green where the blocks use half, and stores blue first and red
// last, each with its lower test taken from the other.
int32_t zivColorNV21toRGB888u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_RGB888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, blocked = blocked_columns<16>(width);
    for_row_pairs<3>(srcImg, dstImg, [=](auto store_order, RowPair rows, ptrdiff_t chroma_row) ZIV_INLINE_BODY {
        const PairedChroma<PairOrder::vu> chroma{row_at_wrapped(srcImg->plane[1], chroma_row, srcImg->pitch[1])};
        convert_blocks<SetT5HalfGreen, Rgb::rgb>(store_order, rows, chroma, blocked, 0);
        for (ptrdiff_t j = blocked; j < width - 2; j += 2)
            store_pixels_2x2<3>(rows, j, load_luma_2x2(rows, j), colour_terms<SetT5>(chroma.u(j), chroma.v(j)),
                                [](uint8_t* p, Colour colour) ZIV_INLINE_BODY {
                                    p[0] = clamp_crossed(colour.b, colour.r);
                                    p[1] = static_cast<uint8_t>(clamp_byte(colour.g));
                                    p[2] = clamp_crossed(colour.r, colour.b);
                                });
    });
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
