// SPDX-License-Identifier: MIT
#include "harness/difference.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace harness {

namespace {

constexpr ptrdiff_t bytes_shown = 12, rows_above = 1, rows_below = 2;

struct Memories {
    const uint8_t *expected, *actual;
    ptrdiff_t first, past;  // offsets from the plane's pointer

    bool holds(ptrdiff_t at) const { return at >= first && at < past; }
    bool differ(ptrdiff_t at) const { return expected[at] != actual[at]; }
};

struct Place {
    ptrdiff_t row, byte;
};

// Rows of a negative pitch follow each other upward.
Place place_of(ptrdiff_t at, int pitch) {
    if (pitch == 0) return {0, at};
    const ptrdiff_t step = std::abs(ptrdiff_t{pitch});
    const ptrdiff_t rows = (at >= 0 ? at : at - step + 1) / step;
    return {pitch > 0 ? rows : -rows, at - rows * step};
}

__attribute__((format(printf, 2, 3))) void append(std::string* text, const char* format, ...) {
    char line[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    *text += line;
}

// One row of the map: ours, the reference's, and a mark under each byte that differs.
void append_row(std::string* text, const Memories& m, ptrdiff_t at, const std::string& label) {
    append(text, "  %10s ", label.c_str());
    for (const uint8_t* bytes : {m.actual, m.expected}) {
        for (ptrdiff_t i = at; i < at + bytes_shown; i++)
            if (m.holds(i)) append(text, " %02x", bytes[i]);
            else *text += "   ";
        *text += "  |";
    }
    *text += ' ';
    for (ptrdiff_t i = at; i < at + bytes_shown; i++) *text += m.holds(i) ? m.differ(i) ? 'x' : '.' : ' ';
    *text += '\n';
}

}  // namespace

std::string difference(const Plane& plane, const uint8_t* expected, const uint8_t* actual, size_t size, ptrdiff_t origin) {
    if (size == 0 || std::memcmp(expected, actual, size) == 0) return {};
    const Memories m{expected + origin, actual + origin, -origin, static_cast<ptrdiff_t>(size) - origin};
    ptrdiff_t count = 0, first = 0;
    for (ptrdiff_t at = m.first; at < m.past; at++)
        if (m.differ(at) && count++ == 0) first = at;

    const Place place = place_of(first, plane.pitch);
    std::string text;
    append(&text, "%s: %td of %zu bytes differ, the first ", plane.name, count, size);
    if (plane.pitch != 0) {
        append(&text, "in row %td, ", place.row);
        if (place.byte < plane.row_bytes) append(&text, "column %td, ", place.byte * plane.columns / plane.row_bytes);
        else append(&text, "past the row's %d bytes, ", plane.row_bytes);
    }
    append(&text, "byte %td: 0x%02x, expected 0x%02x\n", place.byte, m.actual[first], m.expected[first]);
    append(&text, "  %10s  %-*s|  %-*s|\n", "", static_cast<int>(3 * bytes_shown + 1), "ours",
           static_cast<int>(3 * bytes_shown), "reference");
    const ptrdiff_t at = first - (place.byte < 4 && plane.pitch != 0 ? place.byte : 4);
    if (plane.pitch == 0) {
        append_row(&text, m, at, "byte " + std::to_string(at));
        return text;
    }
    for (ptrdiff_t row = -rows_above; row <= rows_below; row++)
        append_row(&text, m, at + row * plane.pitch, "row " + std::to_string(place.row + row));
    return text;
}

}  // namespace harness
