// The engine in a simulation of threads: small programs on every schedule, and larger ones on a machine whose threads take a
// told time to wake up and tasks a told time to run.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>

#include "model/model.h"
#include "parallel/cores.h"
#include "parallel/engine.h"
#include "parallel/threads.h"

using namespace std::chrono_literals;
using model::Time;
using namespace zivcolor;

namespace {

struct System {
    int32_t cores = 2;
    int64_t process = 1;
    int threads_granted = 1000;
};
System host;

}  // namespace

// ---- What the engine asks the system for ----

int32_t zivcolor::usable_cores() { return host.cores; }
int64_t zivcolor::process_id() { return host.process; }
void zivcolor::name_this_thread() {}
void zivcolor::keep_library_loaded() {}
model::Thread zivcolor::start_without_signals(void (*function)(void*), void* argument) {
    if (model::counts.threads >= host.threads_granted) throw std::exception();
    return model::Thread([=] { function(argument); });
}

namespace {

Time now() { return model::Clock::now().time_since_epoch(); }

struct EngineModel : testing::Test {
    void SetUp() override {
        host = System{};
        model::wake_latency = [](int) { return Time{20us}; };
    }
    void TearDown() override { model::wake_latency = nullptr; }
};

// A task: what it takes, and where and when it ran.
struct Job {
    static inline int running = 0, most_running = 0;
    Time takes{0};
    int ran_by = -1, runs = 0;
    Time began{0}, ended{0};
    model::Cell result;

