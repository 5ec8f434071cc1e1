// SPDX-License-Identifier: MIT
#include "names.h"

#include <ctype.h>

#include <sstream>

#include "options.h"

namespace tool {

namespace {

// Only where every byte stands where it does in our layout. The FourCCs are those of V4L2 and DRM, which name words of
// little-endian machines: the B of BGR3 comes first in memory, that of RG24 too.
constexpr OtherNames names[] = {
    {zivPixFmt_BGR565, "BG16", "bgr565le"},
    {zivPixFmt_RGB565, "RG16 RGBP", "rgb565le"},
    {zivPixFmt_BGR888, "BGR3 RG24", "bgr24"},
    {zivPixFmt_RGB888, "RGB3 BG24", "rgb24"},
    {zivPixFmt_BGRA8888, "AR24", "bgra"},
    {zivPixFmt_ARGB8888, "BA24", "argb"},
    {zivPixFmt_RGBA8888, "AB24", "rgba"},
    {zivPixFmt_YUV, "", ""},
    {zivPixFmt_YUYV, "YUYV YUY2", "yuyv422"},
    {zivPixFmt_YVYU, "YVYU", "yvyu422"},
    {zivPixFmt_UYVY, "UYVY", "uyvy422"},
    {zivPixFmt_VYUY, "VYUY", ""},
    {zivPixFmt_I420, "I420 IYUV YU12", "yuv420p yuvj420p"},
    {zivPixFmt_I422V, "", "yuv440p yuvj440p"},
    {zivPixFmt_I422H, "422P YU16", "yuv422p yuvj422p"},
    {zivPixFmt_I444, "YU24", "yuv444p yuvj444p"},
    {zivPixFmt_YV12, "YV12", ""},
    {zivPixFmt_YV24, "YV24", ""},
    {zivPixFmt_NV12, "NV12", "nv12"},
    {zivPixFmt_NV21, "NV21", "nv21"},
    {zivPixFmt_LPI422H, "NV16", "nv16"},
    {zivPixFmt_NV41, "", ""},
};

std::string small(std::string text) {
    for (char& c : text) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return text;
}

bool is_in(const std::string& list, const std::string& name) {
    std::istringstream all(small(list));
    for (std::string one; all >> one;)
        if (one == name) return true;
    return false;
}

// The first digit of a code is the family: of one are layouts of as many bytes and the same arrangement.
uint32_t family(uint32_t format) { return format >> 8; }

// How far a pair is from the one that was asked: what they share comes first, then the family of what they don't.
int distance(const zivcolor_pair& pair, uint32_t from, uint32_t to) {
    const bool same_source = pair.source == from, same_destination = pair.destination == to;
    if (!same_source && !same_destination) return 2;
    const bool near = same_source ? family(pair.destination) == family(to) : family(pair.source) == family(from);
    return near ? 0 : 1;
}

// A layout in between that makes two pairs of one, if possible one of the source's family, then one of the destination's; null
// if there is none.
const char* way(uint32_t from, uint32_t to) {
    const zivcolor_layout* found = nullptr;
    const auto worth = [&](const zivcolor_layout* layout) {
        return !layout ? 0 : family(layout->format) == family(from) ? 3 : family(layout->format) == family(to) ? 2 : 1;
    };
    for (int32_t i = 0; const zivcolor_layout* layout = zivcolor_layout_at(i); i++)
        if (zivcolor_pair_of(from, layout->format) && zivcolor_pair_of(layout->format, to) && worth(layout) > worth(found))
            found = layout;
    return found ? found->name : nullptr;
}

[[noreturn]] void refuse_pair(const zivcolor_layout& from, const zivcolor_layout& to) {
    constexpr size_t most = 5;
    std::vector<const zivcolor_pair*> nearest;
    for (const int far : {0, 1})
        for (int32_t i = 0; const zivcolor_pair* pair = zivcolor_pair_at(i); i++)
            if (distance(*pair, from.format, to.format) == far) nearest.push_back(pair);
    if (nearest.size() > most) nearest.resize(most);
    std::string text = std::string(from.name) + " is not converted to " + to.name;
    for (size_t i = 0; i < nearest.size(); i++) text += (i == 0 ? "; nearest: " : ", ") + in_words(*nearest[i]);
    if (const char* const between = way(from.format, to.format)) text += std::string("; or by way of ") + between;
    throw Refusal(text);
}

}  // namespace

const OtherNames& other_names(uint32_t format) {
    for (const OtherNames& row : names)
        if (row.format == format) return row;
    static const OtherNames none{0, "", ""};
    return none;
}

const zivcolor_layout& layout_named(const std::string& name) {
    const std::string asked = small(name);
    for (int32_t i = 0; const zivcolor_layout* layout = zivcolor_layout_at(i); i++) {
        const OtherNames& others = other_names(layout->format);
        if (small(layout->name) == asked || is_in(others.fourcc, asked) || is_in(others.ffmpeg, asked)) return *layout;
    }
    throw Refusal("no layout '" + name + "'; 'zivcolor formats' names those there are");
}

const zivcolor_pair& pair_named(const std::string& from, const std::string& to) {
    const zivcolor_layout &source = layout_named(from), &destination = layout_named(to);
    const zivcolor_pair* const pair = zivcolor_pair_of(source.format, destination.format);
    if (!pair) refuse_pair(source, destination);
    return *pair;
}

std::string in_words(const zivcolor_pair& pair) {
    return std::string(zivcolor_format_name(pair.source)) + " to " + zivcolor_format_name(pair.destination);
}

}  // namespace tool
