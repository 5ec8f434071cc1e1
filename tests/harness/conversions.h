// SPDX-License-Identifier: MIT
// The conversions of the kernel list as rows of a table that tests can walk, and the shapes of image layouts.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "harness/workspace.h"

namespace harness {

struct Conversion {
    const char* name;
    uint32_t source, destination;  // format codes
    bool alpha, dispatched;
    int task;  // -1: none
    using Convert = int32_t(const zivcolor::KernelTable& kernels, const zivcolor::Image* srcImg, const zivcolor::Image* dstImg,
                            uint8_t alpha);
    Convert* convert;
    Convert* convert_as_entry;   // as the library's entry, which looks at the size of the image
    Convert* convert_streaming;  // by tiles and streaming stores; null where there is no such way
};

// How a test names the row.
inline void PrintTo(const Conversion& c, std::ostream* out) { *out << c.name; }

const std::vector<Conversion>& conversions();
const Conversion& conversion(const std::string& name);

// Planes of a layout: their number, and bytes of a tight row for a width (rounded up).
int plane_count(uint32_t format);
int tight_pitch(uint32_t format, int plane, int width);
// Rows of a plane for a height (rounded up).
int plane_rows(uint32_t format, int plane, int height);

const char* format_name(uint32_t format);

// The codes of all layouts.
const std::vector<uint32_t>& codes();

// Puts nonsense into those planes and pitches of an image that a layout does not have.
void fill_beyond_layout(zivcolor::Image& image, uint32_t format, Random& random);
// The same, and half of the time also into those pitches that the kernel does not read (docs/kernel_facts.h): else they stay,
// as the choice of tiles may look at them.
void fill_unread(const Conversion& c, zivcolor::Image& source, zivcolor::Image& destination, Random& random);

// One conversion's sizes and pitches.
struct ImagePair {
    int32_t source_width, source_height, destination_width, destination_height;
    int32_t source_pitch[3], destination_pitch[3];
    uint8_t alpha;
    bool fill_unread = true;  // with nonsense, drawn from all of the above
};
ImagePair tight(const Conversion& c, int width, int height);
// Adds less than `padding` bytes to each pitch, and negates those of one plane or more.
void negate_some_pitches(ImagePair& images, Random& random, int padding);
std::string describe(const Conversion& c, const ImagePair& images);

// The conversion on separate buffers: 0 to 2 are the source's planes, 3 to 5 the destination's. Room is ample for every reach
// of the kernels: rows may be stepped by the pitch of another plane, or by twice their own.
Call call_of(const Conversion& c, const ImagePair& images);
std::vector<Room> rooms_of(const Conversion& c, const ImagePair& images);

}  // namespace harness
