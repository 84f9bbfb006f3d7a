// Every kernel of an `s` function of one input stays within its bound over all 2^32 floats. The sweep takes its errors
// against the `d` kernel; where it found the worst, the exact value has to say the same.
#include "accuracy/bounds.h"
#include "accuracy/sweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

namespace {

using namespace orv::accuracy;

struct AllFloats : testing::TestWithParam<std::vector<const Kernel*>> {};

TEST_P(AllFloats, StayWithinTheBounds) {
    const std::vector<const Kernel*>& of_function = GetParam();
    std::vector<Worst> worst(of_function.size());
    for (int piece = 0; piece < pieces; ++piece) {
        const std::vector<Worst> found = sweep_piece(of_function, piece);
        for (size_t k = 0; k < found.size(); ++k) join(worst[k], found[k]);
    }
    for (size_t k = 0; k < of_function.size(); ++k) {
        const Kernel& kernel = *of_function[k];
        const Worst& w = worst[k];
        ASSERT_EQ(w.count, int64_t{1} << 32);
        std::printf("s%s %s: %.4f ulp at %a, 2^%.1f relative, subnormal results %.4f at %a\n", kernel.name,
                    kernel.slots.c_str(), w.ulp, w.at[0], std::log2(w.relative), w.subnormal_ulp, w.subnormal_at[0]);
        const Bound* bound = bound_of(kernel);
        ASSERT_NE(bound, nullptr);
        EXPECT_LE(w.ulp, bound->ulp) << std::hexfloat << w.at[0];
        EXPECT_LE(w.subnormal_ulp, bound->subnormal_ulp) << std::hexfloat << w.subnormal_at[0];
        const float x = static_cast<float>(w.at[0]);
        float y[most_outputs];
        evaluate(kernel, &x, y, 1);
        Error errors[most_outputs];
        Judge(kernel, Measure::by_part).exact(&x, y, errors);
        const double exact = std::max(errors[0].ulp, errors[1].ulp);
        EXPECT_NEAR(exact, w.ulp, 1e-6 * (1 + w.ulp)) << std::hexfloat << x;
    }
}

INSTANTIATE_TEST_SUITE_P(Exhaustive, AllFloats, testing::ValuesIn(sweepable()),
                         [](const auto& instance) { return std::string(instance.param[0]->name); });

}  // namespace
