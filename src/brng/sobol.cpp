// Sobol's sequence: direction numbers from primitive polynomials and initial numbers, for up to 40 dimensions built in, or
// as the caller gives them in the seed words.
#include "brng/entries.h"
#include "brng/quasi/sobol_table.h"
#include "brng/quasi/stream.h"
#include "services/services.h"
#include "streams/chunks.h"
#include "streams/state_checks.h"

#include <string.h>

namespace orv::brng::sobol {

namespace {

using quasi::bits;
using quasi::Tables;

constexpr int32_t builtin_dimensions = 40;
constexpr int32_t numbers_chunk = 9, point_chunk = 13;
constexpr int32_t alignment = 128;

static_assert(sizeof primitives / sizeof primitives[0] == builtin_dimensions - 1);

using State = quasi::State<builtin_dimensions>;
static_assert(offsetof(State, directions) == 192 && sizeof(State) <= 11712);

State& state_of(Stream* stream) { return *reinterpret_cast<State*>(stream); }

// ---- The parameter block ---------------------------------------------------------------------------------------------

// Kinds of user data in word 2.
enum Kind : uint32_t {
    built_in = 0,
    polynomials = 1,
    initial_numbers = 2,
    both = 3,
    direction_numbers = 4,
    both_from_first = 11,  // the first dimension is user data too
};

struct Parameters {
    int32_t dimension;
    Kind kind;
    int32_t first;               // coordinate that the data begin with, 0 or 1
    const uint32_t* polynomial;  // of coordinate `first` and following, or null
    const uint32_t* initial;     // rows of `degree` numbers, or null
    const uint32_t* number;      // 32 numbers a coordinate, or null
    uint32_t degree;             // the largest
};

int degree_of(uint32_t polynomial) { return polynomial == 0 ? -1 : 31 - __builtin_clz(polynomial); }

uint32_t polynomial_of(const Parameters& p, int32_t coordinate) {
    return p.polynomial ? p.polynomial[coordinate - p.first] : primitives[coordinate - 1].polynomial;
}

// Whether the block is as long as its kind asks for; if so, where the data are.
bool locate(Parameters& p, int64_t n, const uint32_t* words) {
    const int64_t dimension = p.dimension;
    p.first = p.kind == both_from_first ? 0 : 1;
    const int64_t rows = dimension - p.first;
    const uint32_t* data = words + 3;
    int64_t before_degree = 0;
    switch (p.kind) {
        case polynomials:
            p.polynomial = data;
            return dimension <= builtin_dimensions && n >= rows + 3;
        case direction_numbers:
            p.number = data;
            return n >= bits * dimension + 3;
        case initial_numbers:
            if (dimension > builtin_dimensions) return false;
            break;
        case both:
        case both_from_first:
            p.polynomial = data;
            before_degree = rows;
            break;
        default:
            return false;
    }
    if (n < before_degree + 4) return false;
    p.degree = data[before_degree];
    p.initial = data + before_degree + 1;
    return p.degree >= 1 && p.degree <= bits && n >= rows * p.degree + before_degree + 4;
}

bool polynomials_fit(const Parameters& p) {
    if (p.number) return true;
    for (int32_t j = p.first; j < p.dimension; ++j) {
        const int degree = degree_of(polynomial_of(p, j));
        if (degree < 1 || (p.initial && degree > static_cast<int>(p.degree))) return false;
    }
    return true;
}

bool too_long_for_builtin_numbers(const Parameters& p) {
    for (int32_t j = p.first; j < p.dimension; ++j)
        if (degree_of(polynomial_of(p, j)) > most_initial) return true;
    return false;
}

// A block that is not well formed is dropped, and the built-in numbers serve.
Parameters read_parameters(int32_t n, const uint32_t* words) {
    Parameters p = {1, built_in, 1, nullptr, nullptr, nullptr, 0};
    const int32_t wanted = n >= 1 ? static_cast<int32_t>(words[0]) : 1;
    if (wanted < 1) return p;
    if (n >= 4 && words[1] == 1) {
        p.dimension = wanted;
        p.kind = static_cast<Kind>(words[2]);
        if (locate(p, n, words) && polynomials_fit(p)) return p;
    }
    return {wanted <= builtin_dimensions ? wanted : 1, built_in, 1, nullptr, nullptr, nullptr, 0};
}

// ---- Direction numbers -----------------------------------------------------------------------------------------------

// m(k) for k from the degree on, by the recurrence of a polynomial.
void extend(uint32_t* m, uint32_t polynomial) {
    const int degree = degree_of(polynomial);
    for (int k = degree; k < bits; ++k) {
        uint32_t sum = m[k - degree] ^ m[k - degree] << degree;
        for (int i = 1; i < degree; ++i)
            if ((polynomial >> (degree - i) & 1) != 0) sum ^= m[k - i] << i;
        m[k] = sum;
    }
}

void builtin_numbers(int32_t coordinate, uint32_t* m) {
    if (coordinate == 0) {
        for (int k = 0; k < bits; ++k) m[k] = 1;
        return;
    }
    const Primitive& primitive = primitives[coordinate - 1];
    for (int k = 0; k < most_initial; ++k) m[k] = primitive.initial[k];
    extend(m, primitive.polynomial);
}

// The 32 direction numbers of a coordinate.
void direction_numbers_of(const Parameters& p, int32_t coordinate, uint32_t* numbers) {
    if (p.number) {
        memcpy(numbers, p.number + static_cast<ptrdiff_t>(bits) * coordinate, bits * sizeof *numbers);
        return;
    }
    if (p.kind == built_in || !p.initial || coordinate < p.first) {
        builtin_numbers(coordinate, numbers);
        // Other polynomials begin with the built-in numbers, as many as their degree asks for.
        if (p.kind == polynomials && coordinate >= p.first) extend(numbers, polynomial_of(p, coordinate));
    } else {
        const uint32_t* initial = p.initial + static_cast<ptrdiff_t>(p.degree) * (coordinate - p.first);
        const uint32_t polynomial = polynomial_of(p, coordinate);
        for (int k = 0; k < degree_of(polynomial); ++k) numbers[k] = initial[k];
        extend(numbers, polynomial);
    }
    for (int k = 0; k < bits; ++k) numbers[k] <<= bits - 1 - k;
}

// Both forms of the table, and the first point. `by_coordinate` has `step` words a coordinate, `by_bit` is zero before.
void fill(const Parameters& p, uint32_t* by_coordinate, ptrdiff_t step, uint32_t* by_bit, ptrdiff_t row,
          uint32_t* point) {
    for (int32_t j = 0; j < p.dimension; ++j) {
        uint32_t* numbers = by_coordinate + j * step;
        direction_numbers_of(p, j, numbers);
        for (int k = 0; k < bits; ++k) by_bit[k * row + j] = numbers[k];
        point[j] = numbers[0];
    }
}

// ---- User numbers in chunks ------------------------------------------------------------------------------------------

// The chunk holds 32 words a coordinate and 32 padded rows.
int64_t numbers_bytes(int64_t dimension) { return 4 * (64 * dimension - 32 * (4 * dimension & 63) + 2048); }

int32_t seed_chunks(Stream* stream, const Parameters& p) {
    const int64_t bytes = numbers_bytes(p.dimension), point_bytes = int64_t{4} * p.dimension;
    if (bytes > INT32_MAX) return StatusNoMemory;
    uint32_t* numbers = static_cast<uint32_t*>(orv_serv_allocate(static_cast<size_t>(bytes), alignment));
    uint32_t* point =
        numbers ? static_cast<uint32_t*>(orv_serv_allocate(static_cast<size_t>(point_bytes), alignment)) : nullptr;
    int32_t status = StatusNoMemory;
    if (point) {
        memset(numbers, 0, static_cast<size_t>(bytes));
        const ptrdiff_t all = static_cast<ptrdiff_t>(bits) * p.dimension;
        fill(p, numbers, bits, numbers + all, quasi::padded(p.dimension), point);
        uint64_t key[2];
        __kuzGenerateNewGlobalRODataTableEntryId(key, static_cast<int32_t>(reinterpret_cast<uintptr_t>(numbers)));
        status = __kuzAddChunk(stream, numbers_chunk, key, numbers, static_cast<int32_t>(bytes));
        if (status >= 0) numbers = nullptr;  // the chunk's now
    }
    if (status >= 0) {
        status = __kuzAddChunk(stream, point_chunk, nullptr, point, static_cast<int32_t>(point_bytes));
        if (status >= 0) point = nullptr;
    }
    orv_serv_deallocate(numbers);
    orv_serv_deallocate(point);
    return status;
}

int32_t seed(Stream* stream, int32_t n, const uint32_t* words) {
    State& state = state_of(stream);
    memset(state.point, 0, sizeof state - offsetof(State, point));
    streams::remove_chunks(stream, numbers_chunk);
    streams::remove_chunks(stream, point_chunk);
    const Parameters p = read_parameters(n, words);
    quasi::start(state.head, p.dimension);
    if (p.kind == polynomials && too_long_for_builtin_numbers(p)) return StatusBadAbstractArgs;
    if (p.kind == both || p.kind == both_from_first || p.kind == direction_numbers) return seed_chunks(stream, p);
    fill(p, &state.directions[0][0], bits + 1, &state.directionsByBit[0][0], sizeof state.directionsByBit[0] / 4,
         state.point);
    return StatusOk;
}

// ---- The stream ------------------------------------------------------------------------------------------------------

bool find_tables(const Stream* stream, Tables* t) {
    State& state = const_cast<State&>(reinterpret_cast<const State&>(*stream));
    const int32_t dimension = state.head.dimension;
    const Chunk* numbers = streams::find_chunk(stream, numbers_chunk);
    const Chunk* point = streams::find_chunk(stream, point_chunk);
    if (!numbers && !point) {
        *t = {&state.directionsByBit[0][0], sizeof state.directionsByBit[0] / 4, state.point};
        return dimension <= builtin_dimensions;
    }
    if (!numbers || !point || numbers->dataBytes != numbers_bytes(dimension) ||
        point->dataBytes != int64_t{4} * dimension)
        return false;
    const uint32_t* by_bit = static_cast<const uint32_t*>(numbers->data) + static_cast<ptrdiff_t>(bits) * dimension;
    *t = {by_bit, quasi::padded(dimension), static_cast<uint32_t*>(point->data)};
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
bool chunks_are_sound(const Stream* stream) { return quasi::tables_are_sound(stream, find_tables, point_chunk); }

}  // namespace orv::brng::sobol

ORV_BRNG_DEFINE(Sobol, sobol)
