// SPDX-License-Identifier: MIT
// The engine in a simulation of threads: small programs on every schedule, and larger ones on a machine whose threads take a
// told time to wake up and tasks a told time to run.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
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
    int cpus = 0;                            // fewer than threads, which share them in turn; 0: the system does not say
    std::map<int, int> cpu_of{}, avoided{};  // by thread, where it is elsewhere, and where it keeps off
    int moves = 0;
    Time move_time{0};
};
System host;

}  // namespace

// ---- What the engine asks the system for ----

int32_t zivcolor::usable_cores() { return host.cores; }
int64_t zivcolor::process_id() { return host.process; }
int32_t zivcolor::this_cpu() {
    const auto elsewhere = host.cpu_of.find(model::this_thread());
    if (elsewhere != host.cpu_of.end()) return elsewhere->second;
    return host.cpus ? model::this_thread() % host.cpus : -1;
}
int32_t zivcolor::leave_cpu(int32_t cpu, int32_t avoided) {
    const auto before = host.avoided.find(model::this_thread());
    if (avoided != (before == host.avoided.end() ? -1 : before->second)) model::fail("it keeps off another CPU");
    host.moves++;
    host.cpu_of[model::this_thread()] = (cpu + 1) % host.cpus;
    host.avoided[model::this_thread()] = cpu;
    if (host.move_time > Time{0}) model::spend(host.move_time);
    return cpu;
}
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
    static inline std::set<int> adding;  // threads: what they run meanwhile needs no core
    Time takes{0};
    int ran_by = -1, runs = 0;
    Time began{0}, ended{0};
    model::Cell result;

    explicit Job(Time time = Time{0}) : takes(time) {}
    static void run(void* p) {
        Job& job = *static_cast<Job*>(p);
        const bool on_a_core = adding.count(model::this_thread()) == 0;
        if (on_a_core) most_running = std::max(most_running, ++running);
        job.began = now();
        job.ran_by = model::this_thread();
        if (job.takes > Time{0}) model::spend(job.takes);
        job.result.write(1);
        job.runs++;
        job.ended = now();
        if (on_a_core) running--;
    }
};

