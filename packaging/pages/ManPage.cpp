#include "packaging/pages/ManPage.hpp"

#include <algorithm>
#include <cctype>

#include "packaging/pages/Roff.hpp"

namespace vigil {
namespace {

constexpr std::string_view kStatus = "Exit status:";

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    return text;
}

std::string bold(const std::string& text) {
    return "\\fB" + roffTyped(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + roffTyped(text) + "\\fR";
}

std::string sentence(std::string text) {
    if (!text.empty() && std::string_view(".?!:").find(text.back()) == std::string_view::npos) text += '.';
    return text;
}

std::string heading(const CommandNote& command, const PageEdges& edges) {
    return ".TH " + upper(pageName(command)) + " 1 " + edges.date + " \"Vigil " + edges.version +
           "\" \"Vigil\"\n";
}

/// The first clause of the description, which `apropos` lists.
std::string nameLine(const CommandNote& command) {
    std::string clause = command.description;
    clause = clause.substr(0, clause.find(": "));
    while (!clause.empty() && clause.back() == '.')
        clause.pop_back();
    std::replace(clause.begin(), clause.end(), '\n', ' ');
    return ".SH NAME\n" + pageName(command) + " \\- " + roffTyped(clause) + "\n";
}

std::string usage(const CommandNote& command) {
    std::string line = bold(command.path);
    if (!command.commands.empty())
        return line + " " + (command.needsCommand ? "" : "[") + "\\fICOMMAND\\fR ..." +
               (command.needsCommand ? "" : "]") + "\n";
    for (const OptionNote& option : command.options)
        if (option.required) {
            line += " " + bold(option.names.back());
            if (!option.argument.name.empty()) line += " " + italic(option.argument.name);
        }
    line += " [\\fIOPTION\\fR ...]";
    for (const OptionNote& position : command.positions) {
        const std::string name = italic(position.argument.name) + (position.argument.repeats ? " ..." : "");
        line += position.required ? " " + name : " [" + name + "]";
    }
    return line + "\n";
}

/// Running lines as one paragraph, indented ones as they are.
std::string paragraphs(const std::vector<std::string>& lines) {
    std::string text;
    bool kept = false;
    for (const std::string& line : lines) {
        const bool keep = line.front() == ' ';
        if (keep && !kept) text += ".PP\n.EX\n";
        if (!keep && (kept || text.empty())) text += kept ? ".EE\n.PP\n" : ".PP\n";
        text += (keep ? roffTyped(line) : roffText(line)) + "\n";
        kept = keep;
    }
    return kept ? text + ".EE\n" : text;
}

/// What the checks of a value want, as a sentence behind another.
std::string argumentText(const ArgumentNote& argument) {
    std::string text;
    if (!argument.choices.empty()) {
        for (const std::string& choice : argument.choices)
            text += (text.empty() ? " One of `" : ", `") + choice + "`";
        return text + ".";
    }
    return argument.least.empty() ? text : " From " + argument.least + " to " + argument.most + ".";
}

std::string optionText(const OptionNote& option) {
    std::string text = ".TP\n";
    for (const std::string& name : option.names)
        text += (name == option.names.front() ? "" : ", ") + bold(name);
    if (!option.argument.name.empty())
        text += (option.names.empty() ? "" : " ") + italic(option.argument.name);
    if (option.argument.repeats) text += " ...";
    // An empty line would end the paragraph.
    const std::string says = roffText(sentence(option.description) + argumentText(option.argument));
    return text + "\n" + (says.empty() ? "\\&" : says) + "\n";
}

std::string optionsText(const CommandNote& command) {
    std::string text;
    for (const OptionNote& position : command.positions)
        text += optionText(position);
    for (const OptionNote& option : command.options)
        text += optionText(option);
    return text;
}

std::string examplesText(const std::vector<const CommandNote*>& commands) {
    std::string text;
    for (const CommandNote* command : commands)
        for (const std::string& example : command->footer.examples)
            text += roffTyped(example) + "\n";
    return text.empty() ? text : ".SH EXAMPLES\n.EX\n" + text + ".EE\n";
}

/// What every command ends with is said by the program's own footer.
std::string statusText(const CommandNote& program) {
    for (const std::string& line : program.footer.remarks)
        if (line.starts_with(kStatus))
            return ".SH \"EXIT STATUS\"\n" +
                   roffText(line.substr(line.find_first_not_of(' ', kStatus.size()))) + "\n";
    return {};
}

std::string remarksText(const CommandNote& command, bool withStatus) {
    std::vector<std::string> lines = command.footer.remarks;
    if (!withStatus) std::erase_if(lines, [](const std::string& line) { return line.starts_with(kStatus); });
    return paragraphs(lines);
}

std::string descriptionText(const CommandNote& command) {
    return roffText(sentence(command.description)) + "\n";
}

std::string alsoText(const CommandNote& page, const CommandNote& program) {
    std::vector<std::string> names{pageName(program)};
    for (const CommandNote& command : program.commands)
        names.push_back(pageName(command));
    std::erase(names, pageName(page));
    std::string text = ".SH \"SEE ALSO\"\n";
    for (const std::string& name : names)
        text += ".BR " + roffTyped(name) + " (1)" + (name == names.back() ? "" : ",") + "\n";
    return text;
}

}  // namespace

std::string pageName(const CommandNote& command) {
    std::string name = command.path;
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

std::string programPage(const CommandNote& program, const PageEdges& edges) {
    std::string page = heading(program, edges) + nameLine(program) + ".SH SYNOPSIS\n" + usage(program);
    page += ".SH DESCRIPTION\n" + descriptionText(program) + remarksText(program, /*withStatus=*/false);
    page += ".SH COMMANDS\n";
    for (const CommandNote& command : program.commands)
        page += ".TP\n.BR " + roffTyped(pageName(command)) + " (1)\n" + descriptionText(command);
    page += ".SH OPTIONS\n" + optionsText(program) + examplesText({&program}) + statusText(program);
    return page + alsoText(program, program);
}

std::string commandPage(const CommandNote& command, const CommandNote& program, const PageEdges& edges) {
    std::string page = heading(command, edges) + nameLine(command) + ".SH SYNOPSIS\n";
    const auto all = allOf(command);
    for (const CommandNote* one : all)
        if (one->commands.empty()) page += (page.ends_with("SYNOPSIS\n") ? "" : ".br\n") + usage(*one);
    page += ".SH DESCRIPTION\n" + descriptionText(command) + remarksText(command, /*withStatus=*/true);
    page += ".SH OPTIONS\n" + optionsText(command);
    if (all.size() > 1) page += ".SH COMMANDS\n";
    for (const CommandNote* below : all) {
        if (below == &command) continue;
        page += ".SS \"" + roffTyped(below->path) + "\"\n" + descriptionText(*below);
        page += remarksText(*below, /*withStatus=*/true) + optionsText(*below);
    }
    return page + examplesText(all) + statusText(program) + alsoText(command, program);
}

}  // namespace vigil
