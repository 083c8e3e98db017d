#include "host/desktop/Chart.hpp"

#include <algorithm>
#include <cmath>

#include "host/desktop/Words.hpp"

// What a chart shows. Chart_Paint.cpp draws it, Chart_Drag.cpp lets people move thresholds.

namespace vigil {
namespace {

/// Readings that are drawn, each in a panel; a condition of more shows the first ones.
constexpr std::size_t kPanels = 4;
/// Above each panel stands the name of its reading.
constexpr double kTop = 20, kGap = 24, kLeft = 52, kRight = 64, kStrip = 24, kTimes = 22;
constexpr double kPanelHeight = 96;

// The parser bounds the depth.
void comparisons(const ConditionNode& node, std::vector<const Comparison*>& found) {
    if (const Comparison* comparison = node.comparison()) found.push_back(comparison);
    for (const ConditionNode& part : node.parts())
        comparisons(part, found);
}

ConditionNode replaced(const ConditionNode& node, const std::vector<std::pair<std::size_t, double>>& values,
                       std::size_t& next) {
    if (const Comparison* comparison = node.comparison()) {
        Comparison changed = *comparison;
        for (const auto& [index, value] : values)
            if (index == next) changed.literal = value;
        ++next;
        return ConditionNode(std::move(changed));
    }
    std::vector<ConditionNode> parts;
    for (const ConditionNode& part : node.parts())
        parts.push_back(replaced(part, values, next));
    return ConditionNode::compound(node.connective(), std::move(parts));
}

}  // namespace

double niceStep(double range, int wanted) {
    if (!(range > 0)) return 1;
    const double raw = range / std::max(1, wanted);
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double step : {1.0, 2.0, 5.0})
        if (step * power >= raw) return step * power;
    return 10 * power;
}

Chart::Chart(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("chart"));
    setAccessibleName(say("Readings of the condition over time"));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize Chart::sizeHint() const {
    const double panels = static_cast<double>(std::max<std::size_t>(1, m_panels.size()));
    return {600, static_cast<int>(kTop + panels * (kPanelHeight + kGap) - kGap + kStrip + kTimes)};
}

void Chart::setCondition(std::shared_ptr<ConditionPredicate> condition, ScanRule rule) {
    const bool same = m_condition && condition && m_condition->isEqual(condition.get());
    if (same && rule.onlyOnChange == m_rule.onlyOnChange && rule.retriggerMinutes == m_rule.retriggerMinutes)
        return;
    m_rule = rule;
    m_condition = std::move(condition);
    if (!m_dragged) collect();
    rescan();
    updateGeometry();
}

void Chart::collect() {
    m_panels.clear();
    m_thresholds.clear();
    m_focused.reset();
    std::vector<const Comparison*> found;
    if (m_condition && m_condition->optionalTree()) comparisons(*m_condition->optionalTree(), found);
    for (std::size_t i = 0; i < found.size(); ++i) {
        const double* literal = std::get_if<double>(&found[i]->literal);
        if (!literal) continue;
        auto panel = std::find_if(m_panels.begin(), m_panels.end(),
                                  [&](const Panel& known) { return known.key == found[i]->key; });
        if (panel == m_panels.end()) {
            if (m_panels.size() == kPanels) continue;
            panel = m_panels.insert(m_panels.end(), Panel{.key = found[i]->key});
        }
        m_thresholds.push_back(
            {i, static_cast<std::size_t>(panel - m_panels.begin()), *literal, found[i]->op});
    }
    measure();
}

void Chart::setColumns(std::shared_ptr<const Columns> columns) {
    m_columns = std::move(columns);
    columnsChanged();
}

void Chart::columnsChanged() {
    measure();
    rescan();
}

void Chart::setSpan(double seconds, Date now) {
    m_span = seconds;
    m_now = now.secondsSinceReference();
    measure();
    update();
}

void Chart::setFired(std::vector<double> fires) {
    m_fired = std::move(fires);
    update();
}

// While a threshold is dragged the scale stands still, or the line would run away from the hand.
void Chart::measure() {
    if (m_dragged) return;
    const auto& times = m_columns->times();
    const auto first = std::lower_bound(times.begin(), times.end(), m_now - m_span) - times.begin();
    for (std::size_t i = 0; i < m_panels.size(); ++i) {
        Panel& panel = m_panels[i];
        double low = INFINITY, high = -INFINITY;
        if (const auto* column = m_columns->column(panel.key))
            for (auto row = static_cast<std::size_t>(first); row < column->unitValue.size(); ++row) {
                const double value = column->unitValue[row];
                if (!std::isfinite(value)) continue;
                low = std::min(low, value);
                high = std::max(high, value);
            }
        for (const Threshold& threshold : m_thresholds) {
            if (threshold.panel != i || !std::isfinite(threshold.value)) continue;
            low = std::min(low, threshold.value);
            high = std::max(high, threshold.value);
        }
        if (!(low <= high)) low = 0, high = 1;
        const double room = high > low ? (high - low) * 0.14 : std::max(1.0, std::abs(high) * 0.1);
        panel.low = low - room;
        panel.high = high + room;
    }
}

std::shared_ptr<ConditionPredicate> Chart::moved() const {
    if (!m_condition || !m_condition->optionalTree()) return nullptr;
    std::vector<std::pair<std::size_t, double>> values;
    for (const Threshold& threshold : m_thresholds)
        values.emplace_back(threshold.comparison, threshold.value);
    std::size_t next = 0;
    const auto made = ConditionPredicate::predicateWithTree(replaced(m_condition->tree(), values, next));
    return made ? made.value() : nullptr;
}

void Chart::rescan() {
    const auto condition = m_dragged ? moved() : m_condition;
    m_result =
        condition && condition->optionalTree() ? scan(*m_columns, condition->tree(), m_rule) : ScanResult{};
    if (onScanned) onScanned();
    update();
}

QRectF Chart::panelBox(std::size_t panel) const {
    const double top = kTop + static_cast<double>(panel) * (kPanelHeight + kGap);
    return {kLeft, top, std::max(10.0, width() - kLeft - kRight), kPanelHeight};
}

double Chart::xOf(double time) const {
    const QRectF box = panelBox(0);
    return box.right() - (m_now - time) / m_span * box.width();
}

double Chart::yOf(const Panel& panel, const QRectF& box, double value) const {
    return box.bottom() - (value - panel.low) / (panel.high - panel.low) * box.height();
}

}  // namespace vigil