    static void run(void* p) {
        Job& job = *static_cast<Job*>(p);
        most_running = std::max(most_running, ++running);
        job.began = now();
        job.ran_by = model::this_thread();
        if (job.takes > Time{0}) model::spend(job.takes);
        job.result.write(1);
        job.runs++;
        job.ended = now();
        running--;
    }
};

struct Engine {
    void* handle;
    explicit Engine(int32_t first_id = 0, int32_t tasks_per_core = 4) : handle(start_engine(tasks_per_core, first_id)) {
        Job::running = Job::most_running = 0;
        if (!handle) model::fail("no engine");
    }
    ~Engine() {
        if (zivParallelUninit(handle) != 0) model::fail("the engine has not ended");
        if (Job::most_running > host.cores) model::fail("more tasks run than there are cores");
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    int32_t add(Job& job) const { return zivAddTask(handle, Job::run, &job); }
    // Waits, and the task's result is there.
    void wait(int32_t id, Job& job) const {
        zivWaitTask(handle, id);
        if (job.result.read() != 1 || job.runs != 1) model::fail("a wait has ended before its task");
    }
    // One conversion: as many tasks as bands. The time that it took.
    Time convert(std::vector<Job>& jobs) const {
        const Time start = now();
        std::vector<int32_t> ids;
        for (Job& job : jobs) ids.push_back(add(job));
        for (size_t i = 0; i < jobs.size(); i++) wait(ids[i], jobs[i]);
        return now() - start;
    }
    Time convert(size_t bands, Time each, std::vector<Job>* ran = nullptr) const {
        std::vector<Job> jobs(bands);
        for (Job& job : jobs) job.takes = each;
        const Time time = convert(jobs);
        if (ran) *ran = jobs;
        return time;
    }
};

size_t threads_of(const std::vector<Job>& jobs) {
    std::set<int> threads;
    for (const Job& job : jobs) threads.insert(job.ran_by);
    return threads.size();
}

void expect(bool holds, const char* what) {
    if (!holds) model::fail(what);
}

void expect_explored(const std::function<void()>& program, int preemptions) {
    EXPECT_EQ(model::explore(program, preemptions), "");
    testing::Test::RecordProperty("schedules", std::to_string(model::schedules));
    EXPECT_GT(model::schedules, 100);
}

// ---- Every schedule ----

TEST_F(EngineModel, TwoTasksOnOneCore) {
    host.cores = 1;
    expect_explored(
        [] {
            const Engine engine;
            Job first, second;
            const int32_t a = engine.add(first), b = engine.add(second);
            engine.wait(a, first);
            engine.wait(b, second);
        },
        2);
}

TEST_F(EngineModel, TwoThreadsWithATaskEach) {
    expect_explored(
        [] {
            const Engine engine;
            Job mine, others;
            model::Thread other([&] { engine.wait(engine.add(others), others); });
            engine.wait(engine.add(mine), mine);
            other.join();
        },
        2);
}

TEST_F(EngineModel, TwoThreadsThatWaitForOneTask) {
    expect_explored(
        [] {
            const Engine engine;
            Job job;
            job.takes = 200us;  // while it runs, both go to sleep
            const int32_t id = engine.add(job);
            model::Thread other([&] { engine.wait(id, job); });
            engine.wait(id, job);
            other.join();
        },
        1);
}

// The place of a finished task is given to another one while a thread still waits for the first.
TEST_F(EngineModel, AWaitWhileThePlaceIsGivenAway) {
    host.cores = 1;
    expect_explored(
        [] {
            const Engine engine;
            Job first, second;
            const int32_t a = engine.add(first);
            model::Thread other([&] { engine.wait(a, first); });
            zivWaitTask(engine.handle, a);
            engine.wait(engine.add(second), second);
            other.join();
        },
        2);
}

TEST_F(EngineModel, TasksThatNobodyWaitsForRunBeforeTheEnd) {
    expect_explored(
        [] {
            Job first, second;
            {
                const Engine engine;
                engine.add(first);
                engine.add(second);
            }
            expect(first.result.read() == 1 && second.result.read() == 1, "a task has not run");
        },
        2);
}

TEST_F(EngineModel, TasksOfManyThreadsAcrossTheLastId) {
    host.cores = 1;
    expect_explored(
        [] {
            const Engine engine(INT32_MAX);
            Job jobs[3];
            model::Thread other([&] { engine.wait(engine.add(jobs[0]), jobs[0]); });
            for (int i = 1; i < 3; i++) engine.wait(engine.add(jobs[i]), jobs[i]);
            other.join();
        },
        1);
}

// ---- Simulated time ----

#define EXPECT_SIMULATED(...) EXPECT_EQ(model::simulate(__VA_ARGS__), "")

TEST_F(EngineModel, OneCoreRunsOneTaskAtATime) {
    host.cores = 1;
    EXPECT_SIMULATED([] {
        const Engine engine;
        expect(zivParallelEngineCores(engine.handle) == 1, "not one core");
        std::vector<Job> jobs;
        expect(engine.convert(4, 1ms, &jobs) < 4100us, "time was lost");
        expect(Job::most_running == 1, "not one after the other");
    });
}

TEST_F(EngineModel, CoresAreEightAtMost) {
    for (const auto& [usable, cores] : {std::pair{1, 1}, {2, 2}, {8, 8}, {9, 8}, {64, 8}}) {
        host.cores = usable;
        EXPECT_SIMULATED([expected = cores] {
            const Engine engine;
            expect(zivParallelEngineCores(engine.handle) == expected, "cores");
            expect(model::counts.threads == expected, "threads");
        });
    }
}

TEST_F(EngineModel, FewerThreadsAreFewerCores) {
    host.cores = 4;
    host.threads_granted = 3;
    EXPECT_SIMULATED([] {
        const Engine engine;
        expect(zivParallelEngineCores(engine.handle) == 3, "cores");
        engine.convert(16, 100us);
        expect(Job::most_running == 3, "not all cores were used");
    });
    host.threads_granted = 0;
    EXPECT_SIMULATED([] { expect(zivParallelInit(nullptr, 4) == nullptr, "an engine without threads"); });
}

TEST_F(EngineModel, RoomIsAskedForByTheCore) {
    EXPECT_SIMULATED([] {
        expect(zivParallelInit(nullptr, INT32_MAX) == nullptr, "more room than ids");
        expect(zivParallelInit(nullptr, (1 << 16) + 1) == nullptr, "more room than promised");
        const Engine largest(0, 1 << 16);
        for (const int32_t senseless : {INT32_MIN, -1, 0}) {
            const Engine engine(0, senseless);
            engine.convert(32, 1us);
        }
    });
}

// Ids are not negative, and tasks are waited for, before the last id and after it.
TEST_F(EngineModel, IdsGoOnAfterTheLast) {
    EXPECT_SIMULATED([] {
        const Engine engine(INT32_MAX);
        for (int i = 0; i < 200; i++) {
            std::vector<Job> jobs(16);
            std::vector<int32_t> ids;
            for (Job& job : jobs) {
                job.takes = 10us;
                ids.push_back(engine.add(job));
            }
            for (const int32_t id : ids) expect(id >= 0, "an id is negative");
            expect(std::set<int32_t>(ids.begin(), ids.end()).size() == ids.size(), "an id is given twice");
            for (size_t k = 0; k < jobs.size(); k++) engine.wait(ids[k], jobs[k]);
        }
    });
}

TEST_F(EngineModel, WhatFindsNoRoomRunsAtOnceAndMayUseTheEngine) {
    EXPECT_SIMULATED([] {
        static const Engine* current;
        const Engine engine;
        current = &engine;
        std::vector<Job> jobs(64);
        std::vector<int32_t> ids;
        for (Job& job : jobs) {
            job.takes = 1ms;
            ids.push_back(engine.add(job));
        }
        for (const int32_t id : ids) expect(id >= 0, "no room for 64 tasks");
        static int runs;
        runs = 0;
        const int32_t id = zivAddTask(
            engine.handle,
            [](void*) {
                runs++;
                zivWaitTask(current->handle, zivAddTask(current->handle, nullptr, nullptr));
                zivAddTask(
                    current->handle, [](void*) { runs++; }, nullptr);
            },
            nullptr);
        expect(id < 0 && runs == 2, "the task has not run");
        zivWaitTask(engine.handle, id);
        for (size_t i = 0; i < jobs.size(); i++) engine.wait(ids[i], jobs[i]);
    });
}

// One long task takes one place: others are queued as before, and run on all other cores.
TEST_F(EngineModel, ALongTaskHoldsUpNoOther) {
    host.cores = 4;
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job long_one;
        long_one.takes = 1s;
        const int32_t id = engine.add(long_one);
        model::spend(100us);
        for (int i = 0; i < 80; i++) {
            std::vector<Job> jobs(8);
            std::vector<int32_t> ids;
            for (Job& job : jobs) {
                job.takes = 100us;
                ids.push_back(engine.add(job));
            }
            for (const int32_t each : ids) expect(each >= 0, "a task has found no room");
            for (size_t k = 0; k < jobs.size(); k++) engine.wait(ids[k], jobs[k]);
            expect(threads_of(jobs) == 3, "not all free cores were used");
        }
        engine.wait(id, long_one);
    });
}

