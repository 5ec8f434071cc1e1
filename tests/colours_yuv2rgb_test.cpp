// SPDX-License-Identifier: MIT
// Every triple of Y, U and V through every kernel from YUV to RGB on every target, once in blocks and once in the tail; and how
// many triples come out of the two as different pixels.
#include <cstring>
#include <map>

#include "harness/options.h"
#include "harness/picture.h"

namespace {

using namespace harness;

// Triples are taken in strips of one U. A strip's picture is made of squares of 2 by 2 pixels, one for every V and every four
// neighbouring lumas.
constexpr int squares = 256 * 64;

struct Shape {
    int squares_across;
    int width;
};
constexpr Shape in_blocks{1024, 2048};
constexpr Shape in_tail{4, 10};  // two columns more than the squares: some tails leave out the last two

bool named(const Conversion& c, const char* name) { return std::strcmp(c.name, name) == 0; }

class Strip {
public:
    Strip(const Conversion& c, Shape shape)
        : conversion_(c),
          shape_(shape),
          tail_(shape.width < 16),
          piled_(named(c, "zivColorYV12toRGB888u8")),
          source_(c.source, shape.width, 2 * squares / shape.squares_across, luma_ahead() ? shape.width : 0),
          expected_(c.destination, source_.width, source_.height),
          actual_(expected_),
          size_(c.alpha ? 4 : 3) {
        for (int s = 0; s < squares; s++) {
            const int v = s & 255, first_luma = (s >> 8) * 4;
            for (int dy = 0; dy < 2; dy++) {
                for (int dx = 0; dx < 2; dx++) *luma_of(s, dy, dx) = static_cast<uint8_t>(first_luma + 2 * dy + dx);
                uint8_t* u = nullptr;
                *chroma_of(s, dy, u) = static_cast<uint8_t>(v);
                if (dy == 0 || !quartered()) places_of_u_.push_back(u);
            }
        }
    }
    void set_u(int u) {
        for (uint8_t* p : places_of_u_) *p = static_cast<uint8_t>(u);
    }
    void run_reference() { run(reference::kernels, expected_); }
    // How the target differs from the reference; empty if it does not.
    std::string run_target(const zivcolor::KernelTable& kernels) {
        run(kernels, actual_);
        return difference(expected_, actual_);
    }
    // The reference's pixel of a triple.
    const uint8_t* pixel(int square, int luma_in_four) {
        const int x = 2 * (square % shape_.squares_across), y = 2 * (square / shape_.squares_across);
        return expected_.at(0, y + luma_in_four / 2, (x + luma_in_four % 2) * size_);
    }
    int pixel_size() const { return size_; }

private:
    bool quartered() const { return conversion_.source != zivPixFmt_YUYV && conversion_.source != zivPixFmt_LPI422H; }
    bool luma_ahead() const { return tail_ && named(conversion_, "zivColorI420toBGR888u8"); }
    bool crossed() const {
        return tail_ && (named(conversion_, "zivColorNV12toRGBA8888u8") || named(conversion_, "zivColorNV12toBGRA8888u8"));
    }
    // Where the luma of a destination pixel is read from.
    uint8_t* luma_of(int square, int dy, int dx) {
        const int x = 2 * (square % shape_.squares_across), y = 2 * (square / shape_.squares_across);
        if (conversion_.source == zivPixFmt_YUYV) return source_.at(0, y + dy, 2 * (x + dx));
        if (luma_ahead()) return source_.at(0, y + dy, 2 * x + 2 + dx);
        return source_.at(0, crossed() && dx == 1 ? y + 1 - dy : y + dy, x + dx);
    }
    uint8_t* chroma_of(int square, int dy, uint8_t*& u) {
        const int x = square % shape_.squares_across, y = square / shape_.squares_across;
        uint8_t* v = nullptr;
        switch (conversion_.source) {
            case zivPixFmt_NV12: u = source_.at(1, y, 2 * x), v = u + 1; break;
            case zivPixFmt_NV21: v = source_.at(1, y, 2 * x), u = v + 1; break;
            case zivPixFmt_I420: u = source_.at(1, y, x), v = source_.at(2, y, x); break;
            case zivPixFmt_YV12: v = source_.at(1, y, x), u = source_.at(2, y, x); break;
            case zivPixFmt_LPI422H: u = source_.at(1, 2 * y + dy, 2 * x), v = u + 1; break;
            default: u = source_.at(0, 2 * y + dy, 4 * x + 1), v = u + 2; break;
        }
        return v;
    }
    void run(const zivcolor::KernelTable& kernels, Picture& destination) {
        if (!piled_) {
            ASSERT_EQ(convert(kernels, conversion_, source_, destination), zivStatus_OK);
            return;
        }
        // All rows land on row 1: give each row a picture of its own, with no step from row to row.
        for (int y = 0; y < source_.height; y++) {
            zivcolor::Image s = source_.image(), d = destination.image();
            s.height = d.height = 2;
            s.plane[0] = source_.at(0, y, 0), d.plane[0] = destination.at(0, y, 0);
            for (int k = 1; k < 3; k++) s.plane[k] = source_.at(k, y / 2, 0);
            for (int k = 0; k < 3; k++) s.pitch[k] = d.pitch[k] = 0;
            ASSERT_EQ(conversion_.convert(kernels, &s, &d, 0), zivStatus_OK);
        }
    }

