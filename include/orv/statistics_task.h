/* The task of the summary statistics: its record, the ids of its fields, the statuses, and the entries that make, edit and
 * delete it. statistics.h, which includes this, has an example and what is computed. */
#ifndef ORV_STATISTICS_TASK_H
#define ORV_STATISTICS_TASK_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The task --------------------------------------------------------------------------------------------------- */

typedef struct SSTask SSTask;

/* 94 words of 32 bits, zero where not set. "data" is float or double, "integer" 32-bit or 64-bit, by the form of the task. p is the number of
 * components, n the number of observations. The number before each comment is the id under which an editor stores the
 * field. */
struct SSTask {
    int32_t wideInts;  /*     nonzero: every integer reached through a pointer is 64-bit */
    uint8_t recordTag; /*     2 */
    uint8_t reserved[3];
    int32_t isDouble;               /*     1 for doubles, 0 for floats */
    const void* p;                  /*  1  integer */
    const void* n;                  /*  2  integer */
    const void* indices;            /*  5  p integers: a component with the value 0 does not take part */
    const void* x;                  /*  3  p * n data: the observations */
    const void* w;                  /*  6  n data: the weights, not negative; null: each is 1 */
    void* accumWeight;              /* 23  2 data: the sum of the weights so far, and of their squares */
    const void* xStorage;           /*  4  integer: StorageRows or StorageColumns */
    void* corParamResult;           /* 60  data */
    const void* corParamStorage;    /* 61  integer */
    void* mean;                     /*  7  p data, and so are the arrays up to maximum */
    void* rawMoment2;               /*  8 */
    void* rawMoment3;               /*  9 */
    void* rawMoment4;               /* 10 */
    void* centralMoment2;           /* 11 */
    void* centralMoment3;           /* 12 */
    void* centralMoment4;           /* 13 */
    void* sum;                      /* 67 */
    void* rawSum2;                  /* 68 */
    void* rawSum3;                  /* 69 */
    void* rawSum4;                  /* 70 */
    void* centralSum2;              /* 71 */
    void* centralSum3;              /* 72 */
    void* centralSum4;              /* 73 */
    void* kurtosis;                 /* 14 */
    void* skewness;                 /* 15 */
    void* variation;                /* 18 */
    void* minimum;                  /* 16 */
    void* maximum;                  /* 17 */
    const void* covStorage;         /* 20  integer: a matrix form, see below */
    void* cov;                      /* 19  covariance matrix */
    const void* corStorage;         /* 22  integer */
    void* cor;                      /* 21  correlation matrix */
    const void* cpStorage;          /* 75  integer */
    void* cp;                       /* 74  cross-product matrix of the centred observations */
    const void* pooledGroupCount;   /* 28  integer */
    const void* pooledGroupIndices; /* 32  integer */
    void* pooledMean;               /* 33  data */
    void* pooledCov;                /* 35  data */
    const void* pooledExtra34;      /* 34  integer */
    void* pooledResultMean;         /* 30  data */
    void* pooledResultCov;          /* 31  data */
    const void* pooledExtra29;      /* 29  integer */
    const void* quantOrderCount;    /* 24  integer: number of quantile orders */
    void* quantOrders;              /* 25  data */
    void* quantiles;                /* 26  data */
    void* orderStats;               /* 27  data: the observations in order */
    const void* orderStatsStorage;  /* 44  integer */
    const void* streamOrderCount;   /* 64  integer */
    void* streamOrders;             /* 65  data */
    void* streamQuantiles;          /* 66  data */
    const void* streamParamCount;   /* 62  integer */
    void* streamParams;             /* 63  data */
    void* robustEstimates1;         /* 77  data */
    void* robustEstimates2;         /* 76  data */
    const void* robustParamCount;   /* 37  integer */
    void* robustParams;             /* 38  data */
    void* robustMean;               /* 39  data */
    void* robustCov;                /* 40  data */
    const void* robustMethod;       /* 36  integer: the matrix form of robustCov */
    const void* outlierParamCount;  /* 41  integer */
    void* outlierParams;            /* 42  data */
    void* outlierWeights;           /* 43  data */
    const void* partialCountA;      /* 45  integer */
    void* partialCov;               /* 46  data */
    const void* partialCovStorage;  /* 47  integer */
    void* partialCor;               /* 48  data */
    const void* partialCorStorage;  /* 49  integer */
    const void* missMethod;         /* 50  integer */
    void* missMatrix;               /* 51  data */
    const void* missCountA;         /* 52  integer */
    void* missMean;                 /* 53  data */
    const void* missCountB;         /* 58  integer */
    void* missCov;                  /* 59  data */
    const void* missCountC;         /* 54  integer */
    void* missCor;                  /* 55  data */
    const void* missCountD;         /* 56  integer */
    void* missStorage;              /* 57  data */
    int32_t cleanupCount;           /*     how often `cleanup` is called when the task is deleted */
    void (*cleanup)(SSTask* task);
    void* extraData;      /* 78  data */
    const void* extraInt; /* 79  integer */
    void* ownedBuffer;    /*     the one block that the task owns */
    int32_t ownedTenant;  /*     whose numbers it holds, 0 nobody's: compute entries name themselves here */
    int32_t ownedCount;   /*     the number of components that they are about */
    uint32_t ownedBytes;  /*     its size */
    void* streamSummary;  /*     of the streaming quantiles; __kuzSQuantilesFreeBuffers frees it */
    int32_t unused[5];
};

