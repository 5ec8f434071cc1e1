// SPDX-License-Identifier: MIT
// Terms of four-byte pixels straight from pairs of bytes, where bytes move anywhere in one step.
#pragma once

#include "yuv2rgb/pixel_terms.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// Whether the target does well by them.
inline constexpr bool terms_by_bytes = ZIV_HAS_AVX512_VBMI;

// The signed bytes a, b of N / 2 pairs as 16-bit lanes, in an order that is the target's own, and products of these.
template <int N>
struct OuterLanes {
    S16<N> part[2];
};
template <int N>
ZIV_INLINE OuterLanes<N> outer_lanes_times_4(U8<N> pairs) {
    return {{weigh_signed_bytes<N>(pairs, 4, 0), weigh_signed_bytes<N>(pairs, 0, 4)}};
}
template <int N>
ZIV_INLINE OuterLanes<N> multiply_outer_q15(const OuterLanes<N>& lanes, int weight_a, int weight_b) {
    return {{multiply_q15<N>(lanes.part[0], weight_a), multiply_q15<N>(lanes.part[1], weight_b)}};
}

// The terms of channels 0 and 2 from the products of b and of a, those of channel 1 a pair a lane in the order of the pairs.
template <int N>
ZIV_INLINE PixelTerms4<N> pixel_terms(const OuterLanes<N>& outer, S16<N> middle, uint8_t alpha) {
    const auto arranged = [](S16<N> v) ZIV_INLINE_BODY { return (S16<N>)arrange_pairs<N, 4>((U8<N>)v); };
    return pixel_terms<N>(arranged(outer.part[1]), arranged(middle), arranged(outer.part[0]), alpha);
}

// Of the lanes with a bit in `lanes`, the lowest for lane 0, those that are not the word of the table that their bits 10 to 14
// number.
template <int N>
ZIV_INLINE uint32_t unlisted_lanes(uint32_t lanes, U16<N> words, const uint16_t (&table)[32]) {
    for (int i = 0; i < N / 2; i++)
        if (table[words[i] >> 10 & 31] == words[i]) lanes &= ~(uint32_t{1} << i);
    return lanes;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb

#if ZIV_HAS_ADVANCED_SIMD
#include "yuv2rgb/byte_pairs_neon.h"
#endif
#if ZIV_HAS_AVX512_VBMI
#include "yuv2rgb/byte_pairs_x86.h"
#endif
