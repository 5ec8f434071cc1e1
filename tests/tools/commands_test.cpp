// SPDX-License-Identifier: MIT
// The tool as a user meets it: what it prints, its exit codes, and its lines of refusal.
#include <gtest/gtest.h>

#include <iterator>
#include <regex>
#include <string>

#include "commands_run.h"

namespace {

using namespace commands;

TEST(Tool, TellsItsCommandsAndTheirOptions) {
    const Result all = run("--help");
    EXPECT_EQ(all.code, 0);
    EXPECT_EQ(all.err, "");
    for (const char* command : {"check", "speed", "convert", "formats"}) {
        EXPECT_TRUE(contains(all.out, command));
        const Result one = run(std::string(command) + " --help");
        EXPECT_EQ(one.code, 0);
        EXPECT_EQ(one.err, "");
        EXPECT_EQ(one.out.rfind(std::string("usage: zivcolor ") + command, 0), 0u) << one.out;
        expect_refused(std::string(command) + " --nonsense", "--nonsense");
    }
    EXPECT_EQ(run("--version").code, 0);
    expect_refused("", "no command");
    expect_refused("nonsense", "nonsense");
}

TEST(Tool, ChecksThisMachine) {
    const Result result = run("check");
    EXPECT_EQ(result.code, 0) << result.out;
    EXPECT_EQ(result.err, "");
    for (const char* part : {"\nCPU ", "\nfeatures ", "(chosen)", "\nYUV to RGB ", "\nHSL ", "\ndispatcher ", "\nall cores "})
        EXPECT_TRUE(contains(result.out, part)) << part << result.out;
    EXPECT_TRUE(contains(result.out, "\n104 functions")) << result.out;
    EXPECT_EQ(run("check --target all").code, 0);
    expect_refused("check --target nonsense", "nonsense");
    expect_refused("check --target", "needs an argument");
    expect_refused("check nonsense", "nonsense");
}

TEST(Tool, NamesTheFunctionThatDiffers) {
    const Result result = run_shell(ZIVCOLOR_DAMAGED_TOOL " check");
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(contains(result.out, "\n  zivColorNV21toBGR888u8: 1 of ")) << result.out;
    EXPECT_TRUE(contains(result.out, " cases differ: 47x")) << result.out;
    EXPECT_TRUE(contains(result.out, "\n1 of 104 functions differ")) << result.out;
}

TEST(Tool, SaysThatItCannotWrite) {
    const Result result = run_shell(ZIVCOLOR_TOOL " formats >/dev/full");
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err.rfind("zivcolor: ", 0), 0u);
}

TEST(Tool, NamesLayoutsAndPairs) {
    const Result result = run("formats");
    EXPECT_EQ(result.code, 0);
    for (const char* line : {"\nNV21 .*0x802 .*NV21 .*nv21 .*1 for 1x1; 2 for 2x2", "\nI420 .*YU12.* yuv420p yuvj420p ",
                             "\nNV21 +BGRA8888 +taken +yes", "\nRGB888 +YV24 +- +- +1x1"})
        EXPECT_TRUE(std::regex_search(result.out, std::regex(line))) << line << result.out;
    expect_refused("formats nonsense", "nonsense");
}

TEST(Tool, TimesAPair) {
    const Result table = run("speed nv21 bgr24");
    EXPECT_EQ(table.code, 0);
    for (const char* part : {"\nCPU ", "\ntarget ", "3840x2160", "\nNV21 to BGR888 ", " all cores "})
        EXPECT_TRUE(contains(table.out, part)) << part << table.out;
    const Result json = run("speed --json RGB888 YV24");
    EXPECT_EQ(json.code, 0);
    EXPECT_EQ(json.out.rfind("{\"version\": ", 0), 0u);
    EXPECT_EQ(json.out.substr(json.out.size() - 4), "\n]}\n");
    const std::regex row(R"(\n  \{"from": "RGB888", "to": "YV24", "width": \d+, "height": \d+, "cores": "one", )"
                         R"("ns_per_pixel": \d+\.\d+, "gb_per_s": \d+\.\d+, "copies": \d+\.\d+\},?)");
    EXPECT_EQ(std::distance(std::sregex_iterator(json.out.begin(), json.out.end(), row), std::sregex_iterator()), 3);
    expect_refused("speed NV21", "pair");
    expect_refused("speed NV12 RGB888", "NV12 is not converted to RGB888");
}

}  // namespace
