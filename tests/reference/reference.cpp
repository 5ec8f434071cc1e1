// SPDX-License-Identifier: MIT
#include "reference/reference.h"

namespace reference {

const zivcolor::KernelTable kernels = {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) name,
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
};

}  // namespace reference
