#include "core/capabilities.h"

#if defined(__aarch64__) && defined(__linux__) && !defined(__ARM_FEATURE_DOTPROD)
#include <sys/auxv.h>
#elif defined(__aarch64__) && defined(__APPLE__) && !defined(__ARM_FEATURE_DOTPROD)
#include <stddef.h>
#include <sys/sysctl.h>
#endif

namespace zivcolor {

#if defined(__x86_64__)

// The builtins also ask the operating system which vector state it saves.
bool cpu_has_SSE4_2() { return __builtin_cpu_supports("sse4.2"); }
bool cpu_has_AVX2() { return __builtin_cpu_supports("avx2"); }
bool cpu_has_AVX512_VBMI() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512vbmi");
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