struct Engine {
    void* handle;
    explicit Engine(int32_t first_id = 0, int32_t tasks_per_core = 4) : handle(start_engine(tasks_per_core, first_id)) {
        Job::running = Job::most_running = 0;
        Job::adding.clear();
        if (!handle) model::fail("no engine");
    }
    ~Engine() {
        if (zivParallelUninit(handle) != 0) model::fail("the engine has not ended");
        if (Job::most_running > host.cores) model::fail("more tasks run than there are cores");
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    int32_t add(Job& job) const {
        Job::adding.insert(model::this_thread());
        const int32_t id = zivAddTask(handle, Job::run, &job);
        Job::adding.erase(model::this_thread());
        return id;
    }
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

// Tasks that are queued, tasks that are queued as long as a worker spins, and tasks of which all but the first may run at once.
constexpr Time lengths[] = {20us, 3us, 0us};

TEST_F(EngineModel, TwoTasksOnOneCore) {
    host.cores = 1;
    for (const Time takes : lengths)
        expect_explored(
            [takes] {
                const Engine engine;
                Job first{takes}, second{takes};
                const int32_t a = engine.add(first), b = engine.add(second);
                engine.wait(a, first);
                engine.wait(b, second);
            },
            2);
}

TEST_F(EngineModel, TwoThreadsWithATaskEach) {
    for (const Time takes : lengths)
        expect_explored(
            [takes] {
                const Engine engine;
                Job mine{takes}, others{takes};
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
            Job first{20us}, second{20us};
            const int32_t a = engine.add(first);
            model::Thread other([&] { engine.wait(a, first); });
            zivWaitTask(engine.handle, a);
            engine.wait(engine.add(second), second);
            other.join();
        },
        2);
}

TEST_F(EngineModel, TasksThatNobodyWaitsForRunBeforeTheEnd) {
    for (const Time takes : lengths)
        expect_explored(
            [takes] {
                Job first{takes}, second{takes};
                {
                    const Engine engine;
                    engine.add(first);
                    engine.add(second);
                }
                expect(first.result.read() == 1 && second.result.read() == 1, "a task has not run");
            },
            2);
}

// A short task is added while the worker spins, which is to look after it, and goes to sleep just then.
TEST_F(EngineModel, ATaskForAWorkerThatGoesToSleep) {
    expect_explored(
        [] {
            Job first{3us}, second{3us};
            {
                const Engine engine;
                engine.wait(engine.add(first), first);
                engine.add(second);
            }
            expect(second.result.read() == 1, "a task has not run");
        },
        2);
}

TEST_F(EngineModel, TasksOfManyThreadsAcrossTheLastId) {
    host.cores = 1;
    expect_explored(
        [] {
            const Engine engine(INT32_MAX);
            Job jobs[3] = {Job{20us}, Job{20us}, Job{20us}};
            model::Thread other([&] { engine.wait(engine.add(jobs[0]), jobs[0]); });
            for (int i = 1; i < 3; i++) engine.wait(engine.add(jobs[i]), jobs[i]);
            other.join();
        },
        1);
}

// Short tasks behind a long one: a thread takes several of them at a time.
TEST_F(EngineModel, TasksThatAreTakenTogether) {
    expect_explored(
        [] {
            const Engine engine;
            Job long_one{1ms}, short_one{1us};
            const int32_t id = engine.add(long_one);
            engine.wait(engine.add(short_one), short_one);
            std::vector<Job> jobs(6, Job{1us});
            model::Thread other([&] {
                std::vector<Job> others(6, Job{1us});
                engine.convert(others);
            });
            engine.convert(jobs);
            engine.wait(id, long_one);
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

// Also if they are added while one is at a task.
TEST_F(EngineModel, VeryLongTasksGetAllCores) {
    host.cores = 4;
    EXPECT_SIMULATED([] {
        const Engine engine;
        std::vector<Job> jobs(4, Job{10ms});
        for (Job& job : jobs) {
            engine.add(job);
            model::spend(1ms);
        }
        for (const Job& job : jobs) expect(job.began > Time{0} && job.began < 5ms, "a core was left out");
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
            const int notified = model::counts.notified, locked = model::counts.locked;
            for (int i = 0; i < 1000; i++) {
                std::vector<Job> jobs;
                const Time time = engine.convert(static_cast<size_t>(4 * cores), 50ns, &jobs);
                expect(threads_of(jobs) == 1 && jobs[0].ran_by == 0, "another thread was at it");
                expect(time == 4 * cores * 50ns, "time was lost");
            }
            expect(model::counts.notified == notified, "somebody was woken");
            expect(model::counts.locked == locked, "a lock was taken");
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

// The first bands of a low image are empty.
TEST_F(EngineModel, TasksAreLongBehindEmptyOnes) {
    host.cores = 8;
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (int i = 0; i < 100; i++) engine.convert(32, 50ns);
        model::spend(1ms);
        std::vector<Job> jobs(32, Job{100us});
        for (size_t i = 0; i < 3; i++) jobs[i].takes = Time{0};
        expect(engine.convert(jobs) < 1ms, "they were taken for short ones");
    });
}

// The calling thread begins with the first band, a worker with the last one: each has a part of memory of its own.
TEST_F(EngineModel, EachThreadHasAPartOfTheImage) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        std::vector<Job> jobs;
        engine.convert(8, 100us, &jobs);
        int changes = 0;
        for (size_t i = 1; i < jobs.size(); i++) changes += jobs[i].ran_by != jobs[i - 1].ran_by;
        expect(jobs[0].ran_by == 0 && changes == 1, "the parts are mixed");
    });
}

// Images that are not worth a wake-up, but come one after the other: soon a worker spins between them.
TEST_F(EngineModel, AStreamOfSmallImagesIsShared) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(8, 3us);
        model::spend(1ms);
        const int notified = model::counts.notified;
        for (int i = 0; i < 20; i++) engine.convert(8, 3us);
        for (int i = 0; i < 100; i++) expect(engine.convert(8, 3us) <= 18us, "it was not shared");
        expect(model::counts.notified == notified + 1, "not one worker was woken");
    });
}

