// Integration: against the antiderivative cell by cell, additivity, layouts, hints, statuses.
#include "fit/support.h"
#include "services/test_switches.h"

#include <cmath>

namespace orv::test {
namespace {

template <class T>
class FitIntegrate : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(FitIntegrate, Elements);

template <class T>
int32_t integrate(const Fit<T>& fit, const std::vector<T>& a, const std::vector<T>& b, std::vector<T>& out,
                  int64_t hint_a = 0, int64_t hint_b = 0, int64_t layout = 0, const T* data = nullptr,
                  const orv_services* services = nullptr) {
    const auto count = static_cast<int64_t>(out.size()) / fit.p.functions;
    return DFIntegrate1D(T{}, fit.task, int64_t{0}, count, a.data(), hint_a, b.data(), hint_b, data, out.data(), layout,
                         services);
}

// The integral in extended precision: Simpson's rule, exact for cubics, on each part of the interval that the breaks or knots
// cut. It loses nothing on short parts.
template <class T>
long double reference(const Fit<T>& fit, long double a, long double b, int64_t f) {
    if (b < a) return -reference(fit, b, a, f);
    std::vector<T> edges(fit.p.x.begin() + 1, fit.p.x.end() - 1);
    if (fit.p.type == ORV_DF_TYPE_KNOTS) edges = fit.p.ic;
    long double sum = 0, from = a;
    for (size_t i = 0; i <= edges.size(); ++i) {
        const long double to = i < edges.size() ? std::min<long double>(std::max<long double>(edges[i], a), b) : b;
        const auto at = [&](long double x) { return fit.at(static_cast<int64_t>(i), x, 0, f); };
        sum += (to - from) / 6 * (at(from) + 4 * at((from + to) / 2) + at(to));
        from = to;
    }
    return sum;
}

template <class T>
Problem<T> integrand(int64_t order, int64_t type, bool uniform) {
    Problem<T> p;
    p.x = breaks<T>(30, uniform);
    p.uniform = uniform;
    p.y = noise<T>(60);
    p.functions = 2;
    p.order = order;
    p.type = type;
    if (type == ORV_DF_TYPE_KNOTS) {
        p.ic_type = ORV_DF_INTERNAL_KNOTS;
        for (size_t i = 0; i + 1 < p.x.size(); ++i) p.ic.push_back((p.x[i] + p.x[i + 1]) / 2);
    }
    return p;
}

constexpr struct {
    int64_t order, type;
    Spline spline;
} kinds[] = {{2, 0, linear}, {3, 1, quadratic}, {4, 2, natural}};

TYPED_TEST(FitIntegrate, AgainstTheAntiderivative) {
    using T = TypeParam;
    for (const auto& kind : kinds)
        for (const bool uniform : {false, true}) {
            Fit<T> fit(integrand<T>(kind.order, kind.type, uniform));
            ASSERT_EQ(fit.construct(kind.spline), 0);
            std::vector<T> a, b;
            std::mt19937 random(9);
            std::uniform_real_distribution<double> within(fit.p.x.front() - 1.0, fit.p.x.back() + 1.0);
            for (int i = 0; i < 300; ++i)
                a.push_back(static_cast<T>(within(random))), b.push_back(static_cast<T>(within(random)));
            for (size_t i = 0; i < 30; ++i) a[i] = fit.p.x[i], b[i] = fit.p.x[29 - i];
            b[40] = a[40];
            std::vector<T> out(600), columns(600);
            ASSERT_EQ(integrate(fit, a, b, out), 0);
            ASSERT_EQ(integrate(fit, a, b, columns, 0, 0, 0x20), 0);
            std::vector<T> first(300), second(300);
            T* rows[] = {first.data(), second.data()};
            ASSERT_EQ(DFIntegrate1D(T{}, fit.task, int64_t{0}, int64_t{300}, a.data(), int64_t{0}, b.data(), int64_t{0},
                                    nullptr, reinterpret_cast<T*>(rows), int64_t{0x80}, nullptr),
                      0);
            for (size_t i = 0; i < 300; ++i)
                for (size_t f = 0; f < 2; ++f) {
                    const auto expected = static_cast<double>(reference(fit, a[i], b[i], static_cast<int64_t>(f)));
                    ASSERT_NEAR(out[f * 300 + i], expected, epsilon<T> * (uniform ? 100 : 20))
                        << kind.order << " " << i;
                    ASSERT_EQ(columns[i * 2 + f], out[f * 300 + i]);
                    ASSERT_EQ(rows[f][i], out[f * 300 + i]);
                }
        }
}

// However short the interval, within a cell, across a break or a knot, outside: the relative error is that of a few
// roundings.
TYPED_TEST(FitIntegrate, ShortIntervalsKeepTheirDigits) {
    using T = TypeParam;
    for (const auto& kind : kinds)
        for (const bool uniform : {false, true}) {
            Problem<T> p = integrand<T>(kind.order, kind.type, uniform);
            for (T& y : p.y) y = 3 + y / 2;
            Fit<T> fit(p);
            ASSERT_EQ(fit.construct(kind.spline), 0);
            std::vector<T> a, b;
            for (T width = 1; width > 100 * epsilon<T>; width /= 7)
                for (const T at :
                     {T(0.001), p.x[0] - T(0.5), p.x[20] + (p.x[21] - p.x[20]) * T(0.3), p.x[21], p.x[29], p.x[7]})
                    a.push_back(at - width / 3), b.push_back(at + width);
            for (size_t i = 0; i < a.size(); i += 3) std::swap(a[i], b[i]);
            std::vector<T> out(2 * a.size());
            ASSERT_EQ(integrate(fit, a, b, out), 0);
            for (size_t i = 0; i < a.size(); ++i)
                ASSERT_NEAR(static_cast<double>(out[i] / reference(fit, a[i], b[i], 0)), 1, 8 * epsilon<T>)
                    << "order " << kind.order << " uniform " << uniform << " from " << a[i] << " to " << b[i];
        }
}

// A large early part must not swallow the low digits of what follows.
TEST(FitIntegrateSum, AdjacentIntervalsAddUp) {
    Problem<double> p = integrand<double>(4, 2, false);
    p.x = breaks<double>(2000);
    p.y = noise<double>(4000);
    for (size_t i = 0; i < 10; ++i) p.y[i] *= 1e12;
    Fit<double> fit(p);
    ASSERT_EQ(fit.construct(akima), 0);
    std::vector<double> a, b;
    for (double at = p.x[20] + 0.1; at < p.x[1990]; at += 3.7) a.push_back(at), b.push_back(at + 3.7);
    a.push_back(a.front());
    b.push_back(b[b.size() - 1]);
    std::vector<double> out(a.size() * 2);
    ASSERT_EQ(integrate(fit, a, b, out), 0);
    long double sum = 0;
    for (size_t i = 0; i + 1 < a.size(); ++i) sum += out[i];
    EXPECT_NEAR(out[a.size() - 1], static_cast<double>(sum), 4e-14);
    for (size_t i = 0; i < a.size(); ++i)
        ASSERT_NEAR(out[i], static_cast<double>(reference(fit, a[i], b[i], 0)), i + 1 < a.size() ? 4e-15 : 4e-14);
}

TEST(FitIntegrateHints, UniformSortedThreadsAndBadCells) {
    Fit<double> fit(integrand<double>(4, 2, false));
    ASSERT_EQ(fit.construct(natural), 0);
    const int64_t count = 20000;
    std::vector<double> a, b, out(2 * count), same(2 * count);
    const double step = 12.0 / (count - 1);
    for (int64_t i = 0; i < count; ++i) a.push_back(-2 + static_cast<double>(i) * step), b.push_back(a.back() + 1);
    ASSERT_EQ(integrate(fit, a, b, out), 0);
    for (const int64_t hint : {0x40, 0}) {
        ASSERT_EQ(
            integrate(fit, a, b, same, hint, hint, 0x10, static_cast<const double*>(nullptr), orv_serv_services()), 0);
        EXPECT_EQ(out, same);
    }
    ASSERT_EQ(integrate(fit, {a.front(), a.back()}, {b.front(), b.back()}, same, 4, 4), 0);
    for (size_t i = 0; i < out.size(); ++i) ASSERT_NEAR(out[i], same[i], 1e-13);
    const double bad[] = {0, 2}, good[] = {0, 1};
    EXPECT_EQ(integrate(fit, a, b, same, 0x40, 0, 0, bad), -1026);
    EXPECT_EQ(integrate(fit, a, b, same, 0x40, 0, 0, good), 0);
    EXPECT_EQ(integrate(fit, a, b, same, 0, 0, 0, bad), 0);
    EXPECT_EQ(integrate(fit, a, b, same, 0, 0, 0x100), -1034);
    const int32_t before = orv_serv_live_blocks();
    std::fill(same.begin(), same.end(), -777.0);
    orv_serv_fail_allocation(1);
    EXPECT_EQ(integrate(fit, a, b, same), -1001);
    orv_serv_fail_allocation(0);
    EXPECT_EQ(orv_serv_live_blocks(), before);
    EXPECT_EQ(same[0], -777.0);
    const auto clean = static_cast<double>(reference(fit, fit.p.x[6], fit.p.x[9], 0));
    // A cell that is no number spoils the intervals that contain it and no other.
    fit.coeffs[4 * 5] = std::nan("");
    std::vector<double> part(6);
    const std::vector<double> from = {fit.p.x[6], fit.p.x[4], std::nan("")}, to = {fit.p.x[9], fit.p.x[9], 0};
    ASSERT_EQ(integrate(fit, from, to, part), 0);
    EXPECT_NEAR(part[0], clean, 1e-14);
    EXPECT_TRUE(std::isnan(part[1]));
    EXPECT_TRUE(std::isnan(part[2]));
    // Far limits grow beyond all numbers, to the side where the last cell's polynomial goes.
    const double far = fit.cell(28)[3] > 0 ? INFINITY : -INFINITY;
    part.resize(4);
    for (const double limit : {1e200, double{INFINITY}}) {
        ASSERT_EQ(integrate(fit, {fit.p.x[6], limit}, {limit, fit.p.x[6]}, part), 0);
        EXPECT_EQ(part[0], far) << limit;
        EXPECT_EQ(part[1], -far);
    }
    fit.task->splineType = 6;
    EXPECT_EQ(integrate(fit, a, b, same), -1011);
    fit.task->splineOrder = 0;
    EXPECT_EQ(integrate(fit, a, b, same), -1011);
}

}  // namespace
}  // namespace orv::test
