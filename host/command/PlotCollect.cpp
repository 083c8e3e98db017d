#include "host/command/PlotCollect.hpp"

#include <algorithm>
#include <cmath>
#include <set>

#include <fmt/format.h>

#include "host/command/PlotPath.hpp"
#include "host/command/PlotScale.hpp"
#include "host/command/WhyAnswer.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

/// What holds at a notification holds until the next one, but not for longer than so many usual steps.
constexpr double kStepsOfGap = 3.5;

class Collector {
  public:
    void watch(const std::string& key, bool text) {
        for (const auto& known : m_keys)
            if (known.first == key && known.second == text) return;
        m_keys.emplace_back(key, text);
        if (text)
            m_plot.texts.push_back({key, key});
        else
            m_plot.series.push_back({.key = key, .name = key, .unit = ""});
    }

    /// Whether it is drawn as a line or as blocks is told by the first reading of that key.
    void watch(const std::string& key) { m_open.push_back(key); }

    void add(Date time, const Readings& readings) {
        m_times.push_back({time, 0});
        std::erase_if(m_open, [&](const std::string& key) {
            const auto* reading = readings.objectForKey(key);
            if (reading) watch(key, reading->type() == kTextType || reading->type() == kDateType);
            return reading != nullptr;
        });
        for (PlotSeries& series : m_plot.series)
            if (const auto* reading = readings.objectForKey(series.key)) {
                series.name = reading->name();
                series.unit = reading->unit();
                series.points.push_back({time, reading->unitValue()});
            }
        for (PlotTexts& texts : m_plot.texts)
            if (const auto* reading = readings.objectForKey(texts.key)) addText(texts, time, *reading);
        for (const AgentProperty& reading : readings.entries())
            if (m_known.size() < kMostKnown) m_known.insert(reading.propertyName());
    }

    Plot& plot() { return m_plot; }
    const std::vector<PlotPoint>& times() const { return m_times; }

    Result<Plot> finish(const HistoryRange& range) {
        if (m_times.empty()) return Error{"no readings are stored of that time"};
        m_plot.absent = m_open;
        for (const auto& [key, text] : m_keys)
            if (!m_known.contains(key)) m_plot.absent.push_back(key);
        std::erase_if(m_plot.series, [](const PlotSeries& one) { return one.points.empty(); });
        std::erase_if(m_plot.texts, [](const PlotTexts& one) { return one.blocks.empty(); });
        if (!m_plot.absent.empty() && m_plot.series.empty() && m_plot.texts.empty())
            return Error{fmt::format("no reading \"{}\" is stored of that time; there are {}",
                                     fmt::join(m_plot.absent, "\", \""), fmt::join(m_known, ", "))};
        m_plot.since = range.since.value_or(m_times.front().time);
        m_plot.until = range.until.value_or(m_times.back().time);
        m_plot.zone = systemLocalTime;
        for (PlotTexts& texts : m_plot.texts)
            if (!texts.blocks.empty()) texts.blocks.back().to = m_times.back().time;
        return std::move(m_plot);
    }

  private:
    static constexpr std::size_t kMostKnown = 600;

    void addText(PlotTexts& texts, Date time, const AgentProperty& reading) {
        texts.name = reading.name();
        const bool date = reading.type() == kDateType;
        const std::string text =
            date ? localText(Date(reading.value()), systemLocalTime) : reading.stringValue();
        if (!texts.blocks.empty()) texts.blocks.back().to = time;
        if (texts.blocks.empty() || texts.blocks.back().text != text)
            texts.blocks.push_back({time, time, text});
    }

    Plot m_plot{};
    std::vector<std::pair<std::string, bool>> m_keys;
    std::vector<std::string> m_open;
    std::vector<PlotPoint> m_times;
    std::set<std::string> m_known;
};

/// Spans from the moments at which something held.
std::vector<PlotSpan> spansOf(const std::vector<PlotPoint>& held, double step) {
    std::vector<PlotSpan> spans;
    for (std::size_t i = 0; i < held.size(); ++i) {
        if (held[i].value == 0) continue;
        const Date longest = held[i].time.plus(step * (i + 1 < held.size() ? kStepsOfGap : 1));
        const Date to = i + 1 < held.size() ? std::min(held[i + 1].time, longest) : longest;
        if (!spans.empty() && spans.back().to == held[i].time)
            spans.back().to = to;
        else
            spans.push_back({held[i].time, to});
    }
    return spans;
}

std::string literalText(const Comparison& comparison, double value) {
    return fmt::format("{} {:.6g}", operatorText(comparison.op), value);
}

