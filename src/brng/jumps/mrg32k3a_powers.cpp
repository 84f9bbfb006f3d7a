// The tables are made by the compiler: each matrix is the square of the one before.
#include "brng/jumps/mrg32k3a_powers.h"

namespace orv::brng::mrg32k3a {

namespace {

template <uint32_t m>
constexpr MatrixPowers powers_of_two(const Matrix3& step) {
    MatrixPowers table = {};
    table.power[0] = step;
    for (int32_t k = 1; k < table_matrices; ++k)
        table.power[k] = multiply_mod<m>(table.power[k - 1], table.power[k - 1]);
    return table;
}

}  // namespace

constexpr MatrixPowers powers1 = powers_of_two<m1>(one_step1);
constexpr MatrixPowers powers2 = powers_of_two<m2>(one_step2);

}  // namespace orv::brng::mrg32k3a
