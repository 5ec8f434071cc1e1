// SPDX-License-Identifier: MIT
// What to take for each source and destination that phones have: one kernel, or several where the pair's own is far off or
// missing. docs/formats.md shows the distances that are measured of them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "zivcolor.h"

namespace facts {

struct Step {
    std::string_view kernel;
    bool in_place = false;
};
constexpr bool InPlace = true;

struct Advice {
    uint32_t source, destination;
    std::vector<Step> steps;
    std::string_view why;
};

inline const std::vector<Advice> advices = {
    // Camera frames to pixels. Exchanging the outer bytes makes RGB888 of BGR888 as well as the other way about.
    {zivPixFmt_NV21, zivPixFmt_BGR888, {{"zivColorNV21toBGR888u8"}}, ""},
    {zivPixFmt_NV21,
     zivPixFmt_RGB888,
     {{"zivColorNV21toBGR888u8"}, {"zivColorRGB888toBGR888u8_2", InPlace}},
     "The pair's own kernel is far off. The second exchanges the outer bytes, whichever way."},
    {zivPixFmt_NV21, zivPixFmt_RGBA8888, {{"zivColorNV21toRGBA8888u8"}}, ""},
    {zivPixFmt_NV21, zivPixFmt_BGRA8888, {{"zivColorNV21toBGRA8888u8"}}, ""},
    {zivPixFmt_NV12, zivPixFmt_BGR888, {{"zivColorNV12toBGR888u8"}}, ""},
    {zivPixFmt_NV12,
     zivPixFmt_RGB888,
     {{"zivColorNV12toBGR888u8"}, {"zivColorRGB888toBGR888u8_2", InPlace}},
     "No kernel for the pair."},
    {zivPixFmt_NV12,
     zivPixFmt_RGBA8888,
     {{"zivColorNV12toNV21u8", InPlace}, {"zivColorNV21toRGBA8888u8"}},
     "The pair's own kernel is for widths that are multiples of 16: elsewhere its tail takes luma from the wrong row and "
     "leaves "
     "the last two columns."},
    {zivPixFmt_NV12,
     zivPixFmt_BGRA8888,
     {{"zivColorNV12toNV21u8", InPlace}, {"zivColorNV21toBGRA8888u8"}},
     "As to RGBA8888; the tail of the pair's own kernel exchanges red and blue, too."},
    {zivPixFmt_I420,
     zivPixFmt_BGR888,
     {{"zivColorI420toNV21u8"}, {"zivColorNV21toBGR888u8"}},
     "The pair's own kernel is as good at widths that are multiples of 16; its tail takes luma from other columns."},
    {zivPixFmt_I420, zivPixFmt_RGB888, {{"zivColorI420toRGB888u8"}}, ""},
    {zivPixFmt_I420, zivPixFmt_RGBA8888, {{"zivColorI420toRGBA8888u8"}}, ""},
    {zivPixFmt_I420, zivPixFmt_BGRA8888, {{"zivColorI420toBGRA8888u8"}}, ""},
    {zivPixFmt_YUYV,
     zivPixFmt_BGR888,
     {{"zivColorYUYVtoRGBA8888u8"}, {"zivColorRGBA8888toBGR888u8"}},
     "The pair's own kernel is closer at widths that are multiples of 16; its tail lets colours wrap, and exchanges red and "
     "blue."},
    {zivPixFmt_YUYV,
     zivPixFmt_RGB888,
     {{"zivColorYUYVtoRGBA8888u8"}, {"zivColorRGBA8888toBGR888u8"}, {"zivColorRGB888toBGR888u8_2", InPlace}},
     "The pair's own kernel is as good at widths that are multiples of 16; its tail lets colours wrap."},
    {zivPixFmt_YUYV, zivPixFmt_RGBA8888, {{"zivColorYUYVtoRGBA8888u8"}}, ""},
    {zivPixFmt_YUYV,
     zivPixFmt_BGRA8888,
     {{"zivColorYUYVtoNV21u8_v2"}, {"zivColorNV21toBGRA8888u8"}},
     "No kernel for the pair. The chroma of odd rows is dropped."},

    // Pixels to frames for an encoder.
    {zivPixFmt_BGR888, zivPixFmt_I420, {{"zivColorBGR888toI420u8"}}, ""},
    {zivPixFmt_BGR888, zivPixFmt_NV12, {{"zivColorBGR888toNV12u8"}}, ""},
    {zivPixFmt_BGR888, zivPixFmt_NV21, {{"zivColorBGR888toNV21u8"}}, ""},
    {zivPixFmt_RGB888, zivPixFmt_I420, {{"zivColorRGB888toI420u8"}}, ""},
    {zivPixFmt_RGB888,
     zivPixFmt_NV12,
     {{"zivColorRGB888toBGR888u8_2", InPlace}, {"zivColorBGR888toNV12u8"}},
     "The tail of the pair's own kernel gives V eight times its weight."},
    {zivPixFmt_RGB888,
     zivPixFmt_NV21,
     {{"zivColorRGB888toBGR888u8_2", InPlace}, {"zivColorBGR888toNV21u8"}},
     "The tail of the pair's own kernel leaves chroma unwritten."},
    {zivPixFmt_RGBA8888, zivPixFmt_I420, {{"zivColorRGBA8888toI420u8"}}, ""},
    {zivPixFmt_RGBA8888,
     zivPixFmt_NV12,
     {{"zivColorRGBA8888toBGR888u8"}, {"zivColorBGR888toNV12u8"}},
     "The pair's own kernel takes half of its luma's blue from other columns."},
    {zivPixFmt_RGBA8888, zivPixFmt_NV21, {{"zivColorRGBA8888toNV21u8"}}, ""},
    {zivPixFmt_BGRA8888, zivPixFmt_I420, {{"zivColorBGRA8888toI420u8"}}, ""},
    {zivPixFmt_BGRA8888,
     zivPixFmt_NV12,
     {{"zivColorBGRA8888toNV21u8"}, {"zivColorNV12toNV21u8", InPlace}},
     "As from RGBA8888. The second exchanges the bytes of each pair, whichever way: call the source NV12, the destination "
     "NV21."},
    {zivPixFmt_BGRA8888, zivPixFmt_NV21, {{"zivColorBGRA8888toNV21u8"}}, ""},

    // Frames from one arrangement to another.
    {zivPixFmt_NV12, zivPixFmt_NV21, {{"zivColorNV12toNV21u8"}}, "In place, too."},
    {zivPixFmt_NV21,
     zivPixFmt_NV12,
     {{"zivColorNV12toNV21u8"}},
     "In place, too. It exchanges the bytes of each pair: call the source NV12, the destination NV21."},
    {zivPixFmt_NV12, zivPixFmt_I420, {{"zivColorNV12toI420u8"}}, ""},
    {zivPixFmt_NV21, zivPixFmt_I420, {{"zivColorNV21toI420u8"}}, ""},
    {zivPixFmt_I420, zivPixFmt_NV21, {{"zivColorI420toNV21u8"}}, ""},
    {zivPixFmt_I420,
     zivPixFmt_NV12,
     {{"zivColorI420toNV21u8"}, {"zivColorNV12toNV21u8", InPlace}},
     "No kernel for the pair; the second is told as from NV21 to NV12."},
    {zivPixFmt_YUYV, zivPixFmt_NV12, {{"zivColorYUYVtoNV12u8_v2"}}, "The chroma of odd rows is dropped."},
    {zivPixFmt_YUYV, zivPixFmt_NV21, {{"zivColorYUYVtoNV21u8_v2"}}, "The chroma of odd rows is dropped."},
    {zivPixFmt_YUYV,
     zivPixFmt_I420,
     {{"zivColorYUYVtoNV12u8_v2"}, {"zivColorNV12toI420u8"}},
     "The pair's own kernel reads and writes past the ends of rows. The chroma of odd rows is dropped."},
};

}  // namespace facts
