// An image that owns its memory: tight rows, every plane in the middle of ample room, all filled from a seed.
#pragma once

#include <vector>

#include "harness/conversions.h"

namespace harness {

struct Frame {
    zivcolor::Image image{};
    std::vector<uint8_t> memory;

    Frame(uint32_t format, int width, int height, uint64_t seed) {
        constexpr size_t margin = 256;
        image.format = format;
        image.width = width;
        image.height = height;
        size_t offset[3] = {}, size = margin;
        for (int k = 0; k < plane_count(format); k++) {
            image.pitch[k] = tight_pitch(format, k, width);
            offset[k] = size;
            // Twice the rows: one kernel spreads its chroma over so many.
            size += static_cast<size_t>(image.pitch[k]) * static_cast<size_t>(2 * height + 2) + margin;
        }
        memory.resize(size);
        fill(memory.data(), memory.size(), seed);
        for (int k = 0; k < plane_count(format); k++) image.plane[k] = memory.data() + offset[k];
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
};

}  // namespace harness
