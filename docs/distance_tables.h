// SPDX-License-Identifier: MIT
// The parts of docs/formats.md that are measured.
#pragma once

#include <string>

// What to take, the traps, and the distances of all kernels between YUV and RGB. Throws if an advice is no better than the
// kernel that it is there to avoid.
std::string distance_tables();
