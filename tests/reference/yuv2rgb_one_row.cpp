// SPDX-License-Identifier: MIT
// YV12, YUYV and line-packed 4:2:2 to RGB: one row at a time, blocks of 16 columns and then single columns or pairs.
#include "reference/reference.h"
#include "reference/yuv2rgb.h"

namespace reference {
namespace {

using Set = Rgb (*)(int luma, int u, int v);

int32_t yv12_to_rgb24(const Image* srcImg, const Image* dstImg, uint32_t destination, Layout layout) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_YV12, destination, 2, 2);
    if (status != zivStatus_OK) return status;
    const bool to_rgb = destination == zivPixFmt_RGB888;
    const int64_t width = dstImg->width, height = dstImg->height;

    for (int64_t i = 0; i < height; i++) {
        const uint8_t* luma = row_of(*srcImg, 0, i);
        const uint8_t* v = row_of(*srcImg, 1, i >> 1);
        const uint8_t* u = row_of(*srcImg, 2, i >> 1);
        uint8_t* dst = row_of(*dstImg, 0, to_rgb ? 1 : i);  // to RGB888 every row lands on row 1

        int64_t j = 0;
        for (; j <= width - 16; j += 16) {
            int y[16], chroma_u[8], chroma_v[8];
            for (int n = 0; n < 16; n++) y[n] = get(luma + j + n);
            for (int n = 0; n < 8; n++) {
                chroma_v[n] = get(v + (j >> 1) + n) - 128;
                chroma_u[n] = get(u + (j >> 1) + n) - 128;
            }
            for (int n = 0; n < 16; n++)
                put_pixel(dst + 3 * (j + n), regular_bytes(set_t5(y[n], chroma_u[n >> 1], chroma_v[n >> 1]), layout), layout,
                          0);
        }
        for (; j < width; j++) {
            const int y = get(luma + j);
            const int chroma_u = get(u + (j >> 1)) - 128;
            ColourBytes bytes{};
            if (to_rgb) {
                const int chroma_v = get(v + (j >> 1)) - 128;
                bytes = regular_bytes(set_t5(y, chroma_u, chroma_v), layout);
            } else {
                bytes.byte[0] = clamped(y + ((57 * chroma_u) >> 5));
                bytes.byte[1] = clamped(y - ((11 * chroma_u) >> 5));
                bytes.byte[2] = y;
            }
            put_pixel(dst + 3 * j, bytes, layout, 0);
        }
    }
    return zivStatus_OK;
}

int at_most_255(int value) { return value > 255 ? 255 : value; }

// The tails of the YUYV kernels.
ColourBytes without_lower_limit_red_first(Rgb pixel, Layout) {
    ColourBytes bytes{};
    bytes.byte[0] = pixel.blue < 0 ? pixel.red : at_most_255(pixel.red);
    bytes.byte[1] = at_most_255(pixel.green);
    bytes.byte[2] = pixel.red < 0 ? pixel.blue : at_most_255(pixel.blue);
    return bytes;
}

ColourBytes without_lower_limit(Rgb pixel, Layout) {
    return {{at_most_255(pixel.red), at_most_255(pixel.green), at_most_255(pixel.blue)}};
}

template <Set set, ColourBytes (*tail_bytes)(Rgb, Layout)>
int32_t yuyv_to_rgb(const Image* srcImg, const Image* dstImg, uint32_t destination, Layout layout, uint8_t alpha) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_YUYV, destination, 2, 1);
    if (status != zivStatus_OK) return status;
    const int64_t width = dstImg->width, height = dstImg->height;

    for (int64_t i = 0; i < height; i++) {
        const uint8_t* src = row_of(*srcImg, 0, i);
        uint8_t* dst = row_of(*dstImg, 0, i);

        int64_t j = 0;
        for (; j <= width - 16; j += 16) {
            int group[8][4];
            for (int n = 0; n < 8; n++)
                for (int k = 0; k < 4; k++) group[n][k] = get(src + 4 * n + k);
            for (int n = 0; n < 16; n++) {
                const int* from = group[n >> 1];
                const Rgb pixel = set(from[n & 1 ? 2 : 0], from[1] - 128, from[3] - 128);
                put_pixel(dst + n * layout.size, regular_bytes(pixel, layout), layout, alpha);
            }
            src += 32;
            dst += 16 * layout.size;
        }
        // A pair is always written whole, with an odd width too.
        for (; j < width; j += 2) {
            const int first = get(src), u = get(src + 1) - 128, second = get(src + 2), v = get(src + 3) - 128;
            put_pixel(dst, tail_bytes(set(first, u, v), layout), layout, alpha);
            put_pixel(dst + layout.size, tail_bytes(set(second, u, v), layout), layout, alpha);
            src += 4;
            dst += 2 * layout.size;
        }
    }
    return zivStatus_OK;
}

