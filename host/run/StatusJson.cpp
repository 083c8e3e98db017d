#include "host/run/StatusJson.hpp"

#include <utility>

#include <nlohmann/json.hpp>

namespace vigil {
namespace {

using Json = nlohmann::ordered_json;

Json dateJson(const std::optional<Date>& date) {
    return date ? Json(date->isoText(3)) : Json();
}

std::optional<Date> dateOf(const Json& json) {
    if (!json.is_string()) return std::nullopt;
    const auto date = parseDate(json.get<std::string>());
    return date ? std::optional(date.value()) : std::nullopt;
}

Json monitorJson(const MonitorStatus& monitor) {
    return {{"title", monitor.title},
            {"active", monitor.active},
            {"state", monitor.state},
            {"words", monitor.words},
            {"says", monitor.says},
            {"condition", monitor.condition},
            {"waitsUntil", dateJson(monitor.waitsUntil)},
            {"lastFire", dateJson(monitor.lastFire)},
            {"lastAction", monitor.lastAction},
            {"lastResult", monitor.lastResult},
            {"lastFailed", monitor.lastFailed},
            {"cycles", {{"waiting", monitor.waiting}, {"missed", monitor.missed}, {"fired", monitor.fired}}}};
}

MonitorStatus monitorOf(const Json& json) {
    MonitorStatus monitor;
    monitor.title = json.at("title");
    monitor.active = json.at("active");
    monitor.state = json.at("state");
    monitor.words = json.at("words");
    monitor.says = json.at("says");
    monitor.condition = json.at("condition");
    monitor.waitsUntil = dateOf(json.at("waitsUntil"));
    monitor.lastFire = dateOf(json.at("lastFire"));
    monitor.lastAction = json.at("lastAction");
    monitor.lastResult = json.at("lastResult");
    monitor.lastFailed = json.at("lastFailed");
    monitor.waiting = json.at("cycles").at("waiting");
    monitor.missed = json.at("cycles").at("missed");
    monitor.fired = json.at("cycles").at("fired");
    return monitor;
}

std::string textOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// Adds to an object's text, which has entries already, a list under one more name, entry by entry: as one
/// tree of values a large site would take ten times the memory of its text.
template <class Entries, class Append>
void appendList(std::string& object, const char* name, const Entries& entries, Append append) {
    object.back() = ',';
    object += '"';
    object += name;
    object += "\":[";
    const char* separator = "";
    for (const auto& entry : entries) {
        object += std::exchange(separator, ",");
        append(object, entry);
    }
    object += "]}";
}

void appendStation(std::string& to, const StationStatus& station) {
    Json drops = Json::object();
    for (const auto& [why, count] : station.drops)
        drops[why] = count;
    to += textOf({{"name", station.name},
                  {"feed", station.feed},
                  {"feedState", station.feedState},
                  {"feedWords", station.feedWords},
                  {"lastData", dateJson(station.lastData)},
                  {"messages", station.messages},
                  {"notifications", station.notifications},
                  {"drops", std::move(drops)},
                  {"queued", station.queued},
                  {"scripts", station.scripts},
                  {"lastProblem", station.lastProblem}});
    appendList(to, "monitors", station.monitors,
               [](std::string& text, const MonitorStatus& monitor) { text += textOf(monitorJson(monitor)); });
}

StationStatus stationOf(const Json& json) {
    StationStatus station;
    station.name = json.at("name");
    station.feed = json.at("feed");
    station.feedState = json.at("feedState");
    station.feedWords = json.at("feedWords");
    station.lastData = dateOf(json.at("lastData"));
    station.messages = json.at("messages");
    station.notifications = json.at("notifications");
    for (const auto& [why, count] : json.at("drops").items())
        station.drops[why] = count;
    station.queued = json.at("queued");
    station.scripts = json.at("scripts");
    station.lastProblem = json.at("lastProblem");
    for (const Json& monitor : json.at("monitors"))
        station.monitors.push_back(monitorOf(monitor));
    return station;
}

}  // namespace

std::string statusJson(const SiteStatus& status) {
    Json actions = Json::array();
    for (const auto& [of, count] : status.actions)
        actions.push_back({{"kind", of.first}, {"result", of.second}, {"count", count}});
    std::string text = textOf({{"site", status.site},
                               {"version", status.version},
                               {"pid", status.pid},
                               {"since", dateJson(status.since)},
                               {"now", dateJson(status.now)},
                               {"problems", status.problems}});
    appendList(text, "stations", status.stations, appendStation);
    const std::string rest = textOf({{"actions", std::move(actions)},
                                     {"actionFailures", status.actionFailures},
                                     {"writesWaiting", status.writesWaiting},
                                     {"historyWritten", status.historyWritten},
                                     {"historyLost", status.historyLost},
                                     {"lostLogLines", status.lostLogLines}});
    text.back() = ',';
    return text.append(rest, 1);
}

Result<SiteStatus> statusFromJson(const std::string& text) {
    try {
        const Json json = Json::parse(text);
        if (json.contains("error")) return Error{json.at("error").get<std::string>()};
        SiteStatus status;
        status.site = json.at("site");
        status.version = json.at("version");
        status.pid = json.at("pid");
        status.since = dateOf(json.at("since")).value_or(Date());
        status.now = dateOf(json.at("now")).value_or(Date());
        status.problems = json.at("problems").get<std::vector<std::string>>();
        for (const Json& station : json.at("stations"))
            status.stations.push_back(stationOf(station));
        for (const Json& action : json.at("actions"))
            status.actions[{action.at("kind"), action.at("result")}] = action.at("count");
        status.actionFailures = json.at("actionFailures");
        status.writesWaiting = json.at("writesWaiting");
        status.historyWritten = json.at("historyWritten");
        status.historyLost = json.at("historyLost");
        status.lostLogLines = json.at("lostLogLines");
        return status;
    } catch (const nlohmann::json::exception& wrong) {
        return Error{std::string("this is no status: ") + wrong.what()};
    }
}

}  // namespace vigil
