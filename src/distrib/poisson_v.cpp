// Poisson numbers with a mean each, from normal ones g: the integer part of lambda + c + sqrt(lambda) P(g), P a quartic whose
// coefficients are cubics in lambda for each binade; below 1/16 by the partial sums of the exponential series.
#include "distrib/transforms.h"
#include "services/export.h"
#include "simd/integers.h"

#include <string.h>

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

constexpr int32_t part = 2048;
constexpr int row_count = 18, degrees = 4, coefficients = 5;
// The steps of x are right at lambda + sqrt(lambda) g + 1/3 + g^2/6, but for what vanishes with lambda. The last row's P has
// constant coefficients and serves all great means, so it is nearly g alone and x off by c - 1/3 - g^2/6: over all g that
// does least at c near 5/12, with a distribution function off by 2.1e-4; c = 2/3 would make it 7.4e-4. The other rows fit
// any c: with 2/3 their errors are the same to a tenth, the worst of them 1.1e-4 in place of 1.0e-4.
constexpr float constant = 5.0f / 12;
constexpr float least_of_rows = 0.0625f;

// By the binary exponent of lambda, from 2^-4 on; the last row serves all means of 2^13 and above. Degree by degree in lambda,
// the coefficients of 1, g, ... g^4. data/README.md tells where they come from.
constexpr double found[row_count][degrees * coefficients] = {
#include "../../data/poisson_v.inc"
};

// The same in single precision: four coefficients of each degree side by side, then the last coefficient's degrees.
struct Row {
    alignas(16) float four[degrees][4];
    float last[degrees];
};
struct Rows {
    Row row[row_count];
};
constexpr Rows rows = [] {
    Rows r{};
    for (int i = 0; i < row_count; ++i)
        for (int j = 0; j < degrees; ++j) {
            for (int k = 0; k < 4; ++k) r.row[i].four[j][k] = static_cast<float>(found[i][j * coefficients + k]);
            r.row[i].last[j] = static_cast<float>(found[i][j * coefficients + 4]);
        }
    return r;
}();

// Elements of one class, with their places in the block.
struct Elements {
    float g[part + 4], lambda[part + 4];
    int32_t place[part + 4];
    int32_t n = 0;

    void add(unsigned chosen, __m128 normal, __m128 mean, __m128i at) {
        const auto put = [&](void* to, __m128i x) {
            simd::store(static_cast<int32_t*>(to), simd::pack_chosen_32(chosen, x));
        };
        put(g + n, simd::bits_of(normal));
        put(lambda + n, simd::bits_of(mean));
        put(place + n, at);
        n += simd::count_bits(chosen);
    }
};

// f makes the integers of four elements, which go to their places in r. Those past the end have the place of the last.
template <class Formula>
void each_four(Elements& e, int32_t* r, Formula f) {
    if (e.n == 0) return;
    for (int32_t i = e.n; i < e.n + 4; ++i) {
        e.g[i] = e.g[e.n - 1];
        e.lambda[i] = e.lambda[e.n - 1];
        e.place[i] = e.place[e.n - 1];
    }
    for (int32_t i = 0; i < e.n; i += 4) {
        const __m128i k = f(i), place = simd::load(e.place + i);
        r[simd::word<0>(place)] = simd::word<0>(k);
        r[simd::word<1>(place)] = simd::word<1>(k);
        r[simd::word<2>(place)] = simd::word<2>(k);
        r[simd::word<3>(place)] = simd::word<3>(k);
    }
}

// The least k with the sum of lambda^j / j! to j = k at least e^lambda |erf(g / sqrt 2)|, and 11 above the sum to 10.
void by_partial_sums(Elements& e, int32_t* r) {
    const auto at = [](double x) { return simd::splat(static_cast<float>(x)); };
    float erf[part + 4];
    const __m128 root_half = at(0.70710678);
    map(
        e.n, erf, [=](__m128 g) { return g * root_half; }, e.g);
    run(reinterpret_cast<OneResult<float>>(orv_arq_kernel_sErf_ttab[0]), e.n, erf, erf);
    for (int32_t i = e.n; i < e.n + 4 && e.n > 0; ++i) erf[i] = erf[e.n - 1];
    each_four(e, r, [&](int32_t i) {
        const __m128 x = simd::load(e.lambda + i), x2 = x * x;
        const __m128 scale =
            at(0.99999999789769289) +
            x * (at(1.0000002352041819) + x * (at(0.49999555884885266) + x2 * at(0.16669916415448055)));
        const __m128 v = simd::magnitude(simd::load(erf + i)) * scale;
        __m128 term = at(1), sum = term;
        __m128i k = _mm_setzero_si128();
        for (int j = 1; j <= 11; ++j) {
            k = simd::subtract_32(k, simd::bits_of(simd::less(sum, v)));
            term = term * x * at(1.0 / j);
            sum = sum + term;
        }
        return k;
    });
}

