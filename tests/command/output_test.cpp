// Files: whole or not at all, links, modes and devices, streams that are saved, tables larger than memory's share.
#include "command/command.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

TEST_F(Command, FilesComeWholeOrNotAtAll) {
    put("a.csv", "x\n1.5\n");
    put("b.csv", "x\n2.5\nbad\n");
    put("c.csv", "-1\n");
    put("y.csv.unfinished", "of a run that was ended");
    EXPECT_EQ(orv("math Ceil a.csv --output y.csv").status, 0);
    EXPECT_EQ(get("y.csv"), "x,Ceil\n1.5,2\n");
    const Outcome failed = orv("math Ceil a.csv b.csv --output y.csv");
    EXPECT_EQ(failed.err, "orv: b.csv:3: column x: 'bad' is not a number\n");
    EXPECT_EQ(get("y.csv"), "x,Ceil\n1.5,2\n");
    EXPECT_EQ(orv("math Ceil a.csv c.csv a.csv --output y.csv").status, 0);
    EXPECT_EQ(get("y.csv"), "x,Ceil\n1.5,2\n-1,-1\n1.5,2\n");
    // Input, output and the two listings of the fixture, and nothing unfinished of these runs.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 8);
}

#ifndef _WIN32
TEST_F(Command, WritesToWhatStandsThere) {
    namespace fs = std::filesystem;
    const std::string commands[] = {"math Abs a.csv --output ", "draw uniform --n 3 --output ", "stats a.csv --output ",
                                    "draw bits --n 1 --save "};
    put("a.csv", "x\n1\n-2\n");
    for (const std::string& command : commands) {
        SCOPED_TRACE(command);
        fs::remove_all("there");
        fs::create_directory("there");
        ASSERT_EQ(orv(command + "plain").status, 0);
        const std::string plain = get("plain");

        // Links are followed, also to nothing yet, and stay links; the mode stays.
        put("there/file", "old");
        fs::permissions("there/file", fs::perms(0640));
        fs::create_symlink("file", "there/inner");
        fs::create_symlink("there/inner", "outer");
        fs::create_symlink("new", "there/dangling");
        EXPECT_EQ(orv(command + "outer").status, 0);
        EXPECT_EQ(orv(command + "there/dangling").status, 0);
        EXPECT_TRUE(fs::is_symlink("outer") && fs::is_symlink("there/inner") && fs::is_symlink("there/dangling"));
        EXPECT_EQ(get("there/file"), plain);
        EXPECT_EQ(get("there/new"), plain);
        EXPECT_EQ(fs::status("there/file").permissions(), fs::perms(0640));
        fs::remove("outer");

        // Devices and pipes are written to, and stay.
        EXPECT_EQ(std::system("mkfifo there/pipe && { cat there/pipe >there/got & }"), 0);
        EXPECT_EQ(orv(command + "there/pipe").status, 0);
        EXPECT_EQ(std::system("while [ ! -s there/got ]; do sleep 0.01; done"), 0);
        EXPECT_EQ(get("there/got"), plain);
        EXPECT_TRUE(fs::is_fifo("there/pipe"));
        EXPECT_EQ(orv(command + "/dev/null").status, 0);
        EXPECT_TRUE(fs::is_character_file("/dev/null"));
        EXPECT_EQ(orv(command + "/dev/full").status, 2);
    }
}

TEST_F(Command, FullDevicesAreNoticed) {
    put("a.csv", "x\n1\n-2\n");
    for (const char* arguments : {"--help", "math --help", "info", "accuracy Exp --points 100", "math Abs a.csv",
                                  "stats a.csv", "draw uniform", "draw uniform --histogram"}) {
        const int ended = std::system(("'" ORV_COMMAND "' " + std::string(arguments) + " >/dev/full 2>err").c_str());
        EXPECT_EQ(WEXITSTATUS(ended), 2) << arguments;
        EXPECT_EQ(get("err"), "orv: standard output: No space left on device\n") << arguments;
    }
}
#endif

TEST_F(Command, SavedStreamsGoOn) {
    const std::string whole = orv("draw uniform --brng MRG32K3A --seed 5 --n 20").out;
    const std::string first = orv("draw uniform --brng MRG32K3A --seed 5 --n 8 --save s").out;
    EXPECT_EQ(first + orv("draw uniform --load s --n 12").out, whole);
    const std::string bits = "draw bits --brng MCG59 --seed 5 ";
    const std::string even = orv(bits + "--leapfrog 0/2 --n 2").out;
    const std::string odd = orv(bits + "--leapfrog 1/2 --n 2").out;
    EXPECT_EQ(orv(bits + "--skip 1 --leapfrog 0/2 --n 2").out, odd);
    EXPECT_NE(even, odd);
}

TEST_F(Command, NumbersToAFileAndHistogramToTheScreen) {
    const Outcome outcome = orv("draw uniform --n 5 --histogram --bins 2 --output numbers");
    EXPECT_EQ(get("numbers"), orv("draw uniform --n 5").out);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 2);
}

// Without a word about the generator, the first numbers look like all others, whatever the seed.
TEST_F(Command, DrawsSoundNumbersFromTheStart) {
    for (const char* seed : {"", " --seed 1", " --seed 2", " --seed 3", " --seed 0"}) {
        std::istringstream numbers(orv("draw uniform" + std::string(seed)).out);
        double x, least = 1, most = 0, sum = 0;
        int n = 0;
        for (; numbers >> x; ++n) {
            least = std::min(least, x);
            most = std::max(most, x);
            sum += x;
        }
        EXPECT_EQ(n, 10);
        EXPECT_GT(least, 0.001) << seed;
        EXPECT_LT(most, 0.999) << seed;
        EXPECT_NEAR(sum / n, 0.5, 3 * std::sqrt(1.0 / 12 / n)) << seed;
    }
}

// The address space is kept below what the table takes, the command's own share aside.
TEST_F(Command, TablesNeedNotFitInMemory) {
#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
    constexpr int rows = 1'200'000;
    {
        std::ofstream table("big.csv");
        for (int i = 0; i < rows; ++i) table << "-" << i << ".5,some words that nobody asked for\n";
    }
    const std::string limit = "ulimit -v 150000; OPENBLAS_NUM_THREADS=1 OMP_NUM_THREADS=1 '" ORV_COMMAND "' ";
    EXPECT_EQ(std::system((limit + "math Trunc --column 1 big.csv --output y.csv").c_str()), 0);
    EXPECT_EQ(std::system((limit + "draw uniform --n 9000000 --output numbers").c_str()), 0);
    std::ifstream y("y.csv");
    std::string line, last;
    int lines = 0;
    for (; std::getline(y, line); ++lines) last = line;
    EXPECT_EQ(lines, rows);
    EXPECT_EQ(last, "-1199999.5,-1199999");
    EXPECT_GT(std::filesystem::file_size("numbers"), 9000000u * 17);
    std::filesystem::remove("numbers");
#endif
}

}  // namespace
