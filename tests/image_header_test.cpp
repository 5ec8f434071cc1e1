// SPDX-License-Identifier: MIT
// zivcolor_image.h beside the lists of layouts and pairs: names, what pairs can do, sizes, what is refused, and descriptors.
#include "zivcolor_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "core/layout_list.h"
#include "harness/conversions.h"

extern "C" int32_t zivcolor_image_used_from_c(void);

namespace {

using namespace harness;

bool all_0(const void* record, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(record);
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

zivcolor_room filled() {
    zivcolor_room room;
    std::memset(&room, 0xA5, sizeof room);
    return room;
}

TEST(ImageHeader, UsedFromC) { EXPECT_EQ(zivcolor_image_used_from_c(), 0); }

TEST(ImageHeader, LayoutsAreThoseOfTheList) {
    int32_t count = 0;
    for (const zivcolor::Layout& expected : zivcolor::layouts) {
        const zivcolor_layout* layout = zivcolor_layout_at(count++);
        ASSERT_NE(layout, nullptr);
        EXPECT_EQ(layout->format, expected.format);
        EXPECT_STREQ(layout->name, expected.name);
        EXPECT_EQ(layout->planes, expected.planes);
        EXPECT_EQ(layout->bytes, expected.luma.bytes);
        EXPECT_EQ(layout->columns, expected.luma.columns);
        EXPECT_EQ(layout->chroma_bytes, expected.chroma.bytes);
        EXPECT_EQ(layout->chroma_columns, expected.chroma.columns);
        EXPECT_EQ(layout->chroma_rows, expected.chroma.rows);
        EXPECT_EQ(zivcolor_layout_of(expected.format), layout);
    }
    EXPECT_EQ(zivcolor_layout_at(count), nullptr);
    EXPECT_EQ(zivcolor_layout_at(-1), nullptr);
    EXPECT_EQ(zivcolor_layout_at(INT32_MAX), nullptr);
}

TEST(ImageHeader, NamesOfLayouts) {
    for (const zivcolor::Layout& layout : zivcolor::layouts) {
        EXPECT_STREQ(zivcolor_format_name(layout.format), layout.name);
        EXPECT_EQ(zivcolor_format_named(layout.name), layout.format);
        EXPECT_EQ(zivcolor_format_named((std::string(layout.name) + " ").c_str()), 0u);
        EXPECT_EQ(zivcolor_format_named(std::string(layout.name).substr(1).c_str()), 0u);
    }
    for (const char* name : {"", "NV", "nv21", "NV2", "NV211", "zivPixFmt_NV21", "HSL888"})
        EXPECT_EQ(zivcolor_format_named(name), 0u) << name;
    EXPECT_EQ(zivcolor_format_named(nullptr), 0u);
    for (const uint32_t code : {0u, 0x100u, 0x802u + (1u << 16), UINT32_MAX}) EXPECT_EQ(zivcolor_format_name(code), nullptr);
}

TEST(ImageHeader, PairsAreThoseOfTheDispatcher) {
    std::set<const zivcolor_pair*> found;
    for (const Conversion& c : conversions()) {
        if (!c.dispatched) continue;
        const zivcolor_pair* pair = zivcolor_pair_of(c.source, c.destination);
        ASSERT_NE(pair, nullptr) << c.name;
        found.insert(pair);
        EXPECT_EQ(pair->takes_alpha, c.alpha ? 1 : 0) << c.name;
        EXPECT_EQ(pair->band_task, c.task) << c.name;
    }
    int32_t count = 0;
    while (zivcolor_pair_at(count)) count++;
    EXPECT_EQ(static_cast<size_t>(count), found.size());
    EXPECT_EQ(zivcolor_pair_at(-1), nullptr);
    EXPECT_EQ(zivcolor_pair_at(INT32_MAX), nullptr);
    for (const uint32_t source : codes())
        for (const uint32_t destination : codes()) {
            zivcolor_image in{source, 0, 0, {}, {}}, out{destination, 0, 0, {}, {}};
            const int32_t status = zivColorCvt(&in, &out, {0});
            EXPECT_EQ(status, zivStatus_BadArgument);  // of the size or of the pair
            const zivcolor_pair* pair = zivcolor_pair_of(source, destination);
            EXPECT_EQ(pair != nullptr, found.count(pair) == 1);
        }
    EXPECT_EQ(zivcolor_pair_of(0, zivPixFmt_NV21), nullptr);
    EXPECT_EQ(zivcolor_pair_of(zivPixFmt_NV21, 0), nullptr);
}

// At the least size a pair converts; a column or a row below, it refuses.
TEST(ImageHeader, LeastSizes) {
    const zivcolor_pair* pair;
    for (int32_t index = 0; (pair = zivcolor_pair_at(index)) != nullptr; index++) {
        const auto status_at = [&](int32_t width, int32_t height) {
            zivcolor_room from, to;
            EXPECT_EQ(zivcolor_room_of_pair(pair->source, pair->destination, 4, 4, 1, &from, &to), zivStatus_OK);
            // Below a height of 4 and back from NV41, rows above the planes are touched.
            std::vector<uint8_t> in(from.size + 512), out(to.size + 512);
            zivcolor_image source = zivcolor_image_in(&from, in.data() + 256);
            zivcolor_image destination = zivcolor_image_in(&to, out.data() + 256);
            source.width = destination.width = width;
            source.height = destination.height = height;
            return zivColorCvt(&source, &destination, {0});
        };
        const int32_t width = pair->least_width, height = pair->least_height;
        const std::string what =
            zivcolor_format_name(pair->source) + std::string(" to ") + zivcolor_format_name(pair->destination);
        EXPECT_EQ(status_at(width, height), zivStatus_OK) << what;
        EXPECT_EQ(status_at(width - 1, height), zivStatus_BadArgument) << what;
        EXPECT_EQ(status_at(width, height - 1), zivStatus_BadArgument) << what;
    }
}

TEST(ImageHeader, StatusesInWords) {
    std::set<std::string> texts;
    for (const int32_t status : std::vector<int32_t>{zivStatus_OK, zivStatus_NullPointer, zivStatus_BadArgument,
                                                     zivStatus_EngineFailure, zivStatus_OutOfMemory, INT32_MAX})
        texts.insert(zivcolor_status_text(status));
    EXPECT_EQ(texts.size(), 6u);
    EXPECT_STREQ(zivcolor_status_text(INT32_MIN), zivcolor_status_text(1));
}

TEST(ImageHeader, RoomOfALayoutIsItsTable) {
    for (const uint32_t format : codes())
        for (const int width : {1, 2, 3, 4, 5, 17, 640})
            for (const int height : {1, 2, 3, 4, 5, 9, 480}) {
                zivcolor_room room;
                ASSERT_EQ(zivcolor_room_of_layout(format, width, height, 1, &room), zivStatus_OK);
                EXPECT_EQ(room.format, format);
                EXPECT_EQ(room.width, width);
                EXPECT_EQ(room.height, height);
                ASSERT_EQ(room.planes, plane_count(format));
                size_t size = 0;
                for (int k = 0; k < room.planes; k++) {
                    EXPECT_EQ(room.row_bytes[k], tight_pitch(format, k, width));
                    EXPECT_EQ(room.pitch[k], room.row_bytes[k]);
                    EXPECT_EQ(room.step[k], room.row_bytes[k]);
                    EXPECT_EQ(room.rows[k], plane_rows(format, k, height));
                    EXPECT_EQ(room.before[k], 0u);
                    EXPECT_EQ(room.offset[k], size);
                    EXPECT_EQ(room.after[k], static_cast<size_t>(room.rows[k]) * static_cast<size_t>(room.row_bytes[k]));
                    size += room.after[k];
                }
                for (int k = room.planes; k < 3; k++)
                    EXPECT_TRUE(!room.pitch[k] && !room.rows[k] && !room.after[k] && !room.offset[k]);
                EXPECT_EQ(room.size, size);
            }
}

// The buffers of a camera's frame of 640 by 480.
TEST(ImageHeader, RoomInNumbers) {
    zivcolor_room room, from, to;
    ASSERT_EQ(zivcolor_room_of_layout(zivPixFmt_NV21, 640, 480, 1, &room), zivStatus_OK);
    EXPECT_EQ(room.size, 460800u);
    ASSERT_EQ(zivcolor_room_of_layout(zivPixFmt_NV21, 641, 361, 64, &room), zivStatus_OK);
    EXPECT_EQ(room.pitch[0], 704);
    EXPECT_EQ(room.pitch[1], 704);
    EXPECT_EQ(room.offset[1], 704u * 361);
    EXPECT_EQ(room.size, 704u * (361 + 181));
    // NV41 takes 38,400 bytes of chroma, and the pair clears as many behind them.
    ASSERT_EQ(zivcolor_room_of_pair(zivPixFmt_NV21, zivPixFmt_NV41, 640, 480, 1, &from, &to), zivStatus_OK);
    EXPECT_EQ(to.after[1], 76800u);
    EXPECT_EQ(to.size, 384000u);
    EXPECT_EQ(from.size, 460800u);
    // Chroma rows stand two pitches apart, and close to each other all the same.
    ASSERT_EQ(zivcolor_room_of_pair(zivPixFmt_I422H, zivPixFmt_NV12, 640, 480, 1, &from, &to), zivStatus_OK);
    EXPECT_EQ(to.pitch[1], 320);
    EXPECT_EQ(to.step[1], 640);
    EXPECT_EQ(to.size, 460800u);
}

TEST(ImageHeader, RoomOfABottomUpImage) {
    zivcolor_image image = zivcolor_image_of_planes(zivPixFmt_I420, 10, 6, nullptr, -16, nullptr, 8, nullptr, -8);
    zivcolor_room room;
    ASSERT_EQ(zivcolor_room_of_image(&image, &room), zivStatus_OK);
    EXPECT_EQ(room.before[0], 80u);
    EXPECT_EQ(room.after[0], 10u);
    EXPECT_EQ(room.before[1], 0u);
    EXPECT_EQ(room.after[1], 21u);
    EXPECT_EQ(room.before[2], 16u);
    EXPECT_EQ(room.after[2], 5u);
    EXPECT_EQ(room.offset[0], 80u);
    EXPECT_EQ(room.offset[1], 90u);
    EXPECT_EQ(room.offset[2], 90u + 24 + 16);
    EXPECT_EQ(room.size, 90u + 24 + 21);
    std::vector<uint8_t> buffer(room.size);
    image = zivcolor_image_in(&room, buffer.data());
    EXPECT_EQ(image.plane[0], buffer.data() + 80);
    EXPECT_EQ(image.pitch[0], -16);
}

TEST(ImageHeader, WhatRoomsRefuse) {
    zivcolor_room room = filled(), other = filled();
    const auto refused = [&](int32_t status, int32_t expected) {
        const bool cleared = all_0(&room, sizeof room) && all_0(&other, sizeof other);
        room = other = filled();
        return status == expected && cleared;
    };
    const auto layout = [&](uint32_t format, int32_t width, int32_t height, int32_t alignment) {
        std::memset(&other, 0, sizeof other);
        return refused(zivcolor_room_of_layout(format, width, height, alignment, &room), zivStatus_BadArgument);
    };
    const auto pair = [&](uint32_t source, uint32_t destination, int32_t width, int32_t height, int32_t alignment) {
        return refused(zivcolor_room_of_pair(source, destination, width, height, alignment, &room, &other),
                       zivStatus_BadArgument);
    };
    for (const int32_t bad : {0, -1, INT32_MIN}) {
        EXPECT_TRUE(layout(zivPixFmt_NV21, bad, 2, 1));
        EXPECT_TRUE(layout(zivPixFmt_NV21, 2, bad, 1));
        EXPECT_TRUE(layout(zivPixFmt_NV21, 2, 2, bad));
        EXPECT_TRUE(pair(zivPixFmt_NV21, zivPixFmt_BGR888, bad, 2, 1));
        EXPECT_TRUE(pair(zivPixFmt_NV21, zivPixFmt_BGR888, 2, bad, 1));
        EXPECT_TRUE(pair(zivPixFmt_NV21, zivPixFmt_BGR888, 2, 2, bad));
    }
    EXPECT_TRUE(layout(0, 2, 2, 1));
    EXPECT_TRUE(pair(zivPixFmt_BGR888, zivPixFmt_RGB888, 2, 2, 1));  // no such pair
    EXPECT_TRUE(pair(0, zivPixFmt_RGB888, 2, 2, 1));
    // Rows and images that are too long.
    EXPECT_TRUE(layout(zivPixFmt_BGRA8888, INT32_MAX / 4 + 1, 1, 1));
    EXPECT_TRUE(layout(zivPixFmt_BGRA8888, INT32_MAX / 4, 1, INT32_MAX - 1 - INT32_MAX / 4));
    EXPECT_TRUE(layout(zivPixFmt_I444, INT32_MAX, INT32_MAX, 1));
    EXPECT_TRUE(layout(zivPixFmt_NV21, INT32_MAX, 2, 1));
    for (const uint32_t format : codes())
        for (const int32_t extreme : {INT32_MAX, INT32_MAX - 1, INT32_MAX - 7}) {
            zivcolor_room any;
            zivcolor_room_of_layout(format, extreme, extreme, 1, &any);
            zivcolor_room_of_layout(format, 1, extreme, INT32_MAX, &any);
            EXPECT_LE(any.size, static_cast<size_t>(PTRDIFF_MAX));
        }
    const zivcolor_pair* each;
    for (int32_t index = 0; (each = zivcolor_pair_at(index)) != nullptr; index++)
        for (const int32_t width : {1, 2, INT32_MAX / 4, INT32_MAX - 1, INT32_MAX})
            for (const int32_t height : {1, 2, INT32_MAX - 1, INT32_MAX})
                for (const int32_t alignment : {1, INT32_MAX}) {
                    zivcolor_room_of_pair(each->source, each->destination, width, height, alignment, &room, &other);
                    EXPECT_LE(room.size, static_cast<size_t>(PTRDIFF_MAX));
                    EXPECT_LE(other.size, static_cast<size_t>(PTRDIFF_MAX));
                    // Any pitches at all: neither an overflow nor a size that no memory has.
                    for (const int32_t pitch : {INT32_MIN, -1, 0, 1, INT32_MAX}) {
                        const zivcolor_image in{each->source, width, height, {}, {pitch, pitch, pitch, pitch}};
                        const zivcolor_image out{each->destination, width, height, {}, {pitch, pitch, pitch, pitch}};
                        zivcolor_room_of_images(&in, &out, &room, &other);
                        EXPECT_LE(room.size, static_cast<size_t>(PTRDIFF_MAX));
                        EXPECT_LE(other.size, static_cast<size_t>(PTRDIFF_MAX));
                    }
                }
    room = other = filled();
    // Row offsets beyond 32 bits, where the pair forms them so.
    EXPECT_TRUE(pair(zivPixFmt_NV21, zivPixFmt_RGBA8888, 32768, 16388, 1));
    if (sizeof(void*) == 8) {
        EXPECT_EQ(zivcolor_room_of_pair(zivPixFmt_NV21, zivPixFmt_RGBA8888, 32768, 16384, 1, &room, &other), zivStatus_OK);
        EXPECT_EQ(other.size, size_t{1} << 31);
        EXPECT_EQ(zivcolor_room_of_pair(zivPixFmt_BGRA8888, zivPixFmt_I420, 32768, 65536, 1, &room, &other), zivStatus_OK);
        EXPECT_EQ(uint64_t{room.size}, uint64_t{1} << 33);
        room = other = filled();
    }
    // Null pointers.
    EXPECT_EQ(zivcolor_room_of_layout(zivPixFmt_NV21, 2, 2, 1, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(zivcolor_room_of_image(nullptr, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(zivcolor_room_of_pair(zivPixFmt_NV21, zivPixFmt_I420, 2, 2, 1, nullptr, &room), zivStatus_NullPointer);
    EXPECT_EQ(zivcolor_room_of_pair(zivPixFmt_NV21, zivPixFmt_I420, 2, 2, 1, &room, nullptr), zivStatus_NullPointer);
    const zivcolor_image image{zivPixFmt_NV21, 2, 2, {}, {2, 2}};
    EXPECT_EQ(zivcolor_room_of_images(&image, &image, &room, nullptr), zivStatus_NullPointer);
    EXPECT_TRUE(refused(zivcolor_room_of_images(nullptr, &image, &room, &other), zivStatus_NullPointer));
    EXPECT_TRUE(refused(zivcolor_room_of_images(&image, nullptr, &room, &other), zivStatus_NullPointer));
    EXPECT_TRUE(refused(zivcolor_room_of_images(&image, &image, &room, &other), zivStatus_BadArgument));
}

// Pitches that would spoil what follows are refused; those at the bound are not.
TEST(ImageHeader, PitchesOfNV41) {
    const auto status = [](uint32_t from, uint32_t to, int32_t luma, int32_t source_pitch, int32_t destination_pitch) {
        const zivcolor_image source{from, 40, 8, {}, {40, source_pitch}}, destination{to, 40, 8, {}, {luma, destination_pitch}};
        zivcolor_room first, second;
        return zivcolor_room_of_images(&source, &destination, &first, &second);
    };
    EXPECT_EQ(status(zivPixFmt_NV21, zivPixFmt_NV41, 40, 40, 20), zivStatus_OK);
    EXPECT_EQ(status(zivPixFmt_NV21, zivPixFmt_NV41, 40, 40, 19), zivStatus_BadArgument);
    EXPECT_EQ(status(zivPixFmt_NV21, zivPixFmt_NV41, -40, 40, 20), zivStatus_BadArgument);
    EXPECT_EQ(status(zivPixFmt_NV21, zivPixFmt_NV41, 40, 40, -20), zivStatus_BadArgument);
    EXPECT_EQ(status(zivPixFmt_NV41, zivPixFmt_NV21, 40, 40, 40), zivStatus_OK);
    EXPECT_EQ(status(zivPixFmt_NV41, zivPixFmt_NV21, 40, 20, 40), zivStatus_BadArgument);
    EXPECT_EQ(status(zivPixFmt_NV41, zivPixFmt_NV21, 40, -20, -40), zivStatus_BadArgument);
}

TEST(ImageHeader, DescriptorsThatAreAll0) {
    zivcolor_room room{};
    uint8_t byte = 0;
    zivcolor_image image = zivcolor_image_in(&room, &byte);
    EXPECT_TRUE(image.format == 0 && image.width == 0 && !image.plane[0] && image.pitch[0] == 0);
    EXPECT_EQ(zivColorCvt(&image, &image, {0}), zivStatus_BadArgument);
    ASSERT_EQ(zivcolor_room_of_layout(zivPixFmt_NV21, 2, 2, 1, &room), zivStatus_OK);
    EXPECT_EQ(zivcolor_image_in(&room, nullptr).format, 0u);
    EXPECT_EQ(zivcolor_image_in(nullptr, &byte).format, 0u);
}

TEST(ImageHeader, DescriptorOfPlanes) {
    uint8_t bytes[3];
    const zivcolor_image image = zivcolor_image_of_planes(zivPixFmt_YV12, 6, 4, bytes, 8, bytes + 1, -3, bytes + 2, 5);
    EXPECT_EQ(image.format, uint32_t{zivPixFmt_YV12});
    EXPECT_EQ(image.width, 6);
    EXPECT_EQ(image.height, 4);
    const int32_t pitches[] = {8, -3, 5};
    for (int k = 0; k < 3; k++) {
        EXPECT_EQ(image.plane[k], bytes + k);
        EXPECT_EQ(image.pitch[k], pitches[k]);
    }
    EXPECT_EQ(image.plane[3], nullptr);
    EXPECT_EQ(image.pitch[3], 0);
}

class CameraFrame : public testing::Test {
protected:
    uint8_t memory[1024] = {};
    zivcolor_camera_plane planes[3] = {{memory, 64, 1}, {memory + 512, 64, 2}, {memory + 513, 64, 2}};
    zivcolor_image image{};

    int32_t taken(int32_t width = 60, int32_t height = 6) {
        std::memset(&image, 0xA5, sizeof image);
        return zivcolor_image_of_camera(planes, width, height, &image);
    }
    bool refused(int32_t width = 60, int32_t height = 6) {
        return taken(width, height) == zivStatus_BadArgument && image.format == 0 && !image.plane[0];
    }
};

TEST_F(CameraFrame, PairsByTheOrderOfTheirPlanes) {
    ASSERT_EQ(taken(), zivStatus_OK);
    EXPECT_EQ(image.format, uint32_t{zivPixFmt_NV12});
    EXPECT_EQ(image.plane[1], memory + 512);
    std::swap(planes[1].first, planes[2].first);
    ASSERT_EQ(taken(), zivStatus_OK);
    EXPECT_EQ(image.format, uint32_t{zivPixFmt_NV21});
    EXPECT_EQ(image.plane[0], memory);
    EXPECT_EQ(image.plane[1], memory + 512);
    EXPECT_EQ(image.plane[2], nullptr);
    EXPECT_EQ(image.width, 60);
    EXPECT_EQ(image.height, 6);
    EXPECT_EQ(image.pitch[0], 64);
    EXPECT_EQ(image.pitch[1], 64);
}

TEST_F(CameraFrame, PlanesOfSingleSamples) {
    planes[1] = {memory + 512, 32, 1};
    planes[2] = {memory + 700, 40, 1};
    ASSERT_EQ(taken(), zivStatus_OK);
    EXPECT_EQ(image.format, uint32_t{zivPixFmt_I420});
    EXPECT_EQ(image.plane[1], memory + 512);
    EXPECT_EQ(image.plane[2], memory + 700);
    EXPECT_EQ(image.pitch[1], 32);
    EXPECT_EQ(image.pitch[2], 40);
}

TEST_F(CameraFrame, AnythingElseIsRefused) {
    for (const int32_t bad : {0, -1}) EXPECT_TRUE(refused(bad, 6) && refused(60, bad));
    EXPECT_TRUE(refused(65));
    EXPECT_TRUE(refused(INT32_MAX, INT32_MAX));
    const auto with = [&](int plane, zivcolor_camera_plane other) {
        const zivcolor_camera_plane kept = planes[plane];
        planes[plane] = other;
        const bool result = refused();
        planes[plane] = kept;
        return result;
    };
    EXPECT_TRUE(with(0, {memory, 64, 2}));
    EXPECT_TRUE(with(0, {memory, 59, 1}));
    EXPECT_TRUE(with(1, {memory + 512, 64, 1}));   // one of each kind
    EXPECT_TRUE(with(1, {memory + 512, 128, 2}));  // rows that do not go together
    EXPECT_TRUE(with(1, {memory + 511, 64, 2}));   // two bytes apart
    EXPECT_TRUE(with(1, {memory + 513, 64, 2}));   // the same plane twice
    EXPECT_TRUE(with(1, {memory + 515, 64, 2}));
    for (const int32_t stride : {0, 3, 4, -2}) {
        planes[1].pixel_stride = planes[2].pixel_stride = stride;
        EXPECT_TRUE(refused()) << stride;
    }
    planes[1].pixel_stride = planes[2].pixel_stride = 2;
    planes[1].row_stride = planes[2].row_stride = 59;
    EXPECT_TRUE(refused());
    planes[1] = {memory + 512, 29, 1};
    planes[2] = {memory + 700, 30, 1};
    EXPECT_TRUE(refused());
    planes[1].row_stride = -64;
    EXPECT_TRUE(refused());
}

TEST_F(CameraFrame, NullPointers) {
    EXPECT_EQ(zivcolor_image_of_camera(planes, 60, 6, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(zivcolor_image_of_camera(nullptr, 60, 6, &image), zivStatus_NullPointer);
    for (auto& plane : planes) {
        uint8_t* kept = plane.first;
        plane.first = nullptr;
        EXPECT_EQ(taken(), zivStatus_NullPointer);
        EXPECT_EQ(image.format, 0u);
        plane.first = kept;
    }
}

}  // namespace
