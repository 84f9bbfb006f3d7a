// The command as its user meets it: arguments and input in; output, messages and exit status out.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>
#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace {

struct Outcome {
    int status;
    std::string out, err;
};

// A directory of its own for each test, since tests run side by side; the command runs in it.
class Command : public testing::Test {
protected:
    void SetUp() override {
        home = std::filesystem::current_path();
        const auto place = home / "command_test" / testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(place);
        std::filesystem::create_directories(place);
        std::filesystem::current_path(place);
    }
    void TearDown() override { std::filesystem::current_path(home); }
    std::filesystem::path home;
};

void put(const char* file, std::string_view text) { std::ofstream(file, std::ios::binary) << text; }

// Text streams of Windows end lines with two characters.
std::string get(const char* file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    std::erase(text, '\r');
    return text;
}

Outcome orv(const std::string& arguments, std::string_view input = "") {
    put("in", input);
    const std::string rest = " " + arguments + " <in >out 2>err";
#ifdef _WIN32
    std::string path = "Z:" ORV_COMMAND;
    for (char& letter : path)
        if (letter == '/') letter = '\\';
    const int status = std::system(("\"\"" + path + "\"" + rest + "\"").c_str());
#else
    const int ended = std::system(("'" ORV_COMMAND "'" + rest).c_str());
    const int status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
#endif
    return {status, get("out"), get("err")};
}

TEST_F(Command, ComputesOverColumns) {
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
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(c.arguments, c.input);
        EXPECT_EQ(outcome.out, c.output) << c.arguments;
        EXPECT_EQ(outcome.err, "") << c.arguments;
        EXPECT_EQ(outcome.status, 0) << c.arguments;
    }
}

TEST_F(Command, RefusesInOneLine) {
    const struct {
        const char *arguments, *input, *message;
    } cases[] = {
        {"math Abs none.csv", "", "none.csv: No such file or directory"},
        {"math Abs --column z", "x,y\n1,2\n", "<stdin>:1: no column z"},
        {"math Abs --column 3", "1,2\n", "<stdin>:1: no column 3"},
        {"math Abs --column 0", "1,2\n", "<stdin>:1: no column 0"},
        {"math Abs", "1,2\n", "<stdin>:1: 2 columns where 1 is wanted; choose with --column"},
        {"math Add --column a", "a,b\n1,2\n", "<stdin>:1: 1 columns where 2 are wanted; choose with --column"},
        {"math Abs", "x\n1\ntwo\n", "<stdin>:3: 'two' is not a number"},
        {"math Abs", "1\n2x\n", "<stdin>:2: '2x' is not a number"},
        {"math Abs", "1\n0x1p3\n", "<stdin>:2: '0x1p3' is not a number"},
        {"math Abs", "1\n+-1\n", "<stdin>:2: '+-1' is not a number"},
        {"math Abs --column y", "x,y\n1,\n", "<stdin>:2: '' is not a number"},
        {"math Abs", "1e400\n", "<stdin>:1: '1e400' is too large for the type"},
        {"math Abs --type s", "x\n1\n1e39\n", "<stdin>:3: '1e39' is too large for the type"},
        {"math Add", "a,b\n1,2\n\n3\n", "<stdin>:4: 1 fields where the rows above have 2"},
        {"math Abs --column b", "\"a\nb\",b\n1,x\n", "<stdin>:3: 'x' is not a number"},
        {"math Abs", "x\n\"1\n2\n", "<stdin>:4: broken quoting"},
        {"math Nothing", "1\n", "no function Nothing of type d; `orv info` lists what is here"},
        {"math Conj", "1\n", "no function Conj of type d; `orv info` lists what is here"},
        {"math Abs --output no/such/place", "1\n", "no/such/place.unfinished: No such file or directory"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = orv(c.arguments, c.input);
        EXPECT_EQ(outcome.err, "orv: " + std::string(c.message) + "\n") << c.arguments;
        EXPECT_EQ(outcome.out, "") << c.arguments;
        EXPECT_EQ(outcome.status, 2) << c.arguments;
    }
    for (const char* arguments :
         {"", "nothing", "math", "math Abs --type x", "math Abs --accuracy best", "info more"}) {
        const Outcome outcome = orv(arguments);
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << arguments << ": " << outcome.err;
        EXPECT_EQ(outcome.err.substr(0, 5), "orv: ") << arguments;
        EXPECT_EQ(outcome.status, 2) << arguments;
    }
}

TEST_F(Command, FilesComeWholeOrNotAtAll) {
    put("a.csv", "x\n1.5\n");
    put("b.csv", "x\n2.5\nbad\n");
    put("c.csv", "-1\n");
    EXPECT_EQ(orv("math Ceil a.csv --output y.csv").status, 0);
    EXPECT_EQ(get("y.csv"), "x,Ceil\n1.5,2\n");
    const Outcome failed = orv("math Ceil a.csv b.csv --output y.csv");
    EXPECT_EQ(failed.err, "orv: b.csv:3: 'bad' is not a number\n");
    EXPECT_EQ(get("y.csv"), "x,Ceil\n1.5,2\n");
    EXPECT_EQ(orv("math Ceil a.csv c.csv a.csv --output y.csv").status, 0);
    EXPECT_EQ(get("y.csv"), "x,Ceil\n1.5,2\n-1,-1\n1.5,2\n");
    EXPECT_FALSE(std::filesystem::exists("y.csv.unfinished"));
}

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
        EXPECT_EQ(outcome.out.substr(0, 23), "tier         6 (SSE4.1)");
        EXPECT_NE(outcome.out.find(c.shown), std::string::npos) << outcome.out;
        EXPECT_NE(outcome.out.find("\nAbs          s d"), std::string::npos) << outcome.out;
    }
    set("");
}

}  // namespace
