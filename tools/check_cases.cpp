// SPDX-License-Identifier: MIT
#include "check_cases.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "core/layout_list.h"
#include "core/streamed_rows.h"
#include "digest.h"

namespace tool {

namespace {

using zivcolor::Layout;

int32_t call(zivcolor::OpaqueConversion* kernel, const Image* src, const Image* dst, uint8_t) { return kernel(src, dst); }
int32_t call(zivcolor::AlphaConversion* kernel, const Image* src, const Image* dst, uint8_t alpha) {
    return kernel(src, dst, alpha);
}

using Convert = int32_t(const KernelTable& kernels, const Image* src, const Image* dst, uint8_t alpha);
template <auto kernel>
int32_t convert(const KernelTable& kernels, const Image* src, const Image* dst, uint8_t alpha) {
    return call(kernels.*kernel, src, dst, alpha);
}

struct Conversion {
    std::string_view name;
    uint32_t source, destination;
    Convert* convert;
};

struct Size {
    int width, height;
    bool operator==(const Size&) const = default;
};
using Padding = std::array<int, 3>;

// What is added to the tight rows of each plane, and the planes whose rows follow each other upward, a bit for each.
struct Pitches {
    Padding source = {}, destination = {};
    int upward = 0;  // bits 0 to 2 of the source, 3 to 5 of the destination
    bool operator==(const Pitches&) const = default;
};

// Where the planes of an image stand in memory.
struct Places {
    std::array<size_t, 3> offset = {};
    std::array<int, 3> pitch = {};
};

// Lays an image out from `bytes` on and adds what it takes. Rows may be stepped by the pitch of another plane or by twice their
// own, and some functions run over the end of a row or begin one row early: there is room for all of that.
Places lay_out(const Layout& layout, Size size, const Padding& padding, int upward, size_t& bytes) {
    Places places;
    int64_t step = layout.row_bytes(0, size.width);
    for (int k = 0; k < layout.planes; k++) {
        const int pitch = layout.row_bytes(k, size.width) + padding[static_cast<size_t>(k)];
        places.pitch[static_cast<size_t>(k)] = (upward >> k & 1) != 0 ? -pitch : pitch;
        step = std::max<int64_t>(step, pitch);
    }
    const auto before = static_cast<size_t>(2 * step + 64);
    const auto after = static_cast<size_t>((size.height + 4) * step + int64_t{4} * size.width + 256);
    for (size_t k = 0; k < static_cast<size_t>(layout.planes); k++) {
        places.offset[k] = bytes + (upward != 0 ? after : before);
        bytes = places.offset[k] + after + 5;  // the next plane at another alignment
    }
    return places;
}

Image image_at(const Layout& layout, Size size, const Places& places, uint8_t* memory) {
    Image image{};
    image.format = layout.format;
    image.width = size.width;
    image.height = size.height;
    for (size_t k = 0; k < static_cast<size_t>(layout.planes); k++) {
        image.plane[k] = memory + places.offset[k];
        image.pitch[k] = places.pitch[k];
    }
    return image;
}

std::string in_words(Size size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

enum class InPlace : uint8_t { no, luma, all };

// The cases of one conversion.
class Cases {
public:
    explicit Cases(const Conversion& conversion) : conversion_(conversion) {}

    void add(Size source, Size destination, const Pitches& pitches, const std::string& what, InPlace in_place = InPlace::no) {
        const Layout &from = *zivcolor::layout_of(conversion_.source), &to = *zivcolor::layout_of(conversion_.destination);
        Case c;
        c.what = what;
        c.seed = ++seed_;
        c.alpha = static_cast<uint8_t>(37 * seed_);
        // An even width keeps the rows of bands apart; planes are tight, as some kernels take them to be.
        c.in_bands = source == destination && source.width % 2 == 0 && source.height >= 2 && pitches == Pitches{} &&
                     in_place == InPlace::no;
        c.bytes = static_cast<size_t>(7 * seed_ % 64);
        const Places source_places = lay_out(from, source, pitches.source, pitches.upward & 7, c.bytes);
        Places places = lay_out(to, destination, pitches.destination, pitches.upward >> 3, c.bytes);
        if (in_place != InPlace::no) places.offset[0] = source_places.offset[0];
        if (in_place == InPlace::all) places.offset = source_places.offset;
        c.images = [=, &from, &to](uint8_t* memory) {
            return Images{image_at(from, source, source_places, memory), image_at(to, destination, places, memory)};
        };
        c.call = [images = c.images, convert = conversion_.convert, alpha = c.alpha](const KernelTable& kernels,
                                                                                     uint8_t* memory) {
            const Images both = images(memory);
            return int64_t{convert(kernels, &both.source, &both.destination, alpha)};
        };
        all.push_back(std::move(c));
    }
    void add(Size size, const Pitches& pitches, const std::string& what, InPlace in_place = InPlace::no) {
        add(size, size, pitches, in_words(size) + what, in_place);
    }

    // Null descriptors, other format codes and sizes of 0, each as one digit of what is returned.
    void add_refusals() {
        Case c;
        c.what = "null pointers, other layouts, sizes of 0";
        c.seed = ++seed_;
        c.bytes = 4096;
        c.call = [conversion = conversion_](const KernelTable& kernels, uint8_t* memory) {
            Images sound{};
            for (Image* image : {&sound.source, &sound.destination}) {
                image->format = image == &sound.source ? conversion.source : conversion.destination;
                image->width = image->height = 2;
                for (int k = 0; k < 3; k++) {
                    image->plane[k] = memory + 512 + (image == &sound.source ? 0 : 2048) + 256 * k;
                    image->pitch[k] = zivcolor::layout_of(image->format)->row_bytes(k, 2);
                }
            }
            int64_t returned = 0;
            const auto note = [&](const Image* src, const Image* dst) {
                returned = returned * 8 + conversion.convert(kernels, src, dst, 1) + 3;
            };
            note(nullptr, &sound.destination);
            note(&sound.source, nullptr);
            note(nullptr, nullptr);
            for (Image Images::*one : {&Images::source, &Images::destination}) {
                Images other = sound;
                (other.*one).format = 0x7FF;
                note(&other.source, &other.destination);
                for (int32_t Image::*side : {&Image::width, &Image::height}) {
                    other = sound;
                    other.*one.*side = 0;
                    note(&other.source, &other.destination);
                }
            }
            return returned;
        };
        all.push_back(std::move(c));
    }

    std::vector<Case> all;

private:
    Conversion conversion_;
    uint64_t seed_ = 0;
};

// Widths about every block and vector, heights in turn.
void add_tight(Cases& cases) {
    constexpr int widths[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 15, 16,  17,  18,  24,  31,  32,  33,  34, 46,
                              47, 48, 49, 62, 63, 64, 65, 66, 80, 95, 96, 127, 128, 129, 144, 191, 192, 194, 257};
    constexpr int heights[] = {2, 3, 4, 5, 8};
    size_t turn = 0;
    for (const int width : widths) cases.add({width, heights[turn++ % std::size(heights)]}, {}, "");
    for (const Size size : {Size{16, 1}, Size{35, 1}, Size{48, 35}, Size{130, 68}, Size{640, 362}}) cases.add(size, {}, "");
}

void add_pitched(Cases& cases) {
    int n = 0;
    for (const Size size : {Size{16, 4}, Size{21, 5}, Size{34, 4}, Size{64, 6}, Size{81, 3}, Size{130, 7}}) {
        n += 3;
        cases.add(size, {{n, 2 * n % 7, n + 1}, {n % 4, n + 8, 5 * n % 11}, 0}, ", padded rows");
    }
    for (const Size size : {Size{16, 4}, Size{22, 6}, Size{50, 2}, Size{66, 5}, Size{128, 4}}) {
        n += 5;
        cases.add(size, {{n % 5, 1, 2}, {0, n % 3, 4}, 1 + n % 62}, ", rows upward in some planes");
    }
    cases.add(Size{96, 4}, {{}, {}, 63}, ", rows upward");
    cases.add({70, 6}, {34, 4}, {}, "70x6 to 34x4");
    cases.add({34, 4}, {34, 6}, {{8, 8, 8}, {}, 0}, "34x4 to 34x6");
}

// Of the result of NV41 to NV21 all bytes are determined where rows of chroma are tight, and whole blocks or none.
void add_upsampled(Cases& cases) {
    for (const int width : {4, 8, 12, 16, 20, 24, 28, 32, 64, 96, 128, 160, 256})
        for (const int height : {4, 8, 16}) cases.add(Size{width, height}, {}, "");
    cases.add(Size{640, 360}, {}, "");
    for (const int width : {8, 32, 64, 160}) cases.add(Size{width, 8}, {}, ", luma shared", InPlace::luma);
    for (const int width : {8, 32, 64, 160}) cases.add(Size{width, 12}, {}, ", in place", InPlace::all);
}

// Streaming stores are the same for all pairs: one of each kind of layouts, with a tail.
void add_beyond_caches(Cases& cases, std::string_view name) {
    constexpr Size size{3890, 2192};
    for (const std::string_view streamed : {"zivColorNV21toBGR888u8", "zivColorI420toRGBA8888u8", "zivColorRGB888toNV21u8",
                                            "zivColorBGR888toI420u8", "zivColorI422HtoYUYVu8", "zivColorNV21toYUVu8"})
        if (name == streamed) {
            static_assert(int64_t{size.width} * size.height * 3 > zivcolor::cached_bytes);
            cases.add(size, {}, "");
            cases.all.back().beyond_caches = true;
        }
}

std::vector<Case> conversion_cases(const Conversion& conversion) {
    Cases cases(conversion);
    if (conversion.name == "zivColorNV41toNV21") {  // it ends the process, but for a width of 0
        for (const int height : {4, 8})
            cases.add({0, height}, {32, height}, {}, "0x" + std::to_string(height) + " to 32 columns");
    } else if (conversion.name == "zivColorNV41toNV21_2") {
        add_upsampled(cases);
    } else {
        add_tight(cases);
        add_pitched(cases);
    }
    if (conversion.name == "zivColorNV21toNV41" || conversion.name == "zivColorNV21toNV41_2")
        for (const int width : {32, 64, 128, 160}) {
            cases.add(Size{width, 8}, {}, ", luma shared", InPlace::luma);
            cases.add(Size{width, 8}, {}, ", in place", InPlace::all);
        }
    if (conversion.name == "zivColorNV12toNV21u8" || conversion.name == "zivColorRGB888toBGR888u8_2")
        for (const Size size : {Size{16, 2}, Size{34, 4}, Size{63, 5}, Size{64, 6}, Size{200, 8}})
            cases.add(size, {}, ", in place", InPlace::all);
    cases.add_refusals();
    add_beyond_caches(cases, conversion.name);
    return std::move(cases.all);
}

// Chroma rows of this one lie two pitches apart from the start of each band, so that bands overlap.
bool bands_overlap(std::string_view name) { return name == "zivColorI422HtoNV12u8"; }

}  // namespace

std::vector<Function> functions() {
    std::vector<Function> all;
    const char* family = "";
    const auto add = [&](const Conversion& conversion, bool dispatched, bool threaded) {
        all.push_back({conversion.name.data(), family, dispatched, threaded && !bands_overlap(conversion.name),
                       conversion_cases(conversion)});
    };
    constexpr bool Dispatched = true, Direct = false;
    constexpr int NoTask = -1;
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile) \
    add({#name, zivPixFmt_##source, zivPixFmt_##destination, convert<&KernelTable::name>}, dispatch, (task) != NoTask);
#define ZIVCOLOR_ROUTINE(result, name, parameters, arguments) \
    all.push_back({#name, family, false, false, routine_cases(#name)});
#define ZIVCOLOR_PART(part, family_name, LISTS) \
    family = #family_name;                      \
    ZIVCOLOR_##LISTS##_CONVERSIONS(ZIVCOLOR_CONVERSION) ZIVCOLOR_##LISTS##_ROUTINES(ZIVCOLOR_ROUTINE)
    ZIVCOLOR_PARTS(ZIVCOLOR_PART)
#undef ZIVCOLOR_PART
#undef ZIVCOLOR_ROUTINE
#undef ZIVCOLOR_CONVERSION
    return all;
}

uint32_t run(const Case& c, const std::function<int64_t(uint8_t* memory)>& call, std::vector<uint8_t>& memory) {
    const uint64_t rounds = c.beyond_caches ? 1 : 4;
    if (memory.size() < c.bytes) memory.resize(c.bytes);
    uint32_t all = 0;
    for (uint64_t round = 0; round < rounds; round++) {
        fill(memory.data(), c.bytes, c.seed + (round << 32));
        const int64_t returned = call(memory.data());
        all = all * 0x01000193 ^ digest(memory.data(), c.bytes, returned);
    }
    return all;
}

}  // namespace tool
