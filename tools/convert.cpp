// SPDX-License-Identifier: MIT
// Raw frames of one layout to another.
#include <stdio.h>
#include <unistd.h>

#include <chrono>
#include <limits>
#include <new>

#include "commands.h"
#include "frames.h"
#include "names.h"
#include "options.h"

namespace tool {

namespace {

struct Size {
    int width = 0, height = 0;
};

Size size_named(const std::string& text) {
    const size_t x = text.find_first_of("xX");
    if (x == std::string::npos) throw Refusal("a size is like 1920x1080, not '" + text + "'");
    constexpr int most = std::numeric_limits<int>::max();
    return {number("a width", text.substr(0, x).c_str(), 1, most), number("a height", text.substr(x + 1).c_str(), 1, most)};
}

std::vector<int> pitches_named(const std::string& text) {
    std::vector<int> pitches;
    for (size_t at = 0; at <= text.size();) {
        const size_t comma = std::min(text.find(',', at), text.size());
        pitches.push_back(number("a pitch", text.substr(at, comma - at).c_str(), 1, std::numeric_limits<int>::max()));
        at = comma + 1;
    }
    return pitches;
}

// Where bands give what the whole gives: rows must not run into those of the next band.
bool goes_in_bands(const zivcolor_pair& pair, Size size) {
    return pair.band_task >= 0 && size.width % 2 == 0 && pair.destination_rows != zivRows_TwicePitch;
}

// How far it is, on a terminal, if it takes more than a moment.
class Progress {
public:
    explicit Progress(uint64_t frames) : frames_(frames), shown_(Clock::now()), terminal_(isatty(STDERR_FILENO) != 0) {}
    ~Progress() {
        if (lines_) fprintf(stderr, "\r%40s\r", "");
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void done(uint64_t frame) {
        if (!terminal_ || Clock::now() - shown_ < std::chrono::milliseconds(300)) return;
        shown_ = Clock::now();
        lines_ = true;
        if (frames_ != 0)
            fprintf(stderr, "\rframe %llu of %llu", static_cast<unsigned long long>(frame),
                    static_cast<unsigned long long>(frames_));
        else fprintf(stderr, "\rframe %llu", static_cast<unsigned long long>(frame));
    }

private:
    using Clock = std::chrono::steady_clock;
    uint64_t frames_;
    Clock::time_point shown_;
    bool terminal_, lines_ = false;
};

// The memory of both images, and the way to convert one to the other.
class Conversion {
public:
    Conversion(const zivcolor_pair& pair, Size size, int alpha, bool threads) : alpha_{alpha} {
        const std::string what = std::to_string(size.width) + "x" + std::to_string(size.height);
        if (size.width < pair.least_width || size.height < pair.least_height)
            throw Refusal(in_words(pair) + " takes images from " + std::to_string(pair.least_width) + "x" +
                          std::to_string(pair.least_height) + " on, not " + what);
        if (zivcolor_room_of_pair(pair.source, pair.destination, size.width, size.height, 1, &from, &to) != zivStatus_OK)
            throw Refusal("an image of " + what + " is too large for " + in_words(pair));
        try {
            source_.resize(from.size);
            destination_.resize(to.size);
        } catch (const std::bad_alloc&) {
            throw Refusal("no memory for an image of " + what);
        }
        if (threads && goes_in_bands(pair, size)) context_ = zivColorCvtInit_MultiThreads(nullptr);
    }
    ~Conversion() {
        if (context_) zivColorCvtUnInit_MultiThreads(nullptr, context_);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    void run() {
        const zivcolor_image source = zivcolor_image_in(&from, source_.data()),
                             destination = zivcolor_image_in(&to, destination_.data());
        const int32_t status = context_ ? zivColorCvtProcess_MultiThreads(context_, &source, &destination, &alpha_)
                                        : zivColorCvt(&source, &destination, alpha_);
        if (status != zivStatus_OK) throw Refusal(std::string("not converted: ") + zivcolor_status_text(status));
    }
    uint8_t* source() { return source_.data(); }
    const uint8_t* destination() const { return destination_.data(); }

    zivcolor_room from, to;

private:
    std::vector<uint8_t> source_, destination_;
    zivColorExtParam_ALPHA_t alpha_;
    void* context_ = nullptr;
};

struct Job {
    std::string from, to, size;
    std::vector<int> pitches, out_pitches;
    int alpha = -1;  // not told
    uint64_t frames = 0;
    bool threads = false;
};

void refuse_unsuited(Kind kind, const zivcolor_layout& layout, const std::string& name) {
    if (kind == Kind::ppm && layout.format != zivPixFmt_RGB888 && layout.format != zivPixFmt_BGR888)
        throw Refusal(name + ": a PPM is made of RGB888 or BGR888, not of " + layout.name);
    if (kind == Kind::pgm && layout.planes == 1)
        throw Refusal(name + ": a PGM is made of a plane of luma, which " + layout.name + " has not");
}

int run(const Job& job, const std::string& in, const std::string& out) {
    const zivcolor_pair& pair = pair_named(job.from, job.to);
    const Size size = size_named(job.size);
    if (job.alpha >= 0 && !pair.takes_alpha) throw Refusal(in_words(pair) + " takes no alpha");
    const Frame from = frame_of(*zivcolor_layout_of(pair.source), size.width, size.height, job.pitches);
    const Frame to = frame_of(*zivcolor_layout_of(pair.destination), size.width, size.height, job.out_pitches);
    const Kind kind = kind_of(out);
    refuse_unsuited(kind, *zivcolor_layout_of(pair.destination), out);
    if (kind != Kind::raw && !job.out_pitches.empty()) throw Refusal(out + ": pictures have no pitch");

    Conversion conversion(pair, size, job.alpha >= 0 ? job.alpha : 255, job.threads);
    Input input(in);
    const uint64_t expected = input.expect(from, job.frames);
    Output output(out, input);
    Progress progress(expected);
    for (uint64_t frame = 1; job.frames == 0 || frame <= job.frames; frame++) {
        if (!input.read(from, conversion.from, conversion.source())) {
            if (job.frames == 0) break;
            throw Refusal(in + " ends after " + std::to_string(frame - 1) + " of " + std::to_string(job.frames) + " frames");
        }
        conversion.run();
        if (kind == Kind::ppm) output.write_ppm(conversion.to, conversion.destination());
        else if (kind == Kind::pgm) output.write_pgm(conversion.to, conversion.destination());
        else output.write(to, conversion.to, conversion.destination());
        progress.done(frame);
    }
    output.close();
    return exit_good;
}

}  // namespace

int convert(int argc, char** argv) {
    Job job;
    const auto text = [](std::string& to) { return [&to](const char* given) { to = given; }; };
    const Usage usage{
        "convert --from LAYOUT --to LAYOUT --size WIDTHxHEIGHT [OPTION...] IN OUT",
        "Converts raw frames, as many as IN holds; - is a standard stream. Where OUT ends in .ppm (of RGB888 or BGR888) or "
        ".pgm\n"
        "(luma of planes), pictures are written. 'zivcolor formats' names layouts and pairs.",
        {{"from", "LAYOUT", "by our name, a FourCC or ffmpeg's name: NV21, YU12, yuv420p", text(job.from)},
         {"to", "LAYOUT", "likewise", text(job.to)},
         {"size", "WxH", "pixels", text(job.size)},
         {"pitch", "N[,N[,N]]",
          "bytes from one row of IN to the next, plane by plane; planes not told keep\nthe proportion; tight if not given",
          [&](const char* given) { job.pitches = pitches_named(given); }},
         {"out-pitch", "N[,N[,N]]", "the same of OUT; what is between rows is 0",
          [&](const char* given) { job.out_pitches = pitches_named(given); }},
         {"alpha", "N", "the alpha byte of 32-bit RGB made from YUV, 255 if not given",
          [&](const char* given) { job.alpha = number("alpha", given, 0, 255); }},
         {"frames", "N", "convert the first N frames",
          [&](const char* given) {
              job.frames = static_cast<uint64_t>(number("a number of frames", given, 1, std::numeric_limits<int>::max()));
          }},
         {"threads", nullptr, "on all cores, where the pair goes in bands and the width is even",
          [&](const char*) { job.threads = true; }}}};
    const Arguments arguments = take_options(usage, argc, argv);
    if (arguments.helped) return exit_good;
    if (job.from.empty() || job.to.empty() || job.size.empty()) throw Refusal("convert needs --from, --to and --size");
    if (arguments.rest.size() != 2) throw Refusal("convert takes two files, IN and OUT; - is a standard stream");
    return run(job, arguments.rest[0], arguments.rest[1]);
}

}  // namespace tool
