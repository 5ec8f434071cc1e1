// SPDX-License-Identifier: MIT
// Every lane operation in plain lane arithmetic: its definition, and the code of targets that have nothing better. Written for
// what every vector unit has: shifts, masks, minima, halves zipped, and bytes narrowed from 16-bit lanes. An operation that
// only wider vectors would need in another form is for 16 bytes.
#pragma once

#include "lanes/lanes.h"

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

// Hints that the `bytes` bytes `ahead` of p will soon be written. They touch nothing. On AArch64 they cost more than they save.
template <int bytes>
ZIV_INLINE void prefetch_writes_ahead([[maybe_unused]] uint8_t* p, [[maybe_unused]] ptrdiff_t ahead) {
    if constexpr (ZIV_HAS_SSE4_2) {
        const uintptr_t first = reinterpret_cast<uintptr_t>(p) + static_cast<uintptr_t>(ahead);
        for (uintptr_t line = 0; line < bytes; line += 64) __builtin_prefetch(reinterpret_cast<const void*>(first + line), 1);
    }
}
// The same eight lines on, in a pass that writes step by step: rows that miss the first cache, and stores that straddle lines,
// otherwise wait for one another.
template <int bytes>
ZIV_INLINE void prefetch_writes([[maybe_unused]] uint8_t* p) {
    if constexpr (!ZIV_HAS_ADVANCED_SIMD) {
        const uintptr_t ahead = reinterpret_cast<uintptr_t>(p) + 512;
        for (uintptr_t line = 0; line < bytes; line += 64) __builtin_prefetch(reinterpret_cast<const void*>(ahead + line), 1);
    }
}
// The same for bytes that are read there.
template <int bytes>
ZIV_INLINE void prefetch_reads([[maybe_unused]] const uint8_t* p) {
    if constexpr (ZIV_HAS_SSE4_2 && bytes >= 48) {
        const uintptr_t ahead = reinterpret_cast<uintptr_t>(p) + 1024;
        for (uintptr_t line = 0; line < bytes; line += 64) __builtin_prefetch(reinterpret_cast<const void*>(ahead + line));
    }
}

// ---- Rearrangements that loads and stores are made of ----

// A vector as it is. clang joins the rearrangements before and after it to one that SSE2 has no instruction for.
template <class V>
ZIV_INLINE V opaque_shuffle(V v) {
#if defined(__clang__) && defined(__SSE2__) && !ZIV_HAS_SSE4_2
    asm("" : "+x"(v));
#endif
    return v;
}

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
        b = opaque_shuffle(interleave_high<N>(a, swap_halves<N>(c)));
        a = opaque_shuffle(interleave_low<N>(a, middle));
        c = opaque_shuffle(interleave_high<N>(middle, c));
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
struct PixelWords {
    U32<N> lo, hi;
};
template <int N>
ZIV_INLINE PixelWords<N> join_lanes(const PixelLanes<N>& v) {
    static_assert(N == 16);
    return {(U32<N>)__builtin_shufflevector(v.first, v.last, 0, 8, 1, 9, 2, 10, 3, 11),
            (U32<N>)__builtin_shufflevector(v.first, v.last, 4, 12, 5, 13, 6, 14, 7, 15)};
}
// a0 b0 a1 b1 ... of 32-bit lanes.
template <int N>
ZIV_INLINE PixelWords<N> interleave_words(U32<N> a, U32<N> b) {
    static_assert(N == 16);
    return {__builtin_shufflevector(a, b, 0, 4, 1, 5), __builtin_shufflevector(a, b, 2, 6, 3, 7)};
}

// Writes the pixels of N columns, of four bytes.
template <int N>
ZIV_INLINE void store_columns4(uint8_t* p, const PixelLanes<N>& even, const PixelLanes<N>& odd) {
    const PixelWords<N> e = join_lanes<N>(even), o = join_lanes<N>(odd);
    const PixelWords<N> first = interleave_words<N>(e.lo, o.lo), last = interleave_words<N>(e.hi, o.hi);
    store(p, first.lo);
    store(p + N, first.hi);
    store(p + 2 * N, last.lo);
    store(p + 3 * N, last.hi);
}
// The same of three bytes, where byte 3 is zero: a pair of pixels fills six bytes of a 64-bit lane.
template <int N>
ZIV_INLINE void store_columns3(uint8_t* p, const PixelLanes<N>& even, const PixelLanes<N>& odd) {
    const PixelWords<N> e = join_lanes<N>(even), o = join_lanes<N>(odd);
    const PixelWords<N> first = interleave_words<N>(e.lo | o.lo << 24, o.lo >> 8);
    const PixelWords<N> last = interleave_words<N>(e.hi | o.hi << 24, o.hi >> 8);
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

// The same with one weight, less than 2^15 in size.
template <int N>
ZIV_INLINE S16<N> multiply_round_q15(S16<N> a, int weight) {
    return multiply_round_high<N>(a, constant<N>(weight));
}

// a * weight, modulo 2^16.
template <int N>
ZIV_INLINE S16<N> multiply(S16<N> a, int weight) {
    return (S16<N>)((U16<N>)a * (U16<N>)constant<N>(weight));
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

// The lanes a, b, a, b and so on.
template <int N>
ZIV_INLINE S16<N> constants(int a, int b) {
    return (S16<N>)(S32<N>{} + static_cast<int32_t>((static_cast<uint32_t>(a) & 0xFFFF) | static_cast<uint32_t>(b) << 16));
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

// ---- Selection and unsigned products ----

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
    const U16<N> pairs = (U16<N>)opaque_shuffle(v);
    return (U8<N>)((pairs << 8) | (pairs >> 8));
}

// a0 b0 a2 b2 a4 b4 ...
template <int N>
ZIV_INLINE U8<N> even_pairs(U8<N> a, U8<N> b) {
    return merge_bytes<N>(even_bytes<N>(a), (U16<N>)b);
}

// (kept & ~(255 >> n)) | (inserted >> n)
template <int n, class V>
ZIV_INLINE V shift_right_insert(V kept, V inserted) {
    return (kept & static_cast<uint8_t>(~(255 >> n))) | (inserted >> n);
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
// Stands between stores that are to be done in this order, whatever the compiler's scheduler thinks of it.
ZIV_INLINE void keep_store_order() { asm volatile("" ::: "memory"); }
template <int N>
ZIV_INLINE void store_four(uint8_t* p, const FourVectors<N>& four) {
    for (int k = 0; k < 4; k++) {
        store(p + k * N, four.v[k]);
        keep_store_order();
    }
}

template <int N>
ZIV_INLINE void copy_four(uint8_t* dst, const uint8_t* src) {
    store_four<N>(dst, load_four<N>(src));
}
template <int N>
ZIV_INLINE void copy_eight(uint8_t* dst, const uint8_t* src) {
    copy_four<N>(dst, src);
    copy_four<N>(dst + 4 * N, src + 4 * N);
}

// ---- Turning and mirroring. A vector of 32 or 64 bytes is parts of 16 bytes side by side, and the operations on parts treat
// each
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

// ---- Pairs of chroma samples ----

// Interleaving store of pairs: a0 b0 a1 b1 ...
template <int N>
ZIV_INLINE void store2_pairs(uint8_t* p, U8<N> a, U8<N> b) {
    static_assert(N == 16);
    store(p, zip_pair_parts_low<16>(a, b));
    store(p + 16, zip_pair_parts_high<16>(a, b));
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
