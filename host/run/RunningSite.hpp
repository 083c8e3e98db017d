#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/feeds/live/Feeds.hpp"
#include "host/kit/HostedPlugIns.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/run/CycleNotes.hpp"
#include "host/run/LedgerScripts.hpp"
#include "host/run/RunningStation.hpp"
#include "host/run/SiteStatus.hpp"
#include "host/run/SiteWorld.hpp"
#include "host/run/StrandPool.hpp"
#include "host/site/HistoryWriter.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"

namespace vigil {

/// A site at work: its stations with their feeds, its plug-ins, and everything that they do written down.
/// Main thread: the one that makes it, which serves `mailbox()` and calls `tick` about once a second.
class RunningSite {
  public:
    struct Options {
        std::string programFolder{};  ///< of the running program, without a final "/"
        std::string scriptsFolder{};  ///< empty: the user's
        std::string version{};
        std::size_t threads = 2;  ///< that strands share
        bool history = true;
        int historyDays = 400;  ///< for which it is kept
        PlayerSetup player{};   ///< the device for sounds, the program and the voice for speech
        /// How mail and short messages go out. `helper`, `clock` and `secret` are filled in where they are
        /// empty.
        AutomationOptions automation{};
        /// Lines of the log that found no way out; absent: nobody counts them. Any thread.
        std::function<std::uint64_t()> lostLogLines{};
        /// The secret of that name for feeds, and for the mail server.
        std::function<std::optional<std::string>(const std::string&)> secret{};
        /// Turns the main thread's event loop inside a wait; absent where it only serves the mailbox.
        MainRunLoop::Turn turn{};
    };
    /// What a site's file holds, as somebody has read it.
    struct Rows {
        std::vector<StationRecord> stations{};
        std::vector<PlugInRecord> plugIns{};
        /// Plug-ins that stand for rows from now on, instead of objects made from the rows' archives.
        std::map<RecordId, std::shared_ptr<QRVPlugIn>> made{};
    };

    /// The site is open for writing. It and the log outlive this. An error where the module cannot be loaded
    /// or the site cannot be read; a station or plug-in that cannot be had is a problem in the status, and
    /// all others run.
    static Result<std::unique_ptr<RunningSite>> make(SiteFile& site, QRVLog& log, Options options);
    RunningSite(const RunningSite&) = delete;
    RunningSite& operator=(const RunningSite&) = delete;
    /// Stops.
    ~RunningSite();

    /// Starts the plug-ins and then the feeds.
    void start();
    /// Writes down what has changed since about a minute. At rest: outside every task.
    void tick();
    /// Takes over what somebody changed in the site file: what is new or in another form begins, what is gone
    /// ends, all else goes on. At rest.
    void reload();
    /// The same with rows that were read already. At rest.
    void reload(Rows rows);
    /// Begins to end: no fire and no effect begins any more, and every speech ends, so that the main thread
    /// comes to rest soon, whatever it waits for. `serveUntil` then returns. Any thread.
    void beginStop();
    /// Ends the feeds, gives up what has not begun, ends what runs, writes everything down. At rest.
    void stop();

    /// Fires that the last run began and did not complete, as `make` found them.
    const std::vector<FireRecord>& unfinished() const { return m_unfinished; }

    /// Those that are switched on, without their archives.
    std::vector<PlugInRecord> activePlugIns() const;

    Mailbox& mailbox() { return m_world.mailbox(); }
    SiteWorld& world() { return m_world; }
    InterfaceFile& interfaceFiles() { return m_interfaceFiles; }
    ScriptSink& scripts() { return m_scripts; }
    const std::string& path() const { return m_site.path(); }

    // What people see and change of a site while it runs.

