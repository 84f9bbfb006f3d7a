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

#undef ORV_ROW

inline constexpr uint32_t bit(int32_t array) { return uint32_t{1} << array; }

// Under the methods without data, sums and cross-product are inputs: asking for one asks for an array that there never is,
// whose status is that of a bad method.
inline constexpr int32_t array_never = array_count;

// The arrays that must exist for each estimate, row by row as above.
struct Needs {
    uint32_t centred;    // BasicOnePass, BasicUserMean
    uint32_t fast;       // BasicFast
    uint32_t from_sums;  // BasicFromCrossProduct, BasicFromSums
};

namespace needed {

constexpr uint32_t mean = bit(array_mean);
constexpr uint32_t raw2 = bit(array_raw2), raw3 = bit(array_raw3), raw4 = bit(array_raw4);
constexpr uint32_t to_2 = mean | raw2, to_3 = to_2 | raw3, to_4 = to_3 | raw4;
constexpr uint32_t central2 = bit(array_central2), central3 = bit(array_central3), central4 = bit(array_central4);
constexpr uint32_t cov = bit(array_cov), cor = bit(array_cor), cp = bit(array_cp);
constexpr uint32_t kurtosis = bit(array_kurtosis), skewness = bit(array_skewness), variation = bit(array_variation);
constexpr uint32_t sum = bit(array_sum);
constexpr uint32_t raw_sum2 = bit(array_raw_sum2), raw_sum3 = bit(array_raw_sum3), raw_sum4 = bit(array_raw_sum4);
constexpr uint32_t central_sum2 = bit(array_central_sum2), central_sum3 = bit(array_central_sum3),
                   central_sum4 = bit(array_central_sum4);
constexpr uint32_t never = bit(array_never);

inline constexpr Needs table[array_count] = {
    {mean,                                 mean,                                 mean | sum},
    {raw2,                                 raw2,                                 raw2 | raw_sum2},
    {raw3,                                 raw3,                                 raw3 | raw_sum3},
    {raw4,                                 raw4,                                 raw4 | raw_sum4},
    {to_2 | central2,                      to_2 | central2,                      central2 | central_sum2},
    {to_3 | central3,                      to_3 | central3,                      central3 | central_sum3},
    {to_4 | central4,                      to_4 | central4,                      central4 | central_sum4},
    {mean | cov,                           mean | cov,                           cov | cp},
    {mean | cor,                           mean | cor,                           cor | cp},
    {to_4 | central2 | central4 | kurtosis, to_4 | central2 | central4 | kurtosis, mean | central2 | central4 | kurtosis},
    {to_3 | central2 | central3 | skewness, to_3 | central2 | central3 | skewness, central2 | central3 | skewness | mean},
    {to_2 | central2 | variation,          to_2 | central2 | variation,          mean | central2 | variation},
    {sum,                                  sum,                                  never},
    {raw_sum2,                             raw_sum2,                             never},
    {raw_sum3,                             raw_sum3,                             never},
    {raw_sum4,                             raw_sum4,                             never},
    {mean | central_sum2,                  to_2 | central_sum2,                  never},
    {mean | central_sum3,                  to_3 | central_sum3,                  never},
    {mean | central_sum4,                  to_4 | central_sum4,                  never},
    {mean | cp,                            mean | cp,                            never},
};

}  // namespace needed
// clang-format on

inline constexpr uint32_t matrix_arrays = bit(array_cov) | bit(array_cor) | bit(array_cp);

inline void* array_of(const SSTask* task, int32_t array) {
    void* at;
    __builtin_memcpy(&at, reinterpret_cast<const char*>(task) + estimates_table[array].offset, sizeof at);
    return at;
}

}  // namespace orv::stats
