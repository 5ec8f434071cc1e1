// SPDX-License-Identifier: MIT
// What the NV41 kernels do beside the common conversion tests: the upsampling kernel with its work buffer, one memory for
// source and destination, and the first generation's end.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include "harness/conversions.h"
#include "harness/options.h"
#include "reference/reference.h"
#include "reference/work_buffer.h"

namespace {

using namespace harness;

const Conversion& upsampling() { return conversion("zivColorNV41toNV21_2"); }

// Sizes, and the pitches of the chroma planes.
struct Chroma {
    int width, height, source_pitch, destination_pitch;

    std::string what() const {
        return std::to_string(width) + "x" + std::to_string(height) + ", chroma pitches " + std::to_string(source_pitch) + " " +
               std::to_string(destination_pitch);
    }
    // More than a walk leaves a plane by, on either side.
    size_t margin() const { return static_cast<size_t>(6 * std::max(source_pitch, std::abs(destination_pitch)) + width + 64); }
    size_t size() const {
        return static_cast<size_t>(std::max(source_pitch, std::abs(destination_pitch)) * (height + 2) + width) + 2 * margin();
    }
};

// Converts chroma alone: both images have one luma plane, whose pitches count for nothing then.
int32_t convert_chroma(const zivcolor::KernelTable& kernels, const Conversion& c, const Chroma& chroma, uint8_t* from,
                       uint8_t* to) {
    static uint8_t luma;
    Random random{static_cast<uint64_t>(chroma.width << 8 | chroma.height)};
    zivcolor::Image source{c.source, chroma.width, chroma.height, {&luma, from}, {0, chroma.source_pitch}};
    // Of the destination's sizes it counts that they are not too small.
    zivcolor::Image destination{
        c.destination, random.between(2, 300), random.between(2, 300), {&luma, to}, {0, chroma.destination_pitch}};
    fill_beyond_layout(source, c.source, random);
    fill_beyond_layout(destination, c.destination, random);
    source.pitch[0] = source.pitch[2];
    destination.pitch[0] = destination.pitch[2];
    return c.convert(kernels, &source, &destination, 0);
}

// Expects the reference's bytes wherever they are the same whatever the work buffer holds before. `apart`: the source's plane
// has memory of its own, else it is the destination's.
void expect_determined_chroma(const Conversion& c, const Chroma& chroma, bool apart, uint64_t seed) {
    const size_t size = chroma.size() * (apart ? 2 : 1);
    const auto run = [&](const zivcolor::KernelTable& kernels) {
        std::vector<uint8_t> memory(size);
        fill(memory.data(), size, seed);
        uint8_t* const to = memory.data() + chroma.margin() + (chroma.destination_pitch < 0 ? chroma.size() / 2 : 0);
        EXPECT_EQ(convert_chroma(kernels, c, chroma, apart ? memory.data() + chroma.size() + chroma.margin() : to, to),
                  zivStatus_OK);
        return memory;
    };
    reference::g_work_buffer_fill = 0xFF;
    const std::vector<uint8_t> other = run(reference::kernels);
    reference::g_work_buffer_fill = 0;
    const std::vector<uint8_t> expected = run(reference::kernels);
    for (const zivcolor::Target& target : targets()) {
        const std::vector<uint8_t> actual = run(*target.kernels);
        for (size_t n = 0; n < size; n++)
            if (expected[n] == other[n]) {
                ASSERT_EQ(int{actual[n]}, int{expected[n]}) << target.name << " " << c.name << " " << chroma.what()
                                                            << (apart ? "" : ", in place") << ", byte " << n - chroma.margin();
            }
    }
}

// Undetermined is U in the top two rows of a tail that follows a block, and what lies between rows that are further apart.
TEST(NV41, UpwardIsTheReferenceWhereItIsDetermined) {
    Random random{base_seed};
    for (int width = 2; width <= 300; width += width < 100 ? 1 : 5)
        for (int height = 2; height <= 17; height++) {
            const int pitch = width + 4 + random.below(30);
            expect_determined_chroma(upsampling(), {width, height, pitch, pitch}, true, random.next());
            if (testing::Test::HasFailure()) return;
        }
}

// The buffer is as long as two of the source's rows, and its rows are as far apart as the destination's.
TEST(NV41, UpwardWithUnequalChromaPitches) {
    expect_determined_chroma(upsampling(), {64, 12, 40, 64}, true, base_seed);
    Random random{base_seed};
    for (int width = 2; width <= 200; width += width < 80 ? 2 : 9)
        for (int height = 2; height <= 16; height += 2) {
            const int pitch = (width + 3) / 4 * 4 + random.below(60);
            expect_determined_chroma(upsampling(), {width, height, random.between(0, width + 60), pitch}, true, random.next());
            expect_determined_chroma(upsampling(), {width, height, random.between(0, width + 60), -pitch}, true, random.next());
            if (testing::Test::HasFailure()) return;
        }
}

// The work buffer covers whole rows when the width is a multiple of 32 or below it and the pitch is the row.
TEST(NV41, UpwardStaysInsideItsReach) {
    Random random{base_seed};
    for (const int width : {4, 8, 12, 16, 20, 24, 28, 32, 64, 96, 128, 160, 256, 288, 320})
        for (const int height : {4, 8, 12}) {
            ImagePair images = tight(upsampling(), width, height);
            images.source_pitch[1] = images.destination_pitch[1] = width;
            expect_in_bounds(call_of(upsampling(), images), rooms_of(upsampling(), images), random.next(),
                             [&] { return describe(upsampling(), images); });
            if (testing::Test::HasFailure()) return;
        }
}

TEST(NV41, OneMemoryForSourceAndDestination) {
    Random random{base_seed};
    for (const char* name : {"zivColorNV41toNV21_2", "zivColorNV21toNV41_2", "zivColorNV21toNV41"})
        for (const int width : {8, 28, 32, 36, 40, 64, 100, 128, 132, 200, 256, 260, 320, 640})
            for (const int height : {2, 4, 5, 6, 8, 11, 12, 16}) {
                const Conversion& c = conversion(name);
                // Wider rows, by less or by more than a block.
                const int near = width + random.below(40), far = 2 * width + random.below(200);
                for (const auto& [from, to] : {std::pair{width, width},
                                               {near, near},
                                               {width, near},
                                               {near, width},
                                               {width, far},
                                               {far, width},
                                               {far, near}})
                    expect_determined_chroma(c, {width, height, from, to}, false, random.next());
                if (testing::Test::HasFailure()) return;
            }
    expect_determined_chroma(conversion("zivColorNV21toNV41"), {256, 8, 256, 552}, false, base_seed);
}

// Of a source without columns no chroma is read: its plane may be null, and the destination's too where nothing is cleared.
TEST(NV41, NeedsNoPlaneWithoutColumns) {
    const auto expect = [](const char* name, bool destination_is_null, int width, int height, int pitch) {
        const Conversion& c = conversion(name);
        const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
            uint8_t* const chroma = destination_is_null ? nullptr : buffers[0];
            const zivcolor::Image from{c.source, width, height, {}, {64, pitch}},
                to{c.destination, 8, 8, {nullptr, chroma}, {64, pitch}};
            return c.convert(kernels, &from, &to, 0);
        };
        if (std::string(name) == "zivColorNV41toNV21_2") {
            // What it copies is what its work buffer happens to hold.
            std::vector<uint8_t> memory(8192);
            uint8_t* const middle = memory.data() + 4096;
            for (const zivcolor::Target& target : targets())
                EXPECT_EQ(call(*target.kernels, &middle), zivStatus_OK) << target.name;
            return;
        }
        expect_same_bytes(call, {{4096, 4096}}, base_seed, [&] {
            return std::to_string(width) + "x" + std::to_string(height) + ", pitch " + std::to_string(pitch);
        });
    };
    for (const int width : {0, -1, -64, INT32_MIN})
        for (const int height : {2, 4, 7, 8, 12}) {
            for (const int pitch : {48, -48}) {
                expect("zivColorNV21toNV41", true, width, height, pitch);
                expect("zivColorNV41toNV21", true, width, height, pitch);
            }
            if (width > -100) expect("zivColorNV21toNV41_2", false, width, height, 48);
            expect("zivColorNV41toNV21_2", false, width, height, 48);
        }
}

