// GaussianMV: the factor times the numbers that Gaussian gives, in every storage.
#include "distrib/deviates.h"

using namespace orv::test;

namespace {

int32_t vectors(int32_t method, Stream* s, int32_t n, double* r, int32_t dimen, int32_t storage, const double* a,
                const double* t) {
    return _kuzdRngGaussianMV(method, s, n, r, dimen, storage, a, t);
}
int32_t vectors(int32_t method, Stream* s, int32_t n, float* r, int32_t dimen, int32_t storage, const float* a,
                const float* t) {
    return _kuzsRngGaussianMV(method, s, n, r, dimen, storage, a, t);
}
int32_t normals(int32_t method, Stream* s, int32_t n, double* r) { return _kuzdRngGaussian(method, s, n, r, 0, 1); }
int32_t normals(int32_t method, Stream* s, int32_t n, float* r) { return _kuzsRngGaussian(method, s, n, r, 0, 1); }

// The factor by rows in each storage, what a storage does not read is NaN.
template <class T>
std::vector<T> stored(const std::vector<T>& factor, size_t dimen, int32_t storage) {
    std::vector<T> t;
    if (storage == MatrixStorageFull) {
        t = factor;
        for (size_t i = 0; i < dimen; ++i)
            for (size_t j = i + 1; j < dimen; ++j) t[i * dimen + j] = std::numeric_limits<T>::quiet_NaN();
    } else if (storage == MatrixStoragePacked) {
        for (size_t j = 0; j < dimen; ++j)
            for (size_t i = j; i < dimen; ++i) t.push_back(factor[i * dimen + j]);
    } else {
        for (size_t i = 0; i < dimen; ++i) t.push_back(factor[i * dimen + i]);
    }
    return t;
}

template <class T>
class GaussianMV : public testing::Test {};
using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(GaussianMV, Types);

TYPED_TEST(GaussianMV, IsTheFactorTimesNormals) {
    using T = TypeParam;
    for (const int32_t dimen : {1, 2, 4, 10, 11, 100})
        for (const int32_t storage : {0, 1, 2, 99})
            for (const int32_t n : {1, 8, 9, 50}) {
                const size_t d = static_cast<size_t>(dimen), count = d * static_cast<size_t>(n);
                std::vector<T> factor(d * d), a(d), no_means(d, 0), z(count);
                for (size_t i = 0; i < d * d; ++i) factor[i] = T(1 + 0.37 * double(i % 11) - 0.11 * double(i % 7));
                for (size_t i = 0; i < d; ++i) a[i] = T(3) + T(i) / 7;
                const auto t = stored(factor, d, storage == 99 ? 0 : storage);
                OwnedStream stream(BrngSFMT19937, {6}), twin(BrngSFMT19937, {6}), third(BrngSFMT19937, {6});
                std::vector<T> r(count + 1, 99), centred(count);
                ASSERT_EQ(vectors(1, stream, n, r.data(), dimen, storage, a.data(), t.data()), StatusOk);
                ASSERT_EQ(vectors(1, twin, n, centred.data(), dimen, storage, no_means.data(), t.data()), StatusOk);
                EXPECT_EQ(r.back(), 99);
                normals(1, third, static_cast<int32_t>(count), z.data());
                for (size_t i = 0; i < count; ++i) {
                    const size_t row = i % d, base = i - row;
                    double product = 0, size = 0;
                    for (size_t j = 0; j < d; ++j) {
                        if (j > row || (storage == MatrixStorageDiagonal && j != row)) continue;
                        const double term = double(factor[row * d + j]) * double(z[base + j]);
                        product += term;
                        size += std::fabs(term);
                    }
                    const bool left_alone = storage == 99 && dimen > 1;
                    const double ulp = std::numeric_limits<T>::epsilon();
                    ASSERT_NEAR(centred[i], left_alone ? double(z[i]) : product, left_alone ? 0 : dimen * ulp * size)
                        << dimen << " " << storage << " " << i;
                    const T moved = left_alone ? z[i] : centred[i] + a[row];
                    if (storage == MatrixStorageDiagonal || dimen == 1)
                        ASSERT_EQ(r[i], z[i] * factor[row * d + row] + a[row]);
                    else
                        ASSERT_EQ(r[i], moved) << dimen << " " << storage << " " << n << " " << i;
                }
                EXPECT_EQ(draw(stream, 3), draw(third, 3));
            }
}

// Means and covariances of 10^6 vectors, at a fixed seed: 5.5 standard errors are passed by one in 5000 of samples with as
// many covariances as a dimension of 100 has.
template <class T>
void check_covariance(int32_t dimen) {
    constexpr int32_t vectors_wanted = 1000000, part = 2000;
    const auto d = static_cast<size_t>(dimen);
    std::vector<T> factor(d * d), a(d), r(part * d);
    for (size_t i = 0; i < d; ++i) a[i] = T(3) + T(i) / 7;
    for (size_t i = 0; i < d * d; ++i) factor[i] = T(0.37 * double(i % 11) - 0.11 * double(i % 17));
    for (size_t i = 0; i < d; ++i) factor[i * d + i] = T(1) + T(i % 3);
    for (const int32_t storage : {MatrixStorageFull, MatrixStoragePacked, MatrixStorageDiagonal}) {
        const auto t = stored(factor, d, storage);
        OwnedStream stream(BrngSFMT19937, {6});
        std::vector<double> sum(d), product(d * d), x(d);
        for (int32_t done = 0; done < vectors_wanted; done += part) {
            ASSERT_EQ(vectors(2, stream, part, r.data(), dimen, storage, a.data(), t.data()), StatusOk);
            for (size_t k = 0; k < r.size(); k += d)
                for (size_t i = 0; i < d; ++i) {
                    x[i] = double(r[k + i]) - double(a[i]);
                    sum[i] += x[i];
                    for (size_t j = 0; j <= i; ++j) product[i * d + j] += x[i] * x[j];
                }
        }
        const auto exact = [&](size_t i, size_t j) {
            double s = 0;
            for (size_t k = 0; k <= std::min(i, j); ++k)
                if (storage != MatrixStorageDiagonal || (i == k && j == k))
                    s += double(factor[i * d + k]) * double(factor[j * d + k]);
            return s;
        };
        for (size_t i = 0; i < d; ++i) {
            EXPECT_LT(std::fabs(sum[i]) / std::sqrt(vectors_wanted * exact(i, i)), 5.5) << dimen << " " << storage;
            for (size_t j = 0; j <= i; ++j) {
                const double s = exact(i, j), error = std::sqrt((exact(i, i) * exact(j, j) + s * s) / vectors_wanted);
                EXPECT_LT(std::fabs(product[i * d + j] / vectors_wanted - s) / error, 5.5) << dimen << " " << storage;
            }
        }
    }
}
TYPED_TEST(GaussianMV, HasItsCovariance) {
    for (const int32_t dimen : {1, 2}) check_covariance<TypeParam>(dimen);
}
template <class T>
class ExhaustiveGaussianMV : public testing::Test {};
TYPED_TEST_SUITE(ExhaustiveGaussianMV, Types);
TYPED_TEST(ExhaustiveGaussianMV, HasItsCovariance) {
    for (const int32_t dimen : {10, 11, 100}) check_covariance<TypeParam>(dimen);
}

TYPED_TEST(GaussianMV, WithoutVectorsOrNumbers) {
    const TypeParam a[2] = {1, 2}, t[4] = {1, 0, 1, 1};
    OwnedStream stream(BrngSFMT19937, {6}), twin(BrngSFMT19937, {6});
    TypeParam r[6] = {99, 99, 99, 99, 99, 99};
    for (const int32_t storage : {0, 1, 2})
        for (const int32_t n : {0, -2}) EXPECT_EQ(vectors(0, stream, n, r, 2, storage, a, t), StatusOk);
    EXPECT_EQ(r[0], 99);
    EXPECT_EQ(draw(stream, 3), draw(twin, 3));
    OwnedStream failing(ConstantGenerator::id(0.25, 0), {});
    EXPECT_EQ(vectors(0, failing, 3, r, 2, 0, a, t), BrngStatusQrngExhausted);
}

}  // namespace
