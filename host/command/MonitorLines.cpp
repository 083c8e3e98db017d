#include "host/command/MonitorLines.hpp"

#include "host/command/JsonText.hpp"
#include "platform/Number.hpp"

namespace vigil {
namespace {

std::string number(const Value& value) {
    if (const auto* integer = value.as<std::int64_t>()) return std::to_string(*integer);
    const auto* real = value.as<double>();
    return real ? numberText(*real) : std::string("no");
}

bool flag(const Value& value) {
    const bool* held = value.as<bool>();
    return held && *held;
}

}  // namespace

std::string monitorLines(const StoredMonitor& stored, const OpenMonitor& monitor) {
    std::string text = stored.title + " (" + (flag(monitor.get("evaluating")) ? "active" : "not active") +
                       ", station " + stored.station + ")\n  condition  " + monitor.condition() + "\n";
    const std::string minutes = number(monitor.get("retriggerInterval"));
    text += "  waits      " + minutes + (minutes == "1" ? " minute" : " minutes") + " after a fire\n";
    if (flag(monitor.get("triggerOnlyOnChange")))
        text += "  judges     only readings that are newer and have changed\n";
    std::size_t row = 0;
    for (const std::string& line : monitor.actions())
        text += "  action " + std::to_string(++row) + "   " + line + "\n";
    return text;
}

std::string monitorJson(const StoredMonitor& stored, const OpenMonitor& monitor) {
    std::string line = "{\"title\":";
    appendJsonText(line, stored.title);
    appendJsonText(line += ",\"station\":", stored.station);
    line += std::string(",\"active\":") + (flag(monitor.get("evaluating")) ? "true" : "false");
    appendJsonText(line += ",\"condition\":", monitor.condition());
    line += ",\"retriggerMinutes\":" + number(monitor.get("retriggerInterval"));
    line += std::string(",\"onlyOnChange\":") + (flag(monitor.get("triggerOnlyOnChange")) ? "true" : "false");
    line += ",\"actions\":[";
    for (const std::string& action : monitor.actions())
        appendJsonText(line += line.back() == '[' ? "" : ",", action);
    return line + "]}\n";
}

}  // namespace vigil
