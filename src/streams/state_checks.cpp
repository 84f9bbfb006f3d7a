// The table of state checks, beside the rows of the registry.
#include "streams/state_checks.h"

#include "streams/record.h"

namespace orv::streams {

namespace {

using StateCheck = bool (*)(const Stream* stream);

#define ORV_CHECK_TRUSTED(space) nullptr
#define ORV_CHECK_TESTED(space) brng::space::is_sound
#define ORV_CHECK_CHUNKED(space) brng::space::is_sound
#define ORV_CHECK(mark, name, space, figures, members, width, state) ORV_CHECK_##state(space),
constexpr StateCheck checks[] = {ORV_BUILTIN_GENERATORS(ORV_CHECK)};

#define ORV_CHUNKS_TRUSTED(space) nullptr
#define ORV_CHUNKS_TESTED(space) nullptr
#define ORV_CHUNKS_CHUNKED(space) brng::space::chunks_are_sound
#define ORV_CHUNKS(mark, name, space, figures, members, width, state) ORV_CHUNKS_##state(space),
constexpr StateCheck chunk_checks[] = {ORV_BUILTIN_GENERATORS(ORV_CHUNKS)};

// The row of the main table that stands for a row of either.
int32_t main_row(const Place& place) {
    constexpr int32_t small_sobol = 277, small_niederr = 278;
    if (place.table == __RegBrngsNew) return place.row;
    if (place.row == small_sobol) return row_of_Sobol;
    if (place.row == small_niederr) return row_of_Niederr;
    return place.row;
}

bool passes(const StateCheck* table, const Stream* stream) {
    const int32_t row = main_row(resolve(stream->brngId));
    return row >= builtin_rows || !table[row] || table[row](stream);
}

}  // namespace

bool state_is_sound(const Stream* stream) { return passes(checks, stream); }

bool chunks_are_sound(const Stream* stream) { return passes(chunk_checks, stream); }

}  // namespace orv::streams
