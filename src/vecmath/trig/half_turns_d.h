// The sine over a half turn, for the kernels that reduce by pi and need no table.
#pragma once

#include "vecmath/trig/steps_d.h"

namespace orv::trig {

// Steps of the kernels of least accuracy.
inline constexpr StepParts pi_ep{0.31830988618379069, 3.1415925025939941, 1.5099578831723193e-07,
                                 1.0780605716316238e-14};
inline constexpr StepParts half_pi_ep{0.63661977236758138, 1.5707962512969971, 7.5497894158615964e-08,
                                      5.390302858158119e-15};

// r in [-pi/2, pi/2]; relative error below 2^-27.
inline D sine_26(D r) {
    const D z = r * r;
    const D q =
        splat(-0.16666658838437162) +
        z * (splat(0.0083330466452487071) + z * (splat(-0.00019808085361787081) + z * splat(2.6022725384193179e-06)));
    return r + r * z * q;
}

// The lowest bit of both 64-bit lanes, as a sign.
inline D odd_sign(D shifted) { return simd::doubles(simd::shift_left<63>(simd::bits_of(shifted))); }

// Exchanges a and b in the lanes whose sign bit is set in `where`.
inline void exchange(D where, D& a, D& b) {
    const D old_a = a;
    a = _mm_blendv_pd(a, b, where);
    b = _mm_blendv_pd(b, old_a, where);
}

// Sine and cosine of k pi/2 + r from those of r, k in the low bits of `shifted`.
inline void turn_by_quarters(D shifted, D& sine, D& cosine) {
    exchange(odd_sign(shifted), sine, cosine);
    // The sine changes its sign in quarters 2 and 3, the cosine in 1 and 2.
    const __m128i k = simd::bits_of(shifted);
    const __m128i next = _mm_add_epi64(k, simd::splat_bits(1));
    const __m128i sign = simd::bits_of(splat(-0.0));
    sine = simd::bit_xor(sine, simd::doubles(_mm_and_si128(simd::shift_left<62>(k), sign)));
    cosine = simd::bit_xor(cosine, simd::doubles(_mm_and_si128(simd::shift_left<62>(next), sign)));
}

// The same for r in [-pi/4, pi/4]; polynomials of the least greatest relative error, below 2^-27.
inline void quarter_turns_26(D r, D shifted, D& sine, D& cosine) {
    const D z = r * r;
    sine =
        r +
        r * z * (splat(-0.16666654602440295) + z * (splat(0.0083321602989539051) + z * splat(-0.00019515218794483558)));
    cosine = splat(1.0) + z * (splat(-0.499999996942317199) +
                               z * (splat(0.041666620329304385) +
                                    z * (splat(-0.0013886680763925446) + z * splat(2.4383483770338053e-05))));
    turn_by_quarters(shifted, sine, cosine);
}

// And with errors below 2^-37 for the sine, 2^-33 for the cosine: next to nothing in a float.
inline void quarter_turns_33(D r, D shifted, D& sine, D& cosine) {
    const D z = r * r;
    sine = r + r * z *
                   (splat(-0.16666666640776008) +
                    z * (splat(0.0083333293024083102) +
                         z * (splat(-0.00019839311485786) + z * splat(2.7181141351371766e-06))));
    cosine = splat(1.0) + z * (splat(-0.499999996942317199) +
                               z * (splat(0.041666620329304385) +
                                    z * (splat(-0.0013886680763925446) + z * splat(2.4383483770338053e-05))));
    turn_by_quarters(shifted, sine, cosine);
}

// The sine for r in [-pi/2, pi/2], relative error below 2^-35.
inline D sine_35(D r) {
    const D z = r * r;
    const D q = splat(-0.1666666662610793) +
                z * (splat(0.0083333311068050034) +
                     z * (splat(-0.00019840867969275875) +
                          z * (splat(2.7525371788874001e-06) + z * splat(-2.3888681645204943e-08))));
    return r + r * z * q;
}

}  // namespace orv::trig
