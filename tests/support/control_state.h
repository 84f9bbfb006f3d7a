// The control state of both floating-point units, as a caller sees it.
#pragma once

#include <cstdint>
#include <xmmintrin.h>

namespace orv::test {

inline constexpr uint16_t usual_x87 = 0x037F;
inline constexpr unsigned usual_mxcsr = 0x1F80;

inline uint16_t x87_flags() {
    uint16_t word;
    __asm__ volatile("fnstsw %0" : "=m"(word));
    return word & 0x3F;
}
inline uint16_t x87_control() {
    uint16_t word;
    __asm__ volatile("fnstcw %0" : "=m"(word));
    return word;
}
inline void set_x87_control(uint16_t word) { __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(word)); }

}  // namespace orv::test
