#include "host/command/MonitorNotes.hpp"

#include <cmath>
#include <ctime>

#include "conditions/ConditionPredicate.hpp"
#include "host/command/KeyNote.hpp"
#include "host/command/ScriptRows.hpp"

namespace vigil {
namespace {

bool isActive(const OpenMonitor& monitor) {
    const Value value = monitor.get("evaluating");
    const bool* active = value.as<bool>();
    return active && *active;
}

/// As a clock on the wall shows it, with its distance from UTC.
std::string wallTime(Date date) {
    const auto seconds = static_cast<std::time_t>(
        std::floor(date.secondsSinceReference() - Date::fromUnix(0).secondsSinceReference()));
    std::tm parts{};
    char text[40];
    if (!::localtime_r(&seconds, &parts)) return date.isoText();
    return std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S %z", &parts) > 0 ? text : date.isoText();
}

std::string ofDefault(const OpenMonitor& monitor, bool namesNoScript) {
    std::string text = "it has the default condition";
    if (namesNoScript) text += "; its script row names no script yet";
    if (!isActive(monitor)) text += "; not active: `vigil monitor edit '" + monitor.title() + "' --active`";
    return text;
}

}  // namespace

std::vector<std::string> monitorNotes(const OpenMonitor& monitor, const StationRecord& station,
                                      const MonitorNotes& how) {
    std::vector<std::string> notes;
    bool namesNoScript = false;
    for (const std::string& name : scriptNames(monitor)) {
        if (name.empty())
            namesNoScript = true;
        else if (!hasScript(how.scriptsFolder, name))
            notes.push_back("there is no script \"" + name + "\" in " + how.scriptsFolder + " yet");
    }
    if (const auto condition = ConditionPredicate::predicateWithFormat(monitor.condition()))
        for (const std::string& key : keysOf(condition.value()->tree()))
            if (std::string note = keyNote(key, rollingKeys(station.rolling)); !note.empty())
                notes.push_back(std::move(note));
    if (how.waitChanged && isActive(monitor)) {
        const Value value = monitor.get("retriggerDate");
        const Date* until = value.as<Date>();
        if (until && *until > how.now)
            notes.push_back("it waits until " + wallTime(*until) +
                            " all the same; the new wait begins at its next fire");
    }
    if (how.judgesDefault) notes.push_back(ofDefault(monitor, namesNoScript));
    return notes;
}

}  // namespace vigil
