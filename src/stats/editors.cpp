// The editors: one table of the fields, by id, and one list of the groups.
#include "platform/export.h"
#include "stats/task.h"

#include <string.h>

namespace {

enum Kind : uint8_t { integer, data };

struct Field {
    uint8_t id;
    Kind kind;
    uint16_t offset;
    int32_t status_if_null;
};

#define FIELD(name) offsetof(SSTask, name)

// Row i holds id i + 1. A missing `sum` is reported as a missing mean when it is edited, and under its own status when an
// estimate needs it: both are fixed by the interface.
// clang-format off
constexpr Field fields[] = {
    {1, integer, FIELD(p), SSStatusP},
    {2, integer, FIELD(n), SSStatusN},
    {3, data, FIELD(x), SSStatusX},
    {4, integer, FIELD(xStorage), SSStatusStorage},
    {5, integer, FIELD(indices), SSStatusIndices},
    {6, data, FIELD(w), SSStatusW},
    {7, data, FIELD(mean), SSStatusMean},
    {8, data, FIELD(rawMoment2), SSStatusRawMoment2},
    {9, data, FIELD(rawMoment3), SSStatusRawMoment3},
    {10, data, FIELD(rawMoment4), SSStatusRawMoment4},
    {11, data, FIELD(centralMoment2), SSStatusCentralMoment2},
    {12, data, FIELD(centralMoment3), SSStatusCentralMoment3},
    {13, data, FIELD(centralMoment4), SSStatusCentralMoment4},
    {14, data, FIELD(kurtosis), SSStatusKurtosis},
    {15, data, FIELD(skewness), SSStatusSkewness},
    {16, data, FIELD(minimum), SSStatusMinimum},
    {17, data, FIELD(maximum), SSStatusMaximum},
    {18, data, FIELD(variation), SSStatusVariation},
    {19, data, FIELD(cov), SSStatusCov},
    {20, integer, FIELD(covStorage), SSStatusStorage},
    {21, data, FIELD(cor), SSStatusCor},
    {22, integer, FIELD(corStorage), SSStatusStorage},
    {23, data, FIELD(accumWeight), SSStatusAccumWeight},
    {24, integer, FIELD(quantOrderCount), SSStatusQuantOrderCount},
    {25, data, FIELD(quantOrders), SSStatusQuantOrders},
    {26, data, FIELD(quantiles), SSStatusQuantiles},
    {27, data, FIELD(orderStats), SSStatusOrderStats},
    {28, integer, FIELD(pooledGroupCount), SSStatusPooledGroup},
    {29, integer, FIELD(pooledExtra29), SSStatusStorage},
    {30, data, FIELD(pooledResultMean), SSStatusPooledResultMean},
    {31, data, FIELD(pooledResultCov), SSStatusPooledResultCov},
    {32, integer, FIELD(pooledGroupIndices), SSStatusPooledGroup},
    {33, data, FIELD(pooledMean), SSStatusPooledMean},
    {34, integer, FIELD(pooledExtra34), SSStatusStorage},
    {35, data, FIELD(pooledCov), SSStatusPooledCov},
    {36, integer, FIELD(robustMethod), SSStatusStorage},
    {37, integer, FIELD(robustParamCount), SSStatusRobustParamCount},
    {38, data, FIELD(robustParams), SSStatusRobustParams},
    {39, data, FIELD(robustMean), SSStatusRobustMean},
    {40, data, FIELD(robustCov), SSStatusRobustCov},
    {41, integer, FIELD(outlierParamCount), SSStatusOutlierParamCount},
    {42, data, FIELD(outlierParams), SSStatusOutlierParams},
    {43, data, FIELD(outlierWeights), SSStatusOutlierWeights},
    {44, integer, FIELD(orderStatsStorage), SSStatusStorage},
    {45, integer, FIELD(partialCountA), SSStatusPartialCountA},
    {46, data, FIELD(partialCov), SSStatusPartialCov},
    {47, integer, FIELD(partialCovStorage), SSStatusStorage},
    {48, data, FIELD(partialCor), SSStatusPartialCor},
    {49, integer, FIELD(partialCorStorage), SSStatusStorage},
    {50, integer, FIELD(missMethod), SSStatusStorage},
    {51, data, FIELD(missMatrix), SSStatusMissMatrix},
    {52, integer, FIELD(missCountA), SSStatusMissCountA},
    {53, data, FIELD(missMean), SSStatusMissMean},
    {54, integer, FIELD(missCountC), SSStatusMissCountC},
    {55, data, FIELD(missCor), SSStatusMissCor},
    {56, integer, FIELD(missCountD), SSStatusMissCountD},
    {57, data, FIELD(missStorage), SSStatusMissStorage},
    {58, integer, FIELD(missCountB), SSStatusMissCountB},
    {59, data, FIELD(missCov), SSStatusMissCov},
    {60, data, FIELD(corParamResult), SSStatusCorParamResult},
    {61, integer, FIELD(corParamStorage), SSStatusStorage},
    {62, integer, FIELD(streamParamCount), SSStatusStreamParamCount},
    {63, data, FIELD(streamParams), SSStatusStreamParams},
    {64, integer, FIELD(streamOrderCount), SSStatusStreamOrderCount},
    {65, data, FIELD(streamOrders), SSStatusStreamOrders},
    {66, data, FIELD(streamQuantiles), SSStatusStreamQuantiles},
    {67, data, FIELD(sum), SSStatusMean},
    {68, data, FIELD(rawSum2), SSStatusRawSum2},
    {69, data, FIELD(rawSum3), SSStatusRawSum3},
    {70, data, FIELD(rawSum4), SSStatusRawSum4},
    {71, data, FIELD(centralSum2), SSStatusCentralSum2},
    {72, data, FIELD(centralSum3), SSStatusCentralSum3},
    {73, data, FIELD(centralSum4), SSStatusCentralSum4},
    {74, data, FIELD(cp), SSStatusCP},
    {75, integer, FIELD(cpStorage), SSStatusStorage},
    {76, data, FIELD(robustEstimates2), SSStatusRobustEstimates2},
    {77, data, FIELD(robustEstimates1), SSStatusRobustEstimates1},
    {78, data, FIELD(extraData), SSStatusExtraData},
    {79, integer, FIELD(extraInt), SSStatusStorage},
};
// clang-format on

constexpr bool ids_are_in_order() {
    for (size_t row = 0; row < sizeof fields / sizeof *fields; ++row)
        if (fields[row].id != row + 1) return false;
    return true;
}
static_assert(ids_are_in_order());

constexpr uint64_t field_count = sizeof fields / sizeof *fields;

void store(SSTask* task, const Field& field, const void* value) {
    memcpy(reinterpret_cast<char*>(task) + field.offset, &value, sizeof value);
}

// Ids are compared as 64-bit words: below the range they wrap to above it.
int32_t edit(SSTask* task, Kind kind, int64_t id, const void* value) {
    if (!task) return SSStatusNullTask;
    const uint64_t row = static_cast<uint64_t>(id) - 1;
    if (row >= field_count || fields[row].kind != kind) return SSStatusBadId;
    if (!value) return fields[row].status_if_null;
    store(task, fields[row], value);
    return SSStatusOk;
}

template <size_t count>
int32_t edit_group(SSTask* task, const uint8_t (&ids)[count], const void* const (&values)[count]) {
    if (!task) return SSStatusNullTask;
    for (size_t i = 0; i < count; ++i)
        if (values[i]) store(task, fields[ids[i] - 1], values[i]);
    return SSStatusOk;
}

}  // namespace

