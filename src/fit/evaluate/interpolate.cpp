// Interpolation: blocks of sites are searched, located in the pieces, and evaluated function by function and derivative by
// derivative; sites that callbacks ask for are then done over by them, run by run.
#include "fit/evaluate/evaluate.h"
#include "fit/search/search.h"
#include "fit/workers.h"

namespace orv::fit {
namespace {

constexpr int64_t few_sites = 32;
// Results below which threads cost more than they save, measured with two threads.
constexpr int64_t threaded_results = 1 << 14;

// What one block of sites needs beside its results.
template <class T, int32_t capacity>
struct Scratch {
    T offset[capacity], values[capacity];
    int32_t cells[capacity], piece[capacity];
};

constexpr int32_t block_sites = 760;
constexpr size_t scratch_bytes = 18256;
static_assert(sizeof(Scratch<double, block_sites>) <= scratch_bytes);

struct Callbacks {
    orv_df_run_callback left, right, inside;
    void *left_param, *right_param, *inside_param;
};

template <class T>
struct Job {
    const DFTask* task;
    Kind kind;
    // The callbacks evaluate everywhere: neither coefficients nor function values are read.
    bool by_callbacks;
    bool evaluates, uses_given_cells, stores_cells, needs_cells;
    SearchPlan<T> plan;
    Pieces<T> pieces;
    Locate<T> locate;
    int64_t site_count;
    const T* sites;
    void* cells;
    int64_t function_count, derivative_count, wanted;
    const void* derivatives;
    T* results;
    int64_t layout;
    Callbacks callbacks;
};

// An element of a caller's integer array.
inline int64_t integer_at(const void* array, bool wide, int64_t i) {
    return wide ? static_cast<const int64_t*>(array)[i] : static_cast<const int32_t*>(array)[i];
}

template <class T>
bool is_wanted(const Job<T>& job, int64_t derivative) {
    return !job.derivatives || integer_at(job.derivatives, job.task->wideInts != 0, derivative) != 0;
}

// Where the results of one function and one wanted derivative go: site s at first[s * stride].
template <class T>
struct Target {
    T* first;
    ptrdiff_t stride;
};

template <class T>
Target<T> target_of(const Job<T>& job, int64_t f, int64_t d) {
    const auto F = static_cast<ptrdiff_t>(job.function_count), S = static_cast<ptrdiff_t>(job.site_count);
    const auto D = static_cast<ptrdiff_t>(job.wanted), function = static_cast<ptrdiff_t>(f),
               derivative = static_cast<ptrdiff_t>(d);
    switch (job.layout) {
        case ORV_DF_COLUMNS:
            return {job.results + function * D + derivative, F * D};
        case ORV_DF_ROWS_BY_DERIVATIVE:
            return {job.results + (function * D + derivative) * S, 1};
        case ORV_DF_COLUMNS_BY_DERIVATIVE:
            return {job.results + derivative * F + function, D * F};
        case ORV_DF_ROW_POINTERS:
            return {reinterpret_cast<T* const*>(job.results)[f] + derivative, D};
        default:
            return {job.results + function * S * D + derivative, D};
    }
}

// Lets a callback evaluate each run of consecutive sites whose cells belong to it.
template <class T, class Belongs>
int32_t call_back(orv_df_run_callback callback, void* param, int64_t f, int64_t derivative, int32_t count,
                  const T* sites, const int32_t* cells, T* values, T* out, ptrdiff_t stride, Belongs belongs) {
    if (!callback) return ORV_DF_OK;
    for (int32_t from = 0; from < count;) {
        int32_t to = from;
        while (to < count && belongs(cells[to])) ++to;
        if (to > from) {
            const orv_df_run run = {to - from, f, derivative, sites + from, cells + from, values};
            const int32_t answer = callback(&run, param);
            if (answer < 0) return answer;
            for (int32_t i = from; i < to; ++i) out[i * stride] = values[i - from];
        }
        from = to + 1;
    }
    return ORV_DF_OK;
}

// One function's derivative at the sites of a block, from the pieces or from the function values.
template <class T, int32_t capacity>
void evaluate_sites(const Job<T>& job, int64_t f, int64_t derivative, int32_t count, const T* sites,
                    const Scratch<T, capacity>& w, T* out, ptrdiff_t stride) {
    if (reads_values(job.kind)) {
        evaluate_values(*job.task, job.pieces, job.kind, f, derivative, count, sites, w.cells, out, stride);
        return;
    }
    const int64_t order = job.task->splineOrder;
    const auto* coeffs = static_cast<const T*>(job.task->coeffs[f]);
    evaluator_for<T>(order, derivative, stride)(coeffs, order, derivative, w.piece, w.offset, count, out, stride);
}

template <class T, int32_t capacity>
int32_t evaluate_block(const Job<T>& job, int64_t at, int32_t count, Scratch<T, capacity>& w) {
    const int32_t n = job.pieces.partition.count;
    const T* sites = job.sites + at;
    const Callbacks& c = job.callbacks;
    int64_t d = 0;
    for (int64_t derivative = 0; derivative < job.derivative_count; ++derivative) {
        if (!is_wanted(job, derivative)) continue;
        for (int64_t f = 0; f < job.function_count; ++f) {
            const Target<T> target = target_of(job, f, d);
            const ptrdiff_t stride = target.stride;
            T* out = target.first + static_cast<ptrdiff_t>(at) * stride;
            if (!job.by_callbacks) evaluate_sites(job, f, derivative, count, sites, w, out, stride);
            const auto by = [&](orv_df_run_callback callback, void* param, auto belongs) {
                return call_back(callback, param, f, derivative, count, sites, w.cells, w.values, out, stride, belongs);
            };
            int32_t status = by(c.left, c.left_param, [](int32_t cell) { return cell <= 0; });
            if (status >= 0) status = by(c.right, c.right_param, [n](int32_t cell) { return cell >= n; });
            if (status >= 0) status = by(c.inside, c.inside_param, [n](int32_t cell) { return cell > 0 && cell < n; });
            if (status < 0) return status;
        }
        ++d;
    }
    return ORV_DF_OK;
}

template <class T, int32_t capacity>
int32_t work_range(const Job<T>& job, int64_t begin, int64_t end, Scratch<T, capacity>& w) {
    const int32_t n = job.pieces.partition.count;
    const bool wide = job.task->wideInts != 0;
    // A sorted search that starts in the middle of the sites starts from its own first site.
    int64_t state = begin == 0 || begin == end ? 0 : cell_of(job.plan.partition, job.pieces.uniform, job.sites[begin]);
    for (int64_t at = begin; at < end; at += capacity) {
        const auto count = static_cast<int32_t>(end - at < capacity ? end - at : capacity);
        const T* sites = job.sites + at;
        if (job.uses_given_cells) {
            for (int32_t i = 0; i < count; ++i) {
                const int64_t cell = integer_at(job.cells, wide, at + i);
                w.cells[i] = cell < 0 ? 0 : cell > n ? n : static_cast<int32_t>(cell);
            }
        } else if (job.needs_cells) {
            const int32_t status = run_search(job.plan, count, sites, &state, 0, w.cells);
            if (status < 0) return status;
        }
        for (int32_t i = 0; job.stores_cells && i < count; ++i) {
            if (wide)
                static_cast<int64_t*>(job.cells)[at + i] = w.cells[i];
            else
                static_cast<int32_t*>(job.cells)[at + i] = w.cells[i];
        }
        if (!job.evaluates) continue;
        if (!job.needs_cells)
            locate_uniform(job.pieces, count, sites, w.piece, w.offset);
        else if (!reads_values(job.kind) && !job.by_callbacks)
            job.locate(job.pieces, count, sites, w.cells, w.piece, w.offset);
        const int32_t status = evaluate_block(job, at, count, w);
        if (status < 0) return status;
    }
    return ORV_DF_OK;
}

// The thread services by name: this entry is given no table.
orv_services named_services() {
    orv_services services = {};
    services.parallel_for =
        reinterpret_cast<decltype(services.parallel_for)>(orv_serv_load_thread_fun("orv_kuz_serv_threader_for"));
    services.thread_limit = reinterpret_cast<decltype(services.thread_limit)>(
        orv_serv_load_thread_fun("orv_kuz_serv_threader_get_num_threads_limit"));
    return services;
}

template <class T>
int32_t run_large(const Job<T>& job, bool may_thread) {
    const int64_t results = job.site_count * job.function_count * (job.evaluates ? job.wanted : 1);
    const orv_services services = named_services();
    const bool threaded = may_thread && results >= threaded_results && services.parallel_for && services.thread_limit;
    const int32_t workers = threaded ? threads_for(&services, job.site_count / block_sites) : 1;
    constexpr size_t stride = (scratch_bytes + 127) / 128 * 128;
    auto* scratch = static_cast<char*>(
        orv_serv_allocate(static_cast<size_t>(workers - 1) * stride + scratch_bytes, block_alignment));
    if (!scratch) return ORV_DF_NO_MEMORY;
    int32_t status = ORV_DF_OK;
    const auto work = [&](int32_t index) {
        auto& own = *reinterpret_cast<Scratch<T, block_sites>*>(scratch + static_cast<size_t>(index) * stride);
        const Share share = share_of(job.site_count, block_sites, index, workers);
        const int32_t answer = work_range(job, share.begin, share.end, own);
        if (answer < 0) __atomic_store_n(&status, answer, __ATOMIC_RELAXED);
    };
    parallel(&services, workers, work);
    orv_serv_deallocate(scratch);
    return status;
}

template <class T>
int32_t interpolate(const DFTask* task, int64_t type, int64_t siteCount, const T* sites, int64_t siteHint,
                    int64_t derivativeCount, const void* derivatives, const T* dataHint, T* results, int64_t resultHint,
                    void* cells, const Callbacks& callbacks, orv_df_search_callback searchCallback, void* searchParam) {
    if (!task) return ORV_DF_NULL_TASK;
    Job<T> job;
    job.task = task;
    job.kind = linear;
    job.by_callbacks = callbacks.left && callbacks.right && callbacks.inside;
    orv_df_status status = ORV_DF_OK;
    if (type != ORV_DF_STORE_CELLS) status = kind_of(*task, job.by_callbacks, job.kind);
    if (status != ORV_DF_OK) return status;
    job.layout = resultHint == ORV_DF_NO_HINT ? int64_t{ORV_DF_ROWS} : resultHint;
    if (job.layout != ORV_DF_ROWS && job.layout != ORV_DF_COLUMNS && job.layout != ORV_DF_ROW_POINTERS &&
        job.layout != ORV_DF_ROWS_BY_DERIVATIVE && job.layout != ORV_DF_COLUMNS_BY_DERIVATIVE)
        return ORV_DF_BAD_RESULT_HINT;
    status = plan_search(*task, siteHint, dataHint, searchCallback, searchParam, job.plan);
    if (status != ORV_DF_OK) return status;
    if (siteCount <= 0) return ORV_DF_OK;

    job.evaluates = (type & (ORV_DF_EVALUATE | ORV_DF_EVALUATE_CELLS)) != 0;
    job.uses_given_cells = (type & ORV_DF_EVALUATE_CELLS) != 0 && cells;
    job.stores_cells = (type & ORV_DF_STORE_CELLS) != 0 && !job.uses_given_cells && cells;
    if (!job.evaluates && !job.stores_cells) return ORV_DF_OK;
    if (job.evaluates && !job.by_callbacks) {
        status = reads_values(job.kind) ? functions_present(*task) : pieces_present(*task, job.kind);
        if (status != ORV_DF_OK) return status;
    }
    job.pieces = {job.plan.partition, job.kind == quadratic_with_knots ? static_cast<const T*>(task->icData) : nullptr,
                  task->breakHint == ORV_DF_BREAKS_UNIFORM};
    job.locate = locate_for(job.pieces);
    job.site_count = siteCount;
    job.sites = sites;
    job.cells = cells;
    job.function_count = task->funcCount;
    job.derivatives = derivatives;
    job.derivative_count = derivatives ? derivativeCount : 1;
    job.wanted = 0;
    for (int64_t k = 0; k < job.derivative_count; ++k) job.wanted += is_wanted(job, k);
    job.results = results;
    job.callbacks = callbacks;
    const bool calls_back = callbacks.left || callbacks.right || callbacks.inside;
    // On a uniform partition the common kinds find their pieces from the sites alone.
    const bool found_from_sites =
        job.plan.kind == uniform && (job.kind == linear || job.kind == quadratic || job.kind == cubic);
    job.needs_cells = job.stores_cells || job.uses_given_cells || calls_back || !found_from_sites;

    int64_t flags = task->wideInts;
    if (type & ORV_DF_STORE_CELLS) flags |= 4;
    if (siteCount < few_sites && task->breakCount < 0x7fffffff && (flags & 5) == 0) {
        Scratch<T, few_sites> few;
        return work_range(job, 0, siteCount, few);
    }
    return run_large(job, !calls_back && !searchCallback);
}

}  // namespace
}  // namespace orv::fit

#define ORV_INTERPOLATE(letter, T)                                                                               \
    ORV_API int32_t orv_df_kernel_##letter##DFInterpolate1D(                                                     \
        const DFTask* task, int64_t type, int64_t, int64_t siteCount, const T* sites, int64_t siteHint,          \
        int64_t derivativeCount, const void* derivatives, const T* dataHint, T* results, int64_t resultHint,     \
        void* cells, orv_df_run_callback leftCallback, void* leftParam, orv_df_run_callback rightCallback,       \
        void* rightParam, orv_df_run_callback interpolateCallback, void* interpolateParam,                       \
        orv_df_search_callback searchCallback, void* searchParam) {                                              \
        return orv::fit::interpolate(                                                                            \
            task, type, siteCount, sites, siteHint, derivativeCount, derivatives, dataHint, results, resultHint, \
            cells, {leftCallback, rightCallback, interpolateCallback, leftParam, rightParam, interpolateParam},  \
            searchCallback, searchParam);                                                                        \
    }

ORV_INTERPOLATE(d, double)
ORV_INTERPOLATE(s, float)
