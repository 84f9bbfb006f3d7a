// Going on from the results in the task's arrays, where nothing better is kept.
//
// An array holds an average or a total rounded to the task's type. What it cannot say: a central sum of order k moves with
// the mean by terms of the orders below, so orders 3 and 4 need each lower order in some form; a correlation needs the
// spreads; a variance or covariance after one observation is NaN.
#include "stats/basic/from_arrays.h"

namespace orv::stats {
namespace {

// Totals of one kind, as the arrays give them; known[k] says whether they do.
struct Totals {
    double value[5];
    bool known[5];
};

template <class T>
struct Reader {
    const Request& request;
    Weights before;

    double value(int32_t array, int32_t j) const { return static_cast<double>(request.values<T>(array)[j]); }

    void read(Totals& into, int32_t order, int32_t j, int32_t sum, int32_t average, double to_total) const {
        const bool from_sum = request.writes(sum), from_average = request.writes(average) && to_total != 0;
        into.known[order] = from_sum || from_average;
        into.value[order] = from_sum ? value(sum, j) : from_average ? value(average, j) * to_total : 0;
    }
    Totals raw(int32_t j) const {
        Totals found{};
        // The mean is an average of the data, unless the caller gave it.
        read(found, 1, j, array_sum, array_mean, request.method == BasicUserMean ? 0 : before.w);
        for (int32_t k = 2; k <= 4; ++k) read(found, k, j, array_raw_sum2 + k - 2, array_raw2 + k - 2, before.w);
        return found;
    }
    Totals central(int32_t j) const {
        Totals found{};
        for (int32_t k = 2; k <= 4; ++k)
            read(found, k, j, array_central_sum2 + k - 2, array_central2 + k - 2, k == 2 ? before.excess() : before.w);
        return found;
    }
};

// sum w x^k without its term of order k about c, A_k: the binomial theorem on ((x - c) + c)^k; and the same of magnitudes.
double lower_terms(int32_t k, double c, double w, const double* a) {
    if (k == 2) return c * (2 * a[1] + c * w);
    if (k == 3) return c * (3 * a[2] + c * (3 * a[1] + c * w));
    return c * (4 * a[3] + c * (6 * a[2] + c * (4 * a[1] + c * w)));
}

// Sums about `centre`, order by order. From raw totals they have lost the digits that the offset takes up; central ones have
// not, and are taken if they agree with the raw ones as far as those go. (They may also be leftovers of something else, in an
// array that only this call began to use.) An order of which neither is known counts 0: then the raw totals above it are
// still brought back unchanged when the shift is moved to 0.
template <class T>
Powers about(double centre, double w, double first, const Totals& raw, const Totals& central, bool trusted) {
    constexpr double rounding = sizeof(T) == sizeof(float) ? 0x1p-18 : 0x1p-47;
    double a[5] = {w, first}, sizes[5] = {w, __builtin_fabs(first)};
    for (int32_t k = 2; k <= 4; ++k) {
        const double from_raw = raw.value[k] - lower_terms(k, centre, w, a);
        const double scale = __builtin_fabs(raw.value[k]) + lower_terms(k, __builtin_fabs(centre), w, sizes);
        const bool agree = trusted || !raw.known[k] || __builtin_fabs(central.value[k] - from_raw) <= rounding * scale;
        a[k] = central.known[k] && agree ? central.value[k] : raw.known[k] ? from_raw : 0;
        sizes[k] = __builtin_fabs(a[k]);
    }
    return {centre, a[1], a[2], a[3], a[4]};
}

// The sum of squares about the mean or the caller's mean, 0 where nothing says it.
double spread_of(const Request& request, const Powers& sums, const Totals& central, double w) {
    if (central.known[2]) return central.value[2];
    if (request.method == BasicUserMean || sums.a2 == 0) return sums.a2;
    return sums.a2 - sums.a1 * (sums.a1 / w);
}

// The cross-product, from the first of cp, cov and cor that the call keeps. A covariance after one observation says nothing: about
// the mean the products are 0 then, about the caller's mean those of its deviation, which A_1 / sqrt(W) is.
template <class T>
void read_cross(const Request& request, const Accumulation& into, const double* spreads) {
    const int32_t source = request.writes(array_cp) ? array_cp : request.writes(array_cov) ? array_cov : array_cor;
    const Matrix<T> from = request.matrix<T>(source);
    const double excess = into.weights.excess(), w = into.weights.w;
    const double* first = into.rows.sums[0];
    each_pair(request, [&](int32_t i, int32_t j) {
        double value = static_cast<double>(from.data[element_at(from.form, i, j, request.p)]);
        if (source == array_cov)
            value = excess != 0 ? value * excess : request.method == BasicUserMean ? first[i] * (first[j] / w) : 0;
        if (source == array_cor) {
            // A constant has no correlation (0 / 0), its cross-products are 0.
            const double product = __builtin_sqrt(spreads[i]) * __builtin_sqrt(spreads[j]);
            value = product == 0 ? 0 : value * product;
        }
        into.cross[ptrdiff_t{j} * request.p + i] = value;
    });
}

}  // namespace

template <class T>
void continue_from_arrays(const Request& request, const Accumulation& into, double* spreads) {
    const Reader<T> reader{request, into.weights};
    const double w = into.weights.w;
    const T* mean = static_cast<const T*>(request.task->mean);
    for (int32_t j = 0; j < request.p; ++j) {
        Powers sums{};
        const bool users = request.method == BasicUserMean;
        if (users && mean) sums.shift = static_cast<double>(mean[j]);
        if (request.takes_part(j)) {
            const Totals raw = reader.raw(j), central = reader.central(j);
            for (int32_t k = 1; k <= 4; ++k) into.rows.raw[k - 1][j] = raw.value[k];
            if (request.method == BasicFast) {
                sums = {0, raw.value[1], raw.value[2], raw.value[3], raw.value[4]};
            } else if (users) {
                const double first = raw.known[1] ? raw.value[1] - w * sums.shift : 0;
                sums = about<T>(sums.shift, w, first, raw, central, true);
            } else {
                const double centre = request.writes(array_mean) ? reader.value(array_mean, j) : raw.value[1] / w;
                sums = about<T>(centre, w, 0, raw, central, false);
            }
            if (into.cross) spreads[j] = spread_of(request, sums, central, w);
        }
        into.rows.set(j, sums);
    }
    if (into.cross) read_cross<T>(request, into, spreads);
}

template void continue_from_arrays<double>(const Request&, const Accumulation&, double*);
template void continue_from_arrays<float>(const Request&, const Accumulation&, double*);

}  // namespace orv::stats
