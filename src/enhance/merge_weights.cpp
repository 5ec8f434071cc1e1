// SPDX-License-Identifier: MIT
// A row of 8-bit weights from every twentieth entry of a row of sums. Blocks of 8 columns multiply by the reciprocal in
// binary32; the tail divides integers, takes whole entries and has no lower clamp.
#include "enhance/weight_lanes.h"

namespace zivcolor::ZIVCOLOR_TARGET::enhance {

namespace {

constexpr ptrdiff_t entries_per_column = 20;

// Of four columns.
ZIV_INLINE F32<16> weights(const int64_t* sums, float reciprocal) {
    const U32<16> words = load_lower_words<entries_per_column>(sums) - 256u;
    return __builtin_convertvector((S32<16>)words, F32<16>) * reciprocal;
}

}  // namespace

void CalcMergeWeightMap_neon(const int64_t* pSumW, uint8_t* pWtMap, int64_t lW, int64_t lImgNum) {
    if (lImgNum < 2) return;
    const int64_t divisor = lImgNum - 1;
    const float reciprocal = 1.0f / static_cast<float>(divisor);
    const ptrdiff_t blocked = blocked_columns<8>(static_cast<ptrdiff_t>(lW));
    for (ptrdiff_t i = 0; i < blocked; i += 8) {
        const int64_t* sums = pSumW + entries_per_column * i;
        store_as_bytes(pWtMap + i, weights(sums, reciprocal), weights(sums + 4 * entries_per_column, reciprocal));
    }
    // Column pairs: an odd width reads one entry and writes one byte beyond the row.
    for (ptrdiff_t i = blocked; i < lW; i += 2) {
        for (ptrdiff_t k = i; k < i + 2; k++) {
            const int64_t sum = static_cast<int64_t>(static_cast<uint64_t>(pSumW[entries_per_column * k]) - 256u);
            const int64_t weight = sum / divisor;
            pWtMap[k] = static_cast<uint8_t>(weight > 255 ? 255 : weight);
        }
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::enhance
