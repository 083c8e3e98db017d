#include <algorithm>

#include "packaging/pages/Completions.hpp"

// A function a command, each a call of _arguments; a command with others below it hands over to theirs.

namespace vigil {
namespace {

std::string functionName(const CommandNote& command) {
    std::string name = "_" + command.path;
    std::replace(name.begin(), name.end(), ' ', '_');
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

/// In single quotes, with what means something inside a specification escaped.
std::string protectedText(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (std::string_view("[]:\\").find(character) != std::string_view::npos) result += '\\';
        result +=
            character == '\'' ? std::string("'\\''") : std::string(1, character == '\n' ? ' ' : character);
    }
    return result;
}

std::string actionOf(const ArgumentNote& argument) {
    std::string action = ":" + protectedText(argument.name) + ":";
    if (argument.isFile()) return action + "_files";
    if (argument.isFolder()) return action + "_files -/";
    if (argument.choices.empty()) return action;
    action += "(";
    for (const std::string& choice : argument.choices)
        action += (action.back() == '(' ? "" : " ") + protectedText(choice);
    return action + ")";
}

std::string specifications(const CommandNote& command) {
    std::string text;
    for (const OptionNote& option : command.options)
        for (const std::string& name : option.names) {
            const bool takes = !option.argument.name.empty();
            const char* const mark = !takes ? "" : name.starts_with("--") ? "=" : "+";
            text += " \\\n        '" + name + mark + "[" + protectedText(option.description) + "]" +
                    (takes ? actionOf(option.argument) : "") + "'";
        }
    for (std::size_t i = 0; i < command.positions.size(); ++i) {
        const OptionNote& position = command.positions[i];
        const std::string place = position.argument.repeats ? "*" : std::to_string(i + 1);
        text += " \\\n        '" + place + (position.required || place == "*" ? "" : ":") +
                actionOf(position.argument) + "'";
    }
    return text;
}

std::string functionOf(const CommandNote& command) {
    std::string text = functionName(command) + "() {\n";
    if (command.commands.empty()) return text + "    _arguments -s -S" + specifications(command) + "\n}\n\n";
    text += "    local curcontext=$curcontext state line\n    typeset -A opt_args\n    _arguments -C" +
            specifications(command) +
            " \\\n        '1: :->command' \\\n        '*:: :->rest' && return 0\n"
            "    case $state in\n        command)\n            local -a commands=(\n";
    for (const CommandNote& below : command.commands)
        text += "                '" + protectedText(below.name()) + ":" + protectedText(below.description) +
                "'\n";
    text +=
        "            )\n            _describe -t commands command commands\n            ;;\n"
        "        rest)\n            case $line[1] in\n";
    for (const CommandNote& below : command.commands)
        text += "                " + below.name() + ") " + functionName(below) + " ;;\n";
    return text + "            esac\n            ;;\n    esac\n}\n\n";
}

}  // namespace

std::string zshCompletion(const CommandNote& program) {
    std::string text =
        "#compdef vigil\n# Completions of vigil for zsh, made from the program's own --help.\n\n";
    for (const CommandNote* command : allOf(program))
        text += functionOf(*command);
    // Loaded by name this file is the function's body, sourced it only defines.
    return text +
           "if [[ $funcstack[1] == _vigil ]]; then\n    _vigil \"$@\"\nelse\n    compdef _vigil vigil\nfi\n";
}

}  // namespace vigil
