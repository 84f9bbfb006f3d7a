// Irreducible polynomials over GF(2), as bit patterns in increasing order: a sieve over the products.
#pragma once

#include <stdint.h>

namespace orv::brng {

template <int count>
struct Irreducibles {
    uint16_t at[count];
};

template <int count>
constexpr Irreducibles<count> find_irreducibles() {
    constexpr int degrees = 12;
    constexpr uint32_t limit = 1 << degrees;
    bool composite[limit] = {};
    Irreducibles<count> result = {};
    int found = 0;
    for (uint32_t p = 2, degree = 1; found < count; ++p) {
        if (p == 2u << degree) ++degree;
        if (composite[p]) continue;
        result.at[found++] = static_cast<uint16_t>(p);
        // A product below the limit has a factor of at most half the degrees.
        for (uint32_t q = 2; 2 * degree < degrees && q < limit >> degree; ++q) {
            uint32_t product = 0;
            for (uint32_t i = 0; i <= degree; ++i)
                if ((p >> i & 1) != 0) product ^= q << i;
            composite[product] = true;
        }
    }
    return result;
}

}  // namespace orv::brng
