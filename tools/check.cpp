// SPDX-License-Identifier: MIT
#include "check.h"

#include <string.h>

#include "core/layout_list.h"
#include "core/streamed_rows.h"
#include "digests.h"

namespace tool {

const KernelTable exported = {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) ::name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) ::name,
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
};

namespace {

// A case without a digest differs from every result.
bool is_expected(const Function& function, size_t index, uint32_t digest) {
    for (const Digests& row : digests)
        if (strcmp(row.function, function.name) == 0) return index < row.count && row.digests[index] == digest;
    return false;
}

bool is_left_out(const Case& c) { return c.beyond_caches && !zivcolor::has_streaming_stores; }

// One row of the kernel list, for the dispatcher and the numbers of tasks.
struct Pair {
    uint32_t source, destination;
    bool dispatched;
    int task;
};
constexpr Pair pairs[] = {
#define Dispatched true
#define Direct false
#define NoTask (-1)
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) \
    {zivPixFmt_##source, zivPixFmt_##destination, dispatch, task},
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
#undef ZIVCOLOR_CONVERSION
#undef NoTask
#undef Direct
#undef Dispatched
};

// The dispatched row of a pair, null if it has none.
const Pair* pair_of(uint32_t source, uint32_t destination) {
    for (const Pair& pair : pairs)
        if (pair.dispatched && pair.source == source && pair.destination == destination) return &pair;
    return nullptr;
}

template <class Body>
void for_every_pair(Body body) {
    for (const zivcolor::Layout& source : zivcolor::layouts)
        for (const zivcolor::Layout& destination : zivcolor::layouts) body(source, destination);
}

}  // namespace

Verdict check_function(const Function& function, const KernelTable& kernels) {
    Verdict verdict{function.name, function.family, 0, {}};
    std::vector<uint8_t> memory;
    for (size_t i = 0; i < function.cases.size(); i++) {
        const Case& c = function.cases[i];
        if (is_left_out(c)) continue;
        const uint32_t digest = run(
            c, [&](uint8_t* at) { return c.call(kernels, at); }, memory);
        verdict.cases++;
        if (!is_expected(function, i, digest)) verdict.differing.push_back(c.what);
    }
    if (function.cases.empty()) verdict.differing.emplace_back("has no cases");
    return verdict;
}

Verdict check_dispatcher(const std::vector<Function>& all) {
    Verdict verdict{"zivColorCvt", "dispatcher", 0, {}};
    std::vector<uint8_t> memory;
    for (const Function& function : all) {
        if (!function.dispatched) continue;
        for (size_t i = 0; i < function.cases.size(); i++) {
            const Case& c = function.cases[i];
            if (!c.in_bands || is_left_out(c)) continue;
            const auto call = [&](uint8_t* at) {
                const Images images = c.images(at);
                return int64_t{zivColorCvt(&images.source, &images.destination, {c.alpha | 0x100})};
            };
            verdict.cases++;
            if (!is_expected(function, i, run(c, call, memory)))
                verdict.differing.push_back("as " + std::string(function.name) + ", " + c.what);
        }
    }
    for_every_pair([&](const zivcolor::Layout& source, const zivcolor::Layout& destination) {
        if (pair_of(source.format, destination.format)) return;
        Image from{}, to{};
        from.format = source.format;
        to.format = destination.format;
        verdict.cases++;
        if (zivColorCvt(&from, &to, {0}) != zivStatus_BadArgument)
            verdict.differing.push_back(std::string(source.name) + " to " + destination.name + ", which is no pair");
    });
    return verdict;
}

std::vector<Verdict> check_threads(const std::vector<Function>& all) {
    const char* const family = "threads";
    Verdict init{"zivColorCvtInit_MultiThreads", family, 1, {}}, process{"zivColorCvtProcess_MultiThreads", family, 0, {}};
    Verdict end{"zivColorCvtUnInit_MultiThreads", family, 1, {}}, tasks{"zivColorCvtFunc", family, 0, {}};
    void* const context = zivColorCvtInit_MultiThreads(nullptr);
    if (!context) {
        init.differing.emplace_back("gives no context: no thread or no memory");
        return {init};
    }
    std::vector<uint8_t> memory;
    for (const Function& function : all) {
        if (!function.threaded) continue;
        for (size_t i = 0; i < function.cases.size(); i++) {
            const Case& c = function.cases[i];
            if (!c.in_bands || is_left_out(c)) continue;
            const auto call = [&](uint8_t* at) {
                const Images images = c.images(at);
                const zivColorExtParam_ALPHA_t alpha{c.alpha};
                return int64_t{zivColorCvtProcess_MultiThreads(context, &images.source, &images.destination, &alpha)};
            };
            process.cases++;
            if (!is_expected(function, i, run(c, call, memory)))
                process.differing.push_back("as " + std::string(function.name) + ", " + c.what);
        }
    }
    if (zivColorCvtUnInit_MultiThreads(nullptr, context) != zivStatus_OK)
        end.differing.emplace_back("the context does not end");
    for_every_pair([&](const zivcolor::Layout& source, const zivcolor::Layout& destination) {
        Image from{}, to{};
        from.format = source.format;
        to.format = destination.format;
        const Pair* const pair = pair_of(source.format, destination.format);
        tasks.cases++;
        if (zivColorCvtFunc(&from, &to) != (pair ? pair->task : -1))
            tasks.differing.push_back(std::string(source.name) + " to " + destination.name);
    });
    return {init, process, end, tasks};
}

}  // namespace tool
