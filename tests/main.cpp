#include <gtest/gtest.h>

#include <cstdio>

#include "harness/workspace.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::printf("seed 0x%llx; targets:", static_cast<unsigned long long>(harness::base_seed));
    for (const zivcolor::Target& target : zivcolor::built_targets())
        std::printf(" %s%s", target.name, target.runs_here() ? "" : " (not here)");
    std::printf("\n");
    return RUN_ALL_TESTS();
}
