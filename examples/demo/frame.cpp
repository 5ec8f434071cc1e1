// SPDX-License-Identifier: MIT
#include "frame.h"

#include <cstring>
#include <deque>
#include <map>
#include <stdexcept>

namespace demo {

namespace {

struct Plane {
    int pitch, rows;
};

std::vector<Plane> planes_of(uint32_t format, int w, int h) {
    // The kernels from and to NV41 take its chroma at the pitch of NV21's.
    if (format == zivPixFmt_NV41) format = zivPixFmt_NV21;
    const zivcolor::Layout& layout = *zivcolor::layout_of(format);
    std::vector<Plane> planes;
    planes.reserve(static_cast<size_t>(layout.planes));
    for (int k = 0; k < layout.planes; k++) planes.push_back({layout.row_bytes(k, w), layout.rows(k, h)});
    return planes;
}

// The next layout on a shortest way from one layout to another; 0 if there is none.
uint32_t step_towards(uint32_t from, uint32_t to) {
    std::map<uint32_t, uint32_t> next{{to, to}};
    for (std::deque<uint32_t> open{to}; !open.empty(); open.pop_front())
        for (const zivcolor::Layout& layout : zivcolor::layouts)
            if (!next.count(layout.format) && converts(layout.format, open.front())) {
                next[layout.format] = open.front();
                open.push_back(layout.format);
            }
    return next.count(from) ? next[from] : 0;
}

void convert(const Frame& source, Frame& destination) {
    // One chroma row for four luma rows' worth of pairs: the kernel from I422H to NV12 steps its chroma rows by twice their
    // pitch.
    __tag_KOBR_OFFSCREEN target = destination.image;
    if (source.image.format == zivPixFmt_I422H && target.format == zivPixFmt_NV12) target.pitch[1] /= 2;
    if (zivColorCvt(&source.image, &target, {255}) != zivStatus_OK)
        throw std::logic_error("a conversion that was promised is refused");
}

Frame led(Frame frame, uint32_t format) {
    while (frame.image.format != format) {
        const uint32_t step = step_towards(frame.image.format, format);
        if (step == 0) throw std::logic_error("no way between two layouts");
        Frame next(step, frame.image.width, frame.image.height);
        convert(frame, next);
        frame = std::move(next);
    }
    return frame;
}

void copy_plane(const Frame& from, int k, Frame& to, int m) {
    std::memcpy(to.image.plane[m], from.image.plane[k],
                static_cast<size_t>(from.image.pitch[k]) *
                    static_cast<size_t>(
                        planes_of(from.image.format, from.image.width, from.image.height)[static_cast<size_t>(k)].rows));
}

uint8_t widen(unsigned field, unsigned bits) { return static_cast<uint8_t>(field << (8 - bits) | field >> (2 * bits - 8)); }

Picture unpack_565(const Frame& frame) {
    Picture p(frame.image.width, frame.image.height);
    const bool red_high = frame.image.format == zivPixFmt_RGB565;
    for (size_t i = 0; i < p.rgb.size() / 3; i++) {
        const unsigned word = frame.image.plane[0][2 * i] | unsigned{frame.image.plane[0][2 * i + 1]} << 8;
        const uint8_t high = widen(word >> 11, 5), middle = widen(word >> 5 & 63, 6), low = widen(word & 31, 5);
        p.rgb[3 * i] = red_high ? high : low;
        p.rgb[3 * i + 1] = middle;
        p.rgb[3 * i + 2] = red_high ? low : high;
    }
    return p;
}

// Packed 4:2:2 of any order, re-ordered to YUYV, which the library reads.
Frame as_yuyv(const Frame& frame) {
    struct Order {
        int y0, u, y1, v;
    };
    const Order o = frame.image.format == zivPixFmt_YVYU   ? Order{0, 3, 2, 1}
                    : frame.image.format == zivPixFmt_UYVY ? Order{1, 0, 3, 2}
                                                           : Order{1, 2, 3, 0};
    Frame yuyv(zivPixFmt_YUYV, frame.image.width, frame.image.height);
    const uint8_t* s = frame.image.plane[0];
    uint8_t* d = yuyv.image.plane[0];
    for (int i = 0; i < frame.image.width * frame.image.height / 2; i++, s += 4, d += 4)
        d[0] = s[o.y0], d[1] = s[o.u], d[2] = s[o.y1], d[3] = s[o.v];
    return yuyv;
}

}  // namespace

Frame::Frame(uint32_t format, int width, int height) {
    const std::vector<Plane> planes = planes_of(format, width, height);
    size_t size = 0;
    for (const Plane& plane : planes) size += static_cast<size_t>(plane.pitch) * static_cast<size_t>(plane.rows);
    // Some tails run past the last row, by less than two rows.
    memory.resize(size + static_cast<size_t>(planes[0].pitch) * 2 + 64);
    image.format = format;
    image.width = width;
    image.height = height;
    uint8_t* at = memory.data();
    for (size_t k = 0; k < planes.size(); k++) {
        image.plane[k] = at;
        image.pitch[k] = planes[k].pitch;
        at += static_cast<size_t>(planes[k].pitch) * static_cast<size_t>(planes[k].rows);
    }
}

bool converts(uint32_t source, uint32_t destination) {
    static std::map<std::pair<uint32_t, uint32_t>, bool> known;
    const auto [row, is_new] = known.try_emplace({source, destination}, false);
    if (is_new) {
        Frame s(source, 32, 8), d(destination, 32, 16);
        d.image.height = 8;  // room for what runs past the last row
        row->second = zivColorCvt(&s.image, &d.image, {0}) == zivStatus_OK;
    }
    return row->second;
}

Frame in_layout(const Picture& picture, uint32_t format) {
    const int w = picture.width, h = picture.height;
    Frame rgb(zivPixFmt_RGB888, w, h);
    std::memcpy(rgb.image.plane[0], picture.rgb.data(), picture.rgb.size());
    if (format == zivPixFmt_RGB888 || step_towards(zivPixFmt_RGB888, format)) return led(std::move(rgb), format);
    Frame frame(format, w, h);
    if (format == zivPixFmt_YV12) {
        const Frame i420 = led(std::move(rgb), zivPixFmt_I420);
        copy_plane(i420, 0, frame, 0), copy_plane(i420, 1, frame, 2), copy_plane(i420, 2, frame, 1);
    } else if (format == zivPixFmt_I444) {
        const Frame yv24 = led(std::move(rgb), zivPixFmt_YV24);
        copy_plane(yv24, 0, frame, 0), copy_plane(yv24, 1, frame, 2), copy_plane(yv24, 2, frame, 1);
    } else if (format == zivPixFmt_I422V) {
        const Frame yv24 = led(std::move(rgb), zivPixFmt_YV24);
        copy_plane(yv24, 0, frame, 0);
        for (int y = 0; y < h / 2; y++) {
            std::memcpy(frame.image.plane[1] + y * w, yv24.image.plane[2] + 2 * y * w, static_cast<size_t>(w));
            std::memcpy(frame.image.plane[2] + y * w, yv24.image.plane[1] + 2 * y * w, static_cast<size_t>(w));
        }
    } else {
        throw std::logic_error(std::string("no way to ") + zivcolor::layout_of(format)->name);
    }
    return frame;
}

Picture shown(const Frame& frame) {
    const int w = frame.image.width, h = frame.image.height;
    Picture picture(w, h);
    switch (frame.image.format) {
        case zivPixFmt_RGB565:
        case zivPixFmt_BGR565: return unpack_565(frame);
        case zivPixFmt_YVYU:
        case zivPixFmt_UYVY:
        case zivPixFmt_VYUY: return shown(as_yuyv(frame));
        case zivPixFmt_ARGB8888:
            for (size_t i = 0; i < picture.rgb.size() / 3; i++)
                std::memcpy(&picture.rgb[3 * i], frame.image.plane[0] + 4 * i + 1, 3);
            return picture;
        case zivPixFmt_RGBA8888:
            for (size_t i = 0; i < picture.rgb.size() / 3; i++)
                std::memcpy(&picture.rgb[3 * i], frame.image.plane[0] + 4 * i, 3);
            return picture;
        case zivPixFmt_BGRA8888:
        case zivPixFmt_BGR888: {
            const size_t step = frame.image.format == zivPixFmt_BGR888 ? 3 : 4;
            for (size_t i = 0; i < picture.rgb.size() / 3; i++)
                for (size_t k = 0; k < 3; k++) picture.rgb[3 * i + k] = frame.image.plane[0][step * i + 2 - k];
            return picture;
        }
        case zivPixFmt_YV24: {
            // Packed to Y U V, which the library reads.
            Frame yuv(zivPixFmt_YUV, w, h);
            for (int i = 0; i < w * h; i++) {
                yuv.image.plane[0][3 * i] = frame.image.plane[0][i];
                yuv.image.plane[0][3 * i + 1] = frame.image.plane[2][i];
                yuv.image.plane[0][3 * i + 2] = frame.image.plane[1][i];
            }
            return shown(yuv);
        }
        default: break;
    }
    Frame copy(frame.image.format, w, h);
    std::memcpy(copy.memory.data(), frame.memory.data(), frame.memory.size());
    const Frame rgb = led(std::move(copy), zivPixFmt_RGB888);
    std::memcpy(picture.rgb.data(), rgb.image.plane[0], picture.rgb.size());
    return picture;
}

}  // namespace demo
