/* One-dimensional data fitting: splines, cell search, interpolation and integration, in `d` (double) and `s` (float).
 *
 *     #include <orv/fitting.h>
 *     #include <stdint.h>
 *     #include <stdio.h>
 *
 *     int main(void) {
 *         const double x[5] = {0, 1, 2, 3, 5}, y[5] = {0, 1, 8, 27, 125};  // x^3
 *         const double slopes[2] = {0, 75};                                // at the ends
 *         const double site = 2.5, from = 0, to = 4;
 *         const int32_t wanted[2] = {1, 1};                                // the value and the first derivative
 *         double coeffs[4 * 4], at[2], area;                               // four powers in each of four cells
 *         DFTask* task;
 *         int32_t status = orv_df_kernel_dNewTask1D(&task, 5, x, ORV_DF_BREAKS_NO_HINT, 1, y, ORV_DF_ROWS, 0);
 *         if (status == ORV_DF_OK)
 *             status = orv_df_kernel_dEditPPSpline1D(task, 4, ORV_DF_TYPE_NATURAL, ORV_DF_FIRST_FIRST, slopes, 0, NULL,
 *                                                    coeffs, ORV_DF_ROWS);
 *         if (status == ORV_DF_OK) status = orv_df_kernel_dDFNaturalCubicSpline1D(task, NULL, NULL, 0, NULL);
 *         if (status == ORV_DF_OK)
 *             status = orv_df_kernel_dDFInterpolate1D(task, ORV_DF_EVALUATE, 0, 1, &site, ORV_DF_SITES_NO_HINT, 2, wanted,
 *                                                     NULL, at, ORV_DF_ROWS, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
 *                                                     NULL, NULL);
 *         if (status == ORV_DF_OK)
 *             status = orv_df_kernel_dDFIntegrate1D(task, 0, 1, &from, ORV_DF_SITES_NO_HINT, &to, ORV_DF_SITES_NO_HINT,
 *                                                   NULL, &area, ORV_DF_ROWS, orv_serv_services());
 *         orv_df_kernel_DeleteTask(&task);
 *         if (status != ORV_DF_OK) return 1;
 *         printf("at 2.5: %.4f, slope %.3f; integral to 4: %.3f\n", at[0], at[1], area);
 *         return 0;
 *     }
 *
 * It prints
 *
 *     at 2.5: 15.6250, slope 18.750; integral to 4: 64.000
 *
 * A task record names a partition (n break points x[0] < x[1] < ... < x[n-1]), the functions tabulated on it, the spline
 * wanted, its conditions and the place for its coefficients. A construction kernel reads the task and writes the
 * coefficients; search, interpolation and integration read both. The task refers to the caller's arrays and never copies
 * or frees them. Kernels trust their caller: what a status below does not name is not checked.
 *
 * All counts and codes are 64-bit signed integers at the interface. Integer arrays of the caller (cells, derivative
 * requests) hold 64-bit integers when the task was made with `wideInts` not 0 and 32-bit integers otherwise. Every entry
 * has a `d` and an `s` form that differ only in the element type; the text tells the `d` form.
 *
 * Names. All entries begin with orv_df_kernel_, their element type follows (i: none in particular), then what they do: a
 * task's life (NewTask1D, Edit..., Query..., DeleteTask), or DF and a computation.
 *
 * Null pointers. `services` may be null everywhere: one thread. So may hints for data, callbacks and their parameters, data
 * of conditions that are not asked for, a request for derivatives, cells that are neither stored nor given, and, until the
 * computation that needs them, functions and coefficients. A null task is ORV_DF_NULL_TASK in the entries of its life;
 * computations do not look. errno is left alone: statuses say all. */
#ifndef ORV_FITTING_H
#define ORV_FITTING_H

#include <orv/services.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Statuses ---------------------------------------------------------------------------------------------------- */

