// `orv stats`: tables, weights, the choice of columns, refusals, files larger than a block, the picture.
#include "command/command.h"

#include <cmath>
#include <sstream>

namespace {

// Field `column` of row `row` of the CSV output.
double value_at(const std::string& csv, int row, int column) {
    std::istringstream lines(csv);
    std::string line, field;
    for (int i = 0; i <= row; ++i) std::getline(lines, line);
    std::istringstream fields(line);
    for (int i = 0; i <= column; ++i) std::getline(fields, field, ',');
    return std::stod(field);
}

TEST_F(Command, StatsOfSmallTables) {
    // Sums of squares that are powers of four, so that each result is exact.
    EXPECT_EQ(orv("stats --csv", "x,\"y,1\"\n2,4\n0,0\n2,4\n0,0\n1,2\n").out,
              "column,count,mean,standard deviation,skewness,kurtosis,minimum,maximum\n"
              "x,5,1,1,0,-2.2,0,2\n"
              "\"y,1\",5,2,2,0,-2.2,0,4\n\n"
              "covariance,x,\"y,1\"\nx,1,2\n\"y,1\",2,4\n\n"
              "correlation,x,\"y,1\"\nx,1,1\n\"y,1\",1,1\n");
    EXPECT_EQ(orv("stats --columns 3,1", "a,b,c\n1,-,5\n2,-,7\n").out,
              "column  count  mean  standard deviation  skewness  kurtosis  minimum  maximum\n"
              "c           2     6         1.414213562         0     -2.75        5        7\n"
              "a           2   1.5        0.7071067812         0     -2.75        1        2\n\n"
              "covariance  c    a\nc           2    1\na           1  0.5\n\n"
              "correlation  c  a\nc            1  1\na            1  1\n");
    const std::string skewed = orv("stats --csv", "x,y\n1,2\n2,4\n3,9\n").out;
    EXPECT_NEAR(value_at(skewed, 2, 4), 12 / std::pow(13, 1.5), 1e-15);
    EXPECT_NEAR(value_at(skewed, 9, 2), 3.5 / std::sqrt(13), 1e-15);
    // A weight of 2 counts as the row twice in the mean and, here, nowhere else.
    const std::string weighted = orv("stats --csv --weights w --columns x", "x,w\n1,1\n4,2\n").out;
    EXPECT_EQ(value_at(weighted, 1, 2), 3);
}

TEST_F(Command, StatsRefusesInOneLine) {
    const struct {
        const char *arguments, *input, *message;
    } cases[] = {
        {"stats", "x,y\n1,2\n3,\n", "<stdin>:3: column y: missing value"},
        {"stats", "x,y\n1,2\n\nn/a,4\n", "<stdin>:4: column x: 'n/a' is not a number"},
        {"stats", "1,2\n1e999,4\n", "<stdin>:2: column 1: '1e999' is too large for the type"},
        {"stats --columns y,z", "x,y\n1,2\n", "<stdin>:1: no column z"},
        {"stats --weights w", "x,y\n1,2\n", "<stdin>:1: no column w"},
        {"stats --weights y", "x,y\n1,2\n1,-2\n", "<stdin>:3: a weight must be 0 or more"},
        {"stats --weights y", "x,y\n1,0\n", "<stdin>: the weights add up to 0"},
        {"stats --weights 1", "1\n", "<stdin>:1: no column left beside the weights"},
        {"stats", "x,y\n", "<stdin>: no rows of numbers"},
        {"stats", "", "<stdin>: no rows of numbers"},
        {"stats none.csv", "", "none.csv: No such file or directory"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(c.arguments, c.input);
        EXPECT_EQ(outcome.err, "orv: " + std::string(c.message) + "\n") << c.arguments;
        EXPECT_EQ(outcome.out, "") << c.arguments;
        EXPECT_EQ(outcome.status, 2) << c.arguments;
    }
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

TEST_F(Command, StatsDraws) {
    if (std::system("gnuplot --version >version 2>&1") != 0) GTEST_SKIP() << "no gnuplot here";
    const Outcome outcome = orv("stats --plot it\\'s.svg", "x,o'y\n1,2\n2,4\n3,9\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    const std::string picture = get("it's.svg");
    EXPECT_NE(picture.find("<svg"), std::string::npos);
    EXPECT_NE(picture.find("o'y"), std::string::npos);
    EXPECT_NE(picture.find("0.97"), std::string::npos);
    EXPECT_EQ(orv("stats --plot no/such/place.svg", "x\n1\n2\n").status, 2);
}

}  // namespace
