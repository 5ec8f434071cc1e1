// SPDX-License-Identifier: MIT
// What `zivcolor check` stands on: that a function that does not what it should is found, whichever it is.
#include "check.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using tool::Function;
using tool::Image;
using tool::KernelTable;
using tool::Verdict;
using zivcolor::MaskedImage;

const std::vector<Function>& all() {
    static const std::vector<Function> functions = tool::functions();
    return functions;
}

const Function& function(const std::string& name) {
    for (const Function& f : all())
        if (name == f.name) return f;
    throw std::invalid_argument("no function " + name);
}

template <class... Arguments>
void ignore(const Arguments&...) {}

// The exported functions, but for one that does nothing and says that all is well.
struct Idle {
    const char* name;
    void (*replace)(KernelTable& kernels);
};
const Idle idle[] = {
#define IDLE_Opaque(name) \
    {#name, [](KernelTable& kernels) { kernels.name = [](const Image*, const Image*) -> int32_t { return 0; }; }},
#define IDLE_Alpha(name) \
    {#name, [](KernelTable& kernels) { kernels.name = [](const Image*, const Image*, uint8_t) -> int32_t { return 0; }; }},
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) IDLE_##alpha(name)
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) \
    {#name, [](KernelTable& kernels) {                        \
         kernels.name = [] parameters -> result {             \
             ignore arguments;                                \
             return result();                                 \
         };                                                   \
     }},
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_ROUTINES(ZIVCOLOR_ROUTINE)
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
#undef IDLE_Alpha
#undef IDLE_Opaque
};

TEST(Check, FindsWhicheverFunctionDoesNothing) {
    std::set<std::string> names;
    for (const Idle& one : idle) {
        KernelTable kernels = tool::exported;
        one.replace(kernels);
        const Verdict verdict = tool::check_function(function(one.name), kernels);
        EXPECT_STREQ(verdict.function, one.name);
        EXPECT_FALSE(verdict.differing.empty()) << one.name;
        EXPECT_TRUE(tool::check_function(function(one.name), tool::exported).differing.empty()) << one.name;
        names.insert(one.name);
    }
    EXPECT_EQ(names.size(), all().size());
}

// Two of three are cases that a function which does nothing fails; the others are refusals.
TEST(Check, HasFewCasesThatCannotFail) {
    for (const Idle& one : idle) {
        KernelTable kernels = tool::exported;
        one.replace(kernels);
        const Verdict verdict = tool::check_function(function(one.name), kernels);
        EXPECT_GE(3 * verdict.differing.size(), 2 * static_cast<size_t>(verdict.cases)) << one.name;
    }
}

TEST(Check, FindsADigestThatIsNotTheResults) {
    Function altered = function("zivColorI420toNV21u8");
    altered.cases[7].seed += 1000;
    const Verdict verdict = tool::check_function(altered, tool::exported);
    ASSERT_EQ(verdict.differing.size(), 1u);
    EXPECT_EQ(verdict.differing[0], altered.cases[7].what);
    altered.cases.resize(altered.cases.size() + 1, altered.cases[0]);
    EXPECT_EQ(tool::check_function(altered, tool::exported).differing.size(), 2u);  // a case that has no digest
}

TEST(Check, FindsNothingWrongWithTheDispatcherAndThreads) {
    const Verdict dispatcher = tool::check_dispatcher(all());
    EXPECT_TRUE(dispatcher.differing.empty()) << dispatcher.differing[0];
    EXPECT_GT(dispatcher.cases, 1000);
    std::set<std::string> names{dispatcher.function};
    for (const Verdict& verdict : tool::check_threads(all())) {
        EXPECT_TRUE(verdict.differing.empty()) << verdict.differing[0];
        EXPECT_GT(verdict.cases, 0);
        names.insert(verdict.function);
    }
    EXPECT_EQ(names.size(), 5u);
}

// The dispatcher and the threads are held to the digests of the kernel that belongs to the pair.
TEST(Check, FindsAWrongResultOfTheDispatcherAndThreads) {
    std::vector<Function> altered{function("zivColorNV21toRGBA8888u8")};
    for (tool::Case& c : altered[0].cases)
        if (c.in_bands) c.alpha++;
    EXPECT_FALSE(tool::check_dispatcher(altered).differing.empty());
    EXPECT_FALSE(tool::check_threads(altered)[1].differing.empty());
}

TEST(Check, CoversEveryExportedFunction) {
    std::set<std::string> names{"zivColorCvt", "zivColorCvtInit_MultiThreads", "zivColorCvtProcess_MultiThreads",
                                "zivColorCvtUnInit_MultiThreads", "zivColorCvtFunc"};
    for (const Function& f : all()) names.insert(f.name);
    EXPECT_EQ(names.size(), 104u);
}

}  // namespace
