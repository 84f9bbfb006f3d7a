// The sort routines, as a caller has them: they trust him that no element is a NaN.
#include "stats/order/quick_sort.h"

#include "services/export.h"

#include <orv/statistics.h>

using namespace orv::stats;

ORV_API void __kuzdQSort(int32_t n, double* data) { quick_sort(data, n); }
ORV_API void __kuzsQSort(int32_t n, float* data) { quick_sort(data, n); }

ORV_API void __kuzdQSortStep(int32_t n, double* data, int32_t stride) { quick_sort(Spaced<double>{data, stride}, n); }
ORV_API void __kuzsQSortStep(int32_t n, float* data, int32_t stride) { quick_sort(Spaced<float>{data, stride}, n); }

ORV_API double __kuzdQSortSelect(int32_t n, double* data, int32_t k) { return select(data, 0, n - 1, k); }
ORV_API float __kuzsQSortSelect(int32_t n, float* data, int32_t k) { return select(data, 0, n - 1, k); }
