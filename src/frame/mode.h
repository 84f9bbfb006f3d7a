// The mode word: accuracy, error modes, denormal handling, traps.
#pragma once

#include "frame/thread_block.h"

#include <stdint.h>

namespace orv::frame {

enum : uint32_t {
    mode_accuracy = 0x0000000F,
    mode_accuracy_ha = 0x2,
    mode_error = 0x0000FF00,
    mode_error_ignore = 0x100,
    mode_error_errno = 0x200,
    mode_error_stderr = 0x400,
    mode_error_except = 0x800,
    mode_error_callback = 0x1000,
    mode_error_noerr = 0x2000,
    mode_error_default = mode_error_errno | mode_error_except | mode_error_callback,
    mode_denormal = 0x003C0000,
    mode_denormal_flush = 0x280000,
    mode_denormal_keep = 0x140000,
    mode_trap = 0x0F000000,
    mode_trap_invalid = 0x1000000,
    mode_trap_divbyzero = 0x2000000,
    mode_trap_overflow = 0x4000000,
    mode_trap_underflow = 0x8000000,
    mode_default = mode_accuracy_ha | mode_error_default,
};

// The override's value for "none": the variable is not set, empty or not valid.
inline constexpr uint64_t no_override = ~uint64_t{0};

// The mode bits of a comma-separated list of "ARQ_" keywords in a buffer of 256 bytes, or no_override if any part of it
// is not valid.
uint64_t parse_override(const char* buffer);

// The block's mode word, read from the environment at a thread's first call.
uint32_t initialise_mode(ArqThreadBlock* block);

inline uint32_t mode_of(ArqThreadBlock* block) { return block->mode ? block->mode : initialise_mode(block); }

// The calling thread's mode word.
inline uint32_t current_mode() { return mode_of(thread_block()); }

}  // namespace orv::frame
