#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conditions/ConditionPredicate.hpp"
#include "host/command/CycleNote.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/Station.hpp"
#include "host/site/HistoryReader.hpp"
#include "host_contract/QRVPlugIn.hpp"

namespace vigil {

/// What a stored notification was to a monitor, then and now.
struct MonitorCycle {
    const StoredNotification& notification;
    bool watched = false;           ///< whether the monitor watched then; else it was not shown to it
    bool firedThen = false;         ///< a fire was recorded
    const ReplayedCycle* replayed;  ///< absent where it was not watched
};

/// Runs a site's monitor once more over the stored readings of its station: the same module, made from the
/// archives that were in force, on a clock that is turned by what was recorded: the start of each cycle, the
/// beginning and the end of its actions. So it makes the decisions that it made then. No action is run. The
/// module must be loaded. One thread.
class MonitorReplay {
  public:
    using Told = std::function<void(const MonitorCycle&)>;

    struct Options {
        bool trace = false;   ///< inputs and status, which cost time to build
        bool always = false;  ///< as though it had watched all the time
    };

    /// Reader, log and files are the caller's and outlive the replay.
    MonitorReplay(HistoryReader& reader, StoredPlugIn monitor, const std::string& station, QRVLog& log,
                  InterfaceFiles& interfaceFiles, Options options);
    ~MonitorReplay();

    /// Tells of every notification of the range. Begins with the last archive at `since` or before and lives
    /// through what lies between without telling. Rows that cannot be read are left out and counted. An error
    /// where there is no archive, or where the module fails. Once.
    Result<Done> run(const HistoryRange& range, const Told& told);

    /// The condition of an archive; nothing where it has none or is no monitor. Before or after `run`.
    std::shared_ptr<ConditionPredicate> conditionIn(const std::string& archive);
    /// The monitor as it stands; absent until it has been made.
    const std::shared_ptr<QRVPlugIn>& monitor() const { return m_monitor; }
    const std::vector<StoredFire>& fires() const { return m_fires; }
    const std::vector<StoredWatch>& watches() const { return m_watches; }
    std::size_t unreadable() const { return m_unreadable; }

  private:
    Result<Done> load(const HistoryRange& range);
    Result<Done> make(const std::string& archive);
    Result<Done> bringUpTo(Date time);
    bool watchedAt(Date time) const;
    const StoredFire* fireAt(Date time);
    Result<Done> show(const StoredNotification& notification);
    void switchOn();

    HistoryReader& m_reader;
    const StoredPlugIn m_record;
    const Options m_options;
    ReplayWorld m_world;
    RecordedScripts m_scripts;
    std::shared_ptr<Station> m_station;
    std::shared_ptr<CycleNote> m_note;
    std::vector<StoredArchive> m_archives;
    std::vector<StoredWatch> m_watches;
    std::vector<StoredFire> m_fires;
    std::size_t m_nextArchive = 0;
    std::size_t m_nextFire = 0;
    std::size_t m_unreadable = 0;
    std::shared_ptr<QRVPlugIn> m_monitor;
};

}  // namespace vigil
