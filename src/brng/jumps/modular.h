// Residues without division: moduli just below a power of two, whose high part folds back onto the low one, and powers of
// two themselves.
#pragma once

#include <stdint.h>

namespace orv::brng {

inline constexpr uint32_t m31 = 0x7FFFFFFF;
inline constexpr uint64_t mask59 = 0x7FFFFFFFFFFFFFF;

// a b mod 2^31 - 1 for a, b below the modulus: 2^31 is 1, and the sum of the halves is below twice the modulus.
constexpr uint32_t mul_m31(uint32_t a, uint32_t b) {
    const uint64_t t = uint64_t{a} * b;
    const uint32_t sum = (static_cast<uint32_t>(t) & m31) + static_cast<uint32_t>(t >> 31);
    return sum >= m31 ? sum - m31 : sum;
}

// t mod 2^32 - c for c below 2^15. The first fold leaves less than 2^47 + 2^32, the second less than 2^32 + 2^30, the
// third less than 2^32, which is below twice the modulus.
template <uint32_t m>
constexpr uint32_t reduce(uint64_t t) {
    constexpr uint64_t c = 0 - m;
    static_assert(c < 32768);
    t = (t >> 32) * c + static_cast<uint32_t>(t);
    t = (t >> 32) * c + static_cast<uint32_t>(t);
    const uint32_t low = static_cast<uint32_t>((t >> 32) * c + static_cast<uint32_t>(t));
    return low >= m ? low - m : low;
}

}  // namespace orv::brng
