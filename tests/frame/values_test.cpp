// What the simplest functions make of special and awkward values, against the C library or from tables.
#include "support/rows.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>
#include <xmmintrin.h>

namespace {

template <class T>
constexpr T infinity = std::numeric_limits<T>::infinity();
template <class T>
constexpr T largest = std::numeric_limits<T>::max();
template <class T>
constexpr T denormal = std::numeric_limits<T>::denorm_min();
template <class T>
constexpr int digits = std::numeric_limits<T>::digits;

template <class T>
struct Function {
    const char* name;
    orv::test::OneInput<T>* kernel;
    T (*expected)(T);
};

template <class T>
T frac(T x) {
    return std::isinf(x) ? std::copysign(T{0}, x) : std::copysign(x - std::trunc(x), x);
}
template <class T>
T ceil_of(T x) {
    return std::ceil(x);
}
template <class T>
T floor_of(T x) {
    return std::floor(x);
}
template <class T>
T trunc_of(T x) {
    return std::trunc(x);
}
template <class T>
T rint_of(T x) {
    return std::rint(x);
}
template <class T>
T round_of(T x) {
    return std::round(x);
}
template <class T>
T abs_of(T x) {
    return std::fabs(x);
}
template <class T>
T square(T x) {
    return x * x;
}

// Values around every binade's integers and halves, both signs, and the ends of the format.
template <class T>
std::vector<T> awkward_values() {
    std::vector<T> values = {
        0,          denormal<T>, std::numeric_limits<T>::min(), T(0.25), T(0.5), T(0.75), 1, T(1.5), T(2.5), T(3.5),
        largest<T>, infinity<T>};
    for (int e = -2; e <= digits<T> + 2; ++e)
        for (const double step : {0.0, 0.25, 0.5, 1.0, 1.5, 2.0}) {
            const T base = std::ldexp(T{1}, e) + static_cast<T>(step);
            values.insert(values.end(), {base, std::nextafter(base, T{0}), std::nextafter(base, infinity<T>)});
        }
    const size_t count = values.size();
    for (size_t i = 0; i < count; ++i) values.push_back(-values[i]);
    return values;
}

template <class T>
void check_functions(const std::vector<Function<T>>& functions) {
    const std::vector<T> x = awkward_values<T>();
    std::vector<T> y(x.size());
    for (const Function<T>& function : functions) {
        function.kernel(static_cast<int32_t>(x.size()), x.data(), y.data());
        for (size_t i = 0; i < x.size(); ++i) {
            const T expected = function.expected(x[i]);
            EXPECT_EQ(std::memcmp(&y[i], &expected, sizeof(T)), 0) << function.name << " of " << x[i] << " is " << y[i];
        }
    }
}

TEST(Values, AgreeWithTheCLibrary) {
    check_functions<float>({{"Ceil", _arqsCeil, ceil_of},
                            {"Floor", _arqsFloor, floor_of},
                            {"Trunc", _arqsTrunc, trunc_of},
                            {"Rint", _arqsRint, rint_of},
                            {"NearbyInt", _arqsNearbyInt, rint_of},
                            {"Round", _arqsRound, round_of},
                            {"Frac", _arqsFrac, frac},
                            {"Abs", _arqsAbs, abs_of},
                            {"Sqr", _arqsSqr, square}});
    check_functions<double>({{"Ceil", _arqdCeil, ceil_of},
                             {"Floor", _arqdFloor, floor_of},
                             {"Trunc", _arqdTrunc, trunc_of},
                             {"Rint", _arqdRint, rint_of},
                             {"NearbyInt", _arqdNearbyInt, rint_of},
                             {"Round", _arqdRound, round_of},
                             {"Frac", _arqdFrac, frac},
                             {"Abs", _arqdAbs, abs_of},
                             {"Sqr", _arqdSqr, square}});
}

template <class T, class Bits>
void check_quiet_nan(orv::test::OneInput<T>* kernel, Bits signalling, const char* name) {
    T x[5], y[5];
    for (T& value : x) std::memcpy(&value, &signalling, sizeof value);
    kernel(5, x, y);
    for (const T& value : y) {
        Bits bits;
        std::memcpy(&bits, &value, sizeof bits);
        EXPECT_TRUE(std::isnan(value)) << name;
        EXPECT_NE(bits & (Bits{1} << (digits<T> - 2)), Bits{0}) << name << " left a NaN signalling";
    }
}

TEST(Values, SignallingNaNsComeOutQuietAndRaiseInvalid) {
    for (const orv::test::Row& row : orv::test::math_rows()) {
        if (!row.here || row.shape() != "ONE" || (row.type != 's' && row.type != 'd')) continue;
        _mm_setcsr(0x1F80);
        if (row.type == 's')
            check_quiet_nan<float, uint32_t>(orv::test::entry<orv::test::OneInput<float>>(row.dense, 1), 0x7F800001u,
                                             row.name().c_str());
        else
            check_quiet_nan<double, uint64_t>(orv::test::entry<orv::test::OneInput<double>>(row.dense, 1),
                                              0x7FF0000000000001u, row.name().c_str());
        EXPECT_TRUE(_mm_getcsr() & 1) << row.name();
    }
    _mm_setcsr(0x1F80);
}

// The flags that one call leaves, for one block and a rest of the same value.
template <class T>
unsigned flags_of(orv::test::OneInput<T>* kernel, T x) {
    std::vector<T> a(9, x), y(9);
    _mm_setcsr(0x1F80);
    kernel(static_cast<int32_t>(a.size()), a.data(), y.data());
    const unsigned flags = _mm_getcsr() & 0x3F;
    _mm_setcsr(0x1F80);
    return flags;
}

TEST(Flags, InexactIsSignalledByThoseThatSignalIt) {
    constexpr unsigned inexact = 0x20;
    EXPECT_EQ(flags_of<double>(_arqdRint, 0.5), inexact);
    EXPECT_EQ(flags_of<double>(_arqdNearbyInt, 0.5), 0u);
    EXPECT_EQ(flags_of<float>(_arqsCeil, 0.5f), inexact);
    EXPECT_EQ(flags_of<float>(_arqsCeil, 3.0f), 0u);
    EXPECT_EQ(flags_of<float>(_arqsRound, 2.5f), inexact);
    EXPECT_EQ(flags_of<float>(_arqsRound, 3.0f), 0u);
    EXPECT_EQ(flags_of<float>(_arqsRound, infinity<float>), 0u);
    EXPECT_EQ(flags_of<double>(_arqdAbs, -2.5), 0u);
}

TEST(Rounding, FollowsTheCallerWhereItShould) {
    // Control bits of round-up, round-down and toward zero.
    const struct {
        unsigned control;
        double rint_of_half, rint_of_minus_half;
    } cases[] = {{0x1F80, 0.0, -0.0}, {0x5F80, 1.0, -0.0}, {0x3F80, 0.0, -1.0}, {0x7F80, 0.0, -0.0}};
    for (const auto& [control, up, down] : cases) {
        const double x[3] = {0.5, -0.5, 2.5};
        double rint[3], nearby[3], round[3], ceil[3], floor[3], trunc[3], sum[3];
        const double tiny[3] = {0x1p-60, 0x1p-60, 0x1p-60};
        _mm_setcsr(control);
        _arqdRint(3, x, rint);
        _arqdNearbyInt(3, x, nearby);
        _arqdRound(3, x, round);
        _arqdCeil(3, x, ceil);
        _arqdFloor(3, x, floor);
        _arqdTrunc(3, x, trunc);
        _arqdAdd(3, x, tiny, sum);
        _mm_setcsr(0x1F80);
        EXPECT_EQ(rint[0], up) << std::hex << control;
        EXPECT_EQ(rint[1], down) << std::hex << control;
        EXPECT_EQ(nearby[0], up);
        EXPECT_EQ(nearby[1], down);
        EXPECT_EQ(round[0], 1.0);
        EXPECT_EQ(round[1], -1.0);
        EXPECT_EQ(ceil[1], 0.0);
        EXPECT_TRUE(std::signbit(ceil[1]));
        EXPECT_EQ(floor[0], 0.0);
        EXPECT_EQ(trunc[2], 2.0);
        EXPECT_EQ(sum[0], 0.5) << "a general kernel rounds to nearest";
    }
}

TEST(Denormals, FollowTheModeOrTheCaller) {
    const double x[5] = {denormal<double>, denormal<double>, denormal<double>, denormal<double>, denormal<double>};
    const double one[5] = {1, 1, 1, 1, 1};
    const auto last = [&](auto&& call) {
        double y[5] = {7, 7, 7, 7, 7};
        call(y);
        return y[4];
    };
    const uint32_t before = _arqSetMode(ORV_MODE_DENORMAL_FLUSH);
    EXPECT_EQ(last([&](double* y) { _arqdCeil(5, x, y); }), 0.0);
    EXPECT_EQ(last([&](double* y) { _arqdMul(5, x, one, y); }), 0.0);
    EXPECT_EQ(last([&](double* y) { _arqdAbs(5, x, y); }), denormal<double>);
    _arqSetMode(ORV_MODE_DENORMAL_KEEP);
    EXPECT_EQ(last([&](double* y) { _arqdCeil(5, x, y); }), 1.0);
    EXPECT_EQ(last([&](double* y) { _arqdMul(5, x, one, y); }), denormal<double>);
    _mm_setcsr(0x9FC0);
    EXPECT_EQ(last([&](double* y) { _arqdMul(5, x, one, y); }), denormal<double>);
    EXPECT_EQ(last([&](double* y) { _arqdAbs(5, x, y); }), 0.0);
    _mm_setcsr(0x1F80);
    _arqSetMode(before);
}

TEST(Conj, TurnsTheImaginarySignOfAnything) {
    const orv_complex_d x[3] = {{1, 2}, {-0.0, -infinity<double>}, {std::nan(""), std::nan("")}};
    orv_complex_d y[3];
    _arqzConj(3, x, y);
    EXPECT_EQ(y[0].re, 1);
    EXPECT_EQ(y[0].im, -2);
    EXPECT_TRUE(std::signbit(y[1].re));
    EXPECT_EQ(y[1].im, infinity<double>);
    EXPECT_EQ(std::signbit(y[2].im), !std::signbit(x[2].im));
}

// Next to where results overflow, each accuracy on its own side: what is infinite is reported, and nothing else is.
template <class T>
void check_overflow(const orv::test::Row& row, T last_finite) {
    T x = last_finite;
    for (int i = 0; i < 40; ++i) x = std::nextafter(x, T{0});
    for (int i = 0; i < 80; ++i, x = std::nextafter(x, infinity<T>))
        for (int accuracy = 0; accuracy < 3; ++accuracy) {
            T y = 0;
            _arqClearErrStatus();
            orv::test::entry<orv::test::OneInput<T>>(row.dense, accuracy)(1, &x, &y);
            EXPECT_EQ(_arqGetErrStatus(), std::isinf(y) ? ORV_STATUS_OVERFLOW : 0)
                << row.name() << " " << orv::test::accuracy_names[accuracy] << " of " << x;
        }
}

TEST(Exponentials, ReportEveryInfiniteResult) {
    const struct {
        const char* function;
        double s, d;
    } cases[] = {{"Exp", 0x1.62e42ep+6, 0x1.62e42fefa39efp+9},
                 {"Expm1", 0x1.62e42ep+6, 0x1.62e42fefa39efp+9},
                 {"Exp2", 128, 1024},
                 {"Exp10", 0x1.344134p+5, 0x1.34413509f79fep+8}};
    for (const auto& c : cases)
        for (const orv::test::Row& row : orv::test::math_rows()) {
            if (row.function() != c.function) continue;
            if (row.type == 's') check_overflow(row, static_cast<float>(c.s));
            if (row.type == 'd') check_overflow(row, c.d);
        }
}

// The definition of Round for every float, worked out on the magnitude.
TEST(ExhaustiveRound, IsHalvesAwayFromZeroForEveryFloat) {
    constexpr int block = 1 << 16;
    std::vector<float> x(block), y(block);
    for (uint64_t start = 0; start < (uint64_t{1} << 32); start += block) {
        for (int i = 0; i < block; ++i) {
            const uint32_t bits = static_cast<uint32_t>(start) + static_cast<uint32_t>(i);
            std::memcpy(&x[static_cast<size_t>(i)], &bits, sizeof bits);
        }
        _arqsRound(block, x.data(), y.data());
        for (size_t i = 0; i < block; ++i) {
            const float expected = std::round(x[i]);
            if (std::isnan(expected) ? !std::isnan(y[i]) : std::memcmp(&expected, &y[i], sizeof expected) != 0)
                FAIL() << x[i] << " gives " << y[i];
        }
    }
}

}  // namespace
