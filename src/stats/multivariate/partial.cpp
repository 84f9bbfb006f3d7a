// Partial covariance: of the variables kept, given those conditioned on. With A the covariance of the kept, C of the others and B
// between them, it is the Schur complement A - B' C^- B.
//
// C is brought to a unit diagonal first, so that a Cholesky pivot is the share of a variable's variance that those before it
// leave unexplained. Where the least pivot is no more than the inputs' rounding, C is singular: its generalised inverse comes from
// the eigenvalues above that limit. The complement is the same for every generalised inverse.
//
// Source: G. Marsaglia, Conditional means and covariances of normal variables with singular covariance matrix, Journal of the
// American Statistical Association 59 (1964).
#include "stats/dense.h"
#include "stats/entry.h"
#include "stats/multivariate/components.h"

#include <string.h>

#include <cmath>

namespace orv::stats {
namespace {

struct Blocks {
    Components kept, given;
    double *a, *b, *c;  // kept by kept, given by kept, given by given; upper triangles by columns
    double* y;          // given by kept: A - y'y is the complement
    double* spare;      // given by given
    double* eigenvalues;
    double* work;
    int32_t work_size;
};

// Bound of what counts as 0 beside 1, well above the rounding that a singular matrix is left with.
template <class T>
double rank_limit(int32_t given) {
    return 100.0 * given * epsilon_of<T>;
}

// The given variables to unit variance; false where a variance is negative or anything is not finite.
bool standardise(const Blocks& blocks) {
    const int32_t r = blocks.given.count, q = blocks.kept.count;
    double* scale = blocks.eigenvalues;
    for (int32_t j = 0; j < r; ++j) {
        const double variance = blocks.c[ptrdiff_t{j} * (r + 1)];
        if (!(variance >= 0)) return false;
        scale[j] = variance > 0 ? 1 / std::sqrt(variance) : 1;
    }
    bool finite = true;
    for (int32_t j = 0; j < r; ++j)
        for (int32_t i = 0; i <= j; ++i) {
            double& c = blocks.c[ptrdiff_t{j} * r + i];
            c *= scale[i] * scale[j];
            finite &= std::isfinite(c);
        }
    for (int32_t j = 0; j < q; ++j)
        for (int32_t i = 0; i < r; ++i) blocks.b[ptrdiff_t{j} * r + i] *= scale[i];
    return finite;
}

// y = U'^-1 B with C = U'U. Returns the least pivot; 0 where C is singular to the limit, and then c and b are as before.
double by_cholesky(const Blocks& blocks, double limit) {
    const int32_t r = blocks.given.count, q = blocks.kept.count;
    double* u = blocks.spare;
    memcpy(u, blocks.c, sizeof(double) * r * r);
    if (!cholesky(r, u)) return 0;
    double least = 1;
    for (int32_t i = 0; i < r; ++i) {
        const double root = u[ptrdiff_t{i} * (r + 1)];
        if (root * root < least) least = root * root;
    }
    if (least <= limit) return 0;
    int32_t info;
    Dense<double>::trtri("u", "n", &r, u, &r, &info);
    const double one = 1;
    memcpy(blocks.y, blocks.b, sizeof(double) * r * q);
    Dense<double>::trmm("l", "u", "t", "n", &r, &q, &one, u, &r, blocks.y, &r);
    return least;
}

// y = L^-1/2 V' B over the eigenvalues L above the limit, V their vectors; the other rows are 0. Returns the least
// of them; 0 where one is negative.
double by_eigenvalues(const Blocks& blocks, double limit) {
    const int32_t r = blocks.given.count, q = blocks.kept.count;
    int32_t info;
    Dense<double>::syev("v", "u", &r, blocks.c, &r, blocks.eigenvalues, blocks.work, &blocks.work_size, &info);
    const double* eigenvalues = blocks.eigenvalues;
    if (info != 0 || eigenvalues[0] < -limit * eigenvalues[r - 1]) return 0;
    double least = 1;
    const double one = 1, none = 0;
    Dense<double>::gemm("t", "n", &r, &q, &r, &one, blocks.c, &r, blocks.b, &r, &none, blocks.y, &r);
    for (int32_t k = 0; k < r; ++k) {
        const bool counts = eigenvalues[k] > limit * eigenvalues[r - 1];
        const double scale = counts ? 1 / std::sqrt(eigenvalues[k]) : 0;
        if (counts && eigenvalues[k] < least) least = eigenvalues[k];
        for (int32_t j = 0; j < q; ++j) {
            double& y = blocks.y[ptrdiff_t{j} * r + k];
            y = counts ? y * scale : 0;
        }
    }
    return least;
}

// a becomes the complement. A variance of which nothing but rounding is left is 0, and its covariances with it; false where one is
// negative by more, rounding being as much larger as the least pivot is smaller.
bool complement(const Blocks& blocks, double limit, double least) {
    const int32_t r = blocks.given.count, q = blocks.kept.count;
    double* variances = blocks.work;
    for (int32_t j = 0; j < q; ++j) variances[j] = blocks.a[ptrdiff_t{j} * (q + 1)];
    const double one = 1, minus_one = -1;
    Dense<double>::syrk("u", "t", &q, &r, &minus_one, blocks.y, &r, &one, blocks.a, &q);
    for (int32_t j = 0; j < q; ++j) {
        const double left = blocks.a[ptrdiff_t{j} * (q + 1)];
        if (left < -limit / least * variances[j]) return false;
        if (!(left <= limit * variances[j])) continue;
        for (int32_t i = 0; i <= j; ++i) blocks.a[ptrdiff_t{j} * q + i] = 0;
        for (int32_t k = j + 1; k < q; ++k) blocks.a[ptrdiff_t{k} * q + j] = 0;
    }
    return true;
}

template <class T>
bool reduce(Matrix<const T> from, int32_t p, const Blocks& blocks) {
    const Components &kept = blocks.kept, &given = blocks.given;
    gather(from, p, kept, blocks.a);
    if (given.count == 0) return true;
    gather(from, p, given, blocks.c);
    for (int32_t j = 0; j < kept.count; ++j)
        for (int32_t i = 0; i < given.count; ++i)
            blocks.b[ptrdiff_t{j} * given.count + i] = element_of(from, p, given[i], kept[j]);
    const double limit = rank_limit<T>(given.count);
    if (!standardise(blocks)) return false;
    double least = by_cholesky(blocks, limit);
    if (least == 0) least = by_eigenvalues(blocks, limit);
    return least > 0 && complement(blocks, limit, least);
}

template <class T>
void write(const Data& kept, const double* a, SSTask* task) {
    const ptrdiff_t q = kept.p;
    const auto covariance = [&](int32_t i, int32_t j) { return a[j * q + i]; };
    if (T* cov = static_cast<T*>(task->partialCov))
        write_matrix(kept, Matrix<T>{cov, read_form(task, task->partialCovStorage)}, covariance);
    if (T* cor = static_cast<T*>(task->partialCor))
        write_matrix(kept, Matrix<T>{cor, read_form(task, task->partialCorStorage)}, [&](int32_t i, int32_t j) {
            const double vi = covariance(i, i), vj = covariance(j, j);
            return i == j ? vi / vi : clamped<T>(covariance(i, j) / std::sqrt(vi) / std::sqrt(vj));
        });
}

// Which variables are kept and which given; false for another value, or when none is kept.
bool sort_out(const SSTask* task, int32_t p, Components& kept, Components& given) {
    for (int32_t j = 0; j < p; ++j) {
        const int64_t use = read_integer(task->partialCountA, task->wideInts, j);
        if (use < -1 || use > 1) return false;
        if (use == 1) kept.number[kept.count++] = j;
        if (use == -1) given.number[given.count++] = j;
    }
    return kept.count > 0;
}

template <class T>
int32_t partial(SSTask* task, uint64_t estimates, uint64_t method, const orv_services*) {
    Data data;
    if (const int32_t status = check_estimates(estimates)) return status;
    if (const int32_t status = check_method(method)) return status;
    if (const int32_t status = read_components(task, data)) return status;
    if (!(estimates & ORV_SS_PARTIAL_COVARIANCE)) return SSStatusOk;
    const void* source = task->cov ? task->cov : task->cor;
    const void* result = task->partialCov ? task->partialCov : task->partialCor;
    const Needed needed[] = {{task->partialCountA, SSStatusPartialCountA},
                             {source, SSStatusCov},
                             {task->cov ? task->covStorage : task->corStorage, SSStatusStorage},
                             {result, SSStatusPartialCov},
                             {task->partialCov ? task->partialCovStorage : task, SSStatusStorage},
                             {task->partialCor ? task->partialCorStorage : task, SSStatusStorage}};
    if (const int32_t status = first_missing(needed)) return status;

    const uint64_t p = static_cast<uint64_t>(data.p);
    const Scratch numbers(sizeof(int32_t) * 2 * p);
    if (!numbers.block) return SSStatusAllocation;
    int32_t* number = reinterpret_cast<int32_t*>(numbers.block);
    Blocks blocks{};
    blocks.kept.number = number;
    blocks.given.number = number + p;
    if (!sort_out(task, data.p, blocks.kept, blocks.given)) return SSStatusPartialCountA;

    const uint64_t q = static_cast<uint64_t>(blocks.kept.count), r = static_cast<uint64_t>(blocks.given.count);
    const uint64_t work = 34 * r + q;  // the best size of syev for LAPACK's block of 32; variances
    const Scratch scratch(sizeof(double) * (q * q + 2 * q * r + 2 * r * r + r + work));
    if (!scratch.block) return SSStatusAllocation;
    blocks.a = reinterpret_cast<double*>(scratch.block);
    blocks.b = blocks.a + q * q;
    blocks.y = blocks.b + q * r;
    blocks.c = blocks.y + q * r;
    blocks.spare = blocks.c + r * r;
    blocks.eigenvalues = blocks.spare + r * r;
    blocks.work = blocks.eigenvalues + r;
    blocks.work_size = static_cast<int32_t>(work);
    const Matrix<const T> from{static_cast<const T*>(source),
                               read_form(task, task->cov ? task->covStorage : task->corStorage)};
    if (!reduce(from, data.p, blocks)) return SSStatusNotPositiveDefinite;
    Data kept{};
    kept.p = blocks.kept.count;
    write<T>(kept, blocks.a, task);
    return SSStatusOk;
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(PartialCovariance, partial)
