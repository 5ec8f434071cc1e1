// SPDX-License-Identifier: MIT
// Worked examples of packed 4:2:2 in and out.
#include <algorithm>
#include <numeric>

#include "harness/canvas.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

// Which rows and columns of the destination are written at a size of 5 by 3.
TEST(YuyvExamples, OddSizesUpward) {
    on_every_table([](const KernelTable& kernels) {
        const struct {
            const char* name;
            uint32_t source;
            int rows, columns;
        } cases[] = {{"zivColorNV12toYUYVu8", zivPixFmt_NV12, 4, 6},
                     {"zivColorNV21toYUYVu8", zivPixFmt_NV21, 3, 6},
                     {"zivColorI420toYUYVu8", zivPixFmt_I420, 2, 4}};
        for (const auto& c : cases) {
            Canvas from(c.source, 5, 3), to(zivPixFmt_YUYV, 5, 3);
            from.set_pitch(0, 8);
            from.set_pitch(1, 8);
            from.numbered();
            EXPECT_EQ(run(kernels, c.name, from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 2 * c.rows * c.columns) << c.name;
            for (int y = 0; y < c.rows; ++y)
                for (int x = 0; x < c.columns; ++x) EXPECT_EQ(to.at(0, y, 2 * x), from.at(0, y, x)) << c.name;
            for (int y = 0; y < 2; ++y) {
                const int u = c.source == zivPixFmt_NV21 ? from.at(1, 0, 1) : from.at(1, 0, 0);
                const int v = c.source == zivPixFmt_I420   ? from.at(2, 0, 0)
                              : c.source == zivPixFmt_NV12 ? from.at(1, 0, 1)
                                                           : from.at(1, 0, 0);
                EXPECT_EQ(to.at(0, y, 1), u) << c.name;
                EXPECT_EQ(to.at(0, y, 3), v) << c.name;
            }
        }
    });
}

TEST(YuyvExamples, SemiPlanarChromaIsReadAtTheLumaPitch) {
    on_every_table([](const KernelTable& kernels) {
        for (const bool nv12 : {true, false}) {
            Canvas from(nv12 ? zivPixFmt_NV12 : zivPixFmt_NV21, 16, 4), to(zivPixFmt_YUYV, 16, 4);
            from.set_pitch(0, 20);
            from.set_pitch(1, 31);
            from.numbered();
            EXPECT_EQ(run(kernels, nv12 ? "zivColorNV12toYUYVu8" : "zivColorNV21toYUYVu8", from, to), zivStatus_OK);
            EXPECT_EQ(to.at(0, 2, nv12 ? 1 : 3), from.descriptor().plane[1][20]);
            EXPECT_EQ(to.at(0, 3, nv12 ? 3 : 1), from.descriptor().plane[1][21]);
        }
    });
}

TEST(YuyvExamples, OddSizesDownward) {
    on_every_table([](const KernelTable& kernels) {
        for (const bool nv21 : {true, false}) {
            Canvas from(zivPixFmt_YUYV, 5, 3, 4), to(nv21 ? zivPixFmt_NV21 : zivPixFmt_NV12, 5, 3, 3);
            from.numbered();
            EXPECT_EQ(run(kernels, nv21 ? "zivColorYUYVtoNV21u8_v2" : "zivColorYUYVtoNV12u8_v2", from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 3 * 6);
            EXPECT_EQ(to.touched(1), 2 * 6);
            EXPECT_EQ(to.at(0, 2, 5), from.at(0, 2, 10));
            EXPECT_EQ(to.at(1, 1, nv21 ? 5 : 4), from.at(0, 2, 9));
            EXPECT_EQ(to.at(1, 1, nv21 ? 4 : 5), from.at(0, 2, 11));
        }
    });
}

// The tail takes a step for every column that is left and does two in each.
TEST(YuyvExamples, TheTailToI420RunsPastTheRow) {
    on_every_table([](const KernelTable& kernels) {
        const struct { int width, columns; } cases[] = {{16, 32}, {17, 18}, {32, 48}, {48, 64}};
        for (const auto& c : cases) {
            Canvas from(zivPixFmt_YUYV, c.width, 2), to(zivPixFmt_I420, c.width, 2);
            from.set_pitch(0, 4 * c.width + 8);
            from.numbered();
            EXPECT_EQ(run(kernels, "zivColorYUYVtoI420u8_2", from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), c.width + c.columns) << c.width;
            EXPECT_EQ(to.touched(1), c.columns / 2) << c.width;
            EXPECT_EQ(to.touched(2), c.columns / 2) << c.width;
            EXPECT_EQ(to.at(1, 0, c.columns / 2 - 1), from.at(0, 0, 2 * c.columns - 3));
            EXPECT_EQ(to.at(2, 0, c.columns / 2 - 1), from.at(0, 0, 2 * c.columns - 1));
        }
    });
}

TEST(YuyvExamples, TheLowerRowToI420IsPlacedByTheWidth) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_YUYV, 20, 4, 60), to(zivPixFmt_I420, 20, 4, 44);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorYUYVtoI420u8_2", from, to), zivStatus_OK);
        // 24 columns of the upper row, the last four of them over the first four of the lower.
        for (int x = 0; x < 24; ++x) EXPECT_EQ(to.at(0, 2, x), from.at(0, 2, 2 * x));
        for (int x = 4; x < 24; ++x) EXPECT_EQ(to.at(0, 2, 20 + x), from.at(0, 3, 2 * x));
        EXPECT_EQ(to.at(0, 2, 44), untouched);
        EXPECT_EQ(to.at(0, 3, 0), untouched);
    });
}