TEST_F(EngineModel, SmallImagesWithPausesAreNotShared) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(8, 3us);
        const int notified = model::counts.notified;
        for (int i = 0; i < 100; i++) {
            model::spend(1ms);
            expect(engine.convert(8, 3us) == 24us, "time was lost");
        }
        expect(model::counts.notified == notified, "somebody was woken");
    });
}

// Where a woken worker comes when the image is done, single images are left to their thread. Now and then one is woken in vain:
// so it is seen when that has changed.
TEST_F(EngineModel, ASlowWakeUpIsLearnt) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        const auto images = [&](int count) {
            int shared = 0;
            for (int i = 0; i < count; i++) {
                model::spend(2ms);
                shared += engine.convert(8, 12us) < 90us;
            }
            return shared;
        };
        expect(images(100) == 100, "images were not shared");
        model::wake_latency = [](int) { return Time{500us}; };
        images(10);
        const int notified = model::counts.notified;
        expect(images(300) == 0, "who has shared them?");
        expect(model::counts.notified - notified < 40, "workers were woken in vain");
        model::wake_latency = [](int) { return Time{20us}; };
        images(150);
        expect(images(100) == 100, "images were not shared again");
    });
}

// Each thread takes several at a time, so that they do not meet at the lock for each.
TEST_F(EngineModel, ShortTasksAreTakenTogether) {
    host.cores = 8;
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (int i = 0; i < 30; i++) engine.convert(32, 500ns);
        const int locked = model::counts.locked;
        std::vector<Job> jobs;
        expect(engine.convert(32, 500ns, &jobs) < 11us, "time was lost");
        expect(threads_of(jobs) >= 2, "it was not shared");
        expect(model::counts.locked - locked < 32 + 40, "locks were taken for each");
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

// No task is left lying.
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
        engine.convert(16, 50us);
        std::vector<Job> jobs(16, Job{50us});
        jobs[0].takes = 10s;
        engine.convert(jobs);
        for (size_t i = 1; i < jobs.size(); i++) expect(jobs[i].ended - jobs[0].began < 1ms, "a task was left lying");
    });
}

// A task that is run at once for a short one, and is long, holds up its own thread alone.
TEST_F(EngineModel, AMistakenTaskHoldsUpNoOtherThread) {
    host.cores = 4;
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (int i = 0; i < 10; i++) engine.convert(16, 50ns);
        model::Thread other([&] {
            Job long_one{10s};
            expect(engine.add(long_one) < 0, "it was queued");
        });
        model::spend(1ms);
        for (int i = 0; i < 10; i++) {
            std::vector<Job> jobs;
            engine.convert(16, 100us, &jobs);
            if (i > 0) expect(threads_of(jobs) == 4, "a core was left out");
        }
        other.join();
    });
}

// Also while others are at it: what is long for one thread may be short for the next one.
TEST_F(EngineModel, NothingRunsAtOnceWhileATaskIsUnfinished) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job long_one{10ms};
        const int32_t id = engine.add(long_one);
        model::spend(100us);
        for (int i = 0; i < 200; i++) {
            std::vector<Job> jobs(8, Job{50ns});
            std::vector<int32_t> ids;
            for (Job& job : jobs) ids.push_back(engine.add(job));
            for (size_t k = 0; k < jobs.size(); k++) {
                expect(ids[k] >= 0 && ids[k] != id, "it has run at once");
                engine.wait(ids[k], jobs[k]);
            }
        }
        engine.wait(id, long_one);
    });
}

