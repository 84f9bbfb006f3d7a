// Hyman's cubic (SIAM J. Sci. Stat. Comput. 4 (1983) 645): Bessel's derivatives, held where the data rise or fall within
// three times the smaller slope beside the break, which keeps the cubic monotone (Fritsch & Carlson 1980), and made zero
// where the data turn.
#include "fit/construct/parabola.h"

namespace orv::fit {
namespace {

template <class T, bool uniform>
void hyman_rule(const T* s, const T* h, const T*, T* m, int32_t count) {
    const auto half = splat(T(0.5)), zero = splat(T{0}), three = splat(T{3});
    for (int32_t k = 0; k < count; k += Lanes<T>::width) {
        const auto left = load(s + k - 1), right = load(s + k);
        const auto bessel = parabola_derivative<uniform>(left, right, load(h + k - 1), load(h + k), half);
        // An unordered product counts as positive, and its NaN goes on into the derivative.
        const auto monotone = not_less_equal(left * right, zero);
        const auto bound = three * least(magnitude(left), magnitude(right));
        const auto held = bit_or(least(bound, magnitude(bessel)), sign_of(bessel));
        store(m + k, bit_and(monotone, held));
    }
}

}  // namespace

template <class T>
constexpr LocalFamily<T> hyman = {
    .least_breaks = 4,
    .no_condition_is = NoCondition::refused,
    .needs_internal_data = false,
    .reads_widths = true,
    .extends_slopes = false,
    .rule = hyman_rule<T, false>,
    .uniform_rule = hyman_rule<T, true>,
    .ends = end_table<T>(end_parabola_around<T>, nullptr),
};

}  // namespace orv::fit

ORV_LOCAL_ENTRIES(HymanCubic, hyman)
