// SPDX-License-Identifier: MIT
// What the operating system says about the running process.
#pragma once

namespace harness {

// The threads of this process.
int thread_count();

// True once there are exactly so many, which may take a moment after a thread was joined; false after some seconds.
bool thread_count_becomes(int expected);

// True if the library's build checks memory or threads at run time, so that the heap is not the system's own.
extern const bool sanitized;

}  // namespace harness
