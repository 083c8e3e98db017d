#include "host/run/PlugInState.hpp"

#include <algorithm>

#include "conditions/ConditionPredicate.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/Number.hpp"

namespace vigil {
namespace {

Value get(QRVPlugIn& plugIn, std::string_view name) {
    InterfaceOwner* owner = plugIn.interfaceOwner();
    const auto* property = owner ? owner->propertyNamed(name) : nullptr;
    return property ? property->get(*owner) : Value();
}

std::shared_ptr<ConditionPredicate> conditionOf(QRVPlugIn& plugIn) {
    const Value value = get(plugIn, "predicate");
    const auto* object = value.as<std::shared_ptr<Object>>();
    return object ? std::dynamic_pointer_cast<ConditionPredicate>(*object) : nullptr;
}

// The parser bounds the depth.
void appendMissing(const ConditionNode& node, const Readings& readings, std::vector<std::string>& keys) {
    if (const Comparison* comparison = node.comparison()) {
        const std::string& key = comparison->key;
        const bool known = std::find(keys.begin(), keys.end(), key) != keys.end();
        if (!known && !readings.objectForKey(key)) keys.push_back(key);
    }
    for (const ConditionNode& part : node.parts())
        appendMissing(part, readings, keys);
}

}  // namespace

std::optional<double> retriggerSeconds(QRVPlugIn& plugIn) {
    const Value value = get(plugIn, "retriggerInterval");
    std::optional<Number> minutes;
    if (const auto* integer = value.as<std::int64_t>()) minutes = Number(*integer);
    if (const auto* real = value.as<double>()) minutes = Number(*real);
    if (!minutes) return std::nullopt;
    const double single = minutes->floatValue();
    return single * 60.0;
}

std::optional<Date> retriggerDate(QRVPlugIn& plugIn) {
    const Value value = get(plugIn, "retriggerDate");
    const Date* date = value.as<Date>();
    return date ? std::optional(*date) : std::nullopt;
}

bool waitAtLeastUntil(QRVPlugIn& plugIn, Date date) {
    InterfaceOwner* owner = plugIn.interfaceOwner();
    const auto* property = owner ? owner->propertyNamed("retriggerDate") : nullptr;
    if (!property || !property->set) return false;
    const auto now = retriggerDate(plugIn);
    if (now && *now >= date) return true;
    return property->set(*owner, Value(date));
}

std::string conditionText(QRVPlugIn& plugIn) {
    const auto condition = conditionOf(plugIn);
    return condition ? condition->printed() : std::string();
}

std::vector<std::string> missingKeys(QRVPlugIn& plugIn, const Readings& readings) {
    std::vector<std::string> keys;
    const auto condition = conditionOf(plugIn);
    if (condition && condition->optionalTree()) appendMissing(*condition->optionalTree(), readings, keys);
    return keys;
}

}  // namespace vigil
