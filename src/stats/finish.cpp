// From accumulated sums to the estimates.
#include "stats/finish.h"

#include <emmintrin.h>

namespace orv::stats {
namespace {

template <class T>
void put(const Request& request, int32_t array, int32_t j, double value) {
    if (request.writes(array)) static_cast<T*>(array_of(request.task, array))[j] = static_cast<T>(value);
}

// 1 / sqrt of the diagonal, two at a time.
void reciprocal_roots(const double* c, ptrdiff_t p, double* roots) {
    const __m128d one = _mm_set1_pd(1);
    for (ptrdiff_t j = 0; j < p; ++j) roots[j] = c[j * (p + 1)];
    ptrdiff_t j = 0;
    for (; j + 2 <= p; j += 2) _mm_storeu_pd(roots + j, _mm_div_pd(one, _mm_sqrt_pd(_mm_loadu_pd(roots + j))));
    if (j < p) roots[j] = 1 / __builtin_sqrt(roots[j]);
}

}  // namespace

Component averages(const Powers& sums, double w, bool about_shift) {
    const double r = 1 / w;
    const double e = sums.a1 / w, a2 = sums.a2 * r, a3 = sums.a3 * r, a4 = sums.a4 * r;
    Component out;
    out.mean = sums.shift + e;
    if (about_shift) {
        out.central[2] = a2;
        out.central[3] = a3;
        out.central[4] = a4;
    } else {
        out.central[2] = a2 - e * e;
        out.central[3] = a3 - 3 * e * a2 + 2 * e * e * e;
        out.central[4] = a4 - 4 * e * a3 + 6 * e * e * a2 - 3 * e * e * e * e;
    }
    Powers raw = sums;
    if (sums.shift != 0) move_shift(raw, w, -sums.shift, 4);
    out.sums[1] = raw.a1;
    out.sums[2] = raw.a2;
    out.sums[3] = raw.a3;
    out.sums[4] = raw.a4;
    return out;
}

template <class T>
void write_shape(const Request& request, int32_t j, double mean, double c2, double c3, double c4) {
    put<T>(request, array_kurtosis, j, c4 / (c2 * c2) - 3);
    put<T>(request, array_skewness, j, c3 / __builtin_sqrt(c2 * c2 * c2));
    put<T>(request, array_variation, j, __builtin_sqrt(c2) / mean);
}

template <class T>
void write_component(const Request& request, int32_t j, const Component& values, Weights weights) {
    const double w = weights.w;
    const double c2 = values.central[2] * w * weights.variance_factor();
    double mean = values.mean;
    if (request.method == BasicUserMean && request.writes(array_mean))
        mean = static_cast<double>(static_cast<const T*>(request.task->mean)[j]);
    else
        put<T>(request, array_mean, j, mean);
    for (int32_t k = 0; k < 3; ++k) put<T>(request, array_raw2 + k, j, values.sums[k + 2] / w);
    put<T>(request, array_central2, j, c2);
    put<T>(request, array_central3, j, values.central[3]);
    put<T>(request, array_central4, j, values.central[4]);
    write_shape<T>(request, j, mean, c2, values.central[3], values.central[4]);
    put<T>(request, array_sum, j, values.sums[1]);
    for (int32_t k = 0; k < 3; ++k) {
        put<T>(request, array_raw_sum2 + k, j, values.sums[k + 2]);
        put<T>(request, array_central_sum2 + k, j, values.central[k + 2] * w);
    }
}

template <class T>
void write_matrices(const Request& request, const double* c, Weights weights, double* roots) {
    const ptrdiff_t p = request.p;
    const double f = weights.variance_factor();
    if (request.writes(array_cor)) reciprocal_roots(c, p, roots);
    // The matrix whose buffer holds c comes last.
    const int32_t order[] = {array_cor, array_cov, array_cp};
    for (int32_t in_place = 0; in_place < 2; ++in_place)
        for (const int32_t array : order) {
            if (!request.writes(array)) continue;
            const Matrix<T> to = matrix_of<T>(request, array);
            if ((static_cast<const void*>(to.data) == c) != (in_place == 1)) continue;
            if (array == array_cor)
                write_matrix(request, to, [&](int32_t i, int32_t j) {
                    const double value = c[j * p + i];
                    // A component is fully correlated with itself, to the last bit; without spread it is not (0 / 0).
                    return i == j && value > 0 ? value / value : value * roots[i] * roots[j];
                });
            else if (array == array_cov)
                write_matrix(request, to, [&](int32_t i, int32_t j) { return c[j * p + i] * f; });
            else
                write_matrix(request, to, [&](int32_t i, int32_t j) { return c[j * p + i]; });
        }
}

template void write_shape<double>(const Request&, int32_t, double, double, double, double);
template void write_shape<float>(const Request&, int32_t, double, double, double, double);
template void write_component<double>(const Request&, int32_t, const Component&, Weights);
template void write_component<float>(const Request&, int32_t, const Component&, Weights);
template void write_matrices<double>(const Request&, const double*, Weights, double*);
template void write_matrices<float>(const Request&, const double*, Weights, double*);

}  // namespace orv::stats
