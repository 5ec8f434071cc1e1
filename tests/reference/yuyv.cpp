// SPDX-License-Identifier: MIT
// Packed 4:2:2 (Y0 U Y1 V) from and to the 4:2:0 layouts.
#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

// Y0 U Y1 V from luma and as many chroma bytes, U first.
template <int N>
Bytes<2 * N> yuyv(const Bytes<N>& luma, const Bytes<N>& uv) {
    return interleave(luma, uv);
}

template <int N>
Bytes<N> swapped(const Bytes<N>& pairs) {
    return interleave(odd(pairs), even(pairs));
}

template <int N>
void nv12_to_yuyv(const Image* src, const Image* dst, int32_t i, int64_t j) {
    const uint8_t* chroma_row = src->plane[1] + static_cast<int64_t>(i / 2) * src->pitch[0];
    const auto upper = load<N>(row(src, 0, i) + j);
    const auto lower = load<N>(row(src, 0, i + 1LL) + j);
    const auto uv = load<N>(chroma_row + j);
    store(row(dst, 0, i) + 2 * j, yuyv<N>(upper, uv));
    store(row(dst, 0, i + 1LL) + 2 * j, yuyv<N>(lower, uv));
}

template <int N>
void nv21_to_yuyv(const Image* src, const Image* dst, int32_t i, int64_t j) {
    const uint8_t* chroma_row = src->plane[1] + static_cast<int64_t>(i / 2) * src->pitch[0];
    const auto luma = load<N>(row(src, 0, i) + j);
    const auto vu = load<N>(chroma_row + j);
    store(row(dst, 0, i) + 2 * j, yuyv<N>(luma, swapped<N>(vu)));
}

template <int N>
void i420_to_yuyv(const Image* src, const Image* dst, int32_t i, int64_t j) {
    const auto upper = load<N>(row(src, 0, i) + j);
    const auto lower = load<N>(row(src, 0, i + 1LL) + j);
    const auto u = load<N / 2>(row(src, 1, i / 2) + j / 2);
    const auto v = load<N / 2>(row(src, 2, i / 2) + j / 2);
    store(row(dst, 0, i) + 2 * j, yuyv<N>(upper, interleave(u, v)));
    store(row(dst, 0, i + 1LL) + 2 * j, yuyv<N>(lower, interleave(u, v)));
}

}  // namespace

int32_t zivColorNV12toYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_NV12, dstImg, zivPixFmt_YUYV)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    const int64_t w = dstImg->width;
    for (int32_t i = 0; i < dstImg->height; i += 2) {
        int64_t j = 0;
        for (; j <= w - 16; j += 16) nv12_to_yuyv<16>(srcImg, dstImg, i, j);
        for (; j < w; j += 2) nv12_to_yuyv<2>(srcImg, dstImg, i, j);
    }
    return zivStatus_OK;
}

int32_t zivColorNV21toYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_NV21, dstImg, zivPixFmt_YUYV)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    const int64_t w = dstImg->width;
    for (int32_t i = 0; i < dstImg->height; ++i) {
        int64_t j = 0;
        for (; j <= w - 16; j += 16) nv21_to_yuyv<16>(srcImg, dstImg, i, j);
        for (; j < w; j += 2) nv21_to_yuyv<2>(srcImg, dstImg, i, j);
    }
    return zivStatus_OK;
}

int32_t zivColorI420toYUYVu8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_I420, dstImg, zivPixFmt_YUYV)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    const int64_t w = dstImg->width;
    for (int32_t i = 0; i <= dstImg->height - 2; i += 2) {
        int64_t j = 0;
        for (; j <= w - 16; j += 16) i420_to_yuyv<16>(srcImg, dstImg, i, j);
        for (; j <= w - 2; j += 2) i420_to_yuyv<2>(srcImg, dstImg, i, j);
    }
    return zivStatus_OK;
}

namespace {

// N columns of one row; chroma is null on the odd rows, whose chroma is dropped.
template <int N>
void yuyv_to_nv21(const uint8_t* src, uint8_t* luma, uint8_t* chroma, int64_t j) {
    const auto packed = load<2 * N>(src + 2 * j);
    store(luma + j, even(packed));
    if (chroma) store(chroma + j, swapped<N>(odd(packed)));
}

template <int N>
void yuyv_to_nv12(const uint8_t* src, uint8_t* luma, uint8_t* chroma, int64_t j) {
    const auto packed = load<2 * N>(src + 2 * j);
    store(luma + j, even(packed));
    if (chroma) store(chroma + j, odd(packed));
}

// Returns the columns walked: one more than the width where that is odd.
int64_t yuyv_to_nv21_row(const uint8_t* src, uint8_t* luma, uint8_t* chroma, int64_t w) {
    int64_t j = 0;
    for (; j <= w - 8; j += 8) yuyv_to_nv21<8>(src, luma, chroma, j);
    for (; j < w; j += 2) yuyv_to_nv21<2>(src, luma, chroma, j);
    return j;
}

// Two rows of luma, and the chroma of the upper one. A pair of columns is loaded whole in both rows.
template <int N>
void yuyv_to_i420(const uint8_t* upper_src, const uint8_t* lower_src, uint8_t* upper_luma, uint8_t* lower_luma, uint8_t* u,
                  uint8_t* v, int64_t j) {
    const auto upper = load<2 * N>(upper_src + 2 * j);
    const auto lower = load<2 * N>(lower_src + 2 * j);
    store(upper_luma + j, even(upper));
    store(lower_luma + j, even(lower));
    store(u + j / 2, even(odd(upper)));
    store(v + j / 2, odd(odd(upper)));
}

}  // namespace

