// The tridiagonal solvers: residuals for every small size, both ways of solving, bad pivots, ranges beyond one product.
#include <cmath>
#include <gtest/gtest.h>
#include <orv/tridiagonal.h>
#include <random>
#include <vector>

namespace {

void solve_at_once(int32_t n, int32_t sides, double* l, double* d, double* u, double* b, int32_t ld, int32_t* info) {
    ddtsvb_4dfl(&n, &sides, l, d, u, b, &ld, info);
}
void solve_at_once(int32_t n, int32_t sides, float* l, float* d, float* u, float* b, int32_t ld, int32_t* info) {
    sdtsvb_4dfl(&n, &sides, l, d, u, b, &ld, info);
}
void factor(int32_t n, double* l, double* d, double* u, int32_t* info) { ddttrfb_4dfl(&n, l, d, u, info); }
void factor(int32_t n, float* l, float* d, float* u, int32_t* info) { sdttrfb_4dfl(&n, l, d, u, info); }
void solve_factored(const char* t, int32_t n, int32_t sides, double* l, double* d, double* u, double* b, int32_t ld,
                    int32_t* info) {
    ddttrsb_4dfl(t, &n, &sides, l, d, u, b, &ld, info);
}
void solve_factored(const char* t, int32_t n, int32_t sides, float* l, float* d, float* u, float* b, int32_t ld,
                    int32_t* info) {
    sdttrsb_4dfl(t, &n, &sides, l, d, u, b, &ld, info);
}

template <class T>
struct System {
    std::vector<T> l, d, u, b;
    std::vector<double> x;  // the solution, `sides` columns

    // Diagonally dominant, with one row that is not but whose pivot is safe; everything scaled.
    System(int32_t n, int32_t sides, int32_t ld, double scale) {
        std::mt19937 random(static_cast<unsigned>(n));
        std::uniform_real_distribution<double> unit(0.25, 1);
        for (int32_t i = 0; i < n; ++i) {
            if (i + 1 < n)
                l.push_back(static_cast<T>(unit(random) * scale)), u.push_back(static_cast<T>(-unit(random) * scale));
            d.push_back(static_cast<T>((2 + unit(random)) * scale * (i % 3 == 1 ? -1 : 1)));
        }
        b.assign(static_cast<size_t>(ld * sides), T(-9));
        for (int32_t s = 0; s < sides; ++s) {
            std::vector<double> column;
            for (int32_t i = 0; i < n; ++i) column.push_back(unit(random) - 0.5);
            for (int32_t i = 0; i < n; ++i) {
                const auto k = static_cast<size_t>(i);
                double sum = d[k] * column[k];
                if (i > 0) sum += l[k - 1] * column[k - 1];
                if (i + 1 < n) sum += u[k] * column[k + 1];
                b[static_cast<size_t>(s * ld) + k] = static_cast<T>(sum);
            }
            x.insert(x.end(), column.begin(), column.end());
        }
    }
};

template <class T>
class Tridiagonal : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(Tridiagonal, Elements);

TYPED_TEST(Tridiagonal, SolvesEverySizeBothWays) {
    using T = TypeParam;
    for (const double scale : {1.0, sizeof(T) == 8 ? 1e250 : 1e30, sizeof(T) == 8 ? 1e-250 : 1e-30})
        for (int32_t n = 1; n <= 41; ++n)
            for (const int32_t sides : {1, 3})
                for (const bool at_once : {true, false}) {
                    const int32_t ld = n + 2;
                    System<T> s(n, sides, ld, scale);
                    int32_t info = 99;
                    if (at_once) {
                        solve_at_once(n, sides, s.l.data(), s.d.data(), s.u.data(), s.b.data(), ld, &info);
                    } else {
                        factor(n, s.l.data(), s.d.data(), s.u.data(), &info);
                        ASSERT_EQ(info, 0);
                        solve_factored("N", n, sides, s.l.data(), s.d.data(), s.u.data(), s.b.data(), ld, &info);
                    }
                    ASSERT_EQ(info, 0);
                    for (int32_t c = 0; c < sides; ++c) {
                        for (int32_t i = 0; i < n; ++i)
                            ASSERT_NEAR(s.b[static_cast<size_t>(c * ld + i)], s.x[static_cast<size_t>(c * n + i)],
                                        sizeof(T) == 8 ? 4e-16 : 4e-7)
                                << n << " rows, scale " << scale << ", row " << i << ", at once " << at_once;
                        EXPECT_EQ(s.b[static_cast<size_t>(c * ld + n)], T(-9));
                    }
                }
}

TYPED_TEST(Tridiagonal, BadPivotsAreReported) {
    using T = TypeParam;
    for (const int32_t n : {1, 2, 9, 30})
        for (int32_t row = 0; row < n; ++row)
            for (const T bad : {T(0), static_cast<T>(std::nan("")), static_cast<T>(INFINITY)}) {
                std::vector<T> l(static_cast<size_t>(n)), d(static_cast<size_t>(n), T(2)), u(static_cast<size_t>(n)),
                    b(static_cast<size_t>(n), T(1));
                d[static_cast<size_t>(row)] = bad;
                auto l2 = l, d2 = d, u2 = u;
                int32_t info = 0;
                factor(n, l2.data(), d2.data(), u2.data(), &info);
                EXPECT_EQ(info, row + 1) << n;
                solve_at_once(n, 1, l.data(), d.data(), u.data(), b.data(), n, &info);
                EXPECT_EQ(info, row + 1) << n;
            }
    int32_t info = 0;
    T one = 1;
    solve_factored("T", 1, 1, &one, &one, &one, &one, 1, &info);
    EXPECT_EQ(info, -1);
}

}  // namespace
