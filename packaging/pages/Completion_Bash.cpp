#include "packaging/pages/Completions.hpp"

// Tables of what each command takes, as case statements, and one function that walks the line by them. It
// needs nothing but bash itself.

namespace vigil {
namespace {

constexpr const char* kWalk = R"bash(
_vigil() {
    local word=${COMP_WORDS[COMP_CWORD]} place=vigil position=1 waits= commands= options= kind= seen i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        seen=${COMP_WORDS[i]}
        if [[ $seen == "=" ]]; then
            continue # --name=value comes in three words
        elif [[ -n $waits ]]; then
            waits=
        elif [[ $seen == -* ]]; then
            _vigil_value "$place" "$seen"
            [[ $kind == flag ]] || waits=$seen
        else
            _vigil_place "$place"
            if [[ " $commands " == *" $seen "* ]]; then
                place+=" $seen"
                position=1
            else
                ((++position))
            fi
        fi
    done
    [[ $word == "=" ]] && word=
    _vigil_place "$place"
    if [[ -n $waits ]]; then
        _vigil_value "$place" "$waits"
    elif [[ $word == -* ]]; then
        kind="words $options"
    elif [[ -n $commands ]]; then
        kind="words $commands"
    else
        _vigil_value "$place" "$position"
        # Nothing stands here by its position, so only an option can.
        [[ $kind == flag ]] && kind="words $options"
    fi
    case $kind in
        words*) mapfile -t COMPREPLY < <(compgen -W "${kind#words }" -- "$word") ;;
        file) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
        folder) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    esac
    if [[ $kind == file || $kind == folder ]]; then
        compopt -o filenames 2>/dev/null # it only works inside a completion
    fi
    return 0
}
complete -F _vigil vigil
)bash";

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

/// The words of a case in single quotes.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char character : text)
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return result + "'";
}

std::string kindOf(const ArgumentNote& argument) {
    if (argument.name.empty()) return "flag";
    if (!argument.choices.empty()) return quoted("words " + joined(argument.choices));
    return argument.isFile() ? "file" : argument.isFolder() ? "folder" : "text";
}

std::string placeCase(const CommandNote& command) {
    std::vector<std::string> commands, options;
    for (const CommandNote& below : command.commands)
        commands.push_back(below.name());
    for (const OptionNote& option : command.options)
        options.insert(options.end(), option.names.begin(), option.names.end());
    return "        " + quoted(command.path) + ")\n            commands=" + quoted(joined(commands)) +
           "\n            options=" + quoted(joined(options)) + "\n            ;;\n";
}

std::string valueCases(const CommandNote& command) {
    std::string cases;
    const auto add = [&](const std::string& pattern, const ArgumentNote& argument) {
        cases += "        " + pattern + ") kind=" + kindOf(argument) + " ;;\n";
    };
    for (const OptionNote& option : command.options)
        for (const std::string& name : option.names)
            if (!option.argument.name.empty()) add(quoted(command.path + " " + name), option.argument);
    std::size_t position = 0;
    for (const OptionNote& one : command.positions) {
        ++position;
        add(one.argument.repeats ? quoted(command.path + " ") + "[0-9]*"
                                 : quoted(command.path + " " + std::to_string(position)),
            one.argument);
    }
    return cases;
}

}  // namespace

std::string bashCompletion(const CommandNote& program) {
    std::string places, values;
    for (const CommandNote* command : allOf(program)) {
        places += placeCase(*command);
        values += valueCases(*command);
    }
    return "# Completions of vigil for bash, made from the program's own --help.\n\n"
           "# The commands and options that can follow a command.\n"
           "_vigil_place() {\n    commands= options=\n    case $1 in\n" +
           places +
           "    esac\n}\n\n"
           "# What follows an option of a command, or stands in a position: flag is nothing, text is "
           "anything.\n"
           "_vigil_value() {\n    case \"$1 $2\" in\n" +
           values + "        *) kind=flag ;;\n    esac\n}\n" + kWalk;
}

}  // namespace vigil
