// SPDX-License-Identifier: MIT
// The multi-threaded front with the real engine.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <thread>

#if defined(__GLIBC__)
#include <malloc.h>
#endif
#if defined(__linux__)
#include <sched.h>
#endif

#include "harness/float_state.h"
#include "harness/frame.h"
#include "harness/partly_mapped.h"
#include "harness/process.h"
#include "harness/time_limit.h"
#include "parallel/context.h"
#include "parallel/memory.h"

namespace {

using namespace harness;
using namespace zivcolor;

[[maybe_unused]] const bool limited = limit_time_of("Context");

struct Context {
    void* handle = zivColorCvtInit_MultiThreads(nullptr);
    Context() = default;
    ~Context() { EXPECT_EQ(zivColorCvtUnInit_MultiThreads(nullptr, handle), zivStatus_OK); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    int32_t convert(const Frame& from, const Frame& to, const zivColorExtParam_ALPHA_t* extension = nullptr) const {
        return zivColorCvtProcess_MultiThreads(handle, &from.image, &to.image, extension);
    }
};

// The whole frame by the dispatcher, and the same on the context, from equal memory.
void expect_equal(const Context& context, const Conversion& c, int width, int height, uint64_t seed) {
    const Frame from(c.source, width, height, seed);
    Frame single(c.destination, width, height, seed + 1), threaded(c.destination, width, height, seed + 1);
    const zivColorExtParam_ALPHA_t alpha{static_cast<int32_t>(seed)};
    zivColorCvt(&from.image, &single.image, alpha);
    ASSERT_EQ(context.convert(from, threaded, &alpha), zivStatus_OK);
    ASSERT_EQ(single.memory, threaded.memory) << c.name << " " << width << "x" << height;
}

// The tasks whose bands do not overlap.
std::vector<Conversion> independent() {
    std::vector<Conversion> rows;
    for (const Conversion& c : conversions())
        if (c.task >= 0 && std::string(c.name) != "zivColorI422HtoNV12u8") rows.push_back(c);
    return rows;
}

TEST(Context, HoldsFourBandsForEachCore) {
    const Context context;
    ASSERT_NE(context.handle, nullptr);
    const auto& record = *static_cast<const zivColorCvtContext_t*>(context.handle);
    EXPECT_EQ(record.bEngineReady, 1);
    EXPECT_EQ(record.lTaskCount, 4 * zivParallelEngineCores(record.hEngine));
    for (size_t i = 0; i < zivcolor::band_task_count; i++) EXPECT_EQ(record.pfnTask[i], zivcolor::band_tasks[i]);
}

TEST(Context, ConvertsAllPairsInAllSizesOneAfterTheOther) {
    const Context context;
    uint64_t seed = base_seed;
    for (const Conversion& c : independent())
        for (const auto& [width, height] : {std::pair{2, 2}, {16, 1}, {64, 3}, {34, 33}, {258, 101}, {640, 242}})
            expect_equal(context, c, width, height, seed++);
}

#if defined(__linux__)
TEST(Context, HasFourBandsOnOneCore) {
    cpu_set_t all, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    CPU_ZERO(&one);
    for (int cpu = 0; cpu < CPU_SETSIZE && CPU_COUNT(&one) == 0; cpu++)
        if (CPU_ISSET(cpu, &all)) CPU_SET(cpu, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    {
        const Context context;
        ASSERT_NE(context.handle, nullptr);
        EXPECT_EQ(static_cast<const zivColorCvtContext_t*>(context.handle)->lTaskCount, 4);
        for (const int height : {1, 3, 33, 101})
            expect_equal(context, conversion("zivColorNV21toBGR888u8"), 64, height, base_seed);
    }
    ASSERT_EQ(sched_setaffinity(0, sizeof all, &all), 0);
}
#endif

TEST(Context, RefusesNullsAndPairsWithoutATask) {
    const Context context;
    const Frame from(zivPixFmt_NV21, 16, 16, 1), no_task(zivPixFmt_YV12, 16, 16, 1);
    Frame to(zivPixFmt_RGB888, 16, 16, 2);
    const std::vector<uint8_t> before = to.memory;
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(nullptr, &from.image, &to.image, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(context.handle, nullptr, &to.image, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(context.handle, &from.image, nullptr, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(context.convert(no_task, to), zivStatus_BadArgument);
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(nullptr, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(to.memory, before);
}

// Nulls are told before anything is read, a pair without a task by the formats alone, and alpha is read where it is written.
TEST(Context, ReadsNothingThatItNeedNot) {
    const Context context;
    const OutOfReach image;
    const PartlyMapped<zivColorCvtContext_t> record({});
    const PartlyMapped<zivColorExtParam_ALPHA_t> alpha({});
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(nullptr, image.get(), image.get(), alpha.get()), zivStatus_NullPointer);
    void* const handle = const_cast<zivColorCvtContext_t*>(record.get());
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(handle, nullptr, image.get(), alpha.get()), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(handle, image.get(), nullptr, alpha.get()), zivStatus_NullPointer);
    const FormatOnly from(zivPixFmt_YV12), to(zivPixFmt_RGB888);
    EXPECT_EQ(zivColorCvtFunc(from.get(), to.get()), -1);
    EXPECT_EQ(zivColorCvtFunc(FormatOnly(zivPixFmt_NV21).get(), to.get()), 1);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(handle, from.get(), to.get(), alpha.get()), zivStatus_BadArgument);
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(handle, nullptr), zivStatus_NullPointer);
    const Frame source(zivPixFmt_NV21, 32, 48, 1), destination(zivPixFmt_RGB888, 32, 48, 2);
    EXPECT_EQ(context.convert(source, destination, alpha.get()), zivStatus_OK);
}

// A worker is set as the thread that started it was, and runs bands beside a caller that may be set otherwise.
TEST(Context, RoundsToNearestOnEveryThread) {
    const std::vector<FloatState> states = float_states();
    for (const char* name : {"zivColorNV21toBGRA8888u8", "zivColorBGRA8888toNV21u8", "zivColorRGBA8888toNV21u8"}) {
        const Conversion& c = conversion(name);
        const Frame from(c.source, 650, 482, base_seed);
        Frame single(c.destination, 650, 482, 2);
        EXPECT_EQ(zivColorCvt(&from.image, &single.image, {0}), zivStatus_OK);
        for (const size_t workers : {size_t{0}, size_t{1}, states.size() - 1}) {
            const InFloatState set_first(states[workers]);
            const Context context;
            for (const size_t caller : {size_t{0}, size_t{2}, states.size() - 1}) {
                Frame threaded(c.destination, 650, 482, 2);
                {
                    const InFloatState set(states[caller]);
                    EXPECT_EQ(context.convert(from, threaded), zivStatus_OK);
                }
                EXPECT_TRUE(single.memory == threaded.memory)
                    << name << ", workers " << states[workers].name << ", caller " << states[caller].name;
            }
        }
    }
}

TEST(Context, GivesTheLowByteOfAlphaAndZeroForNone) {
    const Context context;
    const Frame from(zivPixFmt_NV21, 32, 48, 1);
    Frame to(zivPixFmt_RGBA8888, 32, 48, 2);
    const auto expect_alpha = [&](uint8_t alpha) {
        for (int i = 0; i < 32 * 48; i++) ASSERT_EQ(to.image.plane[0][4 * i + 3], alpha) << i;
    };
    const zivColorExtParam_ALPHA_t wide{0x1FF}, low{0x7F};
    EXPECT_EQ(context.convert(from, to, &wide), zivStatus_OK);
    expect_alpha(0xFF);
    EXPECT_EQ(context.convert(from, to), zivStatus_OK);
    expect_alpha(0);
    EXPECT_EQ(context.convert(from, to, &low), zivStatus_OK);
    expect_alpha(0x7F);
}

TEST(Context, ReportsSuccessWhenEveryKernelRefused) {
    const Context context;
    for (const auto& [width, height] : {std::pair{1, 16}, {16, 1}, {16, 0}, {0, 16}, {16, -3}}) {
        const Frame from(zivPixFmt_NV21, 16, 16, 1);
        Frame to(zivPixFmt_BGR888, 16, 16, 2);
        const std::vector<uint8_t> before = to.memory;
        to.image.width = width;
        to.image.height = height;
        EXPECT_EQ(context.convert(from, to), zivStatus_OK);
        EXPECT_EQ(to.memory, before) << width << "x" << height;
    }
}

// Only the destination's height is cut: the source's is not looked at.
TEST(Context, IgnoresTheHeightOfTheSource) {
    const Context context;
    Frame from(zivPixFmt_NV21, 16, 24, 1), single(zivPixFmt_BGR888, 16, 24, 2), threaded(zivPixFmt_BGR888, 16, 24, 2);
    zivColorCvt(&from.image, &single.image, {0});
    from.image.height = 1;
    EXPECT_EQ(context.convert(from, threaded), zivStatus_OK);
    EXPECT_EQ(single.memory, threaded.memory);
}

// An allocator of the caller's own, which counts and can refuse.
struct Allocator {
    int allocations = 0, releases = 0;
    bool refuses = false;
    MemMgrRecord record{[](void* user, int64_t size) -> void* {
                            auto& self = *static_cast<Allocator*>(user);
                            if (self.refuses) return nullptr;
                            self.allocations++;
                            return std::malloc(static_cast<size_t>(size));
                        },
                        [](void* user, void* pointer) {
                            static_cast<Allocator*>(user)->releases++;
                            std::free(pointer);
                        },
                        this};
};

TEST(Context, TakesItsRecordFromTheCallersAllocator) {
    Allocator allocator;
    void* context = zivColorCvtInit_MultiThreads(&allocator.record);
    ASSERT_NE(context, nullptr);
    const Frame from(zivPixFmt_NV21, 64, 64, 1);
    Frame to(zivPixFmt_BGR888, 64, 64, 2);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(context, &from.image, &to.image, nullptr), zivStatus_OK);
    EXPECT_EQ(allocator.allocations, 1);
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(&allocator.record, context), zivStatus_OK);
    EXPECT_EQ(allocator.releases, 1);
}

// In a process of its own, as the engine of the failed attempt stays behind.
TEST(ContextDeathTest, IsNullWhenTheAllocatorRefuses) {
    EXPECT_EXIT(
        {
            Allocator allocator;
            allocator.refuses = true;
            const int before = thread_count();
            void* context = zivColorCvtInit_MultiThreads(&allocator.record);
            std::exit(context == nullptr && thread_count() > before ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ContextDeathTest, LetsTheProcessExitWhileItLives) {
    EXPECT_EXIT(
        {
            void* context = zivColorCvtInit_MultiThreads(nullptr);
            const Frame from(zivPixFmt_NV21, 64, 64, 1);
            Frame to(zivPixFmt_BGR888, 64, 64, 2);
            std::exit(zivColorCvtProcess_MultiThreads(context, &from.image, &to.image, nullptr));
        },
        testing::ExitedWithCode(0), "");
}

// The child has no workers: all it can do with the context is to end it, which gives back its record.
TEST(Context, EndsInTheChildOfAFork) {
    Allocator allocator;
    void* context = zivColorCvtInit_MultiThreads(&allocator.record);
    ASSERT_NE(context, nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);
        const int32_t status = zivColorCvtUnInit_MultiThreads(&allocator.record, context);
        _exit(status == zivStatus_OK && allocator.releases == 1 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(&allocator.record, context), zivStatus_OK);
}

TEST(Context, ConvertsTenThousandSmallFramesBackToBack) {
    const Context context;
    const Frame from(zivPixFmt_NV21, 64, 64, 1);
    Frame expected(zivPixFmt_BGR888, 64, 64, 2), to(zivPixFmt_BGR888, 64, 64, 2);
    const std::vector<uint8_t> before = to.memory;
    zivColorCvt(&from.image, &expected.image, {0});
    for (int i = 0; i < 10000; i++) {
        std::copy(before.begin(), before.end(), to.memory.begin());
        ASSERT_EQ(context.convert(from, to), zivStatus_OK);
        ASSERT_EQ(to.memory, expected.memory) << i;
    }
}

TEST(Context, OpensAndClosesWithoutLosingThreadsOrMemory) {
    const Frame from(zivPixFmt_NV21, 64, 64, 1);
    Frame to(zivPixFmt_BGR888, 64, 64, 2);
    const auto rounds = [&](int count) {
        for (int i = 0; i < count; i++) {
            const Context context;
            ASSERT_EQ(context.convert(from, to), zivStatus_OK);
        }
    };
    const auto heap = [] {
#if defined(__GLIBC__)
        return sanitized ? size_t{0} : mallinfo2().uordblks;
#else
        return size_t{0};
#endif
    };
    const int threads = thread_count();
    rounds(20);
    const size_t bytes = heap();
    rounds(300);
    EXPECT_LT(heap(), bytes + 4096);
    EXPECT_TRUE(thread_count_becomes(threads)) << thread_count();
}

void convert_in_turn(const Context& context, int first, int rounds) {
    const std::vector<Conversion> rows = independent();
    for (int i = 0; i < rounds; i++) {
        const Conversion& c = rows[static_cast<size_t>(first + i) % rows.size()];
        expect_equal(context, c, 64 + 2 * (i % 40), 20 + i % 90, static_cast<uint64_t>(first + i));
    }
}

TEST(Context, MayBeSharedByThreads) {
    const Context context;
    std::thread other([&] { convert_in_turn(context, 0, 300); }), third([&] { convert_in_turn(context, 31, 300); });
    convert_in_turn(context, 17, 300);
    other.join();
    third.join();
}

TEST(Context, LivesBesideOthers) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; t++)
        threads.emplace_back([t] {
            const Context context;
            convert_in_turn(context, 11 * t, 150);
        });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