/* The ids that the compute entries of this header read and write; the others are in the comments above. */
enum {
    SSIdP = 1,
    SSIdN = 2,
    SSIdX = 3,
    SSIdXStorage = 4,
    SSIdIndices = 5,
    SSIdW = 6,
    SSIdMean = 7,
    SSIdRawMoment2 = 8,
    SSIdRawMoment3 = 9,
    SSIdRawMoment4 = 10,
    SSIdCentralMoment2 = 11,
    SSIdCentralMoment3 = 12,
    SSIdCentralMoment4 = 13,
    SSIdKurtosis = 14,
    SSIdSkewness = 15,
    SSIdMinimum = 16,
    SSIdMaximum = 17,
    SSIdVariation = 18,
    SSIdCov = 19,
    SSIdCovStorage = 20,
    SSIdCor = 21,
    SSIdCorStorage = 22,
    SSIdAccumWeight = 23,
    SSIdQuantOrderCount = 24,
    SSIdQuantOrders = 25,
    SSIdQuantiles = 26,
    SSIdOrderStats = 27,
    SSIdPooledGroupCount = 28,
    SSIdPooledResultCovStorage = 29,
    SSIdPooledResultMean = 30,
    SSIdPooledResultCov = 31,
    SSIdPooledGroupIndices = 32,
    SSIdPooledMean = 33,
    SSIdPooledCovStorage = 34,
    SSIdPooledCov = 35,
    SSIdRobustCovStorage = 36,
    SSIdRobustParamCount = 37,
    SSIdRobustParams = 38,
    SSIdRobustMean = 39,
    SSIdRobustCov = 40,
    SSIdOutlierParamCount = 41,
    SSIdOutlierParams = 42,
    SSIdOutlierWeights = 43,
    SSIdOrderStatsStorage = 44,
    SSIdPartialVariables = 45,
    SSIdPartialCov = 46,
    SSIdPartialCovStorage = 47,
    SSIdPartialCor = 48,
    SSIdPartialCorStorage = 49,
    SSIdMissMethod = 50,
    SSIdMissMatrix = 51,
    SSIdMissCountA = 52,
    SSIdMissMean = 53,
    SSIdMissCountC = 54,
    SSIdMissCor = 55,
    SSIdMissCountD = 56,
    SSIdMissStorage = 57,
    SSIdMissCountB = 58,
    SSIdMissCov = 59,
    SSIdCorParamResult = 60,
    SSIdCorParamStorage = 61,
    SSIdStreamParamCount = 62,
    SSIdStreamParams = 63,
    SSIdStreamOrderCount = 64,
    SSIdStreamOrders = 65,
    SSIdStreamQuantiles = 66,
    SSIdSum = 67,
    SSIdRawSum2 = 68,
    SSIdRawSum3 = 69,
    SSIdRawSum4 = 70,
    SSIdCentralSum2 = 71,
    SSIdCentralSum3 = 72,
    SSIdCentralSum4 = 73,
    SSIdCP = 74,
    SSIdCPStorage = 75,
    SSIdRobustEstimates2 = 76,
    SSIdRobustEstimates1 = 77,
    SSIdExtraData = 78,
    SSIdExtraInt = 79
};

/* Storage forms of `x`: component j of observation i is x[j * n + i] with rows, x[i * p + j] with columns. */
enum { StorageRows = 0x10000, StorageColumns = 0x20000 };

/* Storage forms of a symmetric result matrix. SSMatrixFull is p * p values, both triangles. The packed forms are
 * p * (p + 1) / 2 values: the lower triangle by rows, which is the upper by columns, or the upper triangle by rows. Only
 * the two low bits are read: bit 1 means packed lower, else bit 0 full, else packed upper. */
enum { SSMatrixPackedUpper = 0, SSMatrixFull = 1, SSMatrixPackedLower = 2 };

/* Statuses. An editor given a null pointer returns the status of that field, and so does a compute entry that misses it. */
enum {
    SSStatusOk = 0,
    SSStatusBadId = -3,
    SSStatusAllocation = -4000,
    SSStatusP = -4001,
    SSStatusN = -4002,
    SSStatusStorageValue = -4003,
    SSStatusIndices = -4004,
    SSStatusW = -4005,
    SSStatusMean = -4006,
    SSStatusRawMoment2 = -4007,
    SSStatusRawMoment3 = -4008,
    SSStatusRawMoment4 = -4009,
    SSStatusCentralMoment2 = -4010,
    SSStatusCentralMoment3 = -4011,
    SSStatusCentralMoment4 = -4012,
    SSStatusKurtosis = -4013,
    SSStatusSkewness = -4014,
    SSStatusMinimum = -4015,
    SSStatusMaximum = -4016,
    SSStatusVariation = -4017,
    SSStatusCov = -4018,
    SSStatusCor = -4019,
    SSStatusAccumWeight = -4020,
    SSStatusQuantOrders = -4021,
    SSStatusQuantOrderCount = -4022,
    SSStatusQuantiles = -4023,
    SSStatusOrderStats = -4024,
    SSStatusNotPositiveDefinite = -4025, /* a matrix that must be is not, in the sense of its Cholesky factor */
    SSStatusRobustCov = -4027,
    SSStatusRobustMean = -4028,
    SSStatusMethod = -4029,
    SSStatusEstimates = -4030,
    SSStatusNullTask = -4031,
    SSStatusX = -4032,
    SSStatusPooledResultCov = -4034,
    SSStatusPooledResultMean = -4035,
    SSStatusPooledCov = -4036,
    SSStatusPooledMean = -4037,
    SSStatusPooledGroup = -4038,
    SSStatusOutlierParams = -4039,
    SSStatusOutlierParamCount = -4040,
    SSStatusOutlierWeights = -4041,
    SSStatusRobustParams = -4042,
    SSStatusRobustParamCount = -4043,
    SSStatusStorage = -4044,
    SSStatusPartialCountA = -4045,
    SSStatusPartialCov = -4046,
    SSStatusPartialCor = -4047,
    SSStatusMissMatrix = -4048,
    SSStatusMissCountA = -4049,
    SSStatusMissMean = -4053,
    SSStatusMissCor = -4054,
    SSStatusMissCountC = -4055,
    SSStatusMissCountD = -4056,
    SSStatusMissStorage = -4057,
    SSStatusMissCountB = -4061,
    SSStatusMissCov = -4062,
    SSStatusStreamParams = -4065,
    SSStatusStreamParamCount = -4066,
    SSStatusStreamOrders = -4068,
    SSStatusStreamOrderCount = -4069,
    SSStatusStreamQuantiles = -4070,
    SSStatusCorParamResult = -4071,
    SSStatusSum = -4074,
    SSStatusRawSum2 = -4075,
    SSStatusRawSum3 = -4076,
    SSStatusRawSum4 = -4077,
    SSStatusCentralSum2 = -4078,
    SSStatusCentralSum3 = -4079,
    SSStatusCentralSum4 = -4080,
    SSStatusCP = -4081,
    SSStatusRobustEstimates2 = -4082,
    SSStatusRobustEstimates1 = -4083,
    SSStatusExtraData = -4084
};

/* ---- Making and deleting ---------------------------------------------------------------------------------------- */

/* Makes a task and stores its address in *task.
 *
 * p, n, xStorage: pointers to integers; x: the observations; w: weights or null; indices: p integers or null; all are kept
 * in the task as they are. wideInts: nonzero if the integers are 64-bit. With x null the task is made without a look at n
 * and xStorage, which may then be null.
 *
 * Returns 0, or, in this order of checks: SSStatusP (p null or not above 0), SSStatusStorage (xStorage null),
 * SSStatusStorageValue (neither StorageRows nor StorageColumns), SSStatusN (n null or not above 0), and *task is untouched;
 * SSStatusAllocation, and *task is null. A null `task` returns SSStatusNullTask. */
