// SPDX-License-Identifier: MIT
// Worked examples of the YUV to RGB kernels: colours, and which pixels are written from where.
#include <algorithm>

#include "harness/picture.h"

namespace {

using namespace harness;

// ---- Flat colours ----------------------------------------------------------------------------------------------------------

using Bytes = std::vector<int>;

struct Flat {
    const char* name;
    int luma, u, v;
    Bytes block;  // a pixel of a picture 16 columns wide
    Bytes tail;   // one of the first two columns of a narrow picture
    int tail_width;
};
void PrintTo(const Flat& row, std::ostream* out) { *out << row.name << " " << row.luma << " " << row.u << " " << row.v; }

const std::vector<Flat>& flats() {
    static const std::vector<Flat> rows = {
        // Semi-planar 4:2:0, 24 bits
        {"zivColorNV21toBGR888u8", 128, 128, 255, {128, 37, 255}, {128, 37, 255}, 4},
        {"zivColorNV12toBGR888u8", 128, 128, 255, {128, 37, 255}, {128, 37, 255}, 4},
        {"zivColorNV21toBGR888u8", 200, 200, 60, {255, 224, 105}, {255, 224, 105}, 4},
        {"zivColorNV12toBGR888u8", 200, 200, 60, {255, 224, 105}, {255, 224, 105}, 4},
        {"zivColorNV21toRGB888u8", 128, 0, 128, {128, 150, 0}, {156, 172, 0}, 4},
        {"zivColorNV21toRGB888u8", 100, 60, 200, {201, 61, 0}, {234, 73, 0}, 4},
        {"zivColorNV21toRGB888u8", 0, 255, 0, {0, 71, 226}, {0, 49, 76}, 4},
        // Semi-planar 4:2:0, 32 bits
        {"zivColorNV21toBGRA8888u8", 100, 60, 200, {0, 71, 200, 200}, {0, 71, 200, 200}, 4},
        {"zivColorNV21toRGBA8888u8", 100, 60, 200, {201, 72, 0, 200}, {201, 72, 0, 200}, 4},
        {"zivColorNV12toRGBA8888u8", 100, 60, 200, {201, 73, 0, 200}, {201, 73, 0, 200}, 4},
        {"zivColorNV12toBGRA8888u8", 100, 60, 200, {0, 73, 201, 200}, {0, 73, 234, 200}, 4},
        {"zivColorNV21toBGRA8888u8", 2, 123, 108, {0, 18, 0, 200}, {0, 17, 0, 200}, 4},
        {"zivColorNV21toBGRA8888u8", 255, 0, 255, {28, 208, 255, 200}, {28, 208, 255, 200}, 4},
        {"zivColorNV21toRGBA8888u8", 255, 0, 255, {255, 208, 27, 200}, {255, 208, 27, 200}, 4},
        {"zivColorNV12toBGRA8888u8", 255, 0, 255, {27, 208, 255, 200}, {255, 208, 27, 200}, 4},
        {"zivColorNV12toBGRA8888u8", 0, 255, 0, {226, 49, 0, 200}, {76, 49, 0, 200}, 4},
        // Planar 4:2:0
        {"zivColorI420toBGR888u8", 100, 60, 200, {0, 72, 201}, {0, 72, 201}, 2},
        {"zivColorI420toRGB888u8", 100, 60, 200, {201, 73, 0}, {201, 73, 0}, 2},
        {"zivColorI420toBGRA8888u8", 100, 60, 200, {0, 73, 201, 200}, {0, 73, 201, 200}, 2},
        {"zivColorI420toRGBA8888u8", 100, 60, 200, {201, 73, 0, 200}, {201, 73, 0, 200}, 2},
        {"zivColorYV12toBGR888u8", 100, 60, 200, {0, 73, 201}, {0, 124, 100}, 2},
        {"zivColorYV12toBGR888u8", 255, 0, 255, {27, 208, 255}, {27, 255, 255}, 2},
        {"zivColorYV12toBGR888u8", 128, 128, 255, {128, 37, 255}, {128, 128, 128}, 2},
        {"zivColorI420toBGR888u8", 200, 200, 60, {255, 224, 105}, {255, 224, 105}, 2},
        {"zivColorI420toRGB888u8", 200, 200, 60, {104, 225, 255}, {104, 225, 255}, 2},
        // 4:2:2
        {"zivColorYUYVtoBGR888u8", 128, 128, 255, {128, 37, 255}, {255, 37, 128}, 2},
        {"zivColorYUYVtoBGR888u8", 100, 60, 200, {0, 72, 201}, {201, 72, 236}, 2},
        {"zivColorYUYVtoBGR888u8", 0, 255, 0, {225, 48, 0}, {77, 48, 225}, 2},
        {"zivColorYUYVtoBGR888u8", 10, 0, 255, {0, 0, 188}, {188, 219, 39}, 2},
        {"zivColorYUYVtoBGR888u8", 122, 0, 255, {0, 75, 255}, {44, 75, 151}, 2},  // R = 300, B = -105
        {"zivColorYUYVtoRGB888u8", 100, 60, 200, {201, 73, 0}, {201, 73, 234}, 2},
        {"zivColorYUYVtoRGB888u8", 0, 255, 0, {0, 49, 226}, {76, 49, 226}, 2},
        {"zivColorYUYVtoRGB888u8", 10, 0, 255, {188, 0, 0}, {188, 219, 38}, 2},
        {"zivColorYUYVtoRGB888u8", 102, 68, 128, {102, 123, 0}, {102, 123, 251}, 2},  // B = -5
        {"zivColorYUYVtoRGBA8888u8", 100, 60, 200, {201, 73, 0, 200}, {201, 73, 0, 200}, 2},
        {"zivColorLPI422HtoBGRA8888u8", 100, 60, 200, {0, 73, 201, 200}, {0, 73, 201, 200}, 2},
        {"zivColorLPI422HtoRGBA8888u8", 100, 60, 200, {201, 73, 0, 200}, {201, 73, 0, 200}, 2},
    };
    return rows;
}

class FlatYuv : public testing::TestWithParam<Flat> {};

// YV12 to RGB888 writes all rows over destination row 1.
int written_row(const Conversion& c) { return std::string(c.name) == "zivColorYV12toRGB888u8" ? 1 : 0; }

void expect_flat(const char* name, int width, int luma, int u, int v, const Bytes& pixel, int columns) {
    const Conversion& c = conversion(name);
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        Picture source(c.source, width, 2), destination(c.destination, width, 2);
        flood(source, luma, u, v);
        ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
        const int size = static_cast<int>(pixel.size());
        for (int row = written_row(c); row < 2; row++)
            for (int x = 0; x < columns; x++)
                ASSERT_EQ(destination.run(0, row, x * size, size), pixel) << "row " << row << " column " << x;
    });
}

