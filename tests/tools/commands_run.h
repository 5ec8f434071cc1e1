// SPDX-License-Identifier: MIT
// Runs the tool as a user does.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace commands {

struct Result {
    int code;
    std::string out, err;
};

inline std::string temporary(const std::string& name) {
    return testing::TempDir() + "zivcolor_tool_" + std::to_string(getpid()) + "_" + name;
}

inline std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// By the shell, so that tests can redirect.
inline Result run_shell(const std::string& command) {
    const std::string out = temporary("run.out"), err = temporary("run.err");
    const int status = std::system(("{ " + command + "; } >" + out + " 2>" + err).c_str());
    Result result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, content(out), content(err)};
    std::remove(out.c_str());
    std::remove(err.c_str());
    return result;
}
inline Result run(const std::string& arguments) { return run_shell(ZIVCOLOR_TOOL " " + arguments); }

inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// One line on the error stream that begins with the program's name, nothing else, and exit code 2.
inline void expect_refused(const std::string& arguments, const std::string& words) {
    const Result result = run(arguments);
    EXPECT_EQ(result.code, 2) << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << arguments << ": " << result.err;
    EXPECT_EQ(result.err.rfind("zivcolor: ", 0), 0u) << result.err;
    EXPECT_TRUE(contains(result.err, words)) << arguments << ": " << result.err;
}

}  // namespace commands
