// Gamma: a + beta x, x with the density x^(alpha-1) e^-x / Gamma(alpha).
//
// alpha > 1: d v with v = (1 + c g)^3, g normal, is nearly of that density (Marsaglia and Tsang); kept are 95 % of the
// candidates at alpha = 1 and nearly all of them where alpha is large.
// alpha = 1: the exponential distribution.
// 0.6 <= alpha < 1: x = z^(1/alpha), z exponential, has the density alpha x^(alpha-1) exp(-x^alpha), which is to be thinned
// by exp(x^alpha - x) (Vaduva). That is greatest at x = alpha^(1/(1-alpha)), where its logarithm is
// D = (1 - alpha) alpha^(alpha/(1-alpha)). Kept are Gamma(alpha+1) e^-D of the candidates: 74 % at 0.6, all of them near 1.
// alpha < 0.6: the power x = u^(1/alpha) has the density alpha x^(alpha-1) and is thinned by e^-x. To keep x from
// ending at 1, the u above 1 - alpha, which are alpha e^-y with an exponential y beyond it, give x = (1 - alpha + alpha y)^
// (1/alpha), of the density alpha x^(alpha-1) e^-y, thinned by e^(y-x); x >= y by Bernoulli's inequality. Kept are
// Gamma(alpha+1), 89 % of the candidates and more.
#include "distrib/candidates.h"
#include "distrib/paired_normals.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

int32_t draw_exponential(Stream* stream, int32_t n, float* r, float a, float beta) {
    return _kuzsRngExponential(0, stream, n, r, a, beta);
}
int32_t draw_exponential(Stream* stream, int32_t n, double* r, double a, double beta) {
    return _kuzdRngExponential(0, stream, n, r, a, beta);
}

// ---- alpha > 1 -----------------------------------------------------------------------------------------------------

// Marks the candidates v that the squeeze leaves in doubt and the logarithms then reject.
template <class T>
void settle_doubts(int32_t doubts, const int32_t* place, T* u, const T* g, T* v, T d) {
    T logarithms[block];
    for (int32_t k = 0; k < doubts; ++k) logarithms[k] = v[place[k]];
    run(logarithm<T>(), doubts, u, u);
    run(logarithm<T>(), doubts, logarithms, logarithms);
    for (int32_t k = 0; k < doubts; ++k) {
        const T normal = g[k], candidate = v[place[k]];
        if (u[k] >= T(0.5) * (normal * normal) + d * (T(1) - candidate + logarithms[k])) v[place[k]] = rejected<T>;
    }
}

template <class T>
int32_t cubes_of_normals(Stream* stream, int32_t count, T* v, T c, T d) {
    T u[block], g[block], squeeze[block];
    int32_t place[block];
    int32_t status = draw_paired_normals(stream, gamma_pending, count, g);
    if (status < 0) return status;
    status = draw_uniforms(stream, count, u, T(0), T(1));
    if (status < 0) return status;
    const auto one = simd::splat(T(1)), zero = simd::splat(T(0)), slope = simd::splat(c);
    const auto none = simd::splat(rejected<T>);
    map(
        count, v,
        [=](auto x) {
            const auto root = x * slope + one;
            return simd::select(simd::less_equal(root, zero), none, root * root * root);
        },
        g);
    const auto factor = simd::splat(T(0.0331));
    map(
        count, squeeze,
        [=](auto x) {
            const auto square = x * x;
            return one - factor * (square * square);
        },
        g);
    int32_t doubts = 0;
    for (int32_t i = 0; i < count; ++i) {
        place[doubts] = i;
        const T uniform = u[i], normal = g[i];
        u[doubts] = uniform;
        g[doubts] = normal;
        doubts += uniform >= squeeze[i] && v[i] > 0;
    }
    settle_doubts(doubts, place, u, g, v, d);
    return status;
}

template <class T>
int32_t gamma_above_one(Stream* stream, int32_t n, T* r, T alpha, T a, T beta) {
    const T d = alpha - T(1.0 / 3), c = T(1 / __kuzdSqrt(9.0 * alpha - 3.0));
    const int32_t status =
        draw_by_rejection(n, r, block, [=](int32_t count, T* v) { return cubes_of_normals(stream, count, v, c, d); });
    if (status >= 0) shift_and_scale(n, r, a, beta * d);
    return status;
}

