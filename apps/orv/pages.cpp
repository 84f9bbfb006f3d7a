#include "pages.h"

#include "functions.h"
#include "output.h"

#include <set>

namespace orv::command {

namespace {

// Text of a page: no line may begin with a dot, and what means something to the formatter is masked.
std::string masked(const std::string& text) {
    std::string page;
    for (const char letter : text) {
        if ((letter == '.' || letter == '\'') && (page.empty() || page.back() == '\n')) page += "\\&";
        if (letter == '\\')
            page += "\\e";
        else if (letter == '-')
            page += "\\-";
        else
            page += letter;
    }
    return page;
}

// "orv draw uniform" with `joint` between the words.
std::string full_name(const CLI::App& app, const std::string& joint) {
    return app.get_parent() ? full_name(*app.get_parent(), joint) + joint + app.get_name() : app.get_name();
}

std::vector<const CLI::Option*> visible_options(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
}

std::vector<const CLI::App*> subcommands_of(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* sub) { return !sub->get_name().empty(); });
}

std::string page_of(const CLI::App& app) {
    const std::string name = full_name(app, "-");
    std::string page = ".TH " + name + " 1 \"\" \"orv " ORV_VERSION "\"\n.SH NAME\n" + masked(name) + " \\- " +
                       masked(app.get_description()) + "\n.SH SYNOPSIS\n.B " + masked(full_name(app, " ")) + "\n";
    for (const CLI::Option* option : visible_options(app))
        if (option->get_positional()) page += ".I " + masked(option->get_name(true)) + "\n";
    page += subcommands_of(app).empty() ? "[options]\n" : "subcommand [options]\n";
    if (!app.get_footer().empty()) page += ".SH DESCRIPTION\n" + masked(app.get_footer()) + "\n";
    if (!subcommands_of(app).empty()) {
        page += ".SH SUBCOMMANDS\n";
        for (const CLI::App* sub : subcommands_of(app))
            page += ".TP\n.B " + masked(sub->get_name()) + "\n" + masked(sub->get_description()) + "; see " +
                    masked(full_name(*sub, "-")) + "(1)\n";
    }
    page += ".SH OPTIONS\n";
    for (const CLI::Option* option : visible_options(app)) {
        page += ".TP\n.B " + masked(option->get_name(option->get_positional()));
        if (option->get_type_size() != 0 && !option->get_positional()) page += " " + masked(option->get_type_name());
        page += "\n" + masked(option->get_description());
        if (!option->get_default_str().empty()) page += "; " + masked(option->get_default_str()) + " if not given";
        page += '\n';
    }
    return page;
}

std::set<std::string> function_names() {
    std::set<std::string> names;
    for (const Function& function : functions()) names.emplace(function.name);
    return names;
}

// A line of the completion's table for each subcommand: its path, a colon, and the words that may follow.
void append_words(std::string& table, const CLI::App& app) {
    table += "        '" + full_name(app, " ") + "') words='";
    for (const CLI::App* sub : subcommands_of(app)) table += sub->get_name() + " ";
    for (const CLI::Option* option : visible_options(app)) {
        for (const std::string& name : option->get_lnames()) table += "--" + name + " ";
        if (option->get_positional() && option->get_name(true) == "function")
            for (const std::string& name : function_names()) table += name + " ";
    }
    table += "' ;;\n";
    for (const CLI::App* sub : subcommands_of(app)) append_words(table, *sub);
}

std::string completion_of(const CLI::App& app) {
    std::string text =
        "# The completion of bash for orv: subcommands, options, and files where neither fits.\n"
        "_orv() {\n"
        "    local path=orv words= word\n"
        "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
        "        case \"$path $word\" in\n";
    std::string paths;
    const auto add_path = [&](const auto& self, const CLI::App& sub) -> void {
        paths += (paths.empty() ? "            '" : " | '") + full_name(sub, " ") + "'";
        for (const CLI::App* inner : subcommands_of(sub)) self(self, *inner);
    };
    for (const CLI::App* sub : subcommands_of(app)) add_path(add_path, *sub);
    text += paths + ") path=\"$path $word\" ;;\n        esac\n    done\n    case \"$path\" in\n";
    append_words(text, app);
    return text +
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\"))\n"
           "}\n"
           "complete -o default -F _orv orv\n";
}

void write_page(const CLI::App& app, const std::string& directory) {
    write_output(directory + "/" + full_name(app, "-") + ".1", page_of(app));
    for (const CLI::App* sub : subcommands_of(app)) write_page(*sub, directory);
}

}  // namespace

void write_pages(const CLI::App& app, const std::string& directory) {
    write_page(app, directory);
    write_output(directory + "/orv", completion_of(app));
}

}  // namespace orv::command
