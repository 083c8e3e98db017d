#include "host_contract/AgentProperty.hpp"
#include "platform/KeyedCoder.hpp"

// A reading in an archive: its members under their own names. Texts that follow from the numbers are written
// only where they were given.

namespace vigil {

bool AgentProperty::initWithCoder(KeyedDecoder& coder) {
    auto label = std::make_shared<AgentPropertyLabel>();
    label->propertyName = coder.decodeText("propertyName").value_or("");
    label->name = coder.decodeText("name").value_or(label->propertyName);
    label->unit = coder.decodeText("unit").value_or("");
    const auto type = coder.decodeText("type");
    if (type && type->size() != 4) coder.refuse("type", "expected a code of four characters");
    label->type = type ? fourCharCode(*type) : kNumericType;
    label->visible = !coder.contains("visible") || coder.decodeFlag("visible");
    m_label = std::move(label);
    m_parts.value = coder.decodeNumber("value").value_or(Number(0)).doubleValue();
    m_parts.unitValue = coder.decodeNumber("unitValue").value_or(Number(0)).doubleValue();
    m_parts.stringValue = coder.decodeText("stringValue");
    m_parts.time = coder.decodeDate("time");
    m_parts.unitStringValueWithUnitShort = coder.decodeText("unitStringValueWithUnitShort");
    return true;
}

void AgentProperty::encodeWithCoder(KeyedEncoder& coder) const {
    coder.encodeText("propertyName", propertyName());
    coder.encodeText("name", name());
    if (!unit().empty()) coder.encodeText("unit", unit());
    coder.encodeText("type", fourCharText(type()));
    if (!visible()) coder.encodeFlag("visible", false);
    coder.encodeNumber("value", Number(value()));
    coder.encodeNumber("unitValue", Number(unitValue()));
    coder.encodeText("stringValue", m_parts.stringValue);
    coder.encodeDate("time", m_parts.time);
    coder.encodeText("unitStringValueWithUnitShort", m_parts.unitStringValueWithUnitShort);
}

}  // namespace vigil
