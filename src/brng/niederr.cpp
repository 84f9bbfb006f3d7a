// Niederreiter's sequence in base 2: generator matrices from irreducible polynomials over GF(2), for up to 318 dimensions
// built in, or as the caller gives polynomials or direction numbers in the seed words.
#include "brng/entries.h"
#include "brng/quasi/irreducible.h"
#include "brng/quasi/stream.h"
#include "services/services.h"
#include "streams/chunks.h"
#include "streams/state_checks.h"

#include <string.h>

namespace orv::brng::niederr {

namespace {

using quasi::bits;
using quasi::Tables;

constexpr int32_t builtin_dimensions = 318;
constexpr int32_t chunk_id = 10;
constexpr int32_t alignment = 128;

using State = quasi::State<builtin_dimensions>;
static_assert(offsetof(State, directions) == 32 + 4 * 318 && sizeof(State) == 84288);

constexpr Irreducibles<builtin_dimensions> irreducible = find_irreducibles<builtin_dimensions>();
static_assert(irreducible.at[builtin_dimensions - 1] == 3047);

State& state_of(Stream* stream) { return *reinterpret_cast<State*>(stream); }

// ---- The parameter block ---------------------------------------------------------------------------------------------

// Kinds of user data in word 2.
enum Kind : uint32_t { polynomials = 1, direction_numbers = 4 };

struct Parameters {
    int32_t dimension;
    const uint32_t* polynomial;  // of each coordinate, or null
    const uint32_t* number;      // 32 numbers a coordinate, or null
};

bool all_of_degree_1_or_more(const uint32_t* polynomial, int32_t count) {
    for (int32_t j = 0; j < count; ++j)
        if (polynomial[j] < 2) return false;
    return true;
}

// A block that is not well formed is dropped, and the built-in numbers serve.
Parameters read_parameters(int32_t n, const uint32_t* words) {
    const int32_t dimension = n >= 1 ? static_cast<int32_t>(words[0]) : 1;
    if (dimension < 1) return {1, nullptr, nullptr};
    if (n >= 4 && words[1] == 1) {
        const uint32_t* data = words + 3;
        const int64_t given = int64_t{n} - 3;
        if (words[2] == polynomials && given >= dimension && all_of_degree_1_or_more(data, dimension))
            return {dimension, data, nullptr};
        if (words[2] == direction_numbers && given >= int64_t{bits} * dimension) return {dimension, nullptr, data};
    }
    return {dimension <= builtin_dimensions ? dimension : 1, nullptr, nullptr};
}

// ---- Direction numbers -----------------------------------------------------------------------------------------------

int degree_of(uint64_t polynomial) { return 63 - __builtin_clzll(polynomial); }

uint64_t carryless_product(uint64_t a, uint32_t b) {
    uint64_t product = 0;
    for (; b != 0; b >>= 1, a <<= 1)
        if ((b & 1) != 0) product ^= a;
    return product;
}

// The bits v(0) to v(31 + e) of the sequence that one power of the polynomial gives: its start is of length m + e, with
// zeros below v(m) and ones from there on, and goes on by the linear recurrence of the power b, of degree m + e.
uint64_t recurrent_bits(uint64_t b, int m, int e) {
    uint64_t v = 0;
    for (int k = m; k < m + e; ++k) v |= uint64_t{1} << k;
    const uint64_t below_top = b ^ uint64_t { 1 } << (m + e);
    for (int k = m + e; k < bits + e; ++k)
        v |= static_cast<uint64_t>(__builtin_parityll(v >> (k - m - e) & below_top)) << k;
    return v;
}

// The numbers of a coordinate with an irreducible polynomial of degree e: each of its powers gives e rows of the generator
// matrix, and bit 31 - r of number c is the matrix's bit in row r, column c.
void direction_numbers_of(uint32_t polynomial, uint32_t* numbers) {
    memset(numbers, 0, bits * sizeof *numbers);
    const int e = degree_of(polynomial);
    uint64_t b = 1;
    for (int r = 0; r < bits;) {
        const int m = degree_of(b);
        b = carryless_product(b, polynomial);
        const uint64_t v = recurrent_bits(b, m, e);
        for (int u = 0; u < e && r < bits; ++u, ++r) {
            const uint32_t matrix_row = static_cast<uint32_t>(v >> u);
            for (int c = 0; c < bits; ++c) numbers[c] |= (matrix_row >> c & 1) << (bits - 1 - r);
        }
    }
}

// The table by bits and the first point; the table by coordinates too, if there is a place for it.
void fill(const Parameters& p, uint32_t* by_coordinate, uint32_t* by_bit, ptrdiff_t row, uint32_t* point) {
    for (int32_t j = 0; j < p.dimension; ++j) {
        uint32_t own[bits];
        uint32_t* numbers = by_coordinate ? by_coordinate + j * (bits + 1) : own;
        if (p.number)
            memcpy(numbers, p.number + static_cast<ptrdiff_t>(bits) * j, sizeof own);
        else
            direction_numbers_of(p.polynomial ? p.polynomial[j] : irreducible.at[j], numbers);
        for (int k = 0; k < bits; ++k) by_bit[k * row + j] = numbers[k];
        point[j] = numbers[0];
    }
}

// The chunk of a dimension that the state has no room for: 32 rows of numbers, and the point.
int64_t chunk_bytes(int64_t dimension) { return 4 * (bits + 1) * dimension; }

int32_t seed_chunk(Stream* stream, const Parameters& p) {
    const int64_t bytes = chunk_bytes(p.dimension);
    if (bytes > INT32_MAX) return StatusNoMemory;
    uint32_t* data = static_cast<uint32_t*>(orv_serv_allocate(static_cast<size_t>(bytes), alignment));
    if (!data) return StatusNoMemory;
    fill(p, nullptr, data, p.dimension, data + static_cast<ptrdiff_t>(bits) * p.dimension);
    const int32_t status = __kuzAddChunk(stream, chunk_id, nullptr, data, static_cast<int32_t>(bytes));
    if (status < 0) orv_serv_deallocate(data);
    return status;
}

int32_t seed(Stream* stream, int32_t n, const uint32_t* words) {
    State& state = state_of(stream);
    memset(state.point, 0, sizeof state - offsetof(State, point));
    streams::remove_chunks(stream, chunk_id);
    const Parameters p = read_parameters(n, words);
    quasi::start(state.head, p.dimension);
    if (p.dimension > builtin_dimensions) return seed_chunk(stream, p);
    fill(p, &state.directions[0][0], &state.directionsByBit[0][0], sizeof state.directionsByBit[0] / 4, state.point);
    return StatusOk;
}

// ---- The stream ------------------------------------------------------------------------------------------------------

bool find_tables(const Stream* stream, Tables* t) {
    State& state = const_cast<State&>(reinterpret_cast<const State&>(*stream));
    const int32_t dimension = state.head.dimension;
    if (dimension <= builtin_dimensions) {
        *t = {&state.directionsByBit[0][0], sizeof state.directionsByBit[0] / 4, state.point};
        return true;
    }
    const Chunk* chunk = streams::find_chunk(stream, chunk_id);
    if (!chunk || chunk->dataBytes != chunk_bytes(dimension)) return false;
    uint32_t* data = static_cast<uint32_t*>(chunk->data);
    *t = {data, dimension, data + static_cast<ptrdiff_t>(bits) * dimension};
    return true;
}

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    return quasi::generate(stream, find_tables, n, r, output);
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    return quasi::init_stream(method, stream, n, params, seed, find_tables);
}

using quasi::Outputs;

}  // namespace

bool is_sound(const Stream* stream) { return quasi::head_is_sound(stream); }
bool chunks_are_sound(const Stream* stream) { return quasi::tables_are_sound(stream, find_tables, chunk_id); }

}  // namespace orv::brng::niederr

ORV_BRNG_DEFINE(Niederr, niederr)