// Short tasks that nobody waits for are left to whoever attends to the queue: a worker that spins,
TEST_F(EngineModel, AWorkerThatSpinsLooksAfterTheQueue) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        for (int i = 0; i < 10; i++) engine.convert(8, 3us);
        Job jobs[2] = {Job{3us}, Job{3us}};
        for (Job& job : jobs) expect(engine.add(job) >= 0, "it was not queued");
        model::spend(100us);
        for (const Job& job : jobs) expect(job.runs == 1, "a task was left lying");
    });
}

// or a thread that runs tasks, which calls a worker in its place.
TEST_F(EngineModel, AThreadThatLeavesTasksToNobodyCallsAWorker) {
    host.cores = 1;
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(4, 20us);
        for (int i = 0; i < 10; i++) engine.convert(4, 3us);
        Job long_one{1ms}, small[2] = {Job{3us}, Job{3us}};
        model::Thread other([&] { engine.wait(engine.add(long_one), long_one); });
        model::spend(500us);
        for (Job& job : small) expect(engine.add(job) >= 0, "it was not queued");
        model::spend(1ms);
        expect(long_one.ran_by == other.index, "a worker was at it");
        for (const Job& job : small) expect(job.runs == 1, "a task was left lying");
        other.join();
    });
}

// A thread that sleeps because no core was free does not sleep on when one is: the one that leaves it calls a worker.
TEST_F(EngineModel, AFreeCoreComesToWhoSleepsForWantOfOne) {
    host.cores = 1;
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(4, 20us);
        model::spend(100ms);
        Job long_one{10ms}, small{20us};
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

// Also while a worker is long at a task: that it works is not enough.
TEST_F(EngineModel, AFreeCoreComesToWhoSleepsBehindALongTask) {
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job longest{1s}, long_one{10ms}, small{20us};
        const int32_t id = engine.add(longest);
        model::spend(100us);
        model::Thread other([&] { engine.wait(engine.add(long_one), long_one); });
        model::spend(100us);
        engine.wait(engine.add(small), small);
        expect(small.ended - long_one.ended < 200us, "it slept on");
        other.join();
        engine.wait(id, longest);
    });
}

// Tasks of many threads are run in no order, but one for which a thread sleeps gets its turn while others go on adding.
TEST_F(EngineModel, WhoSleepsGetsATurn) {
    host.cores = 1;
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(4, 20us);
        bool stop = false;
        model::Thread other([&] {
            for (int i = 0; i < 1000 && !stop; i++) engine.convert(4, 100us);
        });
        model::spend(1ms);
        Job mine{100us};
        const Time before = now();
        engine.wait(engine.add(mine), mine);
        expect(now() - before < 2ms, "it has waited for all others");
        stop = true;
        other.join();
    });
}

// Eight workers share two CPUs: no more threads are at it than have one, but for a try now and then.
TEST_F(EngineModel, WorkersWithoutACpuStayAway) {
    host.cores = 8;
    host.cpus = 2;
    EXPECT_SIMULATED([] {
        const Engine engine;
        engine.convert(32, 100us);
        const int notified = model::counts.notified;
        const Time before = now();
        int crowded = 0, images = 0;
        for (; now() - before < 1s; images++) {
            std::vector<Job> jobs;
            engine.convert(32, 100us, &jobs);
            crowded += threads_of(jobs) > 2;
            expect(threads_of(jobs) >= 2, "a CPU was left out");
        }
        expect(images > 500, "time was lost");
        expect(crowded <= 60, "more threads than CPUs were at it");
        expect(model::counts.notified - notified < 200, "workers were woken in vain");
    });
}

