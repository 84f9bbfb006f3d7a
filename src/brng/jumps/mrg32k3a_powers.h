// The one-step matrices of MRG32K3A's two components to the powers 2^k, k = 0 to 192.
#pragma once

#include "brng/jumps/modular.h"
#include "brng/jumps/vect3.h"
#include "brng/mrg32k3a.h"

namespace orv::brng::mrg32k3a {

inline constexpr Matrix3 one_step1 = {{{0, 1, 0}, {0, 0, 1}, {m1 - a13, a12, 0}}};
inline constexpr Matrix3 one_step2 = {{{0, 1, 0}, {0, 0, 1}, {m2 - b23, 0, b21}}};

template <uint32_t m>
constexpr Matrix3 multiply_mod(const Matrix3& a, const Matrix3& b) {
    return multiply(a, b, [](uint64_t t) { return reduce<m>(t); });
}

struct MatrixPowers {
    Matrix3 power[table_matrices];
};

extern const MatrixPowers powers1;
extern const MatrixPowers powers2;

}  // namespace orv::brng::mrg32k3a
