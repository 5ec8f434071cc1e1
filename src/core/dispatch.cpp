// zivColorCvt: from a pair of format codes to the one kernel written for it.
#include "core/image.h"
#include "core/kernel_list.h"

namespace zivcolor {
namespace {

constexpr uint64_t pair_of(uint32_t source, uint32_t destination) { return uint64_t{source} << 32 | destination; }

int32_t dispatch(const Image* srcImg, const Image* dstImg, [[maybe_unused]] uint8_t alpha) {
#define ZIVCOLOR_CALL_Opaque(name) name(srcImg, dstImg)
#define ZIVCOLOR_CALL_Alpha(name) name(srcImg, dstImg, alpha)
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
}

}  // namespace
}  // namespace zivcolor

extern "C" int32_t zivColorCvt(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN* dstImg,
                               zivColorExtParam_ALPHA_t Param) {
    if (!srcImg || !dstImg) return zivStatus_NullPointer;
    return zivcolor::dispatch(srcImg, dstImg, static_cast<uint8_t>(Param.alpha & 0xFF));
}
