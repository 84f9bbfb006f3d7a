// The local cubics: first derivatives at the interior breaks from near-by data, at the ends by an action.
#pragma once

#include "fit/construct/construct.h"

namespace orv::fit {

// What an end action sees, from the end inwards; the far values are those at the other end, from it inwards.
template <class T>
struct End {
    T h0, h1;         // the first two widths
    T s0, s1;         // the first two slopes
    T rise;           // (value at the third break from the left of the two outer cells) - (value at the left one)
    T inverse_width;  // uniform partitions
    T m1;             // the derivative at the break next to the end
    T given;          // the boundary value, or 0
    T side;           // 1 at the left end, -1 at the right one
    T far_h0, far_s0, far_s1;
    T around;  // the sum of the rises of the two cells beside a periodic end
    bool uniform;
};

template <class T>
using EndAction = T (*)(const End<T>&);

template <class T>
struct EndActions {
    EndAction<T> left, right;
};

template <class T>
T end_not_a_knot(const End<T>& e) {
    // The uniform form is not the uneven one at equal widths, it lacks 2 s0. Both are what callers are told.
    if (e.uniform) return e.rise / 2 * e.inverse_width - 2 * e.m1;
    const T d = e.h0 + e.h1;
    return ((e.h0 * e.h0 * e.s1 + (e.h0 + 2 * d) * e.h1 * e.s0) / d - d * e.m1) / e.h1;
}

template <class T>
T end_free(const End<T>& e) {
    return T(1.5) * e.s0 - T(0.5) * e.m1;
}

template <class T>
T end_given(const End<T>& e) {
    return e.given;
}

template <class T>
T end_second_given(const End<T>& e) {
    return T(1.5) * e.s0 - e.side * T(0.25) * e.h0 * e.given - T(0.5) * e.m1;
}

// The parabola through the end and its neighbours on both sides of the period.
template <class T>
T end_parabola_around(const End<T>& e) {
    if (e.uniform) return e.around / 2 * e.inverse_width;
    return (e.far_h0 * e.s0 + e.h0 * e.far_s0) / (e.far_h0 + e.h0);
}

// The actions by boundary index. What families do not share is the periodic end and the end without a condition.
template <class T>
struct EndTable {
    EndActions<T> rows[boundary_indices];
};

template <class T>
constexpr EndTable<T> end_table(EndAction<T> around, EndAction<T> none) {
    return {{
        {end_not_a_knot<T>, end_not_a_knot<T>},
        {end_free<T>, end_free<T>},
        {end_given<T>, end_given<T>},
        {end_given<T>, end_second_given<T>},
        {end_second_given<T>, end_given<T>},
        {end_second_given<T>, end_second_given<T>},
        {around, around},
        {none, none},
    }};
}

// A family: how it fills m[0] to m[count - 1] from slopes and widths, both starting at the cell right of the first of
// these breaks. `given` is the interior derivative at that break where the family takes them from the caller. Slopes and
// widths may be read, and m written, up to a register beyond.
template <class T>
using DerivativeRule = void (*)(const T* s, const T* h, const T* given, T* m, int32_t count);

template <class T>
struct LocalFamily {
    int32_t least_breaks;
    NoCondition no_condition_is;
    bool needs_internal_data, reads_widths;
    // The rule reads slopes two cells away, which at the breaks next to the ends lie beyond the partition.
    bool extends_slopes;
    DerivativeRule<T> rule, uniform_rule;
    EndTable<T> ends;
};

template <class T>
orv_df_status local_cubic(const DFTask* task, const LocalFamily<T>& family, const orv_services* services);

}  // namespace orv::fit

// The two exported entries of a family.
#define ORV_LOCAL_ENTRIES(kind, family)                                                                      \
    ORV_API int32_t orv_df_kernel_dDF##kind##Spline1D(const DFTask* task, const void*, const void*, int64_t, \
                                                      const orv_services* services) {                        \
        return orv::fit::local_cubic(task, orv::fit::family<double>, services);                              \
    }                                                                                                        \
    ORV_API int32_t orv_df_kernel_sDF##kind##Spline1D(const DFTask* task, const void*, const void*, int64_t, \
                                                      const orv_services* services) {                        \
        return orv::fit::local_cubic(task, orv::fit::family<float>, services);                               \
    }
