// SPDX-License-Identifier: MIT
// Shows the library at work: takes a picture through every pair of layouts that the dispatcher has, on one thread and on all
// cores, prints a table, and writes a contact sheet of what is worth seeing.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>

#include "frame.h"
#include "picture.h"
#include "sheet.h"

namespace demo {

namespace {

constexpr char usage[] =
    "usage: zivcolor_demo [-o SHEET.png] [PICTURE.png|.jpg]\n"
    "\n"
    "Takes a picture through every conversion and says how long each takes on one thread and on all\n"
    "cores, and how far its result is from exact arithmetic; writes a contact sheet. Without a picture\n"
    "it renders a scene of its own.\n"
    "\n"
    "  -o SHEET.png   where the sheet goes; zivcolor-demo.png in the current folder if not told\n"
    "  -h, --help     this text\n";

struct Options {
    std::string picture, sheet = "zivcolor-demo.png";
    bool help = false;
};

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

Options options_of(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; i++) {
        const std::string argument = argv[i];
        if (argument == "-h" || argument == "--help") {
            options.help = true;
        } else if (argument == "-o") {
            if (++i == argc) throw UsageError("-o wants the name of a file");
            options.sheet = argv[i];
        } else if (argument.empty() || argument[0] == '-') {
            throw UsageError("there is no option '" + argument + "'");
        } else if (!options.picture.empty()) {
            throw UsageError("one picture at a time: '" + options.picture + "' or '" + argument + "'");
        } else {
            options.picture = argument;
        }
    }
    return options;
}

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

std::string name_of(const zivcolor_pair& pair) {
    return std::string(zivcolor_format_name(pair.source)) + " to " + zivcolor_format_name(pair.destination);
}

void expect_done(int32_t status) {
    if (status != zivStatus_OK) throw std::logic_error(zivcolor_status_text(status));
}

// What is seen of a pair on the sheet.
struct Choice {
    uint32_t source, destination;
    const char* text;
};
struct Family {
    const char *heading, *text;
    std::vector<Choice> choices;
};
const Family families[] = {
    {"YUV to RGB",
     "Every function has its own set of coefficients and way of rounding, and gives the same bytes on every CPU. The closest "
     "colours are those of the fine set.",
     {{zivPixFmt_NV12, zivPixFmt_BGR888, "Fine set: the whole sum is rounded once"},
      {zivPixFmt_NV21, zivPixFmt_RGBA8888, "Rounded set: small coefficients, the whole sum is rounded once"},
      {zivPixFmt_I420, zivPixFmt_RGB888, "Coarse set: small coefficients, every product is floored"},
      {zivPixFmt_NV21, zivPixFmt_RGB888, "Coarse set with half of U's weight in green"},
      {zivPixFmt_NV21, zivPixFmt_BGRA8888, "Single precision, truncated"}}},
    {"RGB to YUV",
     "Where several pixels share chroma it is that of one of them, never a mean: edges between colours show it. A layout with "
     "chroma for every pixel shows what the arithmetic alone does.",
     {{zivPixFmt_RGB888, zivPixFmt_YV24, "Short set, chroma for every pixel"},
      {zivPixFmt_BGR888, zivPixFmt_NV12, "Fine set, chroma for 2 by 2 pixels"},
      {zivPixFmt_BGRA8888, zivPixFmt_NV12, "Short set; every second 8 columns take their blue from the 8 before"},
      {zivPixFmt_BGRA8888, zivPixFmt_LPI422H, "Chroma by eighths, for 2 by 1 pixels"}}},
    {"One layout to another",
     "Samples change places within YUV and within RGB. What a layout has no room for is lost: chroma, or the low bits of a "
     "channel.",
     {{zivPixFmt_I444, zivPixFmt_NV12, "Chroma for 2 by 2 pixels in place of each"},
      {zivPixFmt_NV21, zivPixFmt_NV41, "Chroma for 4 by 4 pixels, rounded means"},
      {zivPixFmt_RGB888, zivPixFmt_RGB565, "5, 6 and 5 bits, without dither"},
      {zivPixFmt_I420, zivPixFmt_YUYV, ""},
      {zivPixFmt_BGR888, zivPixFmt_ARGB8888, ""}}},
};
const Family& family_of(const zivcolor_pair& pair) {
    return families[is_rgb(pair.source) == is_rgb(pair.destination) ? 2 : is_rgb(pair.source) ? 1 : 0];
}

struct Demo {
    Picture original;
    std::unique_ptr<void, void (*)(void*)> context{zivColorCvtInit_MultiThreads(nullptr),
                                                   [](void* handle) { zivColorCvtUnInit_MultiThreads(nullptr, handle); }};
    std::vector<Section> sections;
    double log_sum = 0;
    int on_all_cores = 0;