// Where the system wakes a worker on its caller's CPU, and one that spins comes there: it goes to another one, and stays.
TEST_F(EngineModel, AWorkerLeavesItsCallersCpu) {
    host.cpus = 2;
    EXPECT_SIMULATED([] {
        host.cpu_of = {{0, 0}, {1, 0}, {2, 0}};
        const Engine engine;
        for (int i = 0; i < 10; i++) engine.convert(8, 100us);
        expect(host.moves == 1, "not one move");
        host.cpu_of[0] = 1;  // to the worker that spins
        engine.convert(8, 100us);
        expect(host.moves == 2, "it has not moved at once");
        for (int i = 0; i < 10; i++) engine.convert(8, 100us);
        expect(host.moves == 2, "it has moved again");
        model::spend(1ms);
        host.cpu_of[0] = 0;  // to the one that sleeps
        for (int i = 0; i < 10; i++) engine.convert(8, 100us);
        expect(host.moves == 3, "not one move from sleep");
    });
}

// Two workers that keep off one CPU do not share the other.
TEST_F(EngineModel, AWorkerLeavesAnotherWorkersCpu) {
    host.cpus = 4;
    EXPECT_SIMULATED([] {
        host.cpu_of = {{0, 0}, {1, 1}, {2, 1}};
        const Engine engine;
        std::vector<Job> jobs(2, Job{10ms});
        for (Job& job : jobs) {
            engine.add(job);
            model::spend(1ms);
        }
        expect(host.moves == 1 && jobs[1].began > Time{0}, "a worker was in the way");
    });
}

// The caller is at something else.
TEST_F(EngineModel, AWorkerLeavesTheCpuOfACallerThatDoesNotWait) {
    host.cpus = 2;
    EXPECT_SIMULATED([] {
        host.cpu_of = {{0, 0}, {1, 0}, {2, 0}};
        const Engine engine;
        Job job{10ms};
        const int32_t id = engine.add(job);
        model::spend(1ms);
        expect(host.moves == 1, "it stayed");
        engine.wait(id, job);
    });
}

// Who leaves a CPU holds up nobody.
TEST_F(EngineModel, AWorkerThatMovesHoldsNoLock) {
    host.cpus = 2;
    EXPECT_SIMULATED([] {
        host.cpu_of = {{0, 0}, {1, 0}, {2, 0}};
        host.move_time = 2ms;
        const Engine engine;
        expect(engine.convert(8, 100us) <= 810us && host.moves == 1, "time was lost");
    });
}

// Where there is no other CPU, a worker that has run out of work leaves this one to its caller.
TEST_F(EngineModel, NobodySpinsOnTheCpuOfAnother) {
    host.cpus = 1;
    EXPECT_SIMULATED([] {
        const Engine engine;
        Job job{10ms};
        const int32_t id = engine.add(job);
        model::spend(20ms);
        expect(job.ran_by > 0 && model::counts.yields[job.ran_by] == 0, "the worker has spun");
        engine.wait(id, job);
    });
}

// To leave a CPU, a worker has to run there: its caller yields once when it has woken it, and once while it waits for it.
TEST_F(EngineModel, AWorkerIsLetBy) {
    host.cpus = 2;
    EXPECT_SIMULATED([] {
        model::wake_latency = [](int) { return Time{950us}; };
        const Engine engine;
        std::vector<Job> jobs;
        engine.convert(8, 100us, &jobs);
        expect(threads_of(jobs) == 1 && model::counts.yields[0] == 2, "not two yields");
    });
}

// Were the system wrong, or do tasks sleep: all cores are used in the end.
TEST_F(EngineModel, WorkersWithoutACpuDoNotStayAwayForEver) {
    host.cores = 8;
    host.cpus = 1;
    EXPECT_SIMULATED([] {
        const Engine engine;
        std::vector<Job> jobs(8, Job{1s});
        for (Job& job : jobs) engine.add(job);
        model::spend(500ms);
        for (const Job& job : jobs) expect(job.runs == 0 && job.began > Time{0}, "a task was left lying");
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
        Job first{100us}, second{10ms};
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