int32_t __kuzdSSNewTask(SSTask** task, const void* p, const void* n, const void* xStorage, const double* x,
                        const double* w, const void* indices, int32_t wideInts);
int32_t __kuzsSSNewTask(SSTask** task, const void* p, const void* n, const void* xStorage, const float* x,
                        const float* w, const void* indices, int32_t wideInts);

/* Gives back what the task owns, calls its clean-up function `cleanupCount` times, gives back the record and stores null in
 * *task. A null address, or a null task at it, is left alone. Returns 0. */
int32_t __kuzSSDeleteTask(SSTask** task);

/* ---- Editing ---------------------------------------------------------------------------------------------------- */

/* Stores a pointer in the field of the given id: the d and s forms data pointers, the i form integer pointers.
 * Returns 0, or SSStatusNullTask, SSStatusBadId (no such id, or one of the other form), or the field's own status when
 * `value` is null; then nothing is stored. The status for a null `sum` is SSStatusMean here. */
int32_t __kuzdSSEditTask(SSTask* task, int64_t id, const double* value);
int32_t __kuzsSSEditTask(SSTask* task, int64_t id, const float* value);
int32_t __kuziSSEditTask(SSTask* task, int64_t id, const void* value);

/* The grouped editors store several pointers at once. A null argument leaves its field as it stands. Data pointers and
 * integer pointers are those of the fields of the same names. Return 0, or SSStatusNullTask for a null task. */
#define SS_GROUPED_EDITOR(Name, parameters) \
    int32_t __kuzdSSEdit##Name parameters;  \
    int32_t __kuzsSSEdit##Name parameters

SS_GROUPED_EDITOR(Moments, (SSTask * task, const void* mean, const void* rawMoment2, const void* rawMoment3,
                            const void* rawMoment4, const void* centralMoment2, const void* centralMoment3,
                            const void* centralMoment4));
SS_GROUPED_EDITOR(Sums, (SSTask * task, const void* sum, const void* rawSum2, const void* rawSum3, const void* rawSum4,
                         const void* centralSum2, const void* centralSum3, const void* centralSum4));
SS_GROUPED_EDITOR(CovCor, (SSTask * task, const void* mean, const void* cov, const void* covStorage, const void* cor,
                           const void* corStorage));
SS_GROUPED_EDITOR(CP, (SSTask * task, const void* mean, const void* sum, const void* cp, const void* cpStorage));
SS_GROUPED_EDITOR(MtxParametrz, (SSTask * task, const void* cor, const void* corStorage, const void* corParamResult,
                                 const void* corParamStorage));
SS_GROUPED_EDITOR(OutDetect, (SSTask * task, const void* outlierParamCount, const void* outlierParams,
                              const void* outlierWeights));
SS_GROUPED_EDITOR(PooledCovariance, (SSTask * task, const void* pooledGroupCount, const void* pooledResultMean,
                                     const void* pooledResultCov, const void* pooledGroupIndices,
                                     const void* pooledMean, const void* pooledCov));
SS_GROUPED_EDITOR(PartialCovCor,
                  (SSTask * task, const void* partialCountA, const void* cov, const void* covStorage, const void* cor,
                   const void* corStorage, const void* partialCov, const void* partialCovStorage,
                   const void* partialCor, const void* partialCorStorage));
SS_GROUPED_EDITOR(Quantiles, (SSTask * task, const void* quantOrderCount, const void* quantOrders,
                              const void* quantiles, const void* orderStats, const void* orderStatsStorage));
SS_GROUPED_EDITOR(StreamQuantiles,
                  (SSTask * task, const void* streamOrderCount, const void* streamOrders, const void* streamQuantiles,
                   const void* streamParamCount, const void* streamParams));
SS_GROUPED_EDITOR(RCov, (SSTask * task, const void* robustMethod, const void* robustParamCount,
                         const void* robustParams, const void* robustMean, const void* robustCov));
SS_GROUPED_EDITOR(MissingVals,
                  (SSTask * task, const void* missMethod, const void* missMatrix, const void* missCountA,
                   const void* missMean, const void* missCountB, const void* missCov, const void* missCountC,
                   const void* missCor, const void* missCountD, const void* missStorage));
#undef SS_GROUPED_EDITOR

#ifdef __cplusplus
}
#endif

#endif