    // This one writes all rows to row 1, one over the other.
    static bool is_one_row(const zivcolor_pair& pair) { return pair.odd_height == zivOdd_RowOne; }

    void convert(const zivcolor_pair& pair, const Choice* choice, Section& section) {
        FramePair frames(pair, original.width, original.height);
        fill(frames.source, original);
        const zivcolor_image &source = frames.source.image, &destination = frames.destination.image;
        const zivColorExtParam_ALPHA_t opaque{255};
        const double one = best_milliseconds([&] { expect_done(zivColorCvt(&source, &destination, opaque)); });
        const Picture before = shown(frames.source), after = shown(frames.destination);
        const Difference difference = difference_of(before, after);

        std::printf("%-22s", name_of(pair).c_str());
        if (is_one_row(pair)) std::printf(" %9s %9s", "-", "-");
        else std::printf(" %9.3f %9.0f", one, original.width * 1e-3 * original.height / one);
        if (pair.band_task >= 0) {
            const double all =
                best_milliseconds([&] { zivColorCvtProcess_MultiThreads(context.get(), &source, &destination, &opaque); });
            std::printf(" %9.3f %6.2f", all, one / all);
            log_sum += std::log(one / all);
            on_all_cores++;
        } else {
            std::printf(" %9s %6s", "-", "-");
        }
        const bool moved = difference.greatest == 0 && is_rgb(pair.source) == is_rgb(pair.destination);
        if (is_one_row(pair)) std::printf("  %6s %8s  all rows to row 1: see the sheet\n", "-", "-");
        else if (moved) std::printf("  %6s %8s  samples are moved\n", "-", "-");
        else if (difference.greatest == 0) std::printf("  %6s %8s  exact\n", "-", "0");
        else std::printf("  %6.1f %8d\n", difference.psnr, difference.greatest);
        std::fflush(stdout);

        if (!choice) return;
        if (!moved) section.cards.push_back(compared_card(name_of(pair), choice->text, before, after));
        else if (pair.destination == zivPixFmt_ARGB8888)
            section.cards.push_back(
                plain_card(name_of(pair), "Samples are moved; the alpha is 255.", before_checkerboard(frames.destination)));
        else section.cards.push_back(plain_card(name_of(pair), "Samples are moved.", after));
    }

    void show_alpha(Section& section) {
        const zivcolor_pair& pair = *zivcolor_pair_of(zivPixFmt_NV21, zivPixFmt_RGBA8888);
        FramePair frames(pair, original.width, original.height);
        fill(frames.source, original);
        expect_done(zivColorCvt(&frames.source.image, &frames.destination.image, {128}));
        section.cards.push_back(plain_card(name_of(pair),
                                           "The alpha that is asked for, here 128, goes to every pixel: before a checkerboard.",
                                           before_checkerboard(frames.destination)));
    }

