#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host_contract/AgentProperty.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace simdjson::dom {
class element;
}

namespace vigil {

/// A reading in JSON. The short forms:
///
///     8.5                              numeric; `value` and `unitValue` are it
///     "Rain"                           text; `value` and `unitValue` are 0
///     {"date": "2026-11-21T12:00:00Z"} date; `value` and `unitValue` are its seconds since 2001
///     null                             absent
///
/// The long form is an object with any of `propertyName`, `name`, `value`, `unitValue`, `stringValue`,
/// `time`, `type`, `visible`, `unit`, `unitStringValueWithUnitShort`, `date`; a member that is null counts as
/// not given, another member is an error. What is not given:
///
/// - `value` is `unitValue` and the other way round; where neither stands, the seconds of `date`, else 0;
/// - `type` is date where there is a `date`; text where there is a `stringValue` and neither number; else
///   numeric;
/// - `stringValue` and `unitStringValueWithUnitShort` follow from the numbers (AgentProperty says how); a
///   `stringValue` beside a number is kept;
/// - `name` is the key, `unit` is empty, `visible` is true, `time` is the notification's.
///
/// A long form whose values are all null (`{"value":null,"unit":"°C"}`) is absent like null. One that names
/// no value at all is an error. The texts "NaN", "Infinity" and "-Infinity" stand for such numbers in the
/// long form. `type` is a text of four characters, such as "KZNu". Anything from this header may be called
/// from any thread.
///
/// An error tells the path first: `readings.windChill.value: expected a number`.
///
/// What a reading takes from around it.
struct ReadingDefaults {
    std::string_view key;
    std::string_view name{};     ///< the display name where none is given; empty: the key
    std::optional<Date> time{};  ///< the notification's
    /// Used again where it says what the reading's label would say, so that notifications share their labels.
    std::shared_ptr<const AgentPropertyLabel> like{};
};

/// `element` is what stands at `path`; nothing when the reading is absent.
Result<std::optional<AgentProperty>> readingFromJson(const simdjson::dom::element& element,
                                                     const ReadingDefaults& defaults, std::string_view path);

/// An object from key to reading. Keys are kept as they stand and in their order, a key that stands twice
/// included; `propertyName` in a long form must equal its key.
Result<std::shared_ptr<const Readings>> readingsFromJsonObject(const simdjson::dom::element& element,
                                                               std::optional<Date> time,
                                                               std::string_view path);

/// A list of long forms, each with its `propertyName`; the order is kept.
Result<std::shared_ptr<const Readings>> readingsFromJsonList(const simdjson::dom::element& element,
                                                             std::optional<Date> time, std::string_view path);

}  // namespace vigil
