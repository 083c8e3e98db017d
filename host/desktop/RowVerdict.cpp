#include "host/desktop/RowVerdict.hpp"

#include <cmath>

#include "conditions/ConditionPredicate.hpp"
#include "host/desktop/Words.hpp"

namespace vigil {

std::string keyOf(const std::string& comparison) {
    return comparison.substr(0, comparison.find('.'));
}

RowVerdict verdictOf(const std::string& comparison, const Readings& readings, Date now) {
    RowVerdict verdict;
    const AgentProperty* reading = readings.objectForKey(keyOf(comparison));
    const auto condition = ConditionPredicate::predicateWithFormat(comparison);
    if (!reading || !condition) return verdict;
    verdict.reading = reading->type() == kDateType ? momentText(Date(reading->value()), now)
                                                   : qt(reading->unitStringValueWithUnitShort());
    if (reading->time()) verdict.age = ageText(now.secondsSince(*reading->time()));
    const Comparison* compared = condition.value()->tree().comparison();
    const bool isNumber = compared && compared->member == ComparisonMember::UnitValue;
    if (isNumber && std::isnan(reading->unitValue())) return verdict;
    verdict.kind =
        condition.value()->evaluateWithObject(readings.view()) ? RowVerdict::Holds : RowVerdict::DoesNotHold;
    return verdict;
}

QString verdictWords(RowVerdict::Kind kind) {
    switch (kind) {
        case RowVerdict::Holds:
            return say("holds");
        case RowVerdict::DoesNotHold:
            return say("does not hold");
        case RowVerdict::NoValue:
            break;
    }
    return say("no value");
}

const char* verdictIcon(RowVerdict::Kind kind) {
    const char* const names[] = {"yes", "no", "none"};
    return names[kind];
}

}  // namespace vigil
