// NV21 and NV12 to 24-bit RGB. Two rows a pass, so that a chroma pair is turned into terms once for its four pixels; blocks of
// 16 columns, then a tail of column pairs. An odd last row or column stays unwritten.
#include "yuv2rgb/terms.h"

namespace zivcolor::ZIVCOLOR_TARGET {

enum class PairOrder { uv, vu };
enum class Rgb { rgb, bgr };

// The blocked columns of a pair of rows. Reads and writes exactly these columns.
template <class Set, PairOrder pair_order, Rgb channel_order>
ZIV_INLINE void convert_blocks(const uint8_t* luma0, const uint8_t* luma1, const uint8_t* chroma, uint8_t* dst0, uint8_t* dst1,
                               ptrdiff_t columns) {
    for_steps(columns, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        constexpr int N = step.value;
        const ChromaPairs<N> pairs = load_pairs<N>(chroma + j);
        const ChromaTerms<N> d = pair_order == PairOrder::uv ? Set::template terms<N>(pairs.first, pairs.second)
                                                             : Set::template terms<N>(pairs.second, pairs.first);
        const PixelTerms3<N> terms = channel_order == Rgb::rgb ? pixel_terms<N>(d.r, d.g, d.b) : pixel_terms<N>(d.b, d.g, d.r);
        store_pixels<N>(dst0 + 3 * j, load<N>(luma0 + j), terms);
        store_pixels<N>(dst1 + 3 * j, load<N>(luma1 + j), terms);
    });
}

template <PairOrder order>
int32_t semiplanar_to_bgr(const Image* srcImg, const Image* dstImg, uint32_t source) {
    if (const int32_t status = check(srcImg, dstImg, source, zivPixFmt_BGR888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, height = dstImg->height;
    const ptrdiff_t blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i <= height - 2; i += 2) {
        const uint8_t* luma0 = row_at_wrapped(srcImg->plane[0], i, srcImg->pitch[0]);
        const uint8_t* luma1 = luma0 + srcImg->pitch[0];
        const uint8_t* chroma = row_at_wrapped(srcImg->plane[1], i >> 1, srcImg->pitch[1]);
        uint8_t* dst0 = row_at_wrapped(dstImg->plane[0], i, dstImg->pitch[0]);
        uint8_t* dst1 = dst0 + dstImg->pitch[0];
        convert_blocks<SetQ15, order, Rgb::bgr>(luma0, luma1, chroma, dst0, dst1, blocked);
        for (ptrdiff_t j = blocked; j <= width - 2; j += 2) {
            const int u = chroma[j + (order == PairOrder::vu)] - 128, v = chroma[j + (order == PairOrder::uv)] - 128;
            const int d[3] = {SetQ15::b(u, v), SetQ15::g(u, v), SetQ15::r(u, v)};
            const int luma[4] = {luma0[j], luma0[j + 1], luma1[j], luma1[j + 1]};
            uint8_t* const pixel[4] = {dst0 + 3 * j, dst0 + 3 * j + 3, dst1 + 3 * j, dst1 + 3 * j + 3};
            for (int p = 0; p < 4; p++)
                for (int k = 0; k < 3; k++) pixel[p][k] = static_cast<uint8_t>(clamp_byte(luma[p] + d[k]));
        }
    }
    return zivStatus_OK;
}

int32_t zivColorNV12toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return semiplanar_to_bgr<PairOrder::uv>(srcImg, dstImg, zivPixFmt_NV12);
}

int32_t zivColorNV21toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return semiplanar_to_bgr<PairOrder::vu>(srcImg, dstImg, zivPixFmt_NV21);
}

// The tail stops one pair early, uses the full weight of u in green where the blocks use half, and stores blue first and red
// last, each with its lower test taken from the other; what passes both tests is cut to 8 bits.
int32_t zivColorNV21toRGB888u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_NV21, zivPixFmt_RGB888, both_2x2)) return status;
    const ptrdiff_t width = dstImg->width, height = dstImg->height;
    const ptrdiff_t blocked = blocked_columns<16>(width);
    for (ptrdiff_t i = 0; i <= height - 2; i += 2) {
        const uint8_t* luma0 = row_at_wrapped(srcImg->plane[0], i, srcImg->pitch[0]);
        const uint8_t* luma1 = luma0 + srcImg->pitch[0];
        const uint8_t* chroma = row_at_wrapped(srcImg->plane[1], i >> 1, srcImg->pitch[1]);
        uint8_t* dst0 = row_at_wrapped(dstImg->plane[0], i, dstImg->pitch[0]);
        uint8_t* dst1 = dst0 + dstImg->pitch[0];
        convert_blocks<SetT5HalfGreen, PairOrder::vu, Rgb::rgb>(luma0, luma1, chroma, dst0, dst1, blocked);
        for (ptrdiff_t j = blocked; j < width - 2; j += 2) {
            const int v = chroma[j] - 128, u = chroma[j + 1] - 128;
            const int luma[4] = {luma0[j], luma0[j + 1], luma1[j], luma1[j + 1]};
            uint8_t* const pixel[4] = {dst0 + 3 * j, dst0 + 3 * j + 3, dst1 + 3 * j, dst1 + 3 * j + 3};
            for (int p = 0; p < 4; p++) {
                const int r = luma[p] + SetT5::r(u, v), b = luma[p] + SetT5::b(u, v);
                pixel[p][0] = static_cast<uint8_t>(r < 0 ? 0 : b > 255 ? 255 : b);
                pixel[p][1] = static_cast<uint8_t>(clamp_byte(luma[p] + SetT5::g(u, v)));
                pixel[p][2] = static_cast<uint8_t>(b < 0 ? 0 : r > 255 ? 255 : r);
            }
        }
    }
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
