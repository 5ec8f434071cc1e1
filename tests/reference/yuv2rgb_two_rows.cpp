// SPDX-License-Identifier: MIT
// YUV 4:2:0 to RGB, two rows of pixels and one of chroma at a time: blocks of 16 columns, then pairs of columns.
#include "reference/reference.h"
#include "reference/yuv2rgb.h"

namespace reference {
namespace {

using Set = Rgb (*)(int luma, int u, int v);
using ToBytes = ColourBytes (*)(Rgb pixel, Layout layout);

// One of two bytes takes its lower limit from the other channel; NV21 to RGB888.
ColourBytes crossed_blue_first(Rgb pixel, Layout) {
    ColourBytes bytes{};
    bytes.byte[0] = pixel.red < 0 ? 0 : pixel.blue > 255 ? 255 : pixel.blue;
    bytes.byte[1] = clamped(pixel.green);
    bytes.byte[2] = pixel.blue < 0 ? 0 : pixel.red > 255 ? 255 : pixel.red;
    return bytes;
}

// NV12 to BGRA8888.
ColourBytes crossed_red_first(Rgb pixel, Layout) {
    ColourBytes bytes{};
    bytes.byte[0] = pixel.blue < 0 ? 0 : pixel.red > 255 ? 255 : pixel.red;
    bytes.byte[1] = clamped(pixel.green);
    bytes.byte[2] = pixel.red < 0 ? 0 : pixel.blue > 255 ? 255 : pixel.blue;
    return bytes;
}

// What a tail does differently.
struct Tail {
    bool ends_early = false;    // runs while j < W - 2, not j <= W - 2
    bool crossed_rows = false;  // in its second column each row takes the other row's luma
    bool luma_ahead = false;    // its luma starts 2 columns ahead and runs twice as fast
};

// Products of row and pitch wrap in signed 32 bits.
uint8_t* wrapped_row_of(const Image& image, int plane, int64_t row) {
    const uint32_t product = static_cast<uint32_t>(row) * static_cast<uint32_t>(image.pitch[plane]);
    return image.plane[plane] + static_cast<int32_t>(product);
}

template <uint32_t source, uint32_t destination, Set block_set, Set tail_set, ToBytes tail_bytes = regular_bytes,
          Tail trait = Tail{}>
int32_t convert(const Image* srcImg, const Image* dstImg, uint8_t alpha = 0) {
    const int32_t status = check(srcImg, dstImg, source, destination, 2, 2);
    if (status != zivStatus_OK) return status;
    constexpr Layout layout = layout_of(destination);
    constexpr bool planar = source == zivPixFmt_I420;
    constexpr int chroma_step = planar ? 1 : 2;
    const int64_t width = dstImg->width, height = dstImg->height;

    for (int64_t i = 0; i <= height - 2; i += 2) {
        uint8_t* dst0 = wrapped_row_of(*dstImg, 0, i);
        uint8_t* dst1 = dst0 + dstImg->pitch[0];
        const uint8_t* upper = wrapped_row_of(*srcImg, 0, i);
        const uint8_t* lower = upper + srcImg->pitch[0];
        const uint8_t* first = wrapped_row_of(*srcImg, 1, i >> 1);
        const uint8_t* second = planar ? wrapped_row_of(*srcImg, 2, i >> 1) : first + 1;
        const uint8_t* u = source == zivPixFmt_NV21 ? second : first;
        const uint8_t* v = source == zivPixFmt_NV21 ? first : second;

        int64_t j = 0;
        for (; j <= width - 16; j += 16) {
            int luma0[16], luma1[16], chroma_u[8], chroma_v[8];
            for (int n = 0; n < 16; n++) {
                luma0[n] = get(upper + n);
                luma1[n] = get(lower + n);
            }
            for (int n = 0; n < 8; n++) {
                chroma_u[n] = get(u + n * chroma_step) - 128;
                chroma_v[n] = get(v + n * chroma_step) - 128;
            }
            for (int half = 0; half < 16; half += 8) {
                for (int n = half; n < half + 8; n++) {
                    const Rgb pixel = block_set(luma0[n], chroma_u[n >> 1], chroma_v[n >> 1]);
                    put_pixel(dst0 + n * layout.size, regular_bytes(pixel, layout), layout, alpha);
                }
                for (int n = half; n < half + 8; n++) {
                    const Rgb pixel = block_set(luma1[n], chroma_u[n >> 1], chroma_v[n >> 1]);
                    put_pixel(dst1 + n * layout.size, regular_bytes(pixel, layout), layout, alpha);
                }
            }
            upper += 16, lower += 16;
            u += 8 * chroma_step, v += 8 * chroma_step;
            dst0 += 16 * layout.size, dst1 += 16 * layout.size;
        }

        if (trait.luma_ahead) upper += 2, lower += 2;
        for (; trait.ends_early ? j < width - 2 : j <= width - 2; j += 2) {
            int luma00 = get(upper), luma01 = get(upper + 1), luma10 = get(lower), luma11 = get(lower + 1);
            if (trait.crossed_rows) {
                const int other = luma01;
                luma01 = luma11;
                luma11 = other;
            }
            const int chroma_u = get(u) - 128, chroma_v = get(v) - 128;
            const auto tail = [&](uint8_t* p, int luma) {
                put_pixel(p, tail_bytes(tail_set(luma, chroma_u, chroma_v), layout), layout, alpha);
            };
            tail(dst0, luma00);
            tail(dst0 + layout.size, luma01);
            tail(dst1, luma10);
            tail(dst1 + layout.size, luma11);
            upper += trait.luma_ahead ? 4 : 2, lower += trait.luma_ahead ? 4 : 2;
            u += chroma_step, v += chroma_step;
            dst0 += 2 * layout.size, dst1 += 2 * layout.size;
        }
    }
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorNV12toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return convert<zivPixFmt_NV12, zivPixFmt_BGR888, set_q15, set_q15>(srcImg, dstImg);
}

int32_t zivColorNV21toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return convert<zivPixFmt_NV21, zivPixFmt_BGR888, set_q15, set_q15>(srcImg, dstImg);
}

int32_t zivColorNV21toRGB888u8(const Image* srcImg, const Image* dstImg) {
    return convert<zivPixFmt_NV21, zivPixFmt_RGB888, set_t5h, set_t5, crossed_blue_first, Tail{.ends_early = true}>(srcImg,
                                                                                                                    dstImg);
}

int32_t zivColorNV21toBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return convert<zivPixFmt_NV21, zivPixFmt_BGRA8888, set_f32_block, set_f32_tail>(srcImg, dstImg, alpha);
}

