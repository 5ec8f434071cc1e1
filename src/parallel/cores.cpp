// SPDX-License-Identifier: MIT
#include "parallel/cores.h"

#include <algorithm>
#include <thread>

#if defined(__linux__)
#include <sched.h>
#endif

namespace zivcolor {

int32_t usable_cores() {
#if defined(__linux__)
    cpu_set_t cpus;
    if (sched_getaffinity(0, sizeof cpus, &cpus) == 0) return std::max(CPU_COUNT(&cpus), 1);
#endif
    return std::max(static_cast<int32_t>(std::thread::hardware_concurrency()), 1);
}

}  // namespace zivcolor
