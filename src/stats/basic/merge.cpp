// Joining partial results.
#include "stats/basic/merge.h"

#include <string.h>

namespace orv::stats {
namespace {

// Adds b, of weight wb, to a, of weight wa. Sums about one fixed shift are added; others are first moved to the joint mean,
// which takes neither further than Chan's term f (ma - mb)^2 pays for.
void merge_powers(Powers& a, double wa, Powers b, double wb, bool fixed_shift, int32_t order) {
    if (wa == 0) {
        a = b;
        return;
    }
    if (!fixed_shift) {
        const double mean_a = a.shift + a.a1 / wa, mean_b = b.shift + b.a1 / wb;
        const double w = wa + wb;
        const double mean = w == 0 ? mean_a : mean_a + (mean_b - mean_a) * (wb / w);
        move_shift(a, wa, mean - a.shift, order);
        move_shift(b, wb, mean - b.shift, order);
        a.shift = mean;
    }
    a.a1 += b.a1;
    a.a2 += b.a2;
    a.a3 += b.a3;
    a.a4 += b.a4;
}

// C_ij += other_ij + f d_i d_j over the upper triangle, d the distance of the means, f = Wa Wb / (Wa + Wb); `other` may be
// null for a matrix that was accumulated in place. A dimension known at compile time lets five components, a common size,
// unroll.
template <int32_t known>
void merge_cross(double* c, const double* other, ptrdiff_t dimension, double f, const double* d) {
    const int32_t p = known ? known : static_cast<int32_t>(dimension);
    for (int32_t j = 0; j < p; ++j)
        for (int32_t i = 0; i <= j; ++i) {
            double& sum = c[ptrdiff_t{j} * p + i];
            if (other) sum += other[ptrdiff_t{j} * p + i];
            sum += f * d[i] * d[j];
        }
}

// The running mean is kept to the nearest double, and the products are about that: what is left is one rank-1 step.
void settle_cross(const Accumulation& part, int32_t p) {
    const double w = part.weights.w;
    const double* a = part.rows.sums[0];
    for (int32_t j = 0; j < p; ++j)
        for (int32_t i = 0; i <= j; ++i) part.cross[ptrdiff_t{j} * p + i] -= a[i] * (a[j] / w);
}

void merge_matrix(const Request& request, const Accumulation& into, const Accumulation& part, double* distances) {
    const int32_t p = request.p;
    const double wa = into.weights.w, wb = part.weights.w;
    if (request.method == BasicOnePass) settle_cross(part, p);
    // Products about one fixed centre are just added.
    const bool apart = wa != 0 && request.method != BasicUserMean;
    const PowerRows &a = into.rows, &b = part.rows;
    const bool shifts = request.method == BasicOnePass;
    for (int32_t j = 0; j < p; ++j)
        distances[j] = apart ? (shifts ? b.shift[j] - a.shift[j] : 0) + (b.sums[0][j] / wb - a.sums[0][j] / wa) : 0;
    const double* other = part.cross == into.cross ? nullptr : part.cross;
    const auto step = p == 5 ? merge_cross<5> : merge_cross<0>;
    if (other || apart) step(into.cross, other, p, apart ? wa * wb / (wa + wb) : 0, distances);
}

}  // namespace

void merge(const Request& request, Accumulation& into, const Accumulation& part, double* distances) {
    const double wa = into.weights.w, wb = part.weights.w;
    into.weights.w2 += part.weights.w2;
    if (wb == 0) {
        if (into.cross && part.cross == into.cross) memset(into.cross, 0, sizeof(double) * request.p * request.p);
        return;
    }
    if (into.cross) merge_matrix(request, into, part, distances);
    for (int32_t j = 0; j < request.p; ++j) {
        if (!request.takes_part(j)) continue;
        Powers sums = into.rows.at(j), more = part.rows.at(j);
        if (request.method == BasicFast) more.shift = 0;
        merge_powers(sums, wa, more, wb, request.method != BasicOnePass, request.order);
        into.rows.set(j, sums);
        if (part.rows.raw[0])
            for (int32_t k = 0; k < 4; ++k) into.rows.raw[k][j] += part.rows.raw[k][j];
    }
    into.weights.w += wb;
}

}  // namespace orv::stats
