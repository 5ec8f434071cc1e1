// SPDX-License-Identifier: MIT
#include "text.h"

#include <ft2build.h>

#include <sstream>
#include <stdexcept>

#include FT_FREETYPE_H

namespace demo {

namespace {

FT_Library open_library() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) throw std::runtime_error("FreeType does not start");
    return library;
}

FT_Face open_face(FT_Library library, const char* path) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, path, 0, &face) != 0) throw std::runtime_error(std::string(path) + ": no such font");
    return face;
}

}  // namespace

Text::Text()
    : library(open_library(), FT_Done_FreeType),
      plain(open_face(library.get(), DEMO_FONTS "/DejaVuSans.ttf"), FT_Done_Face),
      bold(open_face(library.get(), DEMO_FONTS "/DejaVuSans-Bold.ttf"), FT_Done_Face) {}

FT_FaceRec_* Text::face_of(const Style& style) {
    FT_Face face = style.bold ? bold.get() : plain.get();
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(style.size));
    return face;
}

int Text::draw(Picture& picture, int x, int y, const Style& style, const std::string& line) {
    FT_Face face = face_of(style);
    const int baseline = y + style.size;
    for (const char letter : line) {
        if (FT_Load_Char(face, static_cast<unsigned char>(letter), FT_LOAD_RENDER) != 0) continue;
        const FT_GlyphSlot glyph = face->glyph;
        const FT_Bitmap& bitmap = glyph->bitmap;
        for (int row = 0; row < static_cast<int>(bitmap.rows); row++)
            for (int column = 0; column < static_cast<int>(bitmap.width); column++) {
                const int px = x + glyph->bitmap_left + column, py = baseline - glyph->bitmap_top + row;
                if (px < 0 || py < 0 || px >= picture.width || py >= picture.height) continue;
                const int cover = bitmap.buffer[row * bitmap.pitch + column];
                uint8_t* pixel = picture.at(px, py);
                for (int k = 0; k < 3; k++)
                    pixel[k] = static_cast<uint8_t>((style.rgb[k] * cover + pixel[k] * (255 - cover) + 127) / 255);
            }
        x += static_cast<int>(glyph->advance.x >> 6);
    }
    return x;
}

int Text::width(const Style& style, const std::string& line) {
    FT_Face face = face_of(style);
    int width = 0;
    for (const char letter : line)
        if (FT_Load_Char(face, static_cast<unsigned char>(letter), FT_LOAD_DEFAULT) == 0)
            width += static_cast<int>(face->glyph->advance.x >> 6);
    return width;
}

std::vector<std::string> Text::wrapped(const Style& style, const std::string& text, int most_width) {
    std::vector<std::string> lines;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::string longer = lines.empty() ? word : lines.back() + " " + word;
        if (!lines.empty() && width(style, longer) <= most_width) lines.back() = longer;
        else lines.push_back(word);
    }
    return lines;
}

}  // namespace demo
