// What the command prints, refuses and draws: a line a case, for every subcommand.
#include "command/command.h"

#include <algorithm>

namespace {

// Points of the parabola x^2, at uneven distances.
constexpr const char* parabola = "t,v,w\n0,0,0\n1,1,2\n3,9,6\n4,16,8\n6,36,12\n";

TEST_F(Command, Prints) {
    put("at.csv", "where\n2\n-1\n7\n");
    const struct {
        const char *arguments, *input, *output;
    } cases[] = {
        {"math Ceil", "1.5\n-0.5\n1e22\n", "1.5,2\n-0.5,-0\n1e+22,1e+22\n"},
        {"math ceil -", "x\n1.5\n", "x,Ceil\n1.5,2\n"},
        {"math Sqr", "x\n0.1\n", "x,Sqr\n0.1,0.010000000000000002\n"},
        {"math Sqr --type s", "x\n0.1\n", "x,Sqr\n0.1,0.010000001\n"},
        {"math Abs --type s", "16777217\n-1e-50\n1e-40\n", "16777216,16777216\n-0,0\n1e-40,1e-40\n"},
        {"math Floor --by-mode --accuracy EP", "+2.5\n", "2.5,2\n"},
        {"math Floor --accuracy la", "-inf\nInfinity\nnan\n", "-inf,-inf\ninf,inf\nnan,nan\n"},
        {"math Add", "\"a,\"\"b\",c\n1,2\n", "\"a,\"\"b\",c,Add\n1,2,3\n"},
        {"math Sub --column b --column a", "a,b\n1,5\n2,7\n", "b,a,Sub\n5,1,4\n7,2,5\n"},
        {"math Mul --column 3 --column 3", "3,x,1.5\n", "1.5,1.5,2.25\n"},
        {"math Abs --column 2", "2020-01-01,-4\n", "-4,4\n"},
        {"math Abs --column v", "day,v\n2020-01-01,-4\n", "v,Abs\n-4,4\n"},
        {"math Abs", "\xEF\xBB\xBFx\r\n\r\n-1\r\n  -2  \r\n\n\"-3\"", "x,Abs\n-1,1\n-2,2\n-3,3\n"},
        {"math Abs", "", ""},
        {"math Abs", "x\n", "x,Abs\n"},
        {"math Abs --sep \";\" --decimal , --column a", "a;b\n-1,5;x\n1e3;y\n", "a;Abs\n-1,5;1,5\n1000;1000\n"},
        {"math Abs --sep tab --column 2", "-1\t-2\n\t-3\n", "-2\t2\n-3\t3\n"},
        {"math Abs --sep space --column 2", "-1 -2\n", "-2 2\n"},
        {"math Abs --header", "1\n-2\n", "1,Abs\n-2,2\n"},
        {"math Abs --no-header --column 2", "x,-1\n", "-1,1\n"},
        {"math Abs --comment \"#\"", "# a table\nx\n#-1\n-2\n\"-3\"\n#", "x,Abs\n-2,2\n-3,3\n"},
        {"math Abs --comment \"#\" --column 2", "\"a\n#b\",-1\n", "-1,1\n"},
        {"math Abs --append --column b", "a,b,\"c,d\"\n\"x,y\",-01.50,\n", "a,b,\"c,d\",Abs\n\"x,y\",-01.50,,1.5\n"},
        {"math SinCos --append", "0\n", "0,0,1\n"},
        {"math Powx --constant 1.5", "x\n4\n", "x,Powx\n4,8\n"},
        {"math LinearFrac --constants 1,2,3,4", "1,2\n", "1,2,0.3\n"},
        {"math Conj --complex b,a --type s", "a,b\n1,2\n", "b,a,Conj.re,Conj.im\n2,1,2,-1\n"},
        {"--version", "", "orv 0.1.0\n"},

        {"fit --x t --y v --spline linear --sites 3", parabola, "t,v\n0,0\n3,9\n6,36\n"},
        {"fit --x t --y v --spline hermite --internal w --bc second:2,2 --sites at.csv --derivatives 2", parabola,
         "t,v,v.d1,v.d2\n2,4,4,2\n-1,1,-2,2\n7,49,14,2\n"},
        {"fit --x t --y v --spline hermite --internal w --bc first:0,12 --sites at.csv", parabola,
         "t,v\n2,4\n-1,1\n7,49\n"},
        {"fit --x t --y v --spline bessel --bc second:2,2 --sites at.csv --type s", parabola, "t,v\n2,4\n-1,1\n7,49\n"},
        {"fit --x t --y v --spline linear --integrate 0,1 --integrate 4,1", parabola,
         "from,to,integral\n0,1,0.5\n4,1,-22.5\n"},

        {"draw bits --brng MCG31M1 --seed 1 --n 2", "", "1\n1132489760\n"},
        {"draw bits --brng MCG59 --seed 1 --n 2", "", "1\n302875106592253\n"},
        {"draw bits --brng MCG59 --seed 1 --n 1 --skip 1 --width 32", "", "2256595\n"},
        {"draw uniform --brng mrg32k3a --seed 12345,12345,12345,12345,12345,12345 --n 2 --type s", "",
         "0.12701112\n0.31852758\n"},
        {"draw uniform --type i --from 5 --to 6 --n 0.3e1", "", "5\n5\n5\n"},
        {"draw uniform --type i --from 1633837924 --to 1633837925 --n 2 --binary", "", "dcbadcba"},
        {"draw geometric --p 1 --n 2", "", "0\n0\n"},
        {"draw binomial --ntrial 7 --p 1 --n 2", "", "7\n7\n"},
        {"draw poisson --lambda 1e-300 --n 2 --method normal", "", "0\n0\n"},
        {"draw poisson-v --lambda 1e-300,1e-200 --n 3", "", "0\n0\n0\n"},
        {"draw hypergeometric --lot 9 --sample 9 --marked 4 --n 2", "", "4\n4\n"},
        {"draw negbinomial --p 1 --n 2", "", "0\n0\n"},
        {"draw multinomial --p 0,1,0 --ntrial 12 --n 2", "", "0,12,0\n0,12,0\n"},
        {"draw gaussian --mean 3 --sigma 1e-300 --n 2 --method paired", "", "3\n3\n"},
        {"draw gamma --a 2 --beta 1e-30 --n 1 --type s", "", "2\n"},
        {"draw gaussian-mv --cov - --mean 5,6 --n 2", "1e-300,0\n0,1e-300\n", "5,6\n5,6\n"},
        {"draw sobol --n 3", "", "0.5,0.5\n0.75,0.25\n0.25,0.75\n"},
        {"draw sobol --dimension 3 --n 1 --skip 1 --brng niederr", "", "0.75,0.25,0.3125\n"},
        {"draw uniform --type i --from -1 --to 1 --n 1000 --histogram --bins 1 --seed 7", "",
         "          -1         1000 ##################################################\n"},

        // Sums of squares that are powers of four, so that each result is exact.
        {"stats --csv", "x,\"y,1\"\n2,4\n0,0\n2,4\n0,0\n1,2\n",
         "column,count,mean,standard deviation,skewness,kurtosis,minimum,maximum\n"
         "x,5,1,1,0,-2.2,0,2\n"
         "\"y,1\",5,2,2,0,-2.2,0,4\n\n"
         "covariance,x,\"y,1\"\nx,1,2\n\"y,1\",2,4\n\n"
         "correlation,x,\"y,1\"\nx,1,1\n\"y,1\",1,1\n"},
        {"stats --json", "x,\"y \\\"\"1\"\n2,nan\n0,0\n2,4\n0,0\n1,2\n",
         "{\"rows\": 5,\n \"columns\": [\n"
         "  {\"name\": \"x\", \"nan\": 0, \"mean\": 1, \"standard deviation\": 1, \"skewness\": 0, \"kurtosis\": -2.2, "
         "\"minimum\": 0, \"maximum\": 2},\n"
         "  {\"name\": \"y \\\\\\\"1\", \"nan\": 1, \"mean\": null, \"standard deviation\": null, \"skewness\": null, "
         "\"kurtosis\": null, \"minimum\": null, \"maximum\": null}],\n"
         " \"covariance\": [[1, null], [null, null]],\n \"correlation\": [[1, null], [null, null]]}\n"},
        {"stats --columns 3,1", "a,b,c\n1,-,5\n2,-,7\n",
         "column  count  mean  standard deviation  skewness  kurtosis  minimum  maximum\n"
         "c           2     6         1.414213562         0     -2.75        5        7\n"
         "a           2   1.5        0.7071067812         0     -2.75        1        2\n\n"
         "covariance  c    a\nc           2    1\na           1  0.5\n\n"
         "correlation  c  a\nc            1  1\na            1  1\n"},
        // Two groups with the same means; y = 2 x, given which x has nothing left.
        {"stats --csv --columns x --quantiles 0.5,0.625,1 --mad", "x\n2\n0\n2\n0\n1\n",
         "column,count,mean,standard deviation,skewness,kurtosis,minimum,maximum\n"
         "x,5,1,1,0,-2.2,0,2\n\ncovariance,x\nx,1\n\ncorrelation,x\nx,1\n\n"
         "quantile,median,0.625,1\nx,1,1.5,2\n\n"
         "deviation,median,median absolute deviation,mean absolute deviation\nx,1,1,0.8\n"},
        {"stats --csv --columns x --stream-quantiles 0.1", "x\n0\n4\n2\n4\n0\n",
         "column,count,mean,standard deviation,skewness,kurtosis,minimum,maximum\n"
         "x,5,2,2,0,-2.2,0,4\n\ncovariance,x\nx,4\n\ncorrelation,x\nx,1\n\n"
         "stream quantile,0.05,0.25,median,0.75,0.95\nx,0,0,2,4,4\n"},
        {"stats --json --groups g --partial x/y", "g,x,y\nb,2,4\nb,0,0\na,2,4\na,0,0\na,1,2\n",
         "{\"rows\": 5,\n \"columns\": [\n"
         "  {\"name\": \"x\", \"nan\": 0, \"mean\": 1, \"standard deviation\": 1, \"skewness\": 0, \"kurtosis\": -2.2, "
         "\"minimum\": 0, \"maximum\": 2},\n"
         "  {\"name\": \"y\", \"nan\": 0, \"mean\": 2, \"standard deviation\": 2, \"skewness\": 0, \"kurtosis\": -2.2, "
         "\"minimum\": 0, \"maximum\": 4}],\n"
         " \"covariance\": [[1, 2], [2, 4]],\n \"correlation\": [[1, 1], [1, 1]],\n"
         " \"group\": {\n  \"b\": {\"count\": 2, \"mean of x\": 1, \"mean of y\": 2},\n"
         "  \"a\": {\"count\": 3, \"mean of x\": 1, \"mean of y\": 2}},\n"
         " \"pooled covariance\": {\n  \"x\": {\"x\": 1.3333333333333333, \"y\": 2.6666666666666665},\n"
         "  \"y\": {\"x\": 2.6666666666666665, \"y\": 5.333333333333333}},\n"
         " \"partial covariance\": {\n  \"x\": {\"x\": 0}},\n"
         " \"partial correlation\": {\n  \"x\": {\"x\": null}}}\n"},
        {"sort --column b", "a,b\n1,3\n2,nan\n3,-1\n4,2.5\n", "b\n-1\n2.5\n3\nnan\n"},
        {"sort", "3\n1\n2\n", "1\n2\n3\n"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(c.arguments, c.input);
        EXPECT_EQ(outcome.out, c.output) << c.arguments;
        EXPECT_EQ(outcome.err, "") << c.arguments;
        EXPECT_EQ(outcome.status, 0) << c.arguments;
    }
}

TEST_F(Command, Refuses) {
    put("rubbish", "no stream at all, but long enough");
    const struct {
        const char *arguments, *input, *message;  // the message from its start on
    } cases[] = {
        {"", "", ""},
        {"nothing", "", "no subcommand nothing; there are accuracy, bench"},
        {"stast", "", "no subcommand stast; did you mean stats? There are accuracy, bench"},
        {"draw unifrom", "", "no draw of unifrom; did you mean uniform? There are uniform, bits"},
        {"info more", "", ""},
        {"math Ln --constant 1", "1\n", "Ln takes no constants\n"},
        {"math Conj", "1,2\n", "Conj takes complex numbers"},
        {"math Conj --complex 1", "1,2\n", "--complex takes two columns"},
        {"math", "", ""},
        {"math Abs --type x", "", ""},
        {"math Abs --accuracy best", "", ""},
        {"math Abs none.csv", "", "none.csv: No such file or directory\n"},
        {"math Abs --column z", "x,y\n1,2\n", "<stdin>:1: no column z"},
        {"math Abs --column 3", "1,2\n", "<stdin>:1: no column 3"},
        {"math Abs --column 0", "1,2\n", "<stdin>:1: no column 0"},
        {"math Abs", "1,2\n", "<stdin>:1: 2 columns where 1 is wanted; choose with --column\n"},
        {"math Add --column a", "a,b\n1,2\n", "<stdin>:1: 1 columns where 2 are wanted; choose with --column\n"},
        {"math Abs", "x\n1\ntwo\n", "<stdin>:3: column x: 'two' is not a number\n"},
        {"math Abs", "1\n2x\n", "<stdin>:2: column 1: '2x' is not a number\n"},
        {"math Abs", "1\n0x1p3\n", "<stdin>:2: column 1: '0x1p3' is not a number\n"},
        {"math Abs", "1\n+-1\n", "<stdin>:2: column 1: '+-1' is not a number\n"},
        {"math Abs --column y", "x,y\n1,\n", "<stdin>:2: column y: missing value\n"},
        {"math Abs", "1e400\n", "<stdin>:1: column 1: '1e400' is too large for the type\n"},
        {"math Abs --type s", "x\n1\n1e39\n", "<stdin>:3: column x: '1e39' is too large for the type\n"},
        {"math Add", "a,b\n1,2\n\n3\n", "<stdin>:4: 1 fields where the rows above have 2\n"},
        {"math Abs --column b", "\"a\nb\",b\n1,x\n", "<stdin>:3: column b: 'x' is not a number\n"},
        {"math Abs", "x\n\"1\n2\n", "<stdin>:4: broken quoting\n"},
        {"math Sine", "1\n", "no function of type d, Sine; did you mean Sin? There are Abs, "},
        {"math Abs --column hight", "height,width\n1,2\n",
         "<stdin>:1: no column hight; did you mean height? There are height, width\n"},
        {"math Abs --sep tab --decimal ,", "1\n1.5\n", "<stdin>:2: column 1: '1.5' is not a number\n"},
        {"math Abs --decimal ,", "1\n", "--decimal: the sign stands between fields too; choose another --sep\n"},
        {"math Abs --sep ab", "", "--sep: 'ab' is not one letter, nor tab nor space\n"},
        {"math Abs --na drop", "", "--na: 'drop' is neither skip nor refuse\n"},
        {"math Abs --header --no-header", "", ""},

        {"fit --x t --y v", "t,v\n0,1\n1,2\n1,3\n", "<stdin>:4: abscissa 1 is repeated\n"},
        {"fit --x t --y v", "t,v\n0,1\n2,2\n\n1,3\n",
         "<stdin>:5: abscissae must ascend, and 1 is below that of the row before\n"},
        {"fit --x t --y v", "t,v\n0,1\n1,nan\n", "<stdin>:3: a spline needs finite numbers\n"},
        {"fit --x t --y v", "", "<stdin>: no rows of numbers\n"},
        {"fit --x t --y v", "t,v\n", "<stdin>: no rows of numbers\n"},
        {"fit --x t --y v --spline akima", "t,v\n0,1\n1,2\n", "-: the akima spline takes at least 5 rows\n"},
        {"fit --x t --y v --bc periodic", parabola,
         "natural: periodic ends, but the first and the last value differ, status -1018\n"},
        {"fit --x t --y v --bc first", parabola, "--bc: first takes two values, as in first:0,0\n"},
        {"fit --x t --y v --bc first:1", parabola, "--bc: 1 is not two numbers with a comma between them\n"},
        {"fit --x t --y v --bc knot", parabola, "--bc: no kind of ends knot; there are none, not-a-knot"},
        {"fit --x t --y v --spline bessel --bc none", parabola,
         "bessel: this spline does not take these ends, status -1014\n"},
        {"fit --x t --y v --spline default", parabola,
         "the default spline takes its interior second derivatives from --internal\n"},
        {"fit --x t --y v --spline wavy", parabola, "--spline: no spline wavy; there are linear, quadratic"},
        {"fit --x t --y v --derivatives 4", parabola, "--derivatives: '4' is not a whole number from 0 to 3\n"},
        {"fit --x t --y v --sites 0", parabola, "--sites: a whole number from 1 to 10,000,000, or a file\n"},
        {"fit --x t --y v --integrate 1", parabola, "--integrate: 1 is not two numbers with a comma between them\n"},

        {"draw gaussian --method none", "", "--method: none not in {box-muller,paired,inverse}\n"},
        {"draw gamma --alpha 0", "", "--alpha must be above 0\n"},
        {"draw cauchy --a inf", "", "--a must be a finite number\n"},
        {"draw weibull --beta 1e39 --type s", "", "a parameter is too large for a float\n"},
        {"draw weibull --alpha 1e-3 --histogram", "", "no histogram: its range is empty or not finite\n"},
        {"draw geometric --p 1.5", "", "--p must be above 0 and at most 1\n"},
        {"draw binomial --p 1.5", "", "--p must be from 0 to 1\n"},
        {"draw hypergeometric --lot 5 --sample 6", "", "--sample and --marked must be at most --lot\n"},
        {"draw negbinomial --p 0", "", "--p must be above 0\n"},
        {"draw multinomial --p 0.5,0.6", "", "--p: probabilities are not below 0 and sum to 1\n"},
        {"draw chi-square --v 2.5", "", "--v must be a whole number from 1 to 1e9\n"},
        {"draw gaussian-mv --cov -", "4,2\n2,1\n", "-: not positive definite\n"},
        {"draw gaussian-mv --cov -", "4,2\n1,1\n", "-: not symmetric in row 2, column 1\n"},
        {"draw gaussian-mv --cov -", "4,2\n", "-: a covariance matrix has as many rows as columns\n"},
        {"draw gaussian-mv --cov - --mean 1", "4,1\n1,1\n", "--mean wants as many numbers as --cov has columns\n"},
        {"draw sobol --dimension 41", "", "--dimension: Sobol has 40 here"},
        {"draw sobol --dimension 41 --brng SOBOL", "", "--dimension: Sobol has 40 here"},
        {"draw sobol --brng Sobl", "", "no sequence Sobl; did you mean Sobol? There are Sobol, Niederr\n"},
        {"draw sobol --dimension 319 --brng Niederr", "", ""},
        {"draw sobol --dimension 1 --plot p.svg", "", "--plot wants two dimensions or more\n"},
        {"draw sobol --n 4294967295 --skip 4294967295", "", "--skip: the "},
        {"draw uniform --brng MT", "", "no generator MT; there are"},
        {"draw uniform --brng MCG59:1", "", "MCG59:1: no such generator in this build\n"},
        {"draw uniform --brng MCG59:x", "", "'x' is not a member of MCG59\n"},
        {"draw uniform --brng MRG32KA", "", "no generator MRG32KA; did you mean MRG32K3A? There are"},
        {"draw uniform --n 0", "", "--n: '0' is not a whole number from 1 to 9,007,199,254,740,992\n"},
        {"draw uniform --n 1.5", "", "--n: '1.5' is not a whole number from 1 to"},
        {"draw uniform --bins 1e5", "", "--bins: '1e5' is not a whole number from 1 to 10,000\n"},
        {"draw uniform --from 1 --to 1", "", "--from must be below --to"},
        {"draw uniform --from nan", "", "--from must be below --to"},
        {"draw uniform --type i --to 0.5", "", "--from and --to must be 32-bit integers"},
        {"draw uniform --leapfrog 2/2", "", "--leapfrog: '2/2' is not K/N"},
        {"draw uniform --leapfrog 0/2 --brng MRG32K3A", "", "--leapfrog: the generator has no leapfrog\n"},
        {"draw uniform --skip -1", "", "--skip: '-1' is not a count\n"},
        {"draw uniform --load none", "", "none: cannot be opened\n"},
        {"draw uniform --load rubbish", "", "rubbish: not a saved stream of a known generator\n"},
        {"draw bits --width 64 --brng MRG32K3A", "", "draw: the generator does not have words of that width\n"},

        {"stats", "x,y\n1,2\n3,\n", "<stdin>:3: column y: missing value\n"},
        {"stats", "x,y\n1,2\n\nn/a,4\n", "<stdin>:4: column x: 'n/a' is not a number\n"},
        {"stats", "1,2\n1e999,4\n", "<stdin>:2: column 1: '1e999' is too large for the type\n"},
        {"stats --columns y,z", "x,y\n1,2\n", "<stdin>:1: no column z"},
        {"stats --weights w", "x,y\n1,2\n", "<stdin>:1: no column w"},
        {"stats --weights y", "x,y\n1,2\n1,-2\n", "<stdin>:3: a weight must be 0 or more\n"},
        {"stats --weights y", "x,y\n1,0\n", "<stdin>: the weights add up to 0\n"},
        {"stats --weights 1", "1\n", "<stdin>:1: no column left beside the weights\n"},
        {"stats", "x,y\n", "<stdin>: no rows of numbers\n"},
        {"stats --groups g", "x,y\n1,2\n", "<stdin>:1: no column g"},
        {"stats --partial x", "x,y\n1,2\n2,1\n", "--partial: 'x' is not A,B/C\n"},
        {"stats --partial x/z", "x,y\n1,2\n2,1\n", "--partial: no column z\n"},
        {"stats --partial x/y,x", "x,y\n1,2\n2,1\n", "--partial: column x stands on both sides\n"},
        {"stats --quantiles 2", "x\n1\n", ""},
        {"stats --quantiles 0.5,nan", "x\n1\n", "--quantiles: 'nan' is not a number\n"},
        {"stats --stream-quantiles nan", "x\n1\n", "--stream-quantiles: 'nan' is not a number\n"},
        {"stats --robust", "x\n1\n", "the covariance is not positive definite: too few rows"},
        {"sort", "x,y\n1,2\n", "<stdin>:1: several columns: --column says which\n"},
        {"sort --column z", "x,y\n1,2\n", "<stdin>:1: no column z"},
        {"stats", "", "<stdin>: no rows of numbers\n"},

        {"accuracy Nonsense", "", "no function of type d, Nonsense; "},
        {"accuracy Ceil --type c", "", "no function of type c, Ceil; "},
        {"accuracy Exp --range 1 1", "", "the range is empty\n"},

        // A place that cannot be written to is found before the work: here the input is not there either.
        {"math Abs none.csv --output no/place", "", "no/place: No such file or directory\n"},
        {"math Abs none.csv --output .", "", ".: "},
        {"stats none.csv --output no/place", "", "no/place: No such file or directory\n"},
        {"stats none.csv --plot no/place", "", "no/place: No such file or directory\n"},
        {"fit none.csv --x t --y v --output no/place", "", "no/place: No such file or directory\n"},
        {"fit none.csv --x t --y v --plot no/place", "", "no/place: No such file or directory\n"},
        {"draw uniform --load none --output no/place", "", "no/place: No such file or directory\n"},
        {"draw uniform --load none --plot no/place", "", "no/place: No such file or directory\n"},
        {"draw uniform --load none --save no/place", "", "no/place: No such file or directory\n"},
        {"accuracy Exp --range 1 1 --plot no/place", "", "no/place: No such file or directory\n"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(c.arguments, c.input);
        const std::string expected = "orv: " + std::string(c.message);
        EXPECT_EQ(outcome.err.substr(0, expected.size()), expected) << c.arguments;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << c.arguments << ": " << outcome.err;
        EXPECT_EQ(outcome.out, "") << c.arguments;
        EXPECT_EQ(outcome.status, 2) << c.arguments;
    }
}

TEST_F(Command, Draws) {
    if (std::system("gnuplot --version >version 2>&1") != 0) GTEST_SKIP() << "no gnuplot here";
    const char far[] = "x,y\n0,0.1\n1,1.2\n2,1.9\n3,3.1\n4,4.2\n5,4.8\n6,6.1\n7,7.2\n8,7.9\n9,9.1\n4,80\n";
    const struct {
        const char *arguments, *input;
        std::vector<const char*> parts;  // of the picture
    } cases[] = {
        {"fit --x t --y v --sites 2", parabola, {"natural spline", "data", "5 rows"}},
        {"fit --x t --y v --derivatives 2", parabola, {"first derivative", "second derivative", "v / t^2"}},
        {"fit --x 1 --y 2", "a%s\\n{x}_1,100%\n0,1\n1,2\n2,2\n", {"a%s\\n{x}_1", "100%"}},
        {"stats", "x,o'y\n1,2\n2,4\n3,9\n", {"o'y", "0.97", "Correlation"}},
        {"stats", "%d,%%s,{a}_b^c@&~\\t\n1,2,3\n2,4,1\n3,9,5\n", {">%d<", ">%%s<", "{a}_b^c@&amp;~\\t"}},
        {"stats", "a,b\n1,3\n1,4\n", {">1.00<"}},  // without a spread, nan
        {"stats --quantiles 0.05,0.9", "a%s,b\n1,3\n2,4\n7,3\n", {">a%s<", "order 0.05 to order 0.9,"}},
        {"stats --stream-quantiles 0.1", "a,b,c\n1,inf,1e308\n1,-inf,-1e308\n", {"nan", "from order 0.05 to"}},
        {"stats --quantiles 0.5", "a,z\n1000000000000000,0\n1000000000000000.25,0\n", {"1e+15", "-0.5"}},
        {"stats --outliers", far, {"outliers", "passed by one normal row in forty"}},
        {"stats --robust", far, {"robust", "mean and covariance"}},
        {"accuracy Exp --type s --points 3000", "", {"Exp in float", "argument", "error, ulp", "HA: 0.5"}},
        {"accuracy Ceil --points 100", "", {"Ceil in double", "EP: 0 ulp"}},
        {"accuracy Conj --type z --points 100", "", {"Conj in complex double", "imaginary part"}},
        {"accuracy Add --points 3000", "", {"Add in double", "first argument", "second argument", "LA: 0.5"}},
        {"draw uniform --n 100",
         "",
         {"100 uniform numbers from PHILOX4X32X10, seed 1", "count in a bin of width 0.05"}},
        {"draw beta --n 100", "", {"100 numbers, beta", "gnuplot_plot_2"}},
        {"draw sobol --n 300 --dimension 3", "", {"Sobol, 300 points", "PHILOX4X32X10, seed 1, 300 points"}},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(std::string(c.arguments) + " --plot picture\\'s.svg", c.input);
        EXPECT_EQ(outcome.err, "") << c.arguments;
        EXPECT_EQ(outcome.status, 0) << c.arguments;
        const std::string picture = get("picture's.svg");
        EXPECT_NE(picture.find("<svg"), std::string::npos) << c.arguments;
        for (const char* part : c.parts) EXPECT_NE(picture.find(part), std::string::npos) << c.arguments << part;
        // Each square of a matrix is a shape: a picture in the picture would be smoothed.
        EXPECT_EQ(picture.find("<image"), std::string::npos) << c.arguments;
    }
}

}  // namespace
