// SPDX-License-Identifier: MIT
// The lane vocabulary on Advanced SIMD.
#pragma once

#include <arm_neon.h>

#include "lanes/portable.h"

namespace zivcolor::ZIVCOLOR_TARGET {

// By the intrinsics, as the compiler would move the bytes of a plain copy through general registers.
template <>
ZIV_INLINE U8<16> load<16>(const uint8_t* p) {
    return (U8<16>)vld1q_u8(p);
}
template <>
ZIV_INLINE void store(uint8_t* p, U8<16> v) {
    vst1q_u8(p, (uint8x16_t)v);
}

template <>
ZIV_INLINE U16<16> load_widened<16>(const uint8_t* p) {
    return (U16<16>)vmovl_u8(vld1_u8(p));
}
template <>
ZIV_INLINE void store_low_bytes<16>(uint8_t* p, U16<16> v) {
    vst1_u8(p, vmovn_u16((uint16x8_t)v));
}

template <>
ZIV_INLINE Channels<16, 2> load2<16>(const uint8_t* p) {
    const uint8x16x2_t v = vld2q_u8(p);
    return {{(U8<16>)v.val[0], (U8<16>)v.val[1]}};
}
template <>
ZIV_INLINE Channels<16, 3> load3<16>(const uint8_t* p) {
    const uint8x16x3_t v = vld3q_u8(p);
    return {{(U8<16>)v.val[0], (U8<16>)v.val[1], (U8<16>)v.val[2]}};
}
template <>
ZIV_INLINE Channels<16, 4> load4<16>(const uint8_t* p) {
    const uint8x16x4_t v = vld4q_u8(p);
    return {{(U8<16>)v.val[0], (U8<16>)v.val[1], (U8<16>)v.val[2], (U8<16>)v.val[3]}};
}
// Interleaving stores of computed vectors. GCC 12 often collects the registers of such a store in memory first; told their
// places, it computes into them: `group` 0 or 1, so that two stores may be made ready at once. Vectors that are only moved stay
// where they were loaded, and their stores count up addresses.
#if defined(__GNUC__) && !defined(__clang__)
template <int group = 0>
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b) {
    if constexpr (group == 0) {
        register uint8x16_t v0 asm("v28") = a;
        register uint8x16_t v1 asm("v29") = b;
        asm("st2 {%1.16b, %2.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[32]>(p)) : "w"(v0), "w"(v1));
    } else {
        register uint8x16_t v0 asm("v24") = a;
        register uint8x16_t v1 asm("v25") = b;
        asm("st2 {%1.16b, %2.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[32]>(p)) : "w"(v0), "w"(v1));
    }
}
template <int group = 0>
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c) {
    if constexpr (group == 0) {
        register uint8x16_t v0 asm("v28") = a;
        register uint8x16_t v1 asm("v29") = b;
        register uint8x16_t v2 asm("v30") = c;
        asm("st3 {%1.16b, %2.16b, %3.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[48]>(p)) : "w"(v0), "w"(v1), "w"(v2));
    } else {
        register uint8x16_t v0 asm("v24") = a;
        register uint8x16_t v1 asm("v25") = b;
        register uint8x16_t v2 asm("v26") = c;
        asm("st3 {%1.16b, %2.16b, %3.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[48]>(p)) : "w"(v0), "w"(v1), "w"(v2));
    }
}
template <int group = 0>
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c, uint8x16_t d) {
    if constexpr (group == 0) {
        register uint8x16_t v0 asm("v28") = a;
        register uint8x16_t v1 asm("v29") = b;
        register uint8x16_t v2 asm("v30") = c;
        register uint8x16_t v3 asm("v31") = d;
        asm("st4 {%1.16b, %2.16b, %3.16b, %4.16b}, %0"
            : "=Q"(*reinterpret_cast<uint8_t(*)[64]>(p))
            : "w"(v0), "w"(v1), "w"(v2), "w"(v3));
    } else {
        register uint8x16_t v0 asm("v24") = a;
        register uint8x16_t v1 asm("v25") = b;
        register uint8x16_t v2 asm("v26") = c;
        register uint8x16_t v3 asm("v27") = d;
        asm("st4 {%1.16b, %2.16b, %3.16b, %4.16b}, %0"
            : "=Q"(*reinterpret_cast<uint8_t(*)[64]>(p))
            : "w"(v0), "w"(v1), "w"(v2), "w"(v3));
    }
}
#else
template <int group = 0>
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b) {
    vst2q_u8(p, (uint8x16x2_t{{a, b}}));
}
template <int group = 0>
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c) {
    vst3q_u8(p, (uint8x16x3_t{{a, b, c}}));
}
template <int group = 0>
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c, uint8x16_t d) {
    vst4q_u8(p, (uint8x16x4_t{{a, b, c, d}}));
}
#endif

