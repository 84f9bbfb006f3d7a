#include "accuracy/error.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orv::accuracy {

namespace {

template <class T>
using Limits = std::numeric_limits<T>;

template <class T>
int ulp_exponent(int exponent) {
    return std::max(exponent, Limits<T>::min_exponent) - Limits<T>::digits;
}

// Of the power of two above |x|.
int exponent_of(long double x) {
    int exponent = 0;
    if (std::isfinite(x)) frexpl(x, &exponent);
    return exponent;
}

// Past the range lies its first power of two.
template <class T>
long double ended(long double x) {
    const int top = Limits<T>::max_exponent;
    const long double limit = ldexpl(1.0L, top) - ldexpl(0.5L, top - Limits<T>::digits);
    return fabsl(x) >= limit ? copysignl(ldexpl(1.0L, top), x) : x;
}

// `exponent` gives the unit, `size` is what an error is relative to.
template <class T>
Error error_in(long double exact, int exponent, long double size, T y) {
    if (std::isnan(y) || std::isnan(exact)) {
        const double both = std::isnan(y) && std::isnan(exact) ? 0.0 : Limits<double>::infinity();
        return {both, both, false};
    }
    const long double difference = fabsl(ended<T>(y) - ended<T>(exact));
    if (difference == 0) return {0, 0, std::fabs(y) < Limits<T>::min()};
    return {static_cast<double>(ldexpl(difference, -ulp_exponent<T>(exponent))),
            size == 0 ? 0.0 : static_cast<double>(difference / size), std::fabs(y) < Limits<T>::min()};
}

}  // namespace

template <class T>
Error error_of(long double exact, T y) {
    return error_in(exact, exponent_of(exact), fabsl(exact), y);
}
template Error error_of(long double, float);
template Error error_of(long double, double);

Judge::Judge(const Kernel& judged, Measure by) : kernel(judged), measure(by) {
#ifndef _WIN32
    for (mpfr_t& x : arguments) mpfr_init2(x, 64);
    for (mpfr_t& y : values) mpfr_init2(y, bits);
    mpfr_init2(difference, bits);
#endif
}
Judge::~Judge() {
#ifndef _WIN32
    for (mpfr_t& x : arguments) mpfr_clear(x);
    for (mpfr_t& y : values) mpfr_clear(y);
    mpfr_clear(difference);
#endif
}

template <class T>
bool Judge::can(const T* x) const {
    if (kernel.function->measured) {
        double wide[most_inputs];
        std::copy(x, x + kernel.inputs, wide);
        if (!kernel.function->measured(wide)) return false;
    }
#ifndef _WIN32
    if (kernel.function->exact) return true;
#endif
    return kernel.function->fast &&
           std::all_of(x, x + kernel.inputs, [&](T c) { return !(std::fabs(c) >= kernel.function->fast_limit); });
}

template <class T>
void Judge::compare(const long double* exact, const T* y, Error* errors) const {
    if (measure == Measure::by_part) {
        for (int i = 0; i < kernel.outputs; ++i) errors[i] = error_of(exact[i], y[i]);
        return;
    }
    const long double modulus = hypotl(exact[0], exact[1]);
    for (int i = 0; i < 2; ++i) {
        errors[i] =
            std::isfinite(modulus) ? error_in(exact[i], exponent_of(modulus), modulus, y[i]) : error_of(exact[i], y[i]);
        errors[i].subnormal = modulus < Limits<T>::min();
    }
}

template <class T>
void Judge::fast(const T* x, const T* y, Error* errors) const {
    const Fast routine = kernel.function->fast;
#ifndef _WIN32
    if (!routine) return exact(x, y, errors);
#endif
    long double wide[most_inputs], results[most_outputs];
    for (int i = 0; i < kernel.inputs; ++i) wide[i] = x[i];
    routine(results, wide);
    compare(results, y, errors);
}

template <class T>
void Judge::exact(const T* x, const T* y, Error* errors) const {
#ifdef _WIN32
    fast(x, y, errors);
#else
    for (int i = 0; i < kernel.inputs; ++i) mpfr_set_d(arguments[i], x[i], MPFR_RNDN);
    kernel.function->exact(values, arguments);
    long double rounded[most_outputs];
    for (int i = 0; i < kernel.outputs; ++i) rounded[i] = mpfr_get_ld(values[i], MPFR_RNDN);
    compare(rounded, y, errors);
    // The difference anew from the unrounded value, where that counts.
    for (int i = 0; i < kernel.outputs; ++i) {
        if (!mpfr_regular_p(values[i]) || !std::isfinite(y[i]) || !(std::fabs(rounded[i]) < Limits<T>::max())) continue;
        if (errors[i].ulp == 0 && rounded[i] == y[i] && mpfr_cmp_ld(values[i], rounded[i]) == 0) continue;
        long double unit = rounded[i];
        if (measure == Measure::by_modulus) unit = hypotl(rounded[0], rounded[1]);
        mpfr_set_d(difference, y[i], MPFR_RNDN);
        mpfr_sub(difference, difference, values[i], MPFR_RNDN);
        // frexpl of a value that rounding carried to a power of two would double the unit.
        const int exponent =
            measure == Measure::by_part ? static_cast<int>(mpfr_get_exp(values[i])) : exponent_of(unit);
        const long double distance = fabsl(mpfr_get_ld(difference, MPFR_RNDN));
        errors[i].ulp = static_cast<double>(ldexpl(distance, -ulp_exponent<T>(exponent)));
        errors[i].relative = static_cast<double>(distance / fabsl(unit));
    }
#endif
}

template bool Judge::can(const float*) const;
template bool Judge::can(const double*) const;
template void Judge::fast(const float*, const float*, Error*) const;
template void Judge::fast(const double*, const double*, Error*) const;
template void Judge::exact(const float*, const float*, Error*) const;
template void Judge::exact(const double*, const double*, Error*) const;

}  // namespace orv::accuracy
