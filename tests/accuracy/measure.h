// Measures the worst error of the one-input kernels over samples that are dense where kernels go wrong.
#pragma once

#include "support/oracle.h"

#include <orv/vecmath.h>

#include <cstdint>
#include <string>
#include <vector>

namespace orv::accuracy {

enum Accuracy { la, ha, ep };
inline constexpr const char* accuracy_names[] = {"LA", "HA", "EP"};

// A kernel that the library has and the oracle can judge. A kernel in several slots of its row comes once, at the first.
struct Kernel {
    char type;
    const char* function;
    Accuracy accuracy;
    std::string slots;  // all accuracies that it serves, such as "LA, HA"
    orv_arq_kernel dense, strided;
    const oracle::Function* oracle;
};
const std::vector<Kernel>& kernels();

// What bounds.inc says of a kernel; null if it says nothing.
struct Bound {
    char type;
    const char *function, *accuracy;
    double ulp, subnormal_ulp;
};
const Bound* bound_of(const Kernel& kernel);

// The worst error of a result in the normal range, where it was met, and the same for subnormal results.
struct Worst {
    double ulp = 0, at = 0;
    double relative = 0;  // of normal results
    double subnormal_ulp = 0, subnormal_at = 0;
    int64_t count = 0;
};

// The samples of a function: the fixed ones (every exponent, every boundary and its neighbours, around 0 and 1) and
// `count` random ones, half of them even over the function's ordinary range, half of them even over the bit patterns.
// All lie where the result is finite.
template <class T>
std::vector<T> samples(const char* function, int64_t count, uint64_t seed);

Worst measure(const Kernel& kernel, int64_t random_count, uint64_t seed = 1);

// Folds in the errors of results y of x. With `exact`, errors of doubles that come near the worst so far are taken anew
// against the exact value.
template <class T>
void fold(Worst& worst, const oracle::Function& f, const T* x, const T* y, int64_t n, bool exact);

// Over all floats: the worst error of each of an `s` function's kernels, in the order of `of_function`.
std::vector<Worst> measure_all_floats(const std::vector<Kernel>& of_function);

}  // namespace orv::accuracy
