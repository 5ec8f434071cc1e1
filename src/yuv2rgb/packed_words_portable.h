// SPDX-License-Identifier: MIT
// Packed 4:2:2 to four-byte pixels in plain code.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuv2rgb {

// Loads them in their order.
template <int N>
ZIV_INLINE PackedWords<N> load_packed_words(const uint8_t* p) {
    return split_packed_words<N>((S16<N>)load<N>(p));
}

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
