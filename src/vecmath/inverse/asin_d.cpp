// dAsin, dAcos, dAsinpi and dAcospi: "LA" by asin_light_d.h, "HA" by asin_rows_d.h, "EP" by asin_d.h.
#include "vecmath/inverse/asin_light_d.h"

#include "frame/kernel_loops.h"
#include "vecmath/inverse/atan_d.h"

#include <math.h>

namespace {

using namespace orv;
using vecmath::AngleUnit;
using vecmath::AsinForm;
using vecmath::half_turns;
using vecmath::radians;

constexpr const vecmath::AsinBlock& K = vecmath::asin_block;

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

template <const AngleUnit& U, AsinForm Form>
struct Asin : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        if constexpr (!U.pi) return outside(x);
        // From products_from up to below 1, or 0.
        const __m128i above = _mm_add_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.to_bottom);
        return simd::bit_and_not(simd::equal(x, _mm_setzero_pd()),
                                 simd::doubles(_mm_cmpgt_epi32(above, K.last_from_bottom)));
    }
    static __m128d lanes(__m128d x) { return vecmath::asin_lanes<U, Form>(x); }
    static int32_t scalar(const double* at, double* y) {
        return at_ends(*at, y, [](double x) {
            if (std::fabs(x) == 1)
                return std::copysign(double{U.quarter_high} + vecmath::at_run_time(double{U.quarter_low}), x);
            return std::copysign(vecmath::tiny_over_pi(std::fabs(x)), x);
        });
    }
};

template <const AngleUnit& U, AsinForm Form>
struct Acos : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return outside(x); }
    static __m128d lanes(__m128d x) { return vecmath::acos_lanes<U, Form>(x); }
    static int32_t scalar(const double* at, double* y) {
        return at_ends(*at, y, [](double x) {
            return x > 0 ? 0.0 : 2 * double{U.quarter_high} + vecmath::at_run_time(2 * double{U.quarter_low});
        });
    }
};

template <const AngleUnit& U, const vecmath::AsinLightBlock& Light>
struct LightAsin : Asin<U, AsinForm::exact> {
    static __m128d lanes(__m128d x) { return vecmath::asin_light_lanes<Light>(x); }
};
template <const AngleUnit& U, const vecmath::AsinLightBlock& Light>
struct LightAcos : Acos<U, AsinForm::exact> {
    static __m128d lanes(__m128d x) { return vecmath::acos_light_lanes<Light>(x); }
};

using AsinLa = LightAsin<radians, vecmath::asin_light>;
using AsinHa = Asin<radians, AsinForm::exact>;
using AsinEp = Asin<radians, AsinForm::rough>;
using AcosLa = LightAcos<radians, vecmath::asin_light>;
using AcosHa = Acos<radians, AsinForm::exact>;
using AcosEp = Acos<radians, AsinForm::rough>;
using AsinpiLa = LightAsin<half_turns, vecmath::asinpi_light>;
using AsinpiHa = Asin<half_turns, AsinForm::exact>;
using AsinpiEp = Asin<half_turns, AsinForm::rough>;
using AcospiLa = LightAcos<half_turns, vecmath::asinpi_light>;
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
