// Akima's cubic (J. ACM 17 (1970) 589): the derivative at a break is a mean of the slopes to its two sides, each weighted
// by how little the slopes change on its own side.
#include "fit/construct/local.h"

namespace orv::fit {
namespace {

// Below this the data lie on a line on both sides, and the weights say nothing.
constexpr double least_weight = 1e-10;

// The changes two cells to the left of a register's: `before` are those of the register before, `now` its own.
inline __m128d two_left(__m128d before, __m128d) { return before; }
inline __m128 two_left(__m128 before, __m128 now) { return high_and_low_half(before, now); }

template <class T>
void akima_rule(const T* s, const T*, const T*, T* m, int32_t count) {
    constexpr int32_t width = Lanes<T>::width;
    const auto least_sum = splat(static_cast<T>(least_weight)), half = splat(T(0.5)), one = splat(T{1});
    // Of the changes to the left of the first register only the last two are used, and only those lie in the array.
    T first[width] = {};
    first[width - 2] = s[-1] - s[-2];
    first[width - 1] = s[0] - s[-1];
    auto before = magnitude(load(first));
    for (int32_t k = 0; k < count; k += width) {
        const auto left = load(s + k - 1), right = load(s + k);
        const auto change_right = magnitude(load(s + k + 1) - right), change_left = two_left(before, change_right);
        before = change_right;
        const auto sum = change_right + change_left;
        const auto flat = less(sum, least_sum);
        const auto mean = (change_right * left + change_left * right) / select_by_sign(flat, one, sum);
        store(m + k, select_by_sign(flat, (left + right) * half, mean));
    }
}

template <class T>
T end_around(const End<T>& e) {
    const T near = e.s1 < e.s0 ? e.s0 - e.s1 : e.s1 - e.s0,
            far = e.far_s1 < e.far_s0 ? e.far_s0 - e.far_s1 : e.far_s1 - e.far_s0;
    const T sum = near + far;
    if (sum < static_cast<T>(least_weight)) return (e.far_s0 + e.s0) / 2;
    return (near * e.far_s0 + far * e.s0) / sum;
}

template <class T>
T end_extended(const End<T>& e) {
    return (3 * e.s0 - e.s1) / 2;
}

}  // namespace

template <class T>
constexpr LocalFamily<T> akima = {
    .least_breaks = 5,
    .no_condition_is = NoCondition::taken,
    .needs_internal_data = false,
    .reads_widths = false,
    .extends_slopes = true,
    .rule = akima_rule<T>,
    .uniform_rule = akima_rule<T>,
    .ends = end_table<T>(end_around<T>, end_extended<T>),
};

}  // namespace orv::fit

ORV_LOCAL_ENTRIES(AkimaCubic, akima)
