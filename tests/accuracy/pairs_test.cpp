// Every kernel of an `s` function of two inputs stays within its bound over 10^8 pairs, Atan2 over 10^9; ORV_TEST_NUMBERS
// sets another count. The errors are against 80-bit arithmetic; where the worst is, the exact value has to say the same.
#include "accuracy/bounds.h"
#include "accuracy/sweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace orv::accuracy;

struct ManyPairs : testing::TestWithParam<std::vector<const Kernel*>> {};

TEST_P(ManyPairs, StayWithinTheBounds) {
    const std::vector<const Kernel*>& of_function = GetParam();
    const char* asked = std::getenv("ORV_TEST_NUMBERS");
    const double usual = of_function[0]->name == std::string_view("Atan2") ? 1e9 : 1e8;
    const std::vector<Worst> worst = sweep_pairs(of_function, asked ? std::atof(asked) : usual, 1);
    for (size_t k = 0; k < of_function.size(); ++k) {
        const Kernel& kernel = *of_function[k];
        const Worst& w = worst[k];
        std::printf("s%s %s: %.4f ulp at %a, %a, subnormal results %.4f at %a, %a, of %.3g pairs\n", kernel.name,
                    kernel.slots.c_str(), w.ulp, w.at[0], w.at[1], w.subnormal_ulp, w.subnormal_at[0],
                    w.subnormal_at[1], static_cast<double>(w.count));
        const Bound* bound = bound_of(kernel);
        ASSERT_NE(bound, nullptr);
        EXPECT_LE(w.ulp, bound->ulp) << std::hexfloat << w.at[0] << ", " << w.at[1];
        EXPECT_LE(w.subnormal_ulp, bound->subnormal_ulp)
            << std::hexfloat << w.subnormal_at[0] << ", " << w.subnormal_at[1];
        if (w.ulp == 0 || !std::isfinite(w.ulp)) continue;
        const float x[2] = {static_cast<float>(w.at[0]), static_cast<float>(w.at[1])};
        float y;
        evaluate(kernel, x, &y, 1);
        Error exact;
        Judge(kernel, Measure::by_part).exact(x, &y, &exact);
        EXPECT_NEAR(exact.ulp, w.ulp, 1e-6 * (1 + w.ulp)) << std::hexfloat << x[0] << ", " << x[1];
    }
}

INSTANTIATE_TEST_SUITE_P(Exhaustive, ManyPairs, testing::ValuesIn(sweepable_by_pairs()),
                         [](const auto& instance) { return std::string(instance.param[0]->name); });

}  // namespace
