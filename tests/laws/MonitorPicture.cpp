#include "tests/laws/MonitorPicture.hpp"

#include <algorithm>
#include <cstdio>

namespace vigil::test {
namespace {

std::string exact(const std::optional<Date>& date) {
    if (!date) return "none";
    char text[64];
    std::snprintf(text, sizeof text, "%a", date->secondsSinceReference());
    return text;
}

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : ", ") + part;
    return "{" + text + "}";
}

std::string nodeText(const Criterion& node) {
    std::string text = node.className() + " " + node.name().value_or("-");
    const auto children = node.children();
    if (!children) return text;
    std::vector<std::string> parts;
    for (const auto& child : *children)
        parts.push_back(nodeText(*child));
    return text + joined(parts);
}

std::string shownText(const DisplayValue& value) {
    if (std::holds_alternative<std::shared_ptr<TextField>>(value)) return "field " + *stringValue(value);
    if (const auto* popUp = std::get_if<std::shared_ptr<PopUpButton>>(&value))
        return "pop-up " + titleOfSelectedItem(value).value_or("-") + joined((*popUp)->itemTitles());
    if (std::holds_alternative<std::shared_ptr<MenuItem>>(value)) return "item";
    return "text " + stringValue(value).value_or("-");
}

template <class Rows>
std::string pictureOfRows(const std::shared_ptr<Rows>& rows, auto pictureOfEntry) {
    if (!rows) return "none";
    std::vector<std::string> all;
    for (const auto& row : *rows) {
        std::vector<std::string> parts;
        for (const auto& entry : row)
            parts.push_back(pictureOfEntry(entry));
        all.push_back(joined(parts));
    }
    return joined(all);
}

std::vector<std::string> picturesOf(const std::optional<EvaluationDictionary>& dictionary) {
    if (!dictionary) return {"none"};
    std::vector<std::string> all;
    for (const std::string& key : dictionary->keys())
        all.push_back(pictureOf(*dictionary->objectForKey(key)));
    return all;
}

}  // namespace

std::string pictureOf(const AgentProperty& reading) {
    return reading.propertyName() + "=" + numberText(reading.value()) + "/" +
           numberText(reading.unitValue()) + "/" + reading.stringValue() + "@" + exact(reading.time());
}

std::string pictureOfCycle(const std::string& outcome, std::vector<std::string> judged,
                           const std::optional<Date>& next, const std::string& status,
                           std::vector<std::string> snapshot) {
    std::sort(judged.begin(), judged.end());
    std::sort(snapshot.begin(), snapshot.end());
    return outcome + " of " + joined(judged) + " next " + exact(next) + "\n  " + status + "\n  " +
           joined(snapshot);
}

std::string pictureOf(const QRVVigilPlugIn& monitor) {
    const auto interval = monitor.retriggerInterval();
    const auto condition = monitor.predicate();
    std::string text = monitor.title();
    text += "\n" + pictureOfRows(monitor.ruleEditorStoredCriteria(),
                                 [](const auto& node) { return nodeText(*node); });
    text += "\n" + pictureOfRows(monitor.ruleEditorStoredDisplayValues(),
                                 [](const DisplayValue& value) { return shownText(value); });
    text += monitor.evaluating() ? "\nactive " : "\nidle ";
    text += interval ? (interval->isInteger() ? "integer " : "real ") + numberText(interval->doubleValue())
                     : "none";
    text += "\n" + exact(monitor.retriggerDate());
    text += "\n" + joined(picturesOf(monitor.lastEvaluationDictionary()));
    text += monitor.triggerOnlyOnChange() ? "\nonly on change" : "\nalways";
    return text + "\n" + (condition ? condition->printed() : "none");
}

void CyclePicture::cycleEnded(const Object& plugIn, const CycleReport& report) {
    const auto& monitor = dynamic_cast<const QRVVigilPlugIn&>(plugIn);
    std::vector<std::string> judged;
    for (KeyTable::Slot slot = 0; report.judged.table && slot < report.judged.table->size(); ++slot)
        if (const AgentProperty* reading = report.judged.at(slot)) judged.push_back(pictureOf(*reading));
    last = pictureOfCycle(outcomeName(report.outcome), std::move(judged), report.next, monitor.actionStatus(),
                          picturesOf(monitor.lastEvaluationDictionary()));
}

}  // namespace vigil::test
