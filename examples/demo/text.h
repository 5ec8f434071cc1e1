// SPDX-License-Identifier: MIT
// Text in pictures, by FreeType.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "picture.h"

struct FT_LibraryRec_;
struct FT_FaceRec_;

namespace demo {

struct Style {
    int size;  // pixels from one baseline to the next are size * 5 / 4
    bool bold;
    uint8_t rgb[3];
};

class Text {
public:
    Text();

    // Draws one line of ASCII with its top left corner at x, y; returns where it ends.
    int draw(Picture& picture, int x, int y, const Style& style, const std::string& line);
    int width(const Style& style, const std::string& line);
    std::vector<std::string> wrapped(const Style& style, const std::string& text, int most_width);
    static int line_height(const Style& style) { return style.size * 5 / 4 + 1; }

private:
    FT_FaceRec_* face_of(const Style& style);

    std::unique_ptr<FT_LibraryRec_, int (*)(FT_LibraryRec_*)> library;
    std::unique_ptr<FT_FaceRec_, int (*)(FT_FaceRec_*)> plain, bold;
};

}  // namespace demo
