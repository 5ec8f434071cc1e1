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

}  // namespace zivcolor::ZIVCOLOR_TARGET::rgbrepack
