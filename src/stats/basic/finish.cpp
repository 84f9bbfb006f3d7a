// From accumulated sums to the estimates.
#include "stats/basic/finish.h"

#include "simd/lanes.h"

namespace orv::stats {
namespace {

// 1 / sqrt of the diagonal, two at a time.
void reciprocal_roots(const double* c, ptrdiff_t p, double* roots) {
    for (ptrdiff_t j = 0; j < p; ++j) roots[j] = c[j * (p + 1)];
    ptrdiff_t j = 0;
    for (; j + 2 <= p; j += 2) simd::store(roots + j, simd::splat(1.0) / simd::square_root(simd::load(roots + j)));
    if (j < p) roots[j] = 1 / __builtin_sqrt(roots[j]);
}

// Calls put(array, value) for the shape of a component's distribution.
template <class Put>
void each_shape(double mean, double c2, double c3, double c4, Put put) {
    put(array_kurtosis, c4 / (c2 * c2) - 3);
    put(array_skewness, c3 / __builtin_sqrt(c2 * c2 * c2));
    put(array_variation, __builtin_sqrt(c2) / mean);
}

// Calls put(array, value) for every estimate of a component, of weight w in all.
template <class T, class Put>
void each_estimate(const Request& request, int32_t j, const Component& values, double w, double variance_factor,
                   Put put) {
    const double c2 = values.central[2] * w * variance_factor;
    double mean = values.mean;
    if (request.method == BasicUserMean && request.writes(array_mean))
        mean = static_cast<double>(request.values<T>(array_mean)[j]);
    else
        put(array_mean, mean);
    for (int32_t k = 0; k < 3; ++k) put(array_raw2 + k, values.raw[k + 2] / w);
    put(array_central2, c2);
    put(array_central3, values.central[3]);
    put(array_central4, values.central[4]);
    each_shape(mean, c2, values.central[3], values.central[4], put);
    put(array_sum, values.raw[1]);
    for (int32_t k = 0; k < 3; ++k) {
        put(array_raw_sum2 + k, values.raw[k + 2]);
        put(array_central_sum2 + k, values.central[k + 2] * w);
    }
}

// Calls visit(matrix, value), value(i, j) being an element of it, for every matrix that is written. A component is fully
// correlated with itself, to the last bit; without spread it is not (0 / 0).
template <class T, class Visit>
void each_matrix(const Request& request, const double* c, Weights weights, double* roots, Visit visit) {
    const ptrdiff_t p = request.p;
    const double f = weights.variance_factor();
    if (request.writes(array_cor)) {
        reciprocal_roots(c, p, roots);
        visit(request.matrix<T>(array_cor), [=](int32_t i, int32_t j) {
            const double value = c[j * p + i];
            return i == j && value > 0 ? value / value : clamped<T>(value * roots[i] * roots[j]);
        });
    }
    if (request.writes(array_cov))
        visit(request.matrix<T>(array_cov), [=](int32_t i, int32_t j) { return c[j * p + i] * f; });
    if (request.writes(array_cp))
        visit(request.matrix<T>(array_cp), [=](int32_t i, int32_t j) { return c[j * p + i]; });
}

// A value is the same as a number, or both are none.
template <class T>
bool stands(T there, double value) {
    const T rounded = static_cast<T>(value);
    return there == rounded || (there != there && rounded != rounded);
}

}  // namespace

Component averages(const Powers& sums, const double* raw, double w, bool about_shift) {
    const double r = 1 / w;
    const double e = sums.a1 / w, a2 = sums.a2 * r, a3 = sums.a3 * r, a4 = sums.a4 * r;
    Component out{};
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
    const double about_zero[] = {sums.a1, sums.a2, sums.a3, sums.a4};
    if (!raw) raw = about_zero;
    for (int32_t k = 1; k <= 4; ++k) out.raw[k] = raw[k - 1];
    // A running mean is lost to an infinity in the data or an overflow; the plain sum of them still says which.
    if (!is_finite(out.mean)) out.mean = raw[0] / w;
    return out;
}

Component component_of(const Request& request, const Accumulation& from, int32_t j) {
    const PowerRows& rows = from.rows;
    const double raw[] = {rows.raw[0][j], rows.raw[1][j], rows.raw[2][j], rows.raw[3][j]};
    return averages(rows.at(j), request.method == BasicFast ? nullptr : raw, from.weights.w,
                    request.method == BasicUserMean);
}

template <class T>
void write_shape(const Request& request, int32_t j, double mean, double c2, double c3, double c4) {
    each_shape(mean, c2, c3, c4, [&](int32_t array, double value) {
        if (request.writes(array)) request.values<T>(array)[j] = static_cast<T>(value);
    });
}

template <class T>
void write_matrices(const Request& request, const double* cross, Weights weights, double* roots) {
    each_matrix<T>(request, cross, weights, roots, [&](Matrix<T> to, auto value) { write_matrix(request, to, value); });
}

template <class T>
void write_results(const Request& request, const Accumulation& from, double* roots) {
    const double factor = from.weights.variance_factor();
    for (int32_t j = 0; j < request.p; ++j)
        if (request.takes_part(j))
            each_estimate<T>(request, j, component_of(request, from, j), from.weights.w, factor,
                             [&](int32_t array, double value) {
                                 if (request.writes(array)) request.values<T>(array)[j] = static_cast<T>(value);
                             });
    if (from.cross) write_matrices<T>(request, from.cross, from.weights, roots);
}

template <class T>
bool results_stand(const Request& request, const Accumulation& from, double* roots) {
    const T* kept = static_cast<const T*>(request.task->accumWeight);
    bool same = stands(kept[0], from.weights.w) && stands(kept[1], from.weights.w2);
    const double factor = from.weights.variance_factor();
    for (int32_t j = 0; same && j < request.p; ++j)
        if (request.takes_part(j))
            each_estimate<T>(request, j, component_of(request, from, j), from.weights.w, factor,
                             [&](int32_t array, double value) {
                                 const bool given = array == array_variation && request.method == BasicUserMean;
                                 if (request.writes(array) && !given)
                                     same = same && stands(request.values<T>(array)[j], value);
                             });
    if (same && from.cross)
        each_matrix<T>(request, from.cross, from.weights, roots, [&](Matrix<T> matrix, auto value) {
            each_pair(request, [&](int32_t i, int32_t j) {
                same = same && stands(matrix.data[element_at(matrix.form, i, j, request.p)], value(i, j));
            });
        });
    return same;
}

template <class T>
void zero_moments(const Request& request) {
    for (int32_t array = array_mean; array <= array_central4; ++array) {
        T* values = request.values<T>(array);
        if (!values || (array == array_mean && request.method == BasicUserMean)) continue;
        for (int32_t j = 0; j < request.p; ++j)
            if (request.takes_part(j)) values[j] = 0;
    }
}

#define INSTANTIATE(T)                                                                     \
    template void write_shape<T>(const Request&, int32_t, double, double, double, double); \
    template void write_matrices<T>(const Request&, const double*, Weights, double*);      \
    template void write_results<T>(const Request&, const Accumulation&, double*);          \
    template bool results_stand<T>(const Request&, const Accumulation&, double*);          \
    template void zero_moments<T>(const Request&)
INSTANTIATE(double);
INSTANTIATE(float);
#undef INSTANTIATE

}  // namespace orv::stats
