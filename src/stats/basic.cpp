// The basic pass: checks, parts for the threads, workers, merge, finish.
#include "platform/export.h"
#include "services/services.h"
#include "stats/finish.h"
#include "stats/from_sums.h"
#include "stats/layout.h"
#include "stats/merge.h"
#include "stats/prior.h"
#include "stats/zero_weight.h"

#include <string.h>

namespace orv::stats {
namespace {

template <class T>
constexpr bool is_double = sizeof(T) == sizeof(double);

// Small problems do not go to the heap.
constexpr size_t stack_bytes = 8 << 10;

// A thread gets at least 8192 multiplications and 16 observations.
constexpr int32_t work_shift = 13, observation_shift = 4;

int32_t thread_count(const Request& request, const orv_services* services) {
    const int64_t p = request.p, n = request.n;
    const int64_t work = request.matrices() ? p * p * n : p * n;
    int64_t threads = services ? services->thread_limit() : 1;
    if (work >> work_shift < threads) threads = work >> work_shift;
    if (n >> observation_shift < threads) threads = n >> observation_shift;
    return threads < 1 ? 1 : static_cast<int32_t>(threads);
}

// ---- Running the parts ---------------------------------------------------------------------------------------------

template <class T>
struct Fan {
    const Request* request;
    Part<T>* parts;
    Worker<T> worker;
    int32_t status;  // of a part that failed; parts only ever write failures
};

// Matrices take all components between the first and the last that take part; moments alone go run by run.
template <class T>
void run_part(int32_t index, int32_t, int32_t, void* args) {
    Fan<T>& fan = *static_cast<Fan<T>*>(args);
    const Request& request = *fan.request;
    Part<T>& part = fan.parts[index];
    const auto run = [&](int32_t from, int32_t to) {
        part.component_first = from;
        part.component_last = to;
        part.weights[0] = part.weights[1] = 0;
        const int32_t status = fan.worker(part);
        if (status < 0) __atomic_store_n(&fan.status, status, __ATOMIC_RELAXED);
    };
    int32_t first = 0, last = request.p;
    if (request.has_gaps) {
        while (first < last && !request.takes_part(first)) ++first;
        while (last > first && !request.takes_part(last - 1)) --last;
    }
    if (!request.has_gaps || part.cross || first == last) return run(first, last);
    for (int32_t from = first, to; from < last; from = to) {
        for (to = from; to < last && request.takes_part(to);) ++to;
        run(from, to);
        while (to < last && !request.takes_part(to)) ++to;
    }
}

template <class T>
int32_t worker_index(const Request& request) {
    const int32_t order = request.order - 1;
    const int32_t weighted = request.task->w ? 1 : 0;
    // With one component the two forms are the same, and the one by rows is quicker.
    const int32_t columns = request.by_rows || request.p == 1 ? 0 : 1;
    if (request.method == BasicOnePass)
        return one_pass_workers + 2 * order + (request.matrices() ? 1 : 0) + 8 * weighted + 16 * columns;
    return (request.method == BasicFast ? fast_workers : user_mean_workers) + order + 4 * weighted + 8 * columns;
}

inline void choose_blas(Part<double>& part, bool fanned_out) {
    part.rank_1 = fanned_out ? orv_blas_xdsyr : orv_blas_dsyr;
    part.rank_k = fanned_out ? orv_blas_xdsyrk : orv_blas_dsyrk;
}
inline void choose_blas(Part<float>& part, bool fanned_out) {
    part.rank_1 = fanned_out ? orv_blas_xssyr : orv_blas_ssyr;
    part.rank_k = fanned_out ? orv_blas_xssyrk : orv_blas_ssyrk;
}

inline Worker<double> pick_worker(int32_t index, double*) { return workers_d[index]; }
inline Worker<float> pick_worker(int32_t index, float*) { return workers_s[index]; }

// ---- The call ------------------------------------------------------------------------------------------------------

// A call under way: the request, what came before, and the parts.
template <class T>
struct Call {
    const Request& request;
    Weights before;
    int32_t source;  // the matrix that carries the cross-product from call to call: cp, else cov, else cor
    double* home;    // where the cross-product accumulates
    PowerRows prior;
    double* spare;  // two rows of p
    Part<T>* parts;
    int32_t threads;

