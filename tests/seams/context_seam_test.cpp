// SPDX-License-Identifier: MIT
// The multi-threaded front alone, between stand-ins for all that lies beneath it: every call that it makes, in order, and what
// it does when one of them fails.
#include <gtest/gtest.h>
#include <stddef.h>

#include <string>
#include <type_traits>
#include <vector>

#include "parallel/context.h"

// The records' fields, in this order and nothing between them.
static_assert(offsetof(zivColorCvtContext_t, hEngine) == 0);
static_assert(offsetof(zivColorCvtContext_t, bEngineReady) == sizeof(void*));
static_assert(offsetof(zivColorCvtContext_t, lTaskCount) == sizeof(void*) + 4);
static_assert(offsetof(zivColorCvtContext_t, pfnTask) == sizeof(void*) + 8);
static_assert(sizeof(zivColorCvtContext_t) == sizeof(void*) + 8 + zivcolor::band_task_count * sizeof(void*));
static_assert(std::is_same_v<decltype(zivColorCvtContext_t::bEngineReady), int32_t>);
static_assert(std::is_same_v<decltype(zivColorCvtContext_t::lTaskCount), int32_t>);
static_assert(offsetof(zivColorParam_t, srcImg) == 0);
static_assert(offsetof(zivColorParam_t, dstImg) == sizeof(void*));
static_assert(offsetof(zivColorParam_t, lStartLine) == 2 * sizeof(void*));
static_assert(offsetof(zivColorParam_t, lEndLine) == 2 * sizeof(void*) + 4);
static_assert(offsetof(zivColorParam_t, extParam) == 2 * sizeof(void*) + 8);
static_assert(sizeof(zivColorParam_t) == 3 * sizeof(void*) + 8);

namespace {

using Calls = std::vector<std::string>;

struct World {
    Calls calls;
    int cores = 4;
    bool engine_starts = true, memory_grants = true;
    int32_t uninit_result = 0;
    std::vector<zivColorParam_t> bands;
    std::vector<zivcolor::TaskFunction> functions;
    std::vector<int32_t> waited, alphas;
    zivColorCvtContext_t record{};
};
World world;

char engine_object, memory_object;
void* const engine = &engine_object;
void* const memory = &memory_object;

template <int slot>
void task(void*) {}

template <size_t... slot>
constexpr zivcolor::BandTasks distinct_tasks(std::index_sequence<slot...>) {
    return {task<static_cast<int>(slot)>...};
}

}  // namespace

namespace zivcolor {

constexpr BandTasks band_tasks = distinct_tasks(std::make_index_sequence<band_task_count>{});

void* zivParallelInit(void* reserved, int32_t tasks_per_core) noexcept {
    world.calls.push_back("init " + std::string(reserved ? "?" : "null") + " " + std::to_string(tasks_per_core));
    return world.engine_starts ? engine : nullptr;
}
void zivTryFireCpu(void* handle) noexcept { world.calls.push_back(handle == engine ? "fire" : "?"); }
int32_t zivParallelEngineCores(void* handle) noexcept {
    world.calls.push_back(handle == engine ? "cores" : "?");
    return world.cores;
}
int32_t zivAddTask(void* handle, zivcolor::TaskFunction function, void* argument) noexcept {
    world.calls.push_back(handle == engine ? "add" : "?");
    world.functions.push_back(function);
    world.bands.push_back(*static_cast<const zivColorParam_t*>(argument));
    world.alphas.push_back(static_cast<const zivColorExtParam_ALPHA_t*>(world.bands.back().extParam)->alpha);
    return -7 * static_cast<int32_t>(world.bands.size());  // the front must not look at it
}
int32_t zivWaitTask(void* handle, int32_t id) noexcept {
    world.calls.push_back(handle == engine ? "wait" : "?");
    world.waited.push_back(id);
    return -1;
}
void zivTryRestoreCpu(void* handle) noexcept { world.calls.push_back(handle == engine ? "restore" : "?"); }
int32_t zivParallelUninit(void* handle) noexcept {
    world.calls.push_back(handle == engine ? "uninit" : "?");
    return world.uninit_result;
}
void* MemMgrAlloc(void* hMemMgr, int64_t size) {
    world.calls.push_back(hMemMgr == memory && size == sizeof(zivColorCvtContext_t) ? "alloc" : "?");
    return world.memory_grants ? &world.record : nullptr;
}
void MemMgrFree(void* hMemMgr, void* pointer) {
    world.calls.push_back(hMemMgr == memory && pointer == &world.record ? "free" : "?");
}

}  // namespace zivcolor

extern "C" int32_t zivColorCvtFunc(const __tag_KOBR_OFFSCREEN* srcImg, const __tag_KOBR_OFFSCREEN*) {
    return static_cast<int32_t>(srcImg->format);
}

