// SPDX-License-Identifier: MIT
// The float set of RGB to YUV: 0.299 R + 0.587 G + 0.114 B, -0.1678 R - 0.3313 G + 0.5 B + 128 and
// 0.5 R - 0.4187 G - 0.0813 B + 128, in binary32 in the blocks and in binary64 in the tail.
#pragma once

#include "rgb2yuv/float_sums.h"
#include "rgb2yuv/luma_chroma.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

inline constexpr FloatWeights weights_y{0.299f, 0.587f, 0.114f};
inline constexpr FloatWeights weights_u{-0.1678f, -0.3313f, 0.5f}, weights_v{0.5f, -0.4187f, -0.0813f};

inline constexpr ApproximateWeights approximate_y{-2748, -27263, -87, 58, -23, -51, 21};
inline constexpr ApproximateWeights approximate_u{-16384, 24269, -128, 70, -29, -10, 22};
inline constexpr ApproximateWeights approximate_v{48, -256, -111, -1, -128, 107, 16};

// ---- One pixel of the tail ----

// Luma is the binary64 sum rounded to binary32, then truncated: it lies on a whole number where the exact sum does,
// and so is the exact sum truncated.
ZIV_INLINE int tail_y(Pixel p) { return (299 * p.r + 587 * p.g + 114 * p.b) / 1000; }
ZIV_INLINE int tail_u(Pixel p) { return static_cast<int>(p.b * 0.5 + (p.g * -0.3313 - p.r * 0.1678)) + 128; }
ZIV_INLINE int tail_v(Pixel p) { return static_cast<int>((p.r * 0.5 - p.g * 0.4187) - p.b * 0.0813) + 128; }

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
