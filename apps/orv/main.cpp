// The command `orv`: a subcommand for each domain of the library.
#include "commands.h"
#include "failure.h"
#include "names.h"
#include "output.h"
#include "pages.h"

#include <cstdio>
#include <sstream>

namespace {

using namespace orv::command;

// The words up to the first option must be subcommands where there are any; the parser's own message would not say which.
void expect_subcommands(const CLI::App& app, int argc, char** argv) {
    const CLI::App* at = &app;
    for (int i = 1; i < argc && argv[i][0] != '-'; ++i) {
        std::vector<std::string> names;
        const CLI::App* next = nullptr;
        for (const CLI::App* sub : at->get_subcommands([](const CLI::App*) { return true; })) {
            names.push_back(sub->get_name());
            if (sub->get_name() == argv[i]) next = sub;
        }
        if (names.empty()) return;
        if (!next) fail(no_such(at == &app ? "subcommand" : at->get_name() + " of", argv[i], names));
        at = next;
    }
}

int run(int argc, char** argv) {
    int status = 0;
    CLI::App app("Numbers through the kernels of the orv library.", "orv");
    app.require_subcommand(1);
    app.set_version_flag("--version", "orv " ORV_VERSION, "print the version");
    std::string directory;
    app.add_option("--write-pages", directory)->group("");
    add_accuracy(app, status);
    add_bench(app, status);
    add_fit(app, status);
    add_info(app, status);
    add_math(app, status);
    add_draw(app, status);
    add_sort(app, status);
    add_stats(app, status);
    expect_subcommands(app, argc, argv);
    if (argc == 3 && std::string_view(argv[1]) == "--write-pages") {
        write_pages(app, argv[2]);
        return 0;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        std::ostringstream text;
        app.exit(help, text, text);
        write_output("", text.str());
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
    } catch (const Failure& failure) {
        return refuse(failure.text.c_str());
    } catch (const std::exception& error) {
        return refuse(error.what());
    }
}
