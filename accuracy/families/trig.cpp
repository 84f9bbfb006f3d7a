// Sines, cosines and tangents of radians, half turns and degrees.
#include "accuracy/functions.h"

#include <cmath>

namespace orv::accuracy {

namespace {

// k quarter turns and a rest r of at most half of one.
struct Quarter {
    long double sine, cosine;

    Quarter(int k, long double r) {
        const long double s = sinl(r), c = cosl(r);
        sine = k & 1 ? c : s;
        cosine = k & 1 ? -s : c;
        if (k & 2) sine = -sine, cosine = -cosine;
        cosine += 0.0L;  // no zero is negative: the tangent's poles have the sign of the sine
    }
};

// x in units of a quarter turn, the multiples of which are taken away exactly.
Quarter of_unit(long double x, long double quarter) {
    int k;
    const long double rest = remquol(x, quarter, &k);
    return {k, rest / quarter * 1.57079632679489661923132169163975144L};
}
long double sinpi(long double x) { return of_unit(x, 0.5L).sine; }
long double cospi(long double x) { return of_unit(x, 0.5L).cosine; }
long double tanpi(long double x) { return sinpi(x) / cospi(x); }
long double sind(long double x) { return of_unit(x, 90.0L).sine; }
long double cosd(long double x) { return of_unit(x, 90.0L).cosine; }
long double tand(long double x) { return sind(x) / cosd(x); }

#ifdef _WIN32
// The runtime's own are not good to a small part of an ulp of a double. pi/2 in parts of 32 bits, whose products with k are
// exact below the limit.
constexpr double radian_limit = 0x1p+31;
Quarter of_radians(long double x) {
    const long double k = rintl(x * 0.636619772367581343076L);
    const long double r =
        ((((x - k * 0x1.921FB544p+0L) - k * 0x42D18469p-64L) - k * 0x898CC517p-96L) - k * 0x01B839A2p-128L) -
        k * 0x52049C11p-160L;
    return {static_cast<int>(k), r};
}
long double sine(long double x) { return x == 0 ? x : of_radians(x).sine; }
long double cosine(long double x) { return of_radians(x).cosine; }
long double tangent(long double x) { return x == 0 ? x : of_radians(x).sine / of_radians(x).cosine; }
#else
constexpr double radian_limit = std::numeric_limits<double>::infinity();
long double sine(long double x) { return sinl(x); }
long double cosine(long double x) { return cosl(x); }
long double tangent(long double x) { return tanl(x); }
#endif

// Multiples of a quarter turn, first one by one, then thinner.
void add_quarters(std::vector<double>& list, long double quarter) {
    for (int64_t k = 1; k < int64_t{1} << 45; k += 1 + k / 400)
        for (const long double x : {k * quarter, -k * quarter}) list.push_back(static_cast<double>(x));
}

#ifndef _WIN32
// The numbers M 2^e with M of `digits` digits that lie nearest to multiples of pi/2, relative to their exponent: M is a
// denominator in the continued fraction of 2^e/(pi/2), or a small multiple of one.
void add_nearest_to_quarters(std::vector<double>& list, int digits, int last_exponent) {
    constexpr mpfr_prec_t precision = 1300;
    mpfr_t half_pi, x;
    mpfr_init2(half_pi, precision);
    mpfr_init2(x, precision);
    mpfr_const_pi(half_pi, MPFR_RNDN);
    mpfr_div_2ui(half_pi, half_pi, 1, MPFR_RNDN);
    mpz_t before, last, quotient, next;
    mpz_inits(before, last, quotient, next, nullptr);
    for (int e = -digits; e <= last_exponent - digits; ++e) {
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
            if (mpz_sizeinbase(last, 2) > static_cast<size_t>(digits)) break;
            if (mpz_sizeinbase(last, 2) < static_cast<size_t>(digits - 6)) continue;
            const double m = mpz_get_d(last);
            for (int k = 1; k < 4 && k * m < std::ldexp(1.0, digits); ++k)
                for (const double sign : {1.0, -1.0}) list.push_back(sign * std::ldexp(k * m, e));
        }
    }
    mpz_clears(before, last, quotient, next, nullptr);
    mpfr_clears(half_pi, x, nullptr);
}
#endif

void hard_radians(std::vector<double>& list) {
    add_quarters(list, 1.57079632679489661923132169163975144L);
    // The double nearest to a multiple of pi/2 of all, and others known as hard.
    for (const double x : {6381956970095103.0 * 0x1p797, 0x1.6ac5b262ca1ffp849, 0x1.921fb54442d18p1}) list.push_back(x);
#ifndef _WIN32
    add_nearest_to_quarters(list, 53, 1024);
    add_nearest_to_quarters(list, 24, 128);
#endif
}
void hard_half_turns(std::vector<double>& list) { add_quarters(list, 0.5L); }
void hard_degrees(std::vector<double>& list) { add_quarters(list, 90.0L); }

}  // namespace

