// SPDX-License-Identifier: MIT
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <exception>

#include "commands.h"
#include "options.h"
#include "tool_build.h"

namespace {

struct Command {
    const char* name;
    int (*run)(int argc, char** argv);
    const char* what;
};
constexpr Command commands[] = {
    {"check", tool::check, "every function of the library on this CPU beside the scalar reference"},
    {"speed", tool::speed, "the conversions timed on this CPU, on one thread and on all cores"},
    {"convert", tool::convert, "raw frames of one layout to another"},
    {"formats", tool::formats, "the layouts, and the pairs that are converted"},
};

void print_help() {
    printf("usage: zivcolor COMMAND [ARGUMENT...]\n\n");
    for (const Command& command : commands) printf("  %-10s %s\n", command.name, command.what);
    printf("\n'zivcolor COMMAND --help' tells the arguments of one; --version tells the version.\n");
}

int run(int argc, char** argv) {
    if (argc < 2) throw tool::Refusal("no command; --help names those there are");
    const char* const name = argv[1];
    if (strcmp(name, "--help") == 0 || strcmp(name, "-h") == 0 || strcmp(name, "help") == 0)
        return print_help(), tool::exit_good;
    if (strcmp(name, "--version") == 0) return printf("zivcolor " ZIVCOLOR_TOOL_VERSION "\n"), tool::exit_good;
    for (const Command& command : commands)
        if (strcmp(name, command.name) == 0) return command.run(argc - 1, argv + 1);
    throw tool::Refusal("no command '" + std::string(name) + "'; --help names those there are");
}

}  // namespace

int main(int argc, char** argv) {
    int code;
    try {
        code = run(argc, argv);
    } catch (const tool::Refusal& refusal) {
        fprintf(stderr, "zivcolor: %s\n", refusal.what());
        return tool::exit_usage;
    } catch (const std::exception& failure) {
        fprintf(stderr, "zivcolor: %s\n", failure.what());
        return tool::exit_bad;
    }
    if (fflush(stdout) != 0) {
        fprintf(stderr, "zivcolor: what was to be printed cannot be written\n");
        return tool::exit_bad;
    }
    return code;
}
