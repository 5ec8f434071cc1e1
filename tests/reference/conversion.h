// SPDX-License-Identifier: MIT
// What the references of the conversions between YUV and RGB have in common: entry checks, rows, and the order of channels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/image.h"
#include "reference/memory.h"

namespace reference {

inline int32_t check(const zivcolor::Image* source, const zivcolor::Image* destination, uint32_t source_format,
                     uint32_t destination_format, int least_width, int least_height) {
    if (!source || !destination) return zivStatus_NullPointer;
    if (source->format != source_format) return zivStatus_BadArgument;
    if (destination->format != destination_format) return zivStatus_BadArgument;
    if (source->width < least_width || source->height < least_height) return zivStatus_BadArgument;
    if (destination->width < least_width || destination->height < least_height) return zivStatus_BadArgument;
    return zivStatus_OK;
}

inline int clamped(int value) {
    if (value < 0) return 0;
    if (value > 255) return 255;
    return value;
}

// The first byte of a row, the offset in 64 bits.
inline uint8_t* row_of(const zivcolor::Image& image, int plane, int64_t row) {
    return image.plane[plane] + row * int64_t{image.pitch[plane]};
}

// The bytes of an RGB pixel: where each channel stands, and how many there are.
struct Layout {
    int red, green, blue;
    int alpha;  // -1 for none
    int size;
};
constexpr Layout rgb24{0, 1, 2, -1, 3};
constexpr Layout bgr24{2, 1, 0, -1, 3};
constexpr Layout rgba32{0, 1, 2, 3, 4};
constexpr Layout bgra32{2, 1, 0, 3, 4};

constexpr Layout layout_of(uint32_t format) {
    if (format == zivPixFmt_RGB888) return rgb24;
    if (format == zivPixFmt_BGR888) return bgr24;
    return format == zivPixFmt_RGBA8888 ? rgba32 : bgra32;
}

}  // namespace reference
