// Jumps of third-order recurrences: powers of a 3 by 3 matrix applied to a vector.
#include "brng/jumps/modular.h"
#include "brng/jumps/vect3.h"
#include "brng/mrg32k3a.h"
#include "services/export.h"

#include <orv/random.h>

#include <string.h>

using namespace orv::brng;

namespace {

struct GenericModulus {
    uint32_t m;
    uint32_t operator()(uint64_t t) const { return static_cast<uint32_t>(t % m); }
};

Matrix3 companion(const uint32_t* row) { return {{{0, 1, 0}, {0, 0, 1}, {row[2], row[1], row[0]}}}; }

// The powers of one matrix commute, so each may be applied to the vector as its bit comes up.
struct Jump {
    Matrix3 power;
    Vector3 vector;
};

void apply_word(Jump& jump, uint64_t n, int bits, GenericModulus modulus) {
    for (int bit = 0; bit < bits; ++bit, n >>= 1) {
        if (n & 1) jump.vector = multiply(jump.power, jump.vector, modulus);
        jump.power = multiply(jump.power, jump.power, modulus);
    }
}

int significant_bits(uint64_t n) { return n == 0 ? 0 : 64 - __builtin_clzll(n); }

template <uint32_t m>
void by_table(uint32_t* vector, int32_t n, const uint64_t* count, const uint32_t* table) {
    Vector3 v = load(vector);
    for (int32_t word = 0; word < n && word * 64 < table_matrices; ++word)
        for (uint64_t bits = count[word]; bits != 0; bits &= bits - 1) {
            const int32_t k = word * 64 + __builtin_ctzll(bits);
            if (k >= table_matrices) break;
            Matrix3 power;
            memcpy(&power, table + static_cast<ptrdiff_t>(k) * 9, sizeof power);
            v = multiply(power, v, [](uint64_t t) { return reduce<m>(t); });
        }
    store(vector, v);
}

}  // namespace

ORV_API void __kuziVect3PowArrayMod(uint32_t* vector, const uint32_t* row, uint32_t m, int32_t n,
                                    const uint64_t* count) {
    while (n > 0 && count[n - 1] == 0) --n;
    Jump jump = {companion(row), load(vector)};
    for (int32_t word = 0; word < n; ++word)
        apply_word(jump, count[word], word == n - 1 ? significant_bits(count[word]) : 64, {m});
    store(vector, jump.vector);
}

ORV_API void __kuziVect3PowMod(uint32_t* vector, const uint32_t* row, uint32_t m, uint64_t n) {
    __kuziVect3PowArrayMod(vector, row, m, 1, &n);
}

ORV_API void __kuziVect3PowArrayMod_M1(uint32_t* vector, int32_t n, const uint64_t* count, const uint32_t* table) {
    by_table<mrg32k3a::m1>(vector, n, count, table);
}

ORV_API void __kuziVect3PowArrayMod_M2(uint32_t* vector, int32_t n, const uint64_t* count, const uint32_t* table) {
    by_table<mrg32k3a::m2>(vector, n, count, table);
}
