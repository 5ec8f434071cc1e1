// SPDX-License-Identifier: MIT
// Packed Y U V pixels from luma and pairs V U.
#pragma once

#include "core/kernel.h"

#include "yuvrepack/packed444_portable.h"
#if ZIV_HAS_ADVANCED_SIMD
#include "yuvrepack/packed444_neon.h"
#endif
#if ZIV_HAS_SSE4_2
#include "yuvrepack/packed444_x86.h"
#endif
