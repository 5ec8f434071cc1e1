// SPDX-License-Identifier: MIT
// Worked examples of the RGB to YUV kernels: colours, siting, odd sizes, and the members with ways of their own.
#include <algorithm>

#include "harness/picture.h"

namespace {

using namespace harness;

using Bytes = std::vector<int>;

// ---- Flat colours ----------------------------------------------------------------------------------------------------------

struct Samples {
    int y, u, v;
    bool operator==(const Samples&) const = default;
};
void PrintTo(const Samples& s, std::ostream* out) { *out << s.y << ", " << s.u << ", " << s.v; }

// The samples of the first pixel of a picture.
Samples first_samples(Picture& p) {
    const auto at = [&](int plane, int offset) -> int { return *p.at(plane, 0, offset); };
    switch (p.format) {
        case zivPixFmt_NV21: return {at(0, 0), at(1, 1), at(1, 0)};
        case zivPixFmt_NV12:
        case zivPixFmt_LPI422H: return {at(0, 0), at(1, 0), at(1, 1)};
        case zivPixFmt_YV24: return {at(0, 0), at(2, 0), at(1, 0)};
        case zivPixFmt_YUYV: return {at(0, 0), at(0, 1), at(0, 3)};
        case zivPixFmt_YVYU: return {at(0, 0), at(0, 3), at(0, 1)};
        case zivPixFmt_UYVY: return {at(0, 1), at(0, 0), at(0, 2)};
        case zivPixFmt_VYUY: return {at(0, 1), at(0, 2), at(0, 0)};
        default: return {at(0, 0), at(1, 0), at(2, 0)};
    }
}

Samples flat_samples(const zivcolor::KernelTable& kernels, const Conversion& c, int width, int r, int g, int b) {
    Picture source(c.source, width, 2), destination(c.destination, width, 2);
    flood(source, r, g, b);
    EXPECT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
    return first_samples(destination);
}

struct Colour {
    int r, g, b;
    Samples block, tail;
};

struct Set {
    const char* name;
    std::vector<const char*> kernels;
    std::vector<Colour> colours;
};
void PrintTo(const Set& set, std::ostream* out) { *out << set.name; }

Colour same(int r, int g, int b, Samples both) { return {r, g, b, both, both}; }

const std::vector<Set>& sets() {
    static const std::vector<Set> all = {
        {"Short",
         {"zivColorRGB888toI420u8", "zivColorBGRA8888toNV12u8", "zivColorRGBA8888toNV12u8", "zivColorBGRA8888toI420u8",
          "zivColorRGBA8888toI420u8", "zivColorRGBA8888toYUYVu8", "zivColorRGB888toYUYVu8", "zivColorRGB888toYVYUu8",
          "zivColorBGR888toYVYUu8", "zivColorRGB888toUYVYu8", "zivColorBGR888toUYVYu8", "zivColorRGB888toVYUYu8",
          "zivColorBGR888toVYUYu8", "zivColorRGB888toYV24u8", "zivColorRGB888toI422Hu8", "zivColorBGR888toI422Hu8"},
         {same(255, 0, 0, {75, 85, 255}), same(0, 255, 0, {151, 43, 20}), same(0, 0, 255, {27, 255, 108}),
          same(255, 255, 0, {227, 0, 147}), same(3, 1, 1, {1, 128, 129}), same(8, 80, 32, {53, 116, 96}),
          same(79, 126, 0, {98, 72, 114}), same(37, 37, 37, {37, 128, 128}), same(128, 128, 128, {128, 128, 128})}},
        // The tail's V has eight times the gain.
        {"ShortWithSteepV",
         {"zivColorRGB888toNV12u8"},
         {{255, 0, 0, {75, 85, 255}, {75, 85, 255}},
          {0, 255, 0, {151, 43, 20}, {151, 43, 0}},
          {0, 0, 255, {27, 255, 108}, {27, 255, 0}},
          {255, 255, 0, {227, 0, 147}, {227, 0, 255}},
          {3, 1, 1, {1, 128, 129}, {1, 128, 139}},
          same(0, 0, 0, {0, 128, 128}),
          same(255, 255, 255, {255, 128, 128}),
          same(90, 90, 90, {90, 128, 128})}},
        // The tail puts U over V and leaves the byte of U alone.
        {"ShortWithOneChromaByte",
         {"zivColorRGB888toNV21u8"},
         {{255, 0, 0, {75, 85, 255}, {75, untouched, 85}},
          {0, 255, 0, {151, 43, 20}, {151, untouched, 43}},
          {0, 0, 255, {27, 255, 108}, {27, untouched, 255}},
          {255, 255, 0, {227, 0, 147}, {227, untouched, 0}},
          {3, 1, 1, {1, 128, 129}, {1, untouched, 128}}}},
        {"FineFractional",
         {"zivColorBGR888toNV21u8", "zivColorBGR888toNV12u8"},
         {same(255, 0, 0, {76, 85, 255}), same(0, 255, 0, {150, 44, 21}), same(0, 0, 255, {29, 255, 107}),
          same(255, 255, 0, {226, 1, 149}), same(3, 1, 1, {2, 128, 129})}},
        {"FineRounded",
         {"zivColorBGR888toI420u8", "zivColorBGR888toYUYVu8"},
         {same(255, 0, 0, {76, 85, 255}), same(0, 255, 0, {150, 43, 21}), same(0, 0, 255, {29, 255, 107}),
          same(255, 255, 0, {226, 0, 149}), same(3, 1, 1, {2, 127, 129})}},
        {"Float",
         {"zivColorBGRA8888toNV21u8", "zivColorRGBA8888toNV21u8"},
         {same(255, 0, 0, {76, 86, 255}),
          same(0, 255, 0, {149, 44, 22}),
          same(0, 0, 255, {29, 255, 108}),
          same(255, 255, 0, {225, 1, 148}),
          {8, 80, 32, {52, 117, 96}, {53, 117, 96}},
          {79, 126, 0, {97, 74, 115}, {97, 73, 115}},
          {3, 1, 1, {1, 128, 129}, {1, 128, 128}},
          {37, 37, 37, {36, 128, 128}, {37, 128, 128}}}},
        {"Eighths",
         {"zivColorBGRA8888toLPI422Hu8"},
         {same(255, 0, 0, {75, 90, 255}), same(0, 255, 0, {151, 52, 0}), same(0, 0, 255, {27, 242, 104}),
          same(255, 255, 0, {227, 14, 152}), same(128, 128, 128, {128, 128, 128})}},
        {"ThirtySeconds",
         {"zivColorRGBA8888toLPI422Hu8"},
         {same(255, 0, 0, {75, 85, 255}), same(0, 255, 0, {151, 43, 19}), same(0, 0, 255, {27, 255, 108}),
          same(255, 255, 0, {227, 0, 148}), same(128, 128, 128, {128, 128, 128})}},
    };
    return all;
}

class RgbSets : public testing::TestWithParam<Set> {};

// 32 columns hold a block for every kernel; 2 columns hold none.
TEST_P(RgbSets, InBlockAndTail) {
    for (const char* name : GetParam().kernels) {
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            for (const Colour& colour : GetParam().colours) {
                SCOPED_TRACE(std::string(name) + " " + std::to_string(colour.r) + " " + std::to_string(colour.g) + " " +
                             std::to_string(colour.b));
                EXPECT_EQ(flat_samples(kernels, conversion(name), 32, colour.r, colour.g, colour.b), colour.block);
                EXPECT_EQ(flat_samples(kernels, conversion(name), 2, colour.r, colour.g, colour.b), colour.tail);
            }
        });
    }
}

