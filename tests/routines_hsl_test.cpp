// SPDX-License-Identifier: MIT
// The HSL kernels against the reference. Widths below 8 are never called: their blocks would run on beyond the image.
#include <gtest/gtest.h>

#include <string>

#include "harness/workspace.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

struct Sizes {
    uint32_t width, height;
    uint32_t source_gap, chroma_gap, destination_gap;  // bytes from a row's end to the next row
};

// The destination is the last buffer.
struct Form {
    const char* name;
    int buffers;
    int pixel_bytes;  // of the first buffer
    int64_t (*convert)(const KernelTable& kernels, uint8_t* const* buffers, const Sizes& s);
};
void PrintTo(const Form& form, std::ostream* out) { *out << form.name; }

const Form forms[] = {
    {"zivColorBGR888toHSL888u8", 2, 3,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorBGR888toHSL888u8(b[0], b[1], s.height, s.width, 3 * s.width + s.source_gap,
                                                 3 * s.width + s.destination_gap);
     }},
    {"zivColorBGR565toHSL888u8", 2, 2,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorBGR565toHSL888u8(b[0], b[1], s.height, s.width, 2 * s.width + s.source_gap,
                                                 3 * s.width + s.destination_gap);
     }},
    {"zivColorRGB565toHSL888u8", 2, 2,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorRGB565toHSL888u8(b[0], b[1], s.height, s.width, 2 * s.width + s.source_gap,
                                                 3 * s.width + s.destination_gap);
     }},
    {"zivColorI420toHSL888u8", 4, 1,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorI420toHSL888u8(b[0], b[1], b[2], s.width, s.height, b[3], s.width + s.source_gap,
                                               (s.width + 1) / 2 + s.chroma_gap, 3 * s.width + s.destination_gap);
     }},
};

class Hsl : public testing::TestWithParam<Form> {
protected:
    Call call(const Sizes& s) const {
        return [convert = GetParam().convert, s](const KernelTable& kernels, uint8_t* const* buffers) {
            return convert(kernels, buffers, s);
        };
    }
    std::vector<Room> rooms(const Sizes& s) const {
        const auto room = [&](const char* name, size_t row, uint32_t gap) {
            const auto bytes = static_cast<int>(row);
            return Room{
                64, (row + 64) * (s.height + 2) + 64, {name, bytes + static_cast<int>(gap), bytes, static_cast<int>(s.width)}};
        };
        std::vector<Room> all(static_cast<size_t>(GetParam().buffers), room("source chroma", s.width / 2 + 1, s.chroma_gap));
        all.front() = room("source", s.width * static_cast<size_t>(GetParam().pixel_bytes), s.source_gap);
        all.back() = room("destination", s.width * 3, s.destination_gap);
        return all;
    }
    std::string what(const Sizes& s) const {
        return std::string(GetParam().name) + " " + std::to_string(s.width) + "x" + std::to_string(s.height) + ", gaps " +
               std::to_string(s.source_gap) + " " + std::to_string(s.chroma_gap) + " " + std::to_string(s.destination_gap);
    }
    void expect_same(const Sizes& s, uint64_t seed) {
        expect_same_bytes(call(s), rooms(s), seed, [&] { return what(s); });
    }
};

TEST_P(Hsl, EverySize) {
    Random random{base_seed};
    for (uint32_t width = 8; width <= 140; ++width)
        for (const uint32_t height : {3u, 4u, 5u}) {
            expect_same({width, height, 0, 0, 0}, random.next());
            const auto gap = [&] { return static_cast<uint32_t>(random.below(40)); };
            expect_same({width, height, gap(), gap(), gap()}, random.next());
            if (HasFailure()) return;
        }
}

TEST_P(Hsl, WideImages) {
    Random random{base_seed + 1};
    for (const uint32_t edge : {192u, 256u, 320u, 512u, 1024u})
        for (uint32_t width = edge - 2; width <= edge + 9; ++width) expect_same({width, 3, 0, 0, 0}, random.next());
}

// Only here is a destination step below a row's bytes a plain distance: rows overlap and show the order of stores.
TEST(HslOfI420, RowsThatOverlap) {
    Random random{base_seed + 3};
    for (uint32_t width = 8; width <= 140; ++width)
        for (int round = 0; round < 4; ++round) {
            const uint32_t step = static_cast<uint32_t>(random.below(static_cast<int>(3 * width)));
            const Call call = [=](const KernelTable& kernels, uint8_t* const* b) -> int64_t {
                return kernels.zivColorI420toHSL888u8(b[0], b[1], b[2], width, 5, b[3], width, width, step);
            };
            const size_t room = 6 * (width + 1), destination = 8 * 3 * (width + 1);
            expect_same_bytes(call, {{0, room}, {0, room}, {0, room}, {64, destination}}, random.next(), [&] {
                return "zivColorI420toHSL888u8 " + std::to_string(width) + " columns, step " + std::to_string(step);
            });
            if (HasFailure()) return;
        }
}

// A pixel is read whole before it is written.
TEST(HslOfBgr, InPlace) {
    for (uint32_t width = 8; width <= 140; ++width) {
        const Call call = [=](const KernelTable& kernels, uint8_t* const* b) -> int64_t {
            return kernels.zivColorBGR888toHSL888u8(b[0], b[0], 3, width, 3 * width + 5, 3 * width + 5);
        };
        expect_same_bytes(call, {{64, 3 * (3 * width + 5) + 64}}, base_seed + width,
                          [&] { return std::to_string(width) + " columns in place"; });
        if (testing::Test::HasFailure()) return;
    }
}

TEST_P(Hsl, StayInsideTheirReach) {
    Random random{base_seed + 2};
    for (uint32_t width = 8; width <= 140; ++width)
        for (const uint32_t height : {3u, 4u}) {
            const Sizes s{width, height, 0, 0, 0};
            expect_in_bounds(call(s), rooms(s), random.next(), [&] { return what(s); });
            if (HasFailure()) return;
        }
}

TEST_P(Hsl, SizesThatAreRefused) {
    for (const uint32_t width : {0u, 1u, 2u, 8u})
        for (const uint32_t height : {0u, 1u, 2u}) expect_same({width, height, 0, 0, 0}, base_seed);
}

INSTANTIATE_TEST_SUITE_P(All, Hsl, testing::ValuesIn(forms),
                         [](const testing::TestParamInfo<Form>& row) { return std::string(row.param.name); });

}  // namespace
