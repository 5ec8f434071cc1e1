// The plain-pointer forms: one block of memory on either side, sizes and no pitches.
#include <gtest/gtest.h>

#include <string>

#include "harness/workspace.h"

namespace {

using namespace harness;
using zivcolor::KernelTable;

struct PlainForm {
    const char* name;
    int source_bits, destination_bits;  // of a pixel, rounded up to bytes where planes are subsampled
    int64_t (*convert)(const KernelTable& kernels, const uint8_t* src, uint8_t* dst, int width, int height);
};
void PrintTo(const PlainForm& form, std::ostream* out) { *out << form.name; }

#define PLAIN_FORM(name, source_bits, destination_bits)                                 \
    {                                                                                   \
#name, source_bits, destination_bits,                                           \
            [](const KernelTable& kernels, const uint8_t* src, uint8_t* dst, int width, \
               int height) -> int64_t { return kernels.name(src, dst, width, height); } \
    }
const PlainForm forms[] = {
    PLAIN_FORM(zivColorYV12toNV21u8, 12, 12),     PLAIN_FORM(zivColorYUYVtoNV21u8, 16, 12),
    PLAIN_FORM(zivColorYUYVtoNV12u8, 16, 12),     PLAIN_FORM(zivColorYUYVtoI420u8, 16, 12),
    PLAIN_FORM(zivColorRGB888toBGR888u8, 24, 24),
};

class PlainForms : public testing::TestWithParam<PlainForm> {
protected:
    Call call(int width, int height) const {
        return [convert = GetParam().convert, width, height](const KernelTable& kernels, uint8_t* const* buffers) {
            return convert(kernels, buffers[0], buffers[1], width, height);
        };
    }
    // At odd widths rows drift by a byte or two each.
    std::vector<Room> rooms(int width, int height) const {
        const auto bytes = [&](int bits) { return static_cast<size_t>((width + 4) * (height + 4) * bits / 8 + 256); };
        return {{64, bytes(GetParam().source_bits)}, {64, bytes(GetParam().destination_bits)}};
    }
    std::string what(int width, int height) const {
        return std::string(GetParam().name) + " " + std::to_string(width) + "x" + std::to_string(height);
    }
};

TEST_P(PlainForms, EverySize) {
    Random random{base_seed};
    for (int width = 0; width <= 150; ++width)
        for (const int height : {0, 1, 2, 3, 4, 5, 6, 7, 9}) {
            expect_same_bytes(call(width, height), rooms(width, height), random.next(), [&] { return what(width, height); });
            if (HasFailure()) return;
        }
}

TEST_P(PlainForms, WideImages) {
    Random random{base_seed + 1};
    for (const int edge : {160, 192, 256, 320, 384, 512, 640, 1024})
        for (int width = edge - 3; width <= edge + 3; ++width)
            expect_same_bytes(call(width, 3), rooms(width, 3), random.next(), [&] { return what(width, 3); });
}

TEST_P(PlainForms, StayInsideTheirReach) {
    Random random{base_seed + 2};
    for (int width = 1; width <= 140; ++width)
        for (const int height : {1, 2, 3, 4}) {
            expect_in_bounds(call(width, height), rooms(width, height), random.next(), [&] { return what(width, height); });
            if (HasFailure()) return;
        }
}

TEST_P(PlainForms, Checks) {
    for (int nulls = 0; nulls < 4; ++nulls)
        for (const int width : {-2, 0, 1, 2})
            for (const int height : {-2, 0, 1, 2}) {
                const Call with_nulls = [&](const KernelTable& kernels, uint8_t* const* buffers) {
                    return GetParam().convert(kernels, nulls & 1 ? nullptr : buffers[0], nulls & 2 ? nullptr : buffers[1],
                                              width, height);
                };
                expect_same_bytes(with_nulls, rooms(2, 2), base_seed, [&] { return what(width, height); });
            }
}

INSTANTIATE_TEST_SUITE_P(All, PlainForms, testing::ValuesIn(forms),
                         [](const testing::TestParamInfo<PlainForm>& row) { return std::string(row.param.name); });

}  // namespace