INSTANTIATE_TEST_SUITE_P(Examples, RgbSets, testing::ValuesIn(sets()),
                         [](const testing::TestParamInfo<Set>& row) { return std::string(row.param.name); });

std::vector<const Conversion*> from_rgb_to_yuv() {
    std::vector<const Conversion*> rows;
    for (const Conversion& c : conversions())
        if ((c.source >> 8 == 2 || c.source >> 8 == 3) && c.destination >= zivPixFmt_YUYV) rows.push_back(&c);
    return rows;
}

bool is_float(const Conversion& c) { return c.destination == zivPixFmt_NV21 && c.source >> 8 == 3; }

TEST(RgbToYuv, GreyKeepsItsLevelAndHasNoChroma) {
    const std::vector<int> lower{37, 61, 74, 93, 111, 122, 148, 186, 215, 222, 233, 244, 253};  // in the float blocks
    for (const Conversion* c : from_rgb_to_yuv()) {
        SCOPED_TRACE(c->name);
        const bool one_chroma_byte = std::string(c->name) == "zivColorRGB888toNV21u8";
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            for (int grey = 0; grey < 256; grey++) {
                const bool lowered = is_float(*c) && std::count(lower.begin(), lower.end(), grey);
                EXPECT_EQ(flat_samples(kernels, *c, 32, grey, grey, grey), (Samples{grey - lowered, 128, 128}));
                EXPECT_EQ(flat_samples(kernels, *c, 2, grey, grey, grey),
                          (Samples{grey, one_chroma_byte ? untouched : 128, 128}));
            }
        });
    }
}

