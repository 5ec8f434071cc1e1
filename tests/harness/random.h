// SPDX-License-Identifier: MIT
// A small generator for the choices of a test: the same numbers on every machine.
#pragma once

#include <stdint.h>

namespace harness {

// The seed of the whole run; printed by main().
inline constexpr uint64_t base_seed = 0x7A69766332303236;

struct Random {
    uint64_t state;
    uint32_t next() {
        state = state * 6364136223846793005u + 1442695040888963407u;
        uint64_t x = state;
        x ^= x >> 33;
        x *= 0xFF51AFD7ED558CCDu;
        return static_cast<uint32_t>(x >> 32);
    }
    int below(int bound) { return static_cast<int>(next() % static_cast<uint32_t>(bound)); }
    int between(int low, int high) { return low + below(high - low + 1); }
};

}  // namespace harness
