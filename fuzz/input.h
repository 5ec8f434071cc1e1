// SPDX-License-Identifier: MIT
// What a fuzzer reads its case from: choices, each of one or two bytes of the input. After the input's end all are the first.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "harness/conversions.h"

namespace fuzz {

class Input {
public:
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {
        // A difference ends the run, as the sanitizers do.
        GTEST_FLAG_SET(throw_on_failure, true);
    }
    uint8_t byte() { return at_ < size_ ? data_[at_++] : uint8_t{0}; }
    bool flag() { return byte() & 1; }
    int between(int low, int high) {
        const int range = high - low + 1;
        const int choice = range > 256 ? byte() | byte() << 8 : byte();
        return low + choice % range;
    }
    uint64_t seed() { return uint64_t{byte()} << 8 | byte(); }

private:
    const uint8_t* data_;
    size_t size_, at_ = 0;
};

// Sizes up to what three steps of the widest vectors take, small ones more often, and some that are refused.
inline int size(Input& in, int most) {
    switch (in.between(0, 7)) {
        case 0: return in.between(-3, 3);
        case 1:
        case 2: return in.between(1, most);
        default: return in.between(1, most < 40 ? most : 40);
    }
}

// Where all rows share a place in the first level of the cache, some routines go another way.
inline constexpr int32_t page_pitch = 4096;

// Rows of a destination must not meet, or the width of vectors shows. Those of a source may lie anywhere.
inline int32_t destination_pitch(Input& in, int tight) {
    const int choice = in.between(0, 127);
    const int pitch = choice == 0 ? page_pitch : tight + (choice < 64 ? in.between(0, 70) : 0);
    return in.between(0, 3) == 0 ? -pitch : pitch;
}
inline int32_t source_pitch(Input& in, int tight) {
    switch (const int choice = in.between(0, 127); choice % 4) {
        case 0: return in.between(-600, 600);
        case 1: return choice == 1 ? page_pitch : tight + in.between(0, 70);
        default: return tight;
    }
}

}  // namespace fuzz