TEST(RgbToYuv, AlphaHasNoEffect) {
    for (const Conversion* c : from_rgb_to_yuv()) {
        if (c->source >> 8 != 3) continue;
        SCOPED_TRACE(c->name);
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            const auto run = [&](size_t alpha) {
                Picture source(c->source, 45, 3), destination(c->destination, 45, 3);
                fill(source.bytes[0].data(), source.bytes[0].size(), 3);
                for (size_t n = 3; n < source.bytes[0].size(); n += 4)
                    source.bytes[0][n] = static_cast<uint8_t>(alpha * (n / 4 + 1));
                EXPECT_EQ(convert(kernels, *c, source, destination), zivStatus_OK);
                return destination;
            };
            Picture without = run(0), with = run(91);
            for (int k = 0; k < 3; k++) EXPECT_EQ(without.bytes[k], with.bytes[k]);
        });
    }
}

// ---- Sizes -----------------------------------------------------------------------------------------------------------------

TEST(RgbToYuv, SizesBelowTheLeastAreRefusedInEitherPicture) {
    for (const Conversion* c : from_rgb_to_yuv()) {
        SCOPED_TRACE(c->name);
        const bool packed = c->destination >> 8 == 5 || c->destination == zivPixFmt_I422H;
        const int width = c->destination == zivPixFmt_YV24 ? 1 : 2, height = packed || width == 1 ? 1 : 2;
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            const auto status = [&](int source_width, int source_height, int destination_width, int destination_height) {
                Picture source(c->source, 4, 4), destination(c->destination, 4, 4);
                source.width = source_width, source.height = source_height;
                destination.width = destination_width, destination.height = destination_height;
                const int32_t result = convert(kernels, *c, source, destination);
                if (result != zivStatus_OK) {
                    for (int k = 0; k < plane_count(c->destination); k++)
                        EXPECT_EQ(destination.bytes[k], std::vector<uint8_t>(destination.bytes[k].size(), untouched));
                }
                return result;
            };
            EXPECT_EQ(status(width, height, width, height), zivStatus_OK);
            EXPECT_EQ(status(width - 1, 4, 4, 4), zivStatus_BadArgument);
            EXPECT_EQ(status(4, height - 1, 4, 4), zivStatus_BadArgument);
            EXPECT_EQ(status(4, 4, width - 1, 4), zivStatus_BadArgument);
            EXPECT_EQ(status(4, 4, 4, height - 1), zivStatus_BadArgument);
            // A null descriptor is found before anything else.
            Picture destination(c->destination, 1, 1);
            zivcolor::Image bad = destination.image();
            bad.format = 0;
            EXPECT_EQ(c->convert(kernels, nullptr, &bad, 0), zivStatus_NullPointer);
            EXPECT_EQ(c->convert(kernels, &bad, nullptr, 0), zivStatus_NullPointer);
        });
    }
}

TEST(RgbToYuv, ASinglePixelToYv24) {
    const Conversion& c = conversion("zivColorRGB888toYV24u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        Picture source(c.source, 1, 1), destination(c.destination, 1, 1);
        flood(source, 255, 0, 0);
        ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
        EXPECT_EQ(first_samples(destination), (Samples{75, 85, 255}));
    });
}

// No sample of red has the value of the pattern.
int bytes_written(Picture& p, int plane) {
    const std::vector<uint8_t>& bytes = p.bytes[plane];
    return static_cast<int>(bytes.size()) - static_cast<int>(std::count(bytes.begin(), bytes.end(), untouched));
}

struct Extent {
    const char* name;
    int source_width, source_height, width, height;
    std::vector<int> bytes;  // written to each plane
};
void PrintTo(const Extent& row, std::ostream* out) {
    *out << row.name << " " << row.source_width << "x" << row.source_height << " to " << row.width << "x" << row.height;
}

class WrittenBytes : public testing::TestWithParam<Extent> {};

