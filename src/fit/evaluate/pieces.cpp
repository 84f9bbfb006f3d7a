// Pieces and offsets of sites, four at a time.
#include "fit/evaluate/pieces.h"

namespace orv::fit {
namespace {

// The breaks at which the polynomials of four pieces have their origins.
template <class T, bool uniform>
Four<T> origins(const Partition<T>& p, __m128i piece) {
    if constexpr (!uniform) {
        return gather(p.breaks, piece);
    } else {
        const auto first = splat(p.first), width = splat(p.width);
        return map(to_four<T>(piece), [&](auto i) { return first + i * width; });
    }
}

template <class T>
Four<T> minus(const Four<T>& a, const Four<T>& b) {
    return map(a, b, [](auto x, auto y) { return x - y; });
}

template <class T, bool uniform, bool knots>
void locate(const Pieces<T>& pieces, int32_t count, const T* sites, const int32_t* cells, int32_t* piece, T* offset) {
    const Partition<T>& p = pieces.partition;
    const __m128i zero = splat_32(0), one = splat_32(1), last = splat_32(p.count - 2);
    const auto group = [&](int32_t to, const T* x_of, const int32_t* cell_of) {
        const Four<T> x = load_four(x_of);
        const __m128i cell = load(cell_of);
        __m128i index = least_32(greatest_32(subtract_32(cell, one), zero), last);
        if constexpr (knots) {
            // In the cell's left half, before the knot, the piece of its left break holds, in the right one the next.
            const Four<T> after =
                map(gather(pieces.knots, index), x, [](auto knot, auto site) { return less_equal(knot, site); });
            index = subtract_32(index, narrow_mask(after));
        }
        store_four(piece + to, index);
        store_four(offset + to, minus(x, origins<T, uniform>(p, index)));
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
        const Four<T> x = load_four(x_of);
        const __m128i index =
            truncate(map(x, [&](auto v) { return least(greatest((v - first) * factor, zero), last); }));
        store_four(piece + to, index);
        const Four<T> origin = map(to_four<T>(index), [&](auto i) { return first + i * width; });
        store_four(offset + to, minus(x, origin));
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
