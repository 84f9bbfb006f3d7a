// Beta: a + beta x, x with the density x^(p-1) (1-x)^(q-1) / B(p, q).
//
// p = q = 1: uniform. p = 1 or q = 1: inversion, u^(1/p) or 1 - u^(1/q).
// Both below 1: u^(1/p) / (u^(1/p) + v^(1/q)) where the sum is at most 1 (Joehnk). Kept are
// Gamma(p+1) Gamma(q+1) / Gamma(p+q+1) of the pairs, half of them and more.
// Both above 1: the ratio x / (1 - x) from a log-logistic distribution (Cheng's BB). Kept are 68 % of the pairs and more.
// One below, one above: the power x^(p-1) up to a switching point t and (1-x)^(q-1) beyond it (Atkinson and Whittaker).
#include "distrib/candidates.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

// Candidates of one pair of uniforms each, by one call.
constexpr int32_t pairs_of_block = 512;

int32_t draw_uniforms_between(int32_t method, Stream* stream, int32_t n, float* r, float a, float b) {
    return _kuzsRngUniform(method, stream, n, r, a, b);
}
int32_t draw_uniforms_between(int32_t method, Stream* stream, int32_t n, double* r, double a, double b) {
    return _kuzdRngUniform(method, stream, n, r, a, b);
}

template <class T>
int32_t draw_pairs(Stream* stream, int32_t count, T* u, T* v) {
    T raw[2 * pairs_of_block];
    const int32_t status = draw_uniforms(stream, 2 * count, raw, T(0), T(1));
    if (status >= 0) take_apart(count, raw, u, v);
    return status;
}

// 1 - y for y = e^s, s <= 0, with a relative accuracy of its own: (1 - y) s / ln y, since what rounding does to y is in its
// logarithm too (Kahan). The result may be s itself, `logarithms` is room for n numbers.
template <class T>
void rest_of_power(int32_t n, const T* s, const T* y, T* logarithms, T* rest) {
    const auto one = simd::splat(T(1)), half = simd::splat(T(0.5));
    map(
        n, logarithms, [=](auto power) { return simd::greatest(half, power); }, y);
    run(logarithm<T>(), n, logarithms, logarithms);
    const auto formula = [=](auto exponent, auto power, auto log) {
        const auto difference = one - power;
        const auto near = simd::select(simd::equal(power, one), -exponent, difference * exponent / log);
        return simd::select(simd::less(half, power), near, difference);
    };
    map(n, rest, formula, s, y, logarithms);
}

template <class T>
void to_powers(int32_t n, T* u, T exponent) {
    const auto factor = simd::splat(exponent);
    run(logarithm<T>(), n, u, u);
    map(
        n, u, [=](auto x) { return x * factor; }, u);
}

// ---- A shape of 1 --------------------------------------------------------------------------------------------------

template <class T>
int32_t power_of_uniform(Stream* stream, int32_t n, T* r, T p) {
    const int32_t status = draw_uniforms(stream, n, r, T(0), T(1));
    if (status < 0) return status;
    to_powers(n, r, T(1) / p);
    run(exponential_function<T>(), n, r, r);
    return status;
}

template <class T>
int32_t rest_of_power_of_uniform(Stream* stream, int32_t n, T* r, T q) {
    T power[block], logarithms[block];
    const int32_t status = draw_uniforms(stream, n, r, T(0), T(1));
    if (status < 0) return status;
    to_powers(n, r, T(1) / q);
    for (int32_t done = 0; done < n; done += block) {
        const int32_t count = n - done < block ? n - done : block;
        run(exponential_function<T>(), count, r + done, power);
        rest_of_power(count, r + done, power, logarithms, r + done);
    }
    return status;
}

// ---- Both below 1 --------------------------------------------------------------------------------------------------

// In logarithms, scaled by the larger of the two: powers so small that both would be zero have a ratio all the same.
template <class T>
int32_t ratios_of_powers(Stream* stream, int32_t count, T* x, T p, T q) {
    T u[pairs_of_block], v[pairs_of_block], larger[pairs_of_block], sum[pairs_of_block];
    const int32_t status = draw_pairs(stream, count, u, v);
    if (status < 0) return status;
    to_powers(count, u, T(1) / p);
    to_powers(count, v, T(1) / q);
    map(
        count, larger, [](auto s, auto t) { return simd::greatest(s, t); }, u, v);
    map(
        count, u, [](auto s, auto most) { return s - most; }, u, larger);
    map(
        count, v, [](auto s, auto most) { return s - most; }, v, larger);
    run(exponential_function<T>(), count, u, u);
    run(exponential_function<T>(), count, v, v);
    map(
        count, sum, [](auto s, auto t) { return s + t; }, u, v);
    map(
        count, u, [](auto s, auto t) { return s / t; }, u, sum);
    run(logarithm<T>(), count, sum, sum);
    const auto zero = simd::splat(T(0)), none = simd::splat(rejected<T>);
    const auto test = [=](auto ratio, auto most, auto log) {
        return simd::select(simd::less(zero, most + log), none, ratio);
    };
    map(count, x, test, u, larger, sum);
    return status;
}