TEST_P(WrittenBytes, OfEveryPlane) {
    const Extent& row = GetParam();
    const Conversion& c = conversion(row.name);
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        // Memory for the larger picture on both sides; the sizes are those of the row.
        const int columns = std::max(row.source_width, row.width), rows = std::max(row.source_height, row.height);
        Picture source(c.source, columns, rows), destination(c.destination, columns, rows, 8);
        source.width = row.source_width, source.height = row.source_height;
        destination.width = row.width, destination.height = row.height;
        flood(source, 255, 0, 0);
        ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
        for (size_t k = 0; k < row.bytes.size(); k++)
            EXPECT_EQ(bytes_written(destination, static_cast<int>(k)), row.bytes[k]) << "plane " << k;
    });
}

INSTANTIATE_TEST_SUITE_P(
    Examples, WrittenBytes,
    testing::Values(
        // One block; one block and one pixel; no block.
        Extent{"zivColorRGB888toI420u8", 16, 2, 16, 2, {32, 8, 8}}, Extent{"zivColorRGB888toI420u8", 17, 2, 17, 2, {34, 9, 9}},
        Extent{"zivColorRGB888toI420u8", 15, 2, 15, 2, {30, 8, 8}}, Extent{"zivColorBGR888toI420u8", 17, 2, 17, 2, {34, 9, 9}},
        // Chroma of the last odd row and column.
        Extent{"zivColorRGB888toI420u8", 3, 3, 3, 3, {9, 4, 4}}, Extent{"zivColorBGR888toI420u8", 3, 3, 3, 3, {9, 4, 4}},
        Extent{"zivColorBGRA8888toI420u8", 3, 3, 3, 3, {9, 4, 4}}, Extent{"zivColorRGBA8888toI420u8", 3, 3, 3, 3, {9, 4, 4}},
        Extent{"zivColorBGR888toNV21u8", 17, 3, 17, 3, {51, 36}}, Extent{"zivColorBGR888toNV12u8", 5, 3, 5, 3, {15, 12}},
        Extent{"zivColorRGB888toNV12u8", 17, 3, 17, 3, {51, 36}}, Extent{"zivColorBGRA8888toNV12u8", 17, 3, 17, 3, {51, 36}},
        // The tail's chroma falls on one byte.
        Extent{"zivColorRGB888toNV21u8", 2, 2, 2, 2, {4, 1}}, Extent{"zivColorRGB888toNV21u8", 20, 2, 20, 2, {40, 17}},
        Extent{"zivColorRGB888toNV21u8", 16, 2, 16, 2, {32, 16}},
        // The width of the source.
        Extent{"zivColorRGBA8888toI420u8", 40, 2, 20, 2, {80, 20, 20}},
        Extent{"zivColorBGRA8888toI420u8", 40, 2, 20, 2, {40, 10, 10}},
        Extent{"zivColorBGR888toI422Hu8", 40, 2, 20, 2, {80, 40, 40}},
        Extent{"zivColorRGB888toI422Hu8", 40, 2, 20, 2, {40, 20, 20}},
        Extent{"zivColorBGRA8888toLPI422Hu8", 40, 6, 20, 3, {240, 240}},
        Extent{"zivColorRGBA8888toLPI422Hu8", 40, 6, 20, 3, {240, 240}},
        // A pair is written whole.
        Extent{"zivColorRGB888toYUYVu8", 2, 1, 2, 1, {4}}, Extent{"zivColorRGB888toYUYVu8", 3, 1, 3, 1, {8}},
        Extent{"zivColorBGR888toYUYVu8", 17, 1, 17, 1, {36}}, Extent{"zivColorRGBA8888toYUYVu8", 18, 1, 18, 1, {36}},
        Extent{"zivColorBGR888toVYUYu8", 16, 1, 16, 1, {32}}, Extent{"zivColorRGB888toI422Hu8", 2, 1, 2, 1, {2, 1, 1}},
        Extent{"zivColorRGB888toI422Hu8", 3, 1, 3, 1, {4, 2, 2}}, Extent{"zivColorBGR888toI422Hu8", 3, 1, 3, 1, {4, 2, 2}},
        Extent{"zivColorRGB888toYV24u8", 1, 1, 1, 1, {1, 1, 1}}, Extent{"zivColorRGB888toYV24u8", 9, 2, 9, 2, {18, 18, 18}},
        Extent{"zivColorBGRA8888toLPI422Hu8", 2, 2, 2, 2, {4, 4}}, Extent{"zivColorRGBA8888toLPI422Hu8", 3, 2, 3, 2, {6, 8}}),
    [](const testing::TestParamInfo<Extent>& row) {
        const Extent& e = row.param;
        return std::string(e.name) + "_" + std::to_string(e.source_width) + "x" + std::to_string(e.source_height) + "_to_" +
               std::to_string(e.width) + "x" + std::to_string(e.height);
    });

