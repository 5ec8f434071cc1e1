// SPDX-License-Identifier: MIT
// The one kernel that takes memory, over a memory service whose blocks stand flush against unmapped pages: it stays within what
// it asked for, and gives it back.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/kernels.h"
#include "parallel/memory.h"

ZIVCOLOR_DECLARE_KERNELS(ZIVCOLOR_TARGET, yuvrepack, YUVREPACK)

namespace {

// Pages between two unmapped ones. Blocks start with the first or end with the last.
class Pages {
public:
    static constexpr size_t size = size_t{1} << 16;
    static Pages& get() {
        static Pages all;
        return all;
    }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    uint8_t* block(int64_t bytes, bool at_end) const {
        if (bytes < 0 || bytes > static_cast<int64_t>(size)) return nullptr;
        return at_end ? first_ + size - bytes : first_;
    }

private:
    Pages() {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        void* const range = mmap(nullptr, size + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        first_ = static_cast<uint8_t*>(range) + page;
        if (range == MAP_FAILED || mprotect(first_, size, PROT_READ | PROT_WRITE) != 0) std::abort();
    }
    ~Pages() = default;

    uint8_t* first_;
};

bool at_end;
int64_t asked;
int blocks_taken;
void* block_held;

}  // namespace

namespace zivcolor {

void* MemMgrAlloc(void* hMemMgr, int64_t size) {
    EXPECT_EQ(hMemMgr, nullptr);
    EXPECT_EQ(block_held, nullptr);
    asked = size;
    blocks_taken++;
    return block_held = Pages::get().block(size, at_end);
}
void MemMgrFree(void* hMemMgr, void* pointer) {
    EXPECT_EQ(hMemMgr, nullptr);
    EXPECT_EQ(pointer, block_held);
    block_held = nullptr;
}
void MemMgrCpy(void* destination, const void* source, int64_t size) {
    if (size > 0) std::memmove(destination, source, static_cast<size_t>(size));
}
void MemMgrSet(void*, uint8_t, int64_t) { FAIL() << "nothing is cleared on the way up"; }

}  // namespace zivcolor

namespace {

int32_t convert(int width, int height, int source_pitch, int destination_pitch) {
    std::vector<uint8_t> memory(size_t{1} << 16, 7);
    uint8_t* const middle = memory.data() + memory.size() / 2;
    const zivcolor::Image source{zivPixFmt_NV41, width, height, {middle, memory.data() + 4096}, {0, source_pitch}};
    const zivcolor::Image destination{zivPixFmt_NV21, width, height, {middle, middle}, {0, destination_pitch}};
    blocks_taken = 0;
    return zivcolor::ZIVCOLOR_TARGET::yuvrepack::zivColorNV41toNV21_2(&source, &destination);
}

TEST(WorkBufferSeam, RowsStayWithinTheBlock) {
    for (const bool end : {false, true}) {
        at_end = end;
        for (int width = 2; width <= 140; width++)
            for (const int source_pitch : {0, 1, width / 2, width - 1, width, width + 3, 2 * width + 7, 300})
                for (const int destination_pitch : {0, 1, width / 2, width, width + 4, 301})
                    for (const int sign : {1, -1}) {
                        ASSERT_EQ(convert(width, 8, source_pitch, sign * destination_pitch), zivStatus_OK);
                        ASSERT_EQ(blocks_taken, 1);
                        ASSERT_EQ(block_held, nullptr) << "given back";
                        ASSERT_GE(asked, 2 * source_pitch);
                    }
    }
}

// Where two rows are what a destination row needs, they are all that is asked for; with other heights they stay unused.
TEST(WorkBufferSeam, TwoRowsOfTheSourceAreAskedFor) {
    for (const int width : {8, 32, 40, 100})
        for (int height = 2; height <= 9; height++) {
            ASSERT_EQ(convert(width, height, width, width), zivStatus_OK);
            EXPECT_EQ(asked, 2 * width);
            EXPECT_EQ(blocks_taken, 1);
            EXPECT_EQ(block_held, nullptr);
        }
}

TEST(WorkBufferSeam, WithoutABlockThereIsNoConversion) {
    EXPECT_EQ(convert(8, 8, -8, 8), zivStatus_OutOfMemory);
    EXPECT_EQ(asked, -16);
    EXPECT_EQ(convert(8, 8, 1 << 20, 8), zivStatus_OutOfMemory);
    EXPECT_EQ(blocks_taken, 1);
}

}  // namespace
