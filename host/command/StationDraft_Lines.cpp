#include "host/command/JsonText.hpp"
#include "host/command/StationDraft.hpp"
#include "host/feeds/FeedUrl.hpp"
#include "host/readings/KnownReadings.hpp"

namespace vigil {
namespace {

std::string shownFeed(const StationRecord& station) {
    const auto feed = FeedUrl::parse(station.feed);
    // A text that is no feed could hold anything, so it is not shown.
    return feed ? feed.value().masked() : std::string();
}

/// What conditions compare with where no unit of a reading's own is chosen.
std::string shownUnits(const StationRecord& station) {
    std::string text;
    for (const auto& [what, key] : {std::pair("temperature", "outsideTemp"), std::pair("wind", "windSpeed"),
                                    std::pair("rain", "rainDaily")}) {
        text += (text.empty() ? "" : ", ") + std::string(what) + " in ";
        text += knownReading(key)->unit(station.usUnits ? UnitSystem::Us : UnitSystem::Metric);
    }
    return text;
}

}  // namespace

std::string stationLines(const StationRecord& station, std::size_t monitors) {
    std::string text = station.name + " (" + std::to_string(monitors) +
                       (monitors == 1 ? " monitor" : " monitors") + ", " +
                       (station.usUnits ? "US" : "metric") + " units)\n  feed       ";
    text += (station.feed.empty() ? "none yet" : shownFeed(station)) + "\n";
    text += "  reads      " + shownUnits(station) + "\n";
    for (const auto& [key, unit] : station.units)
        text += "  unit       " + key + " in " + unit + "\n";
    for (const std::string& rolling : station.rolling)
        text += "  rolling    " + rolling + "\n";
    return text;
}

std::string stationJson(const StationRecord& station, std::size_t monitors) {
    std::string line = "{\"name\":";
    appendJsonText(line, station.name);
    line += ",\"feed\":";
    if (station.feed.empty())
        line += "null";
    else
        appendJsonText(line, shownFeed(station));
    line += std::string(",\"units\":\"") + (station.usUnits ? "us" : "metric") + "\",\"unit\":{";
    for (const auto& [key, unit] : station.units) {
        appendJsonText(line += line.back() == '{' ? "" : ",", key);
        appendJsonText(line += ":", unit);
    }
    line += "},\"rolling\":[";
    for (const std::string& rolling : station.rolling)
        appendJsonText(line += line.back() == '[' ? "" : ",", rolling);
    return line + "],\"monitors\":" + std::to_string(monitors) + "}\n";
}

}  // namespace vigil