    bool fixed_shift() const { return request.method != BasicOnePass; }
    bool continues_owned() const { return before.w != 0 && request.task->ownedCount == request.p; }
};

int32_t source_of(const Request& request) {
    return request.writes(array_cp) ? array_cp : request.writes(array_cov) ? array_cov : array_cor;
}

// A full matrix of doubles in which every element is asked for serves as working memory.
template <class T>
bool works_in_place(const Request& request, int32_t source) {
    return is_double<T> && !request.has_gaps && matrix_of<T>(request, source).form == Form::full;
}

inline double* in_place(double* data) { return data; }
inline double* in_place(float*) { return nullptr; }

// The user's mean: on a fresh start the caller's, later the copy that the sums are about.
template <class T>
double user_centre(const Call<T>& call, int32_t j) {
    const SSTask* task = call.request.task;
    if (task->ownedBuffer && call.continues_owned()) return static_cast<double>(owned_centre<T>(task)[j]);
    return task->mean ? static_cast<double>(static_cast<const T*>(task->mean)[j]) : 0;
}

Powers powers_at(const PowerRows& rows, int32_t j) {
    return {rows.shift[j], rows.sums[0][j], rows.sums[1][j], rows.sums[2][j], rows.sums[3][j]};
}

void set_powers(const PowerRows& rows, int32_t j, const Powers& sums) {
    rows.shift[j] = sums.shift;
    rows.sums[0][j] = sums.a1;
    rows.sums[1][j] = sums.a2;
    rows.sums[2][j] = sums.a3;
    rows.sums[3][j] = sums.a4;
}

// The sums that earlier calls left, in the form that this method accumulates.
template <class T>
void load_prior(const Call<T>& call) {
    const Request& request = call.request;
    const SSTask* task = request.task;
    const Weights before = call.before;
    for (int32_t j = 0; j < request.p; ++j) {
        Powers sums{};
        if (request.method == BasicUserMean) sums.shift = user_centre(call, j);
        if (before.w != 0 && request.takes_part(j)) {
            const bool users = request.method == BasicUserMean;
            Powers raw = prior_raw<T>(request, j, before.w, !users);
            if (users && !request.writes(array_sum)) raw.a1 = before.w * sums.shift;
            if (request.method == BasicFast)
                sums = raw;
            else if (users && task->ownedBuffer && call.continues_owned())
                sums = {sums.shift, owned_row<T>(task, 0)[j], owned_row<T>(task, 1)[j], owned_row<T>(task, 2)[j],
                        owned_row<T>(task, 3)[j]};
            else
                sums = prior_about<T>(request, j, raw, before.w, before.w2, users ? sums.shift : raw.a1 / before.w);
        }
        set_powers(call.prior, j, sums);
    }
    if (!call.home) return;
    if (before.w == 0) {
        memset(call.home, 0, sizeof(double) * request.p * request.p);
        return;
    }
    const bool diagonal = keeps_diagonal(request) && task->ownedBuffer && call.continues_owned();
    const bool users = request.method == BasicUserMean;
    const double root = __builtin_sqrt(before.w);
    for (int32_t j = 0; users && j < request.p; ++j) call.spare[j] = call.prior.sums[0][j] / root;
    prior_cross<T>(request, call.source, before.w > 0 ? before.w - before.w2 / before.w : 1,
                   diagonal ? owned_row<T>(task, owned_diagonal) : nullptr, users ? call.spare : nullptr, call.home);
}

// The distance of two results' means, component by component.
void mean_distances(const PowerRows& a, double wa, const PowerRows& b, double wb, bool fast, int32_t p, double* d) {
    for (int32_t j = 0; j < p; ++j) {
        const double shifts = fast ? 0 : b.shift[j] - a.shift[j];
        d[j] = shifts + (b.sums[0][j] / wb - a.sums[0][j] / wa);
    }
}

template <class T>
PowerRows rows_of(const Part<T>& part) {
    return {part.shift, {part.sums[0], part.sums[1], part.sums[2], part.sums[3]}};
}

// The running mean is kept to the nearest double, and the products are about that: what is left is one rank-1 step.
template <class T>
void settle_cross(const Part<T>& part, int32_t p) {
    const double w = part.weights[0];
    if (w == 0) return;
    const double* a = part.sums[0];
    for (int32_t j = part.component_first; j < part.component_last; ++j)
        for (int32_t i = part.component_first; i <= j; ++i) part.cross[ptrdiff_t{j} * p + i] -= a[i] * (a[j] / w);
}

// Merges the parts, in order, into what came before.
template <class T>
Weights merge(const Call<T>& call) {
    const Request& request = call.request;
    const int32_t p = request.p;
    const bool fast = request.method == BasicFast;
    Weights total = call.before;
    for (int32_t t = 0; t < call.threads; ++t) {
        const Part<T>& part = call.parts[t];
        const Weights add{part.weights[0], part.weights[1]};
        const PowerRows rows = rows_of(part);
        if (part.cross && add.w != 0) {
            if (request.method == BasicOnePass) settle_cross(part, p);
            const bool apart = total.w != 0 && request.method != BasicUserMean;
            if (apart) mean_distances(call.prior, total.w, rows, add.w, fast, p, call.spare);
            const double f = apart ? total.w * add.w / (total.w + add.w) : 0;
            if (!apart) memset(call.spare, 0, sizeof(double) * p);
            const double* other = part.cross == call.home ? nullptr : part.cross;
            const auto step = p == 5 && !request.has_gaps ? merge_cross<5> : merge_cross<0>;
            if (other || apart) step(call.home, other, p, part.component_first, part.component_last, f, call.spare);
        }
        for (int32_t j = 0; j < p; ++j) {
            if (!request.takes_part(j)) continue;
            Powers sums = powers_at(call.prior, j), more = powers_at(rows, j);
            if (fast) more.shift = 0;
            merge_powers(sums, total.w, more, add.w, call.fixed_shift(), request.order);
            set_powers(call.prior, j, sums);
        }
        total.w += add.w;
        total.w2 += add.w2;
    }
    return total;
}

// Sums about 0 by definition, for a component whose data holds a NaN or an infinity, or overflows: differences of
// infinities would turn its infinite moments into NaN.
template <class T>
Powers plain_sums(const Call<T>& call, int32_t j) {
    const Request& request = call.request;
    const SSTask* task = request.task;
    const T* x = static_cast<const T*>(task->x);
    const T* w = static_cast<const T*>(task->w);
    Powers sums{};
    if (call.before.w != 0) sums = prior_raw<T>(request, j, call.before.w, request.method != BasicUserMean);
    for (int32_t i = 0; i < request.n; ++i) {
        const double value =
            static_cast<double>(request.by_rows ? x[ptrdiff_t{j} * request.n + i] : x[ptrdiff_t{i} * request.p + j]);
        double term = (w ? static_cast<double>(w[i]) : 1) * value;
        sums.a1 += term;
        sums.a2 += term *= value;
        sums.a3 += term *= value;
        sums.a4 += term * value;
    }
    return sums;
}

bool is_finite(double value) { return __builtin_fabs(value) <= __DBL_MAX__; }

template <class T>
void finish_components(const Call<T>& call, Weights total) {
    const Request& request = call.request;
    const bool about_shift = request.method == BasicUserMean;
    for (int32_t j = 0; j < request.p; ++j) {
        if (!request.takes_part(j)) continue;
        const Powers sums = powers_at(call.prior, j);
        Component values = averages(sums, total.w, about_shift);
        bool sound = is_finite(values.mean);
        for (int32_t k = 1; k <= request.order; ++k) sound = sound && is_finite(values.sums[k]);
        if (!sound && request.method != BasicFast) {
            const Component plain = averages(plain_sums(call, j), total.w, false);
            for (int32_t k = 1; k <= 4; ++k) values.sums[k] = plain.sums[k];
            if (!about_shift) values = plain;
        }
        write_component<T>(request, j, values, total);
    }
}

// Keeps what the arrays cannot carry to the next call.
template <class T>
void keep_owned(const Call<T>& call) {
    const Request& request = call.request;
    const SSTask* task = request.task;
    for (int32_t j = 0; j < request.p; ++j) {
        if (request.method == BasicUserMean) {
            const Powers sums = powers_at(call.prior, j);
            owned_centre<T>(task)[j] = static_cast<T>(sums.shift);
            owned_row<T>(task, 0)[j] = sums.a1;
            owned_row<T>(task, 1)[j] = sums.a2;
            owned_row<T>(task, 2)[j] = sums.a3;
            owned_row<T>(task, 3)[j] = sums.a4;
        }
        if (keeps_diagonal(request)) owned_row<T>(task, owned_diagonal)[j] = call.home[j * (ptrdiff_t{request.p} + 1)];
    }
}

template <class T>
int32_t run(Call<T>& call, const Layout& layout, char* memory, const orv_services* services) {
    const Request& request = call.request;
    const SSTask* task = request.task;
    const int32_t p = request.p, threads = layout.threads, share = request.n / threads;
    Cursor cursor{memory};
    char* weights = reinterpret_cast<char*>(cursor.take(weight_stride * threads));
    call.prior = cursor.take_rows(p);
    call.spare = cursor.take(2 * sizeof(double) * p);
    if (layout.home_is_extra) call.home = cursor.take(layout.matrix_bytes);
    load_prior(call);
    for (int32_t t = 0; t < threads; ++t) {
        Part<T>& part = call.parts[t];
        part = {};
        part.first = t * share;
        part.last = t + 1 == threads ? request.n : part.first + share;
        part.n = request.n;
        part.p = p;
        part.x = static_cast<const T*>(task->x);
        part.w = static_cast<const T*>(task->w);
        part.weights = reinterpret_cast<double*>(weights + weight_stride * t);
        const PowerRows rows = cursor.take_rows(p);
        memset(rows.shift, 0, layout.rows_bytes);
        part.shift = rows.shift;
        memcpy(part.sums, rows.sums, sizeof rows.sums);
        if (request.method == BasicUserMean) memcpy(part.shift, call.prior.shift, sizeof(double) * p);
        if (layout.crosses) {
            part.cross = t == 0 ? call.home : cursor.take(layout.matrix_bytes);
            if (t > 0) memset(part.cross, 0, layout.matrix_bytes);
            part.scratch = cursor.take(layout.scratch_bytes);
        }
        choose_blas(part, threads > 1);
    }
    Fan<T> fan{&request, call.parts, pick_worker(worker_index<T>(request), static_cast<T*>(nullptr)), SSStatusOk};
    if (threads > 1)
        services->fan_out(threads, &fan, run_part<T>);
    else
        run_part<T>(0, 0, 1, &fan);
    return fan.status;
}

template <class T>
int32_t finish(Call<T>& call, int32_t status) {
    const Request& request = call.request;
    const SSTask* task = request.task;
    const Weights total = merge(call);
    if (status != SSStatusOk) return status;
    if (T* kept = static_cast<T*>(task->accumWeight)) {
        kept[0] = static_cast<T>(total.w);
        kept[1] = static_cast<T>(total.w2);
    }
    if (request.method == BasicUserMean || keeps_diagonal(request)) keep_owned(call);
    if (total.w == 0) {
        zero_moments<T>(request);
        return SSStatusOk;
    }
    finish_components(call, total);
    if (call.home) write_matrices<T>(request, call.home, total, call.spare);
    return SSStatusOk;
}

template <class T>
int32_t basic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Request request;
    const int32_t status = check_request(task, estimates, method, request);
    if (status != SSStatusOk) return status;
    if (request.method == 0) return finish_from_sums<T>(request);