TEST_P(FlatYuv, Block) {
    const Flat& row = GetParam();
    expect_flat(row.name, 16, row.luma, row.u, row.v, row.block, 16);
}

TEST_P(FlatYuv, Tail) {
    const Flat& row = GetParam();
    expect_flat(row.name, row.tail_width, row.luma, row.u, row.v, row.tail, 2);
}

INSTANTIATE_TEST_SUITE_P(Examples, FlatYuv, testing::ValuesIn(flats()), [](const testing::TestParamInfo<Flat>& row) {
    return std::string(row.param.name) + "_" + std::to_string(row.param.luma) + "_" + std::to_string(row.param.u) + "_" +
           std::to_string(row.param.v);
});

TEST(YuvToRgb, GreyStaysGreyInBlockAndTail) {
    for (const Conversion& c : conversions()) {
        const bool to_rgb = (c.destination >> 8 == 2 || c.destination >> 8 == 3) && c.source >= zivPixFmt_YUYV;
        if (!to_rgb) continue;
        SCOPED_TRACE(c.name);
        for (int luma = 0; luma < 256; luma++) {
            const Bytes pixel = c.alpha ? Bytes{luma, luma, luma, 200} : Bytes{luma, luma, luma};
            expect_flat(c.name, 16, luma, 128, 128, pixel, 16);
            expect_flat(c.name, 4, luma, 128, 128, pixel, 2);
        }
    }
}

