// SPDX-License-Identifier: MIT
#include "harness/options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>

#include "harness/conversions.h"

namespace harness {

namespace {

std::string g_kernel, g_target;
bool g_sample = false;

// Suites that do not bear the names of the kernels that they test: those of kernels with a signature of their own.
struct Suite {
    const char *kernel, *filter;
};
constexpr Suite suites[] = {
    {"zivRotate", "*Geometry*:RotateExamples*:*TurnsAndMirrors*"},
    {"zivflip_horizontal_nv21", "*Geometry*:MirrorExamples*:*TurnsAndMirrors*"},
    {"zivflip_vertical_nv21", "*Geometry*:MirrorExamples*:*TurnsAndMirrors*"},
    {"HSL888u8", "*Hsl*"},
    {"_SkinWhitenByMask_YUV420_VUVU", "*Whiten*"},
    {"CalcMergeWeightMap_neon", "*MergeWeight*"},
    {"NV41", "*NV41*:*Nv41*"},
    {"zivColorYV12toNV21u8", "Yuv420Examples*"},
    {"zivColorYUYVtoNV21u8", "PlainYuyvExamples*"},
    {"zivColorYUYVtoNV12u8", "PlainYuyvExamples*"},
    {"zivColorYUYVtoI420u8", "PlainYuyvExamples*"},
    {"zivColorRGB888toBGR888u8", "RgbRepackExamples*"},
};

bool known_kernel(const std::string& name) {
    for (const char* kernel : {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task, tile) #name,
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) #name,
             ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
         })
        if (std::strstr(kernel, name.c_str())) return true;
    return false;
}

// A pattern of the test framework: * is any run of characters, ? any one.
bool matches(const char* name, const char* pattern) {
    if (*pattern == '*') return matches(name, pattern + 1) || (*name && matches(name + 1, pattern));
    if (*name && (*pattern == '?' || *pattern == *name)) return matches(name + 1, pattern + 1);
    return !*name && !*pattern;
}

// Whether one of the patterns, which stand between colons, matches.
bool matches_any(const std::string& name, const std::string& patterns) {
    std::istringstream list(patterns);
    for (std::string pattern; std::getline(list, pattern, ':');)
        if (matches(name.c_str(), pattern.c_str())) return true;
    return false;
}

bool passes(const std::string& name, const std::string& filter) {
    const size_t minus = filter.find('-');
    return (minus == 0 || matches_any(name, filter.substr(0, minus))) &&
           (minus == std::string::npos || !matches_any(name, filter.substr(minus + 1)));
}

std::string filter_of_kernel(const std::string& kernel) {
    std::string filter = "*" + kernel + "*";
    for (const Suite& suite : suites)
        if (std::strstr(suite.kernel, kernel.c_str()) || kernel.find(suite.kernel) != std::string::npos)
            filter += std::string(":") + suite.filter;
    return filter;
}

bool sound() {
    if (!g_kernel.empty() && !known_kernel(g_kernel)) {
        std::printf("no kernel's name contains '%s'\n", g_kernel.c_str());
        return false;
    }
    if (targets().empty()) {
        std::printf("target '%s' is not in this build, or does not run here\n", g_target.c_str());
        return false;
    }
    return true;
}

}  // namespace

bool take_options(int* argc, char** argv) {
    const auto value = [](const char* argument, const char* flag) {
        const size_t length = std::strlen(flag);
        return std::strncmp(argument, flag, length) == 0 ? argument + length : nullptr;
    };
    int kept = 1;
    for (int i = 1; i < *argc; i++) {
        if (const char* kernel = value(argv[i], "--kernel=")) {
            g_kernel = kernel;
        } else if (const char* target = value(argv[i], "--target=")) {
            g_target = target;
        } else if (const char* colours = value(argv[i], "--colours=")) {
            g_sample = std::strcmp(colours, "sample") == 0;
            if (!g_sample && std::strcmp(colours, "all") != 0) {
                std::printf("--colours is 'all' or 'sample', not '%s'\n", colours);
                return false;
            }
        } else {
            argv[kept++] = argv[i];
        }
    }
    *argc = kept;
    return sound();
}

std::string tests_of_kernel(const std::string& kernel, const std::string& filter) {
    const std::string of_kernel = filter_of_kernel(kernel);
    std::string selected;
    const testing::UnitTest& tests = *testing::UnitTest::GetInstance();
    for (int s = 0; s < tests.total_test_suite_count(); s++) {
        const testing::TestSuite& suite = *tests.GetTestSuite(s);
        for (int t = 0; t < suite.total_test_count(); t++) {
            const std::string name = std::string(suite.name()) + "." + suite.GetTestInfo(t)->name();
            if (passes(name, of_kernel) && passes(name, filter)) selected += name + ":";
        }
    }
    return selected;
}

bool select_tests() {
    if (g_kernel.empty()) return true;
    const std::string asked = testing::GTEST_FLAG(filter), selected = tests_of_kernel(g_kernel, asked);
    if (selected.empty()) std::printf("no test of '%s' passes the filter '%s'\n", g_kernel.c_str(), asked.c_str());
    testing::GTEST_FLAG(filter) = selected;
    return !selected.empty();
}

const std::vector<zivcolor::Target>& targets() {
    static const std::vector<zivcolor::Target> chosen = [] {
        std::vector<zivcolor::Target> list;
        for (const zivcolor::Target& target : zivcolor::built_targets())
            if (target.runs_here() && (g_target.empty() || g_target == target.name)) list.push_back(target);
        return list;
    }();
    return chosen;
}

const std::vector<zivcolor::Target>& targets_with_own(const std::string& kernel) {
    using Same = bool (*)(const zivcolor::KernelTable& a, const zivcolor::KernelTable& b);
    static const std::map<std::string, Same> comparisons = {
#define ZIVCOLOR_SAME(name) {#name, [](const auto& a, const auto& b) { return a.name == b.name; }},
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, reach, task, part) ZIVCOLOR_SAME(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) ZIVCOLOR_SAME(name)
        ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_SAME
    };
    static std::map<std::string, std::vector<zivcolor::Target>> chosen;
    const auto same = comparisons.find(kernel);
    if (same == comparisons.end()) return targets();
    std::vector<zivcolor::Target>& list = chosen[kernel];
    if (list.empty())
        for (const zivcolor::Target& target : targets())
            if (std::none_of(list.begin(), list.end(),
                             [&](const auto& before) { return same->second(*before.kernels, *target.kernels); }))
                list.push_back(target);
    return list;
}

const std::vector<int>& first_components() {
    static const std::vector<int> chosen = [] {
        std::vector<int> list;
        for (int value = 0; value < 256; value += g_sample ? 15 : 1) list.push_back(value);
        return list;
    }();
    return chosen;
}

bool all_colours() { return !g_sample; }

}  // namespace harness
