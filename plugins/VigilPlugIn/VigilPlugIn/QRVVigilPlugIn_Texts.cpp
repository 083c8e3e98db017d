#include <cstdio>

#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

namespace vigil {

std::string QRVVigilPlugIn::getPlural(std::int32_t count) {
    return count == 1 ? "" : "s";
}

std::string QRVVigilPlugIn::getRunTime() const {
    std::string text;
    appendNextTriggerText(text, retriggerDate());
    return text;
}

std::string QRVVigilPlugIn::getTimerRunTime(std::int32_t seconds) {
    const std::int32_t days = seconds / 86400;
    std::int32_t rest = seconds - days * 86400;
    const std::int32_t hours = rest / 3600;
    rest -= hours * 3600;
    const std::int32_t minutes = rest / 60;

    std::string text = "\nActive " + std::to_string(days) + " day" + getPlural(days) + ", ";
    text += std::to_string(hours) + " hr" + getPlural(hours) + " and ";
    text += std::to_string(minutes) + " min" + getPlural(minutes) + ".";

    const HostWorld* host = world();
    const LocalTime now = host ? world()->localTime(world()->now()) : LocalTime{};
    char clock[32];
    // A full stop, not a colon, before the seconds.
    std::snprintf(clock, sizeof clock, "%02d:%02d.%02d", now.hour, now.minute, now.second);
    setDateLastDbPull(clock);
    return text + "  Last checked at " + clock + " hrs.";
}

}  // namespace vigil
