// SPDX-License-Identifier: MIT
// What a thread may have set its floating-point unit to.
#pragma once

#include <fenv.h>

#include <cstdint>
#include <string>
#include <vector>

namespace harness {

struct FloatState {
    std::string name;
    int direction;  // FE_...
    bool flushed;   // denormal numbers taken and stored for zero
    bool trapping;  // every exception that can be had ends the process
};

// Every state that this machine has, beginning with the usual one.
inline std::vector<FloatState> float_states() {
    std::vector<FloatState> states;
#if defined(__SSE2_MATH__)
    constexpr bool can_trap = true;
#else
    constexpr bool can_trap = false;  // the emulated CPUs cannot
#endif
#if defined(__SSE2_MATH__) || defined(__aarch64__) || defined(__ARM_FP)
    constexpr bool can_flush = true;
#else
    constexpr bool can_flush = false;
#endif
    for (const bool trapping : {false, true})
        for (const bool flushed : {false, true})
            for (const auto& [direction, name] : {std::pair{FE_TONEAREST, "to nearest"},
                                                  {FE_UPWARD, "upward"},
                                                  {FE_DOWNWARD, "downward"},
                                                  {FE_TOWARDZERO, "to zero"}})
                if ((can_trap || !trapping) && (can_flush || !flushed))
                    states.push_back({std::string(name) + (flushed ? ", flushed" : "") + (trapping ? ", trapping" : ""),
                                      direction, flushed, trapping});
    return states;
}

// The control register, without what operations record in it.
inline uint64_t float_control_word() {
#if defined(__SSE2_MATH__)
    uint32_t control;
    asm volatile("stmxcsr %0" : "=m"(control));
    return control & ~UINT32_C(0x3F);
#elif defined(__aarch64__)
    uint64_t control;
    asm volatile("mrs %0, fpcr" : "=r"(control));
    return control;
#elif defined(__ARM_FP)
    uint32_t control;
    asm volatile("vmrs %0, fpscr" : "=r"(control));
    return control & 0x07FF9F00;
#else
    return static_cast<uint64_t>(fegetround());
#endif
}

// Sets this thread for as long as it lives.
class InFloatState {
public:
    explicit InFloatState(const FloatState& state) {
        fegetenv(&before_);
        feclearexcept(FE_ALL_EXCEPT);
        fesetround(state.direction);
#if defined(__SSE2_MATH__)
        uint32_t control;
        asm volatile("stmxcsr %0" : "=m"(control));
        if (state.flushed) control |= 0x8040;
        if (state.trapping) control &= ~UINT32_C(0x1F80);
        asm volatile("ldmxcsr %0" : : "m"(control) : "memory");
#elif defined(__aarch64__)
        asm volatile("msr fpcr, %0" : : "r"(float_control_word() | (state.flushed ? 0x1000000 : 0)) : "memory");
#elif defined(__ARM_FP)
        asm volatile("vmsr fpscr, %0"
                     :
                     : "r"(static_cast<uint32_t>(float_control_word()) | (state.flushed ? 0x1000000 : 0))
                     : "memory");
#endif
    }
    ~InFloatState() { fesetenv(&before_); }
    InFloatState(const InFloatState&) = delete;
    InFloatState& operator=(const InFloatState&) = delete;

private:
    fenv_t before_;
};

}  // namespace harness
