// What Pack and Unpack share: the copy of one element, and the two widths of counts, strides, masks and indices.
//
// They move bits: whatever a NaN holds arrives unchanged, no flag is raised, and neither the mode nor the control registers are
// read. The arrays do not overlap.
#pragma once

#include <orv/vecmath.h>

#include <smmintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace orv::move {

inline void copy(const float* from, float* to) { _mm_store_ss(to, _mm_load_ss(from)); }
inline void copy(const double* from, double* to) { _mm_store_sd(to, _mm_load_sd(from)); }
inline void copy(const orv_complex_s* from, orv_complex_s* to) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)));
}
inline void copy(const orv_complex_d* from, orv_complex_d* to) { _mm_storeu_pd(&to->re, _mm_loadu_pd(&from->re)); }

// With a flag of 1 counts and strides are the low halves of what is passed, and masks and indices have 32 bits; with any other
// all have 64.
inline int64_t taken(int64_t x, int32_t flag) { return flag == 1 ? static_cast<int32_t>(x) : x; }

// The places of a block's non-zero masks. Every place is written down, and stays where its mask counts: no branch goes by a
// mask.
constexpr ptrdiff_t block = 512;

template <class Mask>
inline ptrdiff_t chosen(ptrdiff_t count, const Mask* masks, uint32_t* places) {
    ptrdiff_t found = 0;
#pragma GCC unroll 4
    for (ptrdiff_t i = 0; i < count; ++i) {
        places[found] = static_cast<uint32_t>(i);
        found += masks[i] != 0;
    }
    return found;
}

}  // namespace orv::move

// A call with `count` and `list`, of masks or indices under their type, if there is anything to do.
#define ORV_WITH_LIST(n, flag, pointer, call)                       \
    const int64_t wide_count = orv::move::taken(n, flag);           \
    if (wide_count < 1) return;                                     \
    const ptrdiff_t count = static_cast<ptrdiff_t>(wide_count);     \
    if (flag == 1) {                                                \
        const int32_t* list = static_cast<const int32_t*>(pointer); \
        call;                                                       \
    } else {                                                        \
        const int64_t* list = static_cast<const int64_t*>(pointer); \
        call;                                                       \
    }
