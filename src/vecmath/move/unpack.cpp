// Unpack: elements that lie one behind the other in a to the places of y by stride, by non-zero mask and by index. The other
// elements of y are not touched.
#include "vecmath/move/move.h"

namespace {

using namespace orv::move;

template <class T>
void unpack_by_stride(int64_t n, const T* a, T* __restrict y, int64_t incy, int32_t flag) {
    const int64_t count = taken(n, flag), stride = taken(incy, flag);
    if (count < 1) return;
    const ptrdiff_t end = static_cast<ptrdiff_t>(count), step = static_cast<ptrdiff_t>(stride);
    if (step == 1) {
        memcpy(y, a, static_cast<size_t>(end) * sizeof(T));
        return;
    }
#pragma GCC unroll 4
    for (ptrdiff_t i = 0; i < end; ++i) copy(a + i, y + i * step);
}

// Reads as many elements as there are non-zero masks.
template <class T, class Mask>
void unpack_by_mask(ptrdiff_t n, const T* a, T* __restrict y, const Mask* masks) {
    uint32_t places[block];
    for (ptrdiff_t start = 0; start < n; start += block) {
        const ptrdiff_t found = chosen(n - start < block ? n - start : block, masks + start, places);
        T* const to = y + start;
#pragma GCC unroll 4
        for (ptrdiff_t i = 0; i < found; ++i) copy(a + i, to + places[i]);
        a += found;
    }
}

template <class T, class Index>
void unpack_by_index(ptrdiff_t n, const T* a, T* __restrict y, const Index* indices) {
#pragma GCC unroll 4
    for (ptrdiff_t i = 0; i < n; ++i) copy(a + i, y + static_cast<ptrdiff_t>(indices[i]));
}

}  // namespace

#define ORV_UNPACK(letter, T)                                                                                    \
    extern "C" void orv_kernel_##letter##UnpackI_la(int64_t n, const T* a, T* y, int64_t incy, int32_t flag) {   \
        unpack_by_stride(n, a, y, incy, flag);                                                                   \
    }                                                                                                            \
    extern "C" void orv_kernel_##letter##UnpackM_la(int64_t n, const T* a, T* y, const void* my, int32_t flag) { \
        ORV_WITH_LIST(n, flag, my, unpack_by_mask(count, a, y, list))                                            \
    }                                                                                                            \
    extern "C" void orv_kernel_##letter##UnpackV_la(int64_t n, const T* a, T* y, const void* iy, int32_t flag) { \
        ORV_WITH_LIST(n, flag, iy, unpack_by_index(count, a, y, list))                                           \
    }
ORV_UNPACK(s, float)
ORV_UNPACK(d, double)
ORV_UNPACK(c, orv_complex_s)
ORV_UNPACK(z, orv_complex_d)
