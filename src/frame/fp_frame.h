// The floating-point frame of a kernel: scope guards that set the control state a kernel needs and give the caller's back
// with the exceptions that arose merged into its flags.
//
// Every access to MXCSR and the x87 unit is volatile with a memory clobber, so no load, store or arithmetic that hangs on
// memory crosses it.
#pragma once

#include "frame/mode.h"

#include <stdint.h>

namespace orv::frame {

enum : uint32_t {
    mxcsr_flags = 0x003F,
    mxcsr_denormals_are_zero = 0x0040,
    mxcsr_masks = 0x1F80,
    mxcsr_round_down = 0x2000,
    mxcsr_round_up = 0x4000,
    mxcsr_round_to_zero = 0x6000,
    mxcsr_flush_to_zero = 0x8000,
    mxcsr_control = 0xFFC0,
};

inline uint32_t read_mxcsr() {
    uint32_t value;
    __asm__ volatile("stmxcsr %0" : "=m"(value) : : "memory");
    return value;
}

inline void write_mxcsr(uint32_t value) { __asm__ volatile("ldmxcsr %0" : : "m"(value) : "memory"); }

inline uint16_t read_x87_control() {
    uint16_t value;
    __asm__ volatile("fnstcw %0" : "=m"(value) : : "memory");
    return value;
}

inline uint16_t read_x87_status() {
    uint16_t value;
    __asm__ volatile("fnstsw %0" : "=m"(value) : : "memory");
    return value;
}

inline void write_x87_control(uint16_t value) { __asm__ volatile("fldcw %0" : : "m"(value) : "memory"); }
inline void clear_x87_exceptions() { __asm__ volatile("fnclex" : : : "memory"); }

// MXCSR control bits while the guard lives; the caller's on exit, its flags merged. Written only where they differ.
struct MxcsrGuard {
    uint32_t saved;
    bool changed;

    MxcsrGuard(uint32_t mask, uint32_t target) : saved(read_mxcsr()), changed((saved & mask) != target) {
        if (changed) write_mxcsr((saved & ~mask) | target);
    }
    ~MxcsrGuard() {
        if (changed) write_mxcsr(saved | (read_mxcsr() & mxcsr_flags));
    }
    MxcsrGuard(const MxcsrGuard&) = delete;
    MxcsrGuard& operator=(const MxcsrGuard&) = delete;
};

// The x87 exception masks, all set while the guard lives.
struct X87Guard {
    static constexpr uint16_t masks = 0x3F;
    uint16_t saved;
    bool changed;

    X87Guard() : saved(read_x87_control()), changed((saved & masks) != masks) {
        if (!changed) return;
        clear_x87_exceptions();
        write_x87_control(static_cast<uint16_t>(saved | masks));
    }
    ~X87Guard() {
        if (changed) write_x87_control(saved);
    }
    X87Guard(const X87Guard&) = delete;
    X87Guard& operator=(const X87Guard&) = delete;
};

// The frame of most kernels: exceptions masked, the given rounding, denormals by the thread's mode.
template <uint32_t Rounding = 0>
struct ControlFrame {
    X87Guard x87;
    uint32_t mode = current_mode();
    MxcsrGuard mxcsr{mxcsr_control, target(mode)};

    static constexpr uint32_t target(uint32_t mode) {
        const bool flush = (mode & mode_denormal) == mode_denormal_flush;
        return mxcsr_masks | Rounding | (flush ? mxcsr_flush_to_zero | mxcsr_denormals_are_zero : 0u);
    }
    // True where the thread asked that no error be recorded.
    bool silent() const { return (mode & mode_error) == mode_error_noerr; }
};

using GeneralFrame = ControlFrame<>;
using RoundUpFrame = ControlFrame<mxcsr_round_up>;
using RoundDownFrame = ControlFrame<mxcsr_round_down>;
using RoundToZeroFrame = ControlFrame<mxcsr_round_to_zero>;

// The frame of kernels that work on the bits of numbers: as the general one, and denormals are numbers in every mode.
struct DenormalsFrame {
    X87Guard x87;
    MxcsrGuard mxcsr{mxcsr_control, mxcsr_masks};
};

// The frame of kernels that follow the caller's rounding and denormal settings: the exception masks of MXCSR alone.
struct MasksOnlyFrame {
    MxcsrGuard mxcsr{mxcsr_masks, mxcsr_masks};
};

}  // namespace orv::frame
