// SPDX-License-Identifier: MIT
// The engine on as many cores as the test says, and what the system and the application see of its threads: this program stands
// between the library and the system's answer which CPUs there are.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "harness/process.h"
#include "harness/time_limit.h"
#include "parallel/engine.h"

namespace {

std::atomic<int> cpus_of_this_machine{2};  // negative: the system does not tell

}  // namespace

extern "C" int sched_getaffinity(pid_t, size_t, cpu_set_t* cpus) noexcept {
    if (cpus_of_this_machine < 0) return -1;
    CPU_ZERO(cpus);
    for (int i = 0; i < cpus_of_this_machine; i++) CPU_SET(static_cast<size_t>(i), cpus);
    return 0;
}

namespace {

using namespace zivcolor;

[[maybe_unused]] const bool limited = harness::limit_time_of("EngineSeam");

constexpr int core_counts[] = {1, 2, 8, 9, 64};

struct Engine {
    void* handle;
    explicit Engine(int cpus, int32_t first_id = 0) : handle((cpus_of_this_machine = cpus, start_engine(4, first_id))) {}
    ~Engine() { EXPECT_EQ(zivParallelUninit(handle), 0); }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    int cores() const { return zivParallelEngineCores(handle); }
};

// Runs a function once on each core, at the same time.
template <class Function>
void on_all_cores(const Engine& engine, const Function& function) {
    struct Job {
        const Function& function;
        int cores;
        std::atomic<int> present{0}, done{0};
    } job{function, engine.cores()};
    for (int i = 0; i < job.cores; i++)
        zivAddTask(
            engine.handle,
            [](void* p) {
                Job& all = *static_cast<Job*>(p);
                all.present++;
                while (all.present < all.cores) std::this_thread::yield();
                all.function();
                all.done++;
            },
            &job);
    while (job.done < job.cores) std::this_thread::yield();
}

TEST(EngineSeam, HasAThreadForEachCoreUpTo8) {
    const int before = harness::thread_count();
    for (const int cpus : core_counts) {
        const Engine engine(cpus);
        EXPECT_EQ(engine.cores(), std::min(cpus, 8));
        EXPECT_EQ(harness::thread_count(), before + engine.cores());
    }
    EXPECT_TRUE(harness::thread_count_becomes(before));
}

TEST(EngineSeam, HasAThreadForEachCoreThatTheStandardLibraryKnows) {
    const Engine engine(-1);
    EXPECT_EQ(engine.cores(), std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 8));
}

TEST(EngineSeam, RunsEveryTaskOnceOnAnyNumberOfCores) {
    for (const int cpus : core_counts) {
        // Ids pass the last one on the way.
        const Engine engine(cpus, INT32_MAX - 64 * 50);
        std::vector<std::thread> threads;
        for (int t = 0; t < 3; t++)
            threads.emplace_back([&engine] {
                for (int round = 0; round < 200; round++) {
                    int values[32] = {};
                    int32_t ids[32];
                    for (int i = 0; i < 32; i++)
                        ids[i] = zivAddTask(
                            engine.handle, [](void* p) { ++*static_cast<int*>(p); }, &values[i]);
                    for (const int32_t id : ids) zivWaitTask(engine.handle, id);
                    for (const int value : values) ASSERT_EQ(value, 1);
                }
            });
        for (std::thread& thread : threads) thread.join();
    }
}

TEST(EngineSeam, RunsNoMoreTasksAtOnceThanItHasCores) {
    for (const int cpus : core_counts) {
        const Engine engine(cpus);
        struct Load {
            std::atomic<int> now{0}, most{0};
        } load;
        std::vector<std::thread> threads;
        for (int t = 0; t < 3; t++)
            threads.emplace_back([&] {
                int32_t ids[16];
                for (int32_t& id : ids)
                    id = zivAddTask(
                        engine.handle,
                        [](void* p) {
                            Load& l = *static_cast<Load*>(p);
                            const int now = ++l.now;
                            int most = l.most;
                            while (now > most && !l.most.compare_exchange_weak(most, now)) continue;
                            std::this_thread::sleep_for(std::chrono::microseconds(200));
                            l.now--;
                        },
                        &load);
                for (const int32_t id : ids) zivWaitTask(engine.handle, id);
            });
        for (std::thread& thread : threads) thread.join();
        EXPECT_LE(load.most.load(), engine.cores());
        EXPECT_GE(load.most.load(), std::min(2, engine.cores()));
    }
}

TEST(EngineSeam, WorkersHaveAName) {
    const Engine engine(4);
    std::atomic<int> named{0};
    on_all_cores(engine, [&] {
        char name[16] = "";
        pthread_getname_np(pthread_self(), name, sizeof name);
        if (std::string(name) == "zivcolor") named++;
    });
    EXPECT_EQ(named.load(), 4);
}

TEST(EngineSeam, WorkersBlockAllSignals) {
    sigset_t before, after;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    const Engine engine(4);
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (int signal = 1; signal < 32; signal++) EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal));
    std::atomic<int> unblocked{0};
    on_all_cores(engine, [&] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        for (int signal = 1; signal < 32; signal++)
            if (signal != SIGKILL && signal != SIGSTOP && !sigismember(&mask, signal)) unblocked++;
    });
    EXPECT_EQ(unblocked.load(), 0);
}

std::atomic<int> signals_here{0}, signals_elsewhere{0};
pthread_t here;

// While the application's thread blocks a signal, no worker takes it in its place.
TEST(EngineSeam, SignalsGoToTheApplicationsThreads) {
    const Engine engine(4);
    here = pthread_self();
    struct sigaction action {
    }, before{};
    action.sa_handler = [](int) { (pthread_equal(pthread_self(), here) ? signals_here : signals_elsewhere)++; };
    sigaction(SIGUSR1, &action, &before);
    sigset_t one, mask;
    sigemptyset(&one);
    sigaddset(&one, SIGUSR1);
    for (int i = 0; i < 20; i++) {
        pthread_sigmask(SIG_BLOCK, &one, &mask);
        kill(getpid(), SIGUSR1);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    }
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_EQ(signals_elsewhere.load(), 0);
    EXPECT_GE(signals_here.load(), 20);
}

TEST(EngineSeam, EndsAtOnceInTheChildOfAFork) {
    const Engine engine(4);
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);
        _exit(zivParallelUninit(engine.handle) == 0 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
