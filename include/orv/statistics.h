/* Summary statistics: a task that describes the data and the results, and the computations on it.
 *
 *     #include <orv/statistics.h>
 *     #include <stdint.h>
 *     #include <stdio.h>
 *
 *     int main(void) {
 *         const double x[2 * 5] = {1, 2, 3, 4, 5,      // component 0, five observations
 *                                  2, 4, 6, 8, 30};    // component 1
 *         const double half = 0.5;
 *         const int32_t p = 2, n = 5, form = StorageRows, full = SSMatrixFull, orders = 1;
 *         double mean[2], cov[4], median[2];
 *         SSTask* task;
 *         int32_t status = __kuzdSSNewTask(&task, &p, &n, &form, x, NULL, NULL, 0);
 *         if (status != SSStatusOk) return 1;
 *         __kuzdSSEditCovCor(task, mean, cov, &full, NULL, NULL);
 *         __kuzdSSEditQuantiles(task, &orders, &half, median, NULL, NULL);
 *         status = _kuzdSSBasic(task, ORV_SS_MEAN | ORV_SS_COV, BasicOnePass, orv_serv_services());
 *         if (status == SSStatusOk) status = _kuzdSSQuantiles(task, ORV_SS_QUANTILES, 0, orv_serv_services());
 *         if (status == SSStatusOk) {
 *             printf("means %g %g, medians %g %g\n", mean[0], mean[1], median[0], median[1]);
 *             printf("covariance %g %g\n           %g %g\n", cov[0], cov[1], cov[2], cov[3]);
 *         }
 *         __kuzSSDeleteTask(&task);
 *         return status;
 *     }
 *
 * It prints
 *
 *     means 3 10, medians 3 6
 *     covariance 2.5 15
 *                15 130
 *
 * A task is one flat record of pointers into the caller's memory. It owns none of the arrays; inputs, results and even the
 * dimensions are reached through pointers, so that a caller may change a dimension or a buffer between computations without
 * editing the task. A caller makes a task, stores pointers in it with the editors, runs compute entries on it as often
 * as it likes, and deletes it.
 *
 * Entries come in a `d` form for tasks of doubles and an `s` form for tasks of floats. A task's integers (dimensions,
 * storage forms, counts, indices) are all 32-bit or all 64-bit, as said when it is made. A task is not locked: one thread
 * at a time. Every entry returns a status, 0 on success, and SSStatusNullTask for a null task unless said. Results have the units of the data, to the power of the moment.
 *
 * Names. __kuz<type>SS, with two underscores, is the prefix of a task's life: making, editing, deleting. _kuz<type>SS, with
 * one, is that of what computes. The bits of a request are ORV_SS_..., the fields of a task SSId..., statuses SSStatus...
 *
 * Null pointers. `services` may be null everywhere: one thread. Weights and indices may be null: each weight is 1, all
 * components take part. A field that a request needs and that is null gives the field's status; the others are not looked
 * at. errno is left alone. */
#ifndef ORV_STATISTICS_H
#define ORV_STATISTICS_H

#include <orv/services.h>
#include <orv/statistics_task.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Moments, sums and matrices --------------------------------------------------------------------------------- */

/* Estimates, to be joined by "or". Each needs its field of the task and the other fields named, which are then written
 * too: they hold what the next call on the next block continues from. With W the sum of the weights and W2 the sum of
 * their squares (n and n without weights), m the mean, f = 1 / (W - W2 / W), and sums over the observations:
 *
 *     MEAN              m = sum w x / W
 *     RAW_MOMENT2 to 4  sum w x^k / W
 *     CENTRAL_MOMENT2   f sum w (x - m)^2, the unbiased variance   mean, rawMoment2
 *     CENTRAL_MOMENT3   sum w (x - m)^3 / W                        mean, rawMoment2 and 3
 *     CENTRAL_MOMENT4   sum w (x - m)^4 / W                        mean, rawMoment2 to 4
 *     KURTOSIS          centralMoment4 / centralMoment2^2 - 3      mean, rawMoment2 to 4, centralMoment2 and 4
 *     SKEWNESS          centralMoment3 / centralMoment2^(3/2)      mean, rawMoment2 and 3, centralMoment2 and 3
 *     VARIATION         sqrt(centralMoment2) / m                   mean, rawMoment2, centralMoment2
 *     COV               f CP                                       mean
 *     COR               CP scaled to a unit diagonal               mean
 *     SUM               sum w x
 *     RAW_SUM2 to 4     sum w x^k
 *     CENTRAL_SUM2 to 4 sum w (x - m)^k                            mean; with BasicFast rawMoment2 to k besides
 *     CP                sum w (x - m)(x - m)', a matrix            mean */
