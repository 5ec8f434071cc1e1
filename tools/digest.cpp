// SPDX-License-Identifier: MIT
#include "digest.h"

#include <string.h>

#include <algorithm>
#include <array>

namespace tool {

namespace {

// The numbers of splitmix64.
struct Numbers {
    uint64_t state;
    uint64_t next() {
        uint64_t x = state += 0x9E3779B97F4A7C15;
        x = (x ^ x >> 30) * 0xBF58476D1CE4E5B9;
        x = (x ^ x >> 27) * 0x94D049BB133111EB;
        return x ^ x >> 31;
    }
};

// Fills are runs of this pool, each from a place that the seed picks.
constexpr size_t pool_size = 1 << 16, longest_run = 1 << 13;

const std::array<uint8_t, pool_size>& pool() {
    static const std::array<uint8_t, pool_size> bytes = [] {
        constexpr uint8_t extremes[] = {0, 1, 127, 128, 129, 254, 255, 64};
        Numbers numbers{0x7A6976636F6C6F72};
        std::array<uint8_t, pool_size> all{};
        for (uint8_t& byte : all) {
            const uint64_t n = numbers.next();
            byte = (n & 0x300) != 0 ? static_cast<uint8_t>(n) : extremes[n & 7];
        }
        return all;
    }();
    return bytes;
}

}  // namespace

void fill(uint8_t* p, size_t size, uint64_t seed) {
    Numbers numbers{seed};
    while (size > 0) {
        const auto from = static_cast<size_t>(numbers.next() % (pool_size - longest_run));
        const size_t run = std::min(size, longest_run);
        memcpy(p, pool().data() + from, run);
        p += run;
        size -= run;
    }
}

uint32_t digest(const uint8_t* p, size_t size, int64_t returned) {
    // Two lanes, so that a word need not wait for the product of the one before.
    constexpr uint64_t factor = 0x9FB21C651E98DF25;
    uint64_t lanes[2] = {size, static_cast<uint64_t>(returned)};
    const auto take = [&](int lane, const uint8_t* at, size_t count) {
        uint64_t word = 0;
        memcpy(&word, at, count);  // machines are little-endian
        uint64_t& sum = lanes[lane];
        sum = (sum ^ word) * factor;
        sum ^= sum >> 32;
    };
    for (; size >= 16; p += 16, size -= 16) take(0, p, 8), take(1, p + 8, 8);
    for (; size > 0; p++, size--) take(0, p, 1);
    const uint64_t sum = (lanes[0] + (lanes[1] << 1 | lanes[1] >> 63)) * factor;
    return static_cast<uint32_t>(sum >> 32);
}

}  // namespace tool