std::vector<Function> trig_functions() {
    // The limits of the main paths and of the scalar and folded ones, in any of the three units.
    const std::vector<double> limits = {90112.0, 16777216.0, 8388608.0, 128000.0, 65536.00349206588,
                                        8256.0,  8192.0,     0x1p-20,   0x1p-252, 0x1p-950,
                                        0x1p17,  0x1p30,     0x1p43,    0x1p46,   0x1p53,
                                        0x1p54,  0x1p55,     0x1p56,    0x1p67,   0x1p1023,
                                        0x1p127, 0x1p-126,   0x1p-1022};
    const std::vector<Range> radians = {{-10, 10}, {0, 1.6}, {-1e5, 1e5}, {-1e4, 1e4}};
    const std::vector<Range> half_turns = {{-3, 3}, {0, 0.5}, {-1000, 1000}};
    const std::vector<Range> degrees = {{-540, 540}, {0, 90}, {-1e5, 1e5}};
    const auto row = [&](std::string_view name, Exact exact, Fast fast, const std::vector<Range>& ranges,
                         void (*hard)(std::vector<double>&), double limit) {
        return Function{.name = name,
                        .types = "sd",
                        .exact = exact,
                        .fast = fast,
                        .ranges = ranges,
                        .points = limits,
                        .second = {},
                        .hard = hard,
                        .fast_limit = limit};
    };
    constexpr double none = std::numeric_limits<double>::infinity();
    return {
        row("Sin", EXACT(mpfr_sin), FAST(sine), radians, hard_radians, radian_limit),
        row("Cos", EXACT(mpfr_cos), FAST(cosine), radians, hard_radians, radian_limit),
        row("Tan", EXACT(mpfr_tan), FAST(tangent), radians, hard_radians, radian_limit),
        row(
            "SinCos", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_sin_cos(y[0], y[1], x[0], MPFR_RNDN); }),
            [](long double* y, const long double* x) { y[0] = sine(x[0]), y[1] = cosine(x[0]); }, radians, hard_radians,
            radian_limit),
        row("Sinpi", EXACT(mpfr_sinpi), FAST(sinpi), half_turns, hard_half_turns, none),
        row("Cospi", EXACT(mpfr_cospi), FAST(cospi), half_turns, hard_half_turns, none),
        row("Tanpi", EXACT(mpfr_tanpi), FAST(tanpi), half_turns, hard_half_turns, none),
        row("Sind", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_sinu(y[0], x[0], 360, MPFR_RNDN); }), FAST(sind), degrees,
            hard_degrees, none),
        row("Cosd", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_cosu(y[0], x[0], 360, MPFR_RNDN); }), FAST(cosd), degrees,
            hard_degrees, none),
        row("Tand", EXACT_BY([](mpfr_t* y, mpfr_t* x) { mpfr_tanu(y[0], x[0], 360, MPFR_RNDN); }), FAST(tand), degrees,
            hard_degrees, none),
    };
}

}  // namespace orv::accuracy
