#include "host/command/MonitorTest.hpp"

#include "host/command/SettingsChoice.hpp"
#include "host/setup/ServiceOptions.hpp"

namespace vigil {

std::optional<Refusal> testMonitor(OpenMonitor& monitor, const std::string& title, CommandContext& context) {
    const auto settings = settingsOf(context);
    if (!settings) return std::nullopt;  // told already
    LiveSound& sound = monitor.world().offerSound(playerOptions(*settings, context.programFolder));
    monitor.perform("testSound:");
    sound.waitUntilQuiet();
    context.output.print("Tested \"{}\": rows that play or speak were run, scripts and messages were not.\n",
                         title);
    if (sound.failures() != 0) return environment({"not everything could be heard"});
    return std::nullopt;
}

}  // namespace vigil
