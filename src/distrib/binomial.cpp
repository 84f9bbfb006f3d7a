// Binomial: by inversion of its distribution function for means below 30, by rejection above. With p above 1/2 the failures
// are drawn.
// V. Kachitvichyanukul, B. W. Schmeiser, "Binomial random variate generation", Communications of the ACM 31, 1988.
#include "distrib/rejection.h"
#include "services/export.h"

#include <stddef.h>

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

constexpr int32_t chunk_id = 5;
constexpr double least_mean_of_rejection = 30;
constexpr int32_t most_entries = 62;

struct ByRejection {
    float npq, ffm;
    Hat hat;
    float inverse_npq, odds;
    Steps steps;
};

struct ByTable {
    double scaled_odds, odds;  // (ntrial + 1) p/q and p/q
    double entries[most_entries];
    double increment;
};

enum Path : int64_t { path_rejection = 1, path_table = 2 };

// One chunk serves both paths, and they round their keys differently, so it says which of them filled it.
struct alignas(8) Setup {
    double ntrial, p;
    union {
        ByRejection rejection;
        ByTable table;
    };
    alignas(8) int64_t path;
};
static_assert(sizeof(Setup) == 544 && offsetof(Setup, table) == 16 && offsetof(Setup, path) == 536);
static_assert(offsetof(ByRejection, hat) == 8 && offsetof(ByRejection, steps) == 88);

// `fits` looks further into a setup of these parameters.
template <class Fits, class Make>
Setup* setup_for(Stream* stream, Path path, double ntrial, double p, Fits fits, Make make) {
    const auto matches = [=](const Setup& s) { return s.path == path && s.ntrial == ntrial && s.p == p && fits(s); };
    return setup_in_chunk<Setup>(stream, chunk_id, sizeof(Setup), matches, [=](Setup& s) {
        s.ntrial = ntrial;
        s.p = p;
        make(s);
        s.path = path;
    });
}

// ---- Rejection -----------------------------------------------------------------------------------------------------

void set_hat(Hat& hat, float m, float ffm, float npq, float p, float q) {
    hat.mode = m;
    const float root = simd::first_lane(simd::square_root(simd::splat(npq)));
    hat.p1 = static_cast<float>(static_cast<int32_t>(2.195f * root - 4.6f * q)) + 0.5f;
    hat.xm = m + 0.5f;
    hat.xl = hat.xm - hat.p1;
    hat.xr = hat.xm + hat.p1;
    hat.c = 0.134f + 20.5f / (15.3f + m);
    const float left = (ffm - hat.xl) / (ffm - hat.xl * p), right = (hat.xr - ffm) / (hat.xr * q);
    set_tails(hat, left * (1 + 0.5f * left), right * (1 + 0.5f * right));
    hat.p2 = hat.p1 * (1 + 2 * hat.c);
    hat.p3 = hat.p2 + hat.c / hat.lambda_left;
    hat.p4 = hat.p3 + hat.c / hat.lambda_right;
    set_shares(hat);
    hat.inverse_c = 1 / hat.c;
    hat.inverse_p1 = 1 / hat.p1;
}

// f(k) / f(k - 1) in four lanes for the steps: with a reciprocal by one step of Newton's method, in place of a division.
__m128 inverse_of(__m128 x) {
    const __m128 y = simd::rough_reciprocal(x);
    return y * (simd::splat(2.0f) - x * y);
}

void set_binomial_steps(Steps& steps, float mode, float scaled_odds, float odds) {
    const __m128 top = simd::splat(scaled_odds), less = simd::splat(odds), m = simd::splat(mode);
    const __m128 one = simd::splat(1.0f);
    float up = 1, down = 1;
    for (int32_t i = 0; i < Steps::count; i += 4) {
        const __m128 index = simd::to_floats(_mm_setr_epi32(i, i + 1, i + 2, i + 3));
        simd::store(steps.up + i, top / (m + index + one) - less);
        // Below the mode there may be fewer integers than steps; the steps past them are not used.
        simd::store(steps.down + i, inverse_of(top / simd::greatest(m - index, one) - less));
        for (int32_t j = i; j < i + 4; ++j) {
            steps.up[j] = up *= steps.up[j];
            steps.down[j] = down *= steps.down[j];
        }
    }
}

// The correction of Stirling's formula for ln (x - 1)! to (x - 1/2) ln x - x + ln(2 pi) / 2.
double stirling(double x) {
    const double w = 1 / x, w2 = w * w;
    return w *
           (0.0833333358 - w2 * (0.00277777785 - w2 * (0.000793650805 - w2 * (0.000595238118 - w2 * 0.000841750822))));
}

struct Law {
    static constexpr int32_t batch = 512;
    const Steps& steps;
    int32_t most;
    float npq, inverse_npq, scaled_odds, odds;
    double mode, ntrial, exact_odds;

    float ratio(int32_t k) const { return scaled_odds / static_cast<float>(k) - odds; }

    __m128 near(__m128 distance) const {
        return simd::bit_or(simd::less_equal(distance, simd::splat(20.0f)),
                            simd::less_equal(simd::splat(npq * 0.5f - 1), distance));
    }

    // The normal density with bounds of its error.
    Verdict judge(__m128i, __m128 d, __m128 alv) const {
        const auto k = [](float x) { return simd::splat(x); };
        const __m128 distance = simd::magnitude(d), share = simd::splat(inverse_npq);
        const __m128 error =
            (distance * share) * ((distance * (distance * k(1 / 3.0f) + k(0.625f)) + k(1 / 6.0f)) * share + k(0.5f));
        const __m128 normal = d * d * (k(-0.5f) * share);
        return between(alv, normal - error, normal + error);
    }

