// SPDX-License-Identifier: MIT
#include "harness/workspace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "harness/fault.h"
#include "harness/guarded_pages.h"
#include "harness/options.h"
#include "reference/memory.h"
#include "reference/reference.h"

namespace harness {

using zivcolor::Image;
using zivcolor::KernelTable;
using zivcolor::MaskedImage;

namespace {

// Fills are cut from this pool at an offset that the seed picks.
const std::vector<uint8_t>& pool() {
    static const std::vector<uint8_t> bytes = [] {
        static constexpr uint8_t extremes[] = {0, 1, 127, 128, 129, 254, 255, 64};
        Random random{base_seed};
        std::vector<uint8_t> v(size_t{1} << 20);
        for (uint8_t& byte : v) {
            const uint32_t r = random.next();
            byte = r & 0x700 ? static_cast<uint8_t>(r) : extremes[r & 7];
        }
        return v;
    }();
    return bytes;
}

struct Workspace {
    std::vector<uint8_t> memory;
    std::vector<uint8_t*> buffers;

    void lay_out(const std::vector<Room>& rooms, uint64_t seed) {
        size_t total = 0;
        for (const Room& room : rooms) total += room.before + room.after;
        memory.resize(total);
        fill(memory.data(), total, seed);
        buffers.clear();
        uint8_t* at = memory.data();
        for (const Room& room : rooms) {
            buffers.push_back(at + room.before);
            at += room.before + room.after;
        }
    }
};

std::string name_of(const std::vector<Room>& rooms, size_t k) {
    const std::string name = rooms[k].plane.name;
    return name == "buffer" ? name + " " + std::to_string(k) : name;
}

// Of all buffers; the rows are shown for the first that differs.
std::string differences(const Workspace& expected, const Workspace& actual, const std::vector<Room>& rooms) {
    std::string text;
    size_t start = 0;
    for (size_t k = 0; k < rooms.size(); k++) {
        const size_t size = rooms[k].before + rooms[k].after;
        const std::string name = name_of(rooms, k);
        Plane plane = rooms[k].plane;
        plane.name = name.c_str();
        const std::string more = difference(plane, expected.memory.data() + start, actual.memory.data() + start, size,
                                            static_cast<ptrdiff_t>(rooms[k].before));
        text += text.empty() ? more : more.substr(0, more.find('\n') + 1);
        start += size;
    }
    return text;
}

// A table whose kernels do nothing but leave their names.
const char* g_called = nullptr;

template <class... Arguments>
void ignore(const Arguments&...) {}

constexpr KernelTable naming_kernels = [] {
    KernelTable table{};
#define ZIVCOLOR_NAME_Opaque(name)                           \
    table.name = [](const Image*, const Image*) -> int32_t { \
        g_called = #name;                                    \
        return 0;                                            \
    };
#define ZIVCOLOR_NAME_Alpha(name)                                     \
    table.name = [](const Image*, const Image*, uint8_t) -> int32_t { \
        g_called = #name;                                             \
        return 0;                                                     \
    };
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task, tile) ZIVCOLOR_NAME_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) \
    table.name = [] parameters -> result {                    \
        ignore arguments;                                     \
        g_called = #name;                                     \
        return result();                                      \
    };
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
    ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_NAME_Alpha
#undef ZIVCOLOR_NAME_Opaque
    return table;
}();

// The case in words, with the kernel's name in front of it.
std::string named(const Call& call, uint8_t* const* buffers, const std::function<std::string()>& what) {
    g_called = "";
    call(naming_kernels, buffers);
    const std::string text = what(), kernel = g_called;
    return text.find(kernel) == std::string::npos ? kernel + " " + text : text;
}

// The targets whose kernel the call has not met on another of them. The buffers are those of a call: some write to them first.
const std::vector<zivcolor::Target>& targets_of(const Call& call, uint8_t* const* buffers) {
    g_called = "";
    call(naming_kernels, buffers);
    return targets_with_own(g_called);
}

// A test whose every image fails says enough with the first few.
bool failed_enough() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    return test && test->result()->total_part_count() >= 4;
}

std::string in_words(uint64_t seed, int64_t got, int64_t status) {
    char text[128];
    std::snprintf(text, sizeof text, "seed 0x%llx, status %lld%s", static_cast<unsigned long long>(seed),
                  static_cast<long long>(got), got == status ? "" : (", expected " + std::to_string(status)).c_str());
    return text;
}

struct ReachTrace final : reference::Trace {
    const Workspace* workspace = nullptr;
    const std::vector<Room>* rooms = nullptr;
    std::vector<Reach> reach;
    bool outside = false;

    void touch(const uint8_t* p) {
        for (size_t k = 0; k < reach.size(); k++) {
            const ptrdiff_t at = p - workspace->buffers[k];
            if (at < -static_cast<ptrdiff_t>((*rooms)[k].before) || at >= static_cast<ptrdiff_t>((*rooms)[k].after)) continue;
            Reach& r = reach[k];
            if (r.first == r.past) {
                r = {at, at + 1};
            } else {
                r.first = std::min(r.first, at);
                r.past = std::max(r.past, at + 1);
            }
            return;
        }
        outside = true;
    }
    void read(const uint8_t* p) override { touch(p); }
    void written(const uint8_t* p) override { touch(p); }
};

