// SPDX-License-Identifier: MIT
// The HSL kernels against the reference. Widths from 3 to 7 end the process, as their blocks run on beyond the image.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string>

#include "harness/options.h"
#include "harness/workspace.h"
#include "reference/reference.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

struct Sizes {
    uint32_t width, height;
    uint32_t source_gap, chroma_gap, destination_gap;  // bytes from a row's end to the next row
};

// The destination is the last buffer.
struct Form {
    const char* name;
    int buffers;
    int pixel_bytes;  // of the first buffer
    int64_t (*convert)(const KernelTable& kernels, uint8_t* const* buffers, const Sizes& s);
};
void PrintTo(const Form& form, std::ostream* out) { *out << form.name; }

const Form forms[] = {
    {"zivColorBGR888toHSL888u8", 2, 3,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorBGR888toHSL888u8(b[0], b[1], s.height, s.width, 3 * s.width + s.source_gap,
                                                 3 * s.width + s.destination_gap);
     }},
    {"zivColorBGR565toHSL888u8", 2, 2,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorBGR565toHSL888u8(b[0], b[1], s.height, s.width, 2 * s.width + s.source_gap,
                                                 3 * s.width + s.destination_gap);
     }},
    {"zivColorRGB565toHSL888u8", 2, 2,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorRGB565toHSL888u8(b[0], b[1], s.height, s.width, 2 * s.width + s.source_gap,
                                                 3 * s.width + s.destination_gap);
     }},
    {"zivColorI420toHSL888u8", 4, 1,
     [](const KernelTable& kernels, uint8_t* const* b, const Sizes& s) -> int64_t {
         return kernels.zivColorI420toHSL888u8(b[0], b[1], b[2], s.width, s.height, b[3], s.width + s.source_gap,
                                               (s.width + 1) / 2 + s.chroma_gap, 3 * s.width + s.destination_gap);
     }},
};

class Hsl : public testing::TestWithParam<Form> {
protected:
    Call call(const Sizes& s) const {
        return [convert = GetParam().convert, s](const KernelTable& kernels, uint8_t* const* buffers) {
            return convert(kernels, buffers, s);
        };
    }
    std::vector<Room> rooms(const Sizes& s) const {
        const auto room = [&](const char* name, size_t row, uint32_t gap) {
            const auto bytes = static_cast<int>(row);
            return Room{
                64, (row + 64) * (s.height + 2) + 64, {name, bytes + static_cast<int>(gap), bytes, static_cast<int>(s.width)}};
        };
        std::vector<Room> all(static_cast<size_t>(GetParam().buffers), room("source chroma", s.width / 2 + 1, s.chroma_gap));
        all.front() = room("source", s.width * static_cast<size_t>(GetParam().pixel_bytes), s.source_gap);
        all.back() = room("destination", s.width * 3, s.destination_gap);
        return all;
    }
    std::string what(const Sizes& s) const {
        return std::string(GetParam().name) + " " + std::to_string(s.width) + "x" + std::to_string(s.height) + ", gaps " +
               std::to_string(s.source_gap) + " " + std::to_string(s.chroma_gap) + " " + std::to_string(s.destination_gap);
    }
    void expect_same(const Sizes& s, uint64_t seed) {
        expect_same_bytes(call(s), rooms(s), seed, [&] { return what(s); });
    }
};

TEST_P(Hsl, EverySize) {
    Random random{base_seed};
    for (uint32_t width = 8; width <= 140; ++width)
        for (const uint32_t height : {3u, 4u, 5u}) {
            expect_same({width, height, 0, 0, 0}, random.next());
            const auto gap = [&] { return static_cast<uint32_t>(random.below(40)); };
            expect_same({width, height, gap(), gap(), gap()}, random.next());
            if (HasFailure()) return;
        }
}

TEST_P(Hsl, WideImages) {
    Random random{base_seed + 1};
    for (const uint32_t edge : {192u, 256u, 320u, 512u, 1024u})
        for (uint32_t width = edge - 2; width <= edge + 9; ++width) expect_same({width, 3, 0, 0, 0}, random.next());
}

// Only here is a destination step below a row's bytes a plain distance: rows overlap and show the order of stores.
TEST(HslOfI420, RowsThatOverlap) {
    Random random{base_seed + 3};
    for (uint32_t width = 8; width <= 140; ++width)
        for (int round = 0; round < 4; ++round) {
            const uint32_t step = static_cast<uint32_t>(random.below(static_cast<int>(3 * width)));
            const Call call = [=](const KernelTable& kernels, uint8_t* const* b) -> int64_t {
                return kernels.zivColorI420toHSL888u8(b[0], b[1], b[2], width, 5, b[3], width, width, step);
            };
            const size_t room = 6 * (width + 1), destination = 8 * 3 * (width + 1);
            expect_same_bytes(call, {{0, room}, {0, room}, {0, room}, {64, destination}}, random.next(), [&] {
                return "zivColorI420toHSL888u8 " + std::to_string(width) + " columns, step " + std::to_string(step);
            });
            if (HasFailure()) return;
        }
}

