// SPDX-License-Identifier: MIT
// The kernels that take one tight buffer on each side and find the planes by computation.
#include <gtest/gtest.h>

#include "harness/workspace.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

struct TightKernel {
    const char* name;
    int64_t (*run)(const KernelTable& kernels, const uint8_t* source, uint8_t* destination, int width, int height);
};
#define TIGHT_KERNEL(name)                                                                            \
    TightKernel {                                                                                     \
#name, [](const KernelTable& kernels, const uint8_t* source, uint8_t* destination, int width, \
                  int height) -> int64_t { return kernels.name(source, destination, width, height); } \
    }
const TightKernel tight_kernels[] = {TIGHT_KERNEL(zivColorYV12toNV21u8), TIGHT_KERNEL(zivColorYUYVtoNV21u8),
                                     TIGHT_KERNEL(zivColorYUYVtoNV12u8), TIGHT_KERNEL(zivColorYUYVtoI420u8),
                                     TIGHT_KERNEL(zivColorRGB888toBGR888u8)};

class TightBuffers : public testing::TestWithParam<TightKernel> {
protected:
    static std::vector<Room> rooms(int width, int height) {
        const auto size = static_cast<size_t>(4 * (width + 16) * (height + 4) + 256);
        return {{64, size, {"source"}}, {64, size, {"destination"}}};
    }
    static std::string what(int width, int height) {
        return std::string(GetParam().name) + " " + std::to_string(width) + "x" + std::to_string(height);
    }
};

TEST_P(TightBuffers, EverySmallSize) {
    for (int width = -1; width <= 150; width++)
        for (int height = -1; height <= 9; height++) {
            const Call call = [=](const KernelTable& kernels, uint8_t* const* buffers) {
                return GetParam().run(kernels, buffers[0], buffers[1], width, height);
            };
            const uint64_t seed = base_seed + static_cast<uint64_t>(width * 16 + height);
            expect_same_bytes(call, rooms(150, 9), seed, [=] { return what(width, height); });
            expect_in_bounds(call, rooms(150, 9), seed, [=] { return what(width, height); });
            if (HasFailure()) return;
        }
}

TEST_P(TightBuffers, AroundEveryBlockEdge) {
    for (const int edge : {160, 192, 256, 320, 384, 512, 640, 1024})
        for (int width = edge - 3; width <= edge + 3; width++)
            for (const int height : {2, 3}) {
                const Call call = [=](const KernelTable& kernels, uint8_t* const* buffers) {
                    return GetParam().run(kernels, buffers[0], buffers[1], width, height);
                };
                expect_same_bytes(call, rooms(width, height), base_seed, [=] { return what(width, height); });
                expect_in_bounds(call, rooms(width, height), base_seed, [=] { return what(width, height); });
                if (HasFailure()) return;
            }
}

TEST_P(TightBuffers, NullPointers) {
    for (int nulls = 1; nulls <= 3; nulls++)
        for (const int size : {0, 8}) {
            const Call call = [=](const KernelTable& kernels, uint8_t* const* buffers) {
                return GetParam().run(kernels, nulls & 1 ? nullptr : buffers[0], nulls & 2 ? nullptr : buffers[1], size, size);
            };
            expect_same_bytes(call, rooms(8, 8), base_seed, [=] { return what(size, size) + ", null"; });
        }
}

INSTANTIATE_TEST_SUITE_P(All, TightBuffers, testing::ValuesIn(tight_kernels),
                         [](const testing::TestParamInfo<TightKernel>& row) { return std::string(row.param.name); });

}  // namespace
