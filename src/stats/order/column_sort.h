// Sorting a component, alone or with others' help.
#pragma once

#include "stats/entry.h"
#include "stats/order/keys.h"

namespace orv::stats {

// The keys of some observations, each to its place.
template <class T>
void put_keys(const Strided<T>& x, Share share, KeyOf<T>* keys) {
    if (x.step == 1) return put_keys(x.first + share.first, share.last - share.first, keys + share.first);
    for (int32_t i = share.first; i < share.last; ++i) keys[i] = key_of(x[i]);
}

// Parts that are sorted each on its own, two a thread, so that one of more work is made up for: part r holds keys from splitter r on and below splitter r + 1. A sample tells splitters
// between which about equally many keys lie.
template <class Key>
struct Parts {
    static constexpr int32_t sample_per_part = 512;

    int32_t threads, count;
    Key splitters[most_within];                // but the first
    int32_t starts[most_within][most_within];  // by threads and parts: how many keys, then where the next one goes
    int32_t ends[most_within];

    int32_t part_of(Key key) const {
        int32_t part = 0;
        for (int32_t r = 1; r < count; ++r) part += key >= splitters[r];
        return part;
    }
    void count_to_starts() {
        int32_t sum = 0;
        for (int32_t r = 0; r < count; ++r) {
            for (int32_t t = 0; t < threads; ++t) {
                const int32_t own = starts[t][r];
                starts[t][r] = sum;
                sum += own;
            }
            ends[r] = sum;
        }
    }
};

// Sorts by `threads` threads, of which each hands its keys to take(first, last, keys) when they are in order. All keys are different
// or the same: their order does not depend on the threads.
template <class T, class Take>
void sort_column_with(const Strided<T>& x, int32_t n, const orv_services* services, int32_t threads, KeyOf<T>* keys,
                      KeyOf<T>* spare, Take take) {
    using Key = KeyOf<T>;
    if (threads == 1) {
        put_keys(x, Share{0, n}, keys);
        return take(0, n, sort_keys(keys, spare, n));
    }
    Parts<Key> parts;
    parts.threads = threads;
    parts.count = 2 * threads < most_within ? 2 * threads : most_within;
    const int32_t sample = parts.count * Parts<Key>::sample_per_part;
    for (int32_t i = 0; i < sample; ++i) spare[i] = key_of(x[static_cast<ptrdiff_t>(int64_t{i} * n / sample)]);
    quick_sort(spare, sample);
    for (int32_t r = 1; r < parts.count; ++r) parts.splitters[r] = spare[r * Parts<Key>::sample_per_part];

    const auto on = [&](int32_t count, auto work) { fan_out(services, count, work); };
    on(threads, [&](int32_t index) {
        int32_t counts[most_within] = {};
        const Share share = share_of(n, threads, index);
        put_keys(x, share, keys);
        for (int32_t i = share.first; i < share.last; ++i) ++counts[parts.part_of(keys[i])];
        memcpy(parts.starts[index], counts, sizeof counts);
        return int32_t{SSStatusOk};
    });
    parts.count_to_starts();
    on(threads, [&](int32_t index) {
        int32_t next[most_within];
        memcpy(next, parts.starts[index], sizeof next);
        const Share share = share_of(n, threads, index);
        for (int32_t i = share.first; i < share.last; ++i) spare[next[parts.part_of(keys[i])]++] = keys[i];
        return int32_t{SSStatusOk};
    });
    on(parts.count, [&](int32_t index) {
        const int32_t first = index == 0 ? 0 : parts.ends[index - 1], count = parts.ends[index] - first;
        if (count > 0) take(first, first + count, sort_keys(spare + first, keys + first, count));
        return int32_t{SSStatusOk};
    });
}

// The same into a matrix of sorted observations.
template <class T>
void put_sorted(const Data& data, int32_t j, const KeyOf<T>* keys, int32_t first, int32_t last, T* matrix,
                bool by_rows) {
    for (int32_t i = first; i < last; ++i) element(matrix, data, by_rows, j, i) = number_of<T>(keys[i - first]);
}

}  // namespace orv::stats
