// Every term of the lane vocabulary in plain lane arithmetic: its definition, and the code of targets that have nothing better.
// Written for what every vector unit has: shifts, masks, minima, halves zipped, and bytes narrowed from 16-bit lanes. A term
// that only wider vectors would need in another form is for 16 bytes.
#pragma once

#include "core/lanes.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// ---- Memory. An access covers exactly the bytes of its lanes and needs no alignment. ----

template <int N>
ZIV_INLINE U8<N> load(const uint8_t* p) {
    U8<N> v;
    __builtin_memcpy(&v, p, N);
    return v;
}

template <class V>
ZIV_INLINE void store(uint8_t* p, V v) {
    __builtin_memcpy(p, &v, sizeof v);
}

// Hints that the bytes from p on will soon be written, step by step. Touches nothing.
template <int bytes>
ZIV_INLINE void expect_writes([[maybe_unused]] uint8_t* p) {
#if defined(ZIVCOLOR_TARGET_portable)
    const uintptr_t ahead = reinterpret_cast<uintptr_t>(p) + 512;
    for (uintptr_t line = 0; line < bytes; line += 64) __builtin_prefetch(reinterpret_cast<const void*>(ahead + line), 1);
#endif
}
// The same for the `bytes` bytes that are read there.
template <int bytes>
ZIV_INLINE void expect_reads(const uint8_t*) {}
// Hints that the `bytes` bytes `ahead` of p will soon be written.
template <int bytes>
ZIV_INLINE void expect_writes_ahead(uint8_t*, ptrdiff_t) {}

// ---- Rearrangements that the memory terms are made of ----