// ---- Siting ----------------------------------------------------------------------------------------------------------------

void set_pixel(Picture& p, int row, int column, int r, int g, int b) {
    const bool red_first = p.format == zivPixFmt_RGB888 || p.format == zivPixFmt_RGBA8888;
    uint8_t* at = p.at(0, row, column * tight_pitch(p.format, 0, 1));
    at[0] = static_cast<uint8_t>(red_first ? r : b);
    at[1] = static_cast<uint8_t>(g);
    at[2] = static_cast<uint8_t>(red_first ? b : r);
}

// Red gives the chroma of a pair, and green the luma beside it, in the tail and in a block.
TEST(RgbToYuv, PackedPairsTakeTheChromaOfTheirFirstPixel) {
    const std::pair<const char*, Bytes> rows[] = {
        {"zivColorRGB888toYUYVu8", {75, 85, 151, 255}}, {"zivColorRGBA8888toYUYVu8", {75, 85, 151, 255}},
        {"zivColorBGR888toYUYVu8", {76, 85, 150, 255}}, {"zivColorRGB888toYVYUu8", {75, 255, 151, 85}},
        {"zivColorBGR888toYVYUu8", {75, 255, 151, 85}}, {"zivColorRGB888toUYVYu8", {85, 75, 255, 151}},
        {"zivColorBGR888toUYVYu8", {85, 75, 255, 151}}, {"zivColorRGB888toVYUYu8", {255, 75, 85, 151}},
        {"zivColorBGR888toVYUYu8", {255, 75, 85, 151}}};
    for (const auto& [name, bytes] : rows) {
        const Conversion& c = conversion(name);
        on_every_table([&, &name = name, &bytes = bytes](const zivcolor::KernelTable& kernels) {
            for (const int width : {2, 16}) {
                Picture source(c.source, width, 1), destination(c.destination, width, 1);
                flood(source, 9, 99, 199);
                set_pixel(source, 0, 0, 255, 0, 0);
                set_pixel(source, 0, 1, 0, 255, 0);
                ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
                EXPECT_EQ(destination.run(0, 0, 0, 4), bytes) << name << " " << width;
            }
        });
    }
}

// Of every square of quartered chroma the upper left pixel alone counts: three others of any colour change nothing.
TEST(RgbToYuv, QuarteredChromaIsThatOfTheUpperLeftPixel) {
    for (const Conversion* c : from_rgb_to_yuv()) {
        if (c->destination != zivPixFmt_NV12 && c->destination != zivPixFmt_NV21 && c->destination != zivPixFmt_I420) continue;
        SCOPED_TRACE(c->name);
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            Picture flat(c->source, 40, 4), mixed(c->source, 40, 4);
            Picture from_flat(c->destination, 40, 4), from_mixed(c->destination, 40, 4);
            flood(flat, 200, 50, 90);
            flood(mixed, 200, 50, 90);
            // Blue stays: the members to NV12 share it between the halves of a block.
            for (int y = 0; y < 4; y++)
                for (int x = 0; x < 40; x++)
                    if (x % 2 == 1 || y % 2 == 1) set_pixel(mixed, y, x, 6 * x, 255 - 6 * x, 90);
            ASSERT_EQ(convert(kernels, *c, flat, from_flat), zivStatus_OK);
            ASSERT_EQ(convert(kernels, *c, mixed, from_mixed), zivStatus_OK);
            EXPECT_NE(from_flat.bytes[0], from_mixed.bytes[0]);
            EXPECT_EQ(from_flat.bytes[1], from_mixed.bytes[1]);
            EXPECT_EQ(from_flat.bytes[2], from_mixed.bytes[2]);
        });
    }
}

