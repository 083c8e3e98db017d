#pragma once

#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "host/desktop/LogBook.hpp"
#include "host/desktop/MailboxPump.hpp"
#include "host/desktop/RefreshPace.hpp"
#include "host/desktop/SiteEditor.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/run/RunningSite.hpp"
#include "host/run/SiteSocket.hpp"
#include "host/settings/Settings.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {

class RuleEditor;
class ToolbarItem;

/// A site that runs behind a window: what `vigil run` does, turned by Qt's event loop, and what people change
/// of it. Everything is written down by itself, so there is nothing to save. Main thread.
class SiteSession {
  public:
    struct Options {
        std::string programFolder{};
        std::string scriptsFolder{};  ///< empty: the user's
        std::string version{};
        bool history = true;
        Settings settings{};
        /// What is wrong in the file of settings, which then are all defaults.
        std::vector<std::string> mistakes{};
    };
    /// What a window hears. Each may be absent.
    struct Events {
        std::function<void()> changed{};  ///< stations or monitors came, went or got another name
        std::function<void()> refresh{};  ///< news: at most ten a second, at least one
        std::function<void(RecordId)> select{};
        std::function<void(const std::string&)> trouble{};  ///< what somebody asked for cannot be had
        std::function<void()> raise{};                      ///< somebody started the program again
    };

    static Result<std::unique_ptr<SiteSession>, SiteError> open(const std::string& path, Options options);
    SiteSession(const SiteSession&) = delete;
    SiteSession& operator=(const SiteSession&) = delete;
    /// Stops the site. At rest.
    ~SiteSession();

    void setEvents(Events events) { m_events = std::move(events); }
    void start();

    RunningSite& site() { return *m_site; }
    LogBook& log() { return m_log; }
    const std::string& path() const { return m_path; }
    /// Something that is shown has changed; any thread.
    void ring() { m_pace.ring(); }

    /// Runs the call once no plug-in acts. False where the site closes.
    bool atRest(std::function<void()> call) { return m_site->mailbox().dispatchAtRest(std::move(call)); }

    /// Adds a plug-in that was made for one of the site's stations (docs: SiteWindowController::addPlugIn).
    void addPlugIn(std::shared_ptr<QRVPlugIn> plugIn, bool nameUniquely, bool select);
    /// A monitor with a sound for a first site.
    void addFirstMonitor();
    /// Adds a row as it was, under a title of its own; for undoing.
    void restorePlugIn(PlugInRecord record);
    /// `removed` gets the row as it was.
    void removePlugIn(RecordId id, std::function<void(PlugInRecord)> removed);
    /// Adds a station (id 0) or changes one. `done` hears its id or why not.
    void putStation(const StationRecord& record, std::function<void(Result<RecordId>)> done);
    void removeStation(RecordId id);

    /// Plays and speaks what the monitor's rows would; `ended` hears when that is over. False where it is not
    /// there.
    bool test(RecordId plugIn, std::function<void()> ended);
    /// What came so far of what that monitor was asked for by hand since then, the oldest first: told at each
    /// news, the last time when all of it has ended.
    void watchEffects(RecordId plugIn, Date since, std::function<void(std::vector<EffectRecord>)> told);
    /// Does what one row of the monitor's actions would do in a fire, whatever its kind; `ended` hears what
    /// the ledger says of it, or nothing where nothing came of it. False where it is not there.
    using RowTested = std::function<void(std::optional<EffectRecord>)>;
    bool testRow(RecordId plugIn, std::shared_ptr<RuleEditor> editor, std::int64_t row, RowTested ended);
    /// Asks for an action of the plug-in's table; what it throws is told as trouble.
    void perform(RecordId plugIn, const std::string& action);
    /// The ledger, read on the editor's thread.
    void readLedger(const EffectQuery& query, std::function<void(Result<std::vector<EffectRecord>>)> done);

    /// The items that the site's toolbar plug-ins offer for a station.
    std::vector<std::shared_ptr<ToolbarItem>> toolbarItems(RecordId station);

    const std::shared_ptr<SiteWindowController>& controller() const { return m_controller; }

  private:
    class Controller;
    class Bell;

    SiteSession(std::string path, Options options);
    Result<Done, SiteError> load();
    void edit(SiteEditor::Change change, SiteEditor::Changed changed);
    void listen();
    void trouble(const std::string& words);
    void actRow(HostedPlugIn& of, RecordId id, const RuleEditor& editor, std::int64_t row);
    void watchOn(RecordId id, Date since, int left, std::function<void(std::vector<EffectRecord>)> told);
    void awaitEffect(RecordId id, Date since, int left, RowTested ended);
    std::string answer(const std::string& question);

    const std::string m_path;
    const Options m_options;
    Events m_events;
    StandardLog m_standardLog;
    LogBook m_log{m_standardLog};
    std::unique_ptr<SiteFile> m_file;
    std::unique_ptr<RunningSite> m_site;
    std::unique_ptr<MailboxPump> m_pump;
    std::unique_ptr<SiteEditor> m_editor;
    std::unique_ptr<SiteSocket> m_socket;
    std::shared_ptr<SiteWindowController> m_controller;
    std::shared_ptr<Bell> m_bell;
    std::map<RecordId, std::weak_ptr<Station>> m_heard;
    std::map<RecordId, std::vector<std::unique_ptr<HostedPlugIn>>> m_toolbarPlugIns;
    std::set<std::string> m_titles;  // of plug-ins on their way into the file
    RefreshPace m_pace;
    QTimer m_tick;
};

}  // namespace vigil
