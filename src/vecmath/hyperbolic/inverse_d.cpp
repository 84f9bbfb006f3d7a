// dAsinh, dAcosh, dAtanh, by the logarithm of a sum of two parts:
//
//   asinh x = ln(x + sqrt(x^2 + 1)),  acosh x = ln(x + sqrt(x^2 - 1)),  atanh x = 1/2 ln((1 + x) / (1 - x)).
//
// The square, the root, the quotient and the sums carry their rounding errors, so that the argument of the logarithm is good
// to twice the working precision also next to 1, where the result is small. The logarithm is that of dPow
// (log2_exp2_d.h), in two parts; its product with ln 2 is rounded once. Below 1/8 asinh and atanh are odd polynomials,
// x + x^3 P(x^2).
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/power/log2_exp2_d.h"

#include <math.h>

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

constexpr vecmath::PowDBlock logarithm;

struct InverseBlock {
    // fpminimax((asinh(sqrt(x))/sqrt(x)-1)/x, 7, [|D...|], [2^-40;2^-6], absolute): 2^-66 of the result
    Splat<double> s0{-0x1.5555555555555p-3}, s1{0x1.3333333332cfap-4}, s2{-0x1.6db6db6b9cf63p-5},
        s3{0x1.f1c717706b3a9p-6}, s4{-0x1.6e8893422ef95p-6}, s5{0x1.1b4dfa643c849p-6}, s6{-0x1.73c9a4c3d147bp-7},
        s7{-0x1.1245de828aaf3p-5};
    // The same of atanh, degree 8: 2^-65
    Splat<double> t0{0x1.5555555555555p-2}, t1{0x1.999999999a199p-3}, t2{0x1.24924922d27cap-3},
        t3{0x1.c71c774654b29p-4}, t4{0x1.745882af14492p-4}, t5{0x1.3d3df83df69f4p-4}, t6{0x1.ef63dbd92c3cap-6},
        t7{0x1.641b5f86ad021p+0}, t8{-0x1.401a61393dcc2p+4};
    Splat<double> one{1.0}, half{0.5}, eighth{0.125}, quarter{0.25};
    Splat<double> ln2{0x1.62e42fefa39efp-1}, ln2_high{0x1.62e42f8p-1}, ln2_low{0x1.be8e7bcd5e4f2p-27};
    SplatBits<uint64_t> upper{0xFFFFFFFFF8000000}, exponent_field{0x7FF0000000000000};
    SplatBits<uint64_t> twice_bias{0x7FE0000000000000};
    SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF};
    SplatBits<uint32_t> squares_from{(1023 - 200) << 20}, squares_to{((1023 + 500) << 20) - 1}, below_one{0x3FEFFFFF};
};
constexpr InverseBlock K;

struct Pair {
    __m128d high, low;
};

inline __m128d upper_half(__m128d x) { return simd::bit_and(x, simd::doubles(K.upper)); }

inline Pair square(__m128d x) {
    const __m128d high = upper_half(x), low = x - high, product = x * x;
    return {product, ((high * high - product) + (high + high) * low) + low * low};
}

// a + b with the rounding error, for |a| >= |b| or a = 0.
inline Pair sum(__m128d a, __m128d b) {
    const __m128d total = a + b;
    return {total, (a - total) + b};
}

// The root of a.high + a.low, a.high above 0.
inline Pair root(Pair a) {
    const __m128d s = _mm_sqrt_pd(a.high);
    const __m128d high = upper_half(s), low = s - high;
    const __m128d left = ((a.high - high * high) - (high + high) * low) - low * low;
    return {s, (left + a.low) / (s + s)};
}

// ln(a.high + a.low) of a normal a, rounded once.
inline __m128d ln(Pair a) {
    // a.low 2^-exponent(a.high), whose power of two comes from the exponent field.
    const __m128i field = _mm_and_si128(simd::bits_of(a.high), K.exponent_field);
    const __m128d scale = simd::doubles(_mm_sub_epi64(K.twice_bias, field));
    const vecmath::Log2Pair log = vecmath::log2_pair<logarithm>(a.high, a.low * scale);
    return log.high * K.ln2_high + (log.high * K.ln2_low + log.low * K.ln2);
}

// x, of which nothing is left where its square would underflow.
inline __m128d squarable(__m128d x) {
    const __m128i large = _mm_cmpgt_epi32(simd::bits_of(x), K.squares_from);
    return simd::bit_and(x, simd::doubles(_mm_shuffle_epi32(large, _MM_SHUFFLE(3, 3, 1, 1))));
}

