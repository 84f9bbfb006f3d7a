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
using vecmath::ComplexD;
using vecmath::ComplexS;

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
    static ComplexD lanes(ComplexD a, ComplexD b, __m128d& doubt) {
        const __m128d refused =
            simd::bit_or(simd::equal(a.re, _mm_setzero_pd()),
                         vecmath::any_part_outside<uint32_t{1023 - 140} << 20, uint32_t{1023 + 140} << 20>(a, b));
        make_harmless(a, b, refused);
        const ComplexD y = vecmath::pow_lanes(a, b, doubt);
        doubt = simd::bit_or(doubt, refused);
        return y;
    }
    static int32_t scalar(const orv_complex_d* a, const orv_complex_d* b, orv_complex_d* y) {
        return vecmath::rare_pow(*a, *b, y);
    }
};

struct PowS : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked> {
    static ComplexS lanes(ComplexS a, ComplexS b, __m128& doubt) {
        const __m128 refused =
            simd::bit_or(simd::equal(a.re, _mm_setzero_ps()), vecmath::any_part_from<vecmath::infinity_s>(a, b));
        make_harmless(a, b, refused);
        __m128d doubts[2];
        __m128d* half = doubts;
        const ComplexS y =
            vecmath::by_double([&](ComplexD x, ComplexD z) { return vecmath::pow_lanes_s(x, z, *half++); }, a, b);
        doubt =
            simd::bit_or(refused, simd::floats(simd::odd_words(simd::bits_of(doubts[0]), simd::bits_of(doubts[1]))));
        return y;
    }
    static int32_t scalar(const orv_complex_s* a, const orv_complex_s* b, orv_complex_s* y) {
        orv_complex_d result;
        const int32_t status = vecmath::rare_pow(vecmath::widened(*a), vecmath::widened(*b), &result);
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
