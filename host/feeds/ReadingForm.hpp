#pragma once

#include <optional>
#include <string_view>

#include "host_contract/FourCharCode.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace simdjson::dom {
class element;
}

namespace vigil {

/// A reading in JSON as it was given, in either form (ReadingJson.hpp says which there are), before anything
/// that is missing has been filled in. Texts are valid as long as the parsed line.
struct ReadingForm {
    std::optional<double> value{}, unitValue{};
    std::optional<Date> date{}, time{};
    std::optional<std::string_view> propertyName{}, name{}, unit{}, stringValue{}, unitString{};
    std::optional<FourCharCode> type{};
    std::optional<bool> visible{};
    bool nullValue = false;  ///< it is null, or one of the members that carry a value is

    bool hasValue() const { return value || unitValue || stringValue || date; }
    /// There is no such reading at this time.
    bool absent() const { return !hasValue() && nullValue; }
    /// As given, else what follows from the values.
    FourCharCode typeOrDefault() const;
};

/// The error says what stands behind the reading's path: ".value: expected a number". One that is neither
/// absent nor has a value, a type or a text with its unit is an error.
std::optional<Error> readReadingForm(const simdjson::dom::element& given, ReadingForm& form);

}  // namespace vigil