typedef enum orv_df_status {
    ORV_DF_OK = 0,
    ORV_DF_NULL_TASK = -1000,
    ORV_DF_NO_MEMORY = -1001,
    ORV_DF_BAD_METHOD = -1002,      /* method not 0 (Linear, Natural); spline type not 0 or 1 (Quadratic) */
    ORV_DF_BAD_BREAK_COUNT = -1004, /* fewer breaks than the operation needs */
    ORV_DF_NULL_BREAKS = -1005,
    ORV_DF_BAD_BREAK_HINT = -1006,
    ORV_DF_BAD_FUNCTION_COUNT = -1007, /* zero functions with a pointer, or not positive */
    ORV_DF_NULL_FUNCTIONS = -1008,
    ORV_DF_BAD_FUNCTION_HINT = -1009, /* also: indexed access to interleaved functions */
    ORV_DF_BAD_SPLINE_ORDER = -1010,
    ORV_DF_BAD_SPLINE_TYPE = -1011,        /* also: order and type that do not go together */
    ORV_DF_BAD_INTERNAL_CONDITION = -1012, /* type unknown, or without data that it needs */
    ORV_DF_NULL_INTERNAL_DATA = -1013,
    ORV_DF_BAD_BOUNDARY_CONDITION = -1014,
    ORV_DF_NULL_BOUNDARY_DATA = -1015,
    ORV_DF_NULL_COEFFICIENTS = -1016,
    ORV_DF_BAD_COEFFICIENT_HINT = -1017,
    ORV_DF_NOT_PERIODIC = -1018, /* periodic ends asked for, first and last value of a function differ */
    ORV_DF_BAD_PARAMETER = -1019,
    ORV_DF_BAD_INDEX = -1020,
    ORV_DF_BAD_DATA_HINT = -1026,
    ORV_DF_BAD_RESULT_HINT = -1028,
    ORV_DF_BAD_INTEGRAL_HINT = -1034,
    ORV_DF_BAD_CHECK_FLAG = -1036,
    ORV_DF_NULL_RESULT = -1037,
    ORV_DF_SINGULAR = -1500 /* the tridiagonal system of a Natural spline has a zero or unordered pivot */
} orv_df_status;

/* ---- Codes ------------------------------------------------------------------------------------------------------- */

/* breakHint */
enum {
    ORV_DF_BREAKS_NO_HINT = 0,
    ORV_DF_BREAKS_NON_UNIFORM = 1, /* setting it with iEditVal rebuilds the bucket table */
    ORV_DF_BREAKS_QUASI_UNIFORM = 2,
    /* breaks holds the two ends alone; break i is breaks[0] + i (breaks[1] - breaks[0])/(n - 1) */
    ORV_DF_BREAKS_UNIFORM = 4
};

/* funcHint, coeffHint, resultHint */
enum {
    ORV_DF_NO_HINT = 0,
    ORV_DF_ROWS = 0x10,         /* one block, function after function */
    ORV_DF_COLUMNS = 0x20,      /* one block, interleaved by function */
    ORV_DF_ROW_POINTERS = 0x80, /* an array of its own for each function */
    ORV_DF_ROWS_BY_DERIVATIVE = 0x100,
    ORV_DF_COLUMNS_BY_DERIVATIVE = 0x200
};

/* hints for sites and for limits of integration */
enum {
    ORV_DF_SITES_NO_HINT = 0,
    ORV_DF_SITES_UNIFORM = 4, /* limits of integration only: the array holds the first and the last one */
    ORV_DF_SITES_SORTED = 0x40
};

/* bcType. bcData[0] belongs to the left end and bcData[1] to the right one, for all functions alike */
enum {
    ORV_DF_NO_CONDITION = 0,
    ORV_DF_NOT_A_KNOT = 1,
    ORV_DF_FREE_END = 2,
    ORV_DF_FIRST_LEFT = 4, /* the four bits, combined one left with one right */
    ORV_DF_FIRST_RIGHT = 8,
    ORV_DF_SECOND_LEFT = 16,
    ORV_DF_SECOND_RIGHT = 32,
    ORV_DF_FIRST_FIRST = 12,
    ORV_DF_FIRST_SECOND = 36,
    ORV_DF_SECOND_FIRST = 24,
    ORV_DF_SECOND_SECOND = 48,
    ORV_DF_PERIODIC = 64,
    ORV_DF_MIDDLE_VALUE = 0x80 /* Quadratic of type 0: bcData[0] is the value in the middle of the first cell */
};

/* splineType as the kernels read it; which kernel constructs a type is the caller's choice */
enum {
    ORV_DF_TYPE_DEFAULT = 0,
    ORV_DF_TYPE_KNOTS = 1, /* Quadratic with knots between the breaks; n cells in a coefficient block, not n - 1 */
    ORV_DF_TYPE_NATURAL = 2,
    ORV_DF_TYPE_HERMITE = 3,
    ORV_DF_TYPE_BESSEL = 4,
    ORV_DF_TYPE_AKIMA = 5,
    ORV_DF_TYPE_LOOK_UP = 6,    /* order 0: the value at a matching break, a quiet NaN elsewhere */
    ORV_DF_TYPE_RIGHT_STEP = 7, /* order 0: right-continuous step */
    ORV_DF_TYPE_LEFT_STEP = 8,  /* order 0: left-continuous step */
    ORV_DF_TYPE_HYMAN = 9
};

enum { ORV_DF_INTERNAL_KNOTS = 8 }; /* icType bit: icData holds the knots of a Quadratic of type 1 */

/* identifiers of EditPtr and QueryPtr */
enum {
    ORV_DF_BREAKS = 1,
    ORV_DF_FUNCTIONS = 2,
    ORV_DF_INTERNAL_DATA = 3,
    ORV_DF_BOUNDARY_DATA = 4,
    ORV_DF_COEFFICIENTS = 5
};

