// SPDX-License-Identifier: MIT
// How every benchmark here measures: images of named sizes at named places, time a pixel, bytes a second, and copies.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

#include "harness/conversions.h"

namespace bench {

// An image's size, and the bytes by which its first plane stands past a page.
struct Shape {
    int width, height, offset;
};

// One call to measure. Bytes are those that it reads and writes.
struct Job {
    std::function<void()> call;
    size_t bytes;
    double pixels;
};

// Makes the job of a shape; called anew before each repetition, outside of what is timed.
using Make = std::function<Job(const Shape& shape)>;

// What time is: of the calling thread, which others on the machine disturb less, or of the wall's clock.
enum class Time { thread, wall };

// Registers a benchmark over all sizes and offsets. Its counters: time_per_pixel; bytes_per_second; copies, the time of a call
// divided by that of a memcpy that moves as many bytes.
void add(const std::string& name, const Make& make);
// The same over these shapes.
void add(const std::string& name, const Make& make, const std::vector<Shape>& shapes, Time time = Time::thread);

// Memory for an image of any layout at a shape: what it holds is of no regular pattern. All benchmarks share it.
struct Memory {
    uint8_t *source, *destination;
};
Memory memory_for(const Shape& shape);

// An image with tight rows and its planes one after the other; adds its bytes to the sum.
zivcolor::Image image(uint32_t format, int width, int height, uint8_t* at, size_t* bytes);

// What each file registers.
void add_conversions();
void add_routines();
void add_threads();

}  // namespace bench
