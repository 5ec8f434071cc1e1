// SPDX-License-Identifier: MIT
// Worked examples of the conversions between 4:2:0 arrangements.
#include "harness/canvas.h"
#include "harness/workspace.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

// The U or V sample of a chroma row, wherever the layout has it.
int chroma(Canvas& p, char which, int row, int column) {
    const bool u = which == 'U';
    switch (p.descriptor().format) {
        case zivPixFmt_I420: return p.at(u ? 1 : 2, row, column);
        case zivPixFmt_YV12: return p.at(u ? 2 : 1, row, column);
        case zivPixFmt_NV12: return p.at(1, row, 2 * column + !u);
        default: return p.at(1, row, 2 * column + u);
    }
}

struct Pair {
    const char* name;
    uint32_t source, destination;
};
const Pair pairs_of_rows[] = {{"zivColorI420toNV21u8", zivPixFmt_I420, zivPixFmt_NV21},
                              {"zivColorNV21toI420u8", zivPixFmt_NV21, zivPixFmt_I420},
                              {"zivColorNV12toI420u8", zivPixFmt_NV12, zivPixFmt_I420},
                              {"zivColorNV12toNV21u8", zivPixFmt_NV12, zivPixFmt_NV21}};

int touched_chroma(const Canvas& p) { return p.touched(1) + p.touched(2); }

TEST(Yuv420Examples, TheSmallestImage) {
    on_every_table([](const KernelTable& kernels) {
        for (const Pair& pair : pairs_of_rows) {
            Canvas from(pair.source, 2, 2), to(pair.destination, 2, 2);
            from.numbered();
            EXPECT_EQ(run(kernels, pair.name, from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 4) << pair.name;
            EXPECT_EQ(touched_chroma(to), 2) << pair.name;
            for (int y = 0; y < 2; ++y)
                for (int x = 0; x < 2; ++x) EXPECT_EQ(to.at(0, y, x), from.at(0, y, x)) << pair.name;
            for (const char c : {'U', 'V'}) EXPECT_EQ(chroma(to, c, 0, 0), chroma(from, c, 0, 0)) << pair.name;
        }
    });
}

TEST(Yuv420Examples, AnOddLastColumnAndRowStayUntouched) {
    on_every_table([](const KernelTable& kernels) {
        for (const Pair& pair : pairs_of_rows)
            for (const int width : {15, 17, 33})
                for (const int height : {3, 4}) {
                    Canvas from(pair.source, width, height, 3), to(pair.destination, width, height, 5);
                    from.numbered();
                    EXPECT_EQ(run(kernels, pair.name, from, to), zivStatus_OK);
                    EXPECT_EQ(to.touched(0), (width - 1) * (height / 2 * 2)) << pair.name << " " << width;
                    EXPECT_EQ(touched_chroma(to), (width - 1) * (height / 2)) << pair.name << " " << width;
                    EXPECT_EQ(to.at(0, 0, width - 1), untouched);
                    for (int x = 0; x < width - 1; ++x) EXPECT_EQ(to.at(0, 1, x), from.at(0, 1, x)) << pair.name;
                    for (int x = 0; x < width / 2; ++x)
                        for (const char c : {'U', 'V'}) EXPECT_EQ(chroma(to, c, 0, x), chroma(from, c, 0, x)) << pair.name;
                }
    });
}

TEST(Yuv420Examples, PairsAreSwappedInPlace) {
    Random random{base_seed};
    for (int width = 2; width <= 700; width += width < 150 ? 1 : 23) {
        const int pitch = width + random.below(9), start = random.below(64);
        const Call call = [&](const KernelTable& kernels, uint8_t* const* buffers) {
            uint8_t* const luma = buffers[0] + start;
            const zivcolor::Image from{zivPixFmt_NV12, width, 4, {luma, luma + 4 * pitch}, {pitch, pitch}};
            zivcolor::Image to = from;
            to.format = zivPixFmt_NV21;
            return kernels.zivColorNV12toNV21u8(&from, &to);
        };
        expect_same_bytes(call, {{64, static_cast<size_t>(6 * pitch + 64)}}, random.next(),
                          [&] { return "in place, width " + std::to_string(width); });
    }
}

TEST(Yuv420Examples, Yv12GoesRowByRowThroughAnOddHeight) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {4, 18, 32}) {
            Canvas from(zivPixFmt_YV12, width, 5), to(zivPixFmt_NV21, width, 5);
            from.numbered();
            EXPECT_EQ(run(kernels, "zivColorYV12toNV21u8_2", from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 5 * width);
            EXPECT_EQ(to.touched(1), 3 * width);
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < width; ++x) EXPECT_EQ(to.at(0, y, x), from.at(0, y, x));
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < width / 2; ++x)
                    for (const char c : {'U', 'V'}) EXPECT_EQ(chroma(to, c, y, x), chroma(from, c, y, x));
        }
    });
}

