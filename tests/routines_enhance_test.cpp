// SPDX-License-Identifier: MIT
// Whitening by a mask and merge weights against the reference.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <string>

#include "harness/workspace.h"
#include "reference/memory.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;
using zivcolor::MaskedImage;

struct Whitening {
    int width, height, pitch[2];
    int64_t mask_line, red_level;
    uint64_t table;  // 0: a plausible table; 1: every rise from 0 to 255; 2 and 3: but for one; else the seed of a wild one
};

std::array<int32_t, 256> table_of(const Whitening& w) {
    std::array<int32_t, 256> table{};
    for (int y = 0; y < 256; ++y) table[static_cast<size_t>(y)] = std::min(255, y + (255 - y) / 3);
    if (w.table >= 1 && w.table <= 3)
        for (int y = 0; y < 256; ++y) table[static_cast<size_t>(y)] = y + (77 * y + 13) % 256;
    if (w.table == 2) table[200] = 200 + 256;
    if (w.table == 3) table[100] = 100 - 1;
    if (w.table > 3) fill(reinterpret_cast<uint8_t*>(table.data()), sizeof table, w.table);
    return table;
}

// An address where no memory is.
template <class T>
T* nowhere(int place) {
    return reinterpret_cast<T*>(static_cast<uintptr_t>(place));
}

class Whiten : public testing::TestWithParam<bool> {
protected:
    static Call call(const Whitening& w) {
        return [w, table = table_of(w), blocked = GetParam()](const KernelTable& kernels, uint8_t* const* buffers) {
            MaskedImage image{};
            image.width = w.width;
            image.height = w.height;
            image.tag = -1;
            std::copy(w.pitch, w.pitch + 2, image.pitch);
            image.plane[0] = buffers[0];
            // Nothing else of the record is read, nor the last table.
            image.pitch[2] = INT_MIN, image.pitch[3] = INT_MAX;
            for (int k = 1; k < 4; ++k) image.plane[k] = nowhere<uint8_t>(k);
            const auto kernel = blocked ? kernels._SkinWhitenByMask_YUV420_VUVU_neon : kernels._SkinWhitenByMask_YUV420_VUVU;
            return kernel(&image, buffers[1], w.mask_line, table.data(), w.red_level, nowhere<int32_t>(4));
        };
    }
    static std::vector<Room> rooms(const Whitening& w) {
        const auto width = static_cast<size_t>(std::max(w.width, 16)), height = static_cast<size_t>(std::max(w.height, 4));
        const auto pitch = static_cast<size_t>(std::abs(w.pitch[0]) + std::abs(w.pitch[1]));
        const auto line = static_cast<size_t>(w.mask_line < 0 ? -w.mask_line : w.mask_line);
        const size_t image = width * height + pitch * height + 256;
        return {{image, image}, {line + 64, line + width + 64}};
    }
    static std::string what(const Whitening& w) {
        return std::to_string(w.width) + "x" + std::to_string(w.height) + ", pitches " + std::to_string(w.pitch[0]) + " " +
               std::to_string(w.pitch[1]) + ", mask line " + std::to_string(w.mask_line) + ", red level " +
               std::to_string(w.red_level) + ", table " + std::to_string(w.table);
    }
    static void expect_same(const Whitening& w, uint64_t seed) {
        expect_same_bytes(call(w), rooms(w), seed, [&] { return what(w); });
    }
    static Whitening tight(int width, int height, int64_t red_level) {
        return {width, height, {width, width}, width, red_level, 0};
    }
};

TEST_P(Whiten, EverySize) {
    Random random{base_seed};
    for (int width = -1; width <= 100; ++width)
        for (const int height : {-2, 0, 1, 2, 3, 4, 5, 6, 7}) {
            expect_same(tight(width, height, random.below(400)), random.next());
            if (HasFailure()) return;
        }
    for (const int width : {126, 128, 129, 130, 144, 190, 192, 194, 254, 256, 258, 320, 640})
        expect_same(tight(width, 4, 100), random.next());
}

TEST_P(Whiten, PitchesAndMaskLines) {
    Random random{base_seed + 1};
    for (int width = 2; width <= 100; ++width)
        for (const int height : {2, 4, 7}) {
            // Rows of luma may run into the chroma that lies behind a tight plane, but not within one pair of rows.
            const int even = (width + 1) & ~1;
            Whitening w{width, height, {width + random.below(2), even + random.below(20)}, random.between(-200, 200), 100, 0};
            expect_same(w, random.next());
            w.pitch[0] = -width - random.below(20);
            expect_same(w, random.next());
            if (HasFailure()) return;
        }
}

