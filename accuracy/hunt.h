// The search for a kernel's worst error.
//
// Arguments are divided into strata: every exponent, equal cells of the ordinary ranges, which hold the intervals of tables
// and the regions of a reduction, and the distances of every power of two from each point where something begins. A few
// arguments of each are tried; the strata with the largest errors go on to the next round, a quarter as many with four times
// the arguments each, and so on. From the worst argument of each stratum that is left a climb goes to worse ones nearby, in
// steps that shrink to the last digit; and the last strata are narrowed about their worst, round by round.
#pragma once

#include "accuracy/error.h"

#include <cstdint>

namespace orv::accuracy {

// The worst error of a result in the normal range, where it was met, and the same for subnormal results.
struct Worst {
    double ulp = 0, at[most_inputs] = {};
    double relative = 0;  // of normal results
    double subnormal_ulp = 0, subnormal_at[most_inputs] = {};
    int64_t count = 0;
};

// Folds the errors of one result in.
template <class T>
void fold(Worst& worst, const Error& error, const T* x, int inputs);

// With an effort of 1 about a million and a half arguments are tried; an eighth of that where only the exact value tells the error.
Worst hunt(const Kernel& kernel, double effort = 1, uint64_t seed = 1);

// The same for `count` arguments spread evenly between `low` and `high`, of each component.
Worst search_between(const Kernel& kernel, double low, double high, int64_t count, uint64_t seed = 1);

// The first arguments of every stratum: a few thousand to a hundred thousand, all components of one after the other.
template <class T>
std::vector<T> typical_arguments(const Kernel& kernel, size_t most, uint64_t seed);

}  // namespace orv::accuracy
