// Complex Pow and Powx, of doubles by pow_d.h and of floats by the same in one double each. One kernel serves all accuracies.
//
// The vector path serves a base with a real part, parts of doubles that are zero or from 2^-140 below 2^140, and results whose
// size is well within range.
#include "vecmath/complex/pow_d.h"
#include "vecmath/complex/pow_rare.h"

#include "frame/kernel_loops.h"

#include <math.h>

namespace {

using namespace orv;
using Lanes = simd::Complex<double>;

// Lanes with a part that is not zero and whose exponent lies outside [-140, 140).
inline __m128d outside(Lanes z) {
    const auto out = [](__m128d x) {
        const __m128i offset =
            simd::subtract_32(simd::bits_of(simd::magnitude(x)), simd::splat_32(((1023u - 140) << 20) + 0x80000000u));
        const __m128d beyond = simd::doubles(simd::greater_32(offset, simd::splat_32((280u << 20) - 1 + 0x80000000u)));
        return simd::bit_and_not(simd::equal(x, _mm_setzero_pd()), beyond);
    };
    return simd::bit_or(out(z.re), out(z.im));
}

// One for the bases and zero for the exponents in doubt, which raise nothing.
template <class Z, class V>
inline void make_harmless(Z& a, Z& b, V doubt) {
    const auto put = [=](V& x, typename std::remove_reference_t<decltype(doubt[0])> value) {
        x = simd::select_by_sign(doubt, simd::splat(value), x);
    };
    put(a.re, 1);
    put(a.im, 0);
    put(b.re, 0);
    put(b.im, 0);
}

struct PowD : frame::Elementwise<orv_complex_d, 2, frame::Tail::masked> {
    static Lanes lanes(Lanes a, Lanes b, __m128d& doubt) {
        const __m128d refused = simd::bit_or(simd::equal(a.re, _mm_setzero_pd()), simd::bit_or(outside(a), outside(b)));
        make_harmless(a, b, refused);
        const Lanes y = vecmath::pow_lanes(a, b, doubt);
        doubt = simd::bit_or(doubt, refused);
        return y;
    }
    static int32_t scalar(const orv_complex_d* a, const orv_complex_d* b, orv_complex_d* y) {
        return vecmath::rare_pow(*a, *b, y);
    }
};

struct PowS : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    using Z = simd::Complex<float>;
    static Z lanes(Z a, Z b, __m128& doubt) {
        const auto not_finite = [](Z z) { return simd::bit_or(simd::not_finite(z.re), simd::not_finite(z.im)); };
        const __m128 refused =
            simd::bit_or(simd::equal(a.re, _mm_setzero_ps()), simd::bit_or(not_finite(a), not_finite(b)));
        make_harmless(a, b, refused);
        __m128d low_doubt, high_doubt;
        const Lanes low = vecmath::pow_lanes_s({simd::widen_low(a.re), simd::widen_low(a.im)},
                                               {simd::widen_low(b.re), simd::widen_low(b.im)}, low_doubt);
        const Lanes high = vecmath::pow_lanes_s({simd::widen_high(a.re), simd::widen_high(a.im)},
                                                {simd::widen_high(b.re), simd::widen_high(b.im)}, high_doubt);
        doubt =
            simd::bit_or(refused, simd::floats(simd::odd_words(simd::bits_of(low_doubt), simd::bits_of(high_doubt))));
        return {simd::narrow(low.re, high.re), simd::narrow(low.im, high.im)};
    }
    static int32_t scalar(const orv_complex_s* a, const orv_complex_s* b, orv_complex_s* y) {
        orv_complex_d result;
        const int32_t status = vecmath::rare_pow({a->re, a->im}, {b->re, b->im}, &result);
        *y = {static_cast<float>(result.re), static_cast<float>(result.im)};
        const auto overflowed = [](float part, double wide) { return std::isinf(part) && !std::isinf(wide); };
        return overflowed(y->re, result.re) || overflowed(y->im, result.im) ? frame::status_overflow : status;
    }
};

}  // namespace

ORV_TWO_INPUTS(zPow, la, PowD)
ORV_TWO_INPUTS(cPow, la, PowS)
ORV_SCALAR_INPUT(zPowx, la, PowD)
ORV_SCALAR_INPUT(cPowx, la, PowS)
