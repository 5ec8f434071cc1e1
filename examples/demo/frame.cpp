// SPDX-License-Identifier: MIT
#include "frame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace demo {

namespace {

// The three samples of a pixel, R G B or Y U V: the plane that has each, and its byte in the first group of the plane.
struct Order {
    uint32_t format;
    int plane[3], byte[3];
};
constexpr Order orders[] = {
    {zivPixFmt_BGR888, {0, 0, 0}, {2, 1, 0}},   {zivPixFmt_RGB888, {0, 0, 0}, {0, 1, 2}},
    {zivPixFmt_BGRA8888, {0, 0, 0}, {2, 1, 0}}, {zivPixFmt_ARGB8888, {0, 0, 0}, {1, 2, 3}},
    {zivPixFmt_RGBA8888, {0, 0, 0}, {0, 1, 2}}, {zivPixFmt_YUV, {0, 0, 0}, {0, 1, 2}},
    {zivPixFmt_YUYV, {0, 0, 0}, {0, 1, 3}},     {zivPixFmt_YVYU, {0, 0, 0}, {0, 3, 1}},
    {zivPixFmt_UYVY, {0, 0, 0}, {1, 0, 2}},     {zivPixFmt_VYUY, {0, 0, 0}, {1, 2, 0}},
    {zivPixFmt_I420, {0, 1, 2}, {0, 0, 0}},     {zivPixFmt_I422V, {0, 1, 2}, {0, 0, 0}},
    {zivPixFmt_I422H, {0, 1, 2}, {0, 0, 0}},    {zivPixFmt_I444, {0, 1, 2}, {0, 0, 0}},
    {zivPixFmt_YV12, {0, 2, 1}, {0, 0, 0}},     {zivPixFmt_YV24, {0, 2, 1}, {0, 0, 0}},
    {zivPixFmt_NV12, {0, 1, 1}, {0, 0, 1}},     {zivPixFmt_NV21, {0, 1, 1}, {0, 1, 0}},
    {zivPixFmt_LPI422H, {0, 1, 1}, {0, 0, 1}},  {zivPixFmt_NV41, {0, 1, 1}, {0, 1, 0}},
};

// Where the samples of one kind lie: one for so many columns and rows of pixels.
struct Channel {
    uint8_t* first;
    int columns, rows, step;
    int64_t row_step;

    uint8_t* at(int x, int y) const { return first + y / rows * row_step + int64_t{x / columns} * step; }
};

std::array<Channel, 3> channels_of(const zivcolor_image& image, const zivcolor_room& room) {
    const zivcolor_layout& layout = *zivcolor_layout_of(room.format);
    const Order* order =
        std::find_if(std::begin(orders), std::end(orders), [&](const Order& o) { return o.format == room.format; });
    if (order == std::end(orders)) throw std::logic_error("a layout without channels of whole bytes");
    std::array<Channel, 3> channels{};
    for (size_t k = 0; k < 3; k++) {
        const int plane = order->plane[k];
        uint8_t* first = image.plane[plane] + order->byte[k];
        if (plane != 0) channels[k] = {first, layout.chroma_columns, layout.chroma_rows, layout.chroma_bytes, room.step[plane]};
        else if (k == 0) channels[k] = {first, 1, 1, layout.bytes / layout.columns, room.step[0]};
        else channels[k] = {first, layout.columns, 1, layout.bytes, room.step[0]};
    }
    return channels;
}

uint8_t byte(double v) { return static_cast<uint8_t>(std::clamp(std::lround(v), 0L, 255L)); }

// One of Y, U, V of a pixel.
double yuv_sample(const uint8_t* rgb, size_t k) {
    static constexpr double weights[3][3] = {{0.299, 0.587, 0.114}, {-0.168736, -0.331264, 0.5}, {0.5, -0.418688, -0.081312}};
    return weights[k][0] * rgb[0] + weights[k][1] * rgb[1] + weights[k][2] * rgb[2] + (k == 0 ? 0 : 128);
}

// 16 fractional bits; luma is whole, so that a colour is luma and a rounded term of chroma alone.
void rgb_pixel(int y, int u, int v, uint8_t* rgb) {
    const auto plus = [y](int term) { return static_cast<uint8_t>(std::clamp(y + ((term + 32768) >> 16), 0, 255)); };
    u -= 128, v -= 128;
    rgb[0] = plus(91881 * v), rgb[1] = plus(-22554 * u - 46802 * v), rgb[2] = plus(116130 * u);
}

uint8_t widened(unsigned field, unsigned bits) { return static_cast<uint8_t>(field << (8 - bits) | field >> (2 * bits - 8)); }

Picture shown_565(const Frame& frame) {
    Picture picture(frame.room.width, frame.room.height);
    const bool red_high = frame.room.format == zivPixFmt_RGB565;
    for (int y = 0; y < picture.height; y++)
        for (int x = 0; x < picture.width; x++) {
            const uint8_t* bytes = frame.image.plane[0] + int64_t{y} * frame.room.step[0] + 2 * x;
            const unsigned word = bytes[0] | unsigned{bytes[1]} << 8;
            const uint8_t high = widened(word >> 11, 5), low = widened(word & 31, 5);
            uint8_t* pixel = picture.at(x, y);
            pixel[0] = red_high ? high : low, pixel[1] = widened(word >> 5 & 63, 6), pixel[2] = red_high ? low : high;
        }
    return picture;
}

zivcolor_room room_of(uint32_t format, int width, int height) {
    zivcolor_room room;
    if (zivcolor_room_of_layout(format, width, height, 1, &room) != zivStatus_OK) throw std::logic_error("no such image");
    return room;
}

}  // namespace

