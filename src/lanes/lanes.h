// SPDX-License-Identifier: MIT
// The lane vocabulary: vectors of 16, 32 or 64 bytes and the operations that kernels are written in, each with one exact scalar
// meaning. portable.h defines every operation in plain lane arithmetic; the files of the instruction sets specialise those that
// their instructions do better. Shifting, wrapping arithmetic and comparison are the vector operators of the compiler.
//
// A kernel names vectors by their size in bytes: U8<N> holds N lanes of 8 bits, S16<N> holds N / 2 lanes of 16 bits.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "core/capabilities.h"

#define ZIV_INLINE [[gnu::always_inline]] inline
#define ZIV_INLINE_BODY __attribute__((always_inline))  // for the lambdas that are a kernel's block bodies

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "kernels take bytes for lanes of 16 bits and back");

namespace zivcolor::ZIVCOLOR_TARGET {

template <int bytes>
struct Lanes {
    typedef uint8_t u8 __attribute__((vector_size(bytes)));
    typedef int8_t s8 __attribute__((vector_size(bytes)));
    typedef uint16_t u16 __attribute__((vector_size(bytes)));
    typedef int16_t s16 __attribute__((vector_size(bytes)));
    typedef uint32_t u32 __attribute__((vector_size(bytes)));
    typedef int32_t s32 __attribute__((vector_size(bytes)));
    typedef uint64_t u64 __attribute__((vector_size(bytes)));
    typedef float f32 __attribute__((vector_size(bytes)));
};
template <int bytes>
using U8 = typename Lanes<bytes>::u8;
template <int bytes>
using S8 = typename Lanes<bytes>::s8;
template <int bytes>
using U16 = typename Lanes<bytes>::u16;
template <int bytes>
using S16 = typename Lanes<bytes>::s16;
template <int bytes>
using U32 = typename Lanes<bytes>::u32;
template <int bytes>
using S32 = typename Lanes<bytes>::s32;
template <int bytes>
using U64 = typename Lanes<bytes>::u64;
template <int bytes>
using F32 = typename Lanes<bytes>::f32;

// c vectors of one channel each, as a de-interleaving load leaves them.
template <int bytes, int channels>
struct Channels {
    U8<bytes> c[channels];
};

}  // namespace zivcolor::ZIVCOLOR_TARGET

#include "lanes/portable.h"
#if ZIV_HAS_ADVANCED_SIMD
#include "lanes/neon.h"
#endif
#if ZIV_HAS_SSE4_2
#include "lanes/x86_16.h"
#endif
#if ZIV_HAS_AVX2
#include "lanes/x86_32.h"
#endif
#if ZIV_HAS_AVX512_VBMI
#include "lanes/x86_64.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET {

// Bytes in the target's widest vector.
inline constexpr int widest = ZIV_HAS_AVX512_VBMI ? 64 : ZIV_HAS_AVX2 ? 32 : 16;

}  // namespace zivcolor::ZIVCOLOR_TARGET