#define ORV_SS_MEAN ((uint64_t)0x1)
#define ORV_SS_RAW_MOMENT2 ((uint64_t)0x2)
#define ORV_SS_RAW_MOMENT3 ((uint64_t)0x4)
#define ORV_SS_RAW_MOMENT4 ((uint64_t)0x8)
#define ORV_SS_CENTRAL_MOMENT2 ((uint64_t)0x10)
#define ORV_SS_CENTRAL_MOMENT3 ((uint64_t)0x20)
#define ORV_SS_CENTRAL_MOMENT4 ((uint64_t)0x40)
#define ORV_SS_KURTOSIS ((uint64_t)0x80)
#define ORV_SS_SKEWNESS ((uint64_t)0x100)
#define ORV_SS_VARIATION ((uint64_t)0x200)
#define ORV_SS_COV ((uint64_t)0x1000)
#define ORV_SS_COR ((uint64_t)0x2000)
#define ORV_SS_SUM ((uint64_t)0x2000000)
#define ORV_SS_RAW_SUM2 ((uint64_t)0x4000000)
#define ORV_SS_RAW_SUM3 ((uint64_t)0x8000000)
#define ORV_SS_RAW_SUM4 ((uint64_t)0x10000000)
#define ORV_SS_CENTRAL_SUM2 ((uint64_t)0x20000000)
#define ORV_SS_CENTRAL_SUM3 ((uint64_t)0x40000000)
#define ORV_SS_CENTRAL_SUM4 ((uint64_t)0x80000000)
#define ORV_SS_CP ((uint64_t)0x100000000)

/* The estimates of the family's other entries. An entry ignores the bits of the others. */
#define ORV_SS_MINIMUM ((uint64_t)0x400)
#define ORV_SS_MAXIMUM ((uint64_t)0x800)
#define ORV_SS_QUANTILES ((uint64_t)0x4000)
#define ORV_SS_STREAM_QUANTILES ((uint64_t)0x8000)
#define ORV_SS_SORT ((uint64_t)0x10000)
#define ORV_SS_WEIGHTED_MEDIAN ((uint64_t)0x20000)
#define ORV_SS_ROBUST_COVARIANCE ((uint64_t)0x40000)
#define ORV_SS_OUTLIERS ((uint64_t)0x80000)
#define ORV_SS_MAD ((uint64_t)0x100000)
#define ORV_SS_MAHALANOBIS ((uint64_t)0x200000)
#define ORV_SS_MISSING_VALUES ((uint64_t)0x400000)
#define ORV_SS_COR_PARAMETRIZATION ((uint64_t)0x800000)
#define ORV_SS_POOLED_COVARIANCE ((uint64_t)0x1000000)
#define ORV_SS_PARTIAL_COVARIANCE ((uint64_t)0x200000000)

/* Methods. Exactly one of the first three, or none of them and one or both of the last two. */
enum {
    BasicFast = 0x1,       /* plain sums of powers; the matrix by rank updates. Quickest. Central moments come from
                                     raw ones, so a mean that is large against the spread costs digits there (not in the
                                     matrices) */
    BasicOnePass = 0x2,    /* moments and matrices about the running mean. Keeps its digits whatever the offset */
    BasicUserMean = 0x100, /* moments and matrices about the caller's mean, which is read and kept */
    BasicFromCrossProduct = 0x200, /* no pass over x: results from `sum`, `cp` and the other sums */
    BasicFromSums = 0x400          /* the same */
};

