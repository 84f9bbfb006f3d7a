// x^n modulo a polynomial P over GF(2), by squaring. A polynomial is a string of bits, bit i the coefficient of x^i.
// Squaring spreads the bits to the even positions. Reduction goes down byte by byte over what stands at and above the
// degree: the byte b at degree + 8 j is replaced by (b x^degree mod P) x^(8 j), whose first factor comes from a table of
// all 256, so the work does not depend on how many terms P has. Where P has few, 64 bits at a time are added once for each
// term instead.
#include "services/export.h"
#include "services/services.h"

#include "simd/integers.h"

#include <orv/random.h>
#include <string.h>

namespace simd = orv::simd;

namespace {

constexpr int32_t work_alignment = 128;
constexpr size_t vector_bytes = 16;
// More terms cost more than the rows of a table.
constexpr int32_t few_terms = 512;

// The work area: the polynomial in hand, twice as long as a reduced one, and the 256 rows of the table if there is one.
struct Work {
    uint32_t degree;
    int32_t term_count;
    const int32_t* terms;
    size_t words;      // of a reduced polynomial
    size_t row_bytes;  // room for a polynomial of the degree, in whole vectors
    uint8_t* r;
    uint8_t* rows;
};

size_t whole_vectors(size_t bytes) { return (bytes + vector_bytes - 1) / vector_bytes * vector_bytes; }

// A row may be added at the last byte that stands above the degree, and reaches a vector past it.
size_t r_bytes(const Work& work) { return whole_vectors(8 * work.words) + 2 * vector_bytes; }

uint8_t* row(const Work& work, uint32_t b) { return work.rows + b * work.row_bytes; }

void flip(uint8_t* bits, uint32_t i) { bits[i / 8] = static_cast<uint8_t>(bits[i / 8] ^ 1u << i % 8); }
bool bit_of(const uint8_t* bits, uint32_t i) { return (bits[i / 8] >> i % 8 & 1) != 0; }

void add(uint8_t* to, const uint8_t* from, size_t bytes) {
    for (size_t i = 0; i < bytes; i += vector_bytes) {
        const __m128i sum = simd::bit_xor(simd::load(to + i), simd::load_aligned(from + i));
        simd::store(to + i, sum);
    }
}

void shift_left(uint8_t* to, const uint8_t* from, size_t bytes) {
    unsigned carry = 0;
    for (size_t i = 0; i < bytes; ++i) {
        const unsigned shifted = static_cast<unsigned>(from[i]) << 1 | carry;
        to[i] = static_cast<uint8_t>(shifted);
        carry = shifted >> 8;
    }
}

// Row b is b x^degree mod P. Row 1 is P without its leading term; doubling is a shift, with the leading term folded back
// where it comes up.
void fill_rows(const Work& work) {
    memset(work.rows, 0, 2 * work.row_bytes);
    uint8_t* const low = row(work, 1);
    for (int32_t k = 0; k + 1 < work.term_count; ++k) flip(low, static_cast<uint32_t>(work.terms[k]));
    for (uint32_t b = 2; b < 256; b += 2) {
        const uint8_t* half = row(work, b / 2);
        uint8_t* even = row(work, b);
        const bool folds = bit_of(half, work.degree - 1);
        shift_left(even, half, work.row_bytes);
        if (folds) {
            add(even, low, work.row_bytes);
            flip(even, work.degree);
        }
        memcpy(row(work, b + 1), even, work.row_bytes);
        add(row(work, b + 1), low, work.row_bytes);
    }
}

void reduce_by_rows(const Work& work) {
    const size_t first = work.degree / 8;
    const unsigned shift = work.degree % 8;
    for (size_t at = 8 * work.words; at-- > first;) {
        const unsigned pair = work.r[at] | static_cast<unsigned>(work.r[at + 1]) << 8;
        const unsigned b = pair >> shift & 0xFF;
        if (b != 0) add(work.r + (at - first), row(work, b), work.row_bytes);
        // The bits of this byte at and above the degree are spent; those below belong to the next one.
        work.r[at + 1] = static_cast<uint8_t>(work.r[at + 1] & ~((1u << shift) - 1));
        work.r[at] = static_cast<uint8_t>(work.r[at] & ((1u << shift) - 1));
    }
}

// With 64 zeros below the leading term, the 64 bits that are taken out do not come back among themselves.
bool has_few_terms(const Work& work) {
    return work.term_count >= 2 && work.term_count <= few_terms &&
           work.degree - static_cast<uint32_t>(work.terms[work.term_count - 2]) >= 64;
}

void reduce_by_terms(const Work& work) {
    const uint32_t first = work.degree / 64, shift = work.degree % 64;
    for (uint32_t at = static_cast<uint32_t>(work.words); at-- > first;) {
        uint64_t bits, kept = 0;
        memcpy(&bits, work.r + 8 * at, sizeof bits);
        uint32_t base = 64 * at - work.degree;  // where the terms of x^degree times the bits begin
        if (at == first) {
            kept = bits & ((uint64_t{1} << shift) - 1);
            bits >>= shift;
            base = 0;
        }
        memcpy(work.r + 8 * at, &kept, sizeof kept);
        if (bits == 0) continue;
        __m128i shifted[8];
        for (unsigned k = 0; k < 8; ++k) {
            const uint64_t both[2] = {bits << k, k == 0 ? 0 : bits >> (64 - k)};
            shifted[k] = simd::load(both);
        }
        // Every fourth term in turn: neighbours lie in one vector, and would wait for each other's store.
        for (int32_t first_term = 0; first_term < 4; ++first_term)
            for (int32_t k = first_term; k + 1 < work.term_count; k += 4) {
                const uint32_t place = base + static_cast<uint32_t>(work.terms[k]);
                uint8_t* to = work.r + place / 8;
                simd::store(to, simd::bit_xor(simd::load(to), shifted[place % 8]));
            }
    }
}

void reduce(const Work& work) {
    if (work.rows)
        reduce_by_rows(work);
    else
        reduce_by_terms(work);
}

// Bits of a 16-bit half to the even positions of a word.
uint32_t spread(uint32_t half) {
    half = (half | half << 8) & 0x00FF00FF;
    half = (half | half << 4) & 0x0F0F0F0F;
    half = (half | half << 2) & 0x33333333;
    return (half | half << 1) & 0x55555555;
}

// In place, from the top, since word i goes to words 2 i and 2 i + 1.
void square(const Work& work) {
    uint32_t* const r = reinterpret_cast<uint32_t*>(work.r);
    for (size_t i = work.words; i-- > 0;) {
        const uint32_t word = r[i];
        r[2 * i + 1] = spread(word >> 16);
        r[2 * i] = spread(word & 0xFFFF);
    }
}

}  // namespace

