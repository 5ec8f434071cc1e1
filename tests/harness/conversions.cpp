// SPDX-License-Identifier: MIT
#include "harness/conversions.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <type_traits>

#include "../../docs/facts_table.h"
#include "core/streaming.h"

namespace harness {

using zivcolor::Image;
using zivcolor::KernelTable;

namespace {

int32_t call(zivcolor::OpaqueConversion* kernel, const Image* src, const Image* dst, uint8_t) { return kernel(src, dst); }
int32_t call(zivcolor::AlphaConversion* kernel, const Image* src, const Image* dst, uint8_t alpha) {
    return kernel(src, dst, alpha);
}
template <auto kernel>
int32_t convert(const KernelTable& kernels, const Image* src, const Image* dst, uint8_t alpha) {
    return call(kernels.*kernel, src, dst, alpha);
}

template <auto kernel, uint32_t source, uint32_t destination, zivcolor::Tiles tiles>
int32_t convert_as_entry(const KernelTable& kernels, const Image* src, const Image* dst, uint8_t alpha) {
    if constexpr (std::is_same_v<decltype(kernels.*kernel), zivcolor::AlphaConversion* const&>)
        return zivcolor::convert<kernel, source, destination, tiles>(kernels, src, dst, alpha);
    else return zivcolor::convert<kernel, source, destination, tiles>(kernels, src, dst);
}

#if defined(__x86_64__)
int32_t stream(zivcolor::OpaqueConversion* kernel, zivcolor::StreamedPair pair, const Image* src, const Image* dst, uint8_t) {
    return zivcolor::convert_streaming(kernel, pair, src, dst);
}
int32_t stream(zivcolor::AlphaConversion* kernel, zivcolor::StreamedPair pair, const Image* src, const Image* dst,
               uint8_t alpha) {
    return zivcolor::convert_streaming(kernel, pair, src, dst, alpha);
}
template <auto kernel, uint32_t source, uint32_t destination, zivcolor::Tiles tiles>
int32_t convert_streaming(const KernelTable& kernels, const Image* src, const Image* dst, uint8_t alpha) {
    return stream(kernels.*kernel, zivcolor::streamed_pair(source, destination, tiles), src, dst, alpha);
}
template <auto kernel, uint32_t source, uint32_t destination, zivcolor::Tiles tiles>
constexpr Conversion::Convert* streaming =
    tiles == zivcolor::Tiles::NoTile ? nullptr : convert_streaming<kernel, source, destination, tiles>;
#else
template <auto kernel, uint32_t source, uint32_t destination, zivcolor::Tiles tiles>
constexpr Conversion::Convert* streaming = nullptr;
#endif

}  // namespace

const std::vector<Conversion>& conversions() {
    [[maybe_unused]] static constexpr int NoTask = -1;
    [[maybe_unused]] static constexpr bool Alpha = true, Opaque = false, Dispatched = true, Direct = false;
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task, tile)                            \
    {#name,                                                                                                    \
     zivPixFmt_##source,                                                                                       \
     zivPixFmt_##destination,                                                                                  \
     alpha,                                                                                                    \
     dispatch,                                                                                                 \
     task,                                                                                                     \
     convert<&KernelTable::name>,                                                                              \
     convert_as_entry<&KernelTable::name, zivPixFmt_##source, zivPixFmt_##destination, zivcolor::Tiles::tile>, \
     streaming<&KernelTable::name, zivPixFmt_##source, zivPixFmt_##destination, zivcolor::Tiles::tile>},
    static const std::vector<Conversion> rows = {ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)};
#undef ZIVCOLOR_CONVERSION
    return rows;
}

const Conversion& conversion(const std::string& name) {
    for (const Conversion& c : conversions())
        if (name == c.name) return c;
    throw std::invalid_argument("no conversion " + name);
}

namespace {

const zivcolor::Layout& layout(uint32_t format) {
    const zivcolor::Layout* found = zivcolor::layout_of(format);
    if (!found) throw std::invalid_argument("unknown format");
    return *found;
}

}  // namespace

int plane_count(uint32_t format) { return layout(format).planes; }
int tight_pitch(uint32_t format, int plane, int width) { return layout(format).row_bytes(plane, std::max(width, 0)); }
int plane_rows(uint32_t format, int plane, int height) { return layout(format).rows(plane, std::max(height, 0)); }

const char* format_name(uint32_t format) {
    const zivcolor::Layout* found = zivcolor::layout_of(format);
    return found ? found->name : "unknown";
}

const std::vector<uint32_t>& codes() {
    static const std::vector<uint32_t> all = [] {
        std::vector<uint32_t> formats;
        for (const zivcolor::Layout& one : zivcolor::layouts) formats.push_back(one.format);
        return formats;
    }();
    return all;
}

namespace {

// The ends of the range, what may pass for a sound pitch of this image, any number.
int32_t nonsense_pitch(const Image& image, uint32_t format, Random& random) {
    const zivcolor::Layout* layout = zivcolor::layout_of(format);
    switch (random.below(6)) {
        case 0: return INT_MIN;
        case 1: return INT_MAX;
        case 2:
        case 3:
            if (layout && image.width > 0 && image.width < 1 << 20)
                return layout->row_bytes(random.below(2) ? 0 : layout->planes - 1, image.width);
            [[fallthrough]];
        case 4: return random.between(-64, 64);
        default: return static_cast<int32_t>(random.next());
    }
}

// Null, or one of the addresses next to it: no memory is there.
uint8_t* nonsense_plane(Random& random) {
    constexpr uintptr_t places[] = {0, 1, 64, 255};
    return reinterpret_cast<uint8_t*>(places[random.below(4)]);
}

}  // namespace

