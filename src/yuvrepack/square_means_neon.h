// SPDX-License-Identifier: MIT
// Means of 2 by 2 samples on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

template <>
ZIV_INLINE void store_square_means<16>(uint8_t* p, const uint8_t* upper, const uint8_t* lower) {
    const uint8x16x2_t above = vld2q_u8(upper), below = vld2q_u8(lower);
    uint8x8x2_t means;
    for (int k = 0; k < 2; k++) means.val[k] = vrshrn_n_u16(vpadalq_u8(vpaddlq_u8(above.val[k]), below.val[k]), 2);
    vst2_u8(p, means);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
