// Pieces and offsets of sites, four at a time.
#include "fit/pieces.h"

namespace orv::fit {
namespace {

template <class T>
void store_group(T* p, const Four<T>& group) {
    for (int i = 0; i < Four<T>::parts; ++i) store(p + i * Lanes<T>::width, group.part[i]);
}

inline Four<float> to_elements(__m128i v, float) { return {{_mm_cvtepi32_ps(v)}}; }
inline Four<double> to_elements(__m128i v, double) {
    return {{_mm_cvtepi32_pd(v), _mm_cvtepi32_pd(_mm_unpackhi_epi64(v, v))}};
}

// The breaks at which the polynomials of four pieces have their origins.
template <class T, bool uniform>
Four<T> origins(const Partition<T>& p, __m128i piece) {
    if constexpr (!uniform) {
        return gather4(p.breaks, piece);
    } else {
        const auto first = splat(p.first), width = splat(p.width);
        return map(to_elements(piece, T{}), [&](auto i) { return first + i * width; });
    }
}

template <class T>
Four<T> minus(const Four<T>& a, const Four<T>& b) {
    Four<T> result;
    for (int i = 0; i < Four<T>::parts; ++i) result.part[i] = a.part[i] - b.part[i];
    return result;
}

template <class T, bool uniform, bool knots>
void locate(const Pieces<T>& pieces, int32_t count, const T* sites, const int32_t* cells, int32_t* piece, T* offset) {
    const Partition<T>& p = pieces.partition;
    const __m128i zero = _mm_setzero_si128(), one = _mm_set1_epi32(1), last = _mm_set1_epi32(p.count - 2);
    const auto group = [&](int32_t to, const T* x_of, const int32_t* cell_of) {
        const Four<T> x = load4(x_of);
        const __m128i cell = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cell_of));
        __m128i index = _mm_min_epi32(_mm_max_epi32(_mm_sub_epi32(cell, one), zero), last);
        if constexpr (knots) {
            // In the cell's left half, before the knot, the piece of its left break holds, in the right one the next.
            Four<T> after = gather4(pieces.knots, index);
            for (int i = 0; i < Four<T>::parts; ++i) after.part[i] = less_equal(after.part[i], x.part[i]);
            index = _mm_sub_epi32(index, narrow_mask(after));
        }
        store4(piece + to, index);
        store_group(offset + to, minus(x, origins<T, uniform>(p, index)));
    };
    int32_t i = 0;
    for (; i + 4 <= count; i += 4) group(i, sites + i, cells + i);
    if (i == count) return;
    T rest[4];
    int32_t rest_cells[4];
    for (int32_t k = 0; k < 4; ++k) {
        const int32_t from = i + k < count ? i + k : count - 1;
        rest[k] = sites[from];
        rest_cells[k] = cells[from];
    }
    group(i, rest, rest_cells);
}

}  // namespace

template <class T>
void locate_uniform(const Pieces<T>& pieces, int32_t count, const T* sites, int32_t* piece, T* offset) {
    const Partition<T>& p = pieces.partition;
    const auto first = splat(p.first), factor = splat(p.inverse_width), width = splat(p.width);
    const auto zero = splat(T{0}), last = splat(static_cast<T>(p.count - 2));
    const auto group = [&](int32_t to, const T* x_of) {
        const Four<T> x = load4(x_of);
        const __m128i index = truncate(map(x, [&](auto v) { return least(most((v - first) * factor, zero), last); }));
        store4(piece + to, index);
        const Four<T> origin = map(to_elements(index, T{}), [&](auto i) { return first + i * width; });
        store_group(offset + to, minus(x, origin));
    };
    int32_t i = 0;
    for (; i + 4 <= count; i += 4) group(i, sites + i);
    if (i == count) return;
    T rest[4];
    for (int32_t k = 0; k < 4; ++k) rest[k] = sites[i + k < count ? i + k : count - 1];
    group(i, rest);
}

template <class T>
Locate<T> locate_for(const Pieces<T>& pieces) {
    static constexpr Locate<T> table[2][2] = {
        {locate<T, false, false>, locate<T, false, true>},
        {locate<T, true, false>, locate<T, true, true>},
    };
    return table[pieces.uniform][pieces.knots != nullptr];
}

template Locate<double> locate_for(const Pieces<double>&);
template Locate<float> locate_for(const Pieces<float>&);
template void locate_uniform(const Pieces<double>&, int32_t, const double*, int32_t*, double*);
template void locate_uniform(const Pieces<float>&, int32_t, const float*, int32_t*, float*);

}  // namespace orv::fit
