#include "conditions/ConditionPredicate.hpp"
#include "host/desktop/ConditionView.hpp"
#include "host/desktop/MonitorPane.hpp"
#include "host/run/PlugInState.hpp"
#include "platform/InterfaceOwner.hpp"

// The picture of a monitor's condition.

namespace vigil {

void MonitorPane::makeChart(QWidget& page, QLayout& column) {
    if (!m_plugIn || !m_view->condition()) return;
    RecordId station = 0;
    for (const StationRecord& record : m_session.site().stations())
        if (m_session.site().stationOf(record.id) == m_plugIn->agent()) station = record.id;
    m_chart = new ChartCard(m_session.path(), station, m_id, &page);
    column.addWidget(m_chart);
    // The comparisons stand in the rows in the order of the condition.
    m_chart->chart().onThreshold = [this](std::size_t comparison, double value) {
        m_view->condition()->setNumber(comparison, value);
    };
}

void MonitorPane::refreshChart(Date now) {
    if (!m_chart) return;
    InterfaceOwner& owner = *m_plugIn->interfaceOwner();
    const auto valueOf = [&](const char* name) {
        const auto* property = owner.propertyNamed(name);
        return property ? property->get(owner) : Value();
    };
    const Value held = valueOf("predicate"), onChange = valueOf("triggerOnlyOnChange");
    const auto* object = held.as<std::shared_ptr<Object>>();
    const auto* only = onChange.as<bool>();
    ScanRule rule{.retriggerMinutes = 0, .onlyOnChange = only && *only};
    const Value minutes = valueOf("retriggerInterval");
    if (const auto* whole = minutes.as<std::int64_t>()) rule.retriggerMinutes = static_cast<double>(*whole);
    if (const auto* real = minutes.as<double>()) rule.retriggerMinutes = *real;
    m_chart->show(object ? std::dynamic_pointer_cast<ConditionPredicate>(*object) : nullptr, rule, now);
}

}  // namespace vigil
