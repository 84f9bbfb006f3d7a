// `orv fit`: values that can be checked by hand, and what it refuses.
#include "command/command.h"

namespace {

// Points of the parabola x^2, at uneven distances.
constexpr const char* parabola = "t,v,w\n0,0,0\n1,1,2\n3,9,6\n4,16,8\n6,36,12\n";

TEST_F(Command, FitComputesTables) {
    put("at.csv", "where\n2\n-1\n7\n");
    const struct {
        const char *arguments, *output;
    } cases[] = {
        {"--spline linear --sites 3", "t,v\n0,0\n3,9\n6,36\n"},
        {"--spline hermite --internal w --bc second:2,2 --sites at.csv --derivatives 2",
         "t,v,v.d1,v.d2\n2,4,4,2\n-1,1,-2,2\n7,49,14,2\n"},
        {"--spline hermite --internal w --bc first:0,12 --sites at.csv", "t,v\n2,4\n-1,1\n7,49\n"},
        {"--spline bessel --bc second:2,2 --sites at.csv --type s", "t,v\n2,4\n-1,1\n7,49\n"},
        {"--spline linear --integrate 0,1 --integrate 4,1", "from,to,integral\n0,1,0.5\n4,1,-22.5\n"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv("fit --x t --y v " + std::string(c.arguments), parabola);
        EXPECT_EQ(outcome.out, c.output) << c.arguments;
        EXPECT_EQ(outcome.err, "") << c.arguments;
        EXPECT_EQ(outcome.status, 0) << c.arguments;
    }
}

TEST_F(Command, FitRefusesInOneLine) {
    const struct {
        const char *arguments, *input, *message;
    } cases[] = {
        {"", "t,v\n0,1\n1,2\n1,3\n", "<stdin>:4: abscissa 1 is repeated"},
        {"", "t,v\n0,1\n2,2\n\n1,3\n", "<stdin>:5: abscissae must ascend, and 1 is below that of the row before"},
        {"", "t,v\n0,1\n1,nan\n", "<stdin>:3: a spline needs finite numbers"},
        {"--spline akima", "t,v\n0,1\n1,2\n", "-: the akima spline takes at least 5 rows"},
        {"--bc periodic", parabola, "natural: periodic ends, but the first and the last value differ, status -1018"},
        {"--bc first", parabola, "--bc: first takes two values, as in first:0,0"},
        {"--bc first:1", parabola, "--bc: 1 is not two numbers with a comma between them"},
        {"--bc knot", parabola, "--bc: knot is none of the ends; see orv fit --help"},
        {"--spline bessel --bc none", parabola, "bessel: this spline does not take these ends, status -1014"},
        {"--spline default", parabola, "the default spline takes its interior second derivatives from --internal"},
        {"--spline wavy", parabola, "--spline: no spline wavy; see orv fit --help"},
        {"--sites 0", parabola, "--sites: a count from 1 to 10000000, or a file"},
        {"--integrate 1", parabola, "--integrate: 1 is not two numbers with a comma between them"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv("fit --x t --y v " + std::string(c.arguments), c.input);
        EXPECT_EQ(outcome.err, "orv: " + std::string(c.message) + "\n") << c.arguments;
        EXPECT_EQ(outcome.out, "") << c.arguments;
        EXPECT_EQ(outcome.status, 2) << c.arguments;
    }
}

TEST_F(Command, FitDraws) {
    if (std::system("gnuplot --version >version 2>&1") != 0) GTEST_SKIP() << "no gnuplot here";
    const Outcome outcome = orv("fit --x t --y v --sites 2 --plot fit.svg", parabola);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    const std::string picture = get("fit.svg");
    for (const char* part : {"<svg", "natural spline", "derivative", "data"})
        EXPECT_NE(picture.find(part), std::string::npos) << part;
}

}  // namespace
