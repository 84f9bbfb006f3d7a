#include "stats/missing/normal_model.h"

#include "stats/dense.h"

#include <orv/random.h>

#include <string.h>

namespace orv::stats {
namespace {

uint64_t squared(int32_t q) { return static_cast<uint64_t>(q) * static_cast<uint64_t>(q); }

// To what the data, all values of which are known, leave of the prior: the centre becomes that of the mean, and the covariance
// the scale matrix of its own distribution. `fit` has the data's mean and covariance, of divisor n.
void combine(const Sample& sample, const Prior& prior, Fit& fit) {
    const double n = sample.n, tau = prior.tau, weight = n * tau / (n + tau);
    const int32_t q = sample.q;
    for (int32_t j = 0; j < q; ++j)
        for (int32_t i = 0; i < q; ++i) {
            const double off = (fit.centre[i] - prior.mean[i]) * (fit.centre[j] - prior.mean[j]);
            const ptrdiff_t at = ptrdiff_t{j} * q + i;
            fit.cov[at] = n * fit.cov[at] + prior.scale[at] + weight * off;
        }
    for (int32_t j = 0; j < q; ++j) fit.centre[j] = (n * fit.centre[j] + tau * prior.mean[j]) / (n + tau);
}

// The lower Cholesky factor in place, with zeros above.
int32_t lower_factor(int32_t n, double* a) {
    for (int32_t j = 0; j < n; ++j)
        for (int32_t i = 0; i < j; ++i) a[ptrdiff_t{i} * n + j] = a[ptrdiff_t{j} * n + i];
    int32_t info = 0;
    Dense<double>::potrf("l", &n, a, &n, &info);
    if (info != 0) return SSStatusNotPositiveDefinite;
    for (int32_t j = 0; j < n; ++j) {
        const double pivot = a[ptrdiff_t{j} * (n + 1)];
        if (!(pivot > 0 && pivot - pivot == 0)) return SSStatusNotPositiveDefinite;
        for (int32_t i = 0; i < j; ++i) a[ptrdiff_t{j} * n + i] = 0;
    }
    return SSStatusOk;
}

int32_t normal_numbers(Stream* stream, int32_t count, double* to) {
    return count == 0 ? StatusOk : _kuzdRngGaussian(GaussianInverseCdf, stream, count, to, 0, 1);
}

// The fit from what combine() leaves, by Bartlett's decomposition: with the scale matrix L L' and a lower triangular T, whose
// diagonal are roots of chi-square numbers of falling degrees of freedom and the rest normal numbers, the covariance is G G' with
// G = L T'^-1, and the centre moves by G times normal numbers.
int32_t draw(const Sample& sample, const Prior& prior, Stream* stream, Fit& fit) {
    const int32_t q = sample.q;
    Scratch room(2 * room_for(squared(q)) + room_for(q));
    if (!room.block) return SSStatusAllocation;
    double* t = room.take(squared(q));
    double* g = room.take(squared(q));
    double* step = room.take(q);
    memcpy(g, fit.cov, sizeof(double) * squared(q));
    if (const int32_t status = lower_factor(q, g)) return status;
    const double freedom = prior.freedom + sample.n;
    for (int32_t j = 0; j < q; ++j) {
        double* column = t + ptrdiff_t{j} * q;
        for (int32_t i = 0; i < j; ++i) column[i] = 0;
        if (const int32_t status = _kuzdRngGamma(0, stream, 1, column + j, 0.5 * (freedom - j), 0, 2)) return status;
        column[j] = __builtin_sqrt(column[j]);
        if (const int32_t status = normal_numbers(stream, q - j - 1, column + j + 1)) return status;
    }
    if (const int32_t status = normal_numbers(stream, q, step)) return status;
    int32_t info = 0;
    Dense<double>::trtri("l", "n", &q, t, &q, &info);
    if (info != 0) return SSStatusNotPositiveDefinite;
    const double one = 1, zero = 0, spread = 1 / __builtin_sqrt(sample.n + prior.tau);
    const int32_t next = 1;
    Dense<double>::trmm("r", "l", "t", "n", &q, &q, &one, t, &q, g, &q);
    Dense<double>::syrk("u", "n", &q, &q, &one, g, &q, &zero, fit.cov, &q);
    for (int32_t j = 0; j < q; ++j)
        for (int32_t i = 0; i < j; ++i) fit.cov[ptrdiff_t{i} * q + j] = fit.cov[ptrdiff_t{j} * q + i];
    Dense<double>::gemv("n", &q, &q, &spread, g, &q, step, &next, &one, fit.centre, &next);
    return SSStatusOk;
}

}  // namespace

int32_t maximise(const Incomplete& incomplete, const Sums& sums, const Prior& prior, int32_t most_iterations,
                 double tolerance, double* z, Fit& fit) {
    Sample filled = incomplete.sample;
    filled.z = z;
    const int32_t q = filled.q, n = filled.n;
    Scratch room(regression_bytes(q) + room_for(q) + 3 * room_for(squared(q)));
    if (!room.block) return SSStatusAllocation;
    Regression regression = take_regression(q, room);
    Fit before = take_fit(filled, room);
    double* uncertain = room.take(squared(q));
    for (int32_t iteration = 0; iteration < most_iterations; ++iteration) {
        memset(uncertain, 0, sizeof(double) * squared(q));
        for (int32_t at = 0; at < incomplete.group_count; ++at) {
            const Group& group = incomplete.groups[at];
            if (const int32_t status = regress(incomplete, group, fit, regression)) return status;
            const int32_t missing = regression.missing;
            fill_in(incomplete, group, fit, regression, z, [=](int32_t count, double* to) {
                memset(to, 0, sizeof(double) * missing * count);
                return int32_t{SSStatusOk};
            });
            for (int32_t k = 0; k < missing; ++k)
                for (int32_t i = 0; i < missing; ++i)
                    uncertain[ptrdiff_t{regression.component[regression.seen + k]} * q +
                              regression.component[regression.seen + i]] +=
                        (group.last - group.first) * regression.residual[ptrdiff_t{k} * missing + i];
        }
        copy_fit(filled, fit, before);
        weigh(filled, sums, nullptr, fit);
        for (size_t at = 0; at < squared(q); ++at) fit.cov[at] += uncertain[at] / n;
        if (prior.given) {
            combine(filled, prior, fit);
            // The mode's divisor.
            for (size_t at = 0; at < squared(q); ++at) fit.cov[at] /= n + prior.freedom + q + 2;
        }
        if (change(filled, before, fit) <= tolerance) break;
    }
    return factor(filled, fit);
}

int32_t augment(const Incomplete& incomplete, const Sums& sums, const Prior& prior, Stream* stream, double* z,
                Fit& fit) {
    Sample filled = incomplete.sample;
    filled.z = z;
    filled.services = nullptr;
    Scratch room(regression_bytes(filled.q));
    if (!room.block) return SSStatusAllocation;
    Regression regression = take_regression(filled.q, room);
    for (int32_t at = 0; at < incomplete.group_count; ++at) {
        const Group& group = incomplete.groups[at];
        if (const int32_t status = regress(incomplete, group, fit, regression)) return status;
        const int32_t missing = regression.missing;
        if (missing == 0) continue;
        if (const int32_t status = lower_factor(missing, regression.residual)) return status;
        const int32_t status = fill_in(incomplete, group, fit, regression, z, [&](int32_t count, double* to) {
            const double one = 1;
            if (const int32_t failed = normal_numbers(stream, missing * count, to)) return failed;
            Dense<double>::trmm("l", "l", "n", "n", &missing, &count, &one, regression.residual, &missing, to,
                                &missing);
            return int32_t{SSStatusOk};
        });
        if (status != SSStatusOk) return status;
    }
    weigh(filled, sums, nullptr, fit);
    combine(filled, prior, fit);
    return draw(filled, prior, stream, fit);
}

}  // namespace orv::stats
