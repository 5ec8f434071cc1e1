// SPDX-License-Identifier: MIT
// Times the conversions on this machine, beside a copy of as many bytes by the C library.
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include "commands.h"
#include "core/targets.h"
#include "cpu_name.h"
#include "names.h"
#include "options.h"
#include "tool_build.h"
#include "zivcolor_image.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// Seconds of one call: the median of several batches, each long enough for the clock.
template <class Call>
double time_of(Call call) {
    constexpr double batch = 2e-3;
    constexpr int batches = 7;
    call();
    int calls = 0;
    const auto first = Clock::now();
    do call(), calls++;
    while (seconds_since(first) < batch);
    double seconds[batches];
    for (double& one : seconds) {
        const auto start = Clock::now();
        for (int i = 0; i < calls; i++) call();
        one = seconds_since(start) / calls;
    }
    std::nth_element(seconds, seconds + batches / 2, seconds + batches);
    return seconds[batches / 2];
}

// The compiler knows what a copy does, but not that nobody looks at it.
void keep(const void* p) { asm volatile("" : : "r"(p) : "memory"); }

struct Size {
    int width, height;
};
constexpr Size sizes[] = {{64, 64}, {1280, 720}, {3840, 2160}};

// Memory of the largest image, its pages touched before anything is timed.
class Memory {
public:
    explicit Memory(size_t size) : bytes_(new uint8_t[size + alignment]) {
        for (size_t i = 0; i < size + alignment; i++) bytes_[i] = static_cast<uint8_t>(i * 37 + (i >> 8) * 11);
    }
    uint8_t* aligned() const { return bytes_.get() + (alignment - reinterpret_cast<uintptr_t>(bytes_.get()) % alignment); }

private:
    static constexpr size_t alignment = 4096;
    std::unique_ptr<uint8_t[]> bytes_;
};

struct Row {
    const zivcolor_pair* pair;
    Size size;
    bool threads;  // on all cores, else on one
    double ns_per_pixel, gb_per_s, copies;
};

// What is measured, and what it is measured with.
class Machine {
public:
    explicit Machine(const std::vector<const zivcolor_pair*>& pairs) : context_(zivColorCvtInit_MultiThreads(nullptr)) {
        size_t room = 0;
        for (const zivcolor_pair* pair : pairs)
            for (const Size size : sizes) {
                zivcolor_room source, destination;
                zivcolor_room_of_pair(pair->source, pair->destination, size.width, size.height, 1, &source, &destination);
                room = std::max({room, source.size, destination.size});
            }
        source_ = std::make_unique<Memory>(room);
        destination_ = std::make_unique<Memory>(room);
        // Until the clock of the CPU is up.
        for (const auto start = Clock::now(); seconds_since(start) < 0.2;) copy_bytes(std::min<size_t>(room, 1 << 20));
    }
    ~Machine() {
        if (context_) zivColorCvtUnInit_MultiThreads(nullptr, context_);
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    Row measure(const zivcolor_pair& pair, Size size, bool threads) {
        zivcolor_room from, to, plain_from, plain_to;
        zivcolor_room_of_pair(pair.source, pair.destination, size.width, size.height, 1, &from, &to);
        zivcolor_room_of_layout(pair.source, size.width, size.height, 1, &plain_from);
        zivcolor_room_of_layout(pair.destination, size.width, size.height, 1, &plain_to);
        const zivcolor_image source = zivcolor_image_in(&from, source_->aligned());
        const zivcolor_image destination = zivcolor_image_in(&to, destination_->aligned());
        const zivColorExtParam_ALPHA_t alpha{255};
        const double seconds = threads
                                   ? time_of([&] { zivColorCvtProcess_MultiThreads(context_, &source, &destination, &alpha); })
                                   : time_of([&] { zivColorCvt(&source, &destination, alpha); });
        const size_t bytes = plain_from.size + plain_to.size;
        const double pixels = double{1} * size.width * size.height;
        return {
            &pair, size, threads, 1e9 * seconds / pixels, 1e-9 * static_cast<double>(bytes) / seconds, seconds / copy(bytes)};
    }
    bool has_threads() const { return context_ != nullptr; }

private:
    // Seconds of a copy that reads and writes so many bytes.
    double copy(size_t bytes) {
        for (const auto& [known, seconds] : copies_)
            if (known == bytes) return seconds;
        copies_.emplace_back(bytes, time_of([&] { copy_bytes(bytes / 2); }));
        return copies_.back().second;
    }
    void copy_bytes(size_t bytes) const {
        memcpy(destination_->aligned(), source_->aligned(), bytes);
        keep(destination_->aligned());
    }

    void* context_;
    std::unique_ptr<Memory> source_, destination_;
    std::vector<std::pair<size_t, double>> copies_;
};

const char* target_name() {
    for (const zivcolor::Target& target : zivcolor::built_targets())
        if (target.kernels == &zivcolor::chosen_kernels()) return target.name;
    return "";
}

// A CPU's name may hold anything.
std::string quoted(const std::string& text) {
    std::string all = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') all += '\\';
        if (static_cast<unsigned char>(c) >= ' ') all += c;
    }
    return all + '"';
}