/* identifiers of iEditVal and iQueryVal */
enum {
    ORV_DF_BREAK_COUNT = 14,
    ORV_DF_BREAK_HINT = 15,
    ORV_DF_FUNCTION_COUNT = 16,
    ORV_DF_FUNCTION_HINT = 17,
    ORV_DF_SPLINE_ORDER = 18,
    ORV_DF_SPLINE_TYPE = 19,
    ORV_DF_INTERNAL_TYPE = 20,
    ORV_DF_BOUNDARY_TYPE = 21,
    ORV_DF_COEFFICIENT_HINT = 22,
    ORV_DF_CHECK_FLAG = 23
};

enum {                            /* bits of the `type` of interpolation */
       ORV_DF_EVALUATE = 1,       /* evaluate, with cells found here */
       ORV_DF_EVALUATE_CELLS = 2, /* evaluate, with the caller's cells */
       ORV_DF_STORE_CELLS = 4     /* store the cells found; alone, search only */
};

/* ---- The task record --------------------------------------------------------------------------------------------- */

/* 64-bit members stand at multiples of 8 on every platform. */
#if defined(__GNUC__)
#define ORV_DF_ALIGN8 __attribute__((aligned(8)))
#else
#define ORV_DF_ALIGN8
#endif

/* Bucket c of the partition: the break indices between which a site of that bucket lies. */
typedef struct orv_df_bucket {
    int32_t lo, hi;
} orv_df_bucket;

/* The task, to be changed through the operations below alone. It owns itself, funcs, coeffs and cellTable. */
typedef struct DFTask {
    int32_t wideInts; /* not 0: integer results and integer arrays are 64-bit */
    int8_t recordTag; /* 4 */
    int32_t isDouble; /* 1 in a task of the `d` creator, 0 in one of the `s` creator */
    int32_t editable; /* edits and queries do nothing unless this is 1, as it is from creation on */
    ORV_DF_ALIGN8 int64_t breakCount;
    const void* breaks;
    ORV_DF_ALIGN8 int64_t breakHint;
    ORV_DF_ALIGN8 int64_t funcCount;
    const void** funcs;   /* one pointer when interleaved, else one a function; null entries are yet to be set */
    int32_t funcCapacity; /* pointers that funcs has room for */
    ORV_DF_ALIGN8 int64_t funcHint;
    ORV_DF_ALIGN8 int64_t splineOrder; /* coefficients a cell */
    ORV_DF_ALIGN8 int64_t splineType;
    ORV_DF_ALIGN8 int64_t icType;
    const void* icData;
    ORV_DF_ALIGN8 int64_t bcType;
    const void* bcData;
    void** coeffs; /* one pointer a function */
    ORV_DF_ALIGN8 int64_t coeffHint;
    int32_t checkFlag;
    int32_t coeffCapacity;               /* pointers that coeffs has room for */
    ORV_DF_ALIGN8 int64_t cellTableSize; /* buckets; the table has two entries more */
    orv_df_bucket* cellTable;            /* null while there is none */
    ORV_DF_ALIGN8 union {
        double d;
        float s;
    } cellScale; /* buckets per unit of x, in the task's element type */
} DFTask;

/* ---- Task operations --------------------------------------------------------------------------------------------- */

/* Makes a task on `breakCount` (at least 2) ascending break points and `funcCount` tabulated functions, and stores it in
 * *task. breakHint: ORV_DF_BREAKS_...; with _UNIFORM `breaks` holds the two ends. funcHint: 0 and ORV_DF_ROWS: value of
 * function j at break k at funcs[j n + k]; ORV_DF_COLUMNS: at funcs[k funcCount + j]; ORV_DF_ROW_POINTERS: `funcs` is
 * the first function's array and the others are set with EditIdxPtr. `funcCount` may be 0 with `funcs` null. Unless the
 * partition is uniform a table of 16 to 1024 equal buckets over it is built, for searches in unsorted sites.
 * Returns, in the order of the tests, ORV_DF_BAD_BREAK_COUNT, _NULL_BREAKS, _BAD_BREAK_HINT, _BAD_FUNCTION_COUNT,
 * _NULL_FUNCTIONS, _BAD_FUNCTION_HINT, _NO_MEMORY. After the last one *task is null or a record to be deleted. */
int32_t orv_df_kernel_dNewTask1D(DFTask** task, int64_t breakCount, const double* breaks, int64_t breakHint,
                                 int64_t funcCount, const double* funcs, int64_t funcHint, int32_t wideInts);
int32_t orv_df_kernel_sNewTask1D(DFTask** task, int64_t breakCount, const float* breaks, int64_t breakHint,
                                 int64_t funcCount, const float* funcs, int64_t funcHint, int32_t wideInts);

/* Frees the task of either precision and sets *task to null. ORV_DF_NULL_TASK when it was null. */
int32_t orv_df_kernel_DeleteTask(DFTask** task);

