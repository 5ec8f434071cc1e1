// SPDX-License-Identifier: MIT
// Turns and mirrors on every target against the reference, and by their meaning.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "harness/conversions.h"
#include "harness/options.h"

namespace {

using namespace harness;

enum class Routine { clockwise, counter_clockwise, half_turn, horizontal, vertical };

bool is_quarter_turn(Routine routine) { return routine == Routine::clockwise || routine == Routine::counter_clockwise; }
bool is_mirror(Routine routine) { return routine == Routine::horizontal || routine == Routine::vertical; }

struct Geometry {
    int32_t width, height, source_pitch[2], destination_pitch[2], destination_height;
};

// The descriptors without their planes, and nonsense where the routine reads nothing.
struct Descriptors {
    zivcolor::Image source, destination;
};
Descriptors descriptors_of(Routine routine, const Geometry& g) {
    constexpr uint32_t nv21 = zivPixFmt_NV21;
    Random random{static_cast<uint64_t>(g.width) << 32 | static_cast<uint32_t>(g.height)};
    Descriptors d{{nv21, g.width, g.height, {}, {}}, {nv21, g.height, g.destination_height, {}, {}}};
    for (int k = 0; k < 2; k++) d.source.pitch[k] = g.source_pitch[k], d.destination.pitch[k] = g.destination_pitch[k];
    fill_beyond_layout(d.source, nv21, random);
    fill_beyond_layout(d.destination, nv21, random);
    const auto any = [&] { return static_cast<int32_t>(random.next()); };
    const auto any_pitch = [&] { return d.source.pitch[random.below(2) + 2]; };
    d.destination.format = random.next();
    d.destination.width = any();
    d.destination.pitch[1] = any_pitch();
    if (routine != Routine::counter_clockwise) d.destination.height = any();
    if (routine == Routine::vertical) d.destination.pitch[0] = any_pitch();
    if (is_quarter_turn(routine)) d.source.pitch[1] = any_pitch();
    if (!is_mirror(routine)) d.source.format = random.next();
    return d;
}

// Buffers: source luma, source chroma, destination luma, destination chroma.
Call call_of(Routine routine, const Geometry& g) {
    return [routine, d = descriptors_of(routine, g)](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
        zivcolor::Image source = d.source, destination = d.destination;
        for (int k = 0; k < 2; k++) source.plane[k] = buffers[k], destination.plane[k] = buffers[2 + k];
        switch (routine) {
            case Routine::clockwise: return kernels.zivRotate(&source, &destination, 1), 0;
            case Routine::counter_clockwise: return kernels.zivRotate(&source, &destination, 3), 0;
            case Routine::half_turn: return kernels.zivRotate(&source, &destination, 2), 0;
            case Routine::horizontal: return kernels.zivflip_horizontal_nv21(&source, &destination);
            case Routine::vertical: return kernels.zivflip_vertical_nv21(&source, &destination);
        }
        return 0;
    };
}

std::vector<Room> rooms_of(const Geometry& g) {
    const auto size = [](int64_t n) { return static_cast<size_t>(n); };
    int64_t pitch = g.width;
    for (const int32_t p : {g.source_pitch[0], g.source_pitch[1], g.destination_pitch[0], g.destination_pitch[1]})
        pitch = std::max<int64_t>(pitch, p < 0 ? -int64_t{p} : p);
    const int64_t rows = std::max({g.width, g.height, g.destination_height}) + 3;
    const size_t reach = size(pitch * rows + g.width + 64);
    const auto plane = [](const char* name, int step, int columns) { return Plane{name, step, columns, columns}; };
    return {{reach, reach, plane("source luma", g.source_pitch[0], g.width)},
            {reach, reach, plane("source chroma", g.source_pitch[1], g.width)},
            {reach, reach, plane("destination luma", g.destination_pitch[0], g.height)},
            {reach, reach, plane("destination chroma", g.destination_pitch[1], g.height)}};
}

std::string describe(const Geometry& g) {
    std::string text = std::to_string(g.width) + "x" + std::to_string(g.height) + " pitches";
    for (const int32_t p : {g.source_pitch[0], g.source_pitch[1], g.destination_pitch[0], g.destination_pitch[1]})
        text += ' ', text += std::to_string(p);
    return text + ", destination height " + std::to_string(g.destination_height);
}

class GeometryRoutine : public testing::TestWithParam<Routine> {
protected:
    Geometry tight(int width, int height) const {
        const int across = is_quarter_turn(GetParam()) ? height : width;
        return {width, height, {width, width}, {across, across}, is_quarter_turn(GetParam()) ? width : height};
    }
    void expect_same(const Geometry& g, uint64_t seed) const {
        expect_same_bytes(call_of(GetParam(), g), rooms_of(g), seed, [&] { return describe(g); });
    }
    Random random{base_seed + static_cast<uint64_t>(GetParam())};
};

TEST_P(GeometryRoutine, SmallTightImages) {
    for (int width = -1; width <= 50; width++)
        for (int height = -1; height <= 34; height++) {
            expect_same(tight(width, height), random.next());
            if (HasFailure()) return;
        }
}

TEST_P(GeometryRoutine, PitchesOfAnyKind) {
    for (int round = 0; round < 1500; round++) {
        Geometry g = tight(random.between(1, 150), random.between(1, 150));
        for (int32_t* pitches : {g.source_pitch, g.destination_pitch})
            for (int k = 0; k < 2; k++) {
                pitches[k] += random.below(3) ? random.below(40) & ~1 : random.below(60) - 20;
                if (random.below(8) == 0) pitches[k] = -pitches[k];
            }
        if (random.below(4) == 0) g.destination_height = random.between(1, 160);
        expect_same(g, random.next());
        if (HasFailure()) return;
    }
}

// All four planes in one block of memory, a little apart or over each other: the order of blocks shows.
TEST_P(GeometryRoutine, PlanesThatMeet) {
    for (int round = 0; round < 1500; round++) {
        Geometry g = tight(random.between(8, 90), random.between(8, 90));
        for (int k = 0; k < 2; k++) g.destination_pitch[k] += random.below(2) ? 0 : random.below(24) - 12;
        const ptrdiff_t luma = ptrdiff_t{g.width} * g.height;
        const ptrdiff_t destination = is_quarter_turn(GetParam()) || random.below(2) ? 2 * luma : random.below(200) - 100;
        const ptrdiff_t chroma = random.below(2) ? luma : random.below(static_cast<int>(luma));
        const Call on_planes = call_of(GetParam(), g);
        const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) {
            uint8_t* const start = buffers[0];
            uint8_t* const planes[4] = {start, start + luma, start + destination, start + destination + chroma};
            return on_planes(kernels, planes);
        };
        const size_t room = rooms_of(g)[0].after;
        expect_same_bytes(call, {{room, 3 * room}}, random.next(), [&] {
            return describe(g) + ", destination at " + std::to_string(destination) + ", its chroma " + std::to_string(chroma);
        });
        if (HasFailure()) return;
    }
}

