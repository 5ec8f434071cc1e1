// SPDX-License-Identifier: MIT
#include "options.h"

#include <getopt.h>
#include <stdio.h>

#include <charconv>
#include <string_view>

namespace tool {

namespace {

constexpr int column = 22;  // where the help says what an option is

void print_row(const std::string& name, const char* what) {
    printf("  %-*s", column - 2, name.c_str());
    for (const char* p = what; *p; p++) {
        putchar(*p);
        if (*p == '\n') printf("%*s", column, "");
    }
    putchar('\n');
}

void print_help(const Usage& usage) {
    printf("usage: zivcolor %s\n%s\n\n", usage.line, usage.what);
    for (const Option& option : usage.options)
        print_row(std::string("--") + option.name + (option.argument ? std::string(" ") + option.argument : ""), option.what);
    print_row("--help", "these lines");
}

}  // namespace

Arguments take_options(const Usage& usage, int argc, char** argv) {
    constexpr int first_option = 256;
    std::vector<option> rows;
    for (const Option& o : usage.options)
        rows.push_back(
            {o.name, o.argument ? required_argument : no_argument, nullptr, first_option + static_cast<int>(rows.size())});
    rows.push_back({"help", no_argument, nullptr, 'h'});
    rows.push_back({nullptr, 0, nullptr, 0});
    opterr = 0;
    int code;
    while ((code = getopt_long(argc, argv, ":h", rows.data(), nullptr)) != -1) {
        const std::string given = argv[optind - 1];
        if (code == 'h') {
            print_help(usage);
            return {true, {}};
        }
        if (code == ':') throw Refusal("option '" + given + "' needs an argument");
        if (code == '?') throw Refusal("no option '" + given + "'; --help names those there are");
        usage.options[static_cast<size_t>(code - first_option)].take(optarg);
    }
    return {false, {argv + optind, argv + argc}};
}

int number(const char* what, const char* text, int least, int most) {
    const std::string_view all = text;
    int value = 0;
    const auto [end, error] = std::from_chars(all.data(), all.data() + all.size(), value);
    if (error != std::errc{} || end != all.data() + all.size() || value < least || value > most)
        throw Refusal(std::string(what) + " is a number from " + std::to_string(least) + " to " + std::to_string(most) +
                      ", not '" + text + "'");
    return value;
}

}  // namespace tool
