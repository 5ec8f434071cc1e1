// SPDX-License-Identifier: MIT
// How the reference touches pixels: every byte goes through get() and put(), so that a test can ask which bytes a conversion
// may read and write.
#pragma once

#include <cstdint>

namespace reference {

// Told of every access while it is installed.
struct Trace {
    virtual ~Trace() = default;
    virtual void read(const uint8_t* p) = 0;
    virtual void written(const uint8_t* p) = 0;
};
inline thread_local Trace* g_trace = nullptr;

inline int get(const uint8_t* p) {
    if (g_trace) [[unlikely]]
        g_trace->read(p);
    return *p;
}

// Stores the low 8 bits.
inline void put(uint8_t* p, int64_t value) {
    if (g_trace) [[unlikely]]
        g_trace->written(p);
    *p = static_cast<uint8_t>(value & 0xFF);
}

}  // namespace reference
