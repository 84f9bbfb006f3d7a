#include "reference.h"

#include <cmath>

namespace orv::command {

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
// The runtime's own are not good to a small part of an ulp of a double.

// pi/2 in parts of 32 bits, whose products with k are exact below the limit.
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

long double expm1_of(long double x) {
    if (fabsl(x) >= 0.5L) return expl(x) - 1;
    long double sum = 0;
    for (int k = 22; k > 0; --k) sum = x / k * (1 + sum);
    return sum;
}
long double ten_to_the(long double x) {
    constexpr long double ln_10 = 2.302585092994045684018L;
    const long double whole = rintl(x), part = expl((x - whole) * ln_10);
    if (!(fabsl(whole) < 400)) return expl(x * ln_10);
    long double power = 1, square = 10;
    for (int i = static_cast<int>(fabsl(whole)); i != 0; i >>= 1, square *= square)
        if (i & 1) power *= square;
    return whole < 0 ? part / power : part * power;
}
#else
constexpr double radian_limit = __builtin_huge_val();
long double sine(long double x) { return sinl(x); }
long double cosine(long double x) { return cosl(x); }
long double tangent(long double x) { return tanl(x); }
long double expm1_of(long double x) { return expm1l(x); }
long double ten_to_the(long double x) { return exp10l(x); }
#endif

constexpr Reference references[] = {
    {"Exp", expl, -80, 80},
    {"Expm1", expm1_of, -2, 2},
    {"Exp2", exp2l, -100, 100},
    {"Exp10", ten_to_the, -30, 30},
    {"Ln", logl, 0.25, 4},
    {"Log10", log10l, 0.25, 4},
    {"Log2", log2l, 0.25, 4},
    {"Log1p", log1pl, -0.75, 3},
    {"Logb", logbl, 0.25, 100},
    {"Sin", sine, -10, 10, radian_limit},
    {"Cos", cosine, -10, 10, radian_limit},
    {"Tan", tangent, -10, 10, radian_limit},
    {"Sinpi", sinpi, -3, 3},
    {"Cospi", cospi, -3, 3},
    {"Tanpi", tanpi, -3, 3},
    {"Sind", sind, -540, 540},
    {"Cosd", cosd, -540, 540},
    {"Tand", tand, -540, 540},
};

}  // namespace

const Reference* find_reference(std::string_view function) {
    for (const Reference& reference : references)
        if (reference.function == function) return &reference;
    return nullptr;
}

}  // namespace orv::command
