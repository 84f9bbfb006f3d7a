/* A wavetable oscillator: one period of a wave stands in a short table, and a periodic cubic spline reads between.
 *
 * The phase moves on by frequency over sample rate, is wrapped to [0, 1), and a block of samples at a time is evaluated, as an
 * audio callback would ask for them. The interpolation error of a cubic spline on cells of width h is at most
 * 5/384 h^4 max |f''''| (Hall & Meyer, Journal of Approximation Theory 16, 1976): with 256 cells and a sine 166 dB
 * below the signal. */
#include <math.h>
#include <orv/fitting.h>
#include <orv/vecmath.h>
#include <stdio.h>

enum { CELLS = 256, ORDER = 4, BLOCK = 64, BLOCKS = 1500 }; /* two seconds at 48 kHz */

int main(void) {
    const double rate = 48000, frequency = 440, pi = 3.14159265358979324;
    const double ends[2] = {0, 1}; /* of a uniform partition */
    double table[CELLS + 1], coeffs[ORDER * CELLS];
    double phase[BLOCK], samples[BLOCK], exact[BLOCK];
    double worst = 0, start = 0;
    DFTask* task = NULL;

    for (int i = 0; i <= CELLS; ++i) table[i] = 2.0 * i / CELLS;
    _arqdSinpi(CELLS + 1, table, table); /* sin(pi x), exactly 0 at both ends */

    int32_t status = orv_df_kernel_dNewTask1D(&task, CELLS + 1, ends, ORV_DF_BREAKS_UNIFORM, 1, table, ORV_DF_ROWS, 0);
    if (status == ORV_DF_OK)
        status = orv_df_kernel_dEditPPSpline1D(task, ORDER, ORV_DF_TYPE_NATURAL, ORV_DF_PERIODIC, NULL, 0, NULL, coeffs,
                                               ORV_DF_ROWS);
    if (status == ORV_DF_OK) status = orv_df_kernel_dDFNaturalCubicSpline1D(task, NULL, NULL, 0, NULL);

    for (int block = 0; block < BLOCKS && status == ORV_DF_OK; ++block) {
        for (int i = 0; i < BLOCK; ++i) phase[i] = start + i * frequency / rate;
        start = fmod(start + BLOCK * frequency / rate, 1);
        _arqdFrac(BLOCK, phase, phase);
        status =
            orv_df_kernel_dDFInterpolate1D(task, ORV_DF_EVALUATE, 0, BLOCK, phase, ORV_DF_SITES_NO_HINT, 0, NULL, NULL,
                                           samples, ORV_DF_ROWS, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);
        _arqdAdd(BLOCK, phase, phase, phase);
        _arqdSinpi(BLOCK, phase, exact);
        for (int i = 0; i < BLOCK; ++i) worst = fmax(worst, fabs(samples[i] - exact[i]));
    }
    orv_df_kernel_DeleteTask(&task);
    if (status != ORV_DF_OK) {
        fprintf(stderr, "status %d\n", (int)status);
        return 1;
    }

    const double bound = 5.0 / 384 * pow(2 * pi / CELLS, 4);
    printf("%d samples, largest error %.3g, which is %.0f dB; bound %.3g\n", BLOCK * BLOCKS, worst, 20 * log10(worst),
           bound);
    return worst <= bound && worst > bound / 100 ? 0 : 1;
}
