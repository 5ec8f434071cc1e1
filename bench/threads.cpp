// SPDX-License-Identifier: MIT
// The multi-threaded front beside one thread.
#include <memory>

#include "measure.h"

namespace bench {

using zivcolor::Image;

namespace {

// A context for as long as the benchmarks run.
void* context() {
    static const std::unique_ptr<void, void (*)(void*)> all(
        zivColorCvtInit_MultiThreads(nullptr), [](void* handle) { zivColorCvtUnInit_MultiThreads(nullptr, handle); });
    return all.get();
}

Make job_of(const harness::Conversion& c, bool all_cores) {
    return [&c, all_cores](const Shape& shape) {
        const Memory memory = memory_for(shape);
        size_t bytes = 0;
        const Image source = image(c.source, shape.width, shape.height, memory.source, &bytes);
        const Image destination = image(c.destination, shape.width, shape.height, memory.destination, &bytes);
        const zivColorExtParam_ALPHA_t opaque{255};
        const double pixels = static_cast<double>(shape.width) * shape.height;
        if (all_cores)
            return Job{[=] { zivColorCvtProcess_MultiThreads(context(), &source, &destination, &opaque); }, bytes, pixels};
        return Job{[=] { zivColorCvt(&source, &destination, opaque); }, bytes, pixels};
    };
}

}  // namespace

void add_threads() {
    const std::vector<Shape> shapes = {{64, 64, 0},    {320, 240, 0},   {640, 480, 0},  {960, 540, 0},
                                       {1280, 720, 0}, {1920, 1080, 0}, {3840, 2160, 0}};
    for (const char* kernel : {"zivColorNV21toBGR888u8", "zivColorNV21toRGBA8888u8", "zivColorBGR888toNV21u8"}) {
        const harness::Conversion& c = harness::conversion(kernel);
        add(std::string("threads_") + kernel + "/one", job_of(c, false), shapes, Time::wall);
        add(std::string("threads_") + kernel + "/all", job_of(c, true), shapes, Time::wall);
    }
}

}  // namespace bench
