#include "core/targets.h"

#include "built_targets.h"

namespace zivcolor {

#define ZIVCOLOR_TARGET_TABLE(target) \
    namespace target {                \
    extern const KernelTable kernels; \
    }
ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_TARGET_TABLE)
#undef ZIVCOLOR_TARGET_TABLE

namespace {

// The builtins also ask the operating system which vector state it saves.
#if defined(__x86_64__)
[[maybe_unused]] bool runs_avx512() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512vbmi");
}
[[maybe_unused]] bool runs_avx2() { return __builtin_cpu_supports("avx2"); }
[[maybe_unused]] bool runs_sse4() { return __builtin_cpu_supports("sse4.2"); }
#endif
[[maybe_unused]] bool runs_neon() { return true; }
[[maybe_unused]] bool runs_portable() { return true; }

#define ZIVCOLOR_TARGET_ROW(target) {#target, runs_##target, &target::kernels},
const Target g_targets[] = {ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_TARGET_ROW)};
#undef ZIVCOLOR_TARGET_ROW

const KernelTable& choose() {
    const TargetList built = built_targets();
    for (const Target& target : built)
        if (target.runs_here()) return *target.kernels;
    return *(built.past - 1)->kernels;
}

}  // namespace

TargetList built_targets() { return {g_targets, g_targets + sizeof g_targets / sizeof *g_targets}; }

const KernelTable& chosen_kernels() {
    static const KernelTable& chosen = choose();
    return chosen;
}

}  // namespace zivcolor
