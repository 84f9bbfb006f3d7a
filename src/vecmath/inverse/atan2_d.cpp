// dAtan2 and dAtan2pi: the angle of the point (b, a), in radians or in multiples of pi.
//
// By the rows of atan_d.h (atan2_d.h). "EP" has one part of everything.
//
// The vector path keeps to exponents within 150 of 0. The scalar path brings others there, if they are not so far apart that the
// angle is the quotient, or a quarter or half turn.
#include "vecmath/inverse/atan2_d.h"
#include "frame/kernel_loops.h"

#include <math.h>

#include <algorithm>

namespace {

using namespace orv;
using vecmath::AtanBlock;
using vecmath::turn_half_turns;
using vecmath::turn_radians;
using vecmath::TurnBlock;

template <const AtanBlock& K, const TurnBlock& Turn, bool Short>
struct Atan2 : frame::Elementwise<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d a, __m128d b) {
        const __m128i a_high = _mm_and_si128(simd::bits_of(a), K.magnitude);
        const __m128i b_high = _mm_and_si128(simd::bits_of(b), K.magnitude);
        const __m128i below = _mm_cmpgt_epi32(Turn.first, _mm_min_epi32(a_high, b_high));
        const __m128i above = _mm_cmpgt_epi32(_mm_max_epi32(a_high, b_high), Turn.last);
        return simd::doubles(_mm_or_si128(below, above));
    }

    static __m128d lanes(__m128d a, __m128d b) { return vecmath::atan2_lanes<K, Turn, Short>(a, b); }

    // eighths / 8 of half a turn.
    static double part_of_turn(int eighths) {
        const double part = eighths * 0.125;
        return part * double{Turn.half_high} + vecmath::at_run_time(part * double{Turn.half_low});
    }

    static int32_t scalar(const double* a_at, const double* b_at, double* y) {
        const double a = *a_at, b = *b_at;
        if (vecmath::is_nan(a) || vecmath::is_nan(b))
            *y = a + b;
        else
            *y = std::copysign(angle(std::fabs(a), std::fabs(b), std::signbit(b)), a);
        return frame::status_ok;
    }

    static double angle(double a, double b, bool minus) {
        const double infinity = std::numeric_limits<double>::infinity();
        if (a == infinity) return part_of_turn(b != infinity ? 4 : minus ? 6 : 2);
        if (a == 0 || b == infinity) return minus ? part_of_turn(8) : 0.0;
        if (b == 0) return part_of_turn(4);
        int a_exponent, b_exponent;
        const double a_part = std::frexp(a, &a_exponent), b_part = std::frexp(b, &b_exponent);
        const int apart = a_exponent - b_exponent;
        if (apart > 70) return part_of_turn(4);
        if (apart < -70) return minus ? part_of_turn(8) : quotient(a_part, b_part, apart);
        const double sign = minus ? -1.0 : 1.0;
        return _mm_cvtsd_f64(lanes(simd::splat(std::ldexp(a_part, apart)), simd::splat(b_part * sign)));
    }

    // 2^n a / b, over pi where that is the unit, rounded once, of a and b in [1/2, 1).
    static double quotient(double a, double b, int n) {
        if constexpr (!K.in_pi) {
            n = std::max(n, -1100);
            const int top = std::max(n, -1000);
            return std::ldexp(a, top) / std::ldexp(b, top - n);
        } else {
            const double q = a / b, q_high = upper_half(q), b_high = upper_half(b);
            const double left = ((a - q_high * b_high) - q_high * (b - b_high)) / b;
            return vecmath::scaled_sum(4 * q_high * double{K.inv_pi_high},
                                       4 * (left * double{K.inv_pi} + q_high * double{K.inv_pi_low}),
                                       std::max(n, -1080) - 2);
        }
    }
    static double upper_half(double x) { return std::bit_cast<double>(std::bit_cast<uint64_t>(x) & K.upper.lanes[0]); }
};

using Atan2Ha = Atan2<vecmath::atan_radians, turn_radians, false>;
using Atan2Ep = Atan2<vecmath::atan_radians, turn_radians, true>;
using Atan2piHa = Atan2<vecmath::atan_half_turns, turn_half_turns, false>;
using Atan2piEp = Atan2<vecmath::atan_half_turns, turn_half_turns, true>;

}  // namespace

ORV_TWO_INPUTS(dAtan2, la, Atan2Ha)
ORV_TWO_INPUTS(dAtan2, ha, Atan2Ha)
ORV_TWO_INPUTS(dAtan2, ep, Atan2Ep)
ORV_TWO_INPUTS(dAtan2pi, la, Atan2piHa)
ORV_TWO_INPUTS(dAtan2pi, ha, Atan2piHa)
ORV_TWO_INPUTS(dAtan2pi, ep, Atan2piEp)