// ---- Which pixels are written ----------------------------------------------------------------------------------------------

// Marks the pixels of a row: the first byte of each, or -1 where the whole pixel still holds the pattern.
std::vector<int> row_of_pixels(Picture& picture, int row, int columns) {
    const int size = tight_pitch(picture.format, 0, 1);
    std::vector<int> firsts;
    for (int x = 0; x < columns; x++) {
        const Bytes pixel = picture.run(0, row, x * size, size);
        firsts.push_back(pixel == Bytes(static_cast<size_t>(size), untouched) ? -1 : pixel[0]);
    }
    return firsts;
}

// How many columns from the left of a row are written; columns beyond the width are looked at too, and no pixel after the first
// unwritten one may be written.
int written_columns(Picture& picture, int row) {
    const int columns = picture.width + 4;
    const std::vector<int> firsts = row_of_pixels(picture, row, columns);
    int written = 0;
    while (written < columns && firsts[static_cast<size_t>(written)] >= 0) written++;
    for (int x = written; x < columns; x++) EXPECT_EQ(firsts[static_cast<size_t>(x)], -1) << "column " << x << " of " << row;
    return written;
}

struct Extent {
    const char* name;
    int width, height;
    std::vector<int> columns;  // written columns of every row from 0 on, one row past the picture included
};
void PrintTo(const Extent& row, std::ostream* out) { *out << row.name << " " << row.width << "x" << row.height; }

class WrittenColumns : public testing::TestWithParam<Extent> {};

TEST_P(WrittenColumns, AndNoOthers) {
    const Extent& row = GetParam();
    const Conversion& c = conversion(row.name);
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        // Rows are padded on both sides of the odd reach.
        Picture source(c.source, row.width, row.height, 24), destination(c.destination, row.width, row.height, 24);
        flood(source, 90, 128, 128);
        ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
        for (size_t i = 0; i < row.columns.size(); i++)
            EXPECT_EQ(written_columns(destination, static_cast<int>(i)), row.columns[i]) << "row " << i;
    });
}

