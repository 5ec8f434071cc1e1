// SPDX-License-Identifier: MIT
#include "lanes/lane_operations.h"

#include "core/kernel.h"
#include "hsl/quotients.h"
#include "rgb2yuv/columns.h"
#include "rgb2yuv/float_sums.h"
#include "rgbrepack/pixel_moves.h"
#include "yuv2rgb/byte_pairs.h"
#include "yuv2rgb/packed_words.h"
#include "yuv2rgb/pixel_terms.h"
#include "yuvrepack/packed444.h"
#include "yuvrepack/square_means.h"
#include "yuvrepack/yuyv.h"

namespace zivcolor::ZIVCOLOR_TARGET {

using namespace hsl;
using namespace rgb2yuv;
using namespace rgbrepack;
using namespace yuv2rgb;
using namespace yuvrepack;

template <int N>
struct Input {
    U8<N> a, b, c, d;
    explicit Input(const uint8_t* p) : a(load<N>(p)), b(load<N>(p + N)), c(load<N>(p + 2 * N)), d(load<N>(p + 3 * N)) {}
};

#define OPERATION(name, ...)                                                                   \
    template <int N>                                                                           \
    void operation_##name([[maybe_unused]] const uint8_t* in, [[maybe_unused]] uint8_t* out) { \
        [[maybe_unused]] const Input<N> v(in);                                                 \
        __VA_ARGS__                                                                            \
    }

OPERATION(load_widened, { store(out, load_widened<N>(in)); })
OPERATION(store_low_bytes, { store_low_bytes<N>(out, (U16<N>)v.a); })
OPERATION(load2, {
    const Channels<N, 2> r = load2<N>(in);
    store(out, r.c[0]), store(out + N, r.c[1]);
})
OPERATION(load3, {
    const Channels<N, 3> r = load3<N>(in);
    store(out, r.c[0]), store(out + N, r.c[1]), store(out + 2 * N, r.c[2]);
})
OPERATION(load4, {
    const Channels<N, 4> r = load4<N>(in);
    store(out, r.c[0]), store(out + N, r.c[1]), store(out + 2 * N, r.c[2]), store(out + 3 * N, r.c[3]);
})
OPERATION(store2, { store2<N>(out, v.a, v.b); })
OPERATION(store3, { store3<N>(out, v.a, v.b, v.c); })
OPERATION(store4, { store4<N>(out, v.a, v.b, v.c, v.d); })
OPERATION(add_saturating, { store(out, add_saturating(v.a, v.b)); })
OPERATION(subtract_saturating, { store(out, subtract_saturating(v.a, v.b)); })
OPERATION(average_up, { store(out, average_up(v.a, v.b)); })
OPERATION(lane_min_u8, { store(out, lane_min(v.a, v.b)); })
OPERATION(lane_max_u8, { store(out, lane_max(v.a, v.b)); })
OPERATION(lane_min_s16, { store(out, lane_min((S16<N>)v.a, (S16<N>)v.b)); })
OPERATION(lane_max_s16, { store(out, lane_max((S16<N>)v.a, (S16<N>)v.b)); })
OPERATION(even_bytes, { store(out, even_bytes<N>(v.a)); })
OPERATION(odd_bytes, { store(out, odd_bytes<N>(v.a)); })
OPERATION(merge_bytes, { store(out, merge_bytes<N>(even_bytes<N>(v.a), (U16<N>)v.b)); })
OPERATION(double_bytes, { store(out, double_bytes<N>(even_bytes<N>(v.a))); })
OPERATION(even_lanes, { store(out, even_lanes<N>(v.a, v.b)); })
OPERATION(odd_lanes, { store(out, odd_lanes<N>(v.a, v.b)); })
OPERATION(interleave_low, { store(out, interleave_low<N>(v.a, v.b)); })
OPERATION(interleave_high, { store(out, interleave_high<N>(v.a, v.b)); })
OPERATION(narrow_saturating, { store(out, narrow_saturating<N>((S16<N>)v.a, (S16<N>)v.b)); })
OPERATION(widen_add_narrow, {
    const Wide<N> a = widen<N>(v.a);
    const Wide<N> b = widen<N>(v.b);
    store(out, narrow<N>(Wide<N>{(U16<N>)(a.lo + b.lo), (U16<N>)(a.hi + b.hi)}));
})
// Both -32768 is outside the domain of these two: one of them is kept odd.
OPERATION(multiply_round_high, { store(out, multiply_round_high<N>((S16<N>)v.a, (S16<N>)v.b | (int16_t)1)); })
OPERATION(multiply_high, { store(out, multiply_high<N>((S16<N>)v.a, (S16<N>)v.b | (int16_t)1)); })
// a and b within a centred byte.
OPERATION(weigh_pair_q15, {
    const S16<N> a = (S16<N>)even_bytes<N>(v.a) - (int16_t)128;
    const S16<N> b = (S16<N>)even_bytes<N>(v.b) - (int16_t)128;
    store(out, weigh_pair_q15<N>(a, b, -11277, -23401));
})
// Terms of -254 to 254, from the ninth bit of a lane as sign.
template <int N>
ZIV_INLINE S16<N> term_in_range(U8<N> v) {
    const S16<N> size = lane_min((S16<N>)even_bytes<N>(v), S16<N>{} + (int16_t)254);
    return ((U16<N>)v & 0x100) != 0 ? -size : size;
}
template <int N, int c>
ZIV_INLINE S16<N> arranged_term(U8<N> v) {
    return term_in_range<N>(arrange_pairs<N, c>(v));
}
// The luma in a vector, then in memory.
OPERATION(store_pixels3, {
    const auto terms = pixel_terms<N>(arranged_term<N, 3>(v.a), arranged_term<N, 3>(v.b), arranged_term<N, 3>(v.c));
    store_pixels<N>(out, v.d, terms);
})
OPERATION(store_pixels3_from_memory, {
    const auto terms = pixel_terms<N>(arranged_term<N, 3>(v.a), arranged_term<N, 3>(v.b), arranged_term<N, 3>(v.c));
    store_pixels<N>(out, in + 3 * N, terms);
})
template <int N>
ZIV_INLINE auto four_channel_terms(const uint8_t* in) {
    const U8<N> a = load<N>(in), b = load<N>(in + N), c = load<N>(in + 2 * N);
    return pixel_terms<N>(arranged_term<N, 4>(a), arranged_term<N, 4>(b), arranged_term<N, 4>(c), in[4 * N - 1]);
}
OPERATION(store_pixels4, { store_pixels<N>(out, v.d, four_channel_terms<N>(in)); })
OPERATION(store_pixels4_from_memory, { store_pixels<N>(out, in + 3 * N, four_channel_terms<N>(in)); })
// Either row of two, beside another.
OPERATION(store_pixel_rows3_upper, {
    auto terms = pixel_terms<N>(arranged_term<N, 3>(v.a), arranged_term<N, 3>(v.b), arranged_term<N, 3>(v.c));
    uint8_t other[3 * N];
    store_pixel_rows<N>(out, other, in + 3 * N, in, terms);
})
OPERATION(store_pixel_rows3_lower, {
    auto terms = pixel_terms<N>(arranged_term<N, 3>(v.a), arranged_term<N, 3>(v.b), arranged_term<N, 3>(v.c));
    uint8_t other[3 * N];
    store_pixel_rows<N>(other, out, in, in + 3 * N, terms);
})
OPERATION(store_pixel_rows4_upper, {
    uint8_t other[4 * N];
    store_pixel_rows<N>(out, other, in + 3 * N, in, four_channel_terms<N>(in));
})
OPERATION(store_pixel_rows4_lower, {
    uint8_t other[4 * N];
    store_pixel_rows<N>(other, out, in, in + 3 * N, four_channel_terms<N>(in));
})
// Packed 4:2:2: the pixels' luma with one term for all channels; with u for the first, v for the last and an eighth of both off
// the second channel.
OPERATION(packed422_pixels3, {
    const S16<N> d = arranged_term<N, 3>(v.c);
    store_pixels<N>(out, load_packed422<N, 3>(in).luma, pixel_terms<N>(d, d, d));
})
OPERATION(packed422_pairs3, {
    const U8<N> pairs = load_packed422<N, 3>(in).pairs;
    const S16<N> u = (S16<N>)even_bytes<N>(pairs) - (int16_t)128;
    const S16<N> w = (S16<N>)odd_bytes<N>(pairs) - (int16_t)128;
    store_pixels<N>(out, load_packed422<N, 3>(in).luma, pixel_terms<N>(u, -((u >> 3) + (w >> 3)), w));
})
template <int N>
ZIV_INLINE PackedSums<N> sums_of(const PackedWords<N>& p) {
    const S16<N> outer = p.chroma >> 8;
    const S16<N> eighth = p.chroma >> 11;
    return {p.luma + outer, p.swapped + outer, p.luma - eighth - swap_lanes<N>(eighth)};
}
OPERATION(packed422_words, {
    const PackedSums<N> sums[2] = {sums_of<N>(load_packed_words<N>(in)), sums_of<N>(load_packed_words<N>(in + N))};
    store_packed_sums<N, 0>(out, sums, U8<N>{} + in[4 * N - 1]);
})
OPERATION(packed422_words_reversed, {
    const PackedSums<N> sums[2] = {sums_of<N>(load_packed_words<N>(in)), sums_of<N>(load_packed_words<N>(in + N))};
    store_packed_sums<N, 2>(out, sums, U8<N>{} + in[4 * N - 1]);
})
OPERATION(constants, { store(out, constants<N>(in[0] - 128, in[1] - 128)); })
OPERATION(constant, { store(out, constant<N>(in[0] - 128)); })
// Lanes of arranged pairs, put back in order.
template <int N, int c>
void store_in_order(uint8_t* out, U16<N> arranged) {
    for (int lane = 0; lane < N / 2; lane++) {
        const uint16_t value = arranged[lane];
        __builtin_memcpy(out + 2 * pair_in_lane<N, c>(lane), &value, sizeof value);
    }
}
OPERATION(arrange_pairs, {
    store_in_order<N, 3>(out, (U16<N>)arrange_pairs<N, 3>(v.a));
    store_in_order<N, 4>(out + N, (U16<N>)arrange_pairs<N, 4>(v.a));
})
OPERATION(load_arranged_pairs, {
    store_in_order<N, 3>(out, (U16<N>)load_arranged_pairs<N, 3>(in, in + N));
    store_in_order<N, 4>(out + N, (U16<N>)load_arranged_pairs<N, 4>(in, in + N));
})
OPERATION(load_arranged_upper, {
    store_in_order<N, 3>(out, load_arranged_upper<N, 3>(in));
    store_in_order<N, 4>(out + N, load_arranged_upper<N, 4>(in));
})
OPERATION(multiply, { store(out, multiply<N>((S16<N>)v.a, 0x78D5)); })
OPERATION(multiply_round_q15, { store(out, multiply_round_q15<N>((S16<N>)v.a, 25297)); })
OPERATION(multiply_q15, { store(out, multiply_q15<N>((S16<N>)v.a, -11277)); })
// Of lanes whose byte 0 counts; a lane's bits are all set or none.
OPERATION(zero_lanes, {
    const uint64_t lanes = zero_lanes<N>((U16<N>)v.a & 3);
    for (int lane = 0; lane < N / 2; lane++) {
        constexpr uint64_t all = (uint64_t{1} << zero_lane_bits<N>)-1;
        const uint64_t bits = lanes >> lane * zero_lane_bits<N> & all;
        out[lane] = bits == all ? 1 : bits == 0 ? 0 : 2;
    }
})
OPERATION(weigh_pair_bytes, { store(out, weigh_pair_bytes<N>(v.a, 36, -43)); })
OPERATION(weigh_signed_bytes, { store(out, weigh_signed_bytes<N>(v.a, 89, 43)); })
// The outer channels from the bytes of a pair, the middle one from a term of its own.
OPERATION(outer_lanes4, {
    const OuterLanes<N> outer = multiply_outer_q15<N>(outer_lanes_times_4<N>(v.a), 11485, 14516);
    store_pixels<N>(out, v.d, pixel_terms<N>(outer, term_in_range<N>(v.c), in[4 * N - 1]));
})
// Lanes beside the words of a table made of lanes: some stand in it, in the place that their bits number, others do not.
OPERATION(unlisted_lanes, {
    uint16_t table[32];
    for (int i = 0; i < 32; i++) table[i] = static_cast<uint16_t>(i << 10);
    for (int i = 0; i < N / 2; i += 2) table[in[2 * i + 1] >> 2 & 31] = ((U16<N>)v.a)[i];
    constexpr uint32_t all = UINT32_MAX >> (32 - N / 2);
    const uint32_t lanes = unlisted_lanes<N>(all & ~uint32_t{2}, (U16<N>)v.a, table);
    for (int i = 0; i < N / 2; i++) out[i] = lanes >> i & 1;
})
OPERATION(load_but_last, { store(out, load_but_last<N>(in)); })
OPERATION(swap_pairs, { store(out, swap_pairs<N>(v.a)); })
OPERATION(even_pairs, { store(out, even_pairs<N>(v.a, v.b)); })
OPERATION(packed_chroma, { store_packed444<N>(out, v.b, packed_chroma<N>(v.a)); })
OPERATION(select, { store(out, select((U8<N>)(v.a > v.b), v.c, v.d)); })
OPERATION(multiply_high_unsigned, { store(out, multiply_high_unsigned<N>((U16<N>)v.a, (U16<N>)v.b)); })
// Seen through narrow(): the upper bytes, and a difference of at most 255 around 0.
OPERATION(widen_joined, {
    const Wide<N> joined = widen_joined<N>(v.a, v.b);
    store(out, narrow<N>(Wide<N>{joined.lo >> 8, joined.hi >> 8}));
    store(out + N, narrow<N>(Wide<N>{joined.lo & 0xFF, joined.hi & 0xFF}));
})
OPERATION(widen_difference, {
    const Wide<N> difference = widen_difference<N>(v.a, v.b, 42);
    store(out, narrow<N>(Wide<N>{(U16<N>)((S16<N>)difference.lo >> 5), (U16<N>)((S16<N>)difference.hi >> 5)}));
})
OPERATION(reciprocals, {
    const Wide<N> r = reciprocals<N>(v.a | (U8<N>)((U8<N>)(v.a == 0) & 1));
    store(out, narrow<N>(Wide<N>{r.lo >> 8, r.hi >> 8}));
    store(out + N, narrow<N>(Wide<N>{r.lo & 0xFF, r.hi & 0xFF}));
})
OPERATION(move_pixels_3_reversed, { move_pixels<N, 3, 2, 1, 0>(out, in); })
OPERATION(move_pixels_4_to_3, { move_pixels<N, 4, 2, 1, 0>(out, in); })
OPERATION(move_pixels_3_to_4, { move_pixels<N, 3, opaque_alpha, 0, 1, 2>(out, in); })
OPERATION(shift_right_insert_3, { store(out, shift_right_insert<3>(v.a, v.b)); })
OPERATION(shift_right_insert_5, { store(out, shift_right_insert<5>(v.a, v.b)); })
OPERATION(pack_pixels_565, { pack_pixels_565<N, 0, 2>(out, in); })
OPERATION(pack_pixels_565_reversed, { pack_pixels_565<N, 2, 0>(out, in); })
OPERATION(copy_four, { copy_four<N>(out, in); })
OPERATION(copy_eight_first, {
    uint8_t eight[8 * N];
    uint8_t copied[8 * N];
    for (int i = 0; i < 4 * N; i++) eight[i] = in[i], eight[4 * N + i] = static_cast<uint8_t>(~in[i]);
    copy_eight<N>(copied, eight);
    __builtin_memcpy(out, copied, 4 * N);
})
OPERATION(copy_eight_last, {
    uint8_t eight[8 * N];
    uint8_t copied[8 * N];
    for (int i = 0; i < 4 * N; i++) eight[i] = static_cast<uint8_t>(~in[i]), eight[4 * N + i] = in[i];
    copy_eight<N>(copied, eight);
    __builtin_memcpy(out, copied + 4 * N, 4 * N);
})
OPERATION(store_yuyv, { store_yuyv<N>(out, load_for_yuyv<N>(in, in + 2 * N, in + 3 * N)); })
OPERATION(load_parts, { store(out, load_parts<N>(in, 24)); })
OPERATION(zip_parts_low, { store(out, zip_parts_low<N>(v.a, v.b)); })
OPERATION(zip_parts_high, { store(out, zip_parts_high<N>(v.a, v.b)); })
OPERATION(zip_pair_parts_low, { store(out, zip_pair_parts_low<N>(v.a, v.b)); })
OPERATION(zip_pair_parts_high, { store(out, zip_pair_parts_high<N>(v.a, v.b)); })
OPERATION(reverse_bytes, { store(out, reverse_bytes<N>(v.a)); })
OPERATION(reverse_pairs, { store(out, reverse_pairs<N>(v.a)); })
OPERATION(store_square_means, { store_square_means<N>(out, in, in + 2 * N); })
OPERATION(store2_pairs, { store2_pairs<N>(out, v.a, v.b); })

// ---- Terms over N columns of RGB ----

#define COLUMN_TERM(name, ...)                               \
    template <int N>                                         \
    void operation_##name(const uint8_t* in, uint8_t* out) { \
        __VA_ARGS__                                          \
    }

COLUMN_TERM(luma_q6_3, { store_luma(out, luma_q6<Weights{19, 38, 7}, own_bytes>(load_pixels<N, 3>(in))); })
COLUMN_TERM(luma_q6_4, { store_luma(out, luma_q6<Weights{7, 38, 19}, own_bytes>(load_pixels<N, 4>(in))); })
COLUMN_TERM(luma_q6_shared, { store_luma(out, luma_q6<Weights{19, 38, 7}, 2>(load_pixels<N, 4>(in))); })
COLUMN_TERM(luma_q15, { store_luma(out, rounded(fractional_luma<Weights{3736, 19235, 9798}>(load_pixels<N, 3>(in)))); })
// Bytes 0 and 2 of the even columns against luma: scaled, rounded, fractional.
COLUMN_TERM(scaled_differences, {
    const auto pixels = load_pixels<N, 3>(in);
    const auto luma = luma_q6<Weights{19, 38, 7}, own_bytes>(pixels);
    store_pairs<true>(out, scaled_differences<ShiftedWeight{91, 7, 180}, ShiftedWeight{9, 4, 228}>(pixels, luma));
})
COLUMN_TERM(rounded_differences, {
    const auto pixels = load_pixels<N, 3>(in);
    const auto luma = fractional_luma<Weights{3736, 19235, 9798}>(pixels);
    store_planes(out, out + N / 2, rounded_differences_q15<OuterWeights{18492, 23372}>(pixels, rounded(luma)));
})
COLUMN_TERM(fractional_differences, {
    const auto pixels = load_pixels<N, 3>(in);
    const auto luma = fractional_luma<Weights{3736, 19235, 9798}>(pixels);
    store_pairs<true>(out, fractional_differences_q15<OuterWeights{18492, 23372}>(pixels, luma));
})
template <bool luma_first, int N>
void packed_term(const uint8_t* in, uint8_t* out) {
    const auto pixels = load_pixels<N, 4>(in);
    const auto luma = luma_q6<Weights{19, 38, 7}, own_bytes>(pixels);
    store_packed422<luma_first, true>(out, luma,
                                      scaled_differences<ShiftedWeight{91, 7, 180}, ShiftedWeight{9, 4, 228}>(pixels, luma));
}
COLUMN_TERM(packed_luma_first, { packed_term<true, N>(in, out); })
COLUMN_TERM(packed_chroma_first, { packed_term<false, N>(in, out); })

// ---- Terms in binary32 and beside it ----

static constexpr FloatWeights float_y{0.299f, 0.587f, 0.114f}, float_u{-0.1678f, -0.3313f, 0.5f},
    float_v{0.5f, -0.4187f, -0.0813f};
static constexpr ApproximateWeights approximate_y{-2748, -27263, -87, 58, -23, -51, 21},
    approximate_u{-16384, 24269, -128, 70, -29, -10, 22}, approximate_v{48, -256, -111, -1, -128, 107, 16};

OPERATION(narrow_lanes, {
    const S32<N> low = S32<N>{} + 0xFF;
    store(out, narrow_lanes<N>((S32<N>)v.a & low, (S32<N>)v.b & low, (S32<N>)v.c & low, (S32<N>)v.d & low));
})
OPERATION(narrow_even_lanes, {
    const S32<N> low = S32<N>{} + 0xFFFF;
    store(out, narrow_even_lanes<N>((S32<N>)even_pixels(v.a, v.b) & low, (S32<N>)even_pixels(v.c, v.d) & low));
})
// Each sum as a 32-bit lane.
OPERATION(weigh_truncated, {
    store(out, weigh_truncated<2>(to_float<N>(v.a), float_y));
    store(out + N, weigh_truncated<0>(to_float<N>(v.b), float_u));
    store(out + 2 * N, weigh_truncated<0>(to_float<N>(v.c), float_v));
})
COLUMN_TERM(luma_f32, { store(out, luma_f32<N, 2>(load_pixel_vectors<N>(in), float_y)); })
COLUMN_TERM(chroma_pairs_f32, { store(out, chroma_pairs_f32<N, 0>(load_pixel_vectors<N>(in), float_v, float_u)); })
OPERATION(approximate_sums, {
    store(out, approximate_sums<N, 2>(repeat_green(v.a), approximate_y));
    store(out + N, approximate_sums<N, 0>(repeat_green(v.b), approximate_u));
    store(out + 2 * N, approximate_sums<N, 0>(repeat_green(v.c), approximate_v));
})
#if ZIV_HAS_SSE4_2
OPERATION(repeat_green, {
    store(out, repeat_green(v.a));
    store(out + N, repeat_green<1>(v.a));
})
template <int N>
PixelVectors<N> load_repeated(const uint8_t* in) {
    PixelVectors<N> pixels = load_pixel_vectors<N>(in);
    for (auto& q : pixels.q) q = repeat_green(q);
    return pixels;
}
template <int N>
U8<N> approximated_pairs(const PixelVectors<N>& p, NearTest<N>& test) {
    return approximate_chroma_pairs<2>(even_pixels(p.q[0], p.q[1]), even_pixels(p.q[2], p.q[3]), approximate_v, approximate_u,
                                       test);
}
// What is near to a whole number is done in binary32.
COLUMN_TERM(approximate_luma, {
    const PixelVectors<N> pixels = load_repeated<N>(in);
    NearTest<N> test;
    store(out, approximate_luma<2>(pixels, approximate_y, test));
    if (any_near(test)) store(out, luma_f32<N, 2>(pixels, float_y));
})
COLUMN_TERM(approximate_chroma_pairs, {
    const PixelVectors<N> pixels = load_repeated<N>(in);
    NearTest<N> test;
    store(out, approximated_pairs<N>(pixels, test));
    if (any_near(test)) store(out, chroma_pairs_f32<N, 2>(pixels, float_v, float_u));
})
COLUMN_TERM(any_near, {
    const PixelVectors<N> pixels = load_repeated<N>(in);
    NearTest<N> luma;
    NearTest<N> chroma;
    approximate_luma<2>(pixels, approximate_y, luma);
    approximated_pairs<N>(pixels, chroma);
    out[0] = any_near(luma);
    out[1] = any_near(chroma);
    out[2] = any_near(luma | chroma);
})
#endif

