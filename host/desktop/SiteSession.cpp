#include "host/desktop/SiteSession.hpp"

#include <atomic>
#include <future>
#include <utility>

#include <nlohmann/json.hpp>

#include "host/run/Secrets.hpp"
#include "host/run/StatusJson.hpp"
#include "host/services/SystemClock.hpp"
#include "host/setup/EffectiveSettings.hpp"
#include "host/setup/ServiceOptions.hpp"
#include "host_contract/QRVKit.hpp"

// How a session comes to be and ends. SiteSession_Edits.cpp holds what people change.

namespace vigil {

/// Hears of every notification, on the threads that post them.
class SiteSession::Bell : public Object {
  public:
    explicit Bell(RefreshPace& pace) : m_pace(pace) {}
    std::string className() const override { return "Bell"; }
    void dataChanged(const Notification&) { m_first.exchange(false) ? m_pace.ringAtOnce() : m_pace.ring(); }

  private:
    RefreshPace& m_pace;
    std::atomic<bool> m_first{true};
};

class SiteSession::Controller : public SiteWindowController {
  public:
    explicit Controller(SiteSession& session) : m_session(session) {}
    void addPlugIn(std::shared_ptr<QRVPlugIn> plugIn, bool nameUniquely, bool select) override {
        m_session.addPlugIn(std::move(plugIn), nameUniquely, select);
    }

  private:
    SiteSession& m_session;
};

SiteSession::SiteSession(std::string path, Options options)
    : m_path(std::move(path)),
      m_options(std::move(options)),
      m_standardLog(stderr, kLogProblem, systemNow),
      m_pace([this] {
          if (m_events.refresh) m_events.refresh();
      }) {
    m_bell = std::make_shared<Bell>(m_pace);
    m_controller = std::make_shared<Controller>(*this);
}

Result<std::unique_ptr<SiteSession>, SiteError> SiteSession::open(const std::string& path, Options options) {
    std::unique_ptr<SiteSession> made(new SiteSession(path, std::move(options)));
    if (auto loaded = made->load(); !loaded) return loaded.error();
    return made;
}

Result<Done, SiteError> SiteSession::load() {
    auto file = SiteFile::open(m_path, Access::Write);
    if (!file) return file.error();
    m_file = std::move(file).value();
    const Settings settings = effective(m_options.settings);
    auto site = RunningSite::make(
        *m_file, m_log,
        {.programFolder = m_options.programFolder,
         .scriptsFolder = m_options.scriptsFolder.empty() ? settings.run.scripts : m_options.scriptsFolder,
         .version = m_options.version,
         .history = m_options.history && settings.run.history,
         .historyDays = settings.run.historyDays,
         .player = playerOptions(settings, m_options.programFolder).setup,
         .automation = automationOptions(settings, m_options.programFolder),
         .lostLogLines = [this] { return m_standardLog.lostLines(); },
         .secret = userSecrets([this](const std::string& why) { m_log.logLevel(kLogProblem, why); }),
         .turn = [this](Mailbox::Deadline until) { m_pump->turn(until); }});
    if (!site) return SiteError{.kind = SiteError::Kind::Environment, .message = site.error().message};
    m_site = std::move(site).value();
    m_pump = std::make_unique<MailboxPump>(m_site->mailbox());
    m_editor = std::make_unique<SiteEditor>(m_path, m_site->mailbox());
    auto socket = SiteSocket::open(m_path, [this](const std::string& question) { return answer(question); });
    if (socket)
        m_socket = std::move(socket).value();
    else
        m_log.logLevel(kLogProblem, "`vigil status` will not work: " + socket.error().message);
    return Done{};
}

SiteSession::~SiteSession() {
    m_tick.stop();
    m_events = {};
    m_socket.reset();
    m_editor.reset();
    m_toolbarPlugIns.clear();
    if (m_site) m_site->stop();
    if (m_pump) m_pump->release();
    m_site.reset();
}

void SiteSession::start() {
    for (const std::string& mistake : m_options.mistakes)
        m_log.logLevel(kLogProblem, mistake);
    m_site->start();
    m_log.logLevel(kLogNotice, m_site->startText());
    listen();
    QObject::connect(&m_tick, &QTimer::timeout, [this] {
        m_site->tick();
        m_pace.ring();
    });
    m_tick.start(1000);
}

// Stations that are new, or that stand for others now.
void SiteSession::listen() {
    for (const StationRecord& record : m_site->stations()) {
        const auto station = m_site->stationOf(record.id);
        if (m_heard[record.id].lock() == station) continue;
        m_heard[record.id] = station;
        m_toolbarPlugIns.erase(record.id);
        m_site->world().notificationCenter().addObserver(m_bell, &Bell::dataChanged,
                                                         kAppRealTimeDataNotification, station);
    }
}

// On the socket's thread.
std::string SiteSession::answer(const std::string& question) {
    if (question == "show") {
        m_site->mailbox().dispatchAsync([this] {
            if (m_events.raise) m_events.raise();
        });
        return "{\"shown\":true}\n";
    }
    if (question == "reload") {
        m_site->mailbox().dispatchAtRest([this] {
            m_site->reload();
            listen();
            if (m_events.changed) m_events.changed();
        });
        return "{\"reloading\":true}\n";
    }
    if (question != "status") return "{\"error\":\"status, reload and show are understood\"}\n";
    const auto promise = std::make_shared<std::promise<std::string>>();
    auto told = promise->get_future();
    const bool posted = m_site->mailbox().dispatchAsync(
        [this, promise] { promise->set_value(statusJson(m_site->status()) + "\n"); });
    if (posted && told.wait_for(std::chrono::seconds(2)) == std::future_status::ready) return told.get();
    return "{\"error\":\"its main thread does not answer\"}\n";
}

void SiteSession::trouble(const std::string& words) {
    m_log.logLevel(kLogProblem, words);
    if (m_events.trouble) m_events.trouble(words);
}

}  // namespace vigil