// ---- Both above 1 --------------------------------------------------------------------------------------------------

// Cheng's constants: a and b the smaller and the larger shape, alpha their sum.
template <class T>
struct LogLogistic {
    T a, b, alpha, scale, gamma;
};

template <class T>
LogLogistic<T> log_logistic(double p, double q) {
    const double a = p < q ? p : q, b = p < q ? q : p, alpha = a + b;
    const double inverse_scale = __kuzdSqrt((2 * a * b - alpha) / (alpha - 2));
    return {T(a), T(b), T(alpha), T(1 / inverse_scale), T(a + inverse_scale)};
}

// Candidates w, and which of them a second look rejects.
template <class T>
void settle_doubts(const LogLogistic<T>& c, int32_t doubts, const int32_t* place, const T* r, T* z, T* w) {
    T logarithms[pairs_of_block];
    for (int32_t k = 0; k < doubts; ++k) logarithms[k] = c.alpha / (c.b + w[place[k]]);
    run(logarithm<T>(), doubts, logarithms, logarithms);
    run(logarithm<T>(), doubts, z, z);
    for (int32_t k = 0; k < doubts; ++k)
        if (r[k] + c.alpha * logarithms[k] < z[k]) w[place[k]] = rejected<T>;
}

template <class T>
int32_t odds(Stream* stream, int32_t count, T* w, const LogLogistic<T>& c) {
    T u[pairs_of_block], v[pairs_of_block], z[pairs_of_block], r[pairs_of_block], spare[pairs_of_block];
    const int32_t status = draw_pairs(stream, count, u, v);
    if (status < 0) return status;
    const auto one = simd::splat(T(1)), last = simd::splat(sizeof(T) == 8 ? T(1 - 0x1p-53) : T(1 - 0x1p-24));
    map(
        count, z, [](auto first, auto second) { return first * first * second; }, u, v);
    const auto ratio = [=](auto x) {
        const auto below_one = simd::least(x, last);
        return below_one / (one - below_one);
    };
    map(count, v, ratio, u);
    to_powers(count, v, c.scale);
    run(exponential_function<T>(), count, v, w);
    const auto a = simd::splat(c.a), gamma = simd::splat(c.gamma), ln_4 = simd::splat(T(1.3862943611198906));
    map(
        count, w, [=](auto x) { return x * a; }, w);
    map(
        count, r, [=](auto x) { return x * gamma - ln_4; }, v);
    // ln z is at most 5 z - 1 - ln 5.
    const auto five = simd::splat(T(5)), line = simd::splat(T(2.6094379124341003));
    const auto excess = [=](auto x, auto candidate, auto product) {
        return (a + x - candidate) + line - five * product;
    };
    map(count, spare, excess, r, w, z);
    int32_t place[pairs_of_block], doubts = 0;
    for (int32_t i = 0; i < count; ++i) {
        const T offset = r[i], product = z[i];
        place[doubts] = i;
        r[doubts] = offset;
        z[doubts] = product;
        doubts += spare[i] < 0;
    }
    settle_doubts(c, doubts, place, r, z, w);
    return status;
}

template <class T>
int32_t from_odds(Stream* stream, int32_t n, T* r, T p, T q) {
    const LogLogistic<T> constants = log_logistic<T>(p, q);
    const int32_t status =
        draw_by_rejection(n, r, pairs_of_block, [&](int32_t count, T* w) { return odds(stream, count, w, constants); });
    if (status < 0) return status;
    const auto b = simd::splat(constants.b), one = simd::splat(T(1));
    // From 1 while that is the nearer end: b + w has no room for a small w beside a large b.
    const auto complement = [=](auto w) { return simd::select(simd::less(w, b), one - w / (b + w), b / (b + w)); };
    if (p <= q)
        map(
            n, r, [=](auto w) { return w / (b + w); }, r);
    else
        map(n, r, complement, r);
    return status;
}

// ---- One below 1, one above ----------------------------------------------------------------------------------------

// For shapes p < 1 < q; for the other order their results are taken from 1.
template <class T>
struct Switching {
    T p, q, t, head;  // the switching point, and the share of the candidates below it
    bool mirrored;
};

template <class T>
Switching<T> switching(double p, double q, bool mirrored) {
    const double t = (1 - p) / (q + 1 - p);
    const double tail = p * accurate_exponential(q * accurate_logarithm(1 - t));
    return {T(p), T(q), T(t), T(q * t / (q * t + tail)), mirrored};
}

