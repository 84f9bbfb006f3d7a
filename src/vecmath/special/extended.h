// Scalar work on the x87 unit in its full precision of 64 bits, whatever precision the caller came with.
#pragma once

#include "frame/fp_frame.h"

namespace orv::vecmath {

// 64 significant bits, rounded to nearest, while the guard lives; the caller's setting afterwards.
struct ExtendedPrecision {
    static constexpr uint16_t setting = 0x0F00, extended_nearest = 0x0300;
    uint16_t saved = frame::read_x87_control();

    ExtendedPrecision() {
        if (!kept()) frame::write_x87_control(static_cast<uint16_t>((saved & ~setting) | extended_nearest));
    }
    ~ExtendedPrecision() {
        if (!kept()) frame::write_x87_control(saved);
    }
    bool kept() const { return (saved & setting) == extended_nearest; }
    ExtendedPrecision(const ExtendedPrecision&) = delete;
    ExtendedPrecision& operator=(const ExtendedPrecision&) = delete;
};

// The frame of kernels whose every element is worked out so.
struct ExtendedFrame : frame::GeneralFrame {
    ExtendedPrecision extended;
};

inline long double x87_ln(long double x) {
    long double y;
    __asm__("fyl2x" : "=t"(y) : "0"(x), "u"(0.693147180559945309417232121458176568L) : "st(1)");
    return y;
}
inline long double x87_root(long double x) {
    __asm__("fsqrt" : "+t"(x));
    return x;
}

}  // namespace orv::vecmath
