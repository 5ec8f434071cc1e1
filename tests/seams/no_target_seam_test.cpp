// SPDX-License-Identifier: MIT
// A library that was built without a target for every CPU, on one that it was not built for.
#include <gtest/gtest.h>

#include "core/targets.h"

#include "built_targets.h"

namespace zivcolor {

#define ZIVCOLOR_TABLE(target, condition) \
    namespace target {                    \
    extern const KernelTable kernels;     \
    const KernelTable kernels{};          \
    }
ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_TABLE)
#undef ZIVCOLOR_TABLE

}  // namespace zivcolor

namespace {

// It needs the least of all.
TEST(NoTargetSeam, TheLastIsChosen) {
    EXPECT_EQ(&zivcolor::best_kernels(), &zivcolor::last::kernels);
    EXPECT_EQ(&zivcolor::chosen_kernels(), &zivcolor::last::kernels);
}

}  // namespace
