// Orders of a long component without sorting it: a sample tells two numbers between which those wanted stand but for a small
// chance. One pass counts what is not above the lower of the two and gathers what lies between, a few hundredths of all; that is
// sorted. Numbers equal to a bound are counted and not gathered, so that many equal ones do no harm.
//
// Source: R. W. Floyd, R. L. Rivest, Expected time bounds for selection, Communications of the ACM 18 (1975).
#pragma once

#include "simd/lanes.h"
#include "stats/order/column_sort.h"
#include "stats/order/parted.h"

#include <cmath>
#include <limits>

namespace orv::stats {

inline constexpr int32_t shortest_by_windows = 1 << 14, most_windows = 8;

// Numbers above `low` and below `high`.
template <class T>
struct Window {
    T low, high;
    int32_t first_sample, last_sample;  // what the bounds are of the sample; -1 and its size stand for the infinities
    int32_t up_to_low, inside;
    int32_t below_low, up_to_high;  // -1 until asked for
};

// take(numbers, count) for blocks of x in [first, last). Counts are multiples of eight: NaNs fill up the last.
template <class T, class Take>
void by_blocks(const Strided<T>& x, int32_t first, int32_t last, Take take) {
    constexpr int32_t block = 1024, unit = 8;
    T copy[block];
    for (int32_t i = first; i < last;) {
        const int32_t count = last - i < block ? last - i : block, whole = (count + unit - 1) / unit * unit;
        const T* numbers = x.first + i * x.step;
        if (x.step != 1 || whole != count) {
            for (int32_t k = 0; k < count; ++k) copy[k] = x[i + k];
            for (int32_t k = count; k < whole; ++k) copy[k] = std::numeric_limits<T>::quiet_NaN();
            numbers = copy;
        }
        take(numbers, whole);
        i += count;
    }
}

// How many of n numbers pass a test of lanes. n is a multiple of eight.
template <class T, class Test>
int32_t count_lanes(const T* x, int32_t n, Test test) {
    constexpr int32_t width = simd::Lanes<T>::width;
    using Count = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
    __m128i sum = _mm_setzero_si128();
    for (int32_t i = 0; i < n; i += width) {
        const __m128i passed = simd::bits_of(test(simd::load(x + i)));
        sum = sizeof(T) == 8 ? _mm_sub_epi64(sum, passed) : _mm_sub_epi32(sum, passed);
    }
    Count lanes[width], all = 0;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), sum);
    for (const Count lane : lanes) all += lane;
    return static_cast<int32_t>(all);
}

template <class T, class Test>
int32_t count_column(const Strided<T>& x, int32_t n, Test test) {
    int32_t sum = 0;
    by_blocks(x, 0, n, [&](const T* numbers, int32_t count) { sum += count_lanes(numbers, count, test); });
    return sum;
}

// Appends those of n numbers that lie in a window, and returns how many there are then. There is room for n more.
template <class T>
int32_t gather(const T* x, int32_t n, const Window<T>* windows, int32_t count, T* gathered, int32_t filled) {
    using V = typename simd::Lanes<T>::V;
    constexpr int32_t width = simd::Lanes<T>::width, step = 8 / sizeof(T) * 4;
    const auto between = [](V low, V v, V high) { return simd::bit_and(simd::less(low, v), simd::less(v, high)); };
    const V low = simd::splat(windows[0].low), high = simd::splat(windows[0].high);
    const auto inside = [&](V v) {
        V in = between(low, v, high);
        for (int32_t w = 1; w < count; ++w)
            in = simd::bit_or(in, between(simd::splat(windows[w].low), v, simd::splat(windows[w].high)));
        return in;
    };
    for (int32_t i = 0; i < n; i += step) {
        V in[step / width], any = V{};
        for (int32_t k = 0; k < step / width; ++k)
            any = simd::bit_or(any, in[k] = inside(simd::load(x + i + k * width)));
        if (simd::lane_bits(any) == 0) continue;
        for (int32_t k = 0; k < step / width; ++k) {
            const uint32_t bits = simd::lane_bits(in[k]);
            for (int32_t lane = 0; lane < width; ++lane) {
                gathered[filled] = x[i + k * width + lane];
                filled += static_cast<int32_t>(bits >> lane & 1);
            }
        }
    }
    return filled;
}

// Room for the keys of what windows gather, and for the numbers before: a thread's may all be in a window.
inline int32_t gathered_keys(int32_t n) { return n / 4 + 1024; }
inline int32_t gathered_numbers(int32_t n, int32_t threads) {
    return threads == 1 ? gathered_keys(n) : n + 1024 * threads;
}

template <class T>
struct Windows {
    using Key = KeyOf<T>;

    Strided<T> x;
    int32_t n, count;
    Window<T> all[most_windows];
    const Key* inside;  // of all windows, in order
    int32_t inside_count;

