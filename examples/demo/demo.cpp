// SPDX-License-Identifier: MIT
// Shows the library at work: takes a picture through every pair of layouts that the dispatcher has and back, prints a table,
// and writes one labelled contact sheet.
//   zivcolor_demo [PICTURE.png|.jpg] [-o SHEET.png]   without a picture it renders a scene of its own
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <stdexcept>

#include "frame.h"
#include "picture.h"
#include "sheet.h"

namespace demo {

namespace {

constexpr int box_width = 192, box_height = 144, columns = 9;

double best_milliseconds(const std::function<void()>& work) {
    using Clock = std::chrono::steady_clock;
    double best = 1e9;
    for (int i = 0; i < 5; i++) {
        const auto start = Clock::now();
        work();
        best = std::min(best, std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    return best;
}

int peak_difference(const Picture& a, const Picture& b) {
    int peak = 0;
    for (size_t i = 0; i < a.rgb.size(); i++) peak = std::max(peak, std::abs(a.rgb[i] - b.rgb[i]));
    return peak;
}

// Rows of 32 and 8 pixels keep every kernel on whole blocks, but for those that always leave a few columns to their tails.
Picture cropped(const Picture& picture) {
    Picture whole(picture.width / 32 * 32, picture.height / 8 * 8);
    for (int y = 0; y < whole.height; y++) std::copy_n(picture.at(0, y), static_cast<size_t>(whole.width) * 3, whole.at(0, y));
    return whole;
}

struct Demo {
    Picture original;
    std::vector<Tile> tiles;

    double megapixels() const { return original.width * 1e-6 * original.height; }

    void row(const std::string& label, int status, double milliseconds, const std::string& peak, const Picture& result) {
        std::printf("%-22s %5dx%-5d %6d %9.3f %10.0f %6s\n", label.c_str(), original.width, original.height, status,
                    milliseconds, megapixels() / milliseconds * 1e3, peak.c_str());
        tiles.push_back({label, shrunk(result, box_width, box_height)});
    }
    // A result that should look like the original, and one that should not.
    void report(const std::string& pair, int status, double milliseconds, const Picture& result) {
        row(pair, status, milliseconds, std::to_string(peak_difference(original, result)), result);
    }
    void show(const std::string& label, int status, double milliseconds, const Picture& result) {
        row(label, status, milliseconds, "-", result);
    }

    void convert_every_pair() {
        std::printf("%-22s %11s %6s %9s %10s %6s\n", "pair", "size", "status", "ms", "Mpixel/s", "peak");
        for (const zivcolor::Layout& from : zivcolor::layouts) {
            Frame source;
            for (const zivcolor::Layout& to : zivcolor::layouts) {
                if (!converts(from.format, to.format)) continue;
                if (source.memory.empty()) source = in_layout(original, from.format);
                Frame destination(to.format, original.width, original.height);
                // This pair's kernel places its chroma rows two pitches apart.
                __tag_KOBR_OFFSCREEN target = destination.image;
                if (from.format == zivPixFmt_I422H && to.format == zivPixFmt_NV12) target.pitch[1] /= 2;
                int status = 0;
                const double time = best_milliseconds([&] { status = zivColorCvt(&source.image, &target, {255}); });
                report(std::string(from.name) + " > " + to.name, status, time, shown(destination));
            }
        }
    }

    // Hue, saturation and lightness side by side: a third of the picture each.
    void show_hsl(const std::string& label, int status, double milliseconds, const std::vector<uint8_t>& hsl) {
        Picture panels(original.width, original.height);
        for (int y = 0; y < original.height; y++)
            for (int x = 0; x < original.width; x++) {
                const int plane = x * 3 / original.width, from = x * 3 % original.width;
                const size_t pixel = static_cast<size_t>(y) * static_cast<size_t>(original.width) + static_cast<size_t>(from);
                std::fill_n(panels.at(x, y), 3, hsl[3 * pixel + static_cast<size_t>(plane)]);
            }
        show(label, status, milliseconds, panels);
    }

    void convert_to_hsl() {
        const auto w = static_cast<uint32_t>(original.width), h = static_cast<uint32_t>(original.height);
        std::vector<uint8_t> hsl(original.rgb.size());
        int status = 0;
        const Frame bgr = in_layout(original, zivPixFmt_BGR888);
        double time =
            best_milliseconds([&] { status = zivColorBGR888toHSL888u8(bgr.image.plane[0], hsl.data(), h, w, 3 * w, 3 * w); });
        show_hsl("BGR888 > HSL", status, time, hsl);
        // The HSL kernels read red from the top bits of a word that they call BGR565: what RGB565 frames hold.
        const Frame rgb565 = in_layout(original, zivPixFmt_RGB565);
        time = best_milliseconds(
            [&] { status = zivColorBGR565toHSL888u8(rgb565.image.plane[0], hsl.data(), h, w, 2 * w, 3 * w); });
        show_hsl("BGR565 > HSL", status, time, hsl);
        const Frame bgr565 = in_layout(original, zivPixFmt_BGR565);
        time = best_milliseconds(
            [&] { status = zivColorRGB565toHSL888u8(bgr565.image.plane[0], hsl.data(), h, w, 2 * w, 3 * w); });
        show_hsl("RGB565 > HSL", status, time, hsl);
        const Frame i420 = in_layout(original, zivPixFmt_I420);
        const __tag_KOBR_OFFSCREEN& planes = i420.image;
        time = best_milliseconds([&] {
            status =
                zivColorI420toHSL888u8(planes.plane[0], planes.plane[1], planes.plane[2], w, h, hsl.data(), w, w / 2, 3 * w);
        });
        show_hsl("I420 > HSL", status, time, hsl);
    }

    void turn_and_mirror() {
        const Frame nv21 = in_layout(original, zivPixFmt_NV21);
        struct Turn {
            const char* label;
            int32_t mode;
        };
        for (const Turn turn : {Turn{"turn 90", 1}, {"turn 180", 2}, {"turn 270", 3}}) {
            const bool quarter = turn.mode != 2;
            Frame turned(zivPixFmt_NV21, quarter ? original.height : original.width,
                         quarter ? original.width : original.height);
            const double time = best_milliseconds([&] { zivRotate(&nv21.image, &turned.image, turn.mode); });
            show(turn.label, 0, time, shown(turned));
        }
        Frame mirrored(zivPixFmt_NV21, original.width, original.height);
        int status = 0;
        double time = best_milliseconds([&] { status = zivflip_horizontal_nv21(&nv21.image, &mirrored.image); });
        show("mirror left right", status, time, shown(mirrored));
        time = best_milliseconds([&] { status = zivflip_vertical_nv21(&nv21.image, &mirrored.image); });
        show("mirror top bottom", status, time, shown(mirrored));
    }

    // A mask that grows from left to right brightens the luma and lifts the chroma towards the right edge.
    void whiten() {
        std::vector<uint8_t> mask(static_cast<size_t>(original.width) * 2);
        for (size_t i = 0; i < mask.size(); i++)
            mask[i] = static_cast<uint8_t>(i % static_cast<size_t>(original.width) * 255 / static_cast<size_t>(original.width));
        std::vector<int32_t> brighter(256);
        for (int32_t y = 0; y < 256; y++) brighter[static_cast<size_t>(y)] = std::min(255, y + (255 - y) / 3);
        const auto whitened = [&](auto kernel, const char* label) {
            Frame frame = in_layout(original, zivPixFmt_NV21);
            _TAG_OFFSCREEN image{};
            image.width = original.width;
            image.height = original.height;
            image.pitch[0] = image.pitch[1] = original.width;
            image.plane[0] = frame.image.plane[0];
            const auto start = std::chrono::steady_clock::now();
            kernel(&image, mask.data(), original.width, brighter.data(), 100, nullptr);
            const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
            show(label, 0, time.count(), shown(frame));
        };
        whitened(_SkinWhitenByMask_YUV420_VUVU, "whiten, scalar");
        whitened(_SkinWhitenByMask_YUV420_VUVU_neon, "whiten, blocks");
    }

    // The same conversions on all cores.
    void convert_on_all_cores() {
        const std::unique_ptr<void, void (*)(void*)> context(
            zivColorCvtInit_MultiThreads(nullptr), [](void* handle) { zivColorCvtUnInit_MultiThreads(nullptr, handle); });
        if (!context) throw std::runtime_error("no threads could be started");
        std::printf("\n%-22s %9s %9s %9s\n", "on all cores", "one, ms", "all, ms", "speed-up");
        double log_sum = 0;
        int pairs = 0;
        for (const zivcolor::Layout& from : zivcolor::layouts)
            for (const zivcolor::Layout& to : zivcolor::layouts) {
                __tag_KOBR_OFFSCREEN s{}, d{};
                s.format = from.format;
                d.format = to.format;
                if (zivColorCvtFunc(&s, &d) < 0) continue;
                const Frame source = in_layout(original, from.format);
                // Twice the height: from I422H to NV12 the chroma rows stand two pitches apart.
                Frame destination(to.format, original.width, 2 * original.height);
                destination.image.height = original.height;
                const zivColorExtParam_ALPHA_t opaque{255};
                const double one = best_milliseconds([&] { zivColorCvt(&source.image, &destination.image, opaque); });
                const double all = best_milliseconds(
                    [&] { zivColorCvtProcess_MultiThreads(context.get(), &source.image, &destination.image, &opaque); });
                std::printf("%-22s %9.3f %9.3f %9.2f\n", (std::string(from.name) + " > " + to.name).c_str(), one, all,
                            one / all);
                log_sum += std::log(one / all);
                pairs++;
            }
        std::printf("%d pairs, %.2f times as fast in the geometric mean\n", pairs, std::exp(log_sum / pairs));
    }
};

int run(const std::string& path, const std::string& sheet) {
    Demo demo;
    demo.original = cropped(path.empty() ? render_scene(1280, 960) : read_picture(path));
    demo.tiles.push_back({"original", shrunk(demo.original, box_width, box_height)});
    demo.convert_every_pair();
    demo.convert_to_hsl();
    demo.turn_and_mirror();
    demo.whiten();
    write_png(sheet, contact_sheet(demo.tiles, columns, box_width, box_height));
    demo.convert_on_all_cores();
    std::printf("\ncontact sheet: %s\n", sheet.c_str());
    return 0;
}

}  // namespace

}  // namespace demo

int main(int argc, char** argv) {
    std::string path, sheet = "zivcolor-demo.png";
    for (int i = 1; i < argc; i++) {
        if (std::strcmp(argv[i], "-o") == 0 && i + 1 < argc) {
            sheet = argv[++i];
        } else if (path.empty() && argv[i][0] != '-') {
            path = argv[i];
        } else {
            std::fprintf(stderr, "usage: zivcolor_demo [PICTURE.png|.jpg] [-o SHEET.png]\n");
            return 2;
        }
    }
    try {
        return demo::run(path, sheet);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zivcolor_demo: %s\n", error.what());
        return 2;
    }
}