// a0 b0 a1 b1 ... from the lower halves, or from the upper halves.
template <int N>
ZIV_INLINE U8<N> interleave_low(U8<N> a, U8<N> b) {
    static_assert(N == 16);
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
template <int N>
ZIV_INLINE U8<N> interleave_high(U8<N> a, U8<N> b) {
    static_assert(N == 16);
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}

// From the concatenation of a and b the bytes 0, 2, 4, ... or 1, 3, 5, ...
template <int N>
ZIV_INLINE U8<N> even_lanes(U8<N> a, U8<N> b) {
    static_assert(N == 16);
    return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}
template <int N>
ZIV_INLINE U8<N> odd_lanes(U8<N> a, U8<N> b) {
    static_assert(N == 16);
    return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
}

// The lower and the upper half exchanged.
template <int N>
ZIV_INLINE U8<N> swap_halves(U8<N> v) {
    static_assert(N == 16);
    return (U8<N>)__builtin_shufflevector((U64<N>)v, (U64<N>)v, 1, 0);
}

// ---- Memory, rearranged ----

// N / 2 bytes, zero-widened to 16-bit lanes.
template <int N>
ZIV_INLINE U16<N> load_widened(const uint8_t* p) {
    static_assert(N == 16);
    uint64_t bytes;
    __builtin_memcpy(&bytes, p, 8);
    return (U16<N>)interleave_low<N>((U8<N>)U64<N>{bytes, 0}, U8<N>{});
}

// The low byte of every 16-bit lane: N / 2 bytes.
template <int N>
ZIV_INLINE void store_low_bytes(uint8_t* p, U16<N> v) {
    static_assert(N == 16);
    const uint64_t bytes = ((U64<N>)even_lanes<N>((U8<N>)v, (U8<N>)v))[0];
    __builtin_memcpy(p, &bytes, 8);
}

// De-interleaving load: channel k, lane i takes the byte at offset c times i plus k. Of c vectors side by side, zipping the
// first half with the second moves byte i to 2 i, modulo the last byte's number. Three such rounds bring the even pixels' byte
// k to 8 k + i, and the odd ones' behind them; the fourth, byte c i + k to 16 k + i.
template <int N, int rounds>
ZIV_INLINE Channels<N, 3> load_zipped3(const uint8_t* p) {
    U8<N> a = load<N>(p), b = load<N>(p + N), c = load<N>(p + 2 * N);
    for (int round = 0; round < rounds; round++) {
        const U8<N> middle = swap_halves<N>(b);
        b = interleave_high<N>(a, swap_halves<N>(c));
        a = interleave_low<N>(a, middle);
        c = interleave_high<N>(middle, c);
    }
    return {{a, b, c}};
}
template <int N, int rounds>
ZIV_INLINE Channels<N, 4> load_zipped4(const uint8_t* p) {
    Channels<N, 4> v{{load<N>(p), load<N>(p + N), load<N>(p + 2 * N), load<N>(p + 3 * N)}};
    for (int round = 0; round < rounds; round++) {
        const U8<N> a = v.c[0], b = v.c[1], c = v.c[2], d = v.c[3];
        v.c[0] = interleave_low<N>(a, c), v.c[1] = interleave_high<N>(a, c);
        v.c[2] = interleave_low<N>(b, d), v.c[3] = interleave_high<N>(b, d);
    }
    return v;
}
template <int N>
ZIV_INLINE Channels<N, 2> load2(const uint8_t* p) {
    const U8<N> a = load<N>(p), b = load<N>(p + N);
    return {{even_lanes<N>(a, b), odd_lanes<N>(a, b)}};
}
template <int N>
ZIV_INLINE Channels<N, 3> load3(const uint8_t* p) {
    static_assert(N == 16);
    return load_zipped3<N, 4>(p);
}
template <int N>
ZIV_INLINE Channels<N, 4> load4(const uint8_t* p) {
    static_assert(N == 16);
    return load_zipped4<N, 4>(p);
}

// The lower six bytes of 64-bit lanes side by side; the others are zero. What is stored of those is overwritten by the next
// lane.
template <int N>
ZIV_INLINE void store_six_bytes(uint8_t* p, U64<N> a, U64<N> b, U64<N> c, U64<N> d) {
    static_assert(N == 16);
    const uint64_t lanes[8] = {a[0], a[1], b[0], b[1], c[0], c[1], d[0], d[1]};
    for (int i = 0; i < 7; i++) __builtin_memcpy(p + 6 * i, &lanes[i], 8);
    const uint64_t last = lanes[6] >> 32 | lanes[7] << 16;
    __builtin_memcpy(p + 40, &last, 8);
}

// Pixels of every other column: bytes 0 and 1 of each in a lane of `first`, bytes 2 and 3 in a lane of `last`.
template <int N>
struct PixelLanes {
    U16<N> first, last;
};
// These pixels as 32-bit lanes: half of the columns in each of two vectors.
template <int N>
struct Quads {
    U32<N> lo, hi;
};
template <int N>
ZIV_INLINE Quads<N> join_lanes(const PixelLanes<N>& v) {
    static_assert(N == 16);
    return {(U32<N>)__builtin_shufflevector(v.first, v.last, 0, 8, 1, 9, 2, 10, 3, 11),
            (U32<N>)__builtin_shufflevector(v.first, v.last, 4, 12, 5, 13, 6, 14, 7, 15)};
}
// a0 b0 a1 b1 ... of 32-bit lanes.
template <int N>
ZIV_INLINE Quads<N> interleave_quads(U32<N> a, U32<N> b) {
    static_assert(N == 16);
    return {__builtin_shufflevector(a, b, 0, 4, 1, 5), __builtin_shufflevector(a, b, 2, 6, 3, 7)};
}

// Writes the pixels of N columns, of four bytes.
template <int N>
ZIV_INLINE void store_columns4(uint8_t* p, const PixelLanes<N>& even, const PixelLanes<N>& odd) {
    const Quads<N> e = join_lanes<N>(even), o = join_lanes<N>(odd);
    const Quads<N> first = interleave_quads<N>(e.lo, o.lo), last = interleave_quads<N>(e.hi, o.hi);
    store(p, first.lo);
    store(p + N, first.hi);
    store(p + 2 * N, last.lo);
    store(p + 3 * N, last.hi);
}
// The same of three bytes, where byte 3 is zero: a pair of pixels fills six bytes of a 64-bit lane.
template <int N>
ZIV_INLINE void store_columns3(uint8_t* p, const PixelLanes<N>& even, const PixelLanes<N>& odd) {
    const Quads<N> e = join_lanes<N>(even), o = join_lanes<N>(odd);
    const Quads<N> first = interleave_quads<N>(e.lo | o.lo << 24, o.lo >> 8);
    const Quads<N> last = interleave_quads<N>(e.hi | o.hi << 24, o.hi >> 8);
    store_six_bytes<N>(p, (U64<N>)first.lo, (U64<N>)first.hi, (U64<N>)last.lo, (U64<N>)last.hi);
}

// Interleaving store: the inverse.
template <int N>
ZIV_INLINE void store2(uint8_t* p, U8<N> a, U8<N> b) {
    store(p, interleave_low<N>(a, b));
    store(p + N, interleave_high<N>(a, b));
}
template <int N>
ZIV_INLINE void store3(uint8_t* p, U8<N> a, U8<N> b, U8<N> c) {
    const U16<N> a2 = (U16<N>)a, b2 = (U16<N>)b, c2 = (U16<N>)c;
    store_columns3<N>(p, {(a2 & 0xFF) | b2 << 8, c2 & 0xFF}, {a2 >> 8 | (b2 & 0xFF00), c2 >> 8});
}
template <int N>
ZIV_INLINE void store4(uint8_t* p, U8<N> a, U8<N> b, U8<N> c, U8<N> d) {
    const U8<N> ac_lo = interleave_low<N>(a, c), ac_hi = interleave_high<N>(a, c);
    const U8<N> bd_lo = interleave_low<N>(b, d), bd_hi = interleave_high<N>(b, d);
    store2<N>(p, ac_lo, bd_lo);
    store2<N>(p + 2 * N, ac_hi, bd_hi);
}

// ---- Bytes ----

// min(a + b, 255), max(a - b, 0), (a + b + 1) >> 1
template <class V>
ZIV_INLINE V add_saturating(V a, V b) {
    const V room = ~b;
    return (a < room ? a : room) + b;
}
template <class V>
ZIV_INLINE V subtract_saturating(V a, V b) {
    return (a > b ? a : b) - b;
}
template <class V>
ZIV_INLINE V average_up(V a, V b) {
    return (a | b) - ((a ^ b) >> 1);
}

template <class V>
ZIV_INLINE V lane_min(V a, V b) {
    return a < b ? a : b;
}
template <class V>
ZIV_INLINE V lane_max(V a, V b) {
    return a > b ? a : b;
}

// A constant table of byte numbers for a rearrangement: byte n is index(n). index is a lambda that captures nothing.
template <int N>
struct ByteTable {
    alignas(N) uint8_t bytes[N];
};
template <int N, class Index>
ZIV_INLINE const uint8_t* byte_table(Index) {
    static constexpr ByteTable<N> table = [] {
        ByteTable<N> t{};
        for (int n = 0; n < N; n++) t.bytes[n] = static_cast<uint8_t>(Index{}(n));
        return t;
    }();
    return table.bytes;
}

// ---- Rearrangements ----

// The bytes 0, 2, 4, ... or 1, 3, 5, ... of v, zero-widened to 16-bit lanes.
template <int N>
ZIV_INLINE U16<N> even_bytes(U8<N> v) {
    return (U16<N>)v & 0xFF;
}
template <int N>
ZIV_INLINE U16<N> odd_bytes(U8<N> v) {
    return (U16<N>)v >> 8;
}

// Byte 2 i from the low byte of lane i of `even`, byte 2 i + 1 from that of `odd`. Lanes of `even` are at most 255.
template <int N>
ZIV_INLINE U8<N> merge_bytes(U16<N> even, U16<N> odd) {
    return (U8<N>)(even | (odd << 8));
}

// The low byte of lane i in the bytes 2 i and 2 i + 1. Lanes are at most 255.
template <int N>
ZIV_INLINE U8<N> double_bytes(U16<N> v) {
    return merge_bytes<N>(v, v);
}

// ---- 16-bit lanes ----

// op(x, y) of every lane of a and of b. GCC finds the instruction for it in loops, clang in what it made of them.
template <class Lane, class V, class Op>
ZIV_INLINE V lane_by_lane(V a, V b, Op op) {
    constexpr int lanes = sizeof(V) / sizeof(Lane);
    Lane x[lanes], y[lanes], r[lanes];
    __builtin_memcpy(x, &a, sizeof a);
    __builtin_memcpy(y, &b, sizeof b);
#if !defined(__clang__)
#pragma GCC unroll 1
#endif
    for (int i = 0; i < lanes; i++) r[i] = static_cast<Lane>(op(x[i], y[i]));
    __builtin_memcpy(&a, r, sizeof a);
    return a;
}

// The value in every lane, as a factor or summand of a block step. Hidden from the compiler, which would make chains of shifts
// and additions of products.
template <int N>
ZIV_INLINE S16<N> constant(int value) {
    asm("" : "+r"(value));
    return S16<N>{} + static_cast<int16_t>(value);
}

// clamp(x, 0, 255)
template <int N>
ZIV_INLINE S16<N> clamp_lanes(S16<N> v) {
    const S16<N> least{}, most = S16<N>{} + int16_t{255};
    v = v < least ? least : v;
    return v > most ? most : v;
}
// The same of lo, then of hi, as bytes.
template <int N>
ZIV_INLINE U8<N> narrow_saturating(S16<N> lo, S16<N> hi) {
    return even_lanes<N>((U8<N>)clamp_lanes<N>(lo), (U8<N>)clamp_lanes<N>(hi));
}

// N bytes as 16-bit lanes in two vectors, in an order that is the target's own: arithmetic lane by lane does not see it, and
// narrow() puts the bytes back in their order, saturated to 0 to 255.
template <int N>
struct Wide {
    U16<N> lo, hi;
};
template <int N>
ZIV_INLINE Wide<N> widen(U8<N> v) {
    return {(U16<N>)interleave_low<N>(v, U8<N>{}), (U16<N>)interleave_high<N>(v, U8<N>{})};
}
template <int N>
ZIV_INLINE U8<N> narrow(Wide<N> v) {
    return narrow_saturating<N>((S16<N>)v.lo, (S16<N>)v.hi);
}

// (a * b) >> 16; not both -32768.
template <int N>
ZIV_INLINE S16<N> multiply_high(S16<N> a, S16<N> b) {
    return lane_by_lane<int16_t>(a, b, [](int x, int y) { return (x * y) >> 16; });
}

// (a * b + 2^14) >> 15, the rounding high multiply; not both -32768. Twice the upper half of the product, and the upper two
// bits of the lower half rounded to one.
template <int N>
ZIV_INLINE S16<N> multiply_round_high(S16<N> a, S16<N> b) {
    const U16<N> upper = (U16<N>)multiply_high<N>(a, b), lower = (U16<N>)a * (U16<N>)b;
    return (S16<N>)(upper + upper + (((lower >> 14) + 1) >> 1));
}

// (a * weight) >> 15; |weight| < 2^14.
template <int N>
ZIV_INLINE S16<N> multiply_q15(S16<N> a, int weight) {
    return multiply_high<N>(a, constant<N>(2 * weight));
}

// (a * weight_a + b * weight_b + 2^14) >> 15, which must fit 16 bits; the sum must fit 32. Twice the upper halves of the
// products, and the upper three bits of half the sum of the lower ones rounded to two.
template <int N>
ZIV_INLINE S16<N> weigh_pair_q15(S16<N> a, S16<N> b, int weight_a, int weight_b) {
    const S16<N> wa = constant<N>(weight_a), wb = constant<N>(weight_b);
    const U16<N> upper = (U16<N>)multiply_high<N>(a, wa) + (U16<N>)multiply_high<N>(b, wb);
    const U16<N> lower_a = (U16<N>)a * (U16<N>)wa, lower_b = (U16<N>)b * (U16<N>)wb;
    const U16<N> half = (lower_a & lower_b) + ((lower_a ^ lower_b) >> 1);
    return (S16<N>)(upper + upper + (((half >> 13) + 1) >> 1));
}

// a * weight_a + b * weight_b of the bytes a, b of every lane, which must fit 16 bits; the weights fit a signed byte.
template <int N>
ZIV_INLINE S16<N> weigh_pair_bytes(U8<N> pairs, int weight_a, int weight_b) {
    return (S16<N>)even_bytes<N>(pairs) * static_cast<int16_t>(weight_a) +
           (S16<N>)odd_bytes<N>(pairs) * static_cast<int16_t>(weight_b);
}

// a * weight_a + b * weight_b of the signed bytes a, b of every lane; the weights are 0 or more, and 255 at most together.
template <int N>
ZIV_INLINE S16<N> weigh_signed_bytes(U8<N> pairs, int weight_a, int weight_b) {
    const S16<N> both = (S16<N>)pairs;
    return ((both << 8) >> 8) * static_cast<int16_t>(weight_a) + (both >> 8) * static_cast<int16_t>(weight_b);
}

// Which lanes are zero: so many bits of the result are set for each, the lowest for lane 0.
template <int N>
inline constexpr int zero_lane_bits = N == 16 ? 8 : 1;
template <int N>
ZIV_INLINE uint64_t zero_lanes(U16<N> v) {
    if constexpr (N == 16) {
        const U8<N> zero = (U8<N>)(v == 0);
        return ((U64<N>)even_lanes<N>(zero, zero))[0];
    }
    uint64_t lanes = 0;
    for (int i = 0; i < N / 2; i++) lanes |= static_cast<uint64_t>(v[i] == 0) << i;
    return lanes;
}

// ---- Luma plus a term of its chroma pair: clamp(Y + d, 0, 255) for N pixels and N / 2 pairs, |d| <= 254. ----

// Terms come in lanes of 16 bits, a pair a lane, in an order of the pairs that is the target's own for pixels of c channels:
// these two bring chroma into that order, from N / 2 pairs of bytes that stay side by side and from N / 2 bytes of one plane,
// zero-widened.
template <int N, int c>
ZIV_INLINE U8<N> arrange_pairs(U8<N> pairs) {
    return pairs;
}
template <int N, int c>
ZIV_INLINE U16<N> load_arranged(const uint8_t* p) {
    return load_widened<N>(p);
}
// The pair that a lane then holds.
template <int N, int c>
constexpr int pair_in_lane(int lane) {
    return lane;
}

// N pixels of packed 4:2:2, luma in the even bytes: luma as the target likes to keep it, and the arranged pairs.
template <int N>
struct PackedLuma {
    U8<N> luma;
};
template <int N>
struct Packed422 {
    PackedLuma<N> luma;
    U8<N> pairs;
};
template <int N, int c>
ZIV_INLINE Packed422<N> load_packed422(const uint8_t* p) {
    const Channels<N, 2> v = load2<N>(p);
    return {{v.c[0]}, arrange_pairs<N, c>(v.c[1])};
}

// The terms of three channels, made once for the pixels of one or two rows.
template <int N>
struct PixelTerms3 {
    S16<N> d[3];
};
template <int N>
ZIV_INLINE PixelTerms3<N> pixel_terms(S16<N> d0, S16<N> d1, S16<N> d2) {
    return {{d0, d1, d2}};
}
// The pixels of every other column from their luma; byte 3 is zero.
template <int N>
ZIV_INLINE PixelLanes<N> apply_terms(U16<N> luma, const PixelTerms3<N>& terms) {
    const auto channel = [&](int k) ZIV_INLINE_BODY { return (U16<N>)clamp_lanes<N>((S16<N>)luma + terms.d[k]); };
    return {channel(0) | channel(1) << 8, channel(2)};
}

// Writes N pixels of three interleaved channels.
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, U8<N> luma, const PixelTerms3<N>& terms) {
    store_columns3<N>(p, apply_terms<N>(even_bytes<N>(luma), terms), apply_terms<N>(odd_bytes<N>(luma), terms));
}

