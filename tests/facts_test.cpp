// SPDX-License-Identifier: MIT
// The facts of docs/kernel_facts.h, measured on the reference, which the library equals byte for byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <map>
#include <sstream>
#include <string>

#include "../docs/facts_table.h"
#include "harness/conversions.h"
#include "reference/reference.h"

namespace {

using namespace harness;
using facts::Facts;

bool operator==(const std::vector<Reach>& a, const std::vector<Reach>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Reach& p, const Reach& q) { return p.first == q.first && p.past == q.past; });
}

// The first generation of the upsampling NV41 kernel ends the process.
std::vector<Conversion> measured_conversions() {
    std::vector<Conversion> rows = conversions();
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [](const Conversion& c) { return c.name == std::string("zivColorNV41toNV21"); }),
               rows.end());
    return rows;
}

class KernelFacts : public testing::TestWithParam<Conversion> {
protected:
    const Conversion& c = GetParam();
    const Facts& f = *facts::find(facts::conversions, c.name);

    std::vector<Reach> reach(ImagePair images, const ImagePair& room) const {
        images.fill_unread = false;  // here it shows whether the facts are true
        return reach_of(call_of(c, images), rooms_of(c, room), base_seed);
    }
    std::vector<Reach> reach(const ImagePair& images) const { return reach(images, images); }
    int64_t status(const ImagePair& images, uint32_t source, uint32_t destination) const {
        const std::vector<Room> rooms = rooms_of(c, tight(c, 16, 8));
        std::vector<std::vector<uint8_t>> memory;
        Image planes[2] = {{source, images.source_width, images.source_height, {}, {}},
                           {destination, images.destination_width, images.destination_height, {}, {}}};
        for (const Room& room : rooms) memory.emplace_back(room.before + room.after);
        for (size_t k = 0; k < 6; k++) planes[k / 3].plane[k % 3] = memory[k].data() + rooms[k].before;
        for (size_t k = 0; k < 6; k++)
            planes[k / 3].pitch[k % 3] = (k < 3 ? images.source_pitch : images.destination_pitch)[k % 3];
        return c.convert(reference::kernels, &planes[0], &planes[1], 0);
    }
    using Image = zivcolor::Image;
};

TEST_P(KernelFacts, SizesThatDriveTheWalk) {
    const ImagePair both = tight(c, 64, 8);
    const auto sized = [&](int32_t ImagePair::*source, int32_t ImagePair::*destination, int s, int d) {
        ImagePair images = both;
        images.*source = s;
        images.*destination = d;
        return reach(images, both);
    };
    const auto driver = [&](int32_t ImagePair::*source, int32_t ImagePair::*destination, int large, int small) {
        const auto mixed = sized(source, destination, large, small);
        const auto by_source = sized(source, destination, large, large);
        const auto by_destination = sized(source, destination, small, small);
        EXPECT_FALSE(by_source == by_destination);
        EXPECT_TRUE(mixed == by_source || mixed == by_destination);
        return mixed == by_source ? facts::Src : facts::Dst;
    };
    EXPECT_EQ(driver(&ImagePair::source_width, &ImagePair::destination_width, 64, 32), f.columns);
    EXPECT_EQ(driver(&ImagePair::source_height, &ImagePair::destination_height, 8, 4), f.rows);
}

