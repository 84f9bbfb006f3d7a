// Gamma, Beta and ChiSquare: of the right distribution for shapes on all sides of the methods' limits, and of the routes
// that are made of other generators to the bit.
#include "distrib/deviates.h"
#include "distrib/incomplete.h"
#include "support/control_state.h"
#include "support/effort.h"

#include <functional>
#include <string>

using namespace orv::test;

namespace {

int32_t gamma(Stream* s, int32_t n, double* r, double alpha, double a = 0, double beta = 1) {
    return _kuzdRngGamma(0, s, n, r, alpha, a, beta);
}
int32_t gamma(Stream* s, int32_t n, float* r, float alpha, float a = 0, float beta = 1) {
    return _kuzsRngGamma(0, s, n, r, alpha, a, beta);
}
int32_t beta(Stream* s, int32_t n, double* r, double p, double q, double a = 0, double width = 1, int32_t method = 0) {
    return _kuzdRngBeta(method, s, n, r, p, q, a, width);
}
int32_t beta(Stream* s, int32_t n, float* r, float p, float q, float a = 0, float width = 1, int32_t method = 0) {
    return _kuzsRngBeta(method, s, n, r, p, q, a, width);
}
int32_t chi_square(Stream* s, int32_t n, double* r, int32_t v) { return _kuzdRngChiSquare(0, s, n, r, v); }
int32_t chi_square(Stream* s, int32_t n, float* r, int32_t v) { return _kuzsRngChiSquare(0, s, n, r, v); }
int32_t exponential(Stream* s, int32_t n, double* r) { return _kuzdRngExponential(0, s, n, r, 1.5, 0.7); }
int32_t exponential(Stream* s, int32_t n, float* r) { return _kuzsRngExponential(0, s, n, r, 1.5f, 0.7f); }
int32_t normals(Stream* s, int32_t n, double* r) { return _kuzdRngGaussian(2, s, n, r, 0, 1); }
int32_t normals(Stream* s, int32_t n, float* r) { return _kuzsRngGaussian(2, s, n, r, 0, 1); }

template <class T>
struct Case {
    std::string name;
    std::function<int32_t(Stream*, int32_t, T*)> draw;
    std::function<double(double)> cdf;
    Moments moments;
};

template <class T>
std::vector<Case<T>> cases() {
    std::vector<Case<T>> all;
    const T limit = T(0.6);
    for (const T alpha : {T(0.01), T(0.3), std::nextafter(limit, T(0)), limit, std::nextafter(limit, T(1)), T(0.9),
                          std::nextafter(T(1), T(0)), T(1), std::nextafter(T(1), T(2)), T(2.5), T(100), T(1e6)}) {
        const double shape = double(alpha);
        all.push_back({"Gamma " + std::to_string(shape),
                       [=](Stream* s, int32_t n, T* r) { return gamma(s, n, r, alpha); },
                       [=](double x) { return gamma_cdf(shape, x); },
                       {shape, shape, 6 / shape}});
    }
    // Scales near the ends of the type, by which the moments are not taken.
    const bool wide = sizeof(T) == 8;
    for (const double scale : {wide ? 1e300 : 1e30, wide ? 1e-300 : 1e-30}) {
        for (const auto& [p, q] : {std::pair(2.0, 3.0), {0.5, 0.5}, {0.5, 2.0}, {1.0, 0.5}})
            all.push_back({"Beta of scale " + std::to_string(std::log10(scale)),
                           [=](Stream* s, int32_t n, T* r) { return beta(s, n, r, T(p), T(q), T(0), T(scale)); },
                           [=](double x) { return beta_cdf(p, q, x / double(T(scale))); },
                           {0, 0, 0}});
        all.push_back({"Gamma 2.5 of scale " + std::to_string(std::log10(scale)),
                       [=](Stream* s, int32_t n, T* r) { return gamma(s, n, r, T(2.5), T(0), T(scale)); },
                       [=](double x) { return gamma_cdf(2.5, x / double(T(scale))); },
                       {0, 0, 0}});
    }
    for (const int32_t v : {1, 2, 3, 4, 5, 6, 15, 16, 17, 18, 100})
        all.push_back({"ChiSquare " + std::to_string(v),
                       [=](Stream* s, int32_t n, T* r) { return chi_square(s, n, r, v); },
                       [=](double x) { return gamma_cdf(v / 2.0, x / 2); },
                       {double(v), 2.0 * v, 12.0 / v}});
    const double shapes[][2] = {{1, 1},       {2, 1},         {1, 0.5},  {1, 1e6}, {1e6, 1}, {0.5, 0.5},
                                {0.01, 0.01}, {0.01, 0.99},   {2, 3},    {3, 2},   {2, 2},   {1.0001, 50},
                                {1e6, 1e6},   {1e6, 2},       {2, 1e6},  {0.5, 2}, {2, 0.5}, {0.01, 1e6},
                                {1e6, 0.3},   {0.999, 1.001}, {0.5, 1e6}};
    for (const auto& shape : shapes) {
        const T first = T(shape[0]), second = T(shape[1]);
        const double p = double(first), q = double(second), sum = p + q;
        const double variance = p * q / (sum * sum * (sum + 1));
        const double excess = 6 * ((p - q) * (p - q) * (sum + 1) - p * q * (sum + 2)) / (p * q * (sum + 2) * (sum + 3));
        all.push_back({"Beta " + std::to_string(p) + " " + std::to_string(q),
                       [=](Stream* s, int32_t n, T* r) { return beta(s, n, r, first, second); },
                       [=](double x) { return beta_cdf(p, q, x); },
                       {p / sum, variance, excess}});
    }
    return all;
}

template <class T>
class Shaped : public testing::Test {};
using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(Shaped, Types);

TYPED_TEST(Shaped, HaveTheirDistributions) {
    for (const auto& c : cases<TypeParam>()) {
        OwnedStream stream(BrngSFMT19937, {271828});
        const int32_t n = sanitized ? 3000 : 100000;
        std::vector<TypeParam> r(static_cast<size_t>(n) + 1, 99);
        ASSERT_EQ(c.draw(stream, n, r.data()), StatusOk);
        EXPECT_EQ(r.back(), 99);
        r.pop_back();
        const Distance d = distance(r, c.cdf);
        EXPECT_LT(d.kolmogorov, 2.23) << c.name;
        EXPECT_LT(d.anderson_darling, 8.1) << c.name;
        if (c.moments.variance > 0) {
            EXPECT_LT(deviation(r, c.moments), 5) << c.name;
        }
    }
}

TYPED_TEST(Shaped, NothingIsDrawnForNothing) {
    for (const auto& c : cases<TypeParam>())
        for (const int32_t n : {0, -7}) {
            OwnedStream stream(BrngSFMT19937, {5}), twin(BrngSFMT19937, {5});
            TypeParam r = 99;
            EXPECT_EQ(c.draw(stream, n, &r), StatusOk) << c.name;
            EXPECT_EQ(r, 99) << c.name;
            EXPECT_EQ(__kuzGetNumChunks(stream), 0) << c.name;
            EXPECT_EQ(draw(stream, 4), draw(twin, 4)) << c.name;
        }
}

// A draw that fails, first or in the middle, gives its status; the thread's state is as before.
TYPED_TEST(Shaped, PassFailuresOn) {
    const uint32_t mode = _arqGetMode();
    for (const auto& c : cases<TypeParam>())
        for (const int32_t failing : {0, 1, 2}) {
            OwnedStream stream(ConstantGenerator::id(0.4, failing), {});
            std::vector<TypeParam> r(3000);
            const int32_t status = c.draw(stream, 3000, r.data());
            const bool failed = ConstantGenerator::calls > failing;
            EXPECT_TRUE(failed || failing > 0) << c.name;
            EXPECT_EQ(status, failed ? BrngStatusQrngExhausted + 0 : StatusOk + 0) << c.name;
            EXPECT_EQ(_arqGetMode(), mode) << c.name;
            EXPECT_EQ(_arqGetErrorCallBack(), nullptr) << c.name;
        }
}

// The caller may have the exception of inexact results unmasked, which nearly every operation would raise.
TYPED_TEST(Shaped, RunWithExceptionsMasked) {
    using T = TypeParam;
    OwnedStream stream(BrngMCG59, {5});
    T r[100];
    for (const T p : {T(0.5), T(2)})
        for (const T q : {T(0.25), T(1), T(3)}) {
            _mm_setcsr(usual_mxcsr & ~0x1000u);
            const int32_t status = beta(stream, 100, r, p, q, T(0), T(3));
            _mm_setcsr(usual_mxcsr);
            EXPECT_EQ(status, StatusOk);
        }
    for (const int32_t v : {1, 3, 5, 10}) {
        _mm_setcsr(usual_mxcsr & ~0x1000u);
        const int32_t status = chi_square(stream, 100, r, v);
        _mm_setcsr(usual_mxcsr);
        EXPECT_EQ(status, StatusOk);
    }
}

TYPED_TEST(Shaped, RoutesByOtherGenerators) {
    using T = TypeParam;
    constexpr int32_t n = 2500;
    std::vector<T> r(n), expected(n), raw(8 * n);
    const auto same = [&](auto draw_one, auto make_expected, const char* what) {
        OwnedStream stream(BrngPHILOX4X32X10, {6}), twin(BrngPHILOX4X32X10, {6});
        EXPECT_EQ(draw_one(stream), StatusOk);
        make_expected(twin);
        for (size_t i = 0; i < n; ++i) ASSERT_EQ(r[i], expected[i]) << what << " " << i;
        EXPECT_EQ(draw(stream, 4), draw(twin, 4)) << what << ": as many uniforms are used up";
    };
    same([&](Stream* s) { return gamma(s, n, r.data(), T(1), T(1.5), T(0.7)); },
         [&](Stream* s) { exponential(s, n, expected.data()); }, "Gamma 1");
    for (const int32_t v : {1, 3})
        same([&](Stream* s) { return chi_square(s, n, r.data(), v); },
             [&](Stream* s) {
                 normals(s, v * n, raw.data());
                 for (int32_t i = 0; i < n; ++i) {
                     const T* g = &raw[static_cast<size_t>(i * v)];
                     expected[static_cast<size_t>(i)] = v == 1 ? g[0] * g[0] : g[0] * g[0] + g[1] * g[1] + g[2] * g[2];
                 }
             },
             "squares");
    for (const int32_t v : {2, 4, 10, 16})
        same([&](Stream* s) { return chi_square(s, n, r.data(), v); },
             [&](Stream* s) {
                 const auto u = uniforms(s, v / 2 * n, T(0), T(1));
                 for (int32_t i = 0; i < n; ++i) {
                     T product = u[static_cast<size_t>(i * v / 2)];
                     for (int32_t k = 1; k < v / 2; ++k) product *= u[static_cast<size_t>(i * v / 2 + k)];
                     expected[static_cast<size_t>(i)] = ln(product) * -2;
                 }
             },
             "products");
    for (const int32_t v : {5, 18})
        same([&](Stream* s) { return chi_square(s, n, r.data(), v); },
             [&](Stream* s) { gamma(s, n, expected.data(), T(v) * T(0.5), T(0), T(2)); }, "as Gamma");
    same([&](Stream* s) { return beta(s, n, r.data(), T(1), T(1), T(2), T(3), UniformAccurate); },
         [&](Stream* s) { expected = uniforms(s, n, T(2), T(5)); }, "uniform");
}

TYPED_TEST(Shaped, ClampedWhereAsked) {
    using T = TypeParam;
    // a + beta rounds down, so that the largest x can end above it.
    const T a = T(0.1), width = T(0.7), end = a + width;
    OwnedStream stream(BrngSFMT19937, {5});
    std::vector<T> r(20000);
    ASSERT_EQ(beta(stream, 20000, r.data(), T(1e6), T(0.01), a, width, UniformAccurate), StatusOk);
    for (const T x : r) ASSERT_TRUE(x >= a && x <= end);
}

// The chunk of Gamma is not that of Gaussian, and each type has one of its own.
TEST(Gamma, KeepsItsOwnPendingNumber) {
    OwnedStream stream(BrngMCG59, {6});
    double d[3];
    float s[3];
    ASSERT_EQ(_kuzdRngGamma(0, stream, 1, d, 2.5, 0, 1), StatusOk);
    ASSERT_EQ(_kuzsRngGamma(0, stream, 1, s, 2.5f, 0, 1), StatusOk);
    EXPECT_EQ(__kuzGetNumChunks(stream), 2);
    EXPECT_NE(__kuzSearchChunk(stream, 7), nullptr);
    EXPECT_EQ(__kuzSearchChunk(stream, 2), nullptr);
}

}  // namespace
