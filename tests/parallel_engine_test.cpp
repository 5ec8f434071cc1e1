// SPDX-License-Identifier: MIT
// The parallel engine by itself.
#include "parallel/engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "harness/process.h"
#include "harness/time_limit.h"
#include "parallel/cores.h"
#include "parallel/threads.h"

#if defined(__linux__)
#include <sched.h>
#endif

namespace {

using namespace harness;
using namespace zivcolor;

[[maybe_unused]] const bool limited = limit_time_of("Engine");

struct Engine {
    void* handle;
    explicit Engine(int32_t tasks_per_core = 4) : handle(zivParallelInit(nullptr, tasks_per_core)) {}
    ~Engine() { EXPECT_EQ(zivParallelUninit(handle), 0); }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
};

void count_up(void* p) { static_cast<std::atomic<int>*>(p)->fetch_add(1); }

void wait_for(const std::atomic<int>& value, int expected) {
    while (value.load() != expected) std::this_thread::yield();
}

TEST(Engine, HasACoreForEachCpuUpTo8) {
    const Engine engine;
    EXPECT_EQ(zivParallelEngineCores(engine.handle), std::min(zivcolor::usable_cores(), 8));
}

TEST(Engine, EndsAllItsThreads) {
    const int before = thread_count();
    {
        const Engine engine, second;
        EXPECT_EQ(thread_count(), before + zivParallelEngineCores(engine.handle) + zivParallelEngineCores(second.handle));
    }
    EXPECT_TRUE(thread_count_becomes(before)) << thread_count();
}

TEST(Engine, EndingNothingIsAFailure) { EXPECT_LT(zivParallelUninit(nullptr), 0); }

TEST(Engine, MoreRoomThanIdsIsAFailure) { EXPECT_EQ(zivParallelInit(nullptr, INT32_MAX), nullptr); }

TEST(Engine, SenselessRoomIsTheLeastRoom) {
    std::atomic<int> runs{0};
    for (const int32_t room : {INT32_MIN, -1, 0}) {
        const Engine engine(room);
        for (int i = 0; i < 32; i++) zivAddTask(engine.handle, count_up, &runs);
    }
    EXPECT_EQ(runs.load(), 96);
}

TEST(Engine, RunsTasksThatNobodyWaitsFor) {
    const Engine engine;
    std::atomic<int> runs{0};
    for (int i = 0; i < 40; i++) zivAddTask(engine.handle, count_up, &runs);
    wait_for(runs, 40);
}

TEST(Engine, RunsWhatIsQueuedBeforeItEnds) {
    std::atomic<int> runs{0};
    {
        const Engine engine;
        for (int i = 0; i < 1000; i++) zivAddTask(engine.handle, count_up, &runs);
    }
    EXPECT_EQ(runs.load(), 1000);
}

TEST(Engine, WaitsUntilTheTaskHasFinished) {
    const Engine engine;
    for (int round = 0; round < 20; round++) {
        int plain[32] = {};
        int32_t ids[32];
        for (int i = 0; i < 32; i++)
            ids[i] = zivAddTask(
                engine.handle,
                [](void* p) {
                    std::this_thread::sleep_for(std::chrono::microseconds(50));
                    *static_cast<int*>(p) = 1;
                },
                &plain[i]);
        for (int i = 31; i >= 0; i--) {
            zivWaitTask(engine.handle, ids[i]);
            EXPECT_EQ(plain[i], 1);
        }
    }
}

TEST(Engine, WaitsAtOnceForFinishedUnknownAndFailedIds) {
    const Engine engine;
    std::atomic<int> runs{0};
    const int32_t id = zivAddTask(engine.handle, count_up, &runs);
    for (int i = 0; i < 3; i++) EXPECT_EQ(zivWaitTask(engine.handle, id), 0);
    for (const int32_t unknown : {-1, INT32_MIN, INT32_MAX, id + 1, id + 64, 12345})
        EXPECT_EQ(zivWaitTask(engine.handle, unknown), 0);
    const int32_t failed = zivAddTask(engine.handle, nullptr, nullptr);
    EXPECT_LT(failed, 0);
    EXPECT_EQ(zivWaitTask(engine.handle, failed), 0);
    EXPECT_EQ(zivWaitTask(nullptr, zivAddTask(nullptr, count_up, &runs)), 0);
    EXPECT_EQ(runs.load(), 1);
}

// Every core is held by a task that waits at a gate: adding goes on all the same, and what finds no room runs at once.
TEST(Engine, AddsWithoutWaiting) {
    struct Gate {
        std::atomic<int> inside{0}, open{0};
    } gate;
    const Engine engine;
    const int cores = zivParallelEngineCores(engine.handle);
    std::vector<int32_t> ids;
    const auto hold = [](void* p) {
        auto& g = *static_cast<Gate*>(p);
        g.inside++;
        wait_for(g.open, 1);
    };
    for (int i = 0; i < cores; i++) ids.push_back(zivAddTask(engine.handle, hold, &gate));
    wait_for(gate.inside, cores);
    std::atomic<int> runs{0};
    for (int i = 0; i < 200; i++) ids.push_back(zivAddTask(engine.handle, count_up, &runs));
    EXPECT_GE(runs.load(), 200 - 64);
    EXPECT_LE(runs.load(), 200 - 32);
    gate.open = 1;
    for (const int32_t id : ids) zivWaitTask(engine.handle, id);
    EXPECT_EQ(runs.load(), 200);
}

TEST(Engine, HoldsAsManyTasksAsAskedFor) {
    struct Gate {
        std::atomic<int> inside{0}, open{0};
    } gate;
    const Engine engine(100);
    const int cores = zivParallelEngineCores(engine.handle), queued = 99 * cores;
    const auto hold = [](void* p) {
        auto& g = *static_cast<Gate*>(p);
        g.inside++;
        wait_for(g.open, 1);
    };
    for (int i = 0; i < cores; i++) zivAddTask(engine.handle, hold, &gate);
    wait_for(gate.inside, cores);
    std::atomic<int> runs{0};
    for (int i = 0; i < queued; i++) EXPECT_GE(zivAddTask(engine.handle, count_up, &runs), 0);
    EXPECT_EQ(runs.load(), 0);
    gate.open = 1;
    wait_for(runs, queued);
}

// As many tasks as cores meet one another, with and without a thread that waits. An engine that knows no tasks yet takes them
// for long ones, and queues them all.
TEST(Engine, RunsAsManyTasksAtOnceAsItHasCores) {
    struct Meeting {
        std::atomic<int> present{0};
        int expected = 0;
    };
    for (int round = 0; round < 50; round++) {
        const Engine engine;
        Meeting meeting;
        meeting.expected = zivParallelEngineCores(engine.handle);
        std::vector<int32_t> ids;
        const auto meet = [](void* p) {
            auto& m = *static_cast<Meeting*>(p);
            m.present++;
            wait_for(m.present, m.expected);
        };
        for (int i = 0; i < meeting.expected; i++) ids.push_back(zivAddTask(engine.handle, meet, &meeting));
        if (round % 2) wait_for(meeting.present, meeting.expected);
        for (const int32_t id : ids) zivWaitTask(engine.handle, id);
    }
}

#if defined(__linux__)
// On one CPU, tasks run one after the other, though a waiting thread lends a hand.
TEST(Engine, RunsOneTaskAtATimeOnOneCore) {
    cpu_set_t all, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    CPU_ZERO(&one);
    for (int cpu = 0; cpu < CPU_SETSIZE && CPU_COUNT(&one) == 0; cpu++)
        if (CPU_ISSET(cpu, &all)) CPU_SET(cpu, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    {
        const Engine engine;
        EXPECT_EQ(zivParallelEngineCores(engine.handle), 1);
        struct Load {
            std::atomic<int> now{0}, most{0}, runs{0};
        } load;
        std::vector<int32_t> ids;
        const auto work = [](void* p) {
            auto& l = *static_cast<Load*>(p);
            l.most = std::max(l.most.load(), ++l.now);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
            l.now--;
            l.runs++;
        };
        for (int i = 0; i < 32; i++) ids.push_back(zivAddTask(engine.handle, work, &load));
        for (const int32_t id : ids) zivWaitTask(engine.handle, id);
        EXPECT_EQ(load.runs.load(), 32);
        EXPECT_EQ(load.most.load(), 1);
    }
    ASSERT_EQ(sched_setaffinity(0, sizeof all, &all), 0);
}
#endif

// Also one after the other, without a thread that waits.
TEST(Engine, LeavesNoTaskLying) {
    const Engine engine;
    std::atomic<int> runs{0};
    for (int round = 1; round <= 3000; round++) {
        zivAddTask(engine.handle, count_up, &runs);
        if (round % 3 == 0) {
            zivAddTask(
                engine.handle, [](void*) { std::this_thread::sleep_for(std::chrono::microseconds(20)); }, nullptr);
        }
        wait_for(runs, round);
    }
}

// Small ones in the thread that adds them.
TEST(Engine, RunsSmallTasksAtOnce) {
    const Engine engine;
    std::atomic<int> runs{0};
    const auto convert = [&] {
        int queued = 0;
        int32_t ids[32];
        for (int32_t& id : ids) id = zivAddTask(engine.handle, count_up, &runs), queued += id >= 0;
        for (const int32_t id : ids) zivWaitTask(engine.handle, id);
        return queued;
    };
    int quiet = 0;
    for (int i = 0; i < 1000; i++) quiet += convert() == 0;
    EXPECT_EQ(runs.load(), 32000);
    EXPECT_GT(quiet, 500);
}

TEST(Engine, ServesManyThreadsAtOnce) {
    const Engine engine;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; t++)
        threads.emplace_back([&engine] {
            for (int round = 0; round < 300; round++) {
                int values[32] = {};
                int32_t ids[32];
                for (int i = 0; i < 32; i++)
                    ids[i] = zivAddTask(
                        engine.handle, [](void* p) { ++*static_cast<int*>(p); }, &values[i]);
                for (int i = 0; i < 32; i++) zivWaitTask(engine.handle, ids[i]);
                for (const int value : values) ASSERT_EQ(value, 1);
            }
        });
    for (std::thread& thread : threads) thread.join();
}

#if defined(__linux__)
// It may run on all its other CPUs then, also on the one that it has left before.
TEST(Engine, AThreadLeavesItsCpu) {
    std::thread([] {
        const int32_t cores = usable_cores(), first = this_cpu();
        ASSERT_GE(first, 0);
        const int32_t avoided = leave_cpu(first, -1);
        EXPECT_EQ(avoided, cores > 1 ? first : -1);
        EXPECT_EQ(usable_cores(), std::max(cores - 1, 1));
        const int32_t second = this_cpu();
        EXPECT_EQ(second == first, cores == 1);
        EXPECT_EQ(leave_cpu(second, avoided), cores > 1 ? second : -1);
        EXPECT_EQ(this_cpu() == second, cores == 1);
        EXPECT_EQ(usable_cores(), std::max(cores - 1, 1));
    }).join();
}
#endif

// Idle workers sleep: the process uses next to no CPU time while nothing is added.
TEST(Engine, BurnsNothingWhileIdle) {
    const Engine engine;
    std::atomic<int> runs{0};
    for (int i = 0; i < 32; i++) zivAddTask(engine.handle, count_up, &runs);
    wait_for(runs, 32);
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.1);
}

}  // namespace