TEST_P(KernelFacts, PitchesThatAreRead) {
    ImagePair base = tight(c, 32, 8);
    base.fill_unread = false;
    for (int k = 0; k < 3; k++) base.source_pitch[k] += 64, base.destination_pitch[k] += 64;
    const auto expected = reach(base);
    int read[2] = {};
    for (int image = 0; image < 2; image++)
        for (int k = 0; k < plane_count(image ? c.destination : c.source); k++) {
            ImagePair images = base;
            (image ? images.destination_pitch : images.source_pitch)[k] -= 16;
            if (!(reach(images, base) == expected)) read[image] |= 1 << k;
        }
    EXPECT_EQ(read[0], f.source_pitches);
    EXPECT_EQ(read[1], f.destination_pitches);

    // Nonsense where no pitch is read changes no byte.
    ImagePair nonsense = base;
    for (int k = 0; k < 3; k++) {
        if (!(f.source_pitches & (1 << k))) nonsense.source_pitch[k] = INT_MIN;
        if (!(f.destination_pitches & (1 << k))) nonsense.destination_pitch[k] = INT_MAX;
    }
    const auto bytes_after = [&](const ImagePair& images) {
        const std::vector<Room> rooms = rooms_of(c, base);
        std::vector<uint8_t> memory;
        std::vector<size_t> at;
        size_t size = 0;
        for (const Room& room : rooms) at.push_back(size + room.before), size += room.before + room.after;
        memory.resize(size);
        fill(memory.data(), size, base_seed);
        uint8_t* buffers[6];
        for (size_t k = 0; k < 6; k++) buffers[k] = memory.data() + at[k];
        EXPECT_EQ(call_of(c, images)(reference::kernels, buffers), 0);
        return memory;
    };
    EXPECT_TRUE(bytes_after(base) == bytes_after(nonsense));
}

// Columns of plane 0 that a kernel touches in its last row, for a number of rows.
int64_t columns_of(uint32_t format, const Reach& reach, int pitch, bool pitch_read, int rows) {
    const int64_t pixel = tight_pitch(format, 0, 2) / 2;
    const int64_t bytes = pitch_read ? reach.past - int64_t{rows - 1} * pitch : reach.past / rows;
    return (bytes + pixel - 1) / pixel;
}

TEST_P(KernelFacts, OddWidth) {
    if (f.odd_width == facts::Fours) return;
    constexpr int rows = 4;
    for (const int width : {21, 22, 23, 37, 43}) {
        ImagePair images = tight(c, width, rows);
        for (int k = 0; k < 3; k++) {
            if (f.source_pitches & (1 << k)) images.source_pitch[k] += 300;
            if (f.destination_pitches & (1 << k)) images.destination_pitch[k] += 300;
        }
        const auto touched = reach(images);
        const int even = width & ~1, up = (width + 1) & ~1, tail = width % 16, start = width - tail;
        int written = even, read = even;
        switch (f.odd_width) {
            case facts::Exact: written = read = width; break;
            case facts::Past: written = read = up; break;
            case facts::Short: written = read = width % 2 ? even : width - 2; break;
            case facts::Ahead: read = start + tail / 2 * 4; break;
            case facts::Twice: written = read = start + 2 * tail; break;
            default: break;
        }
        const int last_row = f.odd_height == facts::RowOne ? 2 : rows;
        EXPECT_EQ(columns_of(c.source, touched[0], images.source_pitch[0], f.source_pitches & 1, rows), read) << width;
        // The lower row of a pair stands a width below the upper one in the kernel whose tail covers twice its columns.
        if (f.odd_width == facts::Twice) continue;
        EXPECT_EQ(columns_of(c.destination, touched[3], images.destination_pitch[0], f.destination_pitches & 1, last_row),
                  written)
            << width;
    }
}

TEST_P(KernelFacts, OddHeight) {
    if (f.odd_height == facts::Fours) return;
    constexpr int width = 32;
    for (const int height : {5, 7}) {
        const ImagePair images = tight(c, width, height);
        const auto touched = reach(images);
        const int read = f.odd_height == facts::LeftOut ? height - 1 : f.odd_height == facts::Past ? height + 1 : height;
        const int written = f.odd_height == facts::RowOne ? 2 : read;
        const int extra = f.odd_width == facts::Twice ? 16 : 0;
        const auto rows_of_reach = [&](uint32_t format, const Reach& r) {
            const int pitch = tight_pitch(format, 0, width);
            return (r.past - tight_pitch(format, 0, extra) + pitch - 1) / pitch;
        };
        EXPECT_EQ(rows_of_reach(c.source, touched[0]), read) << height;
        EXPECT_EQ(rows_of_reach(c.destination, touched[3]), written) << height;
    }
}

