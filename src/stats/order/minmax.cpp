// The least and the greatest observation of each component.
#include "simd/lanes.h"
#include "stats/order/entry.h"

#include <limits>

namespace orv::stats {
namespace {

// Least and greatest so far; a NaN stays.
template <class T>
struct Extremes {
    T least, greatest;

    void take(T x) {
        if (!(x >= least)) least = least != least ? least : x;
        if (!(x <= greatest)) greatest = greatest != greatest ? greatest : x;
    }
};

inline __m128 lesser(__m128 a, __m128 b) { return _mm_min_ps(a, b); }
inline __m128d lesser(__m128d a, __m128d b) { return _mm_min_pd(a, b); }
inline __m128 greater(__m128 a, __m128 b) { return _mm_max_ps(a, b); }
inline __m128d greater(__m128d a, __m128d b) { return _mm_max_pd(a, b); }

template <class T>
bool any_nan(typename simd::Lanes<T>::V unequal) {
    return simd::lane_bits(unequal) != 0;
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

    return for_components(data, services, 0, [&](int32_t j, char*) {
        const Strided<T> x = data.component<T>(j);
        Extremes<T> all{x[0], x[0]};
        if (x.step == 1)
            all = of_contiguous(x.first, data.n);
        else
            for (int32_t i = 0; i < data.n; ++i) all.take(x[i]);
        if (method & ORV_SS_METHOD_JOIN) {
            if (least) all.take(least[j]);
            if (greatest) all.take(greatest[j]);
        }
        if (least) least[j] = all.least;
        if (greatest) greatest[j] = all.greatest;
    });
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(Minmax, minmax)
