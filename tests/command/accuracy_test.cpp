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

// A line, both results of one argument, and a plane.
TEST_F(Command, AccuracyMeasuresEveryShape) {
    const struct {
        const char *arguments, *form;
        double ha;
    } cases[] = {
        {"Log1p", "accuracy,worst_ulp,at la,%lf,%*f ha,%lf", 0.6},
        {"SinCos --type s", "accuracy,worst_ulp,at la,%lf,%*f ha,%lf", 0.6},
        {"Mul --range 1 2 --second -1 1", "accuracy,worst_ulp,at,and la,%lf,%*f,%*f ha,%lf", 0.5},
        {"Conj --type z", "accuracy,worst_ulp,at,and la,%lf,%*f,%*f ha,%lf", 0},
    };
    for (const auto& [arguments, form, bound] : cases) {
        const Outcome outcome = orv(std::string("accuracy --points 3000 ") + arguments, "");
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        double la = 0, ha = -1;
        ASSERT_EQ(std::sscanf(outcome.out.c_str(), form, &la, &ha), 2) << outcome.out;
        EXPECT_LE(ha, bound) << arguments;
        EXPECT_GE(ha, 0.9 * std::min(bound, 0.5)) << arguments;
    }
}

TEST_F(Command, AccuracyDraws) {
    if (std::system("gnuplot --version >version 2>&1") != 0) GTEST_SKIP() << "no gnuplot here";
    for (const char* function : {"Exp --type s", "Add"}) {
        const Outcome outcome = orv(std::string("accuracy --points 3000 --plot e.svg ") + function, "");
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_NE(get("e.svg").find("<svg"), std::string::npos);
    }
}

TEST_F(Command, AccuracyRefusesInOneLine) {
    for (const char* arguments : {"accuracy Nonsense", "accuracy Exp --type c", "accuracy Exp --range 1 1"}) {
        const Outcome outcome = orv(arguments, "");
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
}

}  // namespace
