// SPDX-License-Identifier: MIT
// The contact sheet: results under headings, each beside its difference from what went in.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "picture.h"

namespace demo {

constexpr int amplified = 16;

struct Difference {
    int greatest = 0, x = 0, y = 0;  // of any channel, and the first pixel that has it
    double psnr = 0;                 // decibels
};
Difference difference_of(const Picture& original, const Picture& result);

// What is on the sheet for one result.
struct Card {
    std::string title, text;
    Picture result;                      // small
    std::optional<Difference> compared;  // then there is also:
    Picture amplified_difference;        // small
    Picture before, after;               // the place of the greatest difference, magnified
};
Card plain_card(const std::string& title, const std::string& text, const Picture& result);
Card compared_card(const std::string& title, const std::string& text, const Picture& original, const Picture& result);

struct Section {
    std::string heading, text;
    std::vector<Card> cards;
};

Picture contact_sheet(const Picture& original, const std::string& name, const std::vector<Section>& sections);

}  // namespace demo
