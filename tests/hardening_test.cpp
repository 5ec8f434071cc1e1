// SPDX-License-Identifier: MIT
// The ends of the value ranges: images whose rows lie so far apart that offsets pass 32 bits, and sizes and pitches that are
// the least or the greatest of their type.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <new>
#include <stdexcept>

#include "harness/conversions.h"
#include "harness/fault.h"
#include "harness/options.h"
#include "reference/reference.h"

namespace {

using namespace harness;
using zivcolor::Image;
using zivcolor::KernelTable;

constexpr ptrdiff_t GiB = ptrdiff_t{1} << 30;

// Ten of these pass 2^32, and four pass 2^31: chroma rows of an image of ten rows wrap as well as its luma rows. The even one
// is so near to the odd one that its rows lie on the same islands.
constexpr int32_t odd_pitch = 0x2468000D, even_pitch = odd_pitch - 13;
constexpr uint32_t far_stride = 0x81000001;  // of HSL, where strides are unsigned

constexpr ptrdiff_t wrapped(ptrdiff_t offset) { return static_cast<int32_t>(static_cast<uint32_t>(offset)); }

// A range of addresses of which hardly anything is there: islands of some pages around the rows of the pictures below. What
// touches another place ends the test. Islands hold the rows of six planes, a page apart.
class Archipelago {
public:
    static constexpr ptrdiff_t size = 12 * GiB, page = 4096, plane_distance = page;
    // Where pictures begin whose rows go up, and where those whose rows go down. Products wrapped to 32 bits go the other way.
    static constexpr ptrdiff_t upward = 5 * GiB / 2, downward = 19 * GiB / 2;

    static Archipelago& get() {
        static Archipelago all;
        return all;
    }
    Archipelago(const Archipelago&) = delete;
    Archipelago& operator=(const Archipelago&) = delete;

    uint8_t* plane(ptrdiff_t origin, int k) { return memory_ + origin + k * plane_distance; }
    void fill_all(uint64_t seed) {
        for (const Island& i : islands_) fill(memory_ + i.first, static_cast<size_t>(i.past - i.first), seed++);
    }
    std::vector<uint8_t> bytes() const {
        std::vector<uint8_t> all;
        for (const Island& i : islands_) all.insert(all.end(), memory_ + i.first, memory_ + i.past);
        return all;
    }

private:
    struct Island {
        ptrdiff_t first, past;
    };

    Archipelago() {
        void* const range = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (range == MAP_FAILED) throw std::bad_alloc();
        memory_ = static_cast<uint8_t*>(range);
        for (ptrdiff_t row = 0; row <= 10; row++) {
            for (const ptrdiff_t pitch : {ptrdiff_t{odd_pitch}, -ptrdiff_t{odd_pitch}}) {
                const ptrdiff_t origin = pitch < 0 ? downward : upward;
                open(origin + row * pitch);
                open(origin + wrapped(row * pitch));
                open(origin + wrapped(row * pitch) + pitch);
            }
        }
        for (ptrdiff_t row = 1; row <= 3; row++) open(upward + row * ptrdiff_t{far_stride});
        for (ptrdiff_t row = 1; row <= 2; row++) open(upward + row * 4 * GiB);
        open(upward + INT_MAX);
        open(downward + INT_MIN);
    }
    ~Archipelago() { munmap(memory_, static_cast<size_t>(size)); }

