// The methods without data: results from the sums and the cross-product in the task's arrays.
#include "stats/basic/from_sums.h"

#include "services/services.h"

namespace orv::stats {
namespace {

// One row a moment: its array, the sum it comes from. The second central moment alone is scaled to be unbiased.
struct Source {
    int32_t moment, sum;
};

constexpr Source sources[] = {
    {array_mean, array_sum},
    {array_raw2, array_raw_sum2},
    {array_raw3, array_raw_sum3},
    {array_raw4, array_raw_sum4},
    {array_central2, array_central_sum2},
    {array_central3, array_central_sum3},
    {array_central4, array_central_sum4},
};

template <class T>
double value_at(const Request& request, int32_t array, int32_t j) {
    const T* values = request.values<T>(array);
    return values ? static_cast<double>(values[j]) : 0;
}

template <class T>
int32_t matrices_from_cross_product(const Request& request, Weights weights) {
    const ptrdiff_t p = request.p;
    const size_t count = static_cast<size_t>(p) * p + p;
    double* c =
        count < size_t{1} << 28 ? static_cast<double*>(orv_serv_allocate(count * sizeof(double), 128)) : nullptr;
    if (!c) return SSStatusAllocation;
    const Matrix<T> from = request.matrix<T>(array_cp);
    for (int32_t j = 0; j < request.p; ++j)
        for (int32_t i = 0; i <= j; ++i) c[j * p + i] = static_cast<double>(from.data[element_at(from.form, i, j, p)]);
    write_matrices<T>(request, c, weights, c + p * p);
    orv_serv_deallocate(c);
    return SSStatusOk;
}

}  // namespace

template <class T>
int32_t finish_from_sums(const Request& request) {
    const SSTask* task = request.task;
    const T* kept = static_cast<const T*>(task->accumWeight);
    const Weights weights =
        kept ? Weights{static_cast<double>(kept[0]), static_cast<double>(kept[1]), sizeof(T) == sizeof(float)}
             : Weights{request.count, request.count, false};
    if (weights.w == 0) {
        zero_moments<T>(request);
        return SSStatusOk;
    }
    // cp is an input here: what is written is what was asked for.
    Request written = request;
    written.arrays = request.asked;
    if (written.matrices()) {
        const int32_t status = matrices_from_cross_product<T>(written, weights);
        if (status != SSStatusOk) return status;
    }
    const double variance_factor = weights.variance_factor();
    for (int32_t j = 0; j < request.p; ++j) {
        if (!request.takes_part(j)) continue;
        for (const Source& row : sources) {
            if (!written.writes(row.moment)) continue;
            const double factor = row.moment == array_central2 ? variance_factor : 1 / weights.w;
            request.values<T>(row.moment)[j] = static_cast<T>(value_at<T>(request, row.sum, j) * factor);
        }
        write_shape<T>(written, j, value_at<T>(request, array_mean, j), value_at<T>(request, array_central2, j),
                       value_at<T>(request, array_central3, j), value_at<T>(request, array_central4, j));
    }
    return SSStatusOk;
}

template int32_t finish_from_sums<double>(const Request&);
template int32_t finish_from_sums<float>(const Request&);

}  // namespace orv::stats
