#include "host/run/StatusJson.hpp"

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

Json stationJson(const StationStatus& station) {
    Json drops = Json::object();
    for (const auto& [why, count] : station.drops)
        drops[why] = count;
    Json monitors = Json::array();
    for (const MonitorStatus& monitor : station.monitors)
        monitors.push_back(monitorJson(monitor));
    return {{"name", station.name},
            {"feed", station.feed},
            {"feedState", station.feedState},
            {"feedWords", station.feedWords},
            {"lastData", dateJson(station.lastData)},
            {"messages", station.messages},
            {"notifications", station.notifications},
            {"drops", std::move(drops)},
            {"queued", station.queued},
            {"scripts", station.scripts},
            {"lastProblem", station.lastProblem},
            {"monitors", std::move(monitors)}};
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
    Json stations = Json::array();
    for (const StationStatus& station : status.stations)
        stations.push_back(stationJson(station));
    Json actions = Json::array();
    for (const auto& [of, count] : status.actions)
        actions.push_back({{"kind", of.first}, {"result", of.second}, {"count", count}});
    const Json json = {{"site", status.site},
                       {"version", status.version},
                       {"pid", status.pid},
                       {"since", dateJson(status.since)},
                       {"now", dateJson(status.now)},
                       {"problems", status.problems},
                       {"stations", std::move(stations)},
                       {"actions", std::move(actions)},
                       {"actionFailures", status.actionFailures},
                       {"writesWaiting", status.writesWaiting},
                       {"historyWritten", status.historyWritten},
                       {"historyLost", status.historyLost}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
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
        return status;
    } catch (const nlohmann::json::exception& wrong) {
        return Error{std::string("this is no status: ") + wrong.what()};
    }
}

}  // namespace vigil