/* Sets spline, conditions and coefficient array in one call. The coefficients of function j start at
 * coeffs + j splineOrder (n - 1), or j splineOrder n with splineType 1; with ORV_DF_ROW_POINTERS `coeffs` is the first
 * function's array and the others are set with EditIdxPtr. Null `coeffs` leaves the coefficient pointers as they are.
 * On an error what was set before it stays set. */
int32_t orv_df_kernel_dEditPPSpline1D(DFTask* task, int64_t splineOrder, int64_t splineType, int64_t bcType,
                                      const double* bcData, int64_t icType, const double* icData, double* coeffs,
                                      int64_t coeffHint);
int32_t orv_df_kernel_sEditPPSpline1D(DFTask* task, int64_t splineOrder, int64_t splineType, int64_t bcType,
                                      const float* bcData, int64_t icType, const float* icData, float* coeffs,
                                      int64_t coeffHint);

/* Sets one array of the task, by identifier ORV_DF_BREAKS to ORV_DF_COEFFICIENTS (which is written by construction).
 * Functions and coefficients follow the hints stored in the task. New breaks do not rebuild the bucket table. */
int32_t orv_df_kernel_dEditPtr(DFTask* task, int64_t id, const double* pointer);
int32_t orv_df_kernel_sEditPtr(DFTask* task, int64_t id, const float* pointer);

/* Sets one value of the task, by identifier ORV_DF_BREAK_COUNT to ORV_DF_CHECK_FLAG. Setting the break hint to
 * ORV_DF_BREAKS_NON_UNIFORM builds the bucket table anew from the stored partition; no other edit touches it. A new
 * function count or layout leaves the pointers as they are: what they lack is missing until EditPtr or EditIdxPtr sets it. */
int32_t orv_df_kernel_iEditVal(DFTask* task, int64_t id, int64_t value);

/* Sets the array of one function (id ORV_DF_FUNCTIONS, not when interleaved) or its coefficients (ORV_DF_COEFFICIENTS);
 * `index` is below funcCount. Where there is no room for the pointer yet room is made; ORV_DF_NO_MEMORY leaves the
 * pointers as they were. */
int32_t orv_df_kernel_dEditIdxPtr(DFTask* task, int64_t id, int64_t index, const double* pointer);
int32_t orv_df_kernel_sEditIdxPtr(DFTask* task, int64_t id, int64_t index, const float* pointer);

/* Reads one array, value, or array of one function back. Of functions and coefficients QueryPtr gives the first
 * pointer. An entry that was never set is null, as is the one after the last, for which QueryIdxPtr may be asked. iQueryVal writes 8 bytes if the task's `wideInts` is not 0 and the low 4 bytes otherwise. */
int32_t orv_df_kernel_dQueryPtr(const DFTask* task, int64_t id, double** result);
int32_t orv_df_kernel_sQueryPtr(const DFTask* task, int64_t id, float** result);
int32_t orv_df_kernel_iQueryVal(const DFTask* task, int64_t id, void* result);
int32_t orv_df_kernel_dQueryIdxPtr(const DFTask* task, int64_t id, int64_t index, double** result);
int32_t orv_df_kernel_sQueryIdxPtr(const DFTask* task, int64_t id, int64_t index, float** result);

/* ---- Cell search ------------------------------------------------------------------------------------------------- */

/* The cell of a site x is 0 below x[0], i where x[i-1] <= x < x[i], n - 1 at x[n-1], n above it and for a NaN. */

/* What a search callback is told of the partition. */
typedef struct orv_df_partition {
    ORV_DF_ALIGN8 int64_t breakCount;
    ORV_DF_ALIGN8 int64_t isUniform; /* 1: `breaks` holds the two ends alone */
    const void* breaks;              /* of the task's element type */
} orv_df_partition;

/* Finds the cells of *siteCount sites (of the task's element type). `cells` comes filled with -1; `unfinished` comes
 * filled with 0. Returns a negative status to end the search, which then returns it; 1000 when every cell is final; any
 * other value when the cells whose `unfinished` byte was set are guesses: the library then walks from each guess to the
 * site's cell, taking one that is not positive for 0. `param` is the caller's own. */
typedef int32_t (*orv_df_search_callback)(const int64_t* siteCount, const void* sites, int64_t* cells,
                                          uint8_t* unfinished, const orv_df_partition* partition, void* param);
enum { ORV_DF_CALLBACK_DONE = 1000 };

/* Finds the cell of each of `siteCount` sites. The method follows, first match first, from: `callback` given: UserDef
 * (UniUserDef on a uniform partition); breakHint uniform: Uniform; quasi-uniform: QuasiUniform; siteHint
 * ORV_DF_SITES_SORTED (sites ascend): Sorted; dataHint null or dataHint[1] = 0: Hybrid; dataHint[1] = 1: Peak, for sites
 * that crowd around cell dataHint[4], from 0 to n; any other dataHint: ORV_DF_BAD_DATA_HINT. `method` is not read.
 * `cells` holds 64-bit or 32-bit integers by the task's `wideInts`. Large searches without a callback are divided over
 * the threads of `services`, which may be null. A count below 1 writes nothing. */
