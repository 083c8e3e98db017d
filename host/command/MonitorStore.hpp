#pragma once

#include <string>
#include <vector>

#include "platform/Result.hpp"

namespace vigil {

/// The monitors of a site as one file of readable JSON: each with its title, its station and its keyed
/// archive.
struct StoredMonitor {
    std::string title;
    std::string station;
    std::string archive;
};

class MonitorStore {
  public:
    /// "vigil/monitors.json" in the user's folder for data ($XDG_DATA_HOME, else ~/.local/share).
    static std::string defaultFile();

    /// A file that is not there is a site without monitors. An error names the file and the reason.
    static Result<MonitorStore> open(const std::string& file);

    const std::string& file() const { return m_file; }
    const std::vector<StoredMonitor>& all() const { return m_monitors; }
    /// Nothing when no monitor bears the title.
    const StoredMonitor* find(const std::string& title) const;

    /// Puts the monitor in the place of the one that bears `title`, or behind the others.
    void put(const std::string& title, StoredMonitor monitor);
    bool remove(const std::string& title);
    /// Replaces the file whole: after a crash it is the old one or the new one.
    Result<Done> save() const;

  private:
    explicit MonitorStore(std::string file) : m_file(std::move(file)) {}

    std::string m_file;
    std::vector<StoredMonitor> m_monitors;
};

}  // namespace vigil
