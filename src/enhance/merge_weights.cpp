// A row of 8-bit weights from every twentieth entry of a row of sums. Blocks of 8 columns multiply by the reciprocal in
// binary32; the tail divides integers, takes whole entries and has no lower clamp.
#include "core/kernel.h"

namespace zivcolor::ZIVCOLOR_TARGET::enhance {

namespace {

constexpr ptrdiff_t entries_per_column = 20;

}  // namespace

void CalcMergeWeightMap_neon(const int64_t* pSumW, uint8_t* pWtMap, int64_t lW, int64_t lImgNum) {
    if (lImgNum < 2) return;
    const int64_t divisor = lImgNum - 1;
    const float reciprocal = 1.0f / static_cast<float>(divisor);
    const ptrdiff_t width = static_cast<ptrdiff_t>(lW), blocked = blocked_columns<8>(width);
    for (ptrdiff_t i = 0; i < blocked; i++) {
        const int32_t sum = static_cast<int32_t>(static_cast<uint32_t>(pSumW[entries_per_column * i]) - 256u);
        // Clamped before it is truncated, so that it fits: beyond 32 bits the conversions of CPUs differ.
        const float weight = static_cast<float>(sum) * reciprocal;
        pWtMap[i] = static_cast<uint8_t>(static_cast<int32_t>(weight < 0.0f ? 0.0f : weight > 255.0f ? 255.0f : weight));
    }
    // Column pairs: an odd width reads one entry and writes one byte beyond the row.
    for (ptrdiff_t i = blocked; i < width; i += 2) {
        for (ptrdiff_t k = i; k < i + 2; k++) {
            const int64_t sum = static_cast<int64_t>(static_cast<uint64_t>(pSumW[entries_per_column * k]) - 256u);
            const int64_t weight = sum / divisor;
            pWtMap[k] = static_cast<uint8_t>(weight > 255 ? 255 : weight);
        }
    }
}

}  // namespace zivcolor::ZIVCOLOR_TARGET::enhance
