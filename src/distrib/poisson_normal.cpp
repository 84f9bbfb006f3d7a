// Poisson numbers from normal ones g: the integer part of a polynomial in g near the Poisson quantile at the normal
// distribution function of g. Below a mean of 1 they come from uniforms, by the partial sums of the exponential series.
#include "distrib/normals.h"
#include "distrib/poisson.h"
#include "distrib/transforms.h"
#include "simd/integers.h"

namespace orv::distrib {

namespace {

constexpr int coefficients = 24;

// By the binary exponent of lambda; data/README.md tells where they come from.
constexpr double rows[7][coefficients] = {
#include "../../data/poisson_normal.inc"
};

float* floats_of(int32_t* r) { return reinterpret_cast<float*>(r); }

// The numbers stand in r as floats and are read as such through vector loads alone.
template <class Formula>
void to_integers(int32_t n, int32_t* r, Formula f) {
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) simd::store(r + i, f(simd::floats(simd::load(r + i))));
    for (; i < n; ++i) r[i] = simd::word<0>(f(simd::floats(simd::splat_32(r[i]))));
}

// The least k with u at most the sum S(k) of lambda^j / j! to j = k, u uniform from 0 to e^lambda; above S(10) it is 11.
int32_t by_partial_sums(Stream* stream, int32_t n, int32_t* r, double lambda) {
    constexpr int sums = 11;
    __m128 partial[sums];
    double sum = 0, term = 1;
    for (int k = 0; k < sums; ++k) {
        sum += term;
        term = term * lambda / (k + 1);
        partial[k] = simd::splat(static_cast<float>(sum));
    }
    constexpr double c[] = {0.99999999789769289,  1.0000002352041819,    0.49999555884885266,   0.16669916415448055,
                            0.041548796137890399, 0.0085659307505906532, 0.0011369805324212754, 0.00033516415953945282};
    double e = c[7];
    for (int j = 6; j >= 0; --j) e = c[j] + lambda * e;
    const int32_t status = draw_uniforms(stream, n, floats_of(r), 0.0f, static_cast<float>(e));
    if (status < 0) return status;
    to_integers(n, r, [&](__m128 u) {
        __m128i k = _mm_setzero_si128();
        for (const __m128 s : partial) k = simd::subtract_32(k, simd::bits_of(simd::less(s, u)));
        return k;
    });
    return status;
}

int32_t by_row(Stream* stream, int32_t n, int32_t* r, double lambda) {
    const float rounded = static_cast<float>(lambda);
    const int32_t bits = simd::word<0>(simd::bits_of(simd::splat(rounded)));
    const int exponent = (bits >> 23) - 127;
    const double t = rounded / static_cast<double>(1 << exponent) - 1;
    const double* c = rows[exponent];
    const auto cubic = [t](const double* a) { return a[0] + t * (a[1] + t * (a[2] + t * a[3])); };
    const auto at = [](double x) { return simd::splat(static_cast<float>(x)); };
    const __m128 constant = at(1 + c[0] + t * (c[1] + t * c[2])), scale = at(cubic(c + 3));
    const __m128 a1 = at(cubic(c + 7)), a2 = at(cubic(c + 11)), a3 = at(cubic(c + 15)), a4 = at(cubic(c + 19));
    const int32_t status = draw_normals(stream, n, floats_of(r), 0, 1);
    if (status < 0) return status;
    to_integers(n, r, [=](__m128 g) {
        return simd::truncate(
            simd::greatest(constant + (((a4 * g + a3) * g + a2) * g + a1) * (g * scale), _mm_setzero_ps()));
    });
    return status;
}

// Mean, variance and the shape of the map as power series in 1 / lambda.
int32_t by_series(Stream* stream, int32_t n, int32_t* r, double lambda) {
    const double y = 1 / lambda;
    const double m = lambda - 0.6666957198 + y * (-0.01941020862 + y * (-0.001288719308 + y * 0.001645153709));
    const double v = lambda - 0.05580667628 + y * (-0.000975814817 + y * (-0.005534854444 + y * 0.00519830812));
    const double p1 =
        y * (0.0077471054160899999 +
             y * (-0.44391139179744699 + y * (2.29098262740971 + y * (-3.85841212878712 + y * 2.0284703573276199))));
    const double p2 =
        y * (0.168577008904505 + y * (0.047224234829268803 +
                                      y * (-0.22816237980027501 + y * (0.35864222698957898 + y * -0.185436433294704))));
    const double p3 =
        y *
        (-0.0001145865551857 +
         y * (-0.0126559989233446 + y * (0.023225795428835402 + y * (-0.0291113093667918 + y * 0.014389264627965999))));
    const int32_t status =
        draw_normals(stream, n, floats_of(r), static_cast<float>(m), static_cast<float>(__kuzdSqrt(v)));
    if (status < 0) return status;
    const auto at = [](double x) { return simd::splat(static_cast<float>(x)); };
    const __m128 mean = at(m), c1 = at(p1), c2 = at(p2), c3 = at(p3), one = at(1);
    to_integers(n, r, [=](__m128 g) {
        const __m128 d = g - mean;
        return simd::truncate(simd::greatest(d * (c1 + d * (c2 + d * c3)) + g + one, _mm_setzero_ps()));
    });
    return status;
}

}  // namespace

int32_t poisson_from_normal(Stream* stream, int32_t n, int32_t* r, double lambda) {
    // The float that chooses the row of a mean just below 100 may be 100, which its row serves too.
    if (lambda >= 1 && lambda < 100) return by_row(stream, n, r, lambda);
    return lambda >= 100 ? by_series(stream, n, r, lambda) : by_partial_sums(stream, n, r, lambda);
}

}  // namespace orv::distrib
