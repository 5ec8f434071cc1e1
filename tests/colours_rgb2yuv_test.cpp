// SPDX-License-Identifier: MIT
// Every colour through every kernel from RGB to YUV on every target, once in blocks and once in the tail; and how many colours
// come out of the two as different samples.
#include <cstdlib>
#include <cstring>
#include <map>

#include "harness/options.h"
#include "harness/picture.h"

namespace {

using namespace harness;

bool named(const Conversion& c, const char* name) { return std::strcmp(c.name, name) == 0; }

bool quartered(const Conversion& c) {
    return c.destination == zivPixFmt_NV12 || c.destination == zivPixFmt_NV21 || c.destination == zivPixFmt_I420;
}

// Colours are taken in strips of one red. A strip's picture holds each of its colours where it gives its chroma: at an even
// column, and at an even row where chroma is quartered.
constexpr int colours = 256 * 256;

// A colour of the strip and the samples that it gave.
struct Samples {
    int y, u, v;
};

class Strip {
public:
    Strip(const Conversion& c, bool tail)
        : conversion_(c),
          across_(!tail                                ? 1024
                  : named(c, "zivColorRGB888toNV21u8") ? 1
                                                       : 2),
          // The blocks of the float members end before the last eight columns.
          source_(c.source, 2 * across_ + (!tail && is_float() ? 8 : 0), colours / across_ * row_step()),
          expected_(c.destination, source_.width, source_.height),
          actual_(expected_) {
        const int size = tight_pitch(c.source, 0, 1);
        for (int y = 0; y < source_.height; y++)
            for (int x = 0; x < source_.width; x++) {
                // Where no chroma comes from stand colours with the green turned round. Sixteen columns have one blue.
                const int t = (y / row_step() * across_ + x / 2) % colours;
                const bool gives_chroma = x % 2 == 0 && y % row_step() == 0;
                uint8_t* p = source_.at(0, y, x * size);
                p[1] = static_cast<uint8_t>(gives_chroma ? t : 255 - t);
                p[red_last() ? 0 : 2] = static_cast<uint8_t>(t >> 8);
            }
    }
    void set_red(int red) {
        const int size = tight_pitch(conversion_.source, 0, 1);
        uint8_t* p = source_.at(0, 0, red_last() ? 2 : 0);
        for (int n = 0; n < source_.width * source_.height; n++, p += size) *p = static_cast<uint8_t>(red);
    }
    void run_reference() { ASSERT_EQ(convert(reference::kernels, conversion_, source_, expected_), zivStatus_OK); }
    // How the target differs from the reference; empty if it does not.
    std::string run_target(const zivcolor::KernelTable& kernels) {
        if (convert(kernels, conversion_, source_, actual_) != zivStatus_OK) return "refused";
        return difference(expected_, actual_);
    }
    // The reference's samples of a colour.
    Samples samples(int green, int blue) {
        const int t = 256 * blue + green, x = t % across_, row = t / across_, y = row * row_step();
        const auto at = [&](int plane, int line, int offset) -> int { return *expected_.at(plane, line, offset); };
        switch (conversion_.destination) {
            case zivPixFmt_NV21: return {at(0, y, 2 * x), at(1, row, 2 * x + 1), at(1, row, 2 * x)};
            case zivPixFmt_NV12: return {at(0, y, 2 * x), at(1, row, 2 * x), at(1, row, 2 * x + 1)};
            case zivPixFmt_I420: return {at(0, y, 2 * x), at(1, row, x), at(2, row, x)};
            case zivPixFmt_I422H: return {at(0, y, 2 * x), at(1, y, x), at(2, y, x)};
            case zivPixFmt_YV24: return {at(0, y, 2 * x), at(2, y, 2 * x), at(1, y, 2 * x)};
            case zivPixFmt_LPI422H: return {at(0, y, 2 * x), at(1, y, 2 * x), at(1, y, 2 * x + 1)};
            case zivPixFmt_YUYV: return {at(0, y, 4 * x), at(0, y, 4 * x + 1), at(0, y, 4 * x + 3)};
            case zivPixFmt_YVYU: return {at(0, y, 4 * x), at(0, y, 4 * x + 3), at(0, y, 4 * x + 1)};
            case zivPixFmt_UYVY: return {at(0, y, 4 * x + 1), at(0, y, 4 * x), at(0, y, 4 * x + 2)};
            default: return {at(0, y, 4 * x + 1), at(0, y, 4 * x + 2), at(0, y, 4 * x)};  // VYUY
        }
    }

private:
    bool is_float() const { return conversion_.destination == zivPixFmt_NV21 && conversion_.source >> 8 == 3; }
    bool red_last() const { return conversion_.source == zivPixFmt_BGR888 || conversion_.source == zivPixFmt_BGRA8888; }
    int row_step() const { return quartered(conversion_) ? 2 : 1; }