/* Computes the requested estimates of a task's data in one pass, on as many threads as `services` allows.
 *
 * estimates: ORV_SS_... bits; without one of the above nothing is done and 0 returned. method: Basic... bits. services: the
 * thread services (orv_serv_services() for the ready ones), null for one thread.
 *
 * Successive calls: when accumWeight is set and its first value is not 0, the data is taken as the next block of the same
 * set, and the results in the task's arrays are brought up to date; the caller sets both values to 0 for a fresh start, asks
 * for the same estimates with the same method, and changes nothing but x, w and n in between. The task keeps the sums
 * behind the results, in double, from call to call, so that any number of blocks of any length give what one call would, to
 * rounding. They count as long as accumWeight and every array of the request hold the results of the last call; after the
 * caller has put others there (an earlier state, another data set's) or a call has ended with a whole weight of 0, the next
 * call goes on from the arrays alone. These cannot say everything:
 *
 *   - with BasicOnePass, central sums of order 3 and 4 need each lower order from 2, raw or central, in the request;
 *   - a correlation needs a covariance, a cross-product or an estimate of order 2 (with BasicFast and BasicOnePass raw or
 *     central, with BasicUserMean central), or starts afresh;
 *   - after a single observation variances and covariances are NaN: with BasicUserMean a central sum or `sum` says what
 *     they were made of;
 *   - what was rounded to the task's type stays rounded, the weights too.
 *
 * BasicUserMean keeps a copy of `mean` as well, first in `ownedBuffer`: a change of `mean` alone in between is not looked at.
 *
 * With 0x200 or 0x400, means and raw moments are sum and rawSum over W, central moments are centralSum2 f and centralSum3
 * and 4 over W, covariance and correlation come from cp, and kurtosis, skewness and variation from the moment arrays as
 * they then stand. W comes from accumWeight, which may be null when w is null: then W = n.
 *
 * Edges: a component whose `indices` value is 0 keeps its old results, and so do its rows and columns of the matrices. A
 * finite observation of weight 0 touches no result. A NaN or an infinity shows in the results of its own component, also with
 * weight 0, except in a call, or the part of it that one thread takes, whose whole weight is 0. One observation gives NaN for
 * what divides by W - W2 / W, which counts as 0 within 4 ulp of W. Correlations that rounding lifts above 1 by up to 8 ulp
 * of the task's type are 1; with 0x200 and 0x400 a cp that is no cross-product shows in larger ones. A sum of weights of
 * exactly 0 sets the moment arrays to 0 and ends the call (`mean` stays under BasicUserMean).
 *
 * Returns 0, or: SSStatusMethod; SSStatusEstimates for a bit that no entry of the family owns; the status of the first
 * missing array, in the order of the estimates above with the central moments before the matrices; SSStatusN, SSStatusX,
 * SSStatusStorage, SSStatusStorageValue, SSStatusAccumWeight; SSStatusStorage for a missing storage form of a matrix;
 * SSStatusAllocation. Nothing is written then.
 *
 * Sources: B. P. Welford, Technometrics 4 (1962); T. F. Chan, G. H. Golub, R. J. LeVeque, The American Statistician 37
 * (1983); P. Pebay, Sandia report SAND2008-6212 (2008). */
int32_t _kuzdSSBasic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSBasic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);

/* Methods of the order statistics: 0 the plain one, ORV_SS_METHOD_FAST the fast one, which are the same today. With
 * ORV_SS_METHOD_JOIN _kuz[sd]SSMinmax folds in what the result arrays hold, so that blocks of observations can be joined. */
#define ORV_SS_METHOD_FAST ((uint64_t)0x1)
#define ORV_SS_METHOD_JOIN ((uint64_t)0x4)

