// SPDX-License-Identifier: MIT
#include <stdio.h>

#include "commands.h"
#include "names.h"
#include "options.h"

namespace tool {

namespace {

// Samples of a plane: so many bytes for so many columns and rows of pixels.
std::string samples(int bytes, int columns, int rows) {
    return std::to_string(bytes) + " for " + std::to_string(columns) + "x" + std::to_string(rows);
}

void print_layouts() {
    printf("%-9s %-6s %-15s %-17s %s\n", "layout", "code", "FourCC", "ffmpeg", "bytes of each plane for columns x rows");
    for (int32_t i = 0; const zivcolor_layout* layout = zivcolor_layout_at(i); i++) {
        const OtherNames& others = other_names(layout->format);
        printf("%-9s 0x%-4x %-15s %-17s %s", layout->name, layout->format, others.fourcc, others.ffmpeg,
               samples(layout->bytes, layout->columns, 1).c_str());
        for (int k = 1; k < layout->planes; k++)
            printf("; %s", samples(layout->chroma_bytes, layout->chroma_columns, layout->chroma_rows).c_str());
        printf("\n");
    }
}

void print_pairs() {
    printf("%-9s %-9s %-6s %-10s %s\n", "from", "to", "alpha", "all cores", "least size");
    for (int32_t i = 0; const zivcolor_pair* pair = zivcolor_pair_at(i); i++)
        printf("%-9s %-9s %-6s %-10s %dx%d\n", zivcolor_format_name(pair->source), zivcolor_format_name(pair->destination),
               pair->takes_alpha ? "taken" : "-", pair->band_task >= 0 ? "yes" : "-", pair->least_width, pair->least_height);
}

}  // namespace

int formats(int argc, char** argv) {
    const Usage usage{"formats", "The layouts of images with their other names, and the pairs that are converted.", {}};
    const Arguments arguments = take_options(usage, argc, argv);
    if (arguments.helped) return exit_good;
    if (!arguments.rest.empty()) throw Refusal("formats takes no argument '" + arguments.rest[0] + "'");
    print_layouts();
    printf("\n");
    print_pairs();
    return exit_good;
}

}  // namespace tool
