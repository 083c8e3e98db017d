#include "host/site/MonitorsFile.hpp"

#include <algorithm>
#include <cstdlib>

#include <nlohmann/json.hpp>

#include "host/site/SiteCheck.hpp"

namespace vigil {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFormat = "vigil-monitors";
constexpr int kVersion = 1;
/// The list and the object around an archive.
constexpr std::size_t kMostDepth = kMostJsonDepth + 3;

std::string textOf(const Json& object, const char* member) {
    const auto found = object.find(member);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

}  // namespace

std::string defaultMonitorsFile() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/vigil/monitors.json";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.local/share/vigil/monitors.json";
}

Result<std::vector<FiledMonitor>> readMonitors(const std::string& text) {
    if (jsonDepth(text) > kMostDepth) return Error{"lists inside lists, deeper than any archive"};
    const Json file = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (!file.is_object() || textOf(file, "format") != kFormat)
        return Error{"is neither a copy of a site nor a file of monitors"};
    if (file.value("version", Json()) != kVersion)
        return Error{"is of a version that this program does not know"};
    const auto monitors = file.find("monitors");
    if (monitors == file.end() || !monitors->is_array()) return Error{"has no list of monitors"};
    std::vector<FiledMonitor> all;
    for (const Json& monitor : *monitors) {
        const std::string place = "monitors[" + std::to_string(all.size()) + "]";
        const auto archive = monitor.is_object() ? monitor.find("archive") : monitor.end();
        if (archive == monitor.end() || !archive->is_object() || !archive->contains("root"))
            return Error{place + " is no monitor"};
        FiledMonitor read = {.title = textOf(monitor, "title"),
                             .station = textOf(monitor, "station"),
                             .className = textOf(archive->at("root"), "$class"),
                             .archive = archive->dump(2)};
        const bool taken = std::any_of(all.begin(), all.end(),
                                       [&](const FiledMonitor& other) { return other.title == read.title; });
        if (read.title.empty() || taken) return Error{place + " has no title of its own"};
        if (read.station.empty()) return Error{place + " has no station"};
        all.push_back(std::move(read));
    }
    return all;
}

}  // namespace vigil
