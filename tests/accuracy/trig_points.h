// Arguments at which trigonometric kernels go wrong first.
#pragma once

#include <cstdint>
#include <vector>

namespace orv::accuracy {

// Empty for functions that are not trigonometric. `count` more are random in -10 to 10.
template <class T>
std::vector<T> trig_points(const char* function, int64_t count, uint64_t seed);

}  // namespace orv::accuracy
