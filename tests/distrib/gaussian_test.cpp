// Gaussian and Lognormal: the formulas of their methods, and what a stream
// keeps between two calls.
#include "distrib/deviates.h"

using namespace orv::test;

namespace {

int32_t gaussian(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma) {
    return _kuzdRngGaussian(method, stream, n, r, a, sigma);
}
int32_t gaussian(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma) {
    return _kuzsRngGaussian(method, stream, n, r, a, sigma);
}
int32_t lognormal(int32_t method, Stream* stream, int32_t n, double* r, double a, double sigma, double b, double beta) {
    return _kuzdRngLognormal(method, stream, n, r, a, sigma, b, beta);
}
int32_t lognormal(int32_t method, Stream* stream, int32_t n, float* r, float a, float sigma, float b, float beta) {
    return _kuzsRngLognormal(method, stream, n, r, a, sigma, b, beta);
}

template <class T>
std::vector<T> normals(Stream* stream, int32_t method, int32_t n, T a = 0, T sigma = 1) {
    std::vector<T> r(static_cast<size_t>(n));
    EXPECT_EQ(gaussian(method, stream, n, r.data(), a, sigma), StatusOk);
    return r;
}

template <class T>
class Gaussian : public testing::Test {};
using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(Gaussian, Types);

TYPED_TEST(Gaussian, EqualsItsFormulasToTheBit) {
    using T = TypeParam;
    const T a = T(1.5), sigma = T(0.7), turn = T(6.283185307179586);
    const auto radius = [](T u) { return root(-(ln(u) * 2)); };
    for (int32_t method = 0; method < 3; ++method)
        for (const int32_t n : {0, -3, 1, 2, 3, 1023, 1024, 1025, 3001}) {
            OwnedStream stream(BrngPHILOX4X32X10, {6}), twin(BrngPHILOX4X32X10, {6});
            const int32_t count = std::max(n, 0);
            std::vector<T> r(static_cast<size_t>(count) + 1, 99);
            ASSERT_EQ(gaussian(method, stream, n, r.data(), a, sigma), StatusOk);
            const int32_t used = method == 0 ? 2 * count : method == 1 ? (count + 1) / 2 * 2 : count;
            const auto u = uniforms(twin, used, method == 2 ? T(-1) : T(0), T(1));
            for (size_t i = 0; i + 1 < r.size(); ++i) {
                const size_t even = i / 2 * 2;
                const T expected = method == 0   ? radius(u[2 * i]) * sigma * sine(u[2 * i + 1] * turn) + a
                                   : method == 1 ? radius(u[even]) * on_circle(u[even + 1] * turn)[i % 2] * sigma + a
                                                 : inverse_erf(u[i]) * (T(1.4142135623730951) * sigma) + a;
                ASSERT_EQ(r[i], expected) << method << " " << n << " " << i;
            }
            EXPECT_EQ(r.back(), 99);
            EXPECT_EQ(draw(stream, 4), draw(twin, 4)) << "as many uniforms are used up";
        }
}

TYPED_TEST(Gaussian, IsNormal) {
    for (int32_t method = 0; method < 3; ++method) {
        OwnedStream stream(BrngMRG32K3A, {271828});
        const auto r = normals<TypeParam>(stream, method, 100000, 3, 2);
        EXPECT_LT(kolmogorov(r, [](double x) { return std::erfc((3 - x) / std::sqrt(8.0)) / 2; }), 2.23) << method;
    }
}

TYPED_TEST(Gaussian, PairsDoNotDependOnTheCut) {
    for (const std::vector<int32_t>& cut : {std::vector<int32_t>{3, 5}, {1, 1}, {1, 2047, 0, 1, 1025, -1, 2}}) {
        OwnedStream stream(BrngMCG31M1, {6}), whole(BrngMCG31M1, {6});
        std::vector<TypeParam> pieces;
        for (const int32_t n : cut) {
            const auto piece = normals<TypeParam>(stream, GaussianBoxMullerPaired, std::max(n, 0));
            pieces.insert(pieces.end(), piece.begin(), piece.end());
        }
        EXPECT_EQ(pieces, normals<TypeParam>(whole, GaussianBoxMullerPaired, static_cast<int32_t>(pieces.size())));
        EXPECT_EQ(draw(stream, 4), draw(whole, 4));
    }
}

TYPED_TEST(Gaussian, APendingNumberTakesTheNewParametersAndSurvivesCopies) {
    using T = TypeParam;
    OwnedStream stream(BrngMCG59, {6}), twin(BrngMCG59, {6});
    const auto pair = normals<T>(twin, GaussianBoxMullerPaired, 2);
    normals<T>(stream, GaussianBoxMullerPaired, 1);
    Stream* copied = nullptr;
    ASSERT_EQ(__kuzCopyStream(&copied, stream), StatusOk);
    OwnedStream copy(copied);
    EXPECT_EQ(normals<T>(stream, GaussianBoxMullerPaired, 1, 5, 3)[0], pair[1] * 3 + 5);
    EXPECT_EQ(normals<T>(copy, GaussianBoxMullerPaired, 1)[0], pair[1]);
    EXPECT_EQ(draw(stream, 2), draw(twin, 2)) << "nothing was drawn for it";
}

TEST(GaussianPaired, TheTypesKeepANumberEach) {
    OwnedStream stream(BrngMCG59, {6}), twin(BrngMCG59, {6});
    // The pairs of the stream: doubles, floats.
    const auto doubles = normals<double>(twin, GaussianBoxMullerPaired, 2);
    const auto floats = normals<float>(twin, GaussianBoxMullerPaired, 2);
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(normals<double>(stream, GaussianBoxMullerPaired, 1)[0], doubles[i]);
        EXPECT_EQ(normals<float>(stream, GaussianBoxMullerPaired, 1)[0], floats[i]);
    }
    EXPECT_EQ(__kuzGetNumChunks(stream), 2);
}

