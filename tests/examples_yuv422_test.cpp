// SPDX-License-Identifier: MIT
// Worked examples of the planar sources with chroma halved in one direction.
#include "harness/canvas.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

TEST(I422HExamples, OnlyTheUpperRowsChromaReaches420) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_I422H, 2, 2), i420(zivPixFmt_I420, 2, 2), nv21(zivPixFmt_NV21, 2, 2), nv12(zivPixFmt_NV12, 2, 2);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorI422HtoI420u8", from, i420), zivStatus_OK);
        EXPECT_EQ(run(kernels, "zivColorI422HtoNV21u8", from, nv21), zivStatus_OK);
        EXPECT_EQ(run(kernels, "zivColorI422HtoNV12u8", from, nv12), zivStatus_OK);
        const int u = from.at(1, 0, 0), v = from.at(2, 0, 0);
        EXPECT_EQ(i420.at(1, 0, 0), u);
        EXPECT_EQ(i420.at(2, 0, 0), v);
        EXPECT_EQ(nv21.at(1, 0, 0), v);
        EXPECT_EQ(nv21.at(1, 0, 1), u);
        EXPECT_EQ(nv12.at(1, 0, 0), u);
        EXPECT_EQ(nv12.at(1, 0, 1), v);
        for (Canvas* to : {&i420, &nv21, &nv12}) {
            EXPECT_EQ(to->touched(0), 4);
            EXPECT_EQ(to->touched(1) + to->touched(2), 2);
        }
    });
}

TEST(I422HExamples, OddSizes) {
    on_every_table([](const KernelTable& kernels) {
        const struct {
            const char* name;
            uint32_t destination;
            int luma, chroma;
        } cases[] = {{"zivColorI422HtoI420u8", zivPixFmt_I420, 70, 42},
                     {"zivColorI422HtoNV21u8", zivPixFmt_NV21, 70, 42},
                     {"zivColorI422HtoNV12u8", zivPixFmt_NV12, 70, 42},
                     {"zivColorI422HtoYUYVu8", zivPixFmt_YUYV, 140, 0},
                     {"zivColorI422HtoLPI422Hu8", zivPixFmt_LPI422H, 70, 70}};
        for (const auto& c : cases) {
            Canvas from(zivPixFmt_I422H, 15, 5), to(c.destination, 15, 5);
            from.numbered();
            EXPECT_EQ(run(kernels, c.name, from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), c.luma) << c.name;
            EXPECT_EQ(to.touched(1) + to.touched(2), c.chroma) << c.name;
        }
    });
}

TEST(I422HExamples, WhereTheChromaRowsLand) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_I422H, 20, 4), nv21(zivPixFmt_NV21, 20, 4), nv12(zivPixFmt_NV12, 20, 4);
        from.numbered();
        nv21.set_pitch(0, 25);
        nv21.set_pitch(1, 33);
        nv12.set_pitch(0, 25);
        nv12.set_pitch(1, 33);
        EXPECT_EQ(run(kernels, "zivColorI422HtoNV21u8", from, nv21), zivStatus_OK);
        EXPECT_EQ(run(kernels, "zivColorI422HtoNV12u8", from, nv12), zivStatus_OK);
        EXPECT_EQ(nv21.descriptor().plane[1][25], from.at(2, 2, 0));  // one luma pitch
        EXPECT_EQ(nv12.descriptor().plane[1][66], from.at(1, 2, 0));  // two chroma pitches
        EXPECT_EQ(nv12.at(1, 1, 0), untouched);
    });
}

TEST(I422VExamples, AnOddWidthToNv21) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_I422V, 17, 4), to(zivPixFmt_NV21, 17, 4);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorI422VtoNV21u8", from, to), zivStatus_OK);
        EXPECT_EQ(to.touched(0), 4 * 16);
        EXPECT_EQ(to.touched(1), 2 * 16);
        for (int y = 0; y < 4; ++y) EXPECT_EQ(to.at(0, y, 16), untouched);
        // Both sides run on by 16 bytes a pass.
        for (int k = 0; k < 16; ++k) {
            EXPECT_EQ(to.descriptor().plane[1][2 * k], from.descriptor().plane[2][2 * k]);
            EXPECT_EQ(to.descriptor().plane[1][2 * k + 1], from.descriptor().plane[1][2 * k]);
        }
    });
}

TEST(I422VExamples, AnOddHeightLeavesTheLastRow) {
    on_every_table([](const KernelTable& kernels) {
        const struct {
            const char* name;
            uint32_t destination;
        } cases[] = {{"zivColorI422VtoI420u8", zivPixFmt_I420},
                     {"zivColorI422VtoNV21u8", zivPixFmt_NV21},
                     {"zivColorI422VtoNV12u8", zivPixFmt_NV12},
                     {"zivColorI422VtoYUYVu8", zivPixFmt_YUYV},
                     {"zivColorI422VtoLPI422Hu8", zivPixFmt_LPI422H}};
        for (const auto& c : cases) {
            Canvas from(zivPixFmt_I422V, 18, 3), to(c.destination, 18, 3);
            from.numbered();
            EXPECT_EQ(run(kernels, c.name, from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 2 * tight_pitch(c.destination, 0, 18)) << c.name;
            EXPECT_EQ(to.at(0, 2, 0), untouched) << c.name;
        }
    });
}

TEST(I422VExamples, AnOddWidthToI420ReachesOneColumnFurther) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_I422V, 17, 2, 3), to(zivPixFmt_I420, 17, 2, 3);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorI422VtoI420u8", from, to), zivStatus_OK);
        EXPECT_EQ(to.touched(0), 2 * 18);
        EXPECT_EQ(to.touched(1), 9);
        EXPECT_EQ(to.touched(2), 9);
        EXPECT_EQ(to.at(0, 1, 17), from.at(0, 1, 17));
        EXPECT_EQ(to.at(1, 0, 8), from.at(1, 0, 16));
        EXPECT_EQ(to.at(2, 0, 8), from.at(2, 0, 16));
    });
}

TEST(I422VExamples, BothRowsOfAPairCarryTheSameChroma) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_I422V, 22, 6), yuyv(zivPixFmt_YUYV, 22, 6), semi(zivPixFmt_LPI422H, 22, 6, 4);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorI422VtoYUYVu8", from, yuyv), zivStatus_OK);
        EXPECT_EQ(run(kernels, "zivColorI422VtoLPI422Hu8", from, semi), zivStatus_OK);
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 22; x += 2) {
                const int u = from.at(1, y / 2, x), v = from.at(2, y / 2, x);
                EXPECT_EQ(yuyv.at(0, y, 2 * x + 1), u);
                EXPECT_EQ(yuyv.at(0, y, 2 * x + 3), v);
                EXPECT_EQ(semi.at(1, y, x), u);
                EXPECT_EQ(semi.at(1, y, x + 1), v);
            }
    });
}

}  // namespace
