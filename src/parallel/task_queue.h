// SPDX-License-Identifier: MIT
// The tasks of an engine: a fixed number of places, of which the queued ones stand in the order of adding. Nothing here locks:
// the engine holds its lock around every call.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <memory>

#include "parallel/engine.h"
#include "parallel/sync.h"

namespace zivcolor {

// What different threads write stands so far apart: two cache lines, since some processors fetch them in pairs.
constexpr size_t apart = 128;

constexpr int32_t no_task = -1;

struct alignas(apart) Task {
    TaskFunction function = nullptr;
    void* argument = nullptr;
    // The task's id until it has finished; the one field that is also read without the lock, with acquire order, by a thread
    // that waits for it. Both stores are releases. That of finish_task orders the task's writes before the waiter that reads
    // it. That of add_task does the same for a waiter that finds the place given to another task: what finished there before
    // came to the adding thread through the lock.
    Atomic<int32_t> unfinished{no_task};
    int32_t id = 0;            // of this task; while the place is free, of the next one in it
    bool queued = false;       // neither running nor finished
    int32_t sleepers = 0;      // threads that sleep on finished
    Task* next = nullptr;      // in the queue, among those that a thread has taken together, or among the free places
    Task* previous = nullptr;  // in the queue
    Condition finished;
};

struct TaskQueue {
    std::unique_ptr<Task[]> places;
    int32_t room = 0;               // how many, a power of two: an id modulo room is its place
    int32_t count = 0;              // queued tasks
    int32_t hungry = 0;             // threads that sleep on these
    Atomic<int32_t> unfinished{0};  // these and those that run; also read without the lock, as a hint
    Task* oldest = nullptr;
    Task* newest = nullptr;
    Task* free = nullptr;
};

// Makes room places; the ids of each go up from first_id by room, modulo 2^31. False without memory.
bool make_places(TaskQueue& queue, int32_t room, int32_t first_id);

Task& place_of(const TaskQueue& queue, int32_t id);

// Puts a task at the end of the queue; null if every place holds an unfinished one.
Task* add_task(TaskQueue& queue, TaskFunction function, void* argument);

// Takes a queued task out of the queue, to run it.
void take_task(TaskQueue& queue, Task& task);

// Declares a task that has run finished, wakes who sleeps on it, and frees its place, whether or not anyone has waited for it.
void finish_task(TaskQueue& queue, Task& task);

}  // namespace zivcolor
