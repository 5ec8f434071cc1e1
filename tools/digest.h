// SPDX-License-Identifier: MIT
// Bytes from a seed, and a digest of bytes: the same on every machine.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace tool {

// Fills memory with bytes that favour the extremes (0, 1, 127, 128, 129, 254, 255) as well as the whole range.
void fill(uint8_t* p, size_t size, uint64_t seed);

// Of a function's memory and of what it returned.
uint32_t digest(const uint8_t* p, size_t size, int64_t returned);

}  // namespace tool
