/* Random numbers: the basic generators, the arithmetic of their jumps, and the distributions.
 *
 *     #include <math.h>
 *     #include <orv/random.h>
 *     #include <stdint.h>
 *     #include <stdio.h>
 *
 *     enum { N = 10000 };
 *
 *     int main(void) {
 *         const uint32_t seed = 1;
 *         static double x[N];
 *         double sum = 0;
 *         Stream* stream;
 *         if (__kuzNewStreamEx(&stream, BrngPHILOX4X32X10, 1, &seed) != StatusOk) return 1;
 *         // normal numbers of mean 5 and standard deviation 2
 *         if (_kuzdRngGaussian(GaussianInverseCdf, stream, N, x, 5, 2) != StatusOk) return 1;
 *         for (int i = 0; i < N; ++i) sum += x[i];
 *         printf("mean %s\n", fabs(sum / N - 5) < 3 * 2 / sqrt(N) ? "within 3 standard errors of 5" : "off");
 *         __kuzDeleteStream(&stream);
 *         return 0;
 *     }
 *
 * It prints
 *
 *     mean within 3 standard errors of 5
 *
 * A basic generator has four entries, which stand in its row of the registry (streams.h): an initStream that seeds and
 * jumps, and three kernels that write n numbers to r: single and double precision, uniform on the interval from a to b,
 * and raw words. A call of n numbers followed by a call of m numbers gives the numbers of one call of n + m.
 * Statuses are those of streams.h. Every entry uses the C calling convention.
 *
 * Names. __kuz<type>BRng<Name> are the generators, _kuz<type>Rng<Distribution> the distributions; the type is that of the
 * numbers: s (float), d (double), i (32-bit integers, or words).
 *
 * A distribution's arguments are a method, the stream, the count n, the array r of n numbers (or points, where a comment
 * says so), and the parameters, which have the unit of the numbers unless they are shapes or probabilities. No pointer may
 * be null, r neither unless n is 0 or below. errno is left alone. */
#ifndef ORV_RANDOM_H
#define ORV_RANDOM_H

#include <orv/streams.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Basic generators ------------------------------------------------------------------------------------------- */

/* The four entries of a generator. */
#define ORV_BRNG_ENTRIES(name)                                                                          \
    int32_t __kuzBRng##name##InitStream(int32_t method, Stream* stream, int32_t n, const void* params); \
    int32_t __kuzsBRng##name(Stream* stream, int32_t n, float* r, float a, float b);                    \
    int32_t __kuzdBRng##name(Stream* stream, int32_t n, double* r, double a, double b);                 \
    int32_t __kuziBRng##name(Stream* stream, int32_t n, void* r);

/* MCG31M1: x(n+1) = 1132489760 x(n) mod 2^31 - 1, the state's x being the first output.
 * Seed: seed[0] mod 2^31 - 1, where 0 becomes 1; no seed gives 1. Words of 31 bits, never 0. Period 2^31 - 2.
 * Has leapfrog and skip-ahead. A call with n = 0 writes r[0] and moves on by one.
 * P. L'Ecuyer, "Tables of linear congruential generators of different sizes and good lattice structure", 1999. */
ORV_BRNG_ENTRIES(MCG31M1)

/* MCG59: x(n+1) = 13^13 x(n) mod 2^59, the state's x being the first output.
 * Seed: seed[0] + 2^32 (seed[1] mod 2^27), where 0 becomes 1. An odd seed gives the period 2^57, an even one a shorter.
 * Words of 59 bits in 8 bytes. Has leapfrog and skip-ahead.
 * D. E. Knuth, "The Art of Computer Programming", volume 2, 3.2.1.2 and 3.3.4. */
ORV_BRNG_ENTRIES(MCG59)

/* MRG32K3A: the combined multiple recursive generator
 *   x(n) = 1403580 x(n-2) - 810728 x(n-3) mod 2^32 - 209, y(n) = 527612 y(n-1) - 1370589 y(n-3) mod 2^32 - 22853,
 *   z(n) = x(n) - y(n) mod 2^32 - 209.
 * Seed: up to six words x0, x1, x2, y0, y1, y2, missing ones 1; each is brought below its modulus by one subtraction,
 * and a triple of zeros gets a 1 at its head. Words z of 32 bits. Period about 2^191. Has skip-ahead, also by counts of
 * several words.
 * P. L'Ecuyer, "Good parameters and implementations for combined multiple recursive random number generators",
 * Operations Research 47, 1999. */
ORV_BRNG_ENTRIES(MRG32K3A)

