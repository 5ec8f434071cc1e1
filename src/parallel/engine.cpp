#include "parallel/engine.h"

#include <algorithm>
#include <bit>
#include <exception>
#include <memory>
#include <new>
#include <utility>

#include "parallel/cores.h"
#include "parallel/sync.h"
#include "parallel/task_queue.h"
#include "parallel/threads.h"

namespace zivcolor {
namespace {

using Duration = std::chrono::nanoseconds;
using Lock = std::unique_lock<Mutex>;
using namespace std::chrono_literals;

constexpr int32_t most_cores = 8;
constexpr int32_t least_room = 64;
constexpr int32_t most_tasks_per_core = 1 << 16;

// How long a thread that has run out of work yields, in the hope of more, before it sleeps.
constexpr Duration spin_time = 50us;

// From the call of a worker to its first task: one that sleeps, and one that spins.
constexpr Duration wake_time = 20us;
constexpr Duration spinner_time = 10us;

// Two threads that share tasks shorter than this are in each other's way at the lock.
constexpr Duration least_shared_time = 2us;

// A thread that took less than this goes on to the next task without looking back.
constexpr Duration small_time = 10us;

// What a task takes is unknown at first: so long that any worker is worth its waking.
constexpr Duration unknown_time = 1s;

// A sleeping worker looks after the queue at first so often, then ever less.
constexpr Duration least_watch = 1ms;
constexpr Duration longest_watch = 256ms;

struct alignas(apart) Worker {
    struct Engine* engine = nullptr;
    Thread thread;
    Condition wake;
    Atomic<bool> called{false};  // written under the lock; polled without it by the worker itself while it spins
    Worker* below = nullptr;     // in the stack of those asleep
};

// How it works
//
// One lock guards everything; it is open while a task runs, while a thread spins and while a worker is woken. Without it, only
// the id of an unfinished task is read (see Task), and by a spinning worker its own flag. A task is run by whoever takes it out
// of the queue: a worker, or a thread that waits. No more tasks run at a time than there are cores (but for those that found no
// room).
//
// Waking a worker takes longer than converting a small image. So a thread that waits starts on the tasks by itself, its own one
// first, and workers are called for what is left if that pays: call_worker compares the tasks queued, by what the last ones
// took, with the time of a wake-up. Each thread that takes a task calls one worker at most, and a called worker does the same,
// so that a late one holds up nobody. A worker that has run out of work spins a little: between two images of a stream it needs
// no wake-up. Only one spins at a time.
//
// No task is left lying: as long as tasks are queued and a core is free, a worker has been called, or spins, or a sleeping one
// looks after the queue by a timer. The timer slows down while there is nothing to do and stops in the end: after that, the
// next task that is added calls a worker in any case. It finds what the estimate gets wrong, such as a task that nobody waits
// for, or that stands behind a long one. A thread that sleeps until its task has finished is woken for that alone. Should the
// task still be queued then, because no core was free, the next free core calls a worker for it in any case.
struct Engine {
    Mutex mutex;
    TaskQueue queue;
    int32_t cores = 0;    // fixed after the start
    int32_t running = 0;  // threads that run tasks: never more than cores
    int32_t coming = 0;   // workers that have been called and have not looked at the queue yet
    int32_t hungry = 0;   // threads that sleep on a queued task
    Duration task_time = unknown_time;
    Duration watch_time{0};      // 0: nobody watches
    Worker* asleep = nullptr;    // a stack: the one that worked last is called first
    Worker* spinning = nullptr;  // at most one, and none that has been called
    Worker* watching = nullptr;  // one of those asleep
    bool stopping = false;
    int32_t started = 0;
    Condition all_started;
    int64_t process = 0;
    Worker workers[most_cores];