    // Sets windows about the positions, which rise. False where they would hold too much.
    bool place(const Position* positions, int32_t positions_count, Key* keys, Key* spare) {
        constexpr double deviations = 4;  // of the sample's standard ones; what lies outside costs a second try
        int32_t sample = 1 << 10;
        while (4.0 * n * n > static_cast<double>(sample) * sample * sample) sample *= 2;
        const double margin = deviations * 0.5 * std::sqrt(static_cast<double>(sample)) + 1;
        count = 0;
        int32_t covered = 0;
        for (int32_t k = 0; k < positions_count; ++k) {
            const double at = (positions[k].first + 0.5) / n * sample;
            const int32_t first = at - margin < 0 ? -1 : static_cast<int32_t>(at - margin);
            const int32_t last = at + 1 + margin > sample - 1 ? sample : static_cast<int32_t>(at + 1 + margin);
            if (count > 0 && first <= all[count - 1].last_sample) {
                covered += last - all[count - 1].last_sample;
                all[count - 1].last_sample = last;
            } else {
                covered += last - first;
                all[count++] = {0, 0, first, last, 0, 0, -1, -1};
            }
        }
        if (covered > sample / 5) return false;
        uint64_t state = 1;
        for (int32_t i = 0; i < sample; ++i) {
            state = state * 6364136223846793005 + 1442695040888963407;
            keys[i] = key_of(x[static_cast<ptrdiff_t>((state >> 32) * static_cast<uint32_t>(n) >> 32)]);
        }
        const Key* sorted = sort_keys(keys, spare, sample);
        // A NaN is behind all numbers, so that no number is above its window.
        constexpr T infinity = std::numeric_limits<T>::infinity();
        const auto bound = [&](int32_t i) {
            const T number = i < 0 ? -infinity : i < sample ? number_of<T>(sorted[i]) : infinity;
            return number == number ? number : infinity;
        };
        for (int32_t w = 0; w < count; ++w) {
            all[w].low = bound(all[w].first_sample);
            all[w].high = bound(all[w].last_sample);
        }
        return true;
    }

    // The pass. False where the room does not hold what the windows do.
    bool gather_all(const orv_services* services, int32_t threads, T* room, Key* keys) {
        const int32_t share_room = gathered_numbers(n, threads) / threads;
        int32_t filled[most_within], up_to[most_within][most_windows] = {};
        auto pass = [&](int32_t index) {
            const Share share = share_of(n, threads, index);
            T* gathered = room + ptrdiff_t{index} * share_room;
            int32_t own = 0, own_up_to[most_windows] = {};
            by_blocks(x, share.first, share.last, [&](const T* numbers, int32_t block) {
                for (int32_t w = 0; w < count; ++w) {
                    const auto low = simd::splat(all[w].low);
                    own_up_to[w] += count_lanes(numbers, block, [&](auto v) { return simd::less_equal(v, low); });
                }
                if (own >= 0) own = own + block > share_room ? -1 : gather(numbers, block, all, count, gathered, own);
            });
            filled[index] = own;
            memcpy(up_to[index], own_up_to, sizeof own_up_to);
            return int32_t{SSStatusOk};
        };
        fan_out(services, threads, pass);
        inside_count = 0;
        for (int32_t t = 0; t < threads; ++t) {
            if (filled[t] < 0 || filled[t] > gathered_keys(n) - inside_count) return false;
            for (int32_t w = 0; w < count; ++w) all[w].up_to_low += up_to[t][w];
            for (int32_t i = 0; i < filled[t]; ++i) keys[inside_count++] = key_of(room[ptrdiff_t{t} * share_room + i]);
        }
        // The room's numbers are in the keys now.
        inside = inside_count == 0 ? keys : sort_keys(keys, reinterpret_cast<Key*>(room), inside_count);
        for (int32_t w = 0, from = 0; w < count; ++w) {
            int32_t to = from;
            if (w + 1 == count)
                to = inside_count;
            else
                while (to < inside_count && number_of<T>(inside[to]) < all[w].high) ++to;
            all[w].inside = to - from;
            from = to;
        }
        return true;
    }

    // Zeros are equal to the passes; the negative ones come first.
    T of_equal(T value, int32_t rank) const {
        if (value != 0) return value;
        const int32_t below = count_column(x, n, [](auto v) { return simd::less(v, simd::splat(T{0})); });
        int32_t negative = 0;
        for (int32_t i = 0; i < n; ++i) negative += x[i] == 0 && std::signbit(x[i]);
        return rank < below + negative ? -T{0} : T{0};
    }

    // The number of a rank, which is one that positions stand at. False where it lies outside of all windows.
    bool at_rank(int32_t rank, T& value) {
        for (int32_t w = 0, before = 0; w < count; before += all[w++].inside) {
            Window<T>& window = all[w];
            if (rank < window.up_to_low) {
                const auto low = simd::splat(window.low);
                if (window.below_low < 0)
                    window.below_low = count_column(x, n, [&](auto v) { return simd::less(v, low); });
                if (rank < window.below_low) return false;
                value = of_equal(window.low, rank);
                return true;
            }
            if (rank - window.up_to_low < window.inside) {
                value = number_of<T>(inside[before + rank - window.up_to_low]);
                return true;
            }
            const auto high = simd::splat(window.high);
            if (window.up_to_high < 0)
                window.up_to_high = count_column(x, n, [&](auto v) { return simd::less_equal(v, high); });
            if (rank < window.up_to_high) {
                value = of_equal(window.high, rank);
                return true;
            }
            if (window.high == std::numeric_limits<T>::infinity()) {
                value = std::numeric_limits<T>::quiet_NaN();
                return true;
            }
        }
        return false;
    }
};

}  // namespace orv::stats
