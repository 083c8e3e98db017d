#include "host/run/StationSetup.hpp"

#include "host/readings/Units.hpp"

namespace vigil {

StationReadingsSettings readingsSettings(const StationRecord& record, std::vector<std::string>& problems) {
    StationReadingsSettings settings;
    settings.system = record.usUnits ? UnitSystem::Us : UnitSystem::Metric;
    for (const auto& [key, text] : record.units) {
        if (const auto unit = unitFromText(text))
            settings.units[key] = *unit;
        else
            problems.push_back("the unit \"" + text + "\" of " + key + " is not known");
    }
    for (const std::string& text : record.rolling) {
        auto choice = RollingChoice::parse(text);
        if (choice)
            settings.rolling.push_back(std::move(choice).value());
        else
            problems.push_back(choice.error().message);
    }
    return settings;
}

}  // namespace vigil
