// The bucket table: equal buckets over the partition, each knowing the break indices between which its sites lie.
#include "fit/task.h"

namespace orv::fit {

template <class T>
orv_df_status build_bucket_table(DFTask& task) {
    constexpr int64_t least_buckets = 16, most_buckets = 1024, breaks_a_bucket = 16;
    constexpr int32_t none = -1;
    int64_t n = task.breakCount / breaks_a_bucket;
    if (n < least_buckets) n = least_buckets;
    if (n > most_buckets) n = most_buckets;
    task.cellTableSize = n;
    const auto size = static_cast<size_t>(n + 2) * sizeof(orv_df_bucket);
    auto* table = static_cast<orv_df_bucket*>(orv_serv_allocate(size, block_alignment));
    task.cellTable = table;
    if (!table) return ORV_DF_NO_MEMORY;
    for (int64_t c = 0; c < n; ++c) table[c] = {none, none};
    table[0].lo = 0;

    const T* breaks = static_cast<const T*>(task.breaks);
    const auto count = static_cast<int32_t>(task.breakCount);
    const T first = breaks[0];
    const T scale = static_cast<T>(n) / (breaks[count - 1] - first);
    cell_scale(task, T{}) = scale;
    // Breaks ascend, so the first break seen in bucket c bounds bucket c - 1 above and the last one bounds bucket c + 1
    // below. A bucket outside 0 to n comes from breaks that do not ascend or are not numbers: it bounds nothing.
    for (int32_t i = 1; i < count; ++i) {
        const T place = (breaks[i] - first) * scale;
        if (!(place >= 1 && place < static_cast<T>(n + 1))) continue;
        const auto c = static_cast<int32_t>(place);
        if (table[c - 1].hi == none) table[c - 1].hi = i;
        table[c + 1].lo = i;
    }
    table[n - 1].hi = count - 1;
    for (int64_t i = 0; i < n - 1; ++i) {
        if (table[i + 1].lo == none) table[i + 1].lo = table[i].lo;
        if (table[n - 2 - i].hi == none) table[n - 2 - i].hi = table[n - 1 - i].hi;
    }
    table[n] = table[n - 1];
    return ORV_DF_OK;
}

template orv_df_status build_bucket_table<double>(DFTask&);
template orv_df_status build_bucket_table<float>(DFTask&);

}  // namespace orv::fit
