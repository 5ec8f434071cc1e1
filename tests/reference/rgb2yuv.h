// SPDX-License-Identifier: MIT
// The coefficient sets of RGB to YUV, each in the form of its blocks and in the form of its tail.
#pragma once

#include "reference/conversion.h"

namespace reference {

struct Pixel {
    int red, green, blue;
};

struct Chroma {
    int u, v;
};

// A block's load takes every byte of the pixel; the tail leaves alpha alone.
inline Pixel load_in_block(const uint8_t* p, Layout layout) {
    if (layout.alpha >= 0) get(p + layout.alpha);
    return {get(p + layout.red), get(p + layout.green), get(p + layout.blue)};
}

inline Pixel load_in_tail(const uint8_t* p, Layout layout) {
    return {get(p + layout.red), get(p + layout.green), get(p + layout.blue)};
}

// What a rounding narrow by 15 leaves in a signed 16-bit lane.
inline int rounding_narrow_15(int value) { return static_cast<int16_t>(((value + 16384) >> 15) & 0xFFFF); }

struct ShortLuma {
    static int block_luma(Pixel p) { return (19 * p.red + 38 * p.green + 7 * p.blue) >> 6; }
    static int tail_luma(Pixel p) { return clamped((19 * p.red + 38 * p.green + 7 * p.blue) >> 6); }
};

struct ShortSet : ShortLuma {
    static Chroma block_chroma(Pixel p, int luma) {
        return {clamped(((p.blue - luma) * 9 + 2048) >> 4), clamped(((p.red - luma) * 91 + 16384) >> 7)};
    }
    static Chroma tail_chroma(Pixel p, int luma) {
        return {clamped((((p.blue - luma) * 9) >> 4) + 128), clamped((((p.red - luma) * 91) >> 7) + 128)};
    }
};

// The tail's V has eight times the gain.
struct ShortSetSteepV : ShortSet {
    static Chroma tail_chroma(Pixel p, int luma) {
        return {clamped((((p.blue - luma) * 9) >> 4) + 128), clamped((((p.red - luma) * 91) >> 4) + 128)};
    }
};

struct EighthsSet : ShortLuma {
    static Chroma block_chroma(Pixel p, int luma) {
        return {clamped((((p.blue - luma) << 2) + 1024) >> 3), clamped(((p.red - luma) * 7 + 1024) >> 3)};
    }
    static Chroma tail_chroma(Pixel p, int luma) {
        return {clamped(((p.blue - luma) >> 1) + 128), clamped((((p.red - luma) * 7) >> 3) + 128)};
    }
};

struct ThirtySecondsSet : ShortLuma {
    static Chroma block_chroma(Pixel p, int luma) {
        return {clamped(((p.blue - luma) * 18 + 4096) >> 5), clamped(((p.red - luma) * 23 + 4096) >> 5)};
    }
    static Chroma tail_chroma(Pixel p, int luma) {
        return {clamped((((p.blue - luma) * 18) >> 5) + 128), clamped((((p.red - luma) * 23) >> 5) + 128)};
    }
};

struct FineLuma {
    static int sum(Pixel p) { return 9798 * p.red + 19235 * p.green + 3736 * p.blue; }
    static int block_luma(Pixel p) { return rounding_narrow_15(sum(p)); }
    static int tail_luma(Pixel p) { return clamped((sum(p) + 16384) >> 15); }
};

// The luma in the colour difference keeps 7 bits of fraction.
struct FineSetFractional : FineLuma {
    static Chroma block_chroma(Pixel p, int) {
        const int fraction = sum(p) >> 8;
        const int u = (((p.blue << 7) - fraction) * 18492) >> 7, v = (((p.red << 7) - fraction) * 23372) >> 7;
        return {clamped(rounding_narrow_15(u) + 128), clamped(rounding_narrow_15(v) + 128)};
    }
    static Chroma tail_chroma(Pixel p, int) {
        const int fraction = sum(p) >> 8;
        const int u = (((p.blue << 7) - fraction) * 18492) >> 7, v = (((p.red << 7) - fraction) * 23372) >> 7;
        return {clamped(((u + 16384) >> 15) + 128), clamped(((v + 16384) >> 15) + 128)};
    }
};

// It is the finished luma.
struct FineSetRounded : FineLuma {
    static Chroma block_chroma(Pixel p, int luma) {
        const int u = (p.blue - luma) * 18492 + 4194304, v = (p.red - luma) * 23372 + 4194304;
        return {clamped((u + 16384) >> 15), clamped((v + 16384) >> 15)};
    }
    static Chroma tail_chroma(Pixel p, int luma) {
        return {clamped((((p.blue - luma) * 18492 + 16384) >> 15) + 128),
                clamped((((p.red - luma) * 23372 + 16384) >> 15) + 128)};
    }
};

// binary32 in blocks, binary64 in the tail, every operation rounded by itself.
struct FloatSet {
    static int block_luma(Pixel p) {
        const float r = static_cast<float>(p.red), g = static_cast<float>(p.green), b = static_cast<float>(p.blue);
        const float of_green = g * 0.587f, of_red = r * 0.299f, of_blue = b * 0.114f;
        const float two = of_green + of_red;
        const float all = of_blue + two;
        return clamped(static_cast<int>(all));
    }
    static Chroma block_chroma(Pixel p, int) {
        const float r = static_cast<float>(p.red), g = static_cast<float>(p.green), b = static_cast<float>(p.blue);
        const float u_of_green = g * -0.3313f, u_of_red = r * -0.1678f, u_of_blue = b * 0.5f;
        const float u_two = u_of_green + u_of_red;
        const float u = u_of_blue + u_two;
        const float v_of_green = g * -0.4187f, v_of_red = r * 0.5f, v_of_blue = b * -0.0813f;
        const float v_two = v_of_green + v_of_red;
        const float v = v_of_blue + v_two;
        return {clamped(static_cast<int>(u) + 128), clamped(static_cast<int>(v) + 128)};
    }
    static int tail_luma(Pixel p) {
        const double r = p.red, g = p.green, b = p.blue;
        const double of_green = g * 0.587, of_red = r * 0.299, of_blue = b * 0.114;
        const double two = of_green + of_red;
        const double all = of_blue + two;
        const float rounded = static_cast<float>(all);
        return clamped(static_cast<int>(rounded));
    }
    static Chroma tail_chroma(Pixel p, int) {
        const double r = p.red, g = p.green, b = p.blue;
        const double u_of_green = g * -0.3313, u_of_red = r * 0.1678, u_of_blue = b * 0.5;
        const double u_two = u_of_green - u_of_red;
        const double u = u_of_blue + u_two;
        const double v_of_red = r * 0.5, v_of_green = g * 0.4187, v_of_blue = b * 0.0813;
        const double v_two = v_of_red - v_of_green;
        const double v = v_two - v_of_blue;
        return {clamped(static_cast<int>(u) + 128), clamped(static_cast<int>(v) + 128)};
    }
};

}  // namespace reference
