// SPDX-License-Identifier: MIT
// How rows are split into bands, which task a pair of codes has, and each task against the conversion of the whole image.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "harness/frame.h"
#include "parallel/band_tasks.h"
#include "parallel/bands.h"

namespace {

using namespace harness;
using zivcolor::band_tasks;
using zivcolor::most_bands;
using zivcolor::RowRange;
using zivcolor::split_into_bands;

std::vector<RowRange> cut(int32_t height, int32_t count) {
    std::vector<RowRange> bands(static_cast<size_t>(count));
    split_into_bands(height, count, bands.data());
    return bands;
}

std::vector<int> rows_of(int32_t height, int32_t count) {
    std::vector<int> rows;
    for (const RowRange& band : cut(height, count)) rows.push_back(band.end - band.start);
    return rows;
}

TEST(Bands, AreCutAsKnownExamplesSay) {
    std::vector<int> full_hd(4, 66);
    full_hd.resize(16, 68);
    EXPECT_EQ(rows_of(1080, 16), full_hd);
    std::vector<int> six(13, 0);
    six.resize(16, 2);
    EXPECT_EQ(rows_of(6, 16), six);
    EXPECT_EQ(rows_of(101, 8), (std::vector<int>{12, 12, 12, 12, 12, 12, 14, 15}));
    EXPECT_EQ(rows_of(33, 4), (std::vector<int>{8, 8, 8, 9}));
    EXPECT_EQ(rows_of(3, 4), (std::vector<int>{0, 0, 0, 3}));
    EXPECT_EQ(rows_of(1, 4), (std::vector<int>{0, 0, 0, 1}));
    EXPECT_EQ(rows_of(0, 4), (std::vector<int>{0, 0, 0, 0}));
}

TEST(Bands, CoverEveryRowOnceInPairs) {
    for (int count = 4; count <= most_bands; count += 4)
        for (int height = 0; height <= 2200; height++) {
            int row = 0, previous = 0;
            for (const RowRange& band : cut(height, count)) {
                ASSERT_EQ(band.start, row);
                ASSERT_EQ(band.start % 2, 0);
                const int pairs = (band.end - band.start) / 2;
                ASSERT_GE(pairs, previous);
                ASSERT_LE(pairs - height / 2 / count, 1);
                row = band.end;
                previous = pairs;
            }
            ASSERT_EQ(row, height);
        }
}

// Also for heights that every kernel refuses.
TEST(Bands, AreEachTheirShareOfThePairsLeft) {
    for (int count = 4; count <= most_bands; count += 4)
        for (int height = -500; height <= 2200; height++) {
            int pairs = height >> 1, row = 0, left = count;
            for (const RowRange& band : cut(height, count)) {
                const int share = pairs / left;
                ASSERT_EQ(band.start, row);
                ASSERT_EQ(band.end, left == 1 ? height : row + 2 * share) << height << " " << count;
                pairs -= share;
                row += 2 * share;
                left--;
            }
        }
}

TEST(Bands, OfTheExtremeHeightsDoNotOverflow) {
    for (const int32_t height : {INT32_MAX, INT32_MIN, INT32_MIN + 1, -1, -7})
        for (int count = 4; count <= most_bands; count += 4) EXPECT_EQ(cut(height, count).back().end, height);
}

// Written out by hand, in the order of the slots: the kernel list must say the same.
constexpr const char* slots =
    "NV21 RGBA8888, NV21 RGB888, NV21 BGR888, NV21 I420, NV21 BGRA8888, NV12 I420, NV12 RGBA8888, NV12 BGRA8888, NV12 BGR888, "
    "I420 RGBA8888, I420 RGB888, I420 NV21, I420 YUYV, I420 BGRA8888, I420 BGR888, RGBA8888 NV21, RGBA8888 NV12, "
    "RGBA8888 I420, BGRA8888 NV21, BGRA8888 NV12, BGRA8888 I420, RGB888 I420, BGR888 I420, BGR888 NV21, BGR888 NV12, "
    "I422H I420, I422H NV21, I422H NV12, I422H YUYV, I422H LPI422H, I422V I420, I422V NV21, I422V NV12, I422V YUYV, "
    "I422V LPI422H, I444 I420, I444 NV21, I444 NV12, I444 YUYV, I444 LPI422H, BGRA8888 LPI422H, LPI422H BGRA8888, "
    "RGBA8888 LPI422H, LPI422H RGBA8888, YUYV BGR888, BGR888 YUYV,";

TEST(BandTasks, TheClassifierKnowsThesePairsAndNoOther) {
    std::map<std::string, int> slot_of;
    std::istringstream list(slots);
    for (std::string source, destination; list >> source >> destination;) {
        destination.pop_back();
        const int slot = static_cast<int>(slot_of.size());
        ASSERT_TRUE(slot_of.emplace(source + " " + destination, slot).second);
    }
    EXPECT_EQ(slot_of.size(), band_tasks.size()) << "pairs in the list above, and tasks in src/core/kernel_list.h";
    std::vector<uint32_t> numbers = harness::codes();
    numbers.push_back(0);
    for (const uint32_t source : numbers)
        for (const uint32_t destination : numbers) {
            const std::string pair = std::string(format_name(source)) + " " + format_name(destination);
            zivcolor::Image from{}, to{};
            from.format = source;
            to.format = destination;
            const auto slot = slot_of.find(pair);
            EXPECT_EQ(zivColorCvtFunc(&from, &to), slot == slot_of.end() ? -1 : slot->second)
                << pair << " in src/core/kernel_list.h and in the list above";
        }
}

TEST(BandTasks, EverySlotIsFilled) {
    for (size_t slot = 0; slot < band_tasks.size(); slot++) EXPECT_NE(band_tasks[slot], nullptr) << slot;
}

TEST(BandTasks, AreNotGivenToEveryPairOfTheDispatcher) {
    const auto slot = [](uint32_t source, uint32_t destination) {
        zivcolor::Image from{}, to{};
        from.format = source;
        to.format = destination;
        return zivColorCvtFunc(&from, &to);
    };
    EXPECT_EQ(slot(zivPixFmt_YV12, zivPixFmt_RGB888), -1);
    EXPECT_EQ(slot(zivPixFmt_RGB888, zivPixFmt_NV21), -1);
    EXPECT_EQ(slot(zivPixFmt_RGB888, zivPixFmt_I420), 21);
    EXPECT_EQ(slot(zivPixFmt_BGR888, zivPixFmt_NV21), 23);
}

void run_band(int slot, const Frame& from, const Frame& to, RowRange band, int32_t alpha) {
    const zivColorExtParam_ALPHA_t extension{alpha};
    zivColorParam_t param{&from.image, &to.image, band.start, band.end, &extension};
    band_tasks[static_cast<size_t>(slot)](&param);
}

struct BandTask : testing::TestWithParam<Conversion> {};
struct IndependentBands : BandTask {};

// Tight rows of an even width make the bands independent and equal to the whole. The one exception is tested below.
TEST_P(IndependentBands, InAnyOrderMakeTheWhole) {
    const Conversion& c = GetParam();
    constexpr int widths[] = {2, 16, 34, 6, 66, 18, 32, 50};
    Random random{base_seed};
    for (int height = 1; height <= 130; height++) {
        const int width = widths[height % 8];
        const Frame from(c.source, width, height, random.next());
        const uint64_t seed = random.next();
        const auto alpha = static_cast<int32_t>(random.next());
        Frame whole(c.destination, width, height, seed);
        zivColorCvt(&from.image, &whole.image, {alpha});
        for (int count = 4; count <= most_bands; count += 4) {
            std::vector<RowRange> bands = cut(height, count);
            if (random.below(2)) std::reverse(bands.begin(), bands.end());
            Frame cut_up(c.destination, width, height, seed);
            for (const RowRange& band : bands) run_band(c.task, from, cut_up, band, alpha);
            ASSERT_EQ(whole.memory, cut_up.memory) << c.name << " " << width << "x" << height << ", " << count << " bands";
        }
    }
}

// An empty band and, below the kernel's least height, a band of one row leave the destination alone.
TEST_P(BandTask, RefusedBandsStayUntouched) {
    const Conversion& c = GetParam();
    const bool takes_one_row = c.source == zivPixFmt_YUYV || c.destination == zivPixFmt_YUYV;
    const Frame from(c.source, 16, 16, 1);
    Frame to(c.destination, 16, 16, 2);
    const std::vector<uint8_t> before = to.memory;
    run_band(c.task, from, to, {6, 6}, 0);
    EXPECT_EQ(to.memory, before);
    if (!takes_one_row) {
        run_band(c.task, from, to, {6, 7}, 0);
        EXPECT_EQ(to.memory, before);
    }
}

// A kernel that refuses its band looks at no plane: null ones, and such as end before the band begins, are no fault.
TEST_P(BandTask, RefusedBandsNeedNoPlanes) {
    const Conversion& c = GetParam();
    uint8_t byte = 7;
    for (uint8_t* const plane : {static_cast<uint8_t*>(nullptr), &byte})
        for (const int32_t pitch : {16, -16, INT32_MAX, INT32_MIN}) {
            const zivcolor::Image from{c.source, 0, 16, {plane, plane, plane}, {pitch, pitch, pitch}};
            const zivcolor::Image to{c.destination, 0, 16, {plane, plane, plane}, {pitch, pitch, pitch}};
            const zivColorExtParam_ALPHA_t alpha{0};
            for (const RowRange& band : {RowRange{0, 4}, {6, 10}, {INT32_MAX - 1, INT32_MAX}, {INT32_MIN, INT32_MIN + 2}}) {
                zivColorParam_t param{&from, &to, band.start, band.end, &alpha};
                band_tasks[static_cast<size_t>(c.task)](&param);
            }
        }
    EXPECT_EQ(byte, 7);
}

// The planes of a band are found by their own rows and their own pitches, and its height is that of both images.
TEST_P(BandTask, PlanesAreMovedToTheBandsFirstRow) {
    const Conversion& c = GetParam();
    const auto moved = [](const Frame& whole, RowRange rows) {
        zivcolor::Image band = whole.image;
        band.height = rows.end - rows.start;
        const uint32_t format = band.format;
        for (int k = 0; k < plane_count(format); k++) {
            const bool halved = plane_rows(format, k, 16) == 8;
            band.plane[k] += (halved ? rows.start / 2 : rows.start) * band.pitch[k];
        }
        return band;
    };
    Random random{base_seed};
    const auto padding = [&] {
        std::array<int, 3> bytes{};
        for (int& b : bytes) b = random.below(41) - 15;
        return bytes;
    };
    for (int round = 0; round < 200; round++) {
        const int width = random.between(2, 40), height = 16, start = 2 * random.below(6);
        const RowRange rows{start, random.between(start + 2, height)};
        Frame from(c.source, width, height, random.next(), padding());
        const std::array<int, 3> bytes = padding();
        const uint64_t seed = random.next();
        Frame by_task(c.destination, width, height, seed, bytes), by_hand(c.destination, width, height, seed, bytes);
        from.image.height = by_task.image.height = random.between(-1, 20);
        run_band(c.task, from, by_task, rows, 0x1FF);
        const zivcolor::Image source = moved(from, rows), destination = moved(by_hand, rows);
        EXPECT_EQ(zivColorCvt(&source, &destination, {0xFF}), zivStatus_OK);
        ASSERT_EQ(by_task.memory, by_hand.memory)
            << c.name << " " << width << " columns, rows " << rows.start << " to " << rows.end;
    }
}

std::string name_of(const testing::TestParamInfo<Conversion>& info) { return info.param.name; }

std::vector<Conversion> with_tasks(const char* except = "") {
    std::vector<Conversion> rows;
    std::copy_if(conversions().begin(), conversions().end(), std::back_inserter(rows),
                 [&](const Conversion& c) { return c.task >= 0 && std::string(c.name) != except; });
    return rows;
}

INSTANTIATE_TEST_SUITE_P(All, BandTask, testing::ValuesIn(with_tasks()), name_of);
INSTANTIATE_TEST_SUITE_P(All, IndependentBands, testing::ValuesIn(with_tasks("zivColorI422HtoNV12u8")), name_of);

// This kernel spreads the chroma rows of its band two pitches apart from where the band begins, so that bands overlap: luma is
// determined, and so is each chroma row that only one band writes.
TEST(BandTasks, I422HtoNV12IsDeterminedWhereOneBandWrites) {
    const Conversion& c = conversion("zivColorI422HtoNV12u8");
    constexpr int width = 34;
    for (int height = 2; height <= 130; height++) {
        const Frame from(c.source, width, height, 5);
        Frame whole(c.destination, width, height, 6), cut_up(c.destination, width, height, 6);
        const Frame untouched(c.destination, width, height, 6);
        zivColorCvt(&from.image, &whole.image, {0});
        // By chroma row of the destination: how often it is written, and the luma row whose chroma it then holds.
        std::vector<int> writers(static_cast<size_t>(2 * height)), origin(writers);
        for (const RowRange& band : cut(height, 8)) {
            run_band(c.task, from, cut_up, band, 0);
            for (int row = band.start; row < band.end; row += 2) {
                const auto at = static_cast<size_t>(band.start / 2 + row - band.start);
                writers[at]++;
                origin[at] = row;
            }
        }
        const auto row_bytes = [](const Frame& p, int plane, int row) {
            const uint8_t* first = p.image.plane[plane] + row * p.image.pitch[plane];
            return std::vector<uint8_t>(first, first + width);
        };
        for (int row = 0; row < height; row++) ASSERT_EQ(row_bytes(cut_up, 0, row), row_bytes(whole, 0, row));
        for (int row = 0; row < 2 * height; row++) {
            const auto at = static_cast<size_t>(row);
            if (writers[at] == 0) {
                ASSERT_EQ(row_bytes(cut_up, 1, row), row_bytes(untouched, 1, row));
            }
            if (writers[at] == 1) {
                ASSERT_EQ(row_bytes(cut_up, 1, row), row_bytes(whole, 1, origin[at]));
            }
        }
    }
}

}  // namespace