// One row; leaves the pointers where the row's last pass ended.
void line_packed_row(const uint8_t*& luma, const uint8_t*& chroma, uint8_t*& dst, int64_t width, Layout layout, uint8_t alpha) {
    int64_t j = 0;
    for (; j <= width - 16; j += 16) {
        int y[16], chroma_u[8], chroma_v[8];
        for (int n = 0; n < 16; n++) y[n] = get(luma + n);
        for (int n = 0; n < 8; n++) {
            chroma_u[n] = get(chroma + 2 * n) - 128;
            chroma_v[n] = get(chroma + 2 * n + 1) - 128;
        }
        for (int n = 0; n < 16; n++) {
            const Rgb pixel = set_t5(y[n], chroma_u[n >> 1], chroma_v[n >> 1]);
            put_pixel(dst + n * layout.size, regular_bytes(pixel, layout), layout, alpha);
        }
        luma += 16;
        chroma += 16;
        dst += 16 * layout.size;
    }
    for (; j <= width - 2; j += 2) {
        const int first = get(luma), second = get(luma + 1), u = get(chroma) - 128, v = get(chroma + 1) - 128;
        put_pixel(dst, regular_bytes(set_t5(first, u, v), layout), layout, alpha);
        put_pixel(dst + layout.size, regular_bytes(set_t5(second, u, v), layout), layout, alpha);
        luma += 2;
        chroma += 2;
        dst += 2 * layout.size;
    }
}

}  // namespace

int32_t zivColorYV12toBGR888u8(const Image* srcImg, const Image* dstImg) {
    return yv12_to_rgb24(srcImg, dstImg, zivPixFmt_BGR888, bgr24);
}

int32_t zivColorYV12toRGB888u8(const Image* srcImg, const Image* dstImg) {
    return yv12_to_rgb24(srcImg, dstImg, zivPixFmt_RGB888, rgb24);
}

int32_t zivColorYUYVtoBGR888u8(const Image* srcImg, const Image* dstImg) {
    return yuyv_to_rgb<set_q15, without_lower_limit_red_first>(srcImg, dstImg, zivPixFmt_BGR888, bgr24, 0);
}

int32_t zivColorYUYVtoRGB888u8(const Image* srcImg, const Image* dstImg) {
    return yuyv_to_rgb<set_d5, without_lower_limit>(srcImg, dstImg, zivPixFmt_RGB888, rgb24, 0);
}

int32_t zivColorYUYVtoRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    return yuyv_to_rgb<set_d5, regular_bytes>(srcImg, dstImg, zivPixFmt_RGBA8888, rgba32, alpha);
}

// Reads no pitch: the pointers run on from row to row.
int32_t zivColorLPI422HtoBGRA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_LPI422H, zivPixFmt_BGRA8888, 2, 2);
    if (status != zivStatus_OK) return status;
    const uint8_t* luma = srcImg->plane[0];
    const uint8_t* chroma = srcImg->plane[1];
    uint8_t* dst = dstImg->plane[0];
    for (int64_t i = 0; i < dstImg->height; i++) line_packed_row(luma, chroma, dst, dstImg->width, bgra32, alpha);
    return zivStatus_OK;
}

// Both sizes are the source's.
int32_t zivColorLPI422HtoRGBA8888u8(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_LPI422H, zivPixFmt_RGBA8888, 2, 2);
    if (status != zivStatus_OK) return status;
    for (int64_t i = 0; i < srcImg->height; i++) {
        const uint8_t* luma = row_of(*srcImg, 0, i);
        const uint8_t* chroma = row_of(*srcImg, 1, i);
        uint8_t* dst = row_of(*dstImg, 0, i);
        line_packed_row(luma, chroma, dst, srcImg->width, rgba32, alpha);
    }
    return zivStatus_OK;
}

}  // namespace reference
