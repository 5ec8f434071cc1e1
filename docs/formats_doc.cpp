// SPDX-License-Identifier: MIT
// Writes docs/formats.md to standard output, from the kernel list, the facts beside it and what is measured of the reference.
//   formats_doc [FILE]   with a file, says whether it holds what would be written
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "distance_tables.h"
#include "facts_table.h"

namespace {

using namespace facts;
using std::string;

// One row of the kernel list.
struct Kernel {
    std::string_view name, source, destination;
    bool alpha, dispatched;
    int task;
};

constexpr int NoTask = -1;
constexpr bool Alpha = true, Opaque = false, Dispatched = true, Direct = false;

#define ZIVCOLOR_KERNEL(name, source, destination, alpha, dispatch, task, tile) \
    {#name, #source, #destination, alpha, dispatch, task},
constexpr Kernel yuv_to_rgb[] = {ZIVCOLOR_YUV2RGB_CONVERSIONS(ZIVCOLOR_KERNEL)};
constexpr Kernel rgb_to_yuv[] = {ZIVCOLOR_RGB2YUV_CONVERSIONS(ZIVCOLOR_KERNEL)};
constexpr Kernel yuv_to_yuv[] = {ZIVCOLOR_YUVREPACK_CONVERSIONS(ZIVCOLOR_KERNEL)};
constexpr Kernel rgb_to_rgb[] = {ZIVCOLOR_RGBREPACK_CONVERSIONS(ZIVCOLOR_KERNEL)};

string text;

template <class... Parts>
void print(const Parts&... parts) {
    ((text += parts), ...);
}

string number(int n) { return std::to_string(n); }

// A size divided and rounded up, in words.
string units(const char* size, int divisor) {
    return divisor == 1 ? size : "ceil(" + string(size) + "/" + number(divisor) + ")";
}

string row_bytes(int bytes, int columns) {
    const string row = units("W", columns);
    return bytes == 1 ? row : number(bytes) + " " + row;
}

void print_layouts() {
    print(
        "## Layouts\n\n",
        "W and H are the width and height in pixels. Bytes are told in memory order; U stands for Cb, V for Cr. The sizes are\n"
        "what a kernel may touch of an image, odd sizes included: rows of a plane are that many bytes, and there are that "
        "many\n"
        "rows. Where a kernel touches more (an odd size with the note *one more* below), leave room for it.\n\n",
        "| Layout | Code | Planes | Plane 0 | Bytes a row | Rows | Chroma planes | Bytes a row, each | Rows, each |\n",
        "|---|---|---|---|---|---|---|---|---|\n");
    for (const zivcolor::Layout& l : zivcolor::layouts) {
        const LayoutFacts& facts = *find(layouts, l.name);
        char code[16];
        std::snprintf(code, sizeof code, "0x%x", l.format);
        print("| ", l.name, " | ", code, " | ", number(l.planes), " | ", facts.luma, " | ",
              row_bytes(l.luma.bytes, l.luma.columns), " | H | ");
        if (l.planes == 1) {
            print("| | |\n");
        } else {
            print(facts.chroma, " | ", row_bytes(l.chroma.bytes, l.chroma.columns), " | ", units("H", l.chroma.rows), " |\n");
        }
    }
    print("\nHSL888, which has no code, is three bytes a pixel: hue (0 to 212), saturation, lightness.\n\n");
}

void print_sets() {
    print("## Coefficient sets\n\n",
          "Full range, chroma centred at 128 and never filtered; u = U - 128, v = V - 128; `>>` floors, trunc goes toward 0.\n"
          "Results are limited to 0..255 unless a kernel's note says otherwise.\n\n",
          "| Set | | | |\n|---|---|---|---|\n");
    for (const SetFormulas& set : sets)
        print("| ", set.name, " | `", set.outputs[0], "` | `", set.outputs[1], "` | `", set.outputs[2], "` |\n");
    print("\n");
}

string set_name(Set set) {
    if (set == Moves) return "none";
    if (set == Means) return "rounded means of chroma";
    return string(sets[set].name);
}

string blocks(const Facts& f) {
    if (f.block == 0) return "none; steps of " + number(f.step);
    const string left = number(f.bound == FourMore ? f.block + 4 : f.block);
    return number(f.block) + " while " + (f.bound == More ? "more than " : "") + left + " are left; then " + number(f.step);
}

string walk(const Facts& f) {
    const auto of = [](Driver d) { return d == Src ? "source" : "destination"; };
    if (f.columns == f.rows) return of(f.columns);
    return string("columns ") + of(f.columns) + ", rows " + of(f.rows);
}

const char* least(Check check) {
    switch (check) {
        case Both2x2: return "2x2";
        case Both2x1: return "2x1";
        case Both1x1: return "1x1";
        case Dst2x2SrcRows2: return "2x2; source width not tested";
        case Dst2x2AnyFormat: return "2x2; source and formats not tested";
        case Dst1x1: return "1x1; source not tested";
        case Dst1x1AnyFormat: return "1x1; source and formats not tested";
    }
    return "";
}

string pitches(Pitches read) {
    string planes;
    for (int k = 0; k < 3; k++)
        if (read & (1 << k)) planes += (planes.empty() ? "" : ", ") + number(k);
    return planes.empty() ? "none" : planes;
}

const char* odd_width(int value) {
    switch (value) {
        case LeftOut: return "last column left as it was";
        case Short: return "last column left; of an even W that is no multiple of 16 the last two";
        case Ahead: return "last column left; luma read ahead";
        case Exact: return "converted";
        case Past: return "one column more read and written";
        case Twice: return "tail covers twice its columns";
        default: return "W ought to be a multiple of 4";
    }
}

const char* odd_height(int value) {
    switch (value) {
        case LeftOut: return "last row left as it was";
        case Exact: return "converted";
        case Past: return "one row more read and written";
        case RowOne: return "all rows go to row 1";
        default: return "H ought to be a multiple of 4";
    }
}

template <size_t rows>
void print_kernels(const char* title, const Kernel (&kernels)[rows]) {
    print("## ", title, "\n\n",
          "| Pair | Kernel | Set | Blocks of columns | W and H of | Least size | Pitches read: source; destination | "
          "Odd W | "
          "Odd H "
          "| Band task | Block and tail |\n|---|---|---|---|---|---|---|---|---|---|---|\n");
    for (const Kernel& k : kernels) {
        const Facts& f = *find(facts::conversions, k.name);
        print("| ", k.source, " to ", k.destination, k.dispatched ? "" : " (by name only)", k.alpha ? ", alpha" : "", " | `",
              k.name, "` | ", set_name(f.set), " | ", blocks(f), " | ", walk(f), " | ", least(f.check), " | ",
              pitches(f.source_pitches), "; ", pitches(f.destination_pitches), " | ", odd_width(f.odd_width), " | ",
              odd_height(f.odd_height), " | ", k.task < 0 ? "none" : number(k.task), " | ", f.tail == Same ? "same" : "differ",
              " |\n");
    }
    print("\n");
    for (const Kernel& k : kernels) {
        const Facts& f = *find(facts::conversions, k.name);
        if (!f.remark.empty()) print("- `", k.name, "`: ", f.remark, "\n");
    }
    print("\n");
}

void print_routines() {
    print("## Kernels with a signature of their own\n\n",
          "| Kernel | From | To | Blocks | Memory | Notes |\n|---|---|---|---|---|---|\n");
    for (const RoutineFacts& f : routines)
        print("| `", f.name, "` | ", f.from, " | ", f.to, " | ", f.blocks, " | ", f.memory, " | ", f.remark, " |\n");
}

void print_all() {
    print(
        "<!-- Generated from src/core/kernel_list.h, docs/kernel_facts.h and docs/roads.h by scripts/docs --update. Do not "
        "edit. -->\n\n",
        "# Layouts and kernels\n\n"
        "- [Layouts](#layouts)\n- [What to take](#what-to-take)\n- [Traps](#traps)\n"
        "- [Distance from BT.601](#distance-from-bt601)\n- [Coefficient sets](#coefficient-sets)\n"
        "- [The tables of kernels](#the-tables-of-kernels): [YUV to RGB](#yuv-to-rgb), [RGB to YUV](#rgb-to-yuv), [YUV to "
        "YUV](#yuv-to-yuv), [RGB to RGB](#rgb-to-rgb)\n"
        "- [Kernels with a signature of their own](#kernels-with-a-signature-of-their-own)\n\n",
        "Every pair has one kernel, and results are defined to the byte: kernels that look alike differ in coefficients, "
        "rounding,\nbyte order, tails and pitches. What the tables call the tail is what blocks leave of a row.\n\n");
    print_layouts();
    print(distance_tables());
    print_sets();
    print(
        "## The tables of kernels\n\n"
        "- *Set*: the coefficients of the blocks; a tail with others is told in the notes below the table.\n"
        "- *Blocks of columns*: the block's width and when one is taken, then the columns of a tail step.\n"
        "- *W and H of*: the image whose size is walked. Sizes of the two images are never compared.\n"
        "- *Least size*: of both images, unless told otherwise; below it the status is -2 and nothing is written.\n"
        "- *Pitches read*: those of other planes are not looked at; the notes say how their rows are found.\n"
        "- *Odd W*, *Odd H*: what becomes of the last column and row.\n"
        "- *Band task*: the index that `zivColorCvtFunc` gives for the pair; without one the pair has no multi-threaded form.\n"
        "- *alpha*: the pair takes an alpha byte.\n\n");
    print_kernels("YUV to RGB", yuv_to_rgb);
    print_kernels("RGB to YUV", rgb_to_yuv);
    print_kernels("YUV to YUV", yuv_to_yuv);
    print_kernels("RGB to RGB", rgb_to_rgb);
    print_routines();
}

}  // namespace

int main(int count, char** arguments) {
    print_all();
    if (count < 2) return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
    std::ifstream file(arguments[1], std::ios::binary);
    if (string(std::istreambuf_iterator<char>(file), {}) == text) return 0;
    std::printf("%s is out of date: run scripts/docs --update\n", arguments[1]);
    return 1;
}
