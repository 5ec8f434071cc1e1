// SPDX-License-Identifier: MIT
// Whitening by a mask, and the weights of a merge.
#include "reference/reference.h"
#include "reference/steps.h"

namespace reference {

namespace {

int64_t clamp(int64_t value, int64_t low, int64_t high) { return value < low ? low : value > high ? high : value; }

int64_t wrapping_product(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}

int32_t as_s16(int64_t value) { return static_cast<int16_t>(static_cast<uint16_t>(value)); }

// What the chroma of a cell becomes, by the three kinds of arithmetic.
struct Lift {
    int v, u;
};
using LiftOf = Lift (*)(int sum, int64_t red_level, int v, int u);

// The low 32 bits of the shifted product, read as signed.
int32_t lifted(int64_t r, int t) { return static_cast<int32_t>(static_cast<uint32_t>(wrapping_product(r, t) >> 8)); }

Lift scalar_lift(int sum, int64_t red_level, int v, int u) {
    const int64_t r = wrapping_product(sum, red_level) >> 10;
    const int tu = (128 - u) + ((102 * (u - 128)) >> 8);
    const int tv = (128 - v) + ((332 * (v - 128)) >> 8);
    Lift lift{0, 0};
    if (u < 128) lift.u = static_cast<int>(clamp(lifted(r, tu), 0, 9));
    if (v > 128) lift.v = static_cast<int>(clamp(lifted(r, tv), 0, 4));
    return lift;
}

Lift tail_lift(int sum, int64_t red_level, int v, int u) {
    const int64_t r = wrapping_product(sum, red_level) >> 10;
    const int tu = (128 - u) + ((u - 128) >> 8);
    const int tv = (128 - v) + ((v - 128) >> 8);
    Lift lift{0, 0};
    if (u < 128) lift.u = static_cast<int>(clamp(lifted(r, tu), 0, 9));
    if (v > 128) lift.v = static_cast<int>(clamp(lifted(r, tv), 0, 4));
    return lift;
}

Lift block_lift(int sum, int64_t red_level, int v, int u) {
    const uint32_t level = static_cast<uint32_t>(red_level & 0xFFFF);
    const int64_t r = (static_cast<uint32_t>(sum) * level >> 10) & 0xFFFF;
    const int tu = as_s16((128 - u) + (as_s16(102 * (u - 128)) >> 8));
    const int tv = as_s16((128 - v) + (as_s16(332 * (v - 128)) >> 8));
    Lift lift{0, 0};
    if (u < 128) lift.u = static_cast<int>(clamp(as_s16(r * tu) >> 8, 0, 9));
    if (v > 128) lift.v = static_cast<int>(clamp(as_s16(r * tv) >> 8, 0, 9));
    return lift;
}

int brightened(int y, int weight, const int32_t* table) {
    return static_cast<int>((static_cast<int64_t>(weight) * table[y] + (256 - weight) * static_cast<int64_t>(y)) >> 8 & 255);
}

struct CellRows {
    uint8_t* upper;
    uint8_t* lower;
    uint8_t* chroma;
    const uint8_t* mask_upper;
    const uint8_t* mask_lower;
};

// N columns: everything is read before anything is written.
template <int N>
void whiten(const CellRows& rows, int64_t x, const int32_t* table, int64_t red_level, LiftOf lift_of) {
    auto upper = load<N>(rows.upper + x);
    auto lower = load<N>(rows.lower + x);
    const auto pairs_read = load<N>(rows.chroma + x);
    auto pairs = pairs_read;
    const auto mask_upper = load<N>(rows.mask_upper + x);
    const auto mask_lower = load<N>(rows.mask_lower + x);
    for (size_t c = 0; c < N; c += 2) {
        const int sum = mask_upper[c] + mask_upper[c + 1] + mask_lower[c] + mask_lower[c + 1];
        for (size_t k = c; k < c + 2; ++k) {
            upper[k] = brightened(upper[k], sum >> 2, table);
            lower[k] = brightened(lower[k], sum >> 2, table);
        }
        const Lift lift = lift_of(sum, red_level, pairs[c], pairs[c + 1]);
        pairs[c] += lift.v;
        pairs[c + 1] += lift.u;
    }
    store(rows.upper + x, upper);
    store(rows.lower + x, lower);
    if constexpr (N > 2) {
        store(rows.chroma + x, pairs);
    } else {
        // A single cell stores what it lifts: the luma just written stays where an unlifted sample lies under it.
        if (pairs_read[0] > 128) put(rows.chroma + x, pairs[0]);
        if (pairs_read[1] < 128) put(rows.chroma + x + 1, pairs[1]);
    }
}

// The mask starts again for every pair of rows; chroma follows a tight luma plane.
CellRows rows_of_pair(const MaskedImage* image, int64_t y, const uint8_t* mask, int64_t mask_line) {
    uint8_t* upper = image->plane[0] + 2 * y * image->pitch[0];
    uint8_t* chroma = image->plane[0] + static_cast<int64_t>(image->width) * image->height + y * image->pitch[1];
    return {upper, upper + image->pitch[0], chroma, mask, mask + mask_line};
}

}  // namespace

int64_t _SkinWhitenByMask_YUV420_VUVU(const MaskedImage* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                      const int32_t* plBrightenTab, int64_t lRedLevel, const int32_t*) {
    if (pImg->width <= 1 || pImg->height <= 1) return 0;
    for (int64_t y = 0; y < pImg->height / 2; ++y) {
        const CellRows rows = rows_of_pair(pImg, y, pMskData, lMskLine);
        for (int64_t x = 0; x < pImg->width / 2; ++x) whiten<2>(rows, 2 * x, plBrightenTab, lRedLevel, scalar_lift);
    }
    return 0;
}

int64_t _SkinWhitenByMask_YUV420_VUVU_neon(const MaskedImage* pImg, const uint8_t* pMskData, int64_t lMskLine,
                                           const int32_t* plBrightenTab, int64_t lRedLevel, const int32_t*) {
    const int64_t w = pImg->width;
    for (int64_t i = 0; i <= int64_t{pImg->height} - 2; i += 2) {
        const CellRows rows = rows_of_pair(pImg, i / 2, pMskData, lMskLine);
        int64_t j = 0;
        for (; j <= w - 16; j += 16) whiten<16>(rows, j, plBrightenTab, lRedLevel, block_lift);
        for (; j <= w - 2; j += 2) whiten<2>(rows, j, plBrightenTab, lRedLevel, tail_lift);
    }
    return 0;
}

namespace {

int block_weight(int64_t entry, float reciprocal) {
    const uint32_t low = static_cast<uint32_t>(static_cast<uint64_t>(entry)) - 256u;
    const float scaled = static_cast<float>(static_cast<int32_t>(low)) * reciprocal;
    if (scaled >= 256.0f) return 255;
    if (scaled < 0.0f) return 0;
    return static_cast<int>(scaled);
}

int64_t tail_weight(int64_t entry, int64_t divisor) {
    const int64_t difference = static_cast<int64_t>(static_cast<uint64_t>(entry) - 256u);
    const int64_t quotient = difference / divisor;
    return quotient > 255 ? 255 : quotient;
}

}  // namespace

void CalcMergeWeightMap_neon(const int64_t* pSumW, uint8_t* pWtMap, int64_t lW, int64_t lImgNum) {
    if (lImgNum < 2) return;
    const int64_t divisor = lImgNum - 1;
    const float reciprocal = 1.0f / static_cast<float>(divisor);
    int64_t i = 0;
    for (; lW - i >= 8; i += 8)
        for (int64_t k = i; k < i + 8; ++k) put(pWtMap + k, block_weight(pSumW[20 * k], reciprocal));
    for (; i < lW; i += 2)
        for (int64_t k = i; k < i + 2; ++k) put(pWtMap + k, tail_weight(pSumW[20 * k], divisor));
}

}  // namespace reference
