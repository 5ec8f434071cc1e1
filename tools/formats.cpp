// SPDX-License-Identifier: MIT
#include <stdio.h>

#include "commands.h"
#include "core/kernel_list.h"
#include "core/layout_list.h"
#include "options.h"

namespace tool {

namespace {

struct Pair {
    const char *source, *destination;
    bool alpha, dispatched, threaded;
};
constexpr bool Alpha = true, Opaque = false, Dispatched = true, Direct = false;
constexpr int NoTask = -1;
constexpr Pair pairs[] = {
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) \
    {#source, #destination, alpha, dispatch, (task) != NoTask},
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
#undef ZIVCOLOR_CONVERSION
};

void print_layouts() {
    printf("%-10s %-6s %s\n", "layout", "code", "planes: bytes for columns x rows of pixels");
    for (const zivcolor::Layout& layout : zivcolor::layouts) {
        printf("%-10s 0x%-4x %d for %dx1", layout.name, layout.format, layout.luma.bytes, layout.luma.columns);
        for (int k = 1; k < layout.planes; k++)
            printf("; %d for %dx%d", layout.chroma.bytes, layout.chroma.columns, layout.chroma.rows);
        printf("\n");
    }
}

void print_pairs() {
    printf("%-10s %-10s %-6s %s\n", "from", "to", "alpha", "threads");
    for (const Pair& pair : pairs)
        if (pair.dispatched)
            printf("%-10s %-10s %-6s %s\n", pair.source, pair.destination, pair.alpha ? "taken" : "-",
                   pair.threaded ? "yes" : "-");
}

}  // namespace

int formats(int argc, char** argv) {
    const Usage usage{"formats", "The layouts, and the pairs that are converted.", {}};
    const Arguments arguments = take_options(usage, argc, argv);
    if (arguments.helped) return exit_good;
    if (!arguments.rest.empty()) throw Refusal("formats takes no argument '" + arguments.rest[0] + "'");
    print_layouts();
    printf("\n");
    print_pairs();
    return exit_good;
}

}  // namespace tool