int32_t orv_df_kernel_dDFSearch1D(const DFTask* task, int64_t method, int64_t siteCount, const double* sites,
                                  int64_t siteHint, const double* dataHint, void* cells,
                                  orv_df_search_callback callback, void* callbackParam, const orv_services* services);
int32_t orv_df_kernel_sDFSearch1D(const DFTask* task, int64_t method, int64_t siteCount, const float* sites,
                                  int64_t siteHint, const float* dataHint, void* cells, orv_df_search_callback callback,
                                  void* callbackParam, const orv_services* services);

/* The methods themselves. `state` is read and written by Sorted alone: the cell from which the next walk starts (0 to n).
 * `scale` is (n - 1)/(x[n-1] - x[0]) for Uniform and QuasiUniform, the task's cellScale for Hybrid, and the peak cell for
 * Peak, where it is truncated to an integer. `cellTable` is the task's, for Hybrid; null bisects the whole partition.
 * `callback` and `callbackParam` serve UserDef and UniUserDef. `flags` 1: `cells` holds 64-bit integers, 0: 32-bit ones;
 * the forms ending in 32 of Uniform, QuasiUniform, UserDef and UniUserDef store 32-bit integers whatever `flags` says,
 * those of Sorted, Peak and Hybrid are the same code under both names. On a uniform partition (Uniform, UniUserDef)
 * `breaks` holds the two ends. They return ORV_DF_OK or what the callback returned below 0. */
#define ORV_DF_SEARCH_METHOD(name, element)                                                                          \
    int32_t name(int64_t breakCount, const element* breaks, int64_t siteCount, const element* sites, int64_t* state, \
                 element scale, orv_df_search_callback callback, void* callbackParam, int64_t flags,                 \
                 const orv_df_bucket* cellTable, void* cells);                                                       \
    int32_t name##32(int64_t breakCount, const element* breaks, int64_t siteCount, const element* sites,             \
                     int64_t* state, element scale, orv_df_search_callback callback, void* callbackParam,            \
                     int64_t flags, const orv_df_bucket* cellTable, void* cells);
