// Evaluation of the pieces at located sites, and of the splines of order 0 from the function values.
#pragma once

#include "fit/evaluate/pieces.h"

namespace orv::fit {

// Writes the `derivative`-th derivative at `count` sites to out[0], out[stride], ...; piece and offset come from Locate,
// filled up to a multiple of four. `coeffs` is one function's block, `order` its coefficients a piece.
template <class T>
using Evaluator = void (*)(const T* coeffs, int64_t order, int64_t derivative, const int32_t* piece, const T* offset,
                           int32_t count, T* out, ptrdiff_t stride);
template <class T>
Evaluator<T> evaluator_for(int64_t order, int64_t derivative, ptrdiff_t stride);

// Order 0: steps and look-up, for function `function` of the task.
template <class T>
void evaluate_values(const DFTask& task, const Pieces<T>& pieces, Kind kind, int64_t function, int64_t derivative,
                     int32_t count, const T* sites, const int32_t* cells, T* out, ptrdiff_t stride);

}  // namespace orv::fit
