// dAsin, dAcos, dAsinpi and dAcospi: "LA" by asin_light_d.h, "HA" by asin_rows_d.h, "EP" by asin_d.h.
#include "vecmath/inverse/asin_d.h"

#include "frame/kernel_loops.h"
#include "vecmath/inverse/atan_d.h"
#include "vecmath/inverse/sine_ends.h"

namespace {

using namespace orv;
using vecmath::AngleUnit;
using vecmath::half_turns;
using vecmath::radians;

struct SineLimits {
    simd::Splat<double> one{1.0}, minus{-0.0};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF};
    simd::SplatBits<uint32_t> last{0x3FEFFFFF};  // of high words of all below 1
    // The least whose products by parts of 1/pi are exact, 2^-900, to the bottom of the signed range, and what becomes of `last`.
    simd::SplatBits<uint32_t> to_bottom{0x80000000 - ((1023 - 900) << 20)},
        last_from_bottom{0x3FEFFFFF + 0x80000000 - ((1023 - 900) << 20)};
};
constexpr SineLimits K;

inline __m128d outside(__m128d x) {
    return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.last));
}
// The same but for 1, by the sign; the difference is one that the vector path forms.
inline __m128d beyond_1(__m128d x) { return K.one + simd::bit_or(x, K.minus); }

// What a vector path leaves to the scalar one.
enum class Doubt { above_1, from_1, from_1_or_tiny };
template <Doubt Which>
inline __m128d doubted(__m128d x) {
    if constexpr (Which == Doubt::above_1) return beyond_1(x);
    if constexpr (Which == Doubt::from_1) return outside(x);
    // From 2^-900 up to below 1, or 0.
    const __m128i above = _mm_add_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.to_bottom);
    return simd::bit_and_not(simd::equal(x, _mm_setzero_pd()),
                             simd::doubles(_mm_cmpgt_epi32(above, K.last_from_bottom)));
}

template <const AngleUnit& U, Doubt Which, __m128d lanes_of(__m128d)>
struct Asin : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return doubted<Which>(x); }
    static __m128d lanes(__m128d x) { return lanes_of(x); }
    static int32_t scalar(const double* at, double* y) {
        return vecmath::sine_at_ends(*at, y, [](double x) {
            if (std::fabs(x) == 1)
                return std::copysign(double{U.quarter_high} + vecmath::at_run_time(double{U.quarter_low}), x);
            return std::copysign(vecmath::tiny_over_pi(std::fabs(x)), x);
        });
    }
};

template <const AngleUnit& U, Doubt Which, __m128d lanes_of(__m128d)>
struct Acos : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return doubted<Which>(x); }
    static __m128d lanes(__m128d x) { return lanes_of(x); }
    static int32_t scalar(const double* at, double* y) {
        return vecmath::sine_at_ends(*at, y, [](double x) {
            return x > 0 ? 0.0 : 2 * double{U.quarter_high} + vecmath::at_run_time(2 * double{U.quarter_low});
        });
    }
};

using enum Doubt;
using AsinLa = Asin<radians, above_1, vecmath::asin_light_lanes<vecmath::asin_light>>;
using AsinHa = Asin<radians, from_1, vecmath::asin_by_rows<vecmath::sine_rows_radians>>;
using AsinEp = Asin<radians, above_1, vecmath::asin_short_lanes<radians, vecmath::asin_short>>;
using AcosLa = Acos<radians, above_1, vecmath::acos_light_lanes<vecmath::asin_light>>;
using AcosHa = Acos<radians, from_1, vecmath::acos_by_rows<vecmath::sine_rows_radians>>;
using AcosEp = Acos<radians, above_1, vecmath::acos_short_lanes<radians, vecmath::asin_short>>;
using AsinpiLa = Asin<half_turns, from_1_or_tiny, vecmath::asin_light_lanes<vecmath::asinpi_light>>;
using AsinpiHa = Asin<half_turns, from_1_or_tiny, vecmath::asin_by_rows<vecmath::sine_rows_half_turns>>;
using AsinpiEp = Asin<half_turns, from_1_or_tiny, vecmath::asin_short_lanes<half_turns, vecmath::asinpi_short>>;
using AcospiLa = Acos<half_turns, above_1, vecmath::acos_light_lanes<vecmath::asinpi_light>>;
using AcospiHa = Acos<half_turns, from_1, vecmath::acos_by_rows<vecmath::sine_rows_half_turns>>;
using AcospiEp = Acos<half_turns, above_1, vecmath::acos_short_lanes<half_turns, vecmath::asinpi_short>>;

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
