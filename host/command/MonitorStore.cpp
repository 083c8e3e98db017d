#include "host/command/MonitorStore.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "host/services/SystemFiles.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr const char* kFormat = "vigil-monitors";
constexpr int kVersion = 1;

Error notUnderstood(const std::string& file, const std::string& reason) {
    return {file + ": " + reason + "; the file was left as it is"};
}

std::string textOf(const Json& object, const char* member) {
    const auto found = object.find(member);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// Writes and waits until it is on the disk.
Result<Done> writeWhole(const std::string& path, const std::string& text) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) return Error{path + ": " + std::strerror(errno)};
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = ::write(fd, text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) break;
        written += static_cast<std::size_t>(count);
    }
    const bool whole = written == text.size() && ::fsync(fd) == 0;
    const int failure = errno;
    ::close(fd);
    if (whole) return Done{};
    return Error{path + ": " + std::strerror(failure)};
}

}  // namespace

std::string MonitorStore::defaultFile() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/vigil/monitors.json";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.local/share/vigil/monitors.json";
}

Result<MonitorStore> MonitorStore::open(const std::string& file) {
    MonitorStore store(file);
    std::error_code failed;
    if (!fs::exists(file, failed) && !failed) return store;
    SystemFiles files;
    const auto text = files.readUtf8(file);
    if (!text) return Error{file + ": " + text.error().message};
    const Json site = Json::parse(text.value(), nullptr, /*allow_exceptions=*/false);
    if (!site.is_object() || textOf(site, "format") != kFormat)
        return notUnderstood(file, "is no file of monitors");
    if (site.value("version", Json()) != kVersion)
        return notUnderstood(file, "is of a version that this program does not know");
    const auto monitors = site.find("monitors");
    if (monitors == site.end() || !monitors->is_array())
        return notUnderstood(file, "has no list of monitors");
    for (const Json& monitor : *monitors) {
        const std::string place = "monitors[" + std::to_string(store.m_monitors.size()) + "]";
        if (!monitor.is_object() || !monitor.contains("archive"))
            return notUnderstood(file, place + " is no monitor");
        StoredMonitor stored = {textOf(monitor, "title"), textOf(monitor, "station"),
                                monitor["archive"].dump(2)};
        if (stored.title.empty() || store.find(stored.title))
            return notUnderstood(file, place + " has no title of its own");
        store.m_monitors.push_back(std::move(stored));
    }
    return store;
}

const StoredMonitor* MonitorStore::find(const std::string& title) const {
    const auto found = std::find_if(m_monitors.begin(), m_monitors.end(),
                                    [&](const auto& one) { return one.title == title; });
    return found == m_monitors.end() ? nullptr : &*found;
}

void MonitorStore::put(const std::string& title, StoredMonitor monitor) {
    for (StoredMonitor& one : m_monitors)
        if (one.title == title) {
            one = std::move(monitor);
            return;
        }
    m_monitors.push_back(std::move(monitor));
}

bool MonitorStore::remove(const std::string& title) {
    return std::erase_if(m_monitors, [&](const auto& one) { return one.title == title; }) > 0;
}

Result<Done> MonitorStore::save() const {
    Json monitors = Json::array();
    for (const StoredMonitor& one : m_monitors)
        monitors.push_back(
            {{"title", one.title}, {"station", one.station}, {"archive", Json::parse(one.archive)}});
    const Json site = {{"format", kFormat}, {"version", kVersion}, {"monitors", std::move(monitors)}};
    std::error_code failed;
    const fs::path folder = fs::path(m_file).parent_path();
    if (!folder.empty()) fs::create_directories(folder, failed);
    if (failed) return Error{folder.string() + ": " + failed.message()};
    const std::string fresh = m_file + ".new";
    if (auto written = writeWhole(fresh, site.dump(1) + "\n"); !written) return written;
    fs::rename(fresh, m_file, failed);
    if (failed) return Error{m_file + ": " + failed.message()};
    return Done{};
}

}  // namespace vigil
