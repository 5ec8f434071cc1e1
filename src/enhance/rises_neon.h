// SPDX-License-Identifier: MIT
// What a table adds to each luma value, where that fits a byte: then luma is brightened by one look-up and one product of
// bytes. On Advanced SIMD, which looks up in 64 bytes at once.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET::enhance {

struct Rises {
    uint8x16x4_t of_64[4];
};

// Whether all of them fit. Differences wrap at 16 bits, as what is made of them does.
ZIV_INLINE bool find_rises(const int32_t* brightened, uint8_t (&rises)[256]) {
    uint32_t all = 0;
    for (uint32_t luma = 0; luma < 256; luma++) {
        const uint32_t rise = (static_cast<uint32_t>(brightened[luma]) - luma) & 0xFFFF;
        all |= rise;
        rises[luma] = static_cast<uint8_t>(rise);
    }
    return all < 256;
}
ZIV_INLINE Rises load_rises(const uint8_t (&rises)[256]) {
    return {{vld1q_u8_x4(rises), vld1q_u8_x4(rises + 64), vld1q_u8_x4(rises + 128), vld1q_u8_x4(rises + 192)}};
}

// luma + (share * rise >> 8) at most 8 bits, one share of at most 255 for each pair of columns.
ZIV_INLINE U8<16> brighten(U8<16> luma, U16<16> share, const Rises& rises) {
    const uint8x16_t y = (uint8x16_t)luma, pairs = vtrn1q_u8((uint8x16_t)share, (uint8x16_t)share);
    // A look-up gives 0 outside of its 64.
    const uint8x16_t lower = vorrq_u8(vqtbl4q_u8(rises.of_64[0], y), vqtbl4q_u8(rises.of_64[1], vsubq_u8(y, vdupq_n_u8(64))));
    const uint8x16_t upper = vorrq_u8(vqtbl4q_u8(rises.of_64[2], vsubq_u8(y, vdupq_n_u8(128))),
                                      vqtbl4q_u8(rises.of_64[3], vsubq_u8(y, vdupq_n_u8(192))));
    const uint8x16_t rise = vorrq_u8(lower, upper);
    const uint16x8_t lo = vmull_u8(vget_low_u8(rise), vget_low_u8(pairs)), hi = vmull_high_u8(rise, pairs);
    return (U8<16>)vaddq_u8(y, vuzp2q_u8(vreinterpretq_u8_u16(lo), vreinterpretq_u8_u16(hi)));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::enhance
