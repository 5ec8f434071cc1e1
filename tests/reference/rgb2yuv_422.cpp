// SPDX-License-Identifier: MIT
// RGB to packed 4:2:2, planar 4:2:2 and 4:4:4, and line-packed 4:2:2. Chroma comes from the even columns of every row.
#include "reference/reference.h"
#include "reference/rgb2yuv.h"

namespace reference {
namespace {

void put_group(uint8_t* p, uint32_t format, int luma0, int luma1, Chroma chroma) {
    const int u = chroma.u, v = chroma.v;
    const int group[4][4] = {{luma0, u, luma1, v}, {luma0, v, luma1, u}, {u, luma0, v, luma1}, {v, luma0, u, luma1}};
    for (int k = 0; k < 4; k++) put(p + k, group[format - zivPixFmt_YUYV][k]);
}

template <class Set, uint32_t source, uint32_t destination>
int32_t to_packed(const Image* srcImg, const Image* dstImg) {
    const int32_t status = check(srcImg, dstImg, source, destination, 2, 1);
    if (status != zivStatus_OK) return status;
    constexpr Layout layout = layout_of(source);
    const int64_t width = dstImg->width, height = dstImg->height;

    for (int64_t i = 0; i < height; i++) {
        const uint8_t* src = row_of(*srcImg, 0, i);
        uint8_t* dst = row_of(*dstImg, 0, i);

        int64_t j = 0;
        for (; j <= width - 16; j += 16) {
            Pixel pixel[16];
            for (int n = 0; n < 16; n++) pixel[n] = load_in_block(src + (j + n) * layout.size, layout);
            for (int n = 0; n < 16; n += 2) {
                const int luma0 = Set::block_luma(pixel[n]), luma1 = Set::block_luma(pixel[n + 1]);
                put_group(dst + 2 * (j + n), destination, luma0, luma1, Set::block_chroma(pixel[n], luma0));
            }
        }
        // A pair is always taken whole, with an odd width too.
        for (; j < width; j += 2) {
            const Pixel pixel0 = load_in_tail(src + j * layout.size, layout);
            const Pixel pixel1 = load_in_tail(src + (j + 1) * layout.size, layout);
            const int luma0 = Set::tail_luma(pixel0), luma1 = Set::tail_luma(pixel1);
            put_group(dst + 2 * j, destination, luma0, luma1, Set::tail_chroma(pixel0, luma0));
        }
    }
    return zivStatus_OK;
}

int32_t to_planar_422(const Image* srcImg, const Image* dstImg, uint32_t source, int64_t width) {
    const Layout layout = layout_of(source);
    const int64_t height = dstImg->height;

    for (int64_t i = 0; i < height; i++) {
        const uint8_t* src = row_of(*srcImg, 0, i);
        uint8_t* luma = row_of(*dstImg, 0, i);
        uint8_t* u = row_of(*dstImg, 1, i);
        uint8_t* v = row_of(*dstImg, 2, i);

        int64_t j = 0;
        for (; j <= width - 16; j += 16) {
            Pixel pixel[16];
            Chroma chroma[8];
            for (int n = 0; n < 16; n++) pixel[n] = load_in_block(src + (j + n) * layout.size, layout);
            for (int n = 0; n < 16; n++) put(luma + j + n, ShortSet::block_luma(pixel[n]));
            for (int n = 0; n < 8; n++) chroma[n] = ShortSet::block_chroma(pixel[2 * n], ShortSet::block_luma(pixel[2 * n]));
            for (int n = 0; n < 8; n++) put(u + j / 2 + n, chroma[n].u);
            for (int n = 0; n < 8; n++) put(v + j / 2 + n, chroma[n].v);
        }
        // A pair is always taken whole, with an odd width too.
        for (; j < width; j += 2) {
            const Pixel pixel0 = load_in_tail(src + j * layout.size, layout);
            const Pixel pixel1 = load_in_tail(src + (j + 1) * layout.size, layout);
            const int luma0 = ShortSet::tail_luma(pixel0);
            const Chroma chroma = ShortSet::tail_chroma(pixel0, luma0);
            put(luma + j, luma0);
            put(luma + j + 1, ShortSet::tail_luma(pixel1));
            put(u + j / 2, chroma.u);
            put(v + j / 2, chroma.v);
        }
    }
    return zivStatus_OK;
}

// One row; leaves the pointers where the row ended.
template <class Set>
void line_packed_row(const uint8_t*& src, uint8_t*& luma, uint8_t*& chroma, int64_t width, Layout layout) {
    int64_t j = 0;
    for (; j <= width - 16; j += 16) {
        Pixel pixel[16];
        for (int n = 0; n < 16; n++) pixel[n] = load_in_block(src + n * layout.size, layout);
        for (int n = 0; n < 16; n++) put(luma + n, Set::block_luma(pixel[n]));
        for (int n = 0; n < 16; n += 2) {
            const Chroma pair = Set::block_chroma(pixel[n], Set::block_luma(pixel[n]));
            put(chroma + n, pair.u);
            put(chroma + n + 1, pair.v);
        }
        src += 16 * layout.size;
        luma += 16;
        chroma += 16;
    }
    for (; j < width; j++) {
        const Pixel pixel = load_in_tail(src, layout);
        const int y = Set::tail_luma(pixel);
        put(luma, y);
        if (j % 2 == 0) {
            const Chroma pair = Set::tail_chroma(pixel, y);
            put(chroma, pair.u);
            put(chroma + 1, pair.v);
            chroma += 2;
        }
        src += layout.size;
        luma += 1;
    }
}

}  // namespace

int32_t zivColorRGBA8888toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_RGBA8888, zivPixFmt_YUYV>(srcImg, dstImg);
}