// The same with a constant fourth channel.
template <int N>
struct PixelTerms4 {
    PixelTerms3<N> colour;
    U8<N> alpha;
};
template <int N>
ZIV_INLINE PixelTerms4<N> pixel_terms(S16<N> d0, S16<N> d1, S16<N> d2, uint8_t alpha) {
    return {pixel_terms<N>(d0, d1, d2), U8<N>{} + alpha};
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, U8<N> luma, const PixelTerms4<N>& terms) {
    PixelLanes<N> even = apply_terms<N>(even_bytes<N>(luma), terms.colour);
    PixelLanes<N> odd = apply_terms<N>(odd_bytes<N>(luma), terms.colour);
    const U16<N> alpha = (U16<N>)terms.alpha & 0xFF00;
    even.last |= alpha, odd.last |= alpha;
    store_columns4<N>(p, even, odd);
}

// The same from packed luma, and from luma in memory, all of which is read first.
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, PackedLuma<N> luma, const PixelTerms3<N>& terms) {
    store_pixels<N>(p, luma.luma, terms);
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, PackedLuma<N> luma, const PixelTerms4<N>& terms) {
    store_pixels<N>(p, luma.luma, terms);
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, const uint8_t* luma, const PixelTerms3<N>& terms) {
    store_pixels<N>(p, load<N>(luma), terms);
}
template <int N>
ZIV_INLINE void store_pixels(uint8_t* p, const uint8_t* luma, const PixelTerms4<N>& terms) {
    store_pixels<N>(p, load<N>(luma), terms);
}

