/* An integral over a cube of five dimensions: points of low discrepancy beside random ones.
 *
 * The integral of f(x) = (pi/2)^5 sin(pi x1) ... sin(pi x5) over the unit cube is 1. The mean over n random points has the
 * standard error s / sqrt(n) with s^2 = (pi^2/8)^5 - 1. Points of Sobol's sequence fill the cube evenly, and their
 * error falls almost like 1/n. The sequence is handed out from its second point on; the first is 0, where f is 0. */
#include <math.h>
#include <orv/random.h>
#include <orv/vecmath.h>
#include <stdio.h>

enum { DIMENSION = 5, N = 1 << 17, BLOCK = 512 };

/* The mean of f over 0 and the N - 1 points that follow, which are `stream`'s. Returns a status. */
static int32_t integrate(Stream* stream, double* mean) {
    static double x[BLOCK * DIMENSION];
    const double factor = pow(1.57079632679489662, DIMENSION);
    double sum = 0;
    for (int from = 1; from < N; from += BLOCK) {
        const int count = from + BLOCK < N ? BLOCK : N - from;
        const int32_t status = _kuzdRngUniform(UniformStandard, stream, count * DIMENSION, x, 0, 1);
        if (status != StatusOk) return status;
        _arqdSinpi(count * DIMENSION, x, x);
        for (int i = 0; i < count; ++i) {
            double product = factor;
            for (int j = 0; j < DIMENSION; ++j) product *= x[i * DIMENSION + j];
            sum += product;
        }
    }
    *mean = sum / N;
    return StatusOk;
}

int main(void) {
    const uint32_t dimension = DIMENSION, seed = 1;
    const double error = sqrt((pow(1.2337005501361698, DIMENSION) - 1) / N);
    double quasi = 0, random = 0;
    Stream *sobol = NULL, *philox = NULL;
    int32_t status = __kuzNewStreamEx(&sobol, BrngSobol, 1, &dimension);
    if (status == StatusOk) status = __kuzNewStreamEx(&philox, BrngPHILOX4X32X10, 1, &seed);
    if (status == StatusOk) status = integrate(sobol, &quasi);
    if (status == StatusOk) status = integrate(philox, &random);
    if (sobol) __kuzDeleteStream(&sobol);
    if (philox) __kuzDeleteStream(&philox);
    if (status != StatusOk) {
        fprintf(stderr, "status %d\n", (int)status);
        return 1;
    }
    printf("%d points, exact 1\n", N);
    printf("random %.6f +- %.6f\nSobol  %.6f, off by %.1g\n", random, error, quasi, fabs(quasi - 1));
    return fabs(random - 1) < 4 * error && fabs(quasi - 1) < error / 20 ? 0 : 1;
}
