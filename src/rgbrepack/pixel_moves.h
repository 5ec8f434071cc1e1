// SPDX-License-Identifier: MIT
// Whole pixels moved from one byte layout to another. All N pixels are read before the first is written.
#pragma once

#include "core/kernel.h"

#include "rgbrepack/pixel_moves_portable.h"
#if ZIV_HAS_ADVANCED_SIMD
#include "rgbrepack/pixel_moves_neon.h"
#endif
#if ZIV_HAS_SSE4_2
#include "rgbrepack/pixel_moves_x86.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack {

// Pixels that are moved in one step where there are as many.
inline constexpr int widest_pixels = ZIV_HAS_ADVANCED_SIMD ? 32 : widest;

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack
