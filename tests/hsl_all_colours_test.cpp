// SPDX-License-Identifier: MIT
// Every colour, and every 565 word in both readings, through the blocks and through the scalar tail of every target.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "core/targets.h"
#include "harness/options.h"
#include "reference/hsl.h"

namespace {

constexpr uint32_t colours_in_a_row = 65536;

void store_hsl(uint8_t* to, int b, int g, int r) {
    const reference::Hsl hsl = reference::hsl_of(b, g, r);
    to[0] = static_cast<uint8_t>(hsl.hue);
    to[1] = static_cast<uint8_t>(hsl.saturation);
    to[2] = static_cast<uint8_t>(hsl.lightness);
}

// Rows of one long run each, so that all but the last eight pixels at most go through the blocks; the same pixels again in
// rows of eight, where all go through the tail.
void expect_both_walks(int32_t (*convert)(const uint8_t*, uint8_t*, uint32_t, uint32_t, uint32_t, uint32_t),
                       const std::vector<uint8_t>& in, uint32_t pixel_bytes, const std::vector<uint8_t>& expected,
                       const char* target) {
    const auto pixels = static_cast<uint32_t>(expected.size() / 3);
    std::vector<uint8_t> out(expected.size());
    const struct {
        uint32_t height, width;
        const char* what;
    } walks[] = {{pixels / (pixels / 4), pixels / 4, "blocks"}, {pixels / 8, 8, "tail"}};
    for (const auto& walk : walks) {
        std::fill(out.begin(), out.end(), uint8_t{0xEE});
        ASSERT_EQ(convert(in.data(), out.data(), walk.height, walk.width, pixel_bytes * walk.width, 3 * walk.width), 0);
        const auto at = std::mismatch(expected.begin(), expected.end(), out.begin());
        if (at.first == expected.end()) continue;
        const auto pixel = (at.first - expected.begin()) / 3;
        ADD_FAILURE() << target << ", " << walk.what << ": pixel " << pixel << " byte " << (at.first - expected.begin()) % 3
                      << " is " << int(*at.second) << ", expected " << int(*at.first);
    }
}

TEST(HslAllColours, Bgr888) {
    // All blues and reds of a green at a time.
    std::vector<uint8_t> in(3 * colours_in_a_row), expected(in.size());
    for (const int g : harness::first_components()) {
        uint8_t* p = in.data();
        uint8_t* e = expected.data();
        for (int b = 0; b < 256; ++b)
            for (int r = 0; r < 256; ++r, p += 3, e += 3) {
                p[0] = static_cast<uint8_t>(b), p[1] = static_cast<uint8_t>(g), p[2] = static_cast<uint8_t>(r);
                store_hsl(e, b, g, r);
            }
        for (const zivcolor::Target& target : harness::targets())
            expect_both_walks(target.kernels->zivColorBGR888toHSL888u8, in, 3, expected, target.name);
        if (HasFailure()) return;
    }
}

TEST(HslAllColours, Words565) {
    std::vector<uint8_t> in(2 * 65536), red_on_top(3 * 65536), blue_on_top(3 * 65536);
    for (int word = 0; word < 65536; ++word) {
        const auto at = static_cast<size_t>(word);
        in[2 * at] = static_cast<uint8_t>(word & 255);
        in[2 * at + 1] = static_cast<uint8_t>(word >> 8);
        const int top = (word >> 11) << 3, middle = (word >> 5 & 63) << 2, low = (word & 31) << 3;
        store_hsl(&red_on_top[3 * at], low, middle, top);
        store_hsl(&blue_on_top[3 * at], top, middle, low);
    }
    for (const zivcolor::Target& target : harness::targets()) {
        expect_both_walks(target.kernels->zivColorBGR565toHSL888u8, in, 2, red_on_top, target.name);
        expect_both_walks(target.kernels->zivColorRGB565toHSL888u8, in, 2, blue_on_top, target.name);
    }
}

// The scale itself: hues end at 212, and only grey has no saturation.
TEST(HslAllColours, Ranges) {
    for (int b = 0; b < 256; ++b)
        for (int g = 0; g < 256; ++g)
            for (int r = 0; r < 256; ++r) {
                const reference::Hsl hsl = reference::hsl_of(b, g, r);
                ASSERT_LE(hsl.hue, 212);
                ASSERT_EQ(hsl.saturation == 0, b == g && g == r);
                ASSERT_EQ(hsl.lightness, (std::max({b, g, r}) + std::min({b, g, r}) + 1) / 2);
            }
}

}  // namespace