    const T* kept = static_cast<const T*>(task->accumWeight);
    Call<T> call{request, {0, 0}, source_of(request), nullptr, {}, nullptr, nullptr, 0};
    if (kept && kept[0] != 0) call.before = {static_cast<double>(kept[0]), static_cast<double>(kept[1])};
    const bool in_caller = request.matrices() && works_in_place<T>(request, call.source);
    if (in_caller) call.home = in_place(matrix_of<T>(request, call.source).data);

    call.threads = thread_count(request, services);
    const Layout layout = plan<T>(request, call.threads, !in_caller);
    const uint64_t bytes = layout.total + sizeof(Part<T>) * static_cast<uint64_t>(call.threads);
    if (bytes >> 31 != 0) return SSStatusAllocation;

    // The block that the task owns is made before anything is written. One of another size is of no use any more.
    const bool owns = request.method == BasicUserMean || keeps_diagonal(request);
    void* owned = nullptr;
    if (owns && (!task->ownedBuffer || task->ownedCount != request.p)) {
        owned = orv_serv_allocate(owned_bytes(request.p, sizeof(T)), 128);
        if (!owned) return SSStatusAllocation;
        memset(owned, 0, owned_bytes(request.p, sizeof(T)));
    }
    alignas(16) char small[stack_bytes];
    char* memory = small;
    if (bytes > sizeof small) memory = static_cast<char*>(orv_serv_allocate(static_cast<size_t>(bytes), 128));
    if (!memory) {
        orv_serv_deallocate(owned);
        return SSStatusAllocation;
    }
    call.parts = reinterpret_cast<Part<T>*>(memory + layout.total);
    const int32_t ran = run(call, layout, memory, services);
    if (owned) {
        orv_serv_deallocate(task->ownedBuffer);
        task->ownedBuffer = owned;
        task->ownedCount = request.p;
    }
    const int32_t finished = finish(call, ran);
    if (memory != small) orv_serv_deallocate(memory);
    return finished;
}

}  // namespace
}  // namespace orv::stats

ORV_API int32_t _kuzdSSBasic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    return orv::stats::basic<double>(task, estimates, method, services);
}

ORV_API int32_t _kuzsSSBasic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    return orv::stats::basic<float>(task, estimates, method, services);
}
