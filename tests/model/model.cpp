// SPDX-License-Identifier: MIT
#include "model/model.h"

#include <ucontext.h>

#include <algorithm>
#include <memory>

namespace model {

Counts counts;
std::function<Time(int)> wake_latency;
int64_t schedules = 0;

namespace {

enum class State { ready, on_mutex, on_condition, joining, ended };

struct Fiber {
    ucontext_t context{};
    std::unique_ptr<char[]> stack;
    std::function<void()> body;
    State state = State::ended;
    Time until{0};                 // not before, if ready; not longer than, on a condition
    const void* object = nullptr;  // what it waits for
    bool timed_out = false;
    Knowledge knowledge;
};

constexpr size_t stack_bytes = 128 * 1024;
constexpr Time yield_time = std::chrono::microseconds(1), coarse_yield_time = std::chrono::microseconds(25);

struct World {
    std::vector<std::unique_ptr<Fiber>> fibers;  // of this run and, beyond used, of earlier ones
    int used = 0, current = 0;
    Time now{0};
    ucontext_t home{};
    std::string error;
    bool exploring = false;
    int preemptions_left = 0;
    // The choices of this run: which of how many.
    std::vector<std::pair<int, int>> path;
    size_t depth = 0;
};
World world;

Fiber& fiber(int index) { return *world.fibers[static_cast<size_t>(index)]; }

// One of count ways to go on; all of them in turn when exploring.
int choose(int count) {
    if (!world.exploring || count < 2) return 0;
    if (world.depth == world.path.size()) world.path.emplace_back(0, count);
    return world.path[world.depth++].first;
}

bool can_go(const Fiber& f) { return f.state == State::ready && f.until <= world.now; }
bool waits_for_time(const Fiber& f) {
    return (f.state == State::ready && f.until > world.now) || (f.state == State::on_condition && f.until != Time::max());
}

// The next thread, or -1 if none can ever go on.
int pick() {
    std::vector<int> free, preempting;
    const bool goes_on = can_go(fiber(world.current));
    if (goes_on) free.push_back(world.current);
    for (int i = 0; i < world.used; i++) {
        if (i == world.current) continue;
        if (can_go(fiber(i))) (goes_on ? preempting : free).push_back(i);
    }
    if (free.empty()) {
        Time next = Time::max();
        for (int i = 0; i < world.used; i++)
            if (waits_for_time(fiber(i))) next = std::min(next, fiber(i).until);
        if (next == Time::max()) return -1;
        for (int i = 0; i < world.used; i++)
            if (waits_for_time(fiber(i)) && fiber(i).until == next) free.push_back(i);
    }
    if (!world.exploring) {
        // Who has been ready longest.
        return goes_on
                   ? world.current
                   : *std::min_element(free.begin(), free.end(), [](int a, int b) { return fiber(a).until < fiber(b).until; });
    }
    // A timer that fires early is a preemption as well: time passes faster than threads.
    for (int i = 0; i < world.used; i++)
        if (waits_for_time(fiber(i)) && std::find(free.begin(), free.end(), i) == free.end()) preempting.push_back(i);
    const size_t not_preempting = free.size();
    if (world.preemptions_left > 0) free.insert(free.end(), preempting.begin(), preempting.end());
    const auto chosen = static_cast<size_t>(choose(static_cast<int>(free.size())));
    if (chosen >= not_preempting) world.preemptions_left--;
    return free[chosen];
}

void switch_away() {
    if (!world.error.empty()) {
        setcontext(&world.home);
        return;
    }
    const int from = world.current, to = pick();
    if (to < 0) {
        world.error = "all threads wait";
        setcontext(&world.home);
        return;
    }
    Fiber& next = fiber(to);
    if (next.until != Time::max()) world.now = std::max(world.now, next.until);
    if (next.state == State::on_condition) {
        next.state = State::ready;
        next.timed_out = true;
        counts.timers++;
    }
    world.current = to;
    if (to != from) swapcontext(&fiber(from).context, &next.context);
    ++fiber(world.current).knowledge[world.current];
}

void run_fiber() {
    Fiber& self = fiber(world.current);
    self.body();
    self.state = State::ended;
    if (world.current == 0) {
        for (int i = 1; i < world.used; i++)
            if (fiber(i).state != State::ended) fail("a thread is left");
        setcontext(&world.home);
    }
    for (int i = 0; i < world.used; i++)
        if (fiber(i).state == State::joining && fiber(i).object == &self) fiber(i).state = State::ready;
    switch_away();
}

int start(std::function<void()> body) {
    if (static_cast<size_t>(world.used) == world.fibers.size()) {
        world.fibers.push_back(std::make_unique<Fiber>());
        world.fibers.back()->stack = std::make_unique<char[]>(stack_bytes);
    }
    const int index = world.used++;
    Fiber& f = fiber(index);
    f.body = std::move(body);
    f.state = State::ready;
    f.until = world.now;
    f.knowledge = index ? fiber(world.current).knowledge : Knowledge{};
    getcontext(&f.context);
    f.context.uc_stack.ss_sp = f.stack.get();
    f.context.uc_stack.ss_size = stack_bytes;
    f.context.uc_link = nullptr;
    makecontext(&f.context, run_fiber, 0);
    return index;
}

void run(const std::function<void()>& program) {
    world.used = 0;
    world.current = 0;
    world.now = Time{0};
    world.error.clear();
    world.depth = 0;
    counts = {};
    volatile bool ran = false;
    getcontext(&world.home);
    if (!ran) {
        ran = true;
        start(program);
        setcontext(&fiber(0).context);
    }
}

void block(State state, const void* object, Time until) {
    Fiber& self = fiber(world.current);
    self.state = state;
    self.object = object;
    self.until = until;
    self.timed_out = false;
    switch_away();
}

}  // namespace

Clock::time_point Clock::now() { return time_point(world.now); }

int this_thread() { return world.current; }

void fail(const std::string& why) {
    if (world.error.empty()) world.error = why;
}

void point() {
    if (world.exploring) switch_away();
}

void yield() {
    counts.yields[world.current]++;
    block(State::ready, nullptr, world.now + (world.exploring ? coarse_yield_time : yield_time));
}

void spend(Time time) { block(State::ready, nullptr, world.now + time); }

void release_to(Knowledge& knowledge) { knowledge = fiber(world.current).knowledge; }

void acquire_from(const Knowledge& knowledge) {
    Knowledge& mine = fiber(world.current).knowledge;
    for (const auto& [thread, points] : knowledge) mine[thread] = std::max(mine[thread], points);
}

void Mutex::lock() {
    point();
    while (held) block(State::on_mutex, this, world.now);
    held = true;
    counts.locked++;
    acquire_from(knowledge);
}

bool Mutex::try_lock() {
    point();
    if (held) return false;
    held = true;
    counts.locked++;
    acquire_from(knowledge);
    return true;
}

void Mutex::unlock() {
    if (!held) fail("a lock is opened that is open");
    held = false;
    release_to(knowledge);
    ++fiber(world.current).knowledge[world.current];
    for (int i = 0; i < world.used; i++)
        if (fiber(i).state == State::on_mutex && fiber(i).object == this) {
            fiber(i).state = State::ready;
            fiber(i).until = world.now;
        }
}

bool Condition::sleep(Lock& lock, Time until) {
    point();
    lock.mutex()->unlock();
    block(State::on_condition, this, until);
    const bool by_time = fiber(world.current).timed_out;
    counts.wakes[world.current]++;
    lock.mutex()->lock();
    return !by_time;
}

void Condition::notify(bool all) {
    point();
    std::vector<int> waiting;
    for (int i = 0; i < world.used; i++)
        if (fiber(i).state == State::on_condition && fiber(i).object == this) waiting.push_back(i);
    if (waiting.empty()) return;
    if (!all) waiting = {waiting[static_cast<size_t>(choose(static_cast<int>(waiting.size())))]};
    for (const int i : waiting) {
        counts.notified++;
        fiber(i).state = State::ready;
        fiber(i).until = world.now + (wake_latency && !world.exploring ? wake_latency(i) : Time{0});
    }
}

Thread::Thread(std::function<void()> body) {
    counts.threads++;
    index = start(std::move(body));
}

void Thread::join() {
    Fiber& other = fiber(index);
    point();
    if (other.state != State::ended) block(State::joining, &other, world.now);
    acquire_from(other.knowledge);
    index = -1;
}

void Cell::write(int to) {
    read();
    value = to;
    writer = world.current;
    written = ++fiber(world.current).knowledge[world.current];
}

int Cell::read() {
    if (writer != world.current && fiber(world.current).knowledge[writer] < written)
        fail("memory is read that nothing orders after its write");
    return value;
}

std::string simulate(const std::function<void()>& program) {
    world.exploring = false;
    run(program);
    return world.error;
}

std::string explore(const std::function<void()>& program, int preemptions) {
    world.exploring = true;
    world.path.clear();
    for (schedules = 1;; schedules++) {
        world.preemptions_left = preemptions;
        run(program);
        if (!world.error.empty()) return world.error + ", on schedule " + std::to_string(schedules);
        while (!world.path.empty() && world.path.back().first + 1 == world.path.back().second) world.path.pop_back();
        if (world.path.empty()) return "";
        world.path.back().first++;
    }
}

}  // namespace model
