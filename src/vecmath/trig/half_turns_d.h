// The sine over a half turn, for the kernels that reduce by pi and need no table.
#pragma once

#include "simd/constants.h"
#include "vecmath/trig/steps_d.h"

namespace orv::trig {

using simd::Splat;

// Steps of the kernels of least accuracy.
inline constexpr StepParts pi_ep{0.31830988618379069, 3.1415925025939941, 1.5099578831723193e-07,
                                 1.0780605716316238e-14};
inline constexpr StepParts half_pi_ep{0.63661977236758138, 1.5707962512969971, 7.5497894158615964e-08,
                                      5.390302858158119e-15};

// An odd polynomial next to the sine of angles up to a quarter turn, for angles in a unit whose radians are c1. The last
// coefficient may be absent.
struct SinePolynomial {
    Splat<double> c1, c3, c5, c7, c9, c11;
};
// Radians; relative errors below 2^-27 and 2^-35.
inline constexpr SinePolynomial sine_26{
    1.0, -0x1.55554ad392fbfp-3, 0x1.110ea968a0185p-7, -0x1.9f67d9395d587p-13, 0x1.5d4567512bbd5p-19, 0.0};
inline constexpr SinePolynomial sine_35{1.0,
                                        -0x1.5555554765bfcp-3,
                                        0x1.11110c49050fdp-7,
                                        -0x1.a017d94bf6c2cp-13,
                                        0x1.717075129492ep-19,
                                        -0x1.9a6788705dac7p-26};

template <const SinePolynomial& P>
inline D sine(D r) {
    const D z = r * r;
    D q = P.c9;
    if constexpr (P.c11 != 0.0) q = P.c9 + z * P.c11;
    q = P.c3 + z * (P.c5 + z * (P.c7 + z * q));
    if constexpr (P.c1 == 1.0) return r + r * z * q;
    return r * (P.c1 + z * q);
}

// A quotient of polynomials next to the tangent of angles up to an eighth of a turn: r n(r^2)/d(r^2).
struct TangentQuotient {
    Splat<double> n0, n1, n2, n3, d0, d1, d2, d3;
};
// Radians; relative errors below 2^-25, 2^-33 and 2^-52.
inline constexpr TangentQuotient tan_25{0x1.fffff80398771p-1,  -0x1.886768010bbcdp-4, 0.0, 0.0, 0x1.fffff80398771p-1,
                                        -0x1.b76f55f930d8ep-2, 0x1.3e66d5fe75fb8p-7,  0.0};
inline constexpr TangentQuotient tan_33{0x1.p+0, -0x1.c7eb598a7ac33p-4, 0x1.18e345152de59p-10, 0.0,
                                        0x1.p+0, -0x1.c7502baf0f26ap-2, 0x1.055be3bea557ep-6,  0.0};
inline constexpr TangentQuotient tan_52{1.0, -0x1.06b97be36d389p-3, 0x1.6fc6fdce5d301p-9, -0x1.f637dce2a3800p-18,
                                        1.0, -0x1.d8b213470beeep-2, 0x1.7e7b68ac28a56p-6, -0x1.b525b03bc92a6p-13};

// The same for angles in a unit of so many radians.
constexpr SinePolynomial in_unit(const SinePolynomial& p, double radians) {
    const double u = radians, z = u * u;
    return {p.c1 * u,
            p.c3 * (u * z),
            p.c5 * (u * z * z),
            p.c7 * (u * z * z * z),
            p.c9 * (u * z * z * z * z),
            p.c11 * (u * z * z * z * z * z)};
}
constexpr TangentQuotient in_unit(const TangentQuotient& p, double radians) {
    const double u = radians, z = u * u;
    return {p.n0 * u, p.n1 * (u * z), p.n2 * (u * z * z), p.n3 * (u * z * z * z),
            p.d0,     p.d1 * z,       p.d2 * (z * z),     p.d3 * (z * z * z)};
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

// The tangent of r, or -1/tangent without its sign where the sign bit of `odd` is set.
template <const TangentQuotient& P>
inline D tangent(D r, D odd) {
    const D z = r * r;
    D n, d;
    if constexpr (P.n3 != 0.0) {
        n = P.n0 + z * ((P.n1 + z * P.n2) + (z * z) * P.n3);
        d = P.d0 + z * ((P.d1 + z * P.d2) + (z * z) * P.d3);
    } else {
        n = P.n0 + z * P.n1;
        if constexpr (P.n2 != 0.0) n += z * z * P.n2;
        d = P.d0 + z * (P.d1 + z * P.d2);
    }
    n *= r;
    exchange(odd, n, d);
    return n / d;
}

}  // namespace orv::trig
