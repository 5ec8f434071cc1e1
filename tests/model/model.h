// SPDX-License-Identifier: MIT
// A simulation of threads in one thread of the system. Each runs until it comes to a point where it could meet another: there
// the simulation picks who goes on. Time is simulated, and passes only while all wait for it.
//
// explore() runs a program on every schedule with a few preemptions, and all orders of what is not one. simulate() runs it
// once, as on a machine with a CPU for each thread: what a program spends then adds up to what it would take.
//
// Memory is as each thread wrote it last, but orders count: a Cell that is read without anything that orders the read after the
// write (a lock, a release store and an acquire load of the same value, a thread's start or end) is an error.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace model {

using Time = std::chrono::nanoseconds;

struct Clock {
    using duration = Time;
    using rep = Time::rep;
    using period = Time::period;
    using time_point = std::chrono::time_point<Clock>;
    static constexpr bool is_steady = true;
    static time_point now();
};

// By thread: how many of its points are known to have happened.
using Knowledge = std::map<int, int64_t>;

void point();           // another thread may go on here
void yield();           // others go on for a moment
void spend(Time time);  // the thread is busy for so long
int this_thread();      // 0 is the program's first
void fail(const std::string& why);

struct Mutex {
    bool held = false;
    Knowledge knowledge;
    void lock();
    bool try_lock();
    void unlock();
};

struct Condition {
    using Lock = std::unique_lock<Mutex>;
    void wait(Lock& lock) { sleep(lock, Time::max()); }
    template <class Predicate>
    void wait(Lock& lock, const Predicate& predicate) {
        while (!predicate()) sleep(lock, Time::max());
    }
    template <class Predicate>
    bool wait_for(Lock& lock, Time time, const Predicate& predicate) {
        const Time end = Clock::now().time_since_epoch() + time;
        while (!predicate())
            if (!sleep(lock, end)) return predicate();
        return true;
    }
    void notify_one() { notify(false); }
    void notify_all() { notify(true); }

private:
    bool sleep(Lock& lock, Time until);  // false when it was time that woke
    void notify(bool all);
};

void release_to(Knowledge& knowledge);
void acquire_from(const Knowledge& knowledge);

template <class T>
struct Atomic {
    T value{};
    mutable Knowledge knowledge;
    Atomic() = default;
    explicit(false) Atomic(T start) : value(start) {}
    T load(std::memory_order order) const {
        if (order == std::memory_order_relaxed) return value;
        point();
        acquire_from(knowledge);
        return value;
    }
    void store(T to, std::memory_order order) {
        if (order != std::memory_order_relaxed) point();
        knowledge.clear();
        if (order != std::memory_order_relaxed) release_to(knowledge);
        value = to;
    }
};

struct Thread {
    int index = -1;
    Thread() = default;
    explicit Thread(std::function<void()> body);
    Thread(Thread&& other) noexcept : index(std::exchange(other.index, -1)) {}
    Thread& operator=(Thread&& other) noexcept {
        index = std::exchange(other.index, -1);
        return *this;
    }
    bool joinable() const { return index >= 0; }
    void join();
};

// Plain memory.
struct Cell {
    int value = 0, writer = 0;
    int64_t written = 0;
    void write(int to);
    int read();
};

// What happened in the last run.
struct Counts {
    int threads = 0;                   // started beside the program's first
    int notified = 0;                  // sleepers that were woken by a notification
    int timers = 0;                    // sleepers that were woken by time
    int locked = 0;                    // how often a lock was taken
    std::map<int, int> wakes, yields;  // by thread
};
extern Counts counts;

// How long the thread takes from a notification to its next step; none in explore().
extern std::function<Time(int thread)> wake_latency;

// Empty, or what went wrong.
std::string simulate(const std::function<void()>& program);
std::string explore(const std::function<void()>& program, int preemptions);
extern int64_t schedules;  // that the last explore() has run

}  // namespace model
