// SPDX-License-Identifier: MIT
// Layouts and pairs by the names that people have for them.
#pragma once

#include <string>
#include <vector>

#include "zivcolor_image.h"

namespace tool {

// What others call the bytes of a layout. Each is a list with blanks between.
struct OtherNames {
    uint32_t format;
    const char *fourcc, *ffmpeg;
};
const OtherNames& other_names(uint32_t format);

// The layout of a name: ours, a FourCC or ffmpeg's, in capital or small letters. Refuses what is none.
const zivcolor_layout& layout_named(const std::string& name);

// The pair of two names. Refuses one that is not converted, and names the nearest that are.
const zivcolor_pair& pair_named(const std::string& from, const std::string& to);

std::string in_words(const zivcolor_pair& pair);

}  // namespace tool
