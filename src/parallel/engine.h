// SPDX-License-Identifier: MIT
// The parallel engine: runs task functions on worker threads. An engine is an opaque handle; a process may hold any number of
// them, and any thread may add and wait. Workers sleep while there is nothing to run. Tasks must not wait for one another.
#pragma once

#include <stdint.h>

namespace zivcolor {

using TaskFunction = void (*)(void* argument);

// Starts an engine with one worker for each core, and room for tasks_per_core unfinished tasks for each of them (never less
// than 64 in all); as many are taken to be usually added together. Cores are the CPUs that the calling thread may run on, from
// 1 to 8. If the system grants fewer threads, the engine has fewer cores. The first argument is not read. Null if there is not
// one worker.
void* zivParallelInit(void* reserved, int32_t tasks_per_core) noexcept;

// The number of cores, which is also how many queued tasks run at the same time at most: 1 to 8.
int32_t zivParallelEngineCores(void* engine) noexcept;

// Queues function(argument) and returns the task's id. Negative if there is nothing left to wait for, which is harmless to wait
// on: the function has run in the calling thread. So it does when the engine is full, and when no task is unfinished and the
// last ones were too short for a worker to be worth its call. Never waits for a task. A worker is called if that pays, by what
// the last tasks took, and whenever nobody else would look after the queue: a task that nobody waits for begins at the latest
// when one of those that run has finished.
int32_t zivAddTask(void* engine, TaskFunction function, void* argument) noexcept;

// Returns 0 once the task has finished, and what it wrote is then visible to the caller. Returns at once for an id that has
// finished before or that the engine does not know. While the task is unfinished, the caller runs queued tasks of the engine in
// its own thread as long as a core is free, this one first.
int32_t zivWaitTask(void* engine, int32_t id) noexcept;

// Hints around a time of heavy work. They do nothing: the governors of today's systems see the load by themselves.
void zivTryFireCpu(void* engine) noexcept;
void zivTryRestoreCpu(void* engine) noexcept;

// Runs what is queued, ends the workers and releases the engine; returns 0, and no thread is left. Negative for a null engine.
// No other thread may be using the engine, nor may a task of its own call this. In the child of a fork there are no workers:
// there it returns 0 at once, memory stays allocated, and no other function may be called with the engine.
int32_t zivParallelUninit(void* engine) noexcept;

// zivParallelInit with ids that begin at the one given, or a little below it: for tests of what happens after the last.
void* start_engine(int32_t tasks_per_core, int32_t first_id) noexcept;

}  // namespace zivcolor