// Chroma rows of the last, odd row and column: image rows and columns 0 and 2.
TEST(RgbToYuv, OddSizesEndOnAWholeChromaSample) {
    for (const char* name : {"zivColorRGB888toI420u8", "zivColorBGRA8888toI420u8", "zivColorRGBA8888toI420u8"}) {
        const Conversion& c = conversion(name);
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            Picture source(c.source, 3, 3), destination(c.destination, 3, 3);
            flood(source, 0, 0, 0);
            set_pixel(source, 0, 0, 255, 0, 0);
            set_pixel(source, 0, 2, 0, 255, 0);
            set_pixel(source, 2, 0, 0, 0, 255);
            set_pixel(source, 2, 2, 255, 255, 0);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            EXPECT_EQ(destination.run(0, 0, 0, 3), (Bytes{75, 0, 151}));
            EXPECT_EQ(destination.run(0, 1, 0, 3), (Bytes{0, 0, 0}));
            EXPECT_EQ(destination.run(0, 2, 0, 3), (Bytes{27, 0, 227}));
            EXPECT_EQ(destination.run(1, 0, 0, 2), (Bytes{85, 43}));
            EXPECT_EQ(destination.run(1, 1, 0, 2), (Bytes{255, 0}));
            EXPECT_EQ(destination.run(2, 0, 0, 2), (Bytes{255, 20}));
            EXPECT_EQ(destination.run(2, 1, 0, 2), (Bytes{108, 147}));
        });
    }
}

// ---- Members with ways of their own ----------------------------------------------------------------------------------------

TEST(RgbToYuv, RgbToNv21LosesItsTailsChroma) {
    const Conversion& c = conversion("zivColorRGB888toNV21u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        {
            Picture source(c.source, 2, 2), destination(c.destination, 2, 2);
            flood(source, 255, 0, 0);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            EXPECT_EQ(destination.run(0, 0, 0, 2), (Bytes{75, 75}));
            EXPECT_EQ(destination.run(0, 1, 0, 2), (Bytes{75, 75}));
            EXPECT_EQ(destination.run(1, 0, 0, 2), (Bytes{85, untouched}));
        }
        {
            // Bytes 0 to 15 are the block's pairs, byte 16 the U of column 18.
            Picture source(c.source, 20, 2), destination(c.destination, 20, 2);
            flood(source, 255, 0, 0);
            set_pixel(source, 0, 18, 0, 255, 0);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            Bytes row;
            for (int n = 0; n < 8; n++) row.insert(row.end(), {255, 85});
            row.insert(row.end(), {43, untouched, untouched, untouched});
            EXPECT_EQ(destination.run(1, 0, 0, 20), row);
        }
    });
}

TEST(RgbToYuv, RgbToNv21StepsChromaByTheLumaPitch) {
    const Conversion& c = conversion("zivColorRGB888toNV21u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        Picture source(c.source, 16, 4), destination(c.destination, 16, 4);
        flood(source, 255, 0, 0);
        const zivcolor::Image s = source.image();
        zivcolor::Image d = destination.image();
        d.pitch[1] = 3;
        ASSERT_EQ(c.convert(kernels, &s, &d, 0), zivStatus_OK);
        for (int k = 0; k < 2; k++)
            for (int n = 0; n < 16; n++) EXPECT_EQ(*destination.at(1, k, n), n % 2 ? 85 : 255);
        EXPECT_EQ(*destination.at(1, 2, 0), untouched);
    });
}

TEST(RgbToYuv, FloatBlocksNeverEndARow) {
    for (const char* name : {"zivColorBGRA8888toNV21u8", "zivColorRGBA8888toNV21u8"}) {
        const Conversion& c = conversion(name);
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            // A block lowers grey 37 by one, the tail does not.
            const std::pair<int, int> rows[] = {{2, 0}, {8, 0}, {9, 8}, {15, 8}, {16, 8}, {17, 16}, {24, 16}, {25, 24}};
            for (const auto& [width, blocked] : rows) {
                Picture source(c.source, width, 2), destination(c.destination, width, 2);
                flood(source, 37, 37, 37);
                ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
                Bytes luma(static_cast<size_t>(width), 37);
                std::fill(luma.begin(), luma.begin() + blocked, 36);
                EXPECT_EQ(destination.run(0, 0, 0, width), luma) << name << " " << width;
                EXPECT_EQ(destination.run(0, 1, 0, width), luma) << name << " " << width;
            }
        });
    }
}

