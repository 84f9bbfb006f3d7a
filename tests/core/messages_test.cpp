// The messages: text, arguments of any length and size, and what happens to a number without a text.
#include <cfloat>
#include <gtest/gtest.h>
#include <orv/services.h>
#include <string>

namespace {

struct Printed {
    int32_t written;
    std::string text;
};

template <class... Arguments>
Printed print(int32_t code, Arguments... arguments) {
    testing::internal::CaptureStderr();
    const int32_t written = orv_serv_print(1, code, static_cast<int32_t>(sizeof...(arguments)), arguments...);
    Printed printed{written, testing::internal::GetCapturedStderr()};
    // Text streams of Windows end lines with two characters.
    if (const size_t end = printed.text.find('\r'); end != std::string::npos) printed.text.erase(end, 1);
    return printed;
}

TEST(Messages, StatusTexts) {
    const struct {
        int32_t code;
        const char* text;
    } cases[] = {
        {749, "orv: vdLn: a pointer is not valid\n"},
        {750, "orv: vdLn: an argument is outside the domain\n"},
        {751, "orv: vdLn: an argument is at a singularity\n"},
        {752, "orv: vdLn: a result overflows\n"},
        {753, "orv: vdLn: a result underflows\n"},
        {754, "orv: vdLn: an element could not be computed\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(print(c.code, "vdLn").text, c.text);
    EXPECT_EQ(print(748, "vdLn", 2).text, "orv: vdLn: argument 2 is not valid\n");
    EXPECT_EQ(print(773).text, "orv: no memory or no thread slot for a thread's state\n");
}

TEST(Messages, ValueTexts) {
    const struct {
        int32_t code;
        const char* text;
    } cases[] = {
        {755, "argument"},       {756, "result"},          {757, "argument"},        {758, "first result"},
        {759, "second result"},  {760, "first argument"},  {761, "second argument"}, {762, "result"},
        {763, "first argument"}, {764, "second argument"}, {765, "first result"},    {766, "second result"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(print(c.code, 70000, -0.1).text,
                  "orv:   element 70000: " + std::string(c.text) + " -0.10000000000000001\n");
}

TEST(Messages, LongArgumentsAreCutAtTheLine) {
    const std::string name(64, 'n');
    EXPECT_EQ(print(748, name.c_str(), INT32_MIN).text, "orv: " + name + ": argument -2147483648 is not valid\n");
    EXPECT_EQ(print(759, INT32_MIN, -DBL_MAX).text,
              "orv:   element -2147483648: second result -1.7976931348623157e+308\n");
    const Printed cut = print(750, std::string(5000, 'x').c_str());
    EXPECT_EQ(cut.text.size(), 255u);
    EXPECT_EQ(cut.written, 255);
    EXPECT_EQ(cut.text.back(), '\n');
}

TEST(Messages, UnknownNumberOrWrongCount) {
    EXPECT_EQ(print(1234).text, "orv: message 1234\n");
    EXPECT_EQ(print(750).text, "orv: message 750\n");
    EXPECT_EQ(print(755, 1).text, "orv: message 755\n");
}

}  // namespace
