// Dense entries by what they leave: products by definition, factors and inverses by multiplying back, eigenvectors by A v = w v.
#include <orv/blas.h>
#include <orv/lapack.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace {

template <class T>
struct Dense;
#define ORV_DENSE(T, l)                                                                       \
    template <>                                                                               \
    struct Dense<T> {                                                                         \
        static constexpr auto gemm = orv_blas_x##l##gemm;                                     \
        static constexpr auto symm = orv_blas_x##l##symm;                                     \
        static constexpr auto trmm = orv_blas_x##l##trmm;                                     \
        static constexpr auto gemv = orv_blas_x##l##gemv;                                     \
        static constexpr auto potrf = orv_lapack_x##l##potrf, potri = orv_lapack_x##l##potri; \
        static constexpr auto trtri = orv_lapack_x##l##trtri;                                 \
        static constexpr auto syev = orv_lapack_x##l##syev;                                   \
        static constexpr auto spevd = orv_lapack_x##l##spevd;                                 \
    };
ORV_DENSE(double, d)
ORV_DENSE(float, s)
#undef ORV_DENSE

// By columns.
template <class T>
struct Matrix {
    int32_t rows, columns;
    std::vector<T> at;
    Matrix(int32_t m, int32_t n, unsigned seed = 0) : rows(m), columns(n), at(size_t(m) * n) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> value(-1, 1);
        if (seed)
            for (T& x : at) x = static_cast<T>(value(random));
    }
    T& operator()(int32_t i, int32_t j) { return at[size_t(j) * rows + i]; }
    T operator()(int32_t i, int32_t j) const { return at[size_t(j) * rows + i]; }
};

template <class T>
Matrix<T> product(const Matrix<T>& a, const Matrix<T>& b) {
    Matrix<T> c(a.rows, b.columns);
    for (int32_t i = 0; i < a.rows; ++i)
        for (int32_t j = 0; j < b.columns; ++j) {
            double sum = 0;
            for (int32_t k = 0; k < a.columns; ++k) sum += double(a(i, k)) * b(k, j);
            c(i, j) = static_cast<T>(sum);
        }
    return c;
}
template <class T>
Matrix<T> transposed(const Matrix<T>& a) {
    Matrix<T> t(a.columns, a.rows);
    for (int32_t i = 0; i < a.rows; ++i)
        for (int32_t j = 0; j < a.columns; ++j) t(j, i) = a(i, j);
    return t;
}
template <class T>
Matrix<T> upper(Matrix<T> a) {
    for (int32_t j = 0; j < a.columns; ++j)
        for (int32_t i = j + 1; i < a.rows; ++i) a(i, j) = 0;
    return a;
}
template <class T>
double distance(const Matrix<T>& a, const Matrix<T>& b) {
    double most = 0;
    for (size_t i = 0; i < a.at.size(); ++i) most = std::max(most, double(std::fabs(a.at[i] - b.at[i])));
    return most;
}
template <class T>
Matrix<T> unit(int32_t n) {
    Matrix<T> e(n, n);
    for (int32_t i = 0; i < n; ++i) e(i, i) = 1;
    return e;
}
template <class T>
Matrix<T> positive_definite(int32_t n) {
    const Matrix<T> g(n, n, 5);
    Matrix<T> a = product(g, transposed(g));
    for (int32_t i = 0; i < n; ++i) a(i, i) += static_cast<T>(1);
    return a;
}

template <class T>
struct DenseEntries : testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(DenseEntries, Elements);

