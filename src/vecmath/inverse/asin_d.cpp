// dAsin, dAcos, dAsinpi and dAcospi from the parts of asin_d.h: in radians, or in multiples of pi by 1/pi in two parts.
#include "vecmath/inverse/asin_d.h"

#include "frame/kernel_loops.h"

#include <math.h>

namespace {

using namespace orv;
using vecmath::AsinForm;
using vecmath::AsinParts;

constexpr vecmath::AsinBlock K;

struct Unit {
    bool pi;
    simd::Splat<double> quarter_high, quarter_low;  // a quarter turn
};
constexpr Unit radians{false, 0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54}, half_turns{true, 0.5, 0.0};

// From radians to the unit, in parts.
template <const Unit& U, AsinForm Form>
inline void scale(__m128d& high, __m128d& low) {
    if constexpr (!U.pi) return;
    if constexpr (Form == AsinForm::rough) {
        high = high * K.inv_pi;
        low = low * K.inv_pi;
    } else {
        const __m128d leading = simd::bit_and(high, simd::doubles(K.upper));
        low = (low * K.inv_pi + high * K.inv_pi_low) + (high - leading) * K.inv_pi_high;
        high = leading * K.inv_pi_high;
    }
}

// base + high + low, base being 0 or the larger.
template <AsinForm Form>
inline __m128d joined(__m128d base_high, __m128d base_low, __m128d high, __m128d low) {
    const __m128d sum = base_high + high;
    if constexpr (Form == AsinForm::rough) return sum + low;
    return sum + (((base_high - sum) + high) + (low + base_low));
}

inline __m128d outside(__m128d x) {
    return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.last));
}

// What the two functions do beyond their vector paths.
template <class At>
int32_t at_ends(double x, double* y, At at) {
    if (vecmath::is_nan(x)) {
        *y = vecmath::quiet(x);
        return frame::status_ok;
    }
    if (std::fabs(x) > 1) {
        *y = vecmath::invalid<double>();
        return frame::status_domain;
    }
    *y = at(x);
    return frame::status_ok;
}

template <const Unit& U, AsinForm Form>
struct Asin : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        if constexpr (!U.pi) return outside(x);
        const __m128i high = _mm_and_si128(simd::bits_of(x), K.magnitude);
        const __m128d tiny = simd::doubles(_mm_cmpgt_epi32(K.products_from, high));
        return simd::bit_or(outside(x), simd::bit_and_not(simd::equal(x, _mm_setzero_pd()), tiny));
    }
    static __m128d lanes(__m128d x) {
        const AsinParts parts = vecmath::asin_parts<Form>(K, simd::magnitude(x));
        __m128d high = parts.high, low = parts.low;
        scale<U, Form>(high, low);
        const __m128d minus = simd::sign_of(parts.folded);
        const __m128d y =
            joined<Form>(simd::bit_and(parts.folded, U.quarter_high), simd::bit_and(parts.folded, U.quarter_low),
                         simd::bit_xor(high, minus), simd::bit_xor(low, minus));
        return simd::bit_xor(y, simd::sign_of(x));
    }
    static int32_t scalar(const double* at, double* y) {
        return at_ends(*at, y, [](double x) {
            if (std::fabs(x) == 1)
                return std::copysign(double{U.quarter_high} + vecmath::at_run_time(double{U.quarter_low}), x);
            int exponent;
            __m128d high = simd::splat(4 * std::frexp(x, &exponent)), low = _mm_setzero_pd();
            scale<U, AsinForm::exact>(high, low);
            return std::copysign(vecmath::scaled_sum(std::fabs(_mm_cvtsd_f64(high)),
                                                     std::copysign(1.0, x) * _mm_cvtsd_f64(low), exponent - 2),
                                 x);
        });
    }
};

template <const Unit& U, AsinForm Form>
struct Acos : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return outside(x); }
    static __m128d lanes(__m128d x) {
        const __m128d sign = simd::sign_of(x);
        const AsinParts parts = vecmath::asin_parts<Form>(K, simd::magnitude(x));
        __m128d high = parts.high, low = parts.low;
        scale<U, Form>(high, low);
        // pi/2 - asin x up to 1/2; above r itself, or pi less r for a negative x.
        const __m128d minus = simd::bit_xor(sign, simd::bit_and_not(parts.folded, simd::splat(-0.0)));
        const __m128d negative =
            simd::doubles(_mm_shuffle_epi32(_mm_srai_epi32(simd::bits_of(sign), 31), _MM_SHUFFLE(3, 3, 1, 1)));
        const __m128d once = simd::bit_or(simd::bit_and_not(parts.folded, simd::doubles(_mm_set1_epi32(-1))), negative);
        const __m128d twice = simd::bit_and(parts.folded, negative);
        const __m128d base_high = simd::bit_and(once, U.quarter_high), base_low = simd::bit_and(once, U.quarter_low);
        return joined<Form>(base_high + simd::bit_and(twice, U.quarter_high),
                            base_low + simd::bit_and(twice, U.quarter_low), simd::bit_xor(high, minus),
                            simd::bit_xor(low, minus));
    }
    static int32_t scalar(const double* at, double* y) {
        return at_ends(*at, y, [](double x) {
            return x > 0 ? 0.0 : 2 * double{U.quarter_high} + vecmath::at_run_time(2 * double{U.quarter_low});
        });
    }
};

using AsinLa = Asin<radians, AsinForm::plain>;
using AsinHa = Asin<radians, AsinForm::exact>;
using AsinEp = Asin<radians, AsinForm::rough>;
using AcosLa = Acos<radians, AsinForm::plain>;
using AcosHa = Acos<radians, AsinForm::exact>;
using AcosEp = Acos<radians, AsinForm::rough>;
using AsinpiLa = Asin<half_turns, AsinForm::plain>;
using AsinpiHa = Asin<half_turns, AsinForm::exact>;
using AsinpiEp = Asin<half_turns, AsinForm::rough>;
using AcospiLa = Acos<half_turns, AsinForm::plain>;
using AcospiHa = Acos<half_turns, AsinForm::exact>;
using AcospiEp = Acos<half_turns, AsinForm::rough>;

}  // namespace

ORV_ONE_INPUT(dAsin, la, AsinLa)
ORV_ONE_INPUT(dAsin, ha, AsinHa)
ORV_ONE_INPUT(dAsin, ep, AsinEp)
ORV_ONE_INPUT(dAcos, la, AcosLa)
ORV_ONE_INPUT(dAcos, ha, AcosHa)
ORV_ONE_INPUT(dAcos, ep, AcosEp)
ORV_ONE_INPUT(dAsinpi, la, AsinpiLa)
ORV_ONE_INPUT(dAsinpi, ha, AsinpiHa)
ORV_ONE_INPUT(dAsinpi, ep, AsinpiEp)
ORV_ONE_INPUT(dAcospi, la, AcospiLa)
ORV_ONE_INPUT(dAcospi, ha, AcospiHa)
ORV_ONE_INPUT(dAcospi, ep, AcospiEp)
