// The command `orv`: a subcommand for each domain of the library.
#include "commands.h"
#include "failure.h"

#include <cstdio>

int main(int argc, char** argv) {
    int status = 0;
    CLI::App app("Numbers through the kernels of the orv library.", "orv");
    app.require_subcommand(1);
    orv::command::add_info(app, status);
    orv::command::add_math(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "orv: %s\n", error.what());
        return 2;
    } catch (const orv::command::Failure& failure) {
        std::fprintf(stderr, "orv: %s\n", failure.text.c_str());
        return 2;
    }
    return status;
}
