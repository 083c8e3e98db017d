#include "host/services/ScriptEnvironment.hpp"

#include <algorithm>
#include <cstring>
#include <set>

#include <unistd.h>

#include "host/services/ScriptRunner.hpp"
#include "host/services/ScriptWire.hpp"
#include "platform/Number.hpp"

namespace vigil {
namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

bool isName(const std::string& key) {
    return !key.empty() && key.find_first_not_of(
                               "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                               "0123456789_") == std::string::npos;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

// Without NUL and cut to its bound between two characters.
std::string usable(std::string value) {
    value.erase(std::remove(value.begin(), value.end(), '\0'), value.end());
    if (value.size() <= kEnvironmentValue) return value;
    std::size_t end = kEnvironmentValue;
    while (end > 0 && isContinuation(value[end]))
        --end;
    value.resize(end);
    return value;
}

class Builder {
  public:
    // The first of a name stands.
    void add(const std::string& name, std::string value) {
        value = usable(std::move(value));
        const std::size_t size = name.size() + value.size() + 2;  // "=" and the NUL behind
        if (m_size + size > kEnvironmentSize || !m_names.insert(name).second) return;
        m_size += size;
        m_entries.emplace_back(name, std::move(value));
    }
    Entries take() { return std::move(m_entries); }

  private:
    Entries m_entries;
    std::set<std::string> m_names{kRunMark};  // the runner's own
    std::size_t m_size = 0;
};

bool isInherited(std::string_view name) {
    static constexpr std::string_view kNames[] = {
        // who and where
        "PATH", "HOME", "SHELL", "USER", "LOGNAME", "TMPDIR", "LANG", "LANGUAGE", "TZ",
        // the user's screen, message bus and sound
        "DISPLAY", "XAUTHORITY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "PULSE_SERVER",
        "PULSE_COOKIE", "PIPEWIRE_REMOTE", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
        "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_DIRS", "XDG_CURRENT_DESKTOP",
        "XDG_SESSION_TYPE"};
    return name.starts_with("LC_") ||
           std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

}  // namespace

Entries scriptEnvironment(const std::string& site, const std::string& monitor, const Readings& readings) {
    Builder builder;
    builder.add("VIGIL_SITE", site);
    builder.add("VIGIL_MONITOR", monitor);
    const ReadingsView view = readings.view();
    std::vector<const AgentProperty*> named;
    for (KeyTable::Slot slot = 0; slot < view.table->size(); ++slot)
        if (const AgentProperty* reading = view.at(slot); reading && isName(reading->propertyName()))
            named.push_back(reading);
    for (const AgentProperty* reading : named)
        builder.add("VIGIL_" + reading->propertyName(),
                    reading->type() == kTextType ? reading->stringValue() : numberText(reading->unitValue()));
    for (const AgentProperty* reading : named)
        builder.add("VIGIL_" + reading->propertyName() + "_TEXT", reading->unitStringValueWithUnitShort());
    return builder.take();
}

Entries inheritedEnvironment() {
    Entries entries;
    for (char** entry = environ; entry && *entry; ++entry) {
        const char* equals = std::strchr(*entry, '=');
        if (!equals) continue;
        const std::string name(*entry, static_cast<std::size_t>(equals - *entry));
        if (isInherited(name)) entries.emplace_back(name, equals + 1);
    }
    const auto isPath = [](const auto& entry) { return entry.first == "PATH"; };
    if (std::none_of(entries.begin(), entries.end(), isPath))
        entries.emplace_back("PATH", "/usr/local/bin:/usr/bin:/bin");
    return entries;
}

std::string helperPath(const std::string& programFolder) {
    const std::string beside = programFolder + "/vigil-helper";
    const std::string installed = programFolder + "/../libexec/vigil/vigil-helper";
    const bool isInstalled = ::access(beside.c_str(), X_OK) != 0 && ::access(installed.c_str(), X_OK) == 0;
    return isInstalled ? installed : beside;
}

std::string helperPath() {
    char path[4096];
    const ssize_t size = ::readlink("/proc/self/exe", path, sizeof path);
    if (size <= 0 || size == sizeof path) return {};
    const std::string_view own(path, static_cast<std::size_t>(size));
    return helperPath(std::string(own.substr(0, own.rfind('/'))));
}

}  // namespace vigil
