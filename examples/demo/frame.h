// SPDX-License-Identifier: MIT
// A picture in one of the library's layouts, in memory of its own.
#pragma once

#include <vector>

#include "picture.h"
#include "zivcolor_image.h"

namespace demo {

struct Frame {
    zivcolor_room room{};
    std::vector<uint8_t> memory;
    zivcolor_image image{};

    Frame(uint32_t format, int width, int height);
    explicit Frame(const zivcolor_room& needed);
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
};

// Source and destination of a pair, with the pitches and the room that it wants.
struct FramePair {
    Frame source, destination;

    FramePair(const zivcolor_pair& pair, int width, int height);
};

constexpr bool is_rgb(uint32_t format) { return format >> 8 <= 3; }

// Writes a picture into a frame by exact BT.601 arithmetic in full range; chroma is the mean of the pixels that share it.
void fill(Frame& frame, const Picture& picture);

// What a frame shows, by exact arithmetic as well; a sample of chroma serves all its pixels. Alpha is left aside.
Picture shown(const Frame& frame);

// A frame of 32-bit RGB as it looks in front of a checkerboard.
Picture before_checkerboard(const Frame& frame);

}  // namespace demo
