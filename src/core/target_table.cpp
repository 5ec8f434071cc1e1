// The function table of one target; built once for each. The build defines ZIVCOLOR_<family> as the target whose kernels of
// that family it takes: itself, or one that it extends.
#include "core/kernels.h"

#define ZIVCOLOR_FAMILY(family, FAMILY) ZIVCOLOR_DECLARE_KERNELS(ZIVCOLOR_##family, family, FAMILY)
ZIVCOLOR_FAMILIES(ZIVCOLOR_FAMILY)
#undef ZIVCOLOR_FAMILY

namespace zivcolor::ZIVCOLOR_TARGET {

namespace taken {
#define ZIVCOLOR_FAMILY(family, FAMILY) using namespace zivcolor::ZIVCOLOR_##family::family;
ZIVCOLOR_FAMILIES(ZIVCOLOR_FAMILY)
#undef ZIVCOLOR_FAMILY
}  // namespace taken

extern const KernelTable kernels;
const KernelTable kernels = {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task) taken::name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) taken::name,
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
};

}  // namespace zivcolor::ZIVCOLOR_TARGET
