// The one-step matrices of MRG32K3A's two components to the powers 2^k, k = 0 to 192.
#pragma once

#include "brng/vect3.h"

namespace orv::brng {

inline constexpr uint32_t mrg_a12 = 1403580;
inline constexpr uint32_t mrg_a13 = 810728;
inline constexpr uint32_t mrg_b21 = 527612;
inline constexpr uint32_t mrg_b23 = 1370589;

struct MatrixPowers {
    Matrix3 power[table_matrices];
};

extern const MatrixPowers mrg_powers1;
extern const MatrixPowers mrg_powers2;

}  // namespace orv::brng