TYPED_TEST(DenseEntries, Products) {
    using T = TypeParam;
    const double near = 500 * std::numeric_limits<T>::epsilon();
    const int32_t m = 31, n = 17, k = 23, step = 1;
    const T one = 1, none = 0;
    const Matrix<T> a(m, k, 1), b(k, n, 2), at = transposed(a), bt = transposed(b), exact = product(a, b);
    for (const char* ta : {"n", "t"})
        for (const char* tb : {"n", "t"}) {
            Matrix<T> c(m, n);
            const Matrix<T>&x = *ta == 'n' ? a : at, &y = *tb == 'n' ? b : bt;
            Dense<T>::gemm(ta, tb, &m, &n, &k, &one, x.at.data(), &x.rows, y.at.data(), &y.rows, &none, c.at.data(),
                           &m);
            EXPECT_LT(distance(c, exact), near) << ta << tb;
        }
    Matrix<T> y(m, 1);
    Dense<T>::gemv("n", &m, &k, &one, a.at.data(), &m, b.at.data(), &step, &none, y.at.data(), &step);
    for (int32_t i = 0; i < m; ++i) EXPECT_NEAR(y(i, 0), exact(i, 0), near);

    const Matrix<T> s = positive_definite<T>(m), u = upper(s), c(m, n, 3);
    Matrix<T> result(m, n), triangular = c;
    Dense<T>::symm("l", "u", &m, &n, &one, u.at.data(), &m, c.at.data(), &m, &none, result.at.data(), &m);
    EXPECT_LT(distance(result, product(s, c)), m * near);
    Dense<T>::trmm("l", "u", "t", "n", &m, &n, &one, s.at.data(), &m, triangular.at.data(), &m);
    EXPECT_LT(distance(triangular, product(transposed(u), c)), m * near);
}

TYPED_TEST(DenseEntries, FactorsAndInverses) {
    using T = TypeParam;
    for (const int32_t n : {1, 2, 20, 150}) {
        const double near = 100.0 * n * std::numeric_limits<T>::epsilon();
        const Matrix<T> a = positive_definite<T>(n);
        Matrix<T> factor = a;
        int32_t info = -1;
        Dense<T>::potrf("u", &n, factor.at.data(), &n, &info);
        ASSERT_EQ(info, 0);
        factor = upper(factor);
        EXPECT_LT(distance(product(transposed(factor), factor), a), near);
        Matrix<T> inverse = factor;
        Dense<T>::trtri("u", "n", &n, inverse.at.data(), &n, &info);
        ASSERT_EQ(info, 0);
        EXPECT_LT(distance(product(inverse, factor), unit<T>(n)), near);
        inverse = factor;
        Dense<T>::potri("u", &n, inverse.at.data(), &n, &info);
        ASSERT_EQ(info, 0);
        for (int32_t j = 0; j < n; ++j)
            for (int32_t i = 0; i < j; ++i) inverse(j, i) = inverse(i, j);
        EXPECT_LT(distance(product(inverse, a), unit<T>(n)), 10 * near);
        factor = a;
        factor(n - 1, n - 1) = -1;
        Dense<T>::potrf("u", &n, factor.at.data(), &n, &info);
        EXPECT_EQ(info, n);
    }
}

TYPED_TEST(DenseEntries, Eigenvalues) {
    using T = TypeParam;
    for (const int32_t n : {1, 2, 20, 120}) {
        const double near = 300.0 * n * std::numeric_limits<T>::epsilon();
        const Matrix<T> a = positive_definite<T>(n);
        const auto check = [&](const Matrix<T>& vectors, const std::vector<T>& values) {
            Matrix<T> scaled = vectors;
            for (int32_t j = 0; j < n; ++j)
                for (int32_t i = 0; i < n; ++i) scaled(i, j) *= values[size_t(j)];
            EXPECT_LT(distance(product(a, vectors), scaled), near) << n;
            EXPECT_LT(distance(product(transposed(vectors), vectors), unit<T>(n)), near) << n;
            for (int32_t j = 1; j < n; ++j) EXPECT_LE(values[size_t(j) - 1], values[size_t(j)]);
        };
        std::vector<T> values(static_cast<size_t>(n)), work(static_cast<size_t>(1 + 6 * n + n * n));
        std::vector<int32_t> iwork(static_cast<size_t>(3 + 5 * n));
        const int32_t lwork = static_cast<int32_t>(work.size()), liwork = static_cast<int32_t>(iwork.size());
        int32_t info = -1;
        Matrix<T> vectors = a;
        Dense<T>::syev("v", "u", &n, vectors.at.data(), &n, values.data(), work.data(), &lwork, &info);
        ASSERT_EQ(info, 0);
        check(vectors, values);
        std::vector<T> packed;
        for (int32_t j = 0; j < n; ++j)
            for (int32_t i = 0; i <= j; ++i) packed.push_back(a(i, j));
        Dense<T>::spevd("v", "u", &n, packed.data(), values.data(), vectors.at.data(), &n, work.data(), &lwork,
                        iwork.data(), &liwork, &info);
        ASSERT_EQ(info, 0);
        check(vectors, values);
    }
}

}  // namespace
