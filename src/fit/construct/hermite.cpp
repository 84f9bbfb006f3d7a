// Hermite's cubic: the interior derivatives are the caller's.
#include "fit/construct/local.h"

namespace orv::fit {
namespace {

template <class T>
void hermite_rule(const T*, const T*, const T* given, T* m, int32_t count) {
    for (int32_t k = 0; k < count; ++k) m[k] = given[k];
}

}  // namespace

template <class T>
constexpr LocalFamily<T> hermite = {
    .least_breaks = 3,
    .no_condition_is = NoCondition::refused,
    .needs_internal_data = true,
    .reads_widths = false,
    .extends_slopes = false,
    .rule = hermite_rule<T>,
    .uniform_rule = hermite_rule<T>,
    .ends = end_table<T>(end_given<T>, nullptr),
};

}  // namespace orv::fit

ORV_LOCAL_ENTRIES(HermiteCubic, hermite)
