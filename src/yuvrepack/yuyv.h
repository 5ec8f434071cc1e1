// SPDX-License-Identifier: MIT
// Y0 U Y1 V from luma and two planes of chroma.
#pragma once

#include "core/kernel.h"

#include "yuvrepack/yuyv_portable.h"
#if ZIV_HAS_AVX2
#include "yuvrepack/yuyv_x86.h"
#endif
#if ZIV_HAS_ADVANCED_SIMD
#include "yuvrepack/yuyv_neon.h"
#endif
