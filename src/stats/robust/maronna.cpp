#include "stats/chi_square.h"
#include "stats/robust/starts.h"

namespace orv::stats {
namespace {

// E min(d^2, k^2): E d^2 1(d < k) is q times the distribution function with two degrees of freedom more.
double bounded_mean(int32_t q, double k2) { return q * chi_square(q + 2, k2).lower + k2 * chi_square(q, k2).upper; }

}  // namespace

// An observation far out adds k^2 to a sum of bounded squares whose mean is E min(d^2, k^2): the share of them that carries it
// off to infinity is E / k^2. The share that concentrates it on a subspace grows as that falls, and at q k^2 = (q + 1) E
// the two are the same.
Huber huber_weights(int32_t q) {
    double low = 0, high = q + 1;  // E is at most q, so the root is not beyond
    for (int32_t iteration = 0; iteration < 100; ++iteration) {
        const double k2 = 0.5 * (low + high);
        (q * k2 > (q + 1) * bounded_mean(q, k2) ? high : low) = k2;
    }
    return {__builtin_sqrt(high), bounded_mean(q, high) / q};
}

int32_t maronna(const Sample& sample, const Sums& sums, double tolerance, int32_t most_iterations, double* w, double* d,
                Fit& fit) {
    const int32_t q = sample.q, n = sample.n;
    const Huber huber = huber_weights(q);
    Scratch room(room_for(q) + 2 * room_for(uint64_t(q) * q));
    if (!room.block) return SSStatusAllocation;
    Fit before = take_fit(sample, room);

    for (int32_t j = 0; j < q; ++j) fit.centre[j] = 0;
    weigh(sample, sums, nullptr, fit);
    for (int32_t iteration = 0; iteration < most_iterations; ++iteration) {
        if (const int32_t status = factor(sample, fit)) return status;
        squared_distances(sample, sums, fit, d);
        copy_fit(sample, fit, before);
        for (int32_t i = 0; i < n; ++i) w[i] = d[i] > huber.k * huber.k ? huber.k * huber.k / d[i] : 1;
        const double* c = sums_about(sample, sums, before.centre, w);
        for (int32_t j = 0; j < q; ++j)
            for (int32_t i = 0; i <= j; ++i)
                fit.cov[ptrdiff_t{j} * q + i] = fit.cov[ptrdiff_t{i} * q + j] =
                    c[ptrdiff_t{j} * (q + 1) + i] / (n * huber.scale);
        for (int32_t i = 0; i < n; ++i) w[i] = __builtin_sqrt(w[i]);
        const double* moves = sums_about(sample, sums, before.centre, w) + ptrdiff_t{q} * (q + 1);
        for (int32_t j = 0; j < q; ++j) fit.centre[j] += moves[j] / moves[q];
        if (change(sample, before, fit) <= tolerance) break;
    }
    return factor(sample, fit);
}

}  // namespace orv::stats