// A block's luma takes the blue of its first half in its second half too.
TEST(RgbToYuv, Nv12BlocksShareTheirBlue) {
    for (const char* name : {"zivColorBGRA8888toNV12u8", "zivColorRGBA8888toNV12u8"}) {
        const Conversion& c = conversion(name);
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            const auto run = [&](int width, int first_blue, int second_blue, int last_blue) {
                Picture source(c.source, width, 2), destination(c.destination, width, 2);
                flood(source, 0, 0, last_blue);
                for (int y = 0; y < 2; y++)
                    for (int x = 0; x < std::min(width, 16); x++)
                        set_pixel(source, y, x, 0, 0, x < 8 ? first_blue : second_blue);
                EXPECT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
                return destination;
            };
            const auto pairs = [](Bytes first, Bytes second) {
                Bytes row;
                for (int n = 0; n < 4; n++) row.insert(row.end(), first.begin(), first.end());
                for (int n = 0; n < 4; n++) row.insert(row.end(), second.begin(), second.end());
                return row;
            };
            Picture blue_first = run(16, 255, 0, 0);
            EXPECT_EQ(blue_first.run(0, 0, 0, 16), Bytes(16, 27));
            EXPECT_EQ(blue_first.run(1, 0, 0, 16), pairs({255, 108}, {112, 108}));
            Picture blue_last = run(16, 0, 255, 0);
            EXPECT_EQ(blue_last.run(0, 0, 0, 16), Bytes(16, 0));
            EXPECT_EQ(blue_last.run(1, 0, 0, 16), pairs({128, 128}, {255, 128}));
            // Without a block every pixel has its own luma.
            Picture narrow = run(15, 255, 0, 0);
            EXPECT_EQ(narrow.run(0, 0, 0, 15), (Bytes{27, 27, 27, 27, 27, 27, 27, 27, 0, 0, 0, 0, 0, 0, 0}));
            EXPECT_EQ(narrow.run(1, 0, 0, 16), pairs({255, 108}, {128, 128}));
            // So has the pixel after a block.
            Picture wide = run(17, 0, 0, 255);
            EXPECT_EQ(wide.run(0, 0, 14, 3), (Bytes{0, 0, 27}));
        });
    }
}

// Of an odd width the last pair takes the luma of the pixel past the row.
TEST(RgbToYuv, OddPairsReachPastTheirRow) {
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        {
            const Conversion& c = conversion("zivColorRGB888toYUYVu8");
            Picture source(c.source, 3, 1), destination(c.destination, 3, 1);
            flood(source, 255, 0, 0);
            set_pixel(source, 0, 3, 200, 200, 200);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            EXPECT_EQ(destination.run(0, 0, 0, 9), (Bytes{75, 85, 75, 255, 75, 85, 200, 255, untouched}));
        }
        for (const char* name : {"zivColorRGB888toI422Hu8", "zivColorBGR888toI422Hu8"}) {
            const Conversion& c = conversion(name);
            Picture source(c.source, 3, 1), destination(c.destination, 3, 1);
            flood(source, 255, 0, 0);
            set_pixel(source, 0, 3, 200, 200, 200);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            EXPECT_EQ(destination.run(0, 0, 0, 5), (Bytes{75, 75, 75, 200, untouched}));
            EXPECT_EQ(destination.run(1, 0, 0, 3), (Bytes{85, 85, untouched}));
            EXPECT_EQ(destination.run(2, 0, 0, 3), (Bytes{255, 255, untouched}));
        }
    });
}

// No pitch is read: rows lie end to end, chroma rows of an odd width one byte longer.
TEST(RgbToYuv, BgraToLinePackedRunsOn) {
    const Conversion& c = conversion("zivColorBGRA8888toLPI422Hu8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        for (const bool nonsense : {false, true}) {
            Picture source(c.source, 3, 2), destination(c.destination, 3, 2);
            flood(source, 255, 0, 0);
            for (int x = 0; x < 3; x++) set_pixel(source, 1, x, 0, 255, 0);
            zivcolor::Image s = source.image(), d = destination.image();
            for (int k = 0; k < 4 && nonsense; k++) s.pitch[k] = 999999 * (k + 1), d.pitch[k] = -77 * k;
            ASSERT_EQ(c.convert(kernels, &s, &d, 0), zivStatus_OK);
            const uint8_t *luma = destination.at(0, 0, 0), *chroma = destination.at(1, 0, 0);
            EXPECT_EQ(Bytes(luma, luma + 7), (Bytes{75, 75, 75, 151, 151, 151, untouched}));
            EXPECT_EQ(Bytes(chroma, chroma + 9), (Bytes{90, 255, 90, 255, 52, 0, 52, 0, untouched}));
        }
    });
}

}  // namespace