INSTANTIATE_TEST_SUITE_P(
    Examples, WrittenColumns,
    testing::Values(
        Extent{"zivColorNV21toBGR888u8", 2, 2, {2, 2, 0}}, Extent{"zivColorNV12toBGR888u8", 2, 2, {2, 2, 0}},
        Extent{"zivColorNV21toRGB888u8", 2, 2, {0, 0, 0}}, Extent{"zivColorNV21toBGR888u8", 16, 2, {16, 16, 0}},
        Extent{"zivColorNV12toBGR888u8", 16, 2, {16, 16, 0}}, Extent{"zivColorNV21toRGB888u8", 16, 2, {16, 16, 0}},
        Extent{"zivColorNV21toBGR888u8", 17, 2, {16, 16, 0}}, Extent{"zivColorNV12toBGR888u8", 17, 2, {16, 16, 0}},
        Extent{"zivColorNV21toBGR888u8", 18, 2, {18, 18, 0}}, Extent{"zivColorNV21toRGB888u8", 18, 2, {16, 16, 0}},
        Extent{"zivColorNV21toRGB888u8", 20, 2, {18, 18, 0}}, Extent{"zivColorNV21toRGB888u8", 19, 2, {18, 18, 0}},
        Extent{"zivColorNV21toRGB888u8", 17, 2, {16, 16, 0}}, Extent{"zivColorNV21toBGR888u8", 16, 3, {16, 16, 0}},
        Extent{"zivColorNV12toBGR888u8", 16, 3, {16, 16, 0}}, Extent{"zivColorNV21toRGB888u8", 16, 3, {16, 16, 0}},
        Extent{"zivColorNV21toBGRA8888u8", 2, 2, {2, 2, 0}}, Extent{"zivColorNV21toRGBA8888u8", 2, 2, {2, 2, 0}},
        Extent{"zivColorNV12toRGBA8888u8", 2, 2, {0, 0, 0}}, Extent{"zivColorNV12toBGRA8888u8", 2, 2, {0, 0, 0}},
        Extent{"zivColorNV12toRGBA8888u8", 18, 2, {16, 16, 0}}, Extent{"zivColorNV12toBGRA8888u8", 20, 2, {18, 18, 0}},
        Extent{"zivColorNV21toBGRA8888u8", 18, 3, {18, 18, 0}}, Extent{"zivColorNV21toRGBA8888u8", 18, 3, {18, 18, 0}},
        Extent{"zivColorNV12toRGBA8888u8", 32, 3, {32, 32, 0}}, Extent{"zivColorNV12toBGRA8888u8", 32, 3, {32, 32, 0}},
        Extent{"zivColorI420toBGR888u8", 2, 2, {2, 2, 0}}, Extent{"zivColorI420toRGB888u8", 2, 2, {2, 2, 0}},
        Extent{"zivColorI420toBGRA8888u8", 2, 2, {2, 2, 0}}, Extent{"zivColorI420toRGBA8888u8", 2, 2, {2, 2, 0}},
        Extent{"zivColorYV12toBGR888u8", 2, 2, {2, 2, 0}}, Extent{"zivColorYV12toRGB888u8", 2, 2, {0, 2, 0}},
        Extent{"zivColorI420toBGR888u8", 18, 3, {18, 18, 0}}, Extent{"zivColorI420toRGB888u8", 19, 3, {18, 18, 0}},
        Extent{"zivColorI420toBGRA8888u8", 17, 3, {16, 16, 0}}, Extent{"zivColorI420toRGBA8888u8", 16, 3, {16, 16, 0}},
        Extent{"zivColorYV12toBGR888u8", 17, 3, {17, 17, 17, 0}}, Extent{"zivColorYV12toRGB888u8", 17, 3, {0, 17, 0, 0}},
        Extent{"zivColorYUYVtoRGB888u8", 3, 1, {4, 0}}, Extent{"zivColorYUYVtoBGR888u8", 3, 1, {4, 0}},
        Extent{"zivColorYUYVtoRGBA8888u8", 3, 1, {4, 0}}, Extent{"zivColorYUYVtoRGBA8888u8", 17, 2, {18, 18, 0}},
        Extent{"zivColorYUYVtoBGR888u8", 2, 1, {2, 0}}, Extent{"zivColorLPI422HtoRGBA8888u8", 17, 2, {16, 16, 0}},
        Extent{"zivColorLPI422HtoRGBA8888u8", 3, 2, {2, 2, 0}}),
    [](const testing::TestParamInfo<Extent>& row) {
        return std::string(row.param.name) + "_" + std::to_string(row.param.width) + "x" + std::to_string(row.param.height);
    });

// ---- Sizes -----------------------------------------------------------------------------------------------------------------

TEST(YuvToRgb, SizesBelowTheLeastAreRefusedInEitherPicture) {
    for (const Conversion& c : conversions()) {
        const bool to_rgb = (c.destination >> 8 == 2 || c.destination >> 8 == 3) && c.source >= zivPixFmt_YUYV;
        if (!to_rgb) continue;
        SCOPED_TRACE(c.name);
        const int least_height = c.source == zivPixFmt_YUYV ? 1 : 2;
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            const auto status = [&](int source_width, int source_height, int width, int height) {
                Picture source(c.source, 4, 4), destination(c.destination, 4, 4);
                source.width = source_width, source.height = source_height;
                destination.width = width, destination.height = height;
                const std::vector<uint8_t> before = destination.bytes[0];
                const int32_t result = convert(kernels, c, source, destination);
                if (result != zivStatus_OK) {
                    EXPECT_EQ(destination.bytes[0], before);
                }
                return result;
            };
            EXPECT_EQ(status(2, least_height, 2, least_height), zivStatus_OK);
            EXPECT_EQ(status(1, 4, 4, 4), zivStatus_BadArgument);
            EXPECT_EQ(status(4, least_height - 1, 4, 4), zivStatus_BadArgument);
            EXPECT_EQ(status(4, 4, 1, 4), zivStatus_BadArgument);
            EXPECT_EQ(status(4, 4, 4, least_height - 1), zivStatus_BadArgument);
        });
    }
}

