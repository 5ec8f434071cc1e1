// The lane vocabulary: vectors of 16, 32 or 64 bytes and the operations that kernels are written in, each with one exact scalar
// meaning. lanes_portable.h and lanes_portable_moves.h define every term in plain lane arithmetic; a target's file overloads
// those that its instructions do better. Widening, shifting, wrapping arithmetic, comparison and selection are the vector
// operators of the compiler.
//
// A kernel names vectors by their size in bytes: U8<N> holds N lanes of 8 bits, S16<N> holds N / 2 lanes of 16 bits.
#pragma once

#include <stddef.h>
#include <stdint.h>

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

#include "core/lanes_portable.h"
#include "core/lanes_portable_moves.h"

#if defined(ZIVCOLOR_TARGET_neon)
#include "core/lanes_neon.h"
#elif defined(ZIVCOLOR_TARGET_sse4)
#include "core/lanes_x86_16.h"
#elif defined(ZIVCOLOR_TARGET_avx2)
#include "core/lanes_x86_16.h"
#include "core/lanes_x86_32.h"
#elif defined(ZIVCOLOR_TARGET_avx512)
#include "core/lanes_x86_16.h"
#include "core/lanes_x86_32.h"
#include "core/lanes_x86_64.h"
#endif

#if defined(ZIVCOLOR_TARGET_sse4) || defined(ZIVCOLOR_TARGET_avx2) || defined(ZIVCOLOR_TARGET_avx512)
#include "core/lanes_packed_x86.h"
#endif
#if defined(ZIVCOLOR_TARGET_avx512)
#include "core/lanes_byte_pairs_x86_64.h"
#endif

namespace zivcolor::ZIVCOLOR_TARGET {

// Bytes in the target's widest vector.
#if defined(ZIVCOLOR_TARGET_avx512)
inline constexpr int widest = 64;
#elif defined(ZIVCOLOR_TARGET_avx2)
inline constexpr int widest = 32;
#else
inline constexpr int widest = 16;
#endif

}  // namespace zivcolor::ZIVCOLOR_TARGET
