// Every conversion of the kernel list on every target that runs here, beside libyuv and a memory copy of the same bytes.
//   zivcolor_bench [google benchmark's flags]
// Names read kernel/target/width x height. Counters: ns_per_px; GB_per_s of bytes read and written; copies, the time divided by
// that of a memcpy of as many bytes, measured in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <random>

#include "core/targets.h"
#include "harness/conversions.h"
#include "peers.h"

namespace {

using harness::Conversion;
using Clock = std::chrono::steady_clock;
using Work = std::function<void()>;

struct Size {
    int width, height;
};
constexpr Size sizes[] = {{64, 64}, {320, 240}, {1920, 1080}, {3840, 2160}};

// One pair of images that all conversions of a size share: large enough for every layout.
struct Memory {
    std::vector<uint8_t> source, destination;
    explicit Memory(Size size) {
        const auto bytes = static_cast<size_t>(size.width) * static_cast<size_t>(size.height) * 4 + 4096;
        source.resize(bytes);
        destination.resize(bytes);
        std::mt19937 random(1);
        for (uint8_t& byte : source) byte = static_cast<uint8_t>(random());
    }
};

Memory& memory_for(Size size) {
    static std::map<int, Memory> all;
    return all.try_emplace(size.width, size).first->second;
}

zivcolor::Image image(uint32_t format, Size size, uint8_t* at, size_t* bytes) {
    zivcolor::Image result{format, size.width, size.height, {}, {}};
    for (int k = 0; k < harness::plane_count(format); k++) {
        result.plane[k] = at + *bytes;
        result.pitch[k] = harness::tight_pitch(format, k, size.width);
        *bytes += static_cast<size_t>(result.pitch[k]) * static_cast<size_t>(harness::plane_rows(format, k, size.height));
    }
    return result;
}

// The shortest of several rounds of at least half a millisecond each, in seconds a call.
double shortest(const Work& work) {
    double best = 1e9;
    for (int round = 0; round < 7; round++) {
        int calls = 0;
        const auto start = Clock::now();
        double elapsed;
        do {
            work();
            calls++;
            elapsed = std::chrono::duration<double>(Clock::now() - start).count();
        } while (elapsed < 5e-4);
        best = std::min(best, elapsed / calls);
    }
    return best;
}

// A copy that moves as many bytes as the conversion: half of what that reads and writes.
double copy_time(Size size, size_t bytes_moved) {
    static std::map<std::pair<int, size_t>, double> known;
    const auto [row, is_new] = known.try_emplace({size.width, bytes_moved}, 0);
    if (is_new) {
        Memory& memory = memory_for(size);
        row->second = shortest([&] {
            std::memcpy(memory.destination.data(), memory.source.data(), bytes_moved / 2);
            benchmark::DoNotOptimize(memory.destination.data());
            benchmark::ClobberMemory();
        });
    }
    return row->second;
}

void measure(benchmark::State& state, Size size, size_t bytes_moved, const Work& work) {
    const double copy = copy_time(size, bytes_moved);
    for ([[maybe_unused]] const auto _ : state) {
        work();
        benchmark::ClobberMemory();
    }
    using benchmark::Counter;
    const double pixels = static_cast<double>(size.width) * size.height;
    state.counters["ns_per_px"] = Counter(pixels * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["GB_per_s"] = Counter(static_cast<double>(bytes_moved) * 1e-9, Counter::kIsIterationInvariantRate);
    state.counters["copies"] = Counter(copy, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void add(const std::string& name, Size size, size_t bytes_moved, Work work) {
    const std::string full = name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height);
    benchmark::RegisterBenchmark(full.c_str(), [=](benchmark::State& state) { measure(state, size, bytes_moved, work); })
        ->MinTime(0.02)
        ->UseRealTime();
}

void add_conversion(const Conversion& c, Size size) {
    if (std::string(c.name) == "zivColorNV41toNV21") return;  // ends the process by design
    Memory& memory = memory_for(size);
    size_t read = 0, written = 0;
    const zivcolor::Image source = image(c.source, size, memory.source.data(), &read);
    const zivcolor::Image destination = image(c.destination, size, memory.destination.data(), &written);
    for (const zivcolor::Target& target : zivcolor::built_targets())
        if (target.runs_here())
            add(std::string(c.name) + "/" + target.name, size, read + written,
                [=, &c, kernels = target.kernels] { c.convert(*kernels, &source, &destination, 255); });
    if (const bench::Peer peer = bench::peer_of(c.name))
        add(std::string(c.name) + "/libyuv", size, read + written, [=] { peer(source, destination); });
}

}  // namespace

int main(int argc, char** argv) {
    for (const Size size : sizes)
        for (const Conversion& c : harness::conversions()) add_conversion(c, size);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
