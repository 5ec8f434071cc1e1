// SPDX-License-Identifier: MIT
// Quotients by way of reciprocals: 65536 / i, and the numbers that it multiplies.
#pragma once

#include "core/kernel.h"

#include "hsl/quotients_portable.h"
#if ZIV_HAS_ADVANCED_SIMD
#include "hsl/quotients_neon.h"
#endif
#if ZIV_HAS_SSE4_2
#include "hsl/quotients_x86.h"
#endif
