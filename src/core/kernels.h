// SPDX-License-Identifier: MIT
// The kernels of a target, declared and tabled from the kernel list.
#pragma once

#include "core/image.h"
#include "core/kernel_list.h"

namespace zivcolor {

using OpaqueConversion = int32_t(const Image* srcImg, const Image* dstImg);
using AlphaConversion = int32_t(const Image* srcImg, const Image* dstImg, uint8_t alpha);

// A pointer to each.
struct KernelTable {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) alpha##Conversion* name;
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) result(*name) parameters;
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
    ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
};

}  // namespace zivcolor

// Declares the kernels of a part in the namespace of a target and a family. LISTS is the name of the part's lists.
#define ZIVCOLOR_DECLARE_CONVERSION(name, source, destination, alpha, dispatch, task, tile) alpha##Conversion name;
#define ZIVCOLOR_DECLARE_ROUTINE(result, name, parameters, arguments) result name parameters;
#define ZIVCOLOR_DECLARE_KERNELS(target, family, LISTS)                                                               \
    namespace zivcolor::target::family {                                                                              \
    ZIVCOLOR_##LISTS##_CONVERSIONS(ZIVCOLOR_DECLARE_CONVERSION) ZIVCOLOR_##LISTS##_ROUTINES(ZIVCOLOR_DECLARE_ROUTINE) \
    }
