#include "host/command/WhyAnswer.hpp"

#include <algorithm>
#include <cmath>

#include "host_contract/EvaluationDictionary.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {
namespace {

bool holds(const ConditionNode& node, const ReadingsView& readings) {
    const auto predicate = ConditionPredicate::predicateWithTree(node);
    return predicate && predicate.value()->evaluateWithObject(readings);
}

std::string printed(const ConditionNode& node) {
    const auto predicate = ConditionPredicate::predicateWithTree(node);
    return predicate ? predicate.value()->printed() : std::string();
}

/// The readings of the batch that were judged: all of them, unless only changes count.
std::shared_ptr<const Readings> judgedOf(const Readings& batch, const std::vector<std::string>& inputs) {
    std::vector<AgentProperty> entries;
    for (const AgentProperty& reading : batch.entries())
        if (std::binary_search(inputs.begin(), inputs.end(), reading.propertyName()))
            entries.push_back(reading);
    return Readings::make(batch.table(), std::move(entries));
}

std::optional<double> marginOf(const Comparison& comparison, double number) {
    if (comparison.op == ComparisonOperator::NotEqual) return std::nullopt;
    double literal = 0;
    if (const auto* value = std::get_if<double>(&comparison.literal))
        literal = *value;
    else if (const auto* date = std::get_if<Date>(&comparison.literal))
        literal = date->secondsSinceReference();
    else
        return std::nullopt;
    const double distance = std::abs(number - literal);
    return std::isnan(distance) ? std::nullopt : std::optional(distance);
}

ComparisonAnswer answer(const Comparison& comparison, Date time, const Readings& batch,
                        const Readings& judged) {
    const ConditionNode node(comparison);
    ComparisonAnswer found;
    found.comparison = comparison;
    found.text = printed(node);
    found.holds = holds(node, judged.view());
    const AgentProperty* const reading = batch.objectForKey(comparison.key);
    if (!reading) return found.absent = true, found;
    found.leftOut = !judged.objectForKey(comparison.key);
    found.unit = reading->unit();
    if (reading->time()) found.age = time.secondsSince(*reading->time());
    switch (comparison.member) {
        case ComparisonMember::StringValue:
            found.string = reading->stringValue();
            return found;
        case ComparisonMember::UnitValue:
            found.number = reading->unitValue();
            break;
        case ComparisonMember::Value:
            found.number = reading->value();
            break;
    }
    found.margin = marginOf(comparison, *found.number);
    return found;
}

void collect(const ConditionNode& tree, std::vector<Comparison>& to) {
    std::vector<const ConditionNode*> todo{&tree};
    while (!todo.empty()) {
        const ConditionNode& node = *todo.back();
        todo.pop_back();
        if (const Comparison* comparison = node.comparison()) to.push_back(*comparison);
        for (auto part = node.parts().rbegin(); part != node.parts().rend(); ++part)
            todo.push_back(&*part);
    }
}

bool flagOf(QRVPlugIn& monitor, std::string_view name) {
    InterfaceOwner* owner = monitor.interfaceOwner();
    const auto* property = owner ? owner->propertyNamed(name) : nullptr;
    const Value value = property ? property->get(*owner) : Value();
    const bool* flag = value.as<bool>();
    return flag && *flag;
}

WhyAnswer::Reason reasonOf(const ReplayedCycle* cycle) {
    if (!cycle) return WhyAnswer::Reason::NotWatching;
    switch (cycle->outcome) {
        case CycleOutcome::Waiting:
            return WhyAnswer::Reason::Waiting;
        case CycleOutcome::Fired:
            return WhyAnswer::Reason::Fired;
        case CycleOutcome::Missed:
            break;
    }
    return WhyAnswer::Reason::ConditionFalse;
}

WhyAnswer answerOf(const MonitorCycle& cycle, QRVPlugIn& monitor) {
    WhyAnswer why;
    why.time = cycle.notification.started;
    why.reason = reasonOf(cycle.replayed);
    if (why.reason == WhyAnswer::Reason::Waiting) why.waitingUntil = cycle.replayed->next;
    why.onlyOnChange = flagOf(monitor, "triggerOnlyOnChange");
    const Readings& batch = *cycle.notification.readings;
    const bool judgedSome =
        why.reason == WhyAnswer::Reason::Fired || why.reason == WhyAnswer::Reason::ConditionFalse;
    const auto judged = judgedSome && why.onlyOnChange ? judgedOf(batch, cycle.replayed->inputs)
                                                       : cycle.notification.readings;
    const auto condition = conditionOf(monitor);
    if (!condition || !condition->optionalTree()) {
        if (judgedSome) why.reason = WhyAnswer::Reason::NoCondition;
        return why;
    }
    why.condition = condition->printed();
    why.wouldHold = condition->evaluateWithObject(batch.view());
    std::vector<Comparison> comparisons;
    collect(condition->tree(), comparisons);
    for (const Comparison& comparison : comparisons)
        why.comparisons.push_back(answer(comparison, why.time, batch, *judged));
    return why;
}

}  // namespace

const char* whyReasonName(WhyAnswer::Reason reason) {
    switch (reason) {
        case WhyAnswer::Reason::Fired:
            return "fired";
        case WhyAnswer::Reason::ConditionFalse:
            return "false";
        case WhyAnswer::Reason::Waiting:
            return "waiting";
        case WhyAnswer::Reason::NotWatching:
            return "unwatched";
        case WhyAnswer::Reason::NoCondition:
            return "no condition";
    }
    return "";
}

std::shared_ptr<ConditionPredicate> conditionOf(QRVPlugIn& monitor) {
    InterfaceOwner* owner = monitor.interfaceOwner();
    const auto* property = owner ? owner->propertyNamed("predicate") : nullptr;
    const Value value = property ? property->get(*owner) : Value();
    const auto* object = value.as<std::shared_ptr<Object>>();
    return object ? std::dynamic_pointer_cast<ConditionPredicate>(*object) : nullptr;
}

Result<std::optional<WhyAnswer>> whyAt(MonitorReplay& replay, HistoryReader& reader, RecordId station,
                                       std::optional<Date> at) {
    const auto latest = reader.latest(station, at);
    if (!latest) return latest.error();
    if (!latest.value()) return std::optional<WhyAnswer>();
    const Date time = latest.value()->started;
    std::optional<WhyAnswer> why;
    const Date behind(std::nextafter(time.secondsSinceReference(), INFINITY));
    const auto done = replay.run(
        {time, behind}, [&](const MonitorCycle& cycle) { why = answerOf(cycle, *replay.monitor()); });
    if (!done) return done.error();
    return why;
}

}  // namespace vigil
