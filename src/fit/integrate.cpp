// Integration. With G the integral of a piece's polynomial from its origin and P[i] the sum of the integrals of the pieces
// before piece i, the integral from a to b is
//   P[piece of b] - P[piece of a] + G(b) - G(edge of its piece) - (G(a) - G(edge of its piece)).
// P is kept as a sum of two doubles (Knuth's two-sum), so that differences of far larger sums lose nothing, and integrals
// over adjacent intervals add up to the integral over the whole.
#include "fit/pieces.h"
#include "fit/search.h"
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
double integral(const T* c, int64_t order, double u) {
    double sum = 0;
    for (int64_t k = order - 1; k >= 0; --k) sum = sum * u + static_cast<double>(c[k]) / static_cast<double>(k + 1);
    return sum * u;
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

// Where one limit lies: its piece, and the integral from the piece's lower edge to it.
struct Place {
    int32_t piece;
    double partial;
};

template <class T>
Place place_of(const Integration<T>& job, const T* coeffs, T x, int32_t cell) {
    const Pieces<T>& pieces = job.pieces;
    int32_t piece = cell - 1 < 0 ? 0 : cell - 1;
    if (piece > pieces.partition.count - 2) piece = pieces.partition.count - 2;
    if (pieces.knots && !(x < pieces.knots[piece])) ++piece;
    const T* c = coeffs + static_cast<ptrdiff_t>(piece) * static_cast<ptrdiff_t>(job.order);
    const double origin = pieces.origin(piece);
    const double from = pieces.lower_edge(piece) - origin;
    return {piece, integral(c, job.order, static_cast<double>(x) - origin) - integral(c, job.order, from)};
}

template <class T>
double whole_piece(const Pieces<T>& pieces, const T* coeffs, int64_t order, int32_t piece) {
    const T* c = coeffs + static_cast<ptrdiff_t>(piece) * static_cast<ptrdiff_t>(order);
    const double origin = pieces.origin(piece);
    const double from = pieces.lower_edge(piece) - origin, to = pieces.upper_edge(piece) - origin;
    return integral(c, order, to) - integral(c, order, from);
}

template <class T>
double between(const Integration<T>& job, const T* coeffs, const Place& a, const Place& b) {
    double whole;
    if (job.finite) {
        whole = difference(job.sums[b.piece], job.sums[a.piece]);
    } else {
        const int32_t from = a.piece < b.piece ? a.piece : b.piece, to = a.piece < b.piece ? b.piece : a.piece;
        Sum sum = {0, 0};
        for (int32_t i = from; i < to; ++i) sum = add(sum, whole_piece(job.pieces, coeffs, job.order, i));
        whole = a.piece < b.piece ? sum.high + sum.low : -(sum.high + sum.low);
    }
    return whole + (b.partial - a.partial);
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
            const Place a = place_of(job, coeffs, x[0][k], cells[0][k]);
            const Place b = place_of(job, coeffs, x[1][k], cells[1][k]);
            const bool numbers = !__builtin_isunordered(x[0][k], x[1][k]);
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
    const orv_df_status status = kind_of(*task, false, kind);
    if (status != ORV_DF_OK) return status;
    if (kind >= left_step) return ORV_DF_BAD_SPLINE_TYPE;
    if (resultHint != ORV_DF_NO_HINT && resultHint != ORV_DF_ROWS && resultHint != ORV_DF_COLUMNS &&
        resultHint != ORV_DF_ROW_POINTERS)
        return ORV_DF_BAD_INTEGRAL_HINT;
    const bool any_sorted = leftHint == ORV_DF_SITES_SORTED || rightHint == ORV_DF_SITES_SORTED;
    if (any_sorted && dataHint && !(dataHint[1] == 0 || dataHint[1] == 1)) return ORV_DF_BAD_DATA_HINT;
    if (limitCount <= 0) return ORV_DF_OK;

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
        for (int32_t i = 0; i < pieces; ++i) sums[i + 1] = add(sums[i], whole_piece(job.pieces, coeffs, job.order, i));
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
