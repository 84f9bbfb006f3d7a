// Symmetric matrices in the caller's storage forms, and in the working form: full, by columns, upper triangle.
#pragma once

#include "stats/data.h"

#include <float.h>

namespace orv::stats {

enum class Form : int32_t { packed_upper, full, packed_lower };

// Only the two low bits of a matrix form are looked at.
inline Form read_form(const SSTask* task, const void* at) {
    const int64_t value = read_integer(at, task->wideInts);
    if (value & 2) return Form::packed_lower;
    return value & 1 ? Form::full : Form::packed_upper;
}

// Where element (i, j), i <= j, lies.
inline ptrdiff_t element_at(Form form, ptrdiff_t i, ptrdiff_t j, ptrdiff_t p) {
    switch (form) {
        case Form::packed_lower:
            return j * (j + 1) / 2 + i;
        case Form::packed_upper:
            return i * (2 * p - i - 1) / 2 + j;
        case Form::full:
            break;
    }
    return j * p + i;
}

// A matrix of the caller's.
template <class T>
struct Matrix {
    T* data;
    Form form;
};

// Calls visit(i, j), i <= j, for each pair of components that take part.
template <class Visit>
void each_pair(const Data& data, Visit visit) {
    for (int32_t j = 0; j < data.p; ++j) {
        if (!data.takes_part(j)) continue;
        for (int32_t i = 0; i <= j; ++i)
            if (!data.has_gaps || data.takes_part(i)) visit(i, j);
    }
}

// Writes value(i, j) for each pair of components that take part, to both triangles of the full form.
template <class T, class Value>
void write_matrix(const Data& data, Matrix<T> to, Value value) {
    const ptrdiff_t p = data.p;
    each_pair(data, [&](int32_t i, int32_t j) {
        const T result = static_cast<T>(value(i, j));
        to.data[element_at(to.form, i, j, p)] = result;
        if (to.form == Form::full) to.data[i * p + j] = result;
    });
}

// What rounding lifts above 1, by up to 8 ulp, is 1. More is no correlation and stays visible, as a NaN does.
template <class T>
double clamped(double correlation) {
    constexpr double most = 1 + 8 * (sizeof(T) == sizeof(float) ? FLT_EPSILON : DBL_EPSILON);
    const double size = __builtin_fabs(correlation);
    return size > 1 && size <= most ? __builtin_copysign(1, correlation) : correlation;
}

}  // namespace orv::stats
