// The least and the greatest observation of each component, in the order of the sorted results: -0 is below +0, and a NaN shows in both.
#include "simd/lanes.h"
#include "stats/entry.h"

#include <cmath>
#include <limits>

namespace orv::stats {
namespace {

// Least and greatest so far; a NaN stays.
template <class T>
struct Extremes {
    T least, greatest;

    void take_least(T x) {
        if (!(x > least)) least = least != least || (x == least && std::signbit(least)) ? least : x;
    }
    void take_greatest(T x) {
        if (!(x < greatest)) greatest = greatest != greatest || (x == greatest && std::signbit(x)) ? greatest : x;
    }
    void take(T x) {
        take_least(x);
        take_greatest(x);
    }
    // Which NaN was met depends on the order of the work; the result is always the same one.
    void spread_nan() {
        const T nan = std::numeric_limits<T>::quiet_NaN();
        if (least != least || greatest != greatest) *this = {nan, nan};
    }
};

inline __m128 lesser(__m128 a, __m128 b) { return _mm_min_ps(a, b); }
inline __m128d lesser(__m128d a, __m128d b) { return _mm_min_pd(a, b); }
inline __m128 greater(__m128 a, __m128 b) { return _mm_max_ps(a, b); }
inline __m128d greater(__m128d a, __m128d b) { return _mm_max_pd(a, b); }

// Whether a number is there, bit for bit.
template <class T>
bool is_there(const T* x, int32_t n, T number) {
    constexpr int32_t width = simd::Lanes<T>::width;
    const __m128i wanted = simd::bits_of(simd::splat(number));
    int32_t i = 0;
    for (; i + width <= n; i += width) {
        const __m128i bits = simd::bits_of(simd::load(x + i));
        if (_mm_movemask_epi8(sizeof(T) == 8 ? _mm_cmpeq_epi64(bits, wanted) : _mm_cmpeq_epi32(bits, wanted)))
            return true;
    }
    for (; i < n; ++i)
        if (x[i] == number && std::signbit(x[i]) == std::signbit(number)) return true;
    return false;
}

// Of n contiguous numbers, four registers at a time.
template <class T>
Extremes<T> of_contiguous(const T* x, int32_t n) {
    using V = typename simd::Lanes<T>::V;
    constexpr int width = simd::Lanes<T>::width;
    Extremes<T> all{x[0], x[0]};
    int32_t i = 0;
    if (n >= 4 * width) {
        V least[4], greatest[4], ordered = simd::equal(simd::load(x), simd::load(x));
        for (int k = 0; k < 4; ++k) least[k] = greatest[k] = simd::load(x + k * width);
        for (; i <= n - 4 * width; i += 4 * width)
            for (int k = 0; k < 4; ++k) {
                const V v = simd::load(x + i + k * width);
                least[k] = lesser(v, least[k]);
                greatest[k] = greater(v, greatest[k]);
                ordered = simd::bit_and(ordered, simd::equal(v, v));
            }
        if (simd::lane_bits(ordered) != (1u << width) - 1) {
            const T nan = std::numeric_limits<T>::quiet_NaN();
            return {nan, nan};
        }
        for (int k = 0; k < 4; ++k) {
            T low[width], high[width];
            simd::store(low, least[k]);
            simd::store(high, greatest[k]);
            for (int lane = 0; lane < width; ++lane) {
                all.take(low[lane]);
                all.take(high[lane]);
            }
        }
    }
    for (; i < n; ++i) all.take(x[i]);
    // Zeros are equal to the lanes.
    if (all.least == 0) all.least = is_there(x, n, -T{0}) ? -T{0} : T{0};
    if (all.greatest == 0) all.greatest = is_there(x, n, T{0}) ? T{0} : -T{0};
    return all;
}

template <class T>
Extremes<T> extremes(const Strided<T>& x, Share share) {
    const T* first = x.first + share.first * x.step;
    if (x.step == 1) return of_contiguous(first, share.last - share.first);
    Extremes<T> all{*first, *first};
    for (int32_t i = share.first; i < share.last; ++i) all.take(x[i]);
    return all;
}

template <class T>
int32_t minmax(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    const uint64_t known = ORV_SS_METHOD_FAST | ORV_SS_METHOD_JOIN;
    if (const int32_t status = check_entry(task, estimates, method, known, data)) return status;
    if (!(estimates & (ORV_SS_MINIMUM | ORV_SS_MAXIMUM))) return SSStatusOk;
    T* least = estimates & ORV_SS_MINIMUM ? static_cast<T*>(task->minimum) : nullptr;
    T* greatest = estimates & ORV_SS_MAXIMUM ? static_cast<T*>(task->maximum) : nullptr;
    if (estimates & ORV_SS_MINIMUM && !least) return SSStatusMinimum;
    if (estimates & ORV_SS_MAXIMUM && !greatest) return SSStatusMaximum;

    const auto one = [&](int32_t j, char*, const orv_services* helpers, int32_t threads) {
        const Strided<T> x = data.component<T>(j);
        Extremes<T> parts[most_within];
        auto part = [&](int32_t index) {
            parts[index] = extremes(x, share_of(data.n, threads, index));
            return int32_t{SSStatusOk};
        };
        fan_out(helpers, threads, part);
        Extremes<T> all = parts[0];
        for (int32_t t = 1; t < threads; ++t) {
            all.take_least(parts[t].least);
            all.take_greatest(parts[t].greatest);
        }
        if (method & ORV_SS_METHOD_JOIN) {
            if (least) all.take_least(least[j]);
            if (greatest) all.take_greatest(greatest[j]);
        }
        all.spread_nan();
        if (least) least[j] = all.least;
        if (greatest) greatest[j] = all.greatest;
        return int32_t{SSStatusOk};
    };
    return for_components_and_within(data, services, threads_within(data, services), 0, one);
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(Minmax, minmax)
