// The spectral construction of a correlation matrix: with C = S diag(l) S', negative eigenvalues become 0, B = S diag(sqrt l),
// and the rows of B are scaled to length 1; the result is B B'.
//
// Source: R. Rebonato, P. Jaeckel, The most general methodology to create a valid correlation matrix for risk management and
// option pricing purposes, Journal of Risk 2 (1999).
#include "stats/dense.h"
#include "stats/entry.h"
#include "stats/multivariate/components.h"

#include <cmath>

namespace orv::stats {
namespace {

// c, q by q, becomes B B', upper triangle. False where the eigenvalues are not to be had.
bool construct(int32_t q, double* c, double* eigenvalues, double* work, int32_t work_size, double* product) {
    int32_t info;
    Dense<double>::syev("v", "u", &q, c, &q, eigenvalues, work, &work_size, &info);
    if (info != 0) return false;
    for (int32_t k = 0; k < q; ++k) {
        const double root = eigenvalues[k] > 0 ? std::sqrt(eigenvalues[k]) : 0;
        for (int32_t i = 0; i < q; ++i) c[ptrdiff_t{k} * q + i] *= root;
    }
    for (int32_t i = 0; i < q; ++i) {
        double square = 0;
        for (int32_t k = 0; k < q; ++k) square += c[ptrdiff_t{k} * q + i] * c[ptrdiff_t{k} * q + i];
        const double scale = square > 0 ? 1 / std::sqrt(square) : 0;
        for (int32_t k = 0; k < q; ++k) c[ptrdiff_t{k} * q + i] *= scale;
    }
    const double one = 1, none = 0;
    Dense<double>::syrk("u", "n", &q, &q, &one, c, &q, &none, product, &q);
    return true;
}

template <class T>
int32_t parametrize(SSTask* task, uint64_t estimates, uint64_t method, const orv_services*) {
    Data data;
    if (const int32_t status = check_estimates(estimates)) return status;
    if (const int32_t status = check_method(method)) return status;
    if (const int32_t status = read_components(task, data)) return status;
    if (!(estimates & ORV_SS_COR_PARAMETRIZATION)) return SSStatusOk;
    const Needed needed[] = {{task->cor, SSStatusCor},
                             {task->corStorage, SSStatusStorage},
                             {task->corParamResult, SSStatusCorParamResult},
                             {task->corParamStorage, SSStatusStorage}};
    if (const int32_t status = first_missing(needed)) return status;

    const uint64_t p = static_cast<uint64_t>(data.p);
    constexpr uint64_t work_columns = 34;  // the best size is (block + 2) p, and LAPACK's block is 32
    const Scratch scratch(sizeof(double) * (2 * p * p + p + work_columns * p) + sizeof(int32_t) * p);
    if (!scratch.block) return SSStatusAllocation;
    double* c = reinterpret_cast<double*>(scratch.block);
    double* product = c + p * p;
    double* eigenvalues = product + p * p;
    double* work = eigenvalues + p;
    const Components chosen = taking_part(data, reinterpret_cast<int32_t*>(work + work_columns * p));
    const int32_t q = chosen.count;
    if (q == 0) return SSStatusOk;
    gather(Matrix<const T>{static_cast<const T*>(task->cor), read_form(task, task->corStorage)}, data.p, chosen, c);
    bool finite = true;
    for (int32_t b = 0; b < q; ++b)
        for (int32_t a = 0; a <= b; ++a) finite &= std::isfinite(c[ptrdiff_t{b} * q + a]);
    const bool made = finite && construct(q, c, eigenvalues, work, static_cast<int32_t>(work_columns * p), product);
    const Matrix<T> to{static_cast<T*>(task->corParamResult), read_form(task, task->corParamStorage)};
    scatter(chosen, data.p, to, [&](int32_t a, int32_t b) {
        if (!made) return std::numeric_limits<double>::quiet_NaN();
        return a == b ? 1.0 : clamped<T>(product[ptrdiff_t{b} * q + a]);
    });
    return SSStatusOk;
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(CorParametrization, parametrize)
