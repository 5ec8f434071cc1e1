// SPDX-License-Identifier: MIT
// What the operating system is told of the engine's threads. Each does nothing where a system has no such thing.
#pragma once

#include <stdint.h>

#include "parallel/sync.h"

namespace zivcolor {

// False where a program cannot have threads at all: there even the attempt to start one may end it.
constexpr bool have_threads =
#if (defined(__EMSCRIPTEN__) && !defined(__EMSCRIPTEN_PTHREADS__)) || (defined(__wasi__) && !defined(_REENTRANT))
    false;
#else
    true;
#endif

// A thread that takes no signal from its first instruction on: those of the process are for the application's threads. Throws
// what the constructor of std::thread throws.
Thread start_without_signals(void (*function)(void*), void* argument);

// Gives the calling thread the name "zivcolor".
void name_this_thread();

// Keeps the library loaded until the calling thread has ended, even if the application closes it before.
void keep_library_loaded();

// The CPU that the calling thread is on; negative where the system does not say.
int32_t this_cpu();

// Moves the calling thread from this CPU to another one that it may run on, if there is one. The thread keeps off this CPU
// then, and no longer off the one that it has avoided since it left that (negative: none). Returns which one it avoids now.
int32_t leave_cpu(int32_t cpu, int32_t avoided);

// Differs between a process and its forked child.
int64_t process_id();

}  // namespace zivcolor