namespace {

struct ContextSeam : testing::Test {
    void SetUp() override { world = World{}; }
};

TEST_F(ContextSeam, InitCallsInOrder) {
    ASSERT_EQ(zivColorCvtInit_MultiThreads(memory), &world.record);
    EXPECT_EQ(world.calls, (Calls{"init null 4", "fire", "alloc", "cores"}));
    EXPECT_EQ(world.record.hEngine, engine);
    EXPECT_EQ(world.record.bEngineReady, 1);
    EXPECT_EQ(world.record.lTaskCount, 16);
    for (size_t slot = 0; slot < zivcolor::band_task_count; slot++)
        EXPECT_EQ(world.record.pfnTask[slot], zivcolor::band_tasks[slot]);
}

TEST_F(ContextSeam, InitGivesUpWithoutAnEngine) {
    world.engine_starts = false;
    EXPECT_EQ(zivColorCvtInit_MultiThreads(memory), nullptr);
    EXPECT_EQ(world.calls, (Calls{"init null 4"}));
}

TEST_F(ContextSeam, InitLeavesTheEngineBehindWithoutMemory) {
    world.memory_grants = false;
    EXPECT_EQ(zivColorCvtInit_MultiThreads(memory), nullptr);
    EXPECT_EQ(world.calls, (Calls{"init null 4", "fire", "alloc"}));
}

TEST_F(ContextSeam, UnInitCallsInOrder) {
    zivColorCvtInit_MultiThreads(memory);
    world.calls.clear();
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(memory, &world.record), zivStatus_OK);
    EXPECT_EQ(world.calls, (Calls{"restore", "uninit", "free"}));
}

TEST_F(ContextSeam, UnInitKeepsTheRecordWhenTheEngineFails) {
    zivColorCvtInit_MultiThreads(memory);
    world.calls.clear();
    world.uninit_result = -5;
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(memory, &world.record), zivStatus_EngineFailure);
    EXPECT_EQ(world.calls, (Calls{"restore", "uninit"}));
    world.uninit_result = 3;
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(memory, &world.record), zivStatus_OK);
}

TEST_F(ContextSeam, UnInitLeavesAnEngineThatIsNotReadyAlone) {
    zivColorCvtInit_MultiThreads(memory);
    world.calls.clear();
    world.record.bEngineReady = 0;
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(memory, &world.record), zivStatus_OK);
    EXPECT_EQ(world.calls, (Calls{"free"}));
}

TEST_F(ContextSeam, UnInitOfNullTouchesNothing) {
    EXPECT_EQ(zivColorCvtUnInit_MultiThreads(memory, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(world.calls, Calls{});
}

TEST_F(ContextSeam, ProcessAddsAllBandsBeforeTheFirstWait) {
    for (int cores = 1; cores <= 8; cores++) {
        world = World{};
        world.cores = cores;
        zivColorCvtInit_MultiThreads(memory);
        world.calls.clear();
        __tag_KOBR_OFFSCREEN source{}, destination{};
        source.format = 20;  // the slot
        source.height = 5000;
        destination.height = 1081;
        const zivColorExtParam_ALPHA_t alpha{77};
        ASSERT_EQ(zivColorCvtProcess_MultiThreads(&world.record, &source, &destination, &alpha), zivStatus_OK);
        const auto n = static_cast<size_t>(4 * cores);
        Calls expected(n, "add");
        expected.resize(2 * n, "wait");
        EXPECT_EQ(world.calls, expected);
        ASSERT_EQ(world.waited.size(), n);
        for (size_t i = 0; i < n; i++) {
            EXPECT_EQ(world.functions[i], zivcolor::band_tasks[20]);
            EXPECT_EQ(world.waited[i], -7 * static_cast<int32_t>(i + 1));
            const zivColorParam_t& band = world.bands[i];
            EXPECT_EQ(band.srcImg, &source);
            EXPECT_EQ(band.dstImg, &destination);
            EXPECT_EQ(band.extParam, &alpha);
            EXPECT_EQ(band.lStartLine, i == 0 ? 0 : world.bands[i - 1].lEndLine);
        }
        EXPECT_EQ(world.bands.back().lEndLine, 1081);
    }
}

TEST_F(ContextSeam, ProcessGivesAlphaZeroForANullExtension) {
    zivColorCvtInit_MultiThreads(memory);
    __tag_KOBR_OFFSCREEN source{}, destination{};
    destination.height = 64;
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(&world.record, &source, &destination, nullptr), zivStatus_OK);
    EXPECT_EQ(world.alphas, std::vector<int32_t>(16, 0));
}

TEST_F(ContextSeam, ProcessTouchesNothingWithoutATask) {
    zivColorCvtInit_MultiThreads(memory);
    world.calls.clear();
    __tag_KOBR_OFFSCREEN source{}, destination{};
    source.format = static_cast<uint32_t>(-1);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(&world.record, &source, &destination, nullptr), zivStatus_BadArgument);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(nullptr, &source, &destination, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(&world.record, nullptr, &destination, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(zivColorCvtProcess_MultiThreads(&world.record, &source, nullptr, nullptr), zivStatus_NullPointer);
    EXPECT_EQ(world.calls, Calls{});
}

}  // namespace