#define ORV_DF_SEARCH_METHODS(method)                                 \
    ORV_DF_SEARCH_METHOD(orv_df_kernel_dDF##method##Search1D, double) \
    ORV_DF_SEARCH_METHOD(orv_df_kernel_sDF##method##Search1D, float)
ORV_DF_SEARCH_METHODS(Uniform)
ORV_DF_SEARCH_METHODS(QuasiUniform)
ORV_DF_SEARCH_METHODS(Sorted)
ORV_DF_SEARCH_METHODS(Peak)
ORV_DF_SEARCH_METHODS(Hybrid)
ORV_DF_SEARCH_METHODS(UserDef)
ORV_DF_SEARCH_METHODS(UniUserDef)

/* ---- Construction ------------------------------------------------------------------------------------------------ */

/* Each kernel writes, for every function, cell i's coefficients c0, c1, ... of the powers of (x - x[i]), lowest first.
 * With h[i] = x[i+1] - x[i], s[i] = (y[i+1] - y[i])/h[i] and first derivatives m[i] at the breaks, a cubic cell has
 *   c0 = y[i],  c1 = m[i],  c2 = (3 s[i] - 2 m[i] - m[i+1])/h[i],  c3 = (m[i] + m[i+1] - 2 s[i])/h[i]^2.
 * Below, l is the last cell (n - 2), e the last break (n - 1).
 *
 * Arguments: the task; two that are not read; `method`, 0; the thread services, null for one thread.
 * Statuses, in the order of the tests: ORV_DF_BAD_METHOD (Linear and Natural, method not 0), ORV_DF_BAD_BREAK_COUNT
 * (least counts below), ORV_DF_BAD_FUNCTION_HINT, ORV_DF_BAD_BOUNDARY_CONDITION (bcType is none of NOT_A_KNOT, FREE_END,
 * FIRST_FIRST, FIRST_SECOND, SECOND_FIRST, SECOND_SECOND, PERIODIC; NO_CONDITION is taken by Akima alone),
 * ORV_DF_NULL_BOUNDARY_DATA (a derivative is to be given, or periodic with splineType 0 or 3, and bcData is null); then
 * ORV_DF_NULL_FUNCTIONS, ORV_DF_NULL_COEFFICIENTS, ORV_DF_NULL_INTERNAL_DATA, ORV_DF_NOT_PERIODIC (first and last value
 * of a function differ or are unordered), ORV_DF_NO_MEMORY.
 *
 * Linear (n >= 2; order 2): c0 = y[i], c1 = s[i]. The boundary code must be valid but has no effect beyond PERIODIC's
 *   comparison of the ends; FREE_END is the plain choice.
 *
 * Quadratic (n >= 2; order 3). splineType 0, with bcType MIDDLE_VALUE and bcData[0] = v: the C1 spline with knots at the
 *   breaks and value v in the middle of the first cell (all functions share v): m[0] = 4 (v - y[0])/h[0] - s[0],
 *   m[i+1] = 2 s[i] - m[i], cell i: y[i], m[i], (s[i] - m[i])/h[i].
 *   splineType 1, with icType's bit ORV_DF_INTERNAL_KNOTS: icData holds n - 1 knots t, x[i] < t[i] < x[i+1]. The spline is
 *   C1, interpolates at the breaks, and has n pieces: piece i lies between t[i-1] and t[i] (the outer pieces reach to the
 *   ends) and is y[i] + m[i] u + c2 u^2, u = x - x[i]. m solves the tridiagonal system that makes the derivative linear
 *   between neighbouring knots: with p[i] = t[i] - x[i], q[i] = x[i+1] - t[i] and the derivative at a knot
 *   v[i] = 2 s[i] - (p[i] m[i] + q[i] m[i+1])/h[i], the rows are q[i-1] v[i] + p[i] v[i-1] = (q[i-1] + p[i]) m[i]
 *   (de Boor, A Practical Guide to Splines, ch. VI). Ends: NOT_A_KNOT: the outer two pieces are one parabola; FREE_END:
 *   second derivative 0; FIRST_FIRST; FIRST_SECOND. Other codes: ORV_DF_BAD_BOUNDARY_CONDITION. n = 2 with NOT_A_KNOT:
 *   ORV_DF_BAD_BREAK_COUNT. No bit: ORV_DF_BAD_INTERNAL_CONDITION. Other splineType: ORV_DF_BAD_METHOD.
 *
 * NaturalCubic (n >= 2; 3 with NOT_A_KNOT): the C2 interpolating cubic (de Boor, ch. IV). Rows for m:
 *   m[i-1]/h[i-1] + 2 (1/h[i-1] + 1/h[i]) m[i] + m[i+1]/h[i] = 3 (s[i-1]/h[i-1] + s[i]/h[i]). Ends:
 *   NOT_A_KNOT: h[1] m[0] + (h[0]+h[1]) m[1] = ((3 h[0] + 2 h[1]) h[1] s[0] + h[0]^2 s[1])/(h[0]+h[1]), mirrored at the
 *     right (third derivative continuous at the second break); three breaks: the parabola through them;
 *   FREE_END: 2 m[0] + m[1] = 3 s[0], m[l] + 2 m[e] = 3 s[l] (second derivative 0);
 *   first derivative given: m[0] = bcData[0], m[e] = bcData[1];
 *   second given: 2 m[0] + m[1] = 3 s[0] - h[0] bcData[0]/2, m[l] + 2 m[e] = 3 s[l] + h[l] bcData[1]/2;
 *   PERIODIC: the interior row at x[0] = x[e] too, the cyclic system solved as a tridiagonal one and a rank-one change
 *     (Sherman & Morrison 1950). ORV_DF_SINGULAR when a pivot is zero or unordered.
 *
 * DefaultCubic (n >= 3): the second derivatives M at the n - 2 interior breaks are given in icData, function after
 *   function: c1 = s - h (2 M[i] + M[i+1])/6, c2 = M[i]/2, c3 = (M[i+1] - M[i])/(6 h). Ends:
 *   NOT_A_KNOT: M[0] = M[1] + (M[1] - M[2]) h[0]/h[1], mirrored at the right (three breaks: M[0] = M[2] = M[1]);
 *   FREE_END: 0; first derivative given: M[0] = 3 (s[0] - bcData[0])/h[0] - M[1]/2,
 *   M[e] = 3 (bcData[1] - s[l])/h[l] - M[l]/2; second given: bcData; PERIODIC: both bcData[0].
 *
 * Local cubics. m at the interior breaks comes from near-by data alone:
 *   HermiteCubic (n >= 3): given in icData, n - 2 values function after function.
 *   BesselCubic (n >= 4): the parabola through three points, m[i] = (h[i-1] s[i] + h[i] s[i-1])/(h[i-1] + h[i])
 *     (de Boor, ch. IV).
 *   AkimaCubic (n >= 5): m[i] = (w[i] s[i-1] + w[i-2] s[i])/(w[i] + w[i-2]), w[j] = |s[j+1] - s[j]|; the mean of s[i-1] and
 *     s[i] where the denominator is below 1e-10 (Akima, J. ACM 17 (1970) 589). At the breaks next to the ends the missing
 *     slope is 2 s[0] - s[1] (2 s[l] - s[l-1]); with PERIODIC slopes are wrapped round.
 *   HymanCubic (n >= 4): Bessel's m, made monotone at the interior breaks: 0 where s[i-1] s[i] is not positive (NaN is
 *     not such a product), else of magnitude at most 3 min(|s[i-1]|, |s[i]|) (Hyman, SIAM J. Sci. Stat. Comput. 4 (1983) 645; Fritsch & Carlson, SIAM
 *     J. Numer. Anal. 17 (1980) 238).
 *   Ends (the right end mirrors the left):
 *   NOT_A_KNOT: with d = x[2] - x[0], m[0] = ((h[0]^2 s[1] + (h[0] + 2 d) h[1] s[0])/d - d m[1])/h[1]; on a uniform
 *     partition m[0] = (y[2] - y[0])/2 * (1/h) - 2 m[1]. Beware: the second is not the first at equal widths, it lacks
 *     2 s[0]; the value is part of the interface. Give the breaks one by one for a true not-a-knot end.
 *   FREE_END: m[0] = 1.5 s[0] - 0.5 m[1]; first derivative given: bcData;
 *   second given: m[0] = 1.5 s[0] - 0.25 h[0] bcData[0] - 0.5 m[1], m[e] = 1.5 s[l] + 0.25 h[l] bcData[1] - 0.5 m[l];
 *   PERIODIC: Akima: its formula on wrapped slopes; Bessel and Hyman: both (h[l] s[0] + h[0] s[l])/(h[0] + h[l]);
 *     Hermite: both bcData[0];
 *   NO_CONDITION (Akima): m[0] = (3 s[0] - s[1])/2. */
#define ORV_DF_CONSTRUCTION(kind)                                                                           \
    int32_t orv_df_kernel_dDF##kind##Spline1D(const DFTask* task, const void* unused1, const void* unused2, \
                                              int64_t method, const orv_services* services);                \
    int32_t orv_df_kernel_sDF##kind##Spline1D(const DFTask* task, const void* unused1, const void* unused2, \
                                              int64_t method, const orv_services* services);
