// SPDX-License-Identifier: MIT
// Which targets are built, and which one is chosen.
#include <gtest/gtest.h>

#include <string>

#include "core/targets.h"

namespace {

TEST(Targets, TheLastRunsEverywhere) {
    const zivcolor::TargetList built = zivcolor::built_targets();
    ASSERT_NE(built.begin(), built.end());
#if defined(__x86_64__) || defined(__aarch64__)
    const std::string last = (built.end() - 1)->name;
    if (last == "portable" || last == "neon") {
        EXPECT_TRUE((built.end() - 1)->runs_here());
    }
#endif
}

TEST(Targets, TheFirstThatRunsIsChosen) {
    for (const zivcolor::Target& target : zivcolor::built_targets())
        if (target.runs_here()) {
            EXPECT_EQ(&zivcolor::chosen_kernels(), target.kernels) << target.name;
            return;
        }
}

// A target that builds some kernels takes the others from the target that it extends.
TEST(Targets, KernelsThatATargetDoesNotBuildAreThoseOfItsBase) {
    const zivcolor::Target *dot = nullptr, *base = nullptr;
    for (const zivcolor::Target& target : zivcolor::built_targets()) {
        if (target.name == std::string("neon_dot")) dot = &target;
        if (target.name == std::string("neon")) base = &target;
    }
    if (!dot) return;  // not of this architecture
    ASSERT_NE(base, nullptr);
    EXPECT_NE(dot->kernels->zivColorRGBA8888toNV21u8, base->kernels->zivColorRGBA8888toNV21u8);
    EXPECT_NE(dot->kernels->zivColorBGRA8888toI420u8, base->kernels->zivColorBGRA8888toI420u8);
    EXPECT_EQ(dot->kernels->zivColorRGB888toNV21u8, base->kernels->zivColorRGB888toNV21u8);
    EXPECT_EQ(dot->kernels->zivColorNV21toRGB888u8, base->kernels->zivColorNV21toRGB888u8);
    EXPECT_EQ(dot->kernels->zivColorI420toNV21u8, base->kernels->zivColorI420toNV21u8);
    EXPECT_EQ(dot->kernels->zivColorRGB888toBGR888u8, base->kernels->zivColorRGB888toBGR888u8);
    EXPECT_EQ(dot->kernels->zivColorI420toHSL888u8, base->kernels->zivColorI420toHSL888u8);
    EXPECT_EQ(dot->kernels->zivRotate, base->kernels->zivRotate);
}

}  // namespace
