// SPDX-License-Identifier: MIT
// A contact sheet: labelled thumbnails in rows.
#pragma once

#include <string>
#include <vector>

#include "picture.h"

namespace demo {

struct Tile {
    std::string label;  // up to about 30 characters, drawn in a small fixed font
    Picture thumbnail;
};

// Averages a picture down to a thumbnail that fits the box.
Picture shrunk(const Picture& picture, int box_width, int box_height);

Picture contact_sheet(const std::vector<Tile>& tiles, int columns, int box_width, int box_height);

// Draws text with its top left corner at x, y; letters are 5 by 7 in cells of 6 by 8.
void draw_text(Picture& picture, int x, int y, const std::string& text);

}  // namespace demo
