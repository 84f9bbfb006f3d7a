// Akima's cubic (J. ACM 17 (1970) 589): the derivative at a break is a mean of the slopes to its two sides, each weighted
// by how little the slopes change on its own side.
#include "fit/local.h"

namespace orv::fit {
namespace {

// Below this the data lie on a line on both sides, and the weights say nothing.
constexpr double least_weight = 1e-10;

template <class T>
void akima_rule(const T* s, const T*, const T*, T* m, int32_t count) {
    const auto least_sum = splat(static_cast<T>(least_weight)), half = splat(T(0.5)), one = splat(T{1});
    for (int32_t k = 0; k < count; k += Lanes<T>::width) {
        const auto left = load(s + k - 1), right = load(s + k);
        const auto change_left = magnitude(left - load(s + k - 2)), change_right = magnitude(load(s + k + 1) - right);
        const auto sum = change_right + change_left;
        const auto flat = less(sum, least_sum);
        const auto mean = (change_right * left + change_left * right) / select(flat, sum, one);
        store(m + k, select(flat, mean, (left + right) * half));
    }
}

template <class T>
T end_around(const End<T>& e) {
    const T near = e.s1 < e.s0 ? e.s0 - e.s1 : e.s1 - e.s0, far = e.far_s1 < e.far_s0 ? e.far_s0 - e.far_s1 : e.far_s1 - e.far_s0;
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
    5, NoCondition::taken, false, true, akima_rule<T>, akima_rule<T>,
    end_table<T>(end_around<T>, end_extended<T>),
};

}  // namespace orv::fit

ORV_LOCAL_ENTRIES(AkimaCubic, akima)
