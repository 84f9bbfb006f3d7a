// NaNs, flags, rounding and denormals: what the control state does to results and they to it.
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
constexpr T denormal = std::numeric_limits<T>::denorm_min();
template <class T>
constexpr int digits = std::numeric_limits<T>::digits;

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
        if (row.shape() != "ONE" || (row.type != 's' && row.type != 'd')) continue;
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

// With subnormal numbers as zero, by the mode. The numbers of the table below 2^-1022 stand for as many times the smallest of
// the type; b counts in functions of two inputs alone.
template <class T>
T of_type(double x) {
    return std::fpclassify(x) == FP_SUBNORMAL ? static_cast<T>(x / denormal<double>) * denormal<T> : static_cast<T>(x);
}

template <class T>
void check_flushed(const orv::test::Row& row, double a, double b, double result, int32_t status) {
    constexpr int32_t n = 9;  // blocks and a rest
    const std::vector<T> first(n, of_type<T>(a)), second(n, of_type<T>(b));
    const T expected = of_type<T>(result);
    for (int accuracy = 0; accuracy < 3; ++accuracy) {
        std::vector<T> y(n, 7);
        _arqClearErrStatus();
        if (row.shape() == "TWO")
            orv::test::entry<orv::test::TwoInputs<T>>(row.dense, accuracy)(n, first.data(), second.data(), y.data());
        else
            orv::test::entry<orv::test::OneInput<T>>(row.dense, accuracy)(n, first.data(), y.data());
        const auto what = [&] {
            return testing::Message() << row.name() << " " << orv::test::accuracy_names[accuracy] << " of "
                                      << std::hexfloat << a << ", " << b;
        };
        EXPECT_EQ(_arqGetErrStatus(), status) << what();
        for (const T& value : y) {
            if (std::isnan(expected))
                EXPECT_TRUE(std::isnan(value)) << what() << " is " << value;
            else
                EXPECT_TRUE(value == expected && std::signbit(value) == std::signbit(expected))
                    << what() << " is " << value;
        }
    }
}

TEST(Denormals, AreZerosOfTheirSignOrBitsUnderTheMode) {
    constexpr double tiny = denormal<double>, inf = infinity<double>;
    const struct {
        const char* function;
        double a, b, result;
        int32_t status;
    } cases[] = {
        {"Inv", 3 * tiny, 0, inf, 2},
        {"Inv", -3 * tiny, 0, -inf, 2},
        {"Sqrt", 3 * tiny, 0, 0, 0},
        {"Sqrt", -3 * tiny, 0, -0.0, 0},
        {"InvSqrt", 3 * tiny, 0, inf, 2},
        {"InvSqrt", -3 * tiny, 0, -inf, 2},
        {"Cbrt", 3 * tiny, 0, 0, 0},
        {"Cbrt", -3 * tiny, 0, -0.0, 0},
        {"InvCbrt", 3 * tiny, 0, inf, 2},
        {"InvCbrt", -3 * tiny, 0, -inf, 2},
        {"Div", 1, 3 * tiny, inf, 2},
        {"Div", -3 * tiny, 1, -0.0, 0},
        {"Div", 3 * tiny, 3 * tiny, NAN, 1},
        {"Div", 3 * tiny, 0.25, 0, 0},
        {"Hypot", 3 * tiny, 4 * tiny, 0, 0},
        {"Fdim", 3 * tiny, tiny, 0, 0},
        {"Fdim", 3 * tiny, -1, 1, 0},
        {"Fmax", 3 * tiny, -1, 0, 0},
        {"Fmax", -tiny, 3 * tiny, 0, 0},
        {"Fmin", 3 * tiny, 1, 0, 0},
        {"Fmin", -3 * tiny, tiny, -0.0, 0},
        {"MaxMag", -3 * tiny, tiny, 0, 0},
        {"MaxMag", -3 * tiny, 1, 1, 0},
        {"MinMag", 3 * tiny, -tiny, -0.0, 0},
        {"MinMag", -3 * tiny, 1, -0.0, 0},
        // Bits are moved or worked on.
        {"CopySign", 3 * tiny, -tiny, -3 * tiny, 0},
        {"NextAfter", 3 * tiny, 1, 4 * tiny, 4},
        {"NextAfter", 0, -tiny, -tiny, 4},
        {"Fmod", 7 * tiny, 4 * tiny, 3 * tiny, 0},
        {"Fmod", -7 * tiny, -4 * tiny, -3 * tiny, 0},
        {"Remainder", 7 * tiny, 4 * tiny, -tiny, 0},
    };
    const uint32_t before = _arqSetMode(ORV_MODE_DENORMAL_FLUSH | ORV_MODE_ERRMODE_IGNORE);
    for (const auto& c : cases)
        for (const orv::test::Row& row : orv::test::math_rows()) {
            if (row.function() != c.function) continue;
            if (row.type == 's') check_flushed<float>(row, c.a, c.b, c.result, c.status);
            if (row.type == 'd') check_flushed<double>(row, c.a, c.b, c.result, c.status);
        }
    _arqSetMode(before);
    _arqClearErrStatus();
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

}  // namespace
