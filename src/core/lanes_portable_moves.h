// The terms that move samples and change none, in plain code: what every target has where its own file knows nothing better.
#pragma once

#include "core/lanes.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// ---- Repacking of chroma ----

// N lanes of which the last is 0: reads N - 1 bytes.
template <int N>
ZIV_INLINE U8<N> load_but_last(const uint8_t* p) {
    static_assert(N == 16);
    uint64_t first, last;
    __builtin_memcpy(&first, p, 8);
    __builtin_memcpy(&last, p + 7, 8);
    return (U8<N>)U64<N>{first, last >> 8};
}

// The two bytes of every pair exchanged.
template <int N>
ZIV_INLINE U8<N> swap_pairs(U8<N> v) {
    const U16<N> pairs = (U16<N>)v;
    return (U8<N>)((pairs << 8) | (pairs >> 8));
}

// a0 b0 a2 b2 a4 b4 ...
template <int N>
ZIV_INLINE U8<N> even_pairs(U8<N> a, U8<N> b) {
    return merge_bytes<N>(even_bytes<N>(a), (U16<N>)b);
}

// N / 2 pairs V U laid out as the chroma of N packed Y U V pixels, made once for one or two rows.
template <int N>
struct PackedChroma {
    U16<N> u256, v;
};
template <int N>
ZIV_INLINE PackedChroma<N> packed_chroma(U8<N> pairs) {
    return {(U16<N>)pairs & 0xFF00, even_bytes<N>(pairs)};
}
template <int N>
ZIV_INLINE void store_packed(uint8_t* p, U8<N> luma, const PackedChroma<N>& chroma) {
    store_columns3<N>(p, {even_bytes<N>(luma) | chroma.u256, chroma.v}, {odd_bytes<N>(luma) | chroma.u256, chroma.v});
}

// ---- Whole pixels moved from one byte layout to another. All N pixels are read before the first is written. ----

// Byte 0 and byte 2 of three exchanged: every byte stays or comes from two places on or back.
template <int N, int k>
ZIV_INLINE U8<N> every_third_byte() {
    return load<N>(byte_table<N>([](int n) { return n % 3 == k ? 255 : 0; }));
}
template <int N>
ZIV_INLINE void reverse_pixels3(uint8_t* dst, const uint8_t* src) {
    static_assert(N == 16);
    const U8<N> third[3] = {every_third_byte<N, 0>(), every_third_byte<N, 1>(), every_third_byte<N, 2>()}, zero{};
    const U8<N> first = load<N>(src), middle = load<N>(src + 16), last = load<N>(src + 32);
    const U8<N> before_first =
        __builtin_shufflevector(zero, first, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29);
    const U8<N> behind_last = __builtin_shufflevector(last, zero, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17);
    const U8<N> behind_first = load<N>(src + 2), before_middle = load<N>(src + 14), behind_middle = load<N>(src + 18);
    const U8<N> before_last = load<N>(src + 30);
    store(dst, (first & third[1]) | (behind_first & third[0]) | (before_first & third[2]));
    store(dst + 16, (middle & third[0]) | (behind_middle & third[2]) | (before_middle & third[1]));
    store(dst + 32, (last & third[2]) | (behind_last & third[1]) | (before_last & third[0]));
}

// The bytes 2, 1 and 0 of four.
template <int N>
ZIV_INLINE void reverse_pixels4_to_3(uint8_t* dst, const uint8_t* src) {
    U64<N> pairs[4];
    for (int i = 0; i < 4; i++) {
        const U32<N> v = (U32<N>)load<N>(src + N * i), outer = v & 0x00FF00FF;
        const U64<N> reversed = (U64<N>)((outer << 16) | (outer >> 16) | (v & 0x0000FF00));
        pairs[i] = (reversed & 0xFFFFFF) | ((reversed >> 8) & 0xFFFFFF000000);
    }
    store_six_bytes<N>(dst, pairs[0], pairs[1], pairs[2], pairs[3]);
}