TEST(Yuv420Examples, Yv12AtAnOddWidthCoversOneColumnMore) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_YV12, 5, 2, 4), to(zivPixFmt_NV21, 5, 2, 4);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorYV12toNV21u8_2", from, to), zivStatus_OK);
        EXPECT_EQ(to.touched(0), 12);
        EXPECT_EQ(to.touched(1), 6);
        EXPECT_EQ(to.at(0, 1, 5), from.at(0, 1, 5));
        EXPECT_EQ(to.at(1, 0, 4), from.at(1, 0, 2));
        EXPECT_EQ(to.at(1, 0, 5), from.at(2, 0, 2));
    });
}

TEST(Yuv420Examples, Yv12StepsTheChromaOutputByTheLumaPitch) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_YV12, 16, 4), to(zivPixFmt_NV21, 16, 4);
        to.set_pitch(0, 24);
        to.set_pitch(1, 99);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorYV12toNV21u8_2", from, to), zivStatus_OK);
        EXPECT_EQ(to.descriptor().plane[1][24], from.at(1, 1, 0));
        EXPECT_EQ(to.descriptor().plane[1][25], from.at(2, 1, 0));
        EXPECT_EQ(to.descriptor().plane[1][99], untouched);
    });
}

TEST(Yuv420Examples, Yv12TakesAnyFormatCode) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_YV12, 4, 2), to(zivPixFmt_NV21, 4, 2);
        from.numbered();
        from.descriptor().format = zivPixFmt_BGR565;
        to.descriptor().format = 0;
        EXPECT_EQ(run(kernels, "zivColorYV12toNV21u8_2", from, to), zivStatus_OK);
        EXPECT_EQ(to.at(1, 0, 0), from.at(1, 0, 0));
        EXPECT_EQ(to.at(1, 0, 1), from.at(2, 0, 0));
    });
}

// At an odd width every row of the plain form begins a byte further than the one above would have it; chroma rows of the source
// stay where they are.
TEST(Yuv420Examples, ThePlainForm) {
    on_every_table([](const KernelTable& kernels) {
        uint8_t from[64], to[64];
        for (uint8_t k = 0; k < 64; ++k) from[k] = k, to[k] = untouched;
        EXPECT_EQ(kernels.zivColorYV12toNV21u8(from, to, 3, 3), zivStatus_OK);
        // Luma of 9 bytes, V at 9 and U at 11. The pairs of row 0 are at 9 to 12, where the last luma row falls; those of row 2
        // follow at 13.
        const std::vector<int> expected = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 10, 12, 11, 13, untouched};
        EXPECT_EQ(std::vector<int>(to, to + 18), expected);
        EXPECT_EQ(kernels.zivColorYV12toNV21u8(nullptr, to, 3, 3), zivStatus_NullPointer);
        EXPECT_EQ(kernels.zivColorYV12toNV21u8(from, nullptr, 0, 3), zivStatus_NullPointer);
        for (const int64_t bad : {int64_t{1}, int64_t{0}, int64_t{-3}, INT64_MIN}) {
            EXPECT_EQ(kernels.zivColorYV12toNV21u8(from, to, bad, 3), zivStatus_BadArgument);
            EXPECT_EQ(kernels.zivColorYV12toNV21u8(from, to, 3, bad), zivStatus_BadArgument);
        }
    });
}

}  // namespace
