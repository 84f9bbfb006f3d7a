// sAsin, sAcos, sAtan and their forms in multiples of pi, sAtan2 and sAtan2pi: by the double kernels' lanes in one part
// (asin_d.h, atan_d.h, atan2_d.h). "LA" and "EP" have lanes in float (inverse_float_s.cpp) and all else from here.
#pragma once

#include "vecmath/exp_log/special.h"
#include "vecmath/inverse/asin_d.h"
#include "vecmath/inverse/atan2_d.h"
#include "vecmath/inverse/by_double.h"

#include <math.h>

namespace orv::vecmath::float_by_double {

inline constexpr uint32_t below_one = 0x3F7FFFFF;

// What asin and acos do beyond their vector paths: end(x) for |x| = 1.
template <class End>
int32_t at_ends(float x, float* y, End end) {
    if (is_nan(x)) {
        *y = quiet(x);
        return frame::status_ok;
    }
    if (std::fabs(x) > 1) {
        *y = invalid<float>();
        return frame::status_domain;
    }
    *y = static_cast<float>(at_run_time(end(x)));
    return frame::status_ok;
}

template <const AngleUnit& U>
struct Asin : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return magnitude_beyond(x, below_one); }
    static __m128 lanes(__m128 x) {
        return by_double(x, [](__m128d v) { return asin_lanes<U, AsinForm::rough>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        return at_ends(*at, y, [](float x) { return std::copysign(double{U.quarter_high}, x); });
    }
};

template <const AngleUnit& U>
struct Acos : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return magnitude_beyond(x, below_one); }
    static __m128 lanes(__m128 x) {
        return by_double(x, [](__m128d v) { return acos_lanes<U, AsinForm::rough>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        return at_ends(*at, y, [](float x) { return x > 0 ? 0.0 : 2 * double{U.quarter_high}; });
    }
};

template <const AtanBlock& K>
struct Atan : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return simd::not_finite(x); }
    static __m128 lanes(__m128 x) {
        return by_double(x, [](__m128d v) { return atan_lanes<K, true>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        const double quarter_turn = at_run_time(K.rows[atan_last_row][1]);
        *y = is_nan(*at) ? quiet(*at) : static_cast<float>(std::copysign(quarter_turn, *at));
        return frame::status_ok;
    }
};

template <const AtanBlock& K, const TurnBlock& Turn>
struct Atan2 : frame::Elementwise<float, 4, frame::Tail::masked> {
    // In doubt are zeros, infinities and NaNs.
    static __m128 doubt(__m128 a, __m128 b) {
        const __m128 zero = _mm_setzero_ps();
        return simd::bit_or(simd::bit_or(simd::not_finite(a), simd::not_finite(b)),
                            simd::bit_or(simd::equal(a, zero), simd::equal(b, zero)));
    }
    static __m128 lanes(__m128 a, __m128 b) {
        return by_double(a, b, [](__m128d y, __m128d x) { return atan2_lanes<K, Turn, true>(y, x); });
    }
    static int32_t scalar(const float* a_at, const float* b_at, float* y) {
        const float a = *a_at, b = *b_at;
        if (is_nan(a) || is_nan(b)) {
            *y = a + b;
            return frame::status_ok;
        }
        const float infinity = std::numeric_limits<float>::infinity();
        const float size = std::fabs(a), across = std::fabs(b);
        int eighths = 0;  // of half a turn
        if (size == infinity)
            eighths = across != infinity ? 4 : std::signbit(b) ? 6 : 2;
        else if (size == 0 || across == infinity)
            eighths = std::signbit(b) ? 8 : 0;
        else
            eighths = 4;
        const double part = at_run_time(eighths * 0.125 * double{Turn.half_high});
        *y = std::copysign(static_cast<float>(part), a);
        return frame::status_ok;
    }
};

}  // namespace orv::vecmath::float_by_double