    /// The plug-in of that id; nothing where it is not here or could not be restored.
    HostedPlugIn* plugIn(RecordId id);
    std::vector<StationRecord> stations() const;
    /// Of a station, in their order; without their archives.
    std::vector<PlugInRecord> plugIns(RecordId station) const;
    /// Nothing where it is not here.
    std::shared_ptr<Station> stationOf(RecordId id) const;
    std::optional<RunningStation::Counts> counts(RecordId station) const;
    /// Turns the switch, and saves. The error is what stood in the way, for people.
    Result<Done> setEvaluating(RecordId plugIn, bool on);
    /// Somebody has changed the object: it is saved, and the history knows by what it judges from now on.
    void edited(RecordId plugIn);
    /// A title of its own. An error where it is empty or taken.
    Result<Done> setTitle(RecordId plugIn, const std::string& title);
    /// Its archive as it is now.
    Result<std::string> archiveText(RecordId plugIn);
    /// "Vigil", "Vigil 2", …: the first that is free.
    std::string unusedTitle(const std::string& first) const;

    SiteStatus status();
    /// "3 stations, 5 monitors, 4 of them active"
    std::string startText();

  private:
    using Clock = std::chrono::steady_clock;

    struct Entry {
        PlugInRecord record{};
        HostedPlugIn* hosted = nullptr;  ///< nothing where it could not be restored
        std::shared_ptr<CycleNotes> notes;
        std::string trouble{};  ///< why it could not be restored
        Clock::time_point saved{};
        std::size_t savedHash = 0;
        bool watching = false;  ///< as the history has it
        std::optional<Date> lastFire{};
    };
    struct Changes {
        std::map<RecordId, Date> waits{};            ///< of plug-ins that were ended, by their own dates
        std::map<RecordId, std::string> archives{};  ///< of those that nobody edited
        std::size_t removed = 0;
    };
    struct Trouble {
        std::string station{};
        std::vector<std::string> words{};
    };

    RunningSite(SiteFile& site, QRVLog& log, Options options);

    Result<Done> restore();
    void rememberLast();
    void addStation(const StationRecord& record);
    void addPlugIn(PlugInRecord record, std::shared_ptr<QRVPlugIn> made = nullptr);
    void startPlugIn(Entry& entry, WatchReason reason);
    void startFeed(RecordId station);
    void waitForUnfinished(const Interrupted& interrupted);
    void reportInterrupted(const Interrupted& interrupted);

    Changes removeChanged(const std::vector<StationRecord>& stations,
                          const std::vector<PlugInRecord>& plugIns);
    bool removeEntry(std::size_t index, WatchReason reason);
    void noteWait(Entry& entry, Changes& changes);

    void complete(std::vector<Fire> fires, std::function<void()> durable);
    void completeOnMain(const std::vector<Fire>& fires, const std::function<void()>& durable);
    Result<std::string> archiveOf(Entry& entry);
    Entry* entryOf(RecordId plugIn);
    void completeUnposted();
    void noteFailed(Entry& entry);
    /// What is wrong and told by nobody else, by a name that stays.
    std::map<std::string, std::string> problems() const;
    void tellChanges(const std::map<std::string, std::string>& now);
    void keepWait(Entry& entry, const Fire& fire);
    void save(Entry& entry);

    MonitorStatus statusOf(Entry& entry, const Readings& readings);
    StationStatus statusOf(const RunningStation& station);

    SiteFile& m_site;
    QRVLog& m_log;
    const Options m_options;
    InterfaceFile m_interfaceFiles;
    SiteWriter m_writer;
    mutable SiteWorld m_world;
    CycleTimes m_cycleTimes;
    Histogram m_notificationTimes;
    LedgerScripts m_scripts;
    HostedPlugIns m_plugIns{m_world};
    std::unique_ptr<HistoryWriter> m_history;
    std::vector<Entry> m_entries;
    std::map<RecordId, std::shared_ptr<RunningStation>> m_stations;
    std::map<RecordId, Trouble> m_troubles;
    StrandPool m_pool;
    Feeds m_feeds;
    std::vector<FireRecord> m_unfinished;
    std::string m_noHistory;                    // why none is kept
    std::map<std::string, std::string> m_told;  // problems that the log knows of
    std::mutex m_unpostedMutex;
    std::vector<std::function<void()>> m_unposted;  // fires for which the main queue had no place
    Date m_since;
    Clock::time_point m_reminded{};
    Clock::time_point m_forgot = Clock::now();  // the opening has just done it
    bool m_stopped = false;
};

}  // namespace vigil
