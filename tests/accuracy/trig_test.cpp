// Special values, exact results, agreement between kernels and the generated tables of the trigonometric family.
#include "accuracy/trig_points.h"
#include "support/oracle.h"
#include "support/rows.h"
#include "vecmath/trig/tables/trig_tables.h"

#include <orv/vecmath_entries.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <xmmintrin.h>

namespace {

using namespace orv;

constexpr double inf = std::numeric_limits<double>::infinity();
const double nan_value = std::numeric_limits<double>::quiet_NaN();

const test::Row& row_of(char type, std::string_view function) {
    for (const test::Row& row : test::math_rows())
        if (row.type == type && row.function() == function) return row;
    throw std::runtime_error("no such row");
}

struct Outcome {
    double value;
    int status;
};

// One element of a one-input kernel, its status included.
template <class T>
Outcome one(std::string_view function, int accuracy, double x) {
    auto* const kernel = test::entry<test::OneInput<T>>(row_of(sizeof(T) == 4 ? 's' : 'd', function).dense, accuracy);
    const T a = static_cast<T>(x);
    T y = 42;
    _arqClearErrStatus();
    kernel(1, &a, &y);
    return {static_cast<double>(y), _arqClearErrStatus()};
}

struct Special {
    const char* function;
    double x, y;
    int status;
    bool exact = true;  // in every accuracy; else in "HA" alone
};

const Special specials[] = {
    {"Sin", inf, nan_value, 1},
    {"Sin", -inf, nan_value, 1},
    {"Sin", nan_value, nan_value, 0},
    {"Sin", 0.0, 0.0, 0},
    {"Sin", -0.0, -0.0, 0},
    {"Cos", -inf, nan_value, 1},
    {"Cos", nan_value, nan_value, 0},
    {"Cos", 0.0, 1.0, 0, false},
    {"Cos", -0.0, 1.0, 0, false},
    {"Tan", inf, nan_value, 1},
    {"Tan", nan_value, nan_value, 0},
    {"Tan", -0.0, -0.0, 0},
    {"Sinpi", inf, nan_value, 1},
    {"Sinpi", nan_value, nan_value, 0},
    {"Sinpi", -0.0, -0.0, 0},
    {"Sinpi", 1.0, 0.0, 0},
    {"Sinpi", -1.0, -0.0, 0},
    {"Sinpi", 2.0, 0.0, 0},
    {"Sinpi", -5.0, -0.0, 0},
    {"Sinpi", 0x1p52, 0.0, 0},
    {"Sinpi", -0x1p100, -0.0, 0},
    {"Sinpi", 0.5, 1.0, 0, false},
    {"Sinpi", 1.5, -1.0, 0, false},
    {"Cospi", -inf, nan_value, 1},
    {"Cospi", 0.5, 0.0, 0},
    {"Cospi", -0.5, 0.0, 0},
    {"Cospi", 1.5, 0.0, 0},
    {"Cospi", 8388607.5, 0.0, 0},
    {"Cospi", 1.0, -1.0, 0, false},
    {"Cospi", 0x1p60, 1.0, 0, false},
    {"Tanpi", inf, nan_value, 1},
    {"Tanpi", 0.5, inf, 2},
    {"Tanpi", 1.5, -inf, 2},
    {"Tanpi", -0.5, -inf, 2},
    {"Tanpi", -1.5, inf, 2},
    {"Tanpi", 1.0, -0.0, 0},
    {"Tanpi", -1.0, 0.0, 0},
    {"Tanpi", 2.0, 0.0, 0},
    {"Tanpi", -2.0, -0.0, 0},
    {"Tanpi", 0.25, 1.0, 0, false},
    {"Tanpi", 0.75, -1.0, 0, false},
    {"Tanpi", 0x1p90, 0.0, 0},
    {"Sind", -inf, nan_value, 1},
    {"Sind", nan_value, nan_value, 0},
    {"Sind", 180.0, 0.0, 0},
    {"Sind", -180.0, -0.0, 0},
    {"Sind", 360.0, 0.0, 0},
    {"Sind", -540.0, -0.0, 0},
    {"Sind", 180 * 0x1p60, 0.0, 0},
    {"Sind", 30.0, 0.5, 0, false},
    {"Sind", -150.0, -0.5, 0, false},
    {"Sind", 90.0, 1.0, 0, false},
    {"Cosd", inf, nan_value, 1},
    {"Cosd", 90.0, 0.0, 0},
    {"Cosd", 270.0, 0.0, 0},
    {"Cosd", -450.0, 0.0, 0},
    {"Cosd", 60.0, 0.5, 0, false},
    {"Cosd", 180.0, -1.0, 0, false},
    {"Tand", nan_value, nan_value, 0},
    {"Tand", 90.0, inf, 2},
    {"Tand", 270.0, -inf, 2},
    {"Tand", -90.0, -inf, 2},
    {"Tand", 90 * 65537.0, inf, 2},
    {"Tand", 180.0, -0.0, 0},
    {"Tand", -180.0, 0.0, 0},
    {"Tand", 360.0, 0.0, 0},
    {"Tand", 45.0, 1.0, 0, false},
    {"Tand", 135.0, -1.0, 0, false},
};

template <class T>
void check_specials() {
    for (const Special& s : specials) {
        for (int accuracy = 0; accuracy < 3; ++accuracy) {
            SCOPED_TRACE(testing::Message()
                         << s.function << " of " << s.x << ", accuracy " << accuracy << ", bytes " << sizeof(T));
            const Outcome r = one<T>(s.function, accuracy, s.x);
            EXPECT_EQ(r.status, s.status);
            if (std::isnan(s.y)) {
                EXPECT_TRUE(std::isnan(r.value));
            } else if (accuracy != 1 && !s.exact) {
                const double la = std::numeric_limits<T>::epsilon(), ep = sizeof(T) == 4 ? 0x1p-11 : 0x1p-26;
                EXPECT_NEAR(r.value, s.y, std::fabs(s.y) * (accuracy == 0 ? la : ep));
            } else {
                EXPECT_EQ(r.value, s.y);
                EXPECT_EQ(std::signbit(r.value), std::signbit(s.y));
            }
        }
    }
}

TEST(TrigSpecials, Doubles) { check_specials<double>(); }
TEST(TrigSpecials, Floats) { check_specials<float>(); }

// An infinity is reported at its place among the ordinary elements of a strided call.
int32_t reported_index;
TEST(TrigSpecials, ReportsTheElementOfAStridedCall) {
    const auto callback = [](ArqErrorContext* context) -> int32_t {
        reported_index = context->index;
        context->res1 = 7;
        context->res2 = 8;
        EXPECT_STREQ(context->func_name, "vdSinCos");
        return 0;
    };
    double a[26], y[39], z[13];
    for (double& x : a) x = 0.25;
    a[2 * 9] = inf;
    _arqSetErrorCallBack(callback);
    _arqdSinCosI(13, a, 2, y, 3, z, 1);
    _arqClearErrorCallBack();
    _arqClearErrStatus();
    EXPECT_EQ(reported_index, 9);
    for (int i = 0; i < 13; ++i) {
        EXPECT_NEAR(y[3 * i], i == 9 ? 7 : std::sin(0.25), 1e-15);
        EXPECT_NEAR(z[i], i == 9 ? 8 : std::cos(0.25), 1e-15);
    }
}

// A tiny argument comes back; only a subnormal result is an underflow, and a zero raises nothing.
TEST(TrigSpecials, TinyArguments) {
    for (const char* function : {"Sin", "Tan"}) {
        for (int accuracy = 0; accuracy < 3; ++accuracy) {
            for (const double x : {0x1p-1074, -0x1.8p-1060, 0x1p-1022, 0x1.23456789abcdep-600, 0x1.23456789abcdep-40})
                EXPECT_EQ(one<double>(function, accuracy, x).value, x) << function << accuracy;
            _mm_setcsr(_mm_getcsr() & ~0x3Fu);
            one<double>(function, accuracy, 0x1p-1060);
            EXPECT_EQ(_mm_getcsr() & 0x30u, 0x30u) << function << accuracy;
            _mm_setcsr(_mm_getcsr() & ~0x3Fu);
            one<double>(function, accuracy, 0.0);
            EXPECT_EQ(_mm_getcsr() & 0x1Fu, 0u) << function << accuracy;
        }
    }
}

// Known values, on both sides of a threshold, of large arguments and of the double nearest to a multiple of pi/2.
TEST(TrigValues, KnownValues) {
    const struct {
        double x, sine, cosine, tangent;
    } known[] = {
        {6381956970095103.0 * 0x1p797, 0x1p+0, -0x1.14ae72e6ba22fp-61, -0x1.d9ba9a7975636p+60},
        {0x1p1023, 0x1.205248cbdb760p-1, -0x1.a719f26c232bfp-1, -0x1.5ce6b4c0d02a3p-1},
        {1e308, 0x1.d0472b6b4d936p-2, -0x1.c859a523ff229p-1, -0x1.047282056e683p-1},
        {16777216.0, -0x1.8f22f8433d6eep-1, 0x1.40ad67f3f0c9ap-1, -0x1.3ea28271a9beap+0},
        {90113.0, -0x1.b79079146d4acp-2, 0x1.ce6d9b649f175p-1, -0x1.e6af6a6af77c7p-2},
        {90111.0, -0x1.4905e81783622p-1, -0x1.88490e85069f2p-1, 0x1.ad6e89ff02972p-1},
    };
    const double tolerance[3] = {0x1p-50, 0x1p-52, 0x1p-26};
    for (const auto& k : known) {
        for (int accuracy = 0; accuracy < 3; ++accuracy) {
            for (const double sign : {1.0, -1.0}) {
                SCOPED_TRACE(testing::Message() << sign * k.x << ", accuracy " << accuracy);
                const double sine = one<double>("Sin", accuracy, sign * k.x).value;
                const double cosine = one<double>("Cos", accuracy, sign * k.x).value;
                const double tangent = one<double>("Tan", accuracy, sign * k.x).value;
                EXPECT_LE(std::fabs(sine / (sign * k.sine) - 1), tolerance[accuracy]);
                EXPECT_LE(std::fabs(cosine / k.cosine - 1), tolerance[accuracy]);
                EXPECT_LE(std::fabs(tangent / (sign * k.tangent) - 1), tolerance[accuracy]);
            }
        }
    }
}

template <class T>
std::vector<T> finite_arguments() {
    return accuracy::trig_points<T>("Sin", 2000, 3);
}

// Both results of SinCos are those of Sin and Cos where the methods are the same.
TEST(SinCos, AgreesBitForBitInDouble) {
    const std::vector<double> x = finite_arguments<double>();
    const int32_t n = static_cast<int32_t>(x.size());
    std::vector<double> sine(x.size()), cosine(x.size()), y(x.size()), z(x.size());
    _arqdSin(n, x.data(), sine.data());
    _arqdCos(n, x.data(), cosine.data());
    _arqdSinCos(n, x.data(), y.data(), z.data());
    EXPECT_EQ(std::memcmp(sine.data(), y.data(), x.size() * 8), 0);
    EXPECT_EQ(std::memcmp(cosine.data(), z.data(), x.size() * 8), 0);
}

// In place, and with a part of a block left over.
TEST(SinCos, OverwritesItsInput) {
    for (int32_t n : {1, 3, 5, 9, 15}) {
        std::vector<float> x(static_cast<size_t>(n)), z(x.size()), sine(x.size());
        for (size_t i = 0; i < x.size(); ++i) x[i] = static_cast<float>(i) * 5000.5f;
        std::vector<float> y = x;
        std::vector<float> zs(x.size());
        _arqsSinCos(n, x.data(), sine.data(), zs.data());
        _arqsSinCos(n, y.data(), y.data(), z.data());
        EXPECT_EQ(y, sine);
        EXPECT_EQ(z, zs);
    }
}

#ifndef _WIN32
template <class T>
void check_sincos(int accuracy, double bound, bool relative) {
    const std::vector<T> x = finite_arguments<T>();
    std::vector<T> y(x.size()), z(x.size());
    auto* const kernel =
        test::entry<void(int32_t, const T*, T*, T*)>(row_of(sizeof(T) == 4 ? 's' : 'd', "SinCos").dense, accuracy);
    kernel(static_cast<int32_t>(x.size()), x.data(), y.data(), z.data());
    double worst = 0;
    T at = 0;
    for (size_t i = 0; i < x.size(); ++i) {
        for (const auto& [name, result] : {std::pair{"Sin", y[i]}, std::pair{"Cos", z[i]}}) {
            if (std::fabs(result) < std::numeric_limits<T>::min()) continue;
            const oracle::Error e = oracle::fast_error(*oracle::find(name), x[i], result);
            const double error = relative ? e.relative : e.ulp;
            if (error > worst) worst = error, at = x[i];
        }
    }
    EXPECT_LE(worst, bound) << std::hexfloat << at;
    EXPECT_GE(worst, bound / 4) << "the bound is far from what is measured";
}

TEST(SinCos, WorstErrors) {
    check_sincos<double>(1, 0.55, false);
    check_sincos<double>(2, 0x1p-26, true);
    check_sincos<float>(0, 1.0, false);
    check_sincos<float>(1, 0.51, false);
}
#endif

// Rows whose values are known from elsewhere.
TEST(TrigTables, KnownRows) {
    using namespace orv::trig;
    EXPECT_EQ(inv_two_pi_192[1075][0], 0x28BE60DB9391054Au);
    EXPECT_EQ(inv_two_pi_192[1075][1], 0x7F09D5F47D4D3770u);
    EXPECT_EQ(inv_two_pi_192[1075][2], 0x36D8A5664F10E410u);
    EXPECT_EQ(inv_two_pi_192[1023][0], 0x000000000000028Bu);
    EXPECT_EQ(inv_two_pi_192[1023][1], 0xE60DB9391054A7F0u);
    EXPECT_EQ(inv_two_pi_192[1023][2], 0x9D5F47D4D377036Du);
    EXPECT_EQ(inv_two_pi_96[150][0], 0x28BE60DBu);
    EXPECT_EQ(inv_two_pi_96[150][2], 0x7F09D5F4u);
    const double sin_row[4] = {-0.0012045437948276074, 0.049067674327418015, -6.7961035050264871e-19, 1};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(sin_128[1][i], sin_row[i]);
    const double first[4] = {0, 1, 0, 0};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(sin_cos_512[0][i], first[i]);
}

// The rows of one table are the bits of one number: consecutive windows overlap in all but one bit.
TEST(TrigTables, WindowsSlideByOneBit) {
    using namespace orv::trig;
    for (int e = 1; e < 2047; ++e) {
        for (int k = 0; k < 2; ++k)
            ASSERT_EQ(inv_two_pi_192[e][k], inv_two_pi_192[e - 1][k] << 1 | inv_two_pi_192[e - 1][k + 1] >> 63) << e;
    }
    for (int e = 1; e < 256; ++e)
        for (int k = 0; k < 2; ++k)
            ASSERT_EQ(inv_two_pi_96[e][k], inv_two_pi_96[e - 1][k] << 1 | inv_two_pi_96[e - 1][k + 1] >> 31);
}

}  // namespace
