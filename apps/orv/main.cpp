// The command `orv`: a subcommand for each domain of the library.
#include "commands.h"
#include "failure.h"
#include "output.h"

#include <cstdio>
#include <sstream>

namespace {

int run(int argc, char** argv) {
    int status = 0;
    CLI::App app("Numbers through the kernels of the orv library.", "orv");
    app.require_subcommand(1);
    orv::command::add_accuracy(app, status);
    orv::command::add_fit(app, status);
    orv::command::add_info(app, status);
    orv::command::add_math(app, status);
    orv::command::add_draw(app, status);
    orv::command::add_stats(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        std::ostringstream text;
        app.exit(help, text, text);
        orv::command::write_output("", text.str());
    }
    return status;
}

int refuse(const char* text) {
    std::fprintf(stderr, "orv: %s\n", text);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const orv::command::Failure& failure) {
        return refuse(failure.text.c_str());
    } catch (const std::exception& error) {
        return refuse(error.what());
    }
}