// ---- Terms of four-byte pixels straight from pairs of bytes, where bytes move anywhere in one step ----

// Whether the target does well by the terms of this group.
#if defined(ZIVCOLOR_TARGET_avx512)
inline constexpr bool terms_by_bytes = true;
#else
inline constexpr bool terms_by_bytes = false;
#endif

// The signed bytes a, b of N / 2 pairs as 16-bit lanes, in an order that is the target's own, and products of these.
template <int N>
struct OuterLanes {
    S16<N> part[2];
};
template <int N>
ZIV_INLINE OuterLanes<N> outer_lanes_times_4(U8<N> pairs) {
    return {{weigh_signed_bytes<N>(pairs, 4, 0), weigh_signed_bytes<N>(pairs, 0, 4)}};
}
template <int N>
ZIV_INLINE OuterLanes<N> multiply_q15(const OuterLanes<N>& lanes, int weight_a, int weight_b) {
    return {{multiply_q15<N>(lanes.part[0], weight_a), multiply_q15<N>(lanes.part[1], weight_b)}};
}

// The terms of channels 0 and 2 from the products of b and of a, those of channel 1 a pair a lane in the order of the pairs.
template <int N>
ZIV_INLINE PixelTerms4<N> pixel_terms(const OuterLanes<N>& outer, S16<N> middle, uint8_t alpha) {
    const auto arranged = [](S16<N> v) ZIV_INLINE_BODY { return (S16<N>)arrange_pairs<N, 4>((U8<N>)v); };
    return pixel_terms<N>(arranged(outer.part[1]), arranged(middle), arranged(outer.part[0]), alpha);
}

