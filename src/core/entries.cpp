// The exported entry of every kernel: hands the call to the kernel that was built for this CPU.
#include "core/targets.h"

#include "built_targets.h"

using zivcolor::Image;
using zivcolor::MaskedImage;

#if defined(ZIVCOLOR_ONLY_TARGET)
// One candidate: the entry calls it directly.
namespace zivcolor::ZIVCOLOR_ONLY_TARGET {
#define ZIVCOLOR_DECLARE_Opaque(name) int32_t name(const Image* srcImg, const Image* dstImg);
#define ZIVCOLOR_DECLARE_Alpha(name) int32_t name(const Image* srcImg, const Image* dstImg, uint8_t alpha);
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task) ZIVCOLOR_DECLARE_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) result name parameters;
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
}  // namespace zivcolor::ZIVCOLOR_ONLY_TARGET
#define ZIVCOLOR_KERNEL(name) zivcolor::ZIVCOLOR_ONLY_TARGET::name
#else
#define ZIVCOLOR_KERNEL(name) zivcolor::chosen_kernels().name
#endif

extern "C" {

#define ZIVCOLOR_ENTRY_Opaque(name) \
    int32_t name(const Image* srcImg, const Image* dstImg) { return ZIVCOLOR_KERNEL(name)(srcImg, dstImg); }
#define ZIVCOLOR_ENTRY_Alpha(name)                                          \
    int32_t name(const Image* srcImg, const Image* dstImg, uint8_t alpha) { \
        return ZIVCOLOR_KERNEL(name)(srcImg, dstImg, alpha);                \
    }
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task) ZIVCOLOR_ENTRY_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) \
    result name parameters { return ZIVCOLOR_KERNEL(name) arguments; }
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)

}  // extern "C"