int32_t zivColorRGB888toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_RGB888, zivPixFmt_YUYV>(srcImg, dstImg);
}

int32_t zivColorBGR888toYUYVu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<FineSetRounded, zivPixFmt_BGR888, zivPixFmt_YUYV>(srcImg, dstImg);
}

int32_t zivColorRGB888toYVYUu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_RGB888, zivPixFmt_YVYU>(srcImg, dstImg);
}

int32_t zivColorBGR888toYVYUu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_BGR888, zivPixFmt_YVYU>(srcImg, dstImg);
}

int32_t zivColorRGB888toUYVYu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_RGB888, zivPixFmt_UYVY>(srcImg, dstImg);
}

int32_t zivColorBGR888toUYVYu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_BGR888, zivPixFmt_UYVY>(srcImg, dstImg);
}

int32_t zivColorRGB888toVYUYu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_RGB888, zivPixFmt_VYUY>(srcImg, dstImg);
}

int32_t zivColorBGR888toVYUYu8(const Image* srcImg, const Image* dstImg) {
    return to_packed<ShortSet, zivPixFmt_BGR888, zivPixFmt_VYUY>(srcImg, dstImg);
}

int32_t zivColorRGB888toYV24u8(const Image* srcImg, const Image* dstImg) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_YV24, 1, 1);
    if (status != zivStatus_OK) return status;
    const int64_t width = dstImg->width, height = dstImg->height;

    for (int64_t i = 0; i < height; i++) {
        const uint8_t* src = row_of(*srcImg, 0, i);
        uint8_t* luma = row_of(*dstImg, 0, i);
        uint8_t* v = row_of(*dstImg, 1, i);
        uint8_t* u = row_of(*dstImg, 2, i);

        int64_t j = 0;
        for (; j <= width - 8; j += 8) {
            Pixel pixel[8];
            Chroma chroma[8];
            for (int n = 0; n < 8; n++) pixel[n] = load_in_block(src + 3 * (j + n), rgb24);
            for (int n = 0; n < 8; n++) put(luma + j + n, ShortSet::block_luma(pixel[n]));
            for (int n = 0; n < 8; n++) chroma[n] = ShortSet::block_chroma(pixel[n], ShortSet::block_luma(pixel[n]));
            for (int n = 0; n < 8; n++) put(u + j + n, chroma[n].u);
            for (int n = 0; n < 8; n++) put(v + j + n, chroma[n].v);
        }
        for (; j < width; j++) {
            const Pixel pixel = load_in_tail(src + 3 * j, rgb24);
            const int y = ShortSet::tail_luma(pixel);
            const Chroma chroma = ShortSet::tail_chroma(pixel, y);
            put(luma + j, y);
            put(u + j, chroma.u);
            put(v + j, chroma.v);
        }
    }
    return zivStatus_OK;
}

int32_t zivColorRGB888toI422Hu8(const Image* srcImg, const Image* dstImg) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_I422H, 2, 1);
    return status != zivStatus_OK ? status : to_planar_422(srcImg, dstImg, zivPixFmt_RGB888, dstImg->width);
}

// The width is the source's.
int32_t zivColorBGR888toI422Hu8(const Image* srcImg, const Image* dstImg) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_I422H, 2, 1);
    return status != zivStatus_OK ? status : to_planar_422(srcImg, dstImg, zivPixFmt_BGR888, srcImg->width);
}

// Reads no pitch: the pointers run on from row to row.
int32_t zivColorBGRA8888toLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_BGRA8888, zivPixFmt_LPI422H, 2, 2);
    if (status != zivStatus_OK) return status;
    const uint8_t* src = srcImg->plane[0];
    uint8_t* luma = dstImg->plane[0];
    uint8_t* chroma = dstImg->plane[1];
    for (int64_t i = 0; i < srcImg->height; i++) line_packed_row<EighthsSet>(src, luma, chroma, srcImg->width, bgra32);
    return zivStatus_OK;
}

int32_t zivColorRGBA8888toLPI422Hu8(const Image* srcImg, const Image* dstImg) {
    const int32_t status = check(srcImg, dstImg, zivPixFmt_RGBA8888, zivPixFmt_LPI422H, 2, 2);
    if (status != zivStatus_OK) return status;
    for (int64_t i = 0; i < srcImg->height; i++) {
        const uint8_t* src = row_of(*srcImg, 0, i);
        uint8_t* luma = row_of(*dstImg, 0, i);
        uint8_t* chroma = row_of(*dstImg, 1, i);
        line_packed_row<ThirtySecondsSet>(src, luma, chroma, srcImg->width, rgba32);
    }
    return zivStatus_OK;
}

}  // namespace reference