Frame::Frame(const zivcolor_room& needed) : room(needed), memory(needed.size), image(zivcolor_image_in(&room, memory.data())) {}

Frame::Frame(uint32_t format, int width, int height) : Frame(room_of(format, width, height)) {}

namespace {

struct Rooms {
    zivcolor_room source{}, destination{};
};

Rooms rooms_of(const zivcolor_pair& pair, int width, int height) {
    Rooms rooms;
    if (zivcolor_room_of_pair(pair.source, pair.destination, width, height, 1, &rooms.source, &rooms.destination) !=
        zivStatus_OK)
        throw std::runtime_error("the picture is too large");
    return rooms;
}

}  // namespace

FramePair::FramePair(const zivcolor_pair& pair, int width, int height)
    : source(rooms_of(pair, width, height).source), destination(rooms_of(pair, width, height).destination) {}

void fill(Frame& frame, const Picture& picture) {
    const std::array<Channel, 3> channels = channels_of(frame.image, frame.room);
    const bool rgb = is_rgb(frame.room.format);
    for (size_t k = 0; k < 3; k++) {
        const Channel& channel = channels[k];
        for (int y = 0; y < picture.height; y += channel.rows)
            for (int x = 0; x < picture.width; x += channel.columns) {
                if (rgb) {
                    *channel.at(x, y) = picture.at(x, y)[k];
                    continue;
                }
                double sum = 0;
                const int rows = std::min(channel.rows, picture.height - y),
                          columns = std::min(channel.columns, picture.width - x);
                for (int j = 0; j < rows; j++)
                    for (int i = 0; i < columns; i++) sum += yuv_sample(picture.at(x + i, y + j), k);
                *channel.at(x, y) = byte(sum / (rows * columns));
            }
    }
}

Picture shown(const Frame& frame) {
    if (frame.room.format == zivPixFmt_RGB565 || frame.room.format == zivPixFmt_BGR565) return shown_565(frame);
    const std::array<Channel, 3> channels = channels_of(frame.image, frame.room);
    const bool rgb = is_rgb(frame.room.format);
    Picture picture(frame.room.width, frame.room.height);
    for (int y = 0; y < picture.height; y++)
        for (int x = 0; x < picture.width; x++) {
            const uint8_t samples[3] = {*channels[0].at(x, y), *channels[1].at(x, y), *channels[2].at(x, y)};
            if (rgb) std::copy_n(samples, 3, picture.at(x, y));
            else rgb_pixel(samples[0], samples[1], samples[2], picture.at(x, y));
        }
    return picture;
}

Picture before_checkerboard(const Frame& frame) {
    Picture picture = shown(frame);
    const int square = std::max(4, std::max(picture.width, picture.height) / 24);
    const int alpha_byte = frame.room.format == zivPixFmt_ARGB8888 ? 0 : 3;
    for (int y = 0; y < picture.height; y++)
        for (int x = 0; x < picture.width; x++) {
            const int alpha = frame.image.plane[0][int64_t{y} * frame.room.step[0] + 4 * x + alpha_byte];
            blend(picture.at(x, y), alpha, checkerboard(x, y, square));
        }
    return picture;
}

}  // namespace demo