struct Output {
    bool json;
    int rows = 0;

    void begin(const Machine& machine) const {
        if (json) {
            printf("{\"version\": \"" ZIVCOLOR_TOOL_VERSION "\", \"cpu\": %s, \"cpus\": %d, \"target\": \"%s\", \"results\": [",
                   quoted(cpu_name()).c_str(), cpu_count(), target_name());
            return;
        }
        printf("zivcolor " ZIVCOLOR_TOOL_VERSION "\nCPU       %s; %d to run on\ntarget    %s\n", cpu_name().c_str(),
               cpu_count(), target_name());
        if (!machine.has_threads()) printf("no threads to be had here\n");
        printf("\n%-21s", "");
        for (const Size size : sizes)
            printf(" | %-25s", (std::to_string(size.width) + "x" + std::to_string(size.height)).c_str());
        printf("\n%-21s", "");
        for (size_t i = 0; i < std::size(sizes); i++) printf(" | %8s %7s %8s", "ns/pixel", "GB/s", "copies");
        printf("\n");
    }
    void add(const Row& row) {
        const char* const source = zivcolor_format_name(row.pair->source);
        const char* const destination = zivcolor_format_name(row.pair->destination);
        if (json) {
            printf(
                "%s\n  {\"from\": \"%s\", \"to\": \"%s\", \"width\": %d, \"height\": %d, \"cores\": \"%s\", \"ns_per_pixel\": "
                "%.5f, "
                "\"gb_per_s\": %.3f, \"copies\": %.3f}",
                rows++ == 0 ? "" : ",", source, destination, row.size.width, row.size.height, row.threads ? "all" : "one",
                row.ns_per_pixel, row.gb_per_s, row.copies);
            return;
        }
        if (rows++ % static_cast<int>(std::size(sizes)) == 0)
            printf("%-21s", row.threads ? "            all cores" : (std::string(source) + " to " + destination).c_str());
        printf(" | %8.4f %7.2f %8.2f", row.ns_per_pixel, row.gb_per_s, row.copies);
        if (rows % static_cast<int>(std::size(sizes)) == 0) printf("\n");
        fflush(stdout);
    }
    void end() const {
        if (json) printf("\n]}\n");
    }
};

std::vector<const zivcolor_pair*> all_pairs() {
    std::vector<const zivcolor_pair*> pairs;
    for (int32_t i = 0; const zivcolor_pair* pair = zivcolor_pair_at(i); i++) pairs.push_back(pair);
    return pairs;
}

}  // namespace

int speed(int argc, char** argv) {
    Output output{false};
    const Usage usage{
        "speed [--json] [FROM TO]",
        "Times the conversions, or one, on one thread and on all cores: nanoseconds a pixel, bytes read and written, and the\n"
        "times that the C library needs to copy as many. Medians; better on a machine that has nothing else to do.",
        {{"json", nullptr, "one JSON object in place of a table", [&](const char*) { output.json = true; }}}};
    const Arguments arguments = take_options(usage, argc, argv);
    if (arguments.helped) return exit_good;
    std::vector<const zivcolor_pair*> pairs = all_pairs();
    if (arguments.rest.size() == 2) pairs = {&pair_named(arguments.rest[0], arguments.rest[1])};
    else if (!arguments.rest.empty()) throw Refusal("speed takes a pair of layouts, as in: speed NV21 BGR888");

    Machine machine(pairs);
    output.begin(machine);
    const bool progress = isatty(STDERR_FILENO) && !isatty(STDOUT_FILENO);
    size_t done = 0;
    for (const zivcolor_pair* pair : pairs) {
        if (progress) fprintf(stderr, "\r%zu of %zu pairs", done++, pairs.size());
        for (const bool threads : {false, true})
            if (!threads || (pair->band_task >= 0 && machine.has_threads()))
                for (const Size size : sizes) output.add(machine.measure(*pair, size, threads));
    }
    if (progress) fprintf(stderr, "\r%20s\r", "");
    output.end();
    return exit_good;
}

}  // namespace tool