// ---- alpha < 1 -----------------------------------------------------------------------------------------------------

// Candidates of one pair of uniforms each, by one call.
constexpr int32_t pairs_of_block = 512;

template <class T>
int32_t powers_of_exponentials(Stream* stream, int32_t count, T* x, T root, T greatest) {
    T raw[2 * pairs_of_block], z[pairs_of_block], e[pairs_of_block];
    const int32_t status = draw_uniforms(stream, 2 * count, raw, T(0), T(1));
    if (status < 0) return status;
    run(logarithm<T>(), 2 * count, raw, raw);
    map(
        2 * count, raw, [](auto y) { return -y; }, raw);
    take_apart(count, raw, z, e);
    const auto power = simd::splat(root);
    run(logarithm<T>(), count, z, x);
    map(
        count, x, [=](auto y) { return y * power; }, x);
    run(exponential_function<T>(), count, x, x);
    const auto bound = simd::splat(greatest), none = simd::splat(rejected<T>);
    const auto test = [=](auto y, auto first, auto second) {
        return simd::select(simd::less(first + second, y + bound), none, y);
    };
    map(count, x, test, x, z, e);
    return status;
}

template <class T>
int32_t powers_of_uniforms(Stream* stream, int32_t count, T* x, T alpha) {
    T raw[2 * pairs_of_block], u[pairs_of_block], y[pairs_of_block];
    const int32_t status = draw_uniforms(stream, 2 * count, raw, T(0), T(1));
    if (status < 0) return status;
    T* const v = raw;
    take_apart(count, raw, u, v);
    const auto one = simd::splat(T(1)), shape = simd::splat(alpha), rest = simd::splat(T(1) - alpha);
    const auto root = simd::splat(T(1) / alpha), none = simd::splat(rejected<T>);
    map(
        count, y, [=](auto p) { return simd::select(simd::less(rest, p), (one - p) * root, one); }, u);
    run(logarithm<T>(), count, y, y);
    const auto base = [=](auto p, auto tail) { return simd::select(simd::less(rest, p), rest - shape * tail, p); };
    map(count, x, base, u, y);
    run(logarithm<T>(), count, x, x);
    map(
        count, x, [=](auto p) { return p * root; }, x);
    run(exponential_function<T>(), count, x, x);
    run(logarithm<T>(), count, v, v);
    const auto test = [=](auto p, auto tail, auto e) { return simd::select(simd::less(-(tail + e), p), none, p); };
    map(count, x, test, x, y, v);
    return status;
}

template <class T>
int32_t gamma_below_one(Stream* stream, int32_t n, T* r, T alpha, T a, T beta) {
    int32_t status;
    if (alpha >= T(0.6)) {
        const double exponent = alpha / (1.0 - alpha);
        const T greatest = T((1.0 - alpha) * accurate_exponential(exponent * accurate_logarithm(alpha)));
        const T root = T(1.0 / alpha);
        status = draw_by_rejection(n, r, pairs_of_block, [=](int32_t count, T* x) {
            return powers_of_exponentials(stream, count, x, root, greatest);
        });
    } else {
        status = draw_by_rejection(n, r, pairs_of_block,
                                   [=](int32_t count, T* x) { return powers_of_uniforms(stream, count, x, alpha); });
    }
    if (status >= 0) shift_and_scale(n, r, a, beta);
    return status;
}

template <class T>
int32_t gamma(Stream* stream, int32_t n, T* r, T alpha, T a, T beta) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm_at_pole<T>);
    if (alpha == T(1)) return draw_exponential(stream, n, r, a, beta);
    return alpha > T(1) ? gamma_above_one(stream, n, r, alpha, a, beta) : gamma_below_one(stream, n, r, alpha, a, beta);
}

}  // namespace

ORV_API int32_t _kuzsRngGamma(int32_t, Stream* stream, int32_t n, float* r, float alpha, float a, float beta) {
    return gamma(stream, n, r, alpha, a, beta);
}

ORV_API int32_t _kuzdRngGamma(int32_t, Stream* stream, int32_t n, double* r, double alpha, double a, double beta) {
    return gamma(stream, n, r, alpha, a, beta);
}
