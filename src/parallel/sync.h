// SPDX-License-Identifier: MIT
// What the engine takes from the standard library to let threads meet, in one place so that a test can put its own there and
// walk through the schedules.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zivcolor {

template <class T>
using Atomic = std::atomic<T>;
using Clock = std::chrono::steady_clock;
using Condition = std::condition_variable;
using Mutex = std::mutex;
using Thread = std::thread;

// Lets other threads have the CPU, for milliseconds if one of another program is ready.
inline void yield() { std::this_thread::yield(); }

// A moment of a loop that waits for another CPU.
inline void pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("isb");
#endif
}

}  // namespace zivcolor
