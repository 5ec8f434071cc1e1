// SPDX-License-Identifier: MIT
// Worked examples of turns and mirrors.
#include <gtest/gtest.h>

#include "harness/canvas.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

void expect_untouched(const Canvas& c) { EXPECT_EQ(c.touched(0) + c.touched(1), 0); }

// A turn of a tight image whose sizes are multiples of 8, sample by sample.
TEST(RotateExamples, WholeImages) {
    on_every_table([](const KernelTable& kernels) {
        for (const auto& [w, h] : {std::pair{8, 8}, {16, 8}, {8, 16}, {24, 40}, {64, 32}, {72, 64}, {136, 24}}) {
            Canvas from(zivPixFmt_NV21, w, h);
            from.numbered();
            Canvas clockwise(zivPixFmt_NV21, h, w), counter(zivPixFmt_NV21, h, w), half(zivPixFmt_NV21, w, h);
            kernels.zivRotate(from.image(), clockwise.image(), 1);
            kernels.zivRotate(from.image(), counter.image(), 3);
            kernels.zivRotate(from.image(), half.image(), 2);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    ASSERT_EQ(clockwise.at(0, x, h - 1 - y), from.at(0, y, x)) << w << "x" << h;
                    ASSERT_EQ(counter.at(0, w - 1 - x, y), from.at(0, y, x)) << w << "x" << h;
                    ASSERT_EQ(half.at(0, h - 1 - y, w - 1 - x), from.at(0, y, x)) << w << "x" << h;
                }
            for (int y = 0; y < h / 2; ++y)
                for (int x = 0; x < w / 2; ++x)
                    for (int k = 0; k < 2; ++k) {  // a pair keeps its order
                        const int sample = from.at(1, y, 2 * x + k);
                        ASSERT_EQ(clockwise.at(1, x, h - 2 - 2 * y + k), sample) << w << "x" << h;
                        ASSERT_EQ(counter.at(1, w / 2 - 1 - x, 2 * y + k), sample) << w << "x" << h;
                        ASSERT_EQ(half.at(1, h / 2 - 1 - y, w - 2 - 2 * x + k), sample) << w << "x" << h;
                    }
            for (Canvas* turned : {&clockwise, &counter, &half}) {
                EXPECT_EQ(turned->touched(0), w * h);
                EXPECT_EQ(turned->touched(1), w * h / 2);
            }
        }
    });
}

TEST(RotateExamples, ImagesThatAreTooSmall) {
    on_every_table([](const KernelTable& kernels) {
        Canvas to(zivPixFmt_NV21, 16, 16);
        for (const auto& [w, h] : {std::pair{7, 16}, {16, 7}, {0, 0}, {-8, 16}})
            for (const int mode : {1, 3}) {
                Canvas from(zivPixFmt_NV21, 16, 16);
                from.descriptor().width = w, from.descriptor().height = h;
                kernels.zivRotate(from.image(), to.image(), mode);
            }
        for (const auto& [w, h] : {std::pair{7, 16}, {16, 0}, {16, -2}})
            for (const int mode : {0, 2, 4, -1}) {
                Canvas from(zivPixFmt_NV21, 16, 16);
                from.descriptor().width = w, from.descriptor().height = h;
                kernels.zivRotate(from.image(), to.image(), mode);
            }
        expect_untouched(to);
    });
}

TEST(RotateExamples, WhatFillsNoBlockIsLeftOut) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 20, 16), to(zivPixFmt_NV21, 16, 20);
        from.numbered();
        kernels.zivRotate(from.image(), to.image(), 1);
        EXPECT_EQ(to.touched(0), 16 * 16);
        EXPECT_EQ(to.touched(1), 16 * 8);
        for (int y = 16; y < 20; ++y)
            for (int x = 0; x < 16; ++x) EXPECT_EQ(to.at(0, y, x), untouched);
        EXPECT_EQ(to.at(0, 15, 0), from.at(0, 15, 15));
    });
}

