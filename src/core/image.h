// SPDX-License-Identifier: MIT
// The records that cross the boundary, under the names that the library's own code uses.
#pragma once

#include "zivcolor.h"

namespace zivcolor {

using Image = __tag_KOBR_OFFSCREEN;
using MaskedImage = _TAG_OFFSCREEN;

}  // namespace zivcolor
