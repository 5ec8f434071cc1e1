// zivColorCvt: from a pair of format codes to the one kernel written for it.
#include "core/chosen_kernels.h"
#include "core/layout_list.h"

namespace zivcolor {
namespace {

int32_t dispatch(const Image* srcImg, const Image* dstImg, uint8_t alpha) {
    const KernelTable& kernels = kernels_here();
#define ZIVCOLOR_CALL_Opaque(name) kernels.name(srcImg, dstImg)
#define ZIVCOLOR_CALL_Alpha(name) kernels.name(srcImg, dstImg, alpha)
#define ZIVCOLOR_ROW_Direct(source, destination, call)
#define ZIVCOLOR_ROW_Dispatched(source, destination, call)     \
    case pair_of(zivPixFmt_##source, zivPixFmt_##destination): \
        return call;
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task) \
    ZIVCOLOR_ROW_##dispatch(source, destination, ZIVCOLOR_CALL_##alpha(name))
    switch (pair_of(srcImg->format, dstImg->format)) {
        ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
        default: return zivStatus_BadArgument;
    }
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_ROW_Dispatched
#undef ZIVCOLOR_ROW_Direct
#undef ZIVCOLOR_CALL_Alpha
#undef ZIVCOLOR_CALL_Opaque
}

}  // namespace
}  // namespace zivcolor

extern "C" int32_t zivColorCvt(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                               zivColorExtParam_ALPHA_t Param) {
    if (!srcImg || !dstImg) return zivStatus_NullPointer;
    return zivcolor::dispatch(srcImg, dstImg, static_cast<uint8_t>(Param.alpha & 0xFF));
}
