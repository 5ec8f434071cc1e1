// SPDX-License-Identifier: MIT
// Whole pixels moved from one byte layout to another, on Advanced SIMD.
#pragma once

namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack {

template <int in, int... from>
struct PixelMove<16, in, from...> {
    template <int place>
    ZIV_INLINE static U8<16> channel(const Channels<16, in>& v) {
        if constexpr (place == opaque_alpha) return U8<16>{} + uint8_t{255};
        else return v.c[place];
    }
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        Channels<16, in> v;
        if constexpr (in == 3) v = load3<16>(src);
        else v = load4<16>(src);
        if constexpr (sizeof...(from) == 3) vst3q_u8(dst, (uint8x16x3_t{{(uint8x16_t)channel<from>(v)...}}));
        else vst4q_u8(dst, (uint8x16x4_t{{(uint8x16_t)channel<from>(v)...}}));
    }
};

// 32 pixels at a time, both halves loaded first: cores that start instructions in order would wait for each load. In assembly,
// as compilers copy every register between the loads and the stores. %0 and %1 are the destination, %2 and %3 the source.
template <int in, int out>
struct PixelHalves {
    using From = const uint8_t[16 * in];
    using To = uint8_t[16 * out];
};
#define ZIV_MOVE_PIXEL_HALVES(in, out, instructions)                                                       \
    using Halves = PixelHalves<in, out>;                                                                   \
    asm(instructions                                                                                       \
        : "=Q"(*reinterpret_cast<Halves::To*>(dst)), "=Q"(*reinterpret_cast<Halves::To*>(dst + 16 * out))  \
        : "Q"(*reinterpret_cast<Halves::From*>(src)), "Q"(*reinterpret_cast<Halves::From*>(src + 16 * in)) \
        : "v16", "v17", "v18", "v19", "v20", "v21", "v22", "v23", "v24", "v25", "v26", "v27")

template <>
struct PixelMove<32, 3, 2, 1, 0> {
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        ZIV_MOVE_PIXEL_HALVES(3, 3,
                              "ld3 {v16.16b, v17.16b, v18.16b}, %2\n\t"
                              "ld3 {v22.16b, v23.16b, v24.16b}, %3\n\t"
                              "mov v19.16b, v17.16b\n\t"
                              "mov v20.16b, v16.16b\n\t"
                              "mov v25.16b, v23.16b\n\t"
                              "mov v26.16b, v22.16b\n\t"
                              "st3 {v18.16b, v19.16b, v20.16b}, %0\n\t"
                              "st3 {v24.16b, v25.16b, v26.16b}, %1");
    }
};
template <>
struct PixelMove<32, 4, 2, 1, 0> {
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        ZIV_MOVE_PIXEL_HALVES(4, 3,
                              "ld4 {v16.16b, v17.16b, v18.16b, v19.16b}, %2\n\t"
                              "ld4 {v22.16b, v23.16b, v24.16b, v25.16b}, %3\n\t"
                              "mov v19.16b, v17.16b\n\t"
                              "mov v20.16b, v16.16b\n\t"
                              "mov v25.16b, v23.16b\n\t"
                              "mov v26.16b, v22.16b\n\t"
                              "st3 {v18.16b, v19.16b, v20.16b}, %0\n\t"
                              "st3 {v24.16b, v25.16b, v26.16b}, %1");
    }
};
template <>
struct PixelMove<32, 3, opaque_alpha, 0, 1, 2> {
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        ZIV_MOVE_PIXEL_HALVES(3, 4,
                              "ld3 {v17.16b, v18.16b, v19.16b}, %2\n\t"
                              "movi v16.16b, #255\n\t"
                              "ld3 {v23.16b, v24.16b, v25.16b}, %3\n\t"
                              "movi v22.16b, #255\n\t"
                              "st4 {v16.16b, v17.16b, v18.16b, v19.16b}, %0\n\t"
                              "st4 {v22.16b, v23.16b, v24.16b, v25.16b}, %1");
    }
};
template <>
struct PixelMove<32, 3, opaque_alpha, 2, 1, 0> {
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        ZIV_MOVE_PIXEL_HALVES(3, 4,
                              "ld3 {v16.16b, v17.16b, v18.16b}, %2\n\t"
                              "ld3 {v22.16b, v23.16b, v24.16b}, %3\n\t"
                              "mov v19.16b, v17.16b\n\t"
                              "mov v20.16b, v16.16b\n\t"
                              "movi v17.16b, #255\n\t"
                              "mov v25.16b, v23.16b\n\t"
                              "mov v26.16b, v22.16b\n\t"
                              "movi v23.16b, #255\n\t"
                              "st4 {v17.16b, v18.16b, v19.16b, v20.16b}, %0\n\t"
                              "st4 {v23.16b, v24.16b, v25.16b, v26.16b}, %1");
    }
};
#undef ZIV_MOVE_PIXEL_HALVES

// The words of 16 pixels, their low and their high bytes apart.
struct Words565 {
    uint8x16_t low, high;
};
template <int high, int low>
ZIV_INLINE Words565 words_565(const uint8x16x3_t& v) {
    return {vsriq_n_u8(vshlq_n_u8(v.val[1], 3), v.val[low], 3), vsriq_n_u8(v.val[high], v.val[1], 5)};
}
template <int high, int low>
struct PixelPack565<16, high, low> {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        Words565 words = words_565<high, low>(vld3q_u8(src));
        store_interleaved(dst, words.low, words.high);
    }
};
template <int high, int low>
struct PixelPack565<32, high, low> {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        uint8x16x3_t first = vld3q_u8(src), second = vld3q_u8(src + 48);
        Words565 words0 = words_565<high, low>(first), words1 = words_565<high, low>(second);
        store_interleaved<0>(dst, words0.low, words0.high);
        store_interleaved<1>(dst + 32, words1.low, words1.high);
    }
};

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack
