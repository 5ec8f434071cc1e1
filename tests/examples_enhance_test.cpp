// SPDX-License-Identifier: MIT
// Worked examples of whitening by a mask and of merge weights.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "harness/picture.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;
using zivcolor::MaskedImage;

// A tight image of one luma and one pair V U, with a mask of one value.
struct Portrait {
    int width, height;
    std::vector<uint8_t> bytes, mask;
    std::array<int32_t, 256> brightened;

    Portrait(int w, int h, int luma, int v, int u, int mask_value)
        : width(w),
          height(h),
          bytes(static_cast<size_t>(w * h * 2 + 2), static_cast<uint8_t>(luma)),
          mask(static_cast<size_t>(2 * w), static_cast<uint8_t>(mask_value)) {
        for (size_t k = static_cast<size_t>(w * h); k + 1 < bytes.size(); k += 2) {
            bytes[k] = static_cast<uint8_t>(v);
            bytes[k + 1] = static_cast<uint8_t>(u);
        }
        for (int y = 0; y < 256; ++y) brightened[static_cast<size_t>(y)] = std::min(255, y + 40);
    }
    uint8_t luma(int y, int x) const { return bytes[static_cast<size_t>(y * width + x)]; }
    uint8_t v(int y, int x) const { return bytes[static_cast<size_t>((height + y) * width + 2 * x)]; }
    uint8_t u(int y, int x) const { return bytes[static_cast<size_t>((height + y) * width + 2 * x + 1)]; }

    template <typename Whiten>
    int64_t whiten(Whiten kernel, int64_t red_level) {
        MaskedImage image{};
        image.width = width;
        image.height = height;
        image.pitch[0] = image.pitch[1] = width;
        image.plane[0] = bytes.data();  // the chroma plane's own pointer stays null
        return kernel(&image, mask.data(), width, brightened.data(), red_level, nullptr);
    }
};

// The same values by the three kinds of arithmetic.
TEST(WhiteningExamples, Chroma) {
    const struct {
        int u, v;
        int scalar_u, scalar_v, block_u, block_v, tail_u, tail_v;
    } rows[] = {{100, 150, 106, 152, 106, 152, 109, 150},
                {100, 200, 106, 204, 106, 208, 109, 200},
                {100, 227, 106, 231, 106, 227, 109, 227},
                {100, 255, 106, 3, 106, 255, 109, 255},
                {128, 128, 128, 128, 128, 128, 128, 128}};
    on_every_table([&](const KernelTable& kernels) {
        for (const auto& row : rows)
            for (const int width : {8, 16, 24, 34, 64, 100}) {
                Portrait scalar(width, 4, 100, row.v, row.u, 255), blocked(width, 4, 100, row.v, row.u, 255);
                EXPECT_EQ(scalar.whiten(kernels._SkinWhitenByMask_YUV420_VUVU, 100), 0);
                EXPECT_EQ(blocked.whiten(kernels._SkinWhitenByMask_YUV420_VUVU_neon, 100), 0);
                const int blocks_end = width / 16 * 8;
                for (int y = 0; y < 2; ++y)
                    for (int x = 0; x < width / 2; ++x) {
                        EXPECT_EQ(scalar.u(y, x), row.scalar_u);
                        EXPECT_EQ(scalar.v(y, x), row.scalar_v);
                        EXPECT_EQ(blocked.u(y, x), x < blocks_end ? row.block_u : row.tail_u) << width << " " << x;
                        EXPECT_EQ(blocked.v(y, x), x < blocks_end ? row.block_v : row.tail_v) << width << " " << x;
                    }
            }
    });
}

TEST(WhiteningExamples, AMaskOfZerosLeavesEverything) {
    on_every_table([](const KernelTable& kernels) {
        for (const auto kernel : {kernels._SkinWhitenByMask_YUV420_VUVU, kernels._SkinWhitenByMask_YUV420_VUVU_neon}) {
            Portrait portrait(50, 6, 90, 200, 60, 0);
            const std::vector<uint8_t> before = portrait.bytes;
            EXPECT_EQ(portrait.whiten(kernel, 100), 0);
            EXPECT_EQ(portrait.bytes, before);
        }
    });
}

TEST(WhiteningExamples, WithoutARedLevelOnlyLumaRises) {
    on_every_table([](const KernelTable& kernels) {
        for (const auto kernel : {kernels._SkinWhitenByMask_YUV420_VUVU, kernels._SkinWhitenByMask_YUV420_VUVU_neon}) {
            Portrait portrait(50, 2, 90, 200, 60, 255);
            EXPECT_EQ(portrait.whiten(kernel, 0), 0);
            for (int x = 0; x < 50; ++x) EXPECT_EQ(portrait.luma(1, x), (255 * 130 + 90) >> 8);
            for (int x = 0; x < 25; ++x) {
                EXPECT_EQ(portrait.v(0, x), 200);
                EXPECT_EQ(portrait.u(0, x), 60);
            }
        }
    });
}

TEST(WhiteningExamples, EveryPairOfRowsHasTheSameMask) {
    on_every_table([](const KernelTable& kernels) {
        for (const auto kernel : {kernels._SkinWhitenByMask_YUV420_VUVU, kernels._SkinWhitenByMask_YUV420_VUVU_neon}) {
            Portrait portrait(38, 4, 90, 140, 120, 0);
            for (size_t k = 0; k < portrait.mask.size(); ++k) portrait.mask[k] = static_cast<uint8_t>(k * 3);
            EXPECT_EQ(portrait.whiten(kernel, 300), 0);
            for (int x = 0; x < 38; ++x)
                for (int y = 0; y < 2; ++y) EXPECT_EQ(portrait.luma(y, x), portrait.luma(y + 2, x));
            EXPECT_NE(portrait.luma(0, 0), portrait.luma(0, 36));
        }
    });
}

TEST(WhiteningExamples, AnOddLastColumnAndRowStay) {
    on_every_table([](const KernelTable& kernels) {
        for (const auto kernel : {kernels._SkinWhitenByMask_YUV420_VUVU, kernels._SkinWhitenByMask_YUV420_VUVU_neon})
            for (const int width : {5, 17, 33}) {
                Portrait portrait(width, 3, 90, 140, 120, 255);
                EXPECT_EQ(portrait.whiten(kernel, 0), 0);
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < width; ++x)
                        EXPECT_EQ(portrait.luma(y, x), x < width - 1 && y < 2 ? (255 * 130 + 90) >> 8 : 90);
            }
    });
}

constexpr int step = 20;

// The weights of these sums, and of nothing beyond them.
std::vector<int> weights(const KernelTable& kernels, const std::vector<int64_t>& sums, int64_t columns, int64_t images) {
    std::vector<int64_t> entries(step * (sums.size() + 2), -1);
    for (size_t k = 0; k < sums.size(); ++k) entries[step * k] = sums[k];
    std::vector<uint8_t> out(sums.size() + 8, untouched);
    kernels.CalcMergeWeightMap_neon(entries.data(), out.data(), columns, images);
    return {out.begin(), out.end()};
}

TEST(MergeWeightExamples, NoImagesOrColumns) {
    on_every_table([](const KernelTable& kernels) {
        const std::vector<int64_t> sums(16, 300);
        for (const int64_t images : {int64_t{1}, int64_t{0}, int64_t{-5}, INT64_MIN})
            for (const int weight : weights(kernels, sums, 16, images)) EXPECT_EQ(weight, untouched);
        for (const int64_t columns : {int64_t{0}, int64_t{-1}, int64_t{-100}, INT64_MIN})
            for (const int weight : weights(kernels, sums, columns, 2)) EXPECT_EQ(weight, untouched);
    });
}

// Each sum as a column of a block, and as one of a tail.
TEST(MergeWeightExamples, Sums) {
    const struct {
        int64_t sum, images;
        int block, tail;
    } rows[] = {
        {256, 2, 0, 0},
        {300, 2, 44, 44},
        {511, 2, 255, 255},
        {512, 2, 255, 255},
        {100000, 2, 255, 255},
        {255, 2, 0, 255},
        {100, 2, 0, 100},
        {0, 2, 0, 0},
        {-1, 2, 0, 255},
        {356, 3, 50, 50},
        {357, 3, 50, 50},
        {255, 3, 0, 0},
        {256 + 255 * 7 + 6, 8, 255, 255},
        {256 + 254 * 7 + 6, 8, 254, 254},
        // A block sees the low half alone.
        {(int64_t{1} << 32) + 300, 2, 44, 255},
        {(int64_t{-1} << 32) + 300, 2, 44, 44},
        {(int64_t{1} << 32) + 100, 2, 0, 255},
        {0x80000000LL, 2, 255, 255},
        {0x7FFFFFFFLL, 2, 255, 255},
        // Less 256 this wraps to the largest values, which round up as floats.
        {static_cast<int64_t>(0x80000000u) + 255, 2, 255, 255},
        {static_cast<int64_t>(0x80000000u) + 256, 2, 0, 255},
        {INT64_MIN + 256, 2, 0, 0},
        {INT64_MAX, 2, 0, 255},
        {INT64_MAX, INT64_MAX, 0, 0},
    };
    on_every_table([&](const KernelTable& kernels) {
        for (const auto& row : rows)
            for (const int64_t columns : {2, 6, 8, 10, 16, 30, 64}) {
                const std::vector<int64_t> sums(static_cast<size_t>(columns), row.sum);
                const std::vector<int> got = weights(kernels, sums, columns, row.images);
                for (int64_t i = 0; i < columns; ++i)
                    EXPECT_EQ(got[static_cast<size_t>(i)], i < columns / 8 * 8 ? row.block : row.tail)
                        << row.sum << " of " << row.images << ", column " << i << " of " << columns;
                EXPECT_EQ(got[static_cast<size_t>(columns)], untouched);
            }
    });
}

TEST(MergeWeightExamples, AnOddRowIsOneColumnLonger) {
    on_every_table([](const KernelTable& kernels) {
        for (const int64_t columns : {1, 7, 9, 17}) {
            std::vector<int64_t> sums(static_cast<size_t>(columns + 1), 300);
            sums.back() = 356;
            const std::vector<int> got = weights(kernels, sums, columns, 2);
            EXPECT_EQ(got[static_cast<size_t>(columns - 1)], 44);
            EXPECT_EQ(got[static_cast<size_t>(columns)], 100);
            EXPECT_EQ(got[static_cast<size_t>(columns + 1)], untouched);
        }
    });
}

}  // namespace
