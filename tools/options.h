// SPDX-License-Identifier: MIT
// Options of a command, by getopt_long.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tool {

// What was asked cannot be done: one line, exit code 2.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Option {
    const char* name;      // without its dashes
    const char* argument;  // what the help calls it; null if it takes none
    const char* what;      // one line for the help; lines break at \n
    std::function<void(const char* argument)> take;
};

// A command and its help.
struct Usage {
    const char* line;  // what follows the program's name
    const char* what;
    std::vector<Option> options;  // --help comes by itself
};

// Takes the options, wherever they stand, and gives the other arguments. Null where --help was asked and given.
struct Arguments {
    bool helped;
    std::vector<std::string> rest;
};
Arguments take_options(const Usage& usage, int argc, char** argv);

// A whole number within these bounds.
int number(const char* what, const char* text, int least, int most);

}  // namespace tool
