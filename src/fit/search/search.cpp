// The search entry: it picks the method and divides large searches over threads.
#include "fit/search/search.h"

#include "fit/workers.h"

namespace orv::fit {
namespace {

// Sites below which threads cost more than they save, measured with two threads.
constexpr int64_t threaded_sites = 1 << 15;
// Sites below which the entry works site by site.
constexpr int64_t few_sites = 32;

#define ORV_METHOD_TABLE(letter)                                                                   \
    {                                                                                              \
        orv_df_kernel_##letter##DFUniformSearch1D, orv_df_kernel_##letter##DFQuasiUniformSearch1D, \
            orv_df_kernel_##letter##DFSortedSearch1D, orv_df_kernel_##letter##DFPeakSearch1D,      \
            orv_df_kernel_##letter##DFHybridSearch1D, orv_df_kernel_##letter##DFUserDefSearch1D,   \
            orv_df_kernel_##letter##DFUniUserDefSearch1D,                                          \
    }

template <class T>
constexpr SearchMethod<T> methods[7] = {};
template <>
constexpr SearchMethod<double> methods<double>[7] = ORV_METHOD_TABLE(d);
template <>
constexpr SearchMethod<float> methods<float>[7] = ORV_METHOD_TABLE(s);

template <class T, class Cell>
int32_t search_few(const SearchPlan<T>& plan, int64_t count, const T* sites, int64_t flags, Cell* cells) {
    const Partition<T>& p = plan.partition;
    const auto at = [&](int32_t i) { return p.breaks[i]; };
    const auto each = [&](auto cell) {
        for (int64_t i = 0; i < count; ++i) cells[i] = cell(sites[i]);
        return ORV_DF_OK;
    };
    switch (plan.kind) {
        case uniform:
            return each([&](T x) { return uniform_cell(p, x); });
        case quasi_uniform:
            return each([&](T x) { return walk(p, at, uniform_cell(p, x), x); });
        case hybrid:
            return each([&](T x) { return hybrid_cell(p, plan.table, plan.scale, x); });
        case peak: {
            const auto start = static_cast<int32_t>(plan.scale);
            return each([&](T x) { return walk(p, at, start, x); });
        }
        case sorted: {
            int64_t state = 0;
            return methods<T>[sorted](p.count, p.breaks, count, sites, &state, T{}, nullptr, nullptr, flags, nullptr,
                                      cells);
        }
        default:
            return methods<T>[plan.kind](p.count, p.breaks, count, sites, nullptr, T{}, plan.callback, plan.param,
                                         flags, nullptr, cells);
    }
}

template <class T>
int32_t search(const DFTask* task, int64_t siteCount, const T* sites, int64_t siteHint, const T* dataHint, void* cells,
               orv_df_search_callback callback, void* param, const orv_services* services) {
    if (!task) return ORV_DF_NULL_TASK;
    SearchPlan<T> plan;
    const orv_df_status status = plan_search(*task, siteHint, dataHint, callback, param, plan);
    if (status != ORV_DF_OK) return status;
    if (siteCount <= 0) return ORV_DF_OK;
    const bool wide = task->wideInts != 0;
    const int64_t flags = wide ? wide_cells : 0;
    if (siteCount < few_sites) {
        return wide ? search_few(plan, siteCount, sites, flags, static_cast<int64_t*>(cells))
                    : search_few(plan, siteCount, sites, flags, static_cast<int32_t*>(cells));
    }
    if (callback || siteCount < threaded_sites) {
        int64_t state = 0;
        return run_search(plan, siteCount, sites, &state, flags, cells);
    }
    const int32_t workers = threads_for(services, siteCount / few_sites);
    const size_t cell_size = wide ? sizeof(int64_t) : sizeof(int32_t);
    const auto work = [&](int32_t index) {
        const Share share = share_of(siteCount, few_sites, index, workers);
        int64_t state = index == 0 ? 0 : cell_of(plan.partition, plan.kind == uniform, sites[share.begin]);
        run_search(plan, share.end - share.begin, sites + share.begin, &state, flags,
                   static_cast<char*>(cells) + static_cast<size_t>(share.begin) * cell_size);
    };
    parallel(services, workers, work);
    return ORV_DF_OK;
}

// The task's bucket table, if it covers the partition. Breaks and their count may be edited without it, and then it may be
// too short; what it says of a partition that it covers is corrected by the search at least to a break's index.
template <class T>
const orv_df_bucket* covering_table(const DFTask& task, const Partition<T>& partition) {
    const T buckets = (partition.last - partition.first) * cell_scale(task, T{});
    return buckets < static_cast<T>(task.cellTableSize + 1) ? task.cellTable : nullptr;
}

}  // namespace

template <class T>
orv_df_status plan_search(const DFTask& task, int64_t siteHint, const T* dataHint, orv_df_search_callback callback,
                          void* param, SearchPlan<T>& plan) {
    // Search alone compares the hint with the uniform code; the partition follows the same test here.
    const bool is_uniform_partition = task.breakHint == ORV_DF_BREAKS_UNIFORM;
    plan.partition = partition_of(static_cast<const T*>(task.breaks), task.breakCount, is_uniform_partition);
    plan.scale = plan.partition.inverse_width;
    plan.table = nullptr;
    plan.callback = callback;
    plan.param = param;
    if (callback) {
        plan.kind = is_uniform_partition ? uni_user_def : user_def;
    } else if (is_uniform_partition) {
        plan.kind = uniform;
    } else if (task.breakHint == ORV_DF_BREAKS_QUASI_UNIFORM) {
        plan.kind = quasi_uniform;
    } else if (siteHint == ORV_DF_SITES_SORTED) {
        plan.kind = sorted;
    } else if (!dataHint || dataHint[1] == 0) {
        plan.kind = hybrid;
        plan.scale = cell_scale(task, T{});
        plan.table = covering_table(task, plan.partition);
    } else if (dataHint[1] == 1 && dataHint[4] >= 0 && dataHint[4] <= static_cast<T>(task.breakCount)) {
        plan.kind = peak;
        plan.scale = dataHint[4];
    } else {
        return ORV_DF_BAD_DATA_HINT;
    }
    return ORV_DF_OK;
}

template <class T>
int32_t run_search(const SearchPlan<T>& plan, int64_t count, const T* sites, int64_t* state, int64_t flags,
                   void* cells) {
    const Partition<T>& p = plan.partition;
    return methods<T>[plan.kind](p.count, p.breaks, count, sites, state, plan.scale, plan.callback, plan.param, flags,
                                 plan.table, cells);
}

template <class T>
int64_t cell_of(const Partition<T>& partition, bool is_uniform_partition, T site) {
    return is_uniform_partition ? uniform_cell(partition, site) : hybrid_cell<T>(partition, nullptr, T{}, site);
}

template orv_df_status plan_search(const DFTask&, int64_t, const double*, orv_df_search_callback, void*,
                                   SearchPlan<double>&);
template orv_df_status plan_search(const DFTask&, int64_t, const float*, orv_df_search_callback, void*,
                                   SearchPlan<float>&);
template int32_t run_search(const SearchPlan<double>&, int64_t, const double*, int64_t*, int64_t, void*);
template int32_t run_search(const SearchPlan<float>&, int64_t, const float*, int64_t*, int64_t, void*);
template int64_t cell_of(const Partition<double>&, bool, double);
template int64_t cell_of(const Partition<float>&, bool, float);

}  // namespace orv::fit

using namespace orv::fit;

ORV_API int32_t orv_df_kernel_dDFSearch1D(const DFTask* task, int64_t, int64_t siteCount, const double* sites,
                                          int64_t siteHint, const double* dataHint, void* cells,
                                          orv_df_search_callback callback, void* callbackParam,
                                          const orv_services* services) {
    return search(task, siteCount, sites, siteHint, dataHint, cells, callback, callbackParam, services);
}

ORV_API int32_t orv_df_kernel_sDFSearch1D(const DFTask* task, int64_t, int64_t siteCount, const float* sites,
                                          int64_t siteHint, const float* dataHint, void* cells,
                                          orv_df_search_callback callback, void* callbackParam,
                                          const orv_services* services) {
    return search(task, siteCount, sites, siteHint, dataHint, cells, callback, callbackParam, services);
}
