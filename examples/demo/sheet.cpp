// SPDX-License-Identifier: MIT
#include "sheet.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "text.h"

namespace demo {

namespace {

// Two compared results or four plain ones fill a line.
constexpr int margin = 28, gap = 24, seam = 4;
constexpr int box_width = 208, box_height = 156;
constexpr int crop_pixels = 19, magnified = 4, crop_side = crop_pixels * magnified;
constexpr int compared_width = 2 * (box_width + seam) + crop_side, plain_width = 238;
constexpr int sheet_width = 2 * margin + 2 * compared_width + gap;
static_assert(2 * crop_side + seam == box_height && 4 * plain_width + 3 * gap == 2 * compared_width + gap);

constexpr uint8_t background = 27;
constexpr Style title_style{26, true, {255, 255, 255}}, heading_style{20, true, {255, 214, 120}};
constexpr Style name_style{14, true, {240, 240, 240}}, text_style{13, false, {185, 185, 190}};

enum class Shrink { mean, greatest };

Picture shrunk(const Picture& picture, int most_width, int most_height, Shrink by) {
    const double scale =
        std::min({1.0, static_cast<double>(most_width) / picture.width, static_cast<double>(most_height) / picture.height});
    Picture small(std::max(1, static_cast<int>(std::lround(picture.width * scale))),
                  std::max(1, static_cast<int>(std::lround(picture.height * scale))));
    const auto edge = [](int at, int of, int pixels) { return static_cast<int>(int64_t{at} * pixels / of); };
    for (int y = 0; y < small.height; y++)
        for (int x = 0; x < small.width; x++) {
            const int x0 = edge(x, small.width, picture.width), x1 = std::max(x0 + 1, edge(x + 1, small.width, picture.width));
            const int y0 = edge(y, small.height, picture.height),
                      y1 = std::max(y0 + 1, edge(y + 1, small.height, picture.height));
            int64_t sum[3] = {};
            uint8_t most[3] = {};
            for (int sy = y0; sy < y1; sy++)
                for (int sx = x0; sx < x1; sx++)
                    for (int k = 0; k < 3; k++) {
                        sum[k] += picture.at(sx, sy)[k];
                        most[k] = std::max(most[k], picture.at(sx, sy)[k]);
                    }
            const int64_t count = int64_t{x1 - x0} * (y1 - y0);
            for (int k = 0; k < 3; k++)
                small.at(x, y)[k] = by == Shrink::greatest ? most[k] : static_cast<uint8_t>((sum[k] + count / 2) / count);
        }
    return small;
}

// The square around a place.
Picture magnified_crop(const Picture& picture, int x, int y) {
    const int left = std::clamp(x - crop_pixels / 2, 0, picture.width - crop_pixels);
    const int top = std::clamp(y - crop_pixels / 2, 0, picture.height - crop_pixels);
    Picture crop(crop_side, crop_side);
    for (int j = 0; j < crop_side; j++)
        for (int i = 0; i < crop_side; i++)
            std::copy_n(picture.at(left + i / magnified, top + j / magnified), 3, crop.at(i, j));
    return crop;
}

void place(Picture& sheet, int x, int y, const Picture& picture) {
    for (int row = 0; row < picture.height; row++)
        std::copy_n(picture.at(0, row), static_cast<size_t>(picture.width) * 3, sheet.at(x, y + row));
}

void place_centred(Picture& sheet, int x, int y, int width, int height, const Picture& picture) {
    place(sheet, x + (width - picture.width) / 2, y + (height - picture.height) / 2, picture);
}

// A frame around the place that is magnified beside it.
void mark(Picture& small, const Picture& whole, int x, int y) {
    constexpr int radius = 6;
    if (std::min(small.width, small.height) <= 2 * radius) return;
    const int cx = std::clamp(static_cast<int>(int64_t{x} * small.width / whole.width), radius, small.width - radius - 1);
    const int cy = std::clamp(static_cast<int>(int64_t{y} * small.height / whole.height), radius, small.height - radius - 1);
    for (int r = radius - 1; r <= radius; r++)
        for (int i = -r; i <= r; i++)
            for (const auto& [dx, dy] : {std::pair{i, -r}, {i, r}, {-r, i}, {r, i}})
                std::fill_n(small.at(cx + dx, cy + dy), 3, r == radius ? uint8_t{0} : uint8_t{255});
}

// Sheets are drawn from top to bottom, and grow with what is on them.
struct Pen {
    Text text;
    Picture sheet{sheet_width, 0};
    int y = margin;

    void room_for(int height) {
        if (y + height + margin <= sheet.height) return;
        sheet.height = y + height + margin;
        sheet.rgb.resize(static_cast<size_t>(sheet.width) * static_cast<size_t>(sheet.height) * 3, background);
    }

    void paragraph(int x, int width, const Style& style, const std::string& words) {
        for (const std::string& line : text.wrapped(style, words, width)) {
            room_for(Text::line_height(style));
            text.draw(sheet, x, y, style, line);
            y += Text::line_height(style);
        }
    }

