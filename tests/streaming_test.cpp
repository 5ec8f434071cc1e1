// SPDX-License-Identifier: MIT
// Every conversion that goes by tiles and streaming stores where images are large, on every target, made to go so at small
// sizes: whole arenas against the reference, byte for byte. And large images by way of the entries, which choose.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "core/streaming.h"
#include "core/targets.h"
#include "harness/conversions.h"
#include "harness/options.h"
#include "reference/reference.h"

namespace {

using namespace harness;

std::vector<Conversion> streamed_conversions() {
    std::vector<Conversion> rows;
    for (const Conversion& c : conversions())
        if (c.convert_streaming) rows.push_back(c);
    return rows;
}

class Streaming : public testing::TestWithParam<Conversion> {
protected:
    Random random{base_seed};

    // The reference converts as ever. The destination's planes stand `shift` bytes further.
    static Call streamed(const ImagePair& images, int shift = 0) {
        return [images, shift](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) {
            Conversion c = GetParam();
            if (&kernels != &reference::kernels) c.convert = c.convert_streaming;
            uint8_t* planes[6];
            for (int k = 0; k < 6; k++) planes[k] = buffers[k] + (k < 3 ? 0 : shift);
            return call_of(c, images)(kernels, planes);
        };
    }
    void expect_same(const ImagePair& images, int shift = 0) {
        std::vector<Room> rooms = rooms_of(GetParam(), images);
        for (Room& room : rooms) room.after += 64;
        expect_same_bytes(streamed(images, shift), rooms, random.next(),
                          [&] { return describe(GetParam(), images) + ", streaming, shift " + std::to_string(shift); });
    }
    // Sizes around those where tiles begin and end, whole lines and not.
    template <class Change>
    void every_size(Change change) {
        for (const int edge : {64, 128, 192, 256, 320, 512, 576, 768, 1024, 1088})
            for (int width = edge - 3; width <= edge + 18; width += random.between(1, 4))
                for (int height = 1; height <= 14; height += random.between(1, 4)) {
                    ImagePair images = tight(GetParam(), width, height);
                    change(images);
                    expect_same(images, random.below(2) ? 0 : random.below(64));
                    if (HasFailure()) return;
                }
    }
};

TEST_P(Streaming, TightImages) {
    every_size([&](ImagePair& p) { p.alpha = static_cast<uint8_t>(random.next()); });
}

TEST_P(Streaming, TightImagesOfWholeTiles) {
    for (int shift = 0; shift < 64; shift++) {
        expect_same(tight(GetParam(), random.between(2, 20) * 64, random.between(1, 6) * 2), shift);
        if (HasFailure()) return;
    }
}

TEST_P(Streaming, PaddedUnequalPitches) {
    every_size([&](ImagePair& p) {
        for (int k = 0; k < 3; k++) p.source_pitch[k] += random.below(140), p.destination_pitch[k] += random.below(140);
    });
}

TEST_P(Streaming, NegativePitches) {
    every_size([&](ImagePair& p) { negate_some_pitches(p, random, 70); });
}

TEST_P(Streaming, RowsThatOverlap) {
    every_size([&](ImagePair& p) {
        for (int32_t& pitch : p.destination_pitch)
            if (random.below(3)) pitch = random.between(-pitch, pitch);
    });
}

TEST_P(Streaming, UnequalSizes) {
    every_size([&](ImagePair& p) {
        const ImagePair larger = tight(GetParam(), p.source_width + 80, p.source_height + 4);
        for (int k = 0; k < 3; k++)
            p.source_pitch[k] = larger.source_pitch[k], p.destination_pitch[k] = larger.destination_pitch[k];
        int32_t& size = *std::vector{&p.source_width, &p.source_height, &p.destination_width,
                                     &p.destination_height}[static_cast<size_t>(random.below(4))];
        size += random.between(1, 4);
    });
}

// All planes of both images in one block, the destination's somewhere over the source's or beside them: there the kernel's own
// way shows, whatever it is.
TEST_P(Streaming, ImagesThatOverlap) {
    const Conversion& c = GetParam();
    for (int round = 0; round < 100; round++) {
        const ImagePair images = tight(c, random.between(2, 12) * 64, random.between(1, 5) * 2);
        size_t size = 0, at[6] = {};
        const auto place = [&](size_t first, uint32_t format, const int32_t* pitch) {
            for (int k = 0; k < plane_count(format); k++) {
                at[first + static_cast<size_t>(k)] = size;
                size += static_cast<size_t>(pitch[k] * plane_rows(format, k, images.source_height));
            }
        };
        place(0, c.source, images.source_pitch);
        const size_t back = random.below(3) ? static_cast<size_t>(random.below(static_cast<int>(size) + 1)) : 0;
        place(3, c.destination, images.destination_pitch);
        constexpr size_t room = 4096;
        std::vector<uint8_t> start(size + 2 * room), memory(start.size());  // one memory: steps depend on alignment
        fill(start.data(), start.size(), random.next());
        for (const zivcolor::Target& target : targets()) {
            const auto converted = [&](const Call& call) {
                memory = start;
                uint8_t* planes[6];
                for (size_t k = 0; k < 6; k++) planes[k] = memory.data() + room + at[k] - (k < 3 ? 0 : back);
                call(*target.kernels, planes);
                return memory;
            };
            EXPECT_TRUE(converted(streamed(images)) == converted(call_of(c, images)))
                << target.name << ": " << describe(c, images) << ", " << back << " bytes back";
        }
        if (HasFailure()) return;
    }
}

TEST_P(Streaming, StaysInsideItsReach) {
    for (const int width : {128, 130, 142, 160, 190, 192, 194, 256, 258, 320, 510, 512, 514, 576, 640})
        for (const int height : {2, 4, 6, 8}) {
            const ImagePair images = tight(GetParam(), width, height);
            expect_in_bounds(streamed(images), rooms_of(GetParam(), images), random.next(),
                             [&] { return describe(GetParam(), images) + ", streaming"; });
            if (HasFailure()) return;
        }
}

// Another format than the kernel's is for the kernel to refuse, before anything is written.
TEST_P(Streaming, IsNotForAnotherFormat) {
    const Conversion& c = GetParam();
    const ImagePair images = tight(c, 256, 4);
    const auto expect = [&](uint32_t source, uint32_t destination) {
        const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
            zivcolor::Image from{source, 256, 4, {buffers[0], buffers[1], buffers[2], nullptr}, {}};
            zivcolor::Image to{destination, 256, 4, {buffers[3], buffers[4], buffers[5], nullptr}, {}};
            for (int k = 0; k < 3; k++) from.pitch[k] = images.source_pitch[k], to.pitch[k] = images.destination_pitch[k];
            return (&kernels == &reference::kernels ? c.convert : c.convert_streaming)(kernels, &from, &to, 1);
        };
        expect_same_bytes(call, rooms_of(c, images), random.next(), [&] {
            return std::string(c.name) + " given " + format_name(source) + " to " + format_name(destination) + ", streaming";
        });
    };
    for (const uint32_t code : codes()) {
        expect(code, c.destination);
        expect(c.source, code);
    }
    expect(0, c.destination);
    expect(c.source, 0);
}