// A pixel is read whole before it is written.
TEST(HslOfBgr, InPlace) {
    for (uint32_t width = 8; width <= 140; ++width) {
        const Call call = [=](const KernelTable& kernels, uint8_t* const* b) -> int64_t {
            return kernels.zivColorBGR888toHSL888u8(b[0], b[0], 3, width, 3 * width + 5, 3 * width + 5);
        };
        expect_same_bytes(call, {{64, 3 * (3 * width + 5) + 64}}, base_seed + width,
                          [&] { return std::to_string(width) + " columns in place"; });
        if (testing::Test::HasFailure()) return;
    }
}

TEST_P(Hsl, StayInsideTheirReach) {
    Random random{base_seed + 2};
    for (uint32_t width = 8; width <= 140; ++width)
        for (const uint32_t height : {3u, 4u}) {
            const Sizes s{width, height, 0, 0, 0};
            expect_in_bounds(call(s), rooms(s), random.next(), [&] { return what(s); });
            if (HasFailure()) return;
        }
}

TEST_P(Hsl, SizesThatAreRefused) {
    for (const uint32_t width : {0u, 1u, 2u, 8u})
        for (const uint32_t height : {0u, 1u, 2u}) expect_same({width, height, 0, 0, 0}, base_seed);
}

// Every pointer is tested, before the sizes are.
TEST_P(Hsl, NullPointers) {
    for (int nulls = 1; nulls < 1 << GetParam().buffers; nulls++)
        for (const Sizes& s : {Sizes{9, 3, 0, 0, 0}, Sizes{0, 0, 0, 0, 0}}) {
            const Call given = [&](const KernelTable& kernels, uint8_t* const* buffers) {
                uint8_t* some[4];
                for (int k = 0; k < GetParam().buffers; k++) some[k] = nulls & (1 << k) ? nullptr : buffers[k];
                return GetParam().convert(kernels, some, s);
            };
            expect_same_bytes(given, rooms(s), base_seed, [&] { return what(s) + ", nulls " + std::to_string(nulls); });
        }
}

#if UINTPTR_MAX > UINT32_MAX  // elsewhere the bound has more columns than there are addresses

// The first row (or the first two of 4:2:0) is converted on and on, to where memory ends.
TEST_P(Hsl, WidthsOf3To7RunOnBeyondTheImage) {
    constexpr uint32_t columns = 4096, stride = 3 * columns, last_column = 2048;
    const int rows = GetParam().buffers == 2 ? 1 : 2;  // at once
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t reach = static_cast<size_t>(rows - 1) * stride + 3 * last_column, size = (reach + page - 1) / page * page;
    void* const range = mmap(nullptr, size + page, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(range, MAP_FAILED);
    auto* const destination = static_cast<uint8_t*>(range) + size - reach;
    ASSERT_EQ(mprotect(destination + reach, page, PROT_NONE), 0);
    std::vector<uint8_t> source(size_t{8} * stride), expected(size_t{4} * stride);
    fill(source.data(), source.size(), base_seed);
    const auto convert = [&](const KernelTable& kernels, uint32_t width, uint8_t* to) {
        uint8_t* const from = source.data();
        uint8_t* const packed[] = {from, to};
        uint8_t* const planar[] = {from, from + 2 * stride, from + 4 * stride, to};
        const auto pixel = static_cast<uint32_t>(GetParam().pixel_bytes);
        GetParam().convert(kernels, rows == 1 ? packed : planar,
                           {width, 3, stride - pixel * width, stride - (width + 1) / 2, stride - 3 * width});
    };
    convert(reference::kernels, columns, expected.data());
    for (const zivcolor::Target& target : targets())
        for (const uint32_t width : {3u, 4u, 5u, 6u, 7u}) {
            SCOPED_TRACE(std::string(target.name) + " " + std::to_string(width));
            std::fill_n(destination, reach, uint8_t{0x11});
            const pid_t child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                const rlimit no_core{};
                setrlimit(RLIMIT_CORE, &no_core);
                for (const int number : {SIGSEGV, SIGBUS}) signal(number, SIG_DFL);  // meant to be: no fault to report
                convert(*target.kernels, width, destination);
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFSIGNALED(status) && (WTERMSIG(status) == SIGSEGV || WTERMSIG(status) == SIGBUS)) << status;
            // By then all but the last blocks of the row are there.
            for (size_t row = 0; row < static_cast<size_t>(rows); row++)
                EXPECT_TRUE(std::equal(destination + row * stride, destination + row * stride + 3 * (last_column - 64),
                                       expected.data() + row * stride))
                    << "row " << row;
        }
    munmap(range, size + page);
}

#endif

INSTANTIATE_TEST_SUITE_P(All, Hsl, testing::ValuesIn(forms),
                         [](const testing::TestParamInfo<Form>& row) { return std::string(row.param.name); });

}  // namespace
