#include "stats/chi_square.h"
#include "stats/robust/order.h"
#include "stats/robust/starts.h"

#include <string.h>

namespace orv::stats {
namespace {

constexpr int32_t most_growths = 200;

double at_least_1(int32_t value) { return value < 1 ? 1 : value; }

// By what the quantile is multiplied for a subset of r of n observations: c_np corrects for the sample's size, c_hr for a subset that is
// small yet.
double correction(int32_t q, int32_t n, int32_t r) {
    const int32_t half = (n + q + 1) / 2;
    const double sample = 1 + (q + 1) / at_least_1(n - q) + 2 / at_least_1(n - 1 - 3 * q);
    const double subset = half > r ? double(half - r) / (half + r) : 0;
    return sample + subset;
}

// Distances whose order says which observations are in the first subset.
int32_t first_distances(const Sample& sample, const Sums& sums, bool from_medians, double* d, Fit& fit) {
    const int32_t q = sample.q;
    for (int32_t j = 0; j < q; ++j) fit.centre[j] = 0;
    if (!from_medians) {
        weigh(sample, sums, nullptr, fit);
        if (const int32_t status = factor(sample, fit)) return status;
        squared_distances(sample, sums, fit, d);
        return SSStatusOk;
    }
    // The sample's origin is the medians.
    for (int32_t i = 0; i < sample.n; ++i) {
        const double* z = sample.z + ptrdiff_t{i} * q;
        d[i] = 0;
        for (int32_t j = 0; j < q; ++j) d[i] += z[j] * z[j];
    }
    return SSStatusOk;
}

}  // namespace

int32_t fit_nearest(const Sample& sample, const Sums& sums, int32_t count, const double* d, double* spare, double* w,
                    Fit& fit) {
    memcpy(spare, d, sizeof(double) * sample.n);
    const double furthest = select(spare, 0, sample.n - 1, count - 1);
    int32_t taken = 0;
    for (int32_t i = 0; i < sample.n; ++i) {
        w[i] = d[i] <= furthest ? 1 : 0;
        taken += d[i] <= furthest;
    }
    weigh(sample, sums, w, fit);
    return taken;
}

int32_t bacon(const Sample& sample, const Sums& sums, const BaconRule& rule, double* w, double* d, Fit& fit) {
    const int32_t q = sample.q, n = sample.n;
    if (n <= q) return SSStatusNotPositiveDefinite;
    Scratch room(room_for(n));
    if (!room.block) return SSStatusAllocation;
    double* spare = room.take(n);
    int32_t status = first_distances(sample, sums, rule.from_medians, d, fit);
    if (status != SSStatusOk) return status;

    // Four observations for each component; more while they lie in a subspace.
    int32_t wanted = 4 * q < n / 2 ? 4 * q : n / 2, r;
    if (wanted <= q) wanted = q + 1;
    for (;;) {
        r = fit_nearest(sample, sums, wanted, d, spare, w, fit);
        status = factor(sample, fit);
        if (status == SSStatusOk) break;
        if (r == n) return status;
        wanted = r + (r / 2 < n - r ? r / 2 : n - r);
        if (wanted == r) ++wanted;
    }

    const double quantile = chi_square_quantile(q, rule.alpha / n);
    for (int32_t growth = 0; growth < most_growths; ++growth) {
        // The covariance of a subset of r has the divisor r - 1.
        squared_distances(sample, sums, fit, d);
        const double corrected = correction(q, n, r);
        const double limit = corrected * corrected * quantile * r / (r - 1);
        int32_t taken = 0;
        for (int32_t i = 0; i < n; ++i) {
            w[i] = d[i] < limit ? 1 : 0;
            taken += d[i] < limit;
        }
        if (taken <= q) return SSStatusNotPositiveDefinite;
        const int32_t step = taken > r ? taken - r : r - taken;
        r = taken;
        weigh(sample, sums, w, fit);
        status = factor(sample, fit);
        if (status != SSStatusOk || step <= rule.stop * n) return status;
    }
    return SSStatusOk;
}

}  // namespace orv::stats
