// SPDX-License-Identifier: MIT
// The entry points with signatures of their own, on every target, against the reference.
#include "input.h"

namespace {

using namespace harness;
using fuzz::Input;
using zivcolor::Image;
using zivcolor::KernelTable;

struct Case {
    Call call;
    std::vector<Room> rooms;
};

size_t bytes(int count) { return static_cast<size_t>(count < 0 ? 0 : count); }

Case plain_form(Input& in) {
    const int form = in.between(0, 4), width = fuzz::size(in, 220), height = fuzz::size(in, 11);
    const size_t room = 4 * bytes(width + 16) * bytes(height + 4) + 256;
    const bool in_place = in.flag();
    const Call call = [=](const KernelTable& k, uint8_t* const* b) -> int64_t {
        switch (form) {
            case 0: return k.zivColorYV12toNV21u8(b[0], b[1], width, height);
            case 1: return k.zivColorYUYVtoNV21u8(b[0], b[1], width, height);
            case 2: return k.zivColorYUYVtoNV12u8(b[0], b[1], width, height);
            case 3: return k.zivColorYUYVtoI420u8(b[0], b[1], width, height);
            default: return k.zivColorRGB888toBGR888u8(in_place ? b[1] : b[0], b[1], width, height);
        }
    };
    return {call, {{64, room}, {64, room}}};
}

// At widths of 3 to 7 these run out of every memory.
Case hsl(Input& in) {
    int width = fuzz::size(in, 220);
    if (width >= 3 && width <= 7) width = 8;
    const int kernel = in.between(0, 3), height = fuzz::size(in, 9);
    const int32_t row = 3 * (std::max(width, 0) + 1);
    const auto stride = [&] { return static_cast<uint32_t>(row + in.between(0, 40)); };
    const uint32_t from = stride(), chroma = stride(), to = stride();
    const bool in_place = in.flag();
    const auto w = static_cast<uint32_t>(width), h = static_cast<uint32_t>(height);
    const size_t room = bytes(row + 48) * bytes(height + 3) + 256;
    const Call call = [=](const KernelTable& k, uint8_t* const* b) -> int64_t {
        switch (kernel) {
            case 0: return k.zivColorBGR888toHSL888u8(in_place ? b[3] : b[0], b[3], h, w, in_place ? to : from, to);
            case 1: return k.zivColorBGR565toHSL888u8(b[0], b[3], h, w, from, to);
            case 2: return k.zivColorRGB565toHSL888u8(b[0], b[3], h, w, from, to);
            default: return k.zivColorI420toHSL888u8(b[0], b[1], b[2], w, h, b[3], from, chroma, to);
        }
    };
    // Negative sizes are large as the unsigned numbers that they are.
    if (width < 0 || height < 0) return plain_form(in);
    return {call, std::vector<Room>(4, Room{64, room})};
}

// Mirrors and the half turn take images in whatever place; of the quarter turns the source must lie apart.
Case turn_or_mirror(Input& in) {
    const int routine = in.between(0, 5), width = fuzz::size(in, 100), height = fuzz::size(in, 100);
    const bool quarter = routine == 1 || routine == 3, mirror = routine >= 4;
    const int longest = std::max({width, height, 1});
    const bool wide = in.between(0, 15) == 0;
    const auto pitch = [&] {
        const int choice = in.between(0, 7);
        const int distance = wide && choice % 2 ? fuzz::page_pitch : longest + 1 + (choice < 4 ? in.between(0, 40) : 0);
        return in.between(0, 7) == 0 ? -distance : distance;
    };
    const int32_t pitches[4] = {pitch(), pitch(), pitch(), pitch()};
    const int destination_height = in.flag() ? width : fuzz::size(in, 100);
    const size_t room =
        bytes((wide ? fuzz::page_pitch : longest) + 48) * bytes(std::max(longest, destination_height) + 4) + 256;

    // In one block: the places of source chroma, destination luma and destination chroma, some of them a few bytes from others.
    const bool meet = !wide && in.between(0, 2) == 0;
    const auto block = static_cast<ptrdiff_t>(2 * room);
    const auto near = [&] { return in.between(-3 * longest, 3 * longest); };
    const ptrdiff_t source_chroma = in.flag() ? block : near();
    const ptrdiff_t luma = quarter || in.flag() ? 3 * block : near();
    const ptrdiff_t chroma = in.flag() ? luma + block : luma + near();

    const uint64_t unread = in.seed();
    const Call call = [=](const KernelTable& k, uint8_t* const* b) -> int64_t {
        uint8_t* const plane[4] = {b[0], meet ? b[0] + source_chroma : b[1], meet ? b[0] + luma : b[2],
                                   meet ? b[0] + chroma : b[3]};
        Image source{zivPixFmt_NV21, width, height, {plane[0], plane[1]}, {pitches[0], pitches[1]}};
        Image destination{0, 0, destination_height, {plane[2], plane[3]}, {pitches[2], pitches[3]}};
        Random random{unread};
        fill_beyond_layout(source, zivPixFmt_NV21, random);
        fill_beyond_layout(destination, zivPixFmt_NV21, random);
        destination.format = random.next();
        destination.width = static_cast<int32_t>(random.next());
        destination.pitch[1] = destination.pitch[2];
        if (routine != 3) destination.height = static_cast<int32_t>(random.next());
        if (quarter) source.pitch[1] = source.pitch[2];
        if (!mirror) source.format = random.next();
        if (routine == 4) return k.zivflip_horizontal_nv21(&source, &destination);
        if (routine == 5) {
            destination.pitch[0] = destination.pitch[3];
            return k.zivflip_vertical_nv21(&source, &destination);
        }
        k.zivRotate(&source, &destination, routine);
        return 0;
    };
    if (meet) return {call, {{static_cast<size_t>(block), static_cast<size_t>(6 * block)}}};
    return {call, std::vector<Room>(4, Room{room, room})};
}

Case whitening(Input& in) {
    const bool blocked = in.flag();
    const int width = fuzz::size(in, 100), height = fuzz::size(in, 11);
    const int pitch[2] = {fuzz::destination_pitch(in, bytes(width) ? width : 1),
                          fuzz::destination_pitch(in, bytes(width) ? width : 1)};
    const int mask_line = in.between(0, 200);
    const int64_t level = in.between(0, 3) ? in.between(-300, 300) : static_cast<int64_t>(in.seed() << 48 | in.seed());
    std::vector<int32_t> brightened(256);
    const int lift = in.between(-300, 300), scale = in.between(0, 3) ? 1 : 0x1000001;
    for (int i = 0; i < 256; i++)
        brightened[static_cast<size_t>(i)] =
            static_cast<int32_t>(static_cast<uint32_t>((i + lift)) * static_cast<uint32_t>(scale));
    const size_t room = 2 * bytes(std::max({width, std::abs(pitch[0]), std::abs(pitch[1])}) + 80) * bytes(height + 4) + 512;
    const Call call = [=](const KernelTable& k, uint8_t* const* b) {
        zivcolor::MaskedImage image{};
        image.width = width;
        image.height = height;
        image.plane[0] = b[0];
        image.pitch[0] = pitch[0];
        image.pitch[1] = pitch[1];
        const auto kernel = blocked ? k._SkinWhitenByMask_YUV420_VUVU_neon : k._SkinWhitenByMask_YUV420_VUVU;
        return kernel(&image, b[1], mask_line, brightened.data(), level, nullptr);
    };
    return {call, {{room, room}, {64, 512}}};
}

// Sums of 64 bits with every byte from the seed: the entries are read where they stand in a buffer of bytes.
Case weights(Input& in) {
    const int width = fuzz::size(in, 60), shift = in.between(0, 63);
    const int64_t images = in.between(0, 7) ? in.between(-1, 40) : static_cast<int64_t>(in.seed() << 48 | in.seed());
    Random random{in.seed()};
    std::vector<int64_t> sums(20 * bytes(width + 2));
    for (int64_t& sum : sums) {
        const uint64_t high = random.next();
        sum = static_cast<int64_t>(high << 32 | random.next()) >> shift;
    }
    const Call call = [=](const KernelTable& k, uint8_t* const* b) -> int64_t {
        k.CalcMergeWeightMap_neon(sums.data(), b[0], width, images);
        return 0;
    };
    return {call, {{64, 256}}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in(data, size);
    Case (*const kinds[])(Input&) = {plain_form, hsl, turn_or_mirror, whitening, weights};
    const int kind = in.between(0, 4);
    const bool flush = in.between(0, 3) == 0;
    const uint64_t seed = in.seed();
    const Case c = kinds[kind](in);
    const auto what = [&] { return "kind " + std::to_string(kind); };
    if (flush) expect_in_bounds(c.call, c.rooms, seed, what);
    else expect_same_bytes(c.call, c.rooms, seed, what);
    return 0;
}
