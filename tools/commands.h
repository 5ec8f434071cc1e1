// SPDX-License-Identifier: MIT
// The commands of the tool. Each takes its own name as the first argument, and returns the program's exit code.
#pragma once

namespace tool {

enum ExitCode {
    exit_good = 0,
    exit_bad = 1,    // a difference, or a failure on the way
    exit_usage = 2,  // what was asked cannot be done
};

int check(int argc, char** argv);
int convert(int argc, char** argv);
int formats(int argc, char** argv);
int speed(int argc, char** argv);

}  // namespace tool
