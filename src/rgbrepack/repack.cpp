// SPDX-License-Identifier: MIT
// RGB from one byte layout to another: channels reordered, alpha dropped or added, or packed into 16-bit words. No arithmetic
// beyond shifts and masks. Blocked columns and tail give the same bytes, so a step is as wide as the target likes; every step
// reads its pixels whole before it writes the first.
#include "lanes/move_row.h"
#include "rgbrepack/pixel_moves.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack {

namespace {

// Whether an image of so many pixels is converted with hints. Where it stays in the near caches they cost steps of 16 bytes
// more than they bring.
template <int in, int out>
ZIV_INLINE bool is_prefetched(ptrdiff_t pixels) {
    if constexpr (widest > 16 || ZIV_HAS_ADVANCED_SIMD || out == 2) return true;
    if constexpr (!ZIV_HAS_SSE4_2) return in == 3;
    return pixels * (in + out) > (in == 4 ? 1 << 20 : 1 << 15);
}

// Calls row(source, destination, pixels, is_prefetched) for every row of the destination; rows that follow each other without a
// gap on both sides are one run of pixels. in and out are the bytes of a pixel.
template <int in, int out, class Row>
ZIV_INLINE void for_rows(const Image* srcImg, const Image* dstImg, Row row) {
    const ptrdiff_t width = dstImg->width, height = dstImg->height;
    const bool one_run = srcImg->pitch[0] == in * width && dstImg->pitch[0] == out * width;
    const ptrdiff_t rows = one_run ? 1 : height, pixels = one_run ? width * height : width;
    const bool prefetched = is_prefetched<in, out>(width * height);
    for (ptrdiff_t i = 0; i < rows; i++)
        row(row_at(srcImg->plane[0], i, srcImg->pitch[0]), row_at(dstImg->plane[0], i, dstImg->pitch[0]), pixels, prefetched);
}

// Covers pixels 0 to blocked - 1 of a row, a multiple of 16, with steps: body(Step<n>{}, pixel). A store that crosses a cache
// line costs the most: where the rows share no byte, the steps after the first start at an aligned destination, and the last
// ends with the row, so that some pixels are written twice.
template <int in, int out, class Body>
ZIV_INLINE void for_pixel_steps(const uint8_t* src, uint8_t* dst, ptrdiff_t blocked, bool prefetched, Body body) {
    if (!prefetched) {
        for_steps(blocked, body);
        return;
    }
    const auto convert = [=](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        prefetch_reads<in * step.value>(src + in * j);
        if constexpr (widest == 16 && in == 3) prefetch_writes<out * step.value>(dst + out * j);
        body(step, j);
    };
    const ptrdiff_t lead = lead_of<out>(dst).samples;
    const uintptr_t ahead = reinterpret_cast<uintptr_t>(dst) - reinterpret_cast<uintptr_t>(src);
    const bool apart = ahead >= static_cast<uintptr_t>(in * blocked) && 0 - ahead >= static_cast<uintptr_t>(out * blocked);
    if (lead == 0 || blocked < 4 * widest || !apart) {
        ptrdiff_t j = 0;
        if constexpr (widest_pixels > widest)
            for (; j + widest_pixels <= blocked; j += widest_pixels) convert(Step<widest_pixels>{}, j);
        for_steps(blocked - j, [=](auto step, ptrdiff_t k) ZIV_INLINE_BODY { convert(step, j + k); });
        return;
    }
    convert(Step<widest>{}, 0);
    ptrdiff_t j = lead;
    for (; j + widest <= blocked; j += widest) convert(Step<widest>{}, j);
    if (j < blocked) convert(Step<widest>{}, blocked - widest);
}

// ---- Outer channels exchanged: three bytes a pixel on both sides, which may be the same memory ----

ZIV_INLINE void swap_row(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, bool prefetched) {
    const ptrdiff_t blocked = blocked_columns<16>(pixels);
    for_pixel_steps<3, 3>(src, dst, blocked, prefetched, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
        move_pixels<step.value, 3, 2, 1, 0>(dst + 3 * j, src + 3 * j);
    });
    for (ptrdiff_t j = blocked; j < pixels; j++) {
        const uint8_t first = src[3 * j], second = src[3 * j + 1], third = src[3 * j + 2];
        dst[3 * j] = third, dst[3 * j + 1] = second, dst[3 * j + 2] = first;
    }
}

}  // namespace

int32_t zivColorRGB888toBGR888u8_2(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check_sizes(srcImg, dstImg, destination_1x1)) return status;
    for_rows<3, 3>(srcImg, dstImg, [](const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, bool prefetched) {
        swap_row(src, dst, pixels, prefetched);
    });
    return zivStatus_OK;
}

