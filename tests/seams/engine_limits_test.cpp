// SPDX-License-Identifier: MIT
// The engine when the system is short of threads or memory: this program stands between the library and the creation of
// threads, and between it and operator new.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <new>

#include "harness/time_limit.h"
#include "parallel/cores.h"
#include "parallel/engine.h"

namespace {

using namespace zivcolor;

[[maybe_unused]] const bool limited = harness::limit_time_of("EngineLimits");

constexpr int unlimited = std::numeric_limits<int>::max();
std::atomic<int> threads_left{unlimited}, allocations_left{unlimited}, allocations{0};

bool take_one(std::atomic<int>& left) {
    if (left == unlimited) return true;
    if (left == 0) return false;
    --left;
    return true;
}

void* allocate(size_t size) {
    ++allocations;
    return take_one(allocations_left) ? std::malloc(size ? size : 1) : nullptr;
}

void* allocate_aligned(size_t size, std::align_val_t alignment) {
    ++allocations;
    if (!take_one(allocations_left)) return nullptr;
    void* p = nullptr;
    return posix_memalign(&p, static_cast<size_t>(alignment), size) == 0 ? p : nullptr;
}

void* allocate_or_throw(size_t size) {
    if (void* p = allocate(size)) return p;
    throw std::bad_alloc();
}

}  // namespace

// Kept out of line: GCC would see malloc and free through one operator of a pair and take the pair for mismatched.
[[gnu::noinline]] void* operator new(size_t size) { return allocate_or_throw(size); }
[[gnu::noinline]] void* operator new[](size_t size) { return allocate_or_throw(size); }
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
[[gnu::noinline]] void* operator new[](size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
[[gnu::noinline]] void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocate_aligned(size, alignment);
}
[[gnu::noinline]] void* operator new[](size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocate_aligned(size, alignment);
}
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete[](void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, size_t) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete[](void* p, size_t) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::align_val_t) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete[](void* p, std::align_val_t) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, size_t, std::align_val_t) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete[](void* p, size_t, std::align_val_t) noexcept { std::free(p); }

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument) {
    if (!take_one(threads_left)) return EAGAIN;
    static const auto create = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, start, argument);
}

namespace {

void count_up(void* p) { static_cast<std::atomic<int>*>(p)->fetch_add(1); }

struct EngineLimits : testing::Test {
    void TearDown() override { threads_left = allocations_left = unlimited; }
};

TEST_F(EngineLimits, WithoutAnyThreadThereIsNoEngine) {
    threads_left = 0;
    EXPECT_EQ(zivParallelInit(nullptr, 4), nullptr);
}

TEST_F(EngineLimits, WithFewerThreadsThereAreFewerCores) {
    threads_left = 1;
    void* engine = zivParallelInit(nullptr, 4);
    ASSERT_NE(engine, nullptr);
    EXPECT_EQ(zivParallelEngineCores(engine), 1);
    std::atomic<int> runs{0};
    int32_t ids[32];
    for (int32_t& id : ids) id = zivAddTask(engine, count_up, &runs);
    for (const int32_t id : ids) zivWaitTask(engine, id);
    EXPECT_EQ(runs.load(), 32);
    EXPECT_EQ(zivParallelUninit(engine), 0);
}

// The engine, its ring, and the state of each thread: whichever allocation fails, there is a working engine or none.
TEST_F(EngineLimits, ShortMemoryIsSurvived) {
    const int threads = std::min(zivcolor::usable_cores(), 8);
    for (int left = 0; left <= 2 + threads; left++) {
        allocations_left = left;
        void* engine = zivParallelInit(nullptr, 4);
        allocations_left = unlimited;
        if (left < 3) {
            EXPECT_EQ(engine, nullptr) << left;
        } else {
            ASSERT_NE(engine, nullptr) << left;
            EXPECT_EQ(zivParallelEngineCores(engine), left - 2);
            EXPECT_EQ(zivParallelUninit(engine), 0);
        }
    }
}

TEST_F(EngineLimits, TasksAreAddedAndRunWithoutAllocating) {
    void* engine = zivParallelInit(nullptr, 4);
    ASSERT_NE(engine, nullptr);
    std::atomic<int> runs{0};
    const int before = allocations;
    for (int round = 0; round < 100; round++) {
        int32_t ids[32];
        for (int32_t& id : ids) id = zivAddTask(engine, count_up, &runs);
        for (const int32_t id : ids) zivWaitTask(engine, id);
    }
    EXPECT_EQ(allocations, before);
    EXPECT_EQ(runs.load(), 3200);
    EXPECT_EQ(zivParallelUninit(engine), 0);
}

}  // namespace
