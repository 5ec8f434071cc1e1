// SPDX-License-Identifier: MIT
// How the library's own code reaches a kernel: by the table of the best target that runs here. It never goes by an exported
// name, where an application's function of that name could stand in for the library's.
#pragma once

#include "core/targets.h"

#include "built_targets.h"

#if defined(ZIVCOLOR_ONLY_TARGET)

#define ZIVCOLOR_PART(part, family, LISTS) ZIVCOLOR_DECLARE_KERNELS(ZIVCOLOR_ONLY_TARGET, family, LISTS)
ZIVCOLOR_PARTS(ZIVCOLOR_PART)
#undef ZIVCOLOR_PART

namespace zivcolor {

namespace only_target {
#define ZIVCOLOR_PART(part, family, LISTS) using namespace zivcolor::ZIVCOLOR_ONLY_TARGET::family;
ZIVCOLOR_PARTS(ZIVCOLOR_PART)
#undef ZIVCOLOR_PART
}  // namespace only_target

// Known to the compiler, so that it calls the kernels directly.
inline constexpr KernelTable only_kernels = {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) only_target::name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) only_target::name,
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
};
constexpr const KernelTable& kernels_here() { return only_kernels; }

}  // namespace zivcolor

#else

namespace zivcolor {

inline const KernelTable& kernels_here() { return chosen_kernels(); }

}  // namespace zivcolor

#endif
