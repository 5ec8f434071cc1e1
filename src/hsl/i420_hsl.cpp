// SPDX-License-Identifier: MIT
// I420 to HSL888 by way of B, G, R. Two rows a pass, so that a chroma sample serves its four pixels. Scale 2^14; luma is not
// offset and its scaled value a whole multiple, so that a channel is luma plus a term of the chroma sample alone.
#include "hsl/hsl_pixels.h"

namespace zivcolor::ZIVCOLOR_TARGET::hsl {

namespace {

ZIV_INLINE int term_b(int cb, int) { return (29049 * cb + 8192) >> 14; }
ZIV_INLINE int term_g(int cb, int cr) { return (-5636 * cb - 11698 * cr + 8192) >> 14; }
ZIV_INLINE int term_r(int, int cr) { return (22987 * cr + 8192) >> 14; }

// A term for each of N pixels, as what it adds and what it takes away.
template <int N>
struct LaneTerm {
    U8<N> up, down;
};
template <int N>
ZIV_INLINE LaneTerm<N> lane_term(S16<N> d) {
    const S16<N> up = lane_max(d, S16<N>{});
    return {double_bytes<N>((U16<N>)up), double_bytes<N>((U16<N>)(up - d))};
}
template <int N>
ZIV_INLINE U8<N> apply(U8<N> luma, const LaneTerm<N>& term) {
    return subtract_saturating(add_saturating(luma, term.up), term.down);
}

// N columns of both rows, N / 2 samples of either chroma plane.
template <int N>
ZIV_INLINE void convert_block(const uint8_t* luma0, const uint8_t* luma1, const uint8_t* cb, const uint8_t* cr, uint8_t* dst0,
                              uint8_t* dst1) {
    // Twice the centred chroma: the products are then at the scale of the rounding multiplications, 2^15.
    const S16<N> u = ((S16<N>)load_widened<N>(cb) - 128) * 2, v = ((S16<N>)load_widened<N>(cr) - 128) * 2;
    const LaneTerm<N> b = lane_term<N>(multiply_round_high<N>(u, S16<N>{} + int16_t{29049}));
    const LaneTerm<N> g = lane_term<N>(weigh_pair_q15<N>(u, v, -5636, -11698));
    const LaneTerm<N> r = lane_term<N>(multiply_round_high<N>(v, S16<N>{} + int16_t{22987}));
    const U8<N> y0 = load<N>(luma0), y1 = load<N>(luma1);
    BGRtoHSL_lanes<N>({{apply<N>(y0, b), apply<N>(y0, g), apply<N>(y0, r)}}, dst0);
    BGRtoHSL_lanes<N>({{apply<N>(y1, b), apply<N>(y1, g), apply<N>(y1, r)}}, dst1);
}

// The same for 8 columns, by way of buffers that have room for 16.
template <>
ZIV_INLINE void convert_block<8>(const uint8_t* luma0, const uint8_t* luma1, const uint8_t* cb, const uint8_t* cr,
                                 uint8_t* dst0, uint8_t* dst1) {
    uint8_t luma[2][16] = {}, chroma[2][8] = {}, bgr[48], bgr_line[48];
    __builtin_memcpy(luma[0], luma0, 8);
    __builtin_memcpy(luma[1], luma1, 8);
    __builtin_memcpy(chroma[0], cb, 4);
    __builtin_memcpy(chroma[1], cr, 4);
    convert_block<16>(luma[0], luma[1], chroma[0], chroma[1], bgr, bgr_line);
    __builtin_memcpy(dst0, bgr, 24);
    __builtin_memcpy(dst1, bgr_line, 24);
}

}  // namespace

int32_t zivColorI420toHSL888u8(const uint8_t* pY, const uint8_t* pCb, const uint8_t* pCr, uint32_t lWidth, uint32_t lHeight,
                               uint8_t* pHSL, uint32_t y_step1, uint32_t cbcr_step1, uint32_t hsl_step1) {
    if (!pY || !pCb || !pCr || !pHSL) return zivStatus_NullPointer;
    if (lWidth < 3 || lHeight < 3) return zivStatus_BadArgument;
    const ptrdiff_t width = static_cast<ptrdiff_t>(lWidth), height = static_cast<ptrdiff_t>(lHeight);
    const ptrdiff_t luma_step = static_cast<ptrdiff_t>(y_step1), chroma_step = static_cast<ptrdiff_t>(cbcr_step1);
    const ptrdiff_t dst_step = static_cast<ptrdiff_t>(hsl_step1);
    // Rows that overlap show the order of stores: by 8 columns, of which the last of a row are never a block.
    const bool overlapping = dst_step < 3 * width;
    const ptrdiff_t blocked = hsl_blocked_columns(lWidth) - (overlapping && width % 8 == 0 ? 8 : 0);
    // An odd height converts the row after the last, an odd width the pixel after the last.
    for (ptrdiff_t j = 0; j < height; j += 2) {
        const uint8_t *const luma0 = pY + j * luma_step, *const luma1 = luma0 + luma_step;
        const uint8_t *const cb = pCb + j / 2 * chroma_step, *const cr = pCr + j / 2 * chroma_step;
        uint8_t *const dst0 = pHSL + j * dst_step, *const dst1 = dst0 + dst_step;
        const auto convert = [&](auto step, ptrdiff_t i) ZIV_INLINE_BODY {
            convert_block<step.value>(luma0 + i, luma1 + i, cb + i / 2, cr + i / 2, dst0 + 3 * i, dst1 + 3 * i);
        };
        if (overlapping)
            for (ptrdiff_t i = 0; i < blocked; i += 8) convert(Step<8>{}, i);
        else for_hsl_steps(blocked, convert);
        for (ptrdiff_t i = blocked; i < width; i += 2) {
            const int u = cb[i / 2] - 128, v = cr[i / 2] - 128;
            const int b = term_b(u, v), g = term_g(u, v), r = term_r(u, v);
            const int luma[4] = {luma0[i], luma0[i + 1], luma1[i], luma1[i + 1]};
            uint8_t* const pixel[4] = {dst0 + 3 * i, dst0 + 3 * i + 3, dst1 + 3 * i, dst1 + 3 * i + 3};
            for (int p = 0; p < 4; p++)
                BGRtoHSL(static_cast<uint32_t>(clamp_byte(luma[p] + b)), static_cast<uint32_t>(clamp_byte(luma[p] + g)),
                         static_cast<uint32_t>(clamp_byte(luma[p] + r)), pixel[p]);
        }
    }
    return zivStatus_OK;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::hsl
