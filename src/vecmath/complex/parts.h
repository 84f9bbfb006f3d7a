// What the kernels of complex functions share: tests of both parts at once, floats by way of double, exact sums and products
// in two doubles, and the scalar paths' ways.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/trig/steps_d.h"

namespace orv::vecmath {

using ComplexD = simd::Complex<double>;
using ComplexS = simd::Complex<float>;

// ---- Tests -------------------------------------------------------------------------------------------------------------

// The upper words of two elements without sign: both real parts, both imaginary parts.
inline __m128i high_words(ComplexD z) {
    return simd::bit_and(simd::odd_words(simd::bits_of(z.re), simd::bits_of(z.im)), simd::splat_32(0x7FFFFFFF));
}
// The same, with a digit set where the lower word has any: zero for zeros alone.
inline __m128i nonzero_high_words(ComplexD z) {
    const __m128i low = simd::even_words(simd::bits_of(z.re), simd::bits_of(z.im));
    return simd::bit_or(high_words(z), simd::least_unsigned_32(low, simd::splat_32(1)));
}
// A mask of elements from one of their parts: set where either part's word is.
inline __m128d either_part(__m128i words) {
    return simd::doubles(simd::bit_or(simd::shuffle_32<0, 0, 1, 1>(words), simd::shuffle_32<2, 2, 3, 3>(words)));
}

// In doubt where a part reaches `End`, given by its upper word. Infinities and NaNs are the largest.
template <uint32_t End, class... Z>
inline __m128d any_part_from(ComplexD z, Z... more) {
    __m128i largest = high_words(z);
    ((largest = simd::greatest_32(largest, high_words(more))), ...);
    return either_part(simd::greater_32(largest, simd::splat_32(End - 1)));
}
// The same of floats, given by their bits.
template <uint32_t End, class... Z>
inline __m128 any_part_from(ComplexS z, Z... more) {
    const __m128i magnitude = simd::splat_32(0x7FFFFFFF);
    const auto larger = [=](ComplexS x) {
        return simd::greatest_32(simd::bit_and(simd::bits_of(x.re), magnitude),
                                 simd::bit_and(simd::bits_of(x.im), magnitude));
    };
    __m128i largest = larger(z);
    ((largest = simd::greatest_32(largest, larger(more))), ...);
    return simd::floats(simd::greater_32(largest, simd::splat_32(End - 1)));
}
inline constexpr uint32_t infinity_s = 0x7F800000, infinity_d = 0x7FF00000;

// In doubt where a part lies outside [First, End), given by upper words; zeros lie outside.
template <uint32_t First, uint32_t End>
inline __m128d any_part_beyond(ComplexD z) {
    constexpr uint32_t bottom = First + 0x80000000u;
    return either_part(
        simd::greater_32(simd::subtract_32(high_words(z), simd::splat_32(bottom)), simd::splat_32(End - bottom - 1)));
}
// In doubt where a part that is not zero lies outside [First, End), given by upper words.
template <uint32_t First, uint32_t End, class... Z>
inline __m128d any_part_outside(ComplexD z, Z... more) {
    __m128i largest = nonzero_high_words(z);
    // Zero becomes the largest of the signed words, and what is just above it the smallest.
    const __m128i below_zero = simd::splat_32(0x7FFFFFFF);
    __m128i smallest = simd::add_32(largest, below_zero);
    [[maybe_unused]] const auto take = [&](__m128i words) {
        largest = simd::greatest_32(largest, words);
        smallest = simd::least_32(smallest, simd::add_32(words, below_zero));
    };
    (take(nonzero_high_words(more)), ...);
    return either_part(simd::bit_or(simd::greater_32(largest, simd::splat_32(End - 1)),
                                    simd::greater_32(simd::splat_32(First + 0x7FFFFFFFu), smallest)));
}

inline __m128d both_zero(ComplexD z) {
    return simd::bit_and(simd::equal(z.re, __m128d{}), simd::equal(z.im, __m128d{}));
}
inline __m128 both_zero(ComplexS z) { return simd::bit_and(simd::equal(z.re, __m128{}), simd::equal(z.im, __m128{})); }

inline orv_complex_d widened(orv_complex_d z) { return z; }
inline orv_complex_d widened(orv_complex_s z) { return {z.re, z.im}; }

template <class Z>
inline bool any_nan(const Z& z) {
    return is_nan(z.re) || is_nan(z.im);
}
template <class Z>
inline bool both_nan(const Z& z) {
    return is_nan(z.re) && is_nan(z.im);
}
template <class Z>
inline bool all_finite(const Z& z) {
    return is_finite(z.re) && is_finite(z.im);
}

// ---- Floats by way of double -------------------------------------------------------------------------------------------

inline ComplexD widen_low(ComplexS z) { return {simd::widen_low(z.re), simd::widen_low(z.im)}; }
inline ComplexD widen_high(ComplexS z) { return {simd::widen_high(z.re), simd::widen_high(z.im)}; }

// Each half of the registers through f, and rounded once.
template <class F, class... Z>
inline ComplexS by_double(F f, Z... z) {
    const ComplexD low = f(widen_low(z)...), high = f(widen_high(z)...);
    return {simd::narrow(low.re, high.re), simd::narrow(low.im, high.im)};
}

// ---- Two doubles for one number ----------------------------------------------------------------------------------------

// x in two parts of 26 bits, whose products are exact: the upper one is x rounded.
struct Halves {
    D high, low;
};
inline Halves halves_of(D x) {
    constexpr simd::SplatBits<uint64_t> half{uint64_t{1} << 26}, upper{~uint64_t{0} << 27};
    const D high = simd::doubles(simd::bit_and(simd::add(simd::bits_of(x), half), upper));
    return {high, x - high};
}

// All digits of a product, while it stays above 2^-960 and below 2^1000 (T. J. Dekker, 1971).
inline Pair exact_product(D a, const Halves& a2, D b, const Halves& b2) {
    const D p = a * b;
    return {p, (((a2.high * b2.high - p) + a2.high * b2.low) + a2.low * b2.high) + a2.low * b2.low};
}
inline Pair exact_square(D a) {
    const Halves h = halves_of(a);
    const D p = a * a;
    const D cross = h.high * h.low;
    return {p, ((h.high * h.high - p) + (cross + cross)) + h.low * h.low};
}
// A pair as the nearest double and the rest, the high part being the larger; and a product of two such, rounded.
inline Pair normal(Pair x) { return sum(x.high, x.low); }
inline D rounded_product(Pair a, Pair b) {
    const D a1 = upper_26(a.high), b1 = upper_26(b.high);
    const D cross = a1 * (b.high - b1) + (a.high - a1) * b.high;
    return a1 * b1 + (cross + (a.high * b.low + a.low * b.high));
}

// ---- Scalar paths ------------------------------------------------------------------------------------------------------

// What is worked out while this lives raises nothing.
struct QuietFlags {
    uint32_t saved = frame::read_mxcsr();
    ~QuietFlags() { frame::write_mxcsr(saved); }
    QuietFlags() = default;
    QuietFlags(const QuietFlags&) = delete;
    QuietFlags& operator=(const QuietFlags&) = delete;
};

// The x87 unit at 64 significant bits and silent while this lives: its range holds every product of doubles, and its digits
// leave one rounding.
struct WideArithmetic {
    uint32_t environment[7];
    WideArithmetic() {
        const uint16_t control = 0x037F;
        __asm__ volatile("fnstenv %0\n\tfldcw %1" : "=m"(environment) : "m"(control) : "memory");
    }
    ~WideArithmetic() { __asm__ volatile("fldenv %0" : : "m"(environment) : "memory"); }
    WideArithmetic(const WideArithmetic&) = delete;
    WideArithmetic& operator=(const WideArithmetic&) = delete;
};

// x rounded to T, overflow raised where it belongs.
template <class T>
inline T narrowed(long double x) {
    const T y = static_cast<T>(x);
    return is_finite(y) || x != x || __builtin_isinf(x) ? y : __builtin_copysign(T{1}, y) * overflow<T>();
}

// Parts that are not finite or zero, put in place. Where a NaN comes of no NaN, that is raised.
template <class Z>
inline void put_special(orv_complex_d from, bool from_nan, Z* y) {
    using T = decltype(y->re);
    *y = {static_cast<T>(from.re), static_cast<T>(from.im)};
    if (!from_nan && any_nan(from)) {
        const volatile T raised = invalid<T>();
        (void)raised;
    }
}

// The scalar path of floats by that of doubles: a part of finite arguments that is no finite float has overflowed.
template <auto scalar, class X, class Y>
inline int32_t scalar_by_double(const X* at, Y* y, bool finite) {
    orv_complex_d w;
    const auto x = widened(*at);
    const int32_t status = scalar(&x, &w);
    *y = {static_cast<float>(w.re), static_cast<float>(w.im)};
    const bool overflows = __builtin_isinf(y->re) || __builtin_isinf(y->im);
    return status == frame::status_ok && finite && overflows ? static_cast<int32_t>(frame::status_overflow) : status;
}

}  // namespace orv::vecmath