    bool may_start() const { return queue.count > 0 && running < cores; }
};

// Sections under the lock take tens of nanoseconds: a few attempts are cheaper than sleeping on it.
void acquire(Lock& lock) {
    for (int i = 0; i < 10; ++i) {
        if (lock.try_lock()) return;
        yield();
    }
    lock.lock();
}

// Calls a worker to what is queued, if it must come or pays. team counts the threads that are at it, come to it or will help.
// One that sleeps is returned, for wake() after unlocking.
Worker* call_worker(Engine& engine, int32_t team) {
    if (engine.queue.count <= engine.coming || engine.running + engine.coming >= engine.cores) return nullptr;
    const bool must = engine.hungry > 0 || !(engine.watching || engine.spinning || engine.coming > 0);
    // A worker that comes after some time saves a (team + 1)th of (left / team - time). It pays where that is worth the call.
    const Duration left = engine.queue.count * engine.task_time;
    const bool can_pay = team < engine.cores && engine.task_time > least_shared_time;
    const auto pays = [&](Duration time) { return can_pay && left > 2 * std::max(team, 1) * time; };
    if (engine.spinning && (must || pays(spinner_time))) {
        ++engine.coming;
        std::exchange(engine.spinning, nullptr)->called.store(true, std::memory_order_relaxed);
        return nullptr;
    }
    Worker* worker = engine.asleep;
    if (!worker || !(must || pays(wake_time))) return nullptr;
    ++engine.coming;
    engine.asleep = worker->below;
    if (engine.watching == worker) engine.watching = nullptr;
    worker->called.store(true, std::memory_order_relaxed);
    return worker;
}

void wake(Worker* worker) {
    if (worker) worker->wake.notify_one();
}

// Runs a queued task and, as long as they prove small, the oldest ones after it. The lock is open while a task runs.
void run_tasks(Engine& engine, Lock& lock, Task* task) {
    ++engine.running;
    const auto start = Clock::now();
    bool small = true;
    for (int32_t runs = 1, look = 1; task; ++runs) {
        engine.hungry -= task->sleepers;
        take_task(engine.queue, *task);
        Worker* worker = call_worker(engine, engine.running + engine.coming);
        lock.unlock();
        wake(worker);
        task->function(task->argument);
        // The clock costs as much as a small task: it is read after 1, 4, 16... of them.
        const bool looks = runs == look;
        const Duration time = looks ? Clock::now() - start : Duration{0};
        acquire(lock);
        if (looks) {
            look *= 4;
            small = time < small_time;
            if (runs == 1) engine.task_time = time;  // later, it would include what the lock takes
        }
        finish_task(engine.queue, *task);
        task = small ? engine.queue.oldest : nullptr;
    }
    --engine.running;
}

// A called worker has come.
void arrive(Engine& engine, Worker& self) {
    self.called.store(false, std::memory_order_relaxed);
    --engine.coming;
}

// True if the worker has been called meanwhile.
bool spin(Engine& engine, Worker& self, Lock& lock) {
    if (engine.spinning) return false;
    engine.spinning = &self;
    lock.unlock();
    // That it was called is read again under the lock, so this load orders nothing.
    const auto end = Clock::now() + spin_time;
    while (!self.called.load(std::memory_order_relaxed) && Clock::now() < end) yield();
    acquire(lock);
    if (engine.spinning == &self) {
        engine.spinning = nullptr;
        return false;
    }
    arrive(engine, self);
    return true;
}

void leave_the_sleeping(Engine& engine, const Worker& self) {
    Worker** place = &engine.asleep;
    while (*place != &self) place = &(*place)->below;
    *place = self.below;
}

// Sleeps until the worker is called, or finds a task as the oldest a second time while a core is free, or the engine ends.
void sleep(Engine& engine, Worker& self, Lock& lock) {
    self.below = std::exchange(engine.asleep, &self);
    int32_t seen = no_task;
    uint32_t added = engine.queue.added;
    const auto roused = [&] { return self.called.load(std::memory_order_relaxed) || engine.stopping; };
    while (!roused()) {
        if (!engine.watching && engine.watch_time > Duration{0}) engine.watching = &self;
        if (engine.watching != &self) {
            self.wake.wait(lock);
            continue;
        }
        if (self.wake.wait_for(lock, seen == no_task ? engine.watch_time : least_watch, roused)) break;
        const bool idle = engine.queue.count == 0, nothing_added = added == engine.queue.added;
        added = engine.queue.added;
        if (idle && nothing_added && engine.watch_time == longest_watch) {
            engine.watch_time = Duration{0};
            engine.watching = nullptr;
        } else if (idle) {
            engine.watch_time = std::min(2 * engine.watch_time, longest_watch);
            seen = no_task;
        } else if (engine.may_start() && engine.queue.oldest->id == seen) {
            engine.watch_time = least_watch;
            engine.watching = nullptr;
            engine.task_time = unknown_time;
            leave_the_sleeping(engine, self);
            return;
        } else {
            seen = engine.queue.oldest->id;
        }
    }
    if (self.called.load(std::memory_order_relaxed)) arrive(engine, self);
    if (engine.watch_time == Duration{0}) engine.watch_time = least_watch;
}

void work(void* argument) {
    keep_library_loaded();
    name_this_thread();
    Worker& self = *static_cast<Worker*>(argument);
    Engine& engine = *self.engine;
    Lock lock(engine.mutex);
    ++engine.started;
    engine.all_started.notify_one();
    const auto run_queue = [&] {
        while (engine.may_start()) run_tasks(engine, lock, engine.queue.oldest);
    };
    while (!engine.stopping) {
        sleep(engine, self, lock);
        do {
            run_queue();
        } while (spin(engine, self, lock));
    }
    run_queue();
}

// The number of workers that could be had.
int32_t start_workers(Engine& engine, int32_t wanted) {
    for (int32_t i = 0; i < wanted; ++i) {
        Worker& worker = engine.workers[i];
        worker.engine = &engine;
        try {
            worker.thread = start_without_signals(work, &worker);
        } catch (const std::exception&) {
            return i;
        }
    }
    return wanted;
}

// Yields until the task has finished, or for as long as a thread may spin.
template <class Unfinished>
void spin_while(const Unfinished& unfinished) {
    const auto end = Clock::now() + spin_time;
    while (unfinished() && Clock::now() < end) yield();
}

void sleep_on(Engine& engine, Task& task, int32_t id, Lock& lock) {
    ++task.sleepers;
    if (task.queued) ++engine.hungry;
    task.finished.wait(lock);
    if (task.unfinished.load(std::memory_order_relaxed) != id) return;  // finish_task has dealt with the sleepers
    --task.sleepers;
    if (task.queued) --engine.hungry;
}

Engine* as_engine(void* handle) { return static_cast<Engine*>(handle); }

}  // namespace

void* start_engine(int32_t tasks_per_core, int32_t first_id) noexcept {
    if (!have_threads || tasks_per_core > most_tasks_per_core) return nullptr;
    std::unique_ptr<Engine> engine(new (std::nothrow) Engine);
    if (!engine) return nullptr;
    const int32_t wanted = std::min(usable_cores(), most_cores);
    const int32_t room = std::max(wanted * std::max(tasks_per_core, 0), least_room);
    if (!make_places(engine->queue, static_cast<int32_t>(std::bit_ceil(static_cast<uint32_t>(room))), first_id)) return nullptr;
    engine->process = process_id();
    const int32_t workers = start_workers(*engine, wanted);
    if (workers == 0) return nullptr;
    // Once they all run, they keep the library loaded.
    Lock lock(engine->mutex);
    engine->all_started.wait(lock, [&] { return engine->started == workers; });
    engine->cores = workers;
    return engine.release();
}

void* zivParallelInit(void*, int32_t tasks_per_core) noexcept { return start_engine(tasks_per_core, 0); }

int32_t zivParallelEngineCores(void* handle) noexcept { return as_engine(handle)->cores; }

int32_t zivAddTask(void* handle, TaskFunction function, void* argument) noexcept {
    if (!handle || !function) return no_task;
    Engine& engine = *as_engine(handle);
    Lock lock(engine.mutex, std::defer_lock);
    acquire(lock);
    const Task* task = add_task(engine.queue, function, argument);
    if (!task) {
        lock.unlock();
        function(argument);
        return no_task;
    }
    const int32_t id = task->id;
    // The adding thread will mostly wait, and help; and whoever comes calls the next one.
    Worker* worker = engine.coming == 0 ? call_worker(engine, engine.running + 1) : nullptr;
    lock.unlock();
    wake(worker);
    return id;
}

int32_t zivWaitTask(void* handle, int32_t id) noexcept {
    if (!handle || id < 0) return 0;
    Engine& engine = *as_engine(handle);
    Task& task = place_of(engine.queue, id);
    const auto unfinished = [&] { return task.unfinished.load(std::memory_order_acquire) == id; };
    if (!unfinished()) return 0;

    Lock lock(engine.mutex, std::defer_lock);
    acquire(lock);
    bool has_spun = false;
    while (unfinished()) {
        if (engine.may_start()) {
            run_tasks(engine, lock, task.queued ? &task : engine.queue.oldest);
            has_spun = false;
        } else if (!has_spun) {
            lock.unlock();
            spin_while(unfinished);
            acquire(lock);
            has_spun = true;
        } else {
            sleep_on(engine, task, id, lock);
        }
    }
    // What other tasks are left needs somebody, should this thread not wait for them too.
    Worker* worker = call_worker(engine, engine.running + engine.coming + 1);
    lock.unlock();
    wake(worker);
    return 0;
}

void zivTryFireCpu(void*) noexcept {}
void zivTryRestoreCpu(void*) noexcept {}

int32_t zivParallelUninit(void* handle) noexcept {
    if (!handle) return -1;
    std::unique_ptr<Engine> engine(as_engine(handle));
    if (engine->process != process_id()) {
        // A fork copies neither workers nor a sound lock: there is nothing to end, and memory stays.
        static_cast<void>(engine.release());
        return 0;
    }
    {
        const std::lock_guard lock(engine->mutex);
        engine->stopping = true;
    }
    for (Worker& worker : engine->workers) wake(&worker);
    for (Worker& worker : engine->workers) {
        if (worker.thread.joinable()) worker.thread.join();
    }
    return 0;
}

}  // namespace zivcolor
