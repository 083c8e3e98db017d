#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/JsonText.hpp"
#include "host/kit/Conformance.hpp"

namespace vigil {
namespace {

using Outcome = ConformanceFinding::Outcome;

const char* outcomeWord(Outcome outcome) {
    switch (outcome) {
        case Outcome::Kept:
            return "kept";
        case Outcome::Broken:
            return "BROKEN";
        case Outcome::NotApplicable:
            break;
    }
    return "-";
}

std::string jsonLine(const ConformanceFinding& finding) {
    std::string line = "{\"subject\":";
    appendJsonText(line, finding.subject);
    appendJsonText(line += ",\"rule\":", finding.rule);
    line += finding.outcome == Outcome::Kept     ? ",\"kept\":true"
            : finding.outcome == Outcome::Broken ? ",\"kept\":false"
                                                 : ",\"kept\":null";
    if (!finding.reason.empty()) appendJsonText(line += ",\"reason\":", finding.reason);
    return line + "}\n";
}

void check(const std::string& folder, bool json, CommandContext& context) {
    std::size_t broken = 0;
    std::string subject;
    for (const ConformanceFinding& finding : checkModule(folder)) {
        broken += finding.outcome == Outcome::Broken ? 1 : 0;
        if (json) {
            context.output.write(jsonLine(finding));
            continue;
        }
        if (finding.subject != subject) context.output.print("{}\n", finding.subject);
        subject = finding.subject;
        const std::string reason = finding.reason.empty() ? "" : " (" + finding.reason + ")";
        context.output.print("  {:<7} {}{}\n", outcomeWord(finding.outcome), finding.rule, reason);
    }
    if (broken > 0) context.status = ExitStatus::No;
}

struct PluginOptions {
    std::string folder;
    bool json = false;
};

}  // namespace

void addPluginCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<PluginOptions>();
    auto* plugin = app.add_subcommand("plugin", "Look at plug-ins");
    plugin->require_subcommand(1);
    auto* command = plugin->add_subcommand("check", "What does a module keep of the plug-in contract?");
    command->add_option("FOLDER", options->folder, "The plug-in's bundle")->required();
    command->add_flag("--json", options->json, "One JSON object a finding");
    command->footer(
        "Loads the module, so its code runs: check only what you trust. Each of its plug-ins is put through "
        "a\n"
        "life with odd readings; no script, mail or sound that it asks for is really run.\n"
        "The status is 0 when all is kept, 1 when something is broken.\n"
        "Examples:\n  vigil plugin check /usr/lib/vigil/VigilPlugIn");
    command->callback([options, &context] { check(options->folder, options->json, context); });
}

}  // namespace vigil
