#include "parallel/engine.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <thread>

#include "parallel/cores.h"

namespace zivcolor {
namespace {

constexpr int32_t most_cores = 8;
constexpr int32_t least_room = 64;
constexpr int32_t most_tasks_per_core = 1 << 16;
constexpr int32_t no_task = -1;

// How often a waiting thread yields before it sleeps: the last band of a conversion mostly ends within that time, and being
// woken takes longer.
constexpr int yields_before_sleep = 100;

struct Task {
    TaskFunction function = nullptr;
    void* argument = nullptr;
    std::atomic<int32_t> unfinished{no_task};  // the task's id while it is queued or running
};

// Ids count up modulo 2^31; a task stands in the ring at its id modulo the room. Its place is free again as soon as it has
// finished, whether or not anyone has waited for it.
struct Engine {
    std::mutex mutex;              // guards all that is not atomic or fixed after the start
    std::condition_variable work;  // workers: a task may start
    std::condition_variable done;  // waiting threads: a task has finished
    std::unique_ptr<Task[]> ring;
    uint32_t room = 0;          // a power of two
    uint32_t next_start = 0;    // id of the oldest queued task
    uint32_t next_id = 0;       // id of the next task to be added
    int32_t cores = 0;          // fixed after the start
    int32_t running = 0;        // tasks that have started and not finished: never more than cores
    int32_t sleepers = 0;       // threads that wait on done
    bool worker_woken = false;  // a worker has been woken and has not looked at the queue yet
    bool stopping = false;
    std::thread workers[most_cores];

    Task& task(uint32_t id) { return ring[id % room]; }
    bool may_start() const { return next_start != next_id && running < cores; }
};

constexpr uint32_t id_after(uint32_t id) { return (id + 1) & 0x7FFFFFFF; }

// Workers are woken one at a time: one that takes a task and leaves more behind wakes the next. So a thread that adds small
// tasks and runs them itself pays for one wake-up at most. True if the caller must notify work after unlocking.
bool must_wake_worker(Engine& engine) {
    if (engine.worker_woken || !engine.may_start()) return false;
    engine.worker_woken = true;
    return true;
}

// Starts the oldest queued task and sees it through. The lock is open while the task runs.
void run_one(Engine& engine, std::unique_lock<std::mutex>& lock) {
    Task& task = engine.task(engine.next_start);
    engine.next_start = id_after(engine.next_start);
    ++engine.running;
    const bool wake = must_wake_worker(engine);
    lock.unlock();
    if (wake) engine.work.notify_one();
    task.function(task.argument);
    lock.lock();
    --engine.running;
    task.unfinished.store(no_task, std::memory_order_release);
    if (engine.sleepers > 0) engine.done.notify_all();
}

void work(Engine& engine) {
    std::unique_lock lock(engine.mutex);
    while (true) {
        engine.worker_woken = false;
        if (engine.may_start()) {
            run_one(engine, lock);
        } else if (engine.stopping) {
            return;
        } else {
            engine.work.wait(lock);
        }
    }
}

// The number of workers that could be had.
int32_t start_workers(Engine& engine, int32_t wanted) {
    for (int32_t i = 0; i < wanted; ++i) {
        try {
            engine.workers[i] = std::thread(work, std::ref(engine));
        } catch (const std::exception&) {
            return i;
        }
    }
    return wanted;
}

Engine* as_engine(void* handle) { return static_cast<Engine*>(handle); }

}  // namespace

void* zivParallelInit(void*, int32_t tasks_per_core) noexcept {
    if (tasks_per_core > most_tasks_per_core) return nullptr;
    std::unique_ptr<Engine> engine(new (std::nothrow) Engine);
    if (!engine) return nullptr;
    const int32_t wanted = std::min(usable_cores(), most_cores);
    engine->room = std::bit_ceil(static_cast<uint32_t>(std::max(wanted * std::max(tasks_per_core, 0), least_room)));
    engine->ring.reset(new (std::nothrow) Task[engine->room]);
    if (!engine->ring) return nullptr;
    const int32_t workers = start_workers(*engine, wanted);
    if (workers == 0) return nullptr;
    const std::lock_guard lock(engine->mutex);
    engine->cores = workers;
    return engine.release();
}

int32_t zivParallelEngineCores(void* handle) noexcept { return as_engine(handle)->cores; }

int32_t zivAddTask(void* handle, TaskFunction function, void* argument) noexcept {
    if (!handle || !function) return no_task;
    Engine& engine = *as_engine(handle);
    std::unique_lock lock(engine.mutex);
    const uint32_t id = engine.next_id;
    Task& task = engine.task(id);
    if (task.unfinished.load(std::memory_order_relaxed) != no_task) {
        lock.unlock();
        function(argument);
        return no_task;
    }
    task.function = function;
    task.argument = argument;
    task.unfinished.store(static_cast<int32_t>(id), std::memory_order_relaxed);
    engine.next_id = id_after(id);
    const bool wake = must_wake_worker(engine);
    lock.unlock();
    if (wake) engine.work.notify_one();
    return static_cast<int32_t>(id);
}

int32_t zivWaitTask(void* handle, int32_t id) noexcept {
    if (!handle || id < 0) return 0;
    Engine& engine = *as_engine(handle);
    const Task& task = engine.task(static_cast<uint32_t>(id));
    const auto unfinished = [&] { return task.unfinished.load(std::memory_order_acquire) == id; };
    if (!unfinished()) return 0;

    std::unique_lock lock(engine.mutex);
    while (unfinished() && engine.may_start()) run_one(engine, lock);
    const bool wake = must_wake_worker(engine);  // what other threads have added since
    lock.unlock();
    if (wake) engine.work.notify_one();

    for (int i = 0; i < yields_before_sleep && unfinished(); ++i) std::this_thread::yield();
    if (!unfinished()) return 0;

    lock.lock();
    ++engine.sleepers;
    engine.done.wait(lock, [&] { return !unfinished(); });
    --engine.sleepers;
    return 0;
}

void zivTryFireCpu(void*) noexcept {}
void zivTryRestoreCpu(void*) noexcept {}

int32_t zivParallelUninit(void* handle) noexcept {
    if (!handle) return -1;
    std::unique_ptr<Engine> engine(as_engine(handle));
    {
        const std::lock_guard lock(engine->mutex);
        engine->stopping = true;
    }
    engine->work.notify_all();
    for (std::thread& worker : engine->workers) {
        if (worker.joinable()) worker.join();
    }
    return 0;
}

}  // namespace zivcolor
