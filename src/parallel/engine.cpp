// SPDX-License-Identifier: MIT
#include "parallel/engine.h"

#include <algorithm>
#include <bit>
#include <exception>
#include <memory>
#include <new>
#include <utility>

#include "parallel/cores.h"
#include "parallel/pace.h"
#include "parallel/sync.h"
#include "parallel/task_queue.h"
#include "parallel/threads.h"

namespace zivcolor {
namespace {

using Lock = std::unique_lock<Mutex>;
using namespace std::chrono_literals;

constexpr int32_t most_cores = 8;
constexpr int32_t least_room = 64;
constexpr int32_t most_tasks_per_core = 1 << 16;

// Tasks that take longer than this are run by as many workers as there are cores, whether or not somebody waits for them.
constexpr Duration very_long = 1ms;

// How long a worker that is in the way of another thread stays away.
constexpr Duration away_time = 20ms;

// A called worker that spins has come after this, if it is on a CPU of its own.
constexpr Duration late_time = 5us;

struct alignas(apart) Worker {
    struct Engine* engine = nullptr;
    Thread thread;
    Condition wake;
    Atomic<bool> called{false};   // written under the lock; polled without it by the worker itself while it spins
    Clock::time_point call_time;  // when it was called
    int32_t caller_cpu = -1;      // where from
    int32_t avoided_cpu = -1;     // see leave_cpu
    Worker* below = nullptr;      // in the stack of those asleep
};

// How it works
//
// Calling a worker takes longer than converting a small image. So as long as no task is unfinished, one that is not worth a
// call, by what the last ones took, runs at once in the thread that adds it. That takes no lock.
//
// All other tasks are queued. One lock guards everything; it is open while tasks run, while a thread spins and while a worker
// is woken. Without it, only the id of an unfinished task is read (see Task), by a spinning worker its own flag, and hints,
// which order nothing. A queued task is run by whoever takes it out of the queue: a worker, or a thread that waits, which
// begins with its own task. No more of them run at a time than there are cores, but for those that found no room.
//
// Each thread that adds or takes tasks calls one worker at most, if that pays, and a called worker does the same, so that a
// late one holds up nobody. No task is left lying:
// - As long as tasks are queued, somebody attends to them: a worker that works, spins or is on watch, or a thread that runs
//   tasks and waits for one. A worker ends none of this without a look at the queue, and sleeps only if that is empty or all
//   cores are taken. A thread that leaves tasks to nobody calls a worker, and so does one that adds them to nobody. That a
//   worker spins or tasks are run is enough for short ones: long ones get a worker at once.
// - A thread that waits runs queued tasks until its own one has finished. It sleeps only if there are none, or if all cores are
//   taken. It is woken for its own task alone; so if that is queued, the next thread to leave a core calls a worker for it in
//   any case, and until it runs, all begin with the oldest task.
//
// A worker that has run out of work spins a little: between two images of a stream it needs no wake-up. Only one spins at a
// time.
//
// A worker that comes to the CPU of its caller, or of a thread that runs tasks, would only take time from it. Most systems wake
// a thread on an idle CPU; virtual machines often do not, and leave it where it was called from. So it moves to another CPU by
// itself, and keeps off that one until it is in the way on another. For that it has to run: the caller yields when it has woken
// a worker, and once more between its tasks if the worker is late.
//
// There may be fewer CPUs to be had than there are cores. A worker that is in the way wherever it goes is on watch: it sleeps a
// little, looks after the queue then, and until then no more threads are called than there proved to be CPUs.
struct Engine {
    Mutex mutex;
    TaskQueue queue;
    Pace pace;
    int32_t cores = 0;           // fixed after the start
    int32_t useful = 0;          // threads that may be called because it pays: cores, unless a worker is on watch
    int32_t running = 0;         // threads that run tasks: never more than cores
    int32_t cpus[most_cores]{};  // those that they were on when they began
    int32_t coming = 0;          // workers that have been called and have not come yet
    int32_t working = 0;         // these, and those that have come and not run out of work
    bool on_watch = false;
    Clock::time_point late;             // when to yield for a worker that is coming
    Worker* asleep = nullptr;           // a stack: the one that worked last is called first
    Atomic<Worker*> spinning{nullptr};  // at most one, and none that has been called; read without the lock as a hint
    int32_t started = 0;
    bool stopping = false;
    Condition all_started;
    int64_t process = 0;
    Worker workers[most_cores];

