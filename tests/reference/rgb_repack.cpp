// SPDX-License-Identifier: MIT
// RGB pixels with their channels in another order, or packed into 16 bits.
#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

// The pixels are moved N at a time, read whole before the first byte of them is written.
template <int N>
void swap_outer(const uint8_t* src, uint8_t* dst) {
    const auto in = load<3 * N>(src);
    Bytes<3 * N> out{};
    for (size_t k = 0; k < 3 * N; k += 3) out[k] = in[k + 2], out[k + 1] = in[k + 1], out[k + 2] = in[k];
    store(dst, out);
}

template <int N>
void drop_alpha_and_swap(const uint8_t* src, uint8_t* dst) {
    // A block loads all four channels; a single pixel leaves its alpha alone.
    Bytes<4 * N> in{};
    if (N > 1) in = load<4 * N>(src);
    else
        for (size_t k = 0; k < 3; ++k) in[k] = get(src + k);
    Bytes<3 * N> out{};
    for (size_t p = 0; p < N; ++p)
        for (size_t k = 0; k < 3; ++k) out[3 * p + k] = in[4 * p + 2 - k];
    store(dst, out);
}

// Channel 0 is opaque; channels 1 to 3 come from these source bytes.
template <int N, int C1, int C2, int C3>
void to_argb(const uint8_t* src, uint8_t* dst) {
    const auto in = load<3 * N>(src);
    Bytes<4 * N> out{};
    for (size_t p = 0; p < N; ++p) {
        out[4 * p] = 255;
        out[4 * p + 1] = in[3 * p + C1];
        out[4 * p + 2] = in[3 * p + C2];
        out[4 * p + 3] = in[3 * p + C3];
    }
    store(dst, out);
}

// X is the source byte of the top five bits, Z that of the low five.
template <int N, int X, int Z>
void to_565(const uint8_t* src, uint8_t* dst) {
    const auto in = load<3 * N>(src);
    Bytes<2 * N> out{};
    for (size_t p = 0; p < N; ++p) {
        const int x = in[3 * p + X];
        const int g = in[3 * p + 1];
        const int z = in[3 * p + Z];
        out[2 * p] = ((g << 3) & 224) | (z >> 3);
        out[2 * p + 1] = (x & 248) | (g >> 5);
    }
    store(dst, out);
}

using Pixels = void (*)(const uint8_t* src, uint8_t* dst);

struct Layout {
    int source_bytes;  // of a pixel
    int destination_bytes;
    int block_width;
    Pixels block;
    Pixels one;
};

constexpr Layout kSwap = {3, 3, 8, swap_outer<8>, swap_outer<1>};
constexpr Layout kDropAlpha = {4, 3, 8, drop_alpha_and_swap<8>, drop_alpha_and_swap<1>};
constexpr Layout kBgrToArgb = {3, 4, 16, to_argb<16, 2, 1, 0>, to_argb<1, 2, 1, 0>};
constexpr Layout kRgbToArgb = {3, 4, 16, to_argb<16, 0, 1, 2>, to_argb<1, 0, 1, 2>};
constexpr Layout kRgbToBgr565 = {3, 2, 8, to_565<8, 2, 0>, to_565<1, 2, 0>};
constexpr Layout kRgbToRgb565 = {3, 2, 8, to_565<8, 0, 2>, to_565<1, 0, 2>};
constexpr Layout kBgrToRgb565 = {3, 2, 16, to_565<16, 2, 0>, to_565<1, 2, 0>};
constexpr Layout kBgrToBgr565 = {3, 2, 16, to_565<16, 0, 2>, to_565<1, 0, 2>};

void walk_row(const Layout& layout, const uint8_t* src, uint8_t* dst, int64_t width) {
    int64_t j = 0;
    for (; j <= width - layout.block_width; j += layout.block_width)
        layout.block(src + j * layout.source_bytes, dst + j * layout.destination_bytes);
    for (; j < width; ++j) layout.one(src + j * layout.source_bytes, dst + j * layout.destination_bytes);
}

int32_t walk(const Layout& layout, const Image* src, const Image* dst) {
    for (int32_t i = 0; i < dst->height; ++i) walk_row(layout, row(src, 0, i), row(dst, 0, i), dst->width);
    return zivStatus_OK;
}

int32_t checked(const Layout& layout, const Image* src, int32_t from, const Image* dst, int32_t to, int32_t least) {
    if (is_null(src, dst)) return zivStatus_NullPointer;
    if (!formats_are(src, from, dst, to)) return zivStatus_BadArgument;
    if (!at_least(src, least, least) || !at_least(dst, least, least)) return zivStatus_BadArgument;
    return walk(layout, src, dst);
}

}  // namespace

int32_t zivColorRGBA8888toBGR888u8(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!formats_are(srcImg, zivPixFmt_RGBA8888, dstImg, zivPixFmt_BGR888)) return zivStatus_BadArgument;
    if (!at_least(dstImg, 1, 1)) return zivStatus_BadArgument;
    return walk(kDropAlpha, srcImg, dstImg);
}

int32_t zivColorRGB888toBGR888u8_2(const Image* srcImg, const Image* dstImg) {
    if (is_null(srcImg, dstImg)) return zivStatus_NullPointer;
    if (!at_least(dstImg, 1, 1)) return zivStatus_BadArgument;
    return walk(kSwap, srcImg, dstImg);
}

int32_t zivColorBGR888toARGB8888u8(const Image* srcImg, const Image* dstImg) {
    return checked(kBgrToArgb, srcImg, zivPixFmt_BGR888, dstImg, zivPixFmt_ARGB8888, 1);
}

int32_t zivColorRGB888toARGB8888u8(const Image* srcImg, const Image* dstImg) {
    return checked(kRgbToArgb, srcImg, zivPixFmt_RGB888, dstImg, zivPixFmt_ARGB8888, 1);
}

int32_t zivColorRGB888toBGR565u8(const Image* srcImg, const Image* dstImg) {
    return checked(kRgbToBgr565, srcImg, zivPixFmt_RGB888, dstImg, zivPixFmt_BGR565, 2);
}

int32_t zivColorRGB888toRGB565u8(const Image* srcImg, const Image* dstImg) {
    return checked(kRgbToRgb565, srcImg, zivPixFmt_RGB888, dstImg, zivPixFmt_RGB565, 2);
}

int32_t zivColorBGR888toRGB565u8(const Image* srcImg, const Image* dstImg) {
    return checked(kBgrToRgb565, srcImg, zivPixFmt_BGR888, dstImg, zivPixFmt_RGB565, 2);
}

int32_t zivColorBGR888toBGR565u8(const Image* srcImg, const Image* dstImg) {
    return checked(kBgrToBgr565, srcImg, zivPixFmt_BGR888, dstImg, zivPixFmt_BGR565, 2);
}

int32_t zivColorRGB888toBGR888u8(const uint8_t* pSrc, uint8_t* pDst, int64_t width, int64_t height) {
    if (is_null(pSrc, pDst)) return zivStatus_NullPointer;
    if (width < 1 || height < 1) return zivStatus_BadArgument;
    for (int64_t i = 0; i < height; ++i) walk_row(kSwap, pSrc + i * 3 * width, pDst + i * 3 * width, width);
    return zivStatus_OK;
}

}  // namespace reference
