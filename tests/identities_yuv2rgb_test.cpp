// SPDX-License-Identifier: MIT
// The arithmetic identities behind the vector forms of the YUV to RGB sets, each over all the values that it speaks of.
#include <gtest/gtest.h>

#include <algorithm>

#include "reference/yuv2rgb.h"

namespace {

using reference::clamped;
using reference::Rgb;

constexpr bool operator==(Rgb a, Rgb b) { return a.red == b.red && a.green == b.green && a.blue == b.blue; }
constexpr Rgb operator+(int luma, Rgb d) { return {luma + d.red, luma + d.green, luma + d.blue}; }

// Calls body(u, v) for every pair of centred chroma values.
template <class Body>
void every_pair(Body body) {
    for (int u = -128; u < 128; u++)
        for (int v = -128; v < 128; v++) body(u, v);
}

int floor_div(int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

// (a * b + 2^14) >> 15: the multiply of two 16-bit lanes that rounds and keeps the high part.
int multiply_round_high(int a, int b) { return (a * b + 16384) >> 15; }

struct Range {
    int low = 1 << 30, high = -(1 << 30);
    void take(int value) { low = std::min(low, value), high = std::max(high, value); }
    bool operator==(const Range&) const = default;
};

TEST(YuvIdentities, EveryIntegerSetIsLumaPlusATermOfThePair) {
    const auto expect_luma_plus_term = [](auto set) {
        int wrong = 0;
        every_pair([&](int u, int v) {
            const Rgb term = set(0, u, v);
            for (int luma = 0; luma < 256; luma++) wrong += !(set(luma, u, v) == luma + term);
        });
        EXPECT_EQ(wrong, 0);
    };
    expect_luma_plus_term([](int y, int u, int v) { return reference::set_q15(y, u, v); });
    expect_luma_plus_term([](int y, int u, int v) { return reference::set_t5(y, u, v); });
    expect_luma_plus_term([](int y, int u, int v) { return reference::set_t5h(y, u, v); });
    expect_luma_plus_term([](int y, int u, int v) { return reference::set_r5(y, u, v); });
}

TEST(YuvIdentities, TheSetOfFractionalPartsIsTheSetOf5Bits) {
    every_pair([](int u, int v) { EXPECT_TRUE(reference::set_d5(0, u, v) == reference::set_t5(0, u, v)) << u << " " << v; });
}

TEST(YuvIdentities, Q15SplitsAWholeSampleOff) {
    every_pair([](int u, int v) {
        const Rgb d = reference::set_q15(0, u, v);
        EXPECT_EQ(d.red, v + multiply_round_high(v, 45941 - 32768));
        EXPECT_EQ(d.blue, u + multiply_round_high(u, 58065 - 32768));
    });
}

TEST(YuvIdentities, RangesOfQ15) {
    Range red, green, blue;
    every_pair([&](int u, int v) {
        for (const int luma : {0, 255}) {
            const Rgb pixel = reference::set_q15(luma, u, v);
            red.take(pixel.red), green.take(pixel.green), blue.take(pixel.blue);
        }
    });
    EXPECT_EQ(red, (Range{-179, 433}));
    EXPECT_EQ(green, (Range{-134, 390}));
    EXPECT_EQ(blue, (Range{-227, 480}));
}

TEST(YuvIdentities, SetsOf5BitsStayInLanesOf16) {
    Range products, sums;
    every_pair([&](int u, int v) {
        for (const int product : {45 * v, 57 * u, 11 * u, 23 * v}) products.take(product);
        for (const int luma : {0, 255})
            for (const int term : {45 * v, -(11 * u + 23 * v), 57 * u}) sums.take(32 * luma + term + 16);
    });
    EXPECT_EQ(products, (Range{-7296, 7239}));
    EXPECT_EQ(sums, (Range{-7280, 15415}));
}

// ---- The binary32 set ------------------------------------------------------------------------------------------------------

// The exact term of green in thousandths.
int exact_green(int u, int v) { return -714 * v - 344 * u; }

TEST(Binary32Identities, RedAndBlueAreLumaPlusTheFloorOfTheExactTerm) {
    for (int c = -128; c < 128; c++) {
        const int red = floor_div(1402 * c, 1000), blue = floor_div(1772 * c, 1000);
        EXPECT_EQ(red, (4 * c * 11485) >> 15);
        EXPECT_EQ(blue, (4 * c * 14516) >> 15);
        for (int luma = 0; luma < 256; luma++) {
            const Rgb pixel = reference::set_f32_block(luma, c, c);
            EXPECT_EQ(clamped(pixel.red), clamped(luma + red)) << luma << " " << c;
            EXPECT_EQ(clamped(pixel.blue), clamped(luma + blue)) << luma << " " << c;
        }
    }
}

TEST(Binary32Identities, GreenFallsShortInSeventeenPairsUpToAThreshold) {
    int whole_pairs = 0, short_pairs = 0;
    every_pair([&](int u, int v) {
        const int exact = exact_green(u, v), term = floor_div(exact, 1000);
        const float of_v = static_cast<float>(v) * -0.714f, of_u = static_cast<float>(u) * -0.344f;
        const float sum = of_v + of_u;
        int threshold = 0;
        if (exact % 1000 == 0) {
            whole_pairs++;
            if (sum < static_cast<float>(term)) {
                short_pairs++;
                threshold = static_cast<int>((static_cast<float>(term) - sum) * 16777216.0f);
                EXPECT_TRUE((threshold & (threshold - 1)) == 0 && threshold >= 8 && threshold <= 128) << threshold;
                EXPECT_GT(u, 0);
                EXPECT_EQ(v % 4, 0);
            }
        }
        for (int luma = 0; luma < 256; luma++) {
            const int full = clamped(luma + term);
            const int expected = threshold && full <= threshold ? std::max(full - 1, 0) : full;
            ASSERT_EQ(clamped(reference::set_f32_block(luma, u, v).green), expected) << luma << " " << u << " " << v;
        }
    });
    EXPECT_EQ(whole_pairs, 132);
    EXPECT_EQ(short_pairs, 17);
}

TEST(Binary32Identities, GreenComesOutOfLanesOf16) {
    int unsound_pairs = 0;
    every_pair([&](int u, int v) {
        const int quarter = v * 36 - u * 43 + (-v >> 2) + 74 * 125;
        EXPECT_GT(quarter, -32768);
        EXPECT_LT(quarter, 32768);
        const int quotient = multiply_round_high(quarter, 16777) >> 6, exact = exact_green(u, v), term = floor_div(exact, 1000);
        EXPECT_EQ(quotient - 74 - v, term) << u << " " << v;
        const bool unsound = (quarter * 0x78D5 & 0xFFC0) == 0 && v % 4 == 0;
        unsound_pairs += unsound;
        EXPECT_TRUE(!unsound || exact % 1000 == 0) << u << " " << v;
        const float of_v = static_cast<float>(v) * -0.714f, of_u = static_cast<float>(u) * -0.344f;
        const float sum = of_v + of_u;
        const bool falls_short = exact % 1000 == 0 && sum < static_cast<float>(term);
        EXPECT_TRUE(!falls_short || unsound) << u << " " << v;
    });
    EXPECT_EQ(unsound_pairs, 51);
}

}  // namespace
