// Sine, cosine and tangent by polynomials over a half or a quarter turn, for the kernels of doubles that need no table and
// for those of floats that work in double.
#pragma once

#include "vecmath/trig/steps_d.h"

namespace orv::vecmath {

// ---- Steps of the kernels of least accuracy --------------------------------------------------------------------------

inline constexpr StepParts pi_ep{0x1.45f306dc9c883p-2, 0x1.921fb4p+1, 0x1.4442dp-23, 0x1.8469898cc517p-47};
inline constexpr StepParts half_pi_ep{0x1.45f306dc9c883p-1, 0x1.921fb4p+0, 0x1.4442dp-24, 0x1.8469898cc517p-48};
// The first two parts of it serve the kernels of floats.
inline constexpr StepParts half_pi{0x1.45f306dc9c883p-1, 0x1.921fb5444p+0, 0x1.68c234c4cp-39, 0x1.98a2e03707345p-77};

// ---- Quarters and signs ----------------------------------------------------------------------------------------------

// The lowest bit of both 64-bit lanes, as a sign.
inline D odd_sign(D shifted) { return simd::doubles(simd::shift_left<63>(simd::bits_of(shifted))); }

// Exchanges a and b in the lanes whose sign bit is set in `where`.
inline void exchange(D where, D& a, D& b) {
    const D old_a = a;
    a = simd::select_by_sign(where, b, a);
    b = simd::select_by_sign(where, old_a, b);
}

// Sine and cosine of k pi/2 + r from those of r, k in the low bits of `shifted`.
inline void turn_by_quarters(D shifted, D& sine, D& cosine) {
    exchange(odd_sign(shifted), sine, cosine);
    // The sine changes its sign in quarters 2 and 3, the cosine in 1 and 2.
    const __m128i k = simd::bits_of(shifted);
    const __m128i next = _mm_add_epi64(k, simd::splat_bits(1));
    sine = simd::bit_xor(sine, simd::sign_of(simd::doubles(simd::shift_left<62>(k))));
    cosine = simd::bit_xor(cosine, simd::sign_of(simd::doubles(simd::shift_left<62>(next))));
}

// ---- The sine of angles up to a quarter turn -------------------------------------------------------------------------

// An odd polynomial, for angles in a unit whose radians are c1. The last coefficient may be absent.
struct SinePolynomial {
    Splat<double> c1, c3, c5, c7, c9, c11;
};
// Radians; relative errors below 2^-27 and 2^-35.
inline constexpr SinePolynomial sine_26{
    1.0, -0x1.55554ad392fbfp-3, 0x1.110ea968a0185p-7, -0x1.9f67d9395d587p-13, 0x1.5d4567512bbd5p-19, 0.0};
// Ours. Sollya gives it to 9 digits: remez(1 - x/sin(x), [|3,5,7,9,11|], [1b-20; pi/2], 1/sin(x));
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

// ---- Sine and cosine of angles up to an eighth of a turn -------------------------------------------------------------

// All ours, of the least greatest relative error; Sollya gives them to 9 digits.
struct EighthPolynomials {
    Splat<double> s3, s5, s7, s9;  // s9 may be absent
    // remez(1 - 1/cos(x), [|2,4,6,8|], [1b-20; pi/4], 1/cos(x));  2^-33
    Splat<double> c2{-0x1.ffffffcb782b4p-2}, c4{0x1.55553c74c6565p-5}, c6{-0x1.6c07efe475b12p-10},
        c8{0x1.991643ee616c8p-16};
};
// remez(1 - x/sin(x), [|3,5,7|], [1b-20; pi/4], 1/sin(x));  2^-27
inline constexpr EighthPolynomials eighth_26{-0x1.5555452418c26p-3, 0x1.110739fe98c06p-7, -0x1.9943887a99cc1p-13, 0.0};
// remez(1 - x/sin(x), [|3,5,7,9|], [1b-20; pi/4], 1/sin(x));  2^-37
inline constexpr EighthPolynomials eighth_33{-0x1.5555554c6ff78p-3, 0x1.111108690acdap-7, -0x1.a00f7e150575fp-13,
                                             0x1.6cd1b0c713bfp-19};

// Of k pi/2 + r, k in the low bits of `shifted`.
template <const EighthPolynomials& P>
inline void quarter_turns(D r, D shifted, D& sine, D& cosine) {
    const D z = r * r;
    D q = P.s7;
    if constexpr (P.s9 != 0.0) q = P.s7 + z * P.s9;
    sine = r + r * z * (P.s3 + z * (P.s5 + z * q));
    cosine = trig.one + z * (P.c2 + z * (P.c4 + z * (P.c6 + z * P.c8)));
    turn_by_quarters(shifted, sine, cosine);
}

// ---- The tangent of angles up to an eighth of a turn -----------------------------------------------------------------

// A quotient of polynomials: r n(r^2)/d(r^2).
struct TangentQuotient {
    Splat<double> n0, n1, n2, n3, d0, d1, d2, d3;
};
// Radians; relative errors below 2^-25, 2^-33 and 2^-52. The second is ours: N - D tan(r)/r of the least greatest relative
// error where both begin with 1, by exchange.
inline constexpr TangentQuotient tan_25{0x1.fffff80398771p-1,  -0x1.886768010bbcdp-4, 0.0, 0.0, 0x1.fffff80398771p-1,
                                        -0x1.b76f55f930d8ep-2, 0x1.3e66d5fe75fb8p-7,  0.0};
inline constexpr TangentQuotient tan_33{1.0, -0x1.c7eb598a7ac33p-4, 0x1.18e345152de59p-10, 0.0,
                                        1.0, -0x1.c7502baf0f26ap-2, 0x1.055be3bea557ep-6,  0.0};
inline constexpr TangentQuotient tan_52{1.0, -0x1.06b97be36d389p-3, 0x1.6fc6fdce5d301p-9, -0x1.f637dce2a38p-18,
                                        1.0, -0x1.d8b213470beeep-2, 0x1.7e7b68ac28a56p-6, -0x1.b525b03bc92a6p-13};

// The tangent of r, or its inverse where the sign bit of `odd` is set: -1/tangent is that of r a quarter turn on.
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

// ---- The same for angles in a unit of so many radians ------------------------------------------------------------------

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

}  // namespace orv::vecmath
