#include <atomic>
#include <cstdio>
#include <future>
#include <memory>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <signal.h>
#include <unistd.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
#include "host/command/GapReport.hpp"
#include "host/command/RunChoice.hpp"
#include "host/command/SettingsChoice.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/run/HealthPort.hpp"
#include "host/run/ProcessMemory.hpp"
#include "host/run/RunningSite.hpp"
#include "host/run/Secrets.hpp"
#include "host/run/ServiceManager.hpp"
#include "host/run/Signals.hpp"
#include "host/run/SignsOfLife.hpp"
#include "host/run/SiteSocket.hpp"
#include "host/run/StatusJson.hpp"
#include "host/services/SystemClock.hpp"
#include "host/setup/ServiceOptions.hpp"

namespace vigil {
namespace {

struct RunOptions {
    std::string site;
    RunChoice choice;
};

constexpr auto kTick = std::chrono::seconds(1);
/// Whoever asks how things are is not kept waiting longer by a busy main thread.
constexpr auto kStatusPatience = std::chrono::seconds(2);
constexpr auto kSlice = std::chrono::milliseconds(20);

/// The site with everything around it that makes it a service.
class Service {
  public:
    Service(RunningSite& site, QRVLog& log, ServiceManager& manager)
        : m_site(site), m_log(log), m_manager(manager) {}

    /// Any thread but the main one.
    Result<SiteStatus> status() {
        auto promise = std::make_shared<std::promise<Result<SiteStatus>>>();
        auto answer = promise->get_future();
        const bool posted = m_site.mailbox().dispatchAsync([this, promise] {
            try {
                promise->set_value(m_site.status());
            } catch (const std::exception& failure) {
                promise->set_value(Error{std::string("the status cannot be told: ") + failure.what()});
            }
        });
        const auto end = std::chrono::steady_clock::now() + kStatusPatience;
        while (posted && !m_stop && std::chrono::steady_clock::now() < end)
            if (answer.wait_for(kSlice) == std::future_status::ready) return answer.get();
        return Error{m_stop ? "it is ending" : "its main thread does not answer"};
    }

    std::string answer(const std::string& question) {
        if (question == "reload") {
            reload();
            return "{\"reloading\":true}\n";
        }
        if (question != "status") return "{\"error\":\"status and reload are understood\"}\n";
        const auto now = status();
        return now ? statusJson(now.value()) + "\n"
                   : nlohmann::json{{"error", now.error().message}}.dump() + "\n";
    }

    void came(int signal) {
        if (signal == SIGHUP) return reload();
        m_stop = true;
        m_site.beginStop();
        m_site.mailbox().wake();
    }

    void reload() {
        m_reload = true;
        m_site.mailbox().wake();
    }

    void serve() {
        m_manager.ready("watching");
        std::optional<SignsOfLife> signs;
        if (m_manager.aliveEvery())
            signs.emplace(m_site.mailbox(), *m_manager.aliveEvery(), [this] { m_manager.alive(); });
        while (!m_stop) {
            const auto until = std::chrono::steady_clock::now() + kTick;
            while (!m_stop && !m_reload && m_site.mailbox().serveOne(until) &&
                   std::chrono::steady_clock::now() < until) {
            }
            if (m_stop) break;
            if (m_reload.exchange(false)) {
                m_manager.reloading();
                m_site.reload();
                m_manager.ready("watching");
            }
            m_site.tick();
        }
        m_manager.stopping();
        m_log.logLevel(kLogNotice, "ending");
        m_site.stop();
    }

  private:
    RunningSite& m_site;
    QRVLog& m_log;
    ServiceManager& m_manager;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_reload{false};
};

LogForm logFormOf(LogFormat format) {
    switch (format) {
        case LogFormat::Json:
            return LogForm::Json;
        case LogFormat::Journal:
            return LogForm::Journal;
        case LogFormat::Text:
            return LogForm::Text;
        case LogFormat::Auto:
            break;
    }
    return isJournal(STDERR_FILENO) ? LogForm::Journal : LogForm::Text;
}

void fail(CommandContext& context, const std::string& message) {
    context.output.error(message);
    context.status = ExitStatus::Environment;
}

void watch(const RunOptions& options, CommandContext& context) {
    const auto settings = settingsOf(context);
    if (!settings) return;
    const RunSettings run = chosen(options.choice, settings->run);
    // All before any other thread is there.
    prepareMemory();
    blockSignals();
    ServiceManager manager;
    auto file = openSite(options.site.empty() ? effective(*settings).site.file : options.site, Access::Write,
                         context);
    if (!file) return;
    StandardLog log(stderr, run.logLevel, systemNow, logFormOf(run.logFormat));
    auto site = RunningSite::make(
        *file, log,
        {.programFolder = context.programFolder,
         .scriptsFolder = run.scripts,
         .version = versionText(),
         .threads = static_cast<std::size_t>(run.threads),
         .history = run.history,
         .historyDays = run.historyDays,
         .player = playerOptions(*settings, context.programFolder).setup,
         .automation = automationOptions(*settings, context.programFolder),
         .lostLogLines = [&log] { return log.lostLines(); },
         .secret = userSecrets([&log](const std::string& why) { log.logLevel(kLogProblem, why); })});
    if (!site) return fail(context, site.error().message);
    Service service(*site.value(), log, manager);
    std::unique_ptr<HealthPort> health;
    if (run.metricsPort) {
        auto port =
            HealthPort::open(static_cast<std::uint16_t>(*run.metricsPort), [&] { return service.status(); });
        if (!port) return fail(context, port.error().message);
        health = std::move(port).value();
        log.logLevel(kLogNotice,
                     "metrics on http://127.0.0.1:" + std::to_string(health->port()) + "/metrics");
    }
    auto socket =
        SiteSocket::open(file->path(), [&](const std::string& question) { return service.answer(question); });
    if (!socket) log.logLevel(kLogProblem, "`vigil status` will not work: " + socket.error().message);
    if (run.history) tellGaps(*file, *site.value(), log);
    const Signals signals([&](int signal) { service.came(signal); });
    site.value()->start();
    log.logLevel(kLogNotice, site.value()->startText());
    trimMemory();
    service.serve();
}

}  // namespace

void addRunCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<RunOptions>();
    auto* command = app.add_subcommand("run", "Watch all stations of a site until SIGTERM");
    addSiteOption(*command, options->site);
    addRunOptions(*command, options->choice);
    command->footer(
        "What no option says is as the settings say (`vigil settings show`), which are read at the start.\n"
        "SIGTERM and SIGINT end it, SIGHUP reads the site again.\n"
        "Examples:\n"
        "  vigil run\n"
        "  vigil run --site /var/lib/vigil/field.vigilsite --metrics-port 9105");
    command->callback([options, &context] { watch(*options, context); });
}

}  // namespace vigil
