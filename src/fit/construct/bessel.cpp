// Bessel's cubic: at every break the derivative of the parabola through three points.
#include "fit/construct/parabola.h"

namespace orv::fit {
namespace {

template <class T, bool uniform>
void bessel_rule(const T* s, const T* h, const T*, T* m, int32_t count) {
    const auto half = splat(T(0.5));
    for (int32_t k = 0; k < count; k += Lanes<T>::width)
        store(m + k, parabola_derivative<uniform>(load(s + k - 1), load(s + k), load(h + k - 1), load(h + k), half));
}

}  // namespace

template <class T>
constexpr LocalFamily<T> bessel = {
    .least_breaks = 4,
    .no_condition_is = NoCondition::refused,
    .needs_internal_data = false,
    .reads_widths = true,
    .extends_slopes = false,
    .rule = bessel_rule<T, false>,
    .uniform_rule = bessel_rule<T, true>,
    .ends = end_table<T>(end_parabola_around<T>, nullptr),
};

}  // namespace orv::fit

ORV_LOCAL_ENTRIES(BesselCubic, bessel)
