// SPDX-License-Identifier: MIT
// Two rows of chroma pairs made one: the mean of each 2 by 2 samples of a channel.
#pragma once

#include "core/kernel.h"

#include "yuvrepack/square_means_portable.h"
#if ZIV_HAS_ADVANCED_SIMD
#include "yuvrepack/square_means_neon.h"
#endif
#if ZIV_HAS_SSE4_2
#include "yuvrepack/square_means_x86.h"
#endif
