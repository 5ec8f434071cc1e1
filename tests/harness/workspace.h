// SPDX-License-Identifier: MIT
// Memory for a function under test: buffers with room on both sides, filled from a seed, compared byte by byte as a whole, so
// that a byte that must stay untouched counts like one that must be written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/targets.h"
#include "harness/difference.h"
#include "harness/random.h"

namespace harness {

// A function under test with all its arguments but the buffers: takes the table to call it from. Returns its status, or 0.
using Call = std::function<int64_t(const zivcolor::KernelTable& kernels, uint8_t* const* buffers)>;

// Bytes that a buffer has before and from its pointer on.
struct Room {
    size_t before, after;
    Plane plane = {};
};

// Runs the call with the reference's table and with that of every target that runs here, on equal memory, and expects equal
// statuses and equal memory afterwards. `what` says in words which case it is: kernel, sizes, pitches.
void expect_same_bytes(const Call& call, const std::vector<Room>& rooms, uint64_t seed,
                       const std::function<std::string()>& what);

// Learns from the reference which bytes of each buffer it reads or writes, then runs every target with each buffer's reach
// flush against an unmapped page, once at its end and once at its beginning, and expects the reference's bytes. `rooms` bounds
// the reach.
void expect_in_bounds(const Call& call, const std::vector<Room>& rooms, uint64_t seed,
                      const std::function<std::string()>& what);

// The bytes of a buffer that the reference touches, from its pointer: first touched, one past the last; both 0 if none.
struct Reach {
    ptrdiff_t first, past;
};
std::vector<Reach> reach_of(const Call& call, const std::vector<Room>& rooms, uint64_t seed);

// Fills memory from a seed with bytes that favour the extremes (0, 1, 127, 128, 129, 254, 255) as well as the whole range.
void fill(uint8_t* p, size_t size, uint64_t seed);

}  // namespace harness
