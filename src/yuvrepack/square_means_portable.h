// SPDX-License-Identifier: MIT
// Means of 2 by 2 samples in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack {

// Two rows of N pairs to one of N / 2: (a + b + c + d + 2) >> 2 over each 2 by 2 samples of a channel.
template <int N>
ZIV_INLINE void store_square_means(uint8_t* p, const uint8_t* upper, const uint8_t* lower) {
    static_assert(N == 16);
    // Of a channel's two sums in a 32-bit lane the mean in the lower 16 bits; what stands above them is no matter.
    const auto mean = [](U16<N> sums)
                          ZIV_INLINE_BODY { return (U16<N>)(((U32<N>)sums + ((U32<N>)sums >> 16) + 2) >> 2) & 0xFF; };
    U16<N> means[2];
    for (int k = 0; k < 2; k++) {
        const U8<N> a = load<N>(upper + N * k), b = load<N>(lower + N * k);
        means[k] = mean(even_bytes<N>(a) + even_bytes<N>(b)) | mean(odd_bytes<N>(a) + odd_bytes<N>(b)) << 8;
    }
    store(p, (U8<N>)__builtin_shufflevector(means[0], means[1], 0, 2, 4, 6, 8, 10, 12, 14));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::yuvrepack