// The left part of a row stands in it once more where its blocks end: do block and tail make the same of it?
TEST_P(KernelFacts, BlockAndTail) {
    if (f.block == 0) {
        EXPECT_EQ(f.tail, facts::Same);
        return;
    }
    const int part = f.block == 32 ? 28 : f.block - 2, width = f.block + part;
    constexpr int height = 8;
    const ImagePair images = tight(c, width, height);
    bool same = true;
    for (uint64_t round = 0; same && round < (f.tail == facts::Same ? 100 : 5000); round++) {
        std::vector<std::vector<uint8_t>> memory;
        uint8_t* buffers[6];
        const std::vector<Room> rooms = rooms_of(c, images);
        for (size_t k = 0; k < 6; k++) {
            memory.emplace_back(rooms[k].before + rooms[k].after);
            buffers[k] = memory[k].data() + rooms[k].before;
            if (k < 3) fill(memory[k].data(), memory[k].size(), base_seed + 8 * round + k);
        }
        const auto each_row = [&](uint32_t format, size_t first, auto visit) {
            for (int k = 0; k < plane_count(format); k++)
                for (int row = 0; row < plane_rows(format, k, height); row++) {
                    uint8_t* at = buffers[first + static_cast<size_t>(k)] + row * tight_pitch(format, k, width);
                    visit(at, at + tight_pitch(format, k, f.block), tight_pitch(format, k, part));
                }
        };
        each_row(c.source, 0, [](uint8_t* left, uint8_t* right, int size) { std::copy(left, left + size, right); });
        call_of(c, images)(reference::kernels, buffers);
        each_row(c.destination, 3,
                 [&](uint8_t* left, uint8_t* right, int size) { same = same && std::equal(left, left + size, right); });
    }
    EXPECT_EQ(same ? facts::Same : facts::Differ, f.tail);
}

TEST_P(KernelFacts, LeastSizesAndFormats) {
    const ImagePair sound = tight(c, 4, 4);
    const auto least = [&](int32_t ImagePair::*size) {
        for (int value = 3; value >= 0; value--) {
            ImagePair images = sound;
            images.*size = value;
            if (status(images, c.source, c.destination) == zivStatus_BadArgument) return value + 1;
        }
        return 0;
    };
    const bool both = f.check == facts::Both2x2 || f.check == facts::Both2x1 || f.check == facts::Both1x1;
    const int height =
        f.check == facts::Both2x2 || f.check == facts::Dst2x2SrcRows2 || f.check == facts::Dst2x2AnyFormat ? 2 : 1;
    const int width = f.check == facts::Both2x1 ? 2 : height;
    EXPECT_EQ(least(&ImagePair::destination_width), width);
    EXPECT_EQ(least(&ImagePair::destination_height), height);
    EXPECT_EQ(least(&ImagePair::source_width), both ? width : 0);
    EXPECT_EQ(least(&ImagePair::source_height), both || f.check == facts::Dst2x2SrcRows2 ? height : 0);

    const bool any = f.check == facts::Dst2x2AnyFormat || f.check == facts::Dst1x1AnyFormat;
    EXPECT_EQ(status(sound, 0, c.destination), any ? zivStatus_OK : zivStatus_BadArgument);
    EXPECT_EQ(status(sound, c.source, 0), any ? zivStatus_OK : zivStatus_BadArgument);
}

// A colour by the letters of a layout: Y, U, V or R, G, B.
struct Colour {
    std::string letters;
    int value[3];

    int of(char letter) const {
        const size_t at = letters.find(letter);
        return at == std::string::npos ? 0 : value[at];
    }
};

int limited(int value) { return std::clamp(value, 0, 255); }

