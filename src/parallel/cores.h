// SPDX-License-Identifier: MIT
// How many CPUs there are for the calling thread.
#pragma once

#include <stdint.h>

namespace zivcolor {

// The CPUs that the calling thread may run on; at least 1.
int32_t usable_cores();

}  // namespace zivcolor
