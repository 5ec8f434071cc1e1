// SPDX-License-Identifier: MIT
// Whole pixels moved from one byte layout to another, in plain lane arithmetic.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack {

// Byte 0 and byte 2 of three exchanged: every byte stays or comes from two places on or back.
template <int N, int k>
ZIV_INLINE U8<N> every_third_byte() {
    return load<N>(byte_table<N>([](int n) { return n % 3 == k ? 255 : 0; }));
}
template <int N>
ZIV_INLINE void reverse_pixels3(uint8_t* dst, const uint8_t* src) {
    static_assert(N == 16);
    const U8<N> third[3] = {every_third_byte<N, 0>(), every_third_byte<N, 1>(), every_third_byte<N, 2>()}, zero{};
    const U8<N> first = load<N>(src), middle = load<N>(src + 16), last = load<N>(src + 32);
    const U8<N> before_first =
        __builtin_shufflevector(zero, first, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29);
    const U8<N> behind_last = __builtin_shufflevector(last, zero, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17);
    const U8<N> behind_first = load<N>(src + 2), before_middle = load<N>(src + 14), behind_middle = load<N>(src + 18);
    const U8<N> before_last = load<N>(src + 30);
    store(dst, (first & third[1]) | (behind_first & third[0]) | (before_first & third[2]));
    store(dst + 16, (middle & third[0]) | (behind_middle & third[2]) | (before_middle & third[1]));
    store(dst + 32, (last & third[2]) | (behind_last & third[1]) | (before_last & third[0]));
}

// The bytes 2, 1 and 0 of four.
template <int N>
ZIV_INLINE void reverse_pixels4_to_3(uint8_t* dst, const uint8_t* src) {
    U64<N> pairs[4];
    for (int i = 0; i < 4; i++) {
        const U32<N> v = (U32<N>)load<N>(src + N * i), outer = v & 0x00FF00FF;
        const U64<N> reversed = (U64<N>)((outer << 16) | (outer >> 16) | (v & 0x0000FF00));
        pairs[i] = (reversed & 0xFFFFFF) | ((reversed >> 8) & 0xFFFFFF000000);
    }
    store_six_bytes<N>(dst, pairs[0], pairs[1], pairs[2], pairs[3]);
}

// A byte of 255, and the bytes of three.
template <int N>
ZIV_INLINE void prefix_pixels3(uint8_t* dst, const uint8_t* src) {
    static_assert(N == 16);
    uint64_t lanes[8];
    for (int i = 0; i < 7; i++) __builtin_memcpy(&lanes[i], src + 6 * i, 8);
    __builtin_memcpy(&lanes[7], src + 40, 8);
    lanes[7] >>= 16;
    U8<N> quads[4];
    for (int i = 0; i < 4; i++) {
        const U64<N> v = {lanes[2 * i], lanes[2 * i + 1]};
        quads[i] = (U8<N>)(((v << 8) & 0x00000000FFFFFF00) | ((v << 16) & 0xFFFFFF0000000000) | 0x000000FF000000FF);
    }
    for (int i = 0; i < 4; i++) store(dst + N * i, quads[i]);
}

// Byte k of a written pixel is byte from[k] of the pixel read, which has `in` bytes; `opaque_alpha` stands for a byte of 255.
inline constexpr int opaque_alpha = -1;
template <int N, int in, int... from>
struct PixelMove {
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from), place[out] = {from...};
        if constexpr (out == 3) {
            static_assert(place[0] == 2 && place[1] == 1 && place[2] == 0);
            if constexpr (in == 3) reverse_pixels3<N>(dst, src);
            else reverse_pixels4_to_3<N>(dst, src);
        } else {
            static_assert(in == 3 && place[0] == opaque_alpha && place[1] + place[3] == 2 && place[2] == 1);
            if constexpr (place[1] == 0) {
                prefix_pixels3<N>(dst, src);
            } else {
                const Channels<N, 3> v = load3<N>(src);
                store4<N>(dst, U8<N>{} + uint8_t{255}, v.c[2], v.c[1], v.c[0]);
            }
        }
    }
};
template <int N, int in, int... from>
ZIV_INLINE void move_pixels(uint8_t* dst, const uint8_t* src) {
    PixelMove<N, in, from...>::move(dst, src);
}

// Pixels of 3 bytes into little-endian words: the top 5 bits of byte `high`, the top 6 of byte 1, the top 5 of byte `low`.
template <int N, int high, int low>
struct PixelPack565 {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        const Channels<N, 3> v = load3<N>(src);
        store2<N>(dst, shift_right_insert<3>(v.c[1] << 3, v.c[low]), shift_right_insert<5>(v.c[high], v.c[1]));
    }
};
template <int N, int high, int low>
ZIV_INLINE void pack_pixels_565(uint8_t* dst, const uint8_t* src) {
    PixelPack565<N, high, low>::pack(dst, src);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack
