// SPDX-License-Identifier: MIT
// Every term of the lane vocabulary on every target and vector size against its scalar meaning: exhaustively over pairs of
// bytes and over single 16-bit lanes, then over seeded random bytes that favour the extremes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "core/targets.h"
#include "harness/options.h"
#include "harness/workspace.h"
#include "lanes/lane_operations.h"

namespace {

using Bytes = std::vector<uint8_t>;
// N: bytes of a vector; in: 4 N bytes; out: 4 N bytes, cleared.
using Meaning = std::function<void(int N, const uint8_t* in, uint8_t* out)>;

int s16(const uint8_t* p, int lane) {
    int16_t v;
    std::memcpy(&v, p + 2 * lane, 2);
    return v;
}
int s8(const uint8_t* p, int byte) { return static_cast<int8_t>(p[byte]); }
void put16(uint8_t* p, int lane, int64_t value) {
    const auto v = static_cast<uint16_t>(value & 0xFFFF);
    std::memcpy(p + 2 * lane, &v, 2);
}
uint8_t clamp8(int64_t v) { return static_cast<uint8_t>(std::clamp<int64_t>(v, 0, 255)); }

Meaning on_bytes(int (*f)(int a, int b)) {
    return [f](int N, const uint8_t* in, uint8_t* out) {
        for (int i = 0; i < N; i++) out[i] = static_cast<uint8_t>(f(in[i], in[N + i]));
    };
}
Meaning on_s16(int64_t (*f)(int64_t a, int64_t b)) {
    return [f](int N, const uint8_t* in, uint8_t* out) {
        for (int i = 0; i < N / 2; i++) put16(out, i, f(s16(in, i), s16(in + N, i)));
    };
}
// Byte n of the output, for `count` vectors of output, is byte from(N, n) of the input.
Meaning moves(int count, int (*from)(int N, int n)) {
    return [=](int N, const uint8_t* in, uint8_t* out) {
        for (int n = 0; n < count * N; n++) out[n] = in[from(N, n)];
    };
}

int term_in_range(const uint8_t* p, int lane) {
    const int size = std::min<int>(p[2 * lane], 254);
    return p[2 * lane + 1] & 1 ? -size : size;
}

Meaning per_byte(int (*f)(const uint8_t* in, int N, int n)) {
    return [f](int N, const uint8_t* in, uint8_t* out) {
        for (int n = 0; n < N; n++) out[n] = static_cast<uint8_t>(f(in, N, n));
    };
}

// Pixels of RGB, `bytes` each.
struct Rgb {
    int c0, c1, c2;
};
Rgb pixel(const uint8_t* in, int bytes, int column) {
    const uint8_t* p = in + bytes * column;
    return {p[0], p[1], p[2]};
}
int luma_short(Rgb p) { return (19 * p.c0 + 38 * p.c1 + 7 * p.c2) >> 6; }
int luma_short_reversed(Rgb p) { return (7 * p.c0 + 38 * p.c1 + 19 * p.c2) >> 6; }
int sum_q15(Rgb p) { return 3736 * p.c0 + 19235 * p.c1 + 9798 * p.c2; }
int luma_fine(Rgb p) { return (sum_q15(p) + 16384) >> 15; }
uint8_t chroma_short(Rgb p, bool second) {
    const int y = luma_short(p);
    return clamp8((second ? (p.c0 - y) * 91 >> 7 : (p.c2 - y) * 9 >> 4) + 128);
}
uint8_t chroma_rounded(Rgb p, bool second) {
    const int y = luma_fine(p);
    return clamp8((((second ? p.c2 - y : p.c0 - y) * (second ? 23372 : 18492) + 16384) >> 15) + 128);
}
uint8_t chroma_fractional(Rgb p, bool first) {
    const int d = sum_q15(p) >> 8;
    const int scaled = (((first ? p.c2 : p.c0) << 7) - d) * (first ? 23372 : 18492) >> 7;
    return clamp8(((scaled + 16384) >> 15) + 128);
}
// Pixels of c channels: luma from in + 3 N plus a term of each channel; the fourth is the last byte.
template <int c>
void store_pixels(int N, const uint8_t* in, uint8_t* out) {
    for (int i = 0; i < N; i++)
        for (int k = 0; k < c; k++)
            out[c * i + k] = k == 3 ? in[4 * N - 1] : clamp8(in[3 * N + i] + term_in_range(in + k * N, i / 2));
}
// Packed 4:2:2 to pixels of c channels: u and v are the terms of the outer channels, green takes the floor of an eighth of
// each.
template <int c, int u_byte>
void packed_pixels(int N, const uint8_t* in, uint8_t* out) {
    for (int i = 0; i < N; i++) {
        const int luma = in[2 * i], u = in[i / 2 * 4 + 1] - 128, v = in[i / 2 * 4 + 3] - 128;
        out[c * i + u_byte] = clamp8(luma + u);
        out[c * i + 1] = clamp8(luma - (u >> 3) - (v >> 3));
        out[c * i + 2 - u_byte] = clamp8(luma + v);
        if (c == 4) out[c * i + 3] = in[4 * N - 1];
    }
}

// Sums in binary32, each product and each sum rounded by itself, truncated towards 0.
struct Float3 {
    float c0, c1, c2;
};
int cut_f32(Rgb p, Float3 w, bool red_last) {
    const float green = static_cast<float>(p.c1) * w.c1, c0 = static_cast<float>(p.c0) * w.c0,
                c2 = static_cast<float>(p.c2) * w.c2;
    const float green_red = green + (red_last ? c2 : c0);
    return static_cast<int>((red_last ? c0 : c2) + green_red);
}
int luma_f32(Rgb bgr) { return cut_f32(bgr, {0.114f, 0.587f, 0.299f}, true); }
int u_f32(Rgb rgb) { return cut_f32(rgb, {-0.1678f, -0.3313f, 0.5f}, false); }
int v_f32(Rgb rgb) { return cut_f32(rgb, {0.5f, -0.4187f, -0.0813f}, false); }
Rgb reversed(Rgb p) { return {p.c2, p.c1, p.c0}; }
// Integer sums near them, over 2^21, 2^22 and 2^16; whether the 11 bits next below the point are all 0.
int approximate_luma(Rgb bgr) { return -2748 * (-87 * bgr.c0 + 58 * bgr.c1) - 27263 * (-23 * bgr.c2 - 51 * bgr.c1); }
int approximate_u(Rgb rgb) { return -16384 * (-128 * rgb.c2 + 70 * rgb.c1) + 24269 * (-29 * rgb.c0 - 10 * rgb.c1); }
int approximate_v(Rgb rgb) { return 48 * (-111 * rgb.c2 - rgb.c1) - 256 * (-128 * rgb.c0 + 107 * rgb.c1); }
bool near_whole(int sum, int scale) { return (sum >> (scale - 11) & 0x7FF) == 0; }

void put32(uint8_t* p, int lane, int32_t v) { std::memcpy(p + 4 * lane, &v, 4); }
// Three vectors of sums, of BGRA pixels, RGBA pixels and RGBA pixels.
Meaning sums(int (*first)(Rgb), int (*second)(Rgb), int (*third)(Rgb)) {
    return [=](int N, const uint8_t* in, uint8_t* out) {
        int (*const sum[3])(Rgb) = {first, second, third};
        for (int lane = 0; lane < 3 * N / 4; lane++) put32(out, lane, sum[lane / (N / 4)](pixel(in, 4, lane)));
    };
}

const std::map<std::string, Meaning>& meanings() {
    static const std::map<std::string, Meaning> table = {
        {"load_widened", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) put16(out, i, in[i]); }},
        {"store_low_bytes", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) out[i] = in[2 * i]; }},
        {"load2", moves(2, [](int N, int n) { return 2 * (n % N) + n / N; })},
        {"load3", moves(3, [](int N, int n) { return 3 * (n % N) + n / N; })},
        {"load4", moves(4, [](int N, int n) { return 4 * (n % N) + n / N; })},
        {"store2", moves(2, [](int N, int n) { return n % 2 * N + n / 2; })},
        {"store3", moves(3, [](int N, int n) { return n % 3 * N + n / 3; })},
        {"store4", moves(4, [](int N, int n) { return n % 4 * N + n / 4; })},
        {"add_saturating", on_bytes([](int a, int b) { return std::min(a + b, 255); })},
        {"subtract_saturating", on_bytes([](int a, int b) { return std::max(a - b, 0); })},
        {"average_up", on_bytes([](int a, int b) { return (a + b + 1) >> 1; })},
        {"lane_min_u8", on_bytes([](int a, int b) { return std::min(a, b); })},
        {"lane_max_u8", on_bytes([](int a, int b) { return std::max(a, b); })},
        {"lane_min_s16", on_s16([](int64_t a, int64_t b) { return std::min(a, b); })},
        {"lane_max_s16", on_s16([](int64_t a, int64_t b) { return std::max(a, b); })},
        {"even_bytes", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) put16(out, i, in[2 * i]); }},
        {"odd_bytes", [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) put16(out, i, in[2 * i + 1]); }},
        {"merge_bytes", moves(1, [](int N, int n) { return n % 2 ? N + n - 1 : n; })},
        {"double_bytes", moves(1, [](int, int n) { return n / 2 * 2; })},
        {"even_lanes", moves(1, [](int, int n) { return 2 * n; })},
        {"odd_lanes", moves(1, [](int, int n) { return 2 * n + 1; })},
        {"interleave_low", moves(1, [](int N, int n) { return n / 2 + n % 2 * N; })},
        {"interleave_high", moves(1, [](int N, int n) { return N / 2 + n / 2 + n % 2 * N; })},
        {"narrow_saturating",
         [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N; i++) out[i] = clamp8(s16(in, i)); }},
        {"widen_add_narrow", on_bytes([](int a, int b) { return std::min(a + b, 255); })},
        {"multiply_round_high", on_s16([](int64_t a, int64_t b) { return (a * (b | 1) + 16384) >> 15; })},
        {"multiply_high", on_s16([](int64_t a, int64_t b) { return (a * (b | 1)) >> 16; })},
        {"weigh_pair_q15",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N / 2; i++) put16(out, i, (-11277 * (in[2 * i] - 128) - 23401 * (in[N + 2 * i] - 128) + 16384) >> 15);
         }},
        {"packed422_pixels3",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N; i++)
                 for (int k = 0; k < 3; k++) out[3 * i + k] = clamp8(in[2 * i] + term_in_range(in + 2 * N, i / 2));
         }},
        {"packed422_pairs3", packed_pixels<3, 0>},
        {"packed422_words", packed_pixels<4, 0>},
        {"packed422_words_reversed", packed_pixels<4, 2>},
        {"constants",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N / 2; i++) put16(out, i, in[i % 2] - 128);
         }},
        {"constant",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N / 2; i++) put16(out, i, in[0] - 128);
         }},
        {"arrange_pairs", moves(2, [](int N, int n) { return n % N; })},
        {"load_arranged_pairs",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N; i++) put16(out, i, in[i % (N / 2)] + 256 * in[N + i % (N / 2)]);
         }},
        {"load_arranged_upper",
         [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N; i++) put16(out, i, 256 * in[i % (N / 2)]); }},
        {"weigh_pair_bytes",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N / 2; i++) put16(out, i, 36 * in[2 * i] - 43 * in[2 * i + 1]);
         }},
        {"weigh_signed_bytes",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N / 2; i++) put16(out, i, 89 * s8(in, 2 * i) + 43 * s8(in, 2 * i + 1));
         }},
        {"outer_lanes4",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N; i++) {
                 const int luma = in[3 * N + i], pair = i / 2;
                 out[4 * i] = clamp8(luma + ((4 * s8(in, 2 * pair + 1) * 14516) >> 15));
                 out[4 * i + 1] = clamp8(luma + term_in_range(in + 2 * N, pair));
                 out[4 * i + 2] = clamp8(luma + ((4 * s8(in, 2 * pair) * 11485) >> 15));
                 out[4 * i + 3] = in[4 * N - 1];
             }
         }},
        {"unlisted_lanes",
         [](int N, const uint8_t* in, uint8_t* out) {
             int table[32];
             for (int i = 0; i < 32; i++) table[i] = i << 10;
             for (int i = 0; i < N / 2; i += 2) table[in[2 * i + 1] / 4 % 32] = s16(in, i) & 0xFFFF;
             for (int i = 0; i < N / 2; i++) out[i] = i != 1 && table[in[2 * i + 1] / 4 % 32] != (s16(in, i) & 0xFFFF);
         }},
        {"multiply", on_s16([](int64_t a, int64_t) -> int64_t { return static_cast<int16_t>(a * 0x78D5); })},
        {"multiply_round_q15", on_s16([](int64_t a, int64_t) { return (a * 25297 + 16384) >> 15; })},
        {"multiply_q15", on_s16([](int64_t a, int64_t) { return (a * -11277) >> 15; })},
        {"zero_lanes",
         [](int N, const uint8_t* in, uint8_t* out) { for (int i = 0; i < N / 2; i++) out[i] = s16(in, i) % 4 == 0; }},
        {"load_but_last", per_byte([](const uint8_t* in, int N, int n) { return n < N - 1 ? in[n] : 0; })},
        {"swap_pairs", moves(1, [](int, int n) { return n ^ 1; })},
        {"even_pairs", moves(1, [](int N, int n) { return n % 2 ? N + n - 1 : n; })},
        {"packed_chroma",  // pairs V U, then luma: Y U V
         moves(3, [](int N, int n) { return n % 3 == 0 ? N + n / 3 : n / 6 * 2 + (n % 3 == 1); })},
        {"select", per_byte([](const uint8_t* in, int N, int n) { return int{in[n] > in[N + n] ? in[2 * N + n] : in[3 * N + n]}; })},
        {"multiply_high_unsigned", on_s16([](int64_t a, int64_t b) { return ((a & 0xFFFF) * (b & 0xFFFF)) >> 16; })},
        {"widen_joined", moves(2, [](int N, int n) { return n < N ? N + n : n - N; })},
        {"widen_difference", per_byte([](const uint8_t* in, int N, int n) { return int{clamp8((42 * (in[n] - in[N + n])) >> 5)}; })},
        {"reciprocals",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int n = 0; n < N; n++) {
                 const int r = std::min(65536 / std::max<int>(in[n], 1), 65535);
                 out[n] = static_cast<uint8_t>(r >> 8), out[N + n] = static_cast<uint8_t>(r & 255);
             }
         }},
        {"move_pixels_3_reversed", moves(3, [](int, int n) { return n / 3 * 3 + 2 - n % 3; })},
        {"move_pixels_4_to_3", moves(3, [](int, int n) { return n / 3 * 4 + 2 - n % 3; })},
        {"move_pixels_3_to_4",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int n = 0; n < 4 * N; n++) out[n] = n % 4 == 0 ? 255 : in[n / 4 * 3 + n % 4 - 1];
         }},
        {"shift_right_insert_3", on_bytes([](int kept, int in) { return (kept & 224) | (in >> 3); })},
        {"shift_right_insert_5", on_bytes([](int kept, int in) { return (kept & 248) | (in >> 5); })},
        {"pack_pixels_565",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N; i++) put16(out, i, (in[3 * i] >> 3) << 11 | (in[3 * i + 1] >> 2) << 5 | in[3 * i + 2] >> 3);
         }},
        {"pack_pixels_565_reversed",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int i = 0; i < N; i++) put16(out, i, (in[3 * i + 2] >> 3) << 11 | (in[3 * i + 1] >> 2) << 5 | in[3 * i] >> 3);
         }},
        {"copy_four", moves(4, [](int, int n) { return n; })},
        {"copy_eight_first", moves(4, [](int, int n) { return n; })},
        {"copy_eight_last", moves(4, [](int, int n) { return n; })},
        {"store_yuyv", moves(4, [](int N, int n) { return n % 2 == 0 ? n / 2 : (n % 4 == 1 ? 2 * N : 3 * N) + n / 4; })},
        {"load_parts", moves(1, [](int, int n) { return n / 16 * 24 + n % 16; })},
        {"zip_parts_low", moves(1, [](int N, int n) { return n / 16 * 16 + n % 16 / 2 + n % 2 * N; })},
        {"zip_parts_high", moves(1, [](int N, int n) { return n / 16 * 16 + 8 + n % 16 / 2 + n % 2 * N; })},
        {"zip_pair_parts_low", moves(1, [](int N, int n) { return n / 16 * 16 + n % 16 / 4 * 2 + n % 2 + n % 4 / 2 * N; })},
        {"zip_pair_parts_high", moves(1, [](int N, int n) { return n / 16 * 16 + 8 + n % 16 / 4 * 2 + n % 2 + n % 4 / 2 * N; })},
        {"reverse_bytes", moves(1, [](int N, int n) { return N - 1 - n; })},
        {"reverse_pairs", moves(1, [](int N, int n) { return (N - 1 - n) ^ 1; })},
        {"store_square_means",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int n = 0; n < N; n++) {
                 const uint8_t *upper = in + n / 2 * 4 + n % 2, *lower = upper + 2 * N;
                 out[n] = static_cast<uint8_t>((upper[0] + upper[2] + lower[0] + lower[2] + 2) >> 2);
             }
         }},
        {"store2_pairs", moves(2, [](int N, int n) { return n / 4 * 2 + n % 2 + n % 4 / 2 * N; })},
        {"luma_q6_3", per_byte([](const uint8_t* in, int, int n) { return luma_short(pixel(in, 3, n)); })},
        {"luma_q6_4", per_byte([](const uint8_t* in, int, int n) { return luma_short_reversed(pixel(in, 4, n)); })},
        {"luma_q6_shared", per_byte([](const uint8_t* in, int, int n) {
             Rgb p = pixel(in, 4, n);
             p.c2 = pixel(in, 4, n & ~8).c2;
             return luma_short(p);
         })},
        {"luma_q15", per_byte([](const uint8_t* in, int, int n) { return luma_fine(pixel(in, 3, n)); })},
        {"scaled_differences",
         per_byte([](const uint8_t* in, int, int n) { return int{chroma_short(pixel(in, 3, n & ~1), n & 1)}; })},
        {"rounded_differences", per_byte([](const uint8_t* in, int N, int n) {
             return int{chroma_rounded(pixel(in, 3, n % (N / 2) * 2), n >= N / 2)};
         })},
        {"fractional_differences",
         per_byte([](const uint8_t* in, int, int n) { return int{chroma_fractional(pixel(in, 3, n & ~1), !(n & 1))}; })},
        {"packed_luma_first",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int n = 0; n < N; n++) {
                 out[2 * n] = static_cast<uint8_t>(luma_short(pixel(in, 4, n)));
                 out[2 * n + 1] = chroma_short(pixel(in, 4, n & ~1), n & 1);
             }
         }},
        {"packed_chroma_first",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int n = 0; n < N; n++) {
                 out[2 * n + 1] = static_cast<uint8_t>(luma_short(pixel(in, 4, n)));
                 out[2 * n] = chroma_short(pixel(in, 4, n & ~1), n & 1);
             }
         }},
        {"narrow_lanes", moves(1, [](int, int n) { return 4 * n; })},
        {"narrow_even_lanes", moves(1, [](int, int n) { return n / 2 * 8 + n % 2; })},
        {"weigh_truncated", sums(luma_f32, u_f32, v_f32)},
        {"luma_f32", per_byte([](const uint8_t* in, int, int n) { return luma_f32(pixel(in, 4, n)); })},
        {"chroma_pairs_f32", per_byte([](const uint8_t* in, int, int n) {
             const Rgb p = pixel(in, 4, n & ~1);
             return (n % 2 ? u_f32(p) : v_f32(p)) + 128;
         })},
        {"approximate_sums", sums(approximate_luma, approximate_u, approximate_v)},
        {"repeat_green",
         [](int N, const uint8_t* in, uint8_t* out) {
             for (int n = 0; n < N; n++) {
                 out[n] = in[n % 4 == 3 ? n - 2 : n];
                 out[N + n] = in[n % 4 == 3 ? n - 1 : n + 1];
             }
         }},
        {"approximate_luma", per_byte([](const uint8_t* in, int, int n) { return luma_f32(pixel(in, 4, n)); })},
        {"approximate_chroma_pairs", per_byte([](const uint8_t* in, int, int n) {
             const Rgb even = reversed(pixel(in, 4, n & ~1));
             return (n % 2 ? u_f32(even) : v_f32(even)) + 128;
         })},
        {"any_near",
         [](int N, const uint8_t* in, uint8_t* out) {
             bool luma = false, chroma = false;
             for (int n = 0; n < N; n++) {
                 const Rgb p = pixel(in, 4, n), even = reversed(pixel(in, 4, n & ~1));
                 luma |= near_whole(approximate_luma(p), 21);
                 chroma |= near_whole(approximate_v(even), 16) || near_whole(approximate_u(even), 22);
             }
             out[0] = luma, out[1] = chroma, out[2] = luma || chroma;
         }},
        {"store_pixels3", store_pixels<3>},
        {"store_pixels4", store_pixels<4>},
        {"store_pixel_rows3_upper", store_pixels<3>},
        {"store_pixel_rows3_lower", store_pixels<3>},
        {"store_pixel_rows4_upper", store_pixels<4>},
        {"store_pixel_rows4_lower", store_pixels<4>},
        {"store_pixels3_from_memory", store_pixels<3>},
        {"store_pixels4_from_memory", store_pixels<4>},
    };
    return table;
}