ORV_DF_CONSTRUCTION(Linear)
ORV_DF_CONSTRUCTION(Quadratic)
ORV_DF_CONSTRUCTION(NaturalCubic)
ORV_DF_CONSTRUCTION(DefaultCubic)
ORV_DF_CONSTRUCTION(HermiteCubic)
ORV_DF_CONSTRUCTION(BesselCubic)
ORV_DF_CONSTRUCTION(AkimaCubic)
ORV_DF_CONSTRUCTION(HymanCubic)

/* ---- Interpolation ----------------------------------------------------------------------------------------------- */

/* A run of consecutive sites that an interpolation callback is to evaluate, for one function and one derivative. */
typedef struct orv_df_run {
    ORV_DF_ALIGN8 int64_t siteCount;
    ORV_DF_ALIGN8 int64_t funcIndex;
    ORV_DF_ALIGN8 int64_t derivative; /* 0: the value */
    const void* sites;                /* siteCount elements of the task's type */
    const int32_t* cells;             /* their cells */
    void* values;                     /* receives siteCount elements of the task's type */
} orv_df_run;

/* Fills run->values. A negative status ends the interpolation, which then returns it; any other value, 1000 included,
 * goes on. `param` is the caller's own. */
typedef int32_t (*orv_df_run_callback)(const orv_df_run* run, void* param);

/* Evaluates the task's splines at `siteCount` sites.
 *
 * type: bits ORV_DF_EVALUATE, ORV_DF_EVALUATE_CELLS (takes precedence) and ORV_DF_STORE_CELLS; exactly ORV_DF_STORE_CELLS
 *   searches only, and the spline codes are then not looked at. siteHint, dataHint and searchCallback choose the search
 *   method as in DFSearch1D; `method` is not read.
 * derivatives: derivativeCount integers; the k-th is not 0 where the k-th derivative is wanted, 0 standing for the value.
 *   Null asks for the value. D below is the number of derivatives wanted.
 * results, for function f of F, site s of S, d-th wanted derivative, by resultHint: 0 and ORV_DF_ROWS: (f S + s) D + d;
 *   ORV_DF_COLUMNS: (s F + f) D + d; ORV_DF_ROWS_BY_DERIVATIVE: (f D + d) S + s; ORV_DF_COLUMNS_BY_DERIVATIVE:
 *   (s D + d) F + f; ORV_DF_ROW_POINTERS: `results` is an array of F pointers, each to S rows of D.
 * cells: receives the cells (ORV_DF_STORE_CELLS) or holds them (ORV_DF_EVALUATE_CELLS; one out of range counts as the
 *   nearest end); may be null otherwise.
 * splineOrder and splineType: order 2, any type: linear; 3 with type 0 or 1: quadratic; 4 with type 0, 2, 3, 4, 5, 9:
 *   cubic; above 4: polynomials of that many coefficients. Order 0, from the function values: type 6 look-up, the value at
 *   a break and a quiet NaN elsewhere; type 7 the right-continuous step y[i] on x[i] <= x < x[i+1]; type 8 the
 *   left-continuous step y[i+1] on x[i] < x <= x[i+1]; their derivatives are 0 (look-up: NaN). Order 0 with another type
 *   needs all three of leftCallback, rightCallback and interpolateCallback. Anything else: ORV_DF_BAD_SPLINE_TYPE.
 * Callbacks: leftCallback evaluates sites in cell 0 and rightCallback those in cell n; where it is null the first or last
 *   polynomial (step) extends. interpolateCallback evaluates all sites between. They are called on the calling thread.
 * Interpolation without callbacks is divided over threads found by orv_serv_load_thread_fun when it is large.
 * Returns ORV_DF_BAD_SPLINE_TYPE, ORV_DF_BAD_RESULT_HINT, ORV_DF_BAD_DATA_HINT; where it would read them, and not where
 * the three callbacks evaluate everything: ORV_DF_NULL_COEFFICIENTS (order 2 and more) or ORV_DF_NULL_FUNCTIONS (order 0)
 * when a function's array is missing, ORV_DF_NULL_INTERNAL_DATA when the knots are; ORV_DF_NO_MEMORY; nothing is written
 * then. Or what a callback returned below 0. A count below 1 writes nothing. */
