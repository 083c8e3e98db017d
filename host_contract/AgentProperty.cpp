#include "host_contract/AgentProperty.hpp"

#include <utility>

#include "platform/Number.hpp"

namespace vigil {
namespace {

std::shared_ptr<const AgentPropertyLabel> labelled(std::string propertyName, FourCharCode type) {
    auto label = std::make_shared<AgentPropertyLabel>();
    label->name = propertyName;
    label->propertyName = std::move(propertyName);
    label->type = type;
    return label;
}

}  // namespace

AgentProperty::AgentProperty() {
    static const auto blank = std::make_shared<const AgentPropertyLabel>();
    m_label = blank;
}

AgentProperty::AgentProperty(std::shared_ptr<const AgentPropertyLabel> label, Parts parts)
    : m_label(std::move(label)), m_parts(std::move(parts)) {}

AgentProperty AgentProperty::number(std::string propertyName, double value, std::optional<Date> time) {
    return {labelled(std::move(propertyName), kNumericType),
            {.value = value, .unitValue = value, .time = time}};
}

AgentProperty AgentProperty::text(std::string propertyName, std::string stringValue,
                                  std::optional<Date> time) {
    return {labelled(std::move(propertyName), kTextType),
            {.stringValue = std::move(stringValue), .time = time}};
}

AgentProperty AgentProperty::date(std::string propertyName, Date value, std::optional<Date> time) {
    const double seconds = value.secondsSinceReference();
    return {labelled(std::move(propertyName), kDateType),
            {.value = seconds, .unitValue = seconds, .time = time}};
}

std::string AgentProperty::className() const {
    return "AgentProperty";
}

std::string AgentProperty::stringValue() const {
    std::string text;
    appendStringValue(text);
    return text;
}

void AgentProperty::appendStringValue(std::string& to) const {
    if (m_parts.stringValue) {
        to += *m_parts.stringValue;
    } else if (type() == kDateType) {
        Date(value()).appendDescription(to);
    } else if (type() != kTextType) {
        appendNumber(to, value());
    }
}

std::string AgentProperty::unitStringValueWithUnitShort() const {
    std::string text;
    appendUnitString(text);
    return text;
}

void AgentProperty::appendUnitString(std::string& to) const {
    if (m_parts.unitStringValueWithUnitShort) {
        to += *m_parts.unitStringValueWithUnitShort;
    } else if (type() == kTextType) {
        if (m_parts.stringValue) to += *m_parts.stringValue;
    } else if (type() == kDateType) {
        Date(value()).appendDescription(to);
    } else {
        appendNumber(to, unitValue());
        if (!unit().empty()) (to += ' ') += unit();
    }
}

std::string AgentProperty::description() const {
    std::string text = propertyName() + " = ";
    appendUnitString(text);
    return text;
}

bool isLaterThanDate(const std::optional<Date>& date, const std::optional<Date>& other) {
    return date && (!other || *date > *other);
}

}  // namespace vigil