#define ROW(name, N) {#name, N, operation_##name<N>},
#if ZIV_HAS_AVX512_VBMI
#define ROWS(name) ROW(name, 64) ROW(name, 32) ROW(name, 16)
#elif ZIV_HAS_AVX2
#define ROWS(name) ROW(name, 32) ROW(name, 16)
#else
#define ROWS(name) ROW(name, 16)
#endif
#if ZIV_HAS_ADVANCED_SIMD
#define COLUMN_ROWS(name) ROW(name, 32) ROW(name, 16)
#else
#define COLUMN_ROWS(name) ROWS(name)
#endif

static constexpr harness::LaneOperation rows[] = {
    // clang-format off
    ROWS(load_widened) ROWS(store_low_bytes) ROWS(load2) ROWS(load3) ROWS(load4) ROWS(store2) ROWS(store3) ROWS(store4)
    ROWS(add_saturating) ROWS(subtract_saturating) ROWS(average_up) ROWS(lane_min_u8) ROWS(lane_max_u8) ROWS(lane_min_s16)
    ROWS(lane_max_s16) ROWS(even_bytes) ROWS(odd_bytes) ROWS(merge_bytes) ROWS(double_bytes) ROWS(even_lanes)
    ROWS(odd_lanes) ROWS(interleave_low) ROWS(interleave_high) ROWS(narrow_saturating) ROWS(widen_add_narrow)
    ROWS(multiply_round_high) ROWS(multiply_high) ROWS(weigh_pair_q15) ROWS(store_pixels3) ROWS(store_pixels4)
    ROWS(store_pixel_rows3_upper) ROWS(store_pixel_rows3_lower) ROWS(store_pixel_rows4_upper) ROWS(store_pixel_rows4_lower)
    ROWS(multiply) ROWS(multiply_round_q15) ROWS(copy_eight_first) ROWS(copy_eight_last)
    ROWS(store_pixels3_from_memory) ROWS(store_pixels4_from_memory) ROWS(packed422_pixels3) ROWS(packed422_pairs3)
    ROWS(packed422_words) ROWS(packed422_words_reversed) ROWS(constant) ROWS(constants)
    ROWS(arrange_pairs) ROWS(load_arranged_pairs) ROWS(load_arranged_upper) ROWS(weigh_pair_bytes) ROWS(weigh_signed_bytes) ROWS(outer_lanes4)
    ROWS(unlisted_lanes) ROWS(multiply_q15) ROWS(zero_lanes) ROWS(load_but_last) ROWS(swap_pairs)
    ROWS(even_pairs) ROWS(packed_chroma) ROWS(select) ROWS(multiply_high_unsigned) ROWS(widen_joined) ROWS(widen_difference)
    ROWS(reciprocals) ROWS(move_pixels_3_reversed) ROWS(move_pixels_4_to_3) ROWS(move_pixels_3_to_4)
    ROWS(shift_right_insert_3) ROWS(shift_right_insert_5) ROWS(pack_pixels_565) ROWS(pack_pixels_565_reversed)
    ROWS(copy_four) ROWS(store_yuyv) ROWS(load_parts) ROWS(zip_parts_low) ROWS(zip_parts_high) ROWS(zip_pair_parts_low)
    ROWS(zip_pair_parts_high) ROW(reverse_bytes, 16) ROW(reverse_pairs, 16) ROWS(store_square_means) ROW(store2_pairs, 16)
    COLUMN_ROWS(luma_q6_3) COLUMN_ROWS(luma_q6_4) COLUMN_ROWS(luma_q6_shared) COLUMN_ROWS(luma_q15)
    COLUMN_ROWS(scaled_differences) COLUMN_ROWS(rounded_differences) COLUMN_ROWS(fractional_differences)
    COLUMN_ROWS(packed_luma_first) COLUMN_ROWS(packed_chroma_first)
    ROWS(narrow_lanes) ROWS(narrow_even_lanes) ROWS(weigh_truncated) ROWS(luma_f32) ROWS(chroma_pairs_f32) ROWS(approximate_sums)
#if ZIV_HAS_SSE4_2
    ROWS(repeat_green) ROWS(approximate_luma) ROWS(approximate_chroma_pairs) ROWS(any_near)
#endif
    // clang-format on
};

extern const harness::LaneOperations lane_operations;
const harness::LaneOperations lane_operations = {rows, sizeof rows / sizeof *rows};

}  // namespace zivcolor::ZIVCOLOR_TARGET