/* Sobol: points of a low-discrepancy sequence over GF(2), handed out coordinate by coordinate, in Gray code order from the
 * first point that is not zero on. Words of 32 bits; floating numbers are (word >> 1) 2^-31 (b - a) + a, for floats in
 * single precision throughout. Kernels return BrngStatusQrngExhausted, and do nothing, when the index of the point plus n
 * passes 2^32 - 1. Leapfrog with nstreams 0x7FFFFFFF chooses coordinate k alone. Has skip-ahead, by coordinates.
 *
 * Seed: the dimension, 1 to 40 with the built-in numbers; another one, and no seed, gives 1. User data follow in a block of
 * n words: dimension, 1, kind, data. A block that is too short for its kind or not one of these is dropped, and the
 * built-in numbers serve:
 *   kind 1   dimension - 1 polynomials (bit patterns) for dimensions 2 up; at most 40 dimensions. The initial numbers are
 *            the built-in ones; a degree above 8 makes seeding return -3
 *   kind 2   D, 1 to 32; dimension - 1 rows of D initial numbers for the built-in polynomials; at most 40 dimensions
 *   kind 3   dimension - 1 polynomials, of degrees 1 to D; D; dimension - 1 rows of D initial numbers
 *   kind 11  the same for `dimension` dimensions, the first included
 *   kind 4   32 direction numbers a dimension
 * Kinds 3, 4 and 11 put their numbers in chunks of the stream, which copies share.
 * I. M. Sobol', USSR Computational Mathematics 7, 1967; I. A. Antonov, V. M. Saleev, the same 19, 1979; built-in numbers:
 * P. Bratley, B. L. Fox, "Algorithm 659", ACM Transactions on Mathematical Software 14, 1988. */
ORV_BRNG_ENTRIES(Sobol)

/* Niederr: likewise Niederreiter's sequence in base 2. The built-in numbers are those of the first 318 irreducible
 * polynomials. User data: kind 1 with `dimension` polynomials of degrees 1 to 31, kind 4 with 32 direction numbers a
 * dimension; above 318 dimensions the numbers and the point are in a chunk.
 * H. Niederreiter, "Low-discrepancy and low-dispersion sequences", Journal of Number Theory 30, 1988; P. Bratley,
 * B. L. Fox, H. Niederreiter, "Implementation and tests of low-discrepancy sequences", ACM Transactions on Modeling and
 * Computer Simulation 2, 1992. */
ORV_BRNG_ENTRIES(Niederr)

/* PHILOX4X32X10: blocks of four words, each ten rounds of multiplications applied to a 128-bit counter under a 64-bit key.
 * Seed: key (2 words), counter (4 words, lowest first); missing words are 0. Words of 32 bits, period 2^130.
 * Floating numbers count the word as signed: s x + m with s = (b - a) 2^-32 and m = (a + b) / 2, for floats in single
 * precision throughout. Has skip-ahead, also by counts of several words, of which the lowest three count.
 * J. K. Salmon, M. A. Moraes, R. O. Dror, D. E. Shaw, "Parallel random numbers: as easy as 1, 2, 3", SC11, 2011. */
ORV_BRNG_ENTRIES(PHILOX4X32X10)

/* ARS5: likewise blocks of four words, from five rounds of AES with round keys that a Weyl sequence gives.
 * Seed: key (4 words), counter (4 words); otherwise as PHILOX4X32X10, in the same paper. Kernels and skip-ahead return
 * ArsStatusNotSupported on a processor without the AES instructions. */
ORV_BRNG_ENTRIES(ARS5)

/* TRNG: the processor's hardware source, RDRAND, without a sequence to repeat, to skip in or to save.
 * Seed: seed[1] is the number of further attempts when the source has no number ready, 10 if missing or 0; seed[0] is not
 * used. Words of 32 bits. A double is made of 64 bits, a float of 32. Kernels return TrngStatusNotSupported on a processor
 * without the instruction, and TrngStatusRetriesExhausted with the numbers before written. */
ORV_BRNG_ENTRIES(TRNG)

/* MT19937: the Mersenne twister of period 2^19937 - 1.
 * Seed: the published initialisation by an array, the seed words being the key; no words are the key of the word 1. Words
 * of 32 bits. Has skip-ahead, which may return StatusNoMemory: the stream then stands at the end of its current block,
 * not yet at the target.
 * M. Matsumoto, T. Nishimura, "Mersenne twister: a 623-dimensionally equidistributed uniform pseudo-random number
 * generator", ACM Transactions on Modeling and Computer Simulation 8, 1998. */
int32_t __kuzBRngMT19937InitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuzsBRngMT19937(Stream* stream, int32_t n, float* r, float a, float b);
int32_t __kuzdBRngMT19937(Stream* stream, int32_t n, double* r, double a, double b);
int32_t __kuziBRngMT19937(Stream* stream, int32_t n, void* r);

