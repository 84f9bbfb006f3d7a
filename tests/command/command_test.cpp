// What does not fit in a table: the kernel that is chosen, elements that are listed, figures that are measured.
#include "command/command.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <utility>
#include <vector>

namespace {

TEST_F(Command, BadElementsAreListed) {
    if (orv("info").out.find("\nLn ") == std::string::npos) GTEST_SKIP() << "no function with a domain yet";
    put("a.csv", "x\n1\n-1\n");
    put("b.csv", "x\n1\n\n0\n");
    for (const char* mode : {"", "--by-mode"}) {
        const Outcome outcome = orv("math Ln a.csv b.csv " + std::string(mode));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err,
                  "orv: a.csv:3: row 2: Ln(-1): outside the domain, status 1\n"
                  "orv: b.csv:4: row 2: Ln(0): at a singularity, status 2\n");
        EXPECT_EQ(outcome.out.substr(0, 9), "x,Ln\n1,0\n");
    }
}

TEST_F(Command, AccuracyChoosesTheKernel) {
    if (orv("info").out.find("\nExp ") == std::string::npos) GTEST_SKIP() << "no function with three kernels yet";
    std::string input;
    for (int i = 1; i < 100; ++i) input += std::to_string(i) + ".3e-2\n";
    std::string results[3];
    const char* const accuracies[] = {"la", "HA", "Ep"};
    for (size_t i = 0; i < 3; ++i) {
        results[i] = orv("math Exp --accuracy " + std::string(accuracies[i]), input).out;
        EXPECT_EQ(results[i], orv("math Exp --by-mode --accuracy " + std::string(accuracies[i]), input).out);
    }
    EXPECT_NE(results[0], results[1]);
    EXPECT_NE(results[1], results[2]);
    EXPECT_EQ(results[1], orv("math Exp", input).out);
}

TEST_F(Command, InfoTellsTheMode) {
#ifdef _WIN32
    const auto set = [](const char* value) { _putenv((std::string("ORV_ARQ_MODE=") + value).c_str()); };
#else
    const auto set = [](const char* value) { setenv("ORV_ARQ_MODE", value, 1); };
#endif
    const struct {
        const char *value, *shown;
    } cases[] = {
        {"", "mode         0x1A02\naccuracy     HA\nconsistency  not chosen\nerrors       errno, except, callback\n"},
        {"ARQ_EP,ARQ_ERRMODE_STDERR,ARQ_RESTORE,ARQ_TRAP_OVERFLOW",
         "mode         0x4000433\naccuracy     EP\nconsistency  restore\nerrors       stderr\n"},
    };
    for (const auto& c : cases) {
        set(c.value);
        const Outcome outcome = orv("info");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out.substr(0, 42), "version      0.1.0\ntier         6 (SSE4.1)");
        EXPECT_NE(outcome.out.find(c.shown), std::string::npos) << outcome.out;
        EXPECT_NE(outcome.out.find("\nAbs          s d"), std::string::npos) << outcome.out;
    }
    set("");
}

