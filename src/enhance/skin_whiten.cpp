// SPDX-License-Identifier: MIT
// Skin whitening in place: a mask brightens the luma of a 4:2:0 image through a table and lifts its chroma. Cells of 2 by 2
// luma samples and one pair V, U. Three forms of the chroma arithmetic, each as its callers know it: the scalar kernel's, the
// blocks', and that of the blocked kernel's tail. The mask starts again for every pair of rows.
#include "core/kernel.h"
#if ZIV_HAS_ADVANCED_SIMD
#include "enhance/rises_neon.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET::enhance {

namespace {

// The memory of a pair of rows. The chroma plane follows a luma plane of width times height bytes, whatever the pitch of luma.
struct RowPair {
    uint8_t* luma[2];
    uint8_t* chroma;
};
ZIV_INLINE RowPair row_pair(const MaskedImage* image, ptrdiff_t pair) {
    uint8_t* const luma = row_at(image->plane[0], 2 * pair, image->pitch[0]);
    uint8_t* const chroma = image->plane[0] + ptrdiff_t{image->width} * image->height;
    return {{luma, luma + image->pitch[0]}, row_at(chroma, pair, image->pitch[1])};
}

struct Lift {
    const uint8_t* mask[2];
    const int32_t* brightened;
    int64_t red_level;
};

// clamp((strength * distance) >> 8, 0, most): the product in 64 bits, of which the low 32 are read after the shift.
ZIV_INLINE int lift_by(int64_t strength, int64_t distance, int most) {
    const auto product = static_cast<int64_t>(static_cast<uint64_t>(strength) * static_cast<uint64_t>(distance));
    const auto lift = static_cast<int32_t>(product >> 8);
    return lift < 0 ? 0 : lift > most ? most : lift;
}

// One cell at column x. weight_u and weight_v bend the distances from grey, scale 256.
ZIV_INLINE void whiten_cell(const RowPair& rows, ptrdiff_t x, const Lift& lift, int weight_u, int weight_v) {
    const uint32_t sum = 0u + lift.mask[0][x] + lift.mask[0][x + 1] + lift.mask[1][x] + lift.mask[1][x + 1];
    const uint32_t share = sum >> 2;
    const uint8_t luma[4] = {rows.luma[0][x], rows.luma[0][x + 1], rows.luma[1][x], rows.luma[1][x + 1]};
    const int v = rows.chroma[x], u = rows.chroma[x + 1];
    for (int k = 0; k < 4; k++) {
        const uint32_t bright = static_cast<uint32_t>(lift.brightened[luma[k]]);
        rows.luma[k / 2][x + k % 2] = static_cast<uint8_t>((share * bright + (256 - share) * luma[k]) >> 8);
    }
    const int64_t strength = static_cast<int64_t>(sum * static_cast<uint64_t>(lift.red_level)) >> 10;
    if (v > 128) {
        const int distance = (128 - v) + ((weight_v * (v - 128)) >> 8);
        rows.chroma[x] = static_cast<uint8_t>(v + lift_by(strength, distance, 4));
    }
    if (u < 128) {
        const int distance = (128 - u) + ((weight_u * (u - 128)) >> 8);
        rows.chroma[x + 1] = static_cast<uint8_t>(u + lift_by(strength, distance, 9));
    }
}

// Brightens 16 columns of a row: one share for each pair of columns, in wrapping 16-bit lanes.
ZIV_INLINE U8<16> brighten(U8<16> luma, U16<16> share, const int32_t* brightened) {
    U16<16> even{}, odd{};
    for (int i = 0; i < 8; i++) {
        even[i] = static_cast<uint16_t>(brightened[luma[2 * i]]);
        odd[i] = static_cast<uint16_t>(brightened[luma[2 * i + 1]]);
    }
    const U16<16> rest = 256 - share;
    return merge_bytes<16>((share * even + rest * even_bytes<16>(luma)) >> 8, (share * odd + rest * odd_bytes<16>(luma)) >> 8);
}

// clamp((strength * distance) >> 8, 0, 9) with a wrapping product.
template <int N>
ZIV_INLINE S16<N> lift_lanes(U16<N> strength, S16<N> distance) {
    const S16<N> lift = (S16<N>)(strength * (U16<N>)distance) >> 8;
    return lane_max(lane_min(lift, S16<N>{} + int16_t{9}), S16<N>{});
}

// N columns from x on, N / 2 cells. All of it is read before any of it is written: with padded luma the chroma lies within the
// luma's rows, so that wider steps than the blocks of 16 columns would show.
template <int N, class Table>
ZIV_INLINE void whiten_block(const RowPair& rows, ptrdiff_t x, const Lift& lift, const Table& brightened) {
    const U8<N> mask0 = load<N>(lift.mask[0] + x), mask1 = load<N>(lift.mask[1] + x);
    const U8<N> luma0 = load<N>(rows.luma[0] + x), luma1 = load<N>(rows.luma[1] + x), chroma = load<N>(rows.chroma + x);
    const U16<N> sum = even_bytes<N>(mask0) + odd_bytes<N>(mask0) + even_bytes<N>(mask1) + odd_bytes<N>(mask1);
    const U16<N> share = sum >> 2;

    const U16<N> level = U16<N>{} + static_cast<uint16_t>(lift.red_level);
    const U16<N> strength = (multiply_high_unsigned<N>(sum, level) << 6) | ((sum * level) >> 10);
    const S16<N> v = (S16<N>)even_bytes<N>(chroma), u = (S16<N>)odd_bytes<N>(chroma);
    // 332 (v - 128) passes 16 bits from v = 227 on and reads as negative there.
    const S16<N> distance_v = (128 - v) + ((S16<N>)((U16<N>)(v - 128) * 332) >> 8);
    const S16<N> distance_u = (128 - u) + (((u - 128) * 102) >> 8);
    const S16<N> lifted_v = v + (lift_lanes<N>(strength, distance_v) & (S16<N>)(v > 128));
    const S16<N> lifted_u = u + (lift_lanes<N>(strength, distance_u) & (S16<N>)(u < 128));

    store(rows.luma[0] + x, brighten(luma0, share, brightened));
    store(rows.luma[1] + x, brighten(luma1, share, brightened));
    store(rows.chroma + x, merge_bytes<N>((U16<N>)lifted_v & 0xFF, (U16<N>)lifted_u & 0xFF));
}

// Blocks, then cells whose distances are not bent.
template <class Table>
ZIV_INLINE void whiten_rows(const MaskedImage* image, const Lift& lift, const Table& brightened) {
    const ptrdiff_t pairs = image->height / 2, width = image->width, blocked = blocked_columns<16>(width);
    for (ptrdiff_t y = 0; y < pairs; y++) {
        const RowPair rows = row_pair(image, y);
        for (ptrdiff_t x = 0; x < blocked; x += 16) whiten_block<16>(rows, x, lift, brightened);
        for (ptrdiff_t x = blocked; x <= width - 2; x += 2) whiten_cell(rows, x, lift, 1, 1);
    }
}

}  // namespace