    void header(const Picture& original, const std::string& name) {
        const Picture small = shrunk(original, compared_width, 2 * box_height, Shrink::mean);
        const int top = y, x = margin + compared_width + gap;
        room_for(small.height);
        place(sheet, margin, y, small);
        paragraph(x, compared_width, title_style, "zivcolor");
        y += 4;
        paragraph(x, compared_width, name_style, name);
        y += 8;
        paragraph(
            x, compared_width, text_style,
            "One picture in many layouts. It is brought into a layout by exact arithmetic, converted by the library, and shown "
            "by exact arithmetic again: what differs is the conversion's own doing.");
        y += 8;
        paragraph(x, compared_width, text_style,
                  "Of three pictures side by side the first is the result. The second is its difference from what the source "
                  "showed, " +
                      std::to_string(amplified) +
                      " times amplified: black is equal. The third is the place of the greatest difference, magnified: above "
                      "what went in, below what came out.");
        y += 8;
        paragraph(
            x, compared_width, text_style,
            "PSNR is the peak signal-to-noise ratio over all pixels and channels. Where samples are only moved there is no "
            "difference to show.");
        y = std::max(y, top + small.height);
    }

    void card(const Card& card, int x) {
        const int width = card.compared ? compared_width : plain_width;
        room_for(box_height);
        if (card.compared) {
            place_centred(sheet, x, y, box_width, box_height, card.result);
            place_centred(sheet, x + box_width + seam, y, box_width, box_height, card.amplified_difference);
            place(sheet, x + 2 * (box_width + seam), y, card.before);
            place(sheet, x + 2 * (box_width + seam), y + crop_side + seam, card.after);
        } else {
            place_centred(sheet, x, y, card.result.width, box_height, card.result);
        }
        y += box_height + 6;
        paragraph(x, width, name_style, card.title);
        paragraph(x, width, text_style, card.text);
    }

    void section(const Section& section) {
        y += 34;
        paragraph(margin, sheet_width - 2 * margin, heading_style, section.heading);
        y += 2;
        paragraph(margin, sheet_width - 2 * margin, text_style, section.text);
        y += 12;
        int x = margin, top = y, bottom = y;
        for (const Card& next : section.cards) {
            const int width = next.compared ? compared_width : plain_width;
            if (x + width > sheet_width - margin) {
                x = margin;
                top = bottom + 16;
            }
            y = top;
            card(next, x);
            bottom = std::max(bottom, y);
            x += width + gap;
        }
        y = bottom;
    }
};

std::string decimal(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

}  // namespace

Difference difference_of(const Picture& original, const Picture& result) {
    Difference difference;
    double squares = 0;
    for (size_t i = 0; i < original.rgb.size(); i++) {
        const int d = std::abs(original.rgb[i] - result.rgb[i]);
        squares += d * d;
        if (d <= difference.greatest) continue;
        const auto pixel = static_cast<int64_t>(i / 3);
        difference.greatest = d;
        difference.x = static_cast<int>(pixel % original.width), difference.y = static_cast<int>(pixel / original.width);
    }
    if (squares > 0) difference.psnr = 10 * std::log10(255.0 * 255 * static_cast<double>(original.rgb.size()) / squares);
    return difference;
}

Card plain_card(const std::string& title, const std::string& text, const Picture& result) {
    Card card;
    card.title = title, card.text = text;
    card.result = shrunk(result, plain_width, box_height, Shrink::mean);
    return card;
}

Card compared_card(const std::string& title, const std::string& text, const Picture& original, const Picture& result) {
    const Difference difference = difference_of(original, result);
    Picture amplified_difference(original.width, original.height);
    for (size_t i = 0; i < original.rgb.size(); i++)
        amplified_difference.rgb[i] =
            static_cast<uint8_t>(std::min(255, amplified * std::abs(original.rgb[i] - result.rgb[i])));
    Card card;
    card.title = title;
    card.text = text + (difference.greatest == 0 ? ". Exact in this picture."
                                                 : ". PSNR " + decimal(difference.psnr) + " dB, greatest difference " +
                                                       std::to_string(difference.greatest) + ".");
    card.compared = difference;
    card.result = shrunk(result, box_width, box_height, Shrink::mean);
    if (difference.greatest > 0) mark(card.result, result, difference.x, difference.y);
    card.amplified_difference = shrunk(amplified_difference, box_width, box_height, Shrink::greatest);
    card.before = magnified_crop(original, difference.x, difference.y);
    card.after = magnified_crop(result, difference.x, difference.y);
    return card;
}

Picture contact_sheet(const Picture& original, const std::string& name, const std::vector<Section>& sections) {
    Pen pen;
    pen.header(original, name);
    for (const Section& section : sections) pen.section(section);
    return std::move(pen.sheet);
}

}  // namespace demo
