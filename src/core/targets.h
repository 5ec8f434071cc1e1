// The instruction sets that the kernels are built for, and the table of kernels of each.
#pragma once

#include "core/image.h"
#include "core/kernel_list.h"

namespace zivcolor {

struct KernelTable {
#define ZIVCOLOR_CONVERT_Opaque(name) int32_t (*name)(const Image* srcImg, const Image* dstImg);
#define ZIVCOLOR_CONVERT_Alpha(name) int32_t (*name)(const Image* srcImg, const Image* dstImg, uint8_t alpha);
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task) ZIVCOLOR_CONVERT_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) result(*name) parameters;
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
    ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_CONVERT_Alpha
#undef ZIVCOLOR_CONVERT_Opaque
};

struct Target {
    const char* name;
    bool (*runs_here)();  // by the CPU and the state that the operating system saves
    const KernelTable* kernels;
};

// The targets of this build, best first. The last one runs on every CPU of the architecture.
struct TargetList {
    const Target* first;
    const Target* past;
    const Target* begin() const { return first; }
    const Target* end() const { return past; }
};
TargetList built_targets();

// The best target that runs here: chosen once, at the first call.
const KernelTable& chosen_kernels();

}  // namespace zivcolor