// The same of a few rows, where luma and chroma of one pass meet: by a few bytes, from before, from behind or within.
TEST_P(GeometryRoutine, PlanesOfFewRowsThatMeet) {
    const int least = is_quarter_turn(GetParam()) ? 8 : 1;
    for (int round = 0; round < 4000; round++) {
        Geometry g = tight(random.between(8, 44), random.between(least, least + 3));
        for (int k = 0; k < 2; k++) {
            if (random.below(4) == 0) g.source_pitch[k] += random.below(9);
            if (random.below(4) == 0) g.destination_pitch[k] += random.below(9);
        }
        const int luma = 2 * g.width * g.height, near = g.width * g.height + 16;
        int at[3] = {luma, 4 * luma, 6 * luma};  // source chroma, destination luma, destination chroma
        switch (random.below(4)) {
            case 0: at[2] = at[1] + random.between(-near, near); break;
            case 1: at[2] = at[0] + random.between(-near, near); break;
            case 2: at[1] = random.between(-near, near); break;
            default: at[1] = random.between(-near, near); at[2] = at[1] + random.between(-near, near);
        }
        // Quarter turns take blocks of two images that are apart in an order of their own.
        if (is_quarter_turn(GetParam())) at[1] = 4 * luma, at[2] = at[1] + random.between(-near, near);
        const Call on_planes = call_of(GetParam(), g);
        const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) {
            uint8_t* const start = buffers[0];
            uint8_t* const planes[4] = {start, start + at[0], start + at[1], start + at[2]};
            return on_planes(kernels, planes);
        };
        const size_t room = 2 * rooms_of(g)[0].after;
        expect_same_bytes(call, {{room, room + 8 * static_cast<size_t>(luma)}}, random.next(), [&] {
            return describe(g) + ", source chroma, destination luma and chroma at " + std::to_string(at[0]) + " " +
                   std::to_string(at[1]) + " " + std::to_string(at[2]);
        });
        if (HasFailure()) return;
    }
}

