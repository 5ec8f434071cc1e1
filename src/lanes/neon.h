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
// places, it computes into them. Vectors that are only moved stay where they were loaded, and their stores count up addresses.
#if defined(__GNUC__) && !defined(__clang__)
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b) {
    register uint8x16_t v0 asm("v28") = a;
    register uint8x16_t v1 asm("v29") = b;
    asm("st2 {%1.16b, %2.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[32]>(p)) : "w"(v0), "w"(v1));
}
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c) {
    register uint8x16_t v0 asm("v28") = a;
    register uint8x16_t v1 asm("v29") = b;
    register uint8x16_t v2 asm("v30") = c;
    asm("st3 {%1.16b, %2.16b, %3.16b}, %0" : "=Q"(*reinterpret_cast<uint8_t(*)[48]>(p)) : "w"(v0), "w"(v1), "w"(v2));
}
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c, uint8x16_t d) {
    register uint8x16_t v0 asm("v28") = a;
    register uint8x16_t v1 asm("v29") = b;
    register uint8x16_t v2 asm("v30") = c;
    register uint8x16_t v3 asm("v31") = d;
    asm("st4 {%1.16b, %2.16b, %3.16b, %4.16b}, %0"
        : "=Q"(*reinterpret_cast<uint8_t(*)[64]>(p))
        : "w"(v0), "w"(v1), "w"(v2), "w"(v3));
}
#else
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b) { vst2q_u8(p, (uint8x16x2_t{{a, b}})); }
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c) {
    vst3q_u8(p, (uint8x16x3_t{{a, b, c}}));
}
ZIV_INLINE void store_interleaved(uint8_t* p, uint8x16_t a, uint8x16_t b, uint8x16_t c, uint8x16_t d) {
    vst4q_u8(p, (uint8x16x4_t{{a, b, c, d}}));
}
#endif

template <>
ZIV_INLINE void store2<16>(uint8_t* p, U8<16> a, U8<16> b) {
    vst2q_u8(p, (uint8x16x2_t{{(uint8x16_t)a, (uint8x16_t)b}}));
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
template <>
ZIV_INLINE S16<16> multiply_q15<16>(S16<16> a, int weight) {
    return (S16<16>)vqdmulhq_n_s16((int16x8_t)a, static_cast<int16_t>(weight));
}
template <>
ZIV_INLINE S16<16> multiply_high<16>(S16<16> a, S16<16> b) {
    return (S16<16>)vshrq_n_s16(vqdmulhq_s16((int16x8_t)a, (int16x8_t)b), 1);
}
template <>
ZIV_INLINE S16<16> weigh_pair_q15<16>(S16<16> a, S16<16> b, int weight_a, int weight_b) {
    const int16_t wa = static_cast<int16_t>(weight_a), wb = static_cast<int16_t>(weight_b);
    const int16x8_t a8 = (int16x8_t)a, b8 = (int16x8_t)b;
    const int32x4_t lo = vmlal_n_s16(vmull_n_s16(vget_low_s16(a8), wa), vget_low_s16(b8), wb);
    const int32x4_t hi = vmlal_high_n_s16(vmull_high_n_s16(a8, wa), b8, wb);
    return (S16<16>)vrshrn_high_n_s32(vrshrn_n_s32(lo, 15), hi, 15);
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
    return (U8<16>)vrev16q_u8((uint8x16_t)v);
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
    const uint8x16x4_t q = vld1q_u8_x4(p);
    return {{(U8<16>)q.val[0], (U8<16>)q.val[1], (U8<16>)q.val[2], (U8<16>)q.val[3]}};
}
template <>
ZIV_INLINE void store_four<16>(uint8_t* p, const FourVectors<16>& four) {
    const uint8x16x4_t q = {{(uint8x16_t)four.v[0], (uint8x16_t)four.v[1], (uint8x16_t)four.v[2], (uint8x16_t)four.v[3]}};
    vst1q_u8_x4(p, q);
}
template <>
ZIV_INLINE void copy_four<16>(uint8_t* dst, const uint8_t* src) {
    vst1q_u8_x4(dst, vld1q_u8_x4(src));
}
template <>
ZIV_INLINE U8<16> reverse_bytes<16>(U8<16> v) {
    return __builtin_shufflevector(v, v, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
}
// One table for four vectors, where rev64 and ext are two instructions each.
template <>
ZIV_INLINE U8<16> reverse_pairs<16>(U8<16> v) {
    return __builtin_shufflevector(v, v, 14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
}

// ---- Pairs of chroma samples ----

template <>
ZIV_INLINE void store2_pairs<16>(uint8_t* p, U8<16> a, U8<16> b) {
    const uint16x8x2_t v = {{(uint16x8_t)a, (uint16x8_t)b}};
    vst2q_u16(reinterpret_cast<uint16_t*>(p), v);
}

}  // namespace zivcolor::ZIVCOLOR_TARGET
