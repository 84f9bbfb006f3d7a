#include "accuracy/trig_points.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#ifndef _WIN32
#include <mpfr.h>
#endif

namespace orv::accuracy {

namespace {

// The limits of the main paths and of the scalar and folded ones, in radians, half turns and degrees.
constexpr double limits[] = {90112.0,
                             16777216.0,
                             8388608.0,
                             128000.0,
                             65536.00349206588,
                             8256.0,
                             8192.0,
                             9.5367431640625e-07,
                             0x1p-252,
                             0x1p-950,
                             0x1p17,
                             0x1p30,
                             0x1p43,
                             0x1p46,
                             0x1p53,
                             0x1p54,
                             0x1p55,
                             0x1p56,
                             0x1p67,
                             1e300,
                             1e308,
                             0x1p1023,
                             0x1p127,
                             0x1p-126};

template <class T>
void add_around(std::vector<T>& list, double x, int each_side) {
    T up = static_cast<T>(x), down = up;
    for (int k = 0; k <= each_side; ++k) {
        for (const T v : {up, down, -up, -down}) list.push_back(v);
        up = std::nextafter(up, std::numeric_limits<T>::infinity());
        down = std::nextafter(down, T{0});
    }
}

#ifndef _WIN32
// The numbers M 2^e with M of T's digits that lie nearest to multiples of pi/2, relative to their exponent: M is a
// denominator in the continued fraction of 2^e/(pi/2), or a small multiple of one.
template <class T>
void add_hard_cases(std::vector<T>& list) {
    constexpr int digits = std::numeric_limits<T>::digits;
    constexpr mpfr_prec_t precision = 1300;
    mpfr_t half_pi, x;
    mpfr_init2(half_pi, precision);
    mpfr_init2(x, precision);
    mpfr_const_pi(half_pi, MPFR_RNDN);
    mpfr_div_2ui(half_pi, half_pi, 1, MPFR_RNDN);
    mpz_t before, last, quotient, next;
    mpz_inits(before, last, quotient, next, nullptr);
    for (int e = -digits; e <= std::numeric_limits<T>::max_exponent - digits; ++e) {
        mpfr_set_ui_2exp(x, 1, e, MPFR_RNDN);
        mpfr_div(x, x, half_pi, MPFR_RNDN);
        mpfr_frac(x, x, MPFR_RNDN);
        mpz_set_ui(before, 0);
        mpz_set_ui(last, 1);
        while (mpfr_regular_p(x)) {
            mpfr_ui_div(x, 1, x, MPFR_RNDN);
            mpfr_get_z(quotient, x, MPFR_RNDZ);
            mpfr_frac(x, x, MPFR_RNDN);
            mpz_mul(next, quotient, last);
            mpz_add(next, next, before);
            mpz_swap(before, last);
            mpz_swap(last, next);
            if (mpz_sizeinbase(last, 2) > digits) break;
            if (mpz_sizeinbase(last, 2) < digits - 6) continue;
            const double m = mpz_get_d(last);
            for (int k = 1; k < 4 && k * m < std::ldexp(1.0, digits); ++k)
                for (const double sign : {1.0, -1.0}) list.push_back(static_cast<T>(sign * std::ldexp(k * m, e)));
        }
    }
    mpz_clears(before, last, quotient, next, nullptr);
    mpfr_clears(half_pi, x, nullptr);
}
#endif

}  // namespace

template <class T>
std::vector<T> trig_points(const char* function, int64_t count, uint64_t seed) {
    const bool radians =
        !std::strcmp(function, "Sin") || !std::strcmp(function, "Cos") || !std::strcmp(function, "Tan");
    const bool half_turns = std::strstr(function, "pi") && std::strlen(function) == 5;
    const bool degrees =
        !std::strcmp(function, "Sind") || !std::strcmp(function, "Cosd") || !std::strcmp(function, "Tand");
    if (!radians && !half_turns && !degrees) return {};

    std::vector<T> list;
    for (const double limit : limits)
        if (limit < std::numeric_limits<T>::max()) add_around(list, limit, 64);
    // Multiples of a quarter turn, first one by one, then thinner.
    const long double quarter = radians ? 1.57079632679489661923132169163975144L : half_turns ? 0.5L : 90.0L;
    for (int64_t k = 1; k < int64_t{1} << 45; k += 1 + k / 400) add_around(list, static_cast<double>(k * quarter), 2);
    if (radians && sizeof(T) == 8) {
        // The double nearest to a multiple of pi/2 of all, and others known as hard.
        for (const double x :
             {6381956970095103.0 * 0x1p797, 0x1.6ac5b262ca1ffp849, 0x1.921fb54442d18p1, 0x1.921fb54442d18p0})
            add_around(list, x, 1);
    }
#ifndef _WIN32
    if (radians) add_hard_cases(list);
#endif
    std::mt19937_64 random(seed);
    for (int64_t i = 0; i < count; ++i)
        list.push_back(static_cast<T>(-10 + 20 * (static_cast<double>(random() >> 11) * 0x1p-53)));
    std::erase_if(list, [](T x) { return !std::isfinite(x); });
    return list;
}

template std::vector<float> trig_points<float>(const char*, int64_t, uint64_t);
template std::vector<double> trig_points<double>(const char*, int64_t, uint64_t);

}  // namespace orv::accuracy
