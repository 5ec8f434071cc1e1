// SPDX-License-Identifier: MIT
#include "parallel/memory.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

namespace {

using namespace zivcolor;

TEST(Memory, NullManagerIsTheHeap) {
    for (const int64_t size : {0, 1, 63, 64, 65, 100000}) {
        void* p = MemMgrAlloc(nullptr, size);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u);
        MemMgrSet(p, 0xA5, size);
        MemMgrFree(nullptr, p);
    }
    MemMgrFree(nullptr, nullptr);
}

TEST(Memory, WhatCannotBeHadIsNull) {
    for (const int64_t size : {int64_t{-1}, int64_t{INT64_MIN}, int64_t{INT64_MAX}})
        EXPECT_EQ(MemMgrAlloc(nullptr, size), nullptr) << size;
    MemMgrRecord nothing{};
    EXPECT_EQ(MemMgrAlloc(&nothing, 8), nullptr);
    char byte;
    MemMgrFree(&nothing, &byte);
}

struct Asked {
    std::vector<int64_t> sizes;
    std::vector<void*> released;
    void* answer;
};

TEST(Memory, ManagerServesItsOwnRequests) {
    char block[16];
    Asked asked{{}, {}, block};
    MemMgrRecord manager{[](void* user, int64_t size) {
                             static_cast<Asked*>(user)->sizes.push_back(size);
                             return static_cast<Asked*>(user)->answer;
                         },
                         [](void* user, void* pointer) { static_cast<Asked*>(user)->released.push_back(pointer); }, &asked};
    EXPECT_EQ(MemMgrAlloc(&manager, 16), block);
    asked.answer = nullptr;
    EXPECT_EQ(MemMgrAlloc(&manager, 0), nullptr);
    EXPECT_EQ(MemMgrAlloc(&manager, -1), nullptr);
    EXPECT_EQ(asked.sizes, (std::vector<int64_t>{16, 0}));
    MemMgrFree(&manager, block);
    MemMgrFree(&manager, nullptr);
    EXPECT_EQ(asked.released, std::vector<void*>{block});
}

TEST(Memory, CopiesAndFillsExactlyTheSize) {
    char text[] = "0123456789";
    MemMgrCpy(text + 2, text, 6);  // over each other
    EXPECT_STREQ(text, "0101234589");
    MemMgrSet(text + 1, 'x', 3);
    EXPECT_STREQ(text, "0xxx234589");
    for (const int64_t size : {int64_t{0}, int64_t{-1}, int64_t{INT64_MIN}}) {
        MemMgrCpy(text, text + 5, size);
        MemMgrSet(text, 'y', size);
        MemMgrCpy(nullptr, nullptr, size);
        MemMgrSet(nullptr, 0, size);
    }
    EXPECT_STREQ(text, "0xxx234589");
}

}  // namespace
