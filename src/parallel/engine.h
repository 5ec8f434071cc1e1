// The parallel engine: runs task functions on worker threads. An engine is an opaque handle; a process may hold any number of
// them, and any thread may add and wait. Workers sleep while there is nothing to run.
#pragma once

#include <stdint.h>

namespace zivcolor {

using TaskFunction = void (*)(void* argument);

// Starts an engine with one worker for each core, and room for tasks_per_core unfinished tasks for each of them (never less
// than 64 in all). Cores are the CPUs that the calling thread may run on, from 1 to 8. If the system grants fewer threads, the
// engine has fewer cores. The first argument is not read. Null if there is not one worker.
void* zivParallelInit(void* reserved, int32_t tasks_per_core) noexcept;

// The number of cores, which is also how many tasks run at the same time: 1 to 8.
int32_t zivParallelEngineCores(void* engine) noexcept;

// Queues function(argument) and returns the task's id; never blocks. When the engine is full, the function has run in the
// calling thread on return. Negative if there is nothing left to wait for: that is harmless to wait on.
int32_t zivAddTask(void* engine, zivcolor::TaskFunction function, void* argument) noexcept;

// Returns 0 once the task has finished, and what it wrote is then visible to the caller. Returns at once for an id that has
// finished before or that the engine does not know. While the task is unfinished, the caller runs queued tasks of the engine
// in its own thread, as long as a core is free. A task must not wait for another.
int32_t zivWaitTask(void* engine, int32_t id) noexcept;

// Hints around a time of heavy work. They do nothing: the governors of today's systems see the load by themselves.
void zivTryFireCpu(void* engine) noexcept;
void zivTryRestoreCpu(void* engine) noexcept;

// Runs what is queued, ends the workers and releases the engine; returns 0, and no thread is left. Negative for a null engine.
// No other thread may be using the engine, nor may a task of its own call this.
int32_t zivParallelUninit(void* engine) noexcept;

}  // namespace zivcolor