// Numbers every luma sample by its place.
void number_luma(Picture& source, int rows, int columns) {
    for (int y = 0; y < rows; y++)
        for (int x = 0; x < columns; x++) *source.at(0, y, x) = static_cast<uint8_t>(7 * y + 3 * x);
}

TEST(YuvToRgb, ASmallerDestinationTakesTheUpperLeftCorner) {
    for (const char* name : {"zivColorNV21toBGR888u8", "zivColorNV12toBGR888u8", "zivColorNV21toRGB888u8"}) {
        const Conversion& c = conversion(name);
        on_every_table([&](const zivcolor::KernelTable& kernels) {
            Picture source(c.source, 640, 480), destination(c.destination, 320, 240);
            flood(source, 0, 128, 128);
            number_luma(source, 480, 640);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            for (int y = 0; y < 240; y++)
                for (int x = 0; x < 320; x++) {
                    const int luma = *source.at(0, y, x);
                    ASSERT_EQ(destination.run(0, y, 3 * x, 3), (Bytes{luma, luma, luma})) << name << " " << x << "," << y;
                }
        });
    }
}

// ---- Members with ways of their own ----------------------------------------------------------------------------------------

std::vector<int> greys(Picture& picture, int row) { return row_of_pixels(picture, row, picture.width); }

void set_luma(Picture& source, int row, const std::vector<uint8_t>& luma) {
    std::copy(luma.begin(), luma.end(), source.at(0, row, 0));
}

TEST(YuvToRgb, SemiplanarTailsCrossTheirRows) {
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        const auto run = [&](const char* name) {
            const Conversion& c = conversion(name);
            Picture source(c.source, 4, 2), destination(c.destination, 4, 2);
            flood(source, 0, 128, 128);
            set_luma(source, 0, {10, 20, 0, 0});
            set_luma(source, 1, {30, 40, 0, 0});
            EXPECT_EQ(convert(kernels, c, source, destination, 9), zivStatus_OK);
            return destination;
        };
        for (const char* name : {"zivColorNV12toRGBA8888u8", "zivColorNV12toBGRA8888u8"}) {
            Picture crossed = run(name);
            EXPECT_EQ(crossed.run(0, 0, 0, 8), (Bytes{10, 10, 10, 9, 40, 40, 40, 9})) << name;
            EXPECT_EQ(crossed.run(0, 1, 0, 8), (Bytes{30, 30, 30, 9, 20, 20, 20, 9})) << name;
            EXPECT_EQ(crossed.run(0, 0, 8, 8), Bytes(8, untouched)) << name;
            EXPECT_EQ(crossed.run(0, 1, 8, 8), Bytes(8, untouched)) << name;
        }
        for (const char* name : {"zivColorNV21toRGBA8888u8", "zivColorNV21toBGRA8888u8"}) {
            Picture straight = run(name);
            EXPECT_EQ(straight.run(0, 0, 0, 16), (Bytes{10, 10, 10, 9, 20, 20, 20, 9, 0, 0, 0, 9, 0, 0, 0, 9})) << name;
            EXPECT_EQ(straight.run(0, 1, 0, 16), (Bytes{30, 30, 30, 9, 40, 40, 40, 9, 0, 0, 0, 9, 0, 0, 0, 9})) << name;
        }
    });
}

