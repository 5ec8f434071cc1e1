// SPDX-License-Identifier: MIT
// The tables of layouts and pairs in include/zivcolor_image.h, from the lists and the facts beside them.
//   image_tables FILE            says whether the tables in the file are what would be written
//   image_tables FILE --update   writes them
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "facts_table.h"

namespace {

using namespace facts;
using std::string;

string number(int n) { return std::to_string(n); }

string layout_rows() {
    string text;
    for (const zivcolor::Layout& l : zivcolor::layouts)
        text += string("        {zivPixFmt_") + l.name + ", \"" + l.name + "\", " + number(l.planes) + ", " +
                number(l.luma.bytes) + ", " + number(l.luma.columns) + ", " + number(l.chroma.bytes) + ", " +
                number(l.chroma.columns) + ", " + number(l.chroma.rows) + "},\n";
    return text;
}

const char* least_size(Check check) {
    switch (check) {
        case Both2x2:
        case Dst2x2SrcRows2:
        case Dst2x2AnyFormat: return "2, 2";
        case Both2x1: return "2, 1";
        case Both1x1:
        case Dst1x1:
        case Dst1x1AnyFormat: return "1, 1";
    }
    return "";
}

const char* odd_size(int value) {
    switch (value) {
        case LeftOut: return "zivOdd_LeftOut";
        case Short: return "zivOdd_Short";
        case Ahead: return "zivOdd_Ahead";
        case Exact: return "zivOdd_Exact";
        case Past: return "zivOdd_Past";
        case Twice: return "zivOdd_Twice";
        case RowOne: return "zivOdd_RowOne";
        default: return "zivOdd_Fours";
    }
}

const char* rows_found(Rows rows) {
    switch (rows) {
        case Pitch: return "zivRows_Pitch";
        case Wrapped: return "zivRows_Wrapped";
        case LumaPitch: return "zivRows_LumaPitch";
        case TwicePitch: return "zivRows_TwicePitch";
        case Tight: return "zivRows_Tight";
        case TightChroma: return "zivRows_TightChroma";
        case HalfPitch: return "zivRows_HalfPitch";
        case WidthApart: return "zivRows_WidthApart";
        case Copied: return "zivRows_Copied";
    }
    return "";
}

// One row of the kernel list.
struct Kernel {
    const char *name, *source, *destination;
    bool alpha, dispatched;
    int task;
};

constexpr int NoTask = -1;
constexpr bool Alpha = true, Opaque = false, Dispatched = true, Direct = false;
#define ZIVCOLOR_KERNEL(name, source, destination, alpha, dispatch, task, tile) \
    {#name, #source, #destination, alpha, dispatch, task},
constexpr Kernel kernels[] = {ZIVCOLOR_CONVERSIONS(ZIVCOLOR_KERNEL)};

string pair_rows() {
    string text;
    for (const Kernel& k : kernels) {
        if (!k.dispatched) continue;
        const Facts& f = *find(conversions, k.name);
        const RowsFacts found = rows_of(k.name);
        text += string("        {zivPixFmt_") + k.source + ", zivPixFmt_" + k.destination + ", " + number(k.alpha) + ", " +
                number(k.task) + ", " + least_size(f.check) + ", " + number(f.columns == Src) + ", " + number(f.rows == Src) +
                ", " + odd_size(f.odd_width) + ", " + odd_size(f.odd_height) + ", " + rows_found(found.source) + ", " +
                rows_found(found.destination) + "},\n";
    }
    return text;
}

// Puts the rows between the comment that opens them and the one that ends them.
bool put(string& file, const string& opening, const string& rows) {
    const size_t start = file.find(opening);
    const size_t first = start == string::npos ? start : file.find('\n', start) + 1;
    const size_t end = start == string::npos ? start : file.find("        /* End. */", first);
    if (end == string::npos) {
        std::printf("no place for the rows of '%s'\n", opening.c_str());
        return false;
    }
    file.replace(first, end - first, rows);
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) return 2;
    std::ifstream in(arguments[1], std::ios::binary);
    const string before(std::istreambuf_iterator<char>(in), {});
    string after = before;
    if (!put(after, "/* Layouts: ", layout_rows()) || !put(after, "/* Pairs: ", pair_rows())) return 1;
    if (after == before) return 0;
    if (count > 2 && string(arguments[2]) == "--update") {
        std::ofstream out(arguments[1], std::ios::binary);
        return out << after && out.flush() ? 0 : 1;
    }
    std::printf("%s is out of date: run scripts/docs --update\n", arguments[1]);
    return 1;
}
