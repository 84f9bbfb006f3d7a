// Fmod, Remainder: x - q y with q the quotient cut to an integer, or rounded to the nearest one, ties to even. Exact for every
// pair of exponents. (C99 7.12.10.)
//
// The division is rounded, so q can be off by one: of a cut quotient by one too many, which shows as a negative remainder;
// of one to nearest where the remainder is more than half of y. A tie comes out even, since an exact half is an exact
// quotient. x - q y is exact with q y in two parts, while q has 52 bits: with the 26 leading bits of each factor apart, all four
// products are exact, and so are the differences in order of size. Floats are taken in double, where q y is one product while
// q has 29 bits.
//
// Where the quotient is larger, x is first reduced modulo y 2^k with k falling by 50. Denormals are numbers in every mode.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

#include <cmath>

namespace {

using namespace orv;

enum class Quotient { cut, nearest };

inline __m128d leading(__m128d x) {
    static constexpr simd::SplatBits<uint64_t> keep_26{~uint64_t{0} << 27};
    return simd::doubles(simd::bit_and(simd::bits_of(x), keep_26));
}

template <Quotient How>
inline __m128d integer_quotient(__m128d x, __m128d y) {
    if constexpr (How == Quotient::cut)
        return simd::round<_MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC>(x / y);
    else
        return simd::round<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(x / y);
}

// With q corrected where it was off by one.
template <Quotient How>
inline __m128d corrected(__m128d r, __m128d y) {
    if constexpr (How == Quotient::cut) {
        return r + simd::bit_and(simd::less(r, __m128d{}), y);
    } else {
        const __m128d size = simd::magnitude(r);
        return r - simd::bit_and(simd::less(y - size, size), simd::bit_or(y, simd::sign_of(r)));
    }
}

// x and y positive, x / y below 2^52.
template <Quotient How>
inline __m128d reduced(__m128d x, __m128d y) {
    const __m128d q = integer_quotient<How>(x, y);
    const __m128d product = q * y;
    const __m128d q_high = leading(q), y_high = leading(y);
    const __m128d q_low = q - q_high, y_low = y - y_high;
    const __m128d over = (((product - q_high * y_high) - q_high * y_low) - q_low * y_high) - q_low * y_low;
    return corrected<How>((x - product) + over, y);
}

// The exponent of a positive number.
inline int exponent_of(double x) {
    if (x < std::numeric_limits<double>::min()) return exponent_of(x * 0x1p+54) - 54;
    return static_cast<int>(vecmath::high_word(x) >> 20) - 1023;
}

// y 2^k for a product in range and k from 0 on.
inline double raised(double y, int k) {
    for (; k > 1000; k -= 1000) y *= 0x1p+1000;
    return y * vecmath::power_of_two_d(k);
}

template <class T, Quotient How>
int32_t scalar_remainder(T a, T b, T* y) {
    if (vecmath::is_nan(a) || vecmath::is_nan(b)) {
        *y = a * vecmath::at_run_time(b);
        return frame::status_ok;
    }
    if (b == 0 || !vecmath::is_finite(a)) {
        *y = vecmath::invalid<T>();
        return frame::status_domain;
    }
    if (!vecmath::is_finite(b) || a == 0) {
        *y = a;
        return frame::status_ok;
    }
    const double modulus = std::abs(static_cast<double>(b));
    __m128d x = simd::splat(std::abs(static_cast<double>(a)));
    for (int k = exponent_of(simd::first_lane(x)) - exponent_of(modulus) - 50; k > 0; k -= 50)
        x = reduced<Quotient::cut>(x, simd::splat(raised(modulus, k)));
    const T r = static_cast<T>(simd::first_lane(reduced<How>(x, simd::splat(modulus))));
    *y = std::signbit(a) ? -r : r;
    return frame::status_ok;
}

// In doubt, by the bits of floats or the upper words of doubles: infinities and NaNs, a divisor that is not normal, and a
// quotient that may reach 2^Bits.
template <int Bits, class V>
inline __m128i beyond(V a, V b, uint32_t least_normal, int32_t largest) {
    const __m128i x = simd::bits_of(simd::magnitude(a)), y = simd::bits_of(simd::magnitude(b));
    const __m128i far = simd::greater_32(simd::subtract_32(x, y), simd::splat_32(Bits * least_normal - 1));
    return simd::bit_or(simd::bit_or(simd::greater_32(simd::greatest_32(x, y), simd::splat_32(largest)), far),
                        simd::greater_32(simd::splat_32(least_normal), y));
}

template <Quotient How>
struct RemainderD : frame::Elementwise<double, 4, frame::Tail::masked> {
    using Frame = frame::DenormalsFrame;
    static __m128d doubt(__m128d a, __m128d b) { return simd::doubles(beyond<52>(a, b, 0x00100000, 0x7FEFFFFF)); }
    static __m128d lanes(__m128d a, __m128d b) {
        return simd::bit_xor(reduced<How>(simd::magnitude(a), simd::magnitude(b)), simd::sign_of(a));
    }
    static int32_t scalar(const double* a, const double* b, double* y) {
        return scalar_remainder<double, How>(*a, *b, y);
    }
};

template <Quotient How>
struct RemainderS : frame::Elementwise<float, 4, frame::Tail::masked> {
    using Frame = frame::DenormalsFrame;
    static __m128 doubt(__m128 a, __m128 b) { return simd::floats(beyond<29>(a, b, 0x00800000, 0x7F7FFFFF)); }
    static __m128 lanes(__m128 a, __m128 b) {
        const __m128 x = simd::magnitude(a), y = simd::magnitude(b);
        const auto reduced_in_double = [](__m128d u, __m128d v) {
            return corrected<How>(u - integer_quotient<How>(u, v) * v, v);
        };
        const __m128 r = simd::narrow(reduced_in_double(simd::widen_low(x), simd::widen_low(y)),
                                      reduced_in_double(simd::widen_high(x), simd::widen_high(y)));
        return simd::bit_xor(r, simd::sign_of(a));
    }
    static int32_t scalar(const float* a, const float* b, float* y) { return scalar_remainder<float, How>(*a, *b, y); }
};

}  // namespace

ORV_TWO_INPUTS(sFmod, la, RemainderS<Quotient::cut>)
ORV_TWO_INPUTS(dFmod, la, RemainderD<Quotient::cut>)
ORV_TWO_INPUTS(sRemainder, la, RemainderS<Quotient::nearest>)
ORV_TWO_INPUTS(dRemainder, la, RemainderD<Quotient::nearest>)
