// x^n modulo a polynomial over GF(2), by squaring. A polynomial is a string of bits, bit i the coefficient of x^i;
// squaring spreads the bits to the even positions, and reduction folds what stands at and above the degree back by the
// lower terms. All lengths are in 32-bit words.
#include "platform/export.h"
#include "services/services.h"

#include <orv/random.h>

#include <string.h>

namespace {

constexpr int32_t work_alignment = 128;

struct Modulus {
    int64_t degree;
    const int32_t* terms;  // increasing; the last one is the degree
    int32_t lower_terms;
    int32_t words;
};

// Bits of a 16-bit half to the even positions of a word.
uint32_t spread(uint32_t half) {
    half = (half | half << 8) & 0x00FF00FF;
    half = (half | half << 4) & 0x0F0F0F0F;
    half = (half | half << 2) & 0x33333333;
    return (half | half << 1) & 0x55555555;
}

// In place, from the top, since word i goes to words 2i and 2i + 1.
void square(uint32_t* r, int32_t words) {
    for (int32_t i = words - 1; i >= 0; --i) {
        const uint32_t word = r[i];
        r[2 * i + 1] = spread(word >> 16);
        r[2 * i] = spread(word & 0xFFFF);
    }
}

void multiply_by_x(uint32_t* r, int32_t words) {
    for (int32_t i = words - 1; i > 0; --i) r[i] = r[i] << 1 | r[i - 1] >> 31;
    r[0] <<= 1;
}

// Moves the part of r at and above the degree to `high`, shifted down; returns its length without leading zeros.
int32_t split(uint32_t* r, const Modulus& p, uint32_t* high) {
    const int32_t first = static_cast<int32_t>(p.degree / 32);
    const int shift = static_cast<int>(p.degree % 32);
    const int32_t total = 2 * p.words;
    int32_t length = 0;
    for (int32_t i = first; i < total; ++i) {
        const uint32_t next = i + 1 < total ? r[i + 1] : 0;
        high[i - first] = static_cast<uint32_t>((uint64_t{next} << 32 | r[i]) >> shift);
        if (high[i - first] != 0) length = i - first + 1;
    }
    if (first < total) {
        r[first] &= (uint32_t{1} << shift) - 1;
        memset(r + first + 1, 0, static_cast<size_t>(total - first - 1) * sizeof *r);
    }
    return length;
}

// r ^= high * x^exponent. The carry word may lie past the end of r only when it is zero.
void add_shifted(uint32_t* r, const uint32_t* high, int32_t length, int32_t exponent) {
    uint32_t* to = r + exponent / 32;
    const int shift = exponent % 32;
    if (shift == 0) {
        for (int32_t i = 0; i < length; ++i) to[i] ^= high[i];
        return;
    }
    uint32_t below = 0;
    for (int32_t i = 0; i < length; ++i) {
        to[i] ^= high[i] << shift | below;
        below = high[i] >> (32 - shift);
    }
    if (below != 0) to[length] ^= below;
}

void reduce(uint32_t* r, const Modulus& p, uint32_t* high) {
    while (const int32_t length = split(r, p, high))
        for (int32_t k = 0; k < p.lower_terms; ++k) add_shifted(r, high, length, p.terms[k]);
}

}  // namespace

ORV_API int32_t __kuzPolyRem(int64_t n, int64_t degree, int32_t term_count, const int32_t* terms, int32_t words,
                             uint32_t* out) {
    const uint64_t exponent = static_cast<uint64_t>(n);
    if (exponent < static_cast<uint64_t>(degree)) {
        memset(out, 0, static_cast<size_t>(words) * sizeof *out);
        out[exponent / 32] = uint32_t{1} << exponent % 32;
        return StatusOk;
    }
    const size_t out_bytes = 2 * static_cast<size_t>(words) * sizeof *out;
    uint32_t* high = static_cast<uint32_t*>(orv_serv_allocate(out_bytes, work_alignment));
    if (!high) return StatusNoMemory;
    const Modulus p = {degree, terms, term_count - 1, words};
    memset(out, 0, out_bytes);
    out[0] = 2;
    reduce(out, p, high);  // x itself is not reduced modulo a polynomial of degree 1
    for (int bit = 62 - __builtin_clzll(exponent); bit >= 0; --bit) {
        square(out, words);
        if (exponent >> bit & 1) multiply_by_x(out, 2 * words);
        reduce(out, p, high);
    }
    orv_serv_deallocate(high);
    return StatusOk;
}
