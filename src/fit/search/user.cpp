// Search by the caller's function. It answers for a block of sites at a time and may leave some cells as guesses, which
// are then walked home.
#include "fit/search/search.h"

namespace orv::fit {
namespace {

template <class T, class Cell>
int32_t search_by_user(const Partition<T>& p, bool is_uniform_partition, int64_t siteCount, const T* sites,
                       orv_df_search_callback callback, void* param, Cell* cells) {
    constexpr int64_t block = 512;
    int64_t found[block];
    uint8_t unfinished[block];
    const orv_df_partition partition = {p.count, is_uniform_partition, p.breaks};
    const auto at = [&](int32_t i) { return p.breaks[i]; };
    const auto at_uniform = [&](int32_t i) {
        return i == p.count - 1 ? p.last : p.first + static_cast<T>(i) * p.width;
    };
    for (int64_t i = 0; i < siteCount; i += block) {
        const int64_t count = siteCount - i < block ? siteCount - i : block;
        for (int64_t k = 0; k < count; ++k) found[k] = -1;
        __builtin_memset(unfinished, 0, sizeof unfinished);
        const int32_t answer = callback(&count, sites + i, found, unfinished, &partition, param);
        if (answer < 0) return answer;
        for (int64_t k = 0; answer != ORV_DF_CALLBACK_DONE && k < count; ++k) {
            if (!unfinished[k]) continue;
            const int64_t guess = found[k] <= 0 ? 0 : found[k] < p.count ? found[k] : p.count;
            const auto start = static_cast<int32_t>(guess);
            found[k] =
                is_uniform_partition ? walk(p, at_uniform, start, sites[i + k]) : walk(p, at, start, sites[i + k]);
        }
        for (int64_t k = 0; k < count; ++k) cells[i + k] = static_cast<Cell>(found[k]);
    }
    return ORV_DF_OK;
}

}  // namespace
}  // namespace orv::fit

using namespace orv::fit;

#define ORV_USER_FORM(name, T, uniform_partition, wide)                                                        \
    ORV_API int32_t name(int64_t breakCount, const T* breaks, int64_t siteCount, const T* sites, int64_t*, T,  \
                         orv_df_search_callback callback, void* callbackParam, [[maybe_unused]] int64_t flags, \
                         const orv_df_bucket*, void* cells) {                                                  \
        if (siteCount <= 0) return ORV_DF_OK;                                                                  \
        const Partition<T> p = partition_of(breaks, breakCount, uniform_partition);                            \
        return wide ? search_by_user(p, uniform_partition, siteCount, sites, callback, callbackParam,          \
                                     static_cast<int64_t*>(cells))                                             \
                    : search_by_user(p, uniform_partition, siteCount, sites, callback, callbackParam,          \
                                     static_cast<int32_t*>(cells));                                            \
    }

#define ORV_USER_METHODS(letter, T)                                                                 \
    ORV_USER_FORM(orv_df_kernel_##letter##DFUserDefSearch1D, T, false, (flags & wide_cells) != 0)   \
    ORV_USER_FORM(orv_df_kernel_##letter##DFUserDefSearch1D32, T, false, false)                     \
    ORV_USER_FORM(orv_df_kernel_##letter##DFUniUserDefSearch1D, T, true, (flags & wide_cells) != 0) \
    ORV_USER_FORM(orv_df_kernel_##letter##DFUniUserDefSearch1D32, T, true, false)

ORV_USER_METHODS(d, double)
ORV_USER_METHODS(s, float)
