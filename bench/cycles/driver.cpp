// SPDX-License-Identifier: MIT
// One conversion, ours or libyuv's, called so many times on a picture of 640 by 64: what is counted under emulation.
//   zivcolor_cycles                              lists the conversions that libyuv has too
//   zivcolor_cycles KERNEL ours|libyuv CALLS
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "../peers.h"
#include "core/targets.h"
#include "harness/conversions.h"

namespace {

constexpr int width = 640, height = 64;

struct Picture {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(4 * width * height + 64);
    zivcolor::Image image{};

    explicit Picture(uint32_t format) {
        image.format = format, image.width = width, image.height = height;
        uint32_t state = 1;
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
        size_t at = 0;
        for (int k = 0; k < harness::plane_count(format); k++) {
            image.plane[k] = bytes.data() + at;
            image.pitch[k] = harness::tight_pitch(format, k, width);
            at += static_cast<size_t>(image.pitch[k] * harness::plane_rows(format, k, height));
        }
    }
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        for (const harness::Conversion& c : harness::conversions())
            if (bench::peer_of(c.name)) std::puts(c.name);
        return 0;
    }
    const harness::Conversion& c = harness::conversion(argv[1]);
    const bench::Peer peer = bench::peer_of(c.name);
    const bool ours = std::strcmp(argv[2], "ours") == 0;
    if (!ours && !peer) return 2;
    const Picture source(c.source), destination(c.destination);
    const zivcolor::KernelTable& kernels = zivcolor::chosen_kernels();
    for (int n = std::atoi(argv[3]); n > 0; n--) {
        if (ours) c.convert(kernels, &source.image, &destination.image, 255);
        else peer(source.image, destination.image);
    }
    return 0;
}
