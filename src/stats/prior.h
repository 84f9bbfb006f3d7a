// What earlier calls left in the task's arrays, as sums to go on from.
#pragma once

#include "stats/matrices.h"
#include "stats/power_shift.h"

namespace orv::stats {

// The block that a task owns: the centre, p values of the task's type, then five rows of p doubles, the sums of powers about
// the centre and the diagonal of the cross-product.
inline size_t owned_centre_bytes(int32_t p, size_t element) { return (p * element + 7) & ~size_t{7}; }
inline size_t owned_bytes(int32_t p, size_t element) { return owned_centre_bytes(p, element) + 5 * sizeof(double) * p; }

template <class T>
T* owned_centre(const SSTask* task) {
    return static_cast<T*>(task->ownedBuffer);
}
template <class T>
double* owned_row(const SSTask* task, int32_t row) {
    char* rows = static_cast<char*>(task->ownedBuffer) + owned_centre_bytes(task->ownedCount, sizeof(T));
    return reinterpret_cast<double*>(rows) + ptrdiff_t{row} * task->ownedCount;
}
inline constexpr int32_t owned_diagonal = 4;

// Correlations alone do not say how large the deviations were.
inline bool keeps_diagonal(const Request& request) {
    return request.writes(array_cor) && !request.writes(array_cov) && !request.writes(array_cp);
}

template <class T>
double value_of(const Request& request, int32_t array, int32_t j) {
    return static_cast<double>(static_cast<const T*>(array_of(request.task, array))[j]);
}

// Sums about 0 from the raw moments or raw sums; 0 for what the call does not keep. Then nothing of it is asked for either:
// moving to another shift and back is linear and brings what is known back unchanged.
template <class T>
Powers prior_raw(const Request& request, int32_t j, double w, bool mean_is_a_moment) {
    const auto either = [&](int32_t moment, int32_t sum) {
        if (request.writes(moment)) return w * value_of<T>(request, moment, j);
        return request.writes(sum) ? value_of<T>(request, sum, j) : 0.0;
    };
    Powers raw{};
    if (mean_is_a_moment)
        raw.a1 = either(array_mean, array_sum);
    else if (request.writes(array_sum))
        raw.a1 = value_of<T>(request, array_sum, j);
    raw.a2 = either(array_raw2, array_raw_sum2);
    raw.a3 = either(array_raw3, array_raw_sum3);
    raw.a4 = either(array_raw4, array_raw_sum4);
    return raw;
}

// Sums about `centre`. From raw sums they have lost the digits that the offset takes up; central moments and sums in the
// arrays have not, and are taken instead if they agree with the raw ones as far as those go. (They may also be leftovers
// of something else, in an array that only this call began to use.)
template <class T>
Powers prior_about(const Request& request, int32_t j, Powers raw, double w, double w2, double centre) {
    constexpr double rounding = sizeof(T) == sizeof(float) ? 0x1p-18 : 0x1p-47;
    Powers sums = raw;
    move_shift(sums, w, centre, 4);
    sums.shift = centre;

    const double m = __builtin_fabs(centre);
    const double scale2 = raw.a2 + m * m * w;
    const double scale3 = __builtin_fabs(raw.a3) + 3 * m * raw.a2 + m * m * m * w;
    const double scale4 = raw.a4 + 4 * m * __builtin_fabs(raw.a3) + 6 * m * m * raw.a2 + m * m * m * m * w;
    const struct {
        int32_t sum, moment, raw_moment, raw_sum;
        double to_sum, scale;
        double* into;
    } rows[] = {{array_central_sum2, array_central2, array_raw2, array_raw_sum2, w - w2 / w, scale2, &sums.a2},
                {array_central_sum3, array_central3, array_raw3, array_raw_sum3, w, scale3, &sums.a3},
                {array_central_sum4, array_central4, array_raw4, array_raw_sum4, w, scale4, &sums.a4}};
    bool raw_is_known = true;  // up to this row's order
    for (const auto& row : rows) {
        raw_is_known = raw_is_known && (request.writes(row.raw_moment) || request.writes(row.raw_sum));
        double kept;
        if (request.writes(row.sum))
            kept = value_of<T>(request, row.sum, j);
        else if (request.writes(row.moment) && row.to_sum != 0)
            kept = value_of<T>(request, row.moment, j) * row.to_sum;
        else
            continue;
        if (!raw_is_known || __builtin_fabs(kept - *row.into) <= rounding * row.scale) *row.into = kept;
    }
    return sums;
}

// The cross-product so far, from the first of cp, cov and cor that the call keeps. `factor` is 1 / f of the covariance; it is
// 0 after one observation, whose covariance says nothing (0 / 0 or 1 / 0), and then `single`, its deviations times the root
// of its weight, gives the product. With the observation for its own mean those are 0, and `single` is null.
template <class T>
void prior_cross(const Request& request, int32_t source, double factor, const double* diagonal, const double* single,
                 double* c) {
    const Matrix<T> from = matrix_of<T>(request, source);
    const ptrdiff_t p = request.p;
    for (int32_t j = 0; j < request.p; ++j)
        for (int32_t i = 0; i <= j; ++i) {
            double value = static_cast<double>(from.data[element_at(from.form, i, j, p)]);
            if (source == array_cov) value = factor != 0 ? value * factor : single ? single[i] * single[j] : 0;
            // A constant has no correlation (0 / 0), its cross-products are 0.
            if (source == array_cor && diagonal) {
                const double product = diagonal[i] * diagonal[j];
                value = product == 0 ? 0 : value * __builtin_sqrt(product);
            }
            c[j * p + i] = value;
        }
}

}  // namespace orv::stats