// Of the lanes with a bit in `lanes`, the lowest for lane 0, those that are not the word of the table that their bits 10 to 14
// number.
template <int N>
ZIV_INLINE uint32_t unlisted_lanes(uint32_t lanes, U16<N> words, const uint16_t (&table)[32]) {
    for (int i = 0; i < N / 2; i++)
        if (table[words[i] >> 10 & 31] == words[i]) lanes &= ~(uint32_t{1} << i);
    return lanes;
}

// ---- Packed 4:2:2 to four-byte pixels in lanes of 16 bits, where no two rows share chroma ----

// Whether the target does well by the terms of this group.
#if defined(ZIVCOLOR_TARGET_sse4) || defined(ZIVCOLOR_TARGET_avx2) || defined(ZIVCOLOR_TARGET_avx512)
inline constexpr bool packed_by_words = true;
#else
inline constexpr bool packed_by_words = false;
#endif

// The lanes a, b, a, b and so on.
template <int N>
ZIV_INLINE S16<N> constants(int a, int b) {
    return (S16<N>)(S32<N>{} + static_cast<int32_t>((static_cast<uint32_t>(a) & 0xFFFF) | static_cast<uint32_t>(b) << 16));
}

// Lanes 2 i and 2 i + 1 exchanged.
template <int N>
ZIV_INLINE S16<N> swap_lanes(S16<N> v) {
    return (S16<N>)((U32<N>)v << 16 | (U32<N>)v >> 16);
}