    void open(ptrdiff_t at) {
        const auto grain = static_cast<ptrdiff_t>(sysconf(_SC_PAGESIZE));
        const Island island{(at - page) / grain * grain, (at + 7 * plane_distance + grain - 1) / grain * grain};
        for (Island& other : islands_)
            if (island.first < other.past && other.first < island.past) {
                if (island.first < other.first || island.past > other.past) throw std::logic_error("islands meet");
                return;
            }
        if (mprotect(memory_ + island.first, static_cast<size_t>(island.past - island.first), PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
        islands_.push_back(island);
    }

    uint8_t* memory_;
    std::vector<Island> islands_;
};

// Planes that start at the origin of rows going up or down.
struct Planes {
    uint8_t* at[6];
    explicit Planes(ptrdiff_t origin) {
        for (int k = 0; k < 6; k++) at[k] = Archipelago::get().plane(origin, k);
    }
};

void expect_same_afar(const Call& call, const Planes& planes, uint64_t seed, const std::string& what) {
    Archipelago& all = Archipelago::get();
    all.fill_all(seed);
    const std::vector<uint8_t> before = all.bytes();
    const int64_t status = call(reference::kernels, planes.at);
    const std::vector<uint8_t> expected = all.bytes();
    EXPECT_NE(before, expected) << what;
    for (const zivcolor::Target& target : targets()) {
        all.fill_all(seed);
        const std::function<std::string()> in_words = [&] { return what; };
        const Running running(target.name, in_words);
        EXPECT_EQ(call(*target.kernels, planes.at), status) << target.name << ": " << what;
        EXPECT_TRUE(all.bytes() == expected) << target.name << ": " << what;
    }
}

class FarRows : public testing::TestWithParam<Conversion> {};

// Planes of NV41 are copied and cleared by whole pitches, which no distance that is wide enough allows.
bool has_nv41(const Conversion& c) { return c.source == zivPixFmt_NV41 || c.destination == zivPixFmt_NV41; }

ImagePair far_images(const Conversion& c, int height, int32_t pitch, int width = 38) {
    ImagePair images = tight(c, width, height);
    const ImagePair near = images;
    for (int32_t* pitches : {images.source_pitch, images.destination_pitch})
        for (int k = 0; k < 3; k++) pitches[k] = pitch;
    if (has_nv41(c)) {
        images.destination_pitch[0] = near.destination_pitch[0];
        images.destination_pitch[1] = near.destination_pitch[1];
    }
    return images;
}

TEST_P(FarRows, AreFoundByTheReferencesOffsets) {
    const Conversion& c = GetParam();
    for (const int32_t pitch : {odd_pitch, even_pitch, -odd_pitch, -even_pitch}) {
        const ImagePair images = far_images(c, 10, pitch);
        expect_same_afar(call_of(c, images), Planes(pitch < 0 ? Archipelago::downward : Archipelago::upward), base_seed,
                         describe(c, images));
    }
}

// Nor are they converted by tiles, whose places do not wrap: a tight destination apart from the source is all that speaks for
// it.
TEST_P(FarRows, GoTheKernelsOwnWay) {
    const Conversion& c = GetParam();
    for (const int32_t pitch : {odd_pitch, -odd_pitch}) {
        ImagePair images = far_images(c, 10, pitch, 192);
        const ImagePair near = tight(c, 192, 10);
        std::copy_n(near.destination_pitch, 3, images.destination_pitch);
        Planes planes(pitch < 0 ? Archipelago::downward : Archipelago::upward);
        std::copy_n(Planes(Archipelago::upward + 8 * GiB).at + 3, 3, planes.at + 3);
        const Call call = [&](const KernelTable& kernels, uint8_t* const* at) {
            Conversion streamed = c;
            if (c.convert_streaming && &kernels != &reference::kernels) streamed.convert = c.convert_streaming;
            return call_of(streamed, images)(kernels, at);
        };
        expect_same_afar(call, planes, base_seed, describe(c, images) + ", streaming");
    }
}

TEST_P(FarRows, AtTheGreatestAndTheLeastPitch) {
    const Conversion& c = GetParam();
    for (const int32_t pitch : {INT_MAX, INT_MIN}) {
        const ImagePair images = far_images(c, 2, pitch);
        expect_same_afar(call_of(c, images), Planes(pitch < 0 ? Archipelago::downward : Archipelago::upward), base_seed,
                         describe(c, images));
    }
}

std::vector<Conversion> conversions_with_free_pitches() {
    std::vector<Conversion> rows;
    for (const Conversion& c : conversions())
        if (c.source != zivPixFmt_NV41) rows.push_back(c);
    return rows;
}
INSTANTIATE_TEST_SUITE_P(All, FarRows, testing::ValuesIn(conversions_with_free_pitches()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

// By address, not by comparison: the offset of row 4 is taken in 64 bits, or wrapped where two rows of 4:2:0 go to RGB.
TEST(FarOffsets, WrapInTheKernelsFrom420ToRgbAlone) {
    const struct {
        const char* name;
        bool wraps;
    } kernels[] = {{"zivColorNV21toRGB888u8", true},   {"zivColorNV12toBGRA8888u8", true},  {"zivColorI420toBGR888u8", true},
                   {"zivColorRGB888toNV21u8", false},  {"zivColorRGBA8888toI420u8", false}, {"zivColorNV21toI420u8", false},
                   {"zivColorRGB888toYUYVu8", false},  {"zivColorYUYVtoRGB888u8", false},   {"zivColorI422HtoNV21u8", false},
                   {"zivColorI444toLPI422Hu8", false}, {"zivColorRGB888toBGR565u8", false}};
    Archipelago& all = Archipelago::get();
    for (const auto& kernel : kernels) {
        const Conversion& c = conversion(kernel.name);
        if (c.source == zivPixFmt_I444) continue;  // reads no pitch
        const Planes planes(Archipelago::upward);
        all.fill_all(base_seed);
        uint8_t* const far = planes.at[3] + ptrdiff_t{4} * odd_pitch;
        uint8_t* const near = planes.at[3] + wrapped(ptrdiff_t{4} * odd_pitch);
        const std::vector<uint8_t> far_before(far, far + 32), near_before(near, near + 32);
        call_of(c, far_images(c, 10, odd_pitch))(zivcolor::chosen_kernels(), planes.at);
        EXPECT_EQ(far_before != std::vector<uint8_t>(far, far + 32), !kernel.wraps) << kernel.name;
        EXPECT_EQ(near_before != std::vector<uint8_t>(near, near + 32), kernel.wraps) << kernel.name;
    }
}

TEST(FarOffsets, OfTurnsAndMirrors) {
    for (const int32_t pitch : {odd_pitch, even_pitch})
        for (int routine = 0; routine < 5; routine++) {
            const bool quarter = routine == 1 || routine == 3;
            const int height = quarter ? 8 : 10;
            const Call call = [=](const KernelTable& kernels, uint8_t* const* planes) -> int64_t {
                const Image source{zivPixFmt_NV21, 8, height, {planes[0], planes[1]}, {pitch, pitch}};
                const Image destination{zivPixFmt_NV21, 8, height, {planes[3], planes[4]}, {pitch, pitch}};
                if (routine == 0) return kernels.zivflip_horizontal_nv21(&source, &destination);
                if (routine == 4) return kernels.zivflip_vertical_nv21(&source, &destination);
                kernels.zivRotate(&source, &destination, routine);
                return 0;
            };
            expect_same_afar(call, Planes(Archipelago::upward), base_seed, "routine " + std::to_string(routine));
        }
}

TEST(FarOffsets, OfSkinWhitening) {
    std::vector<uint8_t> mask(64, 200);
    std::vector<int32_t> brightened(256);
    for (int i = 0; i < 256; i++) brightened[static_cast<size_t>(i)] = std::min(255, i + 40);
    for (const int32_t pitch : {odd_pitch, -odd_pitch})
        for (const bool blocked : {false, true}) {
            const Call call = [&](const KernelTable& kernels, uint8_t* const* planes) {
                zivcolor::MaskedImage image{};
                image.width = 18;
                image.height = 10;
                image.plane[0] = planes[0];
                image.pitch[0] = image.pitch[1] = pitch;
                return (blocked ? kernels._SkinWhitenByMask_YUV420_VUVU_neon : kernels._SkinWhitenByMask_YUV420_VUVU)(
                    &image, mask.data(), 32, brightened.data(), 100, nullptr);
            };
            expect_same_afar(call, Planes(pitch < 0 ? Archipelago::downward : Archipelago::upward), base_seed,
                             "skin whitening");
        }
}

// Strides from 2^31 on are far, not negative; one below the bytes of a row goes on by nearly 2^32.
TEST(FarOffsets, OfHslStrides) {
    for (const uint32_t stride : {far_stride, 20u})
        for (int kernel = 0; kernel < 4; kernel++) {
            const Call call = [=](const KernelTable& k, uint8_t* const* planes) -> int64_t {
                const uint8_t* from = planes[0];
                switch (kernel) {
                    case 0: return k.zivColorBGR888toHSL888u8(from, planes[3], 3, 9, stride, stride);
                    case 1: return k.zivColorBGR565toHSL888u8(from, planes[3], 3, 9, stride, stride);
                    case 2: return k.zivColorRGB565toHSL888u8(from, planes[3], 3, 9, stride, stride);
                    default:
                        return k.zivColorI420toHSL888u8(from, planes[1], planes[2], 9, 3, planes[3], far_stride, far_stride,
                                                        far_stride);
                }
            };
            expect_same_afar(call, Planes(Archipelago::upward), base_seed, "HSL kernel " + std::to_string(kernel));
        }
}

// Bands are placed in 64 bits too.
TEST(FarOffsets, OfBands) {
    const Conversion& c = conversion("zivColorRGB888toI420u8");
    void* const context = zivColorCvtInit_MultiThreads(nullptr);
    ASSERT_NE(context, nullptr);
    const Planes planes(Archipelago::upward);
    Image source{c.source, 38, 10, {planes.at[0]}, {odd_pitch}};
    Image destination{c.destination, 38, 10, {}, {odd_pitch, odd_pitch, odd_pitch}};
    for (int k = 0; k < 3; k++) destination.plane[k] = planes.at[3 + k];
    Archipelago& all = Archipelago::get();
    all.fill_all(base_seed);
    EXPECT_EQ(reference::kernels.zivColorRGB888toI420u8(&source, &destination), zivStatus_OK);
    const std::vector<uint8_t> expected = all.bytes();
    all.fill_all(base_seed);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(context, &source, &destination, nullptr), zivStatus_OK);
    EXPECT_TRUE(all.bytes() == expected);
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(nullptr, context), zivStatus_OK);
}

// A refused image is refused whatever its pitches are, and an accepted one of one row steps by none of them.
TEST(ExtremeValues, PitchesOfRefusedImages) {
    for (const Conversion& c : conversions()) {
        ImagePair images = tight(c, 16, 4);
        const std::vector<Room> rooms = rooms_of(c, images);
        images.destination_height = 0;
        for (const int32_t pitch : {INT_MAX, INT_MIN}) {
            for (int k = 0; k < 3; k++) images.source_pitch[k] = images.destination_pitch[k] = pitch;
            expect_same_bytes(call_of(c, images), rooms, base_seed, [&] { return describe(c, images); });
        }
    }
}

// Expects of a routine on small buffers what the reference does.
template <class Routine>
void expect_same(Routine routine, const std::string& what) {
    const Call call = [&](const KernelTable& kernels, uint8_t* const* buffers) -> int64_t { return routine(kernels, buffers); };
    expect_same_bytes(call, {{64, 512}, {64, 512}, {64, 512}, {64, 512}}, base_seed, [&] { return what; });
}

TEST(ExtremeValues, SizesOfThePlainForms) {
    const int32_t sizes[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, INT_MAX};
    for (const int32_t width : sizes)
        for (const int32_t height : sizes) {
            if (width > 0 && height > 0) continue;
            const std::string what = std::to_string(width) + "x" + std::to_string(height);
            expect_same([=](auto& k, auto b) { return k.zivColorYUYVtoNV21u8(b[0], b[1], width, height); }, what);
            expect_same([=](auto& k, auto b) { return k.zivColorYUYVtoNV12u8(b[0], b[1], width, height); }, what);
            expect_same([=](auto& k, auto b) { return k.zivColorYUYVtoI420u8(b[0], b[1], width, height); }, what);
        }
    const int64_t wide_sizes[] = {INT64_MIN, INT64_MIN + 1, INT32_MIN, -1, 0, 1, INT64_MAX};
    for (const int64_t width : wide_sizes)
        for (const int64_t height : wide_sizes) {
            if (width > 0 && height > 0) continue;
            const std::string what = std::to_string(width) + "x" + std::to_string(height);
            expect_same([=](auto& k, auto b) { return k.zivColorYV12toNV21u8(b[0], b[1], width, height); }, what);
            expect_same([=](auto& k, auto b) { return k.zivColorRGB888toBGR888u8(b[0], b[1], width, height); }, what);
        }
}

TEST(ExtremeValues, SizesOfHsl) {
    for (const uint32_t large : {3u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        for (const uint32_t small : {0u, 1u, 2u})
            for (const auto& [w, h] : {std::pair{large, small}, {small, large}, {small, small}}) {
                const uint32_t width = w, height = h;
                const std::string what = std::to_string(width) + "x" + std::to_string(height);
                expect_same(
                    [=](auto& k, auto b) { return k.zivColorBGR888toHSL888u8(b[0], b[1], height, width, large, large); }, what);
                expect_same(
                    [=](auto& k, auto b) { return k.zivColorBGR565toHSL888u8(b[0], b[1], height, width, large, large); }, what);
                expect_same(
                    [=](auto& k, auto b) { return k.zivColorRGB565toHSL888u8(b[0], b[1], height, width, large, large); }, what);
                expect_same(
                    [=](auto& k, auto b) {
                        return k.zivColorI420toHSL888u8(b[0], b[1], b[2], width, height, b[3], large, large, large);
                    },
                    what);
            }
}

TEST(ExtremeValues, SizesOfTurnsAndMirrors) {
    const auto images = [](int32_t width, int32_t height, int32_t pitch, uint8_t* const* b) {
        return std::pair{Image{zivPixFmt_NV21, width, height, {b[0], b[1]}, {pitch, pitch}},
                         Image{zivPixFmt_NV21, width, height, {b[2], b[3]}, {pitch, pitch}}};
    };
    const int32_t extremes[] = {INT_MIN, INT_MIN + 1, -8, 0, INT_MAX};
    for (const int32_t extreme : extremes)
        for (const int32_t pitch : {16, INT_MAX, INT_MIN}) {
            const std::string what = std::to_string(extreme) + " pitch " + std::to_string(pitch);
            for (const int32_t mode : {INT_MIN, 0, 1, 2, 3, INT_MAX})
                for (const auto& [w, h] : {std::pair{7, extreme}, {extreme, -1}, {extreme == INT_MAX ? 0 : extreme, 9}}) {
                    const int32_t width = w, height = h;
                    expect_same(
                        [=](auto& k, auto b) {
                            const auto [source, destination] = images(width, height, pitch, b);
                            k.zivRotate(&source, &destination, mode);
                            return 0;
                        },
                        what);
                }
            if (extreme == INT_MAX) continue;
            for (const auto& [w, h] : {std::pair{8, extreme}, {INT_MAX, extreme}, {extreme, 2}, {extreme, extreme}}) {
                const int32_t width = w, height = h;
                expect_same(
                    [=](auto& k, auto b) {
                        const auto [source, destination] = images(width, height, pitch, b);
                        return k.zivflip_horizontal_nv21(&source, &destination);
                    },
                    what);
                expect_same(
                    [=](auto& k, auto b) {
                        const auto [source, destination] = images(width, height, pitch, b);
                        return k.zivflip_vertical_nv21(&source, &destination);
                    },
                    what);
            }
        }
}

// The clears and lifts of these run on signed sizes, so that the least of them are no work at all; their factors may be
// anything.
TEST(ExtremeValues, OfTheEnhancementKernels) {
    std::vector<int32_t> brightened(256);
    for (size_t i = 0; i < 256; i++) brightened[i] = i % 3 == 0 ? INT_MIN : i % 3 == 1 ? INT_MAX : -1;
    const auto whiten = [&](bool blocked, int32_t width, int32_t height, int64_t level) {
        return [=, &brightened](const KernelTable& k, uint8_t* const* b) {
            zivcolor::MaskedImage image{};
            image.width = width;
            image.height = height;
            image.plane[0] = b[0];
            image.pitch[0] = image.pitch[1] = width;
            const auto kernel = blocked ? k._SkinWhitenByMask_YUV420_VUVU_neon : k._SkinWhitenByMask_YUV420_VUVU;
            return kernel(&image, b[1], 32, brightened.data(), level, nullptr);
        };
    };
    for (const bool blocked : {false, true}) {
        for (const int32_t extreme : {INT_MIN, INT_MIN + 1, -1, 0, 1})
            for (const auto& [w, h] : {std::pair{extreme, extreme}, {extreme, 4}, {16, extreme}})
                expect_same(whiten(blocked, w, h, 100), "whitening " + std::to_string(w) + "x" + std::to_string(h));
        for (const int64_t level : {INT64_MIN, INT64_MIN + 1, int64_t{INT_MIN}, int64_t{-1}, int64_t{INT_MAX}, INT64_MAX})
            expect_same(whiten(blocked, 18, 6, level), "whitening at level " + std::to_string(level));
    }

    std::vector<int64_t> sums(20 * 12);
    const int64_t values[] = {INT64_MIN, INT64_MIN + 255, INT64_MIN + 256, INT_MIN, -1, 0, 255,
                              256,       INT_MAX,         INT64_MAX,       1 << 20, 700};
    for (size_t i = 0; i < 12; i++) sums[20 * i] = values[i];
    for (const int64_t width : {INT64_MIN, INT64_MIN + 1, int64_t{-1}, int64_t{0}, int64_t{4}, int64_t{12}})
        for (const int64_t count : {INT64_MIN, int64_t{-1}, int64_t{0}, int64_t{1}, int64_t{2}, int64_t{33}, INT64_MAX})
            expect_same(
                [&](auto& k, auto b) {
                    k.CalcMergeWeightMap_neon(sums.data(), b[0], width, count);
                    return 0;
                },
                "weights " + std::to_string(width) + " of " + std::to_string(count));
}

}  // namespace
