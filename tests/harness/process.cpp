// SPDX-License-Identifier: MIT
#include "harness/process.h"

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

namespace harness {

// The thread sanitizer starts a thread of its own with the first one of the process: have it before counting.
static bool start_first_thread() {
    std::thread([] {}).join();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return true;
}

int thread_count() {
    [[maybe_unused]] static const bool started = start_first_thread();
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("Threads:", 0) == 0) return std::stoi(line.substr(8));
    return -1;
}

bool thread_count_becomes(int expected) {
    for (int i = 0; i < 500; i++) {
        if (thread_count() == expected) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

}  // namespace harness
