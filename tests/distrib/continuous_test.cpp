// The distributions by one closed formula: equal to the formula number by number, of the right distribution, and without
// a trace in the caller's state.
#include "distrib/deviates.h"
#include "support/control_state.h"

#include <cerrno>
#include <functional>

using namespace orv::test;

namespace {

template <class T>
struct Case {
    const char* name;
    std::function<int32_t(Stream*, int32_t, T*)> draw;
    T from, to;                        // the interval of the uniforms
    size_t uses;                       // uniforms a number
    std::function<T(const T*)> value;  // of its uniforms
    std::function<double(double)> cdf;
    double at_zero;  // the number that uniforms of zero give
};

#define ORV_CASES(T, t)                                                                                                \
    inline std::vector<Case<T>> cases(T a = T(1.5), T beta = T(0.7)) {                                                 \
        const T alpha = T(2.7), quarter = T(1.5707963267948966);                                                       \
        const double least = sizeof(T) == 8 ? 744.4400719213812 : 103.2789306640625;                                   \
        const auto from = [=](double x) { return std::max(0.0, (x - double(a)) / double(beta)); };                     \
        const auto scaled = [=](double x) { return (x - double(a)) / double(beta); };                                  \
        return {                                                                                                       \
            {"Exponential", [=](auto* s, auto n, T* r) { return _kuz##t##RngExponential(0, s, n, r, a, beta); }, 0, 1, \
             1, [=](const T* u) { return std::max(a, a - ln(*u) * beta); },                                            \
             [=](double x) { return -std::expm1(-from(x)); }, a + least * beta},                                       \
            {"Laplace", [=](auto* s, auto n, T* r) { return _kuz##t##RngLaplace(0, s, n, r, a, beta); }, 0, 1, 2,      \
             [=](const T* u) { return a + (u[1] <= T(0.5) ? -beta : beta) * ln(*u); },                                 \
             [=](double x) {                                                                                           \
                 const double y = scaled(x);                                                                           \
                 return y < 0 ? std::exp(y) / 2 : 1 - std::exp(-y) / 2;                                                \
             },                                                                                                        \
             a + least * beta},                                                                                        \
            {"Weibull", [=](auto* s, auto n, T* r) { return _kuz##t##RngWeibull(0, s, n, r, alpha, a, beta); }, 0, 1,  \
             1, [=](const T* u) { return std::max(a, power(-ln(*u), T(1) / alpha) * beta + a); },                      \
             [=](double x) { return -std::expm1(-std::pow(from(x), double(alpha))); },                                 \
             a + std::pow(least, 1 / double(alpha)) * beta},                                                           \
            {"Weibull of shape 1", [=](auto* s, auto n, T* r) { return _kuz##t##RngWeibull(9, s, n, r, 1, a, beta); }, \
             0, 1, 1, [=](const T* u) { return std::max(a, -ln(*u) * beta + a); },                                     \
             [=](double x) { return -std::expm1(-from(x)); }, a + least * beta},                                       \
            {"Cauchy", [=](auto* s, auto n, T* r) { return _kuz##t##RngCauchy(0, s, n, r, a, beta); }, -quarter,       \
             quarter, 1, [=](const T* u) { return tangent(*u) * beta + a; },                                           \
             [=](double x) { return 0.5 + std::atan(scaled(x)) / 3.141592653589793; }, a},                             \
            {"Rayleigh", [=](auto* s, auto n, T* r) { return _kuz##t##RngRayleigh(0, s, n, r, a, beta); }, 0, 1, 1,    \
             [=](const T* u) { return std::max(a, root(-ln(*u)) * beta + a); },                                        \
             [=](double x) { return -std::expm1(-from(x) * from(x)); }, a + std::sqrt(least) * beta},                  \
            {"Gumbel", [=](auto* s, auto n, T* r) { return _kuz##t##RngGumbel(0, s, n, r, a, beta); }, 0, 1, 1,        \
             [=](const T* u) { return ln(std::max(T(0), T(0) - ln(*u) * T(1))) * beta + a; },                          \
             [=](double x) { return -std::expm1(-std::exp(scaled(x))); }, a + std::log(least) * beta},                 \
        };                                                                                                             \
    }
ORV_CASES(double, d)
ORV_CASES(float, s)

// Scales as usual and near the ends of the type.
template <class T>
std::vector<Case<T>> scaled_cases() {
    std::vector<Case<T>> all = cases(T(1.5), T(0.7));
    const bool wide = sizeof(T) == 8;
    for (const double scale : {wide ? 1e300 : 1e30, wide ? 1e-300 : 1e-30})
        for (const auto& c : cases(T(0), T(scale))) all.push_back(c);
    return all;
}

template <class T>
class Continuous : public testing::Test {};
using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(Continuous, Types);

// The generator hears of the tail of Laplace's blocks also when it is empty, and of every count that Uniform is asked for.
TEST(Uniforms, AreAskedForWhereNothingIsLeft) {
    double r[1024];
    OwnedStream stream(ConstantGenerator::id(0.4, 1), {});
    EXPECT_EQ(_kuzdRngLaplace(0, stream, 1023, r, 0, 1), StatusOk);
    EXPECT_EQ(_kuzdRngUniform(0, stream, 0, r, 0, 1), BrngStatusQrngExhausted);
    ConstantGenerator::id(0.4, 1);
    EXPECT_EQ(_kuzdRngLaplace(0, stream, 1024, r, 0, 1), BrngStatusQrngExhausted);
}

TYPED_TEST(Continuous, EqualTheirFormulasToTheBit) {
    for (const auto& c : scaled_cases<TypeParam>())
        for (const int32_t n : {0, -5, 1, 2, 3, 7, 1023, 1024, 1025, 2500}) {
            OwnedStream stream(BrngPHILOX4X32X10, {6}), twin(BrngPHILOX4X32X10, {6});
            const size_t count = static_cast<size_t>(std::max(n, 0));
            std::vector<TypeParam> r(count + 1, 99);
            ASSERT_EQ(c.draw(stream, n, r.data()), StatusOk) << c.name;
            const auto u = uniforms(twin, static_cast<int32_t>(count * c.uses), c.from, c.to);
            for (size_t i = 0; i < count; ++i)
                ASSERT_EQ(r[i], c.value(&u[i * c.uses])) << c.name << " " << n << " " << i;
            EXPECT_EQ(r.back(), 99) << c.name;
            EXPECT_EQ(::draw(stream, 4), ::draw(twin, 4)) << c.name << ": as many uniforms are used up";
        }
}

TYPED_TEST(Continuous, HaveTheirDistributions) {
    for (const auto& c : scaled_cases<TypeParam>()) {
        OwnedStream stream(BrngMRG32K3A, {271828});
        std::vector<TypeParam> r(100000);
        ASSERT_EQ(c.draw(stream, 100000, r.data()), StatusOk);
        EXPECT_LT(kolmogorov(r, c.cdf), 2.23) << c.name;
    }
}

int32_t callers_callback(ArqErrorContext*) {
    ADD_FAILURE() << "the caller's callback was called";
    return 0;
}

TYPED_TEST(Continuous, UniformsOfZeroAndTheCallersState) {
    const uint32_t before = _arqSetMode(ORV_MODE_LA | ORV_MODE_ERRMODE_ERRNO | ORV_MODE_TRAP_DIVBYZERO);
    const orv_arq_callback no_callback = _arqSetErrorCallBack(callers_callback);
    const uint32_t mode = _arqGetMode();
    for (const auto& c : cases(TypeParam(1.5)))
        for (const int32_t failing : {-1, 0, 1}) {
            OwnedStream stream(ConstantGenerator::id(0, failing), {});
            std::vector<TypeParam> r(2500);
            errno = 0;
            set_x87_control(0x0360);
            _mm_setcsr(0x1D00);
            const int32_t status = c.draw(stream, 2500, r.data());
            const uint16_t x87 = x87_control(), pending = x87_flags();
            const unsigned mxcsr = _mm_getcsr();
            set_x87_control(usual_x87);
            _mm_setcsr(usual_mxcsr);
            const bool fails = failing == 0 || (failing == 1 && ConstantGenerator::calls > 1);
            EXPECT_EQ(status, fails ? BrngStatusQrngExhausted + 0 : StatusOk + 0) << c.name;
            EXPECT_TRUE(x87 == 0x0360 && pending == 0) << c.name;
            EXPECT_EQ(mxcsr & 0xFFC0, 0x1D00u) << c.name;
            EXPECT_EQ(_arqGetMode(), mode) << c.name;
            EXPECT_EQ(_arqGetErrorCallBack(), callers_callback) << c.name;
            EXPECT_EQ(errno, 0) << c.name;
            if (fails) continue;
            for (const TypeParam x : r) ASSERT_NEAR(x, c.at_zero, 2e-6 * c.at_zero) << c.name;
        }
    _arqSetErrorCallBack(no_callback);
    _arqSetMode(before);
}

// The mode of a thread that never set how denormals are handled has an empty field, which setting cannot bring back.
TYPED_TEST(Continuous, KeepAnEmptyFieldOfTheMode) {
    const uint32_t mode = _arqGetMode();
    ASSERT_EQ(mode & 0x3C0000, 0u);
    OwnedStream stream(BrngMCG59, {1});
    TypeParam r[3];
    for (const auto& c : cases(TypeParam(1.5))) {
        c.draw(stream, 3, r);
        EXPECT_EQ(_arqGetMode(), mode) << c.name;
    }
}

void no_power() { ADD_FAILURE() << "a power was taken"; }

TEST(Weibull, OfShapeOneTakesNoPower) {
    orv_arq_kernel kept[] = {orv_arq_kernel_sPowx_ttab[0], orv_arq_kernel_dPowx_ttab[2]};
    orv_arq_kernel_sPowx_ttab[0] = orv_arq_kernel_dPowx_ttab[2] = no_power;
    OwnedStream stream(BrngMCG59, {1});
    double d[5];
    float s[5];
    EXPECT_EQ(_kuzdRngWeibull(0, stream, 5, d, 1, 0, 1), StatusOk);
    EXPECT_EQ(_kuzsRngWeibull(0, stream, 5, s, 1, 0, 1), StatusOk);
    orv_arq_kernel_sPowx_ttab[0] = kept[0];
    orv_arq_kernel_dPowx_ttab[2] = kept[1];
}

TEST(Scalars, AreTheirFunctions) {
    const double numbers[] = {1e-310, 0.3, 1, 2.5, 1e300};
    for (const double x : numbers) {
        EXPECT_NEAR(__kuzdLn(x), std::log(x), 1e-15 * std::fabs(std::log(x))) << x;
        EXPECT_NEAR(__kuzdLGamma(x), std::lgamma(x), 1e-14 * std::max(1.0, std::fabs(std::lgamma(x)))) << x;
        EXPECT_EQ(__kuzdSqrt(x), std::sqrt(x));
        const float narrow = std::max(static_cast<float>(std::min(x, 1e38)), 1e-40f);
        EXPECT_NEAR(__kuzsLn(narrow), std::log(narrow), 1e-7f * std::fabs(std::log(narrow))) << narrow;
    }
    for (const double x : {-1e300, -2.0, -1.5, -0.0, 0.5, 7.0, 0x1p52 + 1}) EXPECT_EQ(__kuzdFloor(x), std::floor(x));
    EXPECT_TRUE(std::isnan(__kuzdFloor(NAN)) && std::isnan(__kuzdSqrt(-1)));
}

}  // namespace