TEST_F(EngineModel, ALateWorkerHoldsUpNoOther) {
    host.cores = 8;
    EXPECT_SIMULATED([] {
        const Engine engine;
        int first = -1;
        model::wake_latency = [&](int thread) {
            if (first < 0) first = thread;
            return thread == first ? Time{300ms} : Time{20us};
        };
        std::vector<Job> jobs;
        const Time time = engine.convert(32, 100us, &jobs);
        expect(threads_of(jobs) == 7, "workers slept");
        expect(time < 1ms, "time was lost");
    });
}

TEST_F(EngineModel, AllCoresAreUsed) {
    for (const int cores : {2, 4, 8}) {
        host.cores = cores;
        EXPECT_SIMULATED([cores] {
            const Engine engine;
            std::vector<Job> jobs;
            const Time time = engine.convert(static_cast<size_t>(4 * cores), 100us, &jobs);
            expect(threads_of(jobs) == static_cast<size_t>(cores), "a core was left out");
            expect(time < (cores == 8 ? 650us : 520us), "time was lost");
        });
    }
}

// Nobody waits: a worker calls the next.
TEST_F(EngineModel, WorkersCallOneAnother) {
    host.cores = 8;
    EXPECT_SIMULATED([] {
        const Engine engine;
        std::vector<Job> jobs(32);
        for (Job& job : jobs) {
            job.takes = 1ms;
            engine.add(job);
        }
        model::spend(5ms);
        for (Job& job : jobs) expect(job.runs == 1, "a task has not run");
        expect(threads_of(jobs) == 8, "a core was left out");
    });
}

