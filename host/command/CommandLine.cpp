#include "host/command/CommandLine.hpp"

#include <algorithm>
#include <exception>

#include <CLI/CLI.hpp>

#include "host/command/CommandLine_Mistake.hpp"
#include "host/command/OpenWindow.hpp"

namespace vigil {
namespace {

const char* const kPurpose =
    "Vigil watches the readings of measuring stations: a monitor judges its condition on every\n"
    "batch of readings and acts when it holds.";

const char* const kFooter =
    "Exit status: 0 yes or done, 1 no or findings, 2 bad input, 3 the environment fails.\n"
    "`vigil COMMAND --help` tells more about a command and shows examples.";

void describe(CLI::App& app) {
    app.name("vigil");
    app.description(kPurpose);
    app.footer(kFooter);
    app.set_help_flag("-h,--help", "Print this help and end");
    app.set_version_flag("--version", std::string("vigil ") + versionText(), "Print the version and end");
    app.require_subcommand(0, 1);
    app.get_formatter()->column_width(28);
}

bool hasCommand(const CLI::App& app, const std::string& name) {
    return !app.get_subcommands([&](const CLI::App* command) { return command->check_name(name); }).empty();
}

/// What the program does when nothing was asked of it: the window beside it takes its place.
ExitStatus withoutCommand(const CLI::App& app, Output& output, const std::string& programFolder) {
    std::string text = openWindow(programFolder);
    const char* joined = "; try ";
    for (const char* name : {"demo", "run"}) {
        if (!hasCommand(app, name)) continue;
        text.append(joined).append("`vigil ").append(name).append("`");
        joined = " or ";
    }
    output.error(text + "; `vigil --help` lists all commands");
    return ExitStatus::Environment;
}

}  // namespace

const char* versionText() {
    return VIGIL_VERSION;
}

void describeCommands(CLI::App& app, const std::vector<AddCommand>& commands, CommandContext& context) {
    describe(app);
    for (const AddCommand add : commands)
        add(app, context);
}

ExitStatus runCommandLine(const std::vector<std::string>& arguments, const std::vector<AddCommand>& commands,
                          Output& output, const std::string& programFolder) {
    CLI::App app;
    CommandContext context{output, programFolder};
    try {
        describeCommands(app, commands, context);
        // The parser takes the arguments from the back.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        if (app.get_subcommands().empty()) context.status = withoutCommand(app, output, programFolder);
    } catch (const CLI::Success& asked) {
        output.write(asked.get_name() == "CallForVersion" ? std::string(asked.what()) + "\n" : app.help());
    } catch (const CLI::ParseError& mistake) {
        output.error(mistakeText(app, mistake));
        context.status = ExitStatus::BadInput;
    } catch (const std::exception& failure) {
        output.error(failure.what());
        context.status = ExitStatus::Environment;
    }
    if (!output.flush()) {
        output.error("the results could not be written");
        return ExitStatus::Environment;
    }
    return context.status;
}

}  // namespace vigil