    bool may_start() const { return queue.count > 0 && running < cores; }
    bool is_attended() const { return working > 0 || on_watch || running > 0 || spinning.load(relaxed); }
};

// Sections under the lock take tens of nanoseconds: a few attempts are cheaper than sleeping on it.
void acquire(Lock& lock) {
    for (int i = 0; i < 10; ++i) {
        if (lock.try_lock()) return;
        pause();
    }
    lock.lock();
}

// Calls a worker to what is queued, if it must come or pays. team counts the threads that are at it, come to it or will help.
// If it sleeps, the worker is returned, for wake() after unlocking.
Worker* call_worker(Engine& engine, int32_t team, bool must = false) {
    if (engine.queue.count <= engine.coming || engine.running + engine.coming >= engine.cores) return nullptr;
    must = must || engine.queue.hungry > 0 || !engine.is_attended() ||
           (engine.working == 0 && !engine.on_watch && !is_short(engine.pace));
    const auto comes = [&](Duration time) {
        return must || (team < engine.useful && pays(engine.pace, engine.queue.count, team, time));
    };
    Worker* worker = engine.spinning.load(relaxed);
    const bool spins = worker && comes(spinner_time);
    if (spins) {
        engine.spinning.store(nullptr, relaxed);
    } else {
        worker = engine.asleep;
        if (!worker || !comes(wake_time(engine.pace))) return nullptr;
        engine.asleep = worker->below;
    }
    worker->call_time = Clock::now();
    engine.late = worker->call_time + late_time;
    ++engine.coming;
    ++engine.working;
    worker->caller_cpu = this_cpu();
    worker->called.store(true, relaxed);
    return spins ? nullptr : worker;
}

// Lets a worker that stands on this CPU go to another one.
void let_by(int32_t cpu) {
    if (cpu >= 0) yield();
}

void wake(Worker* worker) {
    if (!worker) return;
    worker->wake.notify_one();
    let_by(this_cpu());
}

// Takes a task out of the queue and, while they are short, more from the end of it where that one stands: as many as take
// portion_time, and no more than half of the thread's share. Returns how many; they are linked by next.
int32_t take_portion(Engine& engine, Task& first) {
    const bool newest = &first == engine.queue.newest;
    const int64_t share = engine.queue.count / (2 * (engine.running + engine.coming));
    const int64_t most = std::min<int64_t>(share, portion_time / std::max(task_time(engine.pace), Duration{1}));
    int32_t count = 0;
    Task* last = nullptr;
    for (Task* task = &first; task && (count == 0 || count < most); ++count) {
        take_task(engine.queue, *task);
        task->next = nullptr;
        if (last) last->next = task;
        last = task;
        task = newest ? engine.queue.newest : engine.queue.oldest;
    }
    return count;
}

// Runs a queued task, and what is taken with it. The lock is open meanwhile.
void run_tasks(Engine& engine, Lock& lock, Task* first) {
    const int32_t cpu = this_cpu();
    engine.cpus[engine.running++] = cpu;
    const int32_t count = take_portion(engine, *first);
    Worker* worker = call_worker(engine, engine.running + engine.coming);
    const bool late = engine.coming > 0 && Clock::now() > engine.late;
    if (late) engine.late = Clock::time_point::max();
    lock.unlock();
    wake(worker);
    if (late) let_by(cpu);
    const auto start = Clock::now();
    for (const Task* task = first; task; task = task->next) task->function(task->argument);
    learn_task_time(engine.pace, (Clock::now() - start) / count);
    acquire(lock);
    while (first) finish_task(engine.queue, *std::exchange(first, first->next));
    *std::find(engine.cpus, engine.cpus + engine.running, cpu) = engine.cpus[engine.running - 1];
    --engine.running;
}

// The task to begin with: should a thread sleep for want of a core, the oldest one.
Task* next_task(const Engine& engine, Task* preferred) { return engine.queue.hungry > 0 ? engine.queue.oldest : preferred; }

// A worker begins at the end that the waiting threads come to last: so each goes through memory in order, and in a stream
// through the same part of each image.
void run_queue(Engine& engine, Lock& lock) {
    while (engine.may_start()) run_tasks(engine, lock, next_task(engine, engine.queue.newest));
}

bool is_called(const Worker& worker) { return worker.called.load(relaxed); }

bool is_on(const Engine& engine, int32_t cpu) {
    const int32_t* end = engine.cpus + engine.running;
    return cpu >= 0 && std::find(engine.cpus, end, cpu) != end;
}

// True on the CPU of the worker's caller, or of a thread that runs tasks.
bool is_among_others(const Engine& engine, const Worker& self) {
    const int32_t cpu = this_cpu();
    return (cpu >= 0 && cpu == self.caller_cpu) || is_on(engine, cpu);
}

// A called worker has come.
void arrive(Engine& engine, Worker& self, Lock& lock) {
    if (is_among_others(engine, self)) {
        lock.unlock();
        self.avoided_cpu = leave_cpu(this_cpu(), self.avoided_cpu);
        acquire(lock);
    }
    self.called.store(false, relaxed);
    --engine.coming;
}

// Sleeps until the worker is called; false if the engine ends.
bool sleep(Engine& engine, Worker& self, Lock& lock) {
    self.below = std::exchange(engine.asleep, &self);
    self.wake.wait(lock, [&] { return is_called(self) || engine.stopping; });
    if (!is_called(self)) return false;
    arrive(engine, self, lock);
    learn_wake_time(engine.pace, Clock::now() - self.call_time);
    return true;
}

// Returns true if the worker has been called meanwhile, or finds tasks. It does not spin where another thread would run.
bool spin(Engine& engine, Worker& self, Lock& lock) {
    if (engine.spinning.load(relaxed) || is_among_others(engine, self)) return false;
    engine.spinning.store(&self, relaxed);
    lock.unlock();
    // That it was called is read again under the lock, so this load orders nothing.
    const auto end = Clock::now() + spin_time;
    while (!is_called(self) && Clock::now() < end) pause();
    acquire(lock);
    if (engine.spinning.load(relaxed) == &self) {
        engine.spinning.store(nullptr, relaxed);
        if (!engine.may_start()) return false;
        ++engine.working;
        return true;
    }
    arrive(engine, self, lock);
    return true;
}

// True if a worker that has come is on the CPU of another thread. The only one is let pass: its caller may not run tasks.
bool is_in_the_way(const Engine& engine) { return engine.running + engine.coming >= 2 && is_on(engine, this_cpu()); }

// Returns true when it is time to look after the queue, false if another worker does that.
bool watch(Engine& engine, Worker& self, Lock& lock) {
    --engine.working;
    if (engine.on_watch) return false;
    engine.on_watch = true;
    int32_t distinct = 0;
    for (int32_t* cpu = engine.cpus; cpu < engine.cpus + engine.running; ++cpu)
        distinct += std::find(engine.cpus, cpu, *cpu) == cpu;
    engine.useful = std::max(distinct, 2);
    self.wake.wait_for(lock, away_time, [&] { return engine.stopping; });
    engine.useful = engine.cores;
    engine.on_watch = false;
    ++engine.working;
    return true;
}

void work(void* argument) {
    keep_library_loaded();
    name_this_thread();
    Worker& self = *static_cast<Worker*>(argument);
    Engine& engine = *self.engine;
    Lock lock(engine.mutex);
    ++engine.started;
    engine.all_started.notify_one();
    while (sleep(engine, self, lock)) {
        if (is_in_the_way(engine) && !watch(engine, self, lock)) continue;
        do {
            run_queue(engine, lock);
            --engine.working;
        } while (spin(engine, self, lock));
    }
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

// Until the task has finished, or for as long as a thread may spin.
template <class Unfinished>
void spin_while(const Unfinished& unfinished) {
    const auto end = Clock::now() + spin_time;
    while (unfinished() && Clock::now() < end) pause();
}

void sleep_on(Engine& engine, Task& task, int32_t id, Lock& lock) {
    ++task.sleepers;
    if (task.queued) ++engine.queue.hungry;
    task.finished.wait(lock);
    if (task.unfinished.load(relaxed) != id) return;  // finish_task has dealt with the sleepers
    --task.sleepers;
    if (task.queued) --engine.queue.hungry;
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
    engine->cores = engine->useful = workers;
    engine->pace.usual = workers * std::max(tasks_per_core, 1);
    return engine.release();
}

void* zivParallelInit(void*, int32_t tasks_per_core) noexcept { return start_engine(tasks_per_core, 0); }

int32_t zivParallelEngineCores(void* handle) noexcept { return as_engine(handle)->cores; }

int32_t zivAddTask(void* handle, TaskFunction function, void* argument) noexcept {
    if (!handle || !function) return no_task;
    Engine& engine = *as_engine(handle);
    if (engine.queue.unfinished.load(relaxed) == 0 && !is_worth_queuing(engine.pace, engine.spinning.load(relaxed))) {
        run_at_once(engine.pace, function, argument);
        return no_task;
    }
    Lock lock(engine.mutex, std::defer_lock);
    acquire(lock);
    const Task* task = add_task(engine.queue, function, argument);
    if (!task) {
        lock.unlock();
        function(argument);
        return no_task;
    }
    const int32_t id = task->id;
    // The adding thread will mostly wait, and help, but very long tasks are not left to that; and whoever comes calls the next
    // one. While short tasks are added, a worker would only be in the way at the lock.
    const int32_t helpers = task_time(engine.pace) < very_long ? 1 : 0;
    const bool must = is_in_a_row(engine.pace) || !engine.is_attended();
    end_row(engine.pace);
    const bool may = must || !is_short(engine.pace) || engine.queue.count >= engine.pace.usual;
    Worker* worker = may && engine.coming == 0 ? call_worker(engine, engine.running + helpers, must) : nullptr;
    lock.unlock();
    wake(worker);
    return id;
}

int32_t zivWaitTask(void* handle, int32_t id) noexcept {
    if (!handle) return 0;
    Engine& engine = *as_engine(handle);
    if (id < 0) {
        end_runs(engine.pace);
        return 0;
    }
    Task& task = place_of(engine.queue, id);
    const auto unfinished = [&] { return task.unfinished.load(std::memory_order_acquire) == id; };
    if (!unfinished()) return 0;

    Lock lock(engine.mutex, std::defer_lock);
    acquire(lock);
    bool has_spun = false;
    while (unfinished()) {
        if (engine.may_start()) {
            run_tasks(engine, lock, next_task(engine, task.queued ? &task : engine.queue.oldest));
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
    // The tasks that are left need somebody, should this thread not wait for them too.
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
