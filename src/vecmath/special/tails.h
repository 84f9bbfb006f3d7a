// erfc and the cumulative normal distribution: e^(-z) F(|x|), z = x^2 or x^2 / 2, on the side where they fall, and 2 or 1 less
// that on the other. F is expanded in |x| + 1.
//
// x^2 is formed in two parts, the first exact. Results below 2^-960 or so, and what is not finite, go one by one.
#pragma once

#include "vecmath/special/decay.h"

namespace orv::vecmath {

// The rests and the leading parts of c0 and c1, c2 to c7.
using TailRow = double[10];

struct ErfcTail {
    static constexpr int sign = 1;  // falls for x of this sign
    static constexpr double half = 1.0, whole = 2.0, last_vector = 26.0, beyond_zero = 28.0;
    alignas(16) static constexpr TailRow rows[5 * 64 + 1] = {
#include "vecmath/tables/erfcx.inc"
    };
    alignas(16) static constexpr ShortRow short_rows[160] = {
#include "vecmath/tables/erfcx_short.inc"
    };
};
struct NormalTail {
    static constexpr int sign = -1;
    static constexpr double half = 0.5, whole = 1.0, last_vector = 37.0, beyond_zero = 39.0;
    alignas(16) static constexpr TailRow rows[6 * 64 + 1] = {
#include "vecmath/tables/cdf_norm_scaled.inc"
    };
    alignas(16) static constexpr ShortRow short_rows[192] = {
#include "vecmath/tables/cdf_norm_scaled_short.inc"
    };
};

struct TailPlace {
    simd::SplatBits<uint64_t> half_step{uint64_t{1} << 45}, step{~uint64_t{0} << 46};
};
inline constexpr TailPlace tail_place;

template <class Tail>
inline Expanded tail_expansion(__m128d magnitude) {
    constexpr const auto& K = tail_place;
    constexpr uint32_t first = uint32_t{1023} << 6;
    const __m128d one = simd::splat(1.0);
    const __m128i t = _mm_and_si128(_mm_add_epi64(simd::bits_of(magnitude + one), K.half_step), K.step);
    const __m128d d = magnitude - (simd::doubles(t) - one), square = d * d;
    const simd::Indices<2> at(_mm_srli_epi64(t, 46));
    const double *row0 = Tail::rows[at.lane[0] - first], *row1 = Tail::rows[at.lane[1] - first];
    const auto pair = [&](int k, __m128d& a, __m128d& b) {
        const __m128d from0 = _mm_load_pd(row0 + k), from1 = _mm_load_pd(row1 + k);
        a = _mm_unpacklo_pd(from0, from1);
        b = _mm_unpackhi_pd(from0, from1);
    };
    __m128d low0, high0, low1, high1, c2, c3, c4, c5, c6, c7;
    pair(8, c6, c7);
    pair(6, c4, c5);
    pair(4, c2, c3);
    pair(2, low1, high1);
    pair(0, low0, high0);
    const __m128d rest = (c2 + c3 * d) + square * ((c4 + c5 * d) + square * (c6 + c7 * d));
    return {high0, low0 + d * (high1 + (low1 + d * rest))};
}

// F(|x|) e^(-z).
template <class Tail>
inline Decayed falling(__m128d magnitude) {
    const __m128d half = simd::splat(Tail::half);
    const Expanded f = tail_expansion<Tail>(magnitude);
    const __m128d leading = upper_26(magnitude);
    const __m128d z_low = (magnitude - leading) * (magnitude + leading);
    return decay(leading * leading * half, z_low * half, f);
}
// The same in one part, with so many pairs of coefficients.
template <class Tail, int Pairs>
inline __m128d short_falling(__m128d magnitude) {
    const __m128d one = simd::splat(1.0);
    const __m128d t = magnitude + one;
    const __m128d f = expand_short<0, Pairs>(Tail::short_rows, t, magnitude - (expansion_centre(t) - one));
    __m128d z = magnitude * magnitude;
    if constexpr (Tail::half != 1.0) z = z * simd::splat(Tail::half);
    return short_decay(z, f);
}

// The signs of x, turned about where the function falls to the left: set on the side that rises to `whole`.
template <class Tail>
inline __m128d rising_side(__m128d x) {
    return Tail::sign > 0 ? x : simd::bit_xor(x, simd::splat(-0.0));
}

// In parts the result is rounded once. The short form, of six coefficients, is for floats.
enum class TailForm { in_parts, short_six };

template <class Tail, TailForm Form>
inline __m128d tail_lanes(__m128d x) {
    const __m128d magnitude = simd::least(simd::magnitude(x), simd::splat(Tail::last_vector));
    const __m128d turned = simd::sign_of(rising_side<Tail>(x));
    const __m128d base = simd::select_by_sign(turned, simd::splat(Tail::whole), _mm_setzero_pd());
    if constexpr (Form == TailForm::short_six) {
        return base + simd::bit_or(short_falling<Tail, 3>(magnitude), turned);
    } else {
        const Decayed y = falling<Tail>(magnitude);
        const __m128d scale = simd::bit_or(decay_scale(y.shifted), turned);
        const __m128d high = y.high * scale;
        const __m128d sum = base + high;
        return sum + (((base - sum) + high) + y.low * scale);
    }
}

// Any element; results on the falling side are rounded once.
template <class Tail, class T>
inline int32_t tail_scalar(T x, T* y) {
    if (is_nan(x)) {
        *y = quiet(x);
        return frame::status_ok;
    }
    const double d = x;
    if ((Tail::sign > 0) == (d < 0)) {
        *y = static_cast<T>(_mm_cvtsd_f64(tail_lanes<Tail, TailForm::in_parts>(simd::splat(d))));
        return frame::status_ok;
    }
    if (!is_finite(x)) {
        *y = T{0};
        return frame::status_ok;
    }
    const double magnitude = __builtin_fabs(d);
    *y = rounded_once<T>(falling<Tail>(simd::splat(magnitude < Tail::beyond_zero ? magnitude : Tail::beyond_zero)));
    return *y < std::numeric_limits<T>::min() ? frame::status_underflow : frame::status_ok;
}

}  // namespace orv::vecmath