TEST_F(Command, MissingAndNanAreCounted) {
    put("a.csv", "x,y\n1,2\n,3\n3,NA\n-4,4\nnan,6\n");
    Outcome outcome = orv("math Abs --column x --na skip a.csv");
    EXPECT_EQ(outcome.out, "x,Abs\n1,1\n3,3\n-4,4\nnan,nan\n");
    EXPECT_EQ(outcome.err, "orv: a.csv: 1 of 5 rows skipped for missing values\n");
    outcome = orv("stats --csv --na skip a.csv");
    EXPECT_NE(outcome.out.find("\nx,3,nan,nan,nan,nan,nan,nan\ny,3,4,2,0,"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.err,
              "orv: a.csv: 2 of 5 rows skipped for missing values\n"
              "orv: column x: 1 of 3 values are nan, and so is what they enter\n");
    EXPECT_EQ(orv("stats a.csv").err, "orv: a.csv:3: column x: missing value\n");
}

TEST_F(Command, BenchMeasures) {
    const Outcome outcome = orv("bench Exp --type d --n 1e2 --csv");
    double la = 0, ha = 0, ep = 0;
    ASSERT_EQ(std::sscanf(outcome.out.c_str(), "function,type,LA,HA,EP Exp,d,%lf,%lf,%lf", &la, &ha, &ep), 3)
        << outcome.out << outcome.err;
    EXPECT_GT(std::min({la, ha, ep}), 0.05);
    const std::string complex = orv("bench Conj --n 1e2 --csv").out;
    EXPECT_NE(complex.find("\nConj,c,"), std::string::npos) << complex;
    EXPECT_NE(complex.find("\nConj,z,"), std::string::npos) << complex;
}

// The pages are well formed, and name what --help does.
TEST_F(Command, PagesAndCompletion) {
    std::filesystem::create_directory("pages");
    ASSERT_EQ(orv("--write-pages pages").status, 0);
    for (const auto& [page, parts] : {std::pair<const char*, std::vector<const char*>>{"orv.1", {"math", "stats"}},
                                      {"orv-math.1", {"accuracy", "append", "decimal"}},
                                      {"orv-draw-uniform.1", {"leapfrog", "10 if not given"}}}) {
        const std::string text = get(("pages/" + std::string(page)).c_str());
        EXPECT_EQ(text.substr(0, 4), ".TH ") << page;
        for (const char* part : parts) EXPECT_NE(text.find(part), std::string::npos) << page << part;
    }
#ifndef _WIN32
    const std::string complete =
        "bash -c '. pages/orv; COMP_WORDS=(orv draw uni); COMP_CWORD=2; _orv; echo ${COMPREPLY[@]}; "
        "COMP_WORDS=(orv stats --js); _orv; echo ${COMPREPLY[@]}; "
        "COMP_WORDS=(orv math Hyp); _orv; echo ${COMPREPLY[@]}' >said 2>&1";
    EXPECT_EQ(std::system(complete.c_str()), 0);
    EXPECT_EQ(get("said"), "uniform\n--json\nHypot\n");
#endif
}

TEST_F(Command, AccuracyMeasures) {
    const Outcome outcome = orv("accuracy ln --range 0.5 2 --points 20000");
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
        const Outcome outcome = orv(std::string("accuracy --points 3000 ") + arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        double la = 0, ha = -1;
        ASSERT_EQ(std::sscanf(outcome.out.c_str(), form, &la, &ha), 2) << outcome.out;
        EXPECT_LE(ha, bound) << arguments;
        EXPECT_GE(ha, 0.9 * std::min(bound, 0.5)) << arguments;
    }
}

// Field `column` of row `row` of the CSV output.
double value_at(const std::string& csv, int row, int column) {
    std::istringstream lines(csv);
    std::string line, field;
    for (int i = 0; i <= row; ++i) std::getline(lines, line);
    std::istringstream fields(line);
    for (int i = 0; i <= column; ++i) std::getline(fields, field, ',');
    return std::stod(field);
}

TEST_F(Command, StatsOfUnevenTables) {
    const std::string skewed = orv("stats --csv", "x,y\n1,2\n2,4\n3,9\n").out;
    EXPECT_NEAR(value_at(skewed, 2, 4), 12 / std::pow(13, 1.5), 1e-15);
    EXPECT_NEAR(value_at(skewed, 9, 2), 3.5 / std::sqrt(13), 1e-15);
    // A weight of 2 counts as the row twice in the mean and, here, nowhere else.
    const std::string weighted = orv("stats --csv --weights w --columns x", "x,w\n1,1\n4,2\n").out;
    EXPECT_EQ(value_at(weighted, 1, 2), 3);
}

// Some blocks of rows, on one thread and on two: 0, 1, 2, ... and its square, whose moments are known.
TEST_F(Command, StatsGoesBlockByBlock) {
    constexpr int rows = 400000;
    std::string text;
    for (int i = 0; i < rows; ++i)
        text += std::to_string(i) + "," + std::to_string(static_cast<int64_t>(i) * i) + "\r\n";
    put("big.csv", text);
    for (const char* threads : {"1", "2"}) {
        const std::string out = orv("stats big.csv --csv --threads " + std::string(threads)).out;
        const double n = rows, variance = n * (n + 1) / 12;
        EXPECT_EQ(value_at(out, 1, 1), n);
        EXPECT_EQ(value_at(out, 1, 2), (n - 1) / 2);
        EXPECT_NEAR(value_at(out, 1, 3), std::sqrt(variance), 1e-12 * n);
        EXPECT_NEAR(value_at(out, 1, 4), 0, 1e-12);
        EXPECT_NEAR(value_at(out, 1, 5), -1.2, 1e-4);
        EXPECT_NEAR(value_at(out, 5, 2) / (variance * (n - 1)), 1, 1e-12);  // the covariance of i and i^2
    }
}

// A line of rows with three far from it, and one value missing.
TEST_F(Command, StatsLooksCloser) {
    std::string text = "x,y\n";
    for (int i = 0; i < 30; ++i)
        text += std::to_string(i % 10) + "," + std::to_string(2 * (i % 10) + (i * i) % 7 * 0.1) + "\n";
    put("line.csv", text + "4,80\n5,80.5\n4,81\n");
    const Outcome outcome = orv("stats line.csv --csv --outliers --robust");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const size_t outliers = outcome.out.find("\noutlier in row,distance,x,y\n31,");
    ASSERT_NE(outliers, std::string::npos) << outcome.out;
    const std::string rows = outcome.out.substr(outliers);
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 5) << rows;
    EXPECT_NE(rows.find(",4,80\n32,"), std::string::npos) << rows;
    double x = 0, y = 0;
    ASSERT_EQ(std::sscanf(outcome.out.c_str() + outcome.out.find("\nrobust,"),
                          "\nrobust,mean,standard deviation x,%lf,%*f y,%lf", &x, &y),
              2);
    EXPECT_NEAR(x, 4.5, 0.3);
    EXPECT_NEAR(y, 9.3, 0.6);

    put("gaps.csv", text + "4,\nNA,2.3\n");
    const std::string imputed = orv("stats gaps.csv --csv --impute").out;
    double error = 0;
    ASSERT_EQ(std::sscanf(imputed.c_str() + imputed.find("\nimputed,"),
                          "\nimputed,missing,mean,standard error,standard deviation x,1,%lf,%*f,%*f y,1,%lf,%lf", &x,
                          &y, &error),
              3)
        << imputed;
    EXPECT_NEAR(x, (135 + 4 + 1) / 32.0, 0.05);
    EXPECT_NEAR(y, 2 * x + 0.25, 0.15);
    EXPECT_NEAR(error, 5.8 / std::sqrt(32), 0.15);
    EXPECT_EQ(orv("stats gaps.csv").err, "orv: gaps.csv:32: column y: missing value\n");
}

}  // namespace