// Two vectors side by side.
#if defined(__GNUC__) && !defined(__clang__)
template <int group = 0>
ZIV_INLINE void store_two(uint8_t* p, uint8x16_t a, uint8x16_t b) {
    if constexpr (group == 0) {
        register uint8x16_t v0 asm("v22") = a;
        register uint8x16_t v1 asm("v23") = b;
        asm("st1 {%1.16b, %2.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[32]>(p)) : "w"(v0), "w"(v1));
    } else {
        register uint8x16_t v0 asm("v20") = a;
        register uint8x16_t v1 asm("v21") = b;
        asm("st1 {%1.16b, %2.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[32]>(p)) : "w"(v0), "w"(v1));
    }
}
#else
template <int group = 0>
ZIV_INLINE void store_two(uint8_t* p, uint8x16_t a, uint8x16_t b) {
    vst1q_u8_x2(p, (uint8x16x2_t{{a, b}}));
}
#endif

// Zipped before they are stored: st2 is slow on the largest cores and no quicker on the others.
template <>
ZIV_INLINE void store2<16>(uint8_t* p, U8<16> a, U8<16> b) {
    store_two(p, vzip1q_u8((uint8x16_t)a, (uint8x16_t)b), vzip2q_u8((uint8x16_t)a, (uint8x16_t)b));
}
template <>
ZIV_INLINE void store3<16>(uint8_t* p, U8<16> a, U8<16> b, U8<16> c) {
    store_interleaved(p, (uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c);
}
template <>
ZIV_INLINE void store4<16>(uint8_t* p, U8<16> a, U8<16> b, U8<16> c, U8<16> d) {
    store_interleaved(p, (uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c, (uint8x16_t)d);
}

template <>
ZIV_INLINE U8<16> add_saturating(U8<16> a, U8<16> b) {
    return (U8<16>)vqaddq_u8((uint8x16_t)a, (uint8x16_t)b);
}
template <>
ZIV_INLINE U8<16> subtract_saturating(U8<16> a, U8<16> b) {
    return (U8<16>)vqsubq_u8((uint8x16_t)a, (uint8x16_t)b);
}
template <>
ZIV_INLINE U8<16> average_up(U8<16> a, U8<16> b) {
    return (U8<16>)vrhaddq_u8((uint8x16_t)a, (uint8x16_t)b);
}

template <>
ZIV_INLINE U8<16> merge_bytes<16>(U16<16> even, U16<16> odd) {
    return (U8<16>)vtrn1q_u8((uint8x16_t)even, (uint8x16_t)odd);
}
template <>
ZIV_INLINE U8<16> double_bytes<16>(U16<16> v) {
    return (U8<16>)vtrn1q_u8((uint8x16_t)v, (uint8x16_t)v);
}
template <>
ZIV_INLINE U8<16> even_lanes<16>(U8<16> a, U8<16> b) {
    return (U8<16>)vuzp1q_u8((uint8x16_t)a, (uint8x16_t)b);
}
template <>
ZIV_INLINE U8<16> odd_lanes<16>(U8<16> a, U8<16> b) {
    return (U8<16>)vuzp2q_u8((uint8x16_t)a, (uint8x16_t)b);
}
template <>
ZIV_INLINE U8<16> interleave_low<16>(U8<16> a, U8<16> b) {
    return (U8<16>)vzip1q_u8((uint8x16_t)a, (uint8x16_t)b);
}
template <>
ZIV_INLINE U8<16> interleave_high<16>(U8<16> a, U8<16> b) {
    return (U8<16>)vzip2q_u8((uint8x16_t)a, (uint8x16_t)b);
}

template <>
ZIV_INLINE U8<16> narrow_saturating<16>(S16<16> lo, S16<16> hi) {
    return (U8<16>)vqmovun_high_s16(vqmovun_s16((int16x8_t)lo), (int16x8_t)hi);
}
template <>
ZIV_INLINE Wide<16> widen<16>(U8<16> v) {
    return {(U16<16>)vmovl_u8(vget_low_u8((uint8x16_t)v)), (U16<16>)vmovl_high_u8((uint8x16_t)v)};
}

// Hidden from the compiler, which would build the constants anew in every step.
template <>
ZIV_INLINE S16<16> constant<16>(int value) {
    S16<16> lanes = S16<16>{} + static_cast<int16_t>(value);
    asm("" : "+w"(lanes));
    return lanes;
}
template <>
ZIV_INLINE S16<16> multiply_round_high<16>(S16<16> a, S16<16> b) {
    return (S16<16>)vqrdmulhq_s16((int16x8_t)a, (int16x8_t)b);
}
// A weight for the multiplications by a lane, hidden from the compiler, which would take a vector of it and the slower form.
ZIV_INLINE int16x8_t hidden_weight(int weight) {
    int16x8_t w = vdupq_n_s16(static_cast<int16_t>(weight));
    asm("" : "+w"(w));
    return w;
}
template <>
ZIV_INLINE S16<16> multiply<16>(S16<16> a, int weight) {
    return (S16<16>)vmulq_laneq_s16((int16x8_t)a, hidden_weight(weight), 0);
}
template <>
ZIV_INLINE S16<16> multiply_q15<16>(S16<16> a, int weight) {
    return (S16<16>)vqdmulhq_laneq_s16((int16x8_t)a, hidden_weight(weight), 0);
}
template <>
ZIV_INLINE S16<16> multiply_round_q15<16>(S16<16> a, int weight) {
    return (S16<16>)vqrdmulhq_laneq_s16((int16x8_t)a, hidden_weight(weight), 0);
}
template <>
ZIV_INLINE S16<16> multiply_high<16>(S16<16> a, S16<16> b) {
    return (S16<16>)vshrq_n_s16(vqdmulhq_s16((int16x8_t)a, (int16x8_t)b), 1);
}
template <>
ZIV_INLINE S16<16> weigh_pair_q15<16>(S16<16> a, S16<16> b, int weight_a, int weight_b) {
    const int16x8_t wa = hidden_weight(weight_a), wb = hidden_weight(weight_b);
    const int16x8_t a8 = (int16x8_t)a, b8 = (int16x8_t)b;
    const int32x4_t lo = vmlal_laneq_s16(vmull_laneq_s16(vget_low_s16(a8), wa, 0), vget_low_s16(b8), wb, 0);
    const int32x4_t hi = vmlal_high_laneq_s16(vmull_high_laneq_s16(a8, wa, 0), b8, wb, 0);
    return (S16<16>)vrshrn_high_n_s32(vrshrn_n_s32(lo, 15), hi, 15);
}

template <>
ZIV_INLINE S16<16> weigh_pair_bytes<16>(U8<16> pairs, int weight_a, int weight_b) {
    const int16x8_t a = (int16x8_t)even_bytes<16>(pairs), b = (int16x8_t)odd_bytes<16>(pairs);
    return (S16<16>)vmlaq_laneq_s16(vmulq_laneq_s16(a, hidden_weight(weight_a), 0), b, hidden_weight(weight_b), 0);
}
template <>
inline constexpr int zero_lane_bits<16> = 8;
template <>
ZIV_INLINE uint64_t zero_lanes<16>(U16<16> v) {
    return vget_lane_u64(vreinterpret_u64_u8(vmovn_u16(vceqzq_u16((uint16x8_t)v))), 0);
}

// ---- Repacking of chroma ----

template <>
ZIV_INLINE U8<16> load_but_last<16>(const uint8_t* p) {
    return (U8<16>)vcombine_u8(vld1_u8(p), vreinterpret_u8_u64(vshr_n_u64(vreinterpret_u64_u8(vld1_u8(p + 7)), 8)));
}
template <>
ZIV_INLINE U8<16> swap_pairs<16>(U8<16> v) {
    uint8x16_t swapped = vrev16q_u8((uint8x16_t)v);
    asm("" : "+w"(swapped));  // or else clang makes a slower table of this and of the permutation after it
    return (U8<16>)swapped;
}
template <>
ZIV_INLINE U8<16> even_pairs<16>(U8<16> a, U8<16> b) {
    return (U8<16>)vtrn1q_u8((uint8x16_t)a, (uint8x16_t)b);
}
// ---- Selection and unsigned products ----

template <>
ZIV_INLINE U8<16> select(U8<16> mask, U8<16> a, U8<16> b) {
    return (U8<16>)vbslq_u8((uint8x16_t)mask, (uint8x16_t)a, (uint8x16_t)b);
}

template <>
ZIV_INLINE U16<16> multiply_high_unsigned<16>(U16<16> a, U16<16> b) {
    const uint16x8_t a8 = (uint16x8_t)a, b8 = (uint16x8_t)b;
    const uint32x4_t lo = vmull_u16(vget_low_u16(a8), vget_low_u16(b8)), hi = vmull_high_u16(a8, b8);
    return (U16<16>)vuzp2q_u16(vreinterpretq_u16_u32(lo), vreinterpretq_u16_u32(hi));
}

// ---- Whole pixels moved from one byte layout to another ----

template <>
ZIV_INLINE U8<16> shift_right_insert<3>(U8<16> kept, U8<16> inserted) {
    return (U8<16>)vsriq_n_u8((uint8x16_t)kept, (uint8x16_t)inserted, 3);
}
template <>
ZIV_INLINE U8<16> shift_right_insert<5>(U8<16> kept, U8<16> inserted) {
    return (U8<16>)vsriq_n_u8((uint8x16_t)kept, (uint8x16_t)inserted, 5);
}

// ---- Runs of bytes ----

template <>
ZIV_INLINE FourVectors<16> load_four<16>(const uint8_t* p) {
    FourVectors<16> four;
    asm("ldr %q0, [%4]\n\t"
        "ldr %q1, [%4, #16]\n\t"
        "ldr %q2, [%4, #32]\n\t"
        "ldr %q3, [%4, #48]"
        : "=&w"(four.v[0]), "=&w"(four.v[1]), "=&w"(four.v[2]), "=&w"(four.v[3])
        : "r"(p), "m"(*reinterpret_cast<const uint8_t(*)[64]>(p)));
    return four;
}
template <>
ZIV_INLINE void store_four<16>(uint8_t* p, const FourVectors<16>& four) {
    store_two(p, (uint8x16_t)four.v[0], (uint8x16_t)four.v[1]);
    store_two<1>(p + 32, (uint8x16_t)four.v[2], (uint8x16_t)four.v[3]);
}
// Single loads and paired stores, each at an address of its own: what every core takes well. Left to themselves compilers make
// pairs of the loads, or groups of four of both, or let each address wait for the one before it.
template <>
ZIV_INLINE void copy_four<16>(uint8_t* dst, const uint8_t* src) {
    uint8_t* second;
    asm("ldr q20, [%3]\n\t"
        "ldr q21, [%3, #16]\n\t"
        "ldr q22, [%3, #32]\n\t"
        "ldr q23, [%3, #48]\n\t"
        "add %1, %2, #32\n\t"
        "st1 {v20.16b, v21.16b}, [%2]\n\t"
        "st1 {v22.16b, v23.16b}, [%1]"
        : "=m"(*reinterpret_cast<uint8_t(*)[64]>(dst)), "=&r"(second)
        : "r"(dst), "r"(src), "m"(*reinterpret_cast<const uint8_t(*)[64]>(src))
        : "v20", "v21", "v22", "v23");
}
template <>
ZIV_INLINE void copy_eight<16>(uint8_t* dst, const uint8_t* src) {
    uint8_t *second, *third, *fourth;
    asm("ldr q16, [%5]\n\t"
        "ldr q17, [%5, #16]\n\t"
        "ldr q18, [%5, #32]\n\t"
        "ldr q19, [%5, #48]\n\t"
        "ldr q20, [%5, #64]\n\t"
        "ldr q21, [%5, #80]\n\t"
        "ldr q22, [%5, #96]\n\t"
        "ldr q23, [%5, #112]\n\t"
        "add %1, %4, #32\n\t"
        "add %2, %4, #64\n\t"
        "add %3, %4, #96\n\t"
        "st1 {v16.16b, v17.16b}, [%4]\n\t"
        "st1 {v18.16b, v19.16b}, [%1]\n\t"
        "st1 {v20.16b, v21.16b}, [%2]\n\t"
        "st1 {v22.16b, v23.16b}, [%3]"
        : "=m"(*reinterpret_cast<uint8_t(*)[128]>(dst)), "=&r"(second), "=&r"(third), "=&r"(fourth)
        : "r"(dst), "r"(src), "m"(*reinterpret_cast<const uint8_t(*)[128]>(src))
        : "v16", "v17", "v18", "v19", "v20", "v21", "v22", "v23");
}
// By a table, hidden from the compiler: rev64 and ext, which it may prefer, are two instructions.
template <class Index>
ZIV_INLINE U8<16> look_up(U8<16> v, Index index) {
    uint8x16_t places = vld1q_u8(byte_table<16>(index));
    asm("" : "+w"(places));
    return (U8<16>)vqtbl1q_u8((uint8x16_t)v, places);
}
template <>
ZIV_INLINE U8<16> reverse_bytes<16>(U8<16> v) {
    return look_up(v, [](int n) { return 15 - n; });
}
template <>
ZIV_INLINE U8<16> reverse_pairs<16>(U8<16> v) {
    return look_up(v, [](int n) { return 14 - n + 2 * (n % 2); });
}

// ---- Pairs of chroma samples ----

template <>
ZIV_INLINE void store2_pairs<16>(uint8_t* p, U8<16> a, U8<16> b) {
    const uint16x8x2_t v = {{(uint16x8_t)a, (uint16x8_t)b}};
    vst2q_u16(reinterpret_cast<uint16_t*>(p), v);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
