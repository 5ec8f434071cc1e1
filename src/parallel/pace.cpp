// SPDX-License-Identifier: MIT
#include "parallel/pace.h"

#include <algorithm>

namespace zivcolor {
namespace {

using namespace std::chrono_literals;

// Tasks that take less than this together are not worth a call: of a worker that spins, since each task is then dealt with
// under the lock, and of one that sleeps.
Duration least_for_spinner(const Pace& pace) { return 8us + pace.usual * 85ns; }
Duration least_for_sleeper(const Pace& pace) { return 2 * wake_time(pace); }

// Large images are worth a try however late a worker came.
constexpr Duration longest_wake_time = 64us;

// After so many images in a row a worker is called.
constexpr uint32_t long_row = 16;

Duration image_time(const Pace& pace) { return pace.usual * task_time(pace); }

// The clock costs as much as a small task: it is read for the first one of an image, for the 4th, the 16th...
bool is_power_of_4(uint32_t n) { return (n & (n - 1)) == 0 && (n & 0x55555555) != 0; }

void count_image(Pace& pace, Clock::time_point start) {
    const auto time = std::chrono::duration_cast<std::chrono::microseconds>(start.time_since_epoch()).count();
    const auto now = static_cast<uint32_t>(time);
    const bool follows = now - pace.series_began.load(relaxed) < (image_time(pace) * 5 / 4 + spin_time) / 1us;
    pace.series.store(follows ? pace.series.load(relaxed) + 1 : 0, relaxed);
    pace.series_began.store(now, relaxed);
}

}  // namespace

Duration task_time(const Pace& pace) { return Duration(pace.task_time.load(relaxed)); }
Duration wake_time(const Pace& pace) { return Duration(pace.wake_time.load(relaxed)); }
bool is_short(const Pace& pace) { return task_time(pace) < portion_time; }

// What disturbs a task makes it longer, so a longer time counts for a quarter.
void learn_task_time(Pace& pace, Duration time) {
    const Duration known = task_time(pace), now = std::min(time, unknown_time);
    pace.task_time.store(static_cast<int32_t>((now < known ? now : known + (now - known) / 4).count()), relaxed);
}

void learn_wake_time(Pace& pace, Duration time) {
    const Duration known = wake_time(pace), now = std::clamp<Duration>(time, least_wake_time, longest_wake_time);
    pace.wake_time.store(static_cast<int32_t>((known + (now - known) / 4).count()), relaxed);
}

bool is_worth_queuing(const Pace& pace, bool one_spins) {
    return image_time(pace) >= (one_spins || is_in_a_row(pace) ? least_for_spinner(pace) : least_for_sleeper(pace));
}

bool is_in_a_row(const Pace& pace) { return pace.series.load(relaxed) >= long_row; }

void end_row(Pace& pace) { pace.series.store(0, relaxed); }

void run_at_once(Pace& pace, TaskFunction function, void* argument) {
    const uint32_t runs = pace.runs.load(relaxed) + 1;
    pace.runs.store(runs, relaxed);
    if (!is_power_of_4(runs)) return function(argument);
    const auto start = Clock::now();
    if (runs == 1) {
        count_image(pace, start);
        learn_wake_time(pace, wake_time(pace) * 31 / 32);  // it may be better by now: in the end that is tried
    }
    function(argument);
    learn_task_time(pace, Clock::now() - start);
}

void end_runs(Pace& pace) {
    if (pace.runs.load(relaxed) != 0) pace.runs.store(0, relaxed);
}

// It saves a (team + 1)th of (left / team - time), which must be worth the call.
bool pays(const Pace& pace, int32_t tasks, int32_t team, Duration time) {
    return tasks * task_time(pace) > 2 * std::max(team, 1) * time;
}

}  // namespace zivcolor
