// SPDX-License-Identifier: MIT
// What a CPU may be capable of beyond plain C++. A target is a set of these, told in cmake/targets.cmake; the build defines
// ZIV_HAS_<CAPABILITY> as 1 or 0 for each while it compiles the kernels of a target, and nothing else tells targets apart.
#pragma once

#include <stdint.h>

namespace zivcolor {

// Whether the CPU has it and the operating system saves the state that it needs.
bool cpu_has_SSE4_2();
bool cpu_has_AVX2();
bool cpu_has_AVX512_VBMI();  // with F, BW and VL
bool cpu_has_ADVANCED_SIMD();
bool cpu_has_DOT_PRODUCT();  // of bytes, ARMv8.2

// The bytes of the last cache, or 0 where the CPU doesn't tell. x86-64 only.
int64_t last_cache_bytes();

}  // namespace zivcolor
