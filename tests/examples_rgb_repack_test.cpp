// SPDX-License-Identifier: MIT
// Worked examples of channel reordering and of the 565 words, and conversion in place.
#include <algorithm>

#include "harness/canvas.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

using Bytes = std::vector<int>;

// Every pixel of a picture of this size, by block and by tail, becomes the same bytes.
void expect_pixels(const KernelTable& kernels, const char* name, const Bytes& pixel, const Bytes& expected, int width,
                   int height) {
    const Conversion& c = conversion(name);
    Canvas from(c.source, width, height, 2), to(c.destination, width, height, 3);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * static_cast<int>(pixel.size()); ++x)
            from.at(0, y, x) = static_cast<uint8_t>(pixel[static_cast<size_t>(x) % pixel.size()]);
    EXPECT_EQ(run(kernels, name, from, to), zivStatus_OK) << name;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * static_cast<int>(expected.size()); ++x)
            EXPECT_EQ(to.at(0, y, x), expected[static_cast<size_t>(x) % expected.size()]) << name << " " << width;
    EXPECT_EQ(to.at(0, 0, width * static_cast<int>(expected.size())), untouched) << name;
}

struct Row {
    const char* name;
    Bytes pixel, expected;
};
const Row rows[] = {
    {"zivColorRGB888toRGB565u8", {0x12, 0x34, 0x56}, {0xAA, 0x11}},
    {"zivColorRGB888toBGR565u8", {0x12, 0x34, 0x56}, {0xA2, 0x51}},
    {"zivColorBGR888toRGB565u8", {0x56, 0x34, 0x12}, {0xAA, 0x11}},
    {"zivColorBGR888toBGR565u8", {0x56, 0x34, 0x12}, {0xA2, 0x51}},
    {"zivColorRGB888toRGB565u8", {255, 255, 255}, {0xFF, 0xFF}},
    {"zivColorRGB888toBGR565u8", {255, 255, 255}, {0xFF, 0xFF}},
    {"zivColorBGR888toRGB565u8", {255, 255, 255}, {0xFF, 0xFF}},
    {"zivColorBGR888toBGR565u8", {255, 255, 255}, {0xFF, 0xFF}},
    {"zivColorRGB888toRGB565u8", {7, 3, 7}, {0, 0}},
    {"zivColorRGB888toBGR565u8", {7, 3, 7}, {0, 0}},
    {"zivColorBGR888toRGB565u8", {7, 3, 7}, {0, 0}},
    {"zivColorBGR888toBGR565u8", {7, 3, 7}, {0, 0}},
    {"zivColorBGR888toARGB8888u8", {10, 20, 30}, {255, 30, 20, 10}},
    {"zivColorRGB888toARGB8888u8", {10, 20, 30}, {255, 10, 20, 30}},
    {"zivColorRGBA8888toBGR888u8", {10, 20, 30, 40}, {30, 20, 10}},
    {"zivColorRGB888toBGR888u8_2", {10, 20, 30}, {30, 20, 10}},
};

TEST(RgbRepackExamples, Pixels) {
    on_every_table([](const KernelTable& kernels) {
        for (const Row& row : rows)
            for (const int width : {2, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100})
                expect_pixels(kernels, row.name, row.pixel, row.expected, width, 2);
    });
}

TEST(RgbRepackExamples, OnePixel) {
    on_every_table([](const KernelTable& kernels) {
        for (const Row& row : rows) {
            const Conversion& c = conversion(row.name);
            const bool words = c.destination == zivPixFmt_RGB565 || c.destination == zivPixFmt_BGR565;
            for (const auto& [width, height] : {std::pair{1, 1}, {1, 2}, {2, 1}}) {
                if (!words) {
                    expect_pixels(kernels, row.name, row.pixel, row.expected, width, height);
                    continue;
                }
                Canvas from(c.source, width, height), to(c.destination, width, height);
                EXPECT_EQ(run(kernels, row.name, from, to), zivStatus_BadArgument) << row.name;
                EXPECT_EQ(to.touched(0), 0) << row.name;
            }
        }
    });
}

TEST(RgbRepackExamples, TheSwapLooksAtNoFormat) {
    on_every_table([](const KernelTable& kernels) {
        for (const uint32_t code : {0u, 0x805u, 0x201u}) {
            Canvas from(zivPixFmt_RGB888, 9, 2), to(zivPixFmt_BGR888, 9, 2);
            from.numbered();
            from.descriptor().format = code;
            to.descriptor().format = code ^ 0x204u;
            const auto convert = conversion("zivColorRGB888toBGR888u8_2").convert;
            EXPECT_EQ(convert(kernels, from.image(), to.image(), 0), zivStatus_OK);
            for (int x = 0; x < 27; ++x) EXPECT_EQ(to.at(0, 1, x), from.at(0, 1, x / 3 * 3 + 2 - x % 3));
        }
    });
}

TEST(RgbRepackExamples, ThePlainSwap) {
    on_every_table([](const KernelTable& kernels) {
        uint8_t from[100], to[100];
        for (uint8_t k = 0; k < 100; ++k) from[k] = k;
        std::fill(to, to + 100, untouched);
        EXPECT_EQ(kernels.zivColorRGB888toBGR888u8(from, to, 0, 3), zivStatus_BadArgument);
        EXPECT_EQ(kernels.zivColorRGB888toBGR888u8(from, to, 9, 0), zivStatus_BadArgument);
        EXPECT_EQ(kernels.zivColorRGB888toBGR888u8(from, to, INT64_MIN, 3), zivStatus_BadArgument);
        EXPECT_EQ(kernels.zivColorRGB888toBGR888u8(nullptr, to, 0, 3), zivStatus_NullPointer);
        EXPECT_EQ(kernels.zivColorRGB888toBGR888u8(from, nullptr, 9, 3), zivStatus_NullPointer);
        EXPECT_EQ(to[0], untouched);
        EXPECT_EQ(kernels.zivColorRGB888toBGR888u8(from, to, 9, 3), zivStatus_OK);
        for (int k = 0; k < 81; ++k) EXPECT_EQ(to[k], k / 3 * 3 + 2 - k % 3);
        EXPECT_EQ(to[81], untouched);
    });
}

// A pixel is read whole before it is written, in blocks of any width.
TEST(RgbRepackExamples, TheSwapsWorkInPlace) {
    on_every_table([](const KernelTable& kernels) {
        for (int width = 1; width <= 200; ++width) {
            Canvas picture(zivPixFmt_RGB888, width, 3, width % 5), before(zivPixFmt_RGB888, width, 3, width % 5);
            picture.numbered();
            before.numbered();
            const bool plain = width % 5 == 0;
            const int32_t status =
                plain ? kernels.zivColorRGB888toBGR888u8(picture.at(0), picture.at(0), width, 3)
                      : conversion("zivColorRGB888toBGR888u8_2").convert(kernels, picture.image(), picture.image(), 0);
            EXPECT_EQ(status, zivStatus_OK);
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < 3 * width; ++x)
                    ASSERT_EQ(picture.at(0, y, x), before.at(0, y, x / 3 * 3 + 2 - x % 3)) << width;
        }
    });
}

}  // namespace
