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

#define ZIVCOLOR_PAIR(source, destination, tile) zivPixFmt_##source, zivPixFmt_##destination, zivcolor::Tiles::tile
#define ZIVCOLOR_ENTRY_Opaque(name, pair)                                              \
    int32_t name(const Image* srcImg, const Image* dstImg) {                           \
        return zivcolor::convert<pair>(zivcolor::kernels_here().name, srcImg, dstImg); \
    }
#define ZIVCOLOR_ENTRY_Alpha(name, pair)                                                      \
    int32_t name(const Image* srcImg, const Image* dstImg, uint8_t alpha) {                   \
        return zivcolor::convert<pair>(zivcolor::kernels_here().name, srcImg, dstImg, alpha); \
    }
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) \
    ZIVCOLOR_ENTRY_##alpha(name, ZIVCOLOR_PAIR(source, destination, tile))
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) \
    result name parameters { return zivcolor::kernels_here().name arguments; }
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_ENTRY_Alpha
#undef ZIVCOLOR_ENTRY_Opaque
#undef ZIVCOLOR_PAIR

}  // extern "C"