struct Row {
    std::string target;
    harness::LaneOperation term;
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.target << " " << row.term.name; }

// The terms of every target that this CPU can run.
std::vector<Row> rows() {
    std::vector<Row> all;
    for (const harness::TargetOperations* built = harness::built_operations; built->target; built++)
        for (const zivcolor::Target& target : harness::targets())
            if (target.name == std::string(built->target))
                for (int i = 0; i < built->operations->count; i++) all.push_back({target.name, built->operations->rows[i]});
    return all;
}

class LaneOperations : public testing::TestWithParam<Row> {
protected:
    // Four vectors of input; true if the term gave its meaning.
    bool agrees(const Bytes& in) {
        const int N = GetParam().term.bytes;
        Bytes expected(static_cast<size_t>(4 * N)), got(static_cast<size_t>(4 * N));
        meanings().at(GetParam().term.name)(N, in.data(), expected.data());
        GetParam().term.run(in.data(), got.data());
        if (got == expected) return true;
        const auto at = std::mismatch(expected.begin(), expected.end(), got.begin());
        ADD_FAILURE() << "output byte " << at.first - expected.begin() << ": expected " << int{*at.first} << ", got "
                      << int{*at.second};
        return false;
    }
};

TEST_P(LaneOperations, HasAMeaning) { ASSERT_TRUE(meanings().count(GetParam().term.name)); }

