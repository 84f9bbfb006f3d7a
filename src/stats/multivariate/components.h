// Some of the p components, and the symmetric matrix of those: full, by columns, upper triangle, in double.
#pragma once

#include "stats/matrices.h"

namespace orv::stats {

// Their numbers, ascending.
struct Components {
    int32_t* number;
    int32_t count;

    int32_t operator[](int32_t at) const { return number[at]; }
};

// Those that take part; `room` is for p numbers.
inline Components taking_part(const Data& data, int32_t* room) {
    Components chosen{room, 0};
    for (int32_t j = 0; j < data.p; ++j)
        if (data.takes_part(j)) room[chosen.count++] = j;
    return chosen;
}

// Element (i, j) in either order. The form that most have comes first.
template <class T>
double element_of(Matrix<const T> matrix, int32_t p, int32_t i, int32_t j) {
    const int32_t first = i < j ? i : j, last = i < j ? j : i;
    if (matrix.form == Form::full) return static_cast<double>(matrix.data[ptrdiff_t{last} * p + first]);
    return static_cast<double>(matrix.data[element_at(matrix.form, first, last, p)]);
}

template <class T>
void gather(Matrix<const T> from, int32_t p, const Components& chosen, double* to) {
    for (int32_t b = 0; b < chosen.count; ++b) {
        double* column = to + ptrdiff_t{b} * chosen.count;
        for (int32_t a = 0; a <= b; ++a) column[a] = element_of(from, p, chosen[a], chosen[b]);
    }
}

// Writes value(a, b), a <= b, of the a-th and b-th of the chosen to their places among p, to both triangles of the full form.
template <class T, class Value>
void scatter(const Components& chosen, int32_t p, Matrix<T> to, Value value) {
    for (int32_t b = 0; b < chosen.count; ++b)
        for (int32_t a = 0; a <= b; ++a) {
            const ptrdiff_t i = chosen[a], j = chosen[b];
            const T result = static_cast<T>(value(a, b));
            to.data[element_at(to.form, i, j, p)] = result;
            if (to.form == Form::full) to.data[i * p + j] = result;
        }
}

// What an entry computes for floats is as accurate as their rounding; what it decides, it decides by that.
template <class T>
inline constexpr double epsilon_of = sizeof(T) == sizeof(float) ? FLT_EPSILON : DBL_EPSILON;

}  // namespace orv::stats
