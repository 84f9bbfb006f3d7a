// Poisson: by inversion of its distribution function for means below 27, by rejection above; or from normal numbers.
// B. W. Schmeiser, V. Kachitvichyanukul, "Poisson random variate generation", Purdue University, Research Memorandum 81-4,
// 1981.
#include "distrib/poisson.h"

#include "distrib/rejection.h"
#include "services/export.h"

#include <stddef.h>

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

constexpr int32_t chunk_id = 3;
constexpr double least_mean_of_rejection = 27;
constexpr int32_t most_drawn = 2024;

struct ByRejection {
    float lambda;
    Hat hat;
    Steps steps;
    float log_step;  // ln(lambda / mode)
};

struct ByTable {
    double lambda;
    double entries[42];
    double increment;
};

struct Setup {
    ByRejection rejection;
    ByTable table;
    double spare;
};
static_assert(offsetof(Setup, table) == 336 && sizeof(Setup) == 696);

// ---- Rejection -----------------------------------------------------------------------------------------------------

float mode_of(float lambda) { return static_cast<float>(static_cast<int32_t>(lambda)); }

void set_rejection(ByRejection& b, float lambda) {
    Hat& hat = b.hat;
    b.lambda = lambda;
    hat.mode = mode_of(lambda);
    const float m = hat.mode;
    const float root = simd::first_lane(simd::square_root(simd::splat(m)));
    hat.p1 = static_cast<float>(static_cast<int32_t>(2.195f * root - 2.2f)) + 0.5f;
    hat.c = 0.133f + 8.56f / (6.83f + lambda);
    hat.xm = m + 0.5f;
    hat.xl = hat.xm - hat.p1;
    hat.xr = hat.xm + hat.p1;
    const float left = (lambda - hat.xl) / lambda, right = (hat.xr - lambda) / hat.xr;
    set_tails(hat, left * (1 + 0.5f * left), right * (1 + 0.5f * right));
    hat.p2 = hat.p1 * (1 + 2 * hat.c);
    hat.p3 = hat.p2 + (0.109f + 8.25f / (10.86f + lambda)) / hat.lambda_left;
    hat.p4 = hat.p3 + hat.c / hat.lambda_right;
    set_shares(hat);
    hat.inverse_c = 1 / hat.c;
    hat.inverse_p1 = 1 / hat.p1;
    set_steps(
        b.steps, static_cast<int32_t>(m), [=](int32_t k) { return lambda / static_cast<float>(k); },
        [=](int32_t k) { return static_cast<float>(k) / lambda; });
    b.log_step = static_cast<float>(__kuzdLn(double(lambda) / m));
}

// With k = mode + d: ln f(k) / f(mode) is d ln(lambda / mode) less the deviance of k from the mode and half its logarithm,
// plus the corrections of Stirling's formula.
struct Law {
    static constexpr int32_t batch = most_drawn / 2;
    static constexpr int32_t most = INT32_MAX;
    static constexpr float least_mode_of_formula = 100;
    const Steps& steps;
    float lambda, mode, log_step;
    float farthest_step = mode < least_mode_of_formula ? 2147483648.0f : static_cast<float>(Steps::count);

    float ratio(int32_t k) const { return lambda / static_cast<float>(k); }
    __m128 near(__m128 distance) const { return simd::less_equal(distance, simd::splat(farthest_step)); }

    Verdict judge(__m128i, __m128 d, __m128 alv) const {
        const __m128 m = simd::splat(mode);
        const auto g = growth<float>(m, d);
        const __m128 twelve_products = simd::splat(12 * mode) * (m + d);
        const __m128 log_ratio =
            d * simd::splat(log_step) - g.deviance - simd::splat(0.5f) * g.log + d / twelve_products;
        const __m128 known = simd::less_equal(simd::magnitude(g.v), simd::splat(0.25f));
        return {simd::bit_and(known, simd::less_equal(alv, log_ratio)),
                simd::bit_and_not(known, simd::equal(alv, alv))};
    }

    void log_ratios(int32_t n, const int32_t* k, double* out) const {
        const double m = mode;
        for (int32_t i = 0; i < n; ++i) {
            const double x = k[i] < 1 ? 1 : k[i], d = x - m, log = __kuzdLn(x / m);
            const auto correction = [](double y) { return (1 / 12.0 - 1 / (360 * y * y)) / y; };
            out[i] = d * double(log_step) - (x * log - d) - 0.5 * log + correction(m) - correction(x);
        }
    }
};

int32_t draw_rejecting(Stream* stream, int32_t n, int32_t* r, float lambda, Setups setups) {
    const float mode = mode_of(lambda);
    const Setup* setup = setup_in_chunk<Setup>(
        stream, chunk_id, sizeof(Setup),
        [=](const Setup& s) { return s.rejection.lambda == lambda && s.rejection.hat.mode == mode; },
        [=](Setup& s) { set_rejection(s.rejection, lambda); });
    if (!setup) return StatusNoMemory;
    const ByRejection& b = setup->rejection;
    return draw_under_hat(stream, n, r, b.hat, Law{b.steps, lambda, mode, b.log_step}, setups);
}

// ---- Table ---------------------------------------------------------------------------------------------------------

void set_table(ByTable& b, double lambda, int32_t size) {
    double term = accurate_exponential(-lambda), sum = term;
    b.entries[0] = term;
    for (int32_t k = 1; k < size; ++k) {
        term = term * lambda / k;
        b.entries[k] = sum += term;
    }
    b.increment = term;
    b.lambda = lambda;
}

int32_t draw_from_table(Stream* stream, int32_t n, int32_t* r, double lambda) {
    const int32_t start = lambda > 0 ? static_cast<int32_t>(lambda) : 0, size = start + 16;
    const Setup* setup = setup_in_chunk<Setup>(
        stream, chunk_id, sizeof(Setup), [=](const Setup& s) { return s.table.lambda == lambda; },
        [=](Setup& s) { set_table(s.table, lambda, size); });
    if (!setup) return StatusNoMemory;
    const DistributionFunction f = {setup->table.entries, size, start, setup->table.increment, INT32_MAX};
    return draw_by_inversion<most_drawn>(stream, n, r, f, [=](int32_t k) { return lambda / k; });
}

int32_t by_rejection(Stream* stream, int32_t n, int32_t* r, double lambda) {
    if (!(lambda >= least_mean_of_rejection)) return draw_from_table(stream, n, r, lambda);
    return draw_by_setup(stream, chunk_id, [=](Setups setups) {
        return draw_rejecting(stream, n, r, static_cast<float>(lambda), setups);
    });
}

}  // namespace

ORV_API int32_t _kuziRngPoisson(int32_t method, Stream* stream, int32_t n, int32_t* r, double lambda) {
    static constexpr decltype(&by_rejection) methods[] = {by_rejection, poisson_from_normal};
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm_at_pole<float>);
    return methods[method](stream, n, r, lambda);
}
