/* The price of a European call by Monte Carlo, with its error bar, on all threads.
 *
 * In the Black-Scholes model the stock ends at S e^x, x being normal with the mean (r - v^2/2) T and the deviation
 * v sqrt(T), and the call is worth the mean of e^(-rT) max(S e^x - K, 0). Its standard error is the deviation of one path
 * over the square root of their number, and the exact price is S Phi(d1) - K e^(-rT) Phi(d2).
 *
 * Every piece of the work takes a stretch of its own of one sequence of random numbers, which it finds by skip-ahead: one
 * uniform number gives one normal number. So the price does not depend on the number of threads, to the last bit. */
#include <math.h>
#include <orv/random.h>
#include <orv/services.h>
#include <orv/vecmath.h>
#include <stdio.h>

enum { PIECES = 64, BLOCKS = 16, BLOCK = 2048 };

static const double spot = 100, strike = 105, rate = 0.03, volatility = 0.2, years = 1;

typedef struct {
    double sum, squares;
    int32_t status;
} Piece;

static void simulate(int32_t index, int32_t reserved, int32_t count, void* args) {
    Piece* piece = (Piece*)args + index;
    const uint32_t seed = 2024;
    double x[BLOCK];
    Stream* stream;
    (void)reserved;
    (void)count;
    piece->sum = piece->squares = 0;
    piece->status = __kuzNewStreamEx(&stream, BrngMRG32K3A, 1, &seed);
    if (piece->status != StatusOk) return;
    piece->status = __kuzSkipAheadStream(stream, (uint64_t)index * BLOCKS * BLOCK);
    for (int block = 0; block < BLOCKS && piece->status == StatusOk; ++block) {
        piece->status = _kuzdRngGaussian(GaussianInverseCdf, stream, BLOCK, x,
                                         (rate - volatility * volatility / 2) * years, volatility * sqrt(years));
        _arqdExp(BLOCK, x, x);
        for (int i = 0; i < BLOCK; ++i) {
            const double gain = spot * x[i] > strike ? spot * x[i] - strike : 0;
            piece->sum += gain;
            piece->squares += gain * gain;
        }
    }
    __kuzDeleteStream(&stream);
}

/* Prices on at most `threads` threads (0: as many as there are). Returns a status. */
static int32_t price(int32_t threads, double* value, double* error) {
    const double paths = (double)PIECES * BLOCKS * BLOCK;
    Piece pieces[PIECES];
    double sum = 0, squares = 0;
    orv_kuz_serv_threader_for(PIECES, threads, pieces, simulate);
    for (int i = 0; i < PIECES; ++i) {
        if (pieces[i].status != StatusOk) return pieces[i].status;
        sum += pieces[i].sum;
        squares += pieces[i].squares;
    }
    *value = exp(-rate * years) * sum / paths;
    *error = exp(-rate * years) * sqrt((squares / paths - sum / paths * (sum / paths)) / paths);
    return StatusOk;
}

static double phi(double x) { return erfc(-x / sqrt(2)) / 2; }

int main(void) {
    double value, error, alone, alone_error;
    const int32_t status = price(0, &value, &error);
    if (status != StatusOk || price(1, &alone, &alone_error) != StatusOk) {
        fprintf(stderr, "status %d\n", (int)status);
        return 1;
    }
    const double d1 = (log(spot / strike) + (rate + volatility * volatility / 2) * years) / (volatility * sqrt(years));
    const double exact = spot * phi(d1) - strike * exp(-rate * years) * phi(d1 - volatility * sqrt(years));
    printf("price %.4f +- %.4f, exact %.4f\n", value, error, exact);
    printf("on one thread %s\n", alone == value ? "the same" : "another");
    return fabs(value - exact) < 4 * error && error < 0.02 && alone == value ? 0 : 1;
}