TEST_P(LaneOperations, AllPairsOfBytes) {
    const auto N = static_cast<size_t>(GetParam().term.bytes);
    Bytes in(4 * N);
    for (size_t pair = 0; pair < 65536; pair += N) {
        for (size_t i = 0; i < N; i++) {
            in[i] = in[2 * N + i] = static_cast<uint8_t>(pair + i);
            in[N + i] = in[3 * N + i] = static_cast<uint8_t>((pair + i) >> 8);
        }
        if (!agrees(in)) return;
    }
}

TEST_P(LaneOperations, AllSingleLanesOf16Bits) {
    const auto N = static_cast<size_t>(GetParam().term.bytes);
    Bytes in(4 * N);
    harness::Random random{harness::base_seed};
    for (size_t value = 0; value < 65536; value += N / 2) {
        harness::fill(in.data(), in.size(), random.next());
        const size_t which = random.next() % 2 * N;
        for (size_t i = 0; i < N / 2; i++) put16(in.data() + which, static_cast<int>(i), static_cast<int64_t>(value + i));
        if (!agrees(in)) return;
    }
}

TEST_P(LaneOperations, RandomBytes) {
    Bytes in(static_cast<size_t>(4 * GetParam().term.bytes));
    harness::Random random{harness::base_seed + 1};
    for (int round = 0; round < 4000; round++) {
        harness::fill(in.data(), in.size(), random.next());
        if (!agrees(in)) return;
    }
}

// 16-bit lanes of nothing but extremes, in every combination of two.
TEST_P(LaneOperations, ExtremesOf16Bits) {
    static constexpr int extremes[] = {-32768, -32767, -16385, -16384, -256, -255, -129, -128, -1,    0,     1,
                                       2,      15,     31,     127,    128,  254,  255,  256,  16383, 16384, 32767};
    const auto N = static_cast<size_t>(GetParam().term.bytes);
    Bytes in(4 * N);
    for (const int a : extremes)
        for (const int b : extremes) {
            for (size_t i = 0; i < 4 * N / 2; i++) put16(in.data(), static_cast<int>(i), i / (N / 2) % 2 ? b : a);
            if (!agrees(in)) return;
        }
}

INSTANTIATE_TEST_SUITE_P(All, LaneOperations, testing::ValuesIn(rows()), [](const testing::TestParamInfo<Row>& row) {
    return row.param.target + "_" + std::to_string(row.param.term.bytes) + "_" + row.param.term.name;
});

}  // namespace
