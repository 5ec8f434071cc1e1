// SPDX-License-Identifier: MIT
// The room that zivcolor_image.h tells for a pair: every byte that a kernel touches lies in it, and no byte of it is told in
// vain: measured on the reference. Enough it is on every target with exactly the bytes told between unmapped pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "harness/conversions.h"
#include "harness/fault.h"
#include "harness/guarded_pages.h"
#include "harness/options.h"
#include "parallel/band_tasks.h"
#include "parallel/bands.h"
#include "zivcolor_image.h"

namespace {

using namespace harness;

std::vector<Conversion> dispatched_conversions() {
    std::vector<Conversion> rows = conversions();
    rows.erase(std::remove_if(rows.begin(), rows.end(), [](const Conversion& c) { return !c.dispatched; }), rows.end());
    return rows;
}

struct RoomPair {
    zivcolor_room source, destination;

    const zivcolor_room& of(size_t buffer) const { return buffer < 3 ? source : destination; }
    size_t before(size_t buffer) const { return of(buffer).before[buffer % 3]; }
    size_t after(size_t buffer) const { return of(buffer).after[buffer % 3]; }
};

class ImageRoom : public testing::TestWithParam<Conversion> {
protected:
    const Conversion& c = GetParam();
    static constexpr int largest = 40;

    RoomPair told(int width, int height, int alignment = 1) const {
        RoomPair rooms;
        EXPECT_EQ(zivcolor_room_of_pair(c.source, c.destination, width, height, alignment, &rooms.source, &rooms.destination),
                  zivStatus_OK);
        return rooms;
    }
    zivcolor_image described(const ImagePair& p, bool source) const {
        const int32_t* pitch = source ? p.source_pitch : p.destination_pitch;
        return zivcolor_image_of_planes(source ? c.source : c.destination, source ? p.source_width : p.destination_width,
                                        source ? p.source_height : p.destination_height, nullptr, pitch[0], nullptr, pitch[1],
                                        nullptr, pitch[2]);
    }
    ImagePair pair_of(const RoomPair& rooms) const {
        ImagePair p{};
        p.source_width = rooms.source.width, p.source_height = rooms.source.height;
        p.destination_width = rooms.destination.width, p.destination_height = rooms.destination.height;
        std::copy_n(rooms.source.pitch, 3, p.source_pitch);
        std::copy_n(rooms.destination.pitch, 3, p.destination_pitch);
        return p;
    }

