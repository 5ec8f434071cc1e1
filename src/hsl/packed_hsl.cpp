// SPDX-License-Identifier: MIT
// BGR888 and 16-bit words to HSL888.
#include "hsl/hsl_pixels.h"

namespace zivcolor::ZIVCOLOR_TARGET::hsl {

namespace {

ZIV_INLINE int32_t check_hsl(const uint8_t* src, const uint8_t* dst, uint32_t height, uint32_t width) {
    if (!src || !dst) return zivStatus_NullPointer;
    return height < 3 || width < 3 ? zivStatus_BadArgument : zivStatus_OK;
}

// From the end of a row of 3 bytes a pixel to the next row: the gap is zero-extended, so that a stride below the row's bytes
// goes forward by nearly 2^32.
ZIV_INLINE ptrdiff_t gap(uint32_t line_bytes, uint32_t width) { return static_cast<ptrdiff_t>(line_bytes - 3 * width); }

}  // namespace

int32_t zivColorBGR888toHSL888u8(const uint8_t* bgr, uint8_t* hsl, uint32_t lHeight, uint32_t lWidth, uint32_t lineBytesBgr,
                                 uint32_t lineBytesHsl) {
    if (const int32_t status = check_hsl(bgr, hsl, lHeight, lWidth)) return status;
    const ptrdiff_t width = static_cast<ptrdiff_t>(lWidth), blocked = hsl_blocked_columns(lWidth);
    const ptrdiff_t src_step = 3 * width + gap(lineBytesBgr, lWidth), dst_step = 3 * width + gap(lineBytesHsl, lWidth);
    for (uint32_t i = 0; i < lHeight; i++, bgr += src_step, hsl += dst_step) {
        for_hsl_steps(blocked,
                      [&](auto step, ptrdiff_t j) ZIV_INLINE_BODY { BGRtoHSL_block<step.value>(bgr + 3 * j, hsl + 3 * j); });
        for (ptrdiff_t j = blocked; j < width; j++) BGRtoHSL(bgr[3 * j], bgr[3 * j + 1], bgr[3 * j + 2], hsl + 3 * j);
    }
    return zivStatus_OK;
}

namespace {

// The channels blue, green, red of N words: 5 or 6 bits each at the byte's upper end, zeros below them. red_high: red in the
// word's top five bits and blue in the low five, or the other way about.
template <bool red_high, int N>
ZIV_INLINE Channels<N, 3> channels_of_565(const uint8_t* words) {
    Channels<N, 2> v = load2<N>(words);
    const U8<N> low = v.c[0], high = v.c[1];
    const U8<N> middle = (high << 5) | ((low >> 3) & uint8_t{0x1C});
    const U8<N> low_end = low << 3, high_end = high & uint8_t{0xF8};
    return red_high ? Channels<N, 3>{{low_end, middle, high_end}} : Channels<N, 3>{{high_end, middle, low_end}};
}

template <bool red_high, int N>
ZIV_INLINE void convert_words(const uint8_t* words, uint8_t* hsl) {
    if constexpr (N == 8) {
        uint8_t bytes[32] = {}, pixels[48];
        __builtin_memcpy(bytes, words, 16);
        convert_words<red_high, 16>(bytes, pixels);
        __builtin_memcpy(hsl, pixels, 24);
    } else {
        BGRtoHSL_lanes<N>(channels_of_565<red_high, N>(words), hsl);
    }
}

template <bool red_high>
ZIV_INLINE int32_t words_to_hsl(const uint8_t* words, uint8_t* hsl, uint32_t height, uint32_t width32, uint32_t line_bytes,
                                uint32_t line_bytes_hsl) {
    if (const int32_t status = check_hsl(words, hsl, height, width32)) return status;
    const ptrdiff_t width = static_cast<ptrdiff_t>(width32), blocked = hsl_blocked_columns(width32);
    const ptrdiff_t dst_step = 3 * width + gap(line_bytes_hsl, width32);
    for (uint32_t i = 0; i < height; i++, words += line_bytes, hsl += dst_step) {
        for_hsl_steps(blocked, [&](auto step, ptrdiff_t j)
                                   ZIV_INLINE_BODY { convert_words<red_high, step.value>(words + 2 * j, hsl + 3 * j); });
        for (ptrdiff_t j = blocked; j < width; j++) {
            const uint32_t word = words[2 * j] | uint32_t{words[2 * j + 1]} << 8;
            const uint32_t low = (word & 0x1F) << 3, middle = (word >> 3) & 0xFC, high = (word >> 8) & 0xF8;
            BGRtoHSL(red_high ? low : high, middle, red_high ? high : low, hsl + 3 * j);
        }
    }
    return zivStatus_OK;
}

}  // namespace

int32_t zivColorBGR565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                 uint32_t lineBytesBgr, uint32_t lineBytesHsl) {
    return words_to_hsl<true>(pBgr565, pHsl, lHeight, lWidth, lineBytesBgr, lineBytesHsl);
}

int32_t zivColorRGB565toHSL888u8(const uint8_t* pBgr565, uint8_t* pHsl, uint32_t lHeight, uint32_t lWidth,
                                 uint32_t lineBytesBgr, uint32_t lineBytesHsl) {
    return words_to_hsl<false>(pBgr565, pHsl, lHeight, lWidth, lineBytesBgr, lineBytesHsl);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::hsl