// What a set makes of a colour.
Colour by_set(facts::Set set, const Colour& from) {
    const int a = from.value[0], b = from.value[1], c = from.value[2], u = b - 128, v = c - 128;
    const auto rgb = [](int red, int green, int blue) { return Colour{"RGB", {limited(red), limited(green), limited(blue)}}; };
    const auto yuv = [](int y, int cb, int cr) { return Colour{"YUV", {y, limited(cb + 128), limited(cr + 128)}}; };
    const int y = (19 * a + 38 * b + 7 * c) >> 6, s = 9798 * a + 19235 * b + 3736 * c, fine = (s + 16384) >> 15;
    const auto fa = static_cast<float>(a), fb = static_cast<float>(b), fc = static_cast<float>(c);
    const auto fu = static_cast<float>(u), fv = static_cast<float>(v);
    const auto whole = [](float value) { return static_cast<int>(value); };
    switch (set) {
        case facts::ToRgbFine:
            return rgb((32768 * a + 45941 * v + 16384) >> 15, (32768 * a - 11277 * u - 23401 * v + 16384) >> 15,
                       (32768 * a + 58065 * u + 16384) >> 15);
        case facts::ToRgbCoarse: return rgb(a + (45 * v >> 5), a - ((11 * u >> 5) + (23 * v >> 5)), a + (57 * u >> 5));
        case facts::ToRgbHalfGreen: return rgb(a + (45 * v >> 5), a - ((11 * u >> 6) + (23 * v >> 5)), a + (57 * u >> 5));
        case facts::ToRgbRounded:
            return rgb((32 * a + 45 * v + 16) >> 5, (32 * a - 11 * u - 23 * v + 16) >> 5, (32 * a + 57 * u + 16) >> 5);
        case facts::ToRgbBinary32:
            return rgb(whole(fa + 1.402f * fv), whole(fa + (-0.714f * fv + -0.344f * fu)), whole(fa + 1.772f * fu));
        case facts::ToYuvShort: return yuv(y, (c - y) * 9 >> 4, (a - y) * 91 >> 7);
        case facts::ToYuvFine: return yuv(fine, ((c - fine) * 18492 + 16384) >> 15, ((a - fine) * 23372 + 16384) >> 15);
        case facts::ToYuvFractional:
            return yuv(fine, (((((c << 7) - (s >> 8)) * 18492) >> 7) + 16384) >> 15,
                       (((((a << 7) - (s >> 8)) * 23372) >> 7) + 16384) >> 15);
        case facts::ToYuvFloat:
            return yuv(whole((fb * 0.587f + fa * 0.299f) + fc * 0.114f), whole((fb * -0.3313f + fa * -0.1678f) + fc * 0.5f),
                       whole((fb * -0.4187f + fa * 0.5f) + fc * -0.0813f));
        case facts::ToYuvEighths: return yuv(y, (c - y) * 4 >> 3, (a - y) * 7 >> 3);
        case facts::ToYuvThirtySeconds: return yuv(y, (c - y) * 18 >> 5, (a - y) * 23 >> 5);
        default: return from;
    }
}

// The letters of a plane's unit, as the layout's row tells them.
std::string letters_of(uint32_t format, int plane) {
    const facts::LayoutFacts& l = *facts::find(facts::layouts, format_name(format));
    std::string text(plane ? l.chroma : l.luma), letters;
    if (const size_t semicolon = text.find(';'); semicolon != std::string::npos)
        text = plane == 1 ? text.substr(0, semicolon) : text.substr(semicolon + 1);
    std::istringstream words(text);
    for (std::string word; words >> word;) letters += word[0];
    return letters;
}

TEST_P(KernelFacts, SetOfTheBlocks) {
    if (f.set == facts::Moves || f.set == facts::Means) return;
    const ImagePair images = tight(c, 64, 4);
    Random random{base_seed};
    for (int round = 0; round < 500; round++) {
        const auto sample = [&] { return random.below(256); };
        const Colour colour{c.source >> 8 <= 3 ? "RGB" : "YUV", {sample(), sample(), sample()}},
            expected = by_set(f.set, colour);
        std::vector<std::vector<uint8_t>> memory;
        uint8_t* buffers[6];
        const std::vector<Room> rooms = rooms_of(c, images);
        for (size_t k = 0; k < 6; k++) {
            memory.emplace_back(rooms[k].before + rooms[k].after);
            buffers[k] = memory[k].data() + rooms[k].before;
            if (k >= static_cast<size_t>(plane_count(c.source))) continue;
            const std::string letters = letters_of(c.source, static_cast<int>(k));
            for (size_t at = 0; at < rooms[k].after; at++)
                buffers[k][at] = static_cast<uint8_t>(colour.of(letters[at % letters.size()]));
        }
        call_of(c, images)(reference::kernels, buffers);
        for (int k = 0; k < plane_count(c.destination); k++) {
            const std::string letters = letters_of(c.destination, k);
            const uint8_t* row = buffers[3 + k] + (f.odd_height == facts::RowOne ? images.destination_pitch[0] : 0);
            for (size_t at = 0; at < letters.size(); at++)
                ASSERT_EQ(row[at], letters[at] == 'A' ? images.alpha : expected.of(letters[at])) << letters << ", byte " << at;
        }
    }
}

