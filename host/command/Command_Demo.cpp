#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/Demo.hpp"
#include "host/command/DemoScripts.hpp"
#include "host/command/SettingsChoice.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/setup/ServiceOptions.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCondition = "windChill.unitValue < 10 OR windSpeed.unitValue > 25";
constexpr double kRetriggerMinutes = 30;
constexpr double kNotificationsASecond = 4;

struct DemoOptions {
    double seconds = 20;
    std::uint64_t seed = 1;
};

/// How people would call this program from where they are.
std::string calledAs(const std::string& programFolder) {
    const char* path = std::getenv("PATH");
    const std::string folders = ":" + std::string(path ? path : "") + ":";
    if (folders.find(":" + programFolder + ":") != std::string::npos) return "vigil";
    std::error_code failed;
    const std::string relative = fs::relative(programFolder, fs::current_path(failed), failed).string();
    const bool isNear = !failed && !relative.empty() && !relative.starts_with("..");
    return (isNear ? relative : programFolder) + "/vigil";
}

/// Records to replay: those of the source tree where people are in it, else the installed ones.
std::string exampleFile(const std::string& programFolder) {
    const std::string near = "examples/frost-night.csv";
    const fs::path installed = fs::path(programFolder) / "../share/doc/vigil" / near;
    std::error_code failed;
    if (fs::exists(near, failed) || !fs::exists(installed, failed)) return near;
    return installed.lexically_normal().string();
}

void introduce(Output& output) {
    output.print(
        "A simulated station, in fast motion: nothing here was measured.\n"
        "Its monitor judges every notification by\n\n    {}\n\n"
        "When that holds it runs the script {}, and then it waits {} minutes of the station's time.\n\n",
        kCondition, DemoScripts::kName, kRetriggerMinutes);
    output.write(demoHeading());
    output.flush();
}

void conclude(const Demo::Counts& counts, CommandContext& context) {
    context.output.print(
        "\nFired {}, missed {}, waiting {}; {} script{} ran, {} failed.\n"
        "The monitor says: {}\n\n",
        counts.fired == 1 ? "once" : std::to_string(counts.fired) + " times", counts.missed, counts.waiting,
        counts.scripts, counts.scripts == 1 ? "" : "s", counts.scriptsFailed, counts.status);
    context.output.print(
        "Try next:\n"
        "  {0} replay {1} --condition 'outsideTemp.unitValue < 0' --retrigger 60\n"
        "  {0} check 'windGust.unitValue > 60 AND (rainRate.unitValue > 0 OR outsideTemp < 3)'\n"
        "  {0} --help\n",
        calledAs(context.programFolder), exampleFile(context.programFolder));
}

void fail(CommandContext& context, const Error& error) {
    context.output.error(error.message);
    context.status = ExitStatus::Environment;
}

void demo(const DemoOptions& options, CommandContext& context) {
    if (const auto loaded = loadMonitorModule(context.programFolder); !loaded)
        return fail(context, loaded.error());
    const auto settings = settingsOf(context);
    if (!settings) return;
    const DemoScripts scripts;
    Output& output = context.output;
    const bool colour = output.isTerminal() && !std::getenv("NO_COLOR");
    const auto show = [&](const std::string& line) {
        output.write(line);
        output.flush();
    };
    const Demo::View view = {
        [&](const DemoStep& step) { show(demoLine(step, colour)); },
        [&](const auto& entry) { show(demoScriptLine(DemoScripts::kName, entry.result, colour)); }};
    Demo::Options run;
    run.monitor.title = "Cold or windy";
    run.monitor.condition = kCondition;
    run.monitor.retriggerMinutes = kRetriggerMinutes;
    run.monitor.scripts = {DemoScripts::kName};
    run.player = playerOptions(*settings, context.programFolder);
    run.scriptsFolder = scripts.folder();
    run.seed = options.seed;
    run.notifications = static_cast<std::size_t>(options.seconds * kNotificationsASecond) + 1;
    introduce(output);
    const auto counts = Demo::run(run, view);
    if (!counts) return fail(context, counts.error());
    conclude(counts.value(), context);
    if (counts.value().scriptsFailed > 0) context.status = ExitStatus::Environment;
}

}  // namespace

void addDemoCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<DemoOptions>();
    auto* command = app.add_subcommand("demo", "Watch a monitor at work on a simulated station");
    command->add_option("--seconds", options->seconds, "How long it runs (20)")
        ->type_name("N")
        ->check(CLI::Range(1.0, 3600.0));
    command->add_option("--seed", options->seed, "Another number gives another day (1)")->type_name("N");
    command->footer(
        "Needs no station and no set-up, and leaves nothing behind.\n"
        "Examples:\n  vigil demo\n  vigil demo --seconds 5 --seed 7");
    command->callback([options, &context] { demo(*options, context); });
}

}  // namespace vigil
