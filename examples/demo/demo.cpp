// Shows the library at work: takes a picture through every pair of layouts that the dispatcher has and back, prints a table,
// and writes one labelled contact sheet.
//   zivcolor_demo [PICTURE.png|.jpg] [-o SHEET.png]   without a picture it renders a scene of its own
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
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

    void report(const std::string& pair, int status, double milliseconds, const Picture& result) {
        std::printf("%-22s %5dx%-5d %6d %9.3f %10.0f %6d\n", pair.c_str(), original.width, original.height, status,
                    milliseconds, megapixels() / milliseconds * 1e3, peak_difference(original, result));
        tiles.push_back({pair, shrunk(result, box_width, box_height)});
    }

    void convert_every_pair() {
        std::printf("%-22s %11s %6s %9s %10s %6s\n", "pair", "size", "status", "ms", "Mpixel/s", "peak");
        for (const Layout& from : layouts()) {
            Frame source;
            for (const Layout& to : layouts()) {
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
};

int run(const std::string& path, const std::string& sheet) {
    Demo demo;
    demo.original = cropped(path.empty() ? render_scene(1280, 960) : read_picture(path));
    demo.tiles.push_back({"original", shrunk(demo.original, box_width, box_height)});
    demo.convert_every_pair();
    write_png(sheet, contact_sheet(demo.tiles, columns, box_width, box_height));
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
