// A summary of any number of numbers from which every quantile can be read with a rank error of at most epsilon n.
//
// Numbers gather in a batch of 2^s buffers. A full batch is sorted and every 2^s-th number of it kept, the middle one of its
// kind: a list at level s, each element of which stands for 2^s numbers. Two lists of a level l are merged and every second
// element kept, a list of level l + 1, as a binary counter carries. Either step misplaces a rank by no more than half of what
// an element then stands for; which of two elements is kept takes turns, so that errors of a level do not add up one way.
//
// With buffers of k numbers, n numbers make n / (2^(l + 1) k) lists of level l + 1 at a cost of at most 2^l ranks each, n / (2 k) a
// level. Lists reach up to level log2(n / k) < L = log2(epsilon n), and k = L / epsilon keeps the sum below epsilon n / 2. Since n is not
// known before, k is that of a count which doubles whenever n reaches it: what came before was made with shorter buffers, at a
// cost that halves with each doubling gone by.
//
// Sources: J. I. Munro, M. S. Paterson, Selection and sorting with limited storage, Theoretical Computer Science 12 (1980);
// G. S. Manku, S. Rajagopalan, B. G. Lindsay, Approximate medians and other quantiles in one pass and with limited memory, SIGMOD
// (1998); Q. Zhang, W. Wang, A fast algorithm for approximate quantiles in high speed data streams, SSDBM (2007).
#pragma once

#include "services/services.h"
#include "stats/data.h"
#include "stats/order/batch_sort.h"

#include <orv/random.h>

#include <algorithm>
#include <cmath>

namespace orv::stats {

// The sizes that go with a count of numbers.
struct Phase {
    double count;
    int32_t buffer;  // elements of a list
    int32_t levels;
    int32_t step;  // a batch is 2^step buffers

    int32_t batch() const { return buffer << step; }
};

inline Phase phase_of(double epsilon, double count) {
    constexpr double log2_e = 1.4426950408889634, longest = 1 << 27;
    constexpr int32_t shortest_batch = 4096;
    constexpr double most_levels = 64;
    // Infinite for an epsilon close to 0: a batch is then all there is.
    const double l = __kuzdLn(epsilon * count) * log2_e, buffer = l / epsilon;
    Phase phase{count, 1, 1, 2};
    if (buffer > 1) phase.buffer = static_cast<int32_t>(buffer < longest ? buffer : longest);
    if (l + 2 > 1) phase.levels = static_cast<int32_t>(l + 2 < most_levels ? l + 2 : most_levels);
    while (phase.batch() < shortest_batch) ++phase.step;
    return phase;
}

inline Phase first_phase(double epsilon) { return phase_of(epsilon, 2 / epsilon); }

// The phase in which the batch after `taken` numbers is.
inline void go_on(Phase& phase, double epsilon, double taken) {
    if (taken < phase.count) return;
    double count = phase.count;
    while (count <= taken) count *= 2;
    phase = phase_of(epsilon, count);
}

// Which levels hold a list, bit by bit. A new one at `level` carries up to the level returned.
inline int32_t carry(uint64_t& occupied, int32_t level) {
    for (; occupied >> level & 1; ++level) occupied &= ~(uint64_t{1} << level);
    occupied |= uint64_t{1} << level;
    return level;
}

// The summary of one component. NaNs, the last in order, are counted only.
template <class T>
struct Summary {
    Phase phase;
    int64_t taken;  // numbers of full batches
    int64_t nans;
    uint64_t occupied;
    uint64_t turns;  // by levels, which of two elements is kept next
    T least, greatest;

    T* batch;
    int32_t filled, sorted;  // numbers in it, and how many at its front are in order
    int32_t batch_room;

    T* lists;          // `levels` of `list_room` elements
    int32_t* lengths;  // of the lists, behind them
    int32_t levels, list_room;

    int64_t numbers() const { return taken + filled; }
    T* list(int32_t level) const { return lists + ptrdiff_t{level} * list_room; }
};

// A thread's room, for batches and buffers of so many numbers.
template <class T>
struct Room {
    KeyOf<T>*keys, *spare;
    T *carried, *merged;