int64_t _SkinWhitenByMask_YUV420_VUVU(const MaskedImage* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                      const int32_t* plBrightenTab, int64_t lRedLevel, const int32_t*) {
    if (pImg->width < 2 || pImg->height < 2) return 0;
    const ptrdiff_t pairs = pImg->height / 2, columns = pImg->width / 2 * 2;
    const Lift lift{{pMskData, pMskData + lMskLine}, plBrightenTab, lRedLevel};
    for (ptrdiff_t y = 0; y < pairs; y++) {
        const RowPair rows = row_pair(pImg, y);
        for (ptrdiff_t x = 0; x < columns; x += 2) whiten_cell(rows, x, lift, 102, 332);
    }
    return 0;
}

// Blocks of 16 columns, where v may rise by 9, then cells whose distances are not bent: a v above 128 never rises there under
// a positive level.
int64_t _SkinWhitenByMask_YUV420_VUVU_neon(const MaskedImage* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                           const int32_t* plBrightenTab, int64_t lRedLevel, const int32_t*) {
    if (pImg->width < 2 || pImg->height < 2) return 0;
    const Lift lift{{pMskData, pMskData + lMskLine}, plBrightenTab, lRedLevel};
#if ZIV_HAS_ADVANCED_SIMD
    // Enough blocks to pay for a walk over the table.
    uint8_t rises[256];
    if (int64_t{pImg->width / 16} * pImg->height >= 32 && find_rises(plBrightenTab, rises)) {
        whiten_rows(pImg, lift, load_rises(rises));
        return 0;
    }
#endif
    whiten_rows(pImg, lift, plBrightenTab);
    return 0;
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::enhance
