// SPDX-License-Identifier: MIT
// Packed 4:2:2 to four-byte pixels in lanes of 16 bits, where no two rows share chroma.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// Whether the target does well by them.
inline constexpr bool packed_by_words = ZIV_HAS_SSE4_2;

// Lanes 2 i and 2 i + 1 exchanged.
template <int N>
ZIV_INLINE S16<N> swap_lanes(S16<N> v) {
    return (S16<N>)((U32<N>)v << 16 | (U32<N>)v >> 16);
}

// N bytes Y0 U Y1 V, N / 4 pairs in an order that is the target's own: the lanes Y0 Y1, Y1 Y0, and u v, centred and times 256.
template <int N>
struct PackedWords {
    S16<N> luma, swapped, chroma;
};
template <int N>
ZIV_INLINE PackedWords<N> split_packed_words(S16<N> v) {
    const S16<N> luma = v & constant<N>(255);
    return {luma, swap_lanes<N>(luma), (v & constant<N>(-256)) ^ constant<N>(-32768)};
}

// The channels of the same pixels, each a lane and to be saturated: that of u in the first and that of v in the second pixel of
// a pair, the other way round, and green in both.
template <int N>
struct PackedSums {
    S16<N> straight, crossed, green;
};

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb

#if ZIV_HAS_SSE4_2
#include "yuv2rgb/packed_words_x86.h"
#else
#include "yuv2rgb/packed_words_portable.h"
#endif