TEST(YuvToRgb, PlanarToBgrReadsLumaAheadInItsTail) {
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        const auto run = [&](const char* name) {
            const Conversion& c = conversion(name);
            Picture source(c.source, 4, 2, 4), destination(c.destination, 4, 2);
            flood(source, 0, 128, 128);
            set_luma(source, 0, {10, 20, 30, 40, 50, 60, 70, 80});
            set_luma(source, 1, {110, 120, 130, 140, 150, 160, 170, 180});
            EXPECT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            return destination;
        };
        Picture ahead = run("zivColorI420toBGR888u8"), straight = run("zivColorI420toRGB888u8");
        EXPECT_EQ(greys(ahead, 0), (Bytes{30, 40, 70, 80}));
        EXPECT_EQ(greys(ahead, 1), (Bytes{130, 140, 170, 180}));
        EXPECT_EQ(greys(straight, 0), (Bytes{10, 20, 30, 40}));
        EXPECT_EQ(greys(straight, 1), (Bytes{110, 120, 130, 140}));
    });
}

// For 18 columns the one pass of the tail reads columns 18 and 19, for 8 columns the last one columns 14 and 15.
TEST(YuvToRgb, PlanarToBgrReadsPastItsRow) {
    const Conversion& c = conversion("zivColorI420toBGR888u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        for (const int width : {8, 18}) {
            Picture source(c.source, width, 2, 16), destination(c.destination, width, 2);
            flood(source, 0, 128, 128);
            number_luma(source, 2, width + 8);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            const int ahead = width == 8 ? 14 : 18;
            for (int y = 0; y < 2; y++)
                for (int k = 0; k < 2; k++)
                    EXPECT_EQ(greys(destination, y)[static_cast<size_t>(width - 2 + k)], *source.at(0, y, ahead + k)) << width;
        }
    });
}

TEST(YuvToRgb, Yv12ToRgbPilesItsRowsOnRow1) {
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        const auto run = [&](const char* name) {
            const Conversion& c = conversion(name);
            Picture source(c.source, 4, 3), destination(c.destination, 4, 3);
            flood(source, 0, 128, 128);
            set_luma(source, 0, {10, 10, 10, 10});
            set_luma(source, 1, {60, 60, 60, 60});
            set_luma(source, 2, {110, 110, 110, 110});
            EXPECT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            return destination;
        };
        Picture piled = run("zivColorYV12toRGB888u8"), spread = run("zivColorYV12toBGR888u8");
        EXPECT_EQ(piled.run(0, 0, 0, 12), Bytes(12, untouched));
        EXPECT_EQ(piled.run(0, 1, 0, 12), Bytes(12, 110));
        EXPECT_EQ(piled.run(0, 2, 0, 12), Bytes(12, untouched));
        EXPECT_EQ(spread.run(0, 0, 0, 12), Bytes(12, 10));
        EXPECT_EQ(spread.run(0, 1, 0, 12), Bytes(12, 60));
        EXPECT_EQ(spread.run(0, 2, 0, 12), Bytes(12, 110));
    });
}

TEST(YuvToRgb, Yv12ToBgrHasRedEqualToLumaInItsTail) {
    const Conversion& c = conversion("zivColorYV12toBGR888u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        Picture source(c.source, 17, 2), destination(c.destination, 17, 2);
        flood(source, 100, 60, 200);
        ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
        for (int y = 0; y < 2; y++) {
            for (int x = 0; x < 16; x++) EXPECT_EQ(destination.run(0, y, 3 * x, 3), (Bytes{0, 73, 201}));
            EXPECT_EQ(destination.run(0, y, 48, 3), (Bytes{0, 124, 100}));
        }
    });
}

// Of destination rows that overlap, a later one covers the one before it.
TEST(YuvToRgb, Yv12ToBgrLaysOverlappingRowsOverEachOther) {
    const Conversion& c = conversion("zivColorYV12toBGR888u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        Picture source(c.source, 80, 2), destination(c.destination, 80, 2);
        flood(source, 0, 128, 128);
        set_luma(source, 0, std::vector<uint8_t>(80, 10));
        set_luma(source, 1, std::vector<uint8_t>(80, 60));
        const zivcolor::Image s = source.image();
        zivcolor::Image d = destination.image();
        d.pitch[0] = 3 * 8;
        ASSERT_EQ(c.convert(kernels, &s, &d, 0), zivStatus_OK);
        EXPECT_EQ(destination.run(0, 0, 0, 3 * 8), Bytes(3 * 8, 10));
        EXPECT_EQ(destination.run(0, 0, 3 * 8, 3 * 80), Bytes(3 * 80, 60));
    });
}

