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

// PNG or JPEG, by content. Throws std::runtime_error with one clear line; warns on the standard error stream of what is damaged
// or left out.
Picture read_picture(const std::string& path);

void write_png(const std::string& path, const Picture& picture);

// Throws if a file could not be written, before there is anything to write.
void expect_writable(const std::string& path);

Picture render_scene(int width, int height);

// The grey of a checkerboard at a pixel.
constexpr int checkerboard(int x, int y, int square) { return (x / square + y / square) % 2 ? 150 : 215; }

// Lays a pixel of some alpha before a grey.
inline void blend(uint8_t* rgb, int alpha, int grey) {
    for (int k = 0; k < 3; k++) rgb[k] = static_cast<uint8_t>((rgb[k] * alpha + grey * (255 - alpha) + 127) / 255);
}

}  // namespace demo