    // What the reference touches lies in the room; and what is told beyond the image itself is touched, to the pixel.
    void expect_told_is_touched(const RoomPair& rooms) const {
        const ImagePair p = pair_of(rooms);
        constexpr size_t margin = 1024;
        std::vector<Room> ample;
        for (size_t k = 0; k < 6; k++) ample.push_back({rooms.before(k) + margin, rooms.after(k) + margin});
        const std::vector<Reach> reach = reach_of(call_of(c, p), ample, base_seed);
        const bool refused = p.destination_width < zivcolor_pair_of(c.source, c.destination)->least_width ||
                             p.destination_height < zivcolor_pair_of(c.source, c.destination)->least_height ||
                             p.source_height < zivcolor_pair_of(c.source, c.destination)->least_height;
        for (size_t k = 0; k < 6; k++) {
            const zivcolor_room& room = rooms.of(k);
            const size_t plane = k % 3;
            const auto before = static_cast<ptrdiff_t>(rooms.before(k)), after = static_cast<ptrdiff_t>(rooms.after(k));
            ASSERT_LE(-reach[k].first, before) << describe(c, p) << ", buffer " << k;
            ASSERT_LE(reach[k].past, after) << describe(c, p) << ", buffer " << k;
            const bool same_size = p.source_width == p.destination_width && p.source_height == p.destination_height;
            if (refused || !same_size) continue;
            ptrdiff_t own_before = 0, own_after = 0;
            for (const int32_t step : {room.step[plane], room.pitch[plane]}) {
                const ptrdiff_t last = ptrdiff_t{room.rows[plane] - 1} * step;
                own_before = std::max(own_before, -last);
                own_after = std::max(own_after, std::max(last, ptrdiff_t{0}) + room.row_bytes[plane]);
            }
            // A last pixel whose last bytes are not looked at.
            constexpr ptrdiff_t slack = 2;
            ASSERT_LE(before, std::max(own_before, -reach[k].first)) << describe(c, p) << ", buffer " << k;
            ASSERT_LE(after, std::max(own_after, reach[k].past + slack)) << describe(c, p) << ", buffer " << k;
        }
    }
};

TEST_P(ImageRoom, ToldIsTouched) {
    for (int width = 1; width <= largest; width++)
        for (int height = 1; height <= largest; height++) {
            expect_told_is_touched(told(width, height));
            expect_told_is_touched(told(width, height, 1 + (5 * width + height) % 33));
            if (HasFatalFailure()) return;
        }
}

// Pitches and sizes of each image's own. Where the pair does no good with them, it is refused.
TEST_P(ImageRoom, ToldIsTouchedByPitchesOfAnyKind) {
    const bool fours = zivcolor_pair_of(c.source, c.destination)->odd_width == zivOdd_Fours;
    Random random{base_seed};
    int refused = 0;
    for (int round = 0; round < 2000; round++) {
        ImagePair p = tight(c, random.between(2, largest), random.between(2, largest));
        if (round % 2) {
            p.source_width = random.between(2, largest), p.source_height = random.between(2, largest);
        }
        const ImagePair wide = tight(c, std::max(p.source_width, p.destination_width), 2);
        for (int k = 0; k < 3; k++) {
            p.source_pitch[k] = wide.source_pitch[k] + random.below(20);
            p.destination_pitch[k] = wide.destination_pitch[k] + random.below(20);
        }
        if (!fours && round % 3 == 0) negate_some_pitches(p, random, 5);
        if (fours && random.below(2))
            p.source_pitch[1] = p.destination_pitch[1] = wide.source_pitch[1] + wide.destination_pitch[1];
        const zivcolor_image source = described(p, true), destination = described(p, false);
        RoomPair rooms;
        const int32_t status = zivcolor_room_of_images(&source, &destination, &rooms.source, &rooms.destination);
        if (status == zivStatus_BadArgument) {
            EXPECT_TRUE(fours && p.destination_pitch[1] > p.source_pitch[1]) << describe(c, p);
            refused++;
            continue;
        }
        ASSERT_EQ(status, zivStatus_OK);
        expect_told_is_touched(rooms);
        if (HasFailure()) return;
    }
    EXPECT_LT(refused, 1200);
}

// Planes follow each other in one buffer without touching, and every plane starts at a multiple of the alignment.
TEST_P(ImageRoom, PlanesInOneBuffer) {
    for (int width = 1; width <= largest; width++)
        for (int height = 1; height <= largest; height++)
            for (const int alignment : {1, 2, 16, 64}) {
                const RoomPair rooms = told(width, height, alignment);
                for (const zivcolor_room* room : {&rooms.source, &rooms.destination}) {
                    size_t taken = 0;
                    for (int k = 0; k < room->planes; k++) {
                        ASSERT_GE(room->offset[k], taken + room->before[k]);
                        ASSERT_EQ(room->offset[k] % static_cast<size_t>(alignment), 0u);
                        taken = room->offset[k] + room->after[k];
                    }
                    ASSERT_LE(taken, room->size);
                }
            }
}

// The same image by other pitches is the same image: a pair finds the rows where the room says that they are.
TEST_P(ImageRoom, RowsAreFoundWhateverTheAlignment) {
    const zivcolor_pair& pair = *zivcolor_pair_of(c.source, c.destination);
    if (pair.odd_width == zivOdd_Twice)
        return;  // its tail runs into the next row by any pitch, and takes what lies behind its own
    const int step = pair.odd_width == zivOdd_Fours ? 4 : 1, most = pair.odd_width == zivOdd_Fours ? 32 : largest;
    for (int width = step; width <= most; width += step)
        for (int height = step; height <= 12; height += step) {
            if (pair.odd_width == zivOdd_Ahead && width % 16 > 1) continue;  // takes what lies behind the row
            std::vector<uint8_t> expected;
            for (const int alignment : {1, 2, 3, 16, 64}) {
                const RoomPair rooms = told(width, height, alignment);
                std::vector<uint8_t> in(rooms.source.size), out(rooms.destination.size, 7);
                const zivcolor_image source = zivcolor_image_in(&rooms.source, in.data());
                const zivcolor_image destination = zivcolor_image_in(&rooms.destination, out.data());
                Random random{base_seed};
                for (int k = 0; k < rooms.source.planes; k++)
                    for (int row = 0; row < rooms.source.rows[k]; row++)
                        for (int at = 0; at < rooms.source.row_bytes[k]; at++)
                            source.plane[k][ptrdiff_t{row} * rooms.source.step[k] + at] = static_cast<uint8_t>(random.next());
                zivColorExtParam_ALPHA_t alpha = {200};
                zivColorCvt(&source, &destination, alpha);
                std::vector<uint8_t> bytes;
                const int written_rows = pair.odd_height == zivOdd_RowOne ? std::min(2, height) : INT_MAX;
                for (int k = 0; k < rooms.destination.planes; k++)
                    for (int row = 0; row < std::min(written_rows, rooms.destination.rows[k]); row++) {
                        const uint8_t* first = destination.plane[k] + ptrdiff_t{row} * rooms.destination.step[k];
                        bytes.insert(bytes.end(), first, first + rooms.destination.row_bytes[k]);
                    }
                if (alignment == 1) expected = bytes;
                ASSERT_TRUE(bytes == expected) << width << "x" << height << ", alignment " << alignment;
            }
        }
}

// From rows of chroma that tell their number, at odd sizes too: each comes to the row that it belongs to.
TEST_P(ImageRoom, ChromaComesToItsRow) {
    const zivcolor_layout &from = *zivcolor_layout_of(c.source), &to = *zivcolor_layout_of(c.destination);
    if (from.planes == 1 || to.planes == 1 || from.chroma_rows == 4 || to.chroma_rows == 4) return;
    for (int width = 2; width <= largest; width++)
        for (int height = 2; height <= 12; height++) {
            const RoomPair rooms = told(width, height);
            std::vector<uint8_t> in(rooms.source.size), out(rooms.destination.size);
            const zivcolor_image source = zivcolor_image_in(&rooms.source, in.data());
            const zivcolor_image destination = zivcolor_image_in(&rooms.destination, out.data());
            for (int k = 1; k < from.planes; k++)
                for (int row = 0; row < rooms.source.rows[k]; row++)
                    std::fill_n(source.plane[k] + ptrdiff_t{row} * rooms.source.step[k], rooms.source.row_bytes[k],
                                static_cast<uint8_t>(100 + row * from.chroma_rows / 2));
            ASSERT_EQ(zivColorCvt(&source, &destination, {0}), zivStatus_OK);
            for (int k = 1; k < to.planes; k++)
                for (int row = 0; row < plane_rows(c.destination, k, height & ~1); row++)
                    for (int at = 0; at < tight_pitch(c.destination, k, width & ~1); at++)
                        ASSERT_EQ(int{destination.plane[k][ptrdiff_t{row} * rooms.destination.step[k] + at]},
                                  100 + row * to.chroma_rows / 2)
                            << width << "x" << height << ", plane " << k << ", row " << row << ", byte " << at;
        }
}

// Two images with exactly the bytes told, between unmapped pages: a fault is a byte more.
class GuardedImages {
public:
    enum Place { PlanesAtTheEnd, PlanesAtTheStart, OneBufferAtTheEnd };