TYPED_TEST(Gaussian, EndsOfTheIntervalStayFinite) {
    using T = TypeParam;
    const uint32_t mode = _arqGetMode();
    const bool wide = sizeof(T) == 8;
    OwnedStream ends(ConstantGenerator::id(-1), {});
    for (const T x : normals<T>(ends, GaussianInverseCdf, 9))
        EXPECT_EQ(x, T(wide ? -5.8635847487551676 : double(-3.832507f)) * T(1.4142135623730951));
    ConstantGenerator::value = 1;
    EXPECT_EQ(normals<T>(ends, GaussianInverseCdf, 1)[0],
              T(wide ? 5.8635847487551676 : double(3.832507f)) * T(1.4142135623730951));
    ConstantGenerator::value = 0;
    for (const int32_t method : {0, 1}) {
        const auto r = normals<T>(ends, method, 3);
        EXPECT_EQ(r[0], T(0));
        if (method == 1) {
            EXPECT_NEAR(r[1], std::sqrt(2 * (wide ? 744.4400719213812 : 103.2789306640625)), 1e-4);
        }
    }
    // A draw that fails gives its status, with the mode restored.
    OwnedStream failing(ConstantGenerator::id(0.25), {});
    std::vector<T> r(4);
    for (int32_t method = 0; method < 3; ++method) {
        ConstantGenerator::id(0.25, 0);
        EXPECT_EQ(gaussian(method, failing, 4, r.data(), T(0), T(1)), BrngStatusQrngExhausted) << method;
        ConstantGenerator::id(0.25, 0);
        EXPECT_EQ(lognormal(method, failing, 4, r.data(), T(0), T(1), T(0), T(1)), BrngStatusQrngExhausted) << method;
    }
    EXPECT_EQ(_arqGetMode(), mode);
    EXPECT_EQ(_arqGetErrorCallBack(), nullptr);
}

TYPED_TEST(Gaussian, LognormalIsItsExponential) {
    using T = TypeParam;
    for (const int32_t method : {0, 1, 7}) {
        OwnedStream stream(BrngMRG32K3A, {3}), twin(BrngMRG32K3A, {3});
        std::vector<T> r(2501);
        ASSERT_EQ(lognormal(method, stream, 2501, r.data(), T(0.3), T(0.5), T(2), T(1.5)), StatusOk);
        const auto g =
            normals<T>(twin, method == 0 ? GaussianBoxMullerPaired : GaussianInverseCdf, 2501, T(0.3), T(0.5));
        for (size_t i = 0; i < r.size(); ++i)
            ASSERT_EQ(r[i], std::max(T(2), exponential(g[i]) * T(1.5) + T(2))) << method << " " << i;
    }
}

}  // namespace
