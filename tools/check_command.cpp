// SPDX-License-Identifier: MIT
#include <stdio.h>
#include <string.h>

#include <map>

#include "check.h"
#include "commands.h"
#include "core/capabilities.h"
#include "cpu_name.h"
#include "options.h"
#include "tool_build.h"

namespace tool {

namespace {

using zivcolor::built_targets;
using zivcolor::chosen_kernels;
using zivcolor::Target;

struct Title {
    const char *family, *title;
};
constexpr Title titles[] = {
    {"yuv2rgb", "YUV to RGB"},
    {"rgb2yuv", "RGB to YUV"},
    {"yuvrepack", "YUV to YUV"},
    {"rgbrepack", "RGB to RGB"},
    {"hsl", "HSL"},
    {"geometry", "turns, mirrors"},
    {"enhance", "enhancement"},
    {"dispatcher", "dispatcher"},
    {"threads", "all cores"},
};

const char* title_of(const char* family) {
    for (const Title& row : titles)
        if (strcmp(row.family, family) == 0) return row.title;
    return family;
}

void print_machine() {
    printf("zivcolor " ZIVCOLOR_TOOL_VERSION "\n");
    printf("CPU       %s; %d to run on\n", cpu_name().c_str(), cpu_count());
    printf("features ");
#define ZIVCOLOR_FEATURE(capability) printf(" %s%s", zivcolor::cpu_has_##capability() ? "" : "no ", #capability);
    ZIVCOLOR_TOOL_CAPABILITIES(ZIVCOLOR_FEATURE)
#undef ZIVCOLOR_FEATURE
    printf("\ntargets  ");
    for (const Target& target : built_targets())
        printf(" %s%s", target.name,
               target.kernels == &chosen_kernels() ? " (chosen)"
               : target.runs_here()                ? ""
                                                   : " (does not run here)");
    printf("\n");
}

// The tables that are asked for by name: the exported entries, a target, or all targets that run here.
struct Table {
    const char* name;
    const KernelTable* kernels;
};
std::vector<Table> tables(const std::string& asked) {
    if (asked.empty()) return {{"", &exported}};
    std::vector<Table> found;
    std::string names;
    for (const Target& target : built_targets()) {
        names += std::string(" ") + target.name;
        if (asked != "all" && asked != target.name) continue;
        if (target.runs_here()) found.push_back({target.name, target.kernels});
        else if (asked != "all") throw Refusal("target '" + asked + "' does not run on this CPU");
    }
    if (found.empty()) throw Refusal("no target '" + asked + "' in this build; there are:" + names);
    return found;
}

// Prints a line for a family and, behind it, one for each function that differs.
struct Report {
    const char* family = nullptr;
    int functions = 0, cases = 0;
    std::vector<Verdict> differing;
    int all_functions = 0, all_cases = 0, all_differing = 0;

    void add(const Verdict& verdict) {
        if (!family || strcmp(family, verdict.family) != 0) end_family();
        family = verdict.family;
        functions++;
        cases += verdict.cases;
        if (!verdict.differing.empty()) differing.push_back(verdict);
    }
    void end_family() {
        if (family) {
            printf("%-16s %3d function%s %6d cases  ", title_of(family), functions, functions == 1 ? " " : "s", cases);
            if (differing.empty()) printf("ok\n");
            else printf("%zu differ\n", differing.size());
            for (const Verdict& verdict : differing) print(verdict);
            fflush(stdout);
        }
        all_functions += functions, all_cases += cases, all_differing += static_cast<int>(differing.size());
        functions = cases = 0;
        differing.clear();
        family = nullptr;
    }
    static void print(const Verdict& verdict) {
        constexpr size_t most = 3;
        printf("  %s: %zu of %d cases differ:", verdict.function, verdict.differing.size(), verdict.cases);
        for (size_t i = 0; i < verdict.differing.size() && i < most; i++)
            printf("%s %s", i ? ";" : "", verdict.differing[i].c_str());
        printf("%s\n", verdict.differing.size() > most ? "; ..." : "");
    }
};

}  // namespace

int check(int argc, char** argv) {
    std::string target;
    const Usage usage{
        "check [--target NAME|all]",
        "Runs every function on this CPU over blocks, tails, odd sizes, pitches, in place and on all cores, and compares\n"
        "all bytes with digests of the scalar reference. Exit code 1 where a byte differs.",
        {{"target", "NAME",
          "the kernels of one target of this build, or of all that run here,\nin place of the functions as exported",
          [&](const char* name) { target = name; }}}};
    const Arguments arguments = take_options(usage, argc, argv);
    if (arguments.helped) return exit_good;
    if (!arguments.rest.empty()) throw Refusal("check takes no argument '" + arguments.rest[0] + "'");
    const std::vector<Table> asked = tables(target);

    print_machine();
    const std::vector<Function> all = functions();
    Report report;
    for (const Table& table : asked) {
        if (*table.name) printf("%s\n", table.name);
        for (const Function& function : all) report.add(check_function(function, *table.kernels));
        report.end_family();
    }
    if (target.empty()) {
        report.add(check_dispatcher(all));
        for (const Verdict& verdict : check_threads(all)) report.add(verdict);
        report.end_family();
    }
    if (report.all_differing != 0) {
        printf("%d of %d functions differ from the reference\n", report.all_differing, report.all_functions);
        return exit_bad;
    }
    printf("%d functions, %d cases: every byte is the reference's\n", report.all_functions, report.all_cases);
    return exit_good;
}

}  // namespace tool
