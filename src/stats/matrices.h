// Symmetric matrices in the caller's storage forms, and in the working form: full, by columns, upper triangle.
#pragma once

#include "stats/request.h"

namespace orv::stats {

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

// A result matrix of a call.
template <class T>
struct Matrix {
    T* data;
    Form form;
};

template <class T>
Matrix<T> matrix_of(const Request& request, int32_t array) {
    const Form form = array == array_cov ? request.cov_form : array == array_cor ? request.cor_form : request.cp_form;
    return {static_cast<T*>(array_of(request.task, array)), form};
}

// Writes value(i, j) for each pair of components that take part, to both triangles of the full form. Reading the upper
// triangle of the same full matrix by columns inside `value` is safe: only (i, j) and its mirror are written at a time.
template <class T, class Value>
void write_matrix(const Request& request, Matrix<T> to, Value value) {
    const ptrdiff_t p = request.p;
    for (int32_t j = 0; j < request.p; ++j) {
        if (!request.takes_part(j)) continue;
        for (int32_t i = 0; i <= j; ++i) {
            if (request.has_gaps && !request.takes_part(i)) continue;
            const T result = static_cast<T>(value(i, j));
            to.data[element_at(to.form, i, j, p)] = result;
            if (to.form == Form::full) to.data[i * p + j] = result;
        }
    }
}

}  // namespace orv::stats
