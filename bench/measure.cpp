// SPDX-License-Identifier: MIT
#include "measure.h"

#include <time.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <vector>

namespace bench {

namespace {

double now(Time time) {
    timespec at{};
    clock_gettime(time == Time::thread ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &at);
    return static_cast<double>(at.tv_sec) + 1e-9 * static_cast<double>(at.tv_nsec);
}

constexpr size_t page = 4096;

struct Pages {
    std::vector<uint8_t> bytes;
    uint8_t* first() { return bytes.data() + (page - reinterpret_cast<uintptr_t>(bytes.data()) % page) % page; }
    // Room for so many bytes from any place in the first page on.
    bool grow(size_t size) {
        if (bytes.size() >= size + 3 * page) return false;
        bytes.resize(size + 3 * page);
        return true;
    }
};

// Seconds a call of the shortest of several rounds of at least half a millisecond each.
double shortest(const std::function<void()>& call) {
    double best = 1e9;
    for (int round = 0; round < 9; round++) {
        int calls = 0;
        const double start = now(Time::thread);
        double elapsed;
        do {
            call();
            calls++;
            elapsed = now(Time::thread) - start;
        } while (elapsed < 5e-4);
        best = std::min(best, elapsed / calls);
    }
    return best;
}

// A copy that moves as many bytes as the job: half of what that reads and writes.
double copy_time(const Shape& shape, size_t bytes) {
    static std::map<std::pair<int, size_t>, double> known;
    const auto [row, is_new] = known.try_emplace({shape.offset, bytes}, 0);
    if (is_new) {
        const Memory memory = memory_for(shape);
        row->second = shortest([&] {
            std::memcpy(memory.destination, memory.source, bytes / 2);
            benchmark::DoNotOptimize(memory.destination);
            benchmark::ClobberMemory();
        });
    }
    return row->second;
}

void measure(benchmark::State& state, const Make& make, Time time) {
    const Shape shape{static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), static_cast<int>(state.range(2))};
    const Job job = make(shape);
    const double copy = copy_time(shape, job.bytes);
    job.call();
    const double start = now(time);
    for ([[maybe_unused]] const auto _ : state) {
        job.call();
        benchmark::ClobberMemory();
    }
    const double elapsed = (now(time) - start) / static_cast<double>(state.iterations());
    using benchmark::Counter;
    state.counters["time_per_pixel"] = Counter(job.pixels, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["copies"] = Counter(elapsed / copy);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(job.bytes));
}

}  // namespace

void add(const std::string& name, const Make& make, const std::vector<Shape>& shapes, Time time) {
    auto* const row = benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) { measure(state, make, time); });
    row->ArgNames({"width", "height", "offset"})->Unit(benchmark::kMicrosecond);
    if (time == Time::wall) row->UseRealTime();
    for (const Shape& shape : shapes) row->Args({shape.width, shape.height, shape.offset});
}

void add(const std::string& name, const Make& make) {
    std::vector<Shape> shapes;
    for (const auto& [width, height] : {std::pair{64, 64}, {320, 240}, {1920, 1080}, {3840, 2160}})
        for (const int offset : {0, 1, 16}) shapes.push_back({width, height, offset});
    add(name, make, shapes);
}

Memory memory_for(const Shape& shape) {
    static Pages source, destination;
    // A turned image is as tall as this one is wide.
    const auto side = static_cast<size_t>(std::max(shape.width, shape.height));
    const size_t size = 4 * side * static_cast<size_t>(shape.height);
    if (source.grow(size)) {
        std::mt19937 random(1);
        for (uint8_t& byte : source.bytes) byte = static_cast<uint8_t>(random());
    }
    destination.grow(size);
    return {source.first() + shape.offset, destination.first() + shape.offset};
}

zivcolor::Image image(uint32_t format, int width, int height, uint8_t* at, size_t* bytes) {
    zivcolor::Image result{format, width, height, {}, {}};
    for (int k = 0; k < harness::plane_count(format); k++) {
        result.plane[k] = at;
        result.pitch[k] = harness::tight_pitch(format, k, width);
        const auto size = static_cast<size_t>(result.pitch[k]) * static_cast<size_t>(harness::plane_rows(format, k, height));
        at += size;
        *bytes += size;
    }
    return result;
}

}  // namespace bench