// A negative pitch asks for a buffer of less than nothing. Luma is copied by then, chroma is not touched.
TEST(NV41, WorkBufferThatCannotBeHad) {
    std::vector<uint8_t> in(256, 1), out(256, 2);
    const zivcolor::Image source{zivPixFmt_NV41, 8, 8, {in.data(), in.data() + 128}, {8, -8}};
    const zivcolor::Image destination{zivPixFmt_NV21, 8, 8, {out.data(), out.data() + 128}, {8, 8}};
    EXPECT_EQ(zivColorNV41toNV21_2(&source, &destination), zivStatus_OutOfMemory);
    EXPECT_EQ(std::count(out.begin(), out.end(), uint8_t{1}), 64);
    EXPECT_EQ(std::count(out.begin() + 128, out.end(), uint8_t{2}), 128);
}

// Rows that stand further apart in the work buffer than it is told to be long, or before its start, do no harm.
TEST(NV41, DestinationPitchBeyondTheWorkBuffer) {
    for (const int out_pitch : {200, -200, 0}) {
        std::vector<uint8_t> in(4096, 100), out(8192, 2);
        const zivcolor::Image source{zivPixFmt_NV41, 64, 8, {in.data(), in.data() + 1024}, {64, 40}};
        const zivcolor::Image destination{zivPixFmt_NV21, 64, 8, {in.data(), out.data() + 4096}, {64, out_pitch}};
        EXPECT_EQ(zivColorNV41toNV21_2(&source, &destination), zivStatus_OK);
        EXPECT_EQ(int{out[4096]}, 100);
    }
}