// A byte of 255, and the bytes of three.
template <int N>
ZIV_INLINE void prefix_pixels3(uint8_t* dst, const uint8_t* src) {
    static_assert(N == 16);
    uint64_t lanes[8];
    for (int i = 0; i < 7; i++) __builtin_memcpy(&lanes[i], src + 6 * i, 8);
    __builtin_memcpy(&lanes[7], src + 40, 8);
    lanes[7] >>= 16;
    U8<N> quads[4];
    for (int i = 0; i < 4; i++) {
        const U64<N> v = {lanes[2 * i], lanes[2 * i + 1]};
        quads[i] = (U8<N>)(((v << 8) & 0x00000000FFFFFF00) | ((v << 16) & 0xFFFFFF0000000000) | 0x000000FF000000FF);
    }
    for (int i = 0; i < 4; i++) store(dst + N * i, quads[i]);
}

// Byte k of a written pixel is byte from[k] of the pixel read, which has `in` bytes; `ones` stands for a byte of 255.
inline constexpr int ones = -1;
template <int N, int in, int... from>
struct PixelMove {
    ZIV_INLINE static void move(uint8_t* dst, const uint8_t* src) {
        constexpr int out = sizeof...(from), place[out] = {from...};
        if constexpr (out == 3) {
            static_assert(place[0] == 2 && place[1] == 1 && place[2] == 0);
            if constexpr (in == 3) reverse_pixels3<N>(dst, src);
            else reverse_pixels4_to_3<N>(dst, src);
        } else {
            static_assert(in == 3 && place[0] == ones && place[1] + place[3] == 2 && place[2] == 1);
            if constexpr (place[1] == 0) {
                prefix_pixels3<N>(dst, src);
            } else {
                const Channels<N, 3> v = load3<N>(src);
                store4<N>(dst, U8<N>{} + uint8_t{255}, v.c[2], v.c[1], v.c[0]);
            }
        }
    }
};
template <int N, int in, int... from>
ZIV_INLINE void move_pixels(uint8_t* dst, const uint8_t* src) {
    PixelMove<N, in, from...>::move(dst, src);
}

// (kept & ~(255 >> n)) | (inserted >> n)
template <int n, class V>
ZIV_INLINE V shift_right_insert(V kept, V inserted) {
    return (kept & static_cast<uint8_t>(~(255 >> n))) | (inserted >> n);
}

// Pixels of 3 bytes into little-endian words: the top 5 bits of byte `high`, the top 6 of byte 1, the top 5 of byte `low`.
template <int N, int high, int low>
struct PixelPack565 {
    ZIV_INLINE static void pack(uint8_t* dst, const uint8_t* src) {
        const Channels<N, 3> v = load3<N>(src);
        store2<N>(dst, shift_right_insert<3>(v.c[1] << 3, v.c[low]), shift_right_insert<5>(v.c[high], v.c[1]));
    }
};
template <int N, int high, int low>
ZIV_INLINE void pack_pixels_565(uint8_t* dst, const uint8_t* src) {
    PixelPack565<N, high, low>::pack(dst, src);
}

// ---- Runs of bytes ----

// Four vectors that stand side by side in memory.
template <int N>
struct FourVectors {
    U8<N> v[4];
};
template <int N>
ZIV_INLINE FourVectors<N> load_four(const uint8_t* p) {
    return {{load<N>(p), load<N>(p + N), load<N>(p + 2 * N), load<N>(p + 3 * N)}};
}
template <int N>
ZIV_INLINE void store_four(uint8_t* p, const FourVectors<N>& four) {
    for (int k = 0; k < 4; k++) {
        store(p + k * N, four.v[k]);
        asm volatile("" ::: "memory");  // in address order, whatever the compiler's scheduler thinks of it
    }
}

template <int N>
ZIV_INLINE void copy_four(uint8_t* dst, const uint8_t* src) {
    store_four<N>(dst, load_four<N>(src));
}

// Y0 U Y1 V: 2 N luma samples with N samples of each chroma plane, which wait in an order of the target's own.
template <int N>
ZIV_INLINE Channels<N, 4> load_for_yuyv(const uint8_t* luma, const uint8_t* u, const uint8_t* v) {
    const U8<N> u_bytes = load<N>(u), v_bytes = load<N>(v);
    return {{load<N>(luma), load<N>(luma + N), interleave_low<N>(u_bytes, v_bytes), interleave_high<N>(u_bytes, v_bytes)}};
}
template <int N>
ZIV_INLINE void store_yuyv(uint8_t* p, const Channels<N, 4>& parts) {
    store2<N>(p, parts.c[0], parts.c[2]);
    store2<N>(p + 2 * N, parts.c[1], parts.c[3]);
}

