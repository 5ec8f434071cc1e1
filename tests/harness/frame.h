// SPDX-License-Identifier: MIT
// An image that owns its memory: every plane in the middle of ample room, all filled from a seed. Rows are tight, or padded by
// so many bytes; the rows of a plane of negative padding follow each other upward, as far apart as its size tells.
#pragma once

#include <array>
#include <cstdlib>
#include <vector>

#include "harness/conversions.h"

namespace harness {

struct Frame {
    zivcolor::Image image{};
    std::vector<uint8_t> memory;

    Frame(uint32_t format, int width, int height, uint64_t seed, const std::array<int, 3>& padding = {}) {
        constexpr size_t margin = 256;
        image.format = format;
        image.width = width;
        image.height = height;
        size_t offset[3] = {}, size = margin;
        for (int k = 0; k < plane_count(format); k++) {
            const int bytes = padding[static_cast<size_t>(k)], pitch = tight_pitch(format, k, width) + std::abs(bytes);
            // Twice the rows: one kernel spreads its chroma over so many. Some read no pitch and go downward whatever it is.
            const auto room = static_cast<size_t>(pitch) * static_cast<size_t>(2 * height + 2);
            image.pitch[k] = bytes < 0 ? -pitch : pitch;
            offset[k] = bytes < 0 ? size + room : size;
            size = offset[k] + room + margin;
        }
        memory.resize(size);
        fill(memory.data(), memory.size(), seed);
        for (int k = 0; k < plane_count(format); k++) image.plane[k] = memory.data() + offset[k];
        Random random{seed};
        fill_beyond_layout(image, format, random);
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
};

}  // namespace harness
