// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdio>

#include "harness/fault.h"
#include "harness/options.h"
#include "harness/process.h"
#include "harness/workspace.h"

// This file is compiled with the library's flags, whatever the rest of the program was compiled with.
const bool harness::sanitized =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
    true;
#else
    false;
#endif
#else
    false;
#endif

int main(int argc, char** argv) {
    if (!harness::take_options(&argc, argv)) return 2;
    testing::InitGoogleTest(&argc, argv);
    if (!harness::select_tests()) return 2;
    std::printf("seed 0x%llx; targets:", static_cast<unsigned long long>(harness::base_seed));
    for (const zivcolor::Target& target : zivcolor::built_targets())
        std::printf(" %s%s", target.name, target.runs_here() ? "" : " (not here)");
    std::printf("\n");
    harness::report_faults();
    return RUN_ALL_TESTS();
}
