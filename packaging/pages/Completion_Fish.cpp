#include "packaging/pages/Completions.hpp"

// One function that knows where in the tree of commands the line is, and one `complete` for each thing that
// can stand there.

namespace vigil {
namespace {

constexpr const char* kWalk = R"fish(
# __vigil_at PLACE [POSITION]: whether the line has come to that command, and to that argument of it
function __vigil_at
    set -l words (commandline -opc)
    set -l place vigil
    set -l position 1
    set -l waits no
    for word in $words[2..-1]
        if test $waits = yes
            set waits no
        else if __vigil_takes "$place $word"
            set waits yes
        else if string match -q -- '-*' $word
            continue
        else if __vigil_knows "$place $word"
            set place "$place $word"
            set position 1
        else
            set position (math $position + 1)
        end
    end
    test $place = $argv[1]; or return 1
    test (count $argv) -lt 2; or test $position -eq $argv[2]; or test $argv[2] = any
end

complete -c vigil -f
)fish";

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char character : text) {
        if (character == '\'' || character == '\\') result += '\\';
        result += character == '\n' ? ' ' : character;
    }
    return result + "'";
}

/// A function that answers whether its argument is one of the words.
std::string membership(const std::string& name, const std::string& purpose,
                       const std::vector<std::string>& words) {
    std::string text = "# " + purpose + "\nfunction " + name + "\n    contains -- $argv[1]";
    for (const std::string& word : words)
        text += " \\\n        " + quoted(word);
    return text + "\nend\n\n";
}

std::string valueFlags(const ArgumentNote& argument) {
    if (argument.name.empty()) return {};
    if (argument.isFile()) return " -r -F";
    if (argument.isFolder()) return " -x -a '(__fish_complete_directories)'";
    std::string choices;
    for (const std::string& choice : argument.choices)
        choices += (choices.empty() ? "" : " ") + choice;
    return choices.empty() ? " -x" : " -x -a " + quoted(choices);
}

std::string optionLine(const CommandNote& command, const OptionNote& option) {
    std::string line = "complete -c vigil -n \"__vigil_at " + quoted(command.path) + "\"";
    for (const std::string& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    return line + valueFlags(option.argument) + " -d " + quoted(option.description) + "\n";
}

std::string positionLine(const CommandNote& command, std::size_t position, const ArgumentNote& argument) {
    const std::string place = argument.repeats ? "any" : std::to_string(position);
    const std::string begin =
        "complete -c vigil -n \"__vigil_at " + quoted(command.path) + " " + place + "\"";
    if (argument.isFile()) return begin + " -F\n";
    if (argument.isFolder()) return begin + " -a '(__fish_complete_directories)'\n";
    std::string lines;
    for (const std::string& choice : argument.choices)
        lines += begin + " -a " + quoted(choice) + "\n";
    return lines;
}

std::string linesOf(const CommandNote& command) {
    std::string text;
    for (const CommandNote& below : command.commands)
        text += "complete -c vigil -n \"__vigil_at " + quoted(command.path) + "\" -a " + below.name() +
                " -d " + quoted(below.description) + "\n";
    for (const OptionNote& option : command.options)
        text += optionLine(command, option);
    for (std::size_t i = 0; i < command.positions.size(); ++i)
        text += positionLine(command, i + 1, command.positions[i].argument);
    return text;
}

}  // namespace

std::string fishCompletion(const CommandNote& program) {
    std::vector<std::string> places, taking;
    std::string lines;
    for (const CommandNote* command : allOf(program)) {
        places.push_back(command->path);
        for (const OptionNote& option : command->options)
            for (const std::string& name : option.names)
                if (!option.argument.name.empty()) taking.push_back(command->path + " " + name);
        lines += linesOf(*command);
    }
    return "# Completions of vigil for fish, made from the program's own --help.\n\n" +
           membership("__vigil_knows", "Every command, by its whole path.", places) +
           membership("__vigil_takes", "Every option that takes the word behind it.", taking) + (kWalk + 1) +
           lines;
}

}  // namespace vigil
