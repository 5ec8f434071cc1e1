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

}  // namespace