void fill_beyond_layout(Image& image, uint32_t format, Random& random) {
    const zivcolor::Layout* layout = zivcolor::layout_of(format);
    for (int k = layout ? layout->planes : 0; k < 4; k++)
        image.plane[k] = nonsense_plane(random), image.pitch[k] = nonsense_pitch(image, format, random);
}

void fill_unread(const Conversion& c, Image& source, Image& destination, Random& random) {
    fill_beyond_layout(source, c.source, random);
    fill_beyond_layout(destination, c.destination, random);
    const facts::Facts* const f = facts::find(facts::conversions, c.name);
    if (random.below(2)) return;
    for (int k = 0; k < 3; k++) {
        if (!f || !(f->source_pitches & (1 << k))) source.pitch[k] = nonsense_pitch(source, c.source, random);
        if (!f || !(f->destination_pitches & (1 << k)))
            destination.pitch[k] = nonsense_pitch(destination, c.destination, random);
    }
}

ImagePair tight(const Conversion& c, int width, int height) {
    ImagePair p{width, height, width, height, {}, {}, 200, true};
    for (int k = 0; k < plane_count(c.source); k++) p.source_pitch[k] = tight_pitch(c.source, k, width);
    for (int k = 0; k < plane_count(c.destination); k++) p.destination_pitch[k] = tight_pitch(c.destination, k, width);
    return p;
}

void negate_some_pitches(ImagePair& p, Random& random, int padding) {
    const int which = random.between(1, 63);
    for (int k = 0; k < 3; k++) {
        p.source_pitch[k] += random.below(padding), p.destination_pitch[k] += random.below(padding);
        if (which & (1 << k)) p.source_pitch[k] = -p.source_pitch[k];
        if (which & (8 << k)) p.destination_pitch[k] = -p.destination_pitch[k];
    }
}

namespace {

// The descriptors without their planes.
struct Descriptors {
    Image source, destination;
};
Descriptors descriptors_of(const Conversion& c, const ImagePair& p) {
    Descriptors d{{c.source, p.source_width, p.source_height, {}, {}},
                  {c.destination, p.destination_width, p.destination_height, {}, {}}};
    uint64_t seed = p.alpha;
    const auto mix = [&](int32_t value) { seed = seed * 0x100000001B3 + static_cast<uint32_t>(value); };
    for (const int32_t size : {p.source_width, p.source_height, p.destination_width, p.destination_height}) mix(size);
    for (int k = 0; k < 3; k++) {
        mix(d.source.pitch[k] = p.source_pitch[k]);
        mix(d.destination.pitch[k] = p.destination_pitch[k]);
    }
    Random random{seed};
    if (p.fill_unread) fill_unread(c, d.source, d.destination, random);
    return d;
}

}  // namespace

std::string describe(const Conversion& c, const ImagePair& p) {
    const Descriptors d = descriptors_of(c, p);
    std::ostringstream s;
    s << c.name << " " << p.source_width << "x" << p.source_height << " to " << p.destination_width << "x"
      << p.destination_height << ", pitches";
    for (int k = 0; k < 3; k++) s << " " << d.source.pitch[k];
    s << " to";
    for (int k = 0; k < 3; k++) s << " " << d.destination.pitch[k];
    return s.str();
}

Call call_of(const Conversion& c, const ImagePair& p) {
    const int source_planes = p.fill_unread ? plane_count(c.source) : 3;
    const int destination_planes = p.fill_unread ? plane_count(c.destination) : 3;
    return [=, &c, d = descriptors_of(c, p), alpha = p.alpha](const KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
        Image source = d.source, destination = d.destination;
        for (int k = 0; k < source_planes; k++) source.plane[k] = buffers[k];
        for (int k = 0; k < destination_planes; k++) destination.plane[k] = buffers[3 + k];
        return c.convert(kernels, &source, &destination, alpha);
    };
}

std::vector<Room> rooms_of(const Conversion& c, const ImagePair& p) {
    const int columns = std::max({p.source_width, p.destination_width, 0});
    const int rows = std::max({p.source_height, p.destination_height, 0}) + 4;
    static constexpr const char* names[] = {"source plane 0",      "source plane 1",      "source plane 2",
                                            "destination plane 0", "destination plane 1", "destination plane 2"};
    std::vector<Room> rooms(6, Room{64, 64});
    for (size_t k = 0; k < 6; k++) rooms[k].plane.name = names[k];
    const auto give = [&](int first, uint32_t format, const int32_t* pitch, int width) {
        int step = 0;
        bool up = false;
        for (int k = 0; k < 3; k++) step = std::max(step, std::abs(pitch[k])), up = up || pitch[k] < 0;
        step = std::max(step, tight_pitch(format, 0, columns));
        const auto reach = static_cast<size_t>(2 * rows * step + 4 * columns + 256);
        for (int k = 0; k < plane_count(format); k++) {
            Room& room = rooms[static_cast<size_t>(first + k)];
            room.before = up ? reach : 256 + static_cast<size_t>(2 * step);
            room.after = reach;
            room.plane.pitch = pitch[k];
            room.plane.row_bytes = tight_pitch(format, k, width);
            room.plane.columns = width;
        }
    };
    give(0, c.source, p.source_pitch, p.source_width);
    give(3, c.destination, p.destination_pitch, p.destination_width);
    return rooms;
}

}  // namespace harness
