// SPDX-License-Identifier: MIT
// zivColorCvt: the order of its tests, and which kernel each of all pairs of codes reaches.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "harness/conversions.h"
#include "harness/options.h"
#include "harness/partly_mapped.h"

namespace {

using namespace harness;

// The pairs of the dispatcher, written out by hand: the kernel list must say the same. A star: with an alpha byte.
const std::map<std::string, std::string>& pairs() {
    static const std::map<std::string, std::string> table = {
        {"NV21", "RGBA8888* RGB888 BGR888 I420 BGRA8888* YUYV YUV NV41"},
        {"NV12", "I420 RGBA8888* BGRA8888* NV21 YUYV BGR888"},
        {"I420", "RGBA8888* BGRA8888* RGB888 BGR888 NV21 YUYV"},
        {"RGBA8888", "NV21 NV12 I420 LPI422H YUYV BGR888"},
        {"BGRA8888", "NV21 LPI422H NV12 I420"},
        {"I422H", "I420 NV21 NV12 YUYV LPI422H"},
        {"I422V", "I420 NV21 NV12 YUYV LPI422H"},
        {"I444", "I420 NV21 NV12 YUYV LPI422H"},
        {"LPI422H", "BGRA8888* RGBA8888*"},
        {"RGB888", "I420 NV21 BGR565 RGB565 YUYV YVYU VYUY UYVY I422H NV12 YV24 ARGB8888 BGR888"},
        {"BGR888", "I420 NV21 BGR565 RGB565 YUYV YVYU VYUY UYVY I422H NV12 ARGB8888"},
        {"YUYV", "BGR888 RGB888 RGBA8888* NV21 NV12 I420"},
        {"YV12", "BGR888 RGB888 NV21"},
        {"YUV", "NV21"},
        {"NV41", "NV21"}};
    return table;
}

// Four kernels take whatever they are given.
bool tests_formats(const Conversion& c) {
    const std::string name = c.name;
    return name != "zivColorRGB888toBGR888u8_2" && name != "zivColorYUYVtoNV21u8_v2" && name != "zivColorYUYVtoI420u8_2" &&
           name != "zivColorYV12toNV21u8_2";
}

TEST(Dispatch, TheKernelListHoldsThesePairs) {
    std::map<std::string, std::string> expected, listed;  // from a pair to what its kernel takes
    for (const auto& [source, destinations] : pairs()) {
        std::istringstream words(destinations);
        for (std::string word; words >> word;) {
            const bool alpha = word.back() == '*';
            if (alpha) word.pop_back();
            expected[source + " to " + word] = alpha ? "Alpha" : "Opaque";
        }
    }
    for (const Conversion& c : conversions())
        if (c.dispatched) {
            const std::string pair = std::string(format_name(c.source)) + " to " + format_name(c.destination);
            EXPECT_TRUE(listed.emplace(pair, c.alpha ? "Alpha" : "Opaque").second) << c.name << ": a second kernel of its pair";
            EXPECT_TRUE(expected.count(pair)) << pair << ": the table above lacks what src/core/kernel_list.h has";
        }
    for (const auto& [pair, alpha] : expected)
        EXPECT_EQ(listed[pair], alpha) << pair << " in src/core/kernel_list.h and in the table above";
}

TEST(Dispatch, PointersAreTestedFirst) {
    __tag_KOBR_OFFSCREEN image{};
    image.format = 0xDEAD;
    EXPECT_EQ(zivColorCvt(nullptr, nullptr, {0}), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvt(&image, nullptr, {0}), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvt(nullptr, &image, {0}), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvt(&image, &image, {0}), zivStatus_BadArgument);
}

// ---- What is read when: of records out of reach nothing is, and of the others the format first ----

TEST(Dispatch, PointersAreTestedBeforeAnyIsFollowed) {
    const OutOfReach image;
    EXPECT_EQ(zivColorCvt(image.get(), nullptr, {0}), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvt(nullptr, image.get(), {0}), zivStatus_NullPointer);
}

TEST(Dispatch, AnUnknownSourceIsRefusedBeforeTheDestinationIsRead) {
    const OutOfReach destination;
    std::vector<uint32_t> formats = {0, 0x100, 0x606, 0x804, 0x10802, 0x80000802, 0xFFFFFFFF};
    for (const uint32_t format : codes())
        if (!pairs().count(format_name(format))) formats.push_back(format);
    EXPECT_EQ(formats.size(), 7 + 7u);
    for (const uint32_t format : formats)
        EXPECT_EQ(zivColorCvt(FormatOnly(format).get(), destination.get(), {0}), zivStatus_BadArgument) << format;
}

TEST(Dispatch, AnUnlistedPairIsRefusedByItsFormatsAlone) {
    for (const uint32_t source : codes())
        for (const uint32_t destination : codes()) {
            bool listed = false;
            for (const Conversion& c : conversions())
                listed = listed || (c.dispatched && c.source == source && c.destination == destination);
            if (listed) continue;
            EXPECT_EQ(zivColorCvt(FormatOnly(source).get(), FormatOnly(destination).get(), {0}), zivStatus_BadArgument)
                << format_name(source) << " to " << format_name(destination);
        }
}

// An entry looks at the size of an image, for the sake of those beyond the caches: not before the kernel would.
TEST(Dispatch, EntriesReadNoMoreThanTheirKernels) {
    const OutOfReach unreadable;
    for (const zivcolor::Target& target : targets())
        for (const Conversion& c : conversions()) {
            const auto entry = [&](const zivcolor::Image* src, const zivcolor::Image* dst) {
                return c.convert_as_entry(*target.kernels, src, dst, 0);
            };
            EXPECT_EQ(entry(nullptr, unreadable.get()), zivStatus_NullPointer) << target.name << ": " << c.name;
            EXPECT_EQ(entry(unreadable.get(), nullptr), zivStatus_NullPointer) << target.name << ": " << c.name;
            if (!tests_formats(c)) continue;
            const FormatOnly source(c.source), destination(c.destination), neither(0);
            EXPECT_EQ(entry(neither.get(), unreadable.get()), zivStatus_BadArgument) << target.name << ": " << c.name;
            EXPECT_EQ(entry(source.get(), neither.get()), zivStatus_BadArgument) << target.name << ": " << c.name;
        }
}

TEST(Dispatch, MirrorsAndTurnsRefuseBeforeTheDestinationIsRead) {
    const OutOfReach destination;
    const FormatOnly unknown(zivPixFmt_NV12);
    const zivcolor::Image empty{zivPixFmt_NV21, 16, 0, {}, {}};
    for (const zivcolor::Target& target : targets())
        for (const auto mirror : {target.kernels->zivflip_horizontal_nv21, target.kernels->zivflip_vertical_nv21}) {
            EXPECT_EQ(mirror(nullptr, destination.get()), zivStatus_NullPointer);
            EXPECT_EQ(mirror(unknown.get(), destination.get()), zivStatus_BadArgument);
            EXPECT_EQ(mirror(&empty, destination.get()), zivStatus_OK);
        }
    for (const zivcolor::Target& target : targets())
        for (const int32_t mode : {0, 1, 2, 3}) target.kernels->zivRotate(nullptr, destination.get(), mode);
}

// Every pair of codes: the bytes of the kernel that the list names, or -2 and nothing touched.
TEST(Dispatch, EveryPairOfCodesReachesItsKernelOrNone) {
    Random random{base_seed};
    for (const uint32_t source : codes())
        for (const uint32_t destination : codes()) {
            const Conversion* kernel = nullptr;
            for (const Conversion& c : conversions())
                if (c.dispatched && c.source == source && c.destination == destination) kernel = &c;
            std::vector<uint8_t> memory(6 * 4096), expected;
            fill(memory.data(), memory.size(), random.next());
            __tag_KOBR_OFFSCREEN s{source, 20, 8, {}, {}}, d{destination, 20, 8, {}, {}};
            for (int k = 0; k < 3; k++) {
                s.plane[k] = memory.data() + 4096 * k + 512;
                d.plane[k] = memory.data() + 4096 * (3 + k) + 512;
                if (k < plane_count(source)) s.pitch[k] = tight_pitch(source, k, 20);
                if (k < plane_count(destination)) d.pitch[k] = tight_pitch(destination, k, 20);
            }
            Conversion none{};
            none.name = "no conversion", none.source = source, none.destination = destination;
            fill_unread(kernel ? *kernel : none, s, d, random);
            const std::vector<uint8_t> before = memory;
            // Three quarters of the alpha parameter are dropped.
            const int32_t status = zivColorCvt(&s, &d, {0x1234});
            const std::vector<uint8_t> got = memory;
            if (!kernel) {
                EXPECT_EQ(status, zivStatus_BadArgument) << format_name(source) << " to " << format_name(destination);
                EXPECT_EQ(got, before);
                continue;
            }
            EXPECT_EQ(status, zivStatus_OK) << kernel->name;
            if (std::string(kernel->name) == "zivColorNV41toNV21_2") continue;  // its work buffer is not cleared
            memory = before;
            kernel->convert(zivcolor::chosen_kernels(), &s, &d, 0x34);
            EXPECT_EQ(got, memory) << kernel->name;
        }
}

// Of the alpha parameter the low byte counts, whatever stands above it.
TEST(Dispatch, AlphaIsCutToAByte) {
    for (const auto& [parameter, alpha] : {std::pair{0x1FF, 0xFF}, {0x1234, 0x34}, {-1, 0xFF}, {0x100, 0}}) {
        uint8_t luma[4] = {10, 20, 30, 40}, chroma[2] = {128, 128}, pixels[16] = {};
        const __tag_KOBR_OFFSCREEN source{zivPixFmt_NV21, 2, 2, {luma, chroma}, {2, 2}};
        const __tag_KOBR_OFFSCREEN destination{zivPixFmt_RGBA8888, 2, 2, {pixels}, {8}};
        EXPECT_EQ(zivColorCvt(&source, &destination, {parameter}), zivStatus_OK);
        for (int n = 0; n < 4; n++) EXPECT_EQ(pixels[4 * n + 3], alpha) << parameter;
    }
}

// A code that no layout has, beside one that has many conversions.
TEST(Dispatch, UnknownCodesAreRefused) {
    for (const uint32_t known : codes())
        for (const uint32_t unknown : {0u, 0x100u, 0x606u, 0x804u, 0x10802u, 0x80000802u, 0xFFFFFFFFu}) {
            const __tag_KOBR_OFFSCREEN a{known, 8, 8, {}, {}}, b{unknown, 8, 8, {}, {}};
            EXPECT_EQ(zivColorCvt(&a, &b, {0}), zivStatus_BadArgument) << known << " to " << unknown;
            EXPECT_EQ(zivColorCvt(&b, &a, {0}), zivStatus_BadArgument) << unknown << " to " << known;
        }
}

// The right family is not enough, and the source's height counts where the destination's sizes drive the walk.
TEST(Dispatch, AKernelsOwnChecks) {
    const __tag_KOBR_OFFSCREEN uyvy{zivPixFmt_UYVY, 2, 2, {}, {}}, rgb{zivPixFmt_RGB888, 2, 2, {}, {}};
    EXPECT_EQ(zivColorYUYVtoRGB888u8(&uyvy, &rgb), zivStatus_BadArgument);
    const __tag_KOBR_OFFSCREEN low{zivPixFmt_I422H, 2, 1, {}, {}}, planar{zivPixFmt_I420, 2, 2, {}, {}};
    EXPECT_EQ(zivColorI422HtoI420u8(&low, &planar), zivStatus_BadArgument);
}

TEST(Dispatch, AKernelsRefusalComesBack) {
    for (const Conversion& c : conversions()) {
        if (!c.dispatched) continue;
        __tag_KOBR_OFFSCREEN s{c.source, 0, 0, {}, {}}, d{c.destination, 0, 0, {}, {}};
        EXPECT_EQ(zivColorCvt(&s, &d, {0}), zivStatus_BadArgument) << c.name;
    }
}

}  // namespace
