/* A low-pass filter whose response is an error function: no overshoot, and tails that fall like a Gaussian.
 *
 * The ideal low pass of cut-off c, smoothed by a Gaussian of width s, has the frequency response
 *   H(f) = (erfc((f - c) / (s sqrt 2)) - erfc((f + c) / (s sqrt 2))) / 2,
 * which by the theorem of convolution belongs to the taps h(n) = sin(2 pi c n) / (pi n) exp(-2 (pi s n)^2), h(0) = 2 c.
 * They are cut off where they drop below the rounding of a double, so that the response of the finished filter, the sum
 * of h(n) cos(2 pi f n), is H to the last digits. Frequencies are in cycles per sample. */
#include <math.h>
#include <orv/vecmath.h>
#include <stdio.h>

enum { SIDE = 140, TAPS = 2 * SIDE + 1, POINTS = 501 };

int main(void) {
    const double cutoff = 0.1, width = 0.01, pi = 3.14159265358979324;
    static double turn[TAPS], h[TAPS], sine[TAPS], fall[TAPS], wave[TAPS];
    static double f[POINTS], above[POINTS], below[POINTS], response[POINTS];
    double worst = 0, greatest = 0;

    for (int i = 0; i < TAPS; ++i) {
        const int n = i - SIDE;
        turn[i] = 2 * cutoff * n;
        fall[i] = -2 * pi * pi * width * width * n * n;
    }
    _arqdSinpi(TAPS, turn, sine);
    _arqdExp(TAPS, fall, fall);
    for (int i = 0; i < TAPS; ++i) h[i] = i == SIDE ? 2 * cutoff : sine[i] / (pi * (i - SIDE)) * fall[i];

    /* What was asked for, */
    for (int k = 0; k < POINTS; ++k) {
        f[k] = 0.5 * k / (POINTS - 1);
        above[k] = (f[k] - cutoff) / (width * sqrt(2));
        below[k] = (f[k] + cutoff) / (width * sqrt(2));
    }
    _arqdErfc(POINTS, above, above);
    _arqdErfc(POINTS, below, below);

    /* and what came out. */
    for (int k = 0; k < POINTS; ++k) {
        response[k] = 0;
        for (int i = 0; i < TAPS; ++i) wave[i] = 2 * f[k] * (i - SIDE);
        _arqdCospi(TAPS, wave, wave);
        _arqdMul(TAPS, wave, h, wave);
        for (int i = 0; i < TAPS; ++i) response[k] += wave[i];
        worst = fmax(worst, fabs(response[k] - (above[k] - below[k]) / 2));
        greatest = fmax(greatest, response[k]);
    }
    printf("%d taps; response at 0, 0.08, 0.1, 0.12, 0.2:", TAPS);
    for (int k = 0; k < POINTS; ++k)
        if (k == 0 || k == 80 || k == 100 || k == 120 || k == 200) printf(" %.6f", response[k]);
    printf("\nlargest difference from the error function %.2g, overshoot %.2g\n", worst, fmax(greatest - 1, 0));
    return worst < 1e-14 && greatest < 1 + 1e-14 ? 0 : 1;
}
