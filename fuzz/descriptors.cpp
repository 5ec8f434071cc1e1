// SPDX-License-Identifier: MIT
// Two image descriptors through the dispatcher and to the kernels of every target, against the reference.
#include <algorithm>

#include "core/layout_list.h"
#include "input.h"
#include "reference/reference.h"
#include "reference/work_buffer.h"

namespace {

using namespace harness;
using fuzz::Input;
using zivcolor::KernelTable;

// A layout's code, or one that no layout has.
uint32_t code(Input& in) {
    constexpr uint32_t others[] = {0, 0x10802};
    const int known = static_cast<int>(codes().size()), choice = in.between(0, known + 1);
    return choice < known ? codes()[static_cast<size_t>(choice)] : others[choice - known];
}

// Half of all cases name a conversion, among them those that the dispatcher does not pick; the others name two codes. The first
// generation of NV41 to NV21 ends the process.
const Conversion& choose(Input& in) {
    static Conversion none{};
    if (in.flag()) {
        const Conversion& c = conversions()[static_cast<size_t>(in.between(0, static_cast<int>(conversions().size()) - 1))];
        if (c.dispatched || c.destination != zivPixFmt_NV21) return c;
    }
    const uint32_t source = code(in), destination = code(in);
    for (const Conversion& c : conversions())
        if (c.dispatched && c.source == source && c.destination == destination) return c;
    constexpr auto refuse = [](const KernelTable&, const zivcolor::Image*, const zivcolor::Image*, uint8_t) -> int32_t {
        return zivStatus_BadArgument;
    };
    none = {"no conversion", source, destination, false, true, -1, refuse, refuse, nullptr};
    return none;
}

// How planes lie in memory: apart, those of each image one behind the other without a gap, or source and destination as one.
enum class Arrangement { apart, planes_meet, in_place };

Arrangement arrangement_of(Input& in, const Conversion& c, ImagePair& images) {
    const std::string name = c.name;
    const bool nv41 = c.source == zivPixFmt_NV41 || c.destination == zivPixFmt_NV41;
    const int choice = in.between(0, 7);
    if (choice == 0 && name == "zivColorRGB888toBGR888u8_2") {
        images.source_pitch[0] = images.destination_pitch[0];
        return Arrangement::in_place;
    }
    if (choice < 3 && nv41) {
        images.source_height = images.destination_height;
        for (int k = 0; k < 2; k++) {
            images.source_pitch[k] = std::abs(images.source_pitch[k]);
            images.destination_pitch[k] = std::abs(images.destination_pitch[k]);
        }
        return Arrangement::in_place;
    }
    if (choice == 0 && !nv41 && zivcolor::layout_of(c.source) && zivcolor::layout_of(c.destination)) {
        const uint8_t alpha = images.alpha;
        images = tight(c, images.destination_width, images.destination_height);
        images.alpha = alpha;
        return Arrangement::planes_meet;
    }
    return Arrangement::apart;
}

void follow_each_other(zivcolor::Image& image, uint32_t format) {
    for (int k = 1; k < plane_count(format); k++)
        image.plane[k] = image.plane[k - 1] + ptrdiff_t{image.pitch[k - 1]} * plane_rows(format, k - 1, image.height);
}

int pitch_of(uint32_t format, int plane, int width) {
    return zivcolor::layout_of(format) ? tight_pitch(format, plane, width) : width;
}

// Whether the result is the same whatever an uncleared work buffer holds.
bool is_determined(const Call& call, const std::vector<Room>& rooms, uint64_t seed) {
    std::vector<std::vector<uint8_t>> memory[2];
    for (int run = 0; run < 2; run++) {
        std::vector<uint8_t*> buffers;
        for (const Room& room : rooms) {
            std::vector<uint8_t>& block = memory[run].emplace_back(room.before + room.after);
            fill(block.data(), block.size(), seed);
            buffers.push_back(block.data() + room.before);
        }
        reference::g_work_buffer_fill = run ? 0xFF : 0;
        call(reference::kernels, buffers.data());
    }
    reference::g_work_buffer_fill = 0;
    return memory[0] == memory[1];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t data_size) {
    Input in(data, data_size);
    const Conversion& c = choose(in);
    const bool refused = c.name == std::string("no conversion");

    ImagePair images{};
    images.source_width = images.destination_width = fuzz::size(in, 200);
    images.source_height = images.destination_height = fuzz::size(in, 11);
    if (in.between(0, 3) == 0) images.source_width = fuzz::size(in, 200);
    if (in.between(0, 3) == 0) images.source_height = fuzz::size(in, 11);
    const int columns = std::max(images.source_width, images.destination_width);
    for (int k = 0; k < 3; k++) {
        images.source_pitch[k] = fuzz::source_pitch(in, pitch_of(c.source, k, columns));
        images.destination_pitch[k] = fuzz::destination_pitch(in, pitch_of(c.destination, k, columns));
    }
    images.alpha = in.byte();
    const bool restores_a_work_buffer = c.name == std::string("zivColorNV41toNV21_2");
    // The buffer is sized by one pitch and stepped by the other: its rows are determined where there is nothing between them.
    if (restores_a_work_buffer && in.flag()) {
        const int32_t pitch = std::abs(images.destination_pitch[1]);
        images.source_pitch[1] = in.between(0, 7) == 0 ? -pitch : pitch;
        images.destination_pitch[1] = pitch;
    }
    const Arrangement arrangement = arrangement_of(in, c, images);

    int offsets[6];
    for (int& offset : offsets) offset = in.between(0, 63);
    const uint64_t unread = in.seed();
    const int nulls = in.between(0, 15) == 0 ? in.between(1, 3) : 0;
    const Call call = [&](const KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
        zivcolor::Image source{c.source, images.source_width, images.source_height, {}, {}};
        zivcolor::Image destination{c.destination, images.destination_width, images.destination_height, {}, {}};
        for (int k = 0; k < 3; k++) {
            source.plane[k] = buffers[k] + offsets[k];
            source.pitch[k] = images.source_pitch[k];
            destination.plane[k] = buffers[3 + k] + offsets[3 + k];
            destination.pitch[k] = images.destination_pitch[k];
        }
        if (arrangement == Arrangement::in_place) std::copy_n(destination.plane, 3, source.plane);
        if (arrangement == Arrangement::planes_meet) {
            follow_each_other(source, c.source);
            follow_each_other(destination, c.destination);
        }
        Random random{unread};
        fill_unread(c, source, destination, random);
        const zivcolor::Image *const from = nulls & 1 ? nullptr : &source, *const to = nulls & 2 ? nullptr : &destination;
        // The dispatcher stands for the target that it uses.
        if (c.dispatched && &kernels == &zivcolor::chosen_kernels()) return zivColorCvt(from, to, {images.alpha | 0x5A00});
        if (refused && nulls) return zivStatus_NullPointer;
        return c.convert(kernels, from, to, images.alpha);
    };

    // Ample for every reach of the kernels: rows may be stepped by another plane's pitch or by twice their own, in either
    // direction.
    int step = 0;
    for (int k = 0; k < 3; k++)
        step = std::max({step, std::abs(images.source_pitch[k]), std::abs(images.destination_pitch[k]),
                         pitch_of(c.source, k, columns), pitch_of(c.destination, k, columns)});
    const int rows = std::max({images.source_height, images.destination_height, 0}) + 4;
    const auto reach = static_cast<size_t>(2 * rows * step + 4 * std::max(columns, 0) + 512);
    std::vector<Room> rooms;
    for (int k = 0; k < 6; k++) {
        const int32_t* pitches = k < 3 ? images.source_pitch : images.destination_pitch;
        const bool up = pitches[0] < 0 || pitches[1] < 0 || pitches[2] < 0 || restores_a_work_buffer;
        const bool used = !refused && k % 3 < plane_count(k < 3 ? c.source : c.destination);
        const size_t all = arrangement == Arrangement::planes_meet ? 3 * reach : reach;
        rooms.push_back(used ? Room{up ? reach : 256 + static_cast<size_t>(2 * step), all} : Room{64, 256});
    }

    const uint64_t seed = in.seed();
    const auto what = [&] { return describe(c, images); };
    if (restores_a_work_buffer && !is_determined(call, rooms, seed)) return 0;
    if (in.between(0, 3) == 0) expect_in_bounds(call, rooms, seed, what);
    else expect_same_bytes(call, rooms, seed, what);
    return 0;
}