GuardedPages& guarded_pages(size_t k, size_t least) {
    static std::vector<std::unique_ptr<GuardedPages>> all;
    if (all.size() <= k) all.resize(k + 1);
    if (!all[k] || all[k]->size() < least) all[k] = std::make_unique<GuardedPages>(std::max(least, size_t{1} << 16));
    return *all[k];
}

}  // namespace

void fill(uint8_t* p, size_t size, uint64_t seed) {
    const std::vector<uint8_t>& bytes = pool();
    Random random{seed};
    size_t from = random.next() % (bytes.size() / 2);
    while (size > 0) {
        const size_t run = std::min(size, bytes.size() - from);
        std::memcpy(p, bytes.data() + from, run);
        p += run;
        size -= run;
        from = random.next() % (bytes.size() / 2);
    }
}

void expect_same_bytes(const Call& call, const std::vector<Room>& rooms, uint64_t seed,
                       const std::function<std::string()>& what) {
    if (failed_enough()) return;
    static Workspace expected, actual;
    const std::function<std::string()> words = [&] { return named(call, actual.buffers.data(), what); };
    expected.lay_out(rooms, seed);
    const int64_t status = call(reference::kernels, expected.buffers.data());
    actual.lay_out(rooms, seed);
    for (const zivcolor::Target& target : targets_of(call, actual.buffers.data())) {
        actual.lay_out(rooms, seed);
        int64_t got;
        {
            const Running running(target.name, words);
            got = call(*target.kernels, actual.buffers.data());
        }
        if (got != status || std::memcmp(expected.memory.data(), actual.memory.data(), expected.memory.size()) != 0)
            ADD_FAILURE() << target.name << ": " << words() << ", " << in_words(seed, got, status) << "\n"
                          << differences(expected, actual, rooms);
    }
}

std::vector<Reach> reach_of(const Call& call, const std::vector<Room>& rooms, uint64_t seed) {
    static Workspace traced;
    traced.lay_out(rooms, seed);
    ReachTrace trace;
    trace.workspace = &traced;
    trace.rooms = &rooms;
    trace.reach.resize(rooms.size(), Reach{0, 0});
    reference::g_trace = &trace;
    call(reference::kernels, traced.buffers.data());
    reference::g_trace = nullptr;
    EXPECT_FALSE(trace.outside) << "the reference leaves the room that the test gave it";
    return trace.reach;
}

void expect_in_bounds(const Call& call, const std::vector<Room>& rooms, uint64_t seed,
                      const std::function<std::string()>& what) {
    if (failed_enough()) return;
    const std::vector<Reach> reach = reach_of(call, rooms, seed);
    for (const bool at_end : {true, false}) {
        std::vector<uint8_t*> buffers(rooms.size());
        std::vector<std::vector<uint8_t>> expected(rooms.size());
        std::vector<std::string> names(rooms.size());
        std::vector<Running::Area> areas;
        const std::function<std::string()> words = [&] { return named(call, buffers.data(), what); };
        for (size_t k = 0; k < rooms.size(); k++) {
            const GuardedPages& pages = guarded_pages(k, static_cast<size_t>(reach[k].past - reach[k].first));
            buffers[k] = at_end ? pages.past() - reach[k].past : pages.first() - reach[k].first;
            names[k] = name_of(rooms, k);
            areas.push_back({names[k].c_str(), buffers[k] + reach[k].first, buffers[k] + reach[k].past});
        }
        const auto refill = [&] {
            for (size_t k = 0; k < rooms.size(); k++)
                fill(buffers[k] + reach[k].first, static_cast<size_t>(reach[k].past - reach[k].first), seed + k);
        };
        refill();
        const int64_t status = call(reference::kernels, buffers.data());
        for (size_t k = 0; k < rooms.size(); k++) expected[k].assign(buffers[k] + reach[k].first, buffers[k] + reach[k].past);
        for (const zivcolor::Target& target : targets_of(call, buffers.data())) {
            refill();
            int64_t got;
            {
                const Running running(target.name, words, &areas);
                got = call(*target.kernels, buffers.data());  // a fault here is a read or write out of bounds
            }
            std::string text;
            for (size_t k = 0; k < rooms.size(); k++) {
                Plane plane = rooms[k].plane;
                plane.name = names[k].c_str();
                text += difference(plane, expected[k].data(), buffers[k] + reach[k].first, expected[k].size(), -reach[k].first);
            }
            if (got != status || !text.empty())
                ADD_FAILURE() << target.name << ": " << words() << ", flush against the page "
                              << (at_end ? "after it" : "before it") << ", " << in_words(seed, got, status) << "\n"
                              << text;
        }
    }
}

}  // namespace harness