TEST_P(GeometryRoutine, StaysInsideItsReach) {
    for (const int width : {7, 8, 9, 15, 16, 17, 24, 31, 32, 40, 63, 64, 65, 72, 127, 128, 129, 136})
        for (const int height : {1, 2, 7, 8, 9, 16, 24, 32, 33, 40, 64, 72, 130, 256}) {
            const Geometry g = tight(width, height);
            expect_in_bounds(call_of(GetParam(), g), rooms_of(g), random.next(), [&] { return describe(g); });
            if (HasFailure()) return;
        }
}

// Large ones, and rows that lie a power of two apart, are turned by way of copies.
TEST_P(GeometryRoutine, LargeImages) {
    for (const auto& [width, height] : {std::pair{328, 248}, {512, 512}, {1000, 72}, {72, 1000}, {1920, 136}, {1040, 520}})
        for (const auto& [from, to] : {std::pair{0, 0}, {0, 2048}, {2048, 0}, {4096, 4096}}) {
            Geometry g = tight(width, height);
            if (from) g.source_pitch[0] = g.source_pitch[1] = from;
            if (to) g.destination_pitch[0] = g.destination_pitch[1] = to;
            expect_same(g, random.next());
            if (HasFailure()) return;
        }
}

TEST_P(GeometryRoutine, RowsAPowerOfTwoApart) {
    for (int round = 0; round < 48; round++) {
        Geometry g = tight(random.between(8, 300), random.between(8, 300));
        if (round % 3) g.source_pitch[0] = g.source_pitch[1] = random.below(3) ? 2048 : -2048;
        if (round % 3 == 0 || random.below(2)) g.destination_pitch[0] = g.destination_pitch[1] = random.below(3) ? 4096 : -4096;
        expect_same(g, random.next());
        expect_in_bounds(call_of(GetParam(), g), rooms_of(g), random.next(), [&] { return describe(g); });
        if (HasFailure()) return;
    }
}

std::string name_of(const testing::TestParamInfo<Routine>& row) {
    static const char* const names[] = {"Clockwise", "CounterClockwise", "HalfTurn", "Horizontal", "Vertical"};
    return names[static_cast<int>(row.param)];
}
INSTANTIATE_TEST_SUITE_P(All, GeometryRoutine,
                         testing::Values(Routine::clockwise, Routine::counter_clockwise, Routine::half_turn,
                                         Routine::horizontal, Routine::vertical),
                         name_of);

// Larger than the caches, where rows are copied past them.
TEST(GeometryBeyondTheCaches, Vertical) {
    constexpr int width = 16398, height = 1302;
    for (const int pitch : {width, width + 3}) {
        const Geometry g{width, height, {pitch, pitch}, {pitch, pitch}, height};
        const auto bytes = static_cast<size_t>(pitch) * height;
        const Room luma{64, bytes + 64}, chroma{64, bytes / 2 + 64};
        expect_same_bytes(call_of(Routine::vertical, g), {luma, chroma, luma, chroma}, base_seed, [&] { return describe(g); });
    }
}

// A 16 by 8 image whose luma is 16 y + x and whose pair at (yc, xc) is 16 yc + xc, 200 + 16 yc + xc.
struct Numbered {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(16 * 12);
    zivcolor::Image image{zivPixFmt_NV21, 16, 8, {bytes.data(), bytes.data() + 128}, {16, 16}};
    Numbered() {
        for (int y = 0; y < 8; y++)
            for (int x = 0; x < 16; x++) bytes[static_cast<size_t>(16 * y + x)] = static_cast<uint8_t>(16 * y + x);
        for (int y = 0; y < 4; y++)
            for (int x = 0; x < 8; x++)
                for (int k = 0; k < 2; k++)
                    bytes[static_cast<size_t>(128 + 16 * y + 2 * x + k)] = static_cast<uint8_t>(200 * k + 16 * y + x);
    }
};

struct Place {
    int y, x;
};

