// SPDX-License-Identifier: MIT
#include "parallel/band_tasks.h"

#include <type_traits>

#include "core/chosen_kernels.h"
#include "core/streaming.h"

namespace zivcolor {
namespace {

// Reckoned as a number: a kernel that refuses its band takes planes that are null, or end before it begins.
uint8_t* moved(uint8_t* plane, int64_t bytes) {
    return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(plane) + static_cast<uintptr_t>(bytes));
}

// The rows of a band as an image of its own. Pitches place the planes even where the kernel does not read them.
Image band_of(const Image& whole, const Layout& layout, int32_t start, int32_t end) {
    Image band{};
    band.format = whole.format;
    band.width = whole.width;
    band.height = end - start;
    for (int k = 0; k < layout.planes; ++k) {
        const int64_t row = k == 0 || layout.chroma.rows == 1 ? start : start >> 1;
        band.plane[k] = moved(whole.plane[k], row * whole.pitch[k]);
        band.pitch[k] = whole.pitch[k];
    }
    return band;
}

uint8_t alpha_of(const zivColorParam_t& param) {
    return static_cast<uint8_t>(static_cast<const zivColorExtParam_ALPHA_t*>(param.extParam)->alpha & 0xFF);
}

// The task of a pair; the kernel is a member of KernelTable. Its status is dropped: a band that it refuses stays unwritten.
template <uint32_t source, uint32_t destination, Tiles tiles, auto kernel>
void convert_band(void* p) {
    static_assert(layout_of(source)->chroma.rows <= 2 && layout_of(destination)->chroma.rows <= 2,
                  "a chroma row that stands for more than 2 rows of luma would belong to two bands: NoTask");
    const auto& param = *static_cast<const zivColorParam_t*>(p);
    const Image from = band_of(*param.srcImg, *layout_of(source), param.lStartLine, param.lEndLine);
    const Image to = band_of(*param.dstImg, *layout_of(destination), param.lStartLine, param.lEndLine);
    const int64_t pixels = pixels_of(*param.dstImg);  // all bands share the caches
    constexpr bool takes_alpha = std::is_same_v<decltype(kernel), AlphaConversion * KernelTable::*>;
    if constexpr (takes_alpha)
        convert_within<kernel, source, destination, tiles>(pixels, kernels_here(), &from, &to, alpha_of(param));
    else convert_within<kernel, source, destination, tiles>(pixels, kernels_here(), &from, &to);
}

struct SlotOfPair {
    uint64_t pair;
    int32_t slot;
};
constexpr SlotOfPair slots_of_pairs[] = {
#define ZIVCOLOR_SLOT(name, source, destination, alpha, dispatch, slot, tile) \
    {pair_of(zivPixFmt_##source, zivPixFmt_##destination), slot},
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_SLOT)
#undef ZIVCOLOR_SLOT
};

constexpr bool every_slot_has_one_kernel() {
    bool taken[band_task_count] = {};
    for (const SlotOfPair& row : slots_of_pairs) {
        if (row.slot == NoTask) continue;
        if (row.slot < 0 || static_cast<size_t>(row.slot) >= band_task_count || taken[row.slot]) return false;
        taken[row.slot] = true;
    }
    return true;
}
static_assert(every_slot_has_one_kernel(),
              "core/kernel_list.h: the slots of band tasks are 0, 1, 2 and so on, each of one kernel");

constexpr BandTasks all_tasks() {
    BandTasks tasks{};
    if constexpr (every_slot_has_one_kernel()) {
#define ZIVCOLOR_TASK(name, source, destination, alpha, dispatch, slot, tile) \
    if constexpr (slot != NoTask)                                             \
        tasks[static_cast<size_t>(slot)] =                                    \
            convert_band<zivPixFmt_##source, zivPixFmt_##destination, Tiles::tile, &KernelTable::name>;
        ZIVCOLOR_CONVERSIONS(ZIVCOLOR_TASK)
#undef ZIVCOLOR_TASK
    }
    return tasks;
}

}  // namespace

constexpr BandTasks band_tasks = all_tasks();

}  // namespace zivcolor

extern "C" int32_t zivColorCvtFunc(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg) {
    using namespace zivcolor;
    const uint64_t pair = pair_of(srcImg->format, dstImg->format);
    for (const SlotOfPair& row : slots_of_pairs)
        if (row.pair == pair && row.slot != NoTask) return row.slot;
    return NoTask;
}
