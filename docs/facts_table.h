// SPDX-License-Identifier: MIT
// The facts of kernel_facts.h as tables, and the proof that they and the kernel list name the same kernels.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/kernel_list.h"
#include "core/layout_list.h"
#include "kernel_facts.h"
#include "zivcolor.h"

namespace facts {

struct LayoutFacts {
    std::string_view name, luma, chroma;
};

enum Set {
#define ZIVCOLOR_SET(id, name, first, second, third) id,
    ZIVCOLOR_SET_FACTS(ZIVCOLOR_SET)
#undef ZIVCOLOR_SET
        Moves,
    Means
};
struct SetFormulas {
    std::string_view name, outputs[3];
};

// Blocks run while that many columns are left, more than that, or four more.
enum Bound { Fits, More, FourMore };
enum Driver { Src, Dst };
// A least size, of both images or of the destination alone; format codes are tested unless told otherwise.
enum Check { Both2x2, Both2x1, Both1x1, Dst2x2SrcRows2, Dst2x2AnyFormat, Dst1x1, Dst1x1AnyFormat };
// Pitches by bits.
enum Pitches { None = 0, P0 = 1, P1 = 2, P01 = 3, P012 = 7 };
// An odd width: the last column is left out | left out, and of an even width that the blocks do not fill the last two |
// left out, while luma is read ahead | converted | converted with one more beyond it | the tail covers twice its columns |
// luma is one run of bytes, and sizes ought to be multiples of four.
enum OddWidth { LeftOut, Short, Ahead, Exact, Past, Twice, Fours };
// An odd height has the same values, and: all rows go to row 1.
enum OddHeight { RowOne = 16 };
enum Tail { Same, Differ };
// How the rows of an image are found, as kernel_facts.h tells.
enum Rows { Pitch, Wrapped, LumaPitch, TwicePitch, Tight, TightChroma, HalfPitch, WidthApart, Copied };

struct Facts {
    std::string_view name;
    Set set;
    int block;
    Bound bound;
    int step;
    Driver columns, rows;
    Check check;
    Pitches source_pitches, destination_pitches;
    int odd_width, odd_height;
    Tail tail;
    std::string_view remark;
};

struct RowsFacts {
    std::string_view name;
    Rows source, destination;
};

struct RoutineFacts {
    std::string_view name, from, to, blocks, memory, remark;
};

inline constexpr LayoutFacts layouts[] = {
#define ZIVCOLOR_LAYOUT(name, luma, chroma) {#name, luma, chroma},
    ZIVCOLOR_LAYOUT_FACTS(ZIVCOLOR_LAYOUT)
#undef ZIVCOLOR_LAYOUT
};

inline constexpr SetFormulas sets[] = {
#define ZIVCOLOR_SET(id, name, first, second, third) {name, {first, second, third}},
    ZIVCOLOR_SET_FACTS(ZIVCOLOR_SET)
#undef ZIVCOLOR_SET
};

#define ZIVCOLOR_FACTS(name, ...) {#name, __VA_ARGS__},
inline constexpr Facts conversions[] = {
    ZIVCOLOR_YUV2RGB_FACTS(ZIVCOLOR_FACTS)    //
    ZIVCOLOR_RGB2YUV_FACTS(ZIVCOLOR_FACTS)    //
    ZIVCOLOR_YUVREPACK_FACTS(ZIVCOLOR_FACTS)  //
    ZIVCOLOR_RGBREPACK_FACTS(ZIVCOLOR_FACTS)  //
};
inline constexpr RowsFacts rows[] = {ZIVCOLOR_ROWS_FACTS(ZIVCOLOR_FACTS)};
inline constexpr RoutineFacts routines[] = {ZIVCOLOR_ROUTINE_FACTS(ZIVCOLOR_FACTS)};
#undef ZIVCOLOR_FACTS

template <class Row, size_t size>
constexpr const Row* find(const Row (&table)[size], std::string_view name) {
    for (const Row& row : table)
        if (row.name == name) return &row;
    return nullptr;
}

template <class Row, size_t size>
constexpr int count(const Row (&table)[size], std::string_view name) {
    int n = 0;
    for (const Row& row : table) n += row.name == name;
    return n;
}

#define ZIVCOLOR_HAS_FACTS(name, ...) \
    static_assert(count(conversions, #name) == 1, "needs one row in docs/kernel_facts.h: " #name);
ZIVCOLOR_CONVERSIONS(ZIVCOLOR_HAS_FACTS)
#undef ZIVCOLOR_HAS_FACTS
#define ZIVCOLOR_HAS_KERNEL(name, ...) static_assert(count(rows, #name) == 1 && find(conversions, #name), "rows of " #name);
ZIVCOLOR_ROWS_FACTS(ZIVCOLOR_HAS_KERNEL)
#undef ZIVCOLOR_HAS_KERNEL
#define ZIVCOLOR_HAS_FACTS(result, name, ...) \
    static_assert(count(routines, #name) == 1, "needs one row in docs/kernel_facts.h: " #name);
ZIVCOLOR_ROUTINES(ZIVCOLOR_HAS_FACTS)
#undef ZIVCOLOR_HAS_FACTS

#define ZIVCOLOR_HAS_FACTS(name, ...) static_assert(count(layouts, #name) == 1, "needs one row in docs/kernel_facts.h: " #name);
ZIVCOLOR_LAYOUTS(ZIVCOLOR_HAS_FACTS)
#undef ZIVCOLOR_HAS_FACTS

#define ZIVCOLOR_ONE(...) +1
static_assert(sizeof layouts / sizeof layouts[0] <= 0 ZIVCOLOR_LAYOUTS(ZIVCOLOR_ONE), "a row without a layout");
static_assert(sizeof conversions / sizeof conversions[0] <= 0 ZIVCOLOR_CONVERSIONS(ZIVCOLOR_ONE), "a row without a kernel");
static_assert(sizeof routines / sizeof routines[0] <= 0 ZIVCOLOR_ROUTINES(ZIVCOLOR_ONE), "a row without a kernel");
#undef ZIVCOLOR_ONE

// How a kernel finds the rows of its source and destination.
constexpr RowsFacts rows_of(std::string_view name) {
    const RowsFacts* told = find(rows, name);
    return told ? *told : RowsFacts{name, Pitch, Pitch};
}

// When a kernel touches more of an image than its layout has, by tight pitches.
enum Beyond { Never, AtOddSizes, AtEvenSizesToo };
constexpr Beyond beyond(const Facts& f) {
    const bool at_even_sizes =
        f.odd_width == Ahead || f.odd_width == Twice || f.odd_width == Fours || rows_of(f.name).destination == TwicePitch;
    if (at_even_sizes) return AtEvenSizesToo;
    return f.odd_width == Past || f.odd_height == Past ? AtOddSizes : Never;
}

}  // namespace facts
