// SPDX-License-Identifier: MIT
// How the rows of a destination are dealt out to bands.
#pragma once

#include <stdint.h>

namespace zivcolor {

constexpr int32_t most_bands = 32;

struct RowRange {
    int32_t start;
    int32_t end;  // the row after the last
};

// Splits height rows into count bands, in order. Bands begin at even rows, so that a chroma row of a 4:2:0 layout belongs to
// one band alone. The row pairs are shared out evenly; the last bands are one pair higher if they do not go up in count, and
// the very last one also takes the odd row. With few rows, the first bands are empty.
constexpr void split_into_bands(int32_t height, int32_t count, RowRange* bands) {
    const int32_t pairs = height >> 1;
    const int32_t share = pairs / count, surplus = pairs % count;
    const int32_t first_higher = count - (surplus < 0 ? -surplus : surplus);
    const int32_t higher = share + (surplus < 0 ? -1 : 1);
    int32_t start = 0;
    for (int32_t i = 0; i < count - 1; ++i) {
        const int32_t end = start + 2 * (i < first_higher ? share : higher);
        bands[i] = {start, end};
        start = end;
    }
    bands[count - 1] = {start, height};
}

}  // namespace zivcolor
