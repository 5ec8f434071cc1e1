// SPDX-License-Identifier: MIT
// The tool as a user meets it: what it prints, its exit codes, and its lines of refusal.
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace {

struct Result {
    int code;
    std::string out, err;
};

std::string temporary(const std::string& name) {
    return testing::TempDir() + "zivcolor_tool_" + std::to_string(getpid()) + "_" + name;
}

std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// By the shell, so that tests can redirect.
Result run_shell(const std::string& command) {
    const std::string out = temporary("out"), err = temporary("err");
    const int status = std::system(("{ " + command + "; } >" + out + " 2>" + err).c_str());
    const Result result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, content(out), content(err)};
    std::remove(out.c_str());
    std::remove(err.c_str());
    return result;
}
Result run(const std::string& arguments) { return run_shell(ZIVCOLOR_TOOL " " + arguments); }

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// One line on the error stream that begins with the program's name, nothing else, and exit code 2.
void expect_refused(const std::string& arguments, const std::string& words) {
    const Result result = run(arguments);
    EXPECT_EQ(result.code, 2) << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << arguments << ": " << result.err;
    EXPECT_EQ(result.err.rfind("zivcolor: ", 0), 0u) << result.err;
    EXPECT_TRUE(contains(result.err, words)) << arguments << ": " << result.err;
}

TEST(Tool, TellsItsCommandsAndTheirOptions) {
    const Result all = run("--help");
    EXPECT_EQ(all.code, 0);
    EXPECT_EQ(all.err, "");
    for (const char* command : {"check", "formats"}) {
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
    EXPECT_TRUE(contains(result.out, "\nNV21 ")) << result.out;
}

}  // namespace