/// The comparisons of a condition become series with thresholds, and lanes of texts.
void watchCondition(Collector& collector, const ConditionNode& tree) {
    std::vector<const ConditionNode*> todo{&tree};
    while (!todo.empty()) {
        const ConditionNode& node = *todo.back();
        todo.pop_back();
        for (auto part = node.parts().rbegin(); part != node.parts().rend(); ++part)
            todo.push_back(&*part);
        const Comparison* const comparison = node.comparison();
        if (!comparison) continue;
        if (comparison->member == ComparisonMember::StringValue) collector.watch(comparison->key, true);
        const double* const literal = std::get_if<double>(&comparison->literal);
        if (!literal) continue;
        collector.watch(comparison->key, false);
        for (PlotSeries& series : collector.plot().series)
            if (series.key == comparison->key)
                series.thresholds.push_back({*literal, literalText(*comparison, *literal)});
    }
}

void addUnits(Plot& plot) {
    for (PlotSeries& series : plot.series)
        for (PlotThreshold& threshold : series.thresholds)
            if (!series.unit.empty()) threshold.label += " " + series.unit;
}

/// The time between the watches of a range.
std::vector<PlotSpan> unwatched(const std::vector<StoredWatch>& watches, Date since, Date until) {
    std::vector<PlotSpan> spans;
    Date end = since;
    for (const StoredWatch& watch : watches) {
        if (watch.from > until || (watch.to && *watch.to < since)) continue;
        if (watch.from.secondsSince(end) >= 1) spans.push_back({end, watch.from});
        end = std::max(end, watch.to.value_or(until));
    }
    if (until.secondsSince(end) >= 1) spans.push_back({end, until});
    return spans;
}

std::string rangeText(const Plot& plot) {
    return localText(plot.since, plot.zone) + " to " + localText(plot.until, plot.zone);
}

}  // namespace

Result<Plot> plotOfStation(const OpenHistory& history, const StoredStation& station,
                           const std::vector<std::string>& keys) {
    Collector collector;
    for (const std::string& key : keys)
        collector.watch(key);
    const auto source = history.reader->source(station.id, history.range);
    if (!source) return source.error();
    for (;;) {
        const auto next = source.value()->next();
        if (!next) return next.error();
        if (!next.value()) break;
        collector.add(next.value()->started, *next.value()->readings);
    }
    auto plot = collector.finish(history.range);
    if (!plot) return plot;
    plot.value().title = history.stationName(station.id);
    plot.value().subtitle = rangeText(plot.value());
    return plot;
}

Result<Plot> plotOfMonitor(const OpenHistory& history, const StoredPlugIn& monitor, MonitorReplay& replay) {
    Collector collector;
    std::vector<PlotPoint> held;
    std::vector<PlotSpan> waits;
    std::string condition;
    // The condition that is drawn is the one at the end of the range.
    const auto archives = history.reader->archives(monitor.id, {std::nullopt, history.range.until});
    if (!archives) return archives.error();
    if (!archives.value().empty())
        if (const auto last = replay.conditionIn(archives.value().back().archive)) {
            condition = last->printed();
            watchCondition(collector, last->tree());
        }
    const auto done = replay.run(history.range, [&](const MonitorCycle& cycle) {
        const StoredNotification& seen = cycle.notification;
        collector.add(seen.started, *seen.readings);
        const auto predicate = conditionOf(*replay.monitor());
        held.push_back(
            {seen.started, predicate && predicate->evaluateWithObject(seen.readings->view()) ? 1.0 : 0});
        const bool fired = cycle.replayed && cycle.replayed->outcome == CycleOutcome::Fired;
        if (fired && cycle.replayed->next) waits.push_back({seen.started, *cycle.replayed->next});
    });
    if (!done) return done.error();
    const double step = usualStep(held);
    auto plot = collector.finish(history.range);
    if (!plot) return plot;
    Plot& made = plot.value();
    made.ofMonitor = true;
    made.title = monitor.title;
    made.subtitle = history.stationName(monitor.station) + ", " + rangeText(made);
    made.condition = std::move(condition);
    made.held = spansOf(held, step);
    made.waits = std::move(waits);
    made.unwatched = unwatched(replay.watches(), made.since, std::min(made.until, systemNow()));
    for (const StoredFire& fire : replay.fires())
        if (fire.started >= made.since && fire.started <= made.until) made.fires.push_back(fire.started);
    addUnits(made);
    return plot;
}

}  // namespace vigil