    // The one row that is written, as high as the picture.
    void show_one_row(Section& section) {
        const zivcolor_pair& pair = *zivcolor_pair_of(zivPixFmt_YV12, zivPixFmt_RGB888);
        FramePair frames(pair, original.width, original.height);
        fill(frames.source, original);
        expect_done(zivColorCvt(&frames.source.image, &frames.destination.image, {255}));
        const Picture result = shown(frames.destination);
        Picture stretched(result.width, result.height);
        for (int y = 0; y < result.height; y++)
            std::copy_n(result.at(0, 1), static_cast<size_t>(result.width) * 3, stretched.at(0, y));
        section.cards.push_back(
            plain_card(name_of(pair),
                       "This function writes all rows to row 1, one over the other: the last one remains, shown "
                       "here as high as the picture. For a picture take I420 to RGB888 with U and V exchanged.",
                       stretched));
    }

    void convert_every_pair() {
        std::printf("%-22s %9s %9s %9s %6s  %6s %8s\n", "pair", "ms", "Mpixel/s", "all cores", "times", "PSNR", "greatest");
        for (const Family& family : families) {
            Section section{family.heading, family.text, {}};
            std::vector<Section> seen(family.choices.size());
            const zivcolor_pair* pair = nullptr;
            for (int i = 0; (pair = zivcolor_pair_at(i)) != nullptr; i++) {
                if (&family_of(*pair) != &family) continue;
                const auto choice = std::find_if(family.choices.begin(), family.choices.end(), [pair](const Choice& c) {
                    return c.source == pair->source && c.destination == pair->destination;
                });
                const bool chosen = choice != family.choices.end();
                convert(*pair, chosen ? &*choice : nullptr,
                        chosen ? seen[static_cast<size_t>(choice - family.choices.begin())] : section);
            }
            for (Section& one : seen) section.cards.insert(section.cards.end(), one.cards.begin(), one.cards.end());
            if (&family == &families[0]) show_alpha(section), show_one_row(section);
            sections.push_back(std::move(section));
        }
        std::printf("%d pairs have all cores: %.2f times as fast in the geometric mean\n", on_all_cores,
                    std::exp(log_sum / on_all_cores));
    }

    void turn_and_mirror() {
        Section section{"Turns and mirrors", "Of NV21 and NV12 frames: both planes, chroma in whole pairs.", {}};
        Frame nv21(zivPixFmt_NV21, original.width, original.height);
        fill(nv21, original);
        for (const auto& [title, mode] : {std::pair{"A quarter turn", 1}, {"Three quarter turns", 3}}) {
            Frame turned(zivPixFmt_NV21, original.height, original.width);
            zivRotate(&nv21.image, &turned.image, mode);
            section.cards.push_back(plain_card(title, "zivRotate, mode " + std::to_string(mode) + ".", shown(turned)));
        }
        Frame mirrored(zivPixFmt_NV21, original.width, original.height);
        expect_done(zivflip_horizontal_nv21(&nv21.image, &mirrored.image));
        section.cards.push_back(plain_card("Left and right exchanged", "zivflip_horizontal_nv21.", shown(mirrored)));
        expect_done(zivflip_vertical_nv21(&nv21.image, &mirrored.image));
        section.cards.push_back(plain_card("Top and bottom exchanged", "zivflip_vertical_nv21.", shown(mirrored)));
        sections.push_back(std::move(section));
    }

    void show_hsl(Section& section) {
        const auto w = static_cast<uint32_t>(original.width), h = static_cast<uint32_t>(original.height);
        Frame bgr(zivPixFmt_BGR888, original.width, original.height);
        fill(bgr, original);
        std::vector<uint8_t> hsl(original.rgb.size());
        expect_done(zivColorBGR888toHSL888u8(bgr.image.plane[0], hsl.data(), h, w, 3 * w, 3 * w));
        const char* titles[] = {"Hue", "Saturation", "Lightness"};
        for (size_t k = 0; k < 3; k++) {
            Picture grey(original.width, original.height);
            for (size_t i = 0; i < hsl.size(); i++) grey.rgb[i] = hsl[i / 3 * 3 + k];
            section.cards.push_back(plain_card(titles[k], std::string("Byte ") + std::to_string(k) + " of HSL888.", grey));
        }
    }

