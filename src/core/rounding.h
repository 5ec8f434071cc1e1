// SPDX-License-Identifier: MIT
// Binary floats are rounded to the nearest, ties to even, whatever the caller's thread is set to. Kernels with floats inside
// (see core/kernel_list.h) are called within a span in which that holds.
//
// What the thread is set to is looked at, and written only where it matters: the direction, and whether an inexact result
// traps, or on ARM a conversion that saturates. Nothing else can show: no float of a kernel is denormal, infinite or not a
// number.
#pragma once

#include <stdint.h>

#include <type_traits>

#include "core/kernels.h"

#if !defined(__SSE2_MATH__) && !defined(__i386__) && !defined(__aarch64__) && !defined(__ARM_FP) && !defined(__riscv)
#include <fenv.h>
#endif

namespace zivcolor {

// The part of the control register that matters, and its value for what the kernels want.
struct FloatSetting {
    uint32_t mask, value;
};

#if defined(__SSE2_MATH__)
inline constexpr FloatSetting nearest_even{0x7000, 0x1000};  // direction; the exception of inexact results masked
inline uint32_t float_control() {
    uint32_t control;
    asm volatile("stmxcsr %0" : "=m"(control));
    return control;
}
inline void set_float_control(uint32_t control) { asm volatile("ldmxcsr %0" : : "m"(control) : "memory"); }

#elif defined(__i386__)
// The x87 unit's in the lower half, that of the vectors above it where the compiler may use them.
#if defined(__SSE__)
inline constexpr FloatSetting nearest_even{0x70000C20, 0x10000020};
#else
inline constexpr FloatSetting nearest_even{0x0C20, 0x0020};
#endif
inline uint32_t float_control() {
    uint16_t scalars;
    uint32_t vectors = 0;
    asm volatile("fnstcw %0" : "=m"(scalars));
#if defined(__SSE__)
    asm volatile("stmxcsr %0" : "=m"(vectors));
#endif
    return vectors << 16 | scalars;
}
inline void set_float_control(uint32_t control) {
    const auto scalars = static_cast<uint16_t>(control);
    asm volatile("fldcw %0" : : "m"(scalars) : "memory");
#if defined(__SSE__)
    const uint32_t vectors = control >> 16;
    asm volatile("ldmxcsr %0" : : "m"(vectors) : "memory");
#endif
}

#elif defined(__aarch64__)
inline constexpr FloatSetting nearest_even{0x00C01100, 0};  // direction; the traps of inexact and of invalid operations
inline uint32_t float_control() {
    uint64_t control;
    asm volatile("mrs %0, fpcr" : "=r"(control));
    return static_cast<uint32_t>(control);
}
inline void set_float_control(uint32_t control) { asm volatile("msr fpcr, %0" : : "r"(uint64_t{control}) : "memory"); }

#elif defined(__ARM_FP)
inline constexpr FloatSetting nearest_even{0x00C01100, 0};
inline uint32_t float_control() {
    uint32_t control;
    asm volatile("vmrs %0, fpscr" : "=r"(control));
    return control;
}
inline void set_float_control(uint32_t control) { asm volatile("vmsr fpscr, %0" : : "r"(control) : "memory"); }

#elif defined(__riscv_flen)
inline constexpr FloatSetting nearest_even{7, 0};
inline uint32_t float_control() {
    unsigned long control;
    asm volatile("frrm %0" : "=r"(control));
    return static_cast<uint32_t>(control);
}
inline void set_float_control(uint32_t control) { asm volatile("fsrm %0" : : "r"(control) : "memory"); }

#elif defined(FE_TONEAREST)
inline constexpr FloatSetting nearest_even{UINT32_MAX, FE_TONEAREST};
inline uint32_t float_control() { return static_cast<uint32_t>(fegetround()); }
inline void set_float_control(uint32_t control) { fesetround(static_cast<int>(control)); }

#else  // floats by software, to the nearest
inline constexpr FloatSetting nearest_even{0, 0};
inline uint32_t float_control() { return 0; }
inline void set_float_control(uint32_t) {}
#endif

constexpr bool rounds_to_nearest(uint32_t control) { return (control & nearest_even.mask) == nearest_even.value; }

// For as long as this lives, the thread rounds as the kernels want. Then it is as it was.
class RoundingToNearest {
public:
    RoundingToNearest() : callers_(float_control()) { set_float_control((callers_ & ~nearest_even.mask) | nearest_even.value); }
    ~RoundingToNearest() { set_float_control(callers_); }
    RoundingToNearest(const RoundingToNearest&) = delete;
    RoundingToNearest& operator=(const RoundingToNearest&) = delete;

private:
    const uint32_t callers_;
};

// Of a member of KernelTable.
template <auto kernel>
inline constexpr bool has_floats = false;
#define ZIVCOLOR_HAS_FLOATS(name) \
    template <>                   \
    inline constexpr bool has_floats<&KernelTable::name> = true;
ZIVCOLOR_KERNELS_WITH_FLOATS(ZIVCOLOR_HAS_FLOATS)
#undef ZIVCOLOR_HAS_FLOATS

// The same pointer, of which the compiler knows nothing. It takes rounding for constant: a call that it sees through could be
// moved out of the span in parts.
template <class Function>
Function* opaque(Function* function) {
    asm volatile("" : "+r"(function) : : "memory");
    return function;
}
// The function stands last, so that the arguments stay in their registers.
template <class Function, class... Arguments>
[[gnu::noinline, gnu::cold]] auto call_to_nearest(Arguments... arguments, Function* function) {
    const RoundingToNearest rounding;
    return opaque(function)(arguments...);
}

// Calls a kernel, or a function around it.
template <bool floats, class Result, class... Arguments>
Result call(Result (*function)(Arguments...), std::type_identity_t<Arguments>... arguments) {
    if constexpr (floats)
        if (!rounds_to_nearest(float_control())) [[unlikely]]
            return call_to_nearest<Result(Arguments...), Arguments...>(arguments..., function);
    return function(arguments...);
}

}  // namespace zivcolor
