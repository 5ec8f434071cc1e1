// SPDX-License-Identifier: MIT
// Worked examples of hue, saturation and lightness.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "harness/picture.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

using Bytes = std::vector<int>;

struct Colour {
    int b, g, r;
    Bytes hsl;
};

const Colour colours[] = {
    {0, 0, 0, {170, 0, 0}},         {255, 255, 255, {170, 0, 255}},  {77, 77, 77, {170, 0, 77}},
    {128, 128, 128, {170, 0, 128}}, {0, 0, 255, {0, 255, 128}},      {0, 255, 0, {85, 255, 128}},
    {255, 0, 0, {170, 255, 128}},   {0, 255, 255, {43, 255, 128}},   {255, 255, 0, {127, 255, 128}},
    {255, 0, 255, {0, 255, 128}},   {0, 0, 1, {0, 254, 1}},          {0, 1, 1, {44, 254, 1}},
    {10, 20, 30, {21, 127, 20}},    {200, 100, 50, {156, 153, 125}},
};

// Three rows of a flat colour come out as three rows of its triple, and nothing beyond.
void expect_flat(const std::vector<uint8_t>& out, int width, int line, const Bytes& hsl, const char* what) {
    for (int y = 0; y < 3; ++y)
        for (int k = 0; k < line; ++k)
            ASSERT_EQ(out[static_cast<size_t>(y * line + k)], k < 3 * width ? hsl[static_cast<size_t>(k % 3)] : untouched)
                << what << ", width " << width << ", row " << y << ", byte " << k;
}

constexpr int widths[] = {8, 9, 10, 15, 16, 17, 24, 25, 31, 32, 33, 40, 41, 63, 64, 65, 66, 73, 100, 129, 137};

TEST(HslExamples, Colours) {
    on_every_table([](const KernelTable& kernels) {
        for (const Colour& c : colours)
            for (const int width : widths) {
                const int in_line = 3 * width + 5, out_line = 3 * width + 7;
                std::vector<uint8_t> in(static_cast<size_t>(3 * in_line), 99),
                    out(static_cast<size_t>(3 * out_line), untouched);
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < width; ++x) {
                        uint8_t* p = &in[static_cast<size_t>(y * in_line + 3 * x)];
                        p[0] = static_cast<uint8_t>(c.b), p[1] = static_cast<uint8_t>(c.g), p[2] = static_cast<uint8_t>(c.r);
                    }
                EXPECT_EQ(kernels.zivColorBGR888toHSL888u8(in.data(), out.data(), 3, static_cast<uint32_t>(width),
                                                           static_cast<uint32_t>(in_line), static_cast<uint32_t>(out_line)),
                          zivStatus_OK);
                expect_flat(out, width, out_line, c.hsl, "BGR888");
            }
    });
}

// Fields are widened by zeros, so that a word of all ones is no white: B and R are 248, G is 252.
TEST(HslExamples, Words) {
    const struct {
        uint16_t word;
        Bytes red_on_top, blue_on_top;
    } words[] = {{0xFFFF, {85, 102, 250}, {85, 102, 250}},
                 {0xF800, {0, 255, 124}, {170, 255, 124}},
                 {0x001F, {170, 255, 124}, {0, 255, 124}},
                 {0x07E0, {85, 255, 126}, {85, 255, 126}},
                 {0x0000, {170, 0, 0}, {170, 0, 0}}};
    on_every_table([&](const KernelTable& kernels) {
        for (const auto& row : words)
            for (const int width : widths) {
                const int in_line = 2 * width + 4, out_line = 3 * width + 1;
                std::vector<uint8_t> in(static_cast<size_t>(3 * in_line), 99);
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < width; ++x) {
                        in[static_cast<size_t>(y * in_line + 2 * x)] = static_cast<uint8_t>(row.word & 255);
                        in[static_cast<size_t>(y * in_line + 2 * x + 1)] = static_cast<uint8_t>(row.word >> 8);
                    }
                for (const bool red_on_top : {true, false}) {
                    std::vector<uint8_t> out(static_cast<size_t>(3 * out_line), untouched);
                    const auto convert = red_on_top ? kernels.zivColorBGR565toHSL888u8 : kernels.zivColorRGB565toHSL888u8;
                    EXPECT_EQ(convert(in.data(), out.data(), 3, static_cast<uint32_t>(width), static_cast<uint32_t>(in_line),
                                      static_cast<uint32_t>(out_line)),
                              zivStatus_OK);
                    expect_flat(out, width, out_line, red_on_top ? row.red_on_top : row.blue_on_top, "565");
                }
            }
    });
}

