// SPDX-License-Identifier: MIT
// Every conversion of the kernel list on every target against the reference: whole arenas, byte for byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "harness/conversions.h"
#include "reference/reference.h"

namespace {

using namespace harness;

// What the work buffer of the upsampling NV41 kernel holds where nothing was written to it is not determined, and its first
// generation ends the process: both have tests of their own.
std::vector<Conversion> determined_conversions() {
    std::vector<Conversion> rows;
    for (const Conversion& c : conversions()) {
        const std::string name = c.name;
        if (name != "zivColorNV41toNV21" && name != "zivColorNV41toNV21_2") rows.push_back(c);
    }
    return rows;
}

class Conversions : public testing::TestWithParam<Conversion> {
protected:
    // A deterministic seed for each conversion.
    uint64_t seed() const {
        uint64_t s = base_seed;
        for (const char* p = GetParam().name; *p; p++) s = s * 31 + static_cast<uint8_t>(*p);
        return s;
    }
    void expect_same(const ImagePair& images, uint64_t fill_seed) {
        const Conversion& c = GetParam();
        expect_same_bytes(call_of(c, images), rooms_of(c, images), fill_seed, [&] { return describe(c, images); });
    }
    template <class Change>
    void every_small_size(Change change) {
        Random random{seed()};
        for (int width = 1; width <= 80; width++)
            for (int height = 1; height <= 9; height++) {
                ImagePair images = tight(GetParam(), width, height);
                change(images, random);
                expect_same(images, random.next());
                if (HasFailure()) return;
            }
    }
};

TEST_P(Conversions, TightImages) {
    every_small_size([](ImagePair& p, Random& random) { p.alpha = static_cast<uint8_t>(random.next()); });
}

// The bytes of a row as the width alone makes them: where an odd one is rounded up to whole pairs, the surplus of a row falls
// on the start of the next.
int unrounded_pitch(uint32_t format, int plane, int width) {
    const int rounded = tight_pitch(format, plane, width);
    switch (format) {
        case zivPixFmt_YUYV:
        case zivPixFmt_YVYU:
        case zivPixFmt_UYVY:
        case zivPixFmt_VYUY: return 2 * width;
        case zivPixFmt_I420:
        case zivPixFmt_YV12:
        case zivPixFmt_I422H: return plane ? width / 2 : rounded;
        case zivPixFmt_NV12:
        case zivPixFmt_NV21:
        case zivPixFmt_LPI422H: return plane ? width : rounded;
        default: return rounded;
    }
}

TEST_P(Conversions, RowsThatMeetAtOddWidths) {
    const Conversion& c = GetParam();
    every_small_size([&](ImagePair& p, Random&) {
        for (int k = 0; k < plane_count(c.source); k++) p.source_pitch[k] = unrounded_pitch(c.source, k, p.source_width);
        for (int k = 0; k < plane_count(c.destination); k++)
            p.destination_pitch[k] = unrounded_pitch(c.destination, k, p.destination_width);
    });
}

TEST_P(Conversions, PaddedUnequalPitches) {
    every_small_size([](ImagePair& p, Random& random) {
        for (int k = 0; k < 3; k++) p.source_pitch[k] += random.below(41), p.destination_pitch[k] += random.below(41);
    });
}

// Where all planes but one are tight, a kernel must not take the image for one run.
TEST_P(Conversions, OnePaddedPlane) {
    const Conversion& c = GetParam();
    every_small_size([&](ImagePair& p, Random& random) {
        const int plane = random.below(plane_count(c.source) + plane_count(c.destination));
        const int padding = random.between(1, 40);
        if (plane < plane_count(c.source)) p.source_pitch[plane] += padding;
        else p.destination_pitch[plane - plane_count(c.source)] += padding;
    });
}

TEST_P(Conversions, NegativePitches) {
    every_small_size([](ImagePair& p, Random& random) { negate_some_pitches(p, random, 5); });
}

// Pitches that are what some other plane, pixel or size would make of them: a kernel must not take rows for one run, or for
// rows that do not overlap, by what holds in another plane.
TEST_P(Conversions, PitchesThatCoincide) {
    const Conversion& c = GetParam();
    Random random{seed()};
    for (int round = 0; round < 250; round++) {
        const int width = random.below(4) ? random.between(1, 8) * 16 : random.between(1, 140);
        ImagePair images = tight(c, width, random.between(1, 9));
        const auto change = [&](int32_t& pitch) {
            const int of[] = {pitch, pitch, width / 2, width, images.source_height};
            if (random.below(3)) pitch = of[random.below(5)] * random.between(0, 8) / (random.below(3) ? 2 : 4);
            if (random.below(8) == 0) pitch = -pitch;
        };
        for (int k = 0; k < 3; k++) change(images.source_pitch[k]), change(images.destination_pitch[k]);
        std::vector<Room> rooms = rooms_of(c, images);
        size_t most = 0;  // some planes are stepped by the pitch of the other image
        for (const Room& room : rooms) most = std::max({most, room.before, room.after});
        for (Room& room : rooms) room.before = room.after = most;
        expect_same_bytes(call_of(c, images), rooms, random.next(), [&] { return describe(c, images); });
        if (HasFailure()) return;
    }
}

// Destination rows that overlap show the order in which they are written, and the fewer bytes they are apart, the
// order within a block.
TEST_P(Conversions, RowsThatOverlap) {
    const Conversion& c = GetParam();
    Random random{seed()};
    for (int round = 0; round < 600; round++) {
        ImagePair images = tight(c, random.between(1, random.below(4) ? 90 : 330), random.between(1, 9));
        for (int32_t& pitch : images.destination_pitch) {
            const int apart = random.below(3) ? pitch : std::min(pitch, 20);
            if (random.below(4)) pitch = random.between(-apart, apart);
        }
        expect_same(images, random.next());
        if (HasFailure()) return;
    }
}

TEST_P(Conversions, UnequalSizes) {
    every_small_size([](ImagePair& p, Random& random) {
        const int width = random.between(1, 90), height = random.between(1, 11);
        const ImagePair wide = tight(GetParam(), std::max(width, p.source_width), height);
        if (random.below(2)) {
            p.source_width = width, p.source_height = height;
        } else {
            p.destination_width = width, p.destination_height = height;
        }
        for (int k = 0; k < 3; k++) {
            p.source_pitch[k] = wide.source_pitch[k] + random.below(33);
            p.destination_pitch[k] = wide.destination_pitch[k] + random.below(33);
        }
    });
}

TEST_P(Conversions, AroundEveryBlockEdge) {
    Random random{seed()};
    for (const int edge : {96, 112, 128, 144, 160, 176, 192, 224, 256, 320, 384, 512, 640})
        for (int width = edge - 3; width <= edge + 3; width++)
            for (const int height : {2, 3}) {
                ImagePair images = tight(GetParam(), width, height);
                if (random.below(2))
                    for (int k = 0; k < 3; k++)
                        images.source_pitch[k] += random.below(70), images.destination_pitch[k] += random.below(70);
                expect_same(images, random.next());
                if (HasFailure()) return;
            }
}

// Tight images of whole blocks, long enough for kernels that take them as one row and align its stores.
TEST_P(Conversions, LongTightImagesAtEveryAlignment) {
    const Conversion& c = GetParam();
    Random random{seed()};
    for (int shift = 0; shift < 64; shift++) {
        const ImagePair images = tight(c, random.between(1, 5) * 16, 68);
        const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) {
            uint8_t* planes[6];
            for (int k = 0; k < 6; k++) planes[k] = buffers[k] + (k < 3 ? 0 : shift);
            return call_of(c, images)(kernels, planes);
        };
        std::vector<Room> rooms = rooms_of(c, images);
        for (Room& room : rooms) room.after += 64;
        expect_same_bytes(call, rooms, random.next(), [&] { return describe(c, images) + ", shift " + std::to_string(shift); });
        if (HasFailure()) return;
    }
}

