// SPDX-License-Identifier: MIT
// The targets that the kernels are built for, and the table of kernels of each.
#pragma once

#include "core/kernels.h"

namespace zivcolor {

struct Target {
    const char* name;
    bool (*runs_here)();  // by the CPU and the state that the operating system saves
    const KernelTable* kernels;
};

// The targets of this build, best first. The last one runs on every CPU of the architecture.
struct TargetList {
    const Target* first;
    const Target* past;
    const Target* begin() const { return first; }
    const Target* end() const { return past; }
};
TargetList built_targets();

// The kernels of the best target that runs here; if none does, those of the last. Asks the CPU at every call.
const KernelTable& best_kernels();
// The same, chosen once, at the first call.
const KernelTable& chosen_kernels();

}  // namespace zivcolor
