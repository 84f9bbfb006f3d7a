// Multinomial: Poisson numbers in proportion to the probabilities, with a sum just below the number of trials; the trials that
// are left fall one by one. Independent Poisson numbers with a given sum are multinomial. A sum that is too great is drawn
// again.
#include "distrib/transforms.h"
#include "services/export.h"
#include "services/services.h"
#include "streams/record.h"

#include <string.h>

using namespace orv::distrib;
namespace streams = orv::streams;

namespace {

// Memory for doubles, given back at the end of the scope.
struct Doubles {
    double* data;

    explicit Doubles(int32_t n)
        : data(static_cast<double*>(
              orv_serv_allocate(sizeof(double) * static_cast<size_t>(n), streams::block_alignment))) {}
    ~Doubles() { orv_serv_deallocate(data); }
    Doubles(const Doubles&) = delete;
    Doubles& operator=(const Doubles&) = delete;
};

bool are_probabilities(int32_t k, const double* p) {
    if (k <= 0) return false;
    double sum = 0;
    for (int32_t j = 0; j < k; ++j) {
        if (!(p[j] >= 0)) return false;
        sum += p[j];
    }
    return sum >= 0.999 && sum <= 1.001;
}

// Lets `trials` more fall, each where the cumulative probability passes its uniform; the sum of p need not be quite 1, and
// what lies above all of it falls where the last probability above 0 is.
int32_t add_trials(Stream* stream, int32_t trials, int32_t k, int32_t* row, const double* p) {
    const Doubles u(trials);
    if (!u.data) return StatusNoMemory;
    const int32_t status = draw_uniforms(stream, trials, u.data, 0.0, 1.0);
    if (status < 0) return status;
    int32_t last = k - 1;
    while (last > 0 && p[last] == 0) --last;
    for (int32_t i = 0; i < trials; ++i) {
        int32_t j = 0;
        for (double sum = p[0]; j < last && !(sum > u.data[i]);) sum += p[++j];
        ++row[j];
    }
    return status;
}

// A number that a Poisson mean near 2^31 has made too great for an integer is negative.
int64_t sum_of(int32_t k, const int32_t* row, int64_t too_great) {
    int64_t sum = 0;
    for (int32_t j = 0; j < k; ++j) {
        if (row[j] < 0) return too_great;
        sum += row[j];
    }
    return sum;
}

int32_t draw_row(Stream* stream, int32_t ntrial, int32_t k, int32_t* row, const double* lambda, const double* p) {
    for (;;) {
        const int32_t status = _kuziRngPoissonV(0, stream, k, row, lambda);
        if (status < 0) return status;
        const int64_t sum = sum_of(k, row, int64_t{ntrial} + 1);
        if (sum == ntrial) return status;
        if (sum < ntrial) return add_trials(stream, static_cast<int32_t>(ntrial - sum), k, row, p);
    }
}

int32_t draw_rows(Stream* stream, int32_t n, int32_t* r, int32_t ntrial, int32_t k, const double* p) {
    constexpr int32_t few_trials = 16;
    const double root = __kuzdSqrt(ntrial);
    const double aim = root >= k ? ntrial - k : ntrial - root - __kuzdSqrt(k - root);
    // Fewer than none would be a Poisson mean below 0, and numbers that are not Poisson.
    const double scale = aim > 0 ? aim : 0;
    const Doubles lambda(k);
    if (!lambda.data) return StatusNoMemory;
    for (int32_t j = 0; j < k; ++j) lambda.data[j] = scale * p[j];
    const bool one_by_one = ntrial <= few_trials && k >= few_trials * ntrial;
    int32_t status = StatusOk;
    for (int32_t i = 0; i < n; ++i) {
        int32_t* row = r + size_t(i) * size_t(k);
        if (one_by_one) {
            memset(row, 0, sizeof *row * size_t(k));
            status = add_trials(stream, ntrial, k, row, p);
        } else {
            status = draw_row(stream, ntrial, k, row, lambda.data, p);
        }
        if (status < 0) return status;
    }
    return status;
}

}  // namespace

ORV_API int32_t _kuziRngMultinomial(int32_t, Stream* stream, int32_t n, int32_t* r, int32_t ntrial, int32_t k,
                                    const double* p) {
    if (n <= 0) return StatusOk;
    if (ntrial == 0) {
        if (k > 0) memset(r, 0, sizeof *r * size_t(n) * size_t(k));
        return StatusOk;
    }
    if (!are_probabilities(k, p)) return MultinomialStatusBadProbabilities;
    if (k == 1) {
        for (int32_t i = 0; i < n; ++i) r[i] = ntrial;
        return StatusOk;
    }
    return draw_rows(stream, n, r, ntrial, k, p);
}