inline __m128d small_asinh(__m128d x) {
    const __m128d w = squarable(x), z = w * w, z2 = z * z;
    const __m128d p =
        ((K.s0 + z * K.s1) + z2 * (K.s2 + z * K.s3)) + (z2 * z2) * ((K.s4 + z * K.s5) + z2 * (K.s6 + z * K.s7));
    return x + (w * z) * p;
}
inline __m128d small_atanh(__m128d x) {
    const __m128d w = squarable(x), z = w * w, z2 = z * z, z4 = z2 * z2;
    const __m128d p =
        ((K.t0 + z * K.t1) + z2 * (K.t2 + z * K.t3)) + z4 * (((K.t4 + z * K.t5) + z2 * (K.t6 + z * K.t7)) + z4 * K.t8);
    return x + (w * z) * p;
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
double ln_of_twice(double x) {
    const vecmath::Log2Pair log = vecmath::log2_pair<logarithm>(simd::splat(x), _mm_setzero_pd());
    const __m128d more = log.high + K.one;
    return _mm_cvtsd_f64(more * K.ln2_high + (more * K.ln2_low + log.low * K.ln2));
}

struct Asinh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.squares_to));
    }
    static __m128d lanes(__m128d x) {
        const __m128d sign = simd::sign_of(x);
        x = simd::magnitude(x);
        const __m128d small = simd::less(x, K.eighth);
        const __m128d w = simd::bit_and_not(small, x);
        const Pair p = square(w);
        const Pair total = sum(_mm_max_pd(p.high, K.one), _mm_min_pd(p.high, K.one));
        const __m128d y = ln_with_root(w, {total.high, total.low + p.low});
        return simd::bit_or(simd::select(small, small_asinh(simd::bit_and(small, x)), y), sign);
    }
    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        *y = vecmath::is_finite(x) ? std::copysign(ln_of_twice(std::fabs(x)), x) : x + x;
        return frame::status_ok;
    }
};

struct Acosh : frame::OneInput<double, 4, frame::Tail::masked> {
    static constexpr double fill = 1.5;
    static __m128d doubt(__m128d x) {
        const __m128i high = simd::bits_of(x);
        const __m128d beyond = simd::doubles(
            _mm_or_si128(_mm_cmpgt_epi32(high, K.squares_to), _mm_cmpgt_epi32(simd::bits_of(K.one), high)));
        return simd::bit_or(beyond, simd::equal(x, K.one));
    }
    static __m128d lanes(__m128d x) {
        const Pair p = square(x);
        const Pair total = sum(p.high, simd::splat(-1.0));
        return ln_with_root(x, {total.high, total.low + p.low});
    }
    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        if (vecmath::is_nan(x)) {
            *y = vecmath::quiet(x);
            return frame::status_ok;
        }
        if (x < 1) {
            *y = vecmath::invalid<double>();
            return frame::status_domain;
        }
        *y = x == 1 ? 0.0 : vecmath::is_finite(x) ? ln_of_twice(x) : x;
        return frame::status_ok;
    }
};

struct Atanh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.below_one));
    }
    static __m128d lanes(__m128d x) {
        const __m128d sign = simd::sign_of(x);
        x = simd::magnitude(x);
        const __m128d small = simd::less(x, K.eighth);
        const __m128d w = simd::select(small, K.quarter, x);
        const Pair above = sum(K.one, w);
        const __m128d below = K.one - w, below_low = (K.one - below) - w;
        const __m128d q = above.high / below;
        // What q below lacks of 1 + x, by halves.
        const __m128d q_high = upper_half(q), q_low = q - q_high, b_high = upper_half(below), b_low = below - b_high;
        const __m128d left = (((above.high - q_high * b_high) - q_high * b_low) - q_low * b_high) - q_low * b_low;
        const __m128d more = (left + (above.low - q * below_low)) / below;
        const __m128d y = ln({q, more}) * K.half;
        return simd::bit_or(simd::select(small, small_atanh(x), y), sign);
    }
    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        if (vecmath::is_nan(x)) {
            *y = vecmath::quiet(x);
            return frame::status_ok;
        }
        if (std::fabs(x) > 1) {
            *y = vecmath::invalid<double>();
            return frame::status_domain;
        }
        *y = x / vecmath::at_run_time(0.0);
        return frame::status_singularity;
    }
};

}  // namespace

ORV_ONE_INPUT(dAsinh, la, Asinh)
ORV_ONE_INPUT(dAsinh, ha, Asinh)
ORV_ONE_INPUT(dAcosh, la, Acosh)
ORV_ONE_INPUT(dAcosh, ha, Acosh)
ORV_ONE_INPUT(dAtanh, la, Atanh)
ORV_ONE_INPUT(dAtanh, ha, Atanh)
ORV_ONE_INPUT(dAtanh, ep, Atanh)
