// SPDX-License-Identifier: MIT
// From which size on threads pay: conversions on one thread and on a context, by size.
//   zivcolor_break_even [BLOCKS]   prints a line of JSON for each pair and size: microseconds a call, median and least
// Both are measured in turn, in blocks of some milliseconds, so that what else the machine does meets both. Within a block,
// calls follow one another as the images of a stream do; and some calls are measured by themselves, after a pause in which
// threads go to sleep.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "harness/conversions.h"
#include "parallel/context.h"

namespace {

using Clock = std::chrono::steady_clock;
using Work = std::function<void()>;

struct Size {
    int width, height;
};
constexpr Size sizes[] = {{16, 16},   {64, 64},    {160, 120},   {320, 240},   {640, 480},
                          {960, 540}, {1280, 720}, {1920, 1080}, {2560, 1440}, {3840, 2160}};
constexpr const char* kernels[] = {"zivColorNV21toBGR888u8", "zivColorNV21toRGBA8888u8", "zivColorNV21toI420u8"};

constexpr double block_seconds = 4e-3;
constexpr double group_seconds = 2e-5;  // calls shorter than this are timed together
constexpr auto pause_time = std::chrono::milliseconds(1);
constexpr int calls_apart = 4;  // for each block

double seconds(const Work& work, int calls) {
    const auto start = Clock::now();
    for (int i = 0; i < calls; i++) work();
    return std::chrono::duration<double>(Clock::now() - start).count() / calls;
}

struct Times {
    std::vector<double> samples;

    double median() {
        const auto middle = samples.begin() + static_cast<ptrdiff_t>(samples.size() / 2);
        std::nth_element(samples.begin(), middle, samples.end());
        return 1e6 * *middle;
    }
    double least() const { return 1e6 * *std::min_element(samples.begin(), samples.end()); }
};

struct Series {
    Work work;
    int calls = 1;
    Times in_a_row{}, apart{};

    void warm_up() {
        double time = seconds(work, 10);
        for (int i = 0; i < 5; i++) time = std::min(time, seconds(work, 10));
        calls = std::max(1, static_cast<int>(group_seconds / time));
    }
    void measure_block() {
        seconds(work, calls);
        const auto start = Clock::now();
        do in_a_row.samples.push_back(seconds(work, calls));
        while (std::chrono::duration<double>(Clock::now() - start).count() < block_seconds);
    }
    void measure_apart() {
        for (int i = 0; i < calls_apart; i++) {
            std::this_thread::sleep_for(pause_time);
            apart.samples.push_back(seconds(work, 1));
        }
    }
};

zivcolor::Image image(uint32_t format, Size size, std::vector<uint8_t>& memory) {
    size_t bytes = 0;
    zivcolor::Image result{format, size.width, size.height, {}, {}};
    for (int k = 0; k < harness::plane_count(format); k++) {
        result.plane[k] = memory.data() + bytes;
        result.pitch[k] = harness::tight_pitch(format, k, size.width);
        bytes += static_cast<size_t>(result.pitch[k]) * static_cast<size_t>(harness::plane_rows(format, k, size.height));
    }
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    const int blocks = argc > 1 ? std::atoi(argv[1]) : 25;
    const std::shared_ptr<void> context(zivColorCvtInit_MultiThreads(nullptr),
                                        [](void* handle) { zivColorCvtUnInit_MultiThreads(nullptr, handle); });
    if (!context) return 1;
    const int cores = zivcolor::zivParallelEngineCores(static_cast<const zivColorCvtContext_t*>(context.get())->hEngine);
    const zivColorExtParam_ALPHA_t opaque{255};
    std::vector<uint8_t> from(3840 * 2160 * 4), to(from.size());
    std::mt19937 random(1);
    for (uint8_t& byte : from) byte = static_cast<uint8_t>(random());
    for (const char* kernel : kernels) {
        const harness::Conversion& c = harness::conversion(kernel);
        for (const Size size : sizes) {
            const zivcolor::Image source = image(c.source, size, from), destination = image(c.destination, size, to);
            Series one{[&] { zivColorCvt(&source, &destination, opaque); }};
            Series all{[&] { zivColorCvtProcess_MultiThreads(context.get(), &source, &destination, &opaque); }};
            one.warm_up();
            all.warm_up();
            for (int i = 0; i < blocks; i++) {
                one.measure_block();
                all.measure_block();
            }
            for (int i = 0; i < blocks; i++) {
                one.measure_apart();
                all.measure_apart();
            }
            std::printf("{\"cores\": %d, \"pair\": \"%s to %s\", \"size\": \"%dx%d\", ", cores, harness::format_name(c.source),
                        harness::format_name(c.destination), size.width, size.height);
            std::printf("\"one\": %.3f, \"all\": %.3f, \"one_least\": %.3f, \"all_least\": %.3f, ", one.in_a_row.median(),
                        all.in_a_row.median(), one.in_a_row.least(), all.in_a_row.least());
            std::printf("\"one_apart\": %.3f, \"all_apart\": %.3f}\n", one.apart.median(), all.apart.median());
            std::fflush(stdout);
        }
    }
    return 0;
}
