// dAsinh and dAcosh, by the logarithm of a sum of two parts:
//
//   asinh x = ln(x + sqrt(x^2 + 1)),  acosh x = ln(x + sqrt(x^2 - 1)).
//
// The square, the root and the sums carry their rounding errors, so that the argument of the logarithm is good
// to twice the working precision also next to 1, where the result is small. The logarithm is that of dPow
// (log2_exp2_d.h), in two parts; its product with ln 2 is rounded once. Below 1/8 asinh is an odd polynomial,
// x + x^3 P(x^2).
#include "vecmath/hyperbolic/inverse_d.h"

#include "frame/kernel_loops.h"

#include <math.h>

namespace {

using namespace orv;
constexpr const vecmath::InverseHyperbolicBlock& K = vecmath::inverse_hyperbolic;
using vecmath::Pair;

struct Asinh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.squares_to));
    }
    static __m128d lanes(__m128d x) {
        const __m128d sign = simd::sign_of(x);
        x = simd::magnitude(x);
        const __m128d small = simd::less(x, K.eighth);
        const __m128d w = simd::bit_and_not(small, x);
        const Pair p = vecmath::square(w);
        const Pair total = vecmath::sum(_mm_max_pd(p.high, K.one), _mm_min_pd(p.high, K.one));
        const __m128d y = vecmath::ln_with_root(w, {total.high, total.low + p.low});
        const __m128d t = simd::bit_and(small, x);
        return simd::bit_or(simd::select(small, t + vecmath::asinh_rest(t), y), sign);
    }
    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        *y = vecmath::is_finite(x) ? std::copysign(vecmath::ln_of_twice(std::fabs(x)), x) : x + x;
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
        const Pair p = vecmath::square(x);
        const Pair total = vecmath::sum(p.high, simd::splat(-1.0));
        return vecmath::ln_with_root(x, {total.high, total.low + p.low});
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
        *y = x == 1 ? 0.0 : vecmath::is_finite(x) ? vecmath::ln_of_twice(x) : x;
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dAsinh, la, Asinh)
ORV_ONE_INPUT(dAsinh, ha, Asinh)
ORV_ONE_INPUT(dAcosh, la, Acosh)
ORV_ONE_INPUT(dAcosh, ha, Acosh)
