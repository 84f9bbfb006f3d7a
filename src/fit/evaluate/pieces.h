// From spline codes to what is evaluated, and from sites to pieces of the spline.
#pragma once

#include "fit/task.h"
#include "simd/fours.h"

namespace orv::fit {

using namespace simd;

enum Kind : int32_t {
    linear,
    quadratic,
    cubic,
    quadratic_with_knots,
    polynomial,
    left_step,
    right_step,
    look_up,
};

// Kinds of order 0, which read the function values and no coefficients.
inline bool reads_values(Kind kind) { return kind == left_step || kind == right_step || kind == look_up; }

// ORV_DF_OK and the kind, or ORV_DF_BAD_SPLINE_TYPE. `by_callbacks`: all three callbacks that order 0 needs are there.
inline orv_df_status kind_of(const DFTask& task, bool by_callbacks, Kind& kind) {
    const int64_t order = task.splineOrder, type = task.splineType;
    const auto is = [&](Kind k) {
        kind = k;
        return ORV_DF_OK;
    };
    if (order == 2) return is(linear);
    if (order == 3 && type == ORV_DF_TYPE_DEFAULT) return is(quadratic);
    if (order == 3 && type == ORV_DF_TYPE_KNOTS) return is(quadratic_with_knots);
    if (order == 4 && (type == 0 || (type >= 2 && type <= 5) || type == ORV_DF_TYPE_HYMAN)) return is(cubic);
    if (order > 4) return is(polynomial);
    if (order == 0 && type == ORV_DF_TYPE_LEFT_STEP) return is(left_step);
    if (order == 0 && type == ORV_DF_TYPE_RIGHT_STEP) return is(right_step);
    if (order == 0 && type == ORV_DF_TYPE_LOOK_UP) return is(look_up);
    if (order == 0 && by_callbacks) return is(polynomial);
    return ORV_DF_BAD_SPLINE_TYPE;
}

// What a reader of the pieces finds: ORV_DF_OK, or the status for the array that is missing.
inline orv_df_status pieces_present(const DFTask& task, Kind kind) {
    if (kind == quadratic_with_knots && !task.icData) return ORV_DF_NULL_INTERNAL_DATA;
    return coefficients_present(task);
}

// Break i of the partition.
template <bool uniform, class T>
T break_at(const Partition<T>& p, int32_t i) {
    if constexpr (!uniform) return p.breaks[i];
    return i == p.count - 1 ? p.last : p.first + static_cast<T>(i) * p.width;
}

// The pieces of a spline's polynomials: piece i is in powers of the distance from break i. Without knots it is cell i,
// from break i to break i + 1; with knots it reaches from knot i - 1 to knot i.
template <class T>
struct Pieces {
    Partition<T> partition;
    const T* knots;  // null: the breaks themselves
    bool uniform;

    int32_t count() const { return knots ? partition.count : partition.count - 1; }
    T origin(int32_t i) const { return uniform ? break_at<true>(partition, i) : break_at<false>(partition, i); }
    T lower_edge(int32_t i) const { return knots && i > 0 ? knots[i - 1] : origin(i); }
    T upper_edge(int32_t i) const {
        if (!knots) return origin(i + 1);
        return i < partition.count - 1 ? knots[i] : origin(i);
    }
};

// Pieces and offsets of `count` sites from their cells; arrays are filled up to a multiple of four. Sites outside the
// partition belong to the outer pieces.
template <class T>
using Locate = void (*)(const Pieces<T>& pieces, int32_t count, const T* sites, const int32_t* cells, int32_t* piece,
                        T* offset);
template <class T>
Locate<T> locate_for(const Pieces<T>& pieces);

// The same on a uniform partition straight from the sites, where nobody asks for cells.
template <class T>
void locate_uniform(const Pieces<T>& pieces, int32_t count, const T* sites, int32_t* piece, T* offset);

}  // namespace orv::fit
