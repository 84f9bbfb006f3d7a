#include "stats/robust/s_estimator.h"

#include "stats/functions.h"
#include "stats/robust/starts.h"

#include <float.h>

namespace orv::stats {
namespace {

// The k with mean rho(d / k) = the expected one, by Newton's iteration for ln k between bounds. 0 if there is none: too many
// distances are 0, or too many observations no numbers, which count as infinitely far.
double scale_of(const Sample& sample, const TranslatedBiweight& biweight, const double* d) {
    const double wanted = biweight.expected * (double(sample.n) + sample.others) - biweight.most * sample.others;
    const double away = sum_over(sample, 4, [&](int32_t i) { return d[i] > 0 ? 1.0 : 0.0; });
    if (!(wanted > 0) || !(away * biweight.most > wanted)) return 0;
    double low = 0, high = DBL_MAX, k = 1;
    for (int32_t iteration = 0; iteration < 200; ++iteration) {
        const double inverse = 1 / k;
        const double excess = sum_over(sample, 16, [&](int32_t i) { return biweight.rho(d[i] * inverse); }) - wanted;
        (excess > 0 ? low : high) = k;
        const double slope = sum_over(sample, 16, [&](int32_t i) {
            const double u = d[i] * inverse;
            return u < biweight.reach() ? biweight.weight(u) * u * u : 0;
        });
        double next = slope > 0 ? k * (1 + excess / slope) : 0;
        if (!(next > low && next < high) || next > 4 * k || next < 0.25 * k)
            next = high == DBL_MAX ? 2 * k : low == 0 ? 0.5 * k : 0.5 * (low + high);
        const double step = next > k ? next - k : k - next;
        k = next;
        if (step <= 1e-14 * k) break;
    }
    return k;
}

// Multiplies the covariance by k^2, and takes the root and the determinant with it.
void rescale(const Sample& sample, double k, Fit& fit) {
    const ptrdiff_t size = ptrdiff_t{sample.q} * sample.q;
    for (ptrdiff_t at = 0; at < size; ++at) {
        fit.cov[at] *= k * k;
        fit.root[at] /= k;
    }
    fit.log_det += 2 * sample.q * natural_logarithm(k);
}

}  // namespace

int32_t s_estimate(const Sample& sample, const Sums& sums, const TranslatedBiweight& biweight, double tolerance,
                   int32_t most_iterations, double* w, double* d, Fit& fit) {
    Scratch room(room_for(sample.q) + 2 * room_for(uint64_t(sample.q) * sample.q));
    if (!room.block) return SSStatusAllocation;
    Fit before = take_fit(sample, room);
    for (int32_t iteration = 0;; ++iteration) {
        squared_distances(sample, sums, fit, d);
        for (int32_t i = 0; i < sample.n; ++i) d[i] = __builtin_sqrt(d[i]);
        const double k = scale_of(sample, biweight, d);
        if (!(k > 0)) return SSStatusNotPositiveDefinite;
        rescale(sample, k, fit);
        if (iteration > 0 && change(sample, before, fit) <= tolerance) return SSStatusOk;
        if (iteration == most_iterations) return SSStatusOk;
        copy_fit(sample, fit, before);
        for (int32_t i = 0; i < sample.n; ++i) w[i] = biweight.weight(d[i] / k);
        weigh(sample, sums, w, fit);
        if (const int32_t status = factor(sample, fit)) return status;
    }
}

}  // namespace orv::stats
