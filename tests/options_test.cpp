// SPDX-License-Identifier: MIT
// No kernel is without tests.
#include "harness/options.h"

#include <gtest/gtest.h>

#include "core/kernel_list.h"

namespace {

TEST(Options, EveryKernelHasTests) {
    for (const char* kernel : {
#define ZIVCOLOR_CONVERSION(name, ...) #name,
#define ZIVCOLOR_ROUTINE(result, name, ...) #name,
             ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
         })
        EXPECT_NE(harness::tests_of_kernel(kernel, "*"), "")
            << kernel << ": if its tests bear other names, tests/harness/options.cpp has to know them";
}

}  // namespace
