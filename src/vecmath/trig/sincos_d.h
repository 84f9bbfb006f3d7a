// Sine and cosine of doubles from one reduction, from lanes to lanes.
//
// "LA" and "HA": the table of 128 rows, each result as Sin "HA" and Cos have it, bit for bit; from 90112 on by the bits of
// 1/(2 pi), again as they do.
// "EP": |x| = k pi/2 + r with three parts, |r| up to pi/4, a short polynomial for the sine and one for the cosine, exchanged
// for odd k; from 2^23 on as the other accuracies.
//
// Valid for every finite x.
#pragma once

#include "vecmath/trig/reduction_d.h"

namespace orv::vecmath {

inline constexpr Splat<double> last_sincos_ep{0x1.fffffffffffffp+22};  // the last number below 2^23

// |x| up to last_128.
inline void sincos_128(D x, D& sine, D& cosine) {
    const Main128 main(simd::magnitude(x));
    sine = simd::bit_xor(main.step.sin(main.j, 0), simd::sign_of(x));
    cosine = main.step.sin(main.j, 1);
}

// Any finite x.
inline void sincos_large(D x, D& sine, D& cosine) {
    const Step512<> step(reduce_large(x));
    sine = step.sin(0);
    cosine = step.sin(1);
}

// |x| up to last_sincos_ep.
inline void sincos_ep(D x, D& sine, D& cosine) {
    const D a = simd::magnitude(x);
    const Nearest<half_pi_ep> nearest(a);
    quarter_turns<eighth_26>(less_steps<half_pi_ep>(a, nearest.k), nearest.shifted, sine, cosine);
    sine = simd::bit_xor(sine, simd::sign_of(x));
}

}  // namespace orv::vecmath
