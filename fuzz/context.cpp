// SPDX-License-Identifier: MIT
// The multi-threaded context: its bands are independent at even widths, so that the reference, band by band, tells the result.
#include "parallel/context.h"
#include "input.h"
#include "parallel/bands.h"
#include "reference/reference.h"

namespace {

using namespace harness;
using fuzz::Input;
using zivcolor::Image;

// One context for all runs, as an application has.
void* context() {
    static void* const handle = zivColorCvtInit_MultiThreads(nullptr);
    return handle;
}

Image band_of(const Image& whole, zivcolor::RowRange rows) {
    Image band = whole;
    band.height = rows.end - rows.start;
    for (int k = 0; k < plane_count(whole.format); k++) {
        const bool halved = plane_rows(whole.format, k, 2) == 1;
        band.plane[k] += ptrdiff_t{halved ? rows.start / 2 : rows.start} * whole.pitch[k];
    }
    return band;
}

void convert_by_bands(const Conversion& c, const Image& source, const Image& destination, uint8_t alpha) {
    zivcolor::RowRange bands[zivcolor::most_bands];
    const int32_t count = static_cast<const zivColorCvtContext_t*>(context())->lTaskCount;
    zivcolor::split_into_bands(destination.height, count, bands);
    for (int32_t i = 0; i < count; i++) {
        const Image from = band_of(source, bands[i]), to = band_of(destination, bands[i]);
        c.convert(reference::kernels, &from, &to, alpha);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t data_size) {
    Input in(data, data_size);
    const Conversion& c = conversions()[static_cast<size_t>(in.between(0, static_cast<int>(conversions().size()) - 1))];
    // The chroma of its bands falls on that of the next ones.
    if (c.name == std::string("zivColorI422HtoNV12u8")) return 0;

    ImagePair images{};
    images.source_width = images.destination_width = 2 * fuzz::size(in, 80);
    images.source_height = images.destination_height = fuzz::size(in, 120);
    for (int k = 0; k < 3; k++) {
        images.source_pitch[k] = fuzz::source_pitch(in, tight_pitch(c.source, k, images.source_width));
        images.destination_pitch[k] = tight_pitch(c.destination, k, images.destination_width);
    }
    // Chroma that is written as one run meets that of the next band when rows are padded, and some of it steps by luma's pitch.
    const int32_t alpha = in.between(-600, 600);
    const bool with_alpha = in.flag();
    const int nulls = in.between(0, 15) == 0 ? in.between(1, 7) : 0;
    const bool has_task = c.task >= 0;
    const uint64_t unread = in.seed();
    const Call call = [&](const zivcolor::KernelTable& kernels, uint8_t* const* buffers) -> int64_t {
        Image source{c.source, images.source_width, images.source_height, {}, {}};
        Image destination{c.destination, images.destination_width, images.destination_height, {}, {}};
        for (int k = 0; k < 3; k++) {
            source.plane[k] = buffers[k];
            source.pitch[k] = images.source_pitch[k];
            destination.plane[k] = buffers[3 + k];
            destination.pitch[k] = images.destination_pitch[k];
        }
        // Bands are placed by every pitch of a layout, read or not.
        Random random{unread};
        fill_beyond_layout(source, c.source, random);
        fill_beyond_layout(destination, c.destination, random);
        const zivColorExtParam_ALPHA_t extension{alpha};
        if (&kernels != &reference::kernels)
            return zivColorCvtProcess_MultiThreads(nulls & 1 ? nullptr : context(), nulls & 2 ? nullptr : &source,
                                                   nulls & 4 ? nullptr : &destination, with_alpha ? &extension : nullptr);
        if (nulls) return zivStatus_NullPointer;
        if (!has_task) return zivStatus_BadArgument;
        convert_by_bands(c, source, destination, with_alpha ? static_cast<uint8_t>(alpha & 0xFF) : uint8_t{0});
        return zivStatus_OK;
    };
    expect_same_bytes(call, rooms_of(c, images), in.seed(), [&] { return describe(c, images); });
    return 0;
}
