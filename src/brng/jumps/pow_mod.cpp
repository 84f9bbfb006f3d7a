// Powers modulo m, 2^31 - 1 and 2^59: square and multiply from the lowest bit of the exponent.
#include "brng/jumps/modular.h"
#include "services/export.h"

#include <orv/random.h>

using namespace orv::brng;

namespace {

template <class Word, class Multiply>
Word power(Word base, uint64_t n, Multiply multiply) {
    Word result = 1;
    while (n != 0) {
        if (n & 1) result = multiply(result, base);
        n >>= 1;
        if (n != 0) base = multiply(base, base);
    }
    return result;
}

}  // namespace

ORV_API uint32_t __kuziPowMod(uint32_t a, uint64_t n, uint32_t m) {
    return power(a, n, [m](uint32_t x, uint32_t y) { return static_cast<uint32_t>(uint64_t{x} * y % m); });
}

ORV_API uint32_t __kuziPowMod2P31M1(uint32_t a, uint64_t n) { return power(a % m31, n, mul_m31); }

ORV_API uint64_t __kuziPowMod2P59(uint64_t a, uint64_t n) {
    return power(a, n, [](uint64_t x, uint64_t y) { return x * y & mask59; });
}
