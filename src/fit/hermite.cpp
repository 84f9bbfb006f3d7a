// Hermite's cubic: the interior derivatives are the caller's.
#include "fit/local.h"

namespace orv::fit {
namespace {

template <class T>
void hermite_rule(const T*, const T*, const T* given, T* m, int32_t count) {
    for (int32_t k = 0; k < count; ++k) m[k] = given[k];
}

}  // namespace

template <class T>
constexpr LocalFamily<T> hermite = {
    3, NoCondition::refused, true, false, hermite_rule<T>, hermite_rule<T>,
    end_table<T>(end_given<T>, nullptr),
};

}  // namespace orv::fit

ORV_LOCAL_ENTRIES(HermiteCubic, hermite)
