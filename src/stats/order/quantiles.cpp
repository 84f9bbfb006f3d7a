// Quantiles by selection.
//
// The quantile of order q of n observations stands at position f = q (n - 1): with i its whole part and d the rest it is
// a (1 - d) + b d, a and b being the observations of order i and i + 1. A component's orders are taken from the smallest up. In
// a short component each is selected in what the one before left behind it; in a long one all are read from one pass. Many orders, or
// a wish for the sorted observations, have it sorted.
#include "stats/order/windows.h"

namespace orv::stats {
namespace {

constexpr int32_t most_selected = most_windows;

template <class T>
struct Request {
    Data data;
    const T* orders;
    int32_t count;
    T* results;
    T* sorted;  // null, or the matrix of sorted observations
    bool sorted_by_rows;

    bool by_sorting() const { return sorted || count > most_selected; }
    T* of_component(int32_t j) const { return results + ptrdiff_t{j} * count; }
    Position position(int32_t k) const { return Position(static_cast<double>(orders[k]), data.n); }
};

template <class T>
int32_t read_request(SSTask* task, Request<T>& request) {
    const Needed needed[] = {{task->quantOrderCount, SSStatusQuantOrderCount},
                             {task->quantOrders, SSStatusQuantOrders},
                             {task->quantiles, SSStatusQuantiles}};
    if (const int32_t status = first_missing(needed)) return status;
    if (const int32_t status = read_count(task, task->quantOrderCount, SSStatusQuantOrderCount, request.count))
        return status;
    request.orders = static_cast<const T*>(task->quantOrders);
    for (int32_t k = 0; k < request.count; ++k)
        if (!(request.orders[k] >= 0 && request.orders[k] <= 1)) return SSStatusQuantOrders;
    request.results = static_cast<T*>(task->quantiles);
    request.sorted = static_cast<T*>(task->orderStats);
    request.sorted_by_rows = request.data.by_rows;
    if (request.sorted && task->orderStatsStorage)
        return read_form(task, task->orderStatsStorage, request.sorted_by_rows);
    return SSStatusOk;
}

// The two blocks have room for n keys each.
template <class T>
void by_sorting(const Request<T>& request, int32_t j, const orv_services* helpers, int32_t threads, KeyOf<T>* keys,
                KeyOf<T>* spare) {
    const Data& data = request.data;
    T *sorted = request.sorted, *results = request.of_component(j);
    sort_column_with(data.component<T>(j), data.n, helpers, threads, keys, spare,
                     [&](int32_t first, int32_t last, const KeyOf<T>* in_order) {
                         // Whoever has the part in which an order's numbers stand would have to ask others for the second.
                         if (in_order != keys + first)
                             memcpy(keys + first, in_order, sizeof(KeyOf<T>) * static_cast<size_t>(last - first));
                         if (sorted) put_sorted(data, j, keys + first, first, last, sorted, request.sorted_by_rows);
                     });
    for (int32_t k = 0; k < request.count; ++k) {
        const Position at = request.position(k);
        results[k] = at.between(number_of<T>(keys[at.first]), number_of<T>(keys[at.first + (at.first + 1 < data.n)]));
    }
}

// False where a long component holds the orders' numbers outside of the windows.
template <class T>
bool by_selection(const Request<T>& request, int32_t j, const orv_services* helpers, int32_t threads, char* memory) {
    const Data& data = request.data;
    const int32_t n = data.n;
    const Strided<T> x = data.component<T>(j);
    int32_t place[most_selected];  // of the orders from the smallest up
    for (int32_t k = 0; k < request.count; ++k) {
        int32_t to = k;
        for (; to > 0 && request.orders[place[to - 1]] > request.orders[k]; --to) place[to] = place[to - 1];
        place[to] = k;
    }
    T* results = request.of_component(j);
    if (n < shortest_by_windows) {
        Parted<T> parted{reinterpret_cast<T*>(memory), 0, n, 0};
        copy_numbers(x, parted);
        for (int32_t k = 0; k < request.count; ++k)
            results[place[k]] = quantile(parted, static_cast<double>(request.orders[place[k]]));
        return true;
    }
    Position positions[most_selected];
    for (int32_t k = 0; k < request.count; ++k) positions[k] = request.position(place[k]);
    KeyOf<T>* keys = reinterpret_cast<KeyOf<T>*>(memory);
    T* numbers = reinterpret_cast<T*>(keys + gathered_keys(n));
    Windows<T> windows{x, n, 0, {}, nullptr, 0};
    if (!windows.place(positions, request.count, keys, reinterpret_cast<KeyOf<T>*>(numbers))) return false;
    if (!windows.gather_all(helpers, threads, numbers, keys)) return false;
    for (int32_t k = 0; k < request.count; ++k) {
        const int32_t first = positions[k].first;
        T a, b;
        if (!windows.at_rank(first, a) || !windows.at_rank(first + (first + 1 < n), b)) return false;
        results[place[k]] = positions[k].between(a, b);
    }
    return true;
}

template <class T>
int32_t quantiles(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Request<T> request;
    Data& data = request.data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_QUANTILES)) return SSStatusOk;
    if (const int32_t status = read_request(task, request)) return status;

    using Key = KeyOf<T>;
    const uint64_t n = uint64_t(data.n), for_sorting = 2 * sizeof(Key) * n;
    const int32_t threads = threads_within(data, services);
    if (request.by_sorting())
        return for_components_and_within(data, services, threads, for_sorting,
                                         [&](int32_t j, char* memory, const orv_services* helpers, int32_t helping) {
                                             Key* keys = reinterpret_cast<Key*>(memory);
                                             by_sorting(request, j, helpers, helping, keys, keys + n);
                                             return int32_t{SSStatusOk};
                                         });
    const auto select_all = [&](uint64_t bytes) {
        return for_components_and_within(data, services, threads, bytes,
                                         [&](int32_t j, char* memory, const orv_services* helpers, int32_t helping) {
                                             if (by_selection(request, j, helpers, helping, memory))
                                                 return int32_t{SSStatusOk};
                                             const Scratch other(for_sorting);
                                             if (!other.block) return int32_t{SSStatusAllocation};
                                             Key* keys = reinterpret_cast<Key*>(other.block);
                                             by_sorting(request, j, helpers, helping, keys, keys + n);
                                             return int32_t{SSStatusOk};
                                         });
    };
    if (data.n < shortest_by_windows) return select_all(sizeof(T) * n);

    // A component that has to be sorted may find no memory when others are done: the results are kept back until all are.
    const Scratch kept(sizeof(T) * uint64_t(data.p) * uint64_t(request.count));
    if (!kept.block) return SSStatusAllocation;
    T* const results = request.results;
    request.results = reinterpret_cast<T*>(kept.block);
    if (const int32_t status =
            select_all(sizeof(T) * (uint64_t(gathered_keys(data.n)) + gathered_numbers(data.n, threads))))
        return status;
    for (int32_t j = 0; j < data.p; ++j)
        if (data.takes_part(j))
            memcpy(results + ptrdiff_t{j} * request.count, request.of_component(j), sizeof(T) * size_t(request.count));
    return SSStatusOk;
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(Quantiles, quantiles)
