// Every conversion of the kernel list on every target that runs here, beside libyuv and a memory copy of the same bytes.
//   zivcolor_bench [google benchmark's flags]
// Names read kernel/target/width x height. Counters: ns_per_px; GB_per_s of bytes read and written; copies, the time divided by
// that of a memcpy of as many bytes, measured in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <memory>
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
    return all.try_emplace(size.width, Size{size.width, std::max(size.height, size.width)}).first->second;
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

void add(const std::string& name, Size size, size_t bytes_moved, const Work& work) {
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

// ---- Kernels with a signature of their own ----

using Routine = std::function<void(const zivcolor::KernelTable& kernels)>;

void add_routine(const std::string& name, Size size, double bytes_per_pixel, const Routine& routine) {
    const auto bytes = static_cast<size_t>(bytes_per_pixel * size.width * size.height);
    for (const zivcolor::Target& target : zivcolor::built_targets())
        if (target.runs_here())
            add(name + "/" + target.name, size, bytes, [=, kernels = target.kernels] { routine(*kernels); });
}

void add_routines(Size size) {
    Memory& memory = memory_for(size);
    uint8_t *src = memory.source.data(), *dst = memory.destination.data();
    const int32_t w = size.width, h = size.height;
    const auto uw = static_cast<uint32_t>(w), uh = static_cast<uint32_t>(h);
    using Kernels = const zivcolor::KernelTable&;

    add_routine("zivColorRGB888toBGR888u8", size, 6, [=](Kernels k) { k.zivColorRGB888toBGR888u8(src, dst, w, h); });
    add_routine("zivColorYV12toNV21u8", size, 3, [=](Kernels k) { k.zivColorYV12toNV21u8(src, dst, w, h); });
    add_routine("zivColorYUYVtoNV21u8", size, 3.5, [=](Kernels k) { k.zivColorYUYVtoNV21u8(src, dst, w, h); });
    add_routine("zivColorYUYVtoNV12u8", size, 3.5, [=](Kernels k) { k.zivColorYUYVtoNV12u8(src, dst, w, h); });
    add_routine("zivColorYUYVtoI420u8", size, 3.5, [=](Kernels k) { k.zivColorYUYVtoI420u8(src, dst, w, h); });
    add_routine("zivColorBGR888toHSL888u8", size, 6,
                [=](Kernels k) { k.zivColorBGR888toHSL888u8(src, dst, uh, uw, 3 * uw, 3 * uw); });
    add_routine("zivColorBGR565toHSL888u8", size, 5,
                [=](Kernels k) { k.zivColorBGR565toHSL888u8(src, dst, uh, uw, 2 * uw, 3 * uw); });
    add_routine("zivColorRGB565toHSL888u8", size, 5,
                [=](Kernels k) { k.zivColorRGB565toHSL888u8(src, dst, uh, uw, 2 * uw, 3 * uw); });
    add_routine("zivColorI420toHSL888u8", size, 4.5, [=](Kernels k) {
        k.zivColorI420toHSL888u8(src, src + uw * uh, src + uw * uh / 4 * 5, uw, uh, dst, uw, uw / 2, 3 * uw);
    });

    size_t bytes = 0, turned_bytes = 0, same_bytes = 0;
    const zivcolor::Image nv21 = image(zivPixFmt_NV21, size, src, &bytes);
    const zivcolor::Image turned = image(zivPixFmt_NV21, {h, w}, dst, &turned_bytes);
    const zivcolor::Image same = image(zivPixFmt_NV21, size, dst, &same_bytes);
    add_routine("zivRotate_90", size, 3, [=](Kernels k) { k.zivRotate(&nv21, &turned, 1); });
    add_routine("zivRotate_180", size, 3, [=](Kernels k) { k.zivRotate(&nv21, &same, 2); });
    add_routine("zivRotate_270", size, 3, [=](Kernels k) { k.zivRotate(&nv21, &turned, 3); });
    add_routine("zivflip_horizontal_nv21", size, 3, [=](Kernels k) { k.zivflip_horizontal_nv21(&nv21, &same); });
    add_routine("zivflip_vertical_nv21", size, 3, [=](Kernels k) { k.zivflip_vertical_nv21(&nv21, &same); });

    static const std::vector<int32_t> brighter = [] {
        std::vector<int32_t> table(256);
        for (int32_t i = 0; i < 256; i++) table[static_cast<size_t>(i)] = std::min(255, i + 40);
        return table;
    }();
    zivcolor::MaskedImage masked{};
    masked.width = w, masked.height = h;
    masked.pitch[0] = masked.pitch[1] = w;
    masked.plane[0] = dst;
    add_routine("_SkinWhitenByMask_YUV420_VUVU", size, 3,
                [=](Kernels k) { k._SkinWhitenByMask_YUV420_VUVU(&masked, src, w, brighter.data(), 100, nullptr); });
    add_routine("_SkinWhitenByMask_YUV420_VUVU_neon", size, 3,
                [=](Kernels k) { k._SkinWhitenByMask_YUV420_VUVU_neon(&masked, src, w, brighter.data(), 100, nullptr); });
    // One row as wide as the image; a sum in every twentieth entry.
    static const std::vector<int64_t> sums(20 * 3841, 700);
    const Size row{w, 1};
    for (const zivcolor::Target& target : zivcolor::built_targets())
        if (target.runs_here())
            add(std::string("CalcMergeWeightMap_neon/") + target.name, row, 9 * static_cast<size_t>(w),
                [=, kernels = target.kernels] { kernels->CalcMergeWeightMap_neon(sums.data(), dst, w, 4); });
}

// ---- The multi-threaded front beside one thread ----

void add_threaded(const Conversion& c, Size size) {
    Memory& memory = memory_for(size);
    size_t read = 0, written = 0;
    const zivcolor::Image source = image(c.source, size, memory.source.data(), &read);
    const zivcolor::Image destination = image(c.destination, size, memory.destination.data(), &written);
    const std::shared_ptr<void> context(zivColorCvtInit_MultiThreads(nullptr),
                                        [](void* handle) { zivColorCvtUnInit_MultiThreads(nullptr, handle); });
    if (!context) return;
    const zivColorExtParam_ALPHA_t opaque{255};
    const std::string name = std::string("threads_") + c.name;
    add(name + "/one", size, read + written, [=] { zivColorCvt(&source, &destination, opaque); });
    add(name + "/context", size, read + written,
        [=] { zivColorCvtProcess_MultiThreads(context.get(), &source, &destination, &opaque); });
}

}  // namespace

int main(int argc, char** argv) {
    for (const Size size : sizes)
        for (const Conversion& c : harness::conversions()) add_conversion(c, size);
    for (const Size size : sizes) add_routines(size);
    for (const char* kernel : {"zivColorNV21toBGR888u8", "zivColorNV21toRGBA8888u8", "zivColorBGR888toNV21u8"})
        for (const Size size : {Size{64, 64}, {320, 240}, {640, 480}, {960, 540}, {1280, 720}, {1920, 1080}, {3840, 2160}})
            add_threaded(harness::conversion(kernel), size);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