/* MT2203: 6024 Mersenne twisters of period 2^2203 - 1 with different characteristic polynomials, for as many independent
 * streams; the member is added to the id. Seed as for MT19937. Words of 32 bits. No jumps.
 * M. Matsumoto, T. Nishimura, "Dynamic creation of pseudorandom number generators", Monte Carlo and Quasi-Monte Carlo
 * Methods 1998. */
int32_t __kuzBRngMT2203InitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuzsBRngMT2203(Stream* stream, int32_t n, float* r, float a, float b);
int32_t __kuzdBRngMT2203(Stream* stream, int32_t n, double* r, double a, double b);
int32_t __kuziBRngMT2203(Stream* stream, int32_t n, void* r);

/* SFMT19937: the SIMD-oriented Mersenne twister, of a period that is a multiple of 2^19937 - 1.
 * Seed: its published initialisation by an array. Words of 32 bits. The floating-point kernels read a word as a signed
 * integer: a word below 2^31 lands in the upper half of the interval. Single precision is computed in single precision.
 * Has skip-ahead; StatusNoMemory as for MT19937.
 * M. Saito, M. Matsumoto, "SIMD-oriented fast Mersenne twister: a 128-bit pseudorandom number generator", Monte Carlo and
 * Quasi-Monte Carlo Methods 2006. */
int32_t __kuzBRngSFMT19937InitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuzsBRngSFMT19937(Stream* stream, int32_t n, float* r, float a, float b);
int32_t __kuzdBRngSFMT19937(Stream* stream, int32_t n, double* r, double a, double b);
int32_t __kuziBRngSFMT19937(Stream* stream, int32_t n, void* r);

/* R250: the generalised feedback shift register x(n) = x(n - 250) xor x(n - 147), of period 2^250 - 1.
 * Seed: 250 words or more are the register. Otherwise seed[0], where 0 becomes 1 as no seed does, starts the congruence
 * t = 69069 t mod 2^32 that fills it, and 32 of its words are made linearly independent. The two lowest bits of such a
 * register hardly change, and it takes millions of numbers until they and their sum are 1 half the time
 * (docs/randomness.md): where low bits matter, seed with 250 words of another generator. Words of 32 bits. No jumps.
 * S. Kirkpatrick, E. Stoll, "A very fast shift-register sequence random number generator", Journal of Computational
 * Physics 40, 1981. */
int32_t __kuzBRngR250InitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuzsBRngR250(Stream* stream, int32_t n, float* r, float a, float b);
int32_t __kuzdBRngR250(Stream* stream, int32_t n, double* r, double a, double b);
int32_t __kuziBRngR250(Stream* stream, int32_t n, void* r);

/* WH: 273 generators, each the sum of four multiplicative congruences modulo primes just below 2^24, of period about 2^93;
 * the member is added to the id. The state's residues are the first output.
 * Seed: a word for each residue, taken modulo its modulus, where 0 becomes 1; missing ones are 1. A raw word is the four
 * residues in 16 bytes, and n counts such words. Floating-point numbers are the fraction of the sum of the residues over
 * their moduli, computed toward zero whatever the rounding mode. Has leapfrog and skip-ahead.
 * B. A. Wichmann, I. D. Hill, "An efficient and portable pseudo-random number generator", Applied Statistics 31, 1982;
 * N. M. Maclaren, "The generation of multiple independent sequences of pseudorandom numbers", Applied Statistics 38, 1989. */
int32_t __kuzBRngWHInitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuzsBRngWH(Stream* stream, int32_t n, float* r, float a, float b);
int32_t __kuzdBRngWH(Stream* stream, int32_t n, double* r, double a, double b);
int32_t __kuziBRngWH(Stream* stream, int32_t n, void* r);

/* The generators behind abstract streams, whose creators (streams.h) make the block that seeding takes. The kernel for the
 * type of the ring hands out its numbers, floating-point ones mapped from the ring's interval to the one asked for, and
 * calls the callback whenever the ring is empty. Returns StatusNullFunction for a null ring, AbstractStatusBadUpdate
 * for a callback's result below 0 or above *nmax, AbstractStatusNoNumbers for 0; the stream then stands as before the
 * call. No jumps. */
int32_t __kuzBRngiAbstractInitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuzBRngdAbstractInitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuzBRngsAbstractInitStream(int32_t method, Stream* stream, int32_t n, const void* params);
int32_t __kuziBRngiAbstract(Stream* stream, int32_t n, void* r);
int32_t __kuzdBRngdAbstract(Stream* stream, int32_t n, double* r, double a, double b);
int32_t __kuzsBRngsAbstract(Stream* stream, int32_t n, float* r, float a, float b);

