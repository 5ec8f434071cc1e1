// SPDX-License-Identifier: MIT
// What an engine learns from how long its tasks take, and what it decides by that: which tasks are worth a queue, and when a
// worker is worth its call. All of it is hints: any thread reads and writes them, without a lock and in no order. A wrong one
// costs time and nothing else.
#pragma once

#include <stdint.h>

#include <chrono>

#include "parallel/engine.h"
#include "parallel/sync.h"

namespace zivcolor {

using Duration = std::chrono::nanoseconds;

// The order of all hints.
constexpr auto relaxed = std::memory_order_relaxed;

// How long a thread that has run out of work spins, in the hope of more, before it sleeps.
constexpr Duration spin_time = std::chrono::microseconds(50);

// From the call of a worker to its first task: one that spins, and at best one that sleeps. How long that takes is learnt: an
// idle CPU of a virtual machine may take much longer to wake.
constexpr Duration spinner_time = std::chrono::microseconds(2);
constexpr Duration least_wake_time = std::chrono::microseconds(20);

// Tasks shorter than this are taken several at a time.
constexpr Duration portion_time = std::chrono::microseconds(4);

// What a task takes is unknown at first: so long that any worker is worth its call.
constexpr Duration unknown_time = std::chrono::seconds(1);

struct Pace {
    int32_t usual = 1;  // tasks that are usually added together; fixed after the start
    Atomic<int32_t> task_time{unknown_time / std::chrono::nanoseconds(1)};     // nanoseconds
    Atomic<int32_t> wake_time{least_wake_time / std::chrono::nanoseconds(1)};  // the same, of a worker that sleeps
    Atomic<uint32_t> runs{0};          // tasks that were run at once since the last wait
    Atomic<uint32_t> series{0};        // such images in a row, none of them long after the one before it
    Atomic<uint32_t> series_began{0};  // when the last one did, in microseconds
};

Duration task_time(const Pace& pace);
Duration wake_time(const Pace& pace);
bool is_short(const Pace& pace);

// A task has taken so long, or a worker that slept to come.
void learn_task_time(Pace& pace, Duration time);
void learn_wake_time(Pace& pace, Duration time);

// Whether all tasks that are usually added together take long enough to call a worker for them: one that spins, or one that
// sleeps. Now and then a worker is to be called for less: when many images follow one another, since from then on it spins.
bool is_worth_queuing(const Pace& pace, bool one_spins);
bool is_in_a_row(const Pace& pace);
void end_row(Pace& pace);

// Runs a task in the calling thread, and learns from some of them.
void run_at_once(Pace& pace, TaskFunction function, void* argument);
void end_runs(Pace& pace);

// Whether one more thread than team is worth its call, if it comes to these tasks after some time.
bool pays(const Pace& pace, int32_t tasks, int32_t team, Duration time);

}  // namespace zivcolor
