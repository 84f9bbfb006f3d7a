// The exponentials and logarithms at their special arguments, with statuses, and what must not depend on where an element
// stands.
#include "accuracy/measure.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using namespace orv::accuracy;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct ErrorMode {
    uint32_t saved = _arqSetMode(ORV_MODE_ERRMODE_IGNORE);
    ~ErrorMode() { _arqSetMode(saved); }
};

template <class T>
T call_one(const Kernel& kernel, T x) {
    T y = T(-77);
    reinterpret_cast<void (*)(int32_t, const T*, T*)>(kernel.dense)(1, &x, &y);
    return y;
}

template <class T>
bool same(T a, T b) {
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

struct Case {
    const char* function;
    const char* types;
    double x, y;
    int32_t status;
};

const Case cases[] = {
    {"Exp", "sd", inf, inf, 0},
    {"Exp", "sd", -inf, 0, 0},
    {"Exp", "sd", 0, 1, 0},
    {"Exp", "sd", -0.0, 1, 0},
    {"Exp", "d", 1e-20, 1, 0},
    {"Exp", "d", 0x1.62e42fefa39fp+9, inf, 3},
    {"Exp", "d", 1e300, inf, 3},
    {"Exp", "d", -0x1.74910d52d3052p+9, 0, 4},
    {"Exp", "d", -1e300, 0, 4},
    {"Exp", "d", -0x1.74910d52d3051p+9, 0x1p-1074, 4},
    {"Exp", "s", 0x1.62e43p+6, inf, 3},
    {"Exp", "s", -0x1.9fe36ap+6, 0, 4},
    {"Exp", "s", -0x1.9fe368p+6, 0x1p-149, 4},
    {"Exp2", "sd", inf, inf, 0},
    {"Exp2", "sd", -inf, 0, 0},
    {"Exp2", "sd", 10, 1024, 0},
    {"Exp2", "d", 1023, 0x1p+1023, 0},
    {"Exp2", "d", 1024, inf, 3},
    {"Exp2", "d", -1022, 0x1p-1022, 0},
    {"Exp2", "d", -1023, 0x1p-1023, 4},
    {"Exp2", "d", -1074, 0x1p-1074, 4},
    {"Exp2", "d", -1075, 0, 4},
    {"Exp2", "s", 127, 0x1p+127, 0},
    {"Exp2", "s", 128, inf, 3},
    {"Exp2", "s", -126, 0x1p-126, 0},
    {"Exp2", "s", -149, 0x1p-149, 4},
    {"Exp2", "s", -150, 0, 4},
    {"Exp10", "sd", inf, inf, 0},
    {"Exp10", "sd", -inf, 0, 0},
    {"Exp10", "sd", 3, 1000, 0},
    {"Exp10", "d", 308.26, inf, 3},
    {"Exp10", "d", -324, 0, 4},
    {"Exp10", "s", 38.54, inf, 3},
    {"Exp10", "s", -45.3, 0, 4},
    {"Expm1", "sd", inf, inf, 0},
    {"Expm1", "sd", -inf, -1, 0},
    {"Expm1", "sd", 0, 0, 0},
    {"Expm1", "sd", -0.0, -0.0, 0},
    {"Expm1", "sd", -1000, -1, 0},
    {"Expm1", "sd", 1000, inf, 3},
    {"Expm1", "d", 0x1p-1074, 0x1p-1074, 0},
    {"Ln", "sd", 1, 0, 0},
    {"Log10", "sd", 1, 0, 0},
    {"Log2", "sd", 1, 0, 0},
    {"Log2", "sd", 0.5, -1, 0},
    {"Log2", "sd", 1024, 10, 0},
    {"Log2", "d", 0x1p-1074, -1074, 0},
    {"Log2", "s", 0x1p-149, -149, 0},
    {"Log1p", "sd", 0, 0, 0},
    {"Log1p", "sd", -0.0, -0.0, 0},
    {"Log1p", "sd", -1, -inf, 2},
    {"Log1p", "sd", -1.5, nan, 1},
    {"Log1p", "sd", -inf, nan, 1},
    {"Log1p", "sd", inf, inf, 0},
    {"Log1p", "d", 0x1p-1074, 0x1p-1074, 0},
    {"Logb", "sd", 0, -inf, 2},
    {"Logb", "sd", -0.0, -inf, 2},
    {"Logb", "sd", -inf, inf, 0},
    {"Logb", "sd", -6, 2, 0},
    {"Logb", "d", 0x1p-1074, -1074, 0},
    {"Logb", "s", 0x1.8p-148, -148, 0},
};

template <class T>
void check(const Kernel& kernel, double x, double y, int32_t status) {
    _arqClearErrStatus();
    const T result = call_one(kernel, static_cast<T>(x));
    const std::string what = std::string(1, kernel.type) + kernel.function + " " + kernel.slots;
    // "EP" gives exact results only where there is no rounding at all.
    const bool rough = kernel.slots == "EP" && std::isfinite(y) && y != 0 && std::fabs(y) != 1;
    if (rough)
        EXPECT_NEAR(static_cast<double>(result / static_cast<T>(y)), 1.0, 0x1p-10) << what << " of " << x;
    else if (std::fabs(y) == 1000)
        EXPECT_NEAR(static_cast<double>(result), y, y * 0x1p-23) << what << " of " << x;
    else
        EXPECT_TRUE(same(result, static_cast<T>(y))) << what << " of " << x << " gave " << result;
    EXPECT_EQ(_arqGetErrStatus(), status) << what << " of " << x;
}

void check_typed(const Kernel& kernel, double x, double y, int32_t status) {
    kernel.type == 's' ? check<float>(kernel, x, y, status) : check<double>(kernel, x, y, status);
}

TEST(ExpLog, SpecialArguments) {
    const ErrorMode mode;
    int checked = 0;
    for (const Kernel& kernel : kernels()) {
        for (const Case& c : cases) {
            if (std::strcmp(c.function, kernel.function) || !std::strchr(c.types, kernel.type)) continue;
            check_typed(kernel, c.x, c.y, c.status);
            ++checked;
        }
        check_typed(kernel, nan, nan, 0);
        for (const char* logarithm : {"Ln", "Log10", "Log2"}) {
            if (std::strcmp(logarithm, kernel.function)) continue;
            check_typed(kernel, 0.0, -inf, 2);
            check_typed(kernel, -0.0, -inf, 2);
            check_typed(kernel, -1, nan, 1);
            check_typed(kernel, -inf, nan, 1);
            check_typed(kernel, inf, inf, 0);
        }
    }
    EXPECT_GT(checked, 100);
}

// An element's result is the same alone, in the middle of a block, in a tail, strided, and beside special elements.
template <class T>
void check_places(const Kernel& kernel) {
    const double specials[] = {0, -1, -5, 1e30, nan, inf, -inf, 1e-40, 700, -1050};
    constexpr int32_t longest = 75;
    const std::vector<T> sampled = samples<T>(kernel.function, 4 * longest, 7);
    const auto dense = reinterpret_cast<void (*)(int32_t, const T*, T*)>(kernel.dense);
    const auto strided = reinterpret_cast<void (*)(int32_t, const T*, int32_t, T*, int32_t)>(kernel.strided);
    for (int32_t n = 0; n <= longest; ++n) {
        std::vector<T> x(n), y(n), spread(3 * n + 1), y_spread(2 * n + 1, T(5));
        for (int32_t i = 0; i < n; ++i) {
            const bool special = n % 3 == 0 && i % 13 == n % 13;
            x[i] = special ? static_cast<T>(specials[(n + i) % 10]) : sampled[sampled.size() - 2 - n - i];
            spread[3 * i] = x[i];
        }
        dense(n, x.data(), y.data());
        strided(n, spread.data(), 3, y_spread.data(), 2);
        for (int32_t i = 0; i < n; ++i) {
            const T alone = call_one(kernel, x[i]);
            ASSERT_TRUE(same(y[i], alone))
                << kernel.type << kernel.function << " " << kernel.slots << ", " << i << " of " << n << ": "
                << std::hexfloat << x[i] << " " << y[i] << " " << alone;
            ASSERT_TRUE(same(y_spread[2 * i], alone)) << kernel.type << kernel.function << " " << x[i];
            ASSERT_EQ(y_spread[2 * i + 1], T(5));
        }
    }
}

TEST(ExpLog, ResultsDoNotDependOnThePlace) {
    const ErrorMode mode;
    for (const Kernel& kernel : kernels())
        kernel.type == 's' ? check_places<float>(kernel) : check_places<double>(kernel);
}

TEST(ExpLog, WithoutReportsResultsAreTheSame) {
    for (const Kernel& kernel : kernels()) {
        if (kernel.type != 'd' || std::strcmp(kernel.function, "Exp")) continue;
        const double x[] = {1000, -1000, 1, 709.7, -720, nan, inf, -inf, 709.9, -745.14, 0.5};
        constexpr int32_t n = sizeof x / sizeof *x;
        double loud[n], silent[n];
        const auto call = reinterpret_cast<void (*)(int32_t, const double*, double*)>(kernel.dense);
        const uint32_t saved = _arqSetMode(ORV_MODE_ERRMODE_IGNORE);
        call(n, x, loud);
        _arqClearErrStatus();
        _arqSetMode(ORV_MODE_ERRMODE_NOERR);
        call(n, x, silent);
        EXPECT_EQ(_arqGetErrStatus(), 0);
        _arqSetMode(saved);
        for (int32_t i = 0; i < n; ++i) EXPECT_TRUE(same(loud[i], silent[i])) << kernel.slots << " " << x[i];
    }
}

// Rows that are known beforehand, and what the rows were made for.
TEST(ExpLogTables, KnownRows) {
    static const double exp2_64[64][2] = {
#include "vecmath/tables/exp2_64.inc"
    };
    static const uint64_t exp2_bits_128[128] = {
#include "vecmath/tables/exp2_bits_128.inc"
    };
    static const double ln_513[513][4] = {
#include "vecmath/tables/ln_513.inc"
    };
    EXPECT_EQ(exp2_64[0][0], 1.0);
    EXPECT_EQ(exp2_64[0][1], 0.0);
    EXPECT_EQ(exp2_64[1][0], 1.0108892860517005);
    EXPECT_EQ(exp2_64[1][1], -1.5234778603368577e-17);
    EXPECT_EQ(exp2_bits_128[0], 0u);
    EXPECT_EQ(exp2_bits_128[1], 0x0000163DA9FB3335u);
    const struct {
        int row;
        double rcp, log_high;
    } known[] = {{0, 1, 0},
                 {1, 0.99805068969726562, 0.0019512126455083489},
                 {255, 0.6675359010696411, 0.40416209399700165},
                 {256, 0.6666666269302368, -0.28768201172351837},
                 {512, 0.5, 0}};
    for (const auto& k : known) {
        EXPECT_EQ(ln_513[k.row][0], k.rcp) << k.row;
        EXPECT_EQ(ln_513[k.row][1], k.rcp) << k.row;
        EXPECT_EQ(ln_513[k.row][2], k.log_high) << k.row;
    }
    EXPECT_EQ(ln_513[1][3], 3.5172831329618426e-11);
    for (int j = 0; j <= 512; ++j) {
        // Of 23 bits, and its product with a number of 21 bits less 1 is small and exact.
        EXPECT_EQ(std::bit_cast<uint64_t>(ln_513[j][0]) & 0x1FFFFFFF, 0u);
        EXPECT_LT(std::fabs(ln_513[j][0] * (512 + j) / 512 - 1), 0x1p-22);
        // The parts add up to the logarithm.
        const long double log = -logl(ln_513[j][0]) - (j < 256 ? 0.0L : logl(2.0L));
        EXPECT_LT(fabsl(log - ln_513[j][2] - ln_513[j][3]), 0x1p-62L) << j;
    }
}

}  // namespace