    void log_ratios(int32_t n, const int32_t* k, double* out) const {
        double logs[3 * 64];
        const double f1 = mode + 1, z = ntrial + 1 - mode;
        for (int32_t i = 0; i < n; ++i) {
            const double x1 = k[i] + 1.0, w = ntrial - k[i] + 1;
            logs[3 * i] = f1 / x1;
            logs[3 * i + 1] = z / w;
            logs[3 * i + 2] = w * exact_odds / x1;
        }
        run(reinterpret_cast<OneResult<double>>(orv_arq_kernel_dLn_ttab[1]), 3 * n, logs, logs);
        for (int32_t i = 0; i < n; ++i) {
            const double x1 = k[i] + 1.0, w = ntrial - k[i] + 1;
            out[i] = (mode + 0.5) * logs[3 * i] + (ntrial - mode + 0.5) * logs[3 * i + 1] +
                     (k[i] - mode) * logs[3 * i + 2] + stirling(f1) + stirling(z) - stirling(x1) - stirling(w);
        }
    }
};

int32_t draw_rejecting(Stream* stream, int32_t n, int32_t* r, int32_t ntrial, double given_p, double p, Setups setups) {
    const float rounded = static_cast<float>(ntrial), pp = static_cast<float>(p), q = 1 - pp, odds = pp / q;
    const float scaled_odds = (rounded + 1) * odds, npq = rounded * pp * q, ffm = rounded * pp + pp;
    const float mode = static_cast<float>(static_cast<int32_t>(ffm));
    const auto fits = [=](const Setup& s) { return s.rejection.npq == npq && s.rejection.hat.mode == mode; };
    const Setup* setup = setup_for(stream, path_rejection, rounded, static_cast<float>(given_p), fits, [=](Setup& s) {
        ByRejection& b = s.rejection;
        b.npq = npq;
        b.ffm = ffm;
        set_hat(b.hat, mode, ffm, npq, pp, q);
        b.inverse_npq = 1 / npq;
        b.odds = odds;
        set_binomial_steps(b.steps, mode, scaled_odds, odds);
    });
    if (!setup) return StatusNoMemory;
    const ByRejection& b = setup->rejection;
    const Law law = {b.steps, ntrial, npq, b.inverse_npq, scaled_odds, odds, mode, double(ntrial), p / (1 - p)};
    return draw_under_hat(stream, n, r, b.hat, law, setups);
}

int32_t draw_by_rejection(Stream* stream, int32_t n, int32_t* r, int32_t ntrial, double given_p, double p) {
    return draw_by_setup(stream, chunk_id,
                         [=](Setups setups) { return draw_rejecting(stream, n, r, ntrial, given_p, p, setups); });
}

// ---- Table ---------------------------------------------------------------------------------------------------------

// Sums from the small terms at the top down, and takes them from the total, so that the tail keeps its accuracy.
void set_table(ByTable& b, int32_t size, double ntrial, double p) {
    const double q = 1 - p;
    b.odds = p / q;
    b.scaled_odds = (ntrial + 1) * b.odds;
    // q is rounded, which ntrial factors multiply.
    const double lost = (1 - q) - p;
    b.entries[0] = accurate_power(q, ntrial) * (1 + ntrial * lost / q);
    for (int32_t k = 1; k < size; ++k) {
        const double term = b.entries[k - 1] * (b.scaled_odds / k - b.odds);
        b.entries[k] = k <= ntrial ? term : 0;
    }
    b.increment = b.entries[size - 1];
    double total = 0;
    for (int32_t k = size - 1; k >= 0; --k) total += b.entries[k];
    double above = 0;
    for (int32_t k = size - 1; k >= 0; --k) {
        const double term = b.entries[k];
        b.entries[k] = total - above;
        above += term;
    }
}

int32_t draw_from_table(Stream* stream, int32_t n, int32_t* r, int32_t ntrial, double given_p, double p) {
    const double mean = ntrial * p;
    const int32_t start = mean > 0 ? static_cast<int32_t>(mean) : 0, size = start + 32;
    const Setup* setup = setup_for(
        stream, path_table, ntrial, given_p, [](const Setup&) { return true; },
        [=](Setup& s) { set_table(s.table, size, ntrial, p); });
    if (!setup) return StatusNoMemory;
    const ByTable& b = setup->table;
    const double scaled_odds = b.scaled_odds, odds = b.odds;
    const DistributionFunction f = {b.entries, size, start, b.increment, ntrial};
    return draw_by_inversion<1024>(stream, n, r, f, [=](int32_t k) { return scaled_odds / k - odds; });
}

}  // namespace

ORV_API int32_t _kuziRngBinomial(int32_t, Stream* stream, int32_t n, int32_t* r, int32_t ntrial, double p) {
    if (n <= 0) return StatusOk;
    if (ntrial == 0) {
        for (int32_t i = 0; i < n; ++i) r[i] = 0;
        return StatusOk;
    }
    const bool fewer_successes = 0.5 > p;
    const double rarer = fewer_successes ? p : 1 - p;
    const auto draw = ntrial * rarer >= least_mean_of_rejection ? draw_by_rejection : draw_from_table;
    const int32_t status = draw(stream, n, r, ntrial, p, rarer);
    if (status >= 0 && !fewer_successes)
        for (int32_t i = 0; i < n; ++i) r[i] = ntrial - r[i];
    return status;
}
