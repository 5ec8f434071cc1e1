// SPDX-License-Identifier: MIT
// An RGB picture in memory, read from and written to files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace demo {

struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;  // 3 bytes a pixel, rows tight

    Picture() = default;
    Picture(int w, int h) : width(w), height(h), rgb(static_cast<size_t>(w) * static_cast<size_t>(h) * 3) {}
    uint8_t* at(int x, int y) {
        return rgb.data() + (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3;
    }
    const uint8_t* at(int x, int y) const { return const_cast<Picture*>(this)->at(x, y); }
};

// Throws std::runtime_error with one clear line.
Picture read_picture(const std::string& path);  // PNG or JPEG, by content
void write_png(const std::string& path, const Picture& picture);

Picture render_scene(int width, int height);

}  // namespace demo
