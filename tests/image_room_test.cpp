// SPDX-License-Identifier: MIT
// The room that zivcolor_image.h tells for a pair: every byte that a kernel touches lies in it, and no byte of it is told in
// vain. Measured on the reference, and on every target with exactly the bytes told between unmapped pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "harness/conversions.h"
#include "harness/fault.h"
#include "harness/guarded_pages.h"
#include "harness/options.h"
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
            if (refused) continue;
            const ptrdiff_t last = ptrdiff_t{room.rows[plane] - 1} * room.step[plane];
            const ptrdiff_t own_before = std::max(-last, ptrdiff_t{0}),
                            own_after = std::max(last, ptrdiff_t{0}) + room.row_bytes[plane];
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
            if (HasFatalFailure()) return;
        }
}

INSTANTIATE_TEST_SUITE_P(All, ImageRoom, testing::ValuesIn(dispatched_conversions()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

}  // namespace
