// The tables are made by the compiler: each matrix is the square of the one before.
#include "brng/mrg32k3a_jump.h"

#include "brng/modular.h"

namespace orv::brng {

namespace {

template <uint32_t m>
constexpr MatrixPowers powers_of_two(const Matrix3& step) {
    MatrixPowers table = {};
    table.power[0] = step;
    for (int32_t k = 1; k < table_matrices; ++k)
        table.power[k] = multiply(table.power[k - 1], table.power[k - 1], [](uint64_t t) { return reduce<m>(t); });
    return table;
}

}  // namespace

constexpr MatrixPowers mrg_powers1 = powers_of_two<m1>({{{0, 1, 0}, {0, 0, 1}, {m1 - mrg_a13, mrg_a12, 0}}});
constexpr MatrixPowers mrg_powers2 = powers_of_two<m2>({{{0, 1, 0}, {0, 0, 1}, {m2 - mrg_b23, 0, mrg_b21}}});

}  // namespace orv::brng