/* Order statistics of each component that takes part (`indices`); the others keep their old results. All take (task,
 * estimates, method, services) as the basic pass does, read p, n, x and its storage form, and ignore the estimates of other
 * entries: without their own bit they return 0. `services` may be null: one thread. Work is divided by components, that
 * of Quantiles, Sort and Minmax within long ones too, and results do not depend on the number of threads. In the order of the sorted results -0 stands before +0 and NaNs stand
 * last.
 *
 * _kuz[sd]SSQuantiles   ORV_SS_QUANTILES: `quantOrderCount` orders in [0, 1] in `quantOrders` to `quantiles`, p rows of that many.
 *                       The quantile of order q is a (1 - d) + b d at position q (n - 1), i its whole part and d the rest, a and b
 *                       the observations of order i and i + 1; it is formed in double. An infinite b gives a NaN also where its
 *                       share is 0. Where `orderStats` is set, the sorted observations go there, n by p, in the form of
 *                       `orderStatsStorage`, or that of x where this is null.
 * _kuz[sd]SSSort        ORV_SS_SORT: the sorted observations to `extraData` (id 78), in the form at `extraInt` (id 79).
 * _kuz[sd]SSMinmax      ORV_SS_MINIMUM, ORV_SS_MAXIMUM: the least and the greatest observation, p values each. A NaN shows in both.
 *                       Weights are not looked at.
 * _kuz[sd]SSWMedian     ORV_SS_WEIGHTED_MEDIAN: to `quantiles`, p values: the least observation whose cumulated weight passes
 *                       half the whole; where it equals the half, the mean of that one and the next of positive weight.
 *                       `w` null: each weight is 1. A whole weight not above 0 is SSStatusW.
 * _kuz[sd]SSStreamQuantiles  ORV_SS_STREAM_QUANTILES: the observations join a summary that the task keeps, and the
 *                       `streamOrderCount` quantiles of the orders in `streamOrders` of all observations so far go to
 *                       `streamQuantiles`, p rows of that many. The first of the `streamParamCount` numbers in
 *                       `streamParams` is epsilon, in (0, 1): for order q of n observations so far the result is one of them
 *                       whose rank is no further than epsilon n (and one half) from the position q (n - 1), whatever the order of
 *                       the data and however it is cut into blocks; the extremes are exact. The memory is O(1/epsilon
 *                       log^2(epsilon n)). p or epsilon changed from the call before starts afresh, and so does
 *                       __kuzSQuantilesFreeBuffers. Weights are not looked at.
 *
 * Return 0, or, with nothing written: SSStatusEstimates, SSStatusMethod, SSStatusP, SSStatusN, SSStatusX, SSStatusStorage,
 * SSStatusStorageValue, the status of a missing array, SSStatusQuantOrderCount for a count below 1, SSStatusQuantOrders
 * for an order outside [0, 1] or NaN, SSStatusAllocation; from the streaming quantiles SSStatusStreamParamCount and
 * SSStatusStreamOrderCount for a count below 1, SSStatusStreamParams for such an epsilon, SSStatusStreamOrders.
 *
 * Source: R. J. Hyndman, Y. Fan, Sample quantiles in statistical packages, The American Statistician 50 (1996), definition 7; J. I.
 * Munro, M. S. Paterson, Selection and sorting with limited storage, Theoretical Computer Science 12 (1980); Q. Zhang, W. Wang,
 * A fast algorithm for approximate quantiles in high speed data streams, SSDBM (2007). */