/* The kernels of an abstract stream for numbers of another type than its ring's: they return AbstractStatusWrongKernel
 * and write nothing. */
int32_t __kuzdBRngiAbstract(Stream* stream, int32_t n, double* r, double a, double b);
int32_t __kuzsBRngiAbstract(Stream* stream, int32_t n, float* r, float a, float b);
int32_t __kuziBRngdAbstract(Stream* stream, int32_t n, void* r);
int32_t __kuzsBRngdAbstract(Stream* stream, int32_t n, float* r, float a, float b);
int32_t __kuziBRngsAbstract(Stream* stream, int32_t n, void* r);
int32_t __kuzdBRngsAbstract(Stream* stream, int32_t n, double* r, double a, double b);

#undef ORV_BRNG_ENTRIES

/* ---- Arithmetic of jumps ---------------------------------------------------------------------------------------- */

/* a^n mod m, by square and multiply; n = 0 gives 1 for every a and m. m must not be 0. */
uint32_t __kuziPowMod(uint32_t a, uint64_t n, uint32_t m);
/* a^n mod 2^31 - 1 */
uint32_t __kuziPowMod2P31M1(uint32_t a, uint64_t n);
/* a^n mod 2^59 */
uint64_t __kuziPowMod2P59(uint64_t a, uint64_t n);

/* Replaces `vector` (3 words below m, oldest first) by C^n vector mod m, where C is the one-step matrix with the rows
 * (0, 1, 0), (0, 0, 1), (row[2], row[1], row[0]): n steps of v(k) = row[0] v(k-1) + row[1] v(k-2) + row[2] v(k-3) mod m.
 * Words of row are below m, m is above 1. */
void __kuziVect3PowMod(uint32_t* vector, const uint32_t* row, uint32_t m, uint64_t n);
/* The same for a count of n 64-bit words, least significant first. */
void __kuziVect3PowArrayMod(uint32_t* vector, const uint32_t* row, uint32_t m, int32_t n, const uint64_t* count);
/* The same modulo 2^32 - 209 and 2^32 - 22853 by a table of 193 matrices (3 rows of 3 words), entry k being the one-step
 * matrix to the power 2^k. The count is below 2^193: higher bits are ignored. */
void __kuziVect3PowArrayMod_M1(uint32_t* vector, int32_t n, const uint64_t* count, const uint32_t* table);
void __kuziVect3PowArrayMod_M2(uint32_t* vector, int32_t n, const uint64_t* count, const uint32_t* table);

/* x^n modulo a polynomial over GF(2) of the given degree; n is read as unsigned. `terms` are the exponents of its nonzero
 * terms, increasing, the last one being the degree. The result stands in the first `words` 32-bit words of `out` as bits,
 * bit i the coefficient of x^i. 32 * words is at least the degree, and `out` has room for twice as many words.
 * Returns StatusOk or StatusNoMemory. */
int32_t __kuzPolyRem(int64_t n, int64_t degree, int32_t term_count, const int32_t* terms, int32_t words, uint32_t* out);

/* The operations of a generator whose step A is linear over GF(2), on whole stream records. */
typedef void (*JumpZeroState)(Stream* state);                      /* all state words and the position become 0 */
typedef void (*JumpAddState)(Stream* dest, const Stream* source);  /* dest ^= source, each from its own position on */
typedef void (*JumpCopyState)(Stream* dest, const Stream* source); /* dest = source */
typedef void (*JumpStepState)(Stream* state);                      /* one step of the recurrence */
/* Stores the result in the stream in the form that its kernels expect. */
typedef void (*JumpFinishState)(Stream* stream, const Stream* state, int32_t adjust);
/* Takes from the current block what it can serve. Returns 0 when the jump is complete; else *nskip is the rest. */
typedef int32_t (*JumpPreSkip)(Stream* stream, uint64_t* nskip, int32_t* adjust);

/* Move a stream forward by nskip steps: with g = x^nskip modulo the characteristic polynomial of A (degree and terms as
 * for __kuzPolyRem), the new state is g(A) times the old one. `words` is the number of 32-bit words of g, `state_bytes`
 * the size of the record. The first evaluates g by Horner's rule, the second by a sliding window of 8 bits, which costs
 * a table of 128 states and saves most of the additions; the results are the same. Return StatusOk or StatusNoMemory
 * (the stream is then as pre_skip left it).
 * H. Haramoto, M. Matsumoto, T. Nishimura, F. Panneton, P. L'Ecuyer, "Efficient jump ahead for F2-linear random number
 * generators", INFORMS Journal on Computing 20, 2008. */
