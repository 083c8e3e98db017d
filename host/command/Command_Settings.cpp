#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/SettingsChoice.hpp"
#include "host/command/SettingsLines.hpp"
#include "host/run/Secrets.hpp"

namespace vigil {
namespace {

struct SettingsOptions {
    std::string file;
    bool json = false;
};

void fail(CommandContext& context, ExitStatus status, const std::string& why) {
    context.output.error(why);
    context.status = status;
}

/// A secret that is named has to be there; the settings themselves cannot know.
void checkSecret(SettingsReading& reading) {
    const std::string& name = reading.settings.mail.secret;
    const auto place = reading.places.find("mail.secret");
    if (name.empty() || place == reading.places.end()) return;
    const std::string file = Secrets::defaultFile();
    const auto secret = Secrets(file).named(name);
    if (!secret)
        reading.problems.push_back({place->second, "mail.secret: " + secret.error().message});
    else if (!secret.value())
        reading.problems.push_back(
            {place->second, "mail.secret: " + file + " has no line \"" + name + " = …\""});
}

void check(const SettingsOptions& options, CommandContext& context) {
    const std::string file = options.file.empty() ? defaultSettingsFile() : options.file;
    auto read = readSettings(file);
    if (!read) return fail(context, ExitStatus::Environment, read.error().message);
    SettingsReading& reading = read.value();
    if (!reading.isThere && !options.file.empty())
        return fail(context, ExitStatus::BadInput, "there is no file " + file);
    checkSecret(reading);
    for (const SettingsProblem& problem : reading.problems)
        context.output.write(options.json ? problemJsonLine(file, problem)
                                          : problemText(file, problem) + "\n");
    if (!reading.problems.empty()) {
        context.status = ExitStatus::No;
    } else if (!options.json) {
        if (reading.isThere)
            context.output.print("{} is right; keys that it sets: {}.\n", file, reading.places.size());
        else
            context.output.print("There is no {}, so every setting has its default.\n", file);
    }
}

void show(const SettingsOptions& options, CommandContext& context) {
    const std::string file = defaultSettingsFile();
    const auto reading = readSettings(file);
    if (!reading) return fail(context, ExitStatus::Environment, reading.error().message);
    if (!isRight(file, reading.value(), context)) return;
    context.output.write(options.json ? settingsJsonLines(reading.value())
                                      : settingsTableLines(file, reading.value()));
}

}  // namespace

void addSettingsCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<SettingsOptions>();
    auto* settings = app.add_subcommand("settings", "What is set on this machine: sound, mail, the service");
    settings->require_subcommand(1);
    settings->footer("The settings are the file " + defaultSettingsFile() +
                     "; docs/settings.md tells\n"
                     "every key.\n"
                     "Examples:\n"
                     "  vigil settings check\n"
                     "  vigil settings show");
    auto* showing = settings->add_subcommand("show", "What holds now, and whether the file says so");
    showing->add_flag("--json", options->json, "One JSON object a key");
    showing->footer("Examples:\n  vigil settings show\n  vigil settings show --json | grep mail");
    showing->callback([options, &context] { show(*options, context); });
    auto* checking = settings->add_subcommand("check", "Is the file right? Status 1 where it is not");
    checking->add_option("FILE", options->file, "Another file in place of your own");
    checking->add_flag("--json", options->json, "One JSON object a mistake");
    checking->footer(
        "Each mistake with its line and column. Whether a secret that is named is there is looked up in\n" +
        Secrets::defaultFile() +
        ".\n"
        "Exit status: 0 nothing is wrong, 1 something is, 2 there is no FILE, 3 it cannot be read.\n"
        "Examples:\n  vigil settings check\n  vigil settings check examples/vigil.toml");
    checking->callback([options, &context] { check(*options, context); });
}

}  // namespace vigil