// Whether a kernel touches more than the rows of its images, at even sizes and at odd ones.
TEST_P(KernelFacts, MemoryBeyondTheImage) {
    bool beyond[2] = {};
    for (int width = 2; width <= 40; width++)
        for (int height = 2; height <= 7; height++) {
            const ImagePair images = tight(c, width, height);
            const auto touched = reach(images);
            for (size_t k = 0; k < 6; k++) {
                const uint32_t format = k < 3 ? c.source : c.destination;
                const auto plane = static_cast<int>(k % 3);
                const ptrdiff_t size = tight_pitch(format, plane, width) * plane_rows(format, plane, height);
                if (plane < plane_count(format) && (touched[k].first < 0 || touched[k].past > size))
                    beyond[width % 2 || height % 2] = true;
            }
        }
    EXPECT_EQ(beyond[0], facts::beyond(f) == facts::AtEvenSizesToo);
    EXPECT_EQ(beyond[1], facts::beyond(f) != facts::Never);
}

INSTANTIATE_TEST_SUITE_P(All, KernelFacts, testing::ValuesIn(measured_conversions()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

// Of an image of 5 by 5 pixels, written out by hand: the bytes of a row and the rows of each plane.
TEST(LayoutFacts, PlanesAndSizes) {
    const std::string luma = "5x5", packed = "12x5";
    const std::map<uint32_t, std::string> expected = {{zivPixFmt_BGR565, "10x5"},
                                                      {zivPixFmt_RGB565, "10x5"},
                                                      {zivPixFmt_BGR888, "15x5"},
                                                      {zivPixFmt_RGB888, "15x5"},
                                                      {zivPixFmt_BGRA8888, "20x5"},
                                                      {zivPixFmt_ARGB8888, "20x5"},
                                                      {zivPixFmt_RGBA8888, "20x5"},
                                                      {zivPixFmt_YUV, "15x5"},
                                                      {zivPixFmt_YUYV, packed},
                                                      {zivPixFmt_YVYU, packed},
                                                      {zivPixFmt_UYVY, packed},
                                                      {zivPixFmt_VYUY, packed},
                                                      {zivPixFmt_I420, luma + " 3x3 3x3"},
                                                      {zivPixFmt_YV12, luma + " 3x3 3x3"},
                                                      {zivPixFmt_I422V, luma + " 5x3 5x3"},
                                                      {zivPixFmt_I422H, luma + " 3x5 3x5"},
                                                      {zivPixFmt_I444, luma + " 5x5 5x5"},
                                                      {zivPixFmt_YV24, luma + " 5x5 5x5"},
                                                      {zivPixFmt_NV12, luma + " 6x3"},
                                                      {zivPixFmt_NV21, luma + " 6x3"},
                                                      {zivPixFmt_LPI422H, luma + " 6x5"},
                                                      {zivPixFmt_NV41, luma + " 4x2"}};
    ASSERT_EQ(codes().size(), expected.size());
    for (const uint32_t format : codes()) {
        std::string planes;
        for (int k = 0; k < plane_count(format); k++)
            planes +=
                (k ? " " : "") + std::to_string(tight_pitch(format, k, 5)) + "x" + std::to_string(plane_rows(format, k, 5));
        EXPECT_EQ(planes, expected.at(format)) << format_name(format);
    }
}

}  // namespace
