// SPDX-License-Identifier: MIT
// The arithmetic identities behind the vector forms of the RGB to YUV sets, each over all the values that it speaks of.
#include <gtest/gtest.h>

#include <algorithm>

#include "reference/rgb2yuv.h"

namespace {

using namespace reference;

struct Range {
    int low = 1 << 30, high = -(1 << 30);
    void take(int value) { low = std::min(low, value), high = std::max(high, value); }
    bool operator==(const Range&) const = default;
};

template <class Body>
void every_colour(Body body) {
    for (int r = 0; r < 256; r++)
        for (int g = 0; g < 256; g++)
            for (int b = 0; b < 256; b++) body(Pixel{r, g, b});
}

TEST(RgbIdentities, ShortSetStaysInLanesOf16) {
    Range sums;
    int past_a_byte = 0;
    every_colour([&](Pixel p) {
        const int y = ShortSet::block_luma(p);
        sums.take((p.blue - y) * 9 + 2048);
        sums.take((p.red - y) * 91 + 16384);
        past_a_byte += ((p.blue - y) * 9 + 2048) >> 4 > 255;
    });
    EXPECT_EQ(sums, (Range{5, 32764}));
    EXPECT_EQ(past_a_byte, 1);
    EXPECT_EQ(((255 - ShortSet::block_luma({0, 0, 255})) * 9 + 2048) >> 4, 256);
}

// With eight times the gain, differences of 23 and more saturate, and no lesser ones do.
TEST(RgbIdentities, SteepVSaturatesFrom23On) {
    const auto steep = [](int difference) { return ((difference * 91) >> 4) + 128; };
    EXPECT_GT(steep(23), 255);
    EXPECT_LT(steep(22), 255);
    EXPECT_LT(steep(-23), 0);
    EXPECT_GT(steep(-22), 0);
}

// Nothing saturates in the rounding narrow: what is too wide is truncated.
TEST(RgbIdentities, RoundingNarrowCuts) {
    EXPECT_EQ(rounding_narrow_15(65535 * 32768), -1);
    EXPECT_EQ(rounding_narrow_15(16384), 1);
    EXPECT_EQ(rounding_narrow_15(16383), 0);
    EXPECT_EQ(rounding_narrow_15(-16384), 0);
    EXPECT_EQ(rounding_narrow_15(-16385), -1);
}

TEST(RgbIdentities, LinePackedSetsStayInLanesOf16) {
    Range sums, eighths_u, eighths_v, thirty_seconds_u, thirty_seconds_v;
    every_colour([&](Pixel p) {
        const int y = ShortLuma::block_luma(p), u = p.blue - y, v = p.red - y;
        for (const int sum : {u * 4 + 1024, v * 7 + 1024, u * 18 + 4096, v * 23 + 4096}) sums.take(sum);
        eighths_u.take((u * 4 + 1024) >> 3), eighths_v.take((v * 7 + 1024) >> 3);
        thirty_seconds_u.take((u * 18 + 4096) >> 5), thirty_seconds_v.take((v * 23 + 4096) >> 5);
    });
    EXPECT_EQ(sums, (Range{-229, 8236}));
    EXPECT_EQ(eighths_u, (Range{14, 242}));
    EXPECT_EQ(eighths_v, (Range{-29, 285}));
    EXPECT_EQ(thirty_seconds_u, (Range{0, 256}));
    EXPECT_EQ(thirty_seconds_v, (Range{-1, 257}));
}

TEST(RgbIdentities, FineLumaOfRedStepByStep) {
    const int sum = FineLuma::sum({255, 0, 0}), fraction = sum >> 8;
    EXPECT_EQ(sum, 2498490);
    EXPECT_EQ(fraction, 9759);
    EXPECT_EQ((-fraction * 18492) >> 7, -1409871);
    EXPECT_EQ((((255 << 7) - fraction) * 23372) >> 7, 4177927);
    EXPECT_EQ(((4177927 + 16384) >> 15) + 128, 256);
    EXPECT_EQ(FineLuma::sum({255, 255, 255}), 8356095);
    EXPECT_EQ((8356095 + 16384) >> 15, 255);
}

// A shift by 16 of the product, then a rounding one by 6, is as good as a shift by 7, then a rounding one by 15; and the
// difference fits a lane of 16 bits.
TEST(RgbIdentities, FractionalDifferenceInLanesOf16) {
    Range differences;
    every_colour([&](Pixel p) {
        const int fraction = FineLuma::sum(p) >> 8;
        differences.take((p.blue << 7) - fraction);
        differences.take((p.red << 7) - fraction);
    });
    EXPECT_GE(differences.low, -32768);
    EXPECT_LE(differences.high, 32767);
    for (const int weight : {18492, 23372})
        for (int d = -32768; d < 32768; d++)
            ASSERT_EQ((((d * weight) >> 16) + 32) >> 6, (((d * weight) >> 7) + 16384) >> 15) << d << " " << weight;
}

// 128 may go in before the shift or after it.
TEST(RgbIdentities, RoundedDifferenceInLanesOf16) {
    for (const int weight : {18492, 23372})
        for (int d = -255; d < 256; d++)
            EXPECT_EQ((d * weight + 4194304 + 16384) >> 15, ((d * weight + 16384) >> 15) + 128) << d << " " << weight;
}

// binary32 differs from exact arithmetic only where the exact sum is a whole number, and then by one step toward zero. The
// tail never differs in luma.
TEST(RgbIdentities, FloatSetIsExactOffWholeNumbers) {
    int luma_off = 0, chroma_off = 0, tail_luma_off = 0;
    every_colour([&](Pixel p) {
        const int y = 299 * p.red + 587 * p.green + 114 * p.blue;
        const int u = -1678 * p.red - 3313 * p.green + 5000 * p.blue, v = 5000 * p.red - 4187 * p.green - 813 * p.blue;
        const int block_y = FloatSet::block_luma(p);
        const Chroma block = FloatSet::block_chroma(p, block_y);
        luma_off += block_y != y / 1000 && !(y % 1000 == 0 && block_y == y / 1000 - 1);
        tail_luma_off += FloatSet::tail_luma(p) != y / 1000;
        const auto chroma_is = [](int byte, int exact) {
            const int truncated = exact / 10000, step = exact > 0 ? -1 : 1;
            return byte == clamped(truncated + 128) ||
                   (exact % 10000 == 0 && exact != 0 && byte == clamped(truncated + step + 128));
        };
        chroma_off += !chroma_is(block.u, u) + !chroma_is(block.v, v);
    });
    EXPECT_EQ(luma_off, 0);
    EXPECT_EQ(tail_luma_off, 0);
    EXPECT_EQ(chroma_off, 0);
}

}  // namespace