int32_t _kuzdSSQuantiles(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSQuantiles(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSSort(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSSort(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSMinmax(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSMinmax(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSWMedian(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSWMedian(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);

/* Robust estimates of multivariate location and scatter, and what they reject. The entries take (task, estimates, method,
 * services) as the order statistics do; q is the number of components that take part (`indices`), and the others keep their
 * old results. Weights are not looked at. An observation with a NaN or an infinity in one of the q components, or further out
 * than 1e100 spreads, counts as infinitely far: it has no weight, but its place among the n. Results do not depend on the
 * number of threads, and are computed in double for floats too.
 *
 * _kuz[sd]SSRobustCovariance   ORV_SS_ROBUST_COVARIANCE: centre to `robustMean` (p values) and covariance to `robustCov`, in the
 *     matrix form at `robustMethod` (id 36). Both are consistent at the normal model. method is one of
 *       RobustTBS      the S-estimator with Rocke's translated biweight: the pair of the least determinant under which the mean
 *                      of rho over all observations is what the normal model has. Reweighting starts from BACON's subset
 *                      about the medians, from the orthogonalised pairwise estimate, and from Maronna's estimator; the
 *                      least determinant of the three ends is the result. Affine equivariant where one end is reached.
 *                      Up to the breakdown point its bias is bounded: outliers far enough are rejected, however far. That
 *                      may be a long way: at 1/2, three in ten observations in one point draw the estimate along up to some 15
 *                      spreads in 5 dimensions and 60 in 10; outliers scattered as the others, or fewer, much less.
 *       RobustMaronna  Maronna's monotone M-estimator with Huber's weights, affine equivariant, of breakdown point 1 / (q + 1)
 *                      and no more.
 *     `robustParams`, `robustParamCount` (4) data, of which RobustMaronna uses the last two:
 *       [0]  breakdown point, in [1e-9, 1/2]; no more than (n - q) / (2 n) is used
 *       [1]  asymptotic rejection probability, in (0, 1): of an observation from the normal model, to lose its weight
 *            altogether. The breakdown point has precedence where both cannot be had: for 1/2 and 0.001, up to 4 components
 *            more is rejected, and from 17 less
 *       [2]  stop tolerance, at least 0: of the last step, in units of the spread; 1e-6 is plenty
 *       [3]  most iterations from each start, at least 1. Running out of them is no failure
 *
 * _kuz[sd]SSOutliersDetection  ORV_SS_OUTLIERS: BACON. To `outlierWeights`, n values: 1 for an observation that is kept, 0 for an
 *     outlier. method: 0 or ORV_SS_METHOD_FAST, the same. A subset of 4 q observations (n / 2, if that is less) grows to all
 *     whose distance under its mean and covariance is within the corrected quantile of the chi-square distribution, until
 *     it stays. `outlierParams`, `outlierParamCount` (3) data:
 *       [0]  the first subset. SubsetMahalanobis: the least Mahalanobis distances from the mean; affine equivariant, withstands
 *            some 20%. SubsetMedian: the least Euclidean distances from the medians, each component in units of its median
 *            absolute deviation (the mean one, where that is 0); withstands some 40%
 *       [1]  alpha, in (0, 1): the quantile's level is 1 - alpha / n
 *       [2]  stop value, in [0, 1): growth ends when the subset's size changes by no more than this share of n; 0: not at all
 *
 * Return 0, or, with nothing written: SSStatusEstimates, SSStatusMethod, SSStatusP, SSStatusN, SSStatusX, SSStatusStorage,
 * SSStatusStorageValue, the status of a missing array; that of a count or of parameters outside the above;
 * SSStatusNotPositiveDefinite: n <= q, a component without spread, observations in a subspace, or more that are no
 * numbers than the breakdown point allows; SSStatusAllocation.
 *
 * Sources: D. M. Rocke, The Annals of Statistics 24 (1996); R. A. Maronna, The Annals of Statistics 4 (1976); R. A. Maronna,
 * R. H. Zamar, Technometrics 44 (2002); N. Billor, A. S. Hadi, P. F. Velleman, Computational Statistics & Data Analysis 34
 * (2000). */
enum { RobustMaronna = 0x1, RobustTBS = 0x2 };
enum { SubsetMahalanobis = 1, SubsetMedian = 2 };
int32_t _kuzdSSRobustCovariance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSRobustCovariance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSOutliersDetection(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSOutliersDetection(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);

int32_t _kuzdSSStreamQuantiles(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSStreamQuantiles(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);

/* Frees the summary of a task's streaming quantiles, if there is one; the next call starts afresh. Deleting the task does it. */
void __kuzSQuantilesFreeBuffers(SSTask* task);

/* Imputes missing values under the multivariate normal model: expectation-maximisation (EM) finds the estimates of the greatest
 * likelihood, and from there chains of data augmentation (DA), one for each set, alternate between drawing the missing values
 * given mean and covariance, and these given all values. A NaN in x marks a missing value. The arguments are (task,
 * estimates, method, services), the estimate ORV_SS_MISSING_VALUES, method 0 or ORV_SS_METHOD_FAST, the same. q is the number of
 * components that take part (`indices`): the others are not looked at, and all arrays below speak of the q alone, in their
 * order. Weights are not looked at. An estimate is q + q (q + 1) / 2 data: a mean, and a covariance as its lower triangle by
 * rows. The fields are five pairs of a count of data and an array:
 *
 *   missMethod, missMatrix    6 parameters:
 *       [0]  most EM iterations, at least 0. Running out of them is no failure
 *       [1]  DA iterations, at least 1, of which the last gives the set
 *       [2]  EM tolerance, at least 0: of the last step, in units of the spread
 *       [3]  m, the number of sets, at least 1
 *       [4]  the number of missing values
 *       [5]  the seed, a whole number in [0, 2^32), which a float holds exactly up to 2^24. The same seed gives the same sets
 *   missCountA, missMean      an estimate that EM starts from. Either null: that of the complete observations, or, where they
 *                             have none, the means and variances of the values that are there
 *   missCountB, missCov       the prior: tau, k, a mean, and a matrix S as its lower triangle by rows: 2 data and an estimate. The
 *                             covariance C is inverse Wishart, of density |C|^(-(k + q + 1) / 2) exp(-tr(S C^-1) / 2), and the
 *                             mean, given it, normal about the prior's with C / tau. Either null or the count 0: Jeffreys' prior,
 *                             |C|^(-(q + 1) / 2). With a prior EM finds the greatest posterior density
 *   missCountC, missCor       m times the missing values: the results, set by set, in each by observations, in each of these by
 *                             components
 *   missCountD, missStorage   m times the DA iterations times an estimate: what every iteration of every set drew. May be null
 *
 * Every set has a stream of its own, of PHILOX4X32X10 under a key of the seed and the set's number, so results depend neither on m
 * nor on the number of threads.
 *
 * Returns 0, or, with nothing written: SSStatusEstimates, SSStatusMethod, SSStatusP, SSStatusN, SSStatusX, SSStatusStorage,
 * SSStatusStorageValue; SSStatusStorage for a null missMethod, and the status of another missing array; SSStatusMissMatrix
 * for parameters outside the above or another number of missing values, SSStatusMissCountA to D for another count,
 * SSStatusMissCov for a prior whose tau is below 0 or that is not finite; SSStatusNotPositiveDefinite: a component without two
 * different values, an infinity, components that are combinations of others, n + k not above q - 1 (k is -1 for Jeffreys'
 * prior). SSStatusAllocation, SSStatusNotPositiveDefinite and the statuses of the streams may also come when some sets are written.
 *
 * Sources: A. P. Dempster, N. M. Laird, D. B. Rubin, Journal of the Royal Statistical Society B 39 (1977); M. A. Tanner,
 * W. H. Wong, Journal of the American Statistical Association 82 (1987); J. L. Schafer, Analysis of incomplete multivariate
 * data (1997). */
int32_t _kuzdSSMissingValues(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSMissingValues(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);

/* Sort n numbers in place, ascending; the Step form has them `stride` elements apart. Select returns the element of order k,
 * from 0, and parts the data by it: none before place k is larger, none behind it smaller. No element may be a NaN.
 *
 * Source: R. Sedgewick, Implementing quicksort programs, Communications of the ACM 21 (1978). */
void __kuzdQSort(int32_t n, double* data);
void __kuzsQSort(int32_t n, float* data);
void __kuzdQSortStep(int32_t n, double* data, int32_t stride);
void __kuzsQSortStep(int32_t n, float* data, int32_t stride);
double __kuzdQSortSelect(int32_t n, double* data, int32_t k);
float __kuzsQSortSelect(int32_t n, float* data, int32_t k);

/* ---- Several components together -------------------------------------------------------------------------------- */

/* All take (task, estimates, method, services) as above, with the methods of the order statistics, and return 0 without their
 * own estimate bit. They never read accumWeight. Components whose `indices` value is 0 do not take part: neither they nor their
 * rows and columns are read or written. Matrices of a result are in the form of the field named beside it; both triangles of a
 * full one are written, and one of an input read. Computations are in double, for floats too. Results do not depend
 * on the number of threads.
 *
 * _kuz[sd]SSMAD                ORV_SS_MAD. The median of the absolute deviations of each component's observations from their
 *                              median, without a factor for consistency, to `robustEstimates2` (id 76), p values; their mean to
 *                              `robustEstimates1` (id 77) where this is set. Medians are quantiles of order 1/2 as above:
 *                              NaNs stand last. Weights are not looked at.
 * _kuz[sd]SSMahDistance        ORV_SS_MAHALANOBIS. The squared distance (x - m)' C^-1 (x - m) of every observation from `mean` m
 *                              under `cov` C, both inputs, to `outlierWeights`, n values. A NaN or an infinity shows in the
 *                              distance of its own observation. SSStatusNotPositiveDefinite where C is not.
 * _kuz[sd]SSPooledCovariance   ORV_SS_POOLED_COVARIANCE. `pooledGroupCount` is the number g of groups, `pooledGroupIndices` the
 *                              group, 0 to g - 1, of each of the n observations; SSStatusPooledGroup for a count below 1 or a
 *                              group outside. The weighted mean of all to `pooledResultMean`, p values, and the pooled covariance
 *                              sum_k CP_k / sum_k (W_k - W2_k / W_k), with CP_k the cross-products of group k about its own
 *                              mean, to `pooledResultCov` in the form of `pooledExtra29` (id 29). Where `pooledMean` is set, each
 *                              group's mean goes there, g rows of p; where `pooledCov` is set, each group's covariance, g
 *                              matrices one after another in the form of `pooledExtra34` (id 34). A group of one observation
 *                              has NaNs for a covariance and adds nothing to the pooled one; a group that is empty or has no
 *                              weight has zeros for mean and covariance and counts nothing. Weights must not be negative.
 * _kuz[sd]SSPartialCovariance  ORV_SS_PARTIAL_COVARIANCE. `partialCountA` (id 45) says of each of the p variables: 1 kept, -1
 *                              conditioned on, 0 left out; SSStatusPartialCountA for another value, or with none kept. From `cov`
 *                              where it is set, else from `cor`: the covariance A - B' C^-1 B of the q kept ones given the others, to
 *                              `partialCov`, q by q, and its correlation to `partialCor`, in the forms of ids 47 and 49; one of
 *                              the two results may be null. The observations, n and `indices` are not read. With C scaled to
 *                              a unit diagonal, of r variables, what is not above 100 r ulp of 1 counts as 0: where a pivot of the
 *                              Cholesky factor does not count, the generalised inverse over the eigenvalues that do (relative to
 *                              the largest) takes the place of the inverse, and a kept variable that the others explain up to that
 *                              has zeros in `partialCov` and NaNs in `partialCor`. SSStatusNotPositiveDefinite for a negative
 *                              eigenvalue or variance beyond it, and for a NaN or an infinity in C.
 * _kuz[sd]SSCorParametrization ORV_SS_COR_PARAMETRIZATION. From `cor`, symmetric but perhaps not positive semi-definite, a
 *                              correlation matrix by the spectral construction: eigenvalues below 0 become 0, and what is left is
 *                              scaled to a unit diagonal; to `corParamResult` in the form of `corParamStorage`. A variable of
 *                              which nothing is left is uncorrelated with the others. A NaN or an infinity makes every result NaN.
 *                              The observations and n are not read.
 *
 * Return 0, or, with nothing written: SSStatusEstimates, SSStatusMethod, SSStatusP, SSStatusN, SSStatusX, SSStatusStorage,
 * SSStatusStorageValue, the status of a missing field, those named above, SSStatusAllocation.
 *
 * Sources: F. R. Hampel, The influence curve and its role in robust estimation, Journal of the American Statistical
 * Association 69 (1974); P. C. Mahalanobis, On the generalised distance in statistics, Proceedings of the National Institute
 * of Sciences of India 2 (1936); T. W. Anderson, An introduction to multivariate statistical analysis, 3rd edition (2003),
 * chapters 2 and 6; G. Marsaglia, Journal of the American Statistical Association 59 (1964); R. Rebonato, P. Jaeckel, The most
 * general methodology to create a valid correlation matrix, Journal of Risk 2 (1999). */
int32_t _kuzdSSMAD(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSMAD(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSMahDistance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSMahDistance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSPooledCovariance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSPooledCovariance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSPartialCovariance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSPartialCovariance(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzdSSCorParametrization(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);
int32_t _kuzsSSCorParametrization(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services);

#ifdef __cplusplus
}
#endif

#endif
