/* Tridiagonal systems without pivoting, as spline construction asks them of the core service library.
 *
 * Row i of the matrix, 0 <= i < n, is lower[i-1] x[i-1] + diagonal[i] x[i] + upper[i] x[i+1]; `lower` and `upper` hold
 * n - 1 elements. Elimination runs from both ends to the middle row, which meets the two halves (the "burn at both ends"
 * order), so it is stable where the matrix is diagonally dominant by rows or by columns. `rhs` holds *nrhs right sides of
 * n elements, *ld elements apart, and receives the solutions. `*info` is 0, or the number (from 1) of a row whose pivot
 * is zero, infinite or not a number, and then the arrays hold nothing of use. The `s` forms compute in double inside. */
#ifndef ORV_TRIDIAGONAL_H
#define ORV_TRIDIAGONAL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Factors and solves at once. The three diagonals are overwritten. */
void ddtsvb_4dfl(const int32_t* n, const int32_t* nrhs, double* lower, double* diagonal, double* upper, double* rhs,
                 const int32_t* ld, int32_t* info);
void sdtsvb_4dfl(const int32_t* n, const int32_t* nrhs, float* lower, float* diagonal, float* upper, float* rhs,
                 const int32_t* ld, int32_t* info);

/* Factors in place, for the solver below: `diagonal` receives the inverse pivots, `lower` and `upper` the multipliers. */
void ddttrfb_4dfl(const int32_t* n, double* lower, double* diagonal, double* upper, int32_t* info);
void sdttrfb_4dfl(const int32_t* n, float* lower, float* diagonal, float* upper, int32_t* info);

/* Solves with a factored matrix. `transposition` is "N"; anything else gives *info = -1. */
void ddttrsb_4dfl(const char* transposition, const int32_t* n, const int32_t* nrhs, const double* lower,
                  const double* diagonal, const double* upper, double* rhs, const int32_t* ld, int32_t* info);
void sdttrsb_4dfl(const char* transposition, const int32_t* n, const int32_t* nrhs, const float* lower,
                  const float* diagonal, const float* upper, float* rhs, const int32_t* ld, int32_t* info);

#ifdef __cplusplus
}
#endif

#endif
