// Poisson numbers with a mean each, from normal ones g: the integer part of lambda + c + sqrt(lambda) P(g), P a quartic whose
// coefficients are cubics in lambda for each binade; below 1/16 by the partial sums of the exponential series.
#include "distrib/normals.h"
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

// The same in single precision: for elements of different rows, four coefficients of each degree side by side and the degrees of
// the last coefficient; for elements of one row, each coefficient in all lanes.
struct Row {
    alignas(16) float four[degrees][4];
    float last[degrees];
    float lanes[coefficients][degrees][4];
};
struct Rows {
    Row row[row_count];
};
constexpr Rows rows = [] {
    Rows r{};
    for (int i = 0; i < row_count; ++i)
        for (int j = 0; j < degrees; ++j)
            for (int k = 0; k < coefficients; ++k) {
                const float c = static_cast<float>(found[i][j * coefficients + k]);
                (k < 4 ? r.row[i].four[j][k] : r.row[i].last[j]) = c;
                for (float& lane : r.row[i].lanes[k][j]) lane = c;
            }
    return r;
}();

// Elements of small means, with their places in the block.
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
    // Fills the last group of four with the last element.
    void seal() {
        for (int32_t i = n; i < n + 4; ++i) {
            g[i] = g[n - 1];
            lambda[i] = lambda[n - 1];
            place[i] = place[n - 1];
        }
    }
};

// The least k with the sum of lambda^j / j! to j = k at least e^lambda |erf(g / sqrt 2)|, and 11 above the sum to 10.
void by_partial_sums(Elements& e, int32_t* r) {
    if (e.n == 0) return;
    e.seal();
    const auto at = [](double x) { return simd::splat(static_cast<float>(x)); };
    float erf[part + 4];
    const __m128 root_half = at(0.70710678);
    map(
        e.n + 3, erf, [=](__m128 g) { return g * root_half; }, e.g);
    run(reinterpret_cast<OneResult<float>>(orv_arq_kernel_sErf_ttab[0]), e.n + 3, erf, erf);
    for (int32_t i = 0; i < e.n; i += 4) {
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
        const __m128i place = simd::load(e.place + i);
        r[simd::word<0>(place)] = simd::word<0>(k);
        r[simd::word<1>(place)] = simd::word<1>(k);
        r[simd::word<2>(place)] = simd::word<2>(k);
        r[simd::word<3>(place)] = simd::word<3>(k);
    }
}

template <int i>
__m128 lane(__m128 x) {
    return simd::floats(simd::shuffle_32<i, i, i, i>(simd::bits_of(x)));
}

// P(g) of four elements with rows of their own.
__m128 quartic_of_rows(__m128i index, __m128 x, __m128 g) {
    const Row& a = rows.row[simd::word<0>(index)];
    const Row& b = rows.row[simd::word<1>(index)];
    const Row& c = rows.row[simd::word<2>(index)];
    const Row& d = rows.row[simd::word<3>(index)];
    const auto first_four = [](const Row& row, __m128 t) {
        return simd::load_aligned(row.four[0]) +
               t * (simd::load_aligned(row.four[1]) +
                    t * (simd::load_aligned(row.four[2]) + t * simd::load_aligned(row.four[3])));
    };
    __m128 p0 = first_four(a, lane<0>(x)), p1 = first_four(b, lane<1>(x));
    __m128 p2 = first_four(c, lane<2>(x)), p3 = first_four(d, lane<3>(x));
    simd::transpose(p0, p1, p2, p3);
    __m128 c0 = simd::load_aligned(a.last), c1 = simd::load_aligned(b.last);
    __m128 c2 = simd::load_aligned(c.last), c3 = simd::load_aligned(d.last);
    simd::transpose(c0, c1, c2, c3);
    const __m128 p4 = c0 + x * (c1 + x * (c2 + x * c3));
    return p0 + g * (p1 + g * (p2 + g * (p3 + g * p4)));
}

// And of four elements of one row, as means in order have it nearly always.
__m128 quartic_of_row(const Row& row, __m128 x, __m128 g) {
    const auto cubic = [&](int k) {
        const auto& c = row.lanes[k];
        return simd::load_aligned(c[0]) +
               x * (simd::load_aligned(c[1]) + x * (simd::load_aligned(c[2]) + x * simd::load_aligned(c[3])));
    };
    return cubic(0) + g * (cubic(1) + g * (cubic(2) + g * (cubic(3) + g * cubic(4))));
}

__m128i by_rows(__m128 x, __m128 g) {
    constexpr int bias = 127 - 4;
    __m128i index = simd::subtract_32(simd::shift_right_32<23>(simd::bits_of(x)), simd::splat_32(bias));
    index = simd::greatest_32(simd::least_32(index, simd::splat_32(row_count - 1)), _mm_setzero_si128());
    const int32_t first = simd::word<0>(index);
    const bool same = simd::lane_bits(simd::floats(simd::equal_32(index, simd::shuffle_32<0, 0, 0, 0>(index)))) == 15;
    const __m128 p = same ? quartic_of_row(rows.row[first], x, g) : quartic_of_rows(index, x, g);
    const __m128 y = x + simd::splat(constant) + simd::square_root(x) * p;
    return simd::truncate(simd::greatest(y, _mm_setzero_ps()));
}

// The normal numbers stand in r as floats and are read as such through vector loads alone. All elements go through their rows;
// those of small means are written anew afterwards.
void transform(int32_t n, int32_t* r, const double* lambda) {
    Elements small;
    const __m128 limit = simd::splat(least_of_rows);
    __m128i place = _mm_setr_epi32(0, 1, 2, 3);
    const auto four = [&](unsigned present, __m128i normals, __m128 mean) {
        const __m128 g = simd::floats(normals);
        small.add(present & simd::lane_bits(simd::less(mean, limit)), g, mean, place);
        place = simd::add_32(place, simd::splat_32(4));
        return by_rows(mean, g);
    };
    int32_t i = 0;
    for (; i + 4 <= n; i += 4)
        simd::store(r + i,
                    four(15, simd::load(r + i), simd::narrow(simd::load(lambda + i), simd::load(lambda + i + 2))));
    if (i < n) {
        int32_t normals[4] = {};
        double mean[4] = {};
        memcpy(normals, r + i, static_cast<size_t>(n - i) * sizeof *r);
        memcpy(mean, lambda + i, static_cast<size_t>(n - i) * sizeof *lambda);
        simd::store(normals, four((1u << (n - i)) - 1, simd::load(normals),
                                  simd::narrow(simd::load(mean), simd::load(mean + 2))));
        memcpy(r + i, normals, static_cast<size_t>(n - i) * sizeof *r);
    }
    by_partial_sums(small, r);
}

}  // namespace

ORV_API int32_t _kuziRngPoissonV(int32_t, Stream* stream, int32_t n, int32_t* r, const double* lambda) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm_at_pole<float>);
    const int32_t status = draw_normals(stream, n, reinterpret_cast<float*>(r), 0.0f, 1.0f);
    if (status < 0) return status;
    for (int32_t done = 0; done < n; done += part)
        transform(n - done < part ? n - done : part, r + done, lambda + done);
    return status;
}
