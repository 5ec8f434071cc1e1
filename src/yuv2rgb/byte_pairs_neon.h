// SPDX-License-Identifier: MIT
// Signed bytes of pairs as 16-bit lanes on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

template <>
ZIV_INLINE OuterLanes<16> outer_lanes_times_4<16>(U8<16> pairs) {
    const S16<16> both = (S16<16>)pairs;
    return {{(both << 8) >> 6, (both & constant<16>(-256)) >> 6}};
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb
