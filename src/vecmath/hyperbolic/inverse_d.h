// What the inverse hyperbolic functions of doubles are made of: the logarithm of a sum of two parts and odd polynomials below 1/8.
//
// The logarithm is that of dPow (log2_exp2_d.h), in two parts; its product with ln 2 is rounded once. asinh and atanh of small
// arguments are x + x^3 P(x^2).
#pragma once

#include "vecmath/exp_log/pairs_d.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/power/log2_exp2_d.h"

namespace orv::vecmath {

inline constexpr PowDBlock inverse_log;

struct InverseHyperbolicBlock {
    // fpminimax((asinh(sqrt(x))/sqrt(x)-1)/x, 7, [|D...|], [2^-40;2^-6], absolute): 2^-66 of the result
    simd::Splat<double> s0{-0x1.5555555555555p-3}, s1{0x1.3333333332cfap-4}, s2{-0x1.6db6db6b9cf63p-5},
        s3{0x1.f1c717706b3a9p-6}, s4{-0x1.6e8893422ef95p-6}, s5{0x1.1b4dfa643c849p-6}, s6{-0x1.73c9a4c3d147bp-7},
        s7{-0x1.1245de828aaf3p-5};
    // The same of atanh, degree 8: 2^-65
    simd::Splat<double> t0{0x1.5555555555555p-2}, t1{0x1.999999999a199p-3}, t2{0x1.24924922d27cap-3},
        t3{0x1.c71c774654b29p-4}, t4{0x1.745882af14492p-4}, t5{0x1.3d3df83df69f4p-4}, t6{0x1.ef63dbd92c3cap-6},
        t7{0x1.641b5f86ad021p+0}, t8{-0x1.401a61393dcc2p+4};
    simd::Splat<double> one{1.0}, half{0.5}, eighth{0.125};
    simd::Splat<double> ln2{0x1.62e42fefa39efp-1}, ln2_high{0x1.62e42f8p-1}, ln2_low{0x1.be8e7bcd5e4f2p-27};
    simd::SplatBits<uint64_t> exponent_field{0x7FF0000000000000};
    simd::SplatBits<uint64_t> twice_bias{0x7FE0000000000000};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF};
    simd::SplatBits<uint32_t> squares_from{(1023 - 200) << 20}, squares_to{((1023 + 500) << 20) - 1};
};
inline constexpr InverseHyperbolicBlock inverse_hyperbolic;

// ln(a.high + a.low) of a normal a, rounded once.
inline __m128d ln(Pair a) {
    constexpr const InverseHyperbolicBlock& K = inverse_hyperbolic;
    // a.low 2^-exponent(a.high), whose power of two comes from the exponent field.
    const __m128i field = _mm_and_si128(simd::bits_of(a.high), K.exponent_field);
    const __m128d scale = simd::doubles(_mm_sub_epi64(K.twice_bias, field));
    const Log2Pair log = log2_pair<inverse_log>(a.high, a.low * scale);
    return log.high * K.ln2_high + (log.high * K.ln2_low + log.low * K.ln2);
}

// x, of which nothing is left where its square would underflow.
inline __m128d squarable(__m128d x) {
    constexpr const InverseHyperbolicBlock& K = inverse_hyperbolic;
    const __m128i large = _mm_cmpgt_epi32(simd::bits_of(x), K.squares_from);
    return simd::bit_and(x, simd::doubles(_mm_shuffle_epi32(large, _MM_SHUFFLE(3, 3, 1, 1))));
}

// asinh x - x and atanh x - x for |x| < 1/8.
inline __m128d asinh_rest(__m128d x) {
    constexpr const InverseHyperbolicBlock& K = inverse_hyperbolic;
    const __m128d w = squarable(x), z = w * w, z2 = z * z;
    const __m128d p =
        ((K.s0 + z * K.s1) + z2 * (K.s2 + z * K.s3)) + (z2 * z2) * ((K.s4 + z * K.s5) + z2 * (K.s6 + z * K.s7));
    return (w * z) * p;
}
inline __m128d atanh_rest(__m128d x) {
    constexpr const InverseHyperbolicBlock& K = inverse_hyperbolic;
    const __m128d w = squarable(x), z = w * w, z2 = z * z, z4 = z2 * z2;
    const __m128d p =
        ((K.t0 + z * K.t1) + z2 * (K.t2 + z * K.t3)) + z4 * (((K.t4 + z * K.t5) + z2 * (K.t6 + z * K.t7)) + z4 * K.t8);
    return (w * z) * p;
}

// ln(x + sqrt(x^2 + sign)) for an x whose square is in range.
inline __m128d ln_with_root(__m128d x, Pair radicand) {
    const Pair s = root(radicand);
    // The larger is the root where 1 was added, x where it was taken away.
    const __m128d larger = _mm_max_pd(x, s.high), smaller = _mm_min_pd(x, s.high);
    const Pair total = sum(larger, smaller);
    return ln({total.high, total.low + s.low});
}

// ln 2x for an x beyond that.
inline double ln_of_twice(double x) {
    constexpr const InverseHyperbolicBlock& K = inverse_hyperbolic;
    const Log2Pair log = log2_pair<inverse_log>(simd::splat(x), _mm_setzero_pd());
    const __m128d more = log.high + K.one;
    return _mm_cvtsd_f64(more * K.ln2_high + (more * K.ln2_low + log.low * K.ln2));
}

}  // namespace orv::vecmath
