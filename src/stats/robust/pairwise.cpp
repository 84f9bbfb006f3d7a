#include "stats/dense.h"
#include "stats/robust/order.h"
#include "stats/robust/starts.h"

namespace orv::stats {
namespace {

struct Place {
    double centre, spread;
};

Place place_of(double* values, int32_t n) {
    const double centre = median(values, n);
    return {centre, median_deviation(values, n, centre)};
}

// work(item, values) for each of so many items, over threads; `values` has room for n.
template <class Work>
int32_t each_with_values(const Sample& sample, int32_t items, Work work) {
    int32_t threads = thread_count(sample.services, int64_t{items} * sample.n * 16, sample.n);
    if (threads > items) threads = items;
    const Scratch values(room_for(sample.n) * threads);
    if (!values.block) return SSStatusAllocation;
    auto part = [&](int32_t index) {
        double* mine = reinterpret_cast<double*>(values.block + room_for(sample.n) * index);
        const Share share = share_of(items, threads, index);
        for (int32_t item = share.first; item < share.last; ++item) work(item, mine);
        return int32_t{SSStatusOk};
    };
    return fan_out(sample.services, threads, part);
}

// cov(a, b) = (var(a + b) - var(a - b)) / 4, with robust spreads.
int32_t pairwise_matrix(const Sample& sample, double* c) {
    const int32_t q = sample.q, n = sample.n;
    return each_with_values(sample, q * (q + 1) / 2, [&](int32_t pair, double* values) {
        int32_t k = 0;
        while ((k + 1) * (k + 2) / 2 <= pair) ++k;
        const int32_t j = pair - k * (k + 1) / 2;
        const auto spread = [&](double sign) {
            for (int32_t i = 0; i < n; ++i)
                values[i] = sample.z[ptrdiff_t{i} * q + j] + sign * sample.z[ptrdiff_t{i} * q + k];
            return place_of(values, n).spread;
        };
        const double sum = spread(1), difference = j == k ? 0 : spread(-1);
        c[ptrdiff_t{k} * q + j] = c[ptrdiff_t{j} * q + k] = 0.25 * (sum * sum - difference * difference);
    });
}

}  // namespace

int32_t pairwise(const Sample& sample, const Sums& sums, double* w, double* d, Fit& fit) {
    const int32_t q = sample.q, n = sample.n;
    if (n <= q) return SSStatusNotPositiveDefinite;
    const int32_t work_size = 34 * q;
    Scratch room(room_for(uint64_t(q) * q) + 3 * room_for(q) + room_for(work_size) + room_for(n));
    if (!room.block) return SSStatusAllocation;
    double* vectors = room.take(uint64_t(q) * q);
    double* values = room.take(q);
    double* centres = room.take(q);
    double* spreads = room.take(q);
    double* work = room.take(work_size);
    double* spare = room.take(n);

    if (const int32_t status = pairwise_matrix(sample, vectors)) return status;
    int32_t info = 0;
    Dense<double>::syev("v", "l", &q, vectors, &q, values, work, &work_size, &info);
    if (info != 0) return SSStatusNotPositiveDefinite;
    const int32_t step = 1;
    const double one = 1, zero = 0;
    const int32_t status = each_with_values(sample, q, [&](int32_t k, double* scores) {
        Dense<double>::gemv("t", &q, &n, &one, sample.z, &q, vectors + ptrdiff_t{k} * q, &step, &zero, scores, &step);
        const Place place = place_of(scores, n);
        centres[k] = place.centre;
        spreads[k] = place.spread;
    });
    if (status != SSStatusOk) return status;

    Dense<double>::gemv("n", &q, &q, &one, vectors, &q, centres, &step, &zero, fit.centre, &step);
    for (int32_t k = 0; k < q; ++k)
        for (int32_t j = 0; j < q; ++j) vectors[ptrdiff_t{k} * q + j] *= spreads[k];
    Dense<double>::gemm("n", "t", &q, &q, &q, &one, vectors, &q, vectors, &q, &zero, fit.cov, &q);
    if (const int32_t singular = factor(sample, fit)) return singular;
    squared_distances(sample, sums, fit, d);
    fit_nearest(sample, sums, (n + q + 1) / 2, d, spare, w, fit);
    return factor(sample, fit);
}

}  // namespace orv::stats
