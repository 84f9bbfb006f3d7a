/* Screening of measurements: outliers by the median and the median absolute deviation.
 *
 * Mean and standard deviation follow the outliers themselves, so a few large ones hide each other. The median m and
 * M = median |x - m| do not move while fewer than half of the data are bad; 1.4826 M estimates the standard deviation of
 * normal data (the factor is 1 / Phi^-1(3/4)), and what is more than 5 of these from m is set aside. Of 1000 normal numbers
 * one in 1700 samples has such a one. */
#include <math.h>
#include <orv/random.h>
#include <orv/statistics.h>
#include <orv/vecmath.h>
#include <stdio.h>

enum { N = 1000, BAD = 40 };

/* Is measurement i one that went wrong? Every 25th did. */
static int is_bad(int i) { return i % (N / BAD) == 7; }

int main(void) {
    static double x[N], distance[N];
    const double half = 0.5, truth = 20, deviation = 0.3;
    const uint32_t seed = 11;
    double median, spread, mean, raw2, variance;
    int32_t p = 1, n = N, form = StorageRows, orders = 1;

    Stream* stream = NULL;
    int32_t status = __kuzNewStreamEx(&stream, BrngSFMT19937, 1, &seed);
    if (status == StatusOk) status = _kuzdRngGaussian(GaussianInverseCdf, stream, N, x, truth, deviation);
    if (stream) __kuzDeleteStream(&stream);
    for (int i = 0; i < N; ++i)
        if (is_bad(i)) x[i] += i % 2 ? 3 : 9;

    SSTask* task = NULL;
    if (status == StatusOk) status = __kuzdSSNewTask(&task, &p, &n, &form, x, NULL, NULL, 0);
    if (status == SSStatusOk) status = __kuzdSSEditMoments(task, &mean, &raw2, NULL, NULL, &variance, NULL, NULL);
    if (status == SSStatusOk) status = _kuzdSSBasic(task, ORV_SS_CENTRAL_MOMENT2, BasicOnePass, NULL);
    if (status == SSStatusOk) status = __kuzdSSEditQuantiles(task, &orders, &half, &median, NULL, NULL);
    if (status == SSStatusOk) status = _kuzdSSQuantiles(task, ORV_SS_QUANTILES, 0, NULL);

    /* The same task on the distances: a pointer changes, and the place of the result. */
    for (int i = 0; i < N; ++i) distance[i] = x[i] - median;
    _arqdAbs(N, distance, distance);
    if (status == SSStatusOk) status = __kuzdSSEditTask(task, SSIdX, distance);
    if (status == SSStatusOk) status = __kuzdSSEditTask(task, SSIdQuantiles, &spread);
    if (status == SSStatusOk) status = _kuzdSSQuantiles(task, ORV_SS_QUANTILES, 0, NULL);
    __kuzSSDeleteTask(&task);
    if (status != SSStatusOk) {
        fprintf(stderr, "status %d\n", (int)status);
        return 1;
    }

    const double scale = 1.4826 * spread;
    int found = 0, missed = 0, wrong = 0, by_mean = 0;
    for (int i = 0; i < N; ++i) {
        const int set_aside = distance[i] > 5 * scale;
        found += set_aside;
        missed += is_bad(i) && !set_aside;
        wrong += !is_bad(i) && set_aside;
        by_mean += fabs(x[i] - mean) > 5 * sqrt(variance);
    }
    printf("median %.3f, deviation %.3f; the data without errors have %g and %g\n", median, scale, truth, deviation);
    printf("%d set aside of %d bad ones, %d missed, %d good ones lost\n", found, BAD, missed, wrong);
    printf("mean %.3f and standard deviation %.3f would set aside %d\n", mean, sqrt(variance), by_mean);
    return missed == 0 && wrong == 0 && fabs(scale / deviation - 1) < 0.15 ? 0 : 1;
}
