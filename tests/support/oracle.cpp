#include "support/oracle.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace orv::oracle {

namespace {

#ifdef _WIN32
#define EXACT(routine) nullptr
#else
#define EXACT(routine) routine
int exact_logb(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) {
    return mpfr_set_si(y, mpfr_zero_p(x) ? 0 : mpfr_get_exp(x) - 1, rounding);
}
int exact_sind(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) { return mpfr_sinu(y, x, 360, rounding); }
int exact_cosd(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) { return mpfr_cosu(y, x, 360, rounding); }
int exact_tand(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rounding) { return mpfr_tanu(y, x, 360, rounding); }
#endif

struct Row {
    std::string_view name;
    Exact exact;
};
constexpr Row rows[] = {
    {"Sin", EXACT(mpfr_sin)},     {"Cos", EXACT(mpfr_cos)},     {"Tan", EXACT(mpfr_tan)},
    {"Sinpi", EXACT(mpfr_sinpi)}, {"Cospi", EXACT(mpfr_cospi)}, {"Tanpi", EXACT(mpfr_tanpi)},
    {"Sind", EXACT(exact_sind)},  {"Cosd", EXACT(exact_cosd)},  {"Tand", EXACT(exact_tand)},
    {"Exp", EXACT(mpfr_exp)},     {"Expm1", EXACT(mpfr_expm1)}, {"Exp2", EXACT(mpfr_exp2)},
    {"Exp10", EXACT(mpfr_exp10)}, {"Ln", EXACT(mpfr_log)},      {"Log10", EXACT(mpfr_log10)},
    {"Log2", EXACT(mpfr_log2)},   {"Log1p", EXACT(mpfr_log1p)}, {"Logb", EXACT(exact_logb)},
};

template <class T>
int ulp_exponent(int exponent) {
    return std::max(exponent, std::numeric_limits<T>::min_exponent) - std::numeric_limits<T>::digits;
}

// `exact` lies in [2^(exponent-1), 2^exponent) in magnitude, or is zero.
template <class T>
Error error_of(long double exact, int exponent, T y) {
    const int top = std::numeric_limits<T>::max_exponent;
    if (std::isnan(y) || std::isnan(exact)) {
        const double both = std::isnan(y) && std::isnan(exact) ? 0.0 : std::numeric_limits<double>::infinity();
        return {both, both};
    }
    const long double limit = ldexpl(1.0L, top) - ldexpl(0.5L, top - std::numeric_limits<T>::digits);
    long double result = y;
    if (std::isinf(y)) result = copysignl(ldexpl(1.0L, top), result);
    if (fabsl(exact) >= limit) exact = copysignl(ldexpl(1.0L, top), exact);
    const long double difference = fabsl(result - exact);
    const long double ulp = ldexpl(1.0L, ulp_exponent<T>(exponent));
    return {static_cast<double>(difference / ulp), exact == 0 ? 0.0 : static_cast<double>(difference / fabsl(exact))};
}

template <class T>
Error exact_error_of(const Function& f, T x, T y) {
#ifdef _WIN32
    return fast_error(f, x, y);
#else
    if (!std::isfinite(x) || !std::isfinite(y)) return fast_error(f, x, y);
    mpfr_t exact, result;
    mpfr_init2(exact, 140);
    mpfr_init2(result, 140);
    mpfr_set_d(result, x, MPFR_RNDN);
    f.exact(exact, result, MPFR_RNDN);
    if (mpfr_regular_p(exact) == 0) {
        mpfr_clears(exact, result, nullptr);
        return fast_error(f, x, y);
    }
    const int exponent = static_cast<int>(mpfr_get_exp(exact));
    mpfr_set_d(result, y, MPFR_RNDN);
    mpfr_sub(result, result, exact, MPFR_RNDN);
    mpfr_div(exact, result, exact, MPFR_RNDN);
    mpfr_mul_2si(result, result, -ulp_exponent<T>(exponent), MPFR_RNDN);
    const Error error{std::fabs(mpfr_get_d(result, MPFR_RNDN)), std::fabs(mpfr_get_d(exact, MPFR_RNDN))};
    mpfr_clears(exact, result, nullptr);
    return error;
#endif
}

template <class T>
Error fast_error_of(long double exact, T y) {
    int exponent = 0;
    if (std::isfinite(exact)) frexpl(exact, &exponent);
    return error_of(exact, exponent, y);
}

}  // namespace

const Function* find(std::string_view name) {
    static const std::vector<Function> functions = [] {
        std::vector<Function> list;
        for (const Row& row : rows) list.push_back({row.name, row.exact, command::find_reference(row.name)->value});
        return list;
    }();
    for (const Function& f : functions)
        if (f.name == name) return &f;
    return nullptr;
}

Error exact_error(const Function& f, double x, double y) { return exact_error_of(f, x, y); }
Error exact_error(const Function& f, float x, float y) { return exact_error_of(f, x, y); }
Error fast_error(const Function& f, double x, double y) { return fast_error_of(f.fast(x), y); }
Error fast_error(const Function& f, float x, float y) { return fast_error_of(f.fast(x), y); }

// In doubles throughout, for normal `exact`: its exponent field gives the ulp.
Error quick_error(double exact, float y) {
    if (y == exact) return {0, 0};
    const double limit = 0x1p+128 - 0x1p+103;
    if (std::isnan(y) || !(std::fabs(exact) < limit)) return fast_error_of<float>(exact, y);
    const double result = std::isinf(y) ? std::copysign(0x1p+128, y) : y;
    const uint64_t exponent = std::bit_cast<uint64_t>(exact) & uint64_t{0x7FF} << 52;
    const double ulp = std::max(std::bit_cast<double>(exponent) * 0x1p-23, 0x1p-149);
    const double difference = std::fabs(result - exact);
    return {difference / ulp, exact == 0 ? 0.0 : difference / std::fabs(exact)};
}

}  // namespace orv::oracle