TEST(RotateExamples, AllOtherModesAreTheHalfTurn) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV12, 24, 6), expected(zivPixFmt_NV12, 24, 6);
        from.numbered();
        kernels.zivRotate(from.image(), expected.image(), 0);
        for (const int mode : {2, 4, -1, 90, 180, INT32_MIN}) {
            Canvas to(zivPixFmt_NV12, 24, 6);
            kernels.zivRotate(from.image(), to.image(), mode);
            EXPECT_EQ(to.memory(), expected.memory()) << mode;
        }
    });
}

// The second row of the pair lies below the image, and goes to before the destination's plane.
TEST(RotateExamples, TheHalfTurnOfOneRow) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 8, 1), to(zivPixFmt_NV21, 8, 1);
        from.numbered();
        kernels.zivRotate(from.image(), to.image(), 2);
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(to.at(0, 0, 7 - x), from.at(0, 0, x));
            EXPECT_EQ(to.at(0, -1, 7 - x), from.at(0, 1, x));
        }
        EXPECT_EQ(to.touched(0), 16);
        // Half a chroma pitch of four bytes, reckoned back from its end.
        EXPECT_EQ(to.at(1)[2], from.at(1)[0]);
        EXPECT_EQ(to.at(1)[3], from.at(1)[1]);
        EXPECT_EQ(to.at(1)[-4], from.at(1)[6]);
    });
}

TEST(RotateExamples, TheCornerPairStaysAPair) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 16, 24), to(zivPixFmt_NV21, 24, 16);
        from.numbered();
        kernels.zivRotate(from.image(), to.image(), 1);
        EXPECT_EQ(to.at(1, 0, 22), from.at(1, 0, 0));
        EXPECT_EQ(to.at(1, 0, 23), from.at(1, 0, 1));
    });
}

// The right edge is where the destination's pitch ends; its width is not read.
TEST(RotateExamples, ClockwiseTakesThePitchForTheWidth) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 8, 8), to(zivPixFmt_NV21, 8, 8, 12);
        from.numbered();
        to.descriptor().width = -5;
        kernels.zivRotate(from.image(), to.image(), 1);
        EXPECT_EQ(to.at(0, 0, 19), from.at(0, 0, 0));
        EXPECT_EQ(to.at(0, 0, 12), from.at(0, 7, 0));
        EXPECT_EQ(to.at(0, 0, 11), untouched);
    });
}

// Counter-clockwise the chroma's bottom comes from the destination's height, the luma's from the source's width.
TEST(RotateExamples, CounterClockwiseReadsTheDestinationsHeight) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 8, 8), to(zivPixFmt_NV21, 8, 8);
        from.numbered();
        to.descriptor().height = 12;
        kernels.zivRotate(from.image(), to.image(), 3);
        EXPECT_EQ(to.at(0, 7, 0), from.at(0, 0, 0));
        EXPECT_EQ(to.at(1, 5, 0), from.at(1, 0, 0));
        EXPECT_EQ(to.at(1, 2, 0), from.at(1, 0, 6));
        EXPECT_EQ(to.at(1, 1, 0), untouched);
    });
}

TEST(MirrorExamples, WholeImages) {
    on_every_table([](const KernelTable& kernels) {
        for (const int w : {2, 4, 8, 10, 16, 18, 24, 32, 34, 64, 66, 130})
            for (const int h : {2, 4, 6}) {
                Canvas from(zivPixFmt_NV21, w, h), across(zivPixFmt_NV21, w, h), down(zivPixFmt_NV21, w, h);
                from.numbered();
                EXPECT_EQ(kernels.zivflip_horizontal_nv21(from.image(), across.image()), zivStatus_OK);
                EXPECT_EQ(kernels.zivflip_vertical_nv21(from.image(), down.image()), zivStatus_OK);
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x) {
                        ASSERT_EQ(across.at(0, y, w - 1 - x), from.at(0, y, x)) << w << "x" << h;
                        ASSERT_EQ(down.at(0, h - 1 - y, x), from.at(0, y, x)) << w << "x" << h;
                    }
                for (int y = 0; y < h / 2; ++y)
                    for (int x = 0; x < w; ++x) {
                        ASSERT_EQ(across.at(1, y, w - 2 - x / 2 * 2 + x % 2), from.at(1, y, x)) << w << "x" << h;
                        ASSERT_EQ(down.at(1, h / 2 - 1 - y, x), from.at(1, y, x)) << w << "x" << h;
                    }
                for (Canvas* mirrored : {&across, &down}) {
                    EXPECT_EQ(mirrored->touched(0), w * h);
                    EXPECT_EQ(mirrored->touched(1), w * h / 2);
                }
            }
    });
}

