// SPDX-License-Identifier: MIT
// Small pictures for tests that spell out bytes: planes in memory of their own, every byte known beforehand.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "harness/conversions.h"
#include "harness/options.h"
#include "reference/reference.h"

namespace harness {

// A pattern that worked examples do not produce: what still holds it was not written.
inline constexpr uint8_t untouched = 0xEE;

struct Picture {
    static constexpr ptrdiff_t margin = 64;

    uint32_t format;
    int32_t width, height;
    int32_t pitch[3] = {};
    std::vector<uint8_t> bytes[3];

    // Planes hold more than the picture: rows and margins that a kernel may run into. `padding` widens every row.
    Picture(uint32_t code, int columns, int rows, int padding = 0) : format(code), width(columns), height(rows) {
        for (int k = 0; k < plane_count(format); k++) {
            pitch[k] = tight_pitch(format, k, columns) + padding;
            bytes[k].assign(static_cast<size_t>(pitch[k] * (rows + 2) + 2 * margin), untouched);
        }
    }
    uint8_t* at(int plane, int row, int offset) {
        return bytes[plane].data() + margin + ptrdiff_t{row} * pitch[plane] + offset;
    }
    // The bytes of a row from an offset on.
    std::vector<int> run(int plane, int row, int offset, int count) {
        const uint8_t* p = at(plane, row, offset);
        return {p, p + count};
    }
    zivcolor::Image image() {
        zivcolor::Image i{format, width, height, {}, {}};
        for (int k = 0; k < plane_count(format); k++) i.plane[k] = at(k, 0, 0), i.pitch[k] = pitch[k];
        Random random{base_seed};
        fill_beyond_layout(i, format, random);
        return i;
    }
};

// The first plane in which two pictures of one shape differ; empty if none does.
inline std::string difference(const Picture& expected, const Picture& actual) {
    static constexpr const char* names[] = {"destination plane 0", "destination plane 1", "destination plane 2"};
    for (int k = 0; k < plane_count(expected.format); k++) {
        const Plane plane{names[k], expected.pitch[k], tight_pitch(expected.format, k, expected.width), expected.width};
        const std::string text =
            difference(plane, expected.bytes[k].data(), actual.bytes[k].data(), expected.bytes[k].size(), Picture::margin);
        if (!text.empty()) return text;
    }
    return {};
}

// A picture of one colour, margins and all. c0, c1, c2 are the samples of a pixel: Y, U, V or R, G, B.
inline void flood(Picture& picture, int c0, int c1, int c2) {
    const auto cycle = [&](int plane, std::vector<int> group) {
        std::vector<uint8_t>& bytes = picture.bytes[plane];
        const size_t n = group.size();
        // The group starts at every row's first byte: rows are whole groups, margins are made whole from the origin.
        for (size_t i = 0; i < bytes.size(); i++) {
            const size_t phase = (i + n * static_cast<size_t>(Picture::margin) - static_cast<size_t>(Picture::margin)) % n;
            bytes[i] = static_cast<uint8_t>(group[phase]);
        }
    };
    switch (picture.format) {
        case zivPixFmt_RGB888: return cycle(0, {c0, c1, c2});
        case zivPixFmt_BGR888: return cycle(0, {c2, c1, c0});
        case zivPixFmt_RGBA8888: return cycle(0, {c0, c1, c2, 77});
        case zivPixFmt_BGRA8888: return cycle(0, {c2, c1, c0, 77});
        case zivPixFmt_YUYV: return cycle(0, {c0, c1, c0, c2});
        case zivPixFmt_NV12:
        case zivPixFmt_LPI422H: cycle(0, {c0}); return cycle(1, {c1, c2});
        case zivPixFmt_NV21: cycle(0, {c0}); return cycle(1, {c2, c1});
        case zivPixFmt_YV12: cycle(0, {c0}), cycle(1, {c2}); return cycle(2, {c1});
        default: cycle(0, {c0}), cycle(1, {c1}), cycle(2, {c2});
    }
}

inline int32_t convert(const zivcolor::KernelTable& kernels, const Conversion& c, Picture& source, Picture& destination,
                       uint8_t alpha = 200) {
    const zivcolor::Image s = source.image(), d = destination.image();
    return c.convert(kernels, &s, &d, alpha);
}

// Calls body(kernels) for the reference and for every target that runs here.
template <class Body>
void on_every_table(Body body) {
    {
        SCOPED_TRACE("reference");
        body(reference::kernels);
    }
    for (const zivcolor::Target& target : targets()) {
        SCOPED_TRACE(target.name);
        body(*target.kernels);
    }
}

}  // namespace harness
