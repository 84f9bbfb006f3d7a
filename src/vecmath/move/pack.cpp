// Pack: elements of a by stride, by non-zero mask and by index, one behind the other in y.
#include "vecmath/move/move.h"

namespace {

using namespace orv::move;

template <class T>
void pack_by_stride(int64_t n, const T* a, int64_t inca, T* __restrict y, int32_t flag) {
    const int64_t count = taken(n, flag), stride = taken(inca, flag);
    if (count < 1) return;
    const ptrdiff_t end = static_cast<ptrdiff_t>(count), step = static_cast<ptrdiff_t>(stride);
    if (step == 1) {
        memcpy(y, a, static_cast<size_t>(end) * sizeof(T));
        return;
    }
#pragma GCC unroll 4
    for (ptrdiff_t i = 0; i < end; ++i) copy(a + i * step, y + i);
}

// Writes as many elements as there are non-zero masks.
template <class T, class Mask>
void pack_by_mask(ptrdiff_t n, const T* a, const Mask* masks, T* __restrict y) {
    uint32_t places[block];
    for (ptrdiff_t start = 0; start < n; start += block) {
        const ptrdiff_t found = chosen(n - start < block ? n - start : block, masks + start, places);
        const T* const from = a + start;
#pragma GCC unroll 4
        for (ptrdiff_t i = 0; i < found; ++i) copy(from + places[i], y + i);
        y += found;
    }
}

template <class T, class Index>
void pack_by_index(ptrdiff_t n, const T* a, const Index* indices, T* __restrict y) {
#pragma GCC unroll 4
    for (ptrdiff_t i = 0; i < n; ++i) copy(a + static_cast<ptrdiff_t>(indices[i]), y + i);
}

}  // namespace

#define ORV_PACK(letter, T)                                                                                    \
    extern "C" void orv_kernel_##letter##PackI_la(int64_t n, const T* a, int64_t inca, T* y, int32_t flag) {   \
        pack_by_stride(n, a, inca, y, flag);                                                                   \
    }                                                                                                          \
    extern "C" void orv_kernel_##letter##PackM_la(int64_t n, const T* a, const void* ma, T* y, int32_t flag) { \
        ORV_WITH_LIST(n, flag, ma, pack_by_mask(count, a, list, y))                                            \
    }                                                                                                          \
    extern "C" void orv_kernel_##letter##PackV_la(int64_t n, const T* a, const void* ia, T* y, int32_t flag) { \
        ORV_WITH_LIST(n, flag, ia, pack_by_index(count, a, list, y))                                           \
    }
ORV_PACK(s, float)
ORV_PACK(d, double)
ORV_PACK(c, orv_complex_s)
ORV_PACK(z, orv_complex_d)
