// SPDX-License-Identifier: MIT
// The shared library comes and goes: after the last context has ended it can be unloaded, and no thread stays behind.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "harness/process.h"
#include "zivcolor.h"

namespace {

bool is_mapped(const std::string& name) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(name) != std::string::npos) return true;
    return false;
}

TEST(Unload, LeavesNoThreadBehind) {
    const int threads = harness::thread_count();
    for (int round = 0; round < 10; round++) {
        void* library = dlopen(ZIVCOLOR_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        const auto init =
            reinterpret_cast<decltype(&zivColorCvtInit_MultiThreads)>(dlsym(library, "zivColorCvtInit_MultiThreads"));
        const auto process =
            reinterpret_cast<decltype(&zivColorCvtProcess_MultiThreads)>(dlsym(library, "zivColorCvtProcess_MultiThreads"));
        const auto uninit =
            reinterpret_cast<decltype(&zivColorCvtUnInit_MultiThreads)>(dlsym(library, "zivColorCvtUnInit_MultiThreads"));
        std::vector<uint8_t> from(64 * 64 * 3 / 2), to(64 * 64 * 3);
        const __tag_KOBR_OFFSCREEN source{zivPixFmt_NV21, 64, 64, {from.data(), from.data() + 64 * 64}, {64, 64}};
        const __tag_KOBR_OFFSCREEN destination{zivPixFmt_BGR888, 64, 64, {to.data()}, {192}};
        void* context = init(nullptr);
        ASSERT_NE(context, nullptr);
        EXPECT_EQ(process(context, &source, &destination, nullptr), zivStatus_OK);
        EXPECT_EQ(uninit(nullptr, context), zivStatus_OK);
        for (const char* hidden :
             {"zivParallelInit", "zivTryFireCpu", "zivParallelEngineCores", "zivAddTask", "zivWaitTask", "zivTryRestoreCpu",
              "zivParallelUninit", "MemMgrAlloc", "MemMgrFree", "MemMgrCpy", "MemMgrSet"})
            EXPECT_EQ(dlsym(library, hidden), nullptr) << hidden;
        EXPECT_EQ(dlclose(library), 0);
        EXPECT_TRUE(harness::thread_count_becomes(threads)) << harness::thread_count();
        EXPECT_FALSE(is_mapped("libzivcolor"));
    }
}

// When memory for the context is refused, the workers stay behind: the library stays loaded for them, however soon it is
// closed.
TEST(Unload, IsPutOffWhileWorkersLive) {
    EXPECT_EXIT(
        {
            void* library = dlopen(ZIVCOLOR_LIBRARY, RTLD_NOW | RTLD_LOCAL);
            const auto init =
                reinterpret_cast<decltype(&zivColorCvtInit_MultiThreads)>(dlsym(library, "zivColorCvtInit_MultiThreads"));
            struct {
                void* (*allocate)(void*, int64_t) = [](void*, int64_t) -> void* { return nullptr; };
                void (*release)(void*, void*) = nullptr;
                void* user = nullptr;
            } refusing;
            int failures = 0;
            for (int i = 0; i < 5; i++) failures += init(&refusing) == nullptr;
            dlclose(library);
            usleep(50000);
            _exit(failures == 5 && is_mapped("libzivcolor") ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
