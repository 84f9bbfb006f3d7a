// `orv accuracy`: figures that stand within the kernels' bounds, the picture, and what it refuses.
#include "command/command.h"

#include <algorithm>
#include <cstdio>

namespace {

TEST_F(Command, AccuracyMeasures) {
    const Outcome outcome = orv("accuracy ln --range 0.5 2 --points 20000", "");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    double la = 0, ha = 0, ep = 0;
    ASSERT_EQ(std::sscanf(outcome.out.c_str(), "accuracy,worst_ulp,at la,%lf,%*f ha,%lf,%*f ep,%lf", &la, &ha, &ep), 3)
        << outcome.out;
    EXPECT_GT(ha, 0.45);
    EXPECT_LT(ha, 0.57);
    EXPECT_EQ(la, ha);
    EXPECT_GT(ep, 1e5);
}

TEST_F(Command, AccuracyKnowsEveryFunctionOfOneInput) {
    for (const char* function : {"Exp", "Expm1", "Exp2", "Exp10", "Ln", "Log10", "Log2", "Log1p", "Sin", "Cos", "Tan",
                                 "Sinpi", "Cospi", "Tanpi", "Sind", "Cosd", "Tand"}) {
        const Outcome outcome = orv(std::string("accuracy --points 3000 ") + function, "");
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        double la = 0, ha = 0;
        ASSERT_EQ(std::sscanf(outcome.out.c_str(), "accuracy,worst_ulp,at la,%lf,%*f ha,%lf", &la, &ha), 2)
            << outcome.out;
        EXPECT_GT(ha, 0.45) << function;
        EXPECT_LT(ha, 0.76) << function;
        EXPECT_LT(la, 3.7) << function;
    }
}

TEST_F(Command, AccuracyDraws) {
    if (std::system("gnuplot --version >version 2>&1") != 0) GTEST_SKIP() << "no gnuplot here";
    const Outcome outcome = orv("accuracy Exp --type s --points 3000 --plot e.svg", "");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(get("e.svg").find("<svg"), std::string::npos);
}

TEST_F(Command, AccuracyRefusesInOneLine) {
    for (const char* arguments : {"accuracy Nonsense", "accuracy Ceil", "accuracy Exp --range 1 1"}) {
        const Outcome outcome = orv(arguments, "");
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
}

}  // namespace