    const Conversion& conversion_;
    int across_;
    Picture source_, expected_, actual_;
};

std::vector<Conversion> from_rgb_to_yuv() {
    std::vector<Conversion> rows;
    for (const Conversion& c : conversions())
        if ((c.source >> 8 == 2 || c.source >> 8 == 3) && c.destination >= zivPixFmt_YUYV) rows.push_back(c);
    return rows;
}

class RgbColours : public testing::TestWithParam<Conversion> {};

TEST_P(RgbColours, AllInBlockAndTail) {
    const Conversion& c = GetParam();
    const bool is_float = c.destination == zivPixFmt_NV21 && c.source >> 8 == 3;
    Strip block(c, false), tail(c, true);
    int differing_y = 0, differing_u = 0, differing_v = 0;
    std::vector<int> lower_greys;
    for (const int red : first_components()) {
        for (Strip* strip : {&block, &tail}) {
            strip->set_red(red);
            strip->run_reference();
            for (const zivcolor::Target& target : targets_with_own(c.name)) {
                const std::string text = strip->run_target(*target.kernels);
                ASSERT_TRUE(text.empty()) << target.name << ": " << c.name << ", red " << red
                                          << (strip == &tail ? ", tail" : ", block") << "\n"
                                          << text;
            }
        }
        for (int blue = 0; blue < 256; blue++)
            for (int green = 0; green < 256; green++) {
                const Samples a = block.samples(green, blue);
                Samples b = tail.samples(green, blue);
                if (named(c, "zivColorRGB888toNV21u8")) {
                    // The tail puts U over V; the byte of U stays as it was.
                    ASSERT_EQ(b.u, untouched);
                    b.u = b.v, b.v = a.v;
                }
                differing_y += a.y != b.y;
                differing_u += a.u != b.u;
                differing_v += a.v != b.v;
                if (is_float) {
                    // A block's luma is never the higher, and nothing differs by more than one step.
                    ASSERT_TRUE(a.y == b.y || a.y == b.y - 1) << red << " " << green << " " << blue;
                    ASSERT_TRUE(std::abs(a.u - b.u) <= 1 && std::abs(a.v - b.v) <= 1) << red << " " << green << " " << blue;
                    if (red == green && green == blue) {
                        if (a.y != b.y) lower_greys.push_back(red);
                        ASSERT_EQ(b.y, red);
                        ASSERT_TRUE(a.u == 128 && a.v == 128 && b.u == 128 && b.v == 128) << red;
                    }
                }
            }
    }
    if (!all_colours()) return;
    if (named(c, "zivColorRGB888toNV12u8")) {
        // The tail's V has eight times the gain.
        EXPECT_EQ(differing_y, 0);
        EXPECT_EQ(differing_u, 0);
        EXPECT_GT(differing_v, 0);
    } else {
        EXPECT_EQ(differing_y, is_float ? 836 : 0);
        EXPECT_EQ(differing_u, is_float ? 196 : 0);
        EXPECT_EQ(differing_v, is_float ? 6035 : 0);
    }
    if (is_float) {
        EXPECT_EQ(lower_greys, (std::vector<int>{37, 61, 74, 93, 111, 122, 148, 186, 215, 222, 233, 244, 253}));
    }
}

INSTANTIATE_TEST_SUITE_P(All, RgbColours, testing::ValuesIn(from_rgb_to_yuv()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

// The fine set's two forms of the colour difference: with the luma's fraction, and with the finished luma.
TEST(FineSet, FractionalAndRoundedDifference) {
    Strip fractional(conversion("zivColorBGR888toNV12u8"), false), rounded(conversion("zivColorBGR888toI420u8"), false);
    int differing_y = 0, differing_u = 0, differing_v = 0;
    for (int red = 0; red < 256; red++) {
        for (Strip* strip : {&fractional, &rounded}) {
            strip->set_red(red);
            strip->run_reference();
        }
        for (int blue = 0; blue < 256; blue++)
            for (int green = 0; green < 256; green++) {
                const Samples a = fractional.samples(green, blue), b = rounded.samples(green, blue);
                ASSERT_TRUE(std::abs(a.u - b.u) <= 1 && std::abs(a.v - b.v) <= 1) << red << " " << green << " " << blue;
                differing_y += a.y != b.y;
                differing_u += a.u != b.u;
                differing_v += a.v != b.v;
            }
    }
    EXPECT_EQ(differing_y, 0);
    EXPECT_EQ(differing_u, 2367496);
    EXPECT_EQ(differing_v, 2989213);
}

}  // namespace
