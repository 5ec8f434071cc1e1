// SPDX-License-Identifier: MIT
// The cases of the functions that do not take a pair of image descriptors, or take one for turns and mirrors.
#include <array>
#include <cstdlib>

#include "check_cases.h"

namespace tool {

namespace {

constexpr int widths[] = {8,  9,  10, 15, 16, 17, 18, 24,  31,  32,  33,  34,  47,  48,  49,  63,
                          64, 65, 66, 72, 80, 96, 98, 127, 128, 129, 130, 191, 192, 200, 257, 320};
constexpr int heights[] = {3, 4, 5, 6, 8};

std::string in_words(int width, int height) { return std::to_string(width) + "x" + std::to_string(height); }

// Two buffers, apart or the same, with room for a column and a row too many on either side.
Case two_buffers(int width, int height, int pixel_bytes, bool in_place, uint64_t seed,
                 std::function<int64_t(const KernelTable&, uint8_t* source, uint8_t* destination)> call) {
    const auto room = static_cast<size_t>(int64_t{pixel_bytes} * (width + 16) * (height + 4) + 320);
    const size_t source = 64 + static_cast<size_t>(seed % 61), destination = in_place ? source : source + room;
    Case c;
    c.what = in_words(width, height) + (in_place ? ", in place" : "");
    c.seed = seed;
    c.bytes = destination + room;
    c.call = [=, call = std::move(call)](const KernelTable& kernels, uint8_t* memory) {
        return call(kernels, memory + source, memory + destination);
    };
    return c;
}

using Tight = std::function<int64_t(const KernelTable&, const uint8_t* source, uint8_t* destination, int width, int height)>;

std::vector<Case> tight_cases(const Tight& convert, bool also_in_place) {
    std::vector<Case> cases;
    const auto add = [&](int width, int height, bool in_place) {
        cases.push_back(two_buffers(width, height, 4, in_place, cases.size() + 1,
                                    [=](const KernelTable& kernels, uint8_t* source, uint8_t* destination) {
                                        return convert(kernels, source, destination, width, height);
                                    }));
    };
    for (const int width : {1, 2, 3, 5, 6, 7}) add(width, 2 + width % 3, false);
    for (const int width : widths) add(width, heights[cases.size() % std::size(heights)], false);
    add(640, 362, false);
    if (also_in_place)
        for (const int width : {5, 16, 34, 64, 200}) add(width, 3, true);
    Case refusals;
    refusals.what = "null pointers and sizes of 0";
    refusals.bytes = 4096;
    refusals.call = [=](const KernelTable& kernels, uint8_t* memory) {
        int64_t returned = 0;
        const auto note = [&](int64_t status) { returned = returned * 8 + status + 3; };
        note(convert(kernels, nullptr, memory, 8, 8));
        note(convert(kernels, memory, nullptr, 8, 8));
        note(convert(kernels, memory, memory + 2048, 0, 8));
        note(convert(kernels, memory, memory + 2048, 8, 0));
        return returned;
    };
    cases.push_back(std::move(refusals));
    return cases;
}

// Sizes and strides in bytes of the packed sources of HSL.
using Hsl = std::function<int64_t(const KernelTable&, const uint8_t* source, uint8_t* destination, uint32_t width,
                                  uint32_t height, uint32_t source_stride, uint32_t destination_stride)>;

std::vector<Case> packed_hsl_cases(const Hsl& convert, int pixel_bytes) {
    std::vector<Case> cases;
    const auto add = [&](int width, int height, int gap, bool in_place) {
        const auto w = static_cast<uint32_t>(width), h = static_cast<uint32_t>(height);
        const auto from = static_cast<uint32_t>(pixel_bytes * width + gap), to = static_cast<uint32_t>(3 * width + gap % 7);
        cases.push_back(two_buffers(width, height, 4, in_place, cases.size() + 1,
                                    [=](const KernelTable& kernels, uint8_t* source, uint8_t* destination) {
                                        return convert(kernels, source, destination, w, h, from, to);
                                    }));
        if (gap != 0) cases.back().what += ", padded rows";
    };
    for (const int width : widths) add(width, heights[cases.size() % std::size(heights)], 0, false);
    for (const int width : {8, 19, 33, 64, 130}) add(width, 4, width % 13 + 1, false);
    add(640, 362, 0, false);
    if (pixel_bytes == 3)
        for (const int width : {8, 21, 64, 129}) add(width, 3, 0, true);
    return cases;
}

std::vector<Case> planar_hsl_cases() {
    std::vector<Case> cases;
    const auto add = [&](int width, int height, int gap) {
        const auto w = static_cast<uint32_t>(width), h = static_cast<uint32_t>(height), g = static_cast<uint32_t>(gap);
        const uint32_t luma_step = w + g, chroma_step = (w + 1) / 2 + g, hsl_step = 3 * w + g;
        const size_t chroma = size_t{luma_step} * (h + 2), chromas = size_t{chroma_step} * (h / 2 + 2);
        cases.push_back(
            two_buffers(width, height, 4, false, cases.size() + 1, [=](const KernelTable& kernels, uint8_t* y, uint8_t* hsl) {
                return int64_t{kernels.zivColorI420toHSL888u8(y, y + chroma, y + chroma + chromas, w, h, hsl, luma_step,
                                                              chroma_step, hsl_step)};
            }));
        if (gap != 0) cases.back().what += ", padded rows";
    };
    for (const int width : widths) add(width, heights[cases.size() % std::size(heights)], 0);
    for (const int width : {8, 19, 33, 64, 130}) add(width, 5, width % 9 + 1);
    add(640, 362, 0);
    return cases;
}

// Turns and mirrors of the NV21 shape.
using Turn = std::function<int64_t(const KernelTable&, const Image& source, const Image& destination)>;

void add_turns(std::vector<Case>& cases, const Turn& turn, bool quarter, const std::string& name) {
    const auto add = [&](int width, int height, int padding) {
        const int across = quarter ? height : width, down = quarter ? width : height;
        const int from = width + padding, to = across + padding;
        const auto room = static_cast<size_t>(int64_t{from + 8} * (height + 4) + int64_t{to + 8} * (down + 4) + 512);
        Case c;
        c.what = name + in_words(width, height) + (padding != 0 ? ", padded rows" : "");
        c.seed = cases.size() + 1;
        const size_t first = room / 2 + static_cast<size_t>(c.seed % 61);
        c.bytes = first + 4 * room;
        c.call = [=](const KernelTable& kernels, uint8_t* memory) {
            uint8_t* const at = memory + first;
            const Image source{zivPixFmt_NV21, width, height, {at, at + room}, {from, from}};
            const Image destination{zivPixFmt_NV21, across, down, {at + 2 * room, at + 3 * room}, {to, to}};
            return turn(kernels, source, destination);
        };
        cases.push_back(std::move(c));
    };
    for (const int width : {1, 2, 7, 8, 9, 16, 24, 31, 40, 64, 66, 72, 136})
        for (const int height : {2, 8, 24, 33}) add(width, height, 0);
    for (const int width : {8, 18, 64, 72, 130}) add(width, 16, 2 * (width % 11) + 2);
    add(640, 360, 0);
    add(96, 520, 2048 - 96);  // rows a power of two apart are turned by way of copies
}

std::vector<Case> turn_cases() {
    std::vector<Case> cases;
    for (const auto& [mode, name] : {std::pair{1, "clockwise, "}, {3, "counter-clockwise, "}, {2, "half turn, "}})
        add_turns(
            cases,
            [mode = mode](const KernelTable& kernels, const Image& source, const Image& destination) {
                kernels.zivRotate(&source, &destination, mode);
                return int64_t{0};
            },
            mode != 2, name);
    return cases;
}

std::vector<Case> mirror_cases(int32_t (*KernelTable::*mirror)(const Image*, const Image*)) {
    std::vector<Case> cases;
    add_turns(
        cases,
        [=](const KernelTable& kernels, const Image& source, const Image& destination) {
            return int64_t{(kernels.*mirror)(&source, &destination)};
        },
        false, "");
    return cases;
}

using Whiten = decltype(KernelTable::_SkinWhitenByMask_YUV420_VUVU);

std::vector<Case> whitening_cases(Whiten KernelTable::*whiten) {
    std::vector<Case> cases;
    const auto add = [&](int width, int height, int padding, int64_t level, bool plausible) {
        std::array<int32_t, 256> table{};
        for (int y = 0; y < 256; y++)
            table[static_cast<size_t>(y)] =
                plausible ? y + (255 - y) / 3 : static_cast<int32_t>(static_cast<uint32_t>(y) * 1103515245u) >> (y % 24);
        const int pitch = width + padding;
        Case c;
        c.what = in_words(width, height) + (padding != 0 ? ", padded rows" : "") + ", level " + std::to_string(level);
        c.seed = cases.size() + 1;
        const size_t first = 64 + static_cast<size_t>(c.seed % 61);
        const size_t mask = first + static_cast<size_t>((width + pitch) * (height + 2)) + 256;
        c.bytes = mask + static_cast<size_t>(2 * pitch) + 256;
        c.call = [=](const KernelTable& kernels, uint8_t* memory) {
            zivcolor::MaskedImage image{};
            image.width = width;
            image.height = height;
            image.pitch[0] = image.pitch[1] = pitch;
            image.plane[0] = memory + first;
            return (kernels.*whiten)(&image, memory + mask, pitch, table.data(), level, nullptr);
        };
        cases.push_back(std::move(c));
    };
    for (const int width : {1, 2, 3, 6, 7}) add(width, 4, 0, 100, true);
    for (const int width : widths) add(width, heights[cases.size() % std::size(heights)], 0, 3 * width, true);
    for (const int64_t level : {0, 1, 255, 1024, 65535, -50, 1 << 22}) {
        add(78, 6, 0, level, true);
        add(78, 6, 0, level, false);
    }
    for (const int width : {16, 34, 65, 128}) add(width, 4, 2 * (width % 7) + 2, 200, true);
    add(640, 362, 0, 180, true);
    return cases;
}

// Sums about the steps of the quotients, and about the ends of 32 bits.
std::vector<Case> weight_cases() {
    std::vector<Case> cases;
    for (const int images : {1, 2, 3, 4, 7, 16, 70})
        for (const int columns : {1, 2, 7, 8, 9, 16, 31, 33, 64, 130}) {
            std::vector<int64_t> sums(static_cast<size_t>(20 * (columns + 1) + 1));
            for (size_t i = 0; i < sums.size(); i += 20) {
                const auto k = static_cast<int64_t>(i / 20);
                sums[i] = 256 + k * 2 * (images - 1) + k % 3 - 1;
                if (k % 5 == 4) sums[i] = ((k % 2 != 0 ? int64_t{1} : int64_t{-3}) << 31) + k;
            }
            Case c;
            c.what = std::to_string(columns) + " columns of " + std::to_string(images) + " images";
            c.seed = cases.size() + 1;
            c.bytes = static_cast<size_t>(columns) + 128;
            c.call = [=, sums = std::move(sums)](const KernelTable& kernels, uint8_t* memory) {
                kernels.CalcMergeWeightMap_neon(sums.data(), memory + 64, columns, images);
                return int64_t{0};
            };
            cases.push_back(std::move(c));
        }
    return cases;
}

}  // namespace

std::vector<Case> routine_cases(const std::string& name) {
    struct Row {
        const char* name;
        std::vector<Case> (*cases)();
    };
#define TIGHT(name, also_in_place)                                                                                     \
    {                                                                                                                  \
#name, [] {                                                                                                          \
         return tight_cases([](const KernelTable& kernels, const uint8_t* source, uint8_t* destination, int width,        \
                               int height) { return int64_t{kernels.name(source, destination, width, height)}; },         \
                            also_in_place);                                                                               \
     } \
    }
#define PACKED_HSL(name, pixel_bytes)                                                                                  \
    {                                                                                                                  \
#name, [] {                                                                                                          \
         return packed_hsl_cases(                                                                                         \
             [](const KernelTable& kernels, const uint8_t* source, uint8_t* destination, uint32_t width, uint32_t height, \
                uint32_t from, uint32_t to) { return int64_t{kernels.name(source, destination, height, width, from, to)}; }, \
             pixel_bytes);                                                                                                \
     } \
    }
    static const Row rows[] = {
        TIGHT(zivColorYV12toNV21u8, false),
        TIGHT(zivColorYUYVtoNV21u8, false),
        TIGHT(zivColorYUYVtoNV12u8, false),
        TIGHT(zivColorYUYVtoI420u8, false),
        TIGHT(zivColorRGB888toBGR888u8, true),
        PACKED_HSL(zivColorBGR888toHSL888u8, 3),
        PACKED_HSL(zivColorBGR565toHSL888u8, 2),
        PACKED_HSL(zivColorRGB565toHSL888u8, 2),
        {"zivColorI420toHSL888u8", planar_hsl_cases},
        {"zivRotate", turn_cases},
        {"zivflip_horizontal_nv21", [] { return mirror_cases(&KernelTable::zivflip_horizontal_nv21); }},
        {"zivflip_vertical_nv21", [] { return mirror_cases(&KernelTable::zivflip_vertical_nv21); }},
        {"_SkinWhitenByMask_YUV420_VUVU", [] { return whitening_cases(&KernelTable::_SkinWhitenByMask_YUV420_VUVU); }},
        {"_SkinWhitenByMask_YUV420_VUVU_neon",
         [] { return whitening_cases(&KernelTable::_SkinWhitenByMask_YUV420_VUVU_neon); }},
        {"CalcMergeWeightMap_neon", weight_cases},
    };
#undef PACKED_HSL
#undef TIGHT
    for (const Row& row : rows)
        if (name == row.name) return row.cases();
    return {};
}

}  // namespace tool
