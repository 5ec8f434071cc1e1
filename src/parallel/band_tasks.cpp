#include "parallel/band_tasks.h"

#include <type_traits>

#include "core/kernel_list.h"

namespace zivcolor {
namespace {

// How far a band reaches into the planes of a layout.
struct PlaneRows {
    int planes;
    int chroma_shift;  // from a luma row to its chroma row
};

constexpr PlaneRows plane_rows(uint32_t format) {
    switch (format) {
        case zivPixFmt_NV21:
        case zivPixFmt_NV12: return {2, 1};
        case zivPixFmt_I420:
        case zivPixFmt_I422V: return {3, 1};
        case zivPixFmt_LPI422H: return {2, 0};
        case zivPixFmt_I422H:
        case zivPixFmt_I444: return {3, 0};
        default: return {1, 0};
    }
}

// The rows of a band as an image of its own. Pitches place the planes even where the kernel does not read them.
template <uint32_t format>
Image band_of(const Image& whole, int32_t start, int32_t end) {
    constexpr PlaneRows rows = plane_rows(format);
    Image band{};
    band.format = whole.format;
    band.width = whole.width;
    band.height = end - start;
    for (int k = 0; k < rows.planes; ++k) {
        const int64_t row = k == 0 ? start : start >> rows.chroma_shift;
        band.plane[k] = whole.plane[k] + row * whole.pitch[k];
        band.pitch[k] = whole.pitch[k];
    }
    return band;
}

// The kernel's status is dropped: a band that it refuses stays unwritten.
template <uint32_t source, uint32_t destination, auto kernel>
void convert_band(const void* p) {
    const auto& param = *static_cast<const zivColorParam_t*>(p);
    const Image from = band_of<source>(*param.srcImg, param.lStartLine, param.lEndLine);
    const Image to = band_of<destination>(*param.dstImg, param.lStartLine, param.lEndLine);
    if constexpr (std::is_invocable_v<decltype(kernel), const Image*, const Image*>) {
        kernel(&from, &to);
    } else {
        const int32_t alpha = static_cast<const zivColorExtParam_ALPHA_t*>(param.extParam)->alpha;
        kernel(&from, &to, static_cast<uint8_t>(alpha & 0xFF));
    }
}

// ZIVCOLOR_IF_TASK(slot)(yes) is yes for a slot number and nothing for NoTask.
#define ZIVCOLOR_DROP(...)
#define ZIVCOLOR_KEEP(...) __VA_ARGS__
#define ZIVCOLOR_SLOT_NoTask ~, ZIVCOLOR_DROP
#define ZIVCOLOR_SECOND(first, second, ...) second
#define ZIVCOLOR_CHOOSE(...) ZIVCOLOR_SECOND(__VA_ARGS__, ZIVCOLOR_KEEP, ~)
#define ZIVCOLOR_IF_TASK(slot) ZIVCOLOR_CHOOSE(ZIVCOLOR_SLOT_##slot)

#define ZIVCOLOR_TASK(name, source, destination, alpha, dispatch, slot)     \
    ZIVCOLOR_IF_TASK(slot)                                                  \
    (void zivColor##source##To##destination##_task(void* p) {               \
        convert_band<zivPixFmt_##source, zivPixFmt_##destination, name>(p); \
    })
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_TASK)
#undef ZIVCOLOR_TASK

constexpr BandTasks all_tasks() {
    BandTasks tasks{};
#define ZIVCOLOR_TASK(name, source, destination, alpha, dispatch, slot) \
    ZIVCOLOR_IF_TASK(slot)(tasks[slot] = zivColor##source##To##destination##_task;)
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_TASK)
#undef ZIVCOLOR_TASK
    return tasks;
}

constexpr uint64_t pair_of(uint32_t source, uint32_t destination) { return uint64_t{source} << 32 | destination; }

}  // namespace

constexpr BandTasks band_tasks = all_tasks();

}  // namespace zivcolor

extern "C" int32_t zivColorCvtFunc(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg) {
    using namespace zivcolor;
    switch (pair_of(srcImg->format, dstImg->format)) {
#define ZIVCOLOR_TASK(name, source, destination, alpha, dispatch, slot) \
    ZIVCOLOR_IF_TASK(slot)(case pair_of(zivPixFmt_##source, zivPixFmt_##destination) : return slot;)
        ZIVCOLOR_CONVERSIONS(ZIVCOLOR_TASK)
#undef ZIVCOLOR_TASK
        default: return -1;
    }
}