// Every red level that bends one of the arithmetics, and tables far beyond a byte.
TEST_P(Whiten, Levels) {
    Random random{base_seed + 2};
    std::vector<int64_t> levels = {0, 1, -1, 2, 9, 63, 64, 65, 100, 255, 256, 1000, 1024, 4096, -100, -1024};
    for (const int bits : {15, 16, 17, 22, 31, 32, 33, 44, 53, 54, 62})
        for (const int off : {-1, 0, 1})
            levels.push_back((int64_t{1} << bits) + off), levels.push_back(-(int64_t{1} << bits) - off);
    for (const int64_t level : {INT64_MAX, INT64_MAX - 1, INT64_MIN, INT64_MIN + 1, int64_t{0x123456789ABCDEF}})
        levels.push_back(level);
    for (int k = 0; k < 300; ++k) levels.push_back(static_cast<int64_t>(random.next()) << random.below(32) >> random.below(32));
    for (const int64_t level : levels)
        for (const uint64_t table : {uint64_t{0}, uint64_t{1}, uint64_t{2}, uint64_t{3}, uint64_t{random.next()} | 4}) {
            Whitening w = tight(150, 8, level);
            w.table = table;
            expect_same(w, random.next());
            if (HasFailure()) return;
        }
}

// Every chroma byte under every sum of the mask.
TEST_P(Whiten, EverySumAndChroma) {
    for (const int64_t level : {100, 1024, 65535, -50})
        for (int sum = 0; sum <= 1020; ++sum) {
            // 256 cells: 16 rows of 16 pairs in blocks, then the same with 14 columns, by the tail.
            for (const int width : {32, 14}) {
                const int height = 2 * (256 / (width / 2) + 1);
                const Call whiten = call(tight(width, height, level));
                const Call prepared = [&](const KernelTable& kernels, uint8_t* const* buffers) {
                    uint8_t* chroma = buffers[0] + width * height;
                    for (int k = 0; k < width * height / 2; ++k) chroma[k] = static_cast<uint8_t>(k % 2 ? 255 - k / 2 : k / 2);
                    for (int x = 0; x < width; ++x) {
                        const int upper = sum * (x % 2 + 1) / 4 - sum * (x % 2) / 4;
                        const int lower = sum * (x % 2 + 3) / 4 - sum * (x % 2 + 2) / 4;
                        buffers[1][x] = static_cast<uint8_t>(upper);
                        buffers[1][width + x] = static_cast<uint8_t>(lower);
                    }
                    return whiten(kernels, buffers);
                };
                expect_same_bytes(prepared, rooms(tight(width, height, level)), 1,
                                  [&] { return "sum " + std::to_string(sum) + ", red level " + std::to_string(level); });
            }
            if (HasFailure()) return;
        }
}

TEST_P(Whiten, StaysInsideItsReach) {
    Random random{base_seed + 3};
    for (int width = 2; width <= 140; ++width)
        for (const int height : {2, 3, 4}) {
            const Whitening w = tight(width, height, 77);
            expect_in_bounds(call(w), rooms(w), random.next(), [&] { return what(w); });
            if (HasFailure()) return;
        }
}

// Neither is looked at where there is no cell, nor is the image's plane.
TEST_P(Whiten, NullMaskAndTableOfAnEmptyImage) {
    for (const auto& [w, h] : {std::pair{0, 0}, {1, 4}, {0, 4}, {16, 1}, {16, 0}, {-2, -2}}) {
        const int width = w, height = h;
        const Call call = [=, blocked = GetParam()](const KernelTable& kernels, uint8_t* const*) {
            MaskedImage image{};
            image.width = width;
            image.height = height;
            image.pitch[0] = image.pitch[1] = 16;
            const auto kernel = blocked ? kernels._SkinWhitenByMask_YUV420_VUVU_neon : kernels._SkinWhitenByMask_YUV420_VUVU;
            return kernel(&image, nullptr, 16, nullptr, 100, nullptr);
        };
        expect_same_bytes(call, {{64, 64}}, base_seed, [=] { return std::to_string(width) + "x" + std::to_string(height); });
    }
}

INSTANTIATE_TEST_SUITE_P(All, Whiten, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& row) { return row.param ? "Blocked" : "Scalar"; });