// The last pass handles column 17 too, one beyond the image.
TEST(MirrorExamples, AnOddWidth) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 17, 2), across(zivPixFmt_NV21, 17, 2);
        from.numbered();
        EXPECT_EQ(kernels.zivflip_horizontal_nv21(from.image(), across.image()), zivStatus_OK);
        EXPECT_EQ(across.at(0)[-1], from.at(0)[17]);
        // Column 17 of the second row falls on column 0 of the first, which the first has written before.
        EXPECT_EQ(across.at(0)[16], from.at(0)[34]);
        EXPECT_EQ(across.at(0)[0], from.at(0)[16]);
    });
}

TEST(MirrorExamples, AnOddHeight) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 10, 3), across(zivPixFmt_NV21, 10, 3), down(zivPixFmt_NV21, 10, 3);
        from.numbered();
        EXPECT_EQ(kernels.zivflip_horizontal_nv21(from.image(), across.image()), zivStatus_OK);
        EXPECT_EQ(kernels.zivflip_vertical_nv21(from.image(), down.image()), zivStatus_OK);
        EXPECT_EQ(across.touched(0), 40);
        EXPECT_EQ(across.at(0, 3, 9), from.at(0, 3, 0));
        EXPECT_EQ(down.touched(0), 40);
        EXPECT_EQ(down.at(0, -1, 0), from.at(0, 3, 0));
        EXPECT_EQ(down.at(1, -1, 0), from.at(1, 1, 0));
    });
}

TEST(MirrorExamples, Checks) {
    on_every_table([](const KernelTable& kernels) {
        for (const auto mirror : {kernels.zivflip_horizontal_nv21, kernels.zivflip_vertical_nv21}) {
            Canvas from(zivPixFmt_NV21, 8, 2), to(zivPixFmt_NV21, 8, 2);
            from.numbered();
            EXPECT_EQ(mirror(nullptr, to.image()), zivStatus_NullPointer);
            EXPECT_EQ(mirror(nullptr, nullptr), zivStatus_NullPointer);
            from.descriptor().format = zivPixFmt_NV12;
            EXPECT_EQ(mirror(from.image(), to.image()), zivStatus_BadArgument);
            EXPECT_EQ(mirror(from.image(), nullptr), zivStatus_BadArgument);
            from.descriptor().format = zivPixFmt_NV21;
            for (const int height : {0, -1, INT32_MIN}) {
                from.descriptor().height = height;
                EXPECT_EQ(mirror(from.image(), to.image()), zivStatus_OK);
                EXPECT_EQ(mirror(from.image(), nullptr), zivStatus_OK);
            }
            from.descriptor().height = 2;
            for (const int width : {0, -1, -8}) {
                from.descriptor().width = width;
                EXPECT_EQ(mirror(from.image(), to.image()), zivStatus_OK);
                EXPECT_EQ(mirror(from.image(), nullptr), zivStatus_OK);
            }
            expect_untouched(to);
            from.descriptor().width = 8;
            to.descriptor().format = 0;
            to.descriptor().width = to.descriptor().height = 0;
            EXPECT_EQ(mirror(from.image(), to.image()), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 16);
        }
    });
}

}  // namespace