int32_t __kuz_SkipAheadHorner(Stream* stream, JumpZeroState zero, JumpAddState add, JumpCopyState copy,
                              JumpStepState step, JumpFinishState finish, JumpPreSkip pre_skip, uint64_t nskip,
                              int32_t words, int32_t degree, int32_t state_bytes, int32_t term_count,
                              const int32_t* terms);
int32_t __kuz_SkipAheadSWin(Stream* stream, JumpZeroState zero, JumpAddState add, JumpCopyState copy,
                            JumpStepState step, JumpFinishState finish, JumpPreSkip pre_skip, uint64_t nskip,
                            int32_t words, int32_t degree, int32_t state_bytes, int32_t term_count,
                            const int32_t* terms);

/* ---- Distributions ---------------------------------------------------------------------------------------------- */

/* Method bits of Uniform. */
#ifdef __cplusplus
enum UniformMethod : int32_t {
#else
enum UniformMethod {
#endif
    UniformStandard = 0,         /* values as the basic generator delivers them */
    UniformAccurate = 0x40000000 /* every value is clamped to the interval */
};

/* n numbers, uniform on the interval from a to b, by the stream's basic generator. Only bit 30 of `method` is read.
 * Rounding may give a value just outside the interval; UniformAccurate clamps it to min(b, max(a, value)).
 * A negative status of the generator is returned, with no clamping. The generator is called for any n; one of 0 or below
 * draws and writes nothing, but for MCG31M1, which writes r[0] and moves on by one. */
int32_t _kuzsRngUniform(int32_t method, Stream* stream, int32_t n, float* r, float a, float b);
int32_t _kuzdRngUniform(int32_t method, Stream* stream, int32_t n, double* r, double a, double b);

/* n numbers of a continuous distribution from uniforms u by its formula, in the order of the stream. a is a displacement,
 * beta a scale; `method` is not read. Logarithms, powers and the like have the least accuracy of the vector mathematics in
 * double precision (about 26 bits) and about 1 ulp in single. An n of 0 or below draws and writes nothing. Parameters are
 * not checked. A negative status of the generator is returned at once; else the result is its last status.
 *
 * A uniform of 0 counts as the least positive number: no logarithm is infinite. Exceptions are masked, errors go to the
 * distribution alone, and the thread's mode, callback, x87 control word and MXCSR are on return as before; errno is left
 * alone. Cauchy works in the caller's error mode instead, and restores the mode.
 * L. Devroye, "Non-Uniform Random Variate Generation", 1986, chapter II.2. */

/* Exponential: max(a, a - beta ln u) */
int32_t _kuzsRngExponential(int32_t method, Stream* stream, int32_t n, float* r, float a, float beta);
int32_t _kuzdRngExponential(int32_t method, Stream* stream, int32_t n, double* r, double a, double beta);
/* Laplace: a - beta ln u where a second uniform is at most 1/2, otherwise a + beta ln u. The two stand side by side in the
 * stream. The generator is asked for a last, possibly empty, part of the numbers too, and its status for that is the result: when
 * n is a multiple of 1024, MCG31M1 moves on by one more. */
int32_t _kuzsRngLaplace(int32_t method, Stream* stream, int32_t n, float* r, float a, float beta);
int32_t _kuzdRngLaplace(int32_t method, Stream* stream, int32_t n, double* r, double a, double beta);
/* Weibull: max(a, a + beta (-ln u)^(1/alpha)) */
int32_t _kuzsRngWeibull(int32_t method, Stream* stream, int32_t n, float* r, float alpha, float a, float beta);
int32_t _kuzdRngWeibull(int32_t method, Stream* stream, int32_t n, double* r, double alpha, double a, double beta);
/* Cauchy: a + beta tan u with u uniform on (-pi/2, pi/2) */
int32_t _kuzsRngCauchy(int32_t method, Stream* stream, int32_t n, float* r, float a, float beta);
int32_t _kuzdRngCauchy(int32_t method, Stream* stream, int32_t n, double* r, double a, double beta);
/* Rayleigh: max(a, a + beta sqrt(-ln u)), which has the density 2 (x - a) / beta^2 exp(-((x - a) / beta)^2) */
int32_t _kuzsRngRayleigh(int32_t method, Stream* stream, int32_t n, float* r, float a, float beta);
int32_t _kuzdRngRayleigh(int32_t method, Stream* stream, int32_t n, double* r, double a, double beta);
/* Gumbel: a + beta ln e with e exponential of displacement 0 and scale 1 */
int32_t _kuzsRngGumbel(int32_t method, Stream* stream, int32_t n, float* r, float a, float beta);
int32_t _kuzdRngGumbel(int32_t method, Stream* stream, int32_t n, double* r, double a, double beta);

/* Methods of Gaussian. */
#ifdef __cplusplus
enum GaussianMethod : int32_t {
#else
enum GaussianMethod {
#endif
    GaussianBoxMuller = 0,       /* two uniforms give one number */
    GaussianBoxMullerPaired = 1, /* two uniforms give two numbers, the second kept with the stream for the next call */
    GaussianInverseCdf = 2       /* one uniform gives one number, by the inverse error function */
};

/* n normal numbers with the mean a and the standard deviation sigma. `method` is one of the above and not checked; the
 * rest is as for Exponential. With GaussianBoxMullerPaired the numbers do not depend on how a request is cut into calls;
 * a number kept from one call takes the mean and deviation of the call that gives it out, and the two types keep one
 * each, in a chunk of the stream (id 2), which copies and images have too; without memory for it the result is
 * StatusNoMemory. GaussianInverseCdf keeps within 8.3 (s: 5.5) deviations.
 * G. E. P. Box, M. E. Muller, "A note on the generation of random normal deviates", Annals of Mathematical Statistics 29,
 * 1958. */
int32_t _kuzsRngGaussian(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma);
int32_t _kuzdRngGaussian(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma);

/* How the factor of a covariance matrix is stored. */
#ifdef __cplusplus
enum MatrixStorage : int32_t {
#else
enum MatrixStorage {
#endif
    MatrixStorageFull = 0,    /* dimen by dimen numbers, row after row; the lower triangle is read */
    MatrixStoragePacked = 1,  /* the lower triangle by columns, dimen (dimen + 1) / 2 numbers */
    MatrixStorageDiagonal = 2 /* the dimen numbers of the diagonal */
};

/* n vectors of dimen normal numbers, n dimen numbers in r, vector after vector: t z + a with the means a, dimen numbers, and
 * the lower triangular factor t, whose product with its transpose is the covariance matrix; z are numbers of Gaussian by
 * `method` in one call. With a dimen of 1, t[0] is the deviation, whatever the storage; with a storage that is none of
 * the above the numbers stay as they are in z. n dimen is at most 2^31 - 1. The product is the core library's. */
int32_t _kuzsRngGaussianMV(int32_t method, Stream* stream, int32_t n, float* r, int32_t dimen, int32_t mstorage,
                           const float* a, const float* t);
int32_t _kuzdRngGaussianMV(int32_t method, Stream* stream, int32_t n, double* r, int32_t dimen, int32_t mstorage,
                           const double* a, const double* t);

/* Methods of Lognormal: how its normal numbers are made. Any other value is as LognormalInverseCdf. */
#ifdef __cplusplus
enum LognormalMethod : int32_t {
#else
enum LognormalMethod {
#endif
    LognormalBoxMullerPaired = 0, /* GaussianBoxMullerPaired */
    LognormalInverseCdf = 1       /* GaussianInverseCdf */
};

/* Lognormal: max(b, b + beta e^g) with g normal of mean a and deviation sigma. The exponential function runs in the
 * caller's error mode. */
int32_t _kuzsRngLognormal(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma, float b,
                          float beta);
int32_t _kuzdRngLognormal(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma, double b,
                          double beta);

/* n numbers of gamma-like distributions, made in blocks of candidates, of which those that a test rejects are drawn again;
 * the rest is as for Exponential. Blocks start with the call: what is drawn depends on how a request is cut into calls,
 * except for the shapes that are made by inversion.
 * L. Devroye, "Non-Uniform Random Variate Generation", 1986, chapter IX. */

/* Gamma: a + beta x, x with the density x^(alpha-1) e^-x / Gamma(alpha). `method` is not read. An alpha of 1 is Exponential.
 * Above 1: a block draws its normal numbers as GaussianBoxMullerPaired does, with a number kept in a chunk (id 7) of each
 * type, then its uniforms; StatusNoMemory without memory for it. Below 1: two uniforms a candidate. In single precision
 * small shapes have much of their mass below the least number, and give it as a.
 * G. Marsaglia, W. W. Tsang, "A simple method for generating gamma variables", ACM Transactions on Mathematical Software
 * 26, 2000; I. Vaduva, "On computer generation of gamma random variables by rejection and composition procedures",
 * Mathematische Operationsforschung und Statistik 8, 1977. */
int32_t _kuzsRngGamma(int32_t method, Stream* stream, int32_t n, float* r, float alpha, float a, float beta);
int32_t _kuzdRngGamma(int32_t method, Stream* stream, int32_t n, double* r, double alpha, double a, double beta);

/* Beta: a + beta x, x with the density x^(p-1) (1-x)^(q-1) / B(p, q). Of `method` only UniformAccurate is read, with which
 * results are clamped to min(a + beta, max(a, result)). p and q of 1 are Uniform from a to a + beta; with one of them 1, a
 * number takes one uniform; else a candidate takes two.
 * R. C. H. Cheng, "Generating beta variates with nonintegral shape parameters", Communications of the ACM 21, 1978;
 * M. D. Joehnk, "Erzeugung von betaverteilten und gammaverteilten Zufallszahlen", Metrika 8, 1964; A. C. Atkinson,
 * J. Whittaker, "A switching algorithm for the generation of beta random variables", Journal of the Royal Statistical
 * Society A 139, 1976. */
int32_t _kuzsRngBeta(int32_t method, Stream* stream, int32_t n, float* r, float p, float q, float a, float beta);
int32_t _kuzdRngBeta(int32_t method, Stream* stream, int32_t n, double* r, double p, double q, double a, double beta);

/* ChiSquare: the sum of v squared standard normal numbers. `method` is not read. A v of 1 or 3 squares and adds numbers of
 * GaussianInverseCdf; an even v up to 16 takes the logarithm of a product of v / 2 uniforms; others are Gamma of shape
 * v / 2 and scale 2. */
int32_t _kuzsRngChiSquare(int32_t method, Stream* stream, int32_t n, float* r, int32_t v);
int32_t _kuzdRngChiSquare(int32_t method, Stream* stream, int32_t n, double* r, int32_t v);

/* n integers, uniform on a to b - 1: the double-precision uniforms rounded down. `method` is not read. An n of 0 draws
 * nothing. */
int32_t _kuziRngUniform(int32_t method, Stream* stream, int32_t n, int32_t* r, int32_t a, int32_t b);

/* n raw words of the generator, of its row's wordBytes each. */
int32_t _kuziRngUniformBits(int32_t method, Stream* stream, int32_t n, void* r);

/* n words of 32 or 64 random bits. MCG59 gives the upper 32 bits of its words, the earlier one in the low half of a
 * 64-bit word; MT19937, MT2203, SFMT19937, TRNG, ARS5 and PHILOX4X32X10 give their words as they are, two for 64 bits.
 * The other generators, and registered ones, return BrngStatusNoFullWidth. n for 64 bits is at most 2^30 - 1. */
int32_t _kuziRngUniformBits32(int32_t method, Stream* stream, int32_t n, uint32_t* r);
int32_t _kuziRngUniformBits64(int32_t method, Stream* stream, int32_t n, uint64_t* r);

/* n integers, 1 with probability p and 0 otherwise: 1 where the single-precision uniform on 0 to 1 is below the float of
 * p. `method` is not read. */
int32_t _kuziRngBernoulli(int32_t method, Stream* stream, int32_t n, int32_t* r, double p);

/* n integers, the number of failures before the first success, of probability p each: ln u / ln(1 - p) truncated, u a
 * single-precision uniform, frame and n as for Exponential. `method` is not read. A p of 1 and above gives 0. What is 2^31
 * and above is given as 2^31 - 1, also where 1 - p rounds to 1; a uniform of 1 gives 0. The uniforms have a spacing of
 * 2^-24 next to 1, so that numbers below about 2^-24/p come in steps. */
int32_t _kuziRngGeometric(int32_t method, Stream* stream, int32_t n, int32_t* r, double p);

/* Discrete distributions. n integers each; an n of 0 or below draws and writes nothing. Parameters are not checked. A
 * setup is kept with the stream, in one chunk for each distribution, and serves later calls with the same parameters;
 * without memory for it the result is StatusNoMemory. A negative status of the generator is returned at once, with the
 * numbers before it written; else the result is its last status. What a method makes of the uniforms begins anew with each
 * call: by rejection, two calls do not give the numbers of one. Poisson, Hypergeometric and Negbinomial keep the thread's
 * state as Exponential does. A setup that a damaged image brought along may give wrong numbers, but ends.
 * Rejection works in single precision: above 2^24 its results are multiples of the spacing of floats, which bends the
 * distribution function by up to 0.2 spacings over the standard deviation (Poisson of mean 10^8: 1.7e-4, measured). Below
 * that 10^9 numbers of each of thirteen cases show nothing: the distances are chance's, 3.2e-5 at most. */

/* Binomial: successes in ntrial trials of probability p. With p at 1/2 and above the failures are drawn. A mean (of the
 * rarer outcome) of 30 and above is drawn by rejection, one below from a table of the distribution function. `method` is
 * not read. An ntrial of 0 gives zeros and draws nothing. A uniform of 0 reaches the caller's error mode as the logarithm
 * of 0, since this distribution has no mode of its own.
 * V. Kachitvichyanukul, B. W. Schmeiser, "Binomial random variate generation", Communications of the ACM 31, 1988. */
int32_t _kuziRngBinomial(int32_t method, Stream* stream, int32_t n, int32_t* r, int32_t ntrial, double p);

/* Methods of Poisson. */
#ifdef __cplusplus
enum PoissonMethod : int32_t {
#else
enum PoissonMethod {
#endif
    PoissonRejection = 0, /* by rejection for a mean of 27 and above, from a table below */
    PoissonNormal = 1     /* one normal number by GaussianInverseCdf gives one result; below a mean of 1 one uniform */
};

/* Poisson with the mean lambda, up to about 2^31. `method` is one of the above and not checked. PoissonNormal is an
 * approximation, whose distribution function is off by 1.02e-4 at most for means from 1 to 100 and by 1.04e-4 above; below a
 * mean of 1 it is off by 2e-9 and the spacing of floats, and results are at most 11.
 * B. W. Schmeiser, V. Kachitvichyanukul, "Poisson random variate generation", Purdue University, Research Memorandum 81-4,
 * 1981. */
int32_t _kuziRngPoisson(int32_t method, Stream* stream, int32_t n, int32_t* r, double lambda);

/* PoissonV: as PoissonNormal, result i with the mean lambda[i]. `method` is not read. The distribution function is off by
 * 3.7e-5 at most for means below 1/16, where results are at most 11, by 1.02e-4 below 8192 and by 2.2e-4 above. Nothing is
 * kept with the stream. */
int32_t _kuziRngPoissonV(int32_t method, Stream* stream, int32_t n, int32_t* r, const double* lambda);

/* Hypergeometric: marked ones in a sample of s without replacement from a lot of l with m marked. `method` is not read. The
 * number of the rarer kind in the smaller of sample and rest is drawn: with its mode below 40 from a table, which takes
 * memory in proportion to its range, else by rejection. Where there is just one possible result nothing is drawn.
 * V. Kachitvichyanukul, B. W. Schmeiser, "Computer generation of hypergeometric random variates", Journal of Statistical
 * Computation and Simulation 22, 1985. */
int32_t _kuziRngHypergeometric(int32_t method, Stream* stream, int32_t n, int32_t* r, int32_t l, int32_t s, int32_t m);

/* Negative binomial: failures before the a-th success of probability p, a any positive number. `method` is not read. With
 * (a - 1) (1 - p) / p of 100 and above, or a mean a (1 - p) / p of 10737418.24 and above, by rejection; otherwise from a
 * table, past whose end, some tens above the mode, each number is summed for step by step: a small a with a great mean takes
 * time. Results of 2^31 and above are drawn again by rejection and given as 2^31 - 1 from a table.
 * L. Devroye, "Non-Uniform Random Variate Generation", 1986, chapters VII.2 and X.4. */
int32_t _kuziRngNegbinomial(int32_t method, Stream* stream, int32_t n, int32_t* r, double a, double p);

/* Multinomial: n rows of k counts, how often each of k outcomes of the probabilities p comes in ntrial trials. `method` is
 * not read. Each row sums to ntrial. MultinomialStatusBadProbabilities is returned where k is below 1, a p is below 0 or
 * their sum is not from 0.999 to 1.001. Most trials fall as PoissonV draws them, the rest one by one, which for ntrial of
 * 16 at most and k of 16 ntrial and above are all; memory is taken for a call and given back.
 * L. Devroye, "Non-Uniform Random Variate Generation", 1986, chapter XI.1. */
int32_t _kuziRngMultinomial(int32_t method, Stream* stream, int32_t n, int32_t* r, int32_t ntrial, int32_t k,
                            const double* p);

/* Functions of one number, for the set-up of distributions and statistics: the argument by value, the result returned. A
 * float or double that is returned travels through the x87 stack on this target, which quiets signalling NaNs.
 *
 * The natural logarithm, and that of |Gamma(x)|, by the high accuracy kernels, denormal numbers kept; poles and numbers out
 * of the domain give the kernel's results and are reported in the thread's error mode. The square root, correctly rounded;
 * the largest integer not above x. The last two report nothing. */
double __kuzdLn(double x);
float __kuzsLn(float x);
double __kuzdLGamma(double x);
double __kuzdSqrt(double x);
double __kuzdFloor(double x);

#ifdef __cplusplus
}
#endif

#endif
