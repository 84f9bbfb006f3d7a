// Every kernel stays within its bound, over the fixed samples and a good many random ones.
#include "accuracy/measure.h"

#include <gtest/gtest.h>


namespace {

using namespace orv;
using accuracy::Kernel;

#if defined(__SANITIZE_ADDRESS__)
constexpr int64_t random_count = 20'000;
#elif defined(_WIN32)
constexpr int64_t random_count = 100'000;
#else
constexpr int64_t random_count = 1'000'000;
#endif

struct WorstError : testing::TestWithParam<Kernel> {};

TEST_P(WorstError, StaysWithinItsBound) {
    const Kernel& kernel = GetParam();
    const accuracy::Bound* bound = accuracy::bound_of(kernel);
    ASSERT_NE(bound, nullptr) << "no bound for this kernel";
    const accuracy::Worst worst = accuracy::measure(kernel, random_count);
    EXPECT_GE(worst.count, random_count / 4);
    EXPECT_LE(worst.ulp, bound->ulp) << "at " << std::hexfloat << worst.at;
    EXPECT_LE(worst.subnormal_ulp, bound->subnormal_ulp) << "at " << std::hexfloat << worst.subnormal_at;
}

INSTANTIATE_TEST_SUITE_P(Kernels, WorstError, testing::ValuesIn(accuracy::kernels()), [](const auto& instance) {
    const Kernel& kernel = instance.param;
    return std::string(1, kernel.type) + kernel.function + "_" + accuracy::accuracy_names[kernel.accuracy];
});

}  // namespace
