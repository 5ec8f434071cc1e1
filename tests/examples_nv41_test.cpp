// SPDX-License-Identifier: MIT
// Worked examples of NV41, whose one pair V U serves 4 by 4 luma samples.
#include "harness/canvas.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

int mean(int a, int b) { return (a + b + 1) >> 1; }
int mean(int a, int b, int c, int d) { return (a + b + c + d + 2) >> 2; }

// Chroma bytes that differ from place to place by more than rounding.
uint8_t sample(int row, int offset) { return static_cast<uint8_t>(row * 37 + offset * 11 + offset / 2 * 3); }

void sample_chroma(Canvas& c, int rows, int bytes) {
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < bytes; ++x) c.at(1, y, x) = sample(y, x);
}

TEST(Nv41Examples, DownwardMeans) {
    on_every_table([](const KernelTable& kernels) {
        for (const char* name : {"zivColorNV21toNV41", "zivColorNV21toNV41_2"})
            for (const int width : {4, 8, 16, 28, 32, 64, 96}) {
                Canvas from(zivPixFmt_NV21, width, 8), to(zivPixFmt_NV41, width, 8);
                to.set_pitch(1, width);
                sample_chroma(from, 4, width);
                EXPECT_EQ(run(kernels, name, from, to), zivStatus_OK);
                for (int y = 0; y < 2; ++y)
                    for (int x = 0; x < width / 2; ++x) {
                        const int at = x / 2 * 4 + x % 2;
                        EXPECT_EQ(to.at(1, y, x), mean(sample(2 * y, at), sample(2 * y, at + 2), sample(2 * y + 1, at),
                                                       sample(2 * y + 1, at + 2)))
                            << name << " " << width << " row " << y << " byte " << x;
                    }
            }
    });
}

// Wherever chroma is written at all, the mean of equal samples is that sample.
TEST(Nv41Examples, FlatChroma) {
    on_every_table([](const KernelTable& kernels) {
        for (const char* name : {"zivColorNV21toNV41", "zivColorNV21toNV41_2", "zivColorNV41toNV21_2"})
            for (const int width : {4, 8, 28, 32, 36, 40, 64, 100}) {
                const Conversion& c = conversion(name);
                Canvas from(c.source, width, 8), to(c.destination, width, 8);
                from.set_pitch(1, width);
                to.set_pitch(1, width);
                from.filled(1, 128);
                EXPECT_EQ(run(kernels, name, from, to), zivStatus_OK);
                const bool down = c.destination == zivPixFmt_NV41;
                const int blocked = width / 32 * (down ? 16 : 32), end = down ? width / 2 : width;
                // The top two rows on the way up come from the work buffer.
                for (const int y : {down ? 0 : 2, down ? 1 : 3})
                    for (int x = 0; x < end; ++x)
                        EXPECT_EQ(to.at(1, y, x), blocked > 0 && x >= blocked && x % 2 ? untouched : 128)
                            << name << " " << width << " at " << y << " " << x;
            }
    });
}

// With one block and two tail steps the last two pairs get their V but no U.
TEST(Nv41Examples, DownwardTailGoesThroughVAlone) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 40, 4), to(zivPixFmt_NV41, 40, 4);
        sample_chroma(from, 2, 40);
        EXPECT_EQ(run(kernels, "zivColorNV21toNV41", from, to), zivStatus_OK);
        EXPECT_EQ(to.touched(1), 18);
        for (const int pair : {8, 9}) {
            EXPECT_EQ(to.at(1, 0, 2 * pair),
                      mean(sample(0, 4 * pair), sample(0, 4 * pair + 2), sample(1, 4 * pair), sample(1, 4 * pair + 2)));
            EXPECT_EQ(to.at(1, 0, 2 * pair + 1), untouched);
        }
    });
}

// The second generation clears the rest of each row, and the half of the plane that is not used.
TEST(Nv41Examples, DownwardClears) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV21, 16, 8), first(zivPixFmt_NV41, 16, 8), second(zivPixFmt_NV41, 16, 8);
        first.set_pitch(1, 20);
        second.set_pitch(1, 20);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorNV21toNV41", from, first), zivStatus_OK);
        EXPECT_EQ(run(kernels, "zivColorNV21toNV41_2", from, second), zivStatus_OK);
        EXPECT_EQ(first.touched(1), 16);
        EXPECT_EQ(second.touched(1), 80);
        for (int y = 0; y < 4; ++y)
            for (int x = y < 2 ? 8 : 0; x < 20; ++x) EXPECT_EQ(second.at(1, y, x), 0) << y << " " << x;
    });
}

