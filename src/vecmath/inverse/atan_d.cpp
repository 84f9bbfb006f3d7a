// dAtan and dAtanpi, by rows (atan_d.h). "EP" leaves out the low parts and takes a shorter polynomial.
#include "vecmath/inverse/atan_d.h"

#include "frame/kernel_loops.h"

#include <math.h>

namespace {

using namespace orv;
using vecmath::atan_half_turns;
using vecmath::atan_radians;
using vecmath::AtanBlock;

template <const AtanBlock& K, bool Short, bool OnePart = false>
struct Atan : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        const __m128i high = _mm_and_si128(simd::bits_of(x), K.magnitude);
        if constexpr (!K.in_pi) return simd::doubles(_mm_cmpgt_epi32(high, K.greatest));
        // From 2^-900 up to the greatest number, or 0.
        const __m128d outside =
            simd::doubles(_mm_cmpgt_epi32(_mm_add_epi32(high, K.to_bottom), K.greatest_from_bottom));
        return simd::bit_and_not(simd::equal(x, _mm_setzero_pd()), outside);
    }

    static __m128d lanes(__m128d x) { return vecmath::atan_lanes<K, Short, OnePart>(x); }

    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        const double* last = K.rows[vecmath::atan_last_row];
        if (vecmath::is_nan(x))
            *y = vecmath::quiet(x);
        else if (vecmath::is_finite(x))
            *y = std::copysign(vecmath::tiny_over_pi(std::fabs(x)), x);
        else
            *y = std::copysign(last[1] + vecmath::at_run_time(last[2]), x);
        return frame::status_ok;
    }
};

using AtanHa = Atan<atan_radians, false>;
using AtanEp = Atan<atan_radians, true>;
using AtanpiLa = Atan<atan_half_turns, false, true>;
using AtanpiHa = Atan<atan_half_turns, false>;
using AtanpiEp = Atan<atan_half_turns, true>;

}  // namespace

ORV_ONE_INPUT(dAtan, la, AtanHa)
ORV_ONE_INPUT(dAtan, ep, AtanEp)
ORV_ONE_INPUT(dAtanpi, la, AtanpiLa)
ORV_ONE_INPUT(dAtanpi, ha, AtanpiHa)
ORV_ONE_INPUT(dAtanpi, ep, AtanpiEp)
