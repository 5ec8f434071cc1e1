// SPDX-License-Identifier: MIT
// One pixel's hue, saturation and lightness, for the tests that go through every colour.
#pragma once

namespace reference {

struct Hsl {
    int hue, saturation, lightness;
};

Hsl hsl_of(int b, int g, int r);

}  // namespace reference
