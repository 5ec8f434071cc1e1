// SPDX-License-Identifier: MIT
// The same bytes whatever the caller's thread has set its floating-point unit to, by every way into the library; and that is
// set as before after the call.
#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "core/rounding.h"
#include "harness/float_state.h"
#include "harness/frame.h"
#include "harness/options.h"
#include "parallel/band_tasks.h"

namespace {

using namespace harness;
using zivcolor::Image;
using zivcolor::KernelTable;

// Blocks of every width and a tail.
constexpr int width = 150, height = 10;

// A way to a function that writes one buffer.
struct Way {
    std::string name;
    std::function<void()> call;
};
struct Written {
    std::vector<uint8_t>* bytes;
    uint64_t seed;
    void lay_out() const { fill(bytes->data(), bytes->size(), seed); }
};

std::vector<uint8_t> bytes_by(const Way& way, const Written& written, const FloatState& state) {
    written.lay_out();
    {
        const InFloatState set(state);
        const uint64_t before = float_control_word();
        way.call();
        const uint64_t after = float_control_word();
        EXPECT_EQ(before, after) << way.name << ", " << state.name;
    }
    return *written.bytes;
}

// Expects of each way in every state the bytes that `plain` gives in the usual one.
void expect_same_in_every_state(const Way& plain, const std::vector<Way>& ways, const Written& written) {
    const std::vector<FloatState> states = float_states();
    const std::vector<uint8_t> expected = bytes_by(plain, written, states[0]);
    for (const Way& way : ways)
        for (const FloatState& state : states)
            EXPECT_TRUE(bytes_by(way, written, state) == expected) << way.name << ", " << state.name;
}

// The states in which a kernel that nobody guards gives other bytes.
int states_that_show(const Way& plain, const Written& written) {
    const std::vector<FloatState> states = float_states();
    const std::vector<uint8_t> expected = bytes_by(plain, written, states[0]);
    int count = 0;
    for (const FloatState& state : states)
        if (!state.trapping) count += bytes_by(plain, written, state) != expected;
    return count;
}

// Floats by software are rounded to the nearest in any state.
bool direction_counts() {
    const auto third = [](int direction) {
        const InFloatState set({"", direction, false, false});
        const volatile float one = 1, three = 3;
        const volatile float quotient = one / three;
        return float{quotient};
    };
    return third(FE_UPWARD) != third(FE_DOWNWARD);
}

bool has_floats(const std::string& kernel) {
#define ZIVCOLOR_NAME(name) \
    if (kernel == #name) return true;
    ZIVCOLOR_KERNELS_WITH_FLOATS(ZIVCOLOR_NAME)
#undef ZIVCOLOR_NAME
    return false;
}

// Half of the pixels have a sum that is whole before it is rounded: any error of the right sign shows in the byte.
void add_whole_sums(const Frame& frame, Random& random) {
    const auto byte = [&] { return static_cast<uint8_t>(random.below(256)); };
    const Image& image = frame.image;
    if (image.format == zivPixFmt_NV21)
        for (int y = 0; y < image.height / 2; y++)
            for (int x = 0; x < image.width; x += 4) {
                int u = 0, v = 0;
                do u = byte() - 128, v = byte() - 128;
                while ((357 * v + 172 * u) % 500 != 0);
                uint8_t* const pair = image.plane[1] + y * image.pitch[1] + x;
                pair[0] = static_cast<uint8_t>(v + 128), pair[1] = static_cast<uint8_t>(u + 128);
            }
    if (image.format == zivPixFmt_RGBA8888 || image.format == zivPixFmt_BGRA8888)
        for (int y = 0; y < image.height; y++)
            for (int x = 0; x < image.width; x += random.between(1, 3)) {
                uint8_t* const pixel = image.plane[0] + y * image.pitch[0] + 4 * x;
                const int red = image.format == zivPixFmt_RGBA8888 ? 0 : 2;
                int r = 0, g = 0, b = 0;
                do r = byte(), g = byte(), b = byte();
                while ((299 * r + 587 * g + 114 * b) % 1000 != 0 && (1678 * r + 3313 * g - 5000 * b) % 10000 != 0 &&
                       (5000 * r - 4187 * g - 813 * b) % 10000 != 0);
                pixel[red] = static_cast<uint8_t>(r), pixel[1] = static_cast<uint8_t>(g),
                pixel[2 - red] = static_cast<uint8_t>(b);
            }
}

struct RoundingOf : testing::TestWithParam<Conversion> {};

// By its exported name.
int32_t call_exported(const Conversion& c, const Image* src, const Image* dst, uint8_t alpha) {
    const std::string name = c.name;
#define ZIVCOLOR_CALL_Opaque(kernel) kernel(src, dst)
#define ZIVCOLOR_CALL_Alpha(kernel) kernel(src, dst, alpha)
#define ZIVCOLOR_CONVERSION(kernel, source, destination, takes, dispatch, task, tile) \
    if (name == #kernel) return ZIVCOLOR_CALL_##takes(kernel);
    ZIVCOLOR_CONVERSIONS(ZIVCOLOR_CONVERSION)
#undef ZIVCOLOR_CONVERSION
#undef ZIVCOLOR_CALL_Alpha
#undef ZIVCOLOR_CALL_Opaque
    return -1;
}

TEST_P(RoundingOf, IsToNearestWhateverTheThreadIsSetTo) {
    const Conversion& c = GetParam();
    Random random{base_seed};
    const Frame from(c.source, width, height, random.next());
    add_whole_sums(from, random);
    Frame to(c.destination, width, height, 0);
    const Written written{&to.memory, random.next()};
    const Image *src = &from.image, *dst = &to.image;
    for (const zivcolor::Target& target : targets()) {
        const std::string where = std::string(c.name) + " on " + target.name;
        const Way kernel{where, [&] { c.convert(*target.kernels, src, dst, 99); }};
        expect_same_in_every_state(kernel, {{where, [&] { c.convert_as_entry(*target.kernels, src, dst, 99); }}}, written);
        EXPECT_EQ(states_that_show(kernel, written) > 0, has_floats(c.name) && direction_counts()) << where;
    }
    const std::string name = c.name;
    std::vector<Way> ways = {{name, [&] { call_exported(c, src, dst, 99); }}};
    if (c.dispatched) ways.push_back({name + " dispatched", [&] { zivColorCvt(src, dst, {99}); }});
    const zivColorExtParam_ALPHA_t alpha{99};
    const zivColorParam_t band{src, dst, 0, height, &alpha};
    if (c.task >= 0)
        ways.push_back({name + " as a band", [&] {
                            zivColorParam_t param = band;
                            zivcolor::band_tasks[static_cast<size_t>(c.task)](&param);
                        }});
    expect_same_in_every_state({name, [&] { c.convert(zivcolor::chosen_kernels(), src, dst, 99); }}, ways, written);
}

// From NV41 one way traps, and the other's work buffer is not cleared.
std::vector<Conversion> all_but_from_nv41() {
    std::vector<Conversion> rows;
    for (const Conversion& c : conversions())
        if (c.source != zivPixFmt_NV41) rows.push_back(c);
    return rows;
}
INSTANTIATE_TEST_SUITE_P(All, RoundingOf, testing::ValuesIn(all_but_from_nv41()),
                         [](const testing::TestParamInfo<Conversion>& row) { return std::string(row.param.name); });

// By tiles, where those pay.
TEST(Rounding, LargeImages) {
    const Conversion& c = conversion("zivColorNV21toBGRA8888u8");
    Random random{base_seed};
    const Frame from(c.source, 4112, 2200, random.next());
    Frame to(c.destination, 4112, 2200, 0);
    const Written written{&to.memory, random.next()};
    const Way entry{c.name, [&] { zivColorNV21toBGRA8888u8(&from.image, &to.image, 99); }};
    const std::vector<FloatState> states = float_states();
    const std::vector<uint8_t> expected = bytes_by(entry, written, states[0]);
    for (size_t k = 1; k < 4; k++) EXPECT_TRUE(bytes_by(entry, written, states[k]) == expected) << states[k].name;
}

// A kernel with a signature of its own: as such, as its entry reaches it, and by its exported name.
#define EXPECT_ROUTINE(routine, may_show, written, ...)                                                    \
    do {                                                                                                   \
        for (const zivcolor::Target& target : targets()) {                                                 \
            const std::string where = std::string(#routine " on ") + target.name;                          \
            const Way kernel{where, [&] { target.kernels->routine(__VA_ARGS__); }};                        \
            constexpr bool floats = zivcolor::has_floats<&KernelTable::routine>;                           \
            const Way entry{where, [&] { zivcolor::call<floats>(target.kernels->routine, __VA_ARGS__); }}; \
            expect_same_in_every_state(kernel, {entry}, written);                                          \
            EXPECT_EQ(states_that_show(kernel, written) > 0, (may_show) && direction_counts()) << where;   \
        }                                                                                                  \
        expect_same_in_every_state({#routine, [&] { zivcolor::chosen_kernels().routine(__VA_ARGS__); }},   \
                                   {{#routine, [&] { routine(__VA_ARGS__); }}}, written);                  \
    } while (false)

// Each quotient's error is less than its distance from a whole number: it shows in no direction.
TEST(RoundingHsl, DoesNotShow) {
    Random random{base_seed};
    const Frame bgr(zivPixFmt_BGR888, width, height, random.next()), bgr565(zivPixFmt_BGR565, width, height, random.next()),
        i420(zivPixFmt_I420, width, height, random.next());
    std::vector<uint8_t> hsl(3 * width * height);
    const Written written{&hsl, random.next()};
    const Image& planar = i420.image;
    EXPECT_ROUTINE(zivColorBGR888toHSL888u8, false, written, bgr.image.plane[0], hsl.data(), height, width, 3 * width,
                   3 * width);
    EXPECT_ROUTINE(zivColorBGR565toHSL888u8, false, written, bgr565.image.plane[0], hsl.data(), height, width, 2 * width,
                   3 * width);
    EXPECT_ROUTINE(zivColorRGB565toHSL888u8, false, written, bgr565.image.plane[0], hsl.data(), height, width, 2 * width,
                   3 * width);
    EXPECT_ROUTINE(zivColorI420toHSL888u8, false, written, planar.plane[0], planar.plane[1], planar.plane[2], width, height,
                   hsl.data(), width, width / 2, 3 * width);
}

// Sums whose weight is whole.
TEST(RoundingMergeWeights, IsToNearestWhateverTheThreadIsSetTo) {
    constexpr int64_t columns = 99, images = 8;
    std::vector<int64_t> sums(20 * (columns + 1));
    for (size_t i = 0; i <= columns; i++) sums[20 * i] = 256 + 5 * static_cast<int64_t>(i) * (i % 3 == 0 ? 1 : images - 1) / 2;
    sums[0] = INT64_MAX, sums[20] = INT32_MIN, sums[40] = INT32_MAX;
    std::vector<uint8_t> weights(columns + 1);
    const Written written{&weights, base_seed};
    EXPECT_ROUTINE(CalcMergeWeightMap_neon, true, written, sums.data(), weights.data(), columns, images);
}

TEST(RoundingWhitening, DoesNotShow) {
    std::vector<uint8_t> image(static_cast<size_t>(width * height * 3 / 2)), mask(2 * width);
    std::vector<int32_t> brightened(256);
    fill(mask.data(), mask.size(), base_seed);
    std::iota(brightened.begin(), brightened.end(), 20);
    zivcolor::MaskedImage masked{};
    masked.width = width;
    masked.height = height;
    masked.pitch[0] = masked.pitch[1] = width;
    masked.plane[0] = image.data();
    const Written written{&image, base_seed};
    EXPECT_ROUTINE(_SkinWhitenByMask_YUV420_VUVU, false, written, &masked, mask.data(), width, brightened.data(), 100, nullptr);
    EXPECT_ROUTINE(_SkinWhitenByMask_YUV420_VUVU_neon, false, written, &masked, mask.data(), width, brightened.data(), 100,
                   nullptr);
}

}  // namespace