    const Conversion& conversion_;
    Shape shape_;
    bool tail_, piled_;
    Picture source_, expected_, actual_;
    int size_;
    std::vector<uint8_t*> places_of_u_;
};

// Triples whose pixels differ between block and tail, as stored; kernels not named have none.
int differing_triples(const Conversion& c) {
    static const std::map<std::string, int> counts = {
        {"zivColorNV21toRGB888u8", 16741991},    // full and half weight of u in green, bytes crossed
        {"zivColorNV21toBGRA8888u8", 1917},      // green summed in two orders
        {"zivColorNV12toBGRA8888u8", 14537681},  // bytes crossed
        {"zivColorYV12toBGR888u8", 16703665},    // no V
        {"zivColorYUYVtoBGR888u8", 15698626},    // bytes crossed, no lower limit
        {"zivColorYUYVtoRGB888u8", 6843979},     // no lower limit
    };
    const auto found = counts.find(c.name);
    return found == counts.end() ? 0 : found->second;
}

std::vector<Conversion> from_yuv_to_rgb() {
    std::vector<Conversion> rows;
    for (const Conversion& c : conversions())
        if ((c.destination >> 8 == 2 || c.destination >> 8 == 3) && c.source >= zivPixFmt_YUYV) rows.push_back(c);
    return rows;
}

class YuvColours : public testing::TestWithParam<Conversion> {};

TEST_P(YuvColours, AllTriplesInBlockAndTail) {
    const Conversion& c = GetParam();
    Strip block(c, in_blocks), tail(c, in_tail);
    int differing = 0, differing_red_or_blue = 0;
    for (const int u : first_components()) {
        for (Strip* strip : {&block, &tail}) {
            strip->set_u(u);
            strip->run_reference();
            for (const zivcolor::Target& target : targets_with_own(c.name)) {
                const std::string text = strip->run_target(*target.kernels);
                ASSERT_TRUE(text.empty()) << target.name << ": " << c.name << ", U " << u
                                          << (strip == &tail ? ", tail" : ", block") << "\n"
                                          << text;
            }
        }
        for (int s = 0; s < squares; s++)
            for (int k = 0; k < 4; k++) {
                const uint8_t *a = block.pixel(s, k), *b = tail.pixel(s, k);
                const bool outer = a[0] != b[0] || a[2] != b[2];
                differing += outer || a[1] != b[1];
                differing_red_or_blue += outer;
                if (c.alpha && (a[3] != 200 || b[3] != 200)) FAIL() << "alpha at U " << u << " V " << (s & 255);
            }
    }
    if (all_colours()) {
        EXPECT_EQ(differing, differing_triples(c));
    }
    if (named(c, "zivColorNV21toBGRA8888u8")) {
        EXPECT_EQ(differing_red_or_blue, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(All, YuvColours, testing::ValuesIn(from_yuv_to_rgb()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

}  // namespace