TEST(YuvToRgb, LinePackedTightPicturesAgree) {
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        for (const int padding : {0, 8}) {
            Picture source(zivPixFmt_LPI422H, 22, 4, padding);
            for (int k = 0; k < 2; k++) fill(source.bytes[k].data(), source.bytes[k].size(), 5);
            Picture rgba(zivPixFmt_RGBA8888, 22, 4, padding), bgra(zivPixFmt_BGRA8888, 22, 4, padding);
            ASSERT_EQ(convert(kernels, conversion("zivColorLPI422HtoRGBA8888u8"), source, rgba), zivStatus_OK);
            ASSERT_EQ(convert(kernels, conversion("zivColorLPI422HtoBGRA8888u8"), source, bgra), zivStatus_OK);
            for (int y = 0; y < 4; y++) {
                Bytes swapped = bgra.run(0, y, 0, 88);
                for (size_t x = 0; x < 88; x += 4) std::swap(swapped[x], swapped[x + 2]);
                if (padding == 0 || y == 0) {
                    EXPECT_EQ(swapped, rgba.run(0, y, 0, 88)) << "row " << y;
                } else {
                    EXPECT_NE(swapped, rgba.run(0, y, 0, 88)) << "row " << y;
                }
            }
        }
    });
}

TEST(YuvToRgb, LinePackedToRgbaTakesTheSizeOfItsSource) {
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        for (const char* name : {"zivColorLPI422HtoRGBA8888u8", "zivColorLPI422HtoBGRA8888u8"}) {
            const bool rgba = std::string(name) == "zivColorLPI422HtoRGBA8888u8";
            const Conversion& c = conversion(name);
            Picture source(c.source, 32, 4), destination(c.destination, 32, 4);
            destination.width = 16, destination.height = 2;
            flood(source, 90, 128, 128);
            ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
            const std::vector<uint8_t>& bytes = destination.bytes[0];
            EXPECT_EQ(static_cast<size_t>(std::count(bytes.begin(), bytes.end(), 90)), size_t{3} * (rgba ? 32 * 4 : 16 * 2));
        }
    });
}

TEST(YuvToRgb, LinePackedToBgraReadsNoPitch) {
    const Conversion& c = conversion("zivColorLPI422HtoBGRA8888u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        Picture source(c.source, 18, 4);
        for (int k = 0; k < 2; k++) fill(source.bytes[k].data(), source.bytes[k].size(), 6);
        const auto run = [&](bool nonsense) {
            Picture destination(c.destination, 18, 4);
            zivcolor::Image s = source.image(), d = destination.image();
            for (int k = 0; k < 4 && nonsense; k++) s.pitch[k] = -12345678 * (k + 1), d.pitch[k] = 0x7FFFFFFF - k;
            EXPECT_EQ(c.convert(kernels, &s, &d, 200), zivStatus_OK);
            return destination.bytes[0];
        };
        EXPECT_EQ(run(true), run(false));
    });
}

// With an odd width a row is one pixel short, and every row starts one pixel further back in a tight picture.
TEST(YuvToRgb, LinePackedToBgraFallsBackByAPixelARow) {
    const Conversion& c = conversion("zivColorLPI422HtoBGRA8888u8");
    on_every_table([&](const zivcolor::KernelTable& kernels) {
        Picture source(c.source, 5, 3), destination(c.destination, 5, 3);
        flood(source, 0, 128, 128);
        for (int n = 0; n < 15; n++) *source.at(0, 0, n) = static_cast<uint8_t>(10 + n);
        ASSERT_EQ(convert(kernels, c, source, destination), zivStatus_OK);
        for (int n = 0; n < 15; n++) {
            const int luma = 10 + n;
            const Bytes expected = n < 12 ? Bytes{luma, luma, luma, 200} : Bytes(4, untouched);
            EXPECT_EQ(destination.run(0, 0, 4 * n, 4), expected) << "pixel " << n;
        }
    });
}

}  // namespace
