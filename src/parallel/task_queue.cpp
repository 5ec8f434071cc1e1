// SPDX-License-Identifier: MIT
#include "parallel/task_queue.h"

#include <new>

namespace zivcolor {
namespace {

constexpr uint32_t id_mask = 0x7FFFFFFF;

int32_t id_after(int32_t id, int32_t room) {
    return static_cast<int32_t>((static_cast<uint32_t>(id) + static_cast<uint32_t>(room)) & id_mask);
}

void free_place(TaskQueue& queue, Task& task) {
    task.next = queue.free;
    queue.free = &task;
}

}  // namespace

bool make_places(TaskQueue& queue, int32_t room, int32_t first_id) {
    queue.places.reset(new (std::nothrow) Task[static_cast<size_t>(room)]);
    if (!queue.places) return false;
    queue.room = room;
    for (int32_t place = room - 1; place >= 0; --place) {
        Task& task = queue.places[static_cast<size_t>(place)];
        task.id = (first_id & ~(room - 1)) | place;
        free_place(queue, task);
    }
    return true;
}

Task& place_of(const TaskQueue& queue, int32_t id) { return queue.places[static_cast<size_t>(id & (queue.room - 1))]; }

Task* add_task(TaskQueue& queue, TaskFunction function, void* argument) {
    Task* task = queue.free;
    if (!task) return nullptr;
    queue.free = task->next;
    task->function = function;
    task->argument = argument;
    task->queued = true;
    task->next = nullptr;
    task->previous = queue.newest;
    (queue.newest ? queue.newest->next : queue.oldest) = task;
    queue.newest = task;
    ++queue.count;
    queue.unfinished.store(queue.unfinished.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    task->unfinished.store(task->id, std::memory_order_release);
    return task;
}

void take_task(TaskQueue& queue, Task& task) {
    (task.previous ? task.previous->next : queue.oldest) = task.next;
    (task.next ? task.next->previous : queue.newest) = task.previous;
    task.queued = false;
    --queue.count;
    queue.hungry -= task.sleepers;
}

void finish_task(TaskQueue& queue, Task& task) {
    task.unfinished.store(no_task, std::memory_order_release);
    task.id = id_after(task.id, queue.room);
    queue.unfinished.store(queue.unfinished.load(std::memory_order_relaxed) - 1, std::memory_order_relaxed);
    if (task.sleepers > 0) task.finished.notify_all();
    task.sleepers = 0;
    free_place(queue, task);
}

}  // namespace zivcolor
