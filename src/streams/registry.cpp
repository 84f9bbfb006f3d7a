// The registry of generators: two tables of rows, and registration.
#include "services/export.h"
#include "streams/builtin_generators.h"
#include "streams/record.h"

#include <orv/random.h>

namespace {

constexpr int32_t table_rows = 512;
constexpr int32_t small_row_limit = 281;

// What a row's mark makes of the four functions.
#define ORV_FUNCTIONS_HERE(name) __kuzBRng##name##InitStream, __kuzsBRng##name, __kuzdBRng##name, __kuziBRng##name
#define ORV_FUNCTIONS_LATER(name) nullptr, nullptr, nullptr, nullptr

// Both tables hold copies of these.
#define FIGURES(...) __VA_ARGS__
#define ORV_PROPERTIES(mark, name, space, figures, members, width, state) \
    constexpr BrngProperties row_##name = {figures, ORV_FUNCTIONS_##mark(name)};
ORV_BUILTIN_GENERATORS(ORV_PROPERTIES)

#define ORV_ROW(mark, name, space, figures, members, width, state) row_##name,

// 273 rows alike: 256 + 16 + 1.
#define ORV_ROWS_4(row) row, row, row, row
#define ORV_ROWS_16(row) ORV_ROWS_4(row), ORV_ROWS_4(row), ORV_ROWS_4(row), ORV_ROWS_4(row)
#define ORV_ROWS_64(row) ORV_ROWS_16(row), ORV_ROWS_16(row), ORV_ROWS_16(row), ORV_ROWS_16(row)
#define ORV_ROWS_256(row) ORV_ROWS_64(row), ORV_ROWS_64(row), ORV_ROWS_64(row), ORV_ROWS_64(row)

// Parallel to __RegBrngsNew.
#define ORV_MEMBERS(mark, name, space, figures, members, width, state) members,
int32_t members[table_rows] = {ORV_BUILTIN_GENERATORS(ORV_MEMBERS)};

int32_t registered = orv::streams::builtin_rows;

}  // namespace

// An initialised definition cannot carry the marks of an export.
// NOLINTBEGIN(readability-redundant-declaration)
ORV_API const BrngProperties __RegBrngs[table_rows];
ORV_API BrngProperties __RegBrngsNew[table_rows];
// NOLINTEND(readability-redundant-declaration)

const BrngProperties __RegBrngs[table_rows] = {
    row_MCG31M1,         row_R250, row_MRG32K3A, row_MCG59,   ORV_ROWS_256(row_WH),
    ORV_ROWS_16(row_WH), row_WH,   row_Sobol,    row_Niederr,
};

BrngProperties __RegBrngsNew[table_rows] = {ORV_BUILTIN_GENERATORS(ORV_ROW)};

ORV_API const BrngProperties* __kuzGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* member) {
    const orv::streams::Place place = orv::streams::resolve(id);
    *row = place.row;
    *member = place.member;
    return place.table;
}

ORV_API int32_t __kuzIsBrngValid(const BrngProperties* table, int32_t row, int32_t member) {
    if (table == __RegBrngs) return row < small_row_limit ? StatusOk : BrngStatusBadId;
    if (row < 0 || row >= registered) return BrngStatusBadId;
    return member < members[row] ? StatusOk : BrngStatusBadId;
}

ORV_API int32_t __kuzGetBrngProperties(int32_t id, BrngProperties* properties) {
    const orv::streams::Place place = orv::streams::resolve(id);
    const int32_t status = __kuzIsBrngValid(place.table, place.row, place.member);
    if (status < 0) return status;
    if (place.row < 0) return BrngStatusBadId;  // a negative small id, which has no row to copy
    *properties = place.table[place.row];
    return StatusOk;
}

ORV_API int32_t __kuzRegisterBrng(const BrngProperties* properties) {
    const BrngProperties row = *properties;
    if (row.stateBytes < 0) return BrngStatusBadStateBytes;
    if (row.wordBytes != 4 && row.wordBytes != 8 && row.wordBytes != 16) return BrngStatusBadWordBytes;
    if (row.seedCount < 1) return BrngStatusBadSeedCount;
    if (row.bitCount < 1) return BrngStatusBadBitCount;
    if (!row.dBRng || !row.sBRng || !row.iBRng || !row.initStream) return StatusNullFunction;
    const int32_t index = registered;
    if (index >= table_rows) return BrngStatusBadId;
    __RegBrngsNew[index] = row;
    members[index] = 1;
    // The count is published last: whoever reads it finds a complete row.
    __atomic_store_n(&registered, index + 1, __ATOMIC_RELEASE);
    return (index + 1) * orv::streams::main_id_unit;
}

ORV_API int32_t __kuzGetNumRegBrngs() { return registered; }

ORV_API int32_t __kuzGetStreamStateBrng(const Stream* stream) { return stream->brngId; }

namespace orv::streams {

int32_t check_creatable(const Place& place) {
    const int32_t status = __kuzIsBrngValid(place.table, place.row, place.member);
    if (status < 0) return status;
    if (place.row < 0 || place.member < 0) return BrngStatusBadId;
    const BrngProperties& found = place.table[place.row];
    const bool complete = found.initStream && found.sBRng && found.dBRng && found.iBRng;
    return complete ? StatusOk : BrngStatusBadId;
}

}  // namespace orv::streams
