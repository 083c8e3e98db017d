#include "host/command/CommandLine_Mistake.hpp"

#include <algorithm>

#include <CLI/CLI.hpp>

namespace vigil {
namespace {

/// Words longer than this are not compared: the work grows with the square of the length.
constexpr std::size_t kLongestComparedWord = 64;

std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        cost[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j)
        cost[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, changed});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}

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

std::string nearestWord(std::string_view word, const std::vector<std::string>& candidates) {
    if (word.size() > kLongestComparedWord) return {};
    std::string nearest;
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        if (candidate.size() > kLongestComparedWord) continue;
        const std::size_t away = distance(word, candidate);
        if (away >= least) continue;
        nearest = candidate;
        least = away;
    }
    return nearest;
}

std::string mistakeText(const CLI::App& app, const CLI::ParseError& mistake) {
    const CLI::App* command = deepest(&app);
    const auto left = app.remaining(true);
    std::string text = mistake.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&mistake) && !left.empty())
        text = unexpected(command, left.front());
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text + (text.back() == '?' ? " `" : "; `") + wholeName(command) + " --help` tells more";
}

}  // namespace vigil
