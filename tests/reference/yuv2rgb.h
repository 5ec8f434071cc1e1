// SPDX-License-Identifier: MIT
// The coefficient sets of YUV to RGB. u and v are the chroma bytes less 128; results are not clamped.
#pragma once

#include "reference/conversion.h"

namespace reference {

struct Rgb {
    int red, green, blue;
};

// 15 bits of fraction, one rounding.
inline Rgb set_q15(int luma, int u, int v) {
    return {(32768 * luma + 45941 * v + 16384) >> 15, (32768 * luma - 11277 * u - 23401 * v + 16384) >> 15,
            (32768 * luma + 58065 * u + 16384) >> 15};
}

// 5 bits of fraction, every product floored by itself.
inline Rgb set_t5(int luma, int u, int v) {
    return {luma + ((45 * v) >> 5), luma - (((11 * u) >> 5) + ((23 * v) >> 5)), luma + ((57 * u) >> 5)};
}

// The same with half the weight of u in green.
inline Rgb set_t5h(int luma, int u, int v) {
    return {luma + ((45 * v) >> 5), luma - (((11 * u) >> 6) + ((23 * v) >> 5)), luma + ((57 * u) >> 5)};
}

// Only the fractional parts of the weights above 1 are products.
inline Rgb set_d5(int luma, int u, int v) {
    return {luma + (v + ((13 * v) >> 5)), luma - (((11 * u) >> 5) + ((23 * v) >> 5)), luma + (u + ((25 * u) >> 5))};
}

// 5 bits of fraction, one rounding.
inline Rgb set_r5(int luma, int u, int v) {
    return {(32 * luma + 45 * v + 16) >> 5, (32 * luma - (11 * u + 23 * v) + 16) >> 5, (32 * luma + 57 * u + 16) >> 5};
}

// binary32, every operation rounded. Green is summed in two orders.
inline Rgb set_f32_block(int luma, int u, int v) {
    const float y = static_cast<float>(luma), fu = static_cast<float>(u), fv = static_cast<float>(v);
    const float red_of_v = fv * 1.402f, green_of_v = fv * -0.714f, green_of_u = fu * -0.344f, blue_of_u = fu * 1.772f;
    const float green_of_both = green_of_v + green_of_u;
    return {static_cast<int>(y + red_of_v), static_cast<int>(y + green_of_both), static_cast<int>(y + blue_of_u)};
}

inline Rgb set_f32_tail(int luma, int u, int v) {
    const float y = static_cast<float>(luma), fu = static_cast<float>(u), fv = static_cast<float>(v);
    const float red_of_v = fv * 1.402f, green_of_v = fv * -0.714f, green_of_u = fu * -0.344f, blue_of_u = fu * 1.772f;
    const float without_u = y + green_of_v;
    return {static_cast<int>(y + red_of_v), static_cast<int>(without_u + green_of_u), static_cast<int>(y + blue_of_u)};
}

// The three colour bytes of a pixel in memory order; put() keeps the low 8 bits of each.
struct ColourBytes {
    int byte[3];
};

inline ColourBytes regular_bytes(Rgb pixel, Layout layout) {
    ColourBytes bytes{};
    bytes.byte[layout.red] = clamped(pixel.red);
    bytes.byte[layout.green] = clamped(pixel.green);
    bytes.byte[layout.blue] = clamped(pixel.blue);
    return bytes;
}

inline void put_pixel(uint8_t* p, ColourBytes bytes, Layout layout, uint8_t alpha) {
    put(p, bytes.byte[0]);
    put(p + 1, bytes.byte[1]);
    put(p + 2, bytes.byte[2]);
    if (layout.alpha >= 0) put(p + layout.alpha, alpha);
}

}  // namespace reference
