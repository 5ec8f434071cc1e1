// SPDX-License-Identifier: MIT
// Luma plus a term of its chroma pair: clamp(Y + d, 0, 255) for N pixels and N / 2 pairs, |d| <= 254.
#pragma once

#include "core/kernel.h"

#include "yuv2rgb/pixel_terms_portable.h"
#if ZIV_HAS_ADVANCED_SIMD
#include "yuv2rgb/pixel_terms_neon.h"
#endif
#if ZIV_HAS_SSE4_2
#include "yuv2rgb/pixel_terms_x86.h"
#endif
