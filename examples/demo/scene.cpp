// SPDX-License-Identifier: MIT
// A picture that is hard on colour conversion: smooth gradients, skin tones, saturated bars, fine detail.
#include <algorithm>
#include <cmath>

#include "picture.h"

namespace demo {

namespace {

struct Colour {
    double r, g, b;
};
Colour mix(Colour a, Colour b, double t) { return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t}; }
uint8_t byte(double v) { return static_cast<uint8_t>(std::clamp(std::lround(v), 0L, 255L)); }

// A lit ball, or nothing beside it.
bool ball(double x, double y, double cx, double cy, double radius, Colour skin, Colour* out) {
    const double dx = (x - cx) / radius, dy = (y - cy) / radius, d = dx * dx + dy * dy;
    if (d > 1) return false;
    const double z = std::sqrt(1 - d), light = std::max(0.0, -0.5 * dx - 0.6 * dy + 0.62 * z);
    const Colour shade{skin.r * 0.35, skin.g * 0.28, skin.b * 0.27};
    *out = mix(mix(shade, skin, std::min(1.0, light * 1.15)), {255, 250, 245}, std::pow(light, 24) * 0.7);
    return true;
}

Colour at(double x, double y, double aspect) {
    static constexpr Colour bars[] = {{255, 0, 0},   {255, 128, 0}, {255, 255, 0}, {0, 255, 0},
                                      {0, 255, 255}, {0, 0, 255},   {160, 0, 255}, {255, 0, 255}};
    if (y > 0.88) return bars[std::min(7, static_cast<int>(x * 8))];
    if (y > 0.80) {
        const double grey = 255 * x;
        return {grey, grey, grey};
    }
    Colour c = mix({40, 90, 200}, {255, 205, 150}, std::pow(y / 0.8, 1.3));
    c = mix(c, {255, 120, 160}, 0.35 * std::exp(-30 * (x - 0.75) * (x - 0.75) - 18 * (y - 0.55) * (y - 0.55)));
    const double hills = 0.62 + 0.05 * std::sin(9 * x) + 0.03 * std::sin(23 * x + 1);
    if (y > hills) c = mix({40, 120, 60}, {150, 190, 70}, (y - hills) / (0.8 - hills));
    static constexpr Colour skins[] = {{255, 219, 190}, {224, 172, 135}, {172, 116, 78}, {92, 58, 42}};
    for (int k = 0; k < 4; k++)
        if (ball(x * aspect, y, aspect * (0.14 + 0.15 * k), 0.42, 0.085 * std::min(1.0, aspect), skins[k], &c)) return c;
    // Fine detail: rings that grow finer outwards, to the last pixel.
    const double rx = (x - 0.83) * aspect, ry = y - 0.28, r2 = rx * rx + ry * ry;
    if (r2 < 0.19 * 0.19) {
        const double wave = 127.5 + 127.5 * std::cos(2600 * r2);
        return mix({wave, wave, wave}, {255 - wave, wave, 128}, 0.35);
    }
    return c;
}

}  // namespace

Picture render_scene(int width, int height) {
    Picture picture(width, height);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            const Colour c = at((x + 0.5) / width, (y + 0.5) / height, static_cast<double>(width) / height);
            uint8_t* pixel = picture.at(x, y);
            pixel[0] = byte(c.r), pixel[1] = byte(c.g), pixel[2] = byte(c.b);
        }
    return picture;
}

}  // namespace demo
