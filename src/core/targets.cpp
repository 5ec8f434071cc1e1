// SPDX-License-Identifier: MIT
#include "core/targets.h"

#include "core/capabilities.h"

#include "built_targets.h"

namespace zivcolor {

#define ZIVCOLOR_TARGET_TABLE(target, condition) \
    namespace target {                           \
    extern const KernelTable kernels;            \
    }
ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_TARGET_TABLE)
#undef ZIVCOLOR_TARGET_TABLE

namespace {

#define ZIVCOLOR_TARGET_ROW(target, condition) {#target, [] { return condition; }, &target::kernels},
const Target g_targets[] = {ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_TARGET_ROW)};
#undef ZIVCOLOR_TARGET_ROW

}  // namespace

TargetList built_targets() { return {g_targets, g_targets + sizeof g_targets / sizeof *g_targets}; }

const KernelTable& best_kernels() {
    const TargetList built = built_targets();
    for (const Target& target : built)
        if (target.runs_here()) return *target.kernels;
    return *(built.past - 1)->kernels;
}

const KernelTable& chosen_kernels() {
    static const KernelTable& chosen = best_kernels();
    return chosen;
}

}  // namespace zivcolor
