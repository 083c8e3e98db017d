#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host_contract/FourCharCode.hpp"
#include "platform/Date.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// What all readings of one key have in common.
struct AgentPropertyLabel {
    std::string propertyName;          ///< the key
    std::string name;                  ///< the display name
    std::string unit;                  ///< the short unit of `unitValue`, or empty
    FourCharCode type = kNumericType;  ///< text, date or numeric
    bool visible = true;
};

/// One named reading of a station. Never changed once it has been published in a notification, so it may then
/// be read from any thread; a copy is an independent snapshot. Texts that follow from the numbers are built
/// when asked for.
class VIGIL_KIT AgentProperty final : public Object {
  public:
    /// What a reading is made of; texts that are absent follow from the numbers.
    struct Parts {
        double value = 0;      ///< raw, in the unit held inside; seconds since 2001-01-01 UTC for a date
        double unitValue = 0;  ///< in the user's unit
        std::optional<std::string> stringValue{};
        std::optional<Date> time{};
        std::optional<std::string> unitStringValueWithUnitShort{};
    };

    AgentProperty();
    AgentProperty(std::shared_ptr<const AgentPropertyLabel> label, Parts parts);

    static AgentProperty number(std::string propertyName, double value, std::optional<Date> time);
    static AgentProperty text(std::string propertyName, std::string stringValue, std::optional<Date> time);
    /// A date reading: `value` and `unitValue` are its seconds since 2001-01-01 UTC.
    static AgentProperty date(std::string propertyName, Date value, std::optional<Date> time);

    const std::string& propertyName() const { return m_label->propertyName; }
    const std::string& name() const { return m_label->name; }
    const std::string& unit() const { return m_label->unit; }
    FourCharCode type() const { return m_label->type; }
    bool visible() const { return m_label->visible; }
    double value() const { return m_parts.value; }
    double unitValue() const { return m_parts.unitValue; }
    const std::optional<Date>& time() const { return m_parts.time; }

    /// As given, else the raw value printed (a date as `Date::description`).
    std::string stringValue() const;
    void appendStringValue(std::string& to) const;
    /// The text as given, or nothing where `stringValue` is built from the value.
    const std::optional<std::string>& givenStringValue() const { return m_parts.stringValue; }
    /// As given, else the value in the user's unit, a blank and the unit; a text reading is its text.
    std::string unitStringValueWithUnitShort() const;
    void appendUnitString(std::string& to) const;

    const std::shared_ptr<const AgentPropertyLabel>& label() const { return m_label; }
    const Parts& parts() const { return m_parts; }

    std::string className() const override;
    /// "key = value with unit"
    std::string description() const override;
    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

  private:
    std::shared_ptr<const AgentPropertyLabel> m_label;
    Parts m_parts;
};

/// Whether `date` is later than `other`. An absent `other` is earlier than every date; an absent `date` is
/// later than none; equal dates are not later. (Keyword form: isLaterThanDate:)
VIGIL_KIT bool isLaterThanDate(const std::optional<Date>& date, const std::optional<Date>& other);

}  // namespace vigil
