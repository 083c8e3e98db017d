#include <atomic>
#include <cstdio>
#include <future>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <signal.h>
#include <unistd.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
#include "host/command/GapReport.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/run/HealthPort.hpp"
#include "host/run/RunningSite.hpp"
#include "host/run/Secrets.hpp"
#include "host/run/ServiceManager.hpp"
#include "host/run/Signals.hpp"
#include "host/run/SiteSocket.hpp"
#include "host/run/StatusJson.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

struct RunOptions {
    std::string site;
    int logLevel = kLogNotice;
    std::string logFormat = "auto";
    std::string scripts;
    int metricsPort = -1;
    bool noHistory = false;
    std::size_t threads = 2;
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
        m_site.mailbox().wake();
    }

    void reload() {
        m_reload = true;
        m_site.mailbox().wake();
    }

    void serve() {
        m_manager.ready("watching");
        auto alive = Mailbox::Deadline{};
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
            const auto now = std::chrono::steady_clock::now();
            if (m_manager.aliveEvery() && now >= alive) {
                m_manager.alive();
                alive = now + *m_manager.aliveEvery();
            }
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

LogForm logFormOf(const std::string& name) {
    if (name == "json") return LogForm::Json;
    if (name == "journal") return LogForm::Journal;
    if (name == "text") return LogForm::Text;
    return isJournal(STDERR_FILENO) ? LogForm::Journal : LogForm::Text;
}

/// The user's secrets; one that cannot be had is told and none.
std::function<std::optional<std::string>(const std::string&)> secretsOf(QRVLog& log) {
    return [&log](const std::string& name) -> std::optional<std::string> {
        auto secret = Secrets(Secrets::defaultFile()).named(name);
        if (secret) return std::move(secret).value();
        log.logLevel(kLogProblem, secret.error().message);
        return std::nullopt;
    };
}

void fail(CommandContext& context, const std::string& message) {
    context.output.error(message);
    context.status = ExitStatus::Environment;
}

void run(const RunOptions& options, CommandContext& context) {
    // Both before any other thread is there.
    blockSignals();
    ServiceManager manager;
    auto file = openSite(options.site, Access::Write, context);
    if (!file) return;
    StandardLog log(stderr, options.logLevel, systemNow, logFormOf(options.logFormat));
    auto site = RunningSite::make(*file, log,
                                  {.programFolder = context.programFolder,
                                   .scriptsFolder = options.scripts,
                                   .version = versionText(),
                                   .threads = options.threads,
                                   .history = !options.noHistory,
                                   .secret = secretsOf(log)});
    if (!site) return fail(context, site.error().message);
    Service service(*site.value(), log, manager);
    std::unique_ptr<HealthPort> health;
    if (options.metricsPort >= 0) {
        auto port = HealthPort::open(static_cast<std::uint16_t>(options.metricsPort),
                                     [&] { return service.status(); });
        if (!port) return fail(context, port.error().message);
        health = std::move(port).value();
        log.logLevel(kLogNotice,
                     "metrics on http://127.0.0.1:" + std::to_string(health->port()) + "/metrics");
    }
    auto socket =
        SiteSocket::open(file->path(), [&](const std::string& question) { return service.answer(question); });
    if (!socket) log.logLevel(kLogProblem, "`vigil status` will not work: " + socket.error().message);
    if (!options.noHistory) tellGaps(*file, *site.value(), log);
    const Signals signals([&](int signal) { service.came(signal); });
    site.value()->start();
    log.logLevel(kLogNotice, site.value()->startText());
    service.serve();
}

}  // namespace

void addRunCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<RunOptions>();
    auto* command = app.add_subcommand("run", "Watch all stations of a site until SIGTERM");
    addSiteOption(*command, options->site);
    command
        ->add_option("--log-level", options->logLevel,
                     "1 problems, 2 notices as well, 3 every judgement as well (2)")
        ->type_name("N")
        ->check(CLI::Range(0, 3));
    command
        ->add_option("--log-format", options->logFormat,
                     "auto, text, journal or json; to standard error (auto)")
        ->type_name("FORM")
        ->check(CLI::IsMember({"auto", "text", "journal", "json"}));
    command
        ->add_option("--metrics-port", options->metricsPort,
                     "Answer /metrics, /health and /status on this port of 127.0.0.1; 0 takes a free one")
        ->type_name("PORT")
        ->check(CLI::Range(0, 65535));
    command
        ->add_option("--scripts", options->scripts,
                     "The folder of the scripts that monitors run (~/.config/vigil/scripts)")
        ->type_name("FOLDER");
    command->add_option("--threads", options->threads, "Threads that the stations share (2)")
        ->type_name("N")
        ->check(CLI::Range(1, 64));
    command->add_flag("--no-history", options->noHistory, "Keep no history of readings");
    command->footer(
        "SIGTERM and SIGINT end it, SIGHUP reads the site again.\n"
        "Examples:\n"
        "  vigil run\n"
        "  vigil run --site /var/lib/vigil/field.vigilsite --metrics-port 9105");
    command->callback([options, &context] { run(*options, context); });
}

}  // namespace vigil
