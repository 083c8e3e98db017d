#include "tests/laws/RandomMonitor.hpp"

#include <cmath>

#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

namespace vigil::test {
namespace {

const std::vector<std::string> kKeys = {"a", "b", "windChill", "windSpeed", "sky"};
const std::vector<std::string> kConditions = {
    "windChill.unitValue < 10 OR windSpeed.unitValue > 25",
    "a.unitValue >= 5 AND b.unitValue != 5",
    "sky.stringValue == \"Rain\"",
    "sky.stringValue != \"rain\" AND (a.unitValue < 12.6 OR b.value >= CAST(5, \"NSDate\"))",
    "a.value == CAST(12.5, \"NSDate\") OR windSpeed.unitValue <= 0",
    "a.unitValue != 0",
    "a.unitValue > 1000",
};
const std::vector<double> kValues = {0, -0.0, 5, 10, 12.5, 12.6, 30, -40, NAN};
const std::vector<std::string> kTexts = {"Rain", "rain", "", "Regen \xC3\xBC"};

}  // namespace

RandomMonitor::RandomMonitor(std::uint32_t seed) : m_random(seed), m_table(KeyTable::make(kKeys)) {
    m_settings.condition = kConditions[static_cast<std::size_t>(below(static_cast<int>(kConditions.size())))];
    m_settings.onlyOnChange = below(2) == 0;
    const std::vector<std::optional<Number>> intervals = {Number(1),   Number(0),  Number(0.5),
                                                          Number(0.1), Number(-2), std::nullopt};
    m_settings.interval = intervals[static_cast<std::size_t>(below(static_cast<int>(intervals.size())))];
    m_settings.hasDate = below(4) != 0;
}

void RandomMonitor::apply(QRVVigilPlugIn& monitor) const {
    monitor.setPredicate(ConditionPredicate::predicateWithFormat(m_settings.condition).value());
    monitor.setTriggerOnlyOnChange(m_settings.onlyOnChange);
    monitor.setRetriggerInterval(m_settings.interval);
    if (!m_settings.hasDate) monitor.setRetriggerDate(std::nullopt);
    monitor.setEvaluating(true);
}

void RandomMonitor::fill(QRVVigilPlugIn& monitor) {
    monitor.setTitle(kTexts[static_cast<std::size_t>(below(4))]);
    if (below(3) == 0) monitor.setRetriggerDate(Date(below(1000000) + 0.1));
    if (below(4) != 0) monitor.setLastEvaluationDictionary(EvaluationDictionary(batch(Date(below(100000)))));
    if (below(5) == 0) return;  // no rows at all
    auto paths = std::make_shared<QRVVigilPlugIn::CriteriaRows>();
    auto values = std::make_shared<QRVVigilPlugIn::DisplayValueRows>();
    for (int rows = below(5); rows > 0; --rows) {
        const auto root = monitor.criteria()->at(static_cast<std::size_t>(below(6)));
        paths->push_back({root});
        values->push_back({root->displayValue()});
        if (root->numberOfChildren() == 0) continue;
        const auto child = root->childAtIndex(below(static_cast<int>(root->numberOfChildren())));
        paths->back().push_back(child);
        DisplayValue shown = child->name() ? DisplayValue(*child->name()) : DisplayValue();
        if (below(2) == 0) shown = std::make_shared<TextField>(kTexts[static_cast<std::size_t>(below(4))]);
        if (below(4) == 0) {
            auto popUp = std::make_shared<PopUpButton>();
            popUp->addItemWithTitle("a.wav");
            popUp->addItemWithTitle("b.mp3");
            popUp->selectItemWithTitle(below(2) == 0 ? "b.mp3" : "gone.wav");
            shown = popUp;
        }
        values->back().push_back(shown);
        // one control in two rows, and one node in two paths
        if (below(3) == 0) {
            paths->push_back(paths->back());
            values->push_back(values->back());
        }
    }
    monitor.setRuleEditorStoredCriteria(paths);
    monitor.setRuleEditorStoredDisplayValues(values);
}

double RandomMonitor::step() {
    switch (below(6)) {
        case 0:
            return 0;
        case 1:
            return 60;
        case 2:
            return 30;
        case 3:
            return below(120) + 0.25;
        default:
            return below(20);
    }
}

AgentProperty RandomMonitor::reading(const std::string& key, Date now) {
    const int age = below(6);
    const auto time = age == 0 ? std::nullopt : std::optional(age == 1 ? now.plus(-60) : now);
    if (key == "sky") return AgentProperty::text(key, kTexts[static_cast<std::size_t>(below(4))], time);
    return AgentProperty::number(
        key, kValues[static_cast<std::size_t>(below(static_cast<int>(kValues.size())))], time);
}

std::shared_ptr<const Readings> RandomMonitor::batch(Date now) {
    std::vector<AgentProperty> entries;
    if (below(12) != 0)
        for (const std::string& key : kKeys)
            for (int times = below(4); times > 0; times -= 2)
                entries.push_back(reading(key, now));
    return below(2) == 0 ? Readings::make(m_table, std::move(entries)) : Readings::make(std::move(entries));
}

}  // namespace vigil::test