int32_t zivColorNV21toRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return convert<zivPixFmt_NV21, zivPixFmt_RGBA8888, set_r5, set_r5>(srcImg, dstImg, alpha);
}

int32_t zivColorNV12toRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return convert<zivPixFmt_NV12, zivPixFmt_RGBA8888, set_t5, set_t5, regular_bytes,
                   Tail{.ends_early = true, .crossed_rows = true}>(srcImg, dstImg, alpha);
}

int32_t zivColorNV12toBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return convert<zivPixFmt_NV12, zivPixFmt_BGRA8888, set_t5, set_t5, crossed_red_first,
                   Tail{.ends_early = true, .crossed_rows = true}>(srcImg, dstImg, alpha);
}

int32_t zivColorI420toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return convert<zivPixFmt_I420, zivPixFmt_BGR888, set_q15, set_q15, regular_bytes, Tail{.luma_ahead = true}>(srcImg, dstImg);
}

int32_t zivColorI420toRGB888u8(const Image* srcImg, const Image* dstImg) {
    return convert<zivPixFmt_I420, zivPixFmt_RGB888, set_t5, set_t5>(srcImg, dstImg);
}

int32_t zivColorI420toBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return convert<zivPixFmt_I420, zivPixFmt_BGRA8888, set_t5, set_t5>(srcImg, dstImg, alpha);
}

int32_t zivColorI420toRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return convert<zivPixFmt_I420, zivPixFmt_RGBA8888, set_t5, set_t5>(srcImg, dstImg, alpha);
}

}  // namespace reference