int32_t zivColorYUYVtoNV21u8_v2(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    for (int32_t i = 0; i < dstImg->height; ++i)
        yuyv_to_nv21_row(row(srcImg, 0, i), row(dstImg, 0, i), i % 2 == 0 ? row(dstImg, 1, i / 2) : nullptr, dstImg->width);
    return zivStatus_OK;
}

int32_t zivColorYUYVtoNV21u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight) {
    if (is_null(pSrc, pDst)) return zivStatus_NullPointer;
    if (lWidth < 2 || lHeight < 2) return zivStatus_BadArgument;
    const uint8_t* src = pSrc;
    uint8_t* luma = pDst;
    uint8_t* chroma = pDst + static_cast<int64_t>(lHeight) * lWidth;
    for (int32_t i = 0; i < lHeight; ++i) {
        // At odd widths every row starts one column further than the one above would have it.
        const int64_t walked = yuyv_to_nv21_row(src, luma, i % 2 == 0 ? chroma : nullptr, lWidth);
        src += 2 * walked;
        luma += walked;
        if (i % 2 == 0) chroma += walked;
    }
    return zivStatus_OK;
}

int32_t zivColorYUYVtoNV12u8_v2(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_YUYV, dstImg, zivPixFmt_NV12)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    const int64_t w = dstImg->width;
    for (int32_t i = 0; i < dstImg->height; ++i) {
        uint8_t* chroma = i % 2 == 0 ? row(dstImg, 1, i / 2) : nullptr;
        int64_t j = 0;
        for (; j < w - 16; j += 16) yuyv_to_nv12<16>(row(srcImg, 0, i), row(dstImg, 0, i), chroma, j);
        for (; j < w; j += 2) yuyv_to_nv12<2>(row(srcImg, 0, i), row(dstImg, 0, i), chroma, j);
    }
    return zivStatus_OK;
}

int32_t zivColorYUYVtoNV12u8(const uint8_t* pSrc, uint8_t* pDst, int32_t lWidth, int32_t lHeight) {
    if (is_null(pSrc, pDst)) return zivStatus_NullPointer;
    if (lWidth < 2 || lHeight < 2) return zivStatus_BadArgument;
    const uint8_t* src = pSrc;
    uint8_t* luma = pDst;
    uint8_t* chroma = pDst + static_cast<int64_t>(lHeight) * lWidth;
    for (int32_t i = 0; i < lHeight; ++i) {
        uint8_t* chroma_row = i % 2 == 0 ? chroma : nullptr;
        int64_t j = 0;
        for (; j <= lWidth - 8; j += 8) yuyv_to_nv12<8>(src, luma, chroma_row, j);
        for (; j < lWidth; ++j) {
            const auto packed = load<2>(src + 2 * j);
            put(luma + j, packed[0]);
            if (chroma_row) put(chroma_row + j, packed[1]);
        }
        src += 2 * j;
        luma += j;
        if (chroma_row) chroma += j;
    }
    return zivStatus_OK;
}

int32_t zivColorYUYVtoI420u8_2(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    const int64_t w = dstImg->width;
    for (int32_t i = 0; i < dstImg->height; i += 2) {
        const uint8_t* upper = row(srcImg, 0, i);
        const uint8_t* lower = upper + srcImg->pitch[0];
        uint8_t* upper_luma = row(dstImg, 0, i);
        uint8_t* lower_luma = upper_luma + w;  // a width below, not a pitch
        uint8_t* u = row(dstImg, 1, i / 2);
        uint8_t* v = row(dstImg, 2, i / 2);
        int64_t stop = 0;
        for (; stop < w - 16; stop += 16) yuyv_to_i420<16>(upper, lower, upper_luma, lower_luma, u, v, stop);
        // One step for every column that is left, though each does two.
        for (int64_t step = 0; step < w - stop; ++step)
            yuyv_to_i420<2>(upper, lower, upper_luma, lower_luma, u, v, stop + 2 * step);
    }
    return zivStatus_OK;
}

int32_t zivColorYUYVtoI420u8(const uint8_t* yuvSrc, uint8_t* yuvDst, int32_t width, int32_t height) {
    if (is_null(yuvSrc, yuvDst)) return zivStatus_NullPointer;
    if (width < 2 || height < 2) return zivStatus_BadArgument;
    const int64_t w = width;
    const int64_t area = w * height;
    const uint8_t* src = yuvSrc;
    uint8_t* luma = yuvDst;
    uint8_t* u = yuvDst + area;
    uint8_t* v = yuvDst + area + (area >> 2);
    for (int32_t pass = 0; pass < height >> 1; ++pass) {
        int64_t j = 0;
        for (; j < w - 16; j += 16) yuyv_to_i420<16>(src, src + 2 * w, luma, luma + w, u, v, j);
        for (; j / 2 < w >> 1; j += 2) yuyv_to_i420<2>(src, src + 2 * w, luma, luma + w, u, v, j);
        // On past the columns walked, and over the lower row: at odd widths the luma rows drift back.
        src += 2 * j + 2 * w;
        luma += j + w;
        u += w >> 1;
        v += w >> 1;
    }
    return zivStatus_OK;
}

}  // namespace reference
