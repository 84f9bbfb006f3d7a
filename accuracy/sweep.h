// The errors of single precision kernels over more arguments than a search tries: those of one input over all floats, where
// the reference is the "HA" kernel of the function's `d` row, which is judged against the exact values itself; those of two
// over as many pairs as there is time for, by 80-bit arithmetic.
#pragma once

#include "accuracy/hunt.h"

namespace orv::accuracy {

// A sweep is done in this many pieces.
inline constexpr int pieces = 64;

// The kernels that a sweep can judge, one list a function.
std::vector<std::vector<const Kernel*>> sweepable();

// One piece of a sweep: the worst error of each kernel of one function.
std::vector<Worst> sweep_piece(const std::vector<const Kernel*>& of_function, int piece);

// The kernels of two inputs that have a reference, one list a function.
std::vector<std::vector<const Kernel*>> sweepable_by_pairs();

// Random pairs and structured ones in turn: equal exponents, neighbours, special values with one another, ties and what is
// next to a tie, subnormal numbers. A zero of the wrong sign counts as an infinite error.
std::vector<Worst> sweep_pairs(const std::vector<const Kernel*>& of_function, double count, uint64_t seed);

// Joins what another piece found.
void join(Worst& worst, const Worst& other);

}  // namespace orv::accuracy
