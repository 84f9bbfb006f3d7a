// What can be asked of the basic pass, as data: the estimates, the arrays that each needs, the statuses of missing ones.
#pragma once

#include "stats/task.h"

namespace orv::stats {

// A result array of the task; bit `index` of a set of arrays stands for it.
struct Estimate {
    uint64_t mask;    // its bit in the caller's word
    uint16_t offset;  // of its field in the task
    uint8_t order;    // of the highest moment that goes into it
    int32_t missing;  // status if the field is null
};

// clang-format off
enum Array : int32_t {
    array_mean, array_raw2, array_raw3, array_raw4,
    array_central2, array_central3, array_central4,
    array_cov, array_cor,
    array_kurtosis, array_skewness, array_variation,
    array_sum, array_raw_sum2, array_raw_sum3, array_raw_sum4,
    array_central_sum2, array_central_sum3, array_central_sum4,
    array_cp,
    array_count
};

#define ORV_ROW(name, field, order, status) \
    { ORV_SS_##name, offsetof(SSTask, field), order, SSStatus##status }

inline constexpr Estimate estimates_table[array_count] = {
    ORV_ROW(MEAN,            mean,           1, Mean),
    ORV_ROW(RAW_MOMENT2,     rawMoment2,     2, RawMoment2),
    ORV_ROW(RAW_MOMENT3,     rawMoment3,     3, RawMoment3),
    ORV_ROW(RAW_MOMENT4,     rawMoment4,     4, RawMoment4),
    ORV_ROW(CENTRAL_MOMENT2, centralMoment2, 2, CentralMoment2),
    ORV_ROW(CENTRAL_MOMENT3, centralMoment3, 3, CentralMoment3),
    ORV_ROW(CENTRAL_MOMENT4, centralMoment4, 4, CentralMoment4),
    ORV_ROW(COV,             cov,            1, Cov),
    ORV_ROW(COR,             cor,            1, Cor),
    ORV_ROW(KURTOSIS,        kurtosis,       4, Kurtosis),
    ORV_ROW(SKEWNESS,        skewness,       3, Skewness),
    ORV_ROW(VARIATION,       variation,      2, Variation),
    ORV_ROW(SUM,             sum,            1, Sum),
    ORV_ROW(RAW_SUM2,        rawSum2,        2, RawSum2),
    ORV_ROW(RAW_SUM3,        rawSum3,        3, RawSum3),
    ORV_ROW(RAW_SUM4,        rawSum4,        4, RawSum4),
    ORV_ROW(CENTRAL_SUM2,    centralSum2,    2, CentralSum2),
    ORV_ROW(CENTRAL_SUM3,    centralSum3,    3, CentralSum3),
    ORV_ROW(CENTRAL_SUM4,    centralSum4,    4, CentralSum4),
    ORV_ROW(CP,              cp,             1, CP),
};

// The arrays that must exist for each estimate, row by row as above. Under the methods without data, sums and cross-product
// are inputs: asking for one asks for an array that there never is, whose status is that of a bad method.
inline constexpr int32_t array_never = array_count;

struct Needs {
    uint32_t centred;    // BasicOnePass, BasicUserMean
    uint32_t fast;       // BasicFast
    uint32_t from_sums;  // BasicFromCrossProduct, BasicFromSums
};

inline constexpr Needs needs_table[array_count] = {
    {0x1,     0x1,     0x1001},
    {0x2,     0x2,     0x2002},
    {0x4,     0x4,     0x4004},
    {0x8,     0x8,     0x8008},
    {0x13,    0x13,    0x10010},
    {0x27,    0x27,    0x20020},
    {0x4f,    0x4f,    0x40040},
    {0x81,    0x81,    0x80080},
    {0x101,   0x101,   0x80100},
    {0x25f,   0x25f,   0x251},
    {0x437,   0x437,   0x431},
    {0x813,   0x813,   0x811},
    {0x1000,  0x1000,  0x100000},
    {0x2000,  0x2000,  0x100000},
    {0x4000,  0x4000,  0x100000},
    {0x8000,  0x8000,  0x100000},
    {0x10001, 0x10003, 0x100000},
    {0x20001, 0x20007, 0x100000},
    {0x40001, 0x4000f, 0x100000},
    {0x80001, 0x80001, 0x100000},
};
// clang-format on
#undef ORV_ROW

inline constexpr uint32_t bit(int32_t array) { return uint32_t{1} << array; }
inline constexpr uint32_t matrix_arrays = bit(array_cov) | bit(array_cor) | bit(array_cp);

inline void* array_of(const SSTask* task, int32_t array) {
    void* at;
    __builtin_memcpy(&at, reinterpret_cast<const char*>(task) + estimates_table[array].offset, sizeof at);
    return at;
}

}  // namespace orv::stats
