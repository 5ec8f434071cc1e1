// The function table of one target; built once for each, like the kernels.
#include "core/targets.h"

namespace zivcolor::ZIVCOLOR_TARGET {

#define ZIVCOLOR_DECLARE_Opaque(name) int32_t name(const Image* srcImg, const Image* dstImg);
#define ZIVCOLOR_DECLARE_Alpha(name) int32_t name(const Image* srcImg, const Image* dstImg, uint8_t alpha);
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task) ZIVCOLOR_DECLARE_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) result name parameters;
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION

extern const KernelTable kernels;
const KernelTable kernels = {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task) name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) name,
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
};

}  // namespace zivcolor::ZIVCOLOR_TARGET
