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

// The same planes for source and destination.
int32_t convert_in_place(const zivcolor::KernelTable& kernels, const Conversion& c, uint8_t* luma, uint8_t* chroma, int width,
                         int height, int pitch) {
    const zivcolor::Image source{c.source, width, height, {luma, chroma}, {width, pitch}};
    const zivcolor::Image destination{c.destination, width, height, {luma, chroma}, {width, pitch}};
    return c.convert(kernels, &source, &destination, 0);
}

// Where every byte of the result is determined: all of it but for U in the top two rows of a tail that follows a block.
TEST(NV41, UpwardIsTheReferenceWhereItIsDetermined) {
    Random random{base_seed};
    for (int width = 2; width <= 300; width += width < 100 ? 1 : 5)
        for (int height = 2; height <= 17; height++) {
            ImagePair images = tight(upsampling(), width, height);
            const int pitch = width + 4 + random.below(30);
            images.source_pitch[1] = images.destination_pitch[1] = pitch;
            const auto rooms = rooms_of(upsampling(), images);
            std::vector<std::vector<uint8_t>> expected;
            for (const uint8_t buffer_fill : {uint8_t{0x00}, uint8_t{0xFF}}) {
                reference::g_work_buffer_fill = buffer_fill;
                std::vector<uint8_t> arena(static_cast<size_t>(pitch) * 40 + 4096);
                fill(arena.data(), arena.size(), 1);
                uint8_t* const in = arena.data() + 12 * pitch;
                uint8_t* const out = arena.data() + 28 * pitch;
                const zivcolor::Image source{zivPixFmt_NV41, width, height, {in, in}, {0, pitch}};
                const zivcolor::Image destination{zivPixFmt_NV21, width, height, {in, out}, {0, pitch}};
                ASSERT_EQ(reference::kernels.zivColorNV41toNV21_2(&source, &destination), zivStatus_OK);
                expected.push_back(arena);
            }
            reference::g_work_buffer_fill = 0;
            for (const zivcolor::Target& target : targets()) {
                std::vector<uint8_t> arena(expected[0].size());
                fill(arena.data(), arena.size(), 1);
                uint8_t* const in = arena.data() + 12 * pitch;
                uint8_t* const out = arena.data() + 28 * pitch;
                const zivcolor::Image source{zivPixFmt_NV41, width, height, {in, in}, {0, pitch}};
                const zivcolor::Image destination{zivPixFmt_NV21, width, height, {in, out}, {0, pitch}};
                ASSERT_EQ(target.kernels->zivColorNV41toNV21_2(&source, &destination), zivStatus_OK);
                for (size_t n = 0; n < arena.size(); n++)
                    if (expected[0][n] == expected[1][n]) {
                        ASSERT_EQ(int{arena[n]}, int{expected[0][n]})
                            << target.name << " " << width << "x" << height << " pitch " << pitch << " byte "
                            << static_cast<ptrdiff_t>(n) - 28 * pitch << " of the chroma";
                    }
            }
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
    for (const char* name : {"zivColorNV41toNV21_2", "zivColorNV21toNV41_2", "zivColorNV21toNV41"})
        for (const int width : {8, 28, 32, 36, 40, 64, 100, 128, 132, 200, 256, 260, 320, 640})
            for (const int height : {2, 4, 5, 6, 8, 11, 12, 16}) {
                const Conversion& c = conversion(name);
                const int pitch = width;  // with a wider one the work buffer's padding would reach the image
                const size_t before = static_cast<size_t>(pitch) * 8 + 64, size = before + static_cast<size_t>(pitch) * 16 + 64;
                std::vector<uint8_t> expected(size), luma(static_cast<size_t>(width * height)), other(size);
                fill(expected.data(), size, 7);
                std::vector<uint8_t> start = expected;
                const auto run = [&](const zivcolor::KernelTable& kernels, std::vector<uint8_t>& arena) {
                    return convert_in_place(kernels, c, luma.data(), arena.data() + before, width, height, pitch);
                };
                reference::g_work_buffer_fill = 0xFF;
                other = start;
                run(reference::kernels, other);
                reference::g_work_buffer_fill = 0;
                ASSERT_EQ(run(reference::kernels, expected), zivStatus_OK);
                for (const zivcolor::Target& target : targets()) {
                    std::vector<uint8_t> arena = start;
                    ASSERT_EQ(run(*target.kernels, arena), zivStatus_OK);
                    for (size_t n = 0; n < size; n++)
                        if (expected[n] == other[n]) {
                            ASSERT_EQ(int{arena[n]}, int{expected[n]})
                                << target.name << " " << name << " " << width << "x" << height << " byte " << n - before;
                        }
                }
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