// The sums are read as plain 64-bit values, so that the harness sees the row of weights alone.
void expect_same_weights(const std::vector<int64_t>& sums, int64_t columns, int64_t images) {
    const Call call = [&](const KernelTable& kernels, uint8_t* const* buffers) {
        kernels.CalcMergeWeightMap_neon(sums.data(), buffers[0], columns, images);
        return int64_t{0};
    };
    const std::vector<Room> rooms = {{64, static_cast<size_t>(std::max<int64_t>(columns, 0)) + 64}};
    expect_same_bytes(call, rooms, 1,
                      [&] { return std::to_string(columns) + " columns, " + std::to_string(images) + " images"; });
}

// Sums about the values where something turns: 256, the quotients' steps, the ends of 32 and of 64 bits.
int64_t sum_of(Random& random, int64_t images) {
    const int64_t divisor = std::max<int64_t>(images, 2) - 1;
    const int64_t near = random.between(-3, 3);
    switch (random.below(8)) {
        case 0: return 256 + near;
        case 1: return 256 + random.below(258) * std::min<int64_t>(divisor, 1 << 20) + near;
        case 2: return 256 - random.below(300) * std::min<int64_t>(divisor, 1 << 20) + near;
        case 3: return (int64_t{random.between(-2, 2)} << 32) + random.below(3000);
        case 4: return (int64_t{random.between(-2, 2)} << 31) + 256 + near - random.below(2) * 256;
        case 5: return random.below(2) ? INT64_MAX - random.below(400) : INT64_MIN + random.below(400);
        case 6: return static_cast<int32_t>(random.next());
        default: return static_cast<int64_t>(uint64_t{random.next()} << 32 | random.next());
    }
}

TEST(MergeWeights, EveryLengthAndNumberOfImages) {
    Random random{base_seed + 4};
    std::vector<int64_t> counts = {-1, 0, 1, (1 << 20) + 1, (1 << 24) + 2, (int64_t{1} << 31) + 1, (int64_t{1} << 40) + 3};
    counts.insert(counts.end(), {INT64_MAX, INT64_MAX - 100, INT64_MIN});
    for (int64_t images = 2; images <= 70; ++images) counts.push_back(images);
    for (const int64_t images : counts)
        for (int64_t columns = -1; columns <= 70; ++columns) {
            std::vector<int64_t> sums(static_cast<size_t>(20 * (columns + 1) + 1), 0x5A5A5A5A5A5A5A5A);
            for (size_t k = 0; k < sums.size(); k += 20) sums[k] = sum_of(random, images);
            expect_same_weights(sums, columns, images);
            if (testing::Test::HasFailure()) return;
        }
}

TEST(MergeWeights, NullPointersWhereNothingIsDone) {
    for (const auto& [w, count] : {std::pair{8, 1}, {8, 0}, {1, -5}, {0, 2}, {-3, 9}}) {
        const int columns = w, images = count;
        const Call call = [=](const KernelTable& kernels, uint8_t* const*) {
            kernels.CalcMergeWeightMap_neon(nullptr, nullptr, columns, images);
            return int64_t{0};
        };
        expect_same_bytes(call, {{64, 64}}, base_seed,
                          [=] { return std::to_string(columns) + " columns, " + std::to_string(images) + " images"; });
    }
}

TEST(MergeWeights, EveryQuotient) {
    for (int64_t images = 2; images <= 70; ++images) {
        const int64_t columns = 258 * (images - 1) + 300;
        std::vector<int64_t> sums(static_cast<size_t>(20 * columns + 40));
        for (int64_t i = 0; i <= columns; ++i) sums[static_cast<size_t>(20 * i)] = i;
        expect_same_weights(sums, columns, images);
    }
}

// Sums and weights flush against an unmapped page. A pointer to sums must suit 64-bit values, and does: pages are of whole
// ones.
TEST(MergeWeights, StayInsideTheirReach) {
    for (int64_t columns = 1; columns <= 70; ++columns) {
        const auto bytes = static_cast<size_t>(8 * (20 * (columns + columns % 2 - 1) + 1));
        const Call call = [&](const KernelTable& kernels, uint8_t* const* buffers) {
            // The reference reads sums as such, so their reach is told here.
            reference::get(buffers[0]);
            reference::get(buffers[0] + bytes - 1);
            kernels.CalcMergeWeightMap_neon(reinterpret_cast<const int64_t*>(buffers[0]), buffers[1], columns, 3);
            return int64_t{0};
        };
        expect_in_bounds(call, {{64, bytes + 64}, {64, static_cast<size_t>(columns) + 64}}, base_seed,
                         [&] { return std::to_string(columns) + " columns"; });
    }
}

}  // namespace
