#include "stats/robust/fit.h"

#include "stats/dense.h"
#include "stats/functions.h"

#include <float.h>
#include <string.h>

namespace orv::stats {
namespace {

constexpr int32_t block_observations = 128;

uint64_t squared(int32_t q) { return static_cast<uint64_t>(q) * static_cast<uint64_t>(q); }

// [z - centre, 1] times the root of the weight, of observations [first, first + count), one after another.
void weighted_block(const Sample& sample, const double* centre, const double* w, int32_t first, int32_t count,
                    double* block) {
    const int32_t q = sample.q;
    for (int32_t i = first; i < first + count; ++i) {
        const double* z = sample.z + ptrdiff_t{i} * q;
        const double root = w ? __builtin_sqrt(w[i]) : 1;
        for (int32_t j = 0; j < q; ++j) *block++ = root * (z[j] - centre[j]);
        *block++ = root;
    }
}

}  // namespace

uint64_t fit_bytes(const Data& data) { return room_for(data.p) + 2 * room_for(squared(data.p)); }

Fit take_fit(const Sample& sample, Scratch& room) {
    return {room.take(sample.q), room.take(squared(sample.q)), room.take(squared(sample.q)), 0};
}

void copy_fit(const Sample& sample, const Fit& from, Fit& to) {
    const size_t matrix = sizeof(double) * squared(sample.q);
    memcpy(to.centre, from.centre, sizeof(double) * sample.q);
    memcpy(to.cov, from.cov, matrix);
    memcpy(to.root, from.root, matrix);
    to.log_det = from.log_det;
}

// A few components may have more parts, and take more room, than many.
uint64_t sums_bytes(const Data& data) {
    uint64_t most = 0;
    for (int32_t q = 1; q <= data.p; ++q) {
        const uint64_t parts = static_cast<uint64_t>(part_count(data.n, q)), order = static_cast<uint64_t>(q) + 1;
        const uint64_t bytes = room_for(parts * order * order) + room_for(parts * order * block_observations);
        if (bytes > most) most = bytes;
    }
    return most;
}

Sums take_sums(const Sample& sample, Scratch& room) {
    const uint64_t parts = part_count(sample), order = static_cast<uint64_t>(sample.q) + 1;
    double* matrices = room.take(parts * order * order);
    return {matrices, room.take(parts * order * block_observations)};
}

int32_t factor(const Sample& sample, Fit& fit) {
    const int32_t q = sample.q;
    // Of a component's variance, what the components before it leave unexplained.
    const double least = 64 * DBL_EPSILON * q;
    int32_t info = 0;
    memcpy(fit.root, fit.cov, sizeof(double) * squared(q));
    Dense<double>::potrf("l", &q, fit.root, &q, &info);
    if (info != 0) return SSStatusNotPositiveDefinite;
    fit.log_det = 0;
    for (int32_t j = 0; j < q; ++j) {
        const double pivot = fit.root[ptrdiff_t{j} * (q + 1)], variance = fit.cov[ptrdiff_t{j} * (q + 1)];
        if (!(pivot * pivot > least * variance) || !(pivot <= DBL_MAX)) return SSStatusNotPositiveDefinite;
        fit.log_det += 2 * natural_logarithm(pivot);
        for (int32_t i = 0; i < j; ++i) fit.root[ptrdiff_t{j} * q + i] = 0;
    }
    Dense<double>::trtri("l", "n", &q, fit.root, &q, &info);
    return info == 0 ? SSStatusOk : SSStatusNotPositiveDefinite;
}

void squared_distances(const Sample& sample, const Sums& sums, const Fit& fit, double* d) {
    const int32_t q = sample.q;
    each_part(sample, int64_t{q} * q, [&](int32_t part, int32_t first, int32_t last) {
        double* block = sums.blocks + size_t{block_observations} * (q + 1) * part;
        const double one = 1;
        for (int32_t i = first; i < last; i += block_observations) {
            const int32_t count = last - i < block_observations ? last - i : block_observations;
            const double* z = sample.z + ptrdiff_t{i} * q;
            for (int32_t k = 0; k < count; ++k)
                for (int32_t j = 0; j < q; ++j) block[ptrdiff_t{k} * q + j] = z[ptrdiff_t{k} * q + j] - fit.centre[j];
            Dense<double>::trmm("l", "l", "n", "n", &q, &count, &one, fit.root, &q, block, &q);
            for (int32_t k = 0; k < count; ++k) {
                double square = 0;
                for (int32_t j = 0; j < q; ++j) square += block[ptrdiff_t{k} * q + j] * block[ptrdiff_t{k} * q + j];
                d[i + k] = square;
            }
        }
    });
}

const double* sums_about(const Sample& sample, const Sums& sums, const double* centre, const double* w) {
    const int32_t order = sample.q + 1;
    const size_t matrix = squared(order);
    each_part(sample, int64_t{order} * order, [&](int32_t part, int32_t first, int32_t last) {
        double* c = sums.parts + matrix * part;
        double* block = sums.blocks + size_t{block_observations} * order * part;
        const double one = 1;
        memset(c, 0, sizeof(double) * matrix);
        for (int32_t i = first; i < last; i += block_observations) {
            const int32_t count = last - i < block_observations ? last - i : block_observations;
            weighted_block(sample, centre, w, i, count, block);
            Dense<double>::syrk("u", "n", &order, &count, &one, block, &order, &one, c, &order);
        }
    });
    for (int32_t part = 1; part < part_count(sample); ++part)
        for (size_t k = 0; k < matrix; ++k) sums.parts[k] += sums.parts[matrix * part + k];
    return sums.parts;
}

double weigh(const Sample& sample, const Sums& sums, const double* w, Fit& fit) {
    const int32_t q = sample.q, order = q + 1;
    for (bool again = false;; again = true) {
        const double* c = sums_about(sample, sums, fit.centre, w);
        const double* shift = c + ptrdiff_t{q} * order;  // the last column
        const double whole = shift[q];
        if (!(whole > 0)) return 0;
        bool far = false;
        for (int32_t j = 0; j < q; ++j) {
            const double move = shift[j] / whole, square = c[ptrdiff_t{j} * (order + 1)] / whole;
            // The variance is what is left of the square about the old centre: here, less than a hundredth.
            far |= square - move * move < 0.01 * square;
            for (int32_t i = 0; i <= j; ++i) {
                const double value = c[ptrdiff_t{j} * order + i] / whole - shift[i] / whole * move;
                fit.cov[ptrdiff_t{j} * q + i] = fit.cov[ptrdiff_t{i} * q + j] = value;
            }
            fit.centre[j] += move;
        }
        if (!far || again) return whole;
    }
}

double change(const Sample& sample, const Fit& before, const Fit& after) {
    const int32_t q = sample.q;
    double most = 0;
    const auto take = [&](double difference, double variance) {
        const double square = difference * difference / variance;
        if (!(square <= most)) most = square;
    };
    for (int32_t j = 0; j < q; ++j) {
        const double variance = before.cov[ptrdiff_t{j} * (q + 1)];
        take(after.centre[j] - before.centre[j], variance);
        for (int32_t i = 0; i <= j; ++i) {
            const ptrdiff_t at = ptrdiff_t{j} * q + i;
            take(after.cov[at] - before.cov[at], variance * before.cov[ptrdiff_t{i} * (q + 1)]);
        }
    }
    return __builtin_sqrt(most);
}

}  // namespace orv::stats
