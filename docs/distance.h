// SPDX-License-Identifier: MIT
// How far what a kernel makes of a colour is from the exact BT.601 conversion, full range, rounded to the nearest byte:
// measured on the scalar reference, which the library equals byte for byte, over all 2^24 colours.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace distance {

// Of one component: R, G or B; Y, U or V. Only bytes that are written count.
struct Component {
    int greatest = 0;
    int64_t sum = 0, samples = 0;
};
struct Distances {
    Component of[3];
};

// Which columns: those that blocks of 16 or 8 cover; those of a tail that a block of 16 or of 8 would fill; those of a width
// that has both.
enum class Columns { Blocks, TailOf16, TailOf8, Both };

// One kernel, or several in a row: each takes what the one before it wrote, under the layout of its own name.
struct Road {
    uint32_t source, destination;  // what the first image holds, and what the last one does
    std::vector<std::string_view> kernels;
    Columns columns;
    Distances found;
};

// Measures all roads, on as many threads as there are cores.
void measure(std::vector<Road>& roads);

}  // namespace distance