    // A mask that grows from left to right brightens the luma and lifts the chroma towards the right edge.
    void whiten(Section& section) {
        std::vector<uint8_t> mask(static_cast<size_t>(original.width) * 2);
        for (size_t i = 0; i < mask.size(); i++)
            mask[i] = static_cast<uint8_t>(i % static_cast<size_t>(original.width) * 255 / static_cast<size_t>(original.width));
        int32_t brighter[256];
        for (int32_t y = 0; y < 256; y++) brighter[y] = std::min(255, y + (255 - y) / 3);
        Frame frame(zivPixFmt_NV21, original.width, original.height);
        fill(frame, original);
        _TAG_OFFSCREEN image{};
        image.width = original.width;
        image.height = original.height;
        image.pitch[0] = image.pitch[1] = original.width;
        image.plane[0] = frame.image.plane[0];
        _SkinWhitenByMask_YUV420_VUVU_neon(&image, mask.data(), original.width, brighter, 100, nullptr);
        section.cards.push_back(plain_card("Skin whitened", "By a mask that grows from left to right.", shown(frame)));
    }

    void show_the_others() {
        Section section{"HSL and enhancement",
                        "Hue, saturation and lightness are bytes of one pixel; here each is a picture of its own.",
                        {}};
        show_hsl(section);
        whiten(section);
        sections.push_back(std::move(section));
    }
};

// Rows of 32 and 8 pixels keep every kernel on whole blocks, but for those that always leave a few columns to their tails.
Picture truncated(const Picture& picture, const std::string& name) {
    Picture whole(picture.width / 32 * 32, picture.height / 8 * 8);
    if (whole.width == picture.width && whole.height == picture.height) return picture;
    for (int y = 0; y < whole.height; y++) std::copy_n(picture.at(0, y), static_cast<size_t>(whole.width) * 3, whole.at(0, y));
    std::printf("%s: of %dx%d pixels %dx%d are taken, multiples of 32 columns and 8 rows\n", name.c_str(), picture.width,
                picture.height, whole.width, whole.height);
    return whole;
}

int run(const Options& options) {
    expect_writable(options.sheet);
    std::error_code unknown;
    if (!options.picture.empty() && std::filesystem::equivalent(options.picture, options.sheet, unknown))
        throw std::runtime_error(options.sheet + ": is the picture itself");
    const std::string name = options.picture.empty() ? "a scene of the demo's own" : options.picture;
    Demo demo;
    demo.original = truncated(options.picture.empty() ? render_scene(1280, 960) : read_picture(options.picture), name);
    if (!demo.context) throw std::runtime_error("no threads could be started");
    const std::string size = std::to_string(demo.original.width) + "x" + std::to_string(demo.original.height);
    std::printf("%s, %s, zivcolor %d.%d.%d\n\n", name.c_str(), size.c_str(), ZIVCOLOR_VERSION_MAJOR, ZIVCOLOR_VERSION_MINOR,
                ZIVCOLOR_VERSION_PATCH);
    demo.convert_every_pair();
    demo.turn_and_mirror();
    demo.show_the_others();
    const std::string file =
        options.picture.empty() ? "A scene of the demo's own" : std::filesystem::path(name).filename().string();
    write_png(options.sheet, contact_sheet(demo.original, file + ", " + size, demo.sections));
    std::printf("\ncontact sheet: %s\n", options.sheet.c_str());
    return 0;
}

}  // namespace

}  // namespace demo

int main(int argc, char** argv) {
    try {
        const demo::Options options = demo::options_of(argc, argv);
        if (options.help) {
            std::printf("%s", demo::usage);
            return 0;
        }
        return demo::run(options);
    } catch (const demo::UsageError& error) {
        std::fprintf(stderr, "zivcolor_demo: %s\n\n%s", error.what(), demo::usage);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zivcolor_demo: %s\n", error.what());
        return 2;
    }
}
