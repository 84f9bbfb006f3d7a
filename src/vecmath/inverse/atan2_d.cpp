// dAtan2 and dAtan2pi: the angle of the point (b, a), in radians or in multiples of pi.
//
// "HA" by the rows of atan_d.h (atan2_d.h), the others by one quotient (atan2_light_d.h).
//
// The vector path keeps to exponents within 150 of 0. The scalar path brings others there, if they are not so far apart that the
// angle is the quotient, or a quarter or half turn.
#include "vecmath/inverse/atan2_d.h"
#include "frame/kernel_loops.h"
#include "vecmath/inverse/atan2_light_d.h"

#include <math.h>

namespace {

using namespace orv;
using vecmath::AtanBlock;
using vecmath::turn_half_turns;
using vecmath::turn_radians;
using vecmath::TurnBlock;

template <const AtanBlock& K, const TurnBlock& Turn, __m128d lanes_of(__m128d, __m128d)>
struct Atan2 : frame::Elementwise<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d a, __m128d b) {
        const __m128i a_high = _mm_and_si128(simd::bits_of(a), K.magnitude);
        const __m128i b_high = _mm_and_si128(simd::bits_of(b), K.magnitude);
        const __m128i below = _mm_cmpgt_epi32(Turn.first, _mm_min_epi32(a_high, b_high));
        const __m128i above = _mm_cmpgt_epi32(_mm_max_epi32(a_high, b_high), Turn.last);
        return simd::doubles(_mm_or_si128(below, above));
    }

    static __m128d lanes(__m128d a, __m128d b) { return lanes_of(a, b); }

    static int32_t scalar(const double* a_at, const double* b_at, double* y) {
        const double a = *a_at, b = *b_at;
        if (vecmath::is_nan(a) || vecmath::is_nan(b))
            *y = a + b;
        else
            *y = std::copysign(vecmath::angle<K, Turn, false>(std::fabs(a), std::fabs(b), std::signbit(b)), a);
        return frame::status_ok;
    }
};

using vecmath::atan_half_turns;
using vecmath::atan_radians;
template <__m128d lanes(__m128d, __m128d)>
using Radians = Atan2<atan_radians, turn_radians, lanes>;
template <__m128d lanes(__m128d, __m128d)>
using HalfTurns = Atan2<atan_half_turns, turn_half_turns, lanes>;

using Atan2La = Radians<vecmath::arc_lanes<vecmath::arc_light>>;
using Atan2Ha = Radians<vecmath::atan2_lanes<atan_radians, turn_radians, false>>;
using Atan2Ep = Radians<vecmath::arc_lanes<vecmath::arc_short>>;
using Atan2piLa = HalfTurns<vecmath::arc_lanes<vecmath::arc_light_in_pi>>;
using Atan2piHa = HalfTurns<vecmath::atan2_lanes<atan_half_turns, turn_half_turns, false>>;
using Atan2piEp = HalfTurns<vecmath::arc_lanes<vecmath::arc_short_in_pi>>;

}  // namespace

ORV_TWO_INPUTS(dAtan2, la, Atan2La)
ORV_TWO_INPUTS(dAtan2, ha, Atan2Ha)
ORV_TWO_INPUTS(dAtan2, ep, Atan2Ep)
ORV_TWO_INPUTS(dAtan2pi, la, Atan2piLa)
ORV_TWO_INPUTS(dAtan2pi, ha, Atan2piHa)
ORV_TWO_INPUTS(dAtan2pi, ep, Atan2piEp)
