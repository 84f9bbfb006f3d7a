// sAsin, sAcos, sAtan and their forms in multiples of pi, sAtan2 and sAtan2pi: by the double kernels' lanes in one part
// (asin_d.h, atan_d.h, atan2_d.h), all accuracies alike.
#include "vecmath/exp_log/special.h"
#include "vecmath/inverse/asin_d.h"
#include "vecmath/inverse/atan2_d.h"
#include "vecmath/inverse/by_double.h"

#include <math.h>

namespace {

using namespace orv;
using vecmath::AngleUnit;
using vecmath::AsinForm;
using vecmath::AtanBlock;
using vecmath::TurnBlock;

constexpr uint32_t below_one = 0x3F7FFFFF;

// What asin and acos do beyond their vector paths: end(x) for |x| = 1.
template <class End>
int32_t at_ends(float x, float* y, End end) {
    if (vecmath::is_nan(x)) {
        *y = vecmath::quiet(x);
        return frame::status_ok;
    }
    if (std::fabs(x) > 1) {
        *y = vecmath::invalid<float>();
        return frame::status_domain;
    }
    *y = static_cast<float>(vecmath::at_run_time(end(x)));
    return frame::status_ok;
}

template <const AngleUnit& U>
struct Asin : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::magnitude_beyond(x, below_one); }
    static __m128 lanes(__m128 x) {
        return vecmath::by_double(x, [](__m128d v) { return vecmath::asin_lanes<U, AsinForm::rough>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        return at_ends(*at, y, [](float x) { return std::copysign(double{U.quarter_high}, x); });
    }
};

template <const AngleUnit& U>
struct Acos : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::magnitude_beyond(x, below_one); }
    static __m128 lanes(__m128 x) {
        return vecmath::by_double(x, [](__m128d v) { return vecmath::acos_lanes<U, AsinForm::rough>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        return at_ends(*at, y, [](float x) { return x > 0 ? 0.0 : 2 * double{U.quarter_high}; });
    }
};

template <const AtanBlock& K>
struct Atan : frame::OneInput<float, 4, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return simd::not_finite(x); }
    static __m128 lanes(__m128 x) {
        return vecmath::by_double(x, [](__m128d v) { return vecmath::atan_lanes<K, true>(v); });
    }
    static int32_t scalar(const float* at, float* y) {
        const double quarter_turn = vecmath::at_run_time(K.rows[vecmath::atan_last_row][1]);
        *y = vecmath::is_nan(*at) ? vecmath::quiet(*at) : static_cast<float>(std::copysign(quarter_turn, *at));
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
        return vecmath::by_double(a, b, [](__m128d y, __m128d x) { return vecmath::atan2_lanes<K, Turn, true>(y, x); });
    }
    static int32_t scalar(const float* a_at, const float* b_at, float* y) {
        const float a = *a_at, b = *b_at;
        if (vecmath::is_nan(a) || vecmath::is_nan(b)) {
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
        const double part = vecmath::at_run_time(eighths * 0.125 * double{Turn.half_high});
        *y = std::copysign(static_cast<float>(part), a);
        return frame::status_ok;
    }
};

using SAsin = Asin<vecmath::radians>;
using SAcos = Acos<vecmath::radians>;
using SAsinpi = Asin<vecmath::half_turns>;
using SAcospi = Acos<vecmath::half_turns>;
using SAtan = Atan<vecmath::atan_radians>;
using SAtanpi = Atan<vecmath::atan_half_turns>;
using SAtan2 = Atan2<vecmath::atan_radians, vecmath::turn_radians>;
using SAtan2pi = Atan2<vecmath::atan_half_turns, vecmath::turn_half_turns>;

}  // namespace

#define EACH_ACCURACY(shape, row, Kernel) shape(row, la, Kernel) shape(row, ha, Kernel) shape(row, ep, Kernel)
EACH_ACCURACY(ORV_ONE_INPUT, sAsin, SAsin)
EACH_ACCURACY(ORV_ONE_INPUT, sAcos, SAcos)
EACH_ACCURACY(ORV_ONE_INPUT, sAsinpi, SAsinpi)
EACH_ACCURACY(ORV_ONE_INPUT, sAcospi, SAcospi)
EACH_ACCURACY(ORV_ONE_INPUT, sAtan, SAtan)
EACH_ACCURACY(ORV_ONE_INPUT, sAtanpi, SAtanpi)
EACH_ACCURACY(ORV_TWO_INPUTS, sAtan2, SAtan2)
EACH_ACCURACY(ORV_TWO_INPUTS, sAtan2pi, SAtan2pi)
