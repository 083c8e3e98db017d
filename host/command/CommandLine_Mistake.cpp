#include "host/command/CommandLine_Mistake.hpp"

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/words/NearestWord.hpp"

namespace vigil {
namespace {

/// The command that was understood last: "vigil site" of `vigil site creat`.
const CLI::App* deepest(const CLI::App* app) {
    while (!app->get_subcommands().empty())
        app = app->get_subcommands().front();
    return app;
}

std::string wholeName(const CLI::App* app) {
    return app->get_parent() ? wholeName(app->get_parent()) + " " + app->get_name() : app->get_name();
}

std::vector<std::string> commandNames(const CLI::App* app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app->get_subcommands(nullptr))
        if (!command->get_name().empty()) names.push_back(command->get_name());
    return names;
}

std::vector<std::string> optionNames(const CLI::App* app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app->get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

std::string quoted(const std::string& word) {
    return "\"" + word + "\"";
}

std::string unexpected(const CLI::App* command, const std::string& word) {
    const bool isOption = word.size() > 1 && word.front() == '-';
    const bool takesCommand = !isOption && !commandNames(command).empty();
    const std::string near =
        nearestWord(word.substr(0, word.find('=')), isOption ? optionNames(command) : commandNames(command));
    std::string text = takesCommand ? quoted(wholeName(command)) + " has no command " + quoted(word)
                       : isOption   ? quoted(wholeName(command)) + " has no option " + quoted(word)
                                    : quoted(word) + " is one argument too many";
    if (!near.empty()) text += "; did you mean " + quoted(near) + "?";
    return text;
}

}  // namespace

std::string mistakeText(const CLI::App& app, const CLI::ParseError& mistake) {
    const CLI::App* command = deepest(&app);
    const auto left = app.remaining(true);
    std::string text = mistake.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&mistake) && !left.empty())
        text = unexpected(command, left.front());
    // "a command is missing" hides that a word stands where it would be
    if (dynamic_cast<const CLI::RequiredError*>(&mistake) && !left.empty() && !commandNames(command).empty())
        text = unexpected(command, left.front());
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text + (text.back() == '?' ? " `" : "; `") + wholeName(command) + " --help` tells more";
}

}  // namespace vigil
