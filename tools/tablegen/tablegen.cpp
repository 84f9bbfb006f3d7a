// Writes every numeric table that follows from a rule, to the last bit the same on every machine.
#include "tablegen.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>

namespace tablegen {

namespace {

// A row of one value stands bare, a longer one in braces.
template <class Values>
void append(std::string& text, const char* format, const Values& values) {
    if (values.size() > 1) text += "{";
    const char* separator = "";
    for (const auto value : values) {
        char digits[64];
        std::snprintf(digits, sizeof digits, format, value);
        text += separator;
        text += digits;
        separator = ", ";
    }
    text += values.size() > 1 ? "},\n" : ",\n";
}

}  // namespace

Table::Table(const Output& output, const std::string& name, const std::string& rule)
    : path(output.directory + "/" + name + ".inc"), text("// " + rule + "\n") {}

Table::~Table() {
    std::ofstream file(path);
    file << text;
    file.close();
    if (file.good()) return;
    std::cerr << "tablegen: cannot write " << path << "\n";
    std::exit(1);
}

void Table::row(const std::vector<double>& values) { append(text, "%a", values); }
void Table::row_of_words(std::initializer_list<uint64_t> values) { append(text, "0x%016llx", values); }
void Table::row_of_floats(std::initializer_list<float> values) { append(text, "%af", values); }

std::pair<double, double> Table::split(const Real& x) {
    const double high = to_double(x);
    return {high, to_double(x - Real(high))};
}

}  // namespace tablegen

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: tablegen DIRECTORY\n";
        return 2;
    }
    const tablegen::Output output{argv[1]};
    tablegen::exp_log_tables(output);
    tablegen::roots_tables(output);
    tablegen::inverse_tables(output);
    tablegen::power_tables(output);
    tablegen::special_tables(output);
    tablegen::trig_tables(output);
    return 0;
}