// Also if the one worker does not sleep just then.
TEST_F(EngineModel, WhatIsQueuedRunsBeforeTheEngineEnds) {
    host.cores = 1;
    EXPECT_SIMULATED([] {
        Job first, second;
        first.takes = 100us;
        {
            const Engine engine;
            engine.add(first);
            model::spend(130us);
            engine.add(second);
        }
        expect(first.runs == 1 && second.runs == 1, "a task has not run");
    });
}

// Small images: the waiting thread converts them by itself, and wakes nobody.
TEST_F(EngineModel, SmallTasksStayWithTheirThread) {
    for (const int cores : {1, 2, 8}) {
        host.cores = cores;
        EXPECT_SIMULATED([cores] {
            const Engine engine;
            for (int i = 0; i < 3; i++) engine.convert(static_cast<size_t>(4 * cores), 50ns);
            model::spend(1ms);
            const int notified = model::counts.notified;
            for (int i = 0; i < 1000; i++) {
                std::vector<Job> jobs;
                const Time time = engine.convert(static_cast<size_t>(4 * cores), 50ns, &jobs);
                expect(threads_of(jobs) == 1 && jobs[0].ran_by == 0, "another thread was at it");
                expect(time == 4 * cores * 50ns, "time was lost");
            }
            expect(model::counts.notified == notified, "somebody was woken");
        });
    }
}

TEST_F(EngineModel, ALargeImageAfterSmallOnesIsShared) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (int i = 0; i < 100; i++) engine.convert(8, 50ns);
        std::vector<Job> jobs;
        expect(engine.convert(8, 100us, &jobs) <= 550us, "time was lost");
        expect(engine.convert(8, 100us, &jobs) <= 450us, "time was lost again");
    });
}

// From one image of a stream to the next, nobody has to be woken.
TEST_F(EngineModel, AStreamWakesNobody) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(8, 12us);
        const int notified = model::counts.notified;
        for (int i = 0; i < 100; i++) expect(engine.convert(8, 12us) <= 64us, "time was lost");
        expect(model::counts.notified == notified, "somebody was woken");
    });
}

// A waiting thread is woken by its own task alone, while it sleeps others run the rest.
TEST_F(EngineModel, ASleepingThreadIsWokenOnce) {
    host.cores = 4;
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job long_one;
        long_one.takes = 10ms;
        const int32_t id = engine.add(long_one);
        model::spend(100us);
        model::Thread other([&] {
            model::spend(200us);
            for (int i = 0; i < 10; i++) engine.convert(16, 100us);
        });
        const int before = model::counts.wakes[0];
        engine.wait(id, long_one);
        expect(model::counts.wakes[0] == before + 1, "it was woken in vain");
        other.join();
    });
}

TEST_F(EngineModel, AllThreadsThatSleepOnATaskAreWoken) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job job;
        job.takes = 10ms;
        const int32_t id = engine.add(job);
        model::spend(100us);
        model::Thread other([&] { engine.wait(id, job); }), third([&] { engine.wait(id, job); });
        engine.wait(id, job);
        other.join();
        third.join();
        expect(now() - job.ended < 100us, "a thread slept on");
    });
}

// Nobody spins for long.
TEST_F(EngineModel, AWaitingThreadSleepsSoon) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job long_one;
        long_one.takes = 1s;
        const int32_t id = engine.add(long_one);
        model::spend(100us);
        engine.wait(id, long_one);
        for (const auto& [thread, yields] : model::counts.yields) expect(yields <= 60, "a thread has spun for long");
    });
}

TEST_F(EngineModel, AnIdleEngineSleeps) {
    host.cores = 8;
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(32, 100us);
        model::spend(1s);
        const int timers = model::counts.timers;
        const auto yields = model::counts.yields;
        expect(timers < 20, "timers go on");
        model::spend(1h);
        expect(model::counts.timers == timers, "a timer goes on for ever");
        expect(model::counts.yields == yields, "a thread spins");
        expect(engine.convert(32, 100us) < 650us, "time was lost after sleeping");
    });
}

