// SPDX-License-Identifier: MIT
// The exported entry of every kernel: hands the call to the kernel that was built for this CPU.
#include "core/chosen_kernels.h"
#include "core/streaming.h"

using zivcolor::Image;
using zivcolor::MaskedImage;

// An entry that the header does not declare would be one that nobody sees.
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) \
    static_assert(sizeof(&::name) == sizeof(void*));
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) static_assert(sizeof(&::name) == sizeof(void*));
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION

extern "C" {

#define ZIVCOLOR_KERNEL(name, source, destination, tile) \
    &zivcolor::KernelTable::name, zivPixFmt_##source, zivPixFmt_##destination, zivcolor::Tiles::tile
#define ZIVCOLOR_ENTRY_Opaque(name, kernel)                                         \
    int32_t name(const Image* srcImg, const Image* dstImg) {                        \
        return zivcolor::convert<kernel>(zivcolor::kernels_here(), srcImg, dstImg); \
    }
#define ZIVCOLOR_ENTRY_Alpha(name, kernel)                                                 \
    int32_t name(const Image* srcImg, const Image* dstImg, uint8_t alpha) {                \
        return zivcolor::convert<kernel>(zivcolor::kernels_here(), srcImg, dstImg, alpha); \
    }
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) \
    ZIVCOLOR_ENTRY_##alpha(name, ZIVCOLOR_KERNEL(name, source, destination, tile))
#define ZIVCOLOR_ARGUMENTS(...) __VA_ARGS__
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments)                                       \
    result name parameters {                                                                        \
        constexpr bool floats = zivcolor::has_floats<&zivcolor::KernelTable::name>;                 \
        return zivcolor::call<floats>(zivcolor::kernels_here().name, ZIVCOLOR_ARGUMENTS arguments); \
    }
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_ARGUMENTS
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_ENTRY_Alpha
#undef ZIVCOLOR_ENTRY_Opaque
#undef ZIVCOLOR_KERNEL

}  // extern "C"