TEST(YuyvExamples, ToNv12WritesNothingPastAnEvenWidth) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {16, 32, 34}) {
            Canvas from(zivPixFmt_YUYV, width, 2), to(zivPixFmt_NV12, width, 2, 9);
            from.numbered();
            EXPECT_EQ(run(kernels, "zivColorYUYVtoNV12u8_v2", from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 2 * width);
            EXPECT_EQ(to.touched(1), width);
        }
    });
}

TEST(YuyvExamples, ChromaOfTheOddRowsIsDropped) {
    on_every_table([](const KernelTable& kernels) {
        const struct {
            const char* name;
            uint32_t destination;
        } cases[] = {{"zivColorYUYVtoNV21u8_v2", zivPixFmt_NV21},
                     {"zivColorYUYVtoNV12u8_v2", zivPixFmt_NV12},
                     {"zivColorYUYVtoI420u8_2", zivPixFmt_I420}};
        for (const auto& c : cases) {
            Canvas from(zivPixFmt_YUYV, 38, 4, 200), once(c.destination, 38, 4, 40), again(c.destination, 38, 4, 40);
            from.numbered();
            EXPECT_EQ(run(kernels, c.name, from, once), zivStatus_OK);
            for (int y = 1; y < 4; y += 2)
                for (int x = 1; x < 76 + 200; x += 2) from.at(0, y, x) = static_cast<uint8_t>(~from.at(0, y, x));
            EXPECT_EQ(run(kernels, c.name, from, again), zivStatus_OK);
            EXPECT_EQ(once.memory(), again.memory()) << c.name;
        }
    });
}

// The plain forms at 3 by 4, on a source of the bytes 0, 1, 2, ...
class PlainYuyvExamples : public testing::Test {
protected:
    PlainYuyvExamples() { std::iota(source, source + sizeof source, uint8_t{0}); }
    void reset() { std::fill(result, result + sizeof result, untouched); }
    std::vector<int> results(int count) const { return {result, result + count}; }
    uint8_t source[64];
    uint8_t result[40];
};

TEST_F(PlainYuyvExamples, ToNv21DriftsForward) {
    on_every_table([this](const KernelTable& kernels) {
        reset();
        EXPECT_EQ(kernels.zivColorYUYVtoNV21u8(source, result, 3, 4), zivStatus_OK);
        EXPECT_EQ(results(21),
                  (std::vector<int>{0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 19, 17, 23, 21, untouched}));
    });
}

TEST_F(PlainYuyvExamples, ToNv12DoesNotDrift) {
    on_every_table([this](const KernelTable& kernels) {
        reset();
        EXPECT_EQ(kernels.zivColorYUYVtoNV12u8(source, result, 3, 4), zivStatus_OK);
        EXPECT_EQ(results(19), (std::vector<int>{0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 1, 3, 5, 13, 15, 17, untouched}));
    });
}

TEST_F(PlainYuyvExamples, ToI420DriftsBack) {
    on_every_table([this](const KernelTable& kernels) {
        reset();
        EXPECT_EQ(kernels.zivColorYUYVtoI420u8(source, result, 3, 4), zivStatus_OK);
        constexpr int none = untouched;
        EXPECT_EQ(results(18),
                  (std::vector<int>{0, 2, none, 6, 8, 10, 12, none, 16, 18, none, none, 1, 11, none, 3, 13, none}));
    });
}

TEST_F(PlainYuyvExamples, ChromaOfTheOddRowsIsDropped) {
    on_every_table([this](const KernelTable& kernels) {
        for (const auto convert : {kernels.zivColorYUYVtoNV21u8, kernels.zivColorYUYVtoNV12u8, kernels.zivColorYUYVtoI420u8}) {
            reset();
            EXPECT_EQ(convert(source, result, 6, 4), zivStatus_OK);
            const std::vector<int> once = results(40);
            EXPECT_EQ(std::count(once.begin(), once.end(), int{untouched}), 4);
            for (const int row : {1, 3})
                for (int x = 1; x < 12; x += 2) source[12 * row + x] ^= 0x7F;
            reset();
            EXPECT_EQ(convert(source, result, 6, 4), zivStatus_OK);
            EXPECT_EQ(results(40), once);
        }
    });
}

TEST_F(PlainYuyvExamples, Checks) {
    on_every_table([this](const KernelTable& kernels) {
        reset();
        for (const auto convert : {kernels.zivColorYUYVtoNV21u8, kernels.zivColorYUYVtoNV12u8, kernels.zivColorYUYVtoI420u8}) {
            EXPECT_EQ(convert(nullptr, result, 4, 4), zivStatus_NullPointer);
            EXPECT_EQ(convert(source, nullptr, 0, 0), zivStatus_NullPointer);
            EXPECT_EQ(convert(source, result, 1, 4), zivStatus_BadArgument);
            EXPECT_EQ(convert(source, result, 4, 1), zivStatus_BadArgument);
            EXPECT_EQ(convert(source, result, -4, -4), zivStatus_BadArgument);
        }
        EXPECT_EQ(result[0], untouched);
    });
}

}  // namespace