// What the estimate says may be wrong: no task is left lying.
TEST_F(EngineModel, SmallTasksThatNobodyWaitsForRunSoon) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (const Time pause : {Time{0}, Time{1ms}, Time{100ms}, Time{1min}}) {
            for (int i = 0; i < 100; i++) engine.convert(8, 50ns);
            model::spend(pause);
            Job job;
            const int32_t id = engine.add(job);
            model::spend(300ms);
            expect(job.runs == 1, "a task was left lying");
            engine.wait(id, job);
        }
    });
}

TEST_F(EngineModel, TasksBehindALongOneRunSoon) {
    host.cores = 4;
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (int i = 0; i < 100; i++) engine.convert(16, 50ns);
        std::vector<Job> jobs(16);
        jobs[0].takes = 10s;
        engine.convert(jobs);
        for (size_t i = 1; i < jobs.size(); i++) expect(jobs[i].ended - jobs[0].began < 300ms, "a task was left lying");
    });
}

// A thread that sleeps because no core was free does not sleep on when one is: the one that leaves it calls a worker.
TEST_F(EngineModel, AFreeCoreComesToWhoSleepsForWantOfOne) {
    host.cores = 1;
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (int i = 0; i < 100; i++) engine.convert(4, 50ns);
        model::spend(100ms);  // the worker looks after the queue rarely
        engine.convert(4, 50ns);
        Job long_one, small;
        long_one.takes = 10ms;
        model::Thread other([&] {
            const int32_t id = engine.add(long_one);
            engine.wait(id, long_one);
        });
        model::spend(100us);
        engine.wait(engine.add(small), small);
        expect(small.began - long_one.ended < 100us, "it slept on");
        expect(long_one.ran_by == other.index, "a worker was at it");
        other.join();
    });
}

// The thread that waits does the work itself if no worker comes in time.
TEST_F(EngineModel, AWaitingThreadHelps) {
    host.cores = 2;
    EXPECT_SIMULATED([] {
        model::wake_latency = [](int) { return Time{300ms}; };
        const Engine engine;
        std::vector<Job> jobs;
        expect(engine.convert(8, 100us, &jobs) == 800us, "time was lost");
        expect(threads_of(jobs) == 1 && jobs[0].ran_by == 0, "somebody else was at it");
    });
}

TEST_F(EngineModel, UnknownIdsAreHarmless) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job job;
        const int32_t id = engine.add(job);
        engine.wait(id, job);
        for (const int32_t unknown : {-1, INT32_MIN, INT32_MAX, id, id + 1, id + 64, id + 128})
            expect(zivWaitTask(engine.handle, unknown) == 0, "not 0");
        expect(zivAddTask(engine.handle, nullptr, nullptr) < 0, "no function");
        expect(zivWaitTask(nullptr, 0) == 0, "no engine");
        expect(zivParallelUninit(nullptr) < 0, "nothing was ended");
    });
}

// Whatever stands in the place of a finished task by now.
TEST_F(EngineModel, AWaitForAFinishedTaskEndsAtOnce) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job first, second;
        second.takes = 10ms;
        const int32_t a = engine.add(first);
        engine.wait(a, first);
        const int32_t b = engine.add(second);
        const Time before = now();
        engine.wait(a, first);
        expect(now() == before, "it has waited");
        engine.wait(b, second);
        expect(now() - before >= 10ms, "it has not waited");
    });
}

// The workers of a process are not in its forked child.
TEST_F(EngineModel, TheChildOfAForkEndsTheEngineAtOnce) {
    EXPECT_SIMULATED([] {
        void* engine = zivParallelInit(nullptr, 4);
        host.process = 2;
        expect(zivParallelUninit(engine) == 0, "not ended");
        host.process = 1;
        expect(zivParallelUninit(engine) == 0, "the parent's engine has gone");
    });
}

}  // namespace
