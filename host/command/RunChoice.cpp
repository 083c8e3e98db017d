#include "host/command/RunChoice.hpp"

#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/settings/SettingsTable.hpp"

namespace vigil {
namespace {

const SettingRow& rowOf(std::string_view key) {
    for (const SettingRow& row : settingsTable())
        if (row.section == "run" && row.key == key) return row;
    throw std::logic_error("no setting is called run." + std::string(key));
}

CLI::Range rangeOf(std::string_view key) {
    return CLI::Range(static_cast<int>(rowOf(key).least), static_cast<int>(rowOf(key).most));
}

CLI::IsMember choicesOf(std::string_view key) {
    return CLI::IsMember(std::vector<std::string>(rowOf(key).choices.begin(), rowOf(key).choices.end()));
}

template <class T>
void take(T& setting, const std::optional<T>& option) {
    if (option) setting = *option;
}

}  // namespace

void addRunOptions(CLI::App& command, RunChoice& choice) {
    command
        .add_option("--log-level", choice.logLevel,
                    "1 problems, 2 notices as well, 3 every judgement as well (2)")
        ->type_name("N")
        ->check(rangeOf("log-level"));
    command
        .add_option("--log-format", choice.logFormat, "auto, text, journal or json; to standard error (auto)")
        ->type_name("FORM")
        ->check(choicesOf("log-format"));
    command
        .add_option("--metrics-port", choice.metricsPort,
                    "Answer /metrics, /health and /status on this port of 127.0.0.1; 0 takes a free one")
        ->type_name("PORT")
        ->check(rangeOf("metrics-port"));
    command
        .add_option("--scripts", choice.scripts,
                    "The folder of the scripts that monitors run (~/.config/vigil/scripts)")
        ->type_name("FOLDER");
    command.add_option("--threads", choice.threads, "Threads that the stations share (2)")
        ->type_name("N")
        ->check(rangeOf("threads"));
    command.add_option("--history-days", choice.historyDays, "Keep readings for so many days (400)")
        ->type_name("N")
        ->check(rangeOf("history-days"));
    auto* keep = command.add_flag_callback(
        "--history", [&choice] { choice.history = true; }, "Keep readings, though the settings say not to");
    command
        .add_flag_callback(
            "--no-history", [&choice] { choice.history = false; }, "Keep no history of readings")
        ->excludes(keep);
}

RunSettings chosen(const RunChoice& choice, RunSettings settings) {
    take(settings.threads, choice.threads);
    take(settings.logLevel, choice.logLevel);
    if (choice.metricsPort) settings.metricsPort = choice.metricsPort;
    take(settings.history, choice.history);
    take(settings.historyDays, choice.historyDays);
    take(settings.scripts, choice.scripts);
    if (choice.logFormat) {
        Settings whole;
        rowOf("log-format").set(whole, *choice.logFormat);
        settings.logFormat = whole.run.logFormat;
    }
    return settings;
}

}  // namespace vigil
