// SPDX-License-Identifier: MIT
// The coefficient sets of RGB to YUV, each in its scalar and its vector form. All are full range with chroma centred at 128,
// and take chroma from the difference between a colour and the luma. The float set stands with its two kernels.
#pragma once

#include "core/kernel.h"
#include "rgb2yuv/columns.h"

namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv {

// How a source lays out a pixel.
struct PixelLayout {
    int bytes, red, blue;
};
inline constexpr PixelLayout rgb888{3, 0, 2}, bgr888{3, 2, 0}, rgba8888{4, 0, 2}, bgra8888{4, 2, 0};

template <PixelLayout in>
constexpr Weights weights_in_memory_order(int red, int green, int blue) {
    return in.red == 0 ? Weights{red, green, blue} : Weights{blue, green, red};
}

struct Pixel {
    int r, g, b;
};
template <PixelLayout in>
ZIV_INLINE Pixel load_pixel(const uint8_t* p) {
    return {p[in.red], p[1], p[in.blue]};
}

// The pixels of C columns. What stands a few steps ahead, in this row or most likely in the next one, is prefetched.
template <PixelLayout in, int C>
ZIV_INLINE auto load_columns(const uint8_t* src) {
    const auto pixels = load_pixels<C, in.bytes>(src);
    prefetch_reads<in.bytes * C>(src);
    return pixels;
}

// Whether chroma from byte 2 comes before that from byte 0.
enum class PairOrder { uv, vu };
template <PixelLayout in, PairOrder order>
inline constexpr bool c2_first = (in.red == 0) == (order == PairOrder::uv);

// Luma of scale 64, truncated: (19 R + 38 G + 7 B) >> 6. Chroma is the difference times a weight, shifted. B - Y runs from
// -227 to 228 and R - Y from -179 to 180, so that everything fits 16 bits. With blue_of_first_8 the vector form takes the blue
// of columns 8 to 15 of every 16 for their luma from columns 0 to 7.
template <int weight_u, int shift_u, int weight_v, int shift_v, bool blue_of_first_8 = false>
struct TruncatedSet {
    static int y(Pixel p) { return (19 * p.r + 38 * p.g + 7 * p.b) >> 6; }
    static int u(Pixel p) { return clamp_byte(((p.b - y(p)) * weight_u >> shift_u) + 128); }
    static int v(Pixel p) { return clamp_byte(((p.r - y(p)) * weight_v >> shift_v) + 128); }

    template <PixelLayout in, int C>
    ZIV_INLINE static auto weigh(const Pixels<C, in.bytes>& pixels) {
        constexpr int shared = blue_of_first_8 ? in.blue : own_bytes;
        return luma_q6<weights_in_memory_order<in>(19, 38, 7), shared>(pixels);
    }
    template <class Weighed>
    ZIV_INLINE static const Weighed& luma(const Weighed& luma) {
        return luma;
    }
    // Where no chroma is asked for.
    template <PixelLayout in, int C>
    ZIV_INLINE static auto luma_alone(const Pixels<C, in.bytes>& pixels) {
        return weigh<in>(pixels);
    }
    template <PixelLayout in, int C, class Luma>
    ZIV_INLINE static auto chroma(const Pixels<C, in.bytes>& pixels, const Luma& luma) {
        constexpr ShiftedWeight u{weight_u, shift_u, 228}, v{weight_v, shift_v, 180};
        return scaled_differences < in.blue == 0 ? u : v, in.red == 0 ? u : v > (pixels, luma);
    }
};
using ShortSet = TruncatedSet<9, 4, 91, 7>;
using ShortSetBlueOfFirst8 = TruncatedSet<9, 4, 91, 7, true>;
using EighthsSet = TruncatedSet<4, 3, 7, 3>;
using ThirtySecondsSet = TruncatedSet<18, 5, 23, 5>;

// Luma of scale 2^15, rounded. The weights sum to one more than the scale.
struct FineLuma {
    static int sum(Pixel p) { return 9798 * p.r + 19235 * p.g + 3736 * p.b; }
    static int y(Pixel p) { return (sum(p) + 16384) >> 15; }

    template <PixelLayout in, int C>
    ZIV_INLINE static auto weigh(const Pixels<C, in.bytes>& pixels) {
        return fractional_luma<weights_in_memory_order<in>(9798, 19235, 3736)>(pixels);
    }
    template <class FractionalLuma>
    ZIV_INLINE static auto luma(const FractionalLuma& luma) {
        return rounded(luma);
    }
    template <PixelLayout in, int C>
    ZIV_INLINE static auto luma_alone(const Pixels<C, in.bytes>& pixels) {
        return luma_q15<weights_in_memory_order<in>(9798, 19235, 3736)>(pixels);
    }
    template <PixelLayout in>
    static constexpr OuterWeights chroma_weights = in.blue == 0 ? OuterWeights{18492, 23372} : OuterWeights{23372, 18492};
};

// The finished luma is taken from the colour.
struct FineRoundedSet : FineLuma {
    static int u(Pixel p) { return clamp_byte((((p.b - y(p)) * 18492 + 16384) >> 15) + 128); }
    static int v(Pixel p) { return clamp_byte((((p.r - y(p)) * 23372 + 16384) >> 15) + 128); }

    template <PixelLayout in, int C>
    ZIV_INLINE static auto weigh(const Pixels<C, in.bytes>& pixels) {
        return luma_alone<in>(pixels);
    }
    template <class Luma>
    ZIV_INLINE static const Luma& luma(const Luma& luma) {
        return luma;
    }
    template <PixelLayout in, int C, class Luma>
    ZIV_INLINE static auto chroma(const Pixels<C, in.bytes>& pixels, const Luma& luma) {
        return rounded_differences_q15<chroma_weights<in>>(pixels, luma);
    }
};

// Luma keeps 7 fractional bits when it is taken from the colour.
struct FineFractionalSet : FineLuma {
    static int difference(int colour, Pixel p) { return (colour << 7) - (sum(p) >> 8); }
    static int u(Pixel p) { return clamp_byte((((difference(p.b, p) * 18492 >> 7) + 16384) >> 15) + 128); }
    static int v(Pixel p) { return clamp_byte((((difference(p.r, p) * 23372 >> 7) + 16384) >> 15) + 128); }

    template <PixelLayout in, int C, class FractionalLuma>
    ZIV_INLINE static auto chroma(const Pixels<C, in.bytes>& pixels, const FractionalLuma& luma) {
        return fractional_differences_q15<chroma_weights<in>>(pixels, luma);
    }
};

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgb2yuv
