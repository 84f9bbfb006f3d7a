// Every kernel of an `s` function stays within its bound over all 2^32 floats. The sweep takes its errors against the
// `d` kernel; where it found the worst, the exact value has to say the same.
#include "accuracy/measure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

namespace oracle = orv::oracle;
using namespace orv::accuracy;

std::vector<const char*> functions() {
    std::vector<const char*> names;
    for (const Kernel& kernel : kernels())
        if (kernel.type == 's' && (names.empty() || std::strcmp(names.back(), kernel.function)))
            names.push_back(kernel.function);
    return names;
}

struct AllFloats : testing::TestWithParam<const char*> {};

TEST_P(AllFloats, StayWithinTheBounds) {
    std::vector<Kernel> of_function;
    for (const Kernel& kernel : kernels())
        if (kernel.type == 's' && !std::strcmp(kernel.function, GetParam())) of_function.push_back(kernel);
    const std::vector<Worst> worst = measure_all_floats(of_function);
    for (size_t k = 0; k < of_function.size(); ++k) {
        const Worst& w = worst[k];
        ASSERT_EQ(w.count, int64_t{1} << 32);
        std::printf("s%s %s: %.4f ulp at %a, 2^%.1f relative, subnormal results %.4f at %a\n", GetParam(),
                    of_function[k].slots.c_str(), w.ulp, w.at, std::log2(w.relative), w.subnormal_ulp, w.subnormal_at);
        const Bound* bound = bound_of(of_function[k]);
        ASSERT_NE(bound, nullptr);
        EXPECT_LE(w.ulp, bound->ulp) << std::hexfloat << w.at;
        EXPECT_LE(w.subnormal_ulp, bound->subnormal_ulp) << std::hexfloat << w.subnormal_at;
        const float x = static_cast<float>(w.at);
        float y;
        reinterpret_cast<void (*)(int32_t, const float*, float*)>(of_function[k].dense)(1, &x, &y);
        EXPECT_NEAR(oracle::exact_error(*of_function[k].oracle, x, y).ulp, w.ulp, 1e-6 * (1 + w.ulp))
            << std::hexfloat << x;
    }
}

INSTANTIATE_TEST_SUITE_P(Exhaustive, AllFloats, testing::ValuesIn(functions()),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
