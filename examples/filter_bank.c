/* A filter bank: how strong each frequency is in a signal, one Gaussian band pass for each channel.
 *
 * Channel f multiplies the signal by the window w(t) = exp(-t^2 / (2 s^2)) / sum and by cos and sin of 2 pi f t, and sums: that
 * is the filter of frequency response exp(-2 pi^2 s^2 (g - f)^2) around f, looked at in the middle of the block. For a tone of
 * amplitude A at the channel's own frequency both sums together have the length A/2. Sines and cosines, products and
 * lengths are made an array at a time; frequencies are in cycles per sample. */
#include <math.h>
#include <orv/vecmath.h>
#include <stdio.h>
#include <string.h>

enum { N = 2048, CHANNELS = 24, TONES = 2 };

int main(void) {
    const double tone_frequency[TONES] = {0.05, 0.13}, tone_amplitude[TONES] = {1, 0.25};
    const double s = N / 14.0; /* the window ends at 7 s, where it is 2e-11 */
    static double t[N], window[N], signal[N], turn[N], sine[N], cosine[N];
    double in_phase[CHANNELS], quadrature[CHANNELS], strength[CHANNELS], sum = 0, worst = 0;

    for (int i = 0; i < N; ++i) {
        t[i] = i - (N - 1) / 2.0;
        window[i] = -t[i] * t[i] / (2 * s * s);
    }
    _arqdExp(N, window, window);
    for (int i = 0; i < N; ++i) sum += window[i];

    memset(signal, 0, sizeof signal);
    for (int k = 0; k < TONES; ++k) {
        for (int i = 0; i < N; ++i) turn[i] = 2 * tone_frequency[k] * t[i] + 0.3 * k;
        _arqdCospi(N, turn, cosine);
        for (int i = 0; i < N; ++i) signal[i] += tone_amplitude[k] * cosine[i];
    }

    _arqdMul(N, signal, window, signal);
    for (int c = 0; c < CHANNELS; ++c) {
        const double frequency = 0.01 * (c + 1);
        for (int i = 0; i < N; ++i) turn[i] = 6.28318530717958648 * frequency * t[i];
        _arqdSinCos(N, turn, sine, cosine);
        _arqdMul(N, signal, cosine, cosine);
        _arqdMul(N, signal, sine, sine);
        in_phase[c] = quadrature[c] = 0;
        for (int i = 0; i < N; ++i) {
            in_phase[c] += 2 / sum * cosine[i];
            quadrature[c] += 2 / sum * sine[i];
        }
    }
    _arqdHypot(CHANNELS, in_phase, quadrature, strength);

    for (int c = 0; c < CHANNELS; ++c) {
        double exact = 0;
        for (int k = 0; k < TONES; ++k)
            if (fabs(0.01 * (c + 1) - tone_frequency[k]) < 1e-12) exact = tone_amplitude[k];
        worst = fmax(worst, fabs(strength[c] - exact));
        printf("%.2f  %.9f  ", 0.01 * (c + 1), strength[c]);
        for (int bar = 0; bar < lround(40 * strength[c]); ++bar) putchar('#');
        putchar('\n');
    }
    printf("largest difference from the tones that went in %.2g\n", worst);
    return worst < 1e-8 ? 0 : 1;
}
