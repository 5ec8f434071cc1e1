// SPDX-License-Identifier: MIT
// Hue, saturation and lightness.
#include "reference/hsl.h"

#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

// 65536 / i, truncated.
int32_t reciprocal(int32_t i) { return i < 2 ? 65535 : 65536 / i; }

int clamp_byte(int64_t value) { return value < 0 ? 0 : value > 255 ? 255 : static_cast<int>(value); }

int smaller(int a, int b) { return a < b ? a : b; }

}  // namespace

Hsl hsl_of(int b, int g, int r) {
    int c_max, c_min, delta, add;
    const bool blue = g < r ? r < b : b > g;
    if (blue) c_max = b, c_min = smaller(g, r), delta = g - r, add = 170;
    else if (g < r) c_max = r, c_min = smaller(b, g), delta = b - g, add = 0;
    else c_max = g, c_min = smaller(b, r), delta = r - b, add = 85;
    const int sum = c_max + c_min;
    const int lightness = (sum + 1) >> 1;
    if (c_max == c_min) return {170, 0, lightness};
    const int d = sum - 2 * c_min;
    const int denominator = lightness & 128 ? 510 - sum : sum;
    const int saturation = (reciprocal(denominator) * (255 * d + (denominator >> 1))) >> 16;
    const int q = (reciprocal(d) * (42 * delta + (d >> 1))) >> 16;
    return {clamp_byte(add - q), clamp_byte(saturation), lightness};
}

namespace {

void put_hsl(uint8_t* to, int b, int g, int r) {
    const Hsl hsl = hsl_of(b, g, r);
    put(to, hsl.hue);
    put(to + 1, hsl.saturation);
    put(to + 2, hsl.lightness);
}

template <int N>
void bgr888_to_hsl(const uint8_t* src, uint8_t* dst) {
    const auto bgr = load<3 * N>(src);
    for (size_t p = 0; p < N; ++p) put_hsl(dst + 3 * p, bgr[3 * p], bgr[3 * p + 1], bgr[3 * p + 2]);
}

template <int N, bool TopIsRed>
void words_to_hsl(const uint8_t* src, uint8_t* dst) {
    const auto bytes = load<2 * N>(src);
    for (size_t p = 0; p < N; ++p) {
        const int word = bytes[2 * p] | bytes[2 * p + 1] << 8;
        const int top = (word >> 11) * 8;
        const int middle = (word >> 5 & 63) * 4;
        const int low = (word & 31) * 8;
        put_hsl(dst + 3 * p, TopIsRed ? low : top, middle, TopIsRed ? top : low);
    }
}

using Pixels = void (*)(const uint8_t* src, uint8_t* dst);

// Below 8 columns the unsigned bound of the blocks wraps, and they run on beyond the image.
void walk_row(const uint8_t* src, int64_t source_bytes, uint8_t* dst, uint32_t width, Pixels block, Pixels one) {
    uint32_t j = 0;
    for (; j < width - 8; j += 8) block(src + j * source_bytes, dst + j * 3LL);
    for (; j < width; ++j) one(src + j * source_bytes, dst + j * 3LL);
}

}  // namespace

int32_t zivColorBGR888toHSL888u8(const uint8_t* bgr, uint8_t* hsl, uint32_t lHeight, uint32_t lWidth, uint32_t lineBytesBgr,
                                 uint32_t lineBytesHsl) {
    if (is_null(bgr, hsl)) return zivStatus_NullPointer;
    if (lHeight < 3 || lWidth < 3) return zivStatus_BadArgument;
    for (uint32_t i = 0; i < lHeight; ++i) {
        walk_row(bgr, 3, hsl, lWidth, bgr888_to_hsl<8>, bgr888_to_hsl<1>);
        // The gaps are zero-extended.
        bgr += 3ULL * lWidth + (lineBytesBgr - 3 * lWidth);
        hsl += 3ULL * lWidth + (lineBytesHsl - 3 * lWidth);
    }
    return zivStatus_OK;
}

namespace {

int32_t words(const uint8_t* src, uint8_t* dst, uint32_t height, uint32_t width, uint32_t line_src, uint32_t line_dst,
              Pixels block, Pixels one) {
    if (is_null(src, dst)) return zivStatus_NullPointer;
    if (height < 3 || width < 3) return zivStatus_BadArgument;
    for (uint32_t i = 0; i < height; ++i) {
        walk_row(src, 2, dst, width, block, one);
        src += line_src;
        dst += 3ULL * width + (line_dst - 3 * width);
    }
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorBGR565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                 uint32_t lineBytesBgr, uint32_t lineBytesHsl) {
    return words(pBgr565, pHsl, lHeight, lWidth, lineBytesBgr, lineBytesHsl, words_to_hsl<8, true>, words_to_hsl<1, true>);
}

int32_t zivColorRGB565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                 uint32_t lineBytesBgr, uint32_t lineBytesHsl) {
    return words(pBgr565, pHsl, lHeight, lWidth, lineBytesBgr, lineBytesHsl, words_to_hsl<8, false>, words_to_hsl<1, false>);
}

namespace {

// N pixels of a row, for which there are N / 2 chroma samples.
template <int N>
void put_hsl_of_yuv(uint8_t* dst, const Bytes<N>& luma, const Bytes<N / 2>& cb, const Bytes<N / 2>& cr) {
    for (size_t p = 0; p < N; ++p) {
        const int64_t y = luma[p] * 16384LL + 8192;
        const int64_t u = cb[p / 2] - 128;
        const int64_t v = cr[p / 2] - 128;
        put_hsl(dst + 3 * p, clamp_byte((y + 29049 * u) >> 14), clamp_byte((y - 5636 * u - 11698 * v) >> 14),
                clamp_byte((y + 22987 * v) >> 14));
    }
}

}  // namespace

int32_t zivColorI420toHSL888u8(const uint8_t* pY, const uint8_t* pCb, const uint8_t* pCr, uint32_t lWidth, uint32_t lHeight,
                               uint8_t* pHSL, uint32_t y_step1, uint32_t cbcr_step1, uint32_t hsl_step1) {
    if (is_null(pY, pCb) || is_null(pCr, pHSL)) return zivStatus_NullPointer;
    if (lWidth < 3 || lHeight < 3) return zivStatus_BadArgument;
    for (uint32_t j = 0; j < lHeight; j += 2) {
        uint32_t i = 0;
        for (; i < lWidth - 8; i += 8) {
            const auto cb = load<4>(pCb + i / 2);
            const auto cr = load<4>(pCr + i / 2);
            const auto upper = load<8>(pY + i);
            const auto lower = load<8>(pY + y_step1 + i);
            put_hsl_of_yuv<8>(pHSL + 3ULL * i, upper, cb, cr);
            put_hsl_of_yuv<8>(pHSL + hsl_step1 + 3ULL * i, lower, cb, cr);
        }
        for (; i < lWidth; i += 2) {
            const auto cb = load<1>(pCb + i / 2);
            const auto cr = load<1>(pCr + i / 2);
            const auto upper = load<2>(pY + i);
            put_hsl_of_yuv<2>(pHSL + 3ULL * i, upper, cb, cr);
            const auto lower = load<2>(pY + y_step1 + i);
            put_hsl_of_yuv<2>(pHSL + hsl_step1 + 3ULL * i, lower, cb, cr);
        }
        pY += 2ULL * y_step1;
        pCb += cbcr_step1;
        pCr += cbcr_step1;
        pHSL += 2ULL * hsl_step1;
    }
    return zivStatus_OK;
}

}  // namespace reference
