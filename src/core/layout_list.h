// SPDX-License-Identifier: MIT
// The layout list: every layout of the library, once. Band tasks, the tests, the fuzzers, the demo and the format tables in the
// docs are derived from it.
#pragma once

#include "zivcolor.h"

// clang-format off

//   LAYOUT(name, planes, plane 0: bytes of so many columns, the other planes: bytes of so many columns, rows of luma to one row)
#define ZIVCOLOR_LAYOUTS(LAYOUT)       \
    LAYOUT(BGR565,   1, 2, 1, 0, 1, 1) \
    LAYOUT(RGB565,   1, 2, 1, 0, 1, 1) \
    LAYOUT(BGR888,   1, 3, 1, 0, 1, 1) \
    LAYOUT(RGB888,   1, 3, 1, 0, 1, 1) \
    LAYOUT(BGRA8888, 1, 4, 1, 0, 1, 1) \
    LAYOUT(ARGB8888, 1, 4, 1, 0, 1, 1) \
    LAYOUT(RGBA8888, 1, 4, 1, 0, 1, 1) \
    LAYOUT(YUV,      1, 3, 1, 0, 1, 1) \
    LAYOUT(YUYV,     1, 4, 2, 0, 1, 1) \
    LAYOUT(YVYU,     1, 4, 2, 0, 1, 1) \
    LAYOUT(UYVY,     1, 4, 2, 0, 1, 1) \
    LAYOUT(VYUY,     1, 4, 2, 0, 1, 1) \
    LAYOUT(I420,     3, 1, 1, 1, 2, 2) \
    LAYOUT(I422V,    3, 1, 1, 1, 1, 2) \
    LAYOUT(I422H,    3, 1, 1, 1, 2, 1) \
    LAYOUT(I444,     3, 1, 1, 1, 1, 1) \
    LAYOUT(YV12,     3, 1, 1, 1, 2, 2) \
    LAYOUT(YV24,     3, 1, 1, 1, 1, 1) \
    LAYOUT(NV12,     2, 1, 1, 2, 2, 2) \
    LAYOUT(NV21,     2, 1, 1, 2, 2, 2) \
    LAYOUT(LPI422H,  2, 1, 1, 2, 2, 1) \
    LAYOUT(NV41,     2, 1, 1, 2, 4, 4)

// clang-format on

namespace zivcolor {

struct Layout {
    const char* name;
    uint32_t format;
    int planes;
    struct {
        int bytes, columns, rows;  // so many bytes hold the samples of columns by rows pixels
    } luma, chroma;                // plane 0; each of the others

    constexpr int row_bytes(int plane, int width) const {
        const auto& p = plane == 0 ? luma : chroma;
        return (width + p.columns - 1) / p.columns * p.bytes;
    }
    constexpr int rows(int plane, int height) const {
        const auto& p = plane == 0 ? luma : chroma;
        return (height + p.rows - 1) / p.rows;
    }
};

inline constexpr Layout layouts[] = {
#define ZIVCOLOR_LAYOUT(name, planes, bytes, columns, chroma_bytes, chroma_columns, chroma_rows) \
    {#name, zivPixFmt_##name, planes, {bytes, columns, 1}, {chroma_bytes, chroma_columns, chroma_rows}},
    ZIVCOLOR_LAYOUTS(ZIVCOLOR_LAYOUT)
#undef ZIVCOLOR_LAYOUT
};

// Null for any other number.
constexpr const Layout* layout_of(uint32_t format) {
    for (const Layout& layout : layouts)
        if (layout.format == format) return &layout;
    return nullptr;
}

// A pair of layouts as one number.
constexpr uint64_t pair_of(uint32_t source, uint32_t destination) { return uint64_t{source} << 32 | destination; }

}  // namespace zivcolor
