#include "host/command/SettingsChoice.hpp"

#include <utility>

namespace vigil {

std::optional<Settings> settingsOf(CommandContext& context) {
    const std::string file = defaultSettingsFile();
    auto reading = readSettings(file);
    if (!reading) {
        context.output.error(reading.error().message);
        context.status = ExitStatus::Environment;
        return std::nullopt;
    }
    if (!isRight(file, reading.value(), context)) return std::nullopt;
    return std::move(reading).value().settings;
}

bool isRight(const std::string& file, const SettingsReading& reading, CommandContext& context) {
    for (const SettingsProblem& problem : reading.problems)
        context.output.error(problemText(file, problem));
    if (!reading.problems.empty()) context.status = ExitStatus::BadInput;
    return reading.problems.empty();
}

Settings settingsOrDefaults() {
    auto reading = readSettings(defaultSettingsFile());
    return reading && reading.value().problems.empty() ? std::move(reading).value().settings : Settings();
}

}  // namespace vigil
