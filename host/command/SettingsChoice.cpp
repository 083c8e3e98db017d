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
    if (reading.value().problems.empty()) return std::move(reading).value().settings;
    for (const SettingsProblem& problem : reading.value().problems)
        context.output.error(problemText(file, problem));
    context.status = ExitStatus::BadInput;
    return std::nullopt;
}

Settings settingsOrDefaults() {
    auto reading = readSettings(defaultSettingsFile());
    const bool isRight = reading && reading.value().problems.empty();
    return isRight ? std::move(reading).value().settings : Settings();
}

}  // namespace vigil
