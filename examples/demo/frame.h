// SPDX-License-Identifier: MIT
// A picture in one of the library's layouts, in memory of its own.
#pragma once

#include <string>
#include <vector>

#include "core/layout_list.h"
#include "picture.h"

namespace demo {

struct Frame {
    __tag_KOBR_OFFSCREEN image{};
    std::vector<uint8_t> memory;

    Frame() = default;
    Frame(uint32_t format, int width, int height);
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    Frame(Frame&&) = default;
    Frame& operator=(Frame&&) = default;
};

// The pairs that the dispatcher has, found by asking it.
bool converts(uint32_t source, uint32_t destination);

// A picture in a layout: by the library's own conversions where they lead there from RGB888, else by moving samples here (the
// layouts that are sources only).
Frame in_layout(const Picture& picture, uint32_t format);

// What a frame shows, as RGB: by the library where it leads to RGB888 or BGR888, else by unpacking here (destinations only).
Picture shown(const Frame& frame);

}  // namespace demo
