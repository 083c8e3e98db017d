#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "host/command/Commands.hpp"
#include "host/command/JsonText.hpp"
#include "host/command/Printable.hpp"
#include "host/command/SettingsChoice.hpp"
#include "host/command/TestServices.hpp"

namespace vigil {
namespace {

struct TestOptions {
    std::string what;
    bool json = false;
};

using Test = TestReport (*)(const Settings& settings, const std::string& programFolder,
                            const std::string& what);

std::string jsonLine(const char* name, const TestReport& report) {
    std::string line = fmt::format("{{\"test\":\"{}\",\"done\":{}", name, report.status == ExitStatus::Yes);
    for (const auto& [fact, text] : report.facts) {
        line += ",\"" + fact + "\":";
        appendJsonText(line, text);
    }
    line += fmt::format(",\"seconds\":{:.3f},\"says\":", report.seconds);
    appendJsonText(line, report.says);
    return line + "}\n";
}

void tell(const char* name, const TestReport& report, bool json, CommandContext& context) {
    context.status = report.status;
    if (report.status == ExitStatus::BadInput) return context.output.error(report.says);
    if (json) return context.output.write(jsonLine(name, report));
    for (const auto& [fact, text] : report.facts)
        context.output.print("{:<8}{}\n", fact, printable(text));
    if (!report.facts.empty()) context.output.print("{:<8}{:.1f} s\n", "took", report.seconds);
    context.output.print("{}\n", report.says);
}

}  // namespace

void addTestCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<TestOptions>();
    auto* command =
        app.add_subcommand("test", "Try what monitors send and say, and tell what really happened");
    command->require_subcommand(1);
    command->footer(
        "By the settings that hold (`vigil settings show`). Status 0 only when it really did; 1 when it did "
        "not.\n"
        "Examples:\n"
        "  vigil test sound\n"
        "  vigil test speech 'It is getting cold.'\n"
        "  vigil test mail ann@example.org\n"
        "  vigil test sms +4915100000000");
    const auto add = [&](const char* name, const char* purpose, Test test) {
        auto* one = command->add_subcommand(name, purpose);
        one->add_flag("--json", options->json, "One JSON object");
        one->callback([options, name, test, &context] {
            const auto settings = settingsOf(context);
            if (settings)
                tell(name, test(*settings, context.programFolder, options->what), options->json, context);
        });
        return one;
    };
    add("sound", "Play a sound", testSound)
        ->add_option("FILE", options->what, "wav, mp3, ogg or flac; without it a sound of the monitor's own");
    add("speech", "Speak", testSpeech)->add_option("TEXT", options->what, "What to say, as one argument");
    add("mail", "Send a mail", testMail)
        ->add_option("ADDRESS", options->what, "To whom, as in ann@example.org")
        ->required();
    add("sms", "Send a short message", testSms)
        ->add_option("NUMBER", options->what, "To whom: digits, with or without a + in front")
        ->required();
}

}  // namespace vigil