// Width before height, and the destination after the sizes.
TEST(HslExamples, Planar) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {8, 10, 16, 24, 26, 64, 72, 130}) {
            const auto w = static_cast<uint32_t>(width);
            const auto area = static_cast<size_t>(width) * 4;
            std::vector<uint8_t> y(area, 128), cb(area, 128), cr(area, 255), out(3 * area, untouched);
            EXPECT_EQ(kernels.zivColorI420toHSL888u8(y.data(), cb.data(), cr.data(), w, 4, out.data(), w, w, 3 * w),
                      zivStatus_OK);
            // B 128, G 37, R 255
            const Bytes hsl = {0, 254, 146};
            for (size_t k = 0; k < out.size(); ++k) ASSERT_EQ(out[k], hsl[k % 3]) << width << " byte " << k;

            std::fill(cr.begin(), cr.end(), uint8_t{128});
            EXPECT_EQ(kernels.zivColorI420toHSL888u8(y.data(), cb.data(), cr.data(), w, 4, out.data(), w, w, 3 * w),
                      zivStatus_OK);
            const Bytes grey = {170, 0, 128};
            for (size_t k = 0; k < out.size(); ++k) ASSERT_EQ(out[k], grey[k % 3]) << width << " byte " << k;
        }
    });
}

// Two rows and two columns at a time: an odd width takes one pixel more in every row, an odd height one row more.
TEST(HslExamples, PlanarOddSizes) {
    on_every_table([](const KernelTable& kernels) {
        for (const uint32_t width : {9u, 15u, 17u, 41u, 65u})
            for (const uint32_t height : {3u, 4u}) {
                const uint32_t line = 3 * width + 9, chroma_line = width, rows = (height + 1) / 2 * 2;
                std::vector<uint8_t> y(5 * line, 77), cb(3 * chroma_line, 128), cr(3 * chroma_line, 128),
                    out(5 * line, untouched);
                EXPECT_EQ(kernels.zivColorI420toHSL888u8(y.data(), cb.data(), cr.data(), width, height, out.data(), line,
                                                         chroma_line, line),
                          zivStatus_OK);
                const Bytes grey = {170, 0, 77};
                for (uint32_t row = 0; row < 5; ++row)
                    for (uint32_t k = 0; k < line; ++k)
                        ASSERT_EQ(out[row * line + k], row < rows && k < 3 * (width + 1) ? grey[k % 3] : int{untouched})
                            << width << "x" << height << " row " << row << " byte " << k;
            }
    });
}

TEST(HslExamples, Checks) {
    on_every_table([](const KernelTable& kernels) {
        uint8_t in[256] = {}, out[256];
        std::fill(out, out + 256, untouched);
        const struct {
            uint32_t height, width;
            int status;
        } sizes[] = {{2, 8, zivStatus_BadArgument}, {3, 2, zivStatus_BadArgument}, {0, 0, zivStatus_BadArgument}};
        for (const auto convert :
             {kernels.zivColorBGR888toHSL888u8, kernels.zivColorBGR565toHSL888u8, kernels.zivColorRGB565toHSL888u8}) {
            EXPECT_EQ(convert(nullptr, out, 3, 8, 24, 24), zivStatus_NullPointer);
            EXPECT_EQ(convert(in, nullptr, 3, 8, 24, 24), zivStatus_NullPointer);
            EXPECT_EQ(convert(nullptr, nullptr, 0, 0, 24, 24), zivStatus_NullPointer);
            for (const auto& size : sizes) EXPECT_EQ(convert(in, out, size.height, size.width, 24, 24), size.status);
        }
        const auto planar = kernels.zivColorI420toHSL888u8;
        EXPECT_EQ(planar(nullptr, in, in, 8, 4, out, 8, 4, 24), zivStatus_NullPointer);
        EXPECT_EQ(planar(in, nullptr, in, 8, 4, out, 8, 4, 24), zivStatus_NullPointer);
        EXPECT_EQ(planar(in, in, nullptr, 8, 4, out, 8, 4, 24), zivStatus_NullPointer);
        EXPECT_EQ(planar(in, in, in, 0, 0, nullptr, 8, 4, 24), zivStatus_NullPointer);
        for (const auto& size : sizes) EXPECT_EQ(planar(in, in, in, size.width, size.height, out, 8, 4, 24), size.status);
        for (const uint8_t byte : out) ASSERT_EQ(byte, untouched);
    });
}

}  // namespace
