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
// one band alone. Each takes its share of the row pairs that are left, so the higher ones come last; the last one also takes
// the odd row. With few rows, the first bands are empty.
constexpr void split_into_bands(int32_t height, int32_t count, RowRange* bands) {
    int32_t pairs = height >> 1;
    int32_t start = 0;
    for (int32_t i = 0; i < count - 1; ++i) {
        const int32_t share = pairs / (count - i);
        bands[i] = {start, start + 2 * share};
        pairs -= share;
        start += 2 * share;
    }
    bands[count - 1] = {start, height};
}

}  // namespace zivcolor