// Planes follow each other in one block of memory, as frames do: what runs over the end of one plane falls on the next.
TEST_P(Conversions, PlanesInOneBlock) {
    const Conversion& c = GetParam();
    Random random{seed()};
    for (int width = 1; width <= 80; width++)
        for (int height = 1; height <= 9; height++) {
            const ImagePair images = tight(c, width, height);
            const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) {
                uint8_t* planes[6] = {};
                for (int image = 0; image < 2; image++) {
                    const uint32_t format = image ? c.destination : c.source;
                    uint8_t* at = buffers[image];
                    for (int k = 0; k < plane_count(format); k++) {
                        planes[3 * image + k] = at;
                        at += tight_pitch(format, k, width) * plane_rows(format, k, height);
                    }
                }
                return call_of(c, images)(kernels, planes);
            };
            const auto size = static_cast<size_t>(16 * (width + 16) * (height + 4) + 512);
            expect_same_bytes(call, {{64, size}, {64, size}}, random.next(),
                              [&] { return describe(c, images) + ", one block"; });
            if (HasFailure()) return;
        }
}

TEST_P(Conversions, StayInsideTheirReach) {
    const Conversion& c = GetParam();
    Random random{seed()};
    const auto expect = [&](const ImagePair& images) {
        expect_in_bounds(call_of(c, images), rooms_of(c, images), random.next(), [&] { return describe(c, images); });
    };
    for (int width = 1; width <= 80; width++)
        for (const int height : {1, 2, 3, 4}) {
            ImagePair images = tight(c, width, height);
            expect(images);
            for (int k = 0; k < 3; k++)
                images.source_pitch[k] += random.below(20), images.destination_pitch[k] += random.below(20);
            expect(images);
            if (HasFailure()) return;
        }
    for (const int width : {126, 127, 128, 129, 130, 190, 191, 192, 193, 194, 206, 208, 210, 254, 255, 256, 257})
        expect(tight(c, width, 2));
}