int32_t orv_df_kernel_dDFInterpolate1D(const DFTask* task, int64_t type, int64_t method, int64_t siteCount,
                                       const double* sites, int64_t siteHint, int64_t derivativeCount,
                                       const void* derivatives, const double* dataHint, double* results,
                                       int64_t resultHint, void* cells, orv_df_run_callback leftCallback,
                                       void* leftParam, orv_df_run_callback rightCallback, void* rightParam,
                                       orv_df_run_callback interpolateCallback, void* interpolateParam,
                                       orv_df_search_callback searchCallback, void* searchParam);
int32_t orv_df_kernel_sDFInterpolate1D(const DFTask* task, int64_t type, int64_t method, int64_t siteCount,
                                       const float* sites, int64_t siteHint, int64_t derivativeCount,
                                       const void* derivatives, const float* dataHint, float* results,
                                       int64_t resultHint, void* cells, orv_df_run_callback leftCallback,
                                       void* leftParam, orv_df_run_callback rightCallback, void* rightParam,
                                       orv_df_run_callback interpolateCallback, void* interpolateParam,
                                       orv_df_search_callback searchCallback, void* searchParam);

/* ---- Integration ------------------------------------------------------------------------------------------------- */

/* Integrates every function's spline from left[k] to right[k], k below `limitCount`.
 *
 * Hints: ORV_DF_SITES_NO_HINT; ORV_DF_SITES_SORTED (ascending); ORV_DF_SITES_UNIFORM: the array holds the first and the
 *   last limit, limit k being first + k (last - first)/(limitCount - 1). With a sorted hint dataHint[1], if dataHint is
 *   given, must be 0 or 1 (else ORV_DF_BAD_DATA_HINT). A reversed pair gives the negative; outside the partition the end
 *   polynomials extend; a NaN limit gives NaN. `method` is not read.
 * Whole cells between the limits are summed with the rounding errors carried along (Knuth's two-sum), so that integrals
 *   over adjacent intervals add up to the integral over the whole to the last bits. Within a cell the width of the interval
 *   is a factor, so that however short it is no digits are lost. The `s` form computes in double.
 * results, for function f of F and pair k of L, by resultHint: 0 and ORV_DF_ROWS: f L + k; ORV_DF_COLUMNS: k F + f;
 *   ORV_DF_ROW_POINTERS: `results` is an array of F pointers to L elements. Else ORV_DF_BAD_INTEGRAL_HINT.
 * splineOrder and splineType go together as in interpolation, order 0 excepted: ORV_DF_BAD_SPLINE_TYPE.
 * Limits are divided over the threads of `services`, which may be null. ORV_DF_NULL_COEFFICIENTS when a function has none,
 * ORV_DF_NULL_INTERNAL_DATA when the knots are missing, ORV_DF_NO_MEMORY: nothing is written. */
int32_t orv_df_kernel_dDFIntegrate1D(const DFTask* task, int64_t method, int64_t limitCount, const double* left,
                                     int64_t leftHint, const double* right, int64_t rightHint, const double* dataHint,
                                     double* results, int64_t resultHint, const orv_services* services);
int32_t orv_df_kernel_sDFIntegrate1D(const DFTask* task, int64_t method, int64_t limitCount, const float* left,
                                     int64_t leftHint, const float* right, int64_t rightHint, const float* dataHint,
                                     float* results, int64_t resultHint, const orv_services* services);

#ifdef __cplusplus
}
#endif

#endif
