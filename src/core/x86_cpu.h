// SPDX-License-Identifier: MIT
// What an x86 CPU and the operating system on it say of themselves. A test stands in for this file.
#pragma once

#include <cpuid.h>

namespace zivcolor {

// Asked of the CPU itself: what the compiler's builtin looks into is not to be had in every run-time library.
struct Leaf {
    unsigned a = 0, b = 0, c = 0, d = 0;  // all zero where the CPU has no such leaf
};

inline Leaf cpuid(unsigned number, unsigned part = 0) {
    Leaf leaf;
    if (!__get_cpuid_count(number, part, &leaf.a, &leaf.b, &leaf.c, &leaf.d)) return {};
    return leaf;
}

// The parts of the vector state that the operating system saves. Not to be asked where leaf 1 does not say that it can be.
inline unsigned saved_state() {
    unsigned low, high;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

}  // namespace zivcolor
