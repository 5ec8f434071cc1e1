// Packed 4:2:2 to four-byte pixels in lanes of 16 bits, where no two rows share chroma.
#pragma once

#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// Whether the target does well by the terms of this group.
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
template <int N>
ZIV_INLINE PackedWords<N> load_packed_words(const uint8_t* p) {
    return split_packed_words<N>((S16<N>)load<N>(p));
}

// The channels of the same pixels, each a lane and to be saturated: that of u in the first and that of v in the second pixel of
// a pair, the other way round, and green in both.
template <int N>
struct PackedSums {
    S16<N> straight, crossed, green;
};
// Writes N pixels: the channel of u in byte u_byte of 0 and 2, that of v in the other.
template <int N, int u_byte>
ZIV_INLINE void store_packed_sums(uint8_t* p, const PackedSums<N> (&sums)[2], U8<N> alpha) {
    Channels<N, 4> v;
    v.c[3] = alpha;
    for (int i = 0; i < N; i++) {
        const PackedSums<N>& s = sums[i / (N / 2)];
        const int lane = i % (N / 2), pair = lane & ~1;
        const int of_u = lane == pair ? s.straight[pair] : s.crossed[pair];
        const int of_v = lane == pair ? s.crossed[pair + 1] : s.straight[pair + 1];
        const int channels[3] = {u_byte == 0 ? of_u : of_v, s.green[lane], u_byte == 0 ? of_v : of_u};
        for (int k = 0; k < 3; k++)
            v.c[k][i] = static_cast<uint8_t>(channels[k] < 0 ? 0 : channels[k] > 255 ? 255 : channels[k]);
    }
    store4<N>(p, v.c[0], v.c[1], v.c[2], v.c[3]);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb

#if ZIV_HAS_SSE4_2
#include "yuv2rgb/packed_words_x86.h"
#endif
