// SPDX-License-Identifier: MIT
// Every conversion that goes by tiles and streaming stores where images are large, on every target, made to go so at small
// sizes: whole arenas against the reference, byte for byte. And large images by way of the entries, which choose.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

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

#if defined(__x86_64__)
// Rows whose bytes pass 32 bits, as do those of the greatest width: no tiles of these, and nothing is read to learn it.
TEST_P(Streaming, ImagesWiderThanAnyPitchGoAsAWhole) {
    static int calls;
    static zivcolor::Image seen;
    const auto note = [](const zivcolor::Image* src, const zivcolor::Image*) {
        calls++;
        seen = *src;
        return 0;
    };
    const Conversion& c = GetParam();
    zivcolor::KernelTable kernels{};
#define ZIVCOLOR_CONVERSION(name, source, destination, takes, dispatch, task, tile) kernels.name = note_##takes;
    zivcolor::OpaqueConversion* const note_Opaque = note;
    zivcolor::AlphaConversion* const note_Alpha = [](const zivcolor::Image* src, const zivcolor::Image*, uint8_t) {
        calls++;
        seen = *src;
        return 0;
    };
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
#undef ZIVCOLOR_CONVERSION
    for (const int32_t width : {1 << 29, 1 << 30, 0x55555556, INT32_MAX - 1})
        for (const int32_t pitch : {64, INT32_MAX}) {
            auto* const first = reinterpret_cast<uint8_t*>(uintptr_t{1} << 32);
            uint8_t* const second = first + (ptrdiff_t{1} << 32);
            const zivcolor::Image src{c.source, width, 2, {first, first, first}, {pitch, pitch, pitch}};
            const zivcolor::Image dst{c.destination, width, 2, {second, second, second}, {pitch, pitch, pitch}};
            calls = 0;
            c.convert_streaming(kernels, &src, &dst, 0);
            EXPECT_EQ(calls, 1) << c.name;
            EXPECT_EQ(seen.width, width) << c.name;
        }
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
