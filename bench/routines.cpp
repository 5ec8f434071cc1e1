// SPDX-License-Identifier: MIT
// Kernels with a signature of their own, on every target that runs here.
#include <algorithm>

#include "core/targets.h"
#include "measure.h"

namespace bench {

using zivcolor::Image;
using zivcolor::KernelTable;

namespace {

// A call on images of w by h pixels; s and d are the memories.
using Routine = void (*)(const KernelTable& kernels, uint8_t* s, uint8_t* d, int w, int h);

struct Row {
    const char* name;
    double bytes_per_pixel;  // read and written
    Routine routine;
};

uint32_t u(int n) { return static_cast<uint32_t>(n); }

// NV21 images of the source and of the destination, the latter turned if asked for.
struct Pair {
    Image source, destination;
    Pair(uint8_t* s, uint8_t* d, int w, int h, bool turned = false) {
        size_t bytes = 0;
        source = image(zivPixFmt_NV21, w, h, s, &bytes);
        destination = turned ? image(zivPixFmt_NV21, h, w, d, &bytes) : image(zivPixFmt_NV21, w, h, d, &bytes);
    }
};

const int32_t* brighter() {
    static const std::vector<int32_t> table = [] {
        std::vector<int32_t> levels(256);
        for (int32_t i = 0; i < 256; i++) levels[static_cast<size_t>(i)] = std::min(255, i + 40);
        return levels;
    }();
    return table.data();
}

template <auto kernel>
void whiten(const KernelTable& k, uint8_t* s, uint8_t* d, int w, int h) {
    zivcolor::MaskedImage masked{};
    masked.width = w, masked.height = h;
    masked.pitch[0] = masked.pitch[1] = w;
    masked.plane[0] = d;
    (k.*kernel)(&masked, s, w, brighter(), 100, nullptr);
}

// A sum in every twentieth entry.
void merge(const KernelTable& k, uint8_t*, uint8_t* d, int w, int) {
    static const std::vector<int64_t> sums(20 * 3841, 700);
    k.CalcMergeWeightMap_neon(sums.data(), d, w, 4);
}

constexpr Row rows[] = {
    {"zivColorRGB888toBGR888u8", 6, [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorRGB888toBGR888u8(s, d, w, h); }},
    {"zivColorYV12toNV21u8", 3, [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorYV12toNV21u8(s, d, w, h); }},
    {"zivColorYUYVtoNV21u8", 3.5, [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorYUYVtoNV21u8(s, d, w, h); }},
    {"zivColorYUYVtoNV12u8", 3.5, [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorYUYVtoNV12u8(s, d, w, h); }},
    {"zivColorYUYVtoI420u8", 3.5, [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorYUYVtoI420u8(s, d, w, h); }},
    {"zivColorBGR888toHSL888u8", 6,
     [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorBGR888toHSL888u8(s, d, u(h), u(w), u(3 * w), u(3 * w)); }},
    {"zivColorBGR565toHSL888u8", 5,
     [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorBGR565toHSL888u8(s, d, u(h), u(w), u(2 * w), u(3 * w)); }},
    {"zivColorRGB565toHSL888u8", 5,
     [](auto& k, auto* s, auto* d, int w, int h) { k.zivColorRGB565toHSL888u8(s, d, u(h), u(w), u(2 * w), u(3 * w)); }},
    {"zivColorI420toHSL888u8", 4.5,
     [](auto& k, auto* s, auto* d, int w, int h) {
         k.zivColorI420toHSL888u8(s, s + w * h, s + w * h / 4 * 5, u(w), u(h), d, u(w), u(w / 2), u(3 * w));
     }},
    {"zivRotate_90", 3,
     [](auto& k, auto* s, auto* d, int w, int h) {
         const Pair p(s, d, w, h, true);
         k.zivRotate(&p.source, &p.destination, 1);
     }},
    {"zivRotate_180", 3,
     [](auto& k, auto* s, auto* d, int w, int h) {
         const Pair p(s, d, w, h);
         k.zivRotate(&p.source, &p.destination, 2);
     }},
    {"zivRotate_270", 3,
     [](auto& k, auto* s, auto* d, int w, int h) {
         const Pair p(s, d, w, h, true);
         k.zivRotate(&p.source, &p.destination, 3);
     }},
    {"zivflip_horizontal_nv21", 3,
     [](auto& k, auto* s, auto* d, int w, int h) {
         const Pair p(s, d, w, h);
         k.zivflip_horizontal_nv21(&p.source, &p.destination);
     }},
    {"zivflip_vertical_nv21", 3,
     [](auto& k, auto* s, auto* d, int w, int h) {
         const Pair p(s, d, w, h);
         k.zivflip_vertical_nv21(&p.source, &p.destination);
     }},
    {"_SkinWhitenByMask_YUV420_VUVU", 3, whiten<&KernelTable::_SkinWhitenByMask_YUV420_VUVU>},
    {"_SkinWhitenByMask_YUV420_VUVU_neon", 3, whiten<&KernelTable::_SkinWhitenByMask_YUV420_VUVU_neon>},
};

void add_routine(const Row& row, const zivcolor::Target& target) {
    add(std::string(row.name) + "/" + target.name, [row, kernels = target.kernels](const Shape& shape) {
        const Memory memory = memory_for(shape);
        const double pixels = static_cast<double>(shape.width) * shape.height;
        return Job{[=] { row.routine(*kernels, memory.source, memory.destination, shape.width, shape.height); },
                   static_cast<size_t>(row.bytes_per_pixel * pixels), pixels};
    });
}

// One row as wide as an image.
void add_merge(const zivcolor::Target& target) {
    add(std::string("CalcMergeWeightMap_neon/") + target.name,
        [kernels = target.kernels](const Shape& shape) {
            const Memory memory = memory_for(shape);
            return Job{[=] { merge(*kernels, nullptr, memory.destination, shape.width, 1); },
                       9 * static_cast<size_t>(shape.width), static_cast<double>(shape.width)};
        },
        {{320, 1, 0}, {1920, 1, 0}, {3840, 1, 0}});
}

}  // namespace

void add_routines() {
    for (const zivcolor::Target& target : zivcolor::built_targets()) {
        if (!target.runs_here()) continue;
        for (const Row& row : rows) add_routine(row, target);
        add_merge(target);
    }
}

}  // namespace bench
