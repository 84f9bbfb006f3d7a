// `orv draw`: the numbers are the library's own, whole draws may be cut by saving and loading, and bad requests are told.
#include "command/command.h"

#include <algorithm>

namespace {

class Draw : public Command {};

TEST_F(Draw, PrintsTheLibrarysNumbers) {
    const struct {
        const char *arguments, *output;
    } cases[] = {
        {"bits --brng MCG31M1 --seed 1 --n 2", "1\n1132489760\n"},
        {"bits --n 2", "1\n302875106592253\n"},
        {"bits --n 1 --skip 1 --width 32", "2256595\n"},
        {"uniform --brng mrg32k3a --seed 12345,12345,12345,12345,12345,12345 --n 2 --type s",
         "0.12701112\n0.31852758\n"},
        {"uniform --type i --from 5 --to 6 --n 3", "5\n5\n5\n"},
        {"uniform --type i --from -1 --to 1 --n 1000 --histogram --bins 1 --seed 7",
         "          -1         1000 ##################################################\n"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(std::string("draw ") + c.arguments);
        EXPECT_EQ(outcome.out, c.output) << c.arguments;
        EXPECT_EQ(outcome.err, "") << c.arguments;
        EXPECT_EQ(outcome.status, 0) << c.arguments;
    }
}

TEST_F(Draw, SavedStreamsGoOn) {
    const std::string whole = orv("draw uniform --brng MRG32K3A --seed 5 --n 20").out;
    const std::string first = orv("draw uniform --brng MRG32K3A --seed 5 --n 8 --save s").out;
    EXPECT_EQ(first + orv("draw uniform --load s --n 12").out, whole);
    const std::string even = orv("draw bits --seed 5 --leapfrog 0/2 --n 2").out;
    const std::string odd = orv("draw bits --seed 5 --leapfrog 1/2 --n 2").out;
    const std::string after_one = orv("draw bits --seed 5 --skip 1 --leapfrog 0/2 --n 2").out;
    EXPECT_EQ(after_one, odd);
    EXPECT_NE(even, odd);
}

TEST_F(Draw, NumbersToAFileAndHistogramToTheScreen) {
    const Outcome outcome = orv("draw uniform --n 5 --histogram --bins 2 --output numbers");
    EXPECT_EQ(get("numbers"), orv("draw uniform --n 5").out);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 2);
}

TEST_F(Draw, RefusesInOneLine) {
    put("rubbish", "no stream at all, but long enough");
    const struct {
        const char *arguments, *message;
    } cases[] = {
        {"uniform --brng MT", "no generator MT; there are"},
        {"uniform --brng MCG59:1", "MCG59:1: no such generator in this build"},
        {"uniform --brng MCG59:x", "'x' is not a member of MCG59"},
        {"uniform --from 1 --to 1", "--from must be below --to"},
        {"uniform --from nan", "--from must be below --to"},
        {"uniform --type i --to 0.5", "--from and --to must be 32-bit integers"},
        {"uniform --leapfrog 2/2", "--leapfrog: '2/2' is not K/N"},
        {"uniform --leapfrog 0/2 --brng MRG32K3A", "--leapfrog: the generator has no leapfrog"},
        {"uniform --skip -1", "--skip: '-1' is not a count"},
        {"uniform --load none", "none: cannot be opened"},
        {"uniform --load rubbish", "rubbish: not a saved stream of a known generator"},
        {"uniform --save no/such/place --n 1 --output o", "no/such/place: cannot be opened"},
        {"bits --width 64 --brng MRG32K3A", "the generator does not have words of that width"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(std::string("draw ") + c.arguments);
        EXPECT_NE(outcome.err.find(c.message), std::string::npos) << c.arguments << ": " << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << c.arguments;
        EXPECT_EQ(outcome.status, 2) << c.arguments;
    }
}

}  // namespace
