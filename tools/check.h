// SPDX-License-Identifier: MIT
// Functions of the library beside the digests of the scalar reference.
#pragma once

#include <string>
#include <vector>

#include "check_cases.h"

namespace tool {

// Why a function's results are not those of the reference: the cases in words; none if they are.
struct Verdict {
    const char* function;
    const char* family;
    int cases;
    std::vector<std::string> differing;
};

// The entries that the library exports, as a table like that of a target.
extern const KernelTable exported;

// A function, called by a table.
Verdict check_function(const Function& function, const KernelTable& kernels);

// zivColorCvt with every pair of layouts.
Verdict check_dispatcher(const std::vector<Function>& all);

// The four functions of the multi-threaded front, on all cores.
std::vector<Verdict> check_threads(const std::vector<Function>& all);

}  // namespace tool