ORV_API int32_t __kuzPolyRem(int64_t n, int64_t degree, int32_t term_count, const int32_t* terms, int32_t words,
                             uint32_t* out) {
    const uint64_t exponent = static_cast<uint64_t>(n);
    const size_t out_bytes = static_cast<size_t>(words) * sizeof *out;
    if (exponent < static_cast<uint64_t>(degree)) {
        memset(out, 0, out_bytes);
        out[exponent / 32] = uint32_t{1} << exponent % 32;
        return StatusOk;
    }
    Work work = {static_cast<uint32_t>(degree),
                 term_count,
                 terms,
                 static_cast<size_t>(words),
                 whole_vectors(static_cast<size_t>(degree) / 8 + 1),
                 nullptr,
                 nullptr};
    const bool by_rows = !has_few_terms(work);
    work.r =
        static_cast<uint8_t*>(orv_serv_allocate(r_bytes(work) + (by_rows ? 256 * work.row_bytes : 0), work_alignment));
    if (!work.r) return StatusNoMemory;
    if (by_rows) {
        work.rows = work.r + r_bytes(work);
        fill_rows(work);
    }
    memset(work.r, 0, r_bytes(work));
    work.r[0] = 2;
    reduce(work);  // x itself is reduced by a polynomial of degree 1 alone
    for (int bit = 62 - __builtin_clzll(exponent); bit >= 0; --bit) {
        square(work);
        if (exponent >> bit & 1) shift_left(work.r, work.r, 8 * work.words);
        reduce(work);
    }
    memcpy(out, work.r, out_bytes);
    orv_serv_deallocate(work.r);
    return StatusOk;
}