// ---- Turning and mirroring. A vector of 32 or 64 bytes is parts of 16 bytes side by side, and the terms on parts treat each
//      by itself. ----

// 16 bytes from p, from p + distance and so on.
template <int N>
ZIV_INLINE U8<N> load_parts(const uint8_t* p, ptrdiff_t distance) {
    U8<N> v;
    for (int k = 0; k < N / 16; k++) __builtin_memcpy(reinterpret_cast<uint8_t*>(&v) + 16 * k, p + k * distance, 16);
    return v;
}

// a0 b0 a1 b1 ... from the lower or upper halves of the parts, by bytes or by pairs of bytes.
template <int N>
U8<N> zip_parts_low(U8<N> a, U8<N> b);
template <int N>
U8<N> zip_parts_high(U8<N> a, U8<N> b);
template <int N>
U8<N> zip_pair_parts_low(U8<N> a, U8<N> b);
template <int N>
U8<N> zip_pair_parts_high(U8<N> a, U8<N> b);
template <>
ZIV_INLINE U8<16> zip_parts_low<16>(U8<16> a, U8<16> b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
template <>
ZIV_INLINE U8<16> zip_parts_high<16>(U8<16> a, U8<16> b) {
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}
template <>
ZIV_INLINE U8<16> zip_pair_parts_low<16>(U8<16> a, U8<16> b) {
    return (U8<16>)__builtin_shufflevector((U16<16>)a, (U16<16>)b, 0, 8, 1, 9, 2, 10, 3, 11);
}
template <>
ZIV_INLINE U8<16> zip_pair_parts_high<16>(U8<16> a, U8<16> b) {
    return (U8<16>)__builtin_shufflevector((U16<16>)a, (U16<16>)b, 4, 12, 5, 13, 6, 14, 7, 15);
}

// The pairs of bytes, or the bytes, from the last to the first.
template <int N>
ZIV_INLINE U8<N> reverse_pairs(U8<N> v) {
    static_assert(N == 16);
    const U16<N> halves = (U16<N>)swap_halves<N>(v);
    return (U8<N>)__builtin_shufflevector(halves, halves, 3, 2, 1, 0, 7, 6, 5, 4);
}
template <int N>
ZIV_INLINE U8<N> reverse_bytes(U8<N> v) {
    return swap_pairs<N>(reverse_pairs<N>(v));
}

// ---- Pairs of chroma samples made fewer or more ----

// Two rows of N pairs to one of N / 2: (a + b + c + d + 2) >> 2 over each 2 by 2 samples of a channel.
template <int N>
ZIV_INLINE void store_square_means(uint8_t* p, const uint8_t* upper, const uint8_t* lower) {
    static_assert(N == 16);
    // Of a channel's two sums in a 32-bit lane the mean in the lower 16 bits; what stands above them is no matter.
    const auto mean = [](U16<N> sums)
                          ZIV_INLINE_BODY { return (U16<N>)(((U32<N>)sums + ((U32<N>)sums >> 16) + 2) >> 2) & 0xFF; };
    U16<N> means[2];
    for (int k = 0; k < 2; k++) {
        const U8<N> a = load<N>(upper + N * k), b = load<N>(lower + N * k);
        means[k] = mean(even_bytes<N>(a) + even_bytes<N>(b)) | mean(odd_bytes<N>(a) + odd_bytes<N>(b)) << 8;
    }
    store(p, (U8<N>)__builtin_shufflevector(means[0], means[1], 0, 2, 4, 6, 8, 10, 12, 14));
}

// Interleaving store of pairs: a0 b0 a1 b1 ...
template <int N>
ZIV_INLINE void store2_pairs(uint8_t* p, U8<N> a, U8<N> b) {
    static_assert(N == 16);
    store(p, zip_pair_parts_low<16>(a, b));
    store(p + 16, zip_pair_parts_high<16>(a, b));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