template <class T>
int32_t powers_on_either_side(Stream* stream, int32_t count, T* x, const Switching<T>& c) {
    T u[pairs_of_block], v[pairs_of_block], s[pairs_of_block], y[pairs_of_block], number[pairs_of_block];
    const int32_t status = draw_pairs(stream, count, u, v);
    if (status < 0) return status;
    const auto one = simd::splat(T(1)), head = simd::splat(c.head), t = simd::splat(c.t), beyond = one - t;
    const auto in_head = [=](auto uniform) { return simd::less_equal(uniform, head); };

    const auto share = [=](auto uniform) {
        return simd::select(in_head(uniform), uniform / head, (one - uniform) / (one - head));
    };
    map(count, s, share, u);
    run(logarithm<T>(), count, s, s);
    const auto root_p = simd::splat(T(1) / c.p), root_q = simd::splat(T(1) / c.q);
    map(
        count, s, [=](auto log, auto uniform) { return log * simd::select(in_head(uniform), root_p, root_q); }, s, u);
    run(exponential_function<T>(), count, s, y);
    rest_of_power(count, s, y, number, s);

    // x, and the number whose logarithm the test is about: 1 - x below the switching point, x / t above it.
    const auto place = [=](auto uniform, auto power, auto difference) {
        return simd::select(in_head(uniform), t * power, t + beyond * difference);
    };
    map(count, x, place, u, y, s);
    const auto tested = [=](auto uniform, auto candidate) {
        return simd::select(in_head(uniform), one - candidate, candidate / t);
    };
    map(count, number, tested, u, x);
    run(logarithm<T>(), count, number, s);
    run(logarithm<T>(), count, v, v);

    // ln (1 - x) as x ln w / (1 - w) for a rounded w = 1 - x.
    const auto p_less = simd::splat(c.p - T(1)), q_less = simd::splat(T(1) - c.q), none = simd::splat(rejected<T>);
    const auto rejects = [=](auto uniform, auto candidate, auto tested_number, auto log) {
        const auto near =
            simd::select(simd::equal(tested_number, one), -candidate, candidate * log / (one - tested_number));
        return simd::select(in_head(uniform), near * q_less, -(log * p_less));
    };
    map(count, s, rejects, u, x, number, s);
    const bool mirrored = c.mirrored;
    const auto result = [=](auto uniform, auto candidate, auto power) {
        if (!mirrored) return candidate;
        return simd::select(in_head(uniform), one - candidate, beyond * power);
    };
    map(count, x, result, u, x, y);
    map(
        count, x,
        [=](auto candidate, auto cost, auto log) { return simd::select(simd::less(-log, cost), none, candidate); }, x,
        s, v);
    return status;
}

// ---- By the shapes -------------------------------------------------------------------------------------------------

template <class T>
int32_t standard_beta(Stream* stream, int32_t n, T* r, T p, T q) {
    if (q == T(1)) return power_of_uniform(stream, n, r, p);
    if (p == T(1)) return rest_of_power_of_uniform(stream, n, r, q);
    if (p > T(1) && q > T(1)) return from_odds(stream, n, r, p, q);
    if (p > T(1) || q > T(1)) {
        const Switching<T> c = p < q ? switching<T>(p, q, false) : switching<T>(q, p, true);
        return draw_by_rejection(n, r, pairs_of_block,
                                 [&](int32_t count, T* x) { return powers_on_either_side(stream, count, x, c); });
    }
    return draw_by_rejection(n, r, pairs_of_block,
                             [=](int32_t count, T* x) { return ratios_of_powers(stream, count, x, p, q); });
}

template <class T>
int32_t beta(int32_t method, Stream* stream, int32_t n, T* r, T p, T q, T a, T beta) {
    if (n <= 0) return StatusOk;
    if (p == T(1) && q == T(1)) return draw_uniforms_between(method, stream, n, r, a, a + beta);
    const ErrorFrame frame(take_least_logarithm_at_pole<T>);
    const int32_t status = standard_beta(stream, n, r, p, q);
    if (status < 0) return status;
    shift_and_scale(n, r, a, beta);
    if (method & UniformAccurate) {
        const auto low = simd::splat(a), high = simd::splat(a + beta);
        map(
            n, r, [=](auto x) { return simd::least(simd::greatest(x, low), high); }, r);
    }
    return status;
}

}  // namespace

ORV_API int32_t _kuzsRngBeta(int32_t method, Stream* stream, int32_t n, float* r, float p, float q, float a,
                             float beta_) {
    return beta(method, stream, n, r, p, q, a, beta_);
}

ORV_API int32_t _kuzdRngBeta(int32_t method, Stream* stream, int32_t n, double* r, double p, double q, double a,
                             double beta_) {
    return beta(method, stream, n, r, p, q, a, beta_);
}
