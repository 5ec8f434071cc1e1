#include "harness/conversions.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace harness {

using zivcolor::Image;
using zivcolor::KernelTable;

const std::vector<Conversion>& conversions() {
    [[maybe_unused]] static constexpr int NoTask = -1;
    [[maybe_unused]] static constexpr bool Alpha = true, Opaque = false, Dispatched = true, Direct = false;
#define ZIVCOLOR_CALL_Opaque(name) k.name(s, d)
#define ZIVCOLOR_CALL_Alpha(name) k.name(s, d, a)
#define ZIVCOLOR_CONVERSION(name, source, destination, alpha, dispatch, task)               \
    {#name,                                                                                 \
     zivPixFmt_##source,                                                                    \
     zivPixFmt_##destination,                                                               \
     alpha,                                                                                 \
     dispatch,                                                                              \
     task,                                                                                  \
     [](const KernelTable& k, const Image* s, const Image* d, [[maybe_unused]] uint8_t a) { \
         return ZIVCOLOR_CALL_##alpha(name);                                                \
     }},
    static const std::vector<Conversion> rows = {ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)};
#undef ZIVCOLOR_CONVERSION
    return rows;
}

const Conversion& conversion(const std::string& name) {
    for (const Conversion& c : conversions())
        if (name == c.name) return c;
    throw std::invalid_argument("no conversion " + name);
}

int plane_count(uint32_t format) {
    switch (format >> 8) {
        case 6: return 3;
        case 8: return 2;
        default: return 1;
    }
}

int tight_pitch(uint32_t format, int plane, int width) {
    const int w = std::max(width, 0), even = (w + 1) / 2 * 2;
    switch (format) {
        case zivPixFmt_BGR565:
        case zivPixFmt_RGB565: return 2 * w;
        case zivPixFmt_BGR888:
        case zivPixFmt_RGB888:
        case zivPixFmt_YUV: return 3 * w;
        case zivPixFmt_BGRA8888:
        case zivPixFmt_ARGB8888:
        case zivPixFmt_RGBA8888: return 4 * w;
        case zivPixFmt_YUYV:
        case zivPixFmt_YVYU:
        case zivPixFmt_UYVY:
        case zivPixFmt_VYUY: return 2 * even;
        case zivPixFmt_I420:
        case zivPixFmt_YV12:
        case zivPixFmt_I422H: return plane == 0 ? w : even / 2;
        case zivPixFmt_I422V:
        case zivPixFmt_I444:
        case zivPixFmt_YV24: return w;
        case zivPixFmt_NV12:
        case zivPixFmt_NV21:
        case zivPixFmt_LPI422H: return plane == 0 ? w : even;
        case zivPixFmt_NV41: return plane == 0 ? w : (w + 3) / 4 * 2;
        default: throw std::invalid_argument("unknown format");
    }
}

int plane_rows(uint32_t format, int plane, int height) {
    const int h = std::max(height, 0);
    if (plane == 0) return h;
    switch (format) {
        case zivPixFmt_I420:
        case zivPixFmt_YV12:
        case zivPixFmt_I422V:
        case zivPixFmt_NV12:
        case zivPixFmt_NV21: return (h + 1) / 2;
        case zivPixFmt_NV41: return (h + 3) / 4;
        default: return h;
    }
}

const char* format_name(uint32_t format) {
    struct Named {
        uint32_t format;
        const char* name;
    };
#define NAMED(layout) \
    { zivPixFmt_##layout, #layout }
    static constexpr Named all[] = {NAMED(BGR565),   NAMED(RGB565),   NAMED(BGR888), NAMED(RGB888), NAMED(BGRA8888),
                                    NAMED(ARGB8888), NAMED(RGBA8888), NAMED(YUV),    NAMED(YUYV),   NAMED(YVYU),
                                    NAMED(UYVY),     NAMED(VYUY),     NAMED(I420),   NAMED(I422V),  NAMED(I422H),
                                    NAMED(I444),     NAMED(YV12),     NAMED(YV24),   NAMED(NV12),   NAMED(NV21),
                                    NAMED(LPI422H),  NAMED(NV41)};
#undef NAMED
    for (const Named& row : all)
        if (row.format == format) return row.name;
    return "unknown";
}

ImagePair tight(const Conversion& c, int width, int height) {
    ImagePair p{width, height, width, height, {}, {}, 200};
    for (int k = 0; k < plane_count(c.source); k++) p.source_pitch[k] = tight_pitch(c.source, k, width);
    for (int k = 0; k < plane_count(c.destination); k++) p.destination_pitch[k] = tight_pitch(c.destination, k, width);
    return p;
}

std::string describe(const Conversion& c, const ImagePair& p) {
    std::ostringstream s;
    s << c.name << " " << p.source_width << "x" << p.source_height << " to " << p.destination_width << "x"
      << p.destination_height << ", pitches";
    for (const int pitch : p.source_pitch) s << " " << pitch;
    s << " to";
    for (const int pitch : p.destination_pitch) s << " " << pitch;
    return s.str();
}

Call call_of(const Conversion& c, const ImagePair& p) {
    return [&c, p](const KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
        Image source{c.source, p.source_width, p.source_height, {}, {}};
        Image destination{c.destination, p.destination_width, p.destination_height, {}, {}};
        for (int k = 0; k < 3; k++) {
            source.plane[k] = buffers[k];
            source.pitch[k] = p.source_pitch[k];
            destination.plane[k] = buffers[3 + k];
            destination.pitch[k] = p.destination_pitch[k];
        }
        return c.convert(kernels, &source, &destination, p.alpha);
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