// Packed rows on both sides are one run of pixels.
int32_t zivColorRGB888toBGR888u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height) {
    if (!pSrc || !pDst) return zivStatus_NullPointer;
    if (width < 1 || height < 1) return zivStatus_BadArgument;
    const auto pixels = static_cast<ptrdiff_t>(width * height);
    swap_row(pSrc, pDst, pixels, is_prefetched<3, 3>(pixels));
    return zivStatus_OK;
}

// ---- Alpha dropped or added ----

int32_t zivColorRGBA8888toBGR888u8(const Image* srcImg, const Image* dstImg) {
    if (const int32_t status = check(srcImg, dstImg, zivPixFmt_RGBA8888, zivPixFmt_BGR888, destination_1x1)) return status;
    // The alpha of a row's last pixel is not read where the row ends on single pixels behind the blocks of 8.
    const ptrdiff_t single = dstImg->width % 8 != 0;
    for_rows<4, 3>(srcImg, dstImg, [=](const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, bool prefetched) ZIV_INLINE_BODY {
        const ptrdiff_t blocked = blocked_columns<16>(pixels - single);
        for_pixel_steps<4, 3>(src, dst, blocked, prefetched, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
            move_pixels<step.value, 4, 2, 1, 0>(dst + 3 * j, src + 4 * j);
        });
        for (ptrdiff_t j = blocked; j < pixels; j++) {
            const uint8_t r = src[4 * j], g = src[4 * j + 1], b = src[4 * j + 2];
            dst[3 * j] = b, dst[3 * j + 1] = g, dst[3 * j + 2] = r;
        }
    });
    return zivStatus_OK;
}

namespace {

// r and b are the places of the two channels in a source pixel.
template <int r, int b>
ZIV_INLINE int32_t to_argb(const Image* srcImg, const Image* dstImg, uint32_t source) {
    if (const int32_t status = check(srcImg, dstImg, source, zivPixFmt_ARGB8888, both_1x1)) return status;
    for_rows<3, 4>(srcImg, dstImg, [](const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, bool prefetched) ZIV_INLINE_BODY {
        const ptrdiff_t blocked = blocked_columns<16>(pixels);
        for_pixel_steps<3, 4>(src, dst, blocked, prefetched, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
            move_pixels<step.value, 3, opaque_alpha, r, 1, b>(dst + 4 * j, src + 3 * j);
        });
        for (ptrdiff_t j = blocked; j < pixels; j++) {
            const uint8_t red = src[3 * j + r], green = src[3 * j + 1], blue = src[3 * j + b];
            dst[4 * j] = 255, dst[4 * j + 1] = red, dst[4 * j + 2] = green, dst[4 * j + 3] = blue;
        }
    });
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorBGR888toARGB8888u8(const Image* srcImg, const Image* dstImg) {
    return to_argb<2, 0>(srcImg, dstImg, zivPixFmt_BGR888);
}

int32_t zivColorRGB888toARGB8888u8(const Image* srcImg, const Image* dstImg) {
    return to_argb<0, 2>(srcImg, dstImg, zivPixFmt_RGB888);
}

// ---- 16-bit words: the top 5, 6 and 5 bits of the channels, the rest dropped ----

namespace {

// high and low are the places in a source pixel of the channels that go to the word's high and low end.
template <int high, int low>
ZIV_INLINE int32_t to_565(const Image* srcImg, const Image* dstImg, uint32_t source, uint32_t destination) {
    if (const int32_t status = check(srcImg, dstImg, source, destination, both_2x2)) return status;
    for_rows<3, 2>(srcImg, dstImg, [](const uint8_t* src, uint8_t* dst, ptrdiff_t pixels, bool prefetched) ZIV_INLINE_BODY {
        const ptrdiff_t blocked = blocked_columns<16>(pixels);
        for_pixel_steps<3, 2>(src, dst, blocked, prefetched, [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY {
            pack_pixels_565<step.value, high, low>(dst + 2 * j, src + 3 * j);
        });
        for (ptrdiff_t j = blocked; j < pixels; j++) {
            const int x = src[3 * j + high], g = src[3 * j + 1], z = src[3 * j + low];
            dst[2 * j] = static_cast<uint8_t>(((g << 3) & 0xE0) | (z >> 3));
            dst[2 * j + 1] = static_cast<uint8_t>((x & 0xF8) | (g >> 5));
        }
    });
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorRGB888toBGR565u8(const Image* srcImg, const Image* dstImg) {
    return to_565<2, 0>(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_BGR565);
}

int32_t zivColorRGB888toRGB565u8(const Image* srcImg, const Image* dstImg) {
    return to_565<0, 2>(srcImg, dstImg, zivPixFmt_RGB888, zivPixFmt_RGB565);
}

int32_t zivColorBGR888toRGB565u8(const Image* srcImg, const Image* dstImg) {
    return to_565<2, 0>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_RGB565);
}

int32_t zivColorBGR888toBGR565u8(const Image* srcImg, const Image* dstImg) {
    return to_565<0, 2>(srcImg, dstImg, zivPixFmt_BGR888, zivPixFmt_BGR565);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack
