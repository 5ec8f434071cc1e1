// SPDX-License-Identifier: MIT
// The lane operations of all targets of this build.
#include "built_targets.h"
#include "lanes/lane_operations.h"

#define ZIVCOLOR_DECLARE(target, condition)               \
    namespace zivcolor::target {                          \
    extern const harness::LaneOperations lane_operations; \
    }
ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_DECLARE)
#undef ZIVCOLOR_DECLARE

#define ZIVCOLOR_ROW(target, condition) {#target, &zivcolor::target::lane_operations},
const harness::TargetOperations harness::built_operations[] = {ZIVCOLOR_BUILT_TARGETS(ZIVCOLOR_ROW){nullptr, nullptr}};
#undef ZIVCOLOR_ROW
