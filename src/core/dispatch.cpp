// SPDX-License-Identifier: MIT
// zivColorCvt: from a pair of format codes to the one kernel written for it.
#include "core/chosen_kernels.h"
#include "core/streaming.h"

namespace zivcolor {
namespace {

// Whether there is any conversion from this layout.
constexpr bool is_source(uint32_t format) {
#define ZIVCOLOR_SOURCE_Direct(source)
#define ZIVCOLOR_SOURCE_Dispatched(source) \
    if (format == zivPixFmt_##source) return true;
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) ZIVCOLOR_SOURCE_##dispatch(source)
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_SOURCE_Dispatched
#undef ZIVCOLOR_SOURCE_Direct
    return false;
}

// Of an unknown source the destination is not read, and of a pair without a conversion nothing but the formats.
int32_t dispatch(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    if (!is_source(srcImg->format)) return zivStatus_BadArgument;
    const KernelTable& kernels = kernels_here();
#define ZIVCOLOR_ARGUMENTS_Opaque srcImg, dstImg
#define ZIVCOLOR_ARGUMENTS_Alpha srcImg, dstImg, alpha
#define ZIVCOLOR_ROW_Direct(name, source, destination, alpha, tile)
#define ZIVCOLOR_ROW_Dispatched(name, source, destination, alpha, tile)                                      \
    case pair_of(zivPixFmt_##source, zivPixFmt_##destination):                                               \
        return convert_within<&KernelTable::name, zivPixFmt_##source, zivPixFmt_##destination, Tiles::tile>( \
            pixels_of(*dstImg), kernels, ZIVCOLOR_ARGUMENTS_##alpha);
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) \
    ZIVCOLOR_ROW_##dispatch(name, source, destination, alpha, tile)
    switch (pair_of(srcImg->format, dstImg->format)) {
        ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
        default: return zivStatus_BadArgument;
    }
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_ROW_Dispatched
#undef ZIVCOLOR_ROW_Direct
#undef ZIVCOLOR_ARGUMENTS_Alpha
#undef ZIVCOLOR_ARGUMENTS_Opaque
}

}  // namespace
}  // namespace zivcolor

extern "C" int32_t zivColorCvt(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                               zivColorExtParam_ALPHA_t Param) {
    if (!srcImg || !dstImg) return zivStatus_NullPointer;
    return zivcolor::dispatch(srcImg, dstImg, static_cast<uint8_t>(Param.alpha & 0xFF));
}
