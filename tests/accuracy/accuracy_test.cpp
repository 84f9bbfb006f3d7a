// Every kernel stays within its bound, wherever the search for its worst error gets.
#include "accuracy/bounds.h"
#include "accuracy/hunt.h"
#include "support/effort.h"

#include <gtest/gtest.h>

namespace {

using namespace orv::accuracy;

#ifdef _WIN32
constexpr double effort = 0.1;
#else
constexpr double effort = orv::test::sanitized ? 0.02 : 0.5;
#endif

struct WorstError : testing::TestWithParam<Kernel> {};

TEST_P(WorstError, StaysWithinItsBound) {
    const Kernel& kernel = GetParam();
    const Bound* bound = bound_of(kernel);
    ASSERT_NE(bound, nullptr) << "no bound for this kernel";
    // Exact complex values take a hundred times as long as real ones.
    const bool complex = kernel.type == 'c' || kernel.type == 'z';
    const Worst worst = hunt(kernel, complex ? effort / 6 : effort);
#ifdef _WIN32
    if (!kernel.function->fast) GTEST_SKIP() << "nothing to measure against here";
#endif
    EXPECT_GE(worst.count, 10'000);
    const auto at = [&](const double* x) {
        testing::Message text;
        text << std::hexfloat << "at";
        for (int i = 0; i < kernel.inputs; ++i) text << " " << x[i];
        return text;
    };
    EXPECT_LE(worst.ulp, bound->ulp) << at(worst.at);
    EXPECT_LE(worst.subnormal_ulp, bound->subnormal_ulp) << at(worst.subnormal_at);
}

std::string name_of(const testing::TestParamInfo<Kernel>& instance) {
    const Kernel& kernel = instance.param;
    return std::string(1, kernel.type) + kernel.name + "_" + accuracy_names[kernel.accuracy];
}

INSTANTIATE_TEST_SUITE_P(Kernels, WorstError, testing::ValuesIn(kernels()), name_of);

// Rows that are not measured yet. This list can only get shorter.
TEST(Rows, AreMeasured) { EXPECT_EQ(rows_without_function(), std::vector<std::string>{}); }

// Arguments that a search once missed, near the worst that there are.
TEST(Search, KnowsWhatItOnceMissed) {
    const struct {
        char type;
        const char* name;
        Accuracy accuracy;
        double x[2], ulp;
    } cases[] = {
        {'d', "Log10", la, {0x1.0024d9dce34dep+0}, 3.90},
        {'d', "Sin", la, {0x1.89dc2690c212ep+0}, 3.29},
        {'d', "Expm1", la, {-0x1.6317dfd559778p-9}, 0.98},
        {'d', "Log1p", ha, {0x1.ffe9f11306c0cp-11}, 0.58},
        {'d', "Log10", ha, {0x1.ffdb896ba7369p-1}, 0.58},
        {'d', "Atan2", la, {0x1.00044ffe18ce1p+0, 0x1.00044f784abe3p+9}, 2.30},
        {'d', "Atan2", ha, {0x1.fffffffb28dcdp-1, 0x1.fff8895f40dbdp+4}, 0.531},
    };
    for (const auto& c : cases)
        for (const Kernel& kernel : kernels()) {
            if (kernel.type != c.type || std::string_view(kernel.name) != c.name || !kernel.serves(c.accuracy))
                continue;
            const Judge judge(kernel, Measure::by_part);
            if (!judge.can(c.x)) continue;
            double y;
            evaluate(kernel, c.x, &y, 1);
            Error error;
            judge.exact(c.x, &y, &error);
            EXPECT_LE(error.ulp, bound_of(kernel)->ulp) << c.name;
        }
}

}  // namespace