// Where the luma samples (0, 0), (1, 3) and (7, 15) went, and the pairs (0, 0) and (3, 7).
void expect_places(const Numbered& turned, int pitch, const Place (&luma)[3], const Place (&pairs)[2]) {
    const int samples[3] = {0, 16 + 3, 127}, firsts[2] = {0, 48 + 7}, seconds[2] = {200, (200 + 48 + 7) & 0xFF};
    for (int k = 0; k < 3; k++) EXPECT_EQ(int{turned.bytes[static_cast<size_t>(pitch * luma[k].y + luma[k].x)]}, samples[k]);
    for (int k = 0; k < 2; k++) {
        const auto at = static_cast<size_t>(128 + pitch * pairs[k].y + 2 * pairs[k].x);
        EXPECT_EQ(int{turned.bytes[at]}, firsts[k]);
        EXPECT_EQ(int{turned.bytes[at + 1]}, seconds[k]);
    }
}

TEST(Geometry, MovesEachSampleWhereItsNameSays) {
    Numbered source, turned;
    turned.image.pitch[0] = turned.image.pitch[1] = 8, turned.image.width = 8, turned.image.height = 16;
    zivRotate(&source.image, &turned.image, 1);  // the top left goes to the top right
    expect_places(turned, 8, {{0, 7}, {3, 6}, {15, 0}}, {{0, 3}, {7, 0}});
    zivRotate(&source.image, &turned.image, 3);  // to the bottom left
    expect_places(turned, 8, {{15, 0}, {12, 1}, {0, 7}}, {{7, 0}, {0, 3}});
    turned.image.pitch[0] = turned.image.pitch[1] = 16, turned.image.width = 16, turned.image.height = 8;
    for (const int mode : {0, 2, 4, -1}) {  // to the bottom right
        std::fill(turned.bytes.begin(), turned.bytes.end(), uint8_t{99});
        zivRotate(&source.image, &turned.image, mode);
        expect_places(turned, 16, {{7, 15}, {6, 12}, {0, 0}}, {{3, 7}, {0, 0}});
    }
    EXPECT_EQ(zivflip_horizontal_nv21(&source.image, &turned.image), zivStatus_OK);
    expect_places(turned, 16, {{0, 15}, {1, 12}, {7, 0}}, {{0, 7}, {3, 0}});
    EXPECT_EQ(zivflip_vertical_nv21(&source.image, &turned.image), zivStatus_OK);
    expect_places(turned, 16, {{7, 0}, {6, 3}, {0, 15}}, {{3, 0}, {0, 7}});
}

// Null is refused before anything else is looked at; where the routine looks no further, the destination may be null too.
TEST(Geometry, NullDescriptors) {
    const Numbered image;
    const zivcolor::Image nv12{zivPixFmt_NV12, 16, 8, {}, {}}, low{zivPixFmt_NV21, 16, 0, {}, {}};
    const auto expect = [&](auto rotate, auto horizontal, auto vertical) {
        for (const int mode : {0, 1, 2, 3, 4, -1}) {
            rotate(nullptr, &image.image, mode);
            rotate(nullptr, nullptr, mode);
        }
        for (const auto mirror : {horizontal, vertical}) {
            EXPECT_EQ(mirror(nullptr, &image.image), zivStatus_NullPointer);
            EXPECT_EQ(mirror(nullptr, nullptr), zivStatus_NullPointer);
            EXPECT_EQ(mirror(&nv12, nullptr), zivStatus_BadArgument);
            EXPECT_EQ(mirror(&low, nullptr), zivStatus_OK);
        }
    };
    expect(zivRotate, zivflip_horizontal_nv21, zivflip_vertical_nv21);
    for (const zivcolor::Target& target : targets()) {
        SCOPED_TRACE(target.name);
        const zivcolor::KernelTable& kernels = *target.kernels;
        expect(kernels.zivRotate, kernels.zivflip_horizontal_nv21, kernels.zivflip_vertical_nv21);
    }
    EXPECT_EQ(image.bytes, Numbered().bytes);
}

TEST(Geometry, Statuses) {
    Numbered source, turned;
    for (const auto mirror : {zivflip_horizontal_nv21, zivflip_vertical_nv21}) {
        EXPECT_EQ(mirror(nullptr, &turned.image), zivStatus_NullPointer);
        EXPECT_EQ(mirror(nullptr, nullptr), zivStatus_NullPointer);
        source.image.format = zivPixFmt_NV12;
        EXPECT_EQ(mirror(&source.image, nullptr), zivStatus_BadArgument);
        source.image.format = zivPixFmt_NV21;
        turned.image.format = 0;
        EXPECT_EQ(mirror(&source.image, &turned.image), zivStatus_OK);
        source.image.height = 0;
        EXPECT_EQ(mirror(&source.image, nullptr), zivStatus_OK);
        source.image.height = 8;
    }
}

}  // namespace
