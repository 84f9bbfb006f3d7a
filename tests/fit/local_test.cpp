// Akima, Bessel and Hyman against their formulas in extended precision.
#include "fit/support.h"

#include <algorithm>
#include <cmath>

namespace orv::test {
namespace {

using Real = long double;
using Reals = std::vector<Real>;

struct Reference {
    Reals x, y, h, s;
    template <class T>
    Reference(const std::vector<T>& breaks_, const std::vector<T>& values)
        : x(breaks_.begin(), breaks_.end()), y(values.begin(), values.end()) {
        for (size_t i = 0; i + 1 < x.size(); ++i) {
            h.push_back(x[i + 1] - x[i]);
            s.push_back((y[i + 1] - y[i]) / h[i]);
        }
    }
    size_t last() const { return s.size() - 1; }
    // A slope past the ends, wrapped or extended.
    Real slope(int64_t i, bool periodic) const {
        const auto n = static_cast<int64_t>(s.size());
        if (i >= 0 && i < n) return s[static_cast<size_t>(i)];
        if (periodic) return s[static_cast<size_t>((i + n) % n)];
        if (i < 0) return static_cast<Real>(1 - i) * s[0] + static_cast<Real>(i) * s[1];
        const auto beyond = static_cast<Real>(i - n + 1);
        return (1 + beyond) * s[last()] - beyond * s[last() - 1];
    }
    Real akima_at(int64_t i, bool periodic) const {
        const Real a = slope(i - 2, periodic), b = slope(i - 1, periodic), c = slope(i, periodic),
                   d = slope(i + 1, periodic);
        const Real right = std::fabs(d - c), left = std::fabs(b - a);
        return right + left < 1e-10L ? (b + c) / 2 : (right * b + left * c) / (right + left);
    }
    Real bessel_at(size_t i) const { return (h[i - 1] * s[i] + h[i] * s[i - 1]) / (h[i - 1] + h[i]); }
    Real hyman_at(size_t i) const {
        if (s[i - 1] * s[i] <= 0) return 0;
        const Real bound = 3 * std::min(std::fabs(s[i - 1]), std::fabs(s[i])), m = bessel_at(i);
        return std::clamp(m, -bound, bound);
    }
    // Ends by the formulas of the local family, uneven breaks.
    void ends(Reals& m, int64_t code, Real left, Real right, Real around, Real extended_left,
              Real extended_right) const {
        const size_t e = m.size() - 1, l = last();
        const auto knot = [](Real h0, Real h1, Real s0, Real s1, Real m1) {
            const Real d = h0 + h1;
            return ((h0 * h0 * s1 + (h0 + 2 * d) * h1 * s0) / d - d * m1) / h1;
        };
        switch (code) {
            case 1:
                m[0] = knot(h[0], h[1], s[0], s[1], m[1]), m[e] = knot(h[l], h[l - 1], s[l], s[l - 1], m[l]);
                return;
            case 0:
                m[0] = extended_left, m[e] = extended_right;
                return;
            case 64:
                m[0] = m[e] = around;
                return;
            default:
                break;
        }
        m[0] = code & 4 ? left : 1.5L * s[0] - 0.25L * h[0] * (code == 2 ? 0 : left) - 0.5L * m[1];
        m[e] = code & 8 ? right : 1.5L * s[l] + 0.25L * h[l] * (code == 2 ? 0 : right) - 0.5L * m[l];
    }
};

template <class T>
void expect_cells(const Fit<T>& fit, const Reference& r, const Reals& m, const char* what) {
    for (size_t i = 0; i < r.s.size(); ++i) {
        const Real h = r.h[i], s = r.s[i];
        const Real c[] = {r.y[i], m[i], (3 * s - 2 * m[i] - m[i + 1]) / h, (m[i] + m[i + 1] - 2 * s) / (h * h)};
        for (int k = 0; k < 4; ++k)
            ASSERT_NEAR(static_cast<double>(fit.cell(static_cast<int64_t>(i))[k]), static_cast<double>(c[k]),
                        static_cast<double>(epsilon<T> * 12 * (std::fabs(s) + std::fabs(m[i]) + std::fabs(m[i + 1])) /
                                            std::pow(std::min<Real>(h, 1), k)))
                << what << " cell " << i << " coefficient " << k;
    }
}

template <class T>
class FitLocal : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(FitLocal, Elements);

TYPED_TEST(FitLocal, FormulasInExtendedPrecision) {
    using T = TypeParam;
    for (const int64_t count : {5, 6, 258, 2600})
        for (const int64_t code : {0, 1, 2, 12, 36, 24, 48, 64})
            for (const Spline spline : {akima, bessel, hyman}) {
                if (code == 0 && spline != akima) continue;
                Problem<T> p;
                p.x = breaks<T>(count);
                p.y = noise<T>(count);
                // Stretches on a line, where Akima's weights vanish, and almost on one, where they do not; and steps,
                // where Hyman's slopes vanish.
                for (size_t i = 100; i < 110 && i < p.y.size(); ++i) p.y[i] = T(0.5) * p.x[i];
                for (size_t i = 140; i < 150 && i < p.y.size(); ++i) p.y[i] = T(0.5) * p.x[i] + p.y[i] * T(1e-4);
                for (size_t i = 120; i < 125 && i < p.y.size(); ++i) p.y[i] = T(0.5);
                if (code >= 12 && code != 64) p.bc = {T(0.5), T(-2)};
                if (code == 64) p.y.back() = p.y.front();
                p.bc_type = code;
                Fit<T> fit(p);
                ASSERT_EQ(fit.construct(spline, orv_serv_services()), 0);
                const Reference r(p.x, p.y);
                const auto e = static_cast<int64_t>(count) - 1;
                Reals m(p.x.size());
                for (size_t i = 1; i + 1 < m.size(); ++i)
                    m[i] = spline == akima    ? r.akima_at(static_cast<int64_t>(i), code == 64)
                           : spline == bessel ? r.bessel_at(i)
                                              : r.hyman_at(i);
                const Real around = spline == akima
                                        ? r.akima_at(0, true)
                                        : (r.h[r.last()] * r.s[0] + r.h[0] * r.s[r.last()]) / (r.h[r.last()] + r.h[0]);
                r.ends(m, code, 0.5L, -2, around, r.akima_at(0, false), r.akima_at(e, false));
                if (sizeof(T) == 8)
                    expect_cells(fit, r, m, spline == akima ? "akima" : spline == bessel ? "bessel" : "hyman");
                // In float the quotients of rounded slope differences differ by more than rounding: compare loosely.
                for (size_t i = 0; sizeof(T) == 4 && i < r.s.size(); ++i)
                    ASSERT_NEAR(fit.cell(static_cast<int64_t>(i))[1], static_cast<double>(m[i]), 2e-3) << i;
            }
}

// The value at the uniform not-a-knot end is part of the interface.
TYPED_TEST(FitLocal, UniformNotAKnotEnd) {
    using T = TypeParam;
    for (const Spline spline : {akima, bessel, hyman}) {
        Problem<T> p;
        p.x = breaks<T>(8, true);
        p.y = noise<T>(8);
        p.uniform = true;
        p.bc_type = ORV_DF_NOT_A_KNOT;
        Fit<T> fit(p);
        ASSERT_EQ(fit.construct(spline), 0);
        const double r = 2, close = static_cast<double>(50 * epsilon<T>);
        EXPECT_NEAR(fit.cell(0)[1], (p.y[2] - p.y[0]) / 2 * r - 2 * fit.cell(1)[1], close);
        EXPECT_NEAR(static_cast<double>(fit.at(6, p.x[7], 1)), (p.y[7] - p.y[5]) / 2 * r - 2 * fit.cell(6)[1], close);
    }
}

TYPED_TEST(FitLocal, HymanKeepsMonotoneDataMonotone) {
    using T = TypeParam;
    for (const int64_t code : {2, 64})
        for (unsigned seed = 1; seed <= 20; ++seed) {
            Problem<T> p;
            p.x = breaks<T>(60, false, seed);
            std::mt19937 random(seed);
            T at = 0;
            for (size_t i = 0; i < p.x.size(); ++i) {
                p.y.push_back(at);
                // Flat stretches and steps over six orders of magnitude.
                if (random() % 4) at += std::pow(T(10), -static_cast<T>(random() % 6));
            }
            if (code == 64) continue;
            p.bc_type = code;
            Fit<T> fit(p);
            ASSERT_EQ(fit.construct(hyman), 0);
            for (int64_t i = 0; i + 1 < 60; ++i)
                for (int k = 0; k <= 32; ++k) {
                    const auto a = static_cast<Real>(p.x[static_cast<size_t>(i)]),
                               b = static_cast<Real>(p.x[static_cast<size_t>(i) + 1]);
                    EXPECT_GE(fit.at(i, a + (b - a) * k / 32, 1), -40 * static_cast<Real>(epsilon<T>) * 4)
                        << "seed " << seed;
                }
        }
}

// A NaN shows in the cells whose derivatives see it, also beside a flat cell, and in no other.
TYPED_TEST(FitLocal, ABadValueStaysLocal) {
    using T = TypeParam;
    Problem<T> p;
    p.x = breaks<T>(40);
    p.y = noise<T>(40);
    for (const Spline spline : {akima, bessel, hyman}) {
        Fit<T> good(p);
        ASSERT_EQ(good.construct(spline), 0);
        Problem<T> spoiled = p;
        spoiled.y[20] = std::numeric_limits<T>::quiet_NaN();
        spoiled.y[18] = spoiled.y[19] = p.y[19];
        Fit<T> bad(spoiled);
        ASSERT_EQ(bad.construct(spline), 0);
        for (int64_t i = 18; i < 22; ++i) EXPECT_TRUE(std::isnan(bad.cell(i)[3])) << spline << " cell " << i;
        for (int64_t i = 0; i < 39; ++i) {
            if (i > 13 && i < 24) continue;
            EXPECT_TRUE(std::equal(good.cell(i), good.cell(i) + 4, bad.cell(i))) << spline << " cell " << i;
        }
    }
}

}  // namespace
}  // namespace orv::test
