// SPDX-License-Identifier: MIT
// Worked examples of planar 4:4:4 sources and of packed YUV.
#include "harness/canvas.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

const struct {
    const char* name;
    uint32_t destination;
} i444_targets[] = {{"zivColorI444toI420u8", zivPixFmt_I420},
                    {"zivColorI444toNV21u8", zivPixFmt_NV21},
                    {"zivColorI444toNV12u8", zivPixFmt_NV12},
                    {"zivColorI444toYUYVu8", zivPixFmt_YUYV}};

// 2 by 2 and 3 by 3 alike take one step: the chroma of the top left pixel.
TEST(I444Examples, OneStep) {
    on_every_table([](const KernelTable& kernels) {
        for (const int size : {2, 3})
            for (const auto& target : i444_targets) {
                Canvas from(zivPixFmt_I444, size, size), to(target.destination, size, size);
                from.numbered();
                EXPECT_EQ(run(kernels, target.name, from, to), zivStatus_OK);
                const int u = from.at(1, 0, 0), v = from.at(2, 0, 0);
                EXPECT_EQ(to.touched(0), target.destination == zivPixFmt_YUYV ? 8 : 4) << target.name;
                switch (target.destination) {
                    case zivPixFmt_I420:
                        EXPECT_EQ(to.at(1, 0, 0), u);
                        EXPECT_EQ(to.at(2, 0, 0), v);
                        break;
                    case zivPixFmt_YUYV:
                        for (int y = 0; y < 2; ++y) {
                            EXPECT_EQ(to.at(0, y, 0), from.at(0, y, 0));
                            EXPECT_EQ(to.at(0, y, 1), u);
                            EXPECT_EQ(to.at(0, y, 2), from.at(0, y, 1));
                            EXPECT_EQ(to.at(0, y, 3), v);
                        }
                        break;
                    default:
                        EXPECT_EQ(to.at(1, 0, 0), target.destination == zivPixFmt_NV12 ? u : v);
                        EXPECT_EQ(to.at(1, 0, 1), target.destination == zivPixFmt_NV12 ? v : u);
                }
            }
    });
}

TEST(I444Examples, PaddedChromaRowsDrift) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_I444, 6, 4), to(zivPixFmt_NV12, 6, 4, 7);
        from.set_pitch(1, 10);
        from.set_pitch(2, 13);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorI444toNV12u8", from, to), zivStatus_OK);
        // The second pass reads at the six columns walked plus one pitch, and writes right behind the first.
        EXPECT_EQ(to.descriptor().plane[1][6], from.descriptor().plane[1][16]);
        EXPECT_EQ(to.descriptor().plane[1][7], from.descriptor().plane[2][19]);
    });
}

TEST(I444Examples, ToLpi422hIgnoresAllPitches) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_I444, 5, 3, 9), to(zivPixFmt_LPI422H, 5, 3, 11);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorI444toLPI422Hu8", from, to), zivStatus_OK);
        EXPECT_EQ(to.touched(0), 12);
        EXPECT_EQ(to.touched(1), 12);
        for (int k = 0; k < 12; ++k) {
            EXPECT_EQ(to.descriptor().plane[0][k], from.descriptor().plane[0][k]);
            EXPECT_EQ(to.descriptor().plane[1][k], from.descriptor().plane[k % 2 ? 2 : 1][k / 2 * 2]);
        }
    });
}

TEST(YuvExamples, OddSizesReachARowAndAColumnFurther) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {3, 7, 9, 17}) {
            Canvas yuv(zivPixFmt_YUV, width, 3, 12), nv21(zivPixFmt_NV21, width, 3, 12);
            yuv.numbered();
            EXPECT_EQ(run(kernels, "zivColorYUVtoNV21u8", yuv, nv21), zivStatus_OK);
            EXPECT_EQ(nv21.touched(0), 4 * (width + 1)) << width;
            EXPECT_EQ(nv21.touched(1), 2 * (width + 1)) << width;

            Canvas back(zivPixFmt_YUV, width, 3, 12);
            nv21.numbered();
            EXPECT_EQ(run(kernels, "zivColorNV21toYUVu8", nv21, back), zivStatus_OK);
            EXPECT_EQ(back.touched(0), 4 * 3 * (width + 1)) << width;
            EXPECT_EQ(back.at(0, 3, 3 * width), nv21.at(0, 3, width));
            EXPECT_EQ(back.at(0, 3, 3 * width + 1), nv21.at(1, 1, width));
            EXPECT_EQ(back.at(0, 3, 3 * width + 2), nv21.at(1, 1, width - 1));
        }
    });
}

TEST(YuvExamples, ABlockAndATailTakeTheChromaOfTheUpperLeftPixel) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {6, 8, 10, 16}) {
            Canvas from(zivPixFmt_YUV, width, 2), to(zivPixFmt_NV21, width, 2);
            from.numbered();
            EXPECT_EQ(run(kernels, "zivColorYUVtoNV21u8", from, to), zivStatus_OK);
            for (int x = 0; x < width; ++x) {
                EXPECT_EQ(to.at(0, 0, x), from.at(0, 0, 3 * x));
                EXPECT_EQ(to.at(0, 1, x), from.at(0, 1, 3 * x));
                EXPECT_EQ(to.at(1, 0, x), from.at(0, 0, x / 2 * 6 + (x % 2 ? 1 : 2)));
            }
        }
    });
}

TEST(YuvExamples, Nv21ThereAndBack) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {2, 8, 16, 30, 62, 64, 66, 130}) {
            Canvas from(zivPixFmt_NV21, width, 4), between(zivPixFmt_YUV, width, 4), to(zivPixFmt_NV21, width, 4);
            from.numbered();
            EXPECT_EQ(run(kernels, "zivColorNV21toYUVu8", from, between), zivStatus_OK);
            EXPECT_EQ(run(kernels, "zivColorYUVtoNV21u8", between, to), zivStatus_OK);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < width; ++x) EXPECT_EQ(to.at(0, y, x), from.at(0, y, x));
            for (int y = 0; y < 2; ++y)
                for (int x = 0; x < width; ++x) EXPECT_EQ(to.at(1, y, x), from.at(1, y, x));
            EXPECT_EQ(to.at(0, 3, width), untouched);
        }
    });
}

}  // namespace
