// SPDX-License-Identifier: MIT
// A CPU that a test makes up, in the place of the file of this name in src/.
#pragma once

namespace zivcolor {

struct Leaf {
    unsigned a = 0, b = 0, c = 0, d = 0;
};
Leaf cpuid(unsigned number, unsigned part = 0);
unsigned saved_state();

}  // namespace zivcolor
