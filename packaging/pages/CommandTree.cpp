#include "packaging/pages/CommandTree.hpp"

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>

namespace vigil {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

FooterNote footerOf(const std::string& text) {
    FooterNote footer;
    bool inExamples = false;
    for (const std::string& line : linesOf(text)) {
        if (line == "Examples:" || line == "Example:") {
            inExamples = true;
            continue;
        }
        const std::size_t begin = line.find_first_not_of(' ');
        if (begin == std::string::npos) continue;
        inExamples = inExamples && begin > 0;
        if (inExamples)
            footer.examples.push_back(line.substr(begin));
        else
            footer.remarks.push_back(line);
    }
    return footer;
}

/// What the parser says of a value: its name, and behind colons what its checks want.
ArgumentNote argumentOf(const CLI::Option& option, bool byPosition) {
    ArgumentNote argument;
    const std::string type = option.get_type_name();
    argument.name = byPosition ? option.get_name(true) : type.substr(0, type.find(':'));
    if (argument.name.empty()) argument.name = "VALUE";
    argument.repeats = byPosition && option.get_items_expected_max() > 1;
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}', open);
    if (open != std::string::npos && close != std::string::npos) {
        std::istringstream words(type.substr(open + 1, close - open - 1));
        for (std::string word; std::getline(words, word, ',');)
            argument.choices.push_back(word.substr(0, word.find("->")));
    }
    constexpr std::string_view kIn = " in [";
    const std::size_t range = type.find(kIn);
    const std::size_t dash = type.find(" - ", range);
    const std::size_t end = type.find(']', dash);
    if (range != std::string::npos && end != std::string::npos) {
        argument.least = type.substr(range + kIn.size(), dash - range - kIn.size());
        argument.most = type.substr(dash + 3, end - dash - 3);
    }
    return argument;
}

void addOptions(const CLI::App& app, CommandNote& command) {
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_group().empty()) continue;
        OptionNote note;
        note.description = option->get_description();
        note.required = option->get_required();
        for (const std::string& name : option->get_snames())
            note.names.push_back("-" + name);
        for (const std::string& name : option->get_lnames())
            note.names.push_back("--" + name);
        const bool byPosition = note.names.empty();
        // A group of options has a --help of its own, which is the command's.
        const bool isKnown =
            !byPosition && std::any_of(command.options.begin(), command.options.end(),
                                       [&](const OptionNote& known) { return known.names == note.names; });
        if (isKnown) continue;
        if (option->get_items_expected_max() > 0) note.argument = argumentOf(*option, byPosition);
        (byPosition ? command.positions : command.options).push_back(std::move(note));
    }
}

CommandNote noteOf(const CLI::App& app, const std::string& path) {
    CommandNote command;
    command.path = path;
    command.description = app.get_description();
    command.footer = footerOf(app.get_footer());
    command.needsCommand = app.get_require_subcommand_min() > 0;
    addOptions(app, command);
    for (const CLI::App* below : app.get_subcommands(nullptr)) {
        if (below->get_name().empty())
            addOptions(*below, command);  // a group of options is a nameless command to the parser
        else if (!below->get_group().empty())
            command.commands.push_back(noteOf(*below, path + " " + below->get_name()));
    }
    return command;
}

}  // namespace

CommandNote commandTree(const CLI::App& app) {
    return noteOf(app, app.get_name());
}

std::vector<const CommandNote*> allOf(const CommandNote& command) {
    std::vector<const CommandNote*> all{&command};
    for (const CommandNote& below : command.commands) {
        const auto more = allOf(below);
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

}  // namespace vigil
