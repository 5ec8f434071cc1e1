// SPDX-License-Identifier: MIT
#include "sheet.h"

#include <algorithm>

namespace demo {

Picture shrunk(const Picture& picture, int box_width, int box_height) {
    const double scale =
        std::min({1.0, static_cast<double>(box_width) / picture.width, static_cast<double>(box_height) / picture.height});
    Picture small(std::max(1, static_cast<int>(picture.width * scale)), std::max(1, static_cast<int>(picture.height * scale)));
    for (int y = 0; y < small.height; y++)
        for (int x = 0; x < small.width; x++) {
            const int x0 = x * picture.width / small.width, x1 = std::max(x0 + 1, (x + 1) * picture.width / small.width);
            const int y0 = y * picture.height / small.height, y1 = std::max(y0 + 1, (y + 1) * picture.height / small.height);
            int64_t sum[3] = {}, count = 0;
            for (int sy = y0; sy < y1; sy++)
                for (int sx = x0; sx < x1; sx++, count++)
                    for (int k = 0; k < 3; k++) sum[k] += picture.at(sx, sy)[k];
            for (int k = 0; k < 3; k++) small.at(x, y)[k] = static_cast<uint8_t>((sum[k] + count / 2) / count);
        }
    return small;
}

Picture contact_sheet(const std::vector<Tile>& tiles, int columns, int box_width, int box_height) {
    constexpr int gap = 8, label_height = 12;
    const int rows = (static_cast<int>(tiles.size()) + columns - 1) / columns;
    Picture sheet(gap + columns * (box_width + gap), gap + rows * (box_height + label_height + gap));
    std::fill(sheet.rgb.begin(), sheet.rgb.end(), uint8_t{24});
    for (size_t i = 0; i < tiles.size(); i++) {
        const int x = gap + static_cast<int>(i) % columns * (box_width + gap);
        const int y = gap + static_cast<int>(i) / columns * (box_height + label_height + gap);
        const Picture& tile = tiles[i].thumbnail;
        for (int row = 0; row < tile.height; row++)
            std::copy_n(tile.at(0, row), static_cast<size_t>(tile.width) * 3,
                        sheet.at(x + (box_width - tile.width) / 2, y + row));
        draw_text(sheet, x, y + box_height + 3, tiles[i].label);
    }
    return sheet;
}

}  // namespace demo
