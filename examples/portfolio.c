/* A portfolio of correlated assets: simulated returns, their correlation, and the value at risk.
 *
 * With C the covariance and L its Cholesky factor, C = L L', independent normal numbers z become correlated ones x = L z. A
 * portfolio with the weights w then has normal returns of mean w m and variance w' C w, and its loss in the worst of
 * twenty years is their quantile of order 0.05. The sample's quantile has the standard error sqrt(q (1 - q) / n) over
 * the density there. */
#include <math.h>
#include <orv/random.h>
#include <orv/statistics.h>
#include <orv/vecmath.h>
#include <stdio.h>

enum { P = 3, N = 200000 };

static double x[P * N], portfolio[N];

int main(void) {
    const double mean[P] = {0.05, 0.07, 0.02}, deviation[P] = {0.15, 0.25, 0.05}, weight[P] = {0.4, 0.3, 0.3};
    const double correlation[P][P] = {{1, 0.6, -0.2}, {0.6, 1, 0.1}, {-0.2, 0.1, 1}};
    const double order = 0.05, pi = 3.14159265358979324;
    const uint32_t seed = 1;
    double factor[P * P] = {0}, sample_mean[P], cor[P * P], low, level, worst = 0;
    double expected = 0, variance = 0;

    for (int i = 0; i < P; ++i)
        for (int j = 0; j <= i; ++j) {
            double rest = correlation[i][j] * deviation[i] * deviation[j];
            for (int k = 0; k < j; ++k) rest -= factor[i * P + k] * factor[j * P + k];
            factor[i * P + j] = i == j ? sqrt(rest) : rest / factor[j * P + j];
        }

    Stream* stream = NULL;
    int32_t status = __kuzNewStreamEx(&stream, BrngPHILOX4X32X10, 1, &seed);
    if (status == StatusOk)
        status = _kuzdRngGaussianMV(GaussianBoxMullerPaired, stream, N, x, P, MatrixStorageFull, mean, factor);
    if (stream) __kuzDeleteStream(&stream);
    for (int i = 0; i < N; ++i)
        for (int j = 0; j < P; ++j) portfolio[i] += weight[j] * x[P * i + j];

    /* The correlation of the assets, and the quantile of the portfolio, a task each. */
    int32_t p = P, one = 1, n = N, form = StorageColumns, full = SSMatrixFull, orders = 1;
    SSTask *assets = NULL, *whole = NULL;
    if (status == StatusOk) status = __kuzdSSNewTask(&assets, &p, &n, &form, x, NULL, NULL, 0);
    if (status == SSStatusOk) status = __kuzdSSNewTask(&whole, &one, &n, &form, portfolio, NULL, NULL, 0);
    if (status == SSStatusOk) status = __kuzdSSEditCovCor(assets, sample_mean, NULL, NULL, cor, &full);
    if (status == SSStatusOk) status = __kuzdSSEditQuantiles(whole, &orders, &order, &low, NULL, NULL);
    if (status == SSStatusOk) status = _kuzdSSBasic(assets, ORV_SS_COR, BasicOnePass, NULL);
    if (status == SSStatusOk) status = _kuzdSSQuantiles(whole, ORV_SS_QUANTILES, 0, NULL);
    __kuzSSDeleteTask(&assets);
    __kuzSSDeleteTask(&whole);
    if (status != SSStatusOk) {
        fprintf(stderr, "status %d\n", (int)status);
        return 1;
    }

    /* A sample correlation r has the standard error (1 - r^2) / sqrt(n). */
    for (int i = 0; i < P; ++i) {
        expected += weight[i] * mean[i];
        for (int j = 0; j < P; ++j) {
            variance += weight[i] * weight[j] * correlation[i][j] * deviation[i] * deviation[j];
            if (i == j) continue;
            worst = fmax(worst, fabs(cor[i * P + j] - correlation[i][j]) / (1 - correlation[i][j] * correlation[i][j]) *
                                    sqrt(N));
        }
    }
    _arqdCdfNormInv(1, &order, &level);
    const double exact = expected + level * sqrt(variance);
    const double density = exp(-level * level / 2) / sqrt(2 * pi * variance);
    const double error = sqrt(order * (1 - order) / N) / density;
    printf("correlations within %.1f standard errors of those wanted\n", worst);
    printf("value at risk %.4f +- %.4f, exact %.4f\n", -low, error, -exact);
    return worst < 4 && fabs(low - exact) < 4 * error && error < 0.001 ? 0 : 1;
}
