// SPDX-License-Identifier: MIT
// What `check` runs: every function of the kernel list over sizes, pitches and places that reach all of its paths. The digests
// of their results by the scalar reference are in digests.h.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/targets.h"

namespace tool {

using zivcolor::Image;
using zivcolor::KernelTable;

struct Images {
    Image source, destination;
};

// A function with all its arguments, on memory of so many bytes that is filled from the seed. What it returns counts, and every
// byte of the memory.
struct Case {
    std::string what;
    size_t bytes = 0;
    uint64_t seed = 0;
    std::function<int64_t(const KernelTable& kernels, uint8_t* memory)> call;
    // Of a conversion: its images, for other ways to the same result. Bands give it where `in_bands` says so.
    std::function<Images(uint8_t* memory)> images = {};
    uint8_t alpha = 0;
    bool in_bands = false;
    bool beyond_caches = false;  // large enough for streaming stores; only for machines that have them
};

struct Function {
    const char* name;
    const char* family;
    bool dispatched;  // zivColorCvt picks it for its layouts
    bool threaded;    // and bands give its result
    std::vector<Case> cases;
};

// In the order of the kernel list.
std::vector<Function> functions();

// Runs a case several times, on memory that is lent and grown, filled anew each time, and returns the digest of all results.
uint32_t run(const Case& c, const std::function<int64_t(uint8_t* memory)>& call, std::vector<uint8_t>& memory);

// The cases of a function with a signature of its own.
std::vector<Case> routine_cases(const std::string& name);

}  // namespace tool
