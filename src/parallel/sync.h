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

inline void yield() { std::this_thread::yield(); }

}  // namespace zivcolor
