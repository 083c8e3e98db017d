#include "host/run/Metrics.hpp"

#include <initializer_list>
#include <utility>

#include <fmt/format.h>

namespace vigil {
namespace {

using Labels = std::initializer_list<std::pair<const char*, std::string>>;

std::string escaped(const std::string& value) {
    std::string text;
    for (const char c : value) {
        if (c == '\\' || c == '"') text += '\\';
        if (c == '\n')
            text += "\\n";
        else
            text += c;
    }
    return text;
}

class Page {
  public:
    void family(const char* name, const char* type, const char* help) {
        m_name = name;
        m_text += fmt::format("# HELP {} {}\n# TYPE {} {}\n", name, help, name, type);
    }
    template <class Number>
    void sample(Labels labels, Number value, const char* suffix = "") {
        m_text += m_name;
        m_text += suffix;
        const char* before = "{";
        for (const auto& [name, label] : labels) {
            m_text += fmt::format("{}{}=\"{}\"", before, name, escaped(label));
            before = ",";
        }
        if (labels.size() != 0) m_text += '}';
        m_text += fmt::format(" {}\n", value);
    }
    void histogram(const char* name, const char* help, const Histogram::Counts& counts) {
        family(name, "histogram", help);
        std::uint64_t below = 0;
        for (std::size_t i = 0; i < Histogram::kBounds.size(); ++i) {
            below += counts.each[i];
            sample({{"le", fmt::format("{}", Histogram::kBounds[i])}}, below, "_bucket");
        }
        sample({{"le", "+Inf"}}, counts.all, "_bucket");
        sample({}, counts.sum, "_sum");
        sample({}, counts.all, "_count");
    }
    std::string take() { return std::move(m_text); }

  private:
    std::string m_name;
    std::string m_text;
};

void addStations(Page& page, const SiteStatus& status) {
    page.family("vigil_messages_total", "counter", "Messages that a station's feed brought.");
    for (const auto& station : status.stations)
        page.sample({{"station", station.name}}, station.messages);
    page.family("vigil_notifications_total", "counter", "Batches of readings that were announced.");
    for (const auto& station : status.stations)
        page.sample({{"station", station.name}}, station.notifications);
    page.family("vigil_dropped_total", "counter", "What was left out, by why.");
    for (const auto& station : status.stations)
        for (const auto& [why, count] : station.drops)
            page.sample({{"station", station.name}, {"why", why}}, count);
    page.family("vigil_feed_live", "gauge", "1 while the station's feed is live.");
    for (const auto& station : status.stations)
        page.sample({{"station", station.name}}, station.feedState == "live" ? 1 : 0);
    page.family("vigil_station_queue", "gauge", "Messages that wait for their turn.");
    for (const auto& station : status.stations)
        page.sample({{"station", station.name}}, station.queued);
    page.family("vigil_data_age_seconds", "gauge", "Since the station's last news.");
    for (const auto& station : status.stations)
        if (station.lastData)
            page.sample({{"station", station.name}}, status.now.secondsSince(*station.lastData));
}

void addMonitors(Page& page, const SiteStatus& status) {
    page.family("vigil_cycles_total", "counter", "Cycles of a monitor, by how they ended.");
    for (const auto& station : status.stations)
        for (const auto& monitor : station.monitors)
            for (const auto& [outcome, count] :
                 {std::pair{"waiting", monitor.waiting}, std::pair{"missed", monitor.missed},
                  std::pair{"fired", monitor.fired}})
                page.sample({{"station", station.name}, {"monitor", monitor.title}, {"outcome", outcome}},
                            count);
    page.family("vigil_monitor_ok", "gauge", "1 while an active monitor can be judged or waits.");
    for (const auto& station : status.stations)
        for (const auto& monitor : station.monitors)
            if (monitor.active || monitor.state == "failed")
                page.sample({{"station", station.name}, {"monitor", monitor.title}},
                            monitor.state == "watching" || monitor.state == "waiting" ? 1 : 0);
}

}  // namespace

std::string metricsText(const SiteStatus& status) {
    Page page;
    page.family("vigil_info", "gauge", "The version that runs.");
    page.sample({{"version", status.version}}, 1);
    page.family("vigil_start_time_seconds", "gauge", "When the service started, in Unix time.");
    page.sample({}, fmt::format("{:.3f}", status.since.secondsSinceUnix()));
    addStations(page, status);
    addMonitors(page, status);
    page.family("vigil_actions_total", "counter", "Actions that ended, by kind and result.");
    for (const auto& [of, count] : status.actions)
        page.sample({{"kind", of.first}, {"result", of.second}}, count);
    page.family("vigil_action_failures_total", "counter", "Actions that did not do what they should.");
    page.sample({}, status.actionFailures);
    page.family("vigil_writes_waiting", "gauge", "Fires and effects that are not on the disk yet.");
    page.sample({}, status.writesWaiting);
    page.family("vigil_writes_refused_total", "counter", "Fires and effects that found no place.");
    page.sample({}, status.writesRefused);
    page.family("vigil_commits_total", "counter", "Transactions of the site file.");
    page.sample({}, status.commits);
    page.family("vigil_history_written_total", "counter", "Notifications written to the history.");
    page.sample({}, status.historyWritten);
    page.family("vigil_history_lost_total", "counter", "Notifications that the history could not keep.");
    page.sample({}, status.historyLost);
    page.family("vigil_log_lines_lost_total", "counter", "Lines of the log that could not be written.");
    page.sample({}, status.lostLogLines);
    page.family("vigil_history_queue", "gauge", "Notifications that wait to be written.");
    page.sample({}, status.historyQueued);
    page.family("vigil_main_queue", "gauge", "Tasks that wait for the main thread.");
    page.sample({}, status.mainQueue);
    page.family("vigil_threads", "gauge", "Threads that stations share, and how many of them are away.");
    page.sample({{"state", "all"}}, status.threads);
    page.sample({{"state", "away"}}, status.threadsAway);
    page.family("vigil_problems", "gauge", "What `vigil status` tells as wrong.");
    page.sample({}, status.problems.size());
    page.histogram("vigil_cycle_seconds", "Cycles that did not fire.", status.judged);
    page.histogram("vigil_fire_seconds", "Cycles that fired, with their actions.", status.fired);
    page.histogram("vigil_notification_seconds", "Announcements, all monitors of the station together.",
                   status.notifications);
    return page.take();
}

}  // namespace vigil
