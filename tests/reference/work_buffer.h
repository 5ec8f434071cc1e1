// SPDX-License-Identifier: MIT
// The work buffer of a kernel is not cleared. A test that wants to know which bytes of a result are left to chance runs the
// reference twice, with two values here.
#pragma once

#include <cstdint>

namespace reference {

inline thread_local uint8_t g_work_buffer_fill = 0;

}  // namespace reference
