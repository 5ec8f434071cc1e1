// SPDX-License-Identifier: MIT
#include "core/capabilities.h"

#if defined(__x86_64__)
#include "core/x86_cpu.h"
#elif defined(__aarch64__) && defined(__linux__) && !defined(__ARM_FEATURE_DOTPROD)
#include <sys/auxv.h>
#elif defined(__aarch64__) && defined(__APPLE__) && !defined(__ARM_FEATURE_DOTPROD)
#include <stddef.h>
#include <sys/sysctl.h>
#endif

namespace zivcolor {

#if defined(__x86_64__)

namespace {

constexpr bool has_bit(unsigned word, int bit) { return (word >> bit & 1) != 0; }

constexpr unsigned ymm_state = 0x06, zmm_state = 0xE6;

// Whether the operating system saves all these parts of the vector state.
bool saves(unsigned state) {
    constexpr int os_uses_xsave = 27;
    return has_bit(cpuid(1).c, os_uses_xsave) && (saved_state() & state) == state;
}

}  // namespace

bool cpu_has_SSE4_2() { return has_bit(cpuid(1).c, 20); }

bool cpu_has_AVX2() { return saves(ymm_state) && has_bit(cpuid(1).c, 28) && has_bit(cpuid(7).b, 5); }

bool cpu_has_AVX512_VBMI() {
    const Leaf leaf = cpuid(7);
    const bool f = has_bit(leaf.b, 16), bw = has_bit(leaf.b, 30), vl = has_bit(leaf.b, 31), vbmi = has_bit(leaf.c, 1);
    return saves(zmm_state) && f && bw && vl && vbmi;
}

int64_t last_cache_bytes() {
    constexpr unsigned leaves[] = {0x4, 0x8000001D};  // Intel's and AMD's, of one form: a part for each cache
    int64_t bytes = 0;
    for (const unsigned caches : leaves)
        for (unsigned i = 0; i < 8; ++i) {
            const Leaf cache = cpuid(caches, i);
            if ((cache.a & 31) == 0) break;
            const int64_t ways = (cache.b >> 22) + 1, partitions = (cache.b >> 12 & 0x3FF) + 1, line = (cache.b & 0xFFF) + 1;
            const int64_t all = ways * partitions * line * (int64_t{cache.c} + 1);
            if (all > bytes) bytes = all;
        }
    return bytes;
}

#elif defined(__aarch64__)

bool cpu_has_ADVANCED_SIMD() { return true; }

bool cpu_has_DOT_PRODUCT() {
#if defined(__ARM_FEATURE_DOTPROD)
    return true;  // the compiler uses it wherever it likes
#elif defined(__linux__)
    constexpr unsigned long dot_product = 1 << 20;  // HWCAP_ASIMDDP, which older headers do not tell
    return (getauxval(AT_HWCAP) & dot_product) != 0;
#elif defined(__APPLE__)
    int present = 0;
    size_t size = sizeof present;
    return sysctlbyname("hw.optional.arm.FEAT_DotProd", &present, &size, nullptr, 0) == 0 && present != 0;
#else
    return false;
#endif
}

#endif

}  // namespace zivcolor