// N bytes Y0 U Y1 V, N / 4 pairs in an order that is the target's own: the lanes Y0 Y1, Y1 Y0, and u v, centred and times 256.
template <int N>
struct PackedWords {
    S16<N> luma, swapped, chroma;
};
template <int N>
ZIV_INLINE PackedWords<N> split_packed_words(S16<N> v) {
    const S16<N> luma = v & constant<N>(255);
    return {luma, swap_lanes<N>(luma), (v & constant<N>(-256)) ^ constant<N>(-32768)};
}
template <int N>
ZIV_INLINE PackedWords<N> load_packed_words(const uint8_t* p) {
    return split_packed_words<N>((S16<N>)load<N>(p));
}

// The channels of the same pixels, each a lane and to be saturated: that of u in the first and that of v in the second pixel of
// a pair, the other way round, and green in both.
template <int N>
struct PackedSums {
    S16<N> straight, crossed, green;
};
// Writes N pixels: the channel of u in byte u_byte of 0 and 2, that of v in the other.
template <int N, int u_byte>
ZIV_INLINE void store_packed_sums(uint8_t* p, const PackedSums<N> (&sums)[2], U8<N> alpha) {
    Channels<N, 4> v;
    v.c[3] = alpha;
    for (int i = 0; i < N; i++) {
        const PackedSums<N>& s = sums[i / (N / 2)];
        const int lane = i % (N / 2), pair = lane & ~1;
        const int of_u = lane == pair ? s.straight[pair] : s.crossed[pair];
        const int of_v = lane == pair ? s.crossed[pair + 1] : s.straight[pair + 1];
        const int channels[3] = {u_byte == 0 ? of_u : of_v, s.green[lane], u_byte == 0 ? of_v : of_u};
        for (int k = 0; k < 3; k++)
            v.c[k][i] = static_cast<uint8_t>(channels[k] < 0 ? 0 : channels[k] > 255 ? 255 : channels[k]);
    }
    store4<N>(p, v.c[0], v.c[1], v.c[2], v.c[3]);
}

