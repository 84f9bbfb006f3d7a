// The registry of generators: two tables of rows, the arithmetic of ids, and registration.
//
// A main id is (row + 1) << 20 plus the member of a family. Ids below 0x100000 are the older form: a row number, except
// that 4 to 276 name the members of the WH family, which all share row 4.
#include "platform/export.h"
#include "streams/record.h"

#include <orv/random.h>

namespace {

constexpr int32_t table_rows = 512;
constexpr int32_t builtin_rows = 16;
constexpr int32_t main_id_unit = 0x100000;
constexpr int32_t member_mask = 0xFFFFF;
constexpr int32_t small_row_limit = 281;
constexpr int32_t wh_row = 4;
constexpr int32_t wh_members = 273;
constexpr int32_t mt2203_row = 8;
constexpr int32_t mt2203_members = 6024;

// Rows by name, so that both tables hold the same. Null functions: the generator is not in this build.
constexpr BrngProperties mcg31m1 = {
    24, 1, 0, 4, 31, __kuzBRngMCG31M1InitStream, __kuzsBRngMCG31M1, __kuzdBRngMCG31M1, __kuziBRngMCG31M1};
constexpr BrngProperties r250 = {1024, 252, 1, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties mrg32k3a = {
    40, 6, 1, 4, 32, __kuzBRngMRG32K3AInitStream, __kuzsBRngMRG32K3A, __kuzdBRngMRG32K3A, __kuziBRngMRG32K3A};
constexpr BrngProperties mcg59 = {
    32, 1, 0, 8, 59, __kuzBRngMCG59InitStream, __kuzsBRngMCG59, __kuzdBRngMCG59, __kuziBRngMCG59};
constexpr BrngProperties wh = {48, 4, 1, 16, 24, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties sobol = {11712, 2604, 0, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties niederr = {84288, 10498, 0, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties mt19937 = {2520, 625, 1, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties mt2203 = {312, 70, 1, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties i_abstract = {40, 0, 1, 4, 32, nullptr, __kuzsBRngiAbstract, __kuzdBRngiAbstract, nullptr};
constexpr BrngProperties d_abstract = {56, 0, 1, 4, 32, nullptr, __kuzsBRngdAbstract, nullptr, __kuziBRngdAbstract};
constexpr BrngProperties s_abstract = {48, 0, 1, 4, 32, nullptr, nullptr, __kuzdBRngsAbstract, __kuziBRngsAbstract};
constexpr BrngProperties sfmt19937 = {2536, 625, 1, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties trng = {24, 1, 0, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties ars5 = {72, 8, 1, 4, 32, nullptr, nullptr, nullptr, nullptr};
constexpr BrngProperties philox4x32x10 = {64, 8, 1, 4, 32, nullptr, nullptr, nullptr, nullptr};

// 273 rows alike: 256 + 16 + 1.
#define ORV_ROWS_4(row) row, row, row, row
#define ORV_ROWS_16(row) ORV_ROWS_4(row), ORV_ROWS_4(row), ORV_ROWS_4(row), ORV_ROWS_4(row)
#define ORV_ROWS_64(row) ORV_ROWS_16(row), ORV_ROWS_16(row), ORV_ROWS_16(row), ORV_ROWS_16(row)
#define ORV_ROWS_256(row) ORV_ROWS_64(row), ORV_ROWS_64(row), ORV_ROWS_64(row), ORV_ROWS_64(row)

int32_t registered = builtin_rows;

// Parallel to __RegBrngsNew.
int32_t members[table_rows] = {
    1, 1, 1, 1, wh_members, 1, 1, 1, mt2203_members, 1, 1, 1, 1, 1, 1, 1,
};
static_assert(wh_row == 4 && mt2203_row == 8);

}  // namespace

// An initialised definition cannot carry the marks of an export.
// NOLINTBEGIN(readability-redundant-declaration)
ORV_API const BrngProperties __RegBrngs[table_rows];
ORV_API BrngProperties __RegBrngsNew[table_rows];
// NOLINTEND(readability-redundant-declaration)

const BrngProperties __RegBrngs[table_rows] = {
    mcg31m1, r250, mrg32k3a, mcg59, ORV_ROWS_256(wh), ORV_ROWS_16(wh), wh, sobol, niederr,
};

BrngProperties __RegBrngsNew[table_rows] = {
    mcg31m1, r250,       mrg32k3a,   mcg59,      wh,        sobol, niederr, mt19937,
    mt2203,  i_abstract, d_abstract, s_abstract, sfmt19937, trng,  ars5,    philox4x32x10,
};

ORV_API const BrngProperties* __kuzGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* member) {
    if (id >= main_id_unit) {
        *row = (id >> 20) - 1;
        *member = id & member_mask;
        return __RegBrngsNew;
    }
    const uint32_t wh_member = static_cast<uint32_t>(id) - wh_row;
    const bool of_wh = wh_member < wh_members;
    *row = of_wh ? wh_row : id;
    *member = of_wh ? static_cast<int32_t>(wh_member) : 0;
    return __RegBrngs;
}

ORV_API int32_t __kuzIsBrngValid(const BrngProperties* table, int32_t row, int32_t member) {
    if (table == __RegBrngs) return row < small_row_limit ? StatusOk : BrngStatusBadId;
    if (row < 0 || row >= registered) return BrngStatusBadId;
    return member < members[row] ? StatusOk : BrngStatusBadId;
}

ORV_API int32_t __kuzGetBrngProperties(int32_t id, BrngProperties* properties) {
    int32_t row, member;
    const BrngProperties* table = __kuzGetBrngBaseOffset(id, &row, &member);
    const int32_t status = __kuzIsBrngValid(table, row, member);
    if (status < 0) return status;
    if (row < 0) return BrngStatusBadId;  // a negative small id, which has no row to copy
    *properties = table[row];
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
    return (index + 1) * main_id_unit;
}

ORV_API int32_t __kuzGetNumRegBrngs() { return registered; }

ORV_API int32_t __kuzGetStreamStateBrng(const Stream* stream) { return stream->brngId; }

namespace orv::streams {

int32_t check_creatable(const BrngProperties* table, int32_t row, int32_t member) {
    const int32_t status = __kuzIsBrngValid(table, row, member);
    if (status < 0) return status;
    if (row < 0 || member < 0) return BrngStatusBadId;
    const BrngProperties& found = table[row];
    const bool complete = found.initStream && found.sBRng && found.dBRng && found.iBRng;
    return complete ? StatusOk : BrngStatusBadId;
}

}  // namespace orv::streams