#if defined(__x86_64__)
// The sources and destinations that kernels of a table are called with. They convert nothing.
struct Noted {
    zivcolor::Image source, destination;
};
std::vector<Noted> noted;

int32_t note(const zivcolor::Image* src, const zivcolor::Image* dst) {
    noted.push_back({*src, *dst});
    return zivStatus_OK;
}
int32_t note_with_alpha(const zivcolor::Image* src, const zivcolor::Image* dst, uint8_t) { return note(src, dst); }

const std::vector<Noted>& calls_of(const Conversion& c, const zivcolor::Image& src, const zivcolor::Image& dst) {
    zivcolor::KernelTable kernels{};
    zivcolor::OpaqueConversion* const note_Opaque = note;
    zivcolor::AlphaConversion* const note_Alpha = note_with_alpha;
#define ZIVCOLOR_CONVERSION(name, source, destination, takes, dispatch, task, tile) kernels.name = note_##takes;
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
#undef ZIVCOLOR_CONVERSION
    noted.clear();
    c.convert_streaming(kernels, &src, &dst, 0);
    return noted;
}

bool takes_any_pitch(const Conversion& c) {
    using enum zivcolor::Tiles;
#define ZIVCOLOR_CONVERSION(kernel, source, destination, alpha, dispatch, task, tile) \
    if (std::string(#kernel) == c.name) return tile == AnyTile;
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
#undef ZIVCOLOR_CONVERSION
    return false;
}

// Tiles are of even sizes, and so must be the image: kernels deal with odd ends by rules of their own.
TEST_P(Streaming, IsForImagesOfEvenSizes) {
    const Conversion& c = GetParam();
    for (const int width : {128, 129, 130, 255, 256, 577, 578})
        for (int height = 1; height <= 7; height++) {
            const ImagePair images = tight(c, width, height);
            zivcolor::Image src{c.source, width, height, {}, {}}, dst{c.destination, width, height, {}, {}};
            std::vector<uint8_t> memory[6];
            for (size_t k = 0; k < 3; k++) {
                src.pitch[k] = images.source_pitch[k], dst.pitch[k] = images.destination_pitch[k];
                memory[k].resize(static_cast<size_t>(src.pitch[k] * height));
                memory[3 + k].resize(static_cast<size_t>(dst.pitch[k] * height));
                src.plane[k] = memory[k].data(), dst.plane[k] = memory[3 + k].data();
            }
            const std::vector<Noted>& calls = calls_of(c, src, dst);
            if (width % 2 != 0 || height % 2 != 0) {
                ASSERT_EQ(calls.size(), 1U) << describe(c, images);
                EXPECT_EQ(calls[0].source.plane[0], src.plane[0]) << describe(c, images);
                EXPECT_EQ(calls[0].destination.plane[0], dst.plane[0]) << describe(c, images);
                continue;
            }
            int64_t pixels = 0;
            bool staged = false;
            for (const auto& [from, to] : calls) {
                EXPECT_EQ(from.width % 2 + from.height % 2, 0) << describe(c, images);
                EXPECT_EQ(from.width, to.width) << describe(c, images);
                EXPECT_EQ(from.height, to.height) << describe(c, images);
                pixels += int64_t{from.width} * from.height;
                staged = staged || to.plane[0] < dst.plane[0] || to.plane[0] >= dst.plane[0] + memory[3].size();
            }
            EXPECT_EQ(pixels, int64_t{width} * height) << describe(c, images);
            EXPECT_TRUE(staged) << describe(c, images);
        }
}

// Rows whose bytes pass 32 bits, as do those of the greatest width: no tiles of these, and nothing is read to learn it.
TEST_P(Streaming, ImagesWiderThanAnyPitchGoAsAWhole) {
    const Conversion& c = GetParam();
    for (const int32_t width : {1 << 29, 1 << 30, 0x55555556, INT32_MAX - 1})
        for (const int32_t pitch : {64, INT32_MAX}) {
            auto* const first = reinterpret_cast<uint8_t*>(uintptr_t{1} << 32);
            uint8_t* const second = first + (ptrdiff_t{1} << 32);
            const zivcolor::Image src{c.source, width, 2, {first, first, first}, {pitch, pitch, pitch}};
            const zivcolor::Image dst{c.destination, width, 2, {second, second, second}, {pitch, pitch, pitch}};
            const std::vector<Noted>& calls = calls_of(c, src, dst);
            ASSERT_EQ(calls.size(), 1U) << c.name;
            EXPECT_EQ(calls[0].source.width, width) << c.name;
        }
}

// The distance of two rows times the height, at the greatest that 32 bits hold and beyond, up and down.
TEST_P(Streaming, ImagesOfFarRowsGoAsAWhole) {
    const Conversion& c = GetParam();
    if (!takes_any_pitch(c)) return;  // the rows of the others follow each other
    constexpr size_t GiB = size_t{1} << 30, plane_room = 2 * GiB;
    void* const range =
        mmap(nullptr, 6 * plane_room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(range, MAP_FAILED);
    constexpr int32_t far = INT32_MAX / 2, near = 1024;
    for (const auto& [from, to, whole] : {std::tuple{far, near, false},
                                          {near, far, false},
                                          {-far, -far, false},
                                          {far + 1, near, true},
                                          {near, far + 1, true},
                                          {-far - 1, near, true},
                                          {near, -far - 1, true}}) {
        zivcolor::Image src{c.source, 128, 2, {}, {from, from, from}}, dst{c.destination, 128, 2, {}, {to, to, to}};
        for (size_t k = 0; k < 3; k++) {
            src.plane[k] = static_cast<uint8_t*>(range) + k * plane_room + (from < 0 ? GiB : 0);
            dst.plane[k] = static_cast<uint8_t*>(range) + (3 + k) * plane_room + (to < 0 ? GiB : 0);
        }
        const std::vector<Noted>& calls = calls_of(c, src, dst);
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ(calls[0].destination.plane[0] == dst.plane[0], whole) << c.name << ", pitches " << from << " and " << to;
    }
    munmap(range, 6 * plane_room);
}
#endif

INSTANTIATE_TEST_SUITE_P(All, Streaming, testing::ValuesIn(streamed_conversions()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Streaming);  // no target has such stores elsewhere

// Large enough for all caches: what the entries choose gives the same bytes as the kernel.
TEST(LargeImages, EntriesAndBands) {
    constexpr int width = 12290, height = 2050;
    constexpr size_t pixels = size_t{width} * height, bytes = pixels * 3 / 2;
    std::vector<uint8_t> source(bytes), expected(bytes + 64), actual(bytes + 64);
    fill(source.data(), bytes, base_seed);
    const auto image = [](uint32_t format, uint8_t* p) {
        zivcolor::Image i{format, width, height, {p, p + pixels, p + pixels * 5 / 4, nullptr}, {width, width, 0, 0}};
        if (format == zivPixFmt_I420) i.pitch[1] = i.pitch[2] = width / 2;
        return i;
    };
    const zivcolor::Image from = image(zivPixFmt_I420, source.data()), to = image(zivPixFmt_NV21, actual.data() + 16);
    const zivcolor::Image to_expected = image(zivPixFmt_NV21, expected.data() + 16);
    zivcolor::chosen_kernels().zivColorI420toNV21u8(&from, &to_expected);
    const auto expect = [&](const char* way, int32_t status) {
        EXPECT_EQ(status, zivStatus_OK) << way;
        EXPECT_TRUE(expected == actual) << way;
        std::fill(actual.begin(), actual.end(), uint8_t{0});
    };
    expect("the entry", zivColorI420toNV21u8(&from, &to));
    expect("the dispatcher", zivColorCvt(&from, &to, {}));
    void* const context = zivColorCvtInit_MultiThreads(nullptr);
    expect("bands", zivColorCvtProcess_MultiThreads(context, &from, &to, {}));
    zivColorCvtUnInit_MultiThreads(nullptr, context);
}

}  // namespace
