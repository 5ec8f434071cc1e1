// SPDX-License-Identifier: MIT
// The function table of one target; built once for each. The build defines ZIVCOLOR_<part> as the target whose kernels of that
// part it takes: itself, or one that it extends.
#include "core/kernels.h"

#define ZIVCOLOR_PART(part, family, LISTS) ZIVCOLOR_DECLARE_KERNELS(ZIVCOLOR_##part, family, LISTS)
ZIVCOLOR_PARTS(ZIVCOLOR_PART)
#undef ZIVCOLOR_PART

namespace zivcolor::ZIVCOLOR_TARGET {

namespace taken {
#define ZIVCOLOR_PART(part, family, LISTS) using namespace zivcolor::ZIVCOLOR_##part::family;
ZIVCOLOR_PARTS(ZIVCOLOR_PART)
#undef ZIVCOLOR_PART
}  // namespace taken

extern const KernelTable kernels;
const KernelTable kernels = {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) taken::name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) taken::name,
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
};

}  // namespace zivcolor::ZIVCOLOR_TARGET
