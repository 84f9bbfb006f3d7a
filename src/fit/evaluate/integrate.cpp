// Integration. A piece's part of an integral is that of its polynomial over an interval of its own; whole pieces between the
// limits come from P[i], the sum of the integrals of the pieces before piece i. The integral from a to b, a left of b, is
//   (from a to the upper edge of its piece) + P[piece of b] - P[piece of a + 1] + (from the lower edge of its piece to b).
// P is kept as a sum of two doubles (Knuth's two-sum), so that differences of far larger sums lose nothing, and integrals
// over adjacent intervals add up to the integral over the whole.
#include "fit/evaluate/pieces.h"
#include "fit/search/search.h"
#include "fit/workers.h"

namespace orv::fit {
namespace {

constexpr int64_t block_limits = 512;
// Limits below which threads cost more than they save.
constexpr int64_t threaded_limits = 1 << 13;

struct Sum {
    double high, low;
};

// Exact: high + low is the sum of both.
inline Sum two_sum(double a, double b) {
    const double s = a + b, part = s - a;
    return {s, (a - (s - part)) + (b - part)};
}

inline Sum add(const Sum& a, double b) {
    const Sum s = two_sum(a.high, b);
    return {s.high, s.low + a.low};
}

inline double difference(const Sum& a, const Sum& b) {
    const Sum s = two_sum(a.high, -b.high);
    return s.high + (s.low + (a.low - b.low));
}

// The integral of a polynomial from its origin to distance u.
template <class T>
double antiderivative(const T* c, int64_t order, double u) {
    double sum = static_cast<double>(c[order - 1]) / static_cast<double>(order);
    for (int64_t k = order - 1; k > 0; --k) sum = sum * u + static_cast<double>(c[k - 1]) / static_cast<double>(k);
    return sum * u;
}

// The integral of a polynomial from distance u of its origin to distance v, their difference w being given. With
//   v^(k+1) - u^(k+1) = w S[k],  S[0] = 1,  S[k] = v S[k-1] + u^k,
// the width is a factor of the whole, and a short interval loses no digits.
template <class T>
double integral(const T* c, int64_t order, double u, double v, double w) {
    double sum = c[0], power = 1, powers = 1;
    for (int64_t k = 1; k < order; ++k) {
        power *= u;
        powers = powers * v + power;
        sum += static_cast<double>(c[k]) / static_cast<double>(k + 1) * powers;
    }
    const double value = sum * w;
    if (value - value == 0) return value;
    // Limits beyond all powers: these infinities do not meet.
    return antiderivative(c, order, v) - antiderivative(c, order, u);
}

template <class T>
struct Limits {
    const T* values;
    int64_t count;
    bool uniform;
    T at(int64_t k) const {
        if (!uniform) return values[k];
        if (count < 2 || k == 0) return values[0];
        if (k == count - 1) return values[1];
        return values[0] + static_cast<T>(k) * ((values[1] - values[0]) / static_cast<T>(count - 1));
    }
};

template <class T>
struct Integration {
    Pieces<T> pieces;
    SearchPlan<T> plan;
    int64_t order;
    Limits<T> left, right;
    const Sum* sums;  // count of pieces + 1
    bool finite;      // the sums are: a piece that is not spoils only the intervals that contain it
};

// Where a limit lies.
template <class T>
struct Place {
    T x;
    int32_t piece;
};

template <class T>
Place<T> place_of(const Pieces<T>& pieces, T x, int32_t cell) {
    int32_t piece = cell - 1 < 0 ? 0 : cell - 1;
    if (piece > pieces.partition.count - 2) piece = pieces.partition.count - 2;
    if (pieces.knots && !(x < pieces.knots[piece])) ++piece;
    return {x, piece};
}

// The integral of one piece's polynomial between two places.
template <class T>
double within_piece(const Integration<T>& job, const T* coeffs, int32_t piece, double from, double to) {
    const T* c = coeffs + static_cast<ptrdiff_t>(piece) * static_cast<ptrdiff_t>(job.order);
    const double origin = job.pieces.origin(piece);
    return integral(c, job.order, from - origin, to - origin, to - from);
}

template <class T>
double whole_piece(const Integration<T>& job, const T* coeffs, int32_t piece) {
    return within_piece(job, coeffs, piece, job.pieces.lower_edge(piece), job.pieces.upper_edge(piece));
}

// The pieces after that of a and before that of b.
template <class T>
double whole_pieces(const Integration<T>& job, const T* coeffs, int32_t a, int32_t b) {
    if (job.finite) return difference(job.sums[b], job.sums[a + 1]);
    Sum sum = {0, 0};
    for (int32_t i = a + 1; i < b; ++i) sum = add(sum, whole_piece(job, coeffs, i));
    return sum.high + sum.low;
}

template <class T>
double between(const Integration<T>& job, const T* coeffs, const Place<T>& a, const Place<T>& b) {
    if (a.piece == b.piece) return within_piece(job, coeffs, a.piece, a.x, b.x);
    if (b.piece < a.piece) return -between(job, coeffs, b, a);
    const double left = within_piece(job, coeffs, a.piece, a.x, job.pieces.upper_edge(a.piece));
    const double right = within_piece(job, coeffs, b.piece, job.pieces.lower_edge(b.piece), b.x);
    return whole_pieces(job, coeffs, a.piece, b.piece) + (left + right);
}

template <class T>
void integrate_range(const Integration<T>& job, const T* coeffs, int64_t begin, int64_t end, T* out, ptrdiff_t stride) {
    constexpr int32_t block = 64;
    T x[2][block];
    int32_t cells[2][block];
    int64_t state[2] = {0, 0};
    for (int64_t at = begin; at < end; at += block) {
        const auto count = static_cast<int32_t>(end - at < block ? end - at : block);
        for (int32_t side = 0; side < 2; ++side) {
            const Limits<T>& limits = side == 0 ? job.left : job.right;
            for (int32_t k = 0; k < count; ++k) x[side][k] = limits.at(at + k);
            if (at == begin) state[side] = cell_of(job.plan.partition, job.pieces.uniform, x[side][0]);
            run_search(job.plan, count, x[side], &state[side], 0, cells[side]);
        }
        for (int32_t k = 0; k < count; ++k) {
            const Place<T> a = place_of(job.pieces, x[0][k], cells[0][k]);
            const Place<T> b = place_of(job.pieces, x[1][k], cells[1][k]);
            const bool numbers = !__builtin_isunordered(a.x, b.x);
            const double value = numbers ? between(job, coeffs, a, b) : __builtin_nan("");
            out[static_cast<ptrdiff_t>(at + k) * stride] = static_cast<T>(value);
        }
    }
}

template <class T>
int32_t integrate(const DFTask* task, int64_t limitCount, const T* left, int64_t leftHint, const T* right,
                  int64_t rightHint, const T* dataHint, T* results, int64_t resultHint, const orv_services* services) {
    if (!task) return ORV_DF_NULL_TASK;
    Kind kind;
    orv_df_status status = kind_of(*task, false, kind);
    if (status != ORV_DF_OK) return status;
    if (reads_values(kind)) return ORV_DF_BAD_SPLINE_TYPE;
    if (resultHint != ORV_DF_NO_HINT && resultHint != ORV_DF_ROWS && resultHint != ORV_DF_COLUMNS &&
        resultHint != ORV_DF_ROW_POINTERS)
        return ORV_DF_BAD_INTEGRAL_HINT;
    const bool any_sorted = leftHint == ORV_DF_SITES_SORTED || rightHint == ORV_DF_SITES_SORTED;
    if (any_sorted && dataHint && !(dataHint[1] == 0 || dataHint[1] == 1)) return ORV_DF_BAD_DATA_HINT;
    if (limitCount <= 0) return ORV_DF_OK;
    status = pieces_present(*task, kind);
    if (status != ORV_DF_OK) return status;

    Integration<T> job;
    const bool both_ascend = leftHint != ORV_DF_SITES_NO_HINT && rightHint != ORV_DF_SITES_NO_HINT;
    const bool ascending = both_ascend && (leftHint == ORV_DF_SITES_SORTED || limitCount < 2 || left[0] <= left[1]) &&
                           (rightHint == ORV_DF_SITES_SORTED || limitCount < 2 || right[0] <= right[1]);
    plan_search<T>(*task, ascending ? ORV_DF_SITES_SORTED : ORV_DF_SITES_NO_HINT, nullptr, nullptr, nullptr, job.plan);
    job.pieces = {job.plan.partition, kind == quadratic_with_knots ? static_cast<const T*>(task->icData) : nullptr,
                  task->breakHint == ORV_DF_BREAKS_UNIFORM};
    job.order = task->splineOrder;
    job.left = {left, limitCount, leftHint == ORV_DF_SITES_UNIFORM};
    job.right = {right, limitCount, rightHint == ORV_DF_SITES_UNIFORM};

    const int32_t pieces = job.pieces.count();
    auto* sums = static_cast<Sum*>(orv_serv_allocate((static_cast<size_t>(pieces) + 1) * sizeof(Sum), block_alignment));
    if (!sums) return ORV_DF_NO_MEMORY;
    job.sums = sums;
    const int32_t workers = limitCount >= threaded_limits ? threads_for(services, limitCount / block_limits) : 1;
    const int64_t functions = task->funcCount;
    for (int64_t f = 0; f < functions; ++f) {
        const auto* coeffs = static_cast<const T*>(task->coeffs[f]);
        sums[0] = {0, 0};
        for (int32_t i = 0; i < pieces; ++i) sums[i + 1] = add(sums[i], whole_piece(job, coeffs, i));
        job.finite = sums[pieces].high - sums[pieces].high == 0;
        T* out = resultHint == ORV_DF_ROW_POINTERS ? reinterpret_cast<T* const*>(results)[f]
                 : resultHint == ORV_DF_COLUMNS    ? results + static_cast<ptrdiff_t>(f)
                                                   : results + static_cast<ptrdiff_t>(f * limitCount);
        const ptrdiff_t stride = resultHint == ORV_DF_COLUMNS ? static_cast<ptrdiff_t>(functions) : 1;
        const auto work = [&](int32_t index) {
            const Share share = share_of(limitCount, block_limits, index, workers);
            integrate_range(job, coeffs, share.begin, share.end, out, stride);
        };
        parallel(services, workers, work);
    }
    orv_serv_deallocate(sums);
    return ORV_DF_OK;
}

}  // namespace
}  // namespace orv::fit

#define ORV_INTEGRATE(letter, T)                                                                                      \
    ORV_API int32_t orv_df_kernel_##letter##DFIntegrate1D(                                                            \
        const DFTask* task, int64_t, int64_t limitCount, const T* left, int64_t leftHint, const T* right,             \
        int64_t rightHint, const T* dataHint, T* results, int64_t resultHint, const orv_services* services) {         \
        return orv::fit::integrate(task, limitCount, left, leftHint, right, rightHint, dataHint, results, resultHint, \
                                   services);                                                                         \
    }

ORV_INTEGRATE(d, double)
ORV_INTEGRATE(s, float)