// Every size check, one field and two fields at a time, and every format code.
TEST_P(Conversions, EntryChecks) {
    const Conversion& c = GetParam();
    Random random{seed()};
    const ImagePair sound = tight(c, 6, 4);
    const std::vector<Room> rooms = rooms_of(c, tight(c, 16, 8));
    // This one clears the rest of a row, which half of the least width makes longer than any memory.
    const bool clears_by_width = c.name == std::string("zivColorNV21toNV41_2");
    const auto expect = [&](const ImagePair& images) {
        if (clears_by_width && images.source_width == INT_MIN) return;
        expect_same_bytes(call_of(c, images), rooms, random.next(), [&] { return describe(c, images); });
    };
    const int32_t sizes[] = {INT_MIN, -2, -1, 0, 1, 2, 3};
    int32_t ImagePair::*const fields[] = {&ImagePair::source_width, &ImagePair::source_height, &ImagePair::destination_width,
                                          &ImagePair::destination_height};
    for (const auto first : fields)
        for (const int32_t a : sizes)
            for (const auto second : fields)
                for (const int32_t b : sizes) {
                    ImagePair images = sound;
                    images.*first = a;
                    images.*second = b;
                    expect(images);
                }
    // The largest size beside a bad one is refused like any other.
    for (const auto first : fields)
        for (const int32_t extreme : {INT_MAX, INT_MIN}) {
            ImagePair images = sound;
            images.*first = extreme;
            images.destination_height = 0;
            expect(images);
            images.destination_height = extreme;
            images.destination_width = 0;
            expect(images);
        }
}

TEST_P(Conversions, NullDescriptorsAndFormatCodes) {
    const Conversion& c = GetParam();
    static const uint32_t codes[] = {0,     0x101, 0x105, 0x201, 0x204, 0x302, 0x304, 0x305, 0x401, 0x501, 0x502, 0x503,
                                     0x504, 0x601, 0x602, 0x603, 0x604, 0x605, 0x608, 0x801, 0x802, 0x803, 0x805, 0xFFFFFFFF};
    const ImagePair images = tight(c, 8, 4);
    Random random{seed()};
    const auto expect = [&](uint32_t source, uint32_t destination, int nulls) {
        const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
            zivcolor::Image s{source, 8, 4, {buffers[0], buffers[1], buffers[2], nullptr}, {}};
            zivcolor::Image d{destination, 8, 4, {buffers[3], buffers[4], buffers[5], nullptr}, {}};
            for (int k = 0; k < 3; k++) s.pitch[k] = images.source_pitch[k], d.pitch[k] = images.destination_pitch[k];
            Random unread{source + destination};
            fill_unread(c, s, d, unread);
            // What an exported entry does before it calls the kernel must bear nulls too.
            const auto convert = &kernels == &reference::kernels ? c.convert : c.convert_as_entry;
            return convert(kernels, nulls & 1 ? nullptr : &s, nulls & 2 ? nullptr : &d, 1);
        };
        expect_same_bytes(call, rooms_of(c, images), random.next(), [&] {
            return std::string(c.name) + " given " + format_name(source) + " to " + format_name(destination) + ", nulls " +
                   std::to_string(nulls);
        });
    };
    for (const uint32_t code : codes) {
        expect(code, c.destination, 0);
        expect(c.source, code, 0);
    }
    for (int nulls = 1; nulls <= 3; nulls++) {
        expect(c.source, c.destination, nulls);
        expect(0, 0, nulls);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Conversions, testing::ValuesIn(determined_conversions()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

}  // namespace
