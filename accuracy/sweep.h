// The errors of single precision kernels of one input over all floats. The reference is the "HA" kernel of the function's
// `d` row, which is judged against the exact values itself.
#pragma once

#include "accuracy/hunt.h"

namespace orv::accuracy {

// A sweep is done in this many pieces.
inline constexpr int pieces = 64;

// The kernels that a sweep can judge, one list a function.
std::vector<std::vector<const Kernel*>> sweepable();

// One piece of a sweep: the worst error of each kernel of one function.
std::vector<Worst> sweep_piece(const std::vector<const Kernel*>& of_function, int piece);

// Joins what another piece found.
void join(Worst& worst, const Worst& other);

}  // namespace orv::accuracy
