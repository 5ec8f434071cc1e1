// SPDX-License-Identifier: MIT
// An independent scalar model of every kernel: plain loops over bytes, sharing no code with the library. It is a table like
// that of a target, so that tests can set one beside the other.
#pragma once

#include "core/targets.h"

namespace reference {

using zivcolor::Image;
using zivcolor::MaskedImage;

#define ZIVCOLOR_DECLARE_Opaque(name) int32_t name(const Image* srcImg, const Image* dstImg);
#define ZIVCOLOR_DECLARE_Alpha(name) int32_t name(const Image* srcImg, const Image* dstImg, uint8_t alpha);
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) ZIVCOLOR_DECLARE_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) result name parameters;
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_DECLARE_Alpha
#undef ZIVCOLOR_DECLARE_Opaque

extern const zivcolor::KernelTable kernels;

}  // namespace reference
