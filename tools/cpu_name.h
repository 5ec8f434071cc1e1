// SPDX-License-Identifier: MIT
// What the machine says of its CPU.
#pragma once

#include <string>

namespace tool {

// Its name: of every kind of core where there are several. Never empty.
std::string cpu_name();

// The CPUs that this program may run on.
int cpu_count();

}  // namespace tool