    GuardedImages(const RoomPair& rooms, Place place) {
        static std::vector<std::unique_ptr<GuardedPages>> pages;
        while (pages.size() < 6) pages.push_back(std::make_unique<GuardedPages>(size_t{1} << 16));
        static constexpr const char* names[] = {"source plane 0",      "source plane 1",      "source plane 2",
                                                "destination plane 0", "destination plane 1", "destination plane 2"};
        for (size_t k = 0; k < 2; k++) {
            const zivcolor_room& room = k ? rooms.destination : rooms.source;
            EXPECT_LE(room.size, pages[k]->size());
            images_[k] = zivcolor_image_in(&room, pages[k]->past() - room.size);
        }
        for (size_t k = 0; k < 6; k++) {
            uint8_t*& plane = images_[k / 3].plane[k % 3];
            if (static_cast<int>(k % 3) >= rooms.of(k).planes) continue;
            if (place == PlanesAtTheEnd) plane = pages[k]->past() - rooms.after(k);
            if (place == PlanesAtTheStart) plane = pages[k]->first() + rooms.before(k);
            areas_.push_back({names[k], plane - rooms.before(k), plane + rooms.after(k)});
        }
    }
    const zivcolor_image& source() const { return images_[0]; }
    const zivcolor_image& destination() const { return images_[1]; }
    const std::vector<Running::Area>& areas() const { return areas_; }

private:
    zivcolor_image images_[2];
    std::vector<Running::Area> areas_;
};

TEST_P(ImageRoom, ToldIsEnough) {
    for (int width = 1; width <= largest; width++)
        for (int height = 1; height <= largest; height++)
            for (const auto place :
                 {GuardedImages::PlanesAtTheEnd, GuardedImages::PlanesAtTheStart, GuardedImages::OneBufferAtTheEnd}) {
                const RoomPair rooms = told(width, height, place == GuardedImages::OneBufferAtTheEnd ? 16 : 1);
                const GuardedImages images(rooms, place);
                const std::function<std::string()> words = [&] { return describe(c, pair_of(rooms)); };
                for (const zivcolor::Target& target : targets_with_own(c.name)) {
                    const Running running(target.name, words, &images.areas());
                    c.convert(*target.kernels, &images.source(), &images.destination(), 200);
                    if (c.convert_streaming) c.convert_streaming(*target.kernels, &images.source(), &images.destination(), 200);
                }
            }
}

// The same in bands of rows, as a context converts.
TEST_P(ImageRoom, ToldIsEnoughForBands) {
    if (c.task < 0) return;
    const zivColorExtParam_ALPHA_t alpha{200};
    for (int width = 2; width <= largest; width++)
        for (int height = 2; height <= largest; height++) {
            const RoomPair rooms = told(width, height);
            const GuardedImages images(rooms, height % 2 ? GuardedImages::PlanesAtTheStart : GuardedImages::PlanesAtTheEnd);
            const std::function<std::string()> words = [&] { return describe(c, pair_of(rooms)) + ", in bands"; };
            zivcolor::RowRange bands[4];
            zivcolor::split_into_bands(height, 4, bands);
            const Running running("the best target", words, &images.areas());
            for (const zivcolor::RowRange& band : bands) {
                zivColorParam_t param{&images.source(), &images.destination(), band.start, band.end, &alpha};
                zivcolor::band_tasks[static_cast<size_t>(c.task)](&param);
            }
        }
}

INSTANTIATE_TEST_SUITE_P(All, ImageRoom, testing::ValuesIn(dispatched_conversions()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

}  // namespace
