/* Screening of measurements in two dimensions: outliers that neither coordinate alone gives away.
 *
 * Length x and weight y of parts are normal and strongly correlated. A part whose weight is wrong for its length lies well
 * within the range of both, but far out in Mahalanobis distance d^2 = (x - m)' C^-1 (x - m), which for good parts has a
 * chi-square distribution. Mean and covariance of all the data follow the bad parts, so BACON takes them from a clean
 * subset that grows while the distances allow it (Billor, Hadi & Velleman, Computational Statistics & Data Analysis 34,
 * 2000). With alpha = 0.01 a good part is lost in about one sample of a hundred. */
#include <math.h>
#include <orv/random.h>
#include <orv/statistics.h>
#include <stdio.h>

enum { P = 2, N = 1000, BAD = 40 };

/* Is part i a bad one? Every 25th is. */
static int is_bad(int i) { return i % (N / BAD) == 7; }

int main(void) {
    static double x[P * N], kept[N];
    const double mean[P] = {50, 12}, deviation[P] = {2, 0.5}, r = 0.97;
    /* L with L L' the covariance. */
    const double factor[P * P] = {deviation[0], 0, r * deviation[1], sqrt(1 - r * r) * deviation[1]};
    const double screening[3] = {SubsetMedian, 0.01, 0};
    const uint32_t seed = 11;

    Stream* stream = NULL;
    int32_t status = __kuzNewStreamEx(&stream, BrngSFMT19937, 1, &seed);
    if (status == StatusOk)
        status = _kuzdRngGaussianMV(GaussianInverseCdf, stream, N, x, P, MatrixStorageFull, mean, factor);
    if (stream) __kuzDeleteStream(&stream);
    for (int i = 0; i < N; ++i)
        if (is_bad(i)) x[P * i + 1] += x[P * i] < mean[0] ? 1.2 : -1.2;

    const int32_t p = P, n = N, form = StorageColumns, count = 3;
    SSTask* task = NULL;
    if (status == StatusOk) status = __kuzdSSNewTask(&task, &p, &n, &form, x, NULL, NULL, 0);
    if (status == SSStatusOk) status = __kuzdSSEditOutDetect(task, &count, screening, kept);
    if (status == SSStatusOk) status = _kuzdSSOutliersDetection(task, ORV_SS_OUTLIERS, 0, orv_serv_services());
    __kuzSSDeleteTask(&task);
    if (status != SSStatusOk) {
        fprintf(stderr, "status %d\n", (int)status);
        return 1;
    }

    int found = 0, missed = 0, lost = 0, by_one = 0;
    for (int i = 0; i < N; ++i) {
        found += kept[i] == 0;
        missed += is_bad(i) && kept[i] != 0;
        lost += !is_bad(i) && kept[i] == 0;
        by_one += is_bad(i) &&
                  (fabs(x[P * i] - mean[0]) > 3 * deviation[0] || fabs(x[P * i + 1] - mean[1]) > 3 * deviation[1]);
    }
    printf("%d set aside of %d bad ones, %d missed, %d good ones lost\n", found, BAD, missed, lost);
    printf("three deviations in one coordinate would find %d\n", by_one);
    return missed == 0 && lost == 0 ? 0 : 1;
}
