// SPDX-License-Identifier: MIT
// 4:2:0 images between one arrangement of planes and another.
#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

// Copies N columns of both luma rows, with their chroma loaded before anything is stored.
template <int N>
void i420_to_nv21(const Image* src, const Image* dst, int32_t i, int32_t j) {
    const auto upper = load<N>(row(src, 0, i) + j);
    const auto lower = load<N>(row(src, 0, i + 1) + j);
    const auto v = load<N / 2>(row(src, 2, i / 2) + j / 2);
    const auto u = load<N / 2>(row(src, 1, i / 2) + j / 2);
    store(row(dst, 0, i) + j, upper);
    store(row(dst, 0, i + 1) + j, lower);
    store(row(dst, 1, i / 2) + j, interleave(v, u));
}

template <int N>
void nv21_to_i420(const Image* src, const Image* dst, int32_t i, int32_t j) {
    const auto upper = load<N>(row(src, 0, i) + j);
    const auto lower = load<N>(row(src, 0, i + 1) + j);
    const auto chroma = load<N>(row(src, 1, i / 2) + j);
    store(row(dst, 0, i) + j, upper);
    store(row(dst, 0, i + 1) + j, lower);
    store(row(dst, 1, i / 2) + j / 2, odd(chroma));
    store(row(dst, 2, i / 2) + j / 2, even(chroma));
}

template <int N>
void nv12_to_i420(const Image* src, const Image* dst, int32_t i, int32_t j) {
    const auto upper = load<N>(row(src, 0, i) + j);
    const auto lower = load<N>(row(src, 0, i + 1) + j);
    const auto chroma = load<N>(row(src, 1, i / 2) + j);
    store(row(dst, 0, i) + j, upper);
    store(row(dst, 0, i + 1) + j, lower);
    store(row(dst, 1, i / 2) + j / 2, even(chroma));
    store(row(dst, 2, i / 2) + j / 2, odd(chroma));
}

void nv12_to_nv21(const Image* src, const Image* dst, int32_t i, int32_t j) {
    const auto upper = load<2>(row(src, 0, i) + j);
    const auto lower = load<2>(row(src, 0, i + 1) + j);
    const auto chroma = load<2>(row(src, 1, i / 2) + j);
    store(row(dst, 0, i) + j, upper);
    store(row(dst, 0, i + 1) + j, lower);
    store(row(dst, 1, i / 2) + j, interleave(odd(chroma), even(chroma)));
}

using Step = void (*)(const Image* src, const Image* dst, int32_t i, int32_t j);

// Whole pairs of rows, whole pairs of columns: an odd last row or column is not touched.
void walk_pairs(const Image* src, const Image* dst, Step block, Step tail) {
    const int32_t w = dst->width;
    const int32_t h = dst->height;
    for (int32_t i = 0; i <= h - 2; i += 2) {
        int32_t j = 0;
        if (block)
            for (; j <= w - 16; j += 16) block(src, dst, i, j);
        for (; j <= w - 2; j += 2) tail(src, dst, i, j);
    }
}

}  // namespace

int32_t zivColorI420toNV21u8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_I420, dstImg, zivPixFmt_NV21)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    walk_pairs(srcImg, dstImg, i420_to_nv21<16>, i420_to_nv21<2>);
    return zivStatus_OK;
}

int32_t zivColorNV21toI420u8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_NV21, dstImg, zivPixFmt_I420)) return zivStatus_BadArgument;
    if (!at_least(dstImg, 2, 2) || srcImg->height < 2) return zivStatus_BadArgument;
    walk_pairs(srcImg, dstImg, nv21_to_i420<16>, nv21_to_i420<2>);
    return zivStatus_OK;
}

int32_t zivColorNV12toI420u8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_NV12, dstImg, zivPixFmt_I420)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    walk_pairs(srcImg, dstImg, nv12_to_i420<16>, nv12_to_i420<2>);
    return zivStatus_OK;
}

int32_t zivColorNV12toNV21u8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_NV12, dstImg, zivPixFmt_NV21)) return zivStatus_BadArgument;
    if (!at_least(srcImg, 2, 2) || !at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    walk_pairs(srcImg, dstImg, nullptr, nv12_to_nv21);
    return zivStatus_OK;
}

namespace {

// N columns of one row. The chroma pointers are null on the odd rows, which carry none.
template <int N>
void planar_row_step(const uint8_t* luma, const uint8_t* first, const uint8_t* second, uint8_t* out, uint8_t* out_chroma,
                     int64_t j) {
    const auto samples = load<N>(luma + j);
    Bytes<N> pairs{};
    if (first) {
        const auto a = load<N / 2>(first + j / 2);
        const auto b = load<N / 2>(second + j / 2);
        pairs = interleave(a, b);
    }
    store(out + j, samples);
    if (first) store(out_chroma + j, pairs);
}

// Returns the columns walked: one more than the width where that is odd.
int64_t planar_row(const uint8_t* luma, const uint8_t* first, const uint8_t* second, uint8_t* out, uint8_t* out_chroma,
                   int64_t width) {
    int64_t j = 0;
    for (; j <= width - 16; j += 16) planar_row_step<16>(luma, first, second, out, out_chroma, j);
    for (; j < width; j += 2) planar_row_step<2>(luma, first, second, out, out_chroma, j);
    return j;
}

}  // namespace

int32_t zivColorYV12toNV21u8_2(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!at_least(dstImg, 2, 2)) return zivStatus_BadArgument;
    for (int32_t i = 0; i < dstImg->height; ++i) {
        const bool even_row = i % 2 == 0;
        // The chroma rows of the destination stand one luma pitch apart.
        uint8_t* out_chroma = dstImg->plane[1] + static_cast<int64_t>(i / 2) * dstImg->pitch[0];
        planar_row(row(srcImg, 0, i), even_row ? row(srcImg, 1, i / 2) : nullptr, even_row ? row(srcImg, 2, i / 2) : nullptr,
                   row(dstImg, 0, i), out_chroma, dstImg->width);
    }
    return zivStatus_OK;
}

int32_t zivColorYV12toNV21u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height) {
    if (is_null(pSrc, pDst)) return zivStatus_NullPointer;
    if (width < 2 || height < 2) return zivStatus_BadArgument;
    const int64_t area = width * height;
    const uint8_t* luma = pSrc;
    const uint8_t* first = pSrc + area;
    const uint8_t* second = pSrc + area + (area >> 2);
    uint8_t* out = pDst;
    uint8_t* out_chroma = pDst + area;
    for (int64_t i = 0; i < height; ++i) {
        const bool even_row = i % 2 == 0;
        const int64_t chroma_row = (i >> 1) * (width >> 1);
        const int64_t walked = planar_row(luma, even_row ? first + chroma_row : nullptr,
                                          even_row ? second + chroma_row : nullptr, out, out_chroma, width);
        // Nothing brings the rows back: at odd widths they drift.
        luma += walked;
        out += walked;
        if (even_row) out_chroma += walked;
    }
    return zivStatus_OK;
}

}  // namespace reference
