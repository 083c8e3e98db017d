#include <memory>

#include "host/command/Commands.hpp"
#include "host/command/Doctor.hpp"
#include "host/command/SiteChoice.hpp"

namespace vigil {

void addDoctorCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("doctor", "Look at what this machine lacks, with a remedy for each");
    auto json = std::make_shared<bool>(false);
    auto site = std::make_shared<std::string>();
    addSiteOption(*command, *site);
    command->add_flag("--json", *json, "Answer with one JSON object a line");
    command->footer(
        "Changes nothing and plays nothing. Exit status: 0 all well, 1 findings, 3 something could not be "
        "looked "
        "at.\n"
        "Examples:\n  vigil doctor\n  vigil doctor --json");
    command->callback([json, site, &context] {
        DoctorSurroundings here = doctorSurroundings(context.programFolder);
        if (!site->empty()) here.siteFile = *site;
        const auto probes = doctorProbes(here);
        context.status = examine(probes, *json, context.output);
    });
}

}  // namespace vigil
