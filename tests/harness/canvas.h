// SPDX-License-Identifier: MIT
// A picture for worked examples about reach: ample room on both sides of every plane, any pitch, and a count of the bytes that
// were written.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "harness/picture.h"

namespace harness {

class Canvas {
public:
    // Rows of every plane are padded by this many bytes.
    Canvas(uint32_t format, int width, int height, int padding = 0) : image_{format, width, height, {}, {}} {
        for (int k = 0; k < plane_count(format); ++k) image_.pitch[k] = tight_pitch(format, k, width) + padding;
        allocate();
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    const zivcolor::Image* image() const { return &image_; }
    zivcolor::Image& descriptor() { return image_; }

    void set_pitch(int plane, int pitch) {
        image_.pitch[plane] = pitch;
        allocate();
    }

    // The byte at an offset in a plane's row. Rows and offsets may lie outside of the image.
    uint8_t& at(int plane, int row, int offset) { return image_.plane[plane][row * image_.pitch[plane] + offset]; }

    uint8_t* at(int plane) { return image_.plane[plane]; }

    // Gives the bytes of all planes values that tell them apart: 1, 2, 3, ... from another start in each plane. None is
    // `untouched`.
    Canvas& numbered() {
        for (size_t k = 0; k < 3; ++k) {
            int value = static_cast<int>(60 * k);
            for (uint8_t& byte : memory_[k]) {
                value = value % 223 + 1;
                byte = static_cast<uint8_t>(value);
            }
        }
        return *this;
    }
    // Gives every byte of a plane one value.
    Canvas& filled(int plane, uint8_t value) {
        for (uint8_t& byte : memory_[static_cast<size_t>(plane)]) byte = value;
        return *this;
    }

    // Bytes of a plane that are not as they were made.
    int touched(int plane) const {
        int count = 0;
        for (const uint8_t byte : memory_[static_cast<size_t>(plane)]) count += byte != untouched;
        return count;
    }

    const std::array<std::vector<uint8_t>, 3>& memory() const { return memory_; }

private:
    void allocate() {
        int step = 0;
        for (int k = 0; k < plane_count(image_.format); ++k) step = image_.pitch[k] > step ? image_.pitch[k] : step;
        const auto room = static_cast<size_t>(step * (2 * image_.height + 4) + 4 * image_.width + 512);
        for (size_t k = 0; k < 3; ++k) {
            memory_[k].assign(2 * room, untouched);
            image_.plane[k] = memory_[k].data() + room;
        }
        Random random{base_seed};
        fill_beyond_layout(image_, image_.format, random);
    }

    zivcolor::Image image_;
    std::array<std::vector<uint8_t>, 3> memory_;
};

inline int run(const zivcolor::KernelTable& kernels, const char* name, Canvas& from, Canvas& to) {
    return conversion(name).convert(kernels, from.image(), to.image(), 0);
}

}  // namespace harness