// The luma plane goes over as the destination's pitch times the height, or not at all when the planes are one.
TEST(Nv41Examples, LumaIsOneBlock) {
    on_every_table([](const KernelTable& kernels) {
        for (const bool down : {true, false}) {
            const char* name = down ? "zivColorNV21toNV41_2" : "zivColorNV41toNV21_2";
            Canvas from(down ? zivPixFmt_NV21 : zivPixFmt_NV41, 8, 4), to(down ? zivPixFmt_NV41 : zivPixFmt_NV21, 8, 4);
            from.set_pitch(0, 9);
            from.set_pitch(1, 8);
            to.set_pitch(0, 11);
            to.set_pitch(1, 8);
            from.numbered();
            EXPECT_EQ(run(kernels, name, from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(0), 44);
            for (int k = 0; k < 44; ++k) EXPECT_EQ(to.at(0)[k], from.at(0)[k]);
            Canvas shared(down ? zivPixFmt_NV41 : zivPixFmt_NV21, 8, 4);
            shared.set_pitch(1, 8);
            shared.descriptor().plane[0] = from.at(0);
            shared.descriptor().pitch[0] = 1 << 20;
            EXPECT_EQ(run(kernels, name, from, shared), zivStatus_OK);
        }
    });
}

// Rows 2r + 1 take row r and the means to its right; rows 2r the means with the row above. The top row is its own upper
// neighbour.
TEST(Nv41Examples, UpwardMeans) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {4, 8, 28, 32, 64, 96}) {
            Canvas from(zivPixFmt_NV41, width, 8), to(zivPixFmt_NV21, width, 8);
            from.set_pitch(1, width);
            sample_chroma(from, 2, width / 2);
            EXPECT_EQ(run(kernels, "zivColorNV41toNV21_2", from, to), zivStatus_OK);
            for (int r = 0; r < 2; ++r)
                for (int x = 0; x < width / 2; ++x) {
                    const int right = x + 2 < width / 2 ? x + 2 : x, above = r ? r - 1 : 0, at = x / 2 * 4 + x % 2;
                    const int t = sample(r, x), tn = sample(r, right), b = sample(above, x), bn = sample(above, right);
                    EXPECT_EQ(to.at(1, 2 * r + 1, at), t) << width << " " << r << " " << x;
                    EXPECT_EQ(to.at(1, 2 * r + 1, at + 2), mean(t, tn)) << width << " " << r << " " << x;
                    EXPECT_EQ(to.at(1, 2 * r, at), mean(t, b)) << width << " " << r << " " << x;
                    EXPECT_EQ(to.at(1, 2 * r, at + 2), mean(t, tn, b, bn)) << width << " " << r << " " << x;
                }
        }
    });
}

TEST(Nv41Examples, UpwardTailGoesThroughVAlone) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV41, 40, 8), to(zivPixFmt_NV21, 40, 8);
        from.set_pitch(1, 40);
        sample_chroma(from, 2, 20);
        EXPECT_EQ(run(kernels, "zivColorNV41toNV21_2", from, to), zivStatus_OK);
        for (const int y : {2, 3})
            for (int x = 32; x < 40; ++x) EXPECT_EQ(to.at(1, y, x) == untouched, x % 2 == 1) << y << " " << x;
        // The U side has gone through the first two columns again, and was at its right edge in the second.
        EXPECT_EQ(to.at(1, 3, 3), mean(sample(1, 1), sample(1, 3)));
        EXPECT_EQ(to.at(1, 3, 7), sample(1, 3));
        EXPECT_EQ(to.at(1, 3, 11), mean(sample(1, 5), sample(1, 7)));
    });
}

// No pass is the last one: the work buffer stays idle, and the walk ends above the plane.
TEST(Nv41Examples, UpwardAtAHeightOfSix) {
    on_every_table([](const KernelTable& kernels) {
        Canvas from(zivPixFmt_NV41, 8, 6), to(zivPixFmt_NV21, 8, 6);
        from.set_pitch(1, 8);
        from.numbered();
        EXPECT_EQ(run(kernels, "zivColorNV41toNV21_2", from, to), zivStatus_OK);
        EXPECT_EQ(to.touched(1), 4 * 8);
        EXPECT_EQ(to.at(1, 2, 0), from.at(1, 0, 0));
        EXPECT_EQ(to.at(1, 1, 0), mean(from.at(1, 0, 0), from.at(1, -1, 0)));
        EXPECT_EQ(to.at(1, 0, 0), from.at(1, -1, 0));
        EXPECT_EQ(to.at(1, -1, 0), mean(from.at(1, -1, 0), from.at(1, -2, 0)));
    });
}

// Below a height of 4 the walk starts above the plane, with a row of NV41 that stands there.
TEST(Nv41Examples, UpwardBelowAHeightOfFour) {
    on_every_table([](const KernelTable& kernels) {
        for (const int height : {2, 3}) {
            Canvas from(zivPixFmt_NV41, 8, height), to(zivPixFmt_NV21, 8, height);
            from.set_pitch(1, 8);
            from.numbered();
            EXPECT_EQ(run(kernels, "zivColorNV41toNV21_2", from, to), zivStatus_OK);
            EXPECT_EQ(to.touched(1), 2 * 8);
            EXPECT_EQ(to.at(1, 0, 0), from.at(1, -1, 0));
            EXPECT_EQ(to.at(1, -1, 0), mean(from.at(1, -1, 0), from.at(1, -2, 0)));
        }
    });
}

// Source and destination are one memory, or two.
TEST(Nv41Examples, UpwardInPlace) {
    on_every_table([](const KernelTable& kernels) {
        for (const int width : {8, 28, 32, 64, 128})
            for (const int height : {4, 8, 12, 32}) {
                Canvas from(zivPixFmt_NV41, width, height), apart(zivPixFmt_NV21, width, height);
                from.set_pitch(1, width);
                from.numbered();
                EXPECT_EQ(run(kernels, "zivColorNV41toNV21_2", from, apart), zivStatus_OK);
                Canvas to(zivPixFmt_NV21, width, height);
                for (int k = 0; k < 2; ++k) to.descriptor().plane[k] = from.at(k);
                EXPECT_EQ(run(kernels, "zivColorNV41toNV21_2", from, to), zivStatus_OK);
                for (int y = 0; y < height / 2; ++y)
                    for (int x = 0; x < width; ++x)
                        ASSERT_EQ(to.at(1, y, x), apart.at(1, y, x)) << width << "x" << height << " at " << y << " " << x;
            }
    });
}

}  // namespace
