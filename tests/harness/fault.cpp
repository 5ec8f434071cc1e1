// SPDX-License-Identifier: MIT
#include "harness/fault.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstring>

namespace harness {

namespace {

struct Call {
    const char* target = nullptr;
    const std::function<std::string()>* what = nullptr;
    const std::vector<Running::Area>* areas = nullptr;
};
thread_local Call g_running;

// In words, against the nearest area: a fault is next to the one that was overrun.
std::string place_of(const uint8_t* address, const std::vector<Running::Area>& areas) {
    constexpr ptrdiff_t far = 1 << 20;
    std::string text;
    ptrdiff_t nearest = far;
    for (const Running::Area& area : areas) {
        if (area.first == area.past) continue;
        const auto at = reinterpret_cast<intptr_t>(address);
        const ptrdiff_t before = reinterpret_cast<intptr_t>(area.first) - at,
                        after = at - reinterpret_cast<intptr_t>(area.past) + 1;
        const ptrdiff_t distance = before > 0 ? before : after;
        if (distance >= nearest) continue;
        nearest = distance;
        text = ", " + std::to_string(distance) + (distance == 1 ? " byte" : " bytes") +
               (before > 0 ? " before the first" : " past the last") + " byte of " + area.name + " that it may touch";
    }
    return text;
}

// The fault is the kernel's, not the heap's: strings may be made here.
void report(int signal_number, siginfo_t* info, void*) {
    ::signal(signal_number, SIG_DFL);
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    const Call running = g_running;
    std::string text = std::string("\n") + strsignal(signal_number) + " in ";
    if (test) text += std::string(test->test_suite_name()) + "." + test->name();
    if (running.target) {
        text += std::string(", target ") + running.target + ": " + (*running.what)();
        if (signal_number != SIGILL && signal_number != SIGFPE && running.areas)
            text += place_of(static_cast<const uint8_t*>(info->si_addr), *running.areas);
    }
    text += "\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}  // the instruction is run again, and ends the process

}  // namespace

void report_faults() {
    struct sigaction action = {};
    action.sa_sigaction = report;
    action.sa_flags = SA_SIGINFO;
    for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE}) sigaction(number, &action, nullptr);
}

Running::Running(const char* target, const std::function<std::string()>& what, const std::vector<Area>* areas) {
    g_running = {target, &what, areas};
}
Running::~Running() { g_running = {}; }

}  // namespace harness
