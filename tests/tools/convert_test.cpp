// SPDX-License-Identifier: MIT
// `zivcolor convert` beside the library called directly: every pair, pitches, streams, pictures, and what it refuses.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands_run.h"
#include "digest.h"
#include "zivcolor_image.h"

namespace {

using namespace commands;

void write(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// A file that ends with its test.
struct File {
    std::string path;
    explicit File(const std::string& name, const std::string& bytes = "") : path(temporary(name)) {
        if (!bytes.empty()) write(path, bytes);
    }
    ~File() { std::remove(path.c_str()); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
};

std::string random_bytes(size_t size, uint64_t seed) {
    std::string bytes(size, '\0');
    tool::fill(reinterpret_cast<uint8_t*>(bytes.data()), size, seed);
    return bytes;
}

zivcolor_room tight(uint32_t format, int width, int height) {
    zivcolor_room room;
    EXPECT_EQ(zivcolor_room_of_layout(format, width, height, 1, &room), zivStatus_OK);
    return room;
}

// A tight frame, row by row, between a file and an image in memory.
void copy_frame(const zivcolor_room& file, const zivcolor_room& memory, char* in_file, uint8_t* in_memory, bool to_memory) {
    for (int k = 0; k < file.planes; k++)
        for (int row = 0; row < file.rows[k]; row++)
            for (int i = 0; i < file.row_bytes[k]; i++) {
                uint8_t& there = in_memory[static_cast<ptrdiff_t>(memory.offset[k]) + ptrdiff_t{row} * memory.step[k] + i];
                char& here = in_file[static_cast<ptrdiff_t>(file.offset[k]) + ptrdiff_t{row} * file.step[k] + i];
                if (to_memory) there = static_cast<uint8_t>(here);
                else here = static_cast<char>(there);
            }
}

// The frames of a file by the library itself.
std::string converted(const zivcolor_pair& pair, int width, int height, std::string frames, int alpha = 255) {
    const zivcolor_room from = tight(pair.source, width, height), to = tight(pair.destination, width, height);
    zivcolor_room source, destination;
    EXPECT_EQ(zivcolor_room_of_pair(pair.source, pair.destination, width, height, 1, &source, &destination), zivStatus_OK);
    std::vector<uint8_t> in(source.size), out(destination.size);
    std::string all;
    for (size_t at = 0; at < frames.size(); at += from.size) {
        copy_frame(from, source, frames.data() + at, in.data(), true);
        const zivcolor_image s = zivcolor_image_in(&source, in.data()), d = zivcolor_image_in(&destination, out.data());
        EXPECT_EQ(zivColorCvt(&s, &d, {alpha}), zivStatus_OK);
        std::string frame(to.size, '\0');
        copy_frame(to, destination, frame.data(), out.data(), false);
        all += frame;
    }
    return all;
}

std::string options(const zivcolor_pair& pair, int width, int height) {
    return std::string("--from ") + zivcolor_format_name(pair.source) + " --to " + zivcolor_format_name(pair.destination) +
           " --size " + std::to_string(width) + "x" + std::to_string(height) + " ";
}

const zivcolor_pair& pair(uint32_t from, uint32_t to) { return *zivcolor_pair_of(from, to); }

TEST(Convert, EveryPairAsTheLibraryDoes) {
    const File in("in"), out("out");
    for (int32_t i = 0; const zivcolor_pair* p = zivcolor_pair_at(i); i++)
        for (const auto& [width, height] : {std::pair{64, 8}, {64, 36}}) {
            const zivcolor_room from = tight(p->source, width, height);
            const std::string frames = random_bytes(3 * from.size, 100 + static_cast<uint64_t>(i));
            write(in.path, frames);
            const std::string expected = converted(*p, width, height, frames);
            for (const char* threads : {"", "--threads "}) {
                if (*threads && p->band_task < 0) continue;
                const Result result = run("convert " + options(*p, width, height) + threads + in.path + " " + out.path);
                ASSERT_EQ(result.code, 0) << result.err;
                EXPECT_EQ(result.out + result.err, "");
                EXPECT_TRUE(content(out.path) == expected) << options(*p, width, height) << threads;
            }
        }
}

TEST(Convert, OddSizes) {
    const File in("in"), out("out");
    for (const auto& [from, to] : {std::pair{zivPixFmt_NV21, zivPixFmt_BGR888},
                                   {zivPixFmt_YUYV, zivPixFmt_RGBA8888},
                                   {zivPixFmt_RGB888, zivPixFmt_YUYV},
                                   {zivPixFmt_YV12, zivPixFmt_NV21},
                                   {zivPixFmt_I420, zivPixFmt_BGR888}}) {
        const zivcolor_pair& p = pair(from, to);
        const std::string frames = random_bytes(2 * tight(p.source, 37, 11).size, 5);
        write(in.path, frames);
        const Result result = run("convert --threads " + options(p, 37, 11) + in.path + " " + out.path);
        ASSERT_EQ(result.code, 0) << result.err;
        EXPECT_TRUE(content(out.path) == converted(p, 37, 11, frames)) << options(p, 37, 11);
    }
}

TEST(Convert, ByOtherNamesAndWithAlpha) {
    const zivcolor_pair& p = pair(zivPixFmt_I420, zivPixFmt_BGRA8888);
    const std::string frame = random_bytes(tight(p.source, 32, 6).size, 7);
    const File in("in", frame), out("out");
    ASSERT_EQ(run("convert --from yuv420p --to AR24 --size 32x6 --alpha 77 " + in.path + " " + out.path).code, 0);
    EXPECT_TRUE(content(out.path) == converted(p, 32, 6, frame, 77));
}

// Rows of 40 bytes for the planes of a frame 32 columns wide, then of 48 and 16.
TEST(Convert, Pitches) {
    const zivcolor_pair& p = pair(zivPixFmt_NV21, zivPixFmt_I420);
    const std::string padded = random_bytes(2 * 40 * 9, 8);
    std::string frames;
    for (size_t row = 0; row < 2 * 9; row++) frames += padded.substr(40 * row, 32);
    const std::string expected = converted(p, 32, 6, frames);
    const File in("in", padded), out("out");
    const std::string command = "convert " + options(p, 32, 6) + in.path + " " + out.path + " --pitch ";
    ASSERT_EQ(run(command + "40").code, 0);
    EXPECT_TRUE(content(out.path) == expected);
    ASSERT_EQ(run(command + "40,40").code, 0);
    EXPECT_TRUE(content(out.path) == expected);
    ASSERT_EQ(run(command + "40 --out-pitch 48,16,24").code, 0);
    std::string rows;
    const auto add = [&](size_t& at, size_t row_bytes, size_t pitch, int count) {
        for (int row = 0; row < count; row++, at += row_bytes)
            rows += expected.substr(at, row_bytes) + std::string(pitch - row_bytes, '\0');
    };
    for (size_t at = 0; at < expected.size();) add(at, 32, 48, 6), add(at, 16, 16, 3), add(at, 16, 24, 3);
    EXPECT_TRUE(content(out.path) == rows);
}

TEST(Convert, StreamsAndFrames) {
    const zivcolor_pair& p = pair(zivPixFmt_YUYV, zivPixFmt_NV12);
    const size_t size = tight(p.source, 48, 10).size;
    const std::string frames = random_bytes(5 * size, 9);
    const File in("in", frames), out("out");
    const std::string command = ZIVCOLOR_TOOL " convert " + options(p, 48, 10), expected = converted(p, 48, 10, frames);
    EXPECT_TRUE(run_shell(command + "- - <" + in.path).out == expected);
    EXPECT_TRUE(run_shell("cat " + in.path + " | " + command + "- - | cat").out == expected);
    EXPECT_TRUE(run_shell(command + "--frames 2 - - <" + in.path).out == expected.substr(0, 2 * expected.size() / 5));
    EXPECT_TRUE(run_shell(command + "--frames 3 " + in.path + " -").out == expected.substr(0, 3 * expected.size() / 5));
    // Who reads may stop.
    const Result stopped = run_shell("yes | " + command + "- - | head -c 1000 | wc -c");
    EXPECT_EQ(stopped.code, 0);
    EXPECT_EQ(std::stoi(stopped.out), 1000);
    EXPECT_EQ(stopped.err, "");
}

TEST(Convert, Pictures) {
    const std::string frames = random_bytes(2 * tight(zivPixFmt_NV21, 16, 4).size, 10);
    const File in("in", frames), ppm("out.ppm"), pgm("out.PGM");
    for (const uint32_t to : {zivPixFmt_RGB888, zivPixFmt_BGR888}) {
        const zivcolor_pair& p = pair(zivPixFmt_NV21, to);
        ASSERT_EQ(run("convert " + options(p, 16, 4) + in.path + " " + ppm.path).code, 0);
        std::string pixels = converted(p, 16, 4, frames), expected;
        if (to == zivPixFmt_BGR888)
            for (size_t i = 0; i < pixels.size(); i += 3) std::swap(pixels[i], pixels[i + 2]);
        for (const size_t half : {size_t{0}, pixels.size() / 2})
            expected += "P6\n16 4\n255\n" + pixels.substr(half, pixels.size() / 2);
        EXPECT_TRUE(content(ppm.path) == expected);
    }
    const zivcolor_pair& p = pair(zivPixFmt_NV21, zivPixFmt_I420);
    ASSERT_EQ(run("convert " + options(p, 16, 4) + in.path + " " + pgm.path).code, 0);
    EXPECT_TRUE(content(pgm.path) == "P5\n16 4\n255\n" + frames.substr(0, 64) + "P5\n16 4\n255\n" + frames.substr(96, 64));
    expect_refused("convert --from NV21 --to BGRA8888 --size 16x4 " + in.path + " " + ppm.path,
                   "a PPM is made of RGB888 or BGR888");
    expect_refused("convert --from NV21 --to BGR888 --size 16x4 " + in.path + " " + pgm.path,
                   "a PGM is made of a plane of luma");
}

TEST(Convert, RefusesInOneLine) {
    const File in("in", std::string(96, 'x')), out("out");
    const std::string sound = "convert --from NV21 --to BGR888 --size 16x4 ", files = in.path + " " + out.path;
    EXPECT_EQ(run(sound + files).code, 0);
    std::remove(out.path.c_str());
    const auto refused = [&](const std::string& arguments, const std::string& words) {
        expect_refused(arguments, words);
        EXPECT_FALSE(std::ifstream(out.path).good()) << arguments << ": there is an output";
    };
    for (const char* size : {"0x4", "16x0", "x", "16x", "-16x4", "16x4x4", "16.5x4", "99999999999x4"})
        refused("convert --from NV21 --to BGR888 " + files + " --size " + size, "is a number from 1 to 2147483647, not '");
    refused("convert --from NV21 --to BGR888 --size 16 " + files, "a size is like 1920x1080, not '16'");
    refused("convert --from NV21 --to BGR888 --size 1x4 " + files, "from 2x2 on");
    refused("convert --from NV21 --to BGR888 --size 100000x100000 " + files, "");
    refused("convert --from NV21 --to BGR888 --size 16x6 " + files,
            "has 96 bytes, which is not a whole number of frames of 144");
    refused("convert --from NV21 --to BGR888 --size 8x4 --frames 3 " + files, "not 3 frames of 48");
    refused("convert --from NV22 --to BGR888 --size 16x4 " + files, "no layout 'NV22'");
    refused("convert --from NV12 --to RGB888 --size 16x4 " + files, "nearest: NV12 to BGR888");
    refused("convert --from NV21 --to BGR888 " + files, "needs --from, --to and --size");
    refused(sound + in.path, "two files");
    refused(sound + "--alpha 3 " + files, "takes no alpha");
    refused(sound + "--alpha 256 " + files, "alpha");
    refused(sound + "--frames 0 " + files, "frames");
    refused(sound + "--pitch 15 " + files, "a pitch of 15 is less than the 16 bytes");
    refused(sound + "--pitch 16,16,16 " + files, "2 planes");
    refused(sound + "--pitch 16, " + files, "a pitch");
    refused(sound + "/no/such/file " + out.path, "/no/such/file cannot be read");
    refused(sound + "/ " + out.path, "/ is a directory");
    refused(sound + in.path + " /no/such/folder/out", "cannot be written");
    refused(sound + in.path + " /tmp", "/tmp is a directory");
    refused(sound + in.path + " " + in.path, "is the input as well");
    refused(sound + "/dev/null " + "/no/such/folder/out", "cannot be written");
    EXPECT_EQ(content(in.path).size(), 96u);
}

TEST(Convert, StreamsThatEndEarly) {
    const Result empty = run_shell(ZIVCOLOR_TOOL " convert --from NV21 --to BGR888 --size 16x4 - - </dev/null | cat");
    EXPECT_TRUE(contains(empty.err, "zivcolor: - ends after 0 of the 96 bytes of frame 1\n")) << empty.err;
    const Result early =
        run_shell("yes | head -c 200 | " ZIVCOLOR_TOOL " convert --from NV21 --to BGR888 --size 16x4 - /dev/null");
    EXPECT_EQ(early.code, 2);
    EXPECT_EQ(early.err, "zivcolor: - ends after 8 of the 96 bytes of frame 3\n");
    const Result few =
        run_shell("yes | head -c 192 | " ZIVCOLOR_TOOL " convert --from NV21 --to BGR888 --size 16x4 --frames 3 - /dev/null");
    EXPECT_EQ(few.code, 2);
    EXPECT_EQ(few.err, "zivcolor: - ends after 2 of 3 frames\n");
    const Result full =
        run_shell("yes | head -c 96 | " ZIVCOLOR_TOOL " convert --from NV21 --to BGR888 --size 16x4 - /dev/full");
    EXPECT_EQ(full.code, 1);
    EXPECT_EQ(full.err.rfind("zivcolor: /dev/full cannot be written", 0), 0u) << full.err;
}

}  // namespace