TEST(NV41, FlatChromaStaysFlat) {
    for (const char* name : {"zivColorNV21toNV41_2", "zivColorNV41toNV21_2"})
        for (const int width : {8, 24, 32, 64, 96, 160}) {
            const Conversion& c = conversion(name);
            const int height = 8;
            std::vector<uint8_t> in(static_cast<size_t>(width * height * 2), 128), out(in.size(), 7);
            const auto luma = static_cast<ptrdiff_t>(width) * height;
            const zivcolor::Image source{c.source, width, height, {in.data(), in.data() + luma}, {width, width}};
            const zivcolor::Image destination{c.destination, width, height, {out.data(), out.data() + luma}, {width, width}};
            ASSERT_EQ(zivColorCvt(&source, &destination, {0}), zivStatus_OK);
            if (c.destination == zivPixFmt_NV21) {
                EXPECT_EQ(std::count(out.begin() + luma, out.begin() + luma + luma / 2, uint8_t{128}), luma / 2);
                continue;
            }
            for (int row = 0; row < 2; row++) {
                const auto at = out.begin() + luma + row * width;
                EXPECT_EQ(std::count(at, at + width / 2, uint8_t{128}), width / 2);
                EXPECT_EQ(std::count(at + width / 2, at + width, uint8_t{0}), width - width / 2);
            }
            EXPECT_EQ(std::count(out.begin() + luma + 2 * width, out.begin() + luma + 4 * width, uint8_t{0}), 2 * width);
        }
}

TEST(NV41DeathTest, FirstGenerationEndsTheProcess) {
    std::vector<uint8_t> in(4096, 1), out(4096, 2);
    for (const int width : {1, 4, 36, 64}) {
        const zivcolor::Image source{zivPixFmt_NV41, width, 4, {in.data(), in.data() + 2048}, {width, width}};
        const zivcolor::Image destination{zivPixFmt_NV21, 64, 4, {out.data(), out.data() + 2048}, {width, 64}};
        EXPECT_DEATH(zivColorNV41toNV21(&source, &destination), "");
    }
    for (const int width : {0, -1, INT_MIN}) {
        const zivcolor::Image source{zivPixFmt_NV41, width, 4, {in.data(), in.data() + 2048}, {64, 64}};
        const zivcolor::Image destination{zivPixFmt_NV21, 64, 4, {out.data(), out.data() + 2048}, {64, 64}};
        std::fill(out.begin(), out.end(), uint8_t{2});
        EXPECT_EQ(zivColorNV41toNV21(&source, &destination), zivStatus_OK);
        EXPECT_EQ(std::count(out.begin(), out.end(), uint8_t{1}), 256);
    }
}

// What stands in memory when it ends, seen from outside: luma, the blocks of the first two chroma rows, and the V of one step.
TEST(NV41DeathTest, FirstGenerationEndsBehindTheFirstStepOfTheTail) {
    constexpr size_t size = 4096, chroma = 2048;
    constexpr int pitch = 128;
    void* const shared = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto* const out = static_cast<uint8_t*>(shared);
    std::vector<uint8_t> in(size);
    fill(in.data(), size, base_seed);
    for (const zivcolor::Target& target : targets())
        for (const int width : {4, 32, 36, 64, 68, 100}) {
            std::fill(out, out + size, uint8_t{2});
            const zivcolor::Image source{zivPixFmt_NV41, width, 8, {in.data(), in.data() + chroma}, {width, pitch}};
            const zivcolor::Image destination{zivPixFmt_NV21, width, 8, {out, out + chroma}, {pitch, pitch}};
            const pid_t child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                signal(SIGILL, SIG_DFL);  // meant to be: no fault to report
                target.kernels->zivColorNV41toNV21(&source, &destination);
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            EXPECT_NE(status, 0) << target.name << " " << width;

            std::vector<uint8_t> expected(size, 2);
            std::copy_n(in.begin(), 8 * pitch, expected.begin());
            const int blocked = width < 36 ? 0 : ((width - 36) / 32 + 1) * 32;
            const auto step = [&](int column, int channel) {
                const size_t at = chroma + static_cast<size_t>(column + channel);
                const uint8_t* sample = &in[chroma + static_cast<size_t>(column / 2 + channel)];
                const int here = sample[0], left = column ? sample[-2] : here;
                expected[at] = expected[at + pitch] = static_cast<uint8_t>((left + here + 1) >> 1);
                expected[at + 2] = static_cast<uint8_t>(here);
                expected[at + pitch + 2] = static_cast<uint8_t>(left);
            };
            for (int column = 0; column < blocked; column += 4) step(column, 0), step(column, 1);
            step(blocked, 0);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), out)) << target.name << " " << width;
        }
    munmap(shared, size);
}

}  // namespace