// 1, x, x^2 and x^3 of the cubic in one lane group, against the coefficients beside it.
float cubic(const float* c, float x) { return c[0] + x * (c[1] + x * (c[2] + x * c[3])); }

void by_rows(Elements& e, int32_t* r) {
    each_four(e, r, [&](int32_t i) {
        const __m128 x = simd::load(e.lambda + i), g = simd::load(e.g + i);
        constexpr int bias = 127 - 4;
        __m128i exponent = simd::subtract_32(simd::shift_right_32<23>(simd::bits_of(x)), simd::splat_32(bias));
        exponent = simd::greatest_32(simd::least_32(exponent, simd::splat_32(row_count - 1)), _mm_setzero_si128());
        float last[4];
        const auto coefficients_of = [&](int32_t index, const float* lambda, float* fifth) {
            const Row& row = rows.row[index];
            const __m128 t = simd::load_splat(lambda);
            *fifth = cubic(row.last, *lambda);
            return simd::load_aligned(row.four[0]) +
                   t * (simd::load_aligned(row.four[1]) +
                        t * (simd::load_aligned(row.four[2]) + t * simd::load_aligned(row.four[3])));
        };
        __m128 p0 = coefficients_of(simd::word<0>(exponent), e.lambda + i, last);
        __m128 p1 = coefficients_of(simd::word<1>(exponent), e.lambda + i + 1, last + 1);
        __m128 p2 = coefficients_of(simd::word<2>(exponent), e.lambda + i + 2, last + 2);
        __m128 p3 = coefficients_of(simd::word<3>(exponent), e.lambda + i + 3, last + 3);
        simd::transpose(p0, p1, p2, p3);
        const __m128 p = p0 + g * (p1 + g * (p2 + g * (p3 + g * simd::load(last))));
        const __m128 y = x + simd::splat(constant) + simd::square_root(x) * p;
        return simd::truncate(simd::greatest(y, _mm_setzero_ps()));
    });
}

// The normal numbers stand in r as floats and are read as such through vector loads alone.
void transform(int32_t n, int32_t* r, const double* lambda) {
    Elements small, others;
    const __m128 limit = simd::splat(least_of_rows);
    __m128i place = _mm_setr_epi32(0, 1, 2, 3);
    const auto sort = [&](unsigned present, __m128i normals, __m128 mean) {
        const unsigned below = simd::lane_bits(simd::less(mean, limit));
        small.add(present & below, simd::floats(normals), mean, place);
        others.add(present & ~below, simd::floats(normals), mean, place);
        place = simd::add_32(place, simd::splat_32(4));
    };
    int32_t i = 0;
    for (; i + 4 <= n; i += 4)
        sort(15, simd::load(r + i), simd::narrow(simd::load(lambda + i), simd::load(lambda + i + 2)));
    if (i < n) {
        int32_t normals[4] = {};
        double mean[4] = {};
        memcpy(normals, r + i, static_cast<size_t>(n - i) * sizeof *r);
        memcpy(mean, lambda + i, static_cast<size_t>(n - i) * sizeof *lambda);
        sort((1u << (n - i)) - 1, simd::load(normals), simd::narrow(simd::load(mean), simd::load(mean + 2)));
    }
    by_partial_sums(small, r);
    by_rows(others, r);
}

}  // namespace

ORV_API int32_t _kuziRngPoissonV(int32_t, Stream* stream, int32_t n, int32_t* r, const double* lambda) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm_at_pole<float>);
    const int32_t status = _kuzsRngGaussian(GaussianInverseCdf, stream, n, reinterpret_cast<float*>(r), 0.0f, 1.0f);
    if (status < 0) return status;
    for (int32_t done = 0; done < n; done += part)
        transform(n - done < part ? n - done : part, r + done, lambda + done);
    return status;
}
