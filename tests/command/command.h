// Runs the command as its user would: arguments and input in; output, messages and exit status out.
#pragma once

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

struct Outcome {
    int status;
    std::string out, err;
};

// A directory of its own in the build tree for each test, since tests run side by side; the command runs in it.
class Command : public testing::Test {
protected:
    void SetUp() override {
        home = std::filesystem::current_path();
        const auto place =
            std::filesystem::path(ORV_SCRATCH) / testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(place);
        std::filesystem::create_directories(place);
        std::filesystem::current_path(place);
    }
    void TearDown() override { std::filesystem::current_path(home); }
    std::filesystem::path home;
};

inline void put(const char* file, std::string_view text) { std::ofstream(file, std::ios::binary) << text; }

// Text streams of Windows end lines with two characters.
inline std::string get(const char* file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    std::erase(text, '\r');
    return text;
}

inline Outcome orv(const std::string& arguments, std::string_view input = "") {
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
