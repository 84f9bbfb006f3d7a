// What every function makes of its special arguments, with the status, by the table of special_values.inc.
#include "accuracy/bounds.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>

namespace {

using namespace orv::accuracy;

enum class Kind { exact, exact_ha, near };

struct Value {
    const char *function, *types;
    double arguments[most_inputs], results[most_outputs];
    int32_t status;
    Kind kind;
};

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double ANY_NAN = std::numeric_limits<double>::quiet_NaN();
constexpr double MADE_NAN = -std::numeric_limits<double>::quiet_NaN();

#define IN_BRACES(...) \
    { __VA_ARGS__ }
#define VALUE(function, types, arguments, results, status, kind) \
    {#function, #types, IN_BRACES arguments, IN_BRACES results, status, Kind::kind},
const Value values[] = {
#include "accuracy/special_values.inc"
};

template <class T>
bool same(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}
bool is_quiet(float x) { return std::bit_cast<uint32_t>(x) & 0x00400000; }
bool is_quiet(double x) { return std::bit_cast<uint64_t>(x) & uint64_t{1} << 51; }

template <class T>
void check(const Kernel& kernel, const Value& value) {
    T x[most_inputs], y[most_outputs] = {T(-77), T(-77)};
    for (int i = 0; i < kernel.inputs; ++i) x[i] = static_cast<T>(value.arguments[i]);
    _arqClearErrStatus();
    evaluate(kernel, x, y, 1);
    EXPECT_EQ(_arqGetErrStatus(), value.status);
    const bool to_the_bit = value.kind == Kind::exact || (value.kind == Kind::exact_ha && kernel.serves(ha));
    for (int i = 0; i < kernel.outputs; ++i) {
        const T expected = static_cast<T>(value.results[i]);
        if (std::isnan(expected) && !std::signbit(value.results[i]))
            EXPECT_TRUE(std::isnan(y[i]) && is_quiet(y[i])) << "result " << i << " is " << y[i];
        else if (to_the_bit || !std::isfinite(expected))
            EXPECT_TRUE(same(y[i], expected)) << std::hexfloat << "result " << i << " is " << y[i];
        else  // the expected value is rounded itself
            EXPECT_LE(error_of<T>(value.results[i], y[i]).ulp, bound_of(kernel)->ulp + 0.5) << "result " << i;
    }
}

TEST(SpecialValues, AreAsTheTableHasThem) {
    const SilentErrors silent;
    for (const Value& value : values) {
        int checked = 0;
        for (const Kernel& kernel : kernels()) {
            if (std::strcmp(kernel.name, value.function) || !std::strchr(value.types, kernel.type)) continue;
            SCOPED_TRACE(testing::Message() << std::hexfloat << testing::PrintToString(kernel) << " of "
                                            << value.arguments[0] << ", " << value.arguments[1]);
            kernel.single() ? check<float>(kernel, value) : check<double>(kernel, value);
            ++checked;
        }
        EXPECT_GE(checked, 1) << value.function << " has values, but no kernel";
    }
}

}  // namespace
