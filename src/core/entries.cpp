// The exported entry of every kernel: hands the call to the kernel that was built for this CPU.
#include "core/targets.h"

#include "built_targets.h"

using zivcolor::Image;
using zivcolor::MaskedImage;

#if defined(ZIVCOLOR_ONLY_TARGET)
// One candidate: the entry calls it directly.
#define ZIVCOLOR_FAMILY(family, FAMILY) ZIVCOLOR_DECLARE_KERNELS(ZIVCOLOR_ONLY_TARGET, family, FAMILY)
ZIVCOLOR_FAMILIES(ZIVCOLOR_FAMILY)
#undef ZIVCOLOR_FAMILY
namespace only {
#define ZIVCOLOR_FAMILY(family, FAMILY) using namespace zivcolor::ZIVCOLOR_ONLY_TARGET::family;
ZIVCOLOR_FAMILIES(ZIVCOLOR_FAMILY)
#undef ZIVCOLOR_FAMILY
}  // namespace only
#define ZIVCOLOR_KERNEL(name) only::name
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
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task) ZIVCOLOR_ENTRY_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) \
    result name parameters { return ZIVCOLOR_KERNEL(name) arguments; }
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)

}  // extern "C"