// ---- Selection and quotients ----

// a where the mask's bits are set, b elsewhere.
template <class V>
ZIV_INLINE V select(V mask, V a, V b) {
    return (mask & a) | (~mask & b);
}

// (a * b) >> 16
template <int N>
ZIV_INLINE U16<N> multiply_high_unsigned(U16<N> a, U16<N> b) {
    return lane_by_lane<uint16_t>(a, b, [](uint32_t x, uint32_t y) { return (x * y) >> 16; });
}

// low + 256 * high, and weight * (a - b) for weights up to 127, both lane by lane in the order of widen().
template <int N>
ZIV_INLINE Wide<N> widen_joined(U8<N> low, U8<N> high) {
    const Wide<N> l = widen<N>(low), h = widen<N>(high);
    return {l.lo | (h.lo << 8), l.hi | (h.hi << 8)};
}
template <int N>
ZIV_INLINE Wide<N> widen_difference(U8<N> a, U8<N> b, uint8_t weight) {
    const Wide<N> x = widen<N>(a), y = widen<N>(b);
    return {(x.lo - y.lo) * weight, (x.hi - y.hi) * weight};
}

// 65536 / i truncated, 65535 for 1; for 0 anything. No quotient that is not whole comes nearer than 1 / 255 to a whole number,
// which is more than binary32 rounds by, in whatever direction: its quotient truncates to the exact one. That of 1 wraps to 0
// in 16 bits.
template <int N>
ZIV_INLINE Wide<N> reciprocals(U8<N> divisors) {
    static_assert(N == 16);
    const Wide<N> v = widen<N>(lane_max(divisors, U8<N>{} + uint8_t{1}));
    const auto reciprocals_of_quads = [](U32<N> quads) ZIV_INLINE_BODY {
        return (U16<N>)__builtin_convertvector(65536.0f / __builtin_convertvector((S32<N>)quads, F32<N>), S32<N>);
    };
    const auto reciprocals_of_lanes = [&](U16<N> lanes) ZIV_INLINE_BODY {
        const U16<N> lo = reciprocals_of_quads((U32<N>)__builtin_shufflevector(lanes, U16<N>{}, 0, 8, 1, 9, 2, 10, 3, 11));
        const U16<N> hi = reciprocals_of_quads((U32<N>)__builtin_shufflevector(lanes, U16<N>{}, 4, 12, 5, 13, 6, 14, 7, 15));
        return __builtin_shufflevector(lo, hi, 0, 2, 4, 6, 8, 10, 12, 14) + (U16<N>)(lanes == 1);
    };
    return {reciprocals_of_lanes(v.lo), reciprocals_of_lanes(v.hi)};
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