ORV_API int32_t __kuzdSSEditTask(SSTask* task, int64_t id, const double* value) { return edit(task, data, id, value); }
ORV_API int32_t __kuzsSSEditTask(SSTask* task, int64_t id, const float* value) { return edit(task, data, id, value); }
ORV_API int32_t __kuziSSEditTask(SSTask* task, int64_t id, const void* value) { return edit(task, integer, id, value); }

#define PARAMETERS_3 const void *a, const void *b, const void *c
#define PARAMETERS_4 PARAMETERS_3, const void* d
#define PARAMETERS_5 PARAMETERS_4, const void* e
#define PARAMETERS_6 PARAMETERS_5, const void* f
#define PARAMETERS_7 PARAMETERS_6, const void* g
#define PARAMETERS_9 PARAMETERS_7, const void *h, const void *i
#define PARAMETERS_10 PARAMETERS_9, const void* j
#define VALUES_3 a, b, c
#define VALUES_4 VALUES_3, d
#define VALUES_5 VALUES_4, e
#define VALUES_6 VALUES_5, f
#define VALUES_7 VALUES_6, g
#define VALUES_9 VALUES_7, h, i
#define VALUES_10 VALUES_9, j

// The number of arguments, and the ids of the fields that they go to, in order.
#define GROUPED_EDITOR(Name, count, ...)                                   \
    ORV_API int32_t __kuzdSSEdit##Name(SSTask* task, PARAMETERS_##count) { \
        return edit_group(task, {__VA_ARGS__}, {VALUES_##count});          \
    }                                                                      \
    ORV_API int32_t __kuzsSSEdit##Name(SSTask* task, PARAMETERS_##count) { \
        return edit_group(task, {__VA_ARGS__}, {VALUES_##count});          \
    }

// clang-format off
GROUPED_EDITOR(Moments, 7, 7, 8, 9, 10, 11, 12, 13)
GROUPED_EDITOR(Sums, 7, 67, 68, 69, 70, 71, 72, 73)
GROUPED_EDITOR(CovCor, 5, 7, 19, 20, 21, 22)
GROUPED_EDITOR(CP, 4, 7, 67, 74, 75)
GROUPED_EDITOR(MtxParametrz, 4, 21, 22, 60, 61)
GROUPED_EDITOR(OutDetect, 3, 41, 42, 43)
GROUPED_EDITOR(PooledCovariance, 6, 28, 30, 31, 32, 33, 35)
GROUPED_EDITOR(PartialCovCor, 9, 45, 19, 20, 21, 22, 46, 47, 48, 49)
GROUPED_EDITOR(Quantiles, 5, 24, 25, 26, 27, 44)
GROUPED_EDITOR(StreamQuantiles, 5, 64, 65, 66, 62, 63)
GROUPED_EDITOR(RCov, 5, 36, 37, 38, 39, 40)
GROUPED_EDITOR(MissingVals, 10, 50, 51, 52, 53, 58, 59, 54, 55, 56, 57)
// clang-format on
