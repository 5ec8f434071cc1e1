// SPDX-License-Identifier: MIT
// Writes docs/formats.md to standard output, from the kernel list, the facts beside it and what is measured of the reference.
//   formats_doc [FILE]   with a file, says whether it holds what would be written
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "distance_tables.h"
#include "facts_table.h"
#include "zivcolor_image.h"

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
constexpr Kernel all_kernels[] = {ZIVCOLOR_CONVERSIONS(ZIVCOLOR_KERNEL)};

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
        "those of the image itself, odd ones included. What a pair touches beyond them stands in\n"
        "[Memory beyond the image](#memory-beyond-the-image).\n\n",
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

const zivcolor::Layout& layout_named(std::string_view name) {
    return *zivcolor::layout_of(zivcolor_format_named(string(name).c_str()));
}

// What is touched of one side of a pair beyond the image, in words.
string beyond_words(const Facts& f, const zivcolor::Layout& layout, Rows found, bool is_source, bool copied_down) {
    string words;
    const auto say = [&](const string& more) { words += (words.empty() ? "" : "; ") + more; };
    if (found == Copied) {
        const bool is_nv41 = is_source != copied_down;
        say("luma `pitch[0]` H bytes, by the destination's pitch");
        if (copied_down && is_nv41) say("chroma `pitch[1]` ceil(H/4) bytes, and `pitch[1]` H/4 behind them, which are cleared");
        if (copied_down && !is_nv41) say("chroma 2 ceil(H/4) rows of 4 ceil(W/4) bytes");
        if (!copied_down) say("H no multiple of 4: up to two rows above the chroma plane");
        if (!copied_down && is_nv41) say("W no multiple of 4: a pair behind each chroma row");
        if (!copied_down && !is_nv41) say("chroma rows of 4 ceil(W/4) bytes; `2 pitch[1]` of the source from the first row on");
        return words;
    }
    if (f.odd_width == Past && layout.luma.columns == 1)
        say("odd W: " + number(layout.luma.bytes) + (layout.luma.bytes == 1 ? " byte" : " bytes") + " behind each row" +
            (layout.planes > 1 ? " of luma" : ""));
    if (f.odd_width == Past && found == TightChroma && layout.chroma.columns == 1) say("odd W: chroma rows of W + 1 bytes");
    if (f.odd_height == Past) say(string("odd H: one row") + (layout.planes > 1 ? " of luma" : "") + " behind the last");
    if (f.odd_width == Ahead && is_source)
        say("luma of a tail of n pairs of columns: 4 n columns from its first one on, up to 14 behind the row");
    if (f.odd_width == Twice) {
        say("the tail's columns, 1 to 16, once more behind each row");
        if (layout.planes > 1) say("of chroma half as many");
    }
    if (found == TwicePitch) say("chroma rows stand `2 pitch[1]` apart: give half the pitch, or room for twice the rows");
    return words.empty() ? "nothing" : words;
}

// How many bytes a pair touches beyond two images of a size, by tight pitches or, where it refuses those, by its own.
string beyond_bytes(uint32_t source, uint32_t destination, int width, int height) {
    zivcolor_room itself[2], touched[2];
    zivcolor_image images[2];
    for (int k = 0; k < 2; k++) {
        zivcolor_room_of_layout(k ? destination : source, width, height, 1, &itself[k]);
        images[k] = {itself[k].format, width, height, {}, {}};
        for (int plane = 0; plane < 3; plane++) images[k].pitch[plane] = itself[k].pitch[plane];
    }
    if (zivcolor_room_of_images(&images[0], &images[1], &touched[0], &touched[1]) != zivStatus_OK)
        zivcolor_room_of_pair(source, destination, width, height, 1, &touched[0], &touched[1]);
    string text;
    for (int k = 0; k < 2; k++) {
        int64_t more = 0;
        for (int plane = 0; plane < itself[k].planes; plane++) {
            const int64_t own = int64_t{itself[k].rows[plane] - 1} * touched[k].pitch[plane] + itself[k].row_bytes[plane];
            const auto taken = static_cast<int64_t>(touched[k].before[plane] + touched[k].after[plane]);
            more += taken > own ? taken - own : 0;
        }
        text += (k ? "; " : "") + std::to_string(more);
    }
    return text;
}

void print_memory() {
    int at_even_sizes = 0;
    for (const Kernel& k : all_kernels)
        at_even_sizes += k.dispatched && beyond(*find(facts::conversions, k.name)) == AtEvenSizesToo;
    print(
        "## Memory beyond the image\n\n"
        "A plane of an image is its rows, a pitch apart, the last one without its padding. All pairs but these touch nothing\n"
        "else, at any size, where rows stand as the pair looks for them (*Pitches read*, and the notes); the first ",
        number(at_even_sizes),

        " reach\nfurther at even sizes too. Bytes are read of a source and written of a\n"
        "destination. The last columns are the bytes beyond source and destination at three sizes, with tight rows.\n"
        "`zivcolor_room_of_pair()` and `zivcolor_room_of_images()` in [zivcolor_image.h](../include/zivcolor_image.h) tell "
        "all\n"
        "of this for any size and pitch: leave it to them.\n\n"
        "| Pair | Of the source | Of the destination | 640x480 | 650x486 | 651x487 |\n|---|---|---|---|---|---|\n");
    for (const Beyond when : {AtEvenSizesToo, AtOddSizes})
        for (const Kernel& k : all_kernels) {
            const Facts& f = *find(facts::conversions, k.name);
            if (!k.dispatched || beyond(f) != when) continue;
            const RowsFacts found = rows_of(k.name);
            const zivcolor::Layout &source = layout_named(k.source), &destination = layout_named(k.destination);
            const bool down = k.destination == "NV41";
            print("| ", k.source, " to ", k.destination, " | ", beyond_words(f, source, found.source, true, down), " | ",
                  beyond_words(f, destination, found.destination, false, down), " | ",
                  beyond_bytes(source.format, destination.format, 640, 480), " | ",
                  beyond_bytes(source.format, destination.format, 650, 486), " | ",
                  beyond_bytes(source.format, destination.format, 651, 487), " |\n");
        }
    print(
        "\nFrom NV41, `pitch[1]` of the source must not be below that of the destination. Kernels that zivColorCvt does not "
        "call\n"
        "have their memory told in the notes to their tables.\n\n");
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
        "- [Layouts](#layouts)\n- [Memory beyond the image](#memory-beyond-the-image)\n- [What to take](#what-to-take)\n- "
        "[Traps](#traps)\n"
        "- [Distance from BT.601](#distance-from-bt601)\n- [Coefficient sets](#coefficient-sets)\n"
        "- [The tables of kernels](#the-tables-of-kernels): [YUV to RGB](#yuv-to-rgb), [RGB to YUV](#rgb-to-yuv), [YUV to "
        "YUV](#yuv-to-yuv), [RGB to RGB](#rgb-to-rgb)\n"
        "- [Kernels with a signature of their own](#kernels-with-a-signature-of-their-own)\n\n",
        "Every pair has one kernel, and results are defined to the byte: kernels that look alike differ in coefficients, "
        "rounding,\nbyte order, tails and pitches. What the tables call the tail is what blocks leave of a row.\n\n");
    print_layouts();
    print_memory();
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