    static uint64_t bytes(int64_t batch, int64_t buffer) {
        return uint64_t(batch) * 2 * sizeof(T) + uint64_t(buffer + 2) * 2 * sizeof(T);
    }
    static Room at(void* memory, int32_t batch, int32_t buffer) {
        KeyOf<T>* keys = static_cast<KeyOf<T>*>(memory);
        T* carried = reinterpret_cast<T*>(keys + ptrdiff_t{2} * batch);
        return {keys, keys + batch, carried, carried + buffer + 2};
    }
};

// ---- Memory --------------------------------------------------------------------------------------------------------

// What the summary will need when it has taken up n more numbers at most.
struct Outlook {
    Phase phase;
    int32_t top;    // the highest level of a list, -1 without
    int32_t batch;  // most numbers in a batch at once
};

template <class T>
Outlook look_ahead(const Summary<T>& summary, double epsilon, int32_t n) {
    Outlook ahead{summary.phase, -1, 0};
    uint64_t occupied = summary.occupied;
    for (int32_t level = 0; level < 64; ++level)
        if (occupied >> level & 1) ahead.top = level;
    int64_t taken = summary.taken;
    const int64_t whole = summary.numbers() + n;
    while (whole - taken >= ahead.phase.batch()) {
        ahead.batch = std::max(ahead.batch, ahead.phase.batch());
        taken += ahead.phase.batch();
        ahead.top = std::max(ahead.top, carry(occupied, ahead.phase.step));
        go_on(ahead.phase, epsilon, static_cast<double>(taken));
    }
    ahead.batch = std::max(ahead.batch, static_cast<int32_t>(whole - taken));
    return ahead;
}

// Makes room for that; without memory false is returned and the summary is as it was.
template <class T>
bool make_room(Summary<T>& summary, const Outlook& ahead) {
    if (summary.batch_room < ahead.batch) {
        // Twice as much as there was, so that small calls do not copy it each time.
        int64_t room = std::max<int64_t>(ahead.batch, 2 * int64_t{summary.batch_room});
        room = std::max<int64_t>(ahead.batch, std::min<int64_t>(room, ahead.phase.batch()));
        if (room * sizeof(T) >> 31) return false;
        T* batch = static_cast<T*>(orv_serv_allocate(static_cast<size_t>(room) * sizeof(T), 128));
        if (!batch) return false;
        if (summary.filled) memcpy(batch, summary.batch, sizeof(T) * summary.filled);
        orv_serv_deallocate(summary.batch);
        summary.batch = batch;
        summary.batch_room = static_cast<int32_t>(room);
    }
    if (ahead.top < summary.levels && (ahead.top < 0 || ahead.phase.buffer <= summary.list_room)) return true;
    const int32_t levels = std::max(ahead.top + 1, ahead.phase.levels), room = ahead.phase.buffer;
    const uint64_t bytes = (sizeof(T) * uint64_t(room) + sizeof(int32_t)) * levels;
    T* lists = bytes >> 31 ? nullptr : static_cast<T*>(orv_serv_allocate(static_cast<size_t>(bytes), 128));
    if (!lists) return false;
    int32_t* lengths = reinterpret_cast<int32_t*>(lists + ptrdiff_t{room} * levels);
    for (int32_t level = 0; level < levels; ++level) {
        lengths[level] = level < summary.levels ? summary.lengths[level] : 0;
        if (lengths[level]) memcpy(lists + ptrdiff_t{level} * room, summary.list(level), sizeof(T) * lengths[level]);
    }
    orv_serv_deallocate(summary.lists);
    summary.lists = lists;
    summary.lengths = lengths;
    summary.levels = levels;
    summary.list_room = room;
    return true;
}

// ---- Taking up -----------------------------------------------------------------------------------------------------

template <class T>
void widen(Summary<T>& summary, T least, T greatest) {
    const bool first = summary.numbers() == summary.filled;
    if (first || least < summary.least) summary.least = least;
    if (first || greatest > summary.greatest) summary.greatest = greatest;
}

// Brings the whole batch in order: what has come is sorted and merged with what is in order, from behind.
template <class T>
void settle(Summary<T>& summary, const Room<T>& room) {
    T* batch = summary.batch;
    const int32_t front = summary.sorted, fresh = summary.filled - front;
    if (fresh == 0) return;
    const SortedBatch<T> sorted = sort_batch(batch + front, room.keys, room.spare, fresh);
    int32_t left = front - 1;
    for (int32_t right = fresh - 1, to = summary.filled - 1; right >= 0; --to) {
        const T x = sorted[right];
        if (left >= 0 && batch[left] > x) {
            batch[to] = batch[left--];
        } else {
            batch[to] = x;
            --right;
        }
    }
    summary.sorted = summary.filled;
    widen(summary, batch[0], batch[summary.filled - 1]);
}

// Merges two lists and keeps every second element, the first or the second of each two. Every one is written, and the next written over
// those that are not kept. Returns the length; `to` has room for one more.
template <class T>
int32_t merge_half(const T* a, int32_t na, const T* b, int32_t nb, bool keep_first, T* to) {
    const int32_t ahead = keep_first ? 1 : 0;
    int32_t i = 0, j = 0;
    while (i < na && j < nb) {
        const T x = a[i], y = b[j];
        const bool left = x <= y;
        to[(i + j + ahead) >> 1] = left ? x : y;
        i += left;
        j += !left;
    }
    for (; i < na; ++i) to[(i + j + ahead) >> 1] = a[i];
    for (; j < nb; ++j) to[(i + j + ahead) >> 1] = b[j];
    return (na + nb + ahead) >> 1;
}

// Every 2^step-th of a full batch, the middle one of its kind. A batch that came at once need not be put in order for that.
template <class T>
void thin_out(Summary<T>& summary, const Room<T>& room, T* to) {
    const int32_t step = summary.phase.step, length = summary.phase.buffer, middle = 1 << (step - 1);
    if (summary.sorted == 0) {
        const SortedBatch<T> sorted = sort_batch(summary.batch, room.keys, room.spare, summary.filled);
        for (int32_t i = 0; i < length; ++i) to[i] = sorted[(i << step) + middle];
        widen(summary, sorted[0], sorted[summary.filled - 1]);
    } else {
        settle(summary, room);
        for (int32_t i = 0; i < length; ++i) to[i] = summary.batch[(i << step) + middle];
    }
}

// A full batch becomes a list, which carries as far up as there are lists.
template <class T>
void prune(Summary<T>& summary, double epsilon, const Room<T>& room) {
    const int32_t step = summary.phase.step;
    T *carried = room.carried, *merged = room.merged;
    int32_t length = summary.phase.buffer;
    thin_out(summary, room, carried);
    const int32_t top = carry(summary.occupied, step);
    for (int32_t level = step; level < top; ++level) {
        const uint64_t turn = uint64_t{1} << level;
        length = merge_half(summary.list(level), summary.lengths[level], carried, length, (summary.turns & turn) != 0,
                            merged);
        summary.turns ^= turn;
        summary.lengths[level] = 0;
        std::swap(carried, merged);
    }
    summary.lengths[top] = length;
    memcpy(summary.list(top), carried, sizeof(T) * length);
    summary.taken += summary.filled;
    summary.filled = summary.sorted = 0;
    go_on(summary.phase, epsilon, static_cast<double>(summary.taken));
}

template <class T>
void take_up(Summary<T>& summary, double epsilon, Strided<T> x, int32_t n, const Room<T>& room) {
    for (int32_t i = 0; i < n;) {
        const int32_t size = summary.phase.batch();
        int32_t filled = summary.filled;
        const int32_t first = i;
        for (; i < n && filled < size; ++i) {
            const T value = x[i];
            summary.batch[filled] = value;
            filled += value == value;
        }
        summary.nans += (i - first) - (filled - summary.filled);
        summary.filled = filled;
        if (filled < size) break;
        prune(summary, epsilon, room);
    }
    settle(summary, room);
}

// ---- Reading -------------------------------------------------------------------------------------------------------

// Elements in order, each standing for `weight` numbers; [low, high) may hold what is looked for.
template <class T>
struct Range {
    const T* first;
    int32_t low, high, length;
    int64_t weight;
};

// The least element at which the weights cumulate to the rank, counted from 1. Each step takes the middle of the longest range and
// halves this at least.
template <class T>
T at_rank(const Summary<T>& summary, int64_t rank) {
    if (rank <= 1) return summary.least;
    T best = summary.greatest;
    if (rank >= summary.numbers()) return best;
    Range<T> ranges[65];
    int32_t count = 0;
    if (summary.filled) ranges[count++] = {summary.batch, 0, summary.filled, summary.filled, 1};
    for (int32_t level = 0; level < summary.levels; ++level)
        if (const int32_t length = summary.lengths[level])
            ranges[count++] = {summary.list(level), 0, length, length, int64_t{1} << level};
    for (;;) {
        const Range<T>* longest = ranges;
        for (int32_t r = 1; r < count; ++r)
            if (ranges[r].high - ranges[r].low > longest->high - longest->low) longest = ranges + r;
        if (longest->high == longest->low) return best;
        const T probe = longest->first[longest->low + (longest->high - longest->low) / 2];
        int64_t weight = 0;
        int32_t below[65], past[65];
        for (int32_t r = 0; r < count; ++r) {
            const Range<T>& range = ranges[r];
            const T *low = range.first + range.low, *high = range.first + range.high;
            const T* from = std::lower_bound(low, high, probe);
            below[r] = static_cast<int32_t>(from - range.first);
            past[r] = static_cast<int32_t>(std::upper_bound(from, high, probe) - range.first);
            weight += range.weight * past[r];
        }
        const bool enough = weight >= rank;
        if (enough) best = probe;
        for (int32_t r = 0; r < count; ++r) (enough ? ranges[r].high : ranges[r].low) = enough ? below[r] : past[r];
    }
}

// The number nearest to position order * (n - 1) of all.
template <class T>
T read_quantile(const Summary<T>& summary, double order) {
    const int64_t n = summary.numbers() + summary.nans;
    const int64_t rank = std::llround(order * static_cast<double>(n - 1)) + 1;
    return rank > summary.numbers() ? std::numeric_limits<T>::quiet_NaN() : at_rank(summary, rank);
}

}  // namespace orv::stats
